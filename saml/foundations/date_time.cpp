#include "saml/foundations.h"
#include "saml/foundations/date_time_text.h"
#include "saml/foundations/wrapping.h"

#include <boost/date_time/gregorian/gregorian_types.hpp>

#include <chrono>
#include <optional>

namespace Saml {
namespace {

namespace gregorian = boost::gregorian;
using boost::posix_time::ptime;
using boost::posix_time::time_duration;

constexpr char kEpochText[] = "1970-01-01T00:00:00.000Z";

/// The span of the calendar, 1400-01-01T00:00:00Z to 9999-12-31T23:59:59Z, in seconds since the
/// epoch.
constexpr std::int64_t kFirstSecond = -17987443200;
constexpr std::int64_t kLastSecond = 253402300799;

ptime Epoch() {
    return ptime(gregorian::date(1970, 1, 1));
}

/// False for a time that arithmetic took beyond the calendar, whose fields would be wrong.
bool IsOnCalendar(const ptime& time) {
    return ptime(boost::date_time::min_date_time) <= time &&
           time <= ptime(boost::date_time::max_date_time);
}

/// Seconds since the epoch, truncated toward zero. They pass through 32 bits, since callers compare
/// and store such seconds, the wrap in 2038 included.
std::int64_t SecondsSinceEpoch(const ptime& time) {
    const std::int64_t seconds = (time - Epoch()).total_microseconds() / 1000000;
    return WrapTo32Bits(static_cast<std::uint64_t>(seconds));
}

/// The time at `seconds` and `milliseconds`, which is less than a second, after the epoch; no
/// date-time when the seconds lie outside the calendar.
ptime TimeAt(std::int64_t seconds, std::int64_t milliseconds) {
    if (seconds < kFirstSecond || seconds > kLastSecond)
        return ptime(boost::date_time::not_a_date_time);
    return Epoch() + boost::posix_time::milliseconds(seconds * 1000 + milliseconds);
}

/// \throws std::out_of_range for a year below 1400, where the calendar begins.
ptime TimeOf(const DateTimeFields& fields) {
    const gregorian::date date(gregorian::greg_year(static_cast<unsigned short>(fields.year)),
                               gregorian::greg_month(static_cast<unsigned short>(fields.month)),
                               gregorian::greg_day(static_cast<unsigned short>(fields.day)));
    return ptime(date, time_duration(fields.hour, fields.minute, fields.second) +
                           boost::posix_time::milliseconds(fields.millisecond));
}

DateTimeFields FieldsOf(const ptime& time) {
    const gregorian::date::ymd_type date = time.date().year_month_day();
    const time_duration timeOfDay = time.time_of_day();
    return {date.year,
            date.month.as_number(),
            date.day.as_number(),
            static_cast<int>(timeOfDay.hours()),
            static_cast<int>(timeOfDay.minutes()),
            static_cast<int>(timeOfDay.seconds()),
            static_cast<int>(timeOfDay.total_milliseconds() % 1000)};
}

}  // namespace

DateTime::DateTime() : text_(kEpochText), seconds_(0) {}
DateTime::DateTime(const DateTime&) = default;
DateTime& DateTime::operator=(const DateTime&) = default;
DateTime::~DateTime() = default;

bool DateTime::operator==(const DateTime& other) const {
    return text_ == other.text_;
}

bool DateTime::operator<(const DateTime& other) const {
    return text_ < other.text_;
}

std::int64_t DateTime::timeT() const {
    return seconds_;
}

std::string DateTime::value() {
    return text_;
}

DateTime DateTime::GetUtcDateTime() {
    using std::chrono::system_clock;
    const std::int64_t milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(
                                          system_clock::now().time_since_epoch())
                                          .count();
    DateTime now;
    Create(TimeAt(milliseconds / 1000, milliseconds % 1000), now);
    return now;
}

template <>
bool DateTime::Create<std::string>(const std::string& text, DateTime& out) {
    const std::optional<DateTimeFields> fields = ReadDateTimeText(text);
    if (!fields) return false;

    // The text comes first: callers find it in `out` even when the calendar refuses the year.
    out.text_ = text;
    try {
        out.seconds_ = SecondsSinceEpoch(TimeOf(*fields));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

template <>
bool DateTime::Create<ptime>(const ptime& time, DateTime& out) {
    if (time.is_special() || !IsOnCalendar(time)) return false;

    out.text_ = WriteDateTimeText(FieldsOf(time));
    out.seconds_ = SecondsSinceEpoch(time);
    return true;
}

template <>
bool DateTime::Create<std::int64_t>(const std::int64_t& seconds, DateTime& out) {
    return Create(TimeAt(seconds, 0), out);
}

template <>
bool DateTime::Create<boost::chrono::system_clock::time_point>(
    const boost::chrono::system_clock::time_point& time, DateTime& out) {
    // The clock ticks each nanosecond on one platform, each 100 nanoseconds on another: this only
    // ever divides, so that the farthest time point does not overflow.
    static_assert(boost::ratio_less_equal<boost::chrono::system_clock::period,
                                          boost::ratio<1, 10000000>>::value);
    using Ticks = boost::chrono::duration<std::int64_t, boost::ratio<1, 10000000>>;
    const std::int64_t ticks = boost::chrono::duration_cast<Ticks>(time.time_since_epoch()).count();

    const std::int64_t seconds = ticks / 10000000;
    const std::int64_t milliseconds = ticks / 10000 - seconds * 1000;
    return Create(TimeAt(seconds, milliseconds), out);
}

}  // namespace Saml
