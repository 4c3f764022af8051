#include "saml/security.h"
#include "support/byte_source.h"
#include "support/key_laws.h"
#include "support/laws.h"

// What is accepted as a key or a certificate is what OpenSSL writes of it again, and a certificate
// that nobody trusts offers no key.

namespace {

using namespace Saml::Xml::Security;

constexpr const char* kLabels[] = {"CERTIFICATE", "X509 CERTIFICATE", "PUBLIC KEY",
                                   "PRIVATE KEY", "RSA PRIVATE KEY",  "ENCRYPTED PRIVATE KEY"};
constexpr std::size_t kLabelCount = sizeof kLabels / sizeof *kLabels;

std::string PemOf(const char* label, const std::string& der) {
    const std::string base64 = Saml::Base64::Encode({der.begin(), der.end()});
    std::string pem = std::string("-----BEGIN ") + label + "-----\n";
    for (std::size_t at = 0; at < base64.size(); at += 64)
        pem += base64.substr(at, 64) + "\n";
    return pem + "-----END " + label + "-----\n";
}

void CheckPem(const std::string& pem) {
    Fuzz::CheckCertificatePem(pem);
    Fuzz::CheckPublicKeyPem(pem);
    Fuzz::CheckPrivateKeyPem(pem);
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    ByteSource bytes(input);
    const std::size_t form = bytes.Below(kLabelCount + 2);
    const std::string rest(bytes.Rest());
    if (form < kLabelCount)
        CheckPem(PemOf(kLabels[form], rest));
    else if (form == kLabelCount)
        CheckPem(rest);
    else
        CheckCertificateDer(
            std::make_shared<const std::vector<unsigned char>>(rest.begin(), rest.end()));
}
