#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts of hostile size and shape. They are spelled as the serializer spells them, so that parsing
/// and writing one gives the same text again.
namespace BigDocuments {

inline std::string Repeated(std::string_view piece, std::size_t times) {
    std::string text;
    text.reserve(piece.size() * times);
    for (std::size_t i = 0; i != times; ++i)
        text += piece;
    return text;
}

/// `number` with enough zeros in front that the order of the texts is the order of the numbers.
inline std::string Padded(std::size_t number) {
    const std::string digits = std::to_string(number);
    return std::string(8 - digits.size(), '0') + digits;
}

/// One `<a>` in the other, `levels` of them; the innermost one is empty.
inline std::string NestedElements(std::size_t levels) {
    return Repeated("<a>", levels - 1) + "<a/>" + Repeated("</a>", levels - 1);
}

/// `levels` start tags and then `content`: what a sender never closes.
inline std::string OpenElements(std::size_t levels, std::string_view content = {}) {
    return Repeated("<a>", levels) + std::string(content);
}

/// `<r>` with `count` times `child`.
inline std::string Siblings(std::size_t count, std::string_view child = "<a/>") {
    return "<r>" + Repeated(child, count) + "</r>";
}

/// The attribute list a00000000="v0" a00000001="v1" and so on.
inline std::string AttributeList(std::size_t count) {
    std::string list;
    for (std::size_t i = 0; i != count; ++i)
        list += " a" + Padded(i) + "=\"v" + std::to_string(i) + "\"";
    return list;
}

/// The declarations xmlns:p00000000="u0" xmlns:p00000001="u1" and so on.
inline std::string DeclarationList(std::size_t count) {
    std::string list;
    for (std::size_t i = 0; i != count; ++i)
        list += " xmlns:p" + Padded(i) + "=\"u" + std::to_string(i) + "\"";
    return list;
}

/// One empty element for each of `count` prefixes.
inline std::string PrefixedElements(std::size_t count) {
    std::string elements;
    for (std::size_t i = 0; i != count; ++i)
        elements += "<p" + Padded(i) + ":e/>";
    return elements;
}

/// `r` declares `count` namespaces and has a child in each.
inline std::string NamespacesOnOneElement(std::size_t count) {
    return "<r" + DeclarationList(count) + ">" + PrefixedElements(count) + "</r>";
}

/// `levels` elements, one in the other, each declaring one namespace more; `content` innermost.
inline std::string NamespacesDownTheTree(std::size_t levels, std::string_view content) {
    std::string text;
    for (std::size_t i = 0; i != levels; ++i)
        text += "<a xmlns:p" + Padded(i) + "=\"u" + std::to_string(i) + "\">";
    return text + std::string(content) + Repeated("</a>", levels);
}

}  // namespace BigDocuments
