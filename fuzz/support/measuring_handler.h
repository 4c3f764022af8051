#pragma once

#include <optional>
#include <string>

namespace Fuzz {

struct Measures {
    long long size = 0;   ///< Bytes of names, values and character data.
    long long nodes = 0;  ///< Without the document.
    long long depth = 0;  ///< The most open ancestors that any node has.
};

/// Counted from the parser's events by a handler that builds nothing; nothing when the text is
/// refused without limits.
std::optional<Measures> Measure(const std::string& text);

}  // namespace Fuzz
