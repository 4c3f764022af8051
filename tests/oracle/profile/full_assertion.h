#pragma once

#include "oracle/profile/markup_tree.h"

#include <string>

/// A signed assertion in which everything stands that the profile knows.
namespace Oracle {

enum class Confirmation { Bearer, HolderOfKey };

constexpr char kAssertionId[] = "_4f1c0d7e";

/// Valid at `now` (seconds since the epoch) and an hour longer, signed by "leaf", whose certificate
/// and those of its issuers it sends. A bearer's signature has a second reference.
Markup FullAssertion(Confirmation confirmation, long long now);

}  // namespace Oracle
