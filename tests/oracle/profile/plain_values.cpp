#include "oracle/profile/plain_values.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <limits>
#include <regex>

namespace Oracle {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// -1 for what is no digit.
int SextetOf(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    return c == '/' ? 63 : -1;
}

bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

// RFC 4648, 4, with what the library keeps on purpose: padding is judged by its distance from the
// end alone, what follows the first of two is not looked at, and the bits of the group before are
// still there when a group begins with it.
std::optional<std::vector<unsigned char>> FromBase64(const std::string& text) {
    const std::size_t end = text.find_last_not_of("\n\r\t ") + 1;
    std::vector<unsigned char> bytes;
    const auto add = [&bytes](std::uint32_t byte) {
        bytes.push_back(static_cast<unsigned char>(byte));
    };
    std::uint32_t bits = 0;
    std::size_t inGroup = 0;
    for (std::size_t i = 0; i < end; ++i) {
        if (inGroup == 0 && IsSpace(text[i])) continue;
        if (text[i] == '=') {
            if (end - i > 2) return std::nullopt;
            if (end - i == 2) {
                add(bits >> 4);
            } else {
                add(bits >> 10);
                add(bits >> 2);
            }
            return bytes;
        }
        if (SextetOf(text[i]) < 0) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(SextetOf(text[i]));
        if (++inGroup < 4) continue;
        for (const int shift : {16, 8, 0})
            add(bits >> shift);
        inGroup = 0;
    }
    if (inGroup != 0) return std::nullopt;
    return bytes;
}

std::string ToBase64(const std::vector<unsigned char>& bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        unsigned long bits = 0;
        for (std::size_t j = i; j < i + 3; ++j)
            bits = bits << 8 | (j < bytes.size() ? bytes[j] : 0UL);
        for (std::size_t j = 0; j < 4; ++j)
            text += i + j > bytes.size() ? '=' : kAlphabet[bits >> (18 - 6 * j) & 63];
    }
    return text;
}

std::optional<long long> InstantOf(const std::string& text) {
    // Of a text of 24 characters the last four do not count behind a Z.
    static const std::regex form(R"((\d{4})-(\d\d)-(\d\d)T(\d\d):(\d\d):(\d\d)(\.\d{3}Z|Z....|Z))");
    std::smatch fields;
    if (!std::regex_match(text, fields, form)) return std::nullopt;
    std::tm parts = {};
    parts.tm_year = std::stoi(fields[1]) - 1900;
    parts.tm_mon = std::stoi(fields[2]) - 1;
    parts.tm_mday = std::stoi(fields[3]);
    parts.tm_hour = std::stoi(fields[4]);
    parts.tm_min = std::stoi(fields[5]);
    parts.tm_sec = std::stoi(fields[6]);
    std::tm normal = parts;
    const std::time_t instant = timegm(&normal);
    const bool exists = normal.tm_year == parts.tm_year && normal.tm_mon == parts.tm_mon &&
                        normal.tm_mday == parts.tm_mday && normal.tm_hour == parts.tm_hour &&
                        normal.tm_min == parts.tm_min && normal.tm_sec == parts.tm_sec;
    if (!exists || parts.tm_year < 1400 - 1900) return std::nullopt;
    return static_cast<long long>(static_cast<std::int32_t>(instant));  // the narrowing is kept
}

std::string InstantText(long long instant) {
    const std::time_t time = static_cast<std::time_t>(instant);
    std::tm parts = {};
    gmtime_r(&time, &parts);
    char text[32];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S.000Z", &parts);
    return {text, length};
}

std::optional<unsigned long long> CountOf(const std::string& text) {
    static const std::regex form(R"([+-]?(\d+))");
    std::smatch fields;
    if (!std::regex_match(text, fields, form)) return std::nullopt;
    std::string digits = fields[1];
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty()) return 0;  // "-0" too
    if (text[0] == '-' || digits.size() > 19) return std::nullopt;
    const unsigned long long number = std::stoull(digits);
    const auto largest = static_cast<unsigned long long>(std::numeric_limits<long long>::max());
    if (number > largest) return std::nullopt;
    return number;
}

}  // namespace Oracle
