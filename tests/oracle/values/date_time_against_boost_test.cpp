#include "saml/foundations.h"

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <iostream>
#include <ostream>
#include <string>
#include <vector>

// Every day of the calendar: instants against Boost's date arithmetic and the C library's, texts
// against the C library's.
namespace Saml {
namespace {

using boost::gregorian::date;
using boost::gregorian::days;
using boost::gregorian::gregorian_calendar;
using boost::posix_time::milliseconds;
using boost::posix_time::ptime;
using boost::posix_time::time_duration;

/// Years from `first` up to `end`, which is not one of them.
struct Span {
    int first;
    int end;
};
void PrintTo(const Span& span, std::ostream* out) {
    *out << span.first << " to " << span.end - 1;
}

/// Shares of the calendar that can be tested side by side.
std::vector<Span> SpansOfTheCalendar() {
    std::vector<Span> spans{{1400, 2000}};
    while (spans.back().end < 10000)
        spans.push_back({spans.back().end, spans.back().end + 500});
    return spans;
}

std::string NameOf(const testing::TestParamInfo<Span>& row) {
    return "Years" + std::to_string(row.param.first) + "To" + std::to_string(row.param.end - 1);
}

/// The low 32 bits with their sign.
std::int64_t In32Bits(std::int64_t seconds) {
    const std::int64_t cycle = std::int64_t{1} << 32;
    const std::int64_t low = (seconds % cycle + cycle) % cycle;
    return low < cycle / 2 ? low : low - cycle;
}

/// Whole seconds of an instant, without its fraction: before the epoch this rounds up.
std::int64_t TowardZero(std::int64_t seconds, int millisecond) {
    return seconds < 0 && millisecond > 0 ? seconds + 1 : seconds;
}

std::string Digits(int number, std::size_t width) {
    const std::string digits = std::to_string(number);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

/// Days of the years from 1 up to this one, by the rule of leap years.
constexpr std::int64_t DaysBefore(std::int64_t year) {
    const std::int64_t past = year - 1;
    return past * 365 + past / 4 - past / 100 + past / 400;
}

/// One instant as both oracles know it.
struct Instant {
    ptime time;                ///< Boost's.
    std::int64_t seconds = 0;  ///< The C library's, since the epoch; the fraction is left out.
    int millisecond = 0;
    std::string text;  ///< The C library's, up to the seconds.
};

/// Another time of the day each day.
Instant InstantOn(const date& day, std::int64_t daysSinceEpoch) {
    const std::int64_t number = daysSinceEpoch + 1000000;
    const std::int64_t secondOfDay = number * 7919 % 86400;
    Instant instant;
    instant.millisecond = static_cast<int>(number * 37 % 1000);
    instant.time = ptime(day, time_duration(0, 0, secondOfDay)) + milliseconds(instant.millisecond);

    const std::time_t sought = daysSinceEpoch * 86400 + secondOfDay;
    std::tm fields{};
    gmtime_r(&sought, &fields);
    char written[32];
    instant.text.assign(written,
                        std::strftime(written, sizeof written, "%Y-%m-%dT%H:%M:%S", &fields));
    instant.seconds = timegm(&fields);
    return instant;
}

/// The days of a span, the first one by its distance from the epoch.
struct Days {
    explicit Days(const Span& span)
        : first(static_cast<unsigned short>(span.first), 1, 1),
          fromEpoch((first - date(1970, 1, 1)).days()),
          count((date(static_cast<unsigned short>(span.end - 1), 12, 31) - first).days() + 1) {}

    date first;
    std::int64_t fromEpoch;
    std::int64_t count;
};

/// `day` lies so many days behind the first one.
Instant InstantOn(const Days& span, std::int64_t day) {
    return InstantOn(span.first + days(day), span.fromEpoch + day);
}

template <class Source>
testing::AssertionResult Gives(const Source& source, const std::string& text,
                               std::int64_t seconds) {
    DateTime value;
    if (!DateTime::Create(source, value))
        return testing::AssertionFailure() << "refused, expected " << text;
    if (value.value() == text && value.timeT() == seconds) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "ours: " << value.value() << " " << value.timeT()
                                       << "\nexpected: " << text << " " << seconds;
}

class DateTimeOfEveryDay : public testing::TestWithParam<Span> {};

TEST_P(DateTimeOfEveryDay, AgreesWithBoostAndTheCLibrary) {
    const ptime epoch(date(1970, 1, 1));
    const Days span(GetParam());
    std::int64_t count = 0;
    for (; count < span.count; ++count) {
        const Instant instant = InstantOn(span, count);
        const std::string shortForm = instant.text + "Z";
        const std::string longForm = instant.text + "." + Digits(instant.millisecond, 3) + "Z";
        // The oracles must agree among themselves first.
        const std::int64_t seconds = (instant.time - epoch).total_microseconds() / 1000000;
        ASSERT_EQ(seconds, TowardZero(instant.seconds, instant.millisecond)) << longForm;

        // The short form one day, the long one the next.
        ASSERT_TRUE(count % 2 == 0 ? Gives(shortForm, shortForm, In32Bits(instant.seconds))
                                   : Gives(longForm, longForm, In32Bits(seconds)));
        ASSERT_TRUE(Gives(instant.time, longForm, In32Bits(seconds)));
        ASSERT_TRUE(Gives(instant.seconds, instant.text + ".000Z", In32Bits(instant.seconds)));
    }
    std::cout << count << " days\n";
    RecordProperty("days", static_cast<int>(count));
    EXPECT_EQ(count, DaysBefore(GetParam().end) - DaysBefore(GetParam().first));
}

INSTANTIATE_TEST_SUITE_P(Oracle, DateTimeOfEveryDay, testing::ValuesIn(SpansOfTheCalendar()),
                         NameOf);

// The clock counts nanoseconds in 64 bits, which end in 1677 and 2262.
TEST(DateTimeOfEveryTimePoint, AgreesWithBoostAndTheCLibrary) {
    using boost::chrono::system_clock;
    const Days span(Span{1678, 2262});
    std::int64_t count = 0;
    for (; count < span.count; ++count) {
        const Instant instant = InstantOn(span, count);
        const boost::chrono::milliseconds sinceEpoch(instant.seconds * 1000 + instant.millisecond);
        const system_clock::time_point time{
            boost::chrono::duration_cast<system_clock::duration>(sinceEpoch)};
        ASSERT_TRUE(Gives(time, instant.text + "." + Digits(instant.millisecond, 3) + "Z",
                          In32Bits(TowardZero(instant.seconds, instant.millisecond))));
    }
    std::cout << count << " time points\n";
    RecordProperty("timePoints", static_cast<int>(count));
    // Leap years: 146 by the four years, without 1700, 1800, 1900, 2100 and 2200.
    EXPECT_EQ(count, 584 * 365 + 141);
}

/// Days that every month has, that some have, that none has.
constexpr int kDays[] = {0, 1, 28, 29, 30, 31, 32, 99};

/// The last day of the month. Boost's calendar begins in 1400, but repeats itself every 400 years.
int EndOf(int year, int month) {
    return gregorian_calendar::end_of_month_day(
        static_cast<unsigned short>(year < 1400 ? year + 2000 : year),
        static_cast<unsigned short>(month));
}

class DateTimeOfEveryMonth : public testing::TestWithParam<Span> {};

TEST_P(DateTimeOfEveryMonth, RefusesTheDaysBehindItsEnd) {
    std::int64_t accepted = 0;
    std::int64_t refused = 0;
    for (int year = GetParam().first; year < GetParam().end; ++year)
        for (int month = 1; month <= 12; ++month) {
            const int end = EndOf(year, month);
            for (const int day : kDays) {
                const std::string text =
                    Digits(year, 4) + "-" + Digits(month, 2) + "-" + Digits(day, 2) + "T12:34:56Z";
                const bool exists = day >= 1 && day <= end;
                DateTime value;
                ASSERT_EQ(DateTime::Create(text, value), exists && year >= 1400) << text;
                // A day before the calendar is refused, too, but leaves its text.
                ASSERT_EQ(value.value(), exists ? text : DateTime().value());
                ++(exists ? accepted : refused);
            }
        }
    std::cout << accepted << " days that exist, " << refused << " that do not\n";
    RecordProperty("exist", static_cast<int>(accepted));
    RecordProperty("doNot", static_cast<int>(refused));
    const std::int64_t years = GetParam().end - GetParam().first;
    // Of the days 2 to 27 none was tried.
    EXPECT_EQ(accepted,
              DaysBefore(GetParam().end) - DaysBefore(GetParam().first) - years * 12 * 26);
    EXPECT_EQ(accepted + refused, years * 12 * 8);
}

INSTANTIATE_TEST_SUITE_P(BeforeTheCalendar, DateTimeOfEveryMonth, testing::Values(Span{1, 1400}),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(Oracle, DateTimeOfEveryMonth, testing::ValuesIn(SpansOfTheCalendar()),
                         NameOf);

}  // namespace
}  // namespace Saml
