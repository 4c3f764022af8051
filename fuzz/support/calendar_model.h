#pragma once

#include <cstdint>
#include <string>

namespace Fuzz {

enum class DateKind {
    None,
    TooEarly,  ///< A date of the years 1 to 1399.
    Date,
};

struct DateReading {
    DateKind kind = DateKind::None;
    std::int64_t seconds = 0;  ///< Since the epoch, narrowed to 32 bits and widened again.
};

/// What `DateTime` says about a text, by the C library's calendar.
DateReading ReadDate(const std::string& text);

/// True for the seconds of the years 1400 to 9999.
bool IsOnCalendar(std::int64_t seconds);

/// With milliseconds; of seconds on the calendar.
std::string WriteDate(std::int64_t seconds);

}  // namespace Fuzz
