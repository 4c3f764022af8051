// Small tokens that ask for much work, kept small enough here to look at their outcomes alone.
// `hostile_costs` tells what the work is.
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/refusals.h"
#include "hostile/attacks/spoiled_text.h"
#include "support/big_documents.h"

#include <gtest/gtest.h>

#include <functional>

namespace Saml::Attacks {
namespace {

using namespace BigDocuments;
using Xml::Security::Algorithm::ExclusiveC14N;
using Xml::Security::Algorithm::Sha256;

std::string PrefixListTransform(const std::string& prefixes) {
    return Transform(ExclusiveC14N,
                     "<c:InclusiveNamespaces xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
                     "PrefixList=\"" +
                         prefixes + "\"/>");
}

std::string Reference(const std::string& uri, const std::string& transforms,
                      const std::string& digestValue) {
    return "<ds:Reference URI=\"" + uri + "\">" + Transforms(transforms) +
           Method("DigestMethod", Sha256) + "<ds:DigestValue>" + digestValue +
           "</ds:DigestValue></ds:Reference>";
}

/// The text of the digest of a token of this description.
std::string DigestValueOf(const Forge::TokenSpec& spec) {
    const std::string token = TokenWith({}, spec);
    const Extent extent = ContentOf(token, "ds:DigestValue");
    return token.substr(extent.begin, extent.end - extent.begin);
}

std::string WithReferences(const std::string& further, const Forge::TokenSpec& spec) {
    HandMadeSignature signature;
    signature.furtherReferences = further;
    return TokenWith(signature, spec);
}

std::string Many(std::size_t count, const std::function<std::string(std::size_t)>& piece) {
    std::string pieces;
    for (std::size_t i = 0; i != count; ++i)
        pieces += piece(i);
    return pieces;
}

// W3C's XML Signature Best Practices ask for a bound on their number. Here equal ones cost one
// digest, and others the text each: whoever bounds the size of a token bounds them, too.
TEST(ManyReferencesOfTokens, AreAllVerified) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const std::string usual = EnvelopedTransform() + ExclusiveTransform();
    const std::string digest = DigestValueOf(customer);
    const std::string equal = Repeated(Reference("#_genuine", usual, digest), 1000);
    const std::string bothForms =
        Repeated(Reference("", usual, digest) + Reference("#_genuine", usual, digest), 500);
    const std::string withLists = Many(200, [&](std::size_t i) {
        return Reference("#_genuine",
                         EnvelopedTransform() + PrefixListTransform("p" + std::to_string(i)),
                         digest);
    });
    const std::string wrong = Reference("#_genuine", usual, "AAAA");
    const std::string nowhere = Reference("#nowhere", usual, digest);
    const std::string unresolved = RefusedVerification("The URI could not be resolved: #nowhere");
    ExpectOutcomes({
        {"Equal", WithReferences(equal, customer), Accepted(customer)},
        {"InBothForms", WithReferences(bothForms, customer), Accepted(customer)},
        {"WithPrefixListsOfTheirOwn", WithReferences(withLists, customer), Accepted(customer)},
        {"TheLastOfThemWrong", WithReferences(equal + wrong, customer), RefusedAsTampered()},
        {"OneInTheMiddleWrong", WithReferences(equal + wrong + equal, customer),
         RefusedAsTampered()},
        {"TheLastOfThemNowhere", WithReferences(equal + nowhere, customer), unresolved},
        // What cannot be resolved is said also when a digest was wrong before.
        {"WrongAndNowhere", WithReferences(wrong + nowhere, customer), unresolved},
        {"OutsideOfTheDocument",
         WithReferences(Reference("http://attacker.example/", usual, digest), customer),
         RefusedVerification("The URI could not be resolved: http://attacker.example/")},
        {"ToAFile", WithReferences(Reference("file:///etc/passwd", usual, digest), customer),
         RefusedVerification("The URI could not be resolved: file:///etc/passwd")},
        {"ByXPointer", WithReferences(Reference("#xpointer(/)", usual, digest), customer),
         RefusedVerification("The URI could not be resolved: #xpointer(/)")},
    });
}

TEST(ManyTransforms, SayNothingNew) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto with = [&](const std::string& transforms) {
        HandMadeSignature signature;
        signature.transforms = Transforms(transforms);
        return TokenWith(signature, customer);
    };
    const std::string all = Repeated(EnvelopedTransform() + ExclusiveTransform(), 2000);
    ExpectOutcomes({
        {"OfBothKinds", with(all), Accepted(customer)},
        {"Enveloped", with(Repeated(EnvelopedTransform(), 4000) + ExclusiveTransform()),
         Accepted(customer)},
        {"PrefixLists",
         with(EnvelopedTransform() +
              Many(1000,
                   [](std::size_t i) { return PrefixListTransform("p" + std::to_string(i)); })),
         Accepted(customer)},
        {"OneLongPrefixList",
         with(EnvelopedTransform() +
              PrefixListTransform(
                  Many(10000, [](std::size_t i) { return " p" + std::to_string(i); }))),
         Accepted(customer)},
        {"OnePrefixOften", with(EnvelopedTransform() + PrefixListTransform(Repeated(" p", 10000))),
         Accepted(customer)},
        {"TheLastOfThemUnknown", with(all + Transform("urn:x")),
         RefusedSignatureSyntax("Unsupported transformation algorithm: urn:x")},
    });
}

