#include "saml/security/hash_algorithm_impl.h"

#include "saml/foundations.h"
#include "saml/security/digest_method.h"
#include "saml/security/openssl_handles.h"

namespace Saml::Xml::Security {
namespace {
constexpr char kInitializationFailed[] = "Digest context initialization failed";
constexpr char kDigestFailed[] = "Digest calculation failed";

/// A digest under way, to which everything is added that is written to it.
class RunningDigest final : public Writer {
  public:
    explicit RunningDigest(const EVP_MD& method) : method_(method), context_(EVP_MD_CTX_new()) {
        if (!context_ || EVP_DigestInit_ex(context_.get(), &method_, nullptr) != 1)
            throw CryptoException(kInitializationFailed);
    }

    void Add(const void* data, std::size_t length) {
        if (EVP_DigestUpdate(context_.get(), data, length) != 1)
            throw CryptoException(kDigestFailed);
    }
    void Write(const char* data, int length) override {
        Add(data, static_cast<std::size_t>(length));
    }

    std::vector<unsigned char> Finish() {
        std::vector<unsigned char> digest(static_cast<std::size_t>(EVP_MD_size(&method_)));
        if (EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr) != 1)
            throw CryptoException(kDigestFailed);
        return digest;
    }

  private:
    const EVP_MD& method_;
    const DigestContextHandle context_;
};

}  // namespace

void HashAlgorithmImpl::Digest(const unsigned char* data, std::size_t length,
                               std::vector<unsigned char>& digest) {
    RunningDigest running(DigestMethod(digestId_));
    running.Add(data, length);
    digest = running.Finish();  // the caller's vector changes only when all went well
}

std::vector<unsigned char> HashAlgorithmImpl::DigestOf(const std::function<void(Writer&)>& write) {
    RunningDigest running(DigestMethod(digestId_));
    write(running);
    return running.Finish();
}

}  // namespace Saml::Xml::Security
