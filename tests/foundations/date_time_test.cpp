#include "saml/foundations.h"

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <optional>

namespace Saml {
namespace {

using boost::gregorian::date;
using boost::posix_time::hours;
using boost::posix_time::microseconds;
using boost::posix_time::milliseconds;
using boost::posix_time::minutes;
using boost::posix_time::ptime;
using boost::posix_time::seconds;
using boost::posix_time::time_duration;
using TimePoint = boost::chrono::system_clock::time_point;

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

/// A value that no other source gives, so that a change shows.
DateTime Untouched() {
    DateTime value;
    EXPECT_TRUE(DateTime::Create<std::string>("2001-02-03T04:05:06.789Z", value));
    return value;
}

/// What `source` gives; nothing when it is refused, which must leave the value untouched.
template <class Source>
std::optional<DateTime> Created(const Source& source) {
    DateTime value = Untouched();
    if (DateTime::Create(source, value)) return value;
    EXPECT_EQ(value.value(), "2001-02-03T04:05:06.789Z");
    EXPECT_EQ(value.timeT(), 981173106);
    return std::nullopt;
}

std::optional<DateTime> Parsed(const std::string& text) {
    return Created(text);
}

std::string TextOf(std::optional<DateTime> value) {
    return value ? value->value() : "refused";
}

std::int64_t SecondsOf(const std::optional<DateTime>& value) {
    EXPECT_TRUE(value);
    return value ? value->timeT() : kLowest;
}

TEST(DateTime, StartsAtTheEpoch) {
    DateTime epoch;
    EXPECT_EQ(epoch.value(), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(epoch.timeT(), 0);
}

TEST(DateTime, CopiesTextAndSeconds) {
    DateTime first = Untouched();
    DateTime copy(first);
    EXPECT_EQ(copy.value(), "2001-02-03T04:05:06.789Z");
    EXPECT_EQ(copy.timeT(), 981173106);

    DateTime assigned;
    EXPECT_EQ(&(assigned = copy), &assigned);
    EXPECT_EQ(assigned.value(), "2001-02-03T04:05:06.789Z");
    EXPECT_EQ(assigned.timeT(), 981173106);

    first = DateTime();
    EXPECT_EQ(copy.value(), "2001-02-03T04:05:06.789Z");
}

TEST(DateTime, ComparesTextsAndNotInstants) {
    const DateTime shortForm = *Parsed("2020-01-01T00:00:00Z");
    const DateTime longForm = *Parsed("2020-01-01T00:00:00.000Z");
    EXPECT_EQ(shortForm.timeT(), longForm.timeT());
    EXPECT_FALSE(shortForm == longForm);
    EXPECT_TRUE(longForm < shortForm);  // '.' sorts before 'Z'
    EXPECT_FALSE(shortForm < longForm);

    EXPECT_TRUE(shortForm == *Parsed("2020-01-01T00:00:00Z"));
    EXPECT_FALSE(shortForm < shortForm);
}

TEST(DateTime, OrdersTextsOfWrappedSecondsByTheirText) {
    const DateTime before = *Parsed("2038-01-19T03:14:07Z");
    const DateTime after = *Parsed("2038-01-19T03:14:08Z");
    EXPECT_GT(before.timeT(), after.timeT());
    EXPECT_TRUE(before < after);
    EXPECT_FALSE(after < before);
}

TEST(DateTime, OrdersBytesAsUnsignedAndAProperPrefixFirst) {
    const DateTime plain = *Parsed("2020-01-01T00:00:00Z");
    const DateTime low = *Parsed("2020-01-01T00:00:00Z\x7F   ");
    const DateTime high = *Parsed("2020-01-01T00:00:00Z\x80   ");
    EXPECT_TRUE(plain < low);
    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < low);
    EXPECT_FALSE(low == high);
}

// Seconds from `date -u -d ... +%s`.
TEST(DateTimeFromText, KeepsTheTextAndCountsTheSeconds) {
    struct Row {
        const char* text;
        std::int64_t seconds;
    };
    for (const Row& row :
         {Row{"1970-01-01T00:00:00Z", 0}, Row{"1970-01-01T00:00:01Z", 1},
          Row{"1969-12-31T23:59:59Z", -1}, Row{"2020-02-29T12:00:00Z", 1582977600},
          Row{"2000-02-29T00:00:00Z", 951782400}, Row{"2012-05-17T08:09:10.999Z", 1337242150},
          Row{"1901-12-13T20:45:52Z", -2147483648}}) {
        EXPECT_EQ(TextOf(Parsed(row.text)), row.text);
        EXPECT_EQ(SecondsOf(Parsed(row.text)), row.seconds) << row.text;
    }
}

TEST(DateTimeFromText, RefusesDaysAndTimesThatDoNotExist) {
    for (const std::string text :
         {"2019-02-29T12:00:00Z", "1900-02-29T00:00:00Z", "2020-04-31T00:00:00Z",
          "2020-01-01T24:00:00Z", "2020-01-01T23:60:00Z", "2020-01-01T23:59:60Z",
          "2020-00-01T00:00:00Z", "2020-13-01T00:00:00Z", "2020-01-00T00:00:00Z",
          "2020-01-32T00:00:00Z", "0000-01-01T00:00:00Z"})
        EXPECT_FALSE(Parsed(text)) << text;
}

TEST(DateTimeFromText, RefusesOtherForms) {
    for (const std::string text :
         {"", "2020-01-01", "2020-01-01T00:00:00", "2020-01-01T00:00:00.5Z",
          "2020-01-01T00:00:00.5000Z", "2020-01-01T00:00:00+00:00", "2020-01-01t00:00:00Z",
          "2020-01-01T00:00:00z", " 2020-01-01T00:00:00Z", "2020-01-01T00:00:00Z ",
          "-2020-01-01T00:00:0Z"})
        EXPECT_FALSE(Parsed(text)) << text;
}

TEST(DateTimeFromText, TakesALongTextWhateverFollowsItsZone) {
    EXPECT_EQ(TextOf(Parsed("2020-01-01T00:00:00Zabcd")), "2020-01-01T00:00:00Zabcd");
    EXPECT_EQ(SecondsOf(Parsed("2020-01-01T00:00:00Zabcd")), 1577836800);
}

TEST(DateTimeFromText, TruncatesTheFractionTowardZero) {
    EXPECT_EQ(SecondsOf(Parsed("1970-01-01T00:00:00.999Z")), 0);
    EXPECT_EQ(SecondsOf(Parsed("1970-01-01T00:00:01.999Z")), 1);
    EXPECT_EQ(SecondsOf(Parsed("1969-12-31T23:59:59.001Z")), 0);
    EXPECT_EQ(SecondsOf(Parsed("1969-12-31T23:59:59.000Z")), -1);
    EXPECT_EQ(SecondsOf(Parsed("1969-12-31T23:59:58.500Z")), -1);
}

TEST(DateTimeFromText, ReplacesTheTextButNotTheSecondsOfAYearBelowTheCalendar) {
    for (const std::string text :
         {"0001-01-01T00:00:00Z", "1000-01-01T00:00:00Z", "1399-12-31T23:59:59.999Z"}) {
        DateTime value = Untouched();
        EXPECT_FALSE(DateTime::Create(text, value)) << text;
        EXPECT_EQ(value.value(), text);
        EXPECT_EQ(value.timeT(), 981173106) << text;
    }
    EXPECT_TRUE(Parsed("1400-01-01T00:00:00Z"));
    EXPECT_TRUE(Parsed("9999-12-31T23:59:59.999Z"));
}

TEST(DateTimeFromText, WrapsTheSecondsAtThirtyTwoBits) {
    EXPECT_EQ(SecondsOf(Parsed("2038-01-19T03:14:07Z")), 2147483647);
    EXPECT_EQ(SecondsOf(Parsed("2038-01-19T03:14:08Z")), -2147483648);
    EXPECT_EQ(SecondsOf(Parsed("1901-12-13T20:45:51Z")), 2147483647);
    EXPECT_EQ(SecondsOf(Parsed("2106-02-07T06:28:16Z")), 0);
    // In whole seconds: 253402300799 = 59 * 2^32 - 769665; -17987443200 = -4 * 2^32 - 807574016.
    EXPECT_EQ(SecondsOf(Parsed("9999-12-31T23:59:59Z")), -769665);
    EXPECT_EQ(SecondsOf(Parsed("1400-01-01T00:00:00Z")), -807574016);
}

TEST(DateTimeFromPtime, WritesTheLongForm) {
    EXPECT_EQ(TextOf(Created(ptime(date(2012, 5, 7), time_duration(8, 9, 6)))),
              "2012-05-07T08:09:06.000Z");
    EXPECT_EQ(SecondsOf(Created(ptime(date(2012, 5, 7), time_duration(8, 9, 6)))), 1336378146);
}

TEST(DateTimeFromPtime, TruncatesTheFractionToMilliseconds) {
    const ptime day(date(2012, 5, 17));
    EXPECT_EQ(TextOf(Created(day + microseconds(999))), "2012-05-17T00:00:00.000Z");
    EXPECT_EQ(TextOf(Created(day + microseconds(1000))), "2012-05-17T00:00:00.001Z");
    EXPECT_EQ(TextOf(Created(day + microseconds(45999))), "2012-05-17T00:00:00.045Z");
    EXPECT_EQ(TextOf(Created(day - microseconds(1))), "2012-05-16T23:59:59.999Z");
}

TEST(DateTimeFromPtime, TruncatesTheSecondsTowardZeroAroundTheEpoch) {
    const ptime epoch(date(1970, 1, 1));
    EXPECT_EQ(SecondsOf(Created(epoch + microseconds(1999999))), 1);
    EXPECT_EQ(SecondsOf(Created(epoch - microseconds(1))), 0);
    EXPECT_EQ(TextOf(Created(epoch - microseconds(1))), "1969-12-31T23:59:59.999Z");
    EXPECT_EQ(SecondsOf(Created(epoch - microseconds(1999999))), -1);
    EXPECT_EQ(SecondsOf(Created(epoch - microseconds(2000000))), -2);
}

TEST(DateTimeFromPtime, WrapsTheSecondsWhileTheTextStaysRight) {
    const std::optional<DateTime> value = Created(ptime(date(2040, 1, 1)));
    EXPECT_EQ(TextOf(value), "2040-01-01T00:00:00.000Z");
    EXPECT_EQ(SecondsOf(value), 2208988800 - 4294967296);
}

TEST(DateTimeFromPtime, RefusesSpecialValues) {
    EXPECT_FALSE(Created(ptime()));
    EXPECT_FALSE(Created(ptime(boost::posix_time::not_a_date_time)));
    EXPECT_FALSE(Created(ptime(boost::posix_time::pos_infin)));
    EXPECT_FALSE(Created(ptime(boost::posix_time::neg_infin)));
    EXPECT_FALSE(Created(ptime(date(boost::gregorian::not_a_date_time))));
}

TEST(DateTimeFromPtime, TakesTheWholeCalendarAndNothingBeyond) {
    const ptime first(date(1400, 1, 1));
    const ptime last(date(9999, 12, 31), hours(24) - microseconds(1));
    EXPECT_EQ(TextOf(Created(first)), "1400-01-01T00:00:00.000Z");
    EXPECT_EQ(TextOf(Created(last)), "9999-12-31T23:59:59.999Z");
    EXPECT_EQ(TextOf(Created(ptime(boost::posix_time::min_date_time))), "1400-01-01T00:00:00.000Z");
    EXPECT_EQ(TextOf(Created(ptime(boost::posix_time::max_date_time))), "9999-12-31T23:59:59.999Z");

    EXPECT_FALSE(Created(first - microseconds(1)));
    EXPECT_FALSE(Created(last + microseconds(1)));
    EXPECT_FALSE(Created(first - hours(24 * 365)));
    EXPECT_FALSE(Created(last + hours(24 * 365)));
}

TEST(DateTimeFromPtime, RefusesTheFarthestTimesThatCanBeExpressed) {
    const ptime epoch(date(1970, 1, 1));
    const std::int64_t far = 9000000000000000000;
    EXPECT_FALSE(Created(epoch - microseconds(far)));
    const std::int64_t count = epoch.date().day_number() * std::int64_t{86400000000};
    EXPECT_FALSE(Created(epoch + microseconds(kHighest - 2 - count)));
    EXPECT_FALSE(Created(epoch - microseconds(count)));  // the time system's own zero
    EXPECT_FALSE(Created(epoch - microseconds(count + 1)));
}

TEST(DateTimeFromSeconds, CountsFromTheEpoch) {
    EXPECT_EQ(TextOf(Created(std::int64_t{0})), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(TextOf(Created(std::int64_t{-1})), "1969-12-31T23:59:59.000Z");
    EXPECT_EQ(TextOf(Created(std::int64_t{1582977600})), "2020-02-29T12:00:00.000Z");
    EXPECT_EQ(SecondsOf(Created(std::int64_t{0})), 0);
    EXPECT_EQ(SecondsOf(Created(std::int64_t{-1})), -1);
    EXPECT_EQ(SecondsOf(Created(std::int64_t{1582977600})), 1582977600);
}

TEST(DateTimeFromSeconds, WrapsTheSecondsWhileTheTextStaysRight) {
    EXPECT_EQ(TextOf(Created(std::int64_t{2147483648})), "2038-01-19T03:14:08.000Z");
    EXPECT_EQ(SecondsOf(Created(std::int64_t{2147483648})), -2147483648);
    EXPECT_EQ(TextOf(Created(std::int64_t{-2147483649})), "1901-12-13T20:45:51.000Z");
    EXPECT_EQ(SecondsOf(Created(std::int64_t{-2147483649})), 2147483647);
}

TEST(DateTimeFromSeconds, TakesTheWholeCalendarAndNothingBeyond) {
    EXPECT_EQ(TextOf(Created(std::int64_t{-17987443200})), "1400-01-01T00:00:00.000Z");
    EXPECT_EQ(TextOf(Created(std::int64_t{253402300799})), "9999-12-31T23:59:59.000Z");
    for (const std::int64_t outside : {std::int64_t{-17987443201}, std::int64_t{253402300800},
                                       kLowest, kLowest + 1, kHighest - 1, kHighest, kLowest / 1000,
                                       kHighest / 1000, kLowest / 1000000, kHighest / 1000000})
        EXPECT_FALSE(Created(outside)) << outside;
}

/// So many ticks of 100 nanoseconds after the epoch.
TimePoint AtTicks(std::int64_t ticks) {
    using Ticks = boost::chrono::duration<std::int64_t, boost::ratio<1, 10000000>>;
    return TimePoint(boost::chrono::duration_cast<TimePoint::duration>(Ticks(ticks)));
}

TEST(DateTimeFromTimePoint, DropsWhatIsBelowAMillisecond) {
    EXPECT_EQ(TextOf(Created(AtTicks(0))), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(TextOf(Created(AtTicks(9999))), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(TextOf(Created(AtTicks(10000))), "1970-01-01T00:00:00.001Z");
    EXPECT_EQ(TextOf(Created(AtTicks(15999999))), "1970-01-01T00:00:01.599Z");
    EXPECT_EQ(SecondsOf(Created(AtTicks(15999999))), 1);
    EXPECT_EQ(TextOf(Created(AtTicks(15829776000000000 + 1230000))), "2020-02-29T12:00:00.123Z");
}

TEST(DateTimeFromTimePoint, DropsTowardZeroBeforeTheEpochToo) {
    EXPECT_EQ(TextOf(Created(AtTicks(-9999))), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(TextOf(Created(AtTicks(-10000))), "1969-12-31T23:59:59.999Z");
    EXPECT_EQ(TextOf(Created(AtTicks(-15999999))), "1969-12-31T23:59:58.401Z");
    EXPECT_EQ(SecondsOf(Created(AtTicks(-15999999))), -1);
    EXPECT_EQ(TextOf(Created(AtTicks(-10000000))), "1969-12-31T23:59:59.000Z");
    EXPECT_EQ(SecondsOf(Created(AtTicks(-10000000))), -1);
}

TEST(DateTimeFromTimePoint, WrapsTheSecondsWhileTheTextStaysRight) {
    const std::optional<DateTime> value = Created(AtTicks(22089888000000000));
    EXPECT_EQ(TextOf(value), "2040-01-01T00:00:00.000Z");
    EXPECT_EQ(SecondsOf(value), 2208988800 - 4294967296);
}

// 2^63 nanoseconds are 9223372036.854... seconds, which the calendar holds; as many ticks of 100
// nanoseconds lead beyond it on both sides.
TEST(DateTimeFromTimePoint, TakesTheFarthestTimePointsWithoutOverflow) {
    const std::optional<DateTime> first = Created(TimePoint(TimePoint::duration::min()));
    const std::optional<DateTime> last = Created(TimePoint(TimePoint::duration::max()));
    if (TimePoint::period::den == 1000000000) {
        EXPECT_EQ(TextOf(first), "1677-09-21T00:12:43.146Z");
        EXPECT_EQ(TextOf(last), "2262-04-11T23:47:16.854Z");
    } else {
        EXPECT_FALSE(first);
        EXPECT_FALSE(last);
    }
}

TEST(DateTimeNow, IsTheSystemClocksUtcTimeInTheLongForm) {
    using std::chrono::system_clock;
    const std::int64_t before = system_clock::to_time_t(system_clock::now());
    DateTime now = DateTime::GetUtcDateTime();
    const std::int64_t after = system_clock::to_time_t(system_clock::now());

    const std::string text = now.value();
    ASSERT_EQ(text.size(), 24u);
    EXPECT_EQ(text[19], '.');
    const std::optional<DateTime> parsed = Parsed(text);
    EXPECT_EQ(SecondsOf(parsed), now.timeT());

    // The seconds wrap in 2038; their distance to the clock's does not.
    const auto wrapped = [](std::int64_t difference) { return difference & 0xFFFFFFFF; };
    EXPECT_LE(wrapped(now.timeT() - before), after - before);
}

TEST(DateTimeNow, HasMilliseconds) {
    // A clock of whole seconds would give ".000" at every call.
    for (int call = 0; call < 1000000; ++call)
        if (DateTime::GetUtcDateTime().value().substr(20, 3) != "000") return;
    FAIL() << "every reading was a whole second";
}

/// Days between 1970-01-01 and a day of the proleptic Gregorian calendar, by the count of leap days
/// in the years that begin in March.
std::int64_t DaysSinceEpoch(int year, int month, int day) {
    const int marchYear = month > 2 ? year : year - 1;
    const int marchMonth = month > 2 ? month - 3 : month + 9;
    const int dayOfYear = (153 * marchMonth + 2) / 5 + day - 1;
    return std::int64_t{365} * marchYear + marchYear / 4 - marchYear / 100 + marchYear / 400 +
           dayOfYear - 719468;
}

std::int64_t ByThirtyTwoBits(std::int64_t seconds) {
    while (seconds > 2147483647)
        seconds -= 4294967296;
    while (seconds < -2147483648)
        seconds += 4294967296;
    return seconds;
}

TEST(DateTimeCalendar, AgreesWithDayArithmeticOnEveryDay) {
    ASSERT_EQ(DaysSinceEpoch(1970, 1, 1), 0);
    ASSERT_EQ(DaysSinceEpoch(2000, 3, 1), 11017);

    std::int64_t expectedDay = DaysSinceEpoch(1400, 1, 1);
    std::string text = "yyyy-mm-ddThh:mm:ss.000Z";
    const auto put = [&text](std::size_t place, int digits, std::int64_t number) {
        for (; digits > 0; --digits, number /= 10)
            text[place + static_cast<std::size_t>(digits) - 1] =
                static_cast<char>('0' + number % 10);
    };
    DateTime parsed;
    DateTime counted;
    for (int year = 1400; year <= 9999; ++year)
        for (int month = 1; month <= 12; ++month)
            for (int day = 1; day <= 31; ++day) {
                // Another second of the day each day.
                const std::int64_t second = (DaysSinceEpoch(year, month, day) + 300000) % 86400;
                put(0, 4, year);
                put(5, 2, month);
                put(8, 2, day);
                put(11, 2, second / 3600);
                put(14, 2, second / 60 % 60);
                put(17, 2, second % 60);
                if (!DateTime::Create(text, parsed)) {
                    // Only a day behind the month's last one, which the next month begins with.
                    ASSERT_EQ(DaysSinceEpoch(year, month + 1, 1), expectedDay) << text;
                    continue;
                }
                ASSERT_EQ(DaysSinceEpoch(year, month, day), expectedDay) << text;
                const std::int64_t seconds = expectedDay * 86400 + second;
                ASSERT_TRUE(DateTime::Create(seconds, counted)) << text;
                ASSERT_TRUE(counted == parsed) << text << " " << counted.value();
                ASSERT_EQ(parsed.timeT(), ByThirtyTwoBits(seconds)) << text;
                ASSERT_EQ(counted.timeT(), parsed.timeT()) << text;
                ++expectedDay;
            }
    EXPECT_EQ(expectedDay, DaysSinceEpoch(9999, 12, 31) + 1);
}

}  // namespace
}  // namespace Saml
