#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Documents {

/// A message whose variable parts are left open: the texts between the gaps. One text is a message
/// without gaps; an empty one at either end says that a gap stands there.
using Pattern = std::vector<std::string>;

/// Tells whether a text may stand in a gap.
using Gap = std::function<bool(std::string_view)>;

/// True when `text` is `pattern` with something in each gap that `fills` takes.
bool Reads(std::string_view text, const Pattern& pattern, const Gap& fills);

/// As a page writes what is variable: "<element>". A name with a capital in front is not meant for
/// one: "<X509Data>" is an element that a message names.
bool IsPlaceholder(std::string_view text);

/// The message of a page, taken apart at its placeholders.
Pattern PatternOf(std::string_view message);

/// For people: the gaps as "<>".
std::string Written(const Pattern& pattern);

}  // namespace Documents
