#include "saml/xml/text_position.h"

#include <cstdint>

namespace Saml::Xml {
namespace {

constexpr char kLineFeed = '\n';
constexpr char kCarriageReturn = '\r';

/// What a run of bytes holds. Counted in bytes, so that a compiler handles many of them at a time.
struct Census {
    std::uint8_t characters = 0;
    std::uint8_t lineEnds = 0;  ///< Not 0 when there is one.
};

/// As many bytes as a `Census` can count, in whole vectors of 16.
constexpr std::size_t kLongestRun = 240;

bool BeginsCharacter(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

Census Take(std::string_view run) noexcept {
    Census census;
    for (const char byte : run) {
        census.characters = static_cast<std::uint8_t>(census.characters + BeginsCharacter(byte));
        census.lineEnds = static_cast<std::uint8_t>(census.lineEnds | (byte == kLineFeed) |
                                                    (byte == kCarriageReturn));
    }
    return census;
}

}  // namespace

bool TextPosition::StartsAsUtf8(std::string_view text) noexcept {
    // Two bytes tell UTF-16: its mark in either order, or an ASCII character's zero byte.
    if (text.size() < 2) return false;
    const std::string_view start = text.substr(0, 2);
    return start != "\xFE\xFF" && start != "\xFF\xFE" && start.find('\0') == std::string_view::npos;
}

void TextPosition::AdvanceTo(std::string_view text) noexcept {
    while (offset_ < text.size()) {
        const std::string_view run = text.substr(offset_, kLongestRun);
        const Census census = Take(run);
        if (census.lineEnds != 0)
            CountLines(run, offset_ > 0 ? text[offset_ - 1] : '\0');
        else
            column_ += census.characters;
        offset_ += run.size();
    }
}

void TextPosition::CountLines(std::string_view run, char before) noexcept {
    for (const char byte : run) {
        if (byte == kLineFeed || byte == kCarriageReturn) {
            const bool endsLineAgain = byte == kLineFeed && before == kCarriageReturn;
            if (!endsLineAgain) ++line_;
            column_ = 0;
        } else if (BeginsCharacter(byte)) {
            ++column_;
        }
        before = byte;
    }
}

}  // namespace Saml::Xml
