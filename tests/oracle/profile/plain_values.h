#pragma once

#include <optional>
#include <string>
#include <vector>

/// What the values of a token mean, told without the library.
namespace Oracle {

/// RFC 4648 with white space between groups; nothing when it is none.
std::optional<std::vector<unsigned char>> FromBase64(const std::string& text);
std::string ToBase64(const std::vector<unsigned char>& bytes);

/// The instant of an xs:dateTime in UTC, in seconds; nothing when it is none.
std::optional<long long> InstantOf(const std::string& text);
/// The same way back, with milliseconds.
std::string InstantText(long long instant);

/// A number that is not negative and fits in 63 bits.
std::optional<unsigned long long> CountOf(const std::string& text);

}  // namespace Oracle
