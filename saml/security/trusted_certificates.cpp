#include "saml/security/trusted_certificates.h"

#include "saml/security/certificate_codec.h"

#include <openssl/asn1.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <optional>

namespace Saml::Xml::Security {
namespace {
constexpr char kNoCertificates[] = "No trusted certificates provided";

/// True for a time as long as certificates may have them, YYMMDDHHMMSSZ and YYYYMMDDHHMMSSZ (RFC
/// 5280 section 4.1.2.5). OpenSSL reads nothing else of these lengths, but does read others.
bool HasCertificateLength(const ASN1_TIME& time) {
    const int length = ASN1_STRING_type(&time) == V_ASN1_UTCTIME ? 13 : 15;
    return ASN1_STRING_length(&time) == length;
}

/// Whether `time` is not later than `now`; nothing for an unreadable one. X509_cmp_time answers the
/// same, but calls a time unreadable when it is short of memory, too: an expired certificate would
/// pass then.
std::optional<bool> HasCome(const ASN1_TIME& time, std::time_t now) {
    constexpr int kUnreadable = -2;
    const int order = HasCertificateLength(time) ? ASN1_TIME_cmp_time_t(&time, now) : kUnreadable;
    if (order == kUnreadable) return std::nullopt;
    return order <= 0;
}
}  // namespace

bool IsCurrent(const X509& certificate) {
    const std::time_t now = std::time(nullptr);
    return HasCome(*X509_get0_notBefore(&certificate), now).value_or(true) &&
           !HasCome(*X509_get0_notAfter(&certificate), now).value_or(false);
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
