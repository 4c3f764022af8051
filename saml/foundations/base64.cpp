#include "saml/foundations.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace Saml {
namespace {

constexpr char kTruncated[] = "Truncated Base64!";
constexpr char kInvalidPadding[] = "Invalid Padding in Base 64!";
constexpr char kInvalidCharacter[] = "Non-Valid Character in Base 64!";

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';
constexpr std::uint32_t kValues = 64;  // a sextet's value is below it

/// For every byte its bits as the first, second, third and fourth character of a group;
/// `kNoCharacter` for a byte that is not in the alphabet.
using GroupTables = std::array<std::array<std::uint32_t, 256>, 4>;
constexpr std::uint32_t kNoCharacter = std::uint32_t{1} << 31;

constexpr GroupTables MakeGroupTables() {
    GroupTables tables{};
    std::uint32_t shift = 18;
    for (auto& table : tables) {
        for (std::uint32_t& bits : table)
            bits = kNoCharacter;
        for (std::uint32_t value = 0; value < kValues; ++value)
            table[static_cast<unsigned char>(kAlphabet[value])] = value << shift;
        shift -= 6;
    }
    return tables;
}
constexpr GroupTables kBitsOf = MakeGroupTables();

constexpr std::size_t kLastPlace = 3;  // where a character's bits are its value

std::uint32_t BitsOf(char character, std::size_t place) {
    return kBitsOf[place][static_cast<unsigned char>(character)];
}

/// The six blanks of ASCII, whatever the C locale holds for one.
bool IsBlank(char character) {
    return character == ' ' || ('\t' <= character && character <= '\r');
}

char Character(std::uint32_t value) {
    return kAlphabet[value & 0x3F];
}

unsigned char Byte(std::uint32_t value) {
    return static_cast<unsigned char>(value & 0xFF);
}

/// Decodes the padding character at the front of `rest`. Only its distance from the end tells what
/// it means, and its bits come from an accumulator that still holds the group before: odd bytes for
/// a misplaced padding, kept because stored signatures decode through them.
/// \return The text of the fault, null when there is none.
const char* DecodePadding(std::string_view rest, std::uint32_t accumulator, unsigned char*& out) {
    const std::uint32_t shifted = accumulator << 6;
    switch (rest.size()) {
        case 1:
            *out++ = Byte(shifted >> 16);
            *out++ = Byte(shifted >> 8);
            return nullptr;
        case 2:  // the character after it is not examined
            *out++ = Byte(shifted >> 10);
            return nullptr;
        default:
            return kInvalidPadding;
    }
}

/// Decodes a group that is not made of four data characters; with it decoding ends either way.
/// \return The text of the fault, null when there is none.
const char* DecodeLastGroup(std::string_view group, std::uint32_t accumulator,
                            unsigned char*& out) {
    for (std::size_t i = 0; i < group.size(); ++i) {
        if (group[i] == kPadding) return DecodePadding(group.substr(i), accumulator, out);
        const std::uint32_t value = BitsOf(group[i], kLastPlace);
        if (value == kNoCharacter) return kInvalidCharacter;
        accumulator = accumulator << 6 | value;
    }
    return kTruncated;
}

/// Decodes the groups of four data characters at the front of `text` and takes them off.
void DecodeWholeGroups(std::string_view& text, std::uint32_t& accumulator, unsigned char*& out) {
    while (text.size() >= 4) {
        const std::uint32_t group =
            BitsOf(text[0], 0) | BitsOf(text[1], 1) | BitsOf(text[2], 2) | BitsOf(text[3], 3);
        if ((group & kNoCharacter) != 0) return;

        // A padding never reaches further back than the last group: older bits may go.
        accumulator = group;
        out[0] = Byte(accumulator >> 16);
        out[1] = Byte(accumulator >> 8);
        out[2] = Byte(accumulator);
        out += 3;
        text.remove_prefix(4);
    }
}

/// Decodes `text` to where `out` points and moves it behind the last byte.
/// \return The text of the first fault from the left, null when there is none.
const char* DecodeText(std::string_view text, unsigned char*& out) {
    std::uint32_t accumulator = 0;  // never cleared between groups, see `DecodePadding`
    while (true) {
        DecodeWholeGroups(text, accumulator, out);
        if (text.empty()) return nullptr;
        if (!IsBlank(text.front())) return DecodeLastGroup(text, accumulator, out);
        text.remove_prefix(1);
    }
}

}  // namespace

Base64& Base64::operator=(const Base64&) = default;

std::string Base64::Encode(const std::vector<unsigned char>& data) {
    std::string text((data.size() + 2) / 3 * 4, kPadding);
    char* out = text.data();

    const std::size_t rest = data.size() % 3;
    const unsigned char* next = data.data();
    for (const unsigned char* const end = next + (data.size() - rest); next != end; next += 3) {
        const std::uint32_t group =
            std::uint32_t{next[0]} << 16 | std::uint32_t{next[1]} << 8 | std::uint32_t{next[2]};
        *out++ = Character(group >> 18);
        *out++ = Character(group >> 12);
        *out++ = Character(group >> 6);
        *out++ = Character(group);
    }
    if (rest == 0) return text;

    // What follows these characters up to the end is padding already.
    const std::uint32_t group =
        std::uint32_t{next[0]} << 16 | (rest == 2 ? std::uint32_t{next[1]} << 8 : 0);
    *out++ = Character(group >> 18);
    *out++ = Character(group >> 12);
    if (rest == 2) *out = Character(group >> 6);
    return text;
}

std::vector<unsigned char> Base64::Decode(const std::string& text, std::string& error) {
    // Only these four blanks are trimmed: a form feed or a vertical tab counts as a character that
    // follows a padding.
    const std::size_t length = text.find_last_not_of("\n\r\t ") + 1;  // 0 when there are no others

    std::vector<unsigned char> data(length / 4 * 3 + 2);  // a padding gives two bytes at most
    unsigned char* end = data.data();
    if (const char* const fault = DecodeText(std::string_view(text).substr(0, length), end)) {
        error += fault;
        return {};
    }
    data.resize(static_cast<std::size_t>(end - data.data()));
    return data;
}

}  // namespace Saml
