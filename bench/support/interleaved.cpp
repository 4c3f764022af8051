#include "support/interleaved.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <random>

namespace Bench {
namespace {

double CpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double Seconds(const Work& work, long count) {
    const double start = CpuSeconds();
    for (long i = 0; i != count; ++i)
        work.run();
    return CpuSeconds() - start;
}

/// A work and how it spends its time in a round.
struct Share {
    const Work* work;
    long slices;
    long runsInSlice;
    double seconds = 0;

    double PerRun() const { return seconds / static_cast<double>(slices * runsInSlice); }
};

constexpr long kSlices = 4;

Share ShareOf(const Work& work, double turn) {
    Seconds(work, 1);  // whatever is made at the first use
    const long runs = std::max(1L, std::lround(std::ceil(turn / Seconds(work, 1))));
    const long slices = std::min(runs, kSlices);
    return {&work, slices, (runs + slices - 1) / slices};
}

void TakeTurns(std::vector<Share>& shares, std::mt19937& dice) {
    for (Share& share : shares)
        share.seconds = 0;
    for (long slice = 0; slice != kSlices; ++slice) {
        std::shuffle(shares.begin(), shares.end(), dice);
        for (Share& share : shares)
            if (slice < share.slices) share.seconds += Seconds(*share.work, share.runsInSlice);
    }
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
    std::map<std::string, std::vector<Share>> tasks;
    for (const Work& work : works)
        tasks[work.task].push_back(ShareOf(work, turn));
    std::vector<std::vector<Share>*> order;
    for (auto& [task, shares] : tasks)
        order.push_back(&shares);
    std::mt19937 dice;  // the same orders every time
    Figures seconds;
    for (int round = 0; round != rounds; ++round) {
        std::shuffle(order.begin(), order.end(), dice);
        for (std::vector<Share>* const shares : order) {
            TakeTurns(*shares, dice);
            for (const Share& share : *shares)
                seconds.Of(share.work->name).push_back(share.PerRun());
        }
    }
    return seconds;
}

}  // namespace Bench
