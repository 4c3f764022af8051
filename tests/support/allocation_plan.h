#pragma once

#include <cstddef>
#include <limits>

/// How long a shortage of memory lasts: for one allocation, or from there on.
enum class Extent { Once, Onwards };

/// Which allocations of one allocator fail: none, until it is told otherwise.
struct AllocationPlan {
    static constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

    AllocationPlan() = default;
    /// The one with this number fails, counted from 0.
    AllocationPlan(std::size_t number, Extent extent) noexcept
        : first(number), last(extent == Extent::Once ? number : kNever) {}

    /// Counts one allocation. True when it shall fail.
    bool Fails() noexcept {
        const std::size_t number = made++;
        if (number < first || number > last) return false;
        wasFelt = true;
        return true;
    }

    std::size_t made = 0;
    std::size_t first = kNever;
    std::size_t last = kNever;
    bool wasFelt = false;
};
