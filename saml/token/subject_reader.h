#pragma once

#include "saml/token/assertion_cursor.h"
#include "saml/token/parsed_assertion.h"

namespace Saml {

/// Reads an element that names somebody (`Issuer`, `NameID`): its `Format`, which SAML leaves
/// optional and this profile does not, and its text.
NameRecord ReadNameRecord(const AssertionElement& element);

/// Reads a `Subject` (SAML core 2.4.1) with its one confirmation: bearer, or holder-of-key with the
/// certificate of the key.
ParsedSubject ReadSubject(const AssertionElement& subject);

}  // namespace Saml
