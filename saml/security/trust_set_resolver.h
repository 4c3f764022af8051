#pragma once

#include "saml/security.h"
#include "saml/security/trusted_certificates.h"

#include <list>

namespace Saml::Xml::Security {

/// Offers the key of a signing certificate that is itself a trusted one.
class X509TrustSetKeyResolver final : public KeyInfoResolver {
  public:
    /// \throws As `CreateTrustSetKeyResolver`.
    explicit X509TrustSetKeyResolver(const std::list<ByteBlob>& trustedCertificates);

    void Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) override;

    /// Appends to `keys` what the certificates sent with a signature entitle to.
    void AppendKeys(const std::list<ByteBlob>& sent, std::list<ByteBlob>& keys) const;

  private:
    CertificateHandle FindSigner(const std::list<ByteBlob>& sent) const;

    const TrustedCertificates trusted_;
};

}  // namespace Saml::Xml::Security
