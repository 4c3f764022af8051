#include "saml/security/signature_impl.h"
#include "saml/security/x509_key_info.h"
#include "support/failing_openssl.h"
#include "support/signed_texts.h"
#include "support/system_policy.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

struct MethodCase {
    const char* name;
    const char* digestMethod;
    const char* signatureMethod;
    const char* digestName;
};
class VerifiedMethod : public testing::TestWithParam<MethodCase> {};

TEST_P(VerifiedMethod, Holds) {
    const MethodCase& method = GetParam();
    if (std::string("sha1") == method.digestName) SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    const std::string signedInfo = SignedInfo(
        Reference({"", RootWithoutSignature(), true, "", method.digestMethod, method.digestName}),
        method.signatureMethod);
    const std::string value = HandSigned::SignatureValue(method.digestName, UsualKey(), signedInfo);
    EXPECT_TRUE(Verifies(SignedText(HandSigned::SignatureElement(signedInfo, value))));
}

INSTANTIATE_TEST_SUITE_P(
    SignatureVerification, VerifiedMethod,
    testing::Values(MethodCase{"Sha1", Algorithm::Sha1, Algorithm::RsaSha1, "sha1"},
                    MethodCase{"Sha256", Algorithm::Sha256, Algorithm::RsaSha256, "sha256"},
                    MethodCase{"Sha384", Algorithm::Sha384, Algorithm::RsaSha384, "sha384"},
                    MethodCase{"Sha384OfRfc4051", "http://www.w3.org/2001/04/xmldsig-more#sha384",
                               Algorithm::RsaSha384, "sha384"},
                    MethodCase{"Sha384OfTheSignatureNamespace",
                               "http://www.w3.org/2000/09/xmldsig#sha384", Algorithm::RsaSha384,
                               "sha384"},
                    MethodCase{"Sha512", Algorithm::Sha512, Algorithm::RsaSha512, "sha512"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SignatureVerification, HoldsForOneAndForSeveralReferences) {
    EXPECT_TRUE(Verifies(SignedText(Signed(GoodA()))));
    EXPECT_TRUE(Verifies(SignedText(Signed(GoodA() + GoodB() + GoodRoot()))));
    EXPECT_TRUE(Verifies(SignedText(Signed(Reference({"#r", RootWithoutSignature()})))));
}

TEST(SignatureVerification, HoldsAgainAndChangesNothing) {
    const Held<Document> document = Parsed(SignedText(Signed(GoodRoot())));
    const std::string before = Outline(*document);
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    const ResolverPtr resolver = OfferingTheSignersKey();
    EXPECT_TRUE(signature->Verify(resolver.get(), {}));
    EXPECT_TRUE(signature->Verify(resolver.get(), {}));
    EXPECT_EQ(resolver->asked, 2);
    EXPECT_EQ(Outline(*document), before);
    ExpectSoundLinks(*document);
}

TEST(SignatureVerification, SeesChangesOfTheDocument) {
    const Held<Document> document = Parsed(SignedText(Signed(GoodRoot())));
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    const ResolverPtr resolver = OfferingTheSignersKey();
    EXPECT_TRUE(signature->Verify(resolver.get(), {}));
    ElementNamed(*document, "b").SetAttribute("new", "");
    EXPECT_FALSE(signature->Verify(resolver.get(), {}));
    ElementNamed(*document, "b").RemoveAttribute("new");
    EXPECT_TRUE(signature->Verify(resolver.get(), {}));
    ElementNamed(*document, "b").SetAttribute("Id", "a");
    EXPECT_FALSE(signature->Verify(resolver.get(), {}));
}

TEST(SignatureVerification, RefusesNullAsResolverBeforeAnythingElse) {
    const Held<Document> document = Parsed(SignedText(Signed(Missing())));
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    EXPECT_NE(MessageOf<InvalidArgumentException>([&] { signature->Verify(nullptr, {}); }), "");
}

TEST(KeyResolution, GetsNoKeyInfoWhenThereIsNone) {
    const ResolverPtr resolver = OfferingTheSignersKey();
    EXPECT_TRUE(Verifies(SignedText(Signed(GoodA())), *resolver));
    EXPECT_EQ(resolver->asked, 1);
    EXPECT_TRUE(resolver->wasEmpty);
    EXPECT_EQ(resolver->lastKeyInfo, nullptr);
}

TEST(KeyResolution, GetsTheCertificatesOfTheSignature) {
    const ResolverPtr resolver = OfferingTheSignersKey();
    EXPECT_TRUE(Verifies(SignedText(Signed(GoodA(),
                                           "<ds:KeyInfo><ds:X509Data><ds:X509Certificate>b25l"
                                           "</ds:X509Certificate></ds:X509Data></ds:KeyInfo>")),
                         *resolver));
    const auto* const keyInfo = dynamic_cast<X509KeyInfo*>(resolver->lastKeyInfo.get());
    ASSERT_NE(keyInfo, nullptr);
    ASSERT_EQ(keyInfo->Certificates().size(), 1u);
    const std::vector<unsigned char> one = {'o', 'n', 'e'};
    EXPECT_EQ(*keyInfo->Certificates().front(), one);
}

TEST(KeyResolution, GetsKeyInfoWithoutCertificatesAsCertificatesToo) {
    for (const char* const keyInfo : {"<ds:KeyInfo/>", "<ds:KeyInfo><ds:X509Data/></ds:KeyInfo>"}) {
        const ResolverPtr resolver = OfferingTheSignersKey();
        EXPECT_TRUE(Verifies(SignedText(Signed(GoodA(), keyInfo)), *resolver));
        ASSERT_NE(resolver->lastKeyInfo, nullptr);
        EXPECT_TRUE(resolver->lastKeyInfo->IsX509());
    }
}

TEST(KeyResolution, NeedsAKey) {
    const std::string text = SignedText(Signed(GoodA()));
    EXPECT_EQ(MessageOf<SignatureVerificationException>([&] { Verifies(text, *Offering({})); }),
              "No verification key available.");
}

// Whoever trusts nobody learns so, whatever else is wrong behind the references.
TEST(KeyResolution, ComesBeforeTheSignatureValueIsLookedAt) {
    const std::string signedInfo = SignedInfo(GoodA(), "urn:signature", "urn:canonicalization");
    const std::string text = SignedText(HandSigned::SignatureElement(signedInfo, "?"));
    const ResolverPtr resolver = Offering({});
    EXPECT_EQ(MessageOf<SignatureVerificationException>([&] { Verifies(text, *resolver); }),
              "No verification key available.");
    EXPECT_EQ(resolver->asked, 1);
}

/// What a resolver throws is its own affair.
class ThrowingResolver final : public KeyInfoResolver {
  public:
    explicit ThrowingResolver(void (*failure)()) : failure_(failure) {}
    void Resolve(KeyInfo*, std::list<ByteBlob>&) override { failure_(); }

  private:
    void (*failure_)();
};

struct KeyStoreClosed {};

TEST(KeyResolution, LetsThroughWhatTheResolverThrows) {
    const std::string text = SignedText(Signed(GoodA()));
    const boost::intrusive_ptr<KeyInfoResolver> crypto(
        new ThrowingResolver([] { throw CryptoException("token removed"); }));
    EXPECT_EQ(MessageOf<CryptoException>([&] { Verifies(text, *crypto); }),
              "Crypto Exception: token removed");
    const boost::intrusive_ptr<KeyInfoResolver> foreign(
        new ThrowingResolver([] { throw KeyStoreClosed(); }));
    EXPECT_THROW(Verifies(text, *foreign), KeyStoreClosed);
}

const TestKeys::Key& OtherKey() {
    return TestKeys::KeyNamed("intermediate");
}
ByteBlob NoKey() {
    return TestKeys::ToBlob("no key");
}

TEST(SignatureValidation, TakesTheFirstKeyThatVerifies) {
    const std::string text = SignedText(Signed(GoodA()));
    const ByteBlob good = UsualKey().publicKey;
    const ByteBlob other = OtherKey().publicKey;
    EXPECT_TRUE(Verifies(text, *Offering({other, good})));
    EXPECT_TRUE(Verifies(text, *Offering({good, other})));
    EXPECT_TRUE(Verifies(text, *Offering({other, other, good, other})));
    EXPECT_FALSE(Verifies(text, *Offering({other})));
    EXPECT_FALSE(Verifies(text, *Offering({other, other})));
}

TEST(SignatureValidation, StopsAtAKeyThatIsNone) {
    const std::string text = SignedText(Signed(GoodA()));
    const ByteBlob good = UsualKey().publicKey;
    const char* const message = "Crypto Exception: Invalid or unsupported format of the public key";
    for (const ByteBlob& bad : {NoKey(), TestKeys::ToBlob(""), ByteBlob()}) {
        EXPECT_EQ(MessageOf<SignatureVerificationException>([&] {
                      Verifies(text, *Offering({bad, good}));
                  }),
                  message);
        EXPECT_EQ(MessageOf<SignatureVerificationException>([&] {
                      Verifies(text, *Offering({OtherKey().publicKey, bad, good}));
                  }),
                  message);
        // What comes after the right key is never looked at.
        EXPECT_TRUE(Verifies(text, *Offering({good, bad})));
    }
}

TEST(SignatureValidation, FailsForAnotherValue) {
    const std::string signedInfo = SignedInfo(GoodA());
    const std::string value = HandSigned::SignatureValue("sha256", UsualKey(), signedInfo);
    const auto verifies = [&](const std::string& text) {
        return Verifies(SignedText(HandSigned::SignatureElement(signedInfo, text)));
    };
    ASSERT_TRUE(verifies(value));
    std::string spoiled = value;
    spoiled[0] = spoiled[0] == 'A' ? 'B' : 'A';
    EXPECT_FALSE(verifies(spoiled));
    EXPECT_FALSE(verifies("AAAA"));
    EXPECT_FALSE(verifies(HandSigned::SignatureValue("sha256", OtherKey(), signedInfo)));
    EXPECT_FALSE(verifies(HandSigned::SignatureValue("sha512", UsualKey(), signedInfo)));
}

TEST(SignatureValidation, FailsForAValueMadeWithSha1) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    const std::string signedInfo = SignedInfo(GoodA());
    const std::string value = HandSigned::SignatureValue("sha1", UsualKey(), signedInfo);
    EXPECT_FALSE(Verifies(SignedText(HandSigned::SignatureElement(signedInfo, value))));
}

TEST(SignatureValidation, FailsForAValueThatIsNoBase64) {
    const std::string signedInfo = SignedInfo(GoodA());
    const std::string value = HandSigned::SignatureValue("sha256", UsualKey(), signedInfo);
    for (const std::string& text : {std::string("?"), std::string("AAA"), value + "A",
                                    value.substr(0, 1) + " " + value.substr(1)}) {
        const ResolverPtr resolver = OfferingTheSignersKey();
        EXPECT_FALSE(
            Verifies(SignedText(HandSigned::SignatureElement(signedInfo, text)), *resolver));
        EXPECT_EQ(resolver->asked, 1) << text;
    }
}

TEST(SignatureValidation, TakesAValueWithBlanksBetweenItsGroups) {
    const std::string signedInfo = SignedInfo(GoodA());
    const std::string value = HandSigned::SignatureValue("sha256", UsualKey(), signedInfo);
    const std::string folded = "\n" + value.substr(0, 64) + "\n" + value.substr(64) + "\n  ";
    EXPECT_TRUE(Verifies(SignedText(HandSigned::SignatureElement(signedInfo, folded))));
}

TEST(SignatureValidation, LooksAtTheValueThenAtTheTwoMethods) {
    const auto textWith = [](const char* signatureMethod, const char* canonicalizationMethod,
                             const char* value) {
        return SignedText(HandSigned::SignatureElement(
            SignedInfo(GoodA(), signatureMethod, canonicalizationMethod), value));
    };
    EXPECT_FALSE(Verifies(textWith("urn:signature", "urn:c14n", "?"), *Offering({NoKey()})));
    EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>([&] {
                  Verifies(textWith("urn:signature", "urn:c14n", "AAAA"), *Offering({NoKey()}));
              }),
              "The following canonicalization method is unsupported: urn:c14n");
    EXPECT_EQ(MessageOf<UnsupportedSignAlgorithmException>([&] {
                  Verifies(textWith("urn:signature", Algorithm::ExclusiveC14N, "AAAA"),
                           *Offering({NoKey()}));
              }),
              "The signature algorithm is not supported: urn:signature");
    EXPECT_EQ(MessageOf<SignatureVerificationException>([&] {
                  Verifies(textWith(Algorithm::RsaSha256, Algorithm::ExclusiveC14N, "AAAA"),
                           *Offering({NoKey()}));
              }),
              "Crypto Exception: Invalid or unsupported format of the public key");
}

