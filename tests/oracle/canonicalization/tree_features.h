#pragma once

#include "oracle/canonicalization/random_trees.h"

#include <cstddef>
#include <map>
#include <string>

namespace RandomTrees {

/// How often each thing that canonicalization has to get right occurs, by a name for it.
using FeatureCounts = std::map<std::string, std::size_t>;

/// Every feature, not met so far.
FeatureCounts NoFeatures();

/// Adds what occurs in `tree`. It looks at the finished tree only, not at how it was made.
/// \throws std::out_of_range  A feature that `NoFeatures` does not have.
void CountFeatures(const Tree& tree, FeatureCounts& counts);

}  // namespace RandomTrees
