#include "saml/foundations/checked_cast.h"
#include "saml/token.h"
#include "saml/token/assertion_reader.h"
#include "saml/token/assertion_validation.h"
#include "saml/token/saml_token_impl.h"
#include "saml/xml/element_node_impl.h"
#include "saml/xml/parse_document.h"

#include <utility>

namespace Saml {
namespace {

using Xml::Security::KeyInfoResolver;

constexpr char kNoResolver[] = "No key resolver given";
constexpr char kNoAssertion[] = "No assertion element given";
constexpr char kTampered[] = "Failed to verify signature: token might have been tampered with.";
std::string VerificationError(const std::string& detail) {
    return "Signature verification error. " + detail;
}

// No URI is required here: the reader has made sure that the whole assertion is covered.
void VerifySignature(Xml::Security::Signature& signature, KeyInfoResolver& resolver) {
    bool holds = false;
    try {
        holds = signature.Verify(&resolver, {});
    } catch (const Xml::Security::XmlSecurityException& failure) {
        throw InvalidSignatureException(VerificationError(failure.what()));
    }
    if (!holds) throw InvalidSignatureException(kTampered);
}

// The road that every token takes. The clock comes before the signature: callers tell a token that
// is merely out of date from a forged one by this order. Names come last, when the token is made,
// since only a verified token's names mean anything.
ParsedAssertion ReadVerified(Xml::ElementNodeImpl& element, KeyInfoResolver& resolver,
                             std::int64_t tolerance) {
    ParsedAssertion assertion = ReadAssertion(element);
    ValidateAssertion(assertion, DateTime::GetUtcDateTime(), tolerance);
    VerifySignature(*assertion.signature, resolver);
    assertion.signature.reset();  // it keeps the document
    return assertion;
}

std::shared_ptr<const SamlToken> MakeToken(std::string xml, ParsedAssertion&& assertion) {
    return std::make_shared<const SamlTokenImpl>(std::move(xml), std::move(assertion));
}

std::string InclusiveCanonicalForm(Xml::ElementNodeImpl& element) {
    boost::intrusive_ptr<Xml::Security::Canonicalizer> canonicalizer;
    Xml::Security::CreateCanonicalizer(Xml::Security::Algorithm::InclusiveC14N, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(&element, out);
    return std::move(out.data);
}

}  // namespace

std::shared_ptr<const SamlToken> CreateSamlToken(const std::string& xml, KeyInfoResolver* resolver,
                                                 std::int64_t tolerance) {
    if (resolver == nullptr) throw InvalidArgumentException(kNoResolver);
    boost::intrusive_ptr<Xml::Document> document = Xml::ParseDocument(xml);
    std::string kept = xml;  // now: the resolver is the caller's, and may change what is theirs
    auto& root = *CheckedCast<Xml::ElementNodeImpl>(document->GetRootElement());
    ParsedAssertion assertion = ReadVerified(root, *resolver, tolerance);
    document.reset();  // of a big token's tree, only what holds attribute values stays
    return MakeToken(std::move(kept), std::move(assertion));
}

std::shared_ptr<const SamlToken> CreateSamlToken(const std::string& xml,
                                                 KeyInfoResolver* resolver) {
    return CreateSamlToken(xml, resolver, DefaultClockTolerance);
}

std::shared_ptr<const SamlToken> CreateSamlTokenFromDom(Xml::ElementNode* assertion,
                                                        KeyInfoResolver* resolver,
                                                        std::int64_t tolerance) {
    if (assertion == nullptr) throw InvalidArgumentException(kNoAssertion);
    if (resolver == nullptr) throw InvalidArgumentException(kNoResolver);
    auto& element = *CheckedCast<Xml::ElementNodeImpl>(assertion);
    std::string xml = InclusiveCanonicalForm(element);
    return MakeToken(std::move(xml), ReadVerified(element, *resolver, tolerance));
}

std::shared_ptr<const SamlToken> CreateSamlTokenFromDom(Xml::ElementNode* assertion,
                                                        KeyInfoResolver* resolver) {
    return CreateSamlTokenFromDom(assertion, resolver, DefaultClockTolerance);
}

}  // namespace Saml
