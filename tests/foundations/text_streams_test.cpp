#include "saml/foundations.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <vector>

namespace Saml {
namespace {

/// As the parser reads.
constexpr int kChunk = 10240;

std::string CountingText(std::size_t length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text += static_cast<char>(i % 251);
    return text;
}

TEST(StringReader, StartsAtTheFirstByteOfItsOwnCopy) {
    std::string text = "text";
    StringReader reader(text);
    text = "gone";
    EXPECT_EQ(reader.data, "text");
    EXPECT_EQ(reader.position, 0);
}

TEST(StringReader, SaysTheEndOfAnEmptyTextAtTheFirstCall) {
    StringReader reader{std::string()};
    char buffer[kChunk];
    EXPECT_EQ(reader.Read(buffer, kChunk), -1);
    EXPECT_EQ(reader.position, 0);
}

TEST(StringReader, HandsOutTheTextInChunksAndThenSaysTheEndForEver) {
    const std::string text = CountingText(25000);
    StringReader reader(text);
    char buffer[kChunk];
    std::string collected;
    for (const int expected : {10240, 10240, 4520}) {
        ASSERT_EQ(reader.Read(buffer, kChunk), expected);
        collected.append(buffer, static_cast<std::size_t>(expected));
        EXPECT_EQ(reader.position, static_cast<std::int32_t>(collected.size()));
    }
    EXPECT_EQ(collected, text);
    for (int call = 0; call < 3; ++call)
        EXPECT_EQ(reader.Read(buffer, kChunk), -1);
    EXPECT_EQ(reader.position, 25000);
}

TEST(StringReader, GivesSingleBytes) {
    StringReader reader("ab");
    char byte = 0;
    EXPECT_EQ(reader.Read(&byte, 1), 1);
    EXPECT_EQ(byte, 'a');
    EXPECT_EQ(reader.Read(&byte, 1), 1);
    EXPECT_EQ(byte, 'b');
    EXPECT_EQ(reader.Read(&byte, 1), -1);
}

TEST(StringReader, WritesNoFurtherThanTheBytesItCounts) {
    StringReader reader("abc");
    char buffer[] = "........";
    EXPECT_EQ(reader.Read(buffer, 2), 2);
    EXPECT_STREQ(buffer, "ab......");
    EXPECT_EQ(reader.Read(buffer + 4, 4), 1);
    EXPECT_STREQ(buffer, "ab..c...");
    EXPECT_EQ(reader.Read(buffer, 8), -1);
    EXPECT_STREQ(buffer, "ab..c...");
}

TEST(StringReader, TakesTheLargestRequest) {
    StringReader reader("abc");
    char buffer[3];
    EXPECT_EQ(reader.Read(buffer, std::numeric_limits<int>::max()), 3);
    EXPECT_EQ(std::string(buffer, 3), "abc");
}

TEST(StringReader, GivesNothingForARequestBelowOneByteAndStaysWhereItIs) {
    StringReader reader("abc");
    for (const int size : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(reader.Read(nullptr, size), 0);
        EXPECT_EQ(reader.position, 0);
    }
}

TEST(StringReader, ContinuesWhereItsPublicMembersSay) {
    StringReader reader("abcdef");
    char buffer[kChunk];
    reader.position = 4;
    EXPECT_EQ(reader.Read(buffer, kChunk), 2);
    EXPECT_EQ(std::string(buffer, 2), "ef");

    reader.data = "xy";  // shorter than what was read already
    EXPECT_EQ(reader.Read(buffer, kChunk), -1);
    reader.position = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(reader.Read(buffer, kChunk), -1);
}

TEST(StringReader, ReadsNothingInFrontOfItsText) {
    StringReader reader("abc");
    char buffer[kChunk];
    for (const std::int32_t position : {-1, std::numeric_limits<std::int32_t>::min()}) {
        reader.position = position;
        EXPECT_THROW(reader.Read(buffer, kChunk), std::out_of_range);
        EXPECT_EQ(reader.position, position);
    }
}

TEST(StringReader, PassesEveryByteValue) {
    const std::string text = CountingText(251) + std::string("\0\xFB\xFF", 3);
    StringReader reader(text);
    char buffer[kChunk];
    ASSERT_EQ(reader.Read(buffer, kChunk), 254);
    EXPECT_EQ(std::string(buffer, 254), text);
}

TEST(StringWriter, StartsEmptyAndCollectsWhatIsWritten) {
    StringWriter writer;
    EXPECT_EQ(writer.data, "");
    writer.Write("ab", 2);
    writer.Write("\0", 1);
    EXPECT_EQ(writer.data, std::string("ab\0", 3));
    writer.Write("cde", 2);
    EXPECT_EQ(writer.data, std::string("ab\0cd", 5));
}

TEST(StringWriter, WritesNothingForALengthBelowOne) {
    StringWriter writer;
    for (const int length : {0, -1, std::numeric_limits<int>::min()}) {
        writer.Write("ab", length);
        writer.Write(nullptr, length);
    }
    EXPECT_EQ(writer.data, "");
}

TEST(StringWriter, TakesItsOwnBytes) {
    StringWriter writer;
    writer.Write("abcdefghijklmnop", 16);
    for (int length = 16; length < 4096; length *= 2)
        writer.Write(writer.data.data(), length);
    EXPECT_EQ(writer.data.size(), 4096u);
    EXPECT_EQ(writer.data.find_last_not_of("abcdefghijklmnop"), std::string::npos);
    EXPECT_EQ(writer.data.substr(4080), "abcdefghijklmnop");
}

TEST(TextStreams, AreUsedAndDestroyedThroughTheirInterfaces) {
    const std::unique_ptr<Reader> reader = std::make_unique<StringReader>("ab");
    char buffer[2];
    EXPECT_EQ(reader->Read(buffer, 2), 2);

    const std::unique_ptr<Writer> writer = std::make_unique<StringWriter>();
    writer->Write(buffer, 2);
    EXPECT_EQ(dynamic_cast<StringWriter&>(*writer).data, "ab");

    EXPECT_TRUE(std::has_virtual_destructor_v<Reader>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Writer>);
}

}  // namespace
}  // namespace Saml
