#pragma once

#include "saml/foundations.h"
#include "saml/security/openssl_handles.h"

#include <list>
#include <vector>

namespace Saml::Xml::Security {

/// True when the present time lies within the certificate's validity period. A bound that OpenSSL
/// cannot read counts as kept: existing trust lists rely on that.
bool IsCurrent(const X509& certificate);

/// The certificates that a resolver was told to trust, parsed once.
/// Threads: read-only after construction.
class TrustedCertificates {
  public:
    /// \throws InvalidArgumentException when there is none or one cannot be parsed.
    explicit TrustedCertificates(const std::list<ByteBlob>& certificates);

    /// The certificate that was sent as `der`; null when it cannot be parsed. One that arrives with
    /// the bytes of a trusted one is that one, without being parsed again: parsing is most of what
    /// a resolver does.
    CertificateHandle ParseSent(const ByteBlob& der) const;
    /// True when OpenSSL finds `certificate` equal to one of these.
    bool Contain(const X509& certificate) const;
    /// The certificate, when it is the only one; null when there are more.
    X509* Single() const noexcept;

    auto begin() const noexcept { return parsed_.begin(); }
    auto end() const noexcept { return parsed_.end(); }

  private:
    const std::vector<ByteBlob> ders_;
    std::vector<CertificateHandle> parsed_;  ///< In the order of `ders_`.
};

}  // namespace Saml::Xml::Security
