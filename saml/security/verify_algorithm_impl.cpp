#include "saml/security/verify_algorithm_impl.h"

#include "saml/foundations/checked_narrowing.h"
#include "saml/security/digest_method.h"
#include "saml/security/key_codec.h"
#include "saml/security/openssl_handles.h"

#include <utility>

namespace Saml::Xml::Security {
namespace {
constexpr char kInitializationFailed[] = "Failed to initialize signature verification context.";
constexpr char kVerificationFailed[] = "Signature verification failed";
}  // namespace

VerifyAlgorithmImpl::VerifyAlgorithmImpl(DigestId digestId, ByteBlob publicKey) noexcept
    : digestId_(digestId), publicKey_(std::move(publicKey)) {}

bool VerifyAlgorithmImpl::Verify(const unsigned char* data, std::size_t length,
                                 const std::vector<unsigned char>& signature) {
    const KeyHandle key = ParseRsaPublicKeyDer(publicKey_);
    const EVP_MD& method = DigestMethod(digestId_);
    const DigestContextHandle context(EVP_MD_CTX_new());
    if (!context || EVP_VerifyInit_ex(context.get(), &method, nullptr) != 1)
        throw CryptoException(kInitializationFailed);
    // Without a copy of the context, which it is not always able to make and then answers as for a
    // wrong signature.
    EVP_MD_CTX_set_flags(context.get(), EVP_MD_CTX_FLAG_FINALISE);
    if (EVP_VerifyUpdate(context.get(), data, length) != 1)
        throw CryptoException(kVerificationFailed);

    if (!FitsIn<unsigned int>(signature.size())) return false;  // longer than any modulus
    const int verdict = EVP_VerifyFinal(context.get(), signature.data(),
                                        static_cast<unsigned int>(signature.size()), key.get());
    if (verdict < 0) throw CryptoException(kVerificationFailed);
    return verdict == 1;
}

}  // namespace Saml::Xml::Security
