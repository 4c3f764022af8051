#include "saml/security/signature_context.h"

#include "support/canonical_forms.h"
#include "support/system_policy.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

std::string Hex(const std::vector<unsigned char>& bytes) {
    std::string hex;
    for (const unsigned char byte : bytes) {
        hex += "0123456789abcdef"[byte >> 4];
        hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
}

const unsigned char* Bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

TEST(SignatureContext, KeepsThePrefixOfWhatItCreates) {
    SignatureContext context("ds");
    EXPECT_EQ(context.GetNamespacePrefix(), "ds");
    EXPECT_EQ(context.CreateElement("Reference")->GetQualifiedName(), "ds:Reference");
    context.SetNamespacePrefix("");
    EXPECT_EQ(context.GetNamespacePrefix(), "");
    EXPECT_EQ(context.CreateElement("Reference")->GetQualifiedName(), "Reference");
}

struct DigestCase {
    const char* name;
    const char* identifier;
    const char* digestOfAbc;
};
class KnownDigest : public testing::TestWithParam<DigestCase> {};

TEST_P(KnownDigest, IsTheOneOfItsIdentifier) {
    std::vector<unsigned char> digest;
    SignatureContext("")
        .CreateHashAlgorithm(GetParam().identifier)
        ->Digest(Bytes("abc"), 3, digest);
    EXPECT_EQ(Hex(digest), GetParam().digestOfAbc);
}

// FIPS 180-4's own examples of the digests of "abc".
constexpr char kSha1OfAbc[] = "a9993e364706816aba3e25717850c26c9cd0d89d";
constexpr char kSha256OfAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
constexpr char kSha384OfAbc[] =
    "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed"
    "8086072ba1e7cc2358baeca134c825a7";
constexpr char kSha512OfAbc[] =
    "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
    "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f";

INSTANTIATE_TEST_SUITE_P(
    SignatureContext, KnownDigest,
    testing::Values(DigestCase{"Sha1", "http://www.w3.org/2000/09/xmldsig#sha1", kSha1OfAbc},
                    DigestCase{"Sha256", "http://www.w3.org/2001/04/xmlenc#sha256", kSha256OfAbc},
                    DigestCase{"Sha384", "http://www.w3.org/2001/04/xmlenc#sha384", kSha384OfAbc},
                    DigestCase{"Sha512", "http://www.w3.org/2001/04/xmlenc#sha512", kSha512OfAbc},
                    DigestCase{"Sha384OfRfc4051", "http://www.w3.org/2001/04/xmldsig-more#sha384",
                               kSha384OfAbc},
                    DigestCase{"Sha384OfTheSignatureNamespace",
                               "http://www.w3.org/2000/09/xmldsig#sha384", kSha384OfAbc}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SignatureContext, RefusesUnknownDigests) {
    const SignatureContext context("");
    for (const std::string identifier :
         {"", "http://www.w3.org/2001/04/xmldsig-more#md5",
          "http://www.w3.org/2000/09/xmldsig#SHA1", "http://www.w3.org/2001/04/xmldsig-more#sha224",
          "http://www.w3.org/2001/04/xmlenc#sha1", "http://www.w3.org/2000/09/xmldsig#sha256",
          "http://www.w3.org/2001/04/xmlenc#sha256 ", "http://www.w3.org/2001/04/xmlenc#sha25",
          "http://www.w3.org/2001/04/xmlenc#ripemd160",
          "http://www.w3.org/2000/09/xmldsig#rsa-sha1", "sha1", "%1%"})
        EXPECT_EQ(MessageOf<UnsupportedHashAlgorithmException>(
                      [&] { context.CreateHashAlgorithm(identifier); }),
                  "The following hash algorithm is unsupported: " + identifier);
}

struct SignatureCase {
    const char* name;
    const char* identifier;
    const char* digest;  ///< As the openssl command line calls it.
};
class KnownSignatureMethod : public testing::TestWithParam<SignatureCase> {
  protected:
    const std::string data_ = "what is signed";
    const TestKeys::Key& key_ = TestKeys::KeyNamed("root");
    const std::string dataPath_ = TestKeys::PathOf("signed-data");
    const std::string signaturePath_ = TestKeys::PathOf("signature");

    void SetUp() override { TestKeys::WriteFile(dataPath_, data_); }
    std::string Digest() const { return std::string("dgst -") + GetParam().digest; }
    bool IsSha1() const { return GetParam().digest == std::string("sha1"); }
};

TEST_P(KnownSignatureMethod, SignsAsOpensslVerifies) {
    if (IsSha1()) SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    std::vector<unsigned char> signature;
    SignatureContext("")
        .CreateSignAlgorithm(GetParam().identifier, key_.privateKey)
        ->Sign(Bytes(data_), data_.size(), signature);
    TestKeys::WriteFile(signaturePath_, std::string(signature.begin(), signature.end()));
    EXPECT_EQ(TestKeys::OpenSsl(Digest() + " -prverify \"" + key_.pemPath + "\" -signature \"" +
                                signaturePath_ + "\" \"" + dataPath_ + "\""),
              "Verified OK\n");
}

TEST_P(KnownSignatureMethod, VerifiesWhatOpensslSigned) {
    if (IsSha1()) SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    const std::string made =
        TestKeys::OpenSsl(Digest() + " -sign \"" + key_.pemPath + "\" \"" + dataPath_ + "\"");
    const auto verifier =
        SignatureContext("").CreateVerifyAlgorithm(GetParam().identifier, key_.publicKey);
    std::vector<unsigned char> signature(made.begin(), made.end());
    EXPECT_TRUE(verifier->Verify(Bytes(data_), data_.size(), signature));
    EXPECT_FALSE(verifier->Verify(Bytes(data_), data_.size() - 1, signature));
    signature.back() ^= 1;
    EXPECT_FALSE(verifier->Verify(Bytes(data_), data_.size(), signature));
}

INSTANTIATE_TEST_SUITE_P(
    SignatureContext, KnownSignatureMethod,
    testing::Values(
        SignatureCase{"RsaSha1", "http://www.w3.org/2000/09/xmldsig#rsa-sha1", "sha1"},
        SignatureCase{"RsaSha256", "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256", "sha256"},
        SignatureCase{"RsaSha384", "http://www.w3.org/2001/04/xmldsig-more#rsa-sha384", "sha384"},
        SignatureCase{"RsaSha512", "http://www.w3.org/2001/04/xmldsig-more#rsa-sha512", "sha512"}),
    [](const auto& row) { return std::string(row.param.name); });

// The identifier is judged first, when the object is made; the key when it is used.
TEST(SignatureContext, RefusesUnknownSignatureMethods) {
    const SignatureContext context("");
    for (const std::string identifier :
         {"", "http://www.w3.org/2001/04/xmldsig-more#rsa-md5",
          "http://www.w3.org/2001/04/xmldsig-more#rsa-sha224",
          "http://www.w3.org/2001/04/xmldsig-more#rsa-sha1",
          "http://www.w3.org/2000/09/xmldsig#rsa-sha256",
          "http://www.w3.org/2000/09/xmldsig#dsa-sha1",
          "http://www.w3.org/2000/09/xmldsig#hmac-sha1",
          "http://www.w3.org/2001/04/xmldsig-more#ecdsa-sha256",
          "http://www.w3.org/2007/05/xmldsig-more#sha256-rsa-MGF1",
          "http://www.w3.org/2001/04/xmldsig-more#RSA-SHA256", "%1%"}) {
        EXPECT_EQ(MessageOf<UnsupportedSignAlgorithmException>(
                      [&] { context.CreateSignAlgorithm(identifier, nullptr); }),
                  "The signature algorithm is not supported: " + identifier);
        EXPECT_EQ(MessageOf<UnsupportedSignAlgorithmException>(
                      [&] { context.CreateVerifyAlgorithm(identifier, nullptr); }),
                  "The signature algorithm is not supported: " + identifier);
    }
}

/// The form of the element called `apex`.
std::string FormBy(const CanonicalizerInt& canonicalizer, const std::string& text) {
    const Held<Document> document = Parsed(text);
    return CanonicalForm(canonicalizer, ElementNamed(*document, "apex"), AcceptAllNodesFilter());
}

constexpr char kExclusive[] = "http://www.w3.org/2001/10/xml-exc-c14n#";
constexpr char kThreePrefixes[] = "<apex xmlns:a='urn:a' xmlns:b='urn:b' xmlns:c='urn:c'/>";

TEST(SignatureContext, KnowsExclusiveCanonicalization) {
    EXPECT_EQ(FormBy(*SignatureContext("").CreateCanonicalizer(kExclusive), kThreePrefixes),
              "<apex></apex>");
}

TEST(SignatureContext, SplitsAPrefixListAtRunsOfBlanks) {
    const SignatureContext context("");
    const auto formWith = [&context](const std::string& prefixList) {
        return FormBy(*context.CreateCanonicalizer(kExclusive, prefixList), kThreePrefixes);
    };
    EXPECT_EQ(formWith("b"), "<apex xmlns:b=\"urn:b\"></apex>");
    EXPECT_EQ(formWith("c a"), "<apex xmlns:a=\"urn:a\" xmlns:c=\"urn:c\"></apex>");
    EXPECT_EQ(formWith(" \t\r\n c \t\n\r a\n"),
              "<apex xmlns:a=\"urn:a\" xmlns:c=\"urn:c\"></apex>");
    EXPECT_EQ(formWith("a,b"), "<apex></apex>");
    EXPECT_EQ(formWith("ab"), "<apex></apex>");
    EXPECT_EQ(formWith("a b c d"),
              "<apex xmlns:a=\"urn:a\" xmlns:b=\"urn:b\" xmlns:c=\"urn:c\"></apex>");
    for (const char* const blank : {"", " ", "\t\r\n "})
        EXPECT_EQ(formWith(blank), "<apex></apex>");
}

TEST(SignatureContext, KnowsNoOtherCanonicalization) {
    const SignatureContext context("");
    for (const std::string identifier :
         {"", "http://www.w3.org/TR/2001/REC-xml-c14n-20010315",
          "http://www.w3.org/TR/2001/REC-xml-c14n-20010315#",
          "http://www.w3.org/2001/10/xml-exc-c14n", "http://www.w3.org/2001/10/xml-exc-c14n# ",
          "http://www.w3.org/2001/10/xml-exc-c14n#WithComments", "%1%"}) {
        EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>(
                      [&] { context.CreateCanonicalizer(identifier); }),
                  "The following canonicalization method is unsupported: " + identifier);
        EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>(
                      [&] { context.CreateCanonicalizer(identifier, "a b"); }),
                  "The following canonicalization method is unsupported: " + identifier +
                      " with parameter: a b");
        EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>(
                      [&] { context.CreateCanonicalizer(identifier, ""); }),
                  "The following canonicalization method is unsupported: " + identifier +
                      " with parameter: ");
    }
}

// Callers and signatures do not know the same methods.
TEST(SignatureContext, DoesNotKnowTheInclusiveFormThatCallersKnow) {
    const std::string inclusive = "http://www.w3.org/TR/2001/REC-xml-c14n-20010315#";
    boost::intrusive_ptr<Canonicalizer> exported;
    CreateCanonicalizer(inclusive, exported);
    EXPECT_NE(exported, nullptr);
    EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>(
                  [&] { SignatureContext("").CreateCanonicalizer(inclusive); }),
              "The following canonicalization method is unsupported: " + inclusive);
}

TEST(SignatureContext, GivesANewResolverAtEachCall) {
    const SignatureContext context("");
    const auto first = context.GetURIResolver();
    const auto second = context.GetURIResolver();
    EXPECT_NE(first, second);
    EXPECT_EQ(first.use_count(), 1);

    const Held<Document> document = Parsed("<r><x ID='a'/></r>");
    boost::intrusive_ptr<ElementNodeImpl> found;
    first->Resolve(&dynamic_cast<NodeImpl&>(*document->GetRootElement()), "#a", found);
    EXPECT_EQ(found.get(), &ElementNamed(*document, "x"));
}

}  // namespace
}  // namespace Saml::Xml::Security
