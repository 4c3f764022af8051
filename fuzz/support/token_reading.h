#pragma once

#include "support/token_account.h"

#include <optional>
#include <string>

namespace Fuzz {

/// What an accepted token's text says to a reader that trusts its structure and finds its way by
/// libxml2 alone; nothing when libxml2 does not read the text. A missing element breaks a law.
std::optional<Oracle::Account> ReadToken(const std::string& text);

}  // namespace Fuzz
