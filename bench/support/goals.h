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

/// One row for each goal: the median ratio over the rounds, the quartiles, and whether it is met. A
/// ratio with a figure that is missing is said not to have been measured.
/// \return How many were missed.
int PrintGoals(const std::vector<Goal>& goals, const Figures& figures, std::ostream& out);

}  // namespace Bench
