#pragma once

#include "saml/foundations.h"
#include "saml/security/digest_id.h"

#include <cstddef>
#include <vector>

namespace Saml::Xml::Security {

/// Makes a signature. Held through shared pointers to the implementation, which know how to destroy
/// it. Threads: no mutable state.
class SignAlgorithm {
  public:
    /// Replaces `signature` by the signature over the digest of `length` bytes at `data`.
    /// \throws CryptoException  The key is refused or OpenSSL failed; `signature` is unchanged.
    virtual void Sign(const unsigned char* data, std::size_t length,
                      std::vector<unsigned char>& signature) = 0;

  protected:
    ~SignAlgorithm() = default;
};

/// RSASSA-PKCS1-v1_5 (RFC 8017 section 8.2).
class SignAlgorithmImpl final : public virtual SignAlgorithm {
  public:
    /// \param privateKey  DER of an RSA private key (RFC 8017 appendix A.1.2), decoded anew by
    /// every
    ///                    call. Bytes behind it are ignored, as OpenSSL's decoder does.
    SignAlgorithmImpl(DigestId digestId, ByteBlob privateKey) noexcept;
    virtual ~SignAlgorithmImpl() = default;

    /// \throws InvalidArgumentException  There is no such digest; `signature` is unchanged.
    void Sign(const unsigned char* data, std::size_t length,
              std::vector<unsigned char>& signature) override;

  private:
    const DigestId digestId_;
    const ByteBlob privateKey_;
};

}  // namespace Saml::Xml::Security
