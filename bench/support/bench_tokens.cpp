#include "support/bench_tokens.h"

#include "saml/security.h"
#include "support/test_keys.h"
#include "support/token_forge.h"

#include <stdexcept>

namespace Bench {
namespace {

using namespace Saml;
using namespace Saml::Xml::Security;

constexpr char kAuthority[] =
    "basicConstraints=critical,CA:TRUE\n"
    "keyUsage=critical,keyCertSign,cRLSign\n"
    "subjectKeyIdentifier=hash\n"
    "authorityKeyIdentifier=keyid\n";
constexpr char kSigner[] =
    "basicConstraints=critical,CA:FALSE\n"
    "keyUsage=critical,digitalSignature\n"
    "subjectKeyIdentifier=hash\n"
    "authorityKeyIdentifier=keyid\n";

Provider MakeProvider() {
    using TestKeys::Issue;
    const TestKeys::Certificate& root =
        Issue({"bench-root", "Bench Root", "bench-root", nullptr, kAuthority});
    const TestKeys::Certificate& intermediate =
        Issue({"bench-intermediate", "Bench Intermediate", "bench-intermediate", "bench-root",
               kAuthority});
    const TestKeys::Certificate& leaf =
        Issue({"bench-leaf", "Bench Signer", "bench-leaf", "bench-intermediate", kSigner});
    return {root.der,
            intermediate.der,
            leaf.der,
            leaf.key->publicKey,
            leaf.key->privateKey,
            {root.pemPath, intermediate.pemPath, leaf.pemPath, leaf.key->pemPath}};
}

Forge::TokenSpec SpecOf(std::size_t groups) {
    Forge::TokenSpec spec;
    spec.notOnOrAfter = Forge::FromNow(86400);
    spec.audience = {"https://service.example/"};
    Forge::Attribute attribute{ProfileUri::GroupIdentity, {}};
    for (std::size_t i = 0; i != groups; ++i)
        attribute.values.push_back("corp.example\\Members of department no. " + std::to_string(i) +
                                   " and its guests");
    spec.attributes = {
        {ProfileUri::GivenName, {"Jane"}}, {ProfileUri::Surname, {"Doe"}}, attribute};
    return spec;
}

std::string Canonical(Xml::Node* apex) {
    boost::intrusive_ptr<Canonicalizer> canonicalizer;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(apex, out);
    return out.data;
}

Xml::ElementNode& Child(Xml::ElementNode& parent, const std::string& localName) {
    Xml::ElementNode* const child = parent.GetFirstChildElement(localName);
    if (child == nullptr) throw std::runtime_error("no " + localName);
    return *child;
}

}  // namespace

const Provider& TheProvider() {
    static const Provider provider = MakeProvider();
    return provider;
}

Token MakeToken(std::size_t groups) {
    const Provider& provider = TheProvider();
    Token token;
    token.unsignedXml = Forge::Write(SpecOf(groups));
    token.xml = Forge::Sign(token.unsignedXml,
                            {provider.privateKey, {provider.leaf, provider.intermediate}});

    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(token.xml);
    Xml::ElementNode& assertion = *document->GetRootElement();
    Xml::ElementNode& signature = Child(assertion, "Signature");
    token.canonicalSignedInfo = Canonical(&Child(signature, "SignedInfo"));
    Xml::Node* const value = Child(signature, "SignatureValue").GetFirstChild();
    std::string error;
    token.signatureValue = Base64::Decode(dynamic_cast<Xml::TextNode&>(*value).GetText(), error);
    assertion.RemoveChild(&signature);
    token.canonicalAssertion = Canonical(&assertion);
    return token;
}

std::string Tampered(const Token& token) {
    const std::string member = "department no. 7 ";
    const std::size_t place = token.xml.find(member);
    if (place == std::string::npos) throw std::runtime_error("no " + member);
    return std::string(token.xml).replace(place, member.size(), "department no. 9 ");
}

std::string SignedByStranger(const Token& token) {
    const TestKeys::Certificate& stranger =
        TestKeys::Issue({"bench-stranger", "Bench Signer", "bench-stranger", nullptr, kSigner});
    return Forge::Sign(token.unsignedXml, {stranger.key->privateKey, {stranger.der}});
}

}  // namespace Bench
