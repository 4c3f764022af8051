#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Saml {

/// The fields of a date-time in UTC, as they stand in its text.
struct DateTimeFields {
    int year;  ///< 1 to 9999
    int month;
    int day;
    int hour;  ///< 0 to 23
    int minute;
    int second;  ///< 0 to 59: there is no leap second
    int millisecond;
};

/// Reads "yyyy-mm-ddThh:mm:ssZ" or "yyyy-mm-ddThh:mm:ss.fffZ", a narrow part of xs:dateTime (XML
/// Schema part 2, section 3.2.7). Of a text as long as the second form only what stands up to its
/// 'Z' is read.
/// \return Nothing when `text` has another form, or names a day or a time that does not exist.
std::optional<DateTimeFields> ReadDateTimeText(std::string_view text);

/// Writes "yyyy-mm-ddThh:mm:ss.fffZ".
std::string WriteDateTimeText(const DateTimeFields& fields);

}  // namespace Saml
