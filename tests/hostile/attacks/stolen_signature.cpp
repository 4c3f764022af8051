#include "hostile/attacks/stolen_signature.h"

#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"
#include "support/canonical_forms.h"

#include <gtest/gtest.h>

namespace Saml::Attacks {
namespace {

constexpr char kEndOfSignature[] = "</ds:Signature>";

Genuine TakenApart(const std::string& uri) {
    Genuine genuine;
    genuine.spec = Provider::CustomerSpec();
    Forge::SignatureSpec choices;
    choices.uri = uri;
    genuine.token = Provider::Signed(genuine.spec, choices);
    const std::size_t begin = genuine.token.find("<ds:Signature ");
    const std::size_t end = genuine.token.find(kEndOfSignature) + sizeof kEndOfSignature - 1;
    genuine.signature = genuine.token.substr(begin, end - begin);
    genuine.original = std::string(genuine.token).erase(begin, end - begin);
    return genuine;
}

enum class Identifier { OfTheOriginal, Another, None };
constexpr Identifier kIdentifiers[] = {Identifier::OfTheOriginal, Identifier::Another,
                                       Identifier::None};

std::string NameOf(Identifier identifier) {
    if (identifier == Identifier::OfTheOriginal) return "SameId";
    return identifier == Identifier::Another ? "OtherId" : "NoId";
}

std::string Outcome(const Shape& shape, Identifier identifier, bool byIdentifier) {
    if (!shape.evilIsRoot) return shape.refusal;
    if (identifier == Identifier::None)
        return Refused<ParseException>("Node 'Assertion is missing required attribute 'ID'");
    if (shape.met == Met::BeforeCoverage) return shape.refusal;
    if (byIdentifier && identifier == Identifier::Another) return RefusedAsUncovered();
    if (shape.met == Met::BehindCoverage) return shape.refusal;
    return byIdentifier && shape.met == Met::ByTheResolver ? RefusedAsDuplicate()
                                                           : RefusedAsTampered();
}

std::string Written(const Shape& shape, Identifier identifier, const Genuine& genuine) {
    const bool isSame = identifier == Identifier::OfTheOriginal;
    const std::string token =
        shape.write(shape, AdministratorSpec(isSame ? "_genuine" : "_evil"), genuine);
    return identifier == Identifier::None ? Forge::Replaced(token, " ID=\"_evil\"", "") : token;
}

}  // namespace

const Genuine& SignedByIdentifier() {
    static const Genuine genuine = TakenApart("#_genuine");
    return genuine;
}

const Genuine& SignedAsRoot() {
    static const Genuine genuine = TakenApart("");
    return genuine;
}

Forge::TokenSpec AdministratorSpec(const std::string& id) {
    Forge::TokenSpec spec = Provider::CustomerSpec();
    spec.id = id;
    spec.subject.value = "admin@corp";
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\admins"}},
                       {ProfileUri::GivenName, {"Alice"}},
                       {ProfileUri::Surname, {"Admin"}},
                       {ProfileUri::IsSolution, {"true"}}};
    return spec;
}

std::string WithSignature(Forge::TokenSpec evil, const Genuine& genuine) {
    evil.signature = genuine.signature;
    return Forge::Write(evil);
}

std::string RefusedAsDuplicate() {
    return RefusedVerification("Duplicate URI found: _genuine");
}

bool SignatureHoldsByItself(const std::string& token) {
    using namespace Xml::Security;
    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(token);
    boost::intrusive_ptr<Signature> signature;
    try {
        CreateSignatureFromDom(document->GetRootElement(), &ElementNamed(*document, "Signature"),
                               signature);
        return signature->Verify(Provider::TrustInTheRoot().get(), {});
    } catch (const XmlSecurityException&) {
        return false;
    }
}

std::vector<Attack> InEveryGuise(const Shape& shape) {
    std::vector<Attack> attacks;
    for (const Identifier identifier : kIdentifiers)
        for (const bool byIdentifier : {true, false}) {
            const Genuine& genuine = byIdentifier ? SignedByIdentifier() : SignedAsRoot();
            const std::string token = Written(shape, identifier, genuine);
            if (byIdentifier && identifier == Identifier::Another) {
                EXPECT_EQ(SignatureHoldsByItself(token), shape.holdsByItself) << shape.name;
            }
            attacks.push_back({shape.name + "." + NameOf(identifier) +
                                   (byIdentifier ? ".ByIdentifier" : ".AsRoot"),
                               token, Outcome(shape, identifier, byIdentifier)});
        }
    return attacks;
}

}  // namespace Saml::Attacks
