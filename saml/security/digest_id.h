#pragma once

#include <cstdint>

namespace Saml::Xml::Security {

/// The digests that signatures are made with (FIPS 180-4). Algorithm identifiers map to these;
/// none maps to `Sha224`.
enum class DigestId : std::int32_t { Sha1 = 0, Sha224 = 1, Sha256 = 2, Sha384 = 3, Sha512 = 4 };

}  // namespace Saml::Xml::Security
