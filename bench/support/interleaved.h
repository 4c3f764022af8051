#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Bench {

struct Work {
    std::string name;
    std::function<void()> run;
};

/// Seconds of CPU time that one run of each takes: medians over `rounds` rounds, in each of which
/// every work has its turn, so that what disturbs the machine disturbs all alike.
/// \param turn  Seconds of CPU time that a turn lasts at least; a work that is quicker is repeated.
std::vector<double> Interleaved(const std::vector<Work>& works, int rounds, double turn);

}  // namespace Bench
