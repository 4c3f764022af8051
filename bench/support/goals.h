#pragma once

#include "support/interleaved.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Bench {

/// A ratio of two figures that shall not be exceeded.
struct Goal {
    std::string what;
    std::string against;
    std::string over;   ///< Whose figure,
    std::string under;  ///< by whose figure,
    double scale;       ///< times this,
    double limit;       ///< is to be at most this.
};

/// The head of a table of goals.
constexpr char kGoalsHead[] =
    "| what | against | ratio | quartiles | of the best rounds | goal | |\n"
    "|---|---|---|---|---|---|---|\n";

/// One row for each goal: the median ratio over the rounds, the quartiles, the ratio of the rounds
/// that were disturbed least, and whether it is met, which the median decides. A ratio with a
/// figure that is missing is said not to have been measured. \return How many were missed.
int PrintGoals(const std::vector<Goal>& goals, const Figures& figures, std::ostream& out);

}  // namespace Bench
