#include "soak/resident_memory.h"

#include <fstream>
#include <unistd.h>

std::size_t ResidentKibibytes() {
    std::ifstream statm("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    std::size_t ofFiles = 0;
    if (!(statm >> total >> resident >> ofFiles)) return 0;
    return (resident - ofFiles) * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}
