#include "saml/security.h"
#include "saml/security/certificate_codec.h"
#include "saml/security/key_codec.h"
#include "saml/security/openssl_handles.h"

#include <openssl/buffer.h>
#include <openssl/pem.h>

#include <memory>
#include <new>
#include <vector>

namespace Saml::Xml::Security {
namespace {
/// `key` as SubjectPublicKeyInfo under the label "PUBLIC KEY" (RFC 7468 section 13); empty when
/// OpenSSL cannot write it.
std::string WritePublicKeyPem(EVP_PKEY* key) {
    const BufferHandle output(BIO_new(BIO_s_mem()));
    if (!output) throw std::bad_alloc();
    if (key == nullptr || PEM_write_bio_PUBKEY(output.get(), key) != 1) return {};
    BUF_MEM* written = nullptr;
    BIO_get_mem_ptr(output.get(), &written);
    return std::string(written->data, written->length);
}
}  // namespace

void CertificatePEMToBlob(const std::string& pem, ByteBlob& result) {
    result = EncodeCertificate(*ParseCertificatePem(pem));
}

void PrivateKeyPEMToBlob(const std::string& pem, ByteBlob& result) {
    result = EncodePrivateKey(*ParsePrivateKeyPem(pem));
}

void PublicKeyPEMToBlob(const std::string& pem, ByteBlob& result) {
    result = EncodePublicKey(*ParseRsaPublicKeyPem(pem));
}

ByteBlob ExtractCertPubKey(const ByteBlob& certificate) {
    return EncodePublicKeyOf(*ParseCertificateDer(certificate));
}

std::string ExtractX509PublicKeyFromCertificateBase64(const std::string& base64) {
    std::string ignored;  // a text that is no Base64 gives no bytes, and those are no certificate
    const auto der =
        std::make_shared<const std::vector<unsigned char>>(Base64::Decode(base64, ignored));
    return WritePublicKeyPem(X509_get0_pubkey(ParseCertificateDer(der).get()));
}

}  // namespace Saml::Xml::Security
