#include "support/counted_heap.h"

#include <algorithm>
#include <cerrno>
#include <malloc.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

// Signed: blocks from before the start may be freed after it.
std::ptrdiff_t live = 0;
std::ptrdiff_t peak = 0;
std::size_t allocations = 0;

std::ptrdiff_t SizeOf(void* block) {
    return block == nullptr ? 0 : static_cast<std::ptrdiff_t>(malloc_usable_size(block));
}

void* Counted(void* block) {
    live += SizeOf(block);
    peak = std::max(peak, live);
    ++allocations;
    return block;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
    return Counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
    return Counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) {
    const std::ptrdiff_t before = SizeOf(block);
    void* const moved = __libc_realloc(block, size);
    if (moved != nullptr || size == 0) live -= before;
    return Counted(moved);
}

void* memalign(std::size_t alignment, std::size_t size) {
    return Counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return Counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = Counted(__libc_memalign(alignment, size));
    return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) {
    live -= SizeOf(block);
    __libc_free(block);
}

}  // extern "C"

namespace Bench {

HeapUse HeapUseOf(const std::function<void()>& work) {
    live = peak = 0;
    allocations = 0;
    work();
    return {static_cast<std::size_t>(peak), allocations};
}

}  // namespace Bench
