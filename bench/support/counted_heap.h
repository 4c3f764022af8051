#pragma once

#include <cstddef>
#include <functional>

namespace Bench {

struct HeapUse {
    std::size_t peak = 0;         ///< Bytes that were allocated at once, beyond those at the start.
    std::size_t allocations = 0;  ///< Blocks that were allocated or moved.
};

/// What `work` takes from the heap. The program that links this has its allocation functions
/// replaced, for everything that it loads, too; for glibc, and for one thread.
HeapUse HeapUseOf(const std::function<void()>& work);

}  // namespace Bench
