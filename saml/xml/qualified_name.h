#pragma once

#include <string_view>

namespace Saml::Xml {

/// A name as written, seen as prefix and local part; refers to the text it was made from.
struct QualifiedName {
    std::string_view prefix;  ///< Empty when the name has none.
    std::string_view localName;
};

/// Splits at the first colon (Namespaces in XML 1.0, section 4); later colons stay in the local
/// part, since the parser lets such names pass.
constexpr QualifiedName SplitQualifiedName(std::string_view written) noexcept {
    const std::size_t colon = written.find(':');
    if (colon == std::string_view::npos) return {{}, written};
    return {written.substr(0, colon), written.substr(colon + 1)};
}

}  // namespace Saml::Xml
