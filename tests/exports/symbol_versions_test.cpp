#include "tool_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(SymbolVersions, AreTheMajorVersionOfTheLibrary) {
    const std::vector<std::string> symbols =
        OutputLines(NM " -D --defined-only '" LIBRARY_FILE "'");
    EXPECT_GT(symbols.size(), 100U);
    EXPECT_THAT(symbols, testing::Each(testing::AnyOf(testing::EndsWith("@@SAMLTOKEN_1"),
                                                      testing::EndsWith(" A SAMLTOKEN_1"))));
}

}  // namespace
