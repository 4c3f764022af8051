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

/// Where the first byte that `escapes` marks stands in `text`, at or behind `from`; its size when
/// none does.
inline std::size_t FindMarked(std::string_view text, std::size_t from,
                              const EscapeTable& escapes) noexcept {
    constexpr std::size_t kBlock = 8;  // most texts have nothing to replace: one branch for eight
    while (text.size() - from >= kBlock) {
        const char* const at = text.data() + from;
        bool anyMarked = false;
        for (std::size_t i = 0; i != kBlock; ++i)
            anyMarked |= escapes.Marks(at[i]);
        if (anyMarked) break;
        from += kBlock;
    }
    while (from != text.size() && !escapes.Marks(text[from]))
        ++from;
    return from;
}

/// Calls `write(run)` for the runs of `text` and the replacements between them, in their order.
template <class Write>
void WriteEscaped(std::string_view text, const EscapeTable& escapes, Write write) {
    std::size_t runStart = 0;
    for (;;) {
        const std::size_t marked = FindMarked(text, runStart, escapes);
        if (marked != runStart) write(text.substr(runStart, marked - runStart));
        if (marked == text.size()) return;
        write(escapes.ReplacementOf(text[marked]));
        runStart = marked + 1;
    }
}

}  // namespace Saml::Xml
