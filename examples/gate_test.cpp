#include "gate.h"

#include <gtest/gtest.h>

namespace {

TEST(PercentEncoded, LeavesTheUnreservedCharacters) {
    EXPECT_EQ(PercentEncoded("AZaz09-._~"), "AZaz09-._~");
    EXPECT_EQ(PercentEncoded(""), "");
}

TEST(PercentEncoded, EncodesWhatSeparatesPartsAndFields) {
    EXPECT_EQ(PercentEncoded("a@b\\c,d e%f"), "a%40b%5Cc%2Cd%20e%25f");
    EXPECT_EQ(PercentEncoded("x\r\nX-Principal: root"), "x%0D%0AX-Principal%3A%20root");
    EXPECT_EQ(PercentEncoded(std::string("\0\x7f\xC3\xA9", 4)), "%00%7F%C3%A9");
}

}  // namespace
