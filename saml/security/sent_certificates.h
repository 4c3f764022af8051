#pragma once

#include "saml/security.h"

#include <list>

namespace Saml::Xml::Security {

/// The certificates that came with a signature, as DER, the signer's first: those of `keyInfo`, or
/// none when it is null or not about certificates.
/// \throws TypeMismatchException  `keyInfo` claims to hold certificates but is of a foreign class.
const std::list<ByteBlob>& SentCertificates(KeyInfo* keyInfo);

/// True when a list entry has no bytes; resolvers pass over such entries.
inline bool IsBlank(const ByteBlob& der) noexcept {
    return der == nullptr || der->empty();
}

}  // namespace Saml::Xml::Security
