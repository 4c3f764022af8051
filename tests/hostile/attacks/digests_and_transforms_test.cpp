// What is digested, how, and how much of the digest counts: all of it stands in a place that the
// attacker writes. xmldsig-core 4.4.1, 4.4.3 and 6.
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/refusals.h"

#include <gtest/gtest.h>

#include <functional>

namespace Saml::Attacks {
namespace {

using namespace std::string_literals;
using namespace Xml::Security::Algorithm;

std::string RefusedDigest(const std::string& algorithm) {
    return RefusedVerification("The following hash algorithm is unsupported: " + algorithm);
}
std::string RefusedCanonicalization(const std::string& algorithm) {
    return RefusedVerification("The following canonicalization method is unsupported: " +
                               algorithm);
}
std::string RefusedTransform(const std::string& algorithm) {
    return RefusedSignatureSyntax("Unsupported transformation algorithm: " + algorithm);
}

Attack WithDigestMethod(const std::string& name, const std::string& algorithm,
                        const std::string& digest = "SHA256") {
    HandMadeSignature signature;
    signature.digestMethod = Method("DigestMethod", algorithm);
    signature.digest = digest;
    return {name, TokenWith(signature), RefusedDigest(algorithm)};
}

TEST(DigestMethods, ThatAreWeakOrUnknownAreRefused) {
    const std::string good = Sha256;
    ExpectOutcomes({
        WithDigestMethod("Empty", ""),
        WithDigestMethod("None", "none"),
        WithDigestMethod("Md5", "http://www.w3.org/2001/04/xmldsig-more#md5", "MD5"),
        WithDigestMethod("Sha224", "http://www.w3.org/2001/04/xmldsig-more#sha224", "SHA224"),
        WithDigestMethod("Ripemd160", "http://www.w3.org/2001/04/xmlenc#ripemd160"),
        WithDigestMethod("ASignatureMethod", RsaSha256),
        WithDigestMethod("Hmac", "http://www.w3.org/2001/04/xmldsig-more#hmac-sha256"),
        WithDigestMethod("Https", "https" + good.substr(4)),
        WithDigestMethod("LeadingBlank", " " + good),
        WithDigestMethod("TrailingBlank", good + " "),
        WithDigestMethod("TrailingSlash", good + "/"),
        WithDigestMethod("InCapitals", Forge::Replaced(good, "sha256", "SHA256")),
        WithDigestMethod("CyrillicLetter", Forge::Replaced(good, "sha256",
                                                           "sh\xD0\xB0"
                                                           "256")),
        WithDigestMethod("Sha256InTheFirstNamespace", "http://www.w3.org/2000/09/xmldsig#sha256"),
        WithDigestMethod("Sha1InTheSecondNamespace", "http://www.w3.org/2001/04/xmlenc#sha1",
                         "SHA1"),
    });
}

// SHA-1 is part of the contract: signers use it. A second preimage of a digest is out of reach; who
// can have colliding texts signed writes them before the provider does.
TEST(DigestMethods, AcceptExactlyTheListedOnes) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const std::pair<const char*, const char*> methods[] = {
        {Sha1, "SHA1"},
        {Sha256, "SHA256"},
        {Sha384, "SHA384"},
        {Sha512, "SHA512"},
        {Sha384Rfc4051, "SHA384"},
        {"http://www.w3.org/2000/09/xmldsig#sha384", "SHA384"},
    };
    std::vector<Attack> attacks;
    for (const auto& [method, right] : methods)
        for (const char* const real : {"SHA1", "SHA224", "SHA256", "SHA384", "SHA512", "MD5"}) {
            HandMadeSignature signature;
            signature.digestMethod = Method("DigestMethod", method);
            signature.digest = real;
            attacks.push_back(
                {"Named "s + method + " made with " + real, TokenWith(signature, customer),
                 right == std::string(real) ? Accepted(customer) : RefusedAsTampered()});
        }
    ExpectOutcomes(attacks);
}

TEST(DigestValues, CountToTheirLastByte) {
    const auto written = [](const std::function<std::string(const std::string&)>& text) {
        HandMadeSignature signature;
        signature.digestText = text;
        return TokenWith(signature);
    };
    const auto bytes = [&](const std::function<std::string(std::string)>& change) {
        return written([&](const std::string& digest) { return Base64Text(change(digest)); });
    };
    const std::string notText = RefusedSignatureSyntax(
        "Element 'DigestValue' must only have textual content (but has extra "
        "children or is empty).");
    ExpectOutcomes({
        {"Empty", written([](const auto&) { return ""s; }), notText},
        {"Blank", written([](const auto&) { return " \t\n "s; }), notText},
        {"PaddingAlone", written([](const auto&) { return "===="s; }), RefusedAsTampered()},
        {"OneByte", bytes([](const std::string& d) { return d.substr(0, 1); }),
         RefusedAsTampered()},
        {"OneByteShort", bytes([](const std::string& d) { return d.substr(0, 31); }),
         RefusedAsTampered()},
        {"WithoutItsFirstByte", bytes([](const std::string& d) { return d.substr(1); }),
         RefusedAsTampered()},
        {"OneByteLonger", bytes([](const std::string& d) { return d + "\0"s; }),
         RefusedAsTampered()},
        {"Twice", bytes([](const std::string& d) { return d + d; }), RefusedAsTampered()},
        {"ZeroInFront", bytes([](const std::string& d) { return "\0"s + d; }), RefusedAsTampered()},
        {"AllZeros", bytes([](const auto&) { return std::string(32, '\0'); }), RefusedAsTampered()},
        {"OneBitOff", bytes([](std::string d) {
             d.back() = static_cast<char>(d.back() ^ 1);
             return d;
         }),
         RefusedAsTampered()},
        {"DigestOfNothing", bytes([](const auto&) { return DigestOf("SHA256", ""); }),
         RefusedAsTampered()},
        {"Hexadecimal", written([](const std::string& d) {
             std::string hex;
             for (const char c : d) {
                 hex += "0123456789abcdef"[(c >> 4) & 15];
                 hex += "0123456789abcdef"[c & 15];
             }
             return hex;
         }),
         RefusedAsTampered()},
        {"NoBase64", written([](const auto&) { return "?"s; }), RefusedAsTampered()},
        {"WithoutItsPadding",
         written([](const std::string& d) { return Base64Text(d).substr(0, 43); }),
         RefusedAsTampered()},
        {"TextBehindThePadding",
         written([](const std::string& d) { return Base64Text(d) + "AAAA"; }), RefusedAsTampered()},
        {"AnElementInside",
         written([](const std::string& d) { return Base64Text(d) + "<ds:DigestValue/>"; }),
         notText},
        {"SectionAlone",
         written([](const std::string& d) { return "<![CDATA[" + Base64Text(d) + "]]>"; }),
         notText},
    });
}

TEST(CanonicalizationMethods, OtherThanTheExclusiveOneAreRefused) {
    const std::string good = ExclusiveC14N;
    const auto with = [](const std::string& name, const std::string& algorithm) {
        HandMadeSignature signature;
        signature.canonicalizationMethod = Method("CanonicalizationMethod", algorithm);
        return Attack{name, TokenWith(signature), RefusedCanonicalization(algorithm)};
    };
    ExpectOutcomes({
        with("Empty", ""),
        with("None", "none"),
        with("Inclusive", "http://www.w3.org/TR/2001/REC-xml-c14n-20010315"),
        with("InclusiveAsTheCanonicalizerKnowsIt", InclusiveC14N),
        with("InclusiveWithComments",
             "http://www.w3.org/TR/2001/REC-xml-c14n-20010315#WithComments"),
        with("Inclusive11", "http://www.w3.org/2006/12/xml-c14n11"),
        with("Canonical20", "http://www.w3.org/2010/xml-c14n2"),
        with("ExclusiveWithComments", good + "WithComments"),
        with("ExclusiveWithoutItsMark", good.substr(0, good.size() - 1)),
        with("Https", "https" + good.substr(4)),
        with("LeadingBlank", " " + good),
        with("TrailingBlank", good + " "),
        with("InCapitals", "http://www.w3.org/2001/10/XML-EXC-C14N#"),
        with("Minimal", "http://www.w3.org/2000/09/xmldsig#minimal"),
    });
}

TEST(CanonicalizationMethods, TakeNoParameter) {
    HandMadeSignature signature;
    signature.canonicalizationMethod =
        Method("CanonicalizationMethod", ExclusiveC14N,
               "<c:InclusiveNamespaces xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
               "PrefixList=\"saml\"/>");
    ExpectOutcomes(
        {{"PrefixList", TokenWith(signature),
          RefusedSignatureSyntax("Element 'CanonicalizationMethod' may not have children")}});
}

Attack WithTransforms(const std::string& name, const std::string& transforms,
                      const std::string& outcome) {
    HandMadeSignature signature;
    signature.transforms = transforms;
    return {name, TokenWith(signature), outcome};
}

// A transform may run programs (XSLT), read files or leave out whatever it likes; "On Breaking
// SAML" and CVE-2022-34169 tell what comes of that. Even the identity is not accepted.
TEST(TransformsOfReferences, ThatComputeAreRefused) {
    const auto with = [](const std::string& name, const std::string& algorithm,
                         const std::string& content = {}) {
        return WithTransforms(
            name,
            Transforms(EnvelopedTransform() + Transform(algorithm, content) + ExclusiveTransform()),
            RefusedTransform(algorithm));
    };
    ExpectOutcomes({
        with("Xslt", "http://www.w3.org/TR/1999/REC-xslt-19991116",
             "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
             "<xsl:template match=\"/\"><xsl:value-of select=\"document('file:///etc/passwd')\"/>"
             "</xsl:template></xsl:stylesheet>"),
        with("XPath", "http://www.w3.org/TR/1999/REC-xpath-19991116",
             "<ds:XPath>not(ancestor-or-self::*[local-name()='Subject'])</ds:XPath>"),
        with("XPathFilter2", "http://www.w3.org/2002/06/xmldsig-filter2",
             "<f:XPath xmlns:f=\"http://www.w3.org/2002/06/xmldsig-filter2\" "
             "Filter=\"subtract\">/*</f:XPath>"),
        with("XPointer", "http://www.w3.org/TR/2001/WD-xptr-20010108"),
        with("Base64", "http://www.w3.org/2000/09/xmldsig#base64"),
        with("Decryption", "http://www.w3.org/2002/07/decrypt#XML"),
        with("Inclusive", "http://www.w3.org/TR/2001/REC-xml-c14n-20010315"),
        with("InclusiveWithComments",
             "http://www.w3.org/TR/2001/REC-xml-c14n-20010315#WithComments"),
        with("ExclusiveWithComments", "http://www.w3.org/2001/10/xml-exc-c14n#WithComments"),
        with("SecurityTokenReference",
             "http://docs.oasis-open.org/wss/2004/01/"
             "oasis-200401-wss-soap-message-security-1.0#STR-Transform"),
        with("Empty", ""),
        with("Unknown", "urn:identity"),
        with("EnvelopedInCapitals", "http://www.w3.org/2000/09/xmldsig#Enveloped-Signature"),
        with("EnvelopedWithBlank", "http://www.w3.org/2000/09/xmldsig#enveloped-signature "),
    });
}

// Enveloped and exclusive are the only two, the first always applied first; more of the same says
// nothing new. Whatever else stands in a transform is signed and means nothing.
TEST(TransformsOfReferences, MayBeRepeatedAndReordered) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto with = [&](const std::string& name, const std::string& transforms) {
        HandMadeSignature signature;
        signature.transforms = transforms;
        return Attack{name, TokenWith(signature, customer), Accepted(customer)};
    };
    ExpectOutcomes({
        with("Swapped", Transforms(ExclusiveTransform() + EnvelopedTransform())),
        with("EnvelopedTwice",
             Transforms(EnvelopedTransform() + EnvelopedTransform() + ExclusiveTransform())),
        with("ExclusiveTwice",
             Transforms(EnvelopedTransform() + ExclusiveTransform() + ExclusiveTransform())),
        with("ContentOfNoMeaning",
             Transforms(Transform("http://www.w3.org/2000/09/xmldsig#enveloped-signature",
                                  "<ds:XPath>false()</ds:XPath>") +
                        Transform(ExclusiveC14N, "<ds:XPath>false()</ds:XPath>"))),
    });
}