/// A reference that leaves nothing out, so that what stands in the signature is canonicalized
/// before any key is asked for.
std::string WithDigestedMarkup(const std::string& declaration, const std::string& markup) {
    HandMadeSignature signature;
    signature.sign = SigningWith("attacker");
    signature.furtherReferences = Reference("", ExclusiveTransform(), "AAAA");
    signature.keyInfo = KeyInfo("<ds:X509Data" + declaration + ">" + markup + "</ds:X509Data>");
    return TokenWith(signature);
}

// Exclusive canonicalization declares an inherited namespace anew on each sibling that uses it.
TEST(RepeatedNamespaces, AreRefusedOutOfProportion) {
    const std::string longUri(100000, 'u');
    const std::string declaration = " xmlns:p=\"" + longUri + "\"";
    const std::string refused = RefusedVerification(
        "Canonicalization would repeat namespace declarations out of proportion.");
    ExpectOutcomes({
        {"OnElements", WithDigestedMarkup(declaration, Repeated("<p:a/>", 1000)), refused},
        {"OnAttributes", WithDigestedMarkup(declaration, Repeated("<a p:a=\"\"/>", 1000)), refused},
        {"OfTheDefault",
         WithDigestedMarkup(
             "", "<a xmlns=\"" + longUri + "\"/>" + Repeated("<p:a xmlns:p=\"x\"/>", 1000)),
         RefusedAsTampered()},  // declared once, used once
        {"SwitchedToAndFro",
         WithDigestedMarkup(declaration, Repeated("<p:a xmlns:p=\"x\"><p:a/></p:a><p:a/>", 1000)),
         refused},
        {"WithinProportion", WithDigestedMarkup(declaration, Repeated("<p:a/>", 80)),
         RefusedAsTampered()},
    });
}

TEST(EntitiesAndDefaults, AreRefusedOutOfProportion) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto with = [&](const std::string& declarations, const std::string& markup) {
        HandMadeSignature signature;
        signature.keyInfo = KeyInfo(X509Data(X509Certificates({"leaf", "intermediate"}) + markup));
        return "<!DOCTYPE saml:Assertion [" + declarations + "]>" + TokenWith(signature, customer);
    };
    // The provider's own signature, and entities where nothing is signed: they must be inserted
    // after signing, since the signer knows no DTD.
    const auto later = [&](const std::string& declarations, const std::string& markup) {
        return Forge::Replaced(with(declarations, "<later/>"), "<later/>", markup);
    };
    std::string laughs = "<!ENTITY l0 'lol'>";
    for (int i = 1; i != 20; ++i)
        laughs += "<!ENTITY l" + std::to_string(i) + " '" +
                  Repeated("&l" + std::to_string(i - 1) + ";", 10) + "'>";
    const std::string breached = Refused<Xml::XMLParseException>(
        "limit on input amplification factor (from DTD and entities) breached");
    const std::string aborted = Refused<Xml::XMLParseException>("parsing aborted");
    const std::string large = "<!ENTITY e '" + std::string(100000, 'x') + "'>";
    const std::string defaulted = "<!ATTLIST a x CDATA '" + std::string(10000, 'd') + "'>";
    ExpectOutcomes({
        {"ABillionLaughs", later(laughs, "&l19;"), breached},
        {"ABillionLaughsInAnAttribute", later(laughs, "<a x=\"&l19;\"/>"), breached},
        {"OneLargeEntityOften", later(large, Repeated("&e;", 10000)), breached},
        {"OneLargeEntitySeldom", later(large, Repeated("&e;", 10)), Accepted(customer)},
        {"LongDefaultsOften", with(defaulted, Repeated("<a/>", 2000)), aborted},
        {"LongDefaultsSeldom", with(defaulted, Repeated("<a/>", 100)), Accepted(customer)},
        {"EntitiesOfEachOther", later("<!ENTITY e '&f;'><!ENTITY f '&e;'>", "&e;"),
         Refused<Xml::XMLParseException>("recursive entity reference")},
    });
}

