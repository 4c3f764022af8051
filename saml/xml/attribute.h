#pragma once

#include <optional>
#include <string_view>

namespace Saml::Xml {

/// A text of a tree, until the tree changes; nothing when there is none.
using FoundText = std::optional<std::string_view>;

/// One attribute of an element, by its written name.
struct Attribute {
    std::string_view name;
    std::string_view value;
};

}  // namespace Saml::Xml
