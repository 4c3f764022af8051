#pragma once

#include <string>

namespace LibXml2 {

/// The one known replacement (">" is escaped in attribute values) made in a canonical form of the
/// recommendation. In such a form "<" is always the beginning of a tag, and within a start tag
/// quotation marks stand around values only.
inline std::string WithGreaterThanSignsEscaped(const std::string& form) {
    std::string escaped;
    bool inTag = false;
    bool inValue = false;
    for (const char byte : form) {
        if (inValue && byte == '>') {
            escaped += "&gt;";
            continue;
        }
        if (byte == '<') inTag = true;
        if (inTag && byte == '"') inValue = !inValue;
        if (byte == '>') inTag = false;
        escaped += byte;
    }
    return escaped;
}

}  // namespace LibXml2
