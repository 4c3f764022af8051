#include "saml/security/signature_impl.h"
#include "support/failing_openssl.h"
#include "support/signed_texts.h"
#include "support/system_policy.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml::Security {
namespace {

using SignaturePtr = boost::intrusive_ptr<Signature>;
using ReferencePtr = boost::intrusive_ptr<SignatureReference>;

/// `<root ID='r'><a ID='a'>one</a></root>` and a blank signature in it.
class Signing : public testing::Test {
  protected:
    void SetUp() override { signature_ = Blank(Algorithm::RsaSha256); }

    SignaturePtr Blank(const char* signatureMethod,
                       const char* canonicalizationMethod = Algorithm::ExclusiveC14N) {
        SignaturePtr signature;
        ElementNode* const root = document_->GetRootElement();
        CreateBlankSignature(root, canonicalizationMethod, signatureMethod, "ds", signature);
        root->AppendChild(signature->GetElement());
        return signature;
    }
    static ReferencePtr AddTo(Signature& signature, const std::string& uri,
                              const std::string& digestMethod = Algorithm::Sha256) {
        ReferencePtr reference;
        signature.AddReference(uri, digestMethod, reference);
        reference->AddEnvelopedSignatureTransform();
        reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
        return reference;
    }
    static std::string ValueOf(Signature& signature) {
        Node* const text = ElementNamed(*signature.GetElement(), "SignatureValue").GetFirstChild();
        return dynamic_cast<TextNode&>(*text).GetText();
    }
    static bool Holds(Signature& signature, const URIs& required = {}) {
        return signature.Verify(OfferingTheSignersKey().get(), required);
    }
    /// The document as text, read again: true when its signature holds there, too.
    bool HoldsElsewhere() {
        StringWriter written;
        document_->GetRootElement()->Write(written);
        return Verifies(written.data);
    }

