#pragma once

#include "saml/foundations.h"
#include "saml/security/openssl_handles.h"

#include <vector>

namespace Saml::Xml::Security {

/// `der` as a blob that remembers `key`, the RSA key that these bytes encode. Resolvers hand on
/// bytes, and whoever verifies with them need not decode them again, nor prepare the arithmetic of
/// a key that was used before: a third of what verifying costs. Threads: the key is used by all who
/// hold the blob, and nobody changes it.
ByteBlob WithDecodedKey(std::vector<unsigned char> der, EVP_PKEY& key);

/// Another owner of the key that `der` remembers; null when it remembers none.
KeyHandle DecodedKeyOf(const ByteBlob& der) noexcept;

}  // namespace Saml::Xml::Security
