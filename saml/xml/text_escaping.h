#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace Saml::Xml {

/// What a writer puts in the place of single bytes. A byte without a replacement is written as it
/// is, so multi-byte UTF-8 sequences pass through.
class EscapeTable {
  public:
    constexpr EscapeTable() = default;
    constexpr void Replace(char byte, std::string_view text) {
        replacements_[static_cast<unsigned char>(byte)] = text;
        marked_[static_cast<unsigned char>(byte)] = true;
    }
    constexpr bool Marks(char byte) const { return marked_[static_cast<unsigned char>(byte)]; }
    constexpr std::string_view ReplacementOf(char byte) const {
        return replacements_[static_cast<unsigned char>(byte)];
    }

  private:
    std::array<bool, 256> marked_{};
    std::array<std::string_view, 256> replacements_{};
};

/// The table of the serializer, for text and attribute values alike. Control characters become a
/// per cent sign and two hexadecimal digits, which no parser turns back.
extern const EscapeTable kSerializationEscapes;

/// Calls `write(run)` for the runs of `text` and the replacements between them, in their order.
template <class Write>
void WriteEscaped(std::string_view text, const EscapeTable& escapes, Write write) {
    std::size_t runStart = 0;
    for (std::size_t i = 0; i != text.size(); ++i) {
        if (!escapes.Marks(text[i])) continue;
        if (i != runStart) write(text.substr(runStart, i - runStart));
        write(escapes.ReplacementOf(text[i]));
        runStart = i + 1;
    }
    if (runStart != text.size()) write(text.substr(runStart));
}

}  // namespace Saml::Xml
