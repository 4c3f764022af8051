#include "saml/security/certificate_codec.h"

#include "saml/security/decoded_key.h"
#include "saml/security/der_conversion.h"
#include "saml/security/key_codec.h"
#include "saml/security/pem_input.h"

#include <openssl/asn1.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace Saml::Xml::Security {
namespace {
constexpr char kInvalidCertificate[] = "Invalid X.509 Certificate";
constexpr char kInvalidCertificateFormat[] = "Wrong or unsupported X.509 Certificate format";
constexpr char kNoPublicKey[] = "Invalid x509 certificate";

/// Bytes of an encoding that are still to be read.
struct Bytes {
    const unsigned char* data;
    long size;
};

/// Takes the first value off `rest` and gives its content. False when its length is not written as
/// DER wants it, in as few bytes as possible (X.690 section 10.1).
bool TakeDerValue(Bytes& rest, Bytes& content) {
    const unsigned char* at = rest.data;
    int tag = 0;
    int tagClass = 0;
    const int form = ASN1_get_object(&at, &content.size, &tag, &tagClass, rest.size);
    if ((form & ~V_ASN1_CONSTRUCTED) != 0) return false;  // unreadable or of indefinite length
    content.data = at;
    const long size = static_cast<long>(at - rest.data) + content.size;  // no more than there is
    rest = {rest.data + size, rest.size - size};
    return size == ASN1_object_size(form, static_cast<int>(content.size), tag);
}

/// Takes the first number off `rest`. False when it is not written as DER wants a number that is
/// not negative, without superfluous zeros in front (X.690 section 8.3).
bool TakeDerNatural(Bytes& rest) {
    Bytes digits{};
    if (!TakeDerValue(rest, digits) || digits.size == 0) return false;
    const bool isNegative = digits.data[0] >= 0x80;
    const bool isPadded = digits.size > 1 && digits.data[0] == 0 && digits.data[1] < 0x80;
    return !isNegative && !isPadded;
}

/// True when the serializer would write these bytes. They were decoded as an RSAPublicKey (RFC 8017
/// appendix A.1.1) already, two numbers in a sequence; but the decoder takes more than DER and
/// ignores what stands behind.
bool IsDerRsaPublicKey(const ASN1_BIT_STRING& bits) {
    Bytes rest{ASN1_STRING_get0_data(&bits), ASN1_STRING_length(&bits)};
    Bytes numbers{};
    return TakeDerValue(rest, numbers) && rest.size == 0 && TakeDerNatural(numbers) &&
           TakeDerNatural(numbers);
}

/// Set by OpenSSL where it could not digest the certificate; 1.1.1 calls the certificate invalid
/// then.
#ifdef EXFLAG_NO_FINGERPRINT
constexpr std::uint32_t kUndigested = EXFLAG_NO_FINGERPRINT;
#else
constexpr std::uint32_t kUndigested = 0;
#endif

/// True when OpenSSL could make out the certificate's key and extensions, which it does once in the
/// certificate's life. One that bears its own name has signed itself, or looks as if it had not for
/// want of memory.
bool IsWhole(X509& certificate) {
    if (X509_get0_pubkey(&certificate) == nullptr) return false;
    if (X509_check_purpose(&certificate, -1, 0) != 1) return false;
    const std::uint32_t flags = X509_get_extension_flags(&certificate);
    if ((flags & kUndigested) != 0) return false;
    return (flags & EXFLAG_SI) == 0 || (flags & EXFLAG_SS) != 0;
}

CertificateHandle Decode(const ByteBlob& der) {
    return CertificateHandle(DecodeDer(der, [](const unsigned char** input, long length) {
        return d2i_X509(nullptr, input, length);
    }));
}
}  // namespace

// What OpenSSL could not read for want of memory looks like what cannot be read at all, and the
// certificate keeps the flaw for its life, which for a trusted one is that of its resolver. So what
// looks flawed is read once more.
CertificateHandle DecodeCertificateDer(const ByteBlob& der) {
    CertificateHandle certificate = Decode(der);
    return certificate && IsWhole(*certificate) ? std::move(certificate) : Decode(der);
}

CertificateHandle ParseCertificateDer(const ByteBlob& der) {
    CertificateHandle certificate = DecodeCertificateDer(der);
    if (!certificate) throw InvalidArgumentException(kInvalidCertificate);
    return certificate;
}

CertificateHandle ParseCertificatePem(const std::string& pem) {
    const BufferHandle input = OpenPem(pem);
    CertificateHandle certificate(
        input ? PEM_read_bio_X509(input.get(), nullptr, RefusePassPhrase, nullptr) : nullptr);
    if (!certificate) throw InvalidArgumentException(kInvalidCertificateFormat);
    return certificate;
}

ByteBlob EncodeCertificate(X509& certificate) {
    ByteBlob der = EncodeDer(
        [&certificate](unsigned char** output) { return i2d_X509(&certificate, output); });
    if (!der) throw CryptoException(kInvalidCertificateFormat);
    return der;
}

ByteBlob EncodePublicKeyOf(X509& certificate) {
    EVP_PKEY* const key = X509_get0_pubkey(&certificate);
    if (key == nullptr) throw InvalidArgumentException(kNoPublicKey);

    // The bytes of an RSA key stand in the certificate; serializing it anew costs more than
    // verifying a signature with it. Only sloppily encoded ones have to be put right.
    const ASN1_BIT_STRING& bits = *X509_get0_pubkey_bitstr(&certificate);
    if (!IsRsa(*key) || !IsDerRsaPublicKey(bits)) return EncodePublicKey(*key);
    const unsigned char* const begin = ASN1_STRING_get0_data(&bits);
    return WithDecodedKey({begin, begin + ASN1_STRING_length(&bits)}, *key);
}

}  // namespace Saml::Xml::Security
