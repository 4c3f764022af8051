#include "saml/foundations/date_time_text.h"

#include <algorithm>
#include <cstddef>

namespace Saml {
namespace {

constexpr std::string_view kShortForm = "yyyy-mm-ddThh:mm:ssZ";
constexpr std::string_view kLongForm = "yyyy-mm-ddThh:mm:ss.fffZ";

/// Takes one field after the other from the front of a text.
class FieldReader {
  public:
    explicit FieldReader(std::string_view text) : rest_(text) {}

    /// Takes `expected`, if it stands next.
    bool Take(char expected) {
        if (rest_.empty() || rest_.front() != expected) return false;
        rest_.remove_prefix(1);
        return true;
    }

    /// Takes a number of exactly so many ASCII digits, if it stands next.
    bool TakeNumber(std::size_t digits, int& number) {
        if (rest_.size() < digits) return false;
        const std::string_view field = rest_.substr(0, digits);
        if (!std::all_of(field.begin(), field.end(), IsDigit)) return false;

        number = 0;
        for (const char digit : field)
            number = number * 10 + (digit - '0');
        rest_.remove_prefix(digits);
        return true;
    }

  private:
    static bool IsDigit(char character) { return '0' <= character && character <= '9'; }

    std::string_view rest_;
};

bool IsLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month) {
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

bool DateExists(const DateTimeFields& fields) {
    return fields.year >= 1 && fields.month >= 1 && fields.month <= 12 && fields.day >= 1 &&
           fields.day <= DaysInMonth(fields.year, fields.month);
}

bool TimeExists(const DateTimeFields& fields) {
    return fields.hour <= 23 && fields.minute <= 59 && fields.second <= 59;
}

bool TakeDate(FieldReader& reader, DateTimeFields& fields) {
    return reader.TakeNumber(4, fields.year) && reader.Take('-') &&
           reader.TakeNumber(2, fields.month) && reader.Take('-') &&
           reader.TakeNumber(2, fields.day) && DateExists(fields);
}

bool TakeTime(FieldReader& reader, DateTimeFields& fields) {
    return reader.TakeNumber(2, fields.hour) && reader.Take(':') &&
           reader.TakeNumber(2, fields.minute) && reader.Take(':') &&
           reader.TakeNumber(2, fields.second) && TimeExists(fields);
}

bool TakeFractionAndZone(FieldReader& reader, DateTimeFields& fields) {
    if (reader.Take('.')) return reader.TakeNumber(3, fields.millisecond) && reader.Take('Z');
    return reader.Take('Z');  // lenient on purpose: what follows it is not read
}

void Append(std::string& text, std::size_t digits, int number) {
    text.append(digits, '0');
    for (std::size_t place = text.size(); digits > 0; --digits, number /= 10)
        text[--place] = static_cast<char>('0' + number % 10);
}

}  // namespace

std::optional<DateTimeFields> ReadDateTimeText(std::string_view text) {
    if (text.size() != kShortForm.size() && text.size() != kLongForm.size()) return std::nullopt;

    FieldReader reader(text);
    DateTimeFields fields{};
    if (!TakeDate(reader, fields) || !reader.Take('T') || !TakeTime(reader, fields) ||
        !TakeFractionAndZone(reader, fields))
        return std::nullopt;
    return fields;
}

std::string WriteDateTimeText(const DateTimeFields& fields) {
    std::string text;
    text.reserve(kLongForm.size());
    Append(text, 4, fields.year);
    text += '-';
    Append(text, 2, fields.month);
    text += '-';
    Append(text, 2, fields.day);
    text += 'T';
    Append(text, 2, fields.hour);
    text += ':';
    Append(text, 2, fields.minute);
    text += ':';
    Append(text, 2, fields.second);
    text += '.';
    Append(text, 3, fields.millisecond);
    text += 'Z';
    return text;
}

}  // namespace Saml
