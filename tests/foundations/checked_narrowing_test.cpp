#include "saml/foundations/checked_narrowing.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Saml {
namespace {

constexpr std::size_t kLongestInt = 2147483647;

TEST(FitsIn, AcceptsUpToTheLargestCount) {
    EXPECT_TRUE(FitsIn<std::int32_t>(0));
    EXPECT_TRUE(FitsIn<std::int32_t>(kLongestInt));
    EXPECT_FALSE(FitsIn<std::int32_t>(kLongestInt + 1));
    EXPECT_FALSE(FitsIn<std::int32_t>(std::numeric_limits<std::size_t>::max()));
}

TEST(FitsIn, KnowsEachType) {
    EXPECT_TRUE(FitsIn<signed char>(127));
    EXPECT_FALSE(FitsIn<signed char>(128));
    EXPECT_TRUE(FitsIn<std::uint32_t>(4294967295));
    EXPECT_FALSE(FitsIn<std::uint32_t>(4294967296));
    EXPECT_TRUE(FitsIn<std::int64_t>(9223372036854775807u));
    EXPECT_FALSE(FitsIn<std::int64_t>(9223372036854775808u));
}

/// Keeps where each piece began, and how long it was, without looking at its bytes.
struct PieceWriter : Writer {
    void Write(const char* data, int length) override { pieces.emplace_back(data, length); }
    std::vector<std::pair<const char*, int>> pieces;
};

TEST(WriteRun, WritesAnOrdinaryRunInOnePiece) {
    StringWriter out;
    WriteRun(out, std::string_view("a\0b", 3));
    EXPECT_EQ(out.data, std::string("a\0b", 3));

    PieceWriter pieces;
    const std::string run(100000, 'x');
    WriteRun(pieces, run);
    ASSERT_EQ(pieces.pieces.size(), 1u);
    EXPECT_EQ(pieces.pieces[0], std::make_pair(run.data(), 100000));
}

TEST(WriteRun, WritesNothingForAnEmptyRun) {
    PieceWriter out;
    WriteRun(out, std::string_view());
    WriteRun(out, std::string_view("a", 0));
    EXPECT_TRUE(out.pieces.empty());
}

TEST(WriteRun, DividesARunThatIsLongerThanAnIntCanTell) {
    // Nobody touches the bytes, so that they cost address space only.
    const std::unique_ptr<char[]> bytes(new char[kLongestInt + 2]);
    PieceWriter out;

    WriteRun(out, std::string_view(bytes.get(), kLongestInt));
    ASSERT_EQ(out.pieces.size(), 1u);
    EXPECT_EQ(out.pieces[0], std::make_pair(static_cast<const char*>(bytes.get()), 2147483647));

    out.pieces.clear();
    WriteRun(out, std::string_view(bytes.get(), kLongestInt + 2));
    ASSERT_EQ(out.pieces.size(), 2u);
    EXPECT_EQ(out.pieces[0], std::make_pair(static_cast<const char*>(bytes.get()), 2147483647));
    EXPECT_EQ(out.pieces[1],
              std::make_pair(static_cast<const char*>(bytes.get() + kLongestInt), 2));
}

}  // namespace
}  // namespace Saml
