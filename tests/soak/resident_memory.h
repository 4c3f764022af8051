#pragma once

#include <cstddef>

/// How much memory of this process is resident, in KiB, without the parts of programs and libraries
/// that were read so far; 0 where the platform does not tell.
std::size_t ResidentKibibytes();
