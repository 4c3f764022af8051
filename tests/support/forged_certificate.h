#pragma once

#include "saml/foundations.h"

#include <string>

/// Certificates written byte by byte (X.690, RFC 5280): what no tool would issue, and many of them
/// at once. Their signatures are zeros.
namespace Saml::TestKeys {

/// One value in DER: tag, length, content.
std::string DerValue(unsigned char tag, const std::string& content);

struct ForgedCertificate {
    std::string keyBits;  ///< Content of the key's BIT STRING, such as an RSAPublicKey.
    std::string subject = "Forged";
    std::string issuer = "Forged";
    std::string notBefore = "200101000000Z";
    std::string notAfter = "491231235959Z";
    int serial = 1;
    bool isAuthority = false;

    ByteBlob Der() const;
};

}  // namespace Saml::TestKeys
