#include "exported_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using Names = std::set<std::string>;

Names ListedNames() {
    std::ifstream file(EXPECTED_SYMBOLS_FILE);
    Names names;
    for (std::string line; std::getline(file, line);)
        if (std::string name = NameHere(line); !name.empty()) names.insert(std::move(name));
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
