#include "saml/security/sign_algorithm_impl.h"

#include "saml/foundations.h"
#include "support/forged_certificate.h"
#include "support/system_policy.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using TestKeys::KeyNamed;
using TestKeys::OpenSsl;
using TestKeys::PathOf;
using TestKeys::ToBlob;

constexpr char kRefusedKey[] = "Crypto Exception: Invalid or unsupported private key";
constexpr char kFailure[] = "Crypto Exception: Signing operation failed";

Bytes Sign(DigestId id, const ByteBlob& key, const std::string& text) {
    Bytes signature;
    SignAlgorithmImpl(id, key).Sign(reinterpret_cast<const unsigned char*>(text.data()),
                                    text.size(), signature);
    return signature;
}

struct SignatureCase {
    const char* name;
    DigestId id;
    const char* opensslName;
};
void PrintTo(const SignatureCase& row, std::ostream* out) {
    *out << row.name;
}

class Signatures : public testing::TestWithParam<SignatureCase> {};

TEST_P(Signatures, AreTheOnesOfTheCommandLine) {
    if (GetParam().id == DigestId::Sha1) SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    const std::string text = "What is signed.\n";
    TestKeys::WriteFile(PathOf("text"), text);
    const std::string expected =
        OpenSsl("dgst -" + std::string(GetParam().opensslName) + " -sign " +
                KeyNamed("rsa2048").pemPath + " " + PathOf("text"));
    EXPECT_EQ(Sign(GetParam().id, KeyNamed("rsa2048").privateKey, text), *ToBlob(expected));
}

INSTANTIATE_TEST_SUITE_P(SignAlgorithm, Signatures,
                         testing::Values(SignatureCase{"Sha1", DigestId::Sha1, "sha1"},
                                         SignatureCase{"Sha224", DigestId::Sha224, "sha224"},
                                         SignatureCase{"Sha256", DigestId::Sha256, "sha256"},
                                         SignatureCase{"Sha384", DigestId::Sha384, "sha384"},
                                         SignatureCase{"Sha512", DigestId::Sha512, "sha512"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SignAlgorithm, MakesSignaturesAsLongAsTheModulus) {
    EXPECT_EQ(Sign(DigestId::Sha256, KeyNamed("rsa2048").privateKey, "").size(), 256U);
    EXPECT_EQ(Sign(DigestId::Sha256, KeyNamed("root").privateKey, "").size(), 128U);
}

TEST(SignAlgorithm, ReplacesWhatTheVectorHeld) {
    Bytes signature(1000, 'x');
    SignAlgorithmImpl(DigestId::Sha256, KeyNamed("root").privateKey).Sign(nullptr, 0, signature);
    EXPECT_EQ(signature, Sign(DigestId::Sha256, KeyNamed("root").privateKey, ""));
}

TEST(SignAlgorithm, AcceptsAKeyWrappedByPkcs8) {
    const ByteBlob wrapped =
        ToBlob(OpenSsl("pkcs8 -topk8 -nocrypt -outform DER -in " + KeyNamed("root").pemPath));
    ASSERT_NE(*wrapped, *KeyNamed("root").privateKey);
    EXPECT_EQ(Sign(DigestId::Sha256, wrapped, "text"),
              Sign(DigestId::Sha256, KeyNamed("root").privateKey, "text"));
}

TEST(SignAlgorithm, IgnoresBytesBehindTheKey) {
    Bytes longer = *KeyNamed("root").privateKey;
    longer.insert(longer.end(), {'m', 'o', 'r', 'e'});
    EXPECT_EQ(Sign(DigestId::Sha256, std::make_shared<const Bytes>(longer), "text"),
              Sign(DigestId::Sha256, KeyNamed("root").privateKey, "text"));
}

TEST(SignAlgorithm, RefusesWhatIsNoRsaPrivateKey) {
    const Bytes& whole = *KeyNamed("root").privateKey;
    const Bytes truncated(whole.begin(), whole.end() - 1);
    const struct {
        const char* name;
        ByteBlob key;
    } rows[] = {
        {"null", nullptr},
        {"empty", ToBlob("")},
        {"garbage", ToBlob("garbage")},
        {"truncated", std::make_shared<const Bytes>(truncated)},
        {"PEM", ToBlob(KeyNamed("root").pem)},
        {"public key", KeyNamed("root").publicKey},
        {"EC", KeyNamed("ec").privateKey},
        {"EC wrapped by PKCS #8",
         ToBlob(OpenSsl("pkcs8 -topk8 -nocrypt -outform DER -in " + KeyNamed("ec").pemPath))},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        SignAlgorithmImpl algorithm(DigestId::Sha256, row.key);
        Bytes signature{'o', 'l', 'd'};
        EXPECT_EQ(MessageOf<CryptoException>([&] { algorithm.Sign(nullptr, 0, signature); }),
                  kRefusedKey);
        EXPECT_EQ(signature, (Bytes{'o', 'l', 'd'}));
    }
}

TEST(SignAlgorithm, NamesTheNumberThatIsNoDigest) {
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [] { Sign(static_cast<DigestId>(5), KeyNamed("root").privateKey, "text"); }),
              "Invalid algorithm id: 5");
}

TEST(SignAlgorithm, LooksAtTheKeyBeforeTheDigest) {
    EXPECT_EQ(MessageOf<CryptoException>([] { Sign(static_cast<DigestId>(5), nullptr, "text"); }),
              kRefusedKey);
}

TEST(SignAlgorithm, FailsWithAKeyTooShortForTheDigest) {
    SKIP_WHERE_SHORT_KEYS_ARE_REFUSED();
    // RFC 8017 section 9.2: SHA-512 needs 64 + 19 + 11 bytes.
    SignAlgorithmImpl algorithm(DigestId::Sha512, KeyNamed("rsa512").privateKey);
    Bytes signature{'o', 'l', 'd'};
    EXPECT_EQ(MessageOf<CryptoException>([&] { algorithm.Sign(nullptr, 0, signature); }), kFailure);
    EXPECT_EQ(signature, (Bytes{'o', 'l', 'd'}));
    EXPECT_EQ(Sign(DigestId::Sha256, KeyNamed("rsa512").privateKey, "").size(), 64U);
}

TEST(SignAlgorithm, FailsWithAModulusOfZero) {
    const std::string zero("\x02\x01\x00", 3);
    const std::string one("\x02\x01\x01", 3);
    const std::string key =
        TestKeys::DerValue(0x30, zero + zero + one + one + one + one + one + one + one);
    EXPECT_EQ(MessageOf<CryptoException>([&key] { Sign(DigestId::Sha256, ToBlob(key), "text"); }),
              kFailure);
}

TEST(SignAlgorithm, IsDestroyedThroughASharedPointerToTheInterface) {
    const std::weak_ptr<const Bytes> key = [] {
        const std::shared_ptr<SignAlgorithm> algorithm =
            std::make_shared<SignAlgorithmImpl>(DigestId::Sha256, ToBlob("key"));
        const std::shared_ptr<const Bytes> watched = ToBlob("watched");
        const std::shared_ptr<SignAlgorithm> second =
            std::make_shared<SignAlgorithmImpl>(DigestId::Sha256, watched);
        return std::weak_ptr<const Bytes>(watched);
    }();
    EXPECT_TRUE(key.expired());
}

}  // namespace
}  // namespace Saml::Xml::Security
