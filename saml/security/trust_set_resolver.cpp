#include "saml/security/trust_set_resolver.h"

#include "saml/security/certificate_codec.h"
#include "saml/security/sent_certificates.h"

namespace Saml::Xml::Security {

X509TrustSetKeyResolver::X509TrustSetKeyResolver(const std::list<ByteBlob>& trustedCertificates)
    : trusted_(trustedCertificates) {}

void X509TrustSetKeyResolver::Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) {
    keys.clear();
    AppendKeys(SentCertificates(keyInfo), keys);
}

void X509TrustSetKeyResolver::AppendKeys(const std::list<ByteBlob>& sent,
                                         std::list<ByteBlob>& keys) const {
    if (const CertificateHandle signer = FindSigner(sent)) {
        if (IsCurrent(*signer) && trusted_.Contain(*signer))
            keys.push_back(EncodePublicKeyOf(*signer));
        return;
    }
    X509* const single = trusted_.Single();
    if (single != nullptr && IsCurrent(*single)) keys.push_back(EncodePublicKeyOf(*single));
}

/// The first certificate that can be parsed: unlike in a chain, garbage in front of it is no
/// obstacle.
CertificateHandle X509TrustSetKeyResolver::FindSigner(const std::list<ByteBlob>& sent) const {
    for (const ByteBlob& der : sent) {
        if (IsBlank(der)) continue;
        if (CertificateHandle certificate = trusted_.ParseSent(der)) return certificate;
    }
    return nullptr;
}

void CreateTrustSetKeyResolver(const std::list<ByteBlob>& trustedCertificates,
                               boost::intrusive_ptr<KeyInfoResolver>& result) {
    result = new X509TrustSetKeyResolver(trustedCertificates);
}

}  // namespace Saml::Xml::Security
