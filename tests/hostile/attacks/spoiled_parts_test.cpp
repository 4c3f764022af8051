// The functions below the token, each given a good text with every bit of it flipped and with every
// end of it cut off.
#include "hostile/attacks/spoiled_text.h"
#include "support/signed_texts.h"
#include "support/test_keys.h"

#include <boost/core/demangle.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <set>

namespace Saml::Xml::Security {
namespace {

using Attacks::ClassOf;
using Attacks::ContentOf;
using Attacks::Extent;
using Attacks::Tally;

/// Every text that differs from `text` in one bit, and every beginning of it.
void ForEachSpoiled(const std::string& text,
                    const std::function<void(const std::string& spoiled, std::size_t place)>& use) {
    for (std::size_t place = 0; place != text.size(); ++place) {
        for (unsigned bit = 0; bit != 8; ++bit)
            use(Attacks::WithBitFlipped(text, place, bit), place);
        use(text.substr(0, place), text.size());
    }
}

/// What `action` says, or the class and message of what it throws.
std::string OutcomeOf(const std::function<std::string()>& action) {
    try {
        return action();
    } catch (const std::exception& refusal) {
        return boost::core::demangle(typeid(refusal).name()) + ": " + refusal.what();
    }
}

TEST(SpoiledSignatures, DoNotVerify) {
    // Without a second declaration of the prefix, which would mean nothing.
    const std::string text = Replaced(
        SignedText(Signed(GoodRoot())),
        "<ds:SignedInfo xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\">", "<ds:SignedInfo>");
    const Extent value = ContentOf(text, "ds:SignatureValue");
    const std::set<std::string> documented = {
        "false",
        "Saml::Xml::XMLParseException",
        "Saml::Xml::Security::SignatureSyntaxException",
        "Saml::Xml::Security::MissingReferentException",
        "Saml::Xml::Security::UnsupportedCanonicalizationException",
        "Saml::Xml::Security::UnsupportedHashAlgorithmException",
        "Saml::Xml::Security::UnsupportedSignAlgorithmException",
    };
    ASSERT_TRUE(Verifies(text));
    Tally tally;
    ForEachSpoiled(text, [&](const std::string& spoiled, std::size_t place) {
        const std::string outcome = OutcomeOf([&] { return Verifies(spoiled) ? "true" : "false"; });
        tally.Add(ClassOf(outcome));
        const bool isMeaningless =
            place != text.size() && Attacks::IsUnusedBase64(text, value, place, spoiled);
        if (isMeaningless)
            EXPECT_EQ(outcome, "true") << spoiled;
        else
            EXPECT_EQ(documented.count(ClassOf(outcome)), 1u) << outcome << "\n" << spoiled;
    });
    tally.Report();
    EXPECT_GT(tally.Of("false"), 0u);
}

/// What of a PEM text stands between its first and its last line.
std::string Body(const std::string& pem) {
    const std::size_t begin = pem.find('\n') + 1;
    return pem.substr(begin, pem.rfind("-----END") - begin);
}
bool HasTheSameBorders(const std::string& left, const std::string& right) {
    const std::size_t first = left.find('\n') + 1;
    const std::size_t last = left.size() - left.rfind("-----END");
    return left.size() == right.size() && left.substr(0, first) == right.substr(0, first) &&
           left.substr(left.size() - last) == right.substr(right.size() - last);
}
std::vector<unsigned char> BodyBytes(const std::string& pem) {
    std::string error;
    return Base64::Decode(Body(pem), error);
}

/// Reads spoiled forms of `pem`. What is no refusal with `refusal` must be another reading, and the
/// same as before wherever borders and bytes are the same.
template <class Read>
void ExpectRefusedOrRead(const std::string& pem, const std::string& refusal, const Read& read) {
    ByteBlob whole;
    read(pem, whole);
    Tally tally;
    ForEachSpoiled(pem, [&](const std::string& spoiled, std::size_t place) {
        const ByteBlob before = TestKeys::ToBlob("before");
        ByteBlob result = before;
        const std::string outcome = OutcomeOf([&] {
            read(spoiled, result);
            return *result == *whole ? "the same" : "another";
        });
        tally.Add(outcome);
        if (outcome == refusal) {
            EXPECT_EQ(result, before) << "a refusal changes nothing";
            return;
        }
        EXPECT_TRUE(outcome == "the same" || outcome == "another") << outcome;
        const bool saysTheSame = place != pem.size() && HasTheSameBorders(pem, spoiled) &&
                                 BodyBytes(spoiled) == BodyBytes(pem);
        EXPECT_TRUE(outcome == "the same" || !saysTheSame) << spoiled;
    });
    tally.Report();
    EXPECT_GT(tally.Of(refusal), 0u);
    EXPECT_GT(tally.Of("another"), 0u);  // nothing in a key or certificate guards its own bytes
}

TEST(SpoiledPem, OfACertificateIsRefusedOrAnother) {
    ExpectRefusedOrRead(
        TestKeys::CertificateNamed("leaf").pem,
        "Saml::InvalidArgumentException: Wrong or unsupported X.509 Certificate format",
        CertificatePEMToBlob);
}

TEST(SpoiledPem, OfAPublicKeyIsRefusedOrAnother) {
    ExpectRefusedOrRead(TestKeys::KeyNamed("leaf").publicPem,
                        "Saml::Xml::Security::CryptoException: Crypto Exception: Invalid or "
                        "unsupported public key",
                        PublicKeyPEMToBlob);
}

TEST(SpoiledPem, OfAPrivateKeyIsRefusedOrAnother) {
    ExpectRefusedOrRead(TestKeys::KeyNamed("leaf").pem,
                        "Saml::Xml::Security::CryptoException: Crypto Exception: Invalid or "
                        "unsupported private key",
                        PrivateKeyPEMToBlob);
}

// No byte of a certificate is trusted before its signature is: a spoiled one may hold another key.
TEST(SpoiledDer, OfACertificateGivesAKeyOrARefusal) {
    const ByteBlob der = TestKeys::CertificateNamed("leaf").der;
    const std::set<std::string> outcomes = {
        "the same",
        "another",
        "Saml::InvalidArgumentException: Invalid X.509 Certificate",
        "Saml::InvalidArgumentException: Invalid x509 certificate",
        "Saml::Xml::Security::CryptoException: Crypto Exception: Invalid or unsupported public key",
    };
    const ByteBlob key = ExtractCertPubKey(der);
    Tally tally;
    ForEachSpoiled({der->begin(), der->end()}, [&](const std::string& spoiled, std::size_t) {
        const std::string outcome = OutcomeOf([&] {
            return *ExtractCertPubKey(TestKeys::ToBlob(spoiled)) == *key ? "the same" : "another";
        });
        tally.Add(outcome);
        EXPECT_EQ(outcomes.count(outcome), 1u) << outcome;
    });
    tally.Report();
    EXPECT_GT(tally.Of("another"), 0u);
}

/// Something of everything that the parser knows.
constexpr char kRichText[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE r [<!ENTITY e \"entity\"><!ATTLIST a d CDATA \"default\">]>\n"
    "<!-- before -->\n"
    "<r xmlns=\"urn:r\" xmlns:p=\"urn:p\" p:x='1' y=\"&lt;&#65;&quot;\">text &e; &amp; "
    "<a/><p:b><![CDATA[section <]]></p:b><!-- inside --> \xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E"
    "</r>\n<?p after?>\n";

std::string Rewritten(const std::string& text) {
    const Held<Document> document = Parsed(text);
    StringWriter out;
    document->GetRootElement()->Write(out);
    return out.data;
}

// What is still a document is read and written like one: writing it again makes no difference.
TEST(SpoiledDocuments, AreRefusedOrRead) {
    const std::string once = Rewritten(kRichText);
    ASSERT_EQ(Rewritten(once), once);
    Tally tally;
    ForEachSpoiled(kRichText, [&](const std::string& spoiled, std::size_t) {
        std::string written;
        const std::string outcome = OutcomeOf([&] {
            written = Rewritten(spoiled);
            return "read";
        });
        tally.Add(ClassOf(outcome));
        if (outcome == "read")
            EXPECT_EQ(Rewritten(written), written) << spoiled;
        else
            EXPECT_EQ(ClassOf(outcome), "Saml::Xml::XMLParseException") << outcome << "\n"
                                                                        << spoiled;
    });
    tally.Report();
    EXPECT_GT(tally.Of("read"), 0u);
    EXPECT_GT(tally.Of("Saml::Xml::XMLParseException"), 0u);
}

}  // namespace
}  // namespace Saml::Xml::Security
