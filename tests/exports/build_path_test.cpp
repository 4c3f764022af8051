#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

std::string Bytes(const char* file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// One build in one folder and one in another would differ otherwise.
TEST(BuildPath, IsNotInTheLibrary) {
    const std::string library = Bytes(LIBRARY_FILE);
    ASSERT_THAT(library, testing::StartsWith("\177ELF"));
    EXPECT_EQ(library.find(SOURCE_FOLDER), std::string::npos);
    EXPECT_EQ(library.find(BUILD_FOLDER), std::string::npos);
}

// What is compiled without that care tells, and is found to.
TEST(BuildPath, IsInAProgramThatWasNotMeantToBeShipped) {
    EXPECT_NE(Bytes(PROGRAM_FILE).find(BUILD_FOLDER), std::string::npos);
}

}  // namespace
