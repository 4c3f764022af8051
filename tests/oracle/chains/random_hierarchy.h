#pragma once

#include "oracle/chains/described_certificate.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

/// Certificate hierarchies drawn at random, most of them with something wrong or in the way.
namespace Chains {

/// What is trusted, and what a signer sends. Certificates are told by their place in the list.
struct Hierarchy {
    std::vector<Description> certificates;  ///< First the signer's path, root first; then others.
    std::size_t signer = 0;                 ///< The end of the path.
    std::vector<std::size_t> trusted;       ///< At least one.
    std::vector<std::size_t> sent;          ///< The signer first.
    std::set<std::string> features;         ///< What was drawn, some of `AllFeatures`.
};

/// The same for the same numbers, whatever the platform. The certificates are not made yet.
Hierarchy RandomHierarchy(std::uint64_t seed, std::uint64_t index);

std::set<std::string> AllFeatures();

/// Every certificate and list, for the message of a failing comparison.
std::string Summary(const Hierarchy& hierarchy);

}  // namespace Chains
