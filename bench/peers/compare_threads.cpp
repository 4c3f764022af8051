// compare_threads [ROUNDS]
//
// Two threads that share a resolver against one thread, each verifying as many tokens: how many
// times as many tokens a second two threads get through. Prints Markdown. Wall-clock time: it means
// something only where two processors are free, so what else ran is told, and how much CPU time a
// token takes of two threads compared with one, which waiting for processors leaves alone. The same
// is told of two threads that digest, which share nothing, and of two that do the floor's work,
// which share what OpenSSL does. Exit status: 0 measured, 1 not, 2 unusable arguments.
#include "support/floor.h"
#include "support/goals.h"
#include "support/interleaved.h"
#include "support/machine.h"
#include "support/our_works.h"
#include "support/sizes.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <thread>

namespace {

using namespace Bench;
using Resolver = Saml::Xml::Security::KeyInfoResolver;

constexpr double kGoal = 1.9;
constexpr double kTurn = 0.3;  // seconds

struct Spent {
    double wall;
    double cpu;
};

double CpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// `threads` threads, each of which does `work` so many times.
Spent Repeat(const std::function<void()>& work, int threads, long count) {
    const auto start = std::chrono::steady_clock::now();
    const double cpu = CpuSeconds();
    std::vector<std::thread> running;
    for (int i = 0; i != threads; ++i)
        running.emplace_back([&] {
            for (long done = 0; done != count; ++done)
                work();
        });
    for (std::thread& thread : running)
        thread.join();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(), CpuSeconds() - cpu};
}

/// What two threads did in the time of one, in ascending order.
std::vector<double> Throughput(const Figures& wall, const std::string& work) {
    std::vector<double> throughput = wall.Ratios(work + ", 1", work + ", 2");
    for (double& each : throughput)
        each *= 2;
    return throughput;
}

double Median(const std::vector<double>& ascending) {
    return ascending[ascending.size() / 2];
}

struct Row {
    std::string what;
    std::vector<double> throughput;  ///< Ascending.
    double apart;                    ///< The same of threads that share nothing.
    double floor;                    ///< The same of threads that do the floor's work.
    double cost;                     ///< CPU time of a token, two threads : one.
    double floorCost;                ///< The same of the floor.
    std::string others;
};

using FloorOf = void (*)(const Token&);

Row Measure(const std::string& what, const Token& token, Resolver* resolver, FloorOf floorOf,
            int rounds) {
    std::atomic<bool> isRefused{false};
    const auto verify = [&] {
        if (!Ours::Accepts(token.xml, resolver)) isRefused = true;
    };
    const std::map<std::string, std::function<void()>> works{
        {"verify", verify},
        {"digest", [&] { Floor::Digest(token.canonicalAssertion); }},
        {"floor", [&] { floorOf(token); }}};

    Figures wall;
    Figures cpu;
    const OtherWork others;
    for (const auto& [name, work] : works) {
        const long count = std::max(1L, static_cast<long>(10 * kTurn / Repeat(work, 1, 10).wall));
        for (int round = 0; round != rounds; ++round)
            for (const int threads : {1, 2}) {
                const Spent spent = Repeat(work, threads, count);
                wall.Of(name + ", " + std::to_string(threads)).push_back(spent.wall);
                cpu.Of(name + ", " + std::to_string(threads)).push_back(spent.cpu);
            }
    }
    if (isRefused) throw std::runtime_error("a token was refused while it was measured");
    return {what,
            Throughput(wall, "verify"),
            Median(Throughput(wall, "digest")),
            Median(Throughput(wall, "floor")),
            Median(cpu.Ratios("verify, 2", "verify, 1")) / 2,
            Median(cpu.Ratios("floor, 2", "floor, 1")) / 2,
            others.Account()};
}

void Run(int rounds) {
    std::vector<Row> rows;
    for (const std::size_t groups : {kSmall, kMiddle}) {
        const Token token = MakeToken(groups);
        const std::string what = SizeOf(token) + ", two threads, ";
        rows.push_back(
            Measure(what + "trust set", token, Ours::TrustSet(), Floor::KnownKey, rounds));
        rows.push_back(
            Measure(what + "trust chain", token, Ours::TrustChain(), Floor::Chain, rounds));
    }
    std::cout << std::fixed << std::setprecision(3) << kGoalsHead;
    for (const Row& row : rows)
        std::cout << "| " << row.what << " | one thread | " << Median(row.throughput) << " | "
                  << row.throughput[row.throughput.size() / 4] << " to "
                  << row.throughput[row.throughput.size() * 3 / 4] << " | " << row.throughput.back()
                  << " | >= " << kGoal << " | "
                  << (Median(row.throughput) >= kGoal ? "met" : "**not met**") << " |\n";
    std::cout << "\n| what | throughput | of two that share nothing | of two with the floor's work"
                 " | CPU time of a token, two threads : one | the floor's | meanwhile |\n"
                 "|---|---|---|---|---|---|---|\n";
    for (const Row& row : rows)
        std::cout << "| " << row.what << " | " << Median(row.throughput) << " | " << row.apart
                  << " | " << row.floor << " | " << row.cost << " | " << row.floorCost << " | "
                  << row.others << " |\n";
}

}  // namespace

int main(int count, char** values) {
    const int rounds = count > 1 ? std::atoi(values[1]) : 11;
    if (count > 2 || rounds < 1) {
        std::cerr << "usage: compare_threads [ROUNDS]\n";
        return 2;
    }
    try {
        Run(rounds);
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
