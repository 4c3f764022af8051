#pragma once

#include "saml/security.h"

#include <string>

namespace Saml {

/// Refuses a signature of which no reference names the whole assertion, by an empty URI or by "#"
/// and the assertion's `ID`: else an attacker could put unsigned content around signed content.
void RequireWholeAssertionCovered(Xml::Security::Signature& signature,
                                  const std::string& assertionId);

}  // namespace Saml
