#include "saml/security/trusted_certificates.h"

#include "saml/security/certificate_codec.h"

#include <algorithm>
#include <cstddef>

namespace Saml::Xml::Security {
namespace {
constexpr char kNoCertificates[] = "No trusted certificates provided";
}

bool IsCurrent(const X509& certificate) {
    // OpenSSL answers -1 for the past and the present, 1 for the future, 0 for an unreadable time.
    return X509_cmp_current_time(X509_get0_notBefore(&certificate)) < 1 &&
           X509_cmp_current_time(X509_get0_notAfter(&certificate)) >= 0;
}

TrustedCertificates::TrustedCertificates(const std::list<ByteBlob>& certificates)
    : ders_(certificates.begin(), certificates.end()) {
    if (ders_.empty()) throw InvalidArgumentException(kNoCertificates);
    parsed_.reserve(ders_.size());
    for (const ByteBlob& der : ders_)
        parsed_.push_back(ParseCertificateDer(der));
}

CertificateHandle TrustedCertificates::ParseSent(const ByteBlob& der) const {
    for (std::size_t i = 0; i < ders_.size(); ++i)
        if (*ders_[i] == *der) return Share(*parsed_[i]);
    return DecodeCertificateDer(der);
}

bool TrustedCertificates::Contain(const X509& certificate) const {
    return std::any_of(begin(), end(), [&certificate](const CertificateHandle& trusted) {
        return X509_cmp(trusted.get(), &certificate) == 0;
    });
}

X509* TrustedCertificates::Single() const noexcept {
    return parsed_.size() == 1 ? parsed_.front().get() : nullptr;
}

}  // namespace Saml::Xml::Security
