#include "faults/shortages.h"

#include <expat.h>

#include <atomic>
#include <cstdlib>

/// The program is linked with `--wrap=XML_ParserCreate_MM`: the tokenizers of the library's objects
/// come from here, with memory functions that can fail.
namespace Saml::Faults {
namespace {
thread_local AllocationPlan plan;
std::atomic<std::int64_t> live{0};

void* Allocate(std::size_t size) {
    if (plan.Fails()) return nullptr;
    void* const allocation = std::malloc(size);
    if (allocation != nullptr) ++live;
    return allocation;
}
void* Reallocate(void* old, std::size_t size) {
    if (plan.Fails()) return nullptr;
    void* const allocation = std::realloc(old, size);
    if (old == nullptr && allocation != nullptr) ++live;
    return allocation;
}
void Release(void* allocation) {
    if (allocation != nullptr) --live;
    std::free(allocation);
}

constexpr XML_Memory_Handling_Suite kMemory = {Allocate, Reallocate, Release};
}  // namespace

AllocationPlan& PlanOfExpat() noexcept {
    return plan;
}

std::int64_t LiveOfExpat() noexcept {
    return live;
}

extern "C" {
// The linker's names. NOLINTBEGIN(bugprone-reserved-identifier)
XML_Parser __real_XML_ParserCreate_MM(const XML_Char* encoding,
                                      const XML_Memory_Handling_Suite* memory,
                                      const XML_Char* separator);

XML_Parser __wrap_XML_ParserCreate_MM(const XML_Char* encoding, const XML_Memory_Handling_Suite*,
                                      const XML_Char* separator) {
    return __real_XML_ParserCreate_MM(encoding, &kMemory, separator);
}
// NOLINTEND(bugprone-reserved-identifier)
}

}  // namespace Saml::Faults
