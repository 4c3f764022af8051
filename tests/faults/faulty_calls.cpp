#include "faults/faulty_calls.h"

#include "saml/foundations.h"

#include <boost/core/demangle.hpp>
#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <typeinfo>

namespace Saml::Faults {
namespace {

std::string Told(const std::exception& thrown) {
    if (typeid(thrown) == typeid(std::bad_alloc)) return "bad_alloc";
    const std::string name = boost::core::demangle(typeid(thrown).name());
    const std::size_t colon = name.rfind(':');
    return (colon == std::string::npos ? name : name.substr(colon + 1)) + ": " + thrown.what();
}

int FailuresSoFar() {
    return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

/// One call after the other, each with a later allocation failing.
class Trial {
  public:
    Trial(const FaultyCall& call, const std::string& usual) : call_(call), usual_(usual) {
        // The first time everything lazy comes to be: OpenSSL's tables, a resolver's caches.
        for (int i = 0; i < 2; ++i) {
            Prepare();
            EXPECT_EQ(EndOf(call_.call, [] {}), usual_);
            usualResult_ = call_.result();
            call_.forget();
        }
    }

    /// \return The ends other than the usual one.
    Outcomes Run(Allocator allocator, Extent extent) {
        Outcomes outcomes;
        std::string outcome(1024, ' ');  // room enough, so that the counts below do not change
        const int failuresBefore = FailuresSoFar();
        for (std::size_t number = 0; FailuresSoFar() < failuresBefore + 3; ++number) {
            SCOPED_TRACE(std::string(NameOf(allocator)) + " " + std::to_string(number));
            const LiveCounts before = LiveAllocations();
            Shortage shortage(allocator, number, extent);
            outcome.assign(Try(shortage));
            // A failure may lead OpenSSL to something new that it keeps; but only once.
            if (LiveAllocations() != before) ExpectNothingKept(allocator, number, extent);
            if (!shortage.WasFelt()) break;
            if (outcome != usual_) outcomes.insert(outcome);
            ++failed_;
        }
        return outcomes;
    }

    std::size_t Failed() const { return failed_; }

  private:
    void Prepare() const {
        if (call_.prepare) call_.prepare();
    }

    std::string Try(Shortage& shortage) const {
        Prepare();
        const std::string resultBefore = call_.result();
        const std::string outcome = EndOf(
            [this, &shortage] {
                shortage.Begin();
                call_.call();
            },
            [&shortage] { shortage.End(); });
        EXPECT_TRUE(call_.result() == (outcome == usual_ ? usualResult_ : resultBefore))
            << outcome << "\n"
            << call_.result();
        EXPECT_EQ(EndOf(call_.call, [] {}), usual_) << "afterwards, after: " << outcome;
        EXPECT_TRUE(call_.result() == usualResult_) << call_.result();
        call_.forget();
        return outcome;
    }

    void ExpectNothingKept(Allocator allocator, std::size_t number, Extent extent) const {
        const LiveCounts before = LiveAllocations();
        Shortage shortage(allocator, number, extent);
        Try(shortage);
        EXPECT_EQ(LiveAllocations(), before);
    }

    const FaultyCall& call_;
    const std::string usual_;
    std::string usualResult_;
    std::size_t failed_ = 0;
};

/// Adds up what all tests of this program did.
class Total final : public testing::Environment {
  public:
    void TearDown() override { std::cout << "allocations failed in all: " << failed << "\n"; }
    std::size_t failed = 0;
};
Total* const total = static_cast<Total*>(testing::AddGlobalTestEnvironment(new Total));

}  // namespace

std::string EndOf(const std::function<void()>& action, const std::function<void()>& afterwards) {
    try {
        action();
        afterwards();
        return kReturned;
    } catch (const std::exception& thrown) {
        afterwards();
        return Told(thrown);
    } catch (const ParseException* thrown) {
        afterwards();
        const std::unique_ptr<const ParseException> owned(thrown);
        return "pointer to " + Told(*thrown);
    }
}

void ExpectSoundInShortage(const FaultyCall& call, const std::string& usual,
                           const Failures& failures) {
    Trial trial(call, usual);
    const std::array<const Outcomes*, kAllocators.size()> expected{&failures.ours, &failures.expat,
                                                                   &failures.openSsl};
    std::cout << "allocations failed:";
    for (std::size_t i = 0; i < kAllocators.size(); ++i) {
        const std::size_t before = trial.Failed();
        Outcomes outcomes = trial.Run(kAllocators[i], Extent::Once);
        const std::size_t each = trial.Failed() - before;
        outcomes.merge(trial.Run(kAllocators[i], Extent::Onwards));
        std::cout << " " << NameOf(kAllocators[i]) << " " << each << " singly, "
                  << trial.Failed() - before - each << " with all behind them;";
        Outcomes others = *expected[i];
        others.erase(usual);
        EXPECT_EQ(outcomes, others) << NameOf(kAllocators[i]);
    }
    std::cout << "\n";
    testing::Test::RecordProperty("allocations_failed", std::to_string(trial.Failed()));
    total->failed += trial.Failed();
}

}  // namespace Saml::Faults