TEST(SignatureValidation, KnowsNoInclusiveCanonicalization) {
    const std::string signedInfo =
        SignedInfo(GoodA(), Algorithm::RsaSha256, Algorithm::InclusiveC14N);
    const std::string value = HandSigned::SignatureValue("sha256", UsualKey(), signedInfo);
    EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>(
                  [&] { Verifies(SignedText(HandSigned::SignatureElement(signedInfo, value))); }),
              "The following canonicalization method is unsupported: "
              "http://www.w3.org/TR/2001/REC-xml-c14n-20010315#");
}

TEST(SignatureValidation, CoversSignedInfoWithItsBlanksAndWithoutItsComments) {
    const std::string signedInfo =
        Replaced(SignedInfo(GoodA()), "<ds:SignatureMethod", "\n  <ds:SignatureMethod");
    const std::string value = HandSigned::SignatureValue("sha256", UsualKey(), signedInfo);
    const std::string text = SignedText(HandSigned::SignatureElement(signedInfo, value));
    EXPECT_TRUE(Verifies(text));
    EXPECT_TRUE(
        Verifies(Replaced(text, "\n  <ds:SignatureMethod", "\n <!-- c --> <ds:SignatureMethod")));
    EXPECT_FALSE(Verifies(Replaced(text, "\n  <ds:SignatureMethod", "\n<ds:SignatureMethod")));
}

