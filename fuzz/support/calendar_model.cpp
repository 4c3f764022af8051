#include "support/calendar_model.h"

#include <cstdio>
#include <ctime>
#include <regex>

namespace Fuzz {
namespace {

constexpr int kFirstYear = 1400;
constexpr int kLastYear = 9999;

// What stands behind the first Z of the longer form is not examined.
const std::regex& Form() {
    static const std::regex form(
        "([0-9]{4})-([0-9]{2})-([0-9]{2})T([0-9]{2}):([0-9]{2}):([0-9]{2})"
        "(?:Z|Z[^]{4}|\\.([0-9]{3})Z)");
    return form;
}

/// True when the C library leaves the fields as they are: it takes 31 February for 3 March.
bool Exists(const std::tm& given) {
    std::tm normalised = given;
    timegm(&normalised);
    return normalised.tm_year == given.tm_year && normalised.tm_mon == given.tm_mon &&
           normalised.tm_mday == given.tm_mday && normalised.tm_hour == given.tm_hour &&
           normalised.tm_min == given.tm_min && normalised.tm_sec == given.tm_sec;
}

}  // namespace

DateReading ReadDate(const std::string& text) {
    std::smatch match;
    if (!std::regex_match(text, match, Form())) return {};
    std::tm fields{};
    fields.tm_year = std::stoi(match[1]) - 1900;
    fields.tm_mon = std::stoi(match[2]) - 1;
    fields.tm_mday = std::stoi(match[3]);
    fields.tm_hour = std::stoi(match[4]);
    fields.tm_min = std::stoi(match[5]);
    fields.tm_sec = std::stoi(match[6]);
    if (fields.tm_year <= -1900 || !Exists(fields)) return {};
    if (fields.tm_year < kFirstYear - 1900) return {DateKind::TooEarly, 0};

    std::int64_t seconds = timegm(&fields);
    // Instants before the epoch are truncated toward it.
    const bool hasFraction = match[7].matched && match[7] != "000";
    if (seconds < 0 && hasFraction) ++seconds;
    return {DateKind::Date, static_cast<std::int32_t>(static_cast<std::uint32_t>(seconds))};
}

bool IsOnCalendar(std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm fields{};
    if (gmtime_r(&time, &fields) == nullptr) return false;
    return fields.tm_year >= kFirstYear - 1900 && fields.tm_year <= kLastYear - 1900;
}

std::string WriteDate(std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm fields{};
    gmtime_r(&time, &fields);
    char text[32];
    const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S.000Z", &fields);
    return std::string(text, size);
}

}  // namespace Fuzz
