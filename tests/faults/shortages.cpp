#include "faults/shortages.h"

#include "support/failing_openssl.h"

#include <openssl/crypto.h>

namespace Saml::Faults {

const char* NameOf(Allocator allocator) {
    switch (allocator) {
        case Allocator::Ours:
            return "operator new";
        case Allocator::Expat:
            return "expat";
        case Allocator::OpenSsl:
            break;
    }
    return "OpenSSL";
}

namespace {
AllocationPlan& PlanOf(Allocator allocator) noexcept {
    switch (allocator) {
        case Allocator::Ours:
            return PlanOfNew();
        case Allocator::Expat:
            return PlanOfExpat();
        case Allocator::OpenSsl:
            break;
    }
    return FailingOpenSsl::PlanOfOpenSsl();
}
}  // namespace

void Shortage::Begin() noexcept {
    begun_ = true;
    PlanOf(allocator_) = plan_;
}

void Shortage::End() noexcept {
    if (!begun_) return;
    begun_ = false;
    plan_ = PlanOf(allocator_);
    PlanOf(allocator_) = {};
}

LiveCounts LiveAllocations() noexcept {
    OPENSSL_thread_stop();
    return {LiveNews(), LiveOfExpat(), FailingOpenSsl::LiveAllocations()};
}

}  // namespace Saml::Faults
