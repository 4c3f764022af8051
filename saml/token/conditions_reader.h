#pragma once

#include "saml/token/assertion_cursor.h"
#include "saml/token/parsed_assertion.h"

namespace Saml {

/// Reads `Conditions` (SAML core 2.5): the validity window and the four restrictions that this
/// profile knows, in any order, each at most once. Any other condition is refused, as SAML demands
/// of whoever does not understand it.
ParsedConditions ReadConditions(const AssertionElement& conditions);

}  // namespace Saml
