#pragma once

#include "saml/foundations.h"

#include <string>

namespace Fuzz {

/// Each tries the text or the bytes in the functions that take their like, and requires of what is
/// accepted that OpenSSL's codec agrees.
void CheckCertificatePem(const std::string& pem);
void CheckPublicKeyPem(const std::string& pem);
void CheckPrivateKeyPem(const std::string& pem);
/// The key of the certificate, and what resolvers say that trust it, or another one.
void CheckCertificateDer(const Saml::ByteBlob& der);

}  // namespace Fuzz
