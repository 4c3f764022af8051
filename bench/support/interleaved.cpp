#include "support/interleaved.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <numeric>
#include <random>

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

}  // namespace

double Figures::Median(const std::string& work) const {
    std::vector<double> figures = figures_.at(work);
    const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
    std::nth_element(figures.begin(), middle, figures.end());
    return *middle;
}

double Figures::Lowest(const std::string& work) const {
    const std::vector<double>& figures = figures_.at(work);
    return *std::min_element(figures.begin(), figures.end());
}

std::vector<double> Figures::Ratios(const std::string& over, const std::string& under) const {
    const std::vector<double>& overs = figures_.at(over);
    const std::vector<double>& unders = figures_.at(under);
    std::vector<double> ratios;
    std::transform(overs.begin(), overs.end(), unders.begin(), std::back_inserter(ratios),
                   std::divides<>());
    std::sort(ratios.begin(), ratios.end());
    return ratios;
}

Figures Interleaved(const std::vector<Work>& works, int rounds, double turn) {
    std::vector<long> counts;
    for (const Work& work : works) {
        PerRun(work, 1);  // whatever is made at the first use
        counts.push_back(std::max(1L, std::lround(std::ceil(turn / PerRun(work, 1)))));
    }
    std::vector<std::size_t> order(works.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::mt19937 dice;  // the same orders every time
    Figures seconds;
    for (int round = 0; round != rounds; ++round) {
        std::shuffle(order.begin(), order.end(), dice);
        for (const std::size_t i : order)
            seconds.Of(works[i].name).push_back(PerRun(works[i], counts[i]));
    }
    return seconds;
}

}  // namespace Bench
