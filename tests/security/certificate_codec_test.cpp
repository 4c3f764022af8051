#include "saml/security/certificate_codec.h"

#include "saml/foundations.h"
#include "support/forged_certificate.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <memory>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using TestKeys::CertificateNamed;
using TestKeys::DerValue;
using TestKeys::ForgedCertificate;
using TestKeys::KeyNamed;
using TestKeys::ToBlob;

TEST(CertificateCodec, WritesTheCertificateThatItRead) {
    EXPECT_EQ(*EncodeCertificate(*ParseCertificateDer(CertificateNamed("root").der)),
              *CertificateNamed("root").der);
    EXPECT_EQ(*EncodeCertificate(*ParseCertificatePem(CertificateNamed("root").pem)),
              *CertificateNamed("root").der);
}

TEST(CertificateCodec, IgnoresBytesBehindTheCertificate) {
    Bytes longer = *CertificateNamed("root").der;
    longer.insert(longer.end(), {'m', 'o', 'r', 'e'});
    EXPECT_EQ(*EncodeCertificate(*ParseCertificateDer(std::make_shared<const Bytes>(longer))),
              *CertificateNamed("root").der);
}

TEST(CertificateCodec, RefusesWhatIsNoCertificate) {
    const Bytes& whole = *CertificateNamed("root").der;
    const Bytes truncated(whole.begin(), whole.end() - 1);
    for (const ByteBlob& der :
         {ByteBlob(), ToBlob(""), ToBlob("garbage"), std::make_shared<const Bytes>(truncated),
          ToBlob(CertificateNamed("root").pem), KeyNamed("root").publicKey}) {
        EXPECT_EQ(DecodeCertificateDer(der), nullptr);
        EXPECT_EQ(MessageOf<InvalidArgumentException>([&der] { ParseCertificateDer(der); }),
                  "Invalid X.509 Certificate");
    }
}

/// What OpenSSL's serializer writes for the certificate's key.
Bytes Serialized(X509& certificate) {
    EVP_PKEY* const key = X509_get0_pubkey(&certificate);
    Bytes der(static_cast<std::size_t>(i2d_PublicKey(key, nullptr)));
    unsigned char* output = der.data();
    i2d_PublicKey(key, &output);
    return der;
}

TEST(CertificateKey, HasTheSerializersBytes) {
    for (const char* const name :
         {"root", "intermediate", "leaf", "self-signed-v1", "attacker-leaf", "ec-self-signed"}) {
        SCOPED_TRACE(name);
        const CertificateHandle certificate = ParseCertificateDer(CertificateNamed(name).der);
        EXPECT_EQ(*EncodePublicKeyOf(*certificate), Serialized(*certificate));
    }
}

TEST(CertificateKey, IsPkcs1ForRsa) {
    EXPECT_EQ(*EncodePublicKeyOf(*ParseCertificateDer(CertificateNamed("leaf").der)),
              *KeyNamed("leaf").publicKey);
}

/// An RSA key of ten bits, 3 * 257 = 771 = 0x303, in DER and in the ways of writing it that the
/// decoder also accepts. In each the right key is 30 07 02 02 03 03 02 01 03.
struct SloppyKey {
    const char* name;
    std::string bits;
};
void PrintTo(const SloppyKey& row, std::ostream* out) {
    *out << row.name;
}

class SloppilyEncodedKeys : public testing::TestWithParam<SloppyKey> {};

TEST_P(SloppilyEncodedKeys, AreWrittenAnewAsTheSerializerDoes) {
    ForgedCertificate form;
    form.keyBits = GetParam().bits;
    const CertificateHandle certificate = ParseCertificateDer(form.Der());
    const Bytes expected{0x30, 0x07, 0x02, 0x02, 0x03, 0x03, 0x02, 0x01, 0x03};
    EXPECT_EQ(*EncodePublicKeyOf(*certificate), expected);
    EXPECT_EQ(Serialized(*certificate), expected);
}

// 29 * 31 = 899 = 0x383: only the byte next to the zero tells that the zero is one too many.
TEST(CertificateKey, LosesAZeroInFrontOfAModulusWithAHighByte) {
    ForgedCertificate form;
    form.keyBits = std::string("\x30\x08\x02\x03\x00\x03\x83\x02\x01\x03", 10);
    EXPECT_EQ(*EncodePublicKeyOf(*ParseCertificateDer(form.Der())),
              (Bytes{0x30, 0x07, 0x02, 0x02, 0x03, 0x83, 0x02, 0x01, 0x03}));
}