TEST(HugeBase64, IsReadAndCompared) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const std::string huge(1000000, 'A');
    const std::string blanks(1000000, ' ');
    const auto sending = [&](const std::string& signer, const std::string& text) {
        HandMadeSignature signature;
        signature.sign = SigningWith(signer);
        signature.keyInfo = KeyInfo(X509Data(text));
        return TokenWith(signature, customer);
    };
    const auto certificate = [](const std::string& text) {
        return "<ds:X509Certificate>" + text + "</ds:X509Certificate>";
    };
    const auto written = [&](const std::function<std::string(std::string)>& signatureText,
                             const std::function<std::string(std::string)>& digestText) {
        HandMadeSignature signature;
        signature.signatureText = signatureText;
        signature.digestText = digestText;
        return TokenWith(signature, customer);
    };
    const std::string genuine = X509Certificates({"leaf", "intermediate"});
    ExpectOutcomes({
        {"AsTheCertificate", sending("attacker", certificate(huge)), RefusedAsTampered()},
        {"BehindTheCertificates", sending("leaf", genuine + certificate(huge)), Accepted(customer)},
        {"AsTheSignature", written([&](const auto&) { return huge; }, Base64Text),
         RefusedAsTampered()},
        {"AsTheDigest", written(Base64Text, [&](const auto&) { return huge; }),
         RefusedAsTampered()},
        {"BlanksAroundTheSignature",
         written([&](const auto& s) { return blanks + Base64Text(s) + blanks; }, Base64Text),
         Accepted(customer)},
        {"BlanksAroundTheDigest",
         written(Base64Text, [&](const auto& d) { return blanks + Base64Text(d) + blanks; }),
         Accepted(customer)},
        {"EndingInNoGroup", sending("attacker", certificate(huge + "A")),
         RefusedSignatureSyntax("Malformed base64 data")},
    });
}

TEST(ManyChildren, OfKeyInformationMeanNothing) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const std::string certificates = X509Certificates({"leaf", "intermediate"});
    const auto with = [&](const std::string& content) {
        HandMadeSignature signature;
        signature.keyInfo = KeyInfo(content);
        return TokenWith(signature, customer);
    };
    ExpectOutcomes({
        {"Strangers",
         with(X509Data(Repeated("<a/>", 10000) + certificates + Repeated("<b/>", 10000))),
         Accepted(customer)},
        {"Comments", with(X509Data(Repeated("<!---->", 10000) + certificates)), Accepted(customer)},
        {"Texts", with(X509Data(Repeated("x<!---->", 10000) + certificates)), Accepted(customer)},
        {"CommentsBeforeTheData", with(Repeated("<!---->", 10000) + X509Data(certificates)),
         Accepted(customer)},
        {"MoreData", with(Repeated(X509Data(certificates), 500)),
         RefusedSignatureSyntax("Unexpected extra element(s) after <X509Data>")},
        {"UnboundPrefixes", with(X509Data(Repeated("<u:X509Certificate/>", 10000) + certificates)),
         Accepted(customer)},
    });
}

}  // namespace
}  // namespace Saml::Attacks
