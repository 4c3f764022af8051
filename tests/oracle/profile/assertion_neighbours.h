#pragma once

#include "oracle/profile/markup_tree.h"

#include <functional>
#include <string>
#include <vector>

/// Documents that differ from a given one by a single fault, or by something that is none.
namespace Oracle {

struct Neighbour {
    std::string fault;  ///< What was done, the same words wherever it is done.
    std::string place;  ///< The path of the element that it was done to, maybe with a detail.
    Markup document;
};
using Visit = std::function<void(const Neighbour&)>;

/// Faults of one sort, done to every element of `base` in turn.
struct FaultFamily {
    const char* name;
    void (*each)(const Markup& base, const Visit& visit);
};
const std::vector<FaultFamily>& FaultFamilies();

}  // namespace Oracle
