#include "support/machine.h"

#include <fstream>
#include <iomanip>
#include <sstream>
#include <sys/resource.h>
#include <thread>
#include <time.h>
#include <unistd.h>

namespace Bench {
namespace {

double WallSeconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double OwnSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Of all processors, what was neither idle nor waiting (proc(5): user, nice, system, idle, iowait,
/// irq, softirq, steal).
double BusySeconds() {
    std::ifstream file("/proc/stat");
    std::string name;
    double ticks[8] = {};
    file >> name;
    for (double& each : ticks)
        file >> each;
    const double busy = ticks[0] + ticks[1] + ticks[2] + ticks[5] + ticks[6] + ticks[7];
    return busy / static_cast<double>(sysconf(_SC_CLK_TCK));
}

}  // namespace

OtherWork::OtherWork() : wall_(WallSeconds()), all_(BusySeconds()), own_(OwnSeconds()) {}

std::string OtherWork::Account() const {
    const double others = (BusySeconds() - all_) - (OwnSeconds() - own_);
    std::ostringstream account;
    account << std::fixed << std::setprecision(1) << "others kept "
            << others / (WallSeconds() - wall_) << " of " << std::thread::hardware_concurrency()
            << " processors busy";
    return account.str();
}

}  // namespace Bench
