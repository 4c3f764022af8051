#include "documents/thrown_refusal.h"

#include "documents/refusals_page.h"

#include <gtest/gtest.h>

#include <iostream>
#include <set>

namespace Documents {
namespace {

constexpr char kColon[] = ": ";

std::string ClassOf(const std::string& outcome) {
    const std::string name = outcome.substr(0, outcome.find(kColon));
    const std::size_t scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}
std::string MessageOf(const std::string& outcome) {
    return outcome.substr(outcome.find(kColon) + 2);
}

}  // namespace

void ExpectOnThePage(const std::vector<ThrownRefusal>& refusals) {
    const RefusalsPage page(REFUSALS_PAGE);
    std::set<std::string> rows;
    for (const ThrownRefusal& thrown : refusals) {
        const std::string outcome = thrown.outcome.substr(0, 1000);
        ASSERT_NE(thrown.outcome.find(kColon), std::string::npos) << outcome;
        const Refusal* const found = page.Find(ClassOf(thrown.outcome), MessageOf(thrown.outcome));
        EXPECT_EQ(found != nullptr ? found->className + kColon + found->message : "no row",
                  thrown.row)
            << "thrown: " << outcome;
        EXPECT_TRUE(rows.insert(thrown.row).second) << "twice: " << thrown.row;
    }
    std::cout << rows.size() << " refusals thrown\n";
    testing::Test::RecordProperty("refusals", static_cast<int>(rows.size()));
}

}  // namespace Documents
