#pragma once

#include <cstddef>
#include <string_view>

namespace Fuzz {

/// Ends the process when a law does not hold, with the law and the size of the input on the
/// standard error stream.
void Require(bool holds, std::string_view law);

/// What a target does with one input: it asks the library and requires laws of the answers.
/// Each target defines it once.
void CheckLaws(std::string_view input);

}  // namespace Fuzz
