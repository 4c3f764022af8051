#pragma once

#include "saml/security.h"
#include "saml/security/openssl_handles.h"
#include "saml/security/trusted_certificates.h"

#include <list>

namespace Saml::Xml::Security {

/// Offers the key of a signing certificate from which a chain leads to a trusted one.
class X509TrustChainKeyResolver final : public KeyInfoResolver {
  public:
    /// \throws As `CreateTrustChainKeyResolver`.
    explicit X509TrustChainKeyResolver(const std::list<ByteBlob>& trustedCertificates);

    void Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) override;

    /// Appends to `keys` what the certificates sent with a signature entitle to.
    void AppendKeys(const std::list<ByteBlob>& sent, std::list<ByteBlob>& keys) const;

  private:
    bool VerifiesAsAnchor(X509& signer) const;
    bool VerifiesUpToAnchor(X509& signer, CertificateStack* authorities) const;

    const TrustedCertificates trusted_;
    const StoreHandle store_;  ///< Holds `trusted_`, for OpenSSL.
};

}  // namespace Saml::Xml::Security
