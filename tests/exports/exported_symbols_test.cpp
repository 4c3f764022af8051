#include "tool_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

using Names = std::set<std::string>;

constexpr char kVersion[] = "SAMLTOKEN_1";

// What nm prints of each symbol after its address, a letter and a blank: the name and its version.
std::vector<std::string> VersionedNames() {
    std::vector<std::string> names;
    for (const std::string& line : OutputLines(NM " -D --defined-only -C '" LIBRARY_FILE "'"))
        names.push_back(line.substr(line.find(' ') + 3));
    return names;
}

// Constructors and destructors come in several variants of one name: a set tells of each once.
Names ExportedNames() {
    Names names;
    for (const std::string& name : VersionedNames())
        if (name != kVersion) names.insert(name.substr(0, name.rfind("@@")));
    return names;
}

Names ListedNames() {
    std::ifstream file(EXPECTED_SYMBOLS_FILE);
    Names names;
    for (std::string line; std::getline(file, line);)
        names.insert(line);
    return names;
}

std::string LinesInFirstOnly(const Names& first, const Names& second) {
    std::vector<std::string> difference;
    std::set_difference(first.begin(), first.end(), second.begin(), second.end(),
                        std::back_inserter(difference));
    std::string lines;
    for (const std::string& name : difference)
        lines += name + "\n";
    return lines;
}

TEST(ExportedSymbols, AreAllListed) {
    EXPECT_EQ(LinesInFirstOnly(ExportedNames(), ListedNames()), "")
        << "exported, but not in " EXPECTED_SYMBOLS_FILE;
}

TEST(ExportedSymbols, IncludeAllThatAreListed) {
    EXPECT_EQ(LinesInFirstOnly(ListedNames(), ExportedNames()), "")
        << "in " EXPECTED_SYMBOLS_FILE ", but not exported";
}

TEST(ExportedSymbols, CarryTheMajorVersion) {
    EXPECT_THAT(VersionedNames(),
                testing::Each(testing::AnyOf(kVersion, testing::EndsWith("@@SAMLTOKEN_1"))));
}

TEST(ExportedSymbols, AreListedInOrderAndOnce) {
    std::ifstream file(EXPECTED_SYMBOLS_FILE);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    const Names sorted(lines.begin(), lines.end());
    EXPECT_FALSE(lines.empty());
    EXPECT_EQ(lines, std::vector<std::string>(sorted.begin(), sorted.end()));
}

}  // namespace