TEST(SignatureValidation, CoversTheDeclarationsThatSignedInfoInherits) {
    const std::string declaration = " xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"";
    const std::string signedInfo = SignedInfo(GoodA());
    const std::string value = HandSigned::SignatureValue("sha256", UsualKey(), signedInfo);
    const std::string signature = Replaced(HandSigned::SignatureElement(signedInfo, value),
                                           "<ds:SignedInfo" + declaration, "<ds:SignedInfo");
    EXPECT_TRUE(Verifies(SignedText(signature)));
    EXPECT_TRUE(Verifies(Replaced(SignedText(Replaced(signature, declaration, "")), "<root",
                                  "<root" + declaration)));
}

TEST(SignatureValidation, DoesNotCoverKeyInfo) {
    const std::string keyInfo =
        "<ds:KeyInfo><ds:X509Data><ds:X509Certificate>b25l</ds:X509Certificate></ds:X509Data>"
        "</ds:KeyInfo>";
    EXPECT_TRUE(Verifies(Replaced(SignedText(Signed(GoodA(), keyInfo)), "b25l", "dHdv")));
}

TEST(SignatureVerification, OfABuiltAndUnsignedSignature) {
    const Held<ElementNode> root = NewElement("root");
    boost::intrusive_ptr<Signature> signature;
    CreateBlankSignature(root.get(), Algorithm::ExclusiveC14N, Algorithm::RsaSha256, "ds",
                         signature);
    // Without references nothing is missing but the value; keys are still asked for first.
    EXPECT_FALSE(signature->Verify(OfferingTheSignersKey().get(), {}));
    EXPECT_FALSE(signature->Verify(Offering({NoKey()}).get(), {}));
    EXPECT_EQ(MessageOf<SignatureVerificationException>(
                  [&] { signature->Verify(Offering({}).get(), {}); }),
              "No verification key available.");
    const ResolverPtr unasked = Offering({});
    EXPECT_FALSE(signature->Verify(unasked.get(), {""}));
    EXPECT_EQ(unasked->asked, 0);
}

