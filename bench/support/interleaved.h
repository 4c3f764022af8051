#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Bench {

struct Work {
    std::string name;
    std::string task;  ///< Works with the same one are compared.
    std::function<void()> run;
};

/// What was measured, in the same unit for all: one figure for each round.
class Figures {
  public:
    std::vector<double>& Of(const std::string& work) { return figures_[work]; }
    bool Has(const std::string& work) const { return figures_.count(work) != 0; }

    double Median(const std::string& work) const;
    double Lowest(const std::string& work) const;
    /// The ratio `over` : `under` in each round, in ascending order: the middle one is the answer,
    /// the others tell how sure it is.
    std::vector<double> Ratios(const std::string& over, const std::string& under) const;

  private:
    std::map<std::string, std::vector<double>> figures_;
};

/// Seconds of CPU time that one run of each takes, in `rounds` rounds. In each round every task has
/// its turn, in an order drawn anew; in it, the works of the task take turns in slices, so that
/// what disturbs the machine, which lasts longer than a slice, disturbs all that are compared
/// alike.
/// \param turn  Seconds of CPU time that a work gets in a round at least; a work that is quicker is
///              repeated.
Figures Interleaved(const std::vector<Work>& works, int rounds, double turn);

}  // namespace Bench
