#include "saml/security/sign_algorithm_impl.h"

#include "saml/security/digest_method.h"
#include "saml/security/key_codec.h"
#include "saml/security/openssl_handles.h"

#include <utility>

namespace Saml::Xml::Security {
namespace {
constexpr char kInitializationFailed[] = "Failed to initialize signature generation context.";
constexpr char kSigningFailed[] = "Signing operation failed";
}  // namespace

SignAlgorithmImpl::SignAlgorithmImpl(DigestId digestId, ByteBlob privateKey) noexcept
    : digestId_(digestId), privateKey_(std::move(privateKey)) {}

void SignAlgorithmImpl::Sign(const unsigned char* data, std::size_t length,
                             std::vector<unsigned char>& signature) {
    const KeyHandle key = ParseRsaPrivateKeyDer(privateKey_);
    const EVP_MD& method = DigestMethod(digestId_);
    const DigestContextHandle context(EVP_MD_CTX_new());
    if (!context || EVP_SignInit_ex(context.get(), &method, nullptr) != 1)
        throw CryptoException(kInitializationFailed);
    if (EVP_SignUpdate(context.get(), data, length) != 1) throw CryptoException(kSigningFailed);

    const int longest = EVP_PKEY_size(key.get());
    if (longest <= 0) throw CryptoException(kSigningFailed);  // a modulus of zero
    std::vector<unsigned char> result(static_cast<std::size_t>(longest));
    unsigned int written = 0;
    if (EVP_SignFinal(context.get(), result.data(), &written, key.get()) != 1)
        throw CryptoException(kSigningFailed);
    result.resize(written);
    signature.swap(result);  // the caller's vector changes only when all went well
}

}  // namespace Saml::Xml::Security
