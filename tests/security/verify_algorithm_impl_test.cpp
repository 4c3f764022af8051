#include "saml/security/verify_algorithm_impl.h"

#include "saml/foundations.h"
#include "support/forged_certificate.h"
#include "support/system_policy.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using TestKeys::CertificateNamed;
using TestKeys::KeyNamed;
using TestKeys::OpenSsl;
using TestKeys::PathOf;
using TestKeys::ToBlob;

constexpr char kText[] = "What is signed.\n";
constexpr char kRefusedKey[] = "Crypto Exception: Invalid or unsupported format of the public key";

bool Verifies(DigestId id, const ByteBlob& key, const std::string& text, const Bytes& signature) {
    return VerifyAlgorithmImpl(id, key).Verify(reinterpret_cast<const unsigned char*>(text.data()),
                                               text.size(), signature);
}

/// What the command line signs with the key "root".
Bytes SignatureOf(const std::string& opensslDigest) {
    TestKeys::WriteFile(PathOf("text"), kText);
    return *ToBlob(OpenSsl("dgst -" + opensslDigest + " -sign " + KeyNamed("root").pemPath + " " +
                           PathOf("text")));
}

struct VerificationCase {
    const char* name;
    DigestId id;
    const char* opensslName;
};
void PrintTo(const VerificationCase& row, std::ostream* out) {
    *out << row.name;
}

class Verification : public testing::TestWithParam<VerificationCase> {};

TEST_P(Verification, AcceptsWhatTheCommandLineSigned) {
    if (GetParam().id == DigestId::Sha1) SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    const Bytes signature = SignatureOf(GetParam().opensslName);
    EXPECT_TRUE(Verifies(GetParam().id, KeyNamed("root").publicKey, kText, signature));
    EXPECT_FALSE(Verifies(GetParam().id, KeyNamed("root").publicKey, "Another text", signature));
}

INSTANTIATE_TEST_SUITE_P(VerifyAlgorithm, Verification,
                         testing::Values(VerificationCase{"Sha1", DigestId::Sha1, "sha1"},
                                         VerificationCase{"Sha224", DigestId::Sha224, "sha224"},
                                         VerificationCase{"Sha256", DigestId::Sha256, "sha256"},
                                         VerificationCase{"Sha384", DigestId::Sha384, "sha384"},
                                         VerificationCase{"Sha512", DigestId::Sha512, "sha512"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(VerifyAlgorithm, TakesNoBytesFromNowhere) {
    TestKeys::WriteFile(PathOf("empty"), "");
    const Bytes signature =
        *ToBlob(OpenSsl("dgst -sha256 -sign " + KeyNamed("root").pemPath + " " + PathOf("empty")));
    EXPECT_TRUE(VerifyAlgorithmImpl(DigestId::Sha256, KeyNamed("root").publicKey)
                    .Verify(nullptr, 0, signature));
}

TEST(VerifyAlgorithm, RejectsASignatureWithAnyOneBitFlipped) {
    const Bytes signature = SignatureOf("sha256");
    for (std::size_t bit = 0; bit < signature.size() * 8; bit += 7) {
        Bytes spoiled = signature;
        spoiled[bit / 8] = static_cast<unsigned char>(spoiled[bit / 8] ^ (1U << bit % 8));
        EXPECT_FALSE(Verifies(DigestId::Sha256, KeyNamed("root").publicKey, kText, spoiled)) << bit;
    }
}

TEST(VerifyAlgorithm, RejectsAnotherDigestAndAnotherKey) {
    const Bytes signature = SignatureOf("sha256");
    EXPECT_FALSE(Verifies(DigestId::Sha512, KeyNamed("root").publicKey, kText, signature));
    EXPECT_FALSE(Verifies(DigestId::Sha256, KeyNamed("attacker").publicKey, kText, signature));
}

TEST(VerifyAlgorithm, RejectsSignaturesOfAnotherLength) {
    const Bytes signature = SignatureOf("sha256");
    const Bytes shorter(signature.begin(), std::prev(signature.end()));
    Bytes longer = signature;
    longer.push_back(0);
    Bytes padded = signature;
    padded.insert(padded.begin(), 0);
    for (const Bytes& odd : {Bytes(), Bytes{0}, shorter, longer, padded, Bytes(100000, 1)})
        EXPECT_FALSE(Verifies(DigestId::Sha256, KeyNamed("root").publicKey, kText, odd))
            << odd.size();
}

TEST(VerifyAlgorithm, RejectsWhateverAKeyWithoutModulusIsShown) {
    const std::string zero("\x02\x01\x00", 3);
    const ByteBlob key = ToBlob(TestKeys::DerValue(0x30, zero + zero));
    for (const Bytes& signature : {Bytes(), Bytes{0}, Bytes(128, 0)})
        EXPECT_FALSE(Verifies(DigestId::Sha256, key, kText, signature)) << signature.size();
}

TEST(VerifyAlgorithm, IgnoresBytesBehindTheKey) {
    Bytes longer = *KeyNamed("root").publicKey;
    longer.insert(longer.end(), {'m', 'o', 'r', 'e'});
    EXPECT_TRUE(Verifies(DigestId::Sha256, std::make_shared<const Bytes>(longer), kText,
                         SignatureOf("sha256")));
}

TEST(VerifyAlgorithm, RefusesWhatIsNoRsaPublicKey) {
    Bytes truncated = *KeyNamed("root").publicKey;
    truncated.pop_back();
    const std::string in = " -in " + KeyNamed("ec").pemPath;
    const struct {
        const char* name;
        ByteBlob key;
    } rows[] = {
        {"null", nullptr},
        {"empty", ToBlob("")},
        {"garbage", ToBlob("garbage")},
        {"truncated", std::make_shared<const Bytes>(truncated)},
        {"SubjectPublicKeyInfo",
         ToBlob(OpenSsl("pkey -pubout -outform DER -in " + KeyNamed("root").pemPath))},
        {"PEM", ToBlob(KeyNamed("root").publicPem)},
        {"private key", KeyNamed("root").privateKey},
        {"certificate", CertificateNamed("root").der},
        {"EC SubjectPublicKeyInfo", ToBlob(OpenSsl("pkey -pubout -outform DER" + in))},
        {"EC point", ToBlob("\x04" + std::string(64, 1))},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(MessageOf<CryptoException>(
                      [&row] { Verifies(DigestId::Sha256, row.key, kText, Bytes(128, 1)); }),
                  kRefusedKey);
    }
}

TEST(VerifyAlgorithm, NamesTheNumberThatIsNoDigest) {
    EXPECT_EQ(MessageOf<InvalidArgumentException>([] {
                  Verifies(static_cast<DigestId>(-3), KeyNamed("root").publicKey, kText, Bytes());
              }),
              "Invalid algorithm id: -3");
}

TEST(VerifyAlgorithm, LooksAtTheKeyBeforeTheDigest) {
    EXPECT_EQ(MessageOf<CryptoException>(
                  [] { Verifies(static_cast<DigestId>(-3), nullptr, kText, Bytes()); }),
              kRefusedKey);
}

}  // namespace
}  // namespace Saml::Xml::Security
