#include "saml/security/key_codec.h"

#include "saml/foundations.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml::Security {
namespace {

using TestKeys::KeyNamed;
using TestKeys::OpenSsl;
using TestKeys::ToBlob;

TEST(KeyCodec, TellsRsaFromOtherTypes) {
    EXPECT_TRUE(IsRsa(*ParsePrivateKeyPem(KeyNamed("root").pem)));
    EXPECT_FALSE(IsRsa(*ParsePrivateKeyPem(KeyNamed("ec").pem)));
    EXPECT_FALSE(IsRsa(*ParsePrivateKeyPem(KeyNamed("rsa-pss").pem)));
}

TEST(KeyCodec, WritesTheKeysThatItReadFromDer) {
    EXPECT_EQ(*EncodePrivateKey(*ParseRsaPrivateKeyDer(KeyNamed("root").privateKey)),
              *KeyNamed("root").privateKey);
    EXPECT_EQ(*EncodePublicKey(*ParseRsaPublicKeyDer(KeyNamed("root").publicKey)),
              *KeyNamed("root").publicKey);
    EXPECT_EQ(*EncodePublicKey(*ParseRsaPrivateKeyDer(KeyNamed("root").privateKey)),
              *KeyNamed("root").publicKey);
}

TEST(KeyCodec, UnwrapsPkcs8ForRsaOnly) {
    const std::string wrap = "pkcs8 -topk8 -nocrypt -outform DER -in ";
    EXPECT_EQ(
        *EncodePrivateKey(*ParseRsaPrivateKeyDer(ToBlob(OpenSsl(wrap + KeyNamed("root").pemPath)))),
        *KeyNamed("root").privateKey);
    const ByteBlob ec = ToBlob(OpenSsl(wrap + KeyNamed("ec").pemPath));
    EXPECT_EQ(MessageOf<CryptoException>([&ec] { ParseRsaPrivateKeyDer(ec); }),
              "Crypto Exception: Invalid or unsupported private key");
}

TEST(KeyCodec, CannotWriteAPublicKeyWithoutAFormOfItsOwn) {
    const KeyHandle key = ParsePrivateKeyPem(KeyNamed("ed25519").pem);
    EXPECT_EQ(MessageOf<CryptoException>([&key] { EncodePublicKey(*key); }),
              "Crypto Exception: Invalid or unsupported public key");
}

}  // namespace
}  // namespace Saml::Xml::Security