INSTANTIATE_TEST_SUITE_P(
    CertificateKey, SloppilyEncodedKeys,
    testing::Values(
        SloppyKey{"AsItShouldBe", std::string("\x30\x07\x02\x02\x03\x03\x02\x01\x03", 9)},
        SloppyKey{"BytesBehindIt", std::string("\x30\x07\x02\x02\x03\x03\x02\x01\x03more", 13)},
        SloppyKey{"PaddedModulus", std::string("\x30\x08\x02\x03\x00\x03\x03\x02\x01\x03", 10)},
        SloppyKey{"PaddedExponent", std::string("\x30\x08\x02\x02\x03\x03\x02\x02\x00\x03", 10)},
        SloppyKey{"LongFormOfTheWholesLength",
                  std::string("\x30\x81\x07\x02\x02\x03\x03\x02\x01\x03", 10)},
        SloppyKey{"LongFormOfANumbersLength",
                  std::string("\x30\x08\x02\x81\x02\x03\x03\x02\x01\x03", 10)},
        SloppyKey{"IndefiniteLength",
                  std::string("\x30\x80\x02\x02\x03\x03\x02\x01\x03\x00\x00", 11)}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CertificateKey, WritesAModulusWithoutItsSignByteAsTheSerializerDoes) {
    // 0x83 is -125 in DER; the decoder takes the digits as they stand, 131.
    ForgedCertificate form;
    form.keyBits = std::string("\x30\x06\x02\x01\x83\x02\x01\x03", 8);
    const CertificateHandle certificate = ParseCertificateDer(form.Der());
    const Bytes expected{0x30, 0x07, 0x02, 0x02, 0x00, 0x83, 0x02, 0x01, 0x03};
    EXPECT_EQ(*EncodePublicKeyOf(*certificate), expected);
    EXPECT_EQ(Serialized(*certificate), expected);
}

TEST(CertificateKey, HasTheLengthsThatNeedMoreBytes) {
    for (const std::size_t size : {126U, 127U, 128U, 129U, 255U, 256U, 512U}) {
        SCOPED_TRACE(size);
        const std::string modulus = '\x7f' + std::string(size - 1, '\x11');
        ForgedCertificate form;
        form.keyBits = DerValue(0x30, DerValue(0x02, modulus) + DerValue(0x02, "\x03"));
        const CertificateHandle certificate = ParseCertificateDer(form.Der());
        EXPECT_EQ(*EncodePublicKeyOf(*certificate), *ToBlob(form.keyBits));
        EXPECT_EQ(Serialized(*certificate), *ToBlob(form.keyBits));
    }
}

TEST(CertificateKey, MustBeDecodable) {
    for (const std::string bits : {"", "garbage", "\x30\x03\x02\x01\x23"}) {
        ForgedCertificate form;
        form.keyBits = bits;
        const CertificateHandle certificate = ParseCertificateDer(form.Der());
        EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { EncodePublicKeyOf(*certificate); }),
                  "Invalid x509 certificate");
    }
}

TEST(CertificateKey, MustBeOfATypeThatCanBeWritten) {
    for (const char* const name : {"ed25519-self-signed", "rsa-pss-self-signed"}) {
        SCOPED_TRACE(name);
        const CertificateHandle certificate = ParseCertificateDer(CertificateNamed(name).der);
        EXPECT_EQ(MessageOf<CryptoException>([&] { EncodePublicKeyOf(*certificate); }),
                  "Crypto Exception: Invalid or unsupported public key");
    }
}

TEST(CertificateKey, OfZerosIsWrittenAsTheSerializerDoes) {
    ForgedCertificate form;
    form.keyBits = std::string("\x30\x06\x02\x01\x00\x02\x01\x00", 8);
    const CertificateHandle certificate = ParseCertificateDer(form.Der());
    EXPECT_EQ(*EncodePublicKeyOf(*certificate), *ToBlob(form.keyBits));
    EXPECT_EQ(Serialized(*certificate), *ToBlob(form.keyBits));
}

}  // namespace
}  // namespace Saml::Xml::Security