// OpenSSL fails where its memory ends. While digesting, its failure passes; while the value is
// checked, it becomes the signature layer's own exception.
TEST(SignatureVerification, TellsFailuresOfOpensslApart) {
    const Held<Document> document = Parsed(SignedText(Signed(GoodA())));
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    const ResolverPtr resolver = OfferingTheSignersKey();
    ASSERT_TRUE(signature->Verify(resolver.get(), {}));

    using FailingOpenSsl::Shortage;
    const Shortage shortage(0, Shortage::Extent::Onwards);
    EXPECT_EQ(MessageOf<CryptoException>([&] { signature->Verify(resolver.get(), {}); }),
              "Crypto Exception: Digest context initialization failed");
    EXPECT_EQ(MessageOf<CryptoException>([&] { ReferencesOf(*signature).front()->VerifyDigest(); }),
              "Crypto Exception: Digest context initialization failed");
}

/// Lets OpenSSL's memory end once the digests are through.
class ExhaustingResolver final : public KeyInfoResolver {
  public:
    explicit ExhaustingResolver(std::unique_ptr<FailingOpenSsl::Shortage>& shortage)
        : shortage_(shortage) {}
    void Resolve(KeyInfo*, std::list<ByteBlob>& keys) override {
        keys.push_back(UsualKey().publicKey);
        shortage_ = std::make_unique<FailingOpenSsl::Shortage>(
            0, FailingOpenSsl::Shortage::Extent::Onwards);
    }

  private:
    std::unique_ptr<FailingOpenSsl::Shortage>& shortage_;
};

TEST(SignatureValidation, ConvertsAFailureOfOpensslKeepingItsMessage) {
    const std::string text = SignedText(Signed(GoodA()));
    std::unique_ptr<FailingOpenSsl::Shortage> shortage;
    const boost::intrusive_ptr<KeyInfoResolver> resolver(new ExhaustingResolver(shortage));
    EXPECT_EQ(MessageOf<SignatureVerificationException>([&] { Verifies(text, *resolver); }),
              "Crypto Exception: Invalid or unsupported format of the public key");
}

}  // namespace
}  // namespace Saml::Xml::Security
