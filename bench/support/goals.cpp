#include "support/goals.h"

#include <iomanip>
#include <ostream>

namespace Bench {

int PrintGoals(const std::vector<Goal>& goals, const Figures& figures, std::ostream& out) {
    int missed = 0;
    out << kGoalsHead << std::fixed << std::setprecision(3);
    for (const Goal& goal : goals) {
        out << "| " << goal.what << " | " << goal.against << " | ";
        if (!figures.Has(goal.over) || !figures.Has(goal.under)) {
            out << "not measured | | | <= " << goal.limit << " | |\n";
            continue;
        }
        const std::vector<double> ratios = figures.Ratios(goal.over, goal.under);
        const double median = ratios[ratios.size() / 2] * goal.scale;
        const bool isMet = median <= goal.limit;
        missed += isMet ? 0 : 1;
        out << median << " | " << ratios[ratios.size() / 4] * goal.scale << " to "
            << ratios[ratios.size() * 3 / 4] * goal.scale << " | "
            << figures.Lowest(goal.over) / figures.Lowest(goal.under) * goal.scale
            << " | <= " << goal.limit << " | " << (isMet ? "met" : "**not met**") << " |\n";
    }
    return missed;
}

}  // namespace Bench
