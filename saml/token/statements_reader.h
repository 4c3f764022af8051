#pragma once

#include "saml/token/assertion_cursor.h"
#include "saml/token/parsed_assertion.h"

#include <vector>

namespace Saml {

/// Reads an `Advice` (SAML core 2.6.1): one or more entries of the provider's extension namespace.
std::vector<Advice> ReadAdvice(const AssertionElement& advice);

/// Reads an `AuthnStatement` (SAML core 2.7.2), which names the authentication by a class
/// reference.
ParsedAuthentication ReadAuthnStatement(const AssertionElement& statement);

/// Reads an `AttributeStatement` (SAML core 2.7.3): one or more attributes.
std::vector<ParsedAttribute> ReadAttributeStatement(const AssertionElement& statement);

}  // namespace Saml
