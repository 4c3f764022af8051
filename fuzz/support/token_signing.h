#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Fuzz {

/// The text without the first signature of the kind that `WithSignature` makes.
std::string WithoutSignature(std::string_view text);

/// `text` with an enveloped signature of its root behind its issuer or, without one, in front of
/// the last end tag; nothing when it cannot be signed. The bits of `choices` decide what signers
/// may do one way or another.
std::optional<std::string> WithSignature(const std::string& text, std::uint32_t choices);

}  // namespace Fuzz
