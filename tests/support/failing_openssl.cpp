#include "support/failing_openssl.h"

#include <openssl/crypto.h>

#include <atomic>
#include <cstdlib>

namespace Saml::FailingOpenSsl {
namespace {
thread_local AllocationPlan plan;
std::atomic<std::int64_t> live{0};

void* Allocate(std::size_t size, const char*, int) {
    if (plan.Fails()) return nullptr;
    void* const allocation = std::malloc(size);
    if (allocation != nullptr) ++live;
    return allocation;
}
void* Reallocate(void* old, std::size_t size, const char*, int) {
    if (plan.Fails()) return nullptr;
    void* const allocation = std::realloc(old, size);
    if (old == nullptr && allocation != nullptr) ++live;
    return allocation;
}
void Release(void* allocation, const char*, int) {
    if (allocation != nullptr) --live;
    std::free(allocation);
}

/// OpenSSL takes these functions only before its first allocation.
[[maybe_unused]] const int kInstalled = CRYPTO_set_mem_functions(Allocate, Reallocate, Release);
}  // namespace

AllocationPlan& PlanOfOpenSsl() noexcept {
    if (kInstalled != 1) std::abort();
    return plan;
}

Shortage::Shortage(std::size_t number, Extent extent) noexcept {
    PlanOfOpenSsl() = AllocationPlan(number, extent);
}

Shortage::~Shortage() {
    plan = {};
}

bool Shortage::WasFelt() const noexcept {
    return plan.wasFelt;
}

std::int64_t LiveAllocations() noexcept {
    return live;
}

}  // namespace Saml::FailingOpenSsl
