#pragma once

#include "saml/security/digest_id.h"

#include <openssl/evp.h>

namespace Saml::Xml::Security {

/// OpenSSL's digest for `id`.
/// \throws InvalidArgumentException when `id` is a number without a digest.
const EVP_MD& DigestMethod(DigestId id);

}  // namespace Saml::Xml::Security
