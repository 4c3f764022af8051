#include "oracle/signatures/signature_matrix.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iostream>
#include <iterator>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

// The matrix is as wide as it says: what is not in it is not tried.
namespace SignatureMatrix {
namespace {

using CellsOf = std::vector<Cell> (*)(const Method&, const KeySize&);

std::vector<Cell> All(CellsOf cellsOf) {
    std::vector<Cell> cells;
    for (const Method& method : kMethods) {
        for (const KeySize& size : kKeySizes) {
            const std::vector<Cell> some = cellsOf(method, size);
            cells.insert(cells.end(), some.begin(), some.end());
        }
    }
    return cells;
}

/// Of every two tables, in the order of `Cell::Names`, all pairs of their rows occur.
void ExpectAllPairs(const std::vector<Cell>& cells, std::size_t digests) {
    const std::size_t rows[] = {std::size(kMethods),  digests,
                                std::size(kKeySizes), std::size(kUris),
                                std::size(kStyles),   std::size(kPrefixLists),
                                std::size(kKinds)};
    constexpr std::size_t kUriTable = 3;
    constexpr std::size_t kStyleTable = 4;
    for (std::size_t one = 0; one != std::size(rows); ++one) {
        for (std::size_t other = one + 1; other != std::size(rows); ++other) {
            std::set<std::pair<std::string, std::string>> pairs;
            for (const Cell& cell : cells)
                pairs.emplace(cell.Names()[one], cell.Names()[other]);
            const std::size_t impossible = one == kUriTable && other == kStyleTable ? 1 : 0;
            EXPECT_EQ(pairs.size(), rows[one] * rows[other] - impossible)
                << "tables " << one << " and " << other;
        }
    }
}

using Identifiers = std::set<std::tuple<std::string, std::string, std::string>>;

Identifiers IdentifiersOf(const std::vector<Cell>& cells) {
    Identifiers identifiers;
    for (const Cell& cell : cells)
        identifiers.emplace(cell.method.identifier, cell.digest.identifier, cell.size.name);
    return identifiers;
}

TEST(SignatureMatrix, JoinsEveryTwoChoicesForXmlSec1) {
    const std::vector<Cell> cells = All(CellsForXmlSec1);
    ExpectAllPairs(cells, std::size(kDigests));
    EXPECT_EQ(cells.size(), 320u);
    EXPECT_EQ(IdentifiersOf(cells).size(), 4u * 4u * 4u) << "methods, digests, key sizes";
    std::cout << cells.size() << " combinations for xmlsec1\n";
}

TEST(SignatureMatrix, JoinsEveryTwoChoicesWithTheDigestNamesThatOnlyWeRead) {
    const std::vector<Cell> cells = All(CellsForOurselves);
    ExpectAllPairs(cells, std::size(kOwnDigests));
    EXPECT_EQ(cells.size(), 160u);
    EXPECT_EQ(IdentifiersOf(cells).size(), 4u * 2u * 4u) << "methods, digests, key sizes";
    std::cout << cells.size() << " combinations for ourselves\n";
}

}  // namespace
}  // namespace SignatureMatrix
