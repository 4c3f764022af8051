#pragma once

#include "support/allocation_plan.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// The three allocators that a call of the library uses, each of which can be told to fail.
namespace Saml::Faults {

enum class Allocator {
    Ours,     ///< `operator new` in all its forms.
    Expat,    ///< The memory functions that expat's tokenizer is created with.
    OpenSsl,  ///< The memory functions of the whole of OpenSSL.
};
constexpr std::array<Allocator, 3> kAllocators{Allocator::Ours, Allocator::Expat,
                                               Allocator::OpenSsl};
const char* NameOf(Allocator allocator);

/// Makes the allocation with this number fail on this thread, counted from 0 since `Begin`, until
/// `End`. Nothing fails outside.
class Shortage {
  public:
    Shortage(Allocator allocator, std::size_t number, Extent extent) noexcept
        : allocator_(allocator), plan_(number, extent) {}
    ~Shortage() { End(); }
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

    void Begin() noexcept;
    void End() noexcept;
    /// True when an allocation failed; after `End`.
    bool WasFelt() const noexcept { return plan_.wasFelt; }

  private:
    const Allocator allocator_;
    AllocationPlan plan_;
    bool begun_ = false;
};

using LiveCounts = std::array<std::int64_t, kAllocators.size()>;

/// How many allocations of each allocator nobody has released yet. What OpenSSL keeps for the
/// thread, such as its queue of errors, is dropped first.
LiveCounts LiveAllocations() noexcept;

/// The plan of this thread's `operator new`.
AllocationPlan& PlanOfNew() noexcept;
std::int64_t LiveNews() noexcept;
/// The plan of every tokenizer of expat that this thread creates or uses.
AllocationPlan& PlanOfExpat() noexcept;
std::int64_t LiveOfExpat() noexcept;

}  // namespace Saml::Faults
