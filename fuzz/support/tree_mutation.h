#pragma once

#include <cstdint>
#include <string>

namespace Fuzz {

/// `text` after one random change of its tree: an element is taken out, moved or renamed like
/// another, a value or a text becomes another's. Unchanged when it is not well-formed.
std::string WithTreeChanged(const std::string& text, std::uint32_t seed);

}  // namespace Fuzz
