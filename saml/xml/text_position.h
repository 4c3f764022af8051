#pragma once

#include <cstddef>
#include <string_view>

namespace Saml::Xml {

/// The line and the column of places in a text, told in ascending order as expat tells them: lines
/// from 1, columns in characters from 0; CR, LF and CR LF end a line.
///
/// Expat counts, too, but byte by byte in memory, which takes as long as a third of its tokenizing.
class TextPosition {
  public:
    /// Whether a parser that is told no encoding, and finds no declaration of one, reads `text` as
    /// UTF-8.
    static bool StartsAsUtf8(std::string_view text) noexcept;

    /// Goes on to the end of `text`, which is well-formed UTF-8 and begins with what was gone
    /// through before.
    void AdvanceTo(std::string_view text) noexcept;
    unsigned Line() const noexcept { return line_; }
    unsigned Column() const noexcept { return column_; }

  private:
    void CountLines(std::string_view run, char before) noexcept;

    std::size_t offset_ = 0;
    unsigned line_ = 1;
    unsigned column_ = 0;
};

}  // namespace Saml::Xml
