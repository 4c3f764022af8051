#pragma once

#include "saml/token.h"

#include <string>

namespace Saml {

/// Splits a user principal name: the domain is what follows the last '@', the name all before it.
/// \throws ParseException  `format` is not the UPN format or either part is empty.
PrincipalId PrincipalFromUpn(const std::string& format, const std::string& value);

/// Splits the value of a group attribute: the domain is what stands before the first backslash, the
/// name all that follows it.
/// \throws ParseException  Either part is empty.
PrincipalId PrincipalFromGroup(std::string value);

/// True when both texts have the same length and each pair of characters is equal in upper case
/// under the global `std::locale`.
bool EqualsIgnoringCase(const std::string& left, const std::string& right);

}  // namespace Saml