TEST(TransformsOfReferences, MustBeBoth) {
    const std::string good = Transforms(EnvelopedTransform() + ExclusiveTransform());
    ExpectOutcomes({
        // Nothing is left out: the digest would have to be that of a text with itself in it.
        WithTransforms("OnlyExclusive", Transforms(ExclusiveTransform()), RefusedAsTampered()),
        WithTransforms("OnlyEnveloped", Transforms(EnvelopedTransform()),
                       RefusedCanonicalization("")),
        WithTransforms("NoTransform", Transforms(""), RefusedCanonicalization("")),
        WithTransforms("NoTransforms", "", RefusedCanonicalization("")),
        WithTransforms("TransformsTwice", good + good,
                       RefusedSignatureSyntax("Expected element 'DigestMethod' not found.")),
        WithTransforms(
            "TransformOfAnotherNamespace", Transforms("<x:Transform xmlns:x=\"urn:x\"/>"),
            RefusedSignatureSyntax("Element 'Transform has unexpected namespace: 'urn:x'")),
        WithTransforms("TransformsOfAnotherNamespace", "<x:Transforms xmlns:x=\"urn:x\"/>",
                       RefusedSignatureSyntax("Expected element 'DigestMethod' not found.")),
        WithTransforms(
            "WithoutAlgorithm", Transforms("<ds:Transform/>"),
            RefusedSignatureSyntax("Node 'Transform is missing required attribute 'Algorithm'")),
        WithTransforms("TextAmongThem", Transforms("all" + EnvelopedTransform()),
                       RefusedSignatureSyntax("Expected element 'Transform' not found.")),
    });
}

