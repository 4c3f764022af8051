#include "faults/shortages.h"

#include <atomic>
#include <cstdlib>
#include <new>

/// Every form of `operator new` and `operator delete`, over malloc, so that a sanitizer's checks of
/// the memory itself go on. All of them, since those of a sanitizer would refuse what malloc gave.
namespace Saml::Faults {
namespace {
thread_local AllocationPlan plan;
std::atomic<std::int64_t> live{0};

void* Allocate(std::size_t size, std::size_t alignment) noexcept {
    if (plan.Fails()) return nullptr;
    const std::size_t rounded = (size + alignment) / alignment * alignment;  // never 0
    void* const allocation = alignment <= alignof(std::max_align_t)
                                 ? std::malloc(rounded)
                                 : std::aligned_alloc(alignment, rounded);
    if (allocation != nullptr) live.fetch_add(1, std::memory_order_relaxed);
    return allocation;
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment) {
    void* const allocation = Allocate(size, alignment);
    if (allocation == nullptr) throw std::bad_alloc();
    return allocation;
}

void Release(void* allocation) noexcept {
    if (allocation != nullptr) live.fetch_sub(1, std::memory_order_relaxed);
    std::free(allocation);
}
}  // namespace

AllocationPlan& PlanOfNew() noexcept {
    return plan;
}

std::int64_t LiveNews() noexcept {
    return live.load(std::memory_order_relaxed);
}

}  // namespace Saml::Faults

using Saml::Faults::Allocate;
using Saml::Faults::AllocateOrThrow;
using Saml::Faults::Release;

namespace {
constexpr std::size_t kUsual = 1;
std::size_t Bytes(std::align_val_t alignment) noexcept {
    return static_cast<std::size_t>(alignment);
}
}  // namespace

void* operator new(std::size_t size) {
    return AllocateOrThrow(size, kUsual);
}
void* operator new[](std::size_t size) {
    return AllocateOrThrow(size, kUsual);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size, kUsual);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size, kUsual);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return AllocateOrThrow(size, Bytes(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return AllocateOrThrow(size, Bytes(alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Allocate(size, Bytes(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Allocate(size, Bytes(alignment));
}

void operator delete(void* allocation) noexcept {
    Release(allocation);
}
void operator delete[](void* allocation) noexcept {
    Release(allocation);
}
void operator delete(void* allocation, std::size_t) noexcept {
    Release(allocation);
}
void operator delete[](void* allocation, std::size_t) noexcept {
    Release(allocation);
}
void operator delete(void* allocation, const std::nothrow_t&) noexcept {
    Release(allocation);
}
void operator delete[](void* allocation, const std::nothrow_t&) noexcept {
    Release(allocation);
}
void operator delete(void* allocation, std::align_val_t) noexcept {
    Release(allocation);
}
void operator delete[](void* allocation, std::align_val_t) noexcept {
    Release(allocation);
}
void operator delete(void* allocation, std::size_t, std::align_val_t) noexcept {
    Release(allocation);
}
void operator delete[](void* allocation, std::size_t, std::align_val_t) noexcept {
    Release(allocation);
}
void operator delete(void* allocation, std::align_val_t, const std::nothrow_t&) noexcept {
    Release(allocation);
}
void operator delete[](void* allocation, std::align_val_t, const std::nothrow_t&) noexcept {
    Release(allocation);
}
