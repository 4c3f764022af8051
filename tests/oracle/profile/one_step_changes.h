#pragma once

#include <functional>
#include <string>
#include <vector>

/// Documents that differ from a given one in a single respect.
namespace OneStepChanges {

struct Variant {
    std::string name;  ///< As "Subject/NameID removed".
    std::string text;
};

/// Every element removed, repeated, exchanged with the next, renamed, brought into another
/// namespace, emptied, given a further attribute, a text and a further child on either end; every
/// attribute removed and emptied. The prefix "xsi" must be declared on the root element.
void ForEach(const std::string& text, const std::function<void(const Variant&)>& visit);

}  // namespace OneStepChanges
