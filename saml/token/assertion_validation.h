#pragma once

#include "saml/token/parsed_assertion.h"

#include <cstdint>

namespace Saml {

/// Judges version, ID, validity window and delegation of an assertion: a function of nothing but
/// its arguments.
///
/// \param now        The clock's time; only its seconds count.
/// \param tolerance  Seconds, any number, by which the window is widened at both ends.
/// \throws ParseException  The first rule that is broken, in the order of the sentence above.
void ValidateAssertion(const ParsedAssertion& assertion, const DateTime& now,
                       std::int64_t tolerance);

}  // namespace Saml
