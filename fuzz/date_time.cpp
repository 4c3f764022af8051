#include "saml/foundations.h"
#include "support/byte_source.h"
#include "support/calendar_model.h"
#include "support/laws.h"

// Dates are read and written as a model says that leaves the calendar to the C library.

namespace {

using Saml::DateTime;

constexpr char kUntouched[] = "2001-02-03T04:05:06Z";

DateTime Untouched() {
    DateTime date;
    DateTime::Create<std::string>(kUntouched, date);
    return date;
}

void CheckText(const std::string& text) {
    DateTime date = Untouched();
    const bool isTaken = DateTime::Create<std::string>(text, date);
    const Fuzz::DateReading expected = Fuzz::ReadDate(text);
    Fuzz::Require(isTaken == (expected.kind == Fuzz::DateKind::Date),
                  "a text is a date exactly where the model says so");
    // The date of a year below 1400 is refused, and leaves its text.
    const bool textIsReplaced = expected.kind != Fuzz::DateKind::None;
    Fuzz::Require(date.value() == (textIsReplaced ? text : kUntouched), "a date keeps its text");
    Fuzz::Require(date.timeT() == (isTaken ? expected.seconds : Untouched().timeT()),
                  "the seconds are those of the C library, narrowed to 32 bits");
}

void CheckSeconds(std::int64_t seconds) {
    DateTime date = Untouched();
    const bool isTaken = DateTime::Create<std::int64_t>(seconds, date);
    Fuzz::Require(isTaken == Fuzz::IsOnCalendar(seconds),
                  "seconds are taken in the years 1400 to 9999");
    Fuzz::Require(date.value() == (isTaken ? Fuzz::WriteDate(seconds) : kUntouched),
                  "seconds are written as the C library says");
    if (isTaken) CheckText(date.value());
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    CheckText(std::string(input));
    ByteSource bytes(input);
    std::uint64_t seconds = 0;
    for (int i = 0; i != 8; ++i)
        seconds = seconds << 8 | bytes.Byte();
    CheckSeconds(static_cast<std::int64_t>(seconds));
    // Most numbers are far outside the calendar; these are inside or just beyond.
    CheckSeconds(static_cast<std::int64_t>(seconds % (std::uint64_t{1} << 40)) -
                 (std::int64_t{1} << 38));
}