    Held<Document> document_ = Parsed("<root ID='r'><a ID='a'>one</a></root>");
    SignaturePtr signature_;
    const ByteBlob key_ = UsualKey().privateKey;
};

struct MethodCase {
    const char* name;
    const char* digestMethod;
    const char* signatureMethod;
    const char* digestName;
};
class SigningMethod : public Signing, public testing::WithParamInterface<MethodCase> {};

// RSA with PKCS #1 v1.5 padding leaves nothing to chance: openssl makes the same value of the same
// bytes.
TEST_P(SigningMethod, GivesTheValueThatOpensslGives) {
    const MethodCase& method = GetParam();
    if (std::string("sha1") == method.digestName) SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    document_->GetRootElement()->RemoveChild(signature_->GetElement());
    const SignaturePtr signature = Blank(method.signatureMethod);
    AddTo(*signature, "", method.digestMethod);
    signature->Sign(key_);

    const std::string signedInfo =
        SignedInfo(Reference({"", "<root ID=\"r\"><a ID=\"a\">one</a></root>", true, "",
                              method.digestMethod, method.digestName}),
                   method.signatureMethod);
    EXPECT_EQ(ValueOf(*signature),
              HandSigned::SignatureValue(method.digestName, UsualKey(), signedInfo));
    EXPECT_TRUE(Holds(*signature));
    EXPECT_TRUE(HoldsElsewhere());
}

INSTANTIATE_TEST_SUITE_P(
    SignatureSigning, SigningMethod,
    testing::Values(MethodCase{"Sha1", Algorithm::Sha1, Algorithm::RsaSha1, "sha1"},
                    MethodCase{"Sha256", Algorithm::Sha256, Algorithm::RsaSha256, "sha256"},
                    MethodCase{"Sha384", Algorithm::Sha384, Algorithm::RsaSha384, "sha384"},
                    MethodCase{"Sha384OfRfc4051", Algorithm::Sha384Rfc4051, Algorithm::RsaSha384,
                               "sha384"},
                    MethodCase{"Sha512", Algorithm::Sha512, Algorithm::RsaSha512, "sha512"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Signing, CoversSeveralReferences) {
    AddTo(*signature_, "#a", Algorithm::Sha512);
    AddTo(*signature_, "#r", Algorithm::Sha1);
    signature_->Sign(key_);
    EXPECT_TRUE(Holds(*signature_, {"#a", "#r", ""}));
    EXPECT_TRUE(HoldsElsewhere());
}

TEST_F(Signing, CanBeRepeated) {
    AddTo(*signature_, "");
    signature_->Sign(key_);
    const std::string before = Outline(*document_);
    signature_->Sign(key_);
    EXPECT_EQ(Outline(*document_), before);

    ElementNamed(*document_, "a").AppendChild(NewText(" and two").get());
    EXPECT_FALSE(Holds(*signature_));
    const std::string formerValue = ValueOf(*signature_);
    signature_->Sign(key_);
    EXPECT_NE(ValueOf(*signature_), formerValue);
    EXPECT_TRUE(Holds(*signature_));
    EXPECT_TRUE(HoldsElsewhere());
}

TEST_F(Signing, CanBeRepeatedWithAnotherKey) {
    AddTo(*signature_, "");
    signature_->Sign(TestKeys::KeyNamed("intermediate").privateKey);
    EXPECT_FALSE(Holds(*signature_));
    signature_->Sign(key_);
    EXPECT_TRUE(Holds(*signature_));
}

TEST_F(Signing, CanFollowAReferenceThatCameLater) {
    AddTo(*signature_, "#a");
    signature_->Sign(key_);
    AddTo(*signature_, "");
    EXPECT_FALSE(Holds(*signature_));
    signature_->Sign(key_);
    EXPECT_TRUE(Holds(*signature_));
}

TEST_F(Signing, DoesNotCoverKeyInfo) {
    AddTo(*signature_, "");
    signature_->Sign(key_);
    signature_->SetKeyInfo({TestKeys::ToBlob("one")});
    EXPECT_TRUE(Holds(*signature_));
    signature_->SetKeyInfo(NewElement("c").get());
    EXPECT_TRUE(Holds(*signature_));
}

TEST_F(Signing, SignsAReadSignatureAnew) {
    AddTo(*signature_, "");
    signature_->Sign(key_);
    const SignaturePtr read = SignatureOf(*document_);
    ElementNamed(*document_, "a").AppendChild(NewText(" and two").get());
    EXPECT_FALSE(Holds(*read));
    read->Sign(key_);
    EXPECT_TRUE(Holds(*read));
    EXPECT_TRUE(HoldsElsewhere());
}

TEST_F(Signing, NeedsNoReferences) {
    signature_->Sign(key_);
    EXPECT_EQ(ValueOf(*signature_),
              HandSigned::SignatureValue("sha256", UsualKey(), SignedInfo("")));
    EXPECT_TRUE(Holds(*signature_));
    EXPECT_FALSE(Holds(*signature_, {""}));
}

TEST_F(Signing, WorksWithoutAPrefix) {
    document_->GetRootElement()->RemoveChild(signature_->GetElement());
    CreateBlankSignature(document_->GetRootElement(), Algorithm::ExclusiveC14N,
                         Algorithm::RsaSha256, "", signature_);
    document_->GetRootElement()->AppendChild(signature_->GetElement());
    AddTo(*signature_, "");
    signature_->SetKeyInfo({TestKeys::ToBlob("one")});
    signature_->Sign(key_);
    EXPECT_TRUE(HoldsElsewhere());
}

/// Signs once well; afterwards a failing `Sign` leaves the value as it was.
class FailingSigning : public Signing {
  protected:
    template <class Expected>
    std::string RefusalOf(Signature& signature, const ByteBlob& key) {
        const std::string before = ValueOf(signature);
        const std::string message = MessageOf<Expected>([&] { signature.Sign(key); });
        EXPECT_EQ(ValueOf(signature), before);
        return message;
    }
};

TEST_F(FailingSigning, RefusesKeysThatAreNone) {
    AddTo(*signature_, "#a");
    signature_->Sign(key_);
    for (const ByteBlob& bad : {TestKeys::ToBlob("no key"), TestKeys::ToBlob(""), ByteBlob(),
                                TestKeys::KeyNamed("ec").privateKey, UsualKey().publicKey})
        EXPECT_EQ(RefusalOf<SignatureGenerationException>(*signature_, bad),
                  "Crypto Exception: Invalid or unsupported private key");
    EXPECT_TRUE(Holds(*signature_));
}

// 64 bytes of modulus have no room for a digest of 64 bytes and its padding.
TEST_F(FailingSigning, RefusesAKeyThatIsTooShortForTheDigest) {
    SKIP_WHERE_SHORT_KEYS_ARE_REFUSED();
    const SignaturePtr signature = Blank(Algorithm::RsaSha512);
    EXPECT_EQ(RefusalOf<SignatureGenerationException>(*signature,
                                                      TestKeys::KeyNamed("rsa512").privateKey),
              "Crypto Exception: Signing operation failed");
}

TEST_F(FailingSigning, DigestsThenCanonicalizesThenSigns) {
    const ByteBlob noKey = TestKeys::ToBlob("no key");
    const SignaturePtr signature = Blank("urn:signature", "urn:canonicalization");
    const ReferencePtr reference = AddTo(*signature, "#nowhere");
    EXPECT_EQ(RefusalOf<MissingReferentException>(*signature, noKey),
              "The URI could not be resolved: #nowhere");
    ElementNamed(*document_, "a").SetAttribute("Id", "nowhere");
    EXPECT_EQ(RefusalOf<UnsupportedCanonicalizationException>(*signature, noKey),
              "The following canonicalization method is unsupported: urn:canonicalization");

    EXPECT_EQ(RefusalOf<UnsupportedSignAlgorithmException>(*Blank("urn:signature"), noKey),
              "The signature algorithm is not supported: urn:signature");
}

TEST_F(FailingSigning, RefusesAReferenceThatCannotBeDigested) {
    AddTo(*signature_, "#a", "urn:digest");
    EXPECT_EQ(RefusalOf<UnsupportedHashAlgorithmException>(*signature_, key_),
              "The following hash algorithm is unsupported: urn:digest");

    const SignaturePtr withoutTransforms = Blank(Algorithm::RsaSha256);
    ReferencePtr reference;
    withoutTransforms->AddReference("#a", Algorithm::Sha256, reference);
    EXPECT_EQ(RefusalOf<UnsupportedCanonicalizationException>(*withoutTransforms, key_),
              "The following canonicalization method is unsupported: ");

    const SignaturePtr ambiguous = Blank(Algorithm::RsaSha256);
    AddTo(*ambiguous, "#a");
    document_->GetRootElement()->SetAttribute("Id", "a");
    EXPECT_EQ(RefusalOf<DuplicateURIException>(*ambiguous, key_), "Duplicate URI found: a");
}

// A digest's failure passes as it is; only one of the signature itself is converted.
TEST_F(FailingSigning, TellsFailuresOfOpensslApart) {
    using FailingOpenSsl::Shortage;
    const SignaturePtr withoutReferences = Blank(Algorithm::RsaSha256);
    AddTo(*signature_, "#a");
    const ByteBlob key = key_;
    const Shortage shortage(0, Shortage::Extent::Onwards);
    EXPECT_EQ(RefusalOf<CryptoException>(*signature_, key),
              "Crypto Exception: Digest context initialization failed");
    EXPECT_EQ(RefusalOf<SignatureGenerationException>(*withoutReferences, key),
              "Crypto Exception: Invalid or unsupported private key");
}

}  // namespace
}  // namespace Saml::Xml::Security
