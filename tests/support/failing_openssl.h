#pragma once

#include "support/allocation_plan.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <set>
#include <string>

/// Makes OpenSSL fail, which it otherwise hardly does: by running out of memory. Linking this in
/// puts the allocations of OpenSSL under its control; they work until one is told to fail.
namespace Saml::FailingOpenSsl {

/// While it lives, this thread's allocation by OpenSSL with the given number, counted from 0 since
/// its birth, fails, and with `onwards` every later one as well.
class Shortage {
  public:
    using Extent = ::Extent;
    Shortage(std::size_t number, Extent extent) noexcept;
    ~Shortage();
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

    /// True when an allocation failed.
    bool WasFelt() const noexcept;
};

/// Which of OpenSSL's allocations on this thread fail.
AllocationPlan& PlanOfOpenSsl() noexcept;

/// How many of OpenSSL's allocations nobody has released yet, those of its caches among them.
std::int64_t LiveAllocations() noexcept;

/// Runs `action` again and again, letting a later allocation fail each time, until none is left to
/// fail. Gives every message that it threw, and "" when it did not throw in spite of a failure.
template <class Action>
std::set<std::string> OutcomesOf(Shortage::Extent extent, Action&& action) {
    std::set<std::string> outcomes;
    for (std::size_t number = 0;; ++number) {
        std::string outcome;
        const Shortage shortage(number, extent);
        try {
            action();
        } catch (const std::exception& failure) {
            outcome = failure.what();
        }
        if (!shortage.WasFelt()) return outcomes;
        outcomes.insert(outcome);
    }
}

}  // namespace Saml::FailingOpenSsl
