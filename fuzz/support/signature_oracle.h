#pragma once

#include "saml/security.h"

#include <string>

namespace Fuzz {

/// Requires of a signature that verified with the key of `signing_key.h` that libxml2 and OpenSSL
/// come to the same verdict about `text`, from which `document` was parsed. Where the canonical
/// forms differ on purpose they are not asked.
void RequireThatOthersVerify(const std::string& text, Saml::Xml::Document& document,
                             Saml::Xml::Security::Signature& signature);

/// The first signature that `document` holds, read with its root as its root; null when none is
/// accepted.
boost::intrusive_ptr<Saml::Xml::Security::Signature> FirstSignature(Saml::Xml::Document& document);

}  // namespace Fuzz
