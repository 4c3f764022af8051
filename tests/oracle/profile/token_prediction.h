#pragma once

#include "oracle/profile/markup_signature.h"
#include "oracle/profile/markup_tree.h"

#include <string>

/// What `CreateSamlToken` must answer to a document, told by the grammar and the rules beyond it.
namespace Oracle {

/// Either a refusal (whole class name, whole message) or a token with this account of what it says.
struct Outcome {
    std::string exception;  ///< Empty for a token.
    std::string text;       ///< The message or the account.
};
bool operator==(const Outcome& left, const Outcome& right);
std::ostream& operator<<(std::ostream& out, const Outcome& outcome);

/// \param document  As it was made; not yet parsed.
/// \param now       Seconds since the epoch.
Outcome Predict(const Markup& document, const Trust& trust, long long now);

}  // namespace Oracle
