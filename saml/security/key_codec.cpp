#include "saml/security/key_codec.h"

#include "saml/security/decoded_key.h"
#include "saml/security/der_conversion.h"
#include "saml/security/pem_input.h"

#include <openssl/pem.h>

namespace Saml::Xml::Security {
namespace {
constexpr char kInvalidPrivateKey[] = "Invalid or unsupported private key";
constexpr char kInvalidPublicKey[] = "Invalid or unsupported public key";
constexpr char kInvalidPublicKeyFormat[] = "Invalid or unsupported format of the public key";

/// Keys are RSA by check: a decoder that is asked for RSA may still unwrap a key of another type.
bool IsRsaKey(const KeyHandle& key) noexcept {
    return key && IsRsa(*key);
}

EVP_PKEY* DecodePrivateKey(const unsigned char** input, long length) noexcept {
    return d2i_PrivateKey(EVP_PKEY_RSA, nullptr, input, length);
}

EVP_PKEY* DecodePublicKey(const unsigned char** input, long length) noexcept {
    return d2i_PublicKey(EVP_PKEY_RSA, nullptr, input, length);
}

/// The content of the first block with this label (RFC 7468); null when there is none.
AllocationHandle ReadPemBlock(const std::string& pem, const char* label, long& length) {
    const BufferHandle input = OpenPem(pem);
    unsigned char* content = nullptr;
    if (!input || PEM_bytes_read_bio(&content, &length, nullptr, label, input.get(),
                                     RefusePassPhrase, nullptr) != 1)
        return nullptr;
    return AllocationHandle(content);
}
}  // namespace

KeyHandle ParseRsaPrivateKeyDer(const ByteBlob& der) {
    KeyHandle key(DecodeDer(der, DecodePrivateKey));
    if (!IsRsaKey(key)) throw CryptoException(kInvalidPrivateKey);
    return key;
}

KeyHandle ParseRsaPublicKeyDer(const ByteBlob& der) {
    if (KeyHandle decoded = DecodedKeyOf(der)) return decoded;
    KeyHandle key(DecodeDer(der, DecodePublicKey));
    if (!IsRsaKey(key)) throw CryptoException(kInvalidPublicKeyFormat);
    return key;
}

KeyHandle ParsePrivateKeyPem(const std::string& pem) {
    const BufferHandle input = OpenPem(pem);
    KeyHandle key(input ? PEM_read_bio_PrivateKey(input.get(), nullptr, RefusePassPhrase, nullptr)
                        : nullptr);
    if (!key) throw CryptoException(kInvalidPrivateKey);
    return key;
}

KeyHandle ParseRsaPublicKeyPem(const std::string& pem) {
    // Not OpenSSL's reader of public keys: since 3.0 it takes other labels than this one.
    long length = 0;
    const AllocationHandle content = ReadPemBlock(pem, PEM_STRING_PUBLIC, length);
    const unsigned char* input = content.get();
    KeyHandle key(content ? d2i_PUBKEY(nullptr, &input, length) : nullptr);
    if (!IsRsaKey(key)) throw CryptoException(kInvalidPublicKey);
    return key;
}

ByteBlob EncodePrivateKey(EVP_PKEY& key) {
    ByteBlob der =
        EncodeDer([&key](unsigned char** output) { return i2d_PrivateKey(&key, output); });
    if (!der) throw CryptoException(kInvalidPrivateKey);
    return der;
}

ByteBlob EncodePublicKey(EVP_PKEY& key) {
    ByteBlob der =
        EncodeDer([&key](unsigned char** output) { return i2d_PublicKey(&key, output); });
    if (!der) throw CryptoException(kInvalidPublicKey);
    return der;
}

}  // namespace Saml::Xml::Security