TEST(PrefixLists, ThatTheSignerDidNotUseChangeTheDigest) {
    const auto with = [](const std::string& parameter) {
        return Transforms(EnvelopedTransform() + Transform(ExclusiveC14N, parameter));
    };
    const std::string open =
        "<c:InclusiveNamespaces xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\"";
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto accepted = [&](const std::string& name, const std::string& parameter) {
        HandMadeSignature signature;
        signature.transforms = with(parameter);
        return Attack{name, TokenWith(signature, customer), Accepted(customer)};
    };
    ExpectOutcomes({
        // The apex declares "xsi" and uses it only below.
        WithTransforms("OfAnotherPrefix", with(open + " PrefixList=\"xsi\"/>"),
                       RefusedAsTampered()),
        accepted("Empty", open + " PrefixList=\"\"/>"),
        accepted("OfUnboundPrefixes", open + " PrefixList=\"nobody #default\"/>"),
        accepted("OfAnotherNamespace",
                 "<c:InclusiveNamespaces xmlns:c=\"urn:c\" "
                 "PrefixList=\"xsi\"/>"),
        WithTransforms(
            "Missing", with(open + "/>"),
            RefusedSignatureSyntax("Element 'InclusiveNamespaces' must have at least one "
                                   "attribute: 'PrefixList'")),
    });
}

}  // namespace
}  // namespace Saml::Attacks
