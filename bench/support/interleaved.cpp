#include "support/interleaved.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace Bench {
namespace {

double CpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double PerRun(const Work& work, long count) {
    const double start = CpuSeconds();
    for (long i = 0; i != count; ++i)
        work.run();
    return (CpuSeconds() - start) / static_cast<double>(count);
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

std::vector<double> Interleaved(const std::vector<Work>& works, int rounds, double turn) {
    std::vector<long> counts;
    for (const Work& work : works) {
        PerRun(work, 1);  // whatever is made at the first use
        counts.push_back(std::max(1L, std::lround(std::ceil(turn / PerRun(work, 1)))));
    }
    std::vector<std::vector<double>> seconds(works.size());
    for (int round = 0; round != rounds; ++round)
        for (std::size_t i = 0; i != works.size(); ++i)
            seconds[i].push_back(PerRun(works[i], counts[i]));
    std::vector<double> medians;
    for (const std::vector<double>& each : seconds)
        medians.push_back(Median(each));
    return medians;
}

}  // namespace Bench
