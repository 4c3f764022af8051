#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

/// Texts with one place changed, and which changes say nothing new.
namespace Saml::Attacks {

/// A part of a text.
struct Extent {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool Holds(std::size_t place) const { return begin <= place && place < end; }
};

/// What stands in the first `name` element of `text` behind `from`; `name` with its prefix.
Extent ContentOf(const std::string& text, const std::string& name, std::size_t from = 0);

std::string WithBitFlipped(const std::string& text, std::size_t place, unsigned bit);

/// True when `spoiled` is `text` but for what stands in `base64`, which the codec decodes to the
/// same bytes: it makes up for what is missing in a last group with the bits of the group before,
/// which may be the same.
bool DecodesAsBefore(const std::string& text, Extent base64, const std::string& spoiled);

/// A place of a Base64 text whose change leaves the bytes as they are: the last character in front
/// of the padding, when only those of its bits change that belong to no byte; or one that became a
/// blank and so is missing, when it `DecodesAsBefore`. For texts with one padding character at
/// most.
bool IsUnusedBase64(const std::string& text, Extent base64, std::size_t place,
                    const std::string& flipped);
bool IsBase64Letter(char character);

/// How often each outcome came.
class Tally {
  public:
    void Add(const std::string& outcome) { ++counts_[outcome]; }
    std::size_t Of(const std::string& outcome) const;
    /// Prints and records the counts.
    void Report() const;

  private:
    std::map<std::string, std::size_t> counts_;
};

/// The class in front of an outcome's message; "accepted" for what was.
std::string ClassOf(const std::string& outcome);

}  // namespace Saml::Attacks
