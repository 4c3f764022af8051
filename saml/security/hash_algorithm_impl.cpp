#include "saml/security/hash_algorithm_impl.h"

#include "saml/foundations.h"
#include "saml/security/digest_method.h"
#include "saml/security/openssl_handles.h"

namespace Saml::Xml::Security {
namespace {
constexpr char kInitializationFailed[] = "Digest context initialization failed";
constexpr char kDigestFailed[] = "Digest calculation failed";
}  // namespace

void HashAlgorithmImpl::Digest(const unsigned char* data, std::size_t length,
                               std::vector<unsigned char>& digest) {
    const EVP_MD& method = DigestMethod(digestId_);
    const DigestContextHandle context(EVP_MD_CTX_new());
    if (!context || EVP_DigestInit_ex(context.get(), &method, nullptr) != 1)
        throw CryptoException(kInitializationFailed);
    if (EVP_DigestUpdate(context.get(), data, length) != 1) throw CryptoException(kDigestFailed);

    std::vector<unsigned char> result(static_cast<std::size_t>(EVP_MD_size(&method)));
    if (EVP_DigestFinal_ex(context.get(), result.data(), nullptr) != 1)
        throw CryptoException(kDigestFailed);
    digest.swap(result);  // the caller's vector changes only when all went well
}

}  // namespace Saml::Xml::Security
