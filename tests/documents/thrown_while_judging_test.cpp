// Refusals of what a token says and of who signed it, and of what the caller passes.
#include "documents/thrown_refusal.h"
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/provider.h"
#include "support/big_documents.h"
#include "support/foreign_nodes.h"
#include "support/forged_certificate.h"
#include "support/refusing_openssl.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace Documents {
namespace {

using namespace Saml;
using Attacks::HandMadeSignature;
using Forge::Replaced;
using Forge::TokenSpec;

const Attacks::Resolver& Root() {
    return Attacks::Provider::TrustInTheRoot();
}
std::string OutcomeOf(const std::string& token, const Attacks::Resolver& trust = Root()) {
    return Attacks::OutcomeOf(token, trust);
}

/// A token with everything in it, changed, whose signature holds.
std::string OutcomeOfSigned(const std::function<void(TokenSpec&)>& change) {
    TokenSpec spec = Attacks::Provider::CustomerSpec();
    change(spec);
    return OutcomeOf(Attacks::Provider::Signed(spec));
}

/// The same with a digest that does not hold and is not asked about.
std::string Hollow(const std::function<void(TokenSpec&)>& change = [](TokenSpec&) {}) {
    TokenSpec spec = Attacks::Provider::CustomerSpec();
    change(spec);
    spec.signature = Forge::HollowSignature("#" + spec.id);
    return Forge::Write(spec);
}
std::string OutcomeOfHollow(const std::function<void(TokenSpec&)>& change) {
    return OutcomeOf(Hollow(change));
}

std::string OutcomeOfMade(const std::function<void(HandMadeSignature&)>& change,
                          const Attacks::Resolver& trust = Root()) {
    HandMadeSignature signature;
    change(signature);
    return OutcomeOf(Attacks::TokenWith(signature), trust);
}

TEST(Refusals, ByTheWindowAreOnThePage) {
    const auto row = [](const std::string& message) { return "ParseException: " + message; };
    ExpectOnThePage({
        {row("Invalid token version"),
         OutcomeOfHollow([](TokenSpec& spec) { spec.version = "1.1"; })},
        {row("Invalid token ID"), OutcomeOfHollow([](TokenSpec& spec) { spec.id = "4f1c"; })},
        {row("Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter."),
         OutcomeOfHollow([](TokenSpec& spec) { spec.notBefore = spec.notOnOrAfter; })},
        {row("Token start date is in the future: <date>"),
         OutcomeOfHollow([](TokenSpec& spec) { spec.notBefore = Forge::FromNow(1800); })},
        {row("The token has expired at: <date>"), OutcomeOfHollow([](TokenSpec& spec) {
             spec.notBefore = "2001-01-01T00:00:00Z";
             spec.notOnOrAfter = "2001-01-02T00:00:00Z";
         })},
        {row("Invalid token subject validity"), OutcomeOfHollow([](TokenSpec& spec) {
             spec.confirmationNotOnOrAfter = "2001-01-02T00:00:00Z";
         })},
    });
}

TEST(Refusals, ByTheDelegationAreOnThePage) {
    const auto row = [](const std::string& message) { return "ParseException: " + message; };
    ExpectOnThePage({
        {row("Token SubjectConfirmation contains delegate id, but no delegation restriction is "
             "present"),
         OutcomeOfHollow([](TokenSpec& spec) { spec.delegates.clear(); })},
        {row("The SubjectConfirmation delegate id does not match the id of the last delegate"),
         OutcomeOfHollow([](TokenSpec& spec) { spec.delegateId->value = "SVC@corp"; })},
        {row("Token has delegation restriction, but no delegate id is present in the "
             "SubjectConfirmation"),
         OutcomeOfHollow([](TokenSpec& spec) { spec.delegateId.reset(); })},
    });
}

std::string WithReference(const std::string& uri, const std::string& transforms = {}) {
    const std::string reference =
        "<ds:Reference URI=\"" + uri + "\">" + transforms +
        Attacks::Method("DigestMethod", Xml::Security::Algorithm::Sha256) +
        "<ds:DigestValue>AAAA</ds:DigestValue></ds:Reference>";
    return Replaced(Hollow(), "</ds:Reference>", "</ds:Reference>" + reference);
}

/// A long namespace that every one of many elements declares in the canonical form.
std::string RepeatedNamespace() {
    const std::string elements = BigDocuments::Repeated("<p:a/>", 1000);
    const std::string data =
        "<ds:X509Data xmlns:p=\"" + std::string(100000, 'u') + "\">" + elements + "</ds:X509Data>";
    return Replaced(WithReference("", Attacks::Transforms(Attacks::ExclusiveTransform())),
                    "</ds:Signature>", Attacks::KeyInfo(data) + "</ds:Signature>");
}

std::string OutcomeWithoutDigests() {
    const std::string token = Hollow();
    const Attacks::Resolver trust = Root();
    const RefusingOpenSsl::Refusal refusal(RefusingOpenSsl::Function::DigestUpdate);
    return OutcomeOf(token, trust);
}

Attacks::Resolver TrustInAnUnreadableKey() {
    TestKeys::ForgedCertificate form;
    form.keyBits = "garbage";
    Attacks::Resolver resolver;
    Xml::Security::CreateTrustSetKeyResolver({form.Der()}, resolver);
    return resolver;
}

std::string OutcomeByKeyOf(const std::string& key, const std::string& digest,
                           const std::string& certificate) {
    return OutcomeOfMade(
        [&](HandMadeSignature& signature) {
            signature.sign = Attacks::SigningWith(key, digest);
            signature.keyInfo = Attacks::Sending({certificate});
        },
        Attacks::Provider::TrustChain({certificate}));
}

TEST(Refusals, OfReferencesAreOnThePage) {
    const auto row = [](const std::string& message) {
        return "InvalidSignatureException: Signature verification error. " + message;
    };
    const std::string exclusive =
        "<ds:Transform Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\"/>";
    ExpectOnThePage({
        {row("The URI could not be resolved: <uri>"), OutcomeOf(WithReference("#nowhere"))},
        {row("Duplicate URI found: <identifier>"),
         OutcomeOf(Replaced(Hollow(), "<saml:Subject>", "<saml:Subject xmlns:Id='_genuine'>"))},
        {row("The following canonicalization method is unsupported: <algorithm>"),
         OutcomeOf(Replaced(Hollow(), exclusive, ""))},
        {row("The following hash algorithm is unsupported: <algorithm>"),
         OutcomeOf(Replaced(Hollow(), "xmlenc#sha256", "xmlenc#ripemd160"))},
        {row("Canonicalization would repeat namespace declarations out of proportion."),
         OutcomeOf(RepeatedNamespace())},
        {"CryptoException: Crypto Exception: Digest calculation failed", OutcomeWithoutDigests()},
    });
}

TEST(Refusals, OfSignersAreOnThePage) {
    const auto row = [](const std::string& message) {
        return "InvalidSignatureException: Signature verification error. " + message;
    };
    ExpectOnThePage({
        {row("No verification key available."),
         OutcomeOfMade([](HandMadeSignature&) {}, Attacks::Provider::TrustSet({"self-signed"}))},
        {row("The following canonicalization method is unsupported: <algorithm>"),
         OutcomeOfMade([](HandMadeSignature& signature) {
             signature.canonicalizationMethod = Attacks::Method(
                 "CanonicalizationMethod", "http://www.w3.org/TR/2001/REC-xml-c14n-20010315");
         })},
        {row("The signature algorithm is not supported: <algorithm>"),
         OutcomeOfMade([](HandMadeSignature& signature) {
             signature.signatureMethod =
                 Attacks::Method("SignatureMethod", "http://www.w3.org/2000/09/xmldsig#hmac-sha1");
         })},
        {row("Crypto Exception: Invalid or unsupported format of the public key"),
         OutcomeByKeyOf("ec", "SHA256", "ec-self-signed")},
        {"CryptoException: Crypto Exception: Invalid or unsupported public key",
         OutcomeByKeyOf("ed25519", "", "ed25519-self-signed")},
        {"InvalidArgumentException: Invalid x509 certificate",
         OutcomeOfMade([](HandMadeSignature& signature) { signature.keyInfo.clear(); },
                       TrustInAnUnreadableKey())},
        {"InvalidSignatureException: Failed to verify signature: token might have been tampered "
         "with.",
         OutcomeOf(Hollow())},
    });
}

TEST(Refusals, OfNamesAreOnThePage) {
    const auto row = [](const std::string& message) { return "ParseException: " + message; };
    const auto withAttribute = [](const std::string& name, const std::vector<std::string>& values) {
        return OutcomeOfSigned([&](TokenSpec& spec) { spec.attributes = {{name, values}}; });
    };
    ExpectOnThePage({
        {row("Invalid or unsupported NameId format '<format>'"),
         OutcomeOfSigned([](TokenSpec& spec) { spec.subject.format = "urn:x"; })},
        {row("Failed to parse the UPN NameID: `<value>'; name or domain part is missing."),
         OutcomeOfSigned([](TokenSpec& spec) { spec.subject.value = "jdoe"; })},
        {row("Failed to parse Group Identity value: `<value>'; domain or group missing"),
         withAttribute(ProfileUri::GroupIdentity, {"guests@corp"})},
        {"ParseException*: No value found for attribute isSolution.",
         withAttribute(ProfileUri::IsSolution, {})},
        {"ParseException*: More than one value found for attribute isSolution.",
         withAttribute(ProfileUri::IsSolution, {"true", "true"})},
    });
}

TEST(Refusals, OfArgumentsAreOnThePage) {
    const std::string row = "InvalidArgumentException: ";
    const boost::intrusive_ptr<Xml::ElementNode> foreign(new Xml::ForeignElement);
    Attacks::Resolver made;
    ByteBlob der;
    const auto invalid = [&row](const std::function<void()>& call) {
        return row + MessageOf<InvalidArgumentException>(call);
    };
    ExpectOnThePage({
        {row + "No key resolver given", invalid([] { CreateSamlToken("", nullptr); })},
        {row + "No assertion element given",
         invalid([] { CreateSamlTokenFromDom(nullptr, nullptr); })},
        {"TypeMismatchException: Type Mismatch: expected: <class>, found: <class>",
         "TypeMismatchException: " + MessageOf<TypeMismatchException>([&] {
             CreateSamlTokenFromDom(foreign.get(), Root().get());
         })},
        {row + "No trusted certificates provided",
         invalid([&] { Xml::Security::CreateTrustChainKeyResolver({}, made); })},
        {row + "Invalid X.509 Certificate", invalid([&] {
             Xml::Security::CreateTrustSetKeyResolver({TestKeys::ToBlob("PEM")}, made);
         })},
        {row + "Wrong or unsupported X.509 Certificate format",
         invalid([&] { Xml::Security::CertificatePEMToBlob("DER", der); })},
    });
}

}  // namespace
}  // namespace Documents
