#pragma once

#include "saml/foundations.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string_view>

namespace Saml {

/// True when `size` can be handed to an interface that counts in `Count`: `int` of expat, `long` of
/// OpenSSL, which has 32 bits on some platforms.
template <class Count>
constexpr bool FitsIn(std::size_t size) noexcept {
    return size <= static_cast<std::size_t>(std::numeric_limits<Count>::max());
}

/// Writes `run`, in pieces where it is longer than an `int` can tell; an empty run writes nothing.
inline void WriteRun(Writer& out, std::string_view run) {
    constexpr std::size_t kLongestPiece = std::numeric_limits<int>::max();
    while (!run.empty()) {
        const std::size_t piece = std::min(run.size(), kLongestPiece);
        out.Write(run.data(), static_cast<int>(piece));
        run.remove_prefix(piece);
    }
}

}  // namespace Saml
