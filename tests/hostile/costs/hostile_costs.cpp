// What hostile shapes cost, against plain tokens of the same size. Never a pass or a failure.
#include "hostile/attacks/provider.h"
#include "hostile/costs/shapes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <string>
#include <vector>

namespace Saml::Attacks {
namespace {

constexpr char kHelp[] =
    "usage: hostile_costs [KiB]\n"
    "\n"
    "Creates tokens of hostile shapes, of so many KiB (64 unless told otherwise), of twice and of\n"
    "four times as many, in turn with plain tokens of the same sizes, and prints medians: the\n"
    "microseconds per KiB of each size, the ratio to the plain token of the largest one, and by\n"
    "what factor the cost per KiB grew from the smallest size to the largest. That factor is "
    "about\n"
    "1 for what is linear and 4 for what is quadratic. The growth of the plain token stands in "
    "the\n"
    "first line, for comparison.\n";

constexpr int kTurns = 11;
constexpr std::size_t kSizes[] = {1, 2, 4};  ///< Times the size that was asked for.

/// Of the processor, so that what else the machine does counts less.
double MicrosecondsOf(const std::string& token) {
    const std::clock_t start = std::clock();
    try {
        CreateSamlToken(token, Provider::TrustInTheRoot().get());
    } catch (const Exception&) {  // most are refused, and what that costs is the question
    }
    return static_cast<double>(std::clock() - start) * 1e6 / CLOCKS_PER_SEC;
}

double Median(std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return numbers[numbers.size() / 2];
}

struct Cost {
    double perKibibyte[std::size(kSizes)];
    double plainPerKibibyte[std::size(kSizes)];
    std::string outcome;
};

double Kibibytes(const std::string& text) {
    return static_cast<double>(text.size()) / 1024;
}

Cost CostOf(const Shape& shape, std::size_t bytes) {
    Cost cost{};
    for (std::size_t i = 0; i != std::size(kSizes); ++i) {
        const std::string token = shape.make(bytes * kSizes[i]);
        const std::string plain = PlainToken(token.size());
        std::vector<double> hostileTimes;
        std::vector<double> plainTimes;
        for (int turn = 0; turn != kTurns; ++turn) {
            hostileTimes.push_back(MicrosecondsOf(token));
            plainTimes.push_back(MicrosecondsOf(plain));
        }
        cost.perKibibyte[i] = Median(hostileTimes) / Kibibytes(token);
        cost.plainPerKibibyte[i] = Median(plainTimes) / Kibibytes(plain);
        cost.outcome = OutcomeByText(token, Provider::TrustInTheRoot());
    }
    return cost;
}

/// The first line of an outcome, without the class of a refusal.
std::string Brief(const std::string& outcome) {
    const std::string line = outcome.substr(0, outcome.find('\n'));
    const std::size_t message = line.find(": ");
    return (message == std::string::npos ? line : line.substr(message + 2)).substr(0, 60);
}

void Print(const std::string& name, const Cost& cost) {
    const std::size_t last = std::size(kSizes) - 1;
    std::printf("%-42s %8.1f %8.1f %8.1f %8.2f %8.2f  %s\n", name.c_str(), cost.perKibibyte[0],
                cost.perKibibyte[1], cost.perKibibyte[last],
                cost.perKibibyte[last] / cost.plainPerKibibyte[last],
                cost.perKibibyte[last] / cost.perKibibyte[0], Brief(cost.outcome).c_str());
    std::fflush(stdout);
}

int Run(std::size_t kibibytes) {
    std::printf("%-42s %5zu KiB %4zu KiB %4zu KiB    ratio   growth  outcome\n", "us per KiB of",
                kibibytes, 2 * kibibytes, 4 * kibibytes);
    Print("plain", CostOf({"plain", PlainToken}, kibibytes * 1024));
    for (const Shape& shape : HostileShapes())
        Print(shape.name, CostOf(shape, kibibytes * 1024));
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace Saml::Attacks

int main(int argc, char** argv) {
    constexpr int kUnusableArguments = 2;
    const std::string argument = argc > 1 ? argv[1] : "64";
    if (argument == "--help") {
        std::fputs(Saml::Attacks::kHelp, stdout);
        return EXIT_SUCCESS;
    }
    char* end = nullptr;
    const unsigned long kibibytes = std::strtoul(argument.c_str(), &end, 10);
    if (argc > 2 || *end != '\0' || kibibytes < 8 || kibibytes > 65536) {
        std::fputs(Saml::Attacks::kHelp, stderr);
        return kUnusableArguments;
    }
    return Saml::Attacks::Run(kibibytes);
}
