#pragma once

#include "oracle/profile/markup_tree.h"

#include <string>

namespace Oracle {

/// Exclusive canonical form with the library's documented narrowing: the words of `prefixList`
/// count at the apex only, CDATA sections contribute nothing. It also has an answer where libxml2
/// has none or another, about names that Namespaces in XML does not allow.
std::string ExclusiveForm(const Markup& apex, const Scope& outer, const Markup* excluded,
                          const std::string& prefixList);

}  // namespace Oracle
