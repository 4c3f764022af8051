#pragma once

#include "saml/foundations.h"
#include "saml/security/digest_id.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace Saml::Xml::Security {

/// Computes a digest. Threads: no mutable state.
class HashAlgorithm {
  public:
    /// Replaces `digest` by the digest of `length` bytes at `data`.
    /// \throws CryptoException  OpenSSL failed; `digest` is unchanged.
    virtual void Digest(const unsigned char* data, std::size_t length,
                        std::vector<unsigned char>& digest) = 0;
    /// The digest of all that `write` writes, of which nothing is stored.
    /// \throws CryptoException  OpenSSL failed. What `write` throws passes through.
    virtual std::vector<unsigned char> DigestOf(const std::function<void(Writer&)>& write) = 0;
    virtual ~HashAlgorithm() = default;
};

class HashAlgorithmImpl final : public HashAlgorithm {
  public:
    explicit HashAlgorithmImpl(DigestId digestId) noexcept : digestId_(digestId) {}

    /// \throws InvalidArgumentException  There is no such digest; `digest` is unchanged.
    void Digest(const unsigned char* data, std::size_t length,
                std::vector<unsigned char>& digest) override;
    std::vector<unsigned char> DigestOf(const std::function<void(Writer&)>& write) override;

  private:
    const DigestId digestId_;
};

}  // namespace Saml::Xml::Security
