#include "saml/foundations/date_time_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Saml {
namespace {

bool IsRead(std::string_view text) {
    return ReadDateTimeText(text).has_value();
}

TEST(ReadDateTimeText, ReadsTheShortForm) {
    const auto fields = ReadDateTimeText("2012-05-17T08:09:10Z");
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->year, 2012);
    EXPECT_EQ(fields->month, 5);
    EXPECT_EQ(fields->day, 17);
    EXPECT_EQ(fields->hour, 8);
    EXPECT_EQ(fields->minute, 9);
    EXPECT_EQ(fields->second, 10);
    EXPECT_EQ(fields->millisecond, 0);
}

TEST(ReadDateTimeText, ReadsMilliseconds) {
    const auto fields = ReadDateTimeText("9876-10-23T21:34:56.789Z");
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->year, 9876);
    EXPECT_EQ(fields->month, 10);
    EXPECT_EQ(fields->day, 23);
    EXPECT_EQ(fields->hour, 21);
    EXPECT_EQ(fields->minute, 34);
    EXPECT_EQ(fields->second, 56);
    EXPECT_EQ(fields->millisecond, 789);
}

TEST(ReadDateTimeText, ReadsNothingBehindTheZoneOfALongText) {
    for (const std::string tail : {"abcd", "    ", ".123", "Z123", "9999"}) {
        const auto fields = ReadDateTimeText("2020-01-01T00:00:00Z" + tail);
        ASSERT_TRUE(fields) << tail;
        EXPECT_EQ(fields->millisecond, 0) << tail;
    }
    EXPECT_TRUE(IsRead(std::string("2020-01-01T00:00:00Z\0\0\0\0", 24)));
}

TEST(ReadDateTimeText, RefusesEveryOtherLength) {
    const std::string text = "2020-01-01T00:00:00Z0000000000";
    for (std::size_t length = 0; length <= text.size(); ++length)
        EXPECT_EQ(IsRead(std::string_view(text).substr(0, length)), length == 20 || length == 24)
            << length;
}

TEST(ReadDateTimeText, RefusesFractionsThatAreNotThreeDigits) {
    for (const std::string text :
         {"2020-01-01T00:00:00.5Z", "2020-01-01T00:00:00.50Z", "2020-01-01T00:00:00.5000Z",
          "2020-01-01T00:00:00.", "2020-01-01T00:00:00.50ZZ", "2020-01-01T00:00:00.5000",
          "2020-01-01T00:00:00.   Z", "2020-01-01T00:00:00.-12Z", "2020-01-01T00:00:00.500z",
          "2020-01-01T00:00:00,500Z"})
        EXPECT_FALSE(IsRead(text)) << text;
}

TEST(ReadDateTimeText, RefusesEveryZoneButUpperCaseZ) {
    for (const std::string text :
         {"2020-01-01T00:00:00+00:00", "2020-01-01T00:00:00z", "2020-01-01T00:00:00 ",
          "2020-01-01T00:00:000", "2020-01-01T00:00:00+000", "2020-01-01T00:00:00zZZZZ",
          "2020-01-01T00:00:00.000+"})
        EXPECT_FALSE(IsRead(text)) << text;
}

// Whatever else stands at any of the 24 places, the text is refused; '/' and ':' are the neighbours
// of the digits, and a sign or a blank must not pass for one.
TEST(ReadDateTimeText, RefusesAnyOtherCharacterAtEveryPlace) {
    const std::string good = "2020-11-11T11:11:11.111Z";
    ASSERT_TRUE(IsRead(good));
    for (std::size_t place = 0; place < good.size(); ++place)
        for (int code = 0; code < 256; ++code) {
            const char character = static_cast<char>(code);
            if (character == good[place]) continue;
            const bool digit = '0' <= character && character <= '9';
            const bool wantsDigit = '0' <= good[place] && good[place] <= '9';
            if (digit && wantsDigit) continue;
            if (place == 19 && character == 'Z') continue;  // ends the text early
            std::string text = good;
            text[place] = character;
            EXPECT_FALSE(IsRead(text)) << "character " << code << " at place " << place;
        }
}

std::string TwoDigits(int number) {
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

TEST(ReadDateTimeText, RefusesTimesThatDoNotExist) {
    for (int number = 0; number < 100; ++number) {
        const std::string field = TwoDigits(number);
        EXPECT_EQ(IsRead("2020-01-01T" + field + ":00:00Z"), number <= 23) << field;
        EXPECT_EQ(IsRead("2020-01-01T23:" + field + ":00Z"), number <= 59) << field;
        EXPECT_EQ(IsRead("2020-01-01T23:59:" + field + "Z"), number <= 59) << field;
    }
}

TEST(ReadDateTimeText, KnowsTheLengthOfEveryMonth) {
    struct YearAndDays {
        const char* year;
        std::vector<int> daysInMonth;
    };
    const std::vector<int> common = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const std::vector<int> leap = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (const YearAndDays& row :
         {YearAndDays{"2019", common}, YearAndDays{"2020", leap}, YearAndDays{"1900", common},
          YearAndDays{"2000", leap}, YearAndDays{"2100", common}, YearAndDays{"0001", common},
          YearAndDays{"0004", leap}, YearAndDays{"9999", common}})
        for (int month = 0; month < 100; ++month)
            for (int day = 0; day < 100; ++day) {
                const std::string text =
                    row.year + ("-" + TwoDigits(month)) + "-" + TwoDigits(day) + "T00:00:00Z";
                const bool exists = month >= 1 && month <= 12 && day >= 1 &&
                                    day <= row.daysInMonth[static_cast<std::size_t>(month - 1)];
                EXPECT_EQ(IsRead(text), exists) << text;
            }
}

TEST(ReadDateTimeText, RefusesTheYearZero) {
    EXPECT_FALSE(IsRead("0000-01-01T00:00:00Z"));
    EXPECT_TRUE(IsRead("0001-01-01T00:00:00Z"));
    EXPECT_TRUE(IsRead("9999-12-31T23:59:59.999Z"));
}

TEST(WriteDateTimeText, PadsEveryFieldWithZeros) {
    EXPECT_EQ(WriteDateTimeText({1, 2, 3, 4, 5, 6, 7}), "0001-02-03T04:05:06.007Z");
    EXPECT_EQ(WriteDateTimeText({1970, 1, 1, 0, 0, 0, 0}), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(WriteDateTimeText({2020, 10, 20, 10, 20, 30, 40}), "2020-10-20T10:20:30.040Z");
    EXPECT_EQ(WriteDateTimeText({9999, 12, 31, 23, 59, 59, 999}), "9999-12-31T23:59:59.999Z");
}

}  // namespace
}  // namespace Saml
