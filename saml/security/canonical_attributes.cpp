#include "saml/security/canonical_attributes.h"

#include <algorithm>

namespace Saml::Xml::Security {
namespace {

constexpr std::string_view kDeclaration = "xmlns";
// Two blanks put declarations before attributes without namespace, which have one.
constexpr std::string_view kDeclarationRank = "  ";
constexpr std::string_view kNameSeparator = " ";

/// True when the texts of `left`, read as one, come before those of `right`, byte by byte.
bool ComesBefore(const CanonicalAttribute& left, const CanonicalAttribute& right) {
    std::size_t leftIndex = 0;
    std::size_t rightIndex = 0;
    std::string_view leftRest = left.sortKey[0];
    std::string_view rightRest = right.sortKey[0];
    for (;;) {
        while (leftRest.empty() && leftIndex != 2)
            leftRest = left.sortKey[++leftIndex];
        while (rightRest.empty() && rightIndex != 2)
            rightRest = right.sortKey[++rightIndex];
        if (leftRest.empty() || rightRest.empty()) return leftRest.empty() && !rightRest.empty();

        const std::size_t common = std::min(leftRest.size(), rightRest.size());
        const int order = leftRest.substr(0, common).compare(rightRest.substr(0, common));
        if (order != 0) return order < 0;
        leftRest.remove_prefix(common);
        rightRest.remove_prefix(common);
    }
}

}  // namespace

void CanonicalAttributes::AddAttribute(std::string_view prefix, std::string_view localName,
                                       std::string_view value, const NamespaceScope& scope) {
    const FoundText uri = prefix.empty() ? std::nullopt : scope.Find(prefix);
    entries_.push_back({prefix, localName, value, {uri.value_or(""), kNameSeparator, localName}});
}

void CanonicalAttributes::AddDeclaration(std::string_view prefix, std::string_view uri) {
    if (prefix.empty())
        entries_.push_back({{}, kDeclaration, uri, {kDeclarationRank, {}, {}}});
    else
        entries_.push_back({kDeclaration, prefix, uri, {kDeclarationRank, prefix, {}}});
}

void CanonicalAttributes::Sort() {
    if (!std::is_sorted(entries_.begin(), entries_.end(), ComesBefore))
        std::stable_sort(entries_.begin(), entries_.end(), ComesBefore);
}

}  // namespace Saml::Xml::Security
