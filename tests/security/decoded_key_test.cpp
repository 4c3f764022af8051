#include "saml/security/decoded_key.h"

#include "saml/foundations.h"
#include "saml/security/certificate_codec.h"
#include "saml/security/key_codec.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using TestKeys::CertificateNamed;
using TestKeys::KeyNamed;

KeyHandle DecodedRoot() {
    return ParseRsaPublicKeyDer(KeyNamed("root").publicKey);
}

TEST(DecodedKey, IsThatOfTheBytes) {
    const KeyHandle key = DecodedRoot();
    const ByteBlob der = WithDecodedKey({1, 2, 3}, *key);
    EXPECT_EQ(*der, (Bytes{1, 2, 3}));
    EXPECT_EQ(DecodedKeyOf(der).get(), key.get());
}

TEST(DecodedKey, IsNotRememberedByOtherBlobs) {
    EXPECT_EQ(DecodedKeyOf(nullptr), nullptr);
    EXPECT_EQ(DecodedKeyOf(std::make_shared<const Bytes>(Bytes{1, 2, 3})), nullptr);
    EXPECT_EQ(DecodedKeyOf(KeyNamed("root").publicKey), nullptr);
}

// A pointer that shares the ownership of one object and points to another is how standard pointers
// hand out members; its bytes are not those of the key.
TEST(DecodedKey, IsNotThatOfOtherBytesOfTheSameOwner) {
    const ByteBlob der = WithDecodedKey({1, 2, 3}, *DecodedRoot());
    const Bytes others = *KeyNamed("leaf").publicKey;
    const ByteBlob alias(der, &others);
    EXPECT_EQ(DecodedKeyOf(alias), nullptr);
    EXPECT_EQ(*EncodePublicKey(*ParseRsaPublicKeyDer(alias)), others);
}

TEST(DecodedKey, LivesAsLongAsTheBytesAndAsWhoeverTookIt) {
    ByteBlob der = WithDecodedKey({1, 2, 3}, *DecodedRoot());
    const ByteBlob copy = der;
    der.reset();
    const KeyHandle taken = DecodedKeyOf(copy);
    EXPECT_EQ(*EncodePublicKey(*taken), *KeyNamed("root").publicKey);
}

TEST(DecodedKey, IsTakenInsteadOfDecodingTheBytes) {
    const KeyHandle key = DecodedRoot();
    EXPECT_EQ(ParseRsaPublicKeyDer(WithDecodedKey({1, 2, 3}, *key)).get(), key.get());
}

TEST(DecodedKey, ComesWithTheKeyOfACertificate) {
    const CertificateHandle certificate = ParseCertificateDer(CertificateNamed("root").der);
    EXPECT_EQ(DecodedKeyOf(EncodePublicKeyOf(*certificate)).get(),
              X509_get0_pubkey(certificate.get()));
}

}  // namespace
}  // namespace Saml::Xml::Security
