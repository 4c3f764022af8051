#include "support/key_laws.h"

#include "saml/security.h"
#include "saml/security/openssl_handles.h"
#include "saml/security/x509_key_info.h"
#include "support/laws.h"
#include "support/signing_key.h"

#include <openssl/err.h>
#include <openssl/pem.h>

namespace Fuzz {
namespace {

using namespace Saml::Xml::Security;
using Saml::ByteBlob;

/// Null when `convert` refuses.
template <class Convert>
ByteBlob BlobOf(Convert convert, const std::string& pem) {
    ByteBlob blob;
    try {
        convert(pem, blob);
    } catch (const Saml::InvalidArgumentException&) {
    } catch (const CryptoException&) {
    }
    ERR_clear_error();  // the queue is the caller's to clear
    return blob;
}

/// What `write` puts into a buffer of OpenSSL's.
template <class Write>
std::string Written(Write write) {
    const BufferHandle out(BIO_new(BIO_s_mem()));
    if (write(out.get()) != 1) return {};
    char* data = nullptr;
    const long size = BIO_get_mem_data(out.get(), &data);
    return std::string(data, static_cast<std::size_t>(size));
}

CertificateHandle CertificateOf(const ByteBlob& der) {
    const unsigned char* input = der->data();
    return CertificateHandle(d2i_X509(nullptr, &input, static_cast<long>(der->size())));
}

std::string Serialized(X509& certificate) {
    return Written([&](BIO* out) { return i2d_X509_bio(out, &certificate); });
}

/// As the serializer writes the key, which the library passes by when it can.
ByteBlob PublicKeyOf(X509& certificate) {
    const KeyHandle key(X509_get_pubkey(&certificate));
    unsigned char* output = nullptr;
    const int size = key ? i2d_PublicKey(key.get(), &output) : -1;
    const AllocationHandle held(output);
    if (size < 0) return nullptr;
    return std::make_shared<const std::vector<unsigned char>>(output, output + size);
}

ByteBlob KeyFromLibrary(const ByteBlob& certificate) {
    return BlobOf([&](const std::string&, ByteBlob& key) { key = ExtractCertPubKey(certificate); },
                  {});
}

bool AreEqual(const ByteBlob& left, const ByteBlob& right) {
    return left == nullptr || right == nullptr ? left == right : *left == *right;
}

using CreateResolver = void(const std::list<ByteBlob>&, boost::intrusive_ptr<KeyInfoResolver>&);

std::list<ByteBlob> KeysOffered(CreateResolver* create, const ByteBlob& trusted,
                                const ByteBlob& sent) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    create({trusted}, resolver);
    const boost::intrusive_ptr<X509KeyInfo> keyInfo(new X509KeyInfo("ds", {sent}));
    std::list<ByteBlob> keys;
    try {
        resolver->Resolve(keyInfo.get(), keys);
    } catch (const Saml::InvalidArgumentException&) {
        keys.clear();  // the key of a certificate that would be accepted cannot be read
    } catch (const CryptoException&) {
        keys.clear();
    }
    return keys;
}

void CheckResolvers(const ByteBlob& der, const ByteBlob& key) {
    static const ByteBlob signer = Certificate();
    static const ByteBlob signersKey = ExtractCertPubKey(signer);
    for (CreateResolver* const create : {CreateTrustChainKeyResolver, CreateTrustSetKeyResolver}) {
        for (const ByteBlob& offered : KeysOffered(create, der, der))
            Require(AreEqual(offered, key), "a trusted certificate offers its own key only");
        for (const ByteBlob& offered : KeysOffered(create, der, signer))
            Require(AreEqual(offered, key) || AreEqual(key, signersKey),
                    "trust in one certificate gives no key of another");
        for (const ByteBlob& offered : KeysOffered(create, signer, der))
            Require(AreEqual(offered, signersKey), "what was sent is not trusted for being sent");
    }
    ERR_clear_error();
}

}  // namespace

void CheckCertificateDer(const ByteBlob& der) {
    const CertificateHandle certificate = CertificateOf(der);
    const ByteBlob key = KeyFromLibrary(der);
    if (!certificate) {
        Require(key == nullptr, "no certificate, no key");
        ERR_clear_error();
        return;
    }
    Require(AreEqual(key, PublicKeyOf(*certificate)),
            "the key of a certificate is the one that OpenSSL serializes");
    CheckResolvers(der, key);
}

void CheckCertificatePem(const std::string& pem) {
    const ByteBlob der = BlobOf(CertificatePEMToBlob, pem);
    if (!der) return;
    const CertificateHandle certificate = CertificateOf(der);
    Require(certificate != nullptr, "what came out of PEM is a certificate");
    Require(Serialized(*certificate) == std::string(der->begin(), der->end()),
            "a certificate out of PEM is what OpenSSL serializes");
    const std::string again =
        Written([&](BIO* out) { return PEM_write_bio_X509(out, certificate.get()); });
    Require(AreEqual(BlobOf(CertificatePEMToBlob, again), der), "a certificate survives PEM");
    CheckCertificateDer(der);
}

void CheckPublicKeyPem(const std::string& pem) {
    const ByteBlob der = BlobOf(PublicKeyPEMToBlob, pem);
    if (!der) return;
    const unsigned char* input = der->data();
    const KeyHandle key(
        d2i_PublicKey(EVP_PKEY_RSA, nullptr, &input, static_cast<long>(der->size())));
    Require(key != nullptr, "what came out of PEM is a public RSA key");
    const std::string again =
        Written([&](BIO* out) { return PEM_write_bio_PUBKEY(out, key.get()); });
    Require(AreEqual(BlobOf(PublicKeyPEMToBlob, again), der), "a public key survives PEM");
}

void CheckPrivateKeyPem(const std::string& pem) {
    const ByteBlob der = BlobOf(PrivateKeyPEMToBlob, pem);
    if (!der) return;
    const unsigned char* input = der->data();
    const KeyHandle key(d2i_AutoPrivateKey(nullptr, &input, static_cast<long>(der->size())));
    if (!key) return;  // the traditional form of some kinds of key does not say which kind it is
    const std::string again = Written([&](BIO* out) {
        return PEM_write_bio_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
    Require(AreEqual(BlobOf(PrivateKeyPEMToBlob, again), der), "a private key survives PEM");
}

}  // namespace Fuzz
