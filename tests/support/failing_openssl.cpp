#include "support/failing_openssl.h"

#include <openssl/crypto.h>

#include <cstdlib>
#include <limits>

namespace Saml::FailingOpenSsl {
namespace {
constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

struct Plan {
    std::size_t allocations = 0;
    std::size_t first = kNever;
    std::size_t last = kNever;
    bool wasFelt = false;
};
thread_local Plan plan;

bool Fails() noexcept {
    const std::size_t number = plan.allocations++;
    if (number < plan.first || number > plan.last) return false;
    plan.wasFelt = true;
    return true;
}

void* Allocate(std::size_t size, const char*, int) {
    return Fails() ? nullptr : std::malloc(size);
}
void* Reallocate(void* old, std::size_t size, const char*, int) {
    return Fails() ? nullptr : std::realloc(old, size);
}
void Release(void* allocation, const char*, int) {
    std::free(allocation);
}

/// OpenSSL takes these functions only before its first allocation.
[[maybe_unused]] const int kInstalled = CRYPTO_set_mem_functions(Allocate, Reallocate, Release);
}  // namespace

Shortage::Shortage(std::size_t number, Extent extent) noexcept {
    plan = {0, number, extent == Extent::Once ? number : kNever, false};
    if (kInstalled != 1) std::abort();
}

Shortage::~Shortage() {
    plan = {};
}

bool Shortage::WasFelt() const noexcept {
    return plan.wasFelt;
}

}  // namespace Saml::FailingOpenSsl
