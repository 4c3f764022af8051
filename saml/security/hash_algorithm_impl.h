#pragma once

#include "saml/security/digest_id.h"

#include <cstddef>
#include <vector>

namespace Saml::Xml::Security {

/// Computes a digest. Threads: no mutable state.
class HashAlgorithm {
  public:
    /// Replaces `digest` by the digest of `length` bytes at `data`.
    /// \throws CryptoException  OpenSSL failed; `digest` is unchanged.
    virtual void Digest(const unsigned char* data, std::size_t length,
                        std::vector<unsigned char>& digest) = 0;
    virtual ~HashAlgorithm() = default;
};

class HashAlgorithmImpl final : public HashAlgorithm {
  public:
    explicit HashAlgorithmImpl(DigestId digestId) noexcept : digestId_(digestId) {}

    /// \throws InvalidArgumentException  There is no such digest; `digest` is unchanged.
    void Digest(const unsigned char* data, std::size_t length,
                std::vector<unsigned char>& digest) override;

  private:
    const DigestId digestId_;
};

}  // namespace Saml::Xml::Security
