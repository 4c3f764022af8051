#include "saml/foundations/wrapping.h"

#include <gtest/gtest.h>

#include <limits>

namespace Saml {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

TEST(WrapTo32Bits, KeepsWhatFits) {
    EXPECT_EQ(WrapTo32Bits(0), 0);
    EXPECT_EQ(WrapTo32Bits(1), 1);
    EXPECT_EQ(WrapTo32Bits(0x7FFFFFFF), kHighest);
}

TEST(WrapTo32Bits, ReadsTheThirtySecondBitAsTheSign) {
    EXPECT_EQ(WrapTo32Bits(0x80000000), kLowest);
    EXPECT_EQ(WrapTo32Bits(0x80000001), kLowest + 1);
    EXPECT_EQ(WrapTo32Bits(0xFFFFFFFF), -1);
}

TEST(WrapTo32Bits, DropsEverythingAboveThirtyTwoBits) {
    EXPECT_EQ(WrapTo32Bits(0x100000000), 0);
    EXPECT_EQ(WrapTo32Bits(0x100000005), 5);
    EXPECT_EQ(WrapTo32Bits(0x17FFFFFFF), kHighest);
    EXPECT_EQ(WrapTo32Bits(0x180000000), kLowest);
    EXPECT_EQ(WrapTo32Bits(0x8000000000000007), 7);
}

TEST(WrapTo32Bits, KeepsNegativeNumbersThatFit) {
    EXPECT_EQ(WrapTo32Bits(static_cast<std::uint64_t>(std::int64_t{-1})), -1);
    EXPECT_EQ(WrapTo32Bits(static_cast<std::uint64_t>(std::int64_t{kLowest})), kLowest);
    EXPECT_EQ(WrapTo32Bits(static_cast<std::uint64_t>(std::int64_t{kLowest} - 1)), kHighest);
    EXPECT_EQ(WrapTo32Bits(std::numeric_limits<std::uint64_t>::max()), -1);
}

}  // namespace
}  // namespace Saml
