#include "saml/security/sent_certificates.h"

#include "saml/foundations/checked_cast.h"
#include "saml/security/x509_key_info.h"

namespace Saml::Xml::Security {

const std::list<ByteBlob>& SentCertificates(KeyInfo* keyInfo) {
    static const std::list<ByteBlob> kNone;
    if (keyInfo == nullptr || !keyInfo->IsX509()) return kNone;
    return CheckedCast<X509KeyInfo>(keyInfo)->Certificates();
}

}  // namespace Saml::Xml::Security
