#pragma once

#include "oracle/profile/assertion_neighbours.h"

namespace Oracle {

/// Other values of attributes: dates, counts, types, methods, algorithms, identifiers.
void ValueFaults(const Markup& base, const Visit& visit);
/// Other texts: Base64, names, groups, flags.
void TextFaults(const Markup& base, const Visit& visit);

}  // namespace Oracle
