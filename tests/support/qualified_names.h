#pragma once

#include <cstddef>
#include <string>

/// Names as they are written, taken apart at their first colon (Namespaces in XML 1.0, 4).
namespace QualifiedNames {

/// Empty without a colon.
inline std::string PrefixOf(const std::string& name) {
    const std::size_t colon = name.find(':');
    return colon == std::string::npos ? std::string() : name.substr(0, colon);
}

/// The whole name without a colon.
inline std::string LocalNameOf(const std::string& name) {
    const std::size_t colon = name.find(':');
    return colon == std::string::npos ? name : name.substr(colon + 1);
}

/// True for "xmlns" and "xmlns:p".
inline bool IsDeclaration(const std::string& attributeName) {
    return attributeName == "xmlns" || attributeName.rfind("xmlns:", 0) == 0;
}

}  // namespace QualifiedNames
