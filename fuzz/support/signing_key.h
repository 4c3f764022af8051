#pragma once

#include "saml/security.h"

namespace Fuzz {

/// DER of the one key that signs for the fuzz targets, and of its certificate.
Saml::ByteBlob PrivateKey();
Saml::ByteBlob Certificate();

/// Trusts that certificate alone.
Saml::Xml::Security::KeyInfoResolver& TrustingTheSigner();

}  // namespace Fuzz
