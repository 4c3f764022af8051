#include "oracle/chains/described_certificate.h"

#include "saml/security/openssl_handles.h"

#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include <array>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace Chains {
namespace {

using Saml::Xml::Security::AllocationHandle;
using Saml::Xml::Security::BufferHandle;
using Saml::Xml::Security::CertificateHandle;
using Saml::Xml::Security::FreeWith;
using Saml::Xml::Security::KeyHandle;
using ExtensionHandle = std::unique_ptr<X509_EXTENSION, FreeWith<X509_EXTENSION_free>>;
using KeyContextHandle = std::unique_ptr<EVP_PKEY_CTX, FreeWith<EVP_PKEY_CTX_free>>;
using TimeHandle = std::unique_ptr<ASN1_TIME, FreeWith<ASN1_TIME_free>>;

void Require(bool done, const char* step) {
    if (!done) throw std::runtime_error(std::string("OpenSSL refuses: ") + step);
}

KeyHandle GenerateKey() {
    const KeyContextHandle context(EVP_PKEY_CTX_new_id(EVP_PKEY_RSA, nullptr));
    EVP_PKEY* key = nullptr;
    Require(context && EVP_PKEY_keygen_init(context.get()) == 1 &&
                EVP_PKEY_CTX_set_rsa_keygen_bits(context.get(), 1024) == 1 &&
                EVP_PKEY_keygen(context.get(), &key) == 1,
            "a key");
    return KeyHandle(key);
}

EVP_PKEY& KeyOfPool(std::size_t index) {
    static std::array<KeyHandle, kPoolSize> pool;
    KeyHandle& key = pool.at(index);
    if (!key) key = GenerateKey();
    return *key;
}

/// The bytes that `write` gives to OpenSSL's convention of encoders.
template <class Write>
Saml::ByteBlob Encoded(Write write) {
    unsigned char* output = nullptr;
    const int length = write(&output);
    const AllocationHandle encoding(output);
    Require(length > 0, "an encoding");
    return std::make_shared<const std::vector<unsigned char>>(output, output + length);
}

void SetName(X509_NAME* name, const std::string& commonName) {
    Require(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                       reinterpret_cast<const unsigned char*>(commonName.data()),
                                       static_cast<int>(commonName.size()), -1, 0) == 1,
            "a name");
}

void SetPeriod(X509* certificate, Validity validity) {
    struct Period {
        const char* from;
        const char* to;
    };
    const Period period =
        validity == Validity::Expired       ? Period{"20100101000000Z", "20110101000000Z"}
        : validity == Validity::NotYetValid ? Period{"20900101000000Z", "20990101000000Z"}
                                            : Period{"20200101000000Z", "20990101000000Z"};
    const TimeHandle from(ASN1_TIME_new());
    const TimeHandle to(ASN1_TIME_new());
    Require(from && to && ASN1_TIME_set_string_X509(from.get(), period.from) == 1 &&
                ASN1_TIME_set_string_X509(to.get(), period.to) == 1 &&
                X509_set1_notBefore(certificate, from.get()) == 1 &&
                X509_set1_notAfter(certificate, to.get()) == 1,
            "a validity period");
}

/// Hexadecimal digits of the identifier of a key: four bytes.
std::string Identifier(std::size_t key) {
    return "4B65790" + std::to_string(key);
}

/// An extension in the words of OpenSSL's configuration files.
void Extend(X509* certificate, const char* name, const std::string& value) {
    const ExtensionHandle extension(X509V3_EXT_nconf(nullptr, nullptr, name, value.c_str()));
    Require(extension && X509_add_ext(certificate, extension.get(), -1) == 1, name);
}

void AddExtensions(X509* certificate, const Description& description) {
    if (description.constraints != Constraints::Absent) {
        const bool isAuthority = description.constraints == Constraints::Authority;
        std::string value = isAuthority ? "critical,CA:TRUE" : "critical,CA:FALSE";
        if (description.pathLength) value += ",pathlen:" + std::to_string(*description.pathLength);
        Extend(certificate, "basicConstraints", value);
    }
    if (description.usage != Usage::Absent)
        Extend(certificate, "keyUsage",
               description.usage == Usage::CertSign ? "critical,keyCertSign,cRLSign"
                                                    : "critical,digitalSignature");
    if (description.identifiesKey)
        Extend(certificate, "subjectKeyIdentifier", Identifier(description.key));
    if (description.identifiedIssuer)  // a SEQUENCE that holds the keyIdentifier, RFC 5280 4.2.1.1
        Extend(certificate, "authorityKeyIdentifier",
               "DER:30068004" + Identifier(*description.identifiedIssuer));
    if (description.hasUnknownCriticalExtension)
        Extend(certificate, "1.3.6.1.4.1.99999.1", "critical,DER:0500");
}

}  // namespace

Saml::ByteBlob PublicKeyOfPool(std::size_t key) {
    return Encoded([key](unsigned char** out) { return i2d_PublicKey(&KeyOfPool(key), out); });
}

Certificate Issue(const Description& description) {
    static long serial = 0;
    const CertificateHandle handle(X509_new());
    X509* const certificate = handle.get();
    Require(certificate != nullptr &&
                X509_set_version(certificate, description.isVersion1 ? 0 : 2) == 1 &&
                ASN1_INTEGER_set(X509_get_serialNumber(certificate), ++serial) == 1 &&
                X509_set_pubkey(certificate, &KeyOfPool(description.key)) == 1,
            "a certificate");
    SetName(X509_get_subject_name(certificate), description.subject);
    SetName(X509_get_issuer_name(certificate), description.issuer);
    SetPeriod(certificate, description.validity);
    if (!description.isVersion1) AddExtensions(certificate, description);
    Require(X509_sign(certificate, &KeyOfPool(description.signingKey), EVP_sha256()) > 0,
            "a signature");

    const BufferHandle pem(BIO_new(BIO_s_mem()));
    Require(pem && PEM_write_bio_X509(pem.get(), certificate) == 1, "PEM");
    char* text = nullptr;
    const long length = BIO_get_mem_data(pem.get(), &text);
    return {Encoded([certificate](unsigned char** out) { return i2d_X509(certificate, out); }),
            std::string(text, static_cast<std::size_t>(length))};
}

std::string Summary(const Description& description) {
    std::ostringstream out;
    out << "'" << description.subject << "' (key " << description.key << ") by '"
        << description.issuer << "' (key " << description.signingKey << ")";
    if (description.validity == Validity::Expired) out << ", expired";
    if (description.validity == Validity::NotYetValid) out << ", not yet valid";
    if (description.isVersion1) return out.str() + ", version 1";
    if (description.constraints == Constraints::Authority) out << ", CA:TRUE";
    if (description.constraints == Constraints::NoAuthority) out << ", CA:FALSE";
    if (description.pathLength) out << ", pathlen:" << *description.pathLength;
    if (description.usage == Usage::CertSign) out << ", keyCertSign";
    if (description.usage == Usage::Signature) out << ", digitalSignature";
    if (description.identifiesKey) out << ", names its key";
    if (description.identifiedIssuer) out << ", names issuer key " << *description.identifiedIssuer;
    if (description.hasUnknownCriticalExtension) out << ", unknown critical extension";
    return out.str();
}

}  // namespace Chains
