#pragma once

#include <cstdint>

namespace Saml {

/// The low 32 bits of `value` read as a signed number (two's complement), whatever the compiler
/// does with a conversion that does not fit.
constexpr std::int32_t WrapTo32Bits(std::uint64_t value) noexcept {
    constexpr std::int64_t kTwoTo32 = std::int64_t{1} << 32;
    const auto low = static_cast<std::int64_t>(value & 0xFFFFFFFFu);
    return static_cast<std::int32_t>(low < kTwoTo32 / 2 ? low : low - kTwoTo32);
}

}  // namespace Saml
