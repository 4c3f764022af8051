#pragma once

#include <openssl/bio.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include <memory>

namespace Saml::Xml::Security {

/// A deleter that calls `Free`, for the types whose releasing call is a function.
template <auto Free>
struct FreeWith {
    template <class Object>
    void operator()(Object* object) const noexcept {
        Free(object);
    }
};

using CertificateStack = STACK_OF(X509);

/// Releases the stack and the certificates in it. Written out, like the next one, since current
/// OpenSSL has macros for these two.
struct FreeCertificateStack {
    void operator()(CertificateStack* stack) const noexcept { sk_X509_pop_free(stack, X509_free); }
};

/// Releases what OpenSSL allocated for its caller.
struct FreeAllocation {
    void operator()(unsigned char* allocation) const noexcept { OPENSSL_free(allocation); }
};

using AllocationHandle = std::unique_ptr<unsigned char, FreeAllocation>;
using BufferHandle = std::unique_ptr<BIO, FreeWith<BIO_free>>;
using CertificateHandle = std::unique_ptr<X509, FreeWith<X509_free>>;
using CertificateStackHandle = std::unique_ptr<CertificateStack, FreeCertificateStack>;
using DigestContextHandle = std::unique_ptr<EVP_MD_CTX, FreeWith<EVP_MD_CTX_free>>;
using KeyHandle = std::unique_ptr<EVP_PKEY, FreeWith<EVP_PKEY_free>>;
using StoreContextHandle = std::unique_ptr<X509_STORE_CTX, FreeWith<X509_STORE_CTX_free>>;
using StoreHandle = std::unique_ptr<X509_STORE, FreeWith<X509_STORE_free>>;

/// Another owner of `certificate`.
inline CertificateHandle Share(X509& certificate) noexcept {
    X509_up_ref(&certificate);
    return CertificateHandle(&certificate);
}
/// Another owner of `key`.
inline KeyHandle Share(EVP_PKEY& key) noexcept {
    EVP_PKEY_up_ref(&key);
    return KeyHandle(&key);
}

/// True for a plain RSA key; an RSA-PSS key is none.
inline bool IsRsa(const EVP_PKEY& key) noexcept {
    return EVP_PKEY_base_id(&key) == EVP_PKEY_RSA;
}

}  // namespace Saml::Xml::Security
