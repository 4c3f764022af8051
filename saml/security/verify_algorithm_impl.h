#pragma once

#include "saml/foundations.h"
#include "saml/security/digest_id.h"

#include <cstddef>
#include <vector>

namespace Saml::Xml::Security {

/// Checks a signature. Threads: no mutable state.
class VerifyAlgorithm {
  public:
    /// True when `signature` is valid for the `length` bytes at `data`.
    /// \throws CryptoException  The key is refused or OpenSSL failed.
    virtual bool Verify(const unsigned char* data, std::size_t length,
                        const std::vector<unsigned char>& signature) = 0;
    virtual ~VerifyAlgorithm() = default;
};

/// RSASSA-PKCS1-v1_5 (RFC 8017 section 8.2).
class VerifyAlgorithmImpl final : public VerifyAlgorithm {
  public:
    /// \param publicKey  DER of an RSA public key (RFC 8017 appendix A.1.1), decoded anew by every
    ///                   call. Bytes behind it are ignored, as OpenSSL's decoder does.
    VerifyAlgorithmImpl(DigestId digestId, ByteBlob publicKey) noexcept;

    /// A signature of another length than the key's modulus is not valid, and no failure.
    /// \throws InvalidArgumentException  There is no such digest.
    bool Verify(const unsigned char* data, std::size_t length,
                const std::vector<unsigned char>& signature) override;

  private:
    const DigestId digestId_;
    const ByteBlob publicKey_;
};

}  // namespace Saml::Xml::Security
