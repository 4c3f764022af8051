#pragma once

#include <string>
#include <vector>

namespace Documents {

/// A refusal that a test provokes.
struct ThrownRefusal {
    std::string row;      ///< Of the page: class, colon, message with its placeholders.
    std::string outcome;  ///< Class, with its namespaces, colon, message.
};

/// Expects of each that the page leads whoever sees the outcome to this row.
/// Prints and records how many there were.
void ExpectOnThePage(const std::vector<ThrownRefusal>& refusals);

}  // namespace Documents
