#include "tool_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace {

// The names in brackets of the dynamic section's entries of one kind.
std::vector<std::string> DynamicEntries(const std::string& kind) {
    const std::regex entry(".*\\(" + kind + "\\).*\\[(.*)\\]");
    std::vector<std::string> names;
    std::smatch parts;
    for (const std::string& line : OutputLines(READELF " -d '" LIBRARY_FILE "'"))
        if (std::regex_match(line, parts, entry)) names.push_back(parts[1]);
    return names;
}

TEST(NeededLibraries, AreExpatCryptoAndTheRuntimeOfTheLanguage) {
    const std::regex runtime(
        "lib(stdc\\+\\+|c\\+\\+|c\\+\\+abi|m|gcc_s|c|asan|ubsan|tsan)\\.so\\.[0-9]+|"
        "ld-linux.*\\.so\\.[0-9]+");
    std::vector<std::string> libraries;
    for (const std::string& name : DynamicEntries("NEEDED"))
        if (!std::regex_match(name, runtime)) libraries.push_back(name);
    EXPECT_THAT(libraries, testing::UnorderedElementsAre(testing::StartsWith("libexpat.so."),
                                                         testing::StartsWith("libcrypto.so.")));
}

TEST(SharedObjectName, CarriesTheMajorVersion) {
    EXPECT_THAT(DynamicEntries("SONAME"), testing::ElementsAre("libsamltoken.so.1"));
}

}  // namespace
