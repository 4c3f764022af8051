#include "saml/xml/namespace_lookup.h"

#include "saml/xml/qualified_name.h"

#include <optional>

namespace Saml::Xml {
namespace {

constexpr std::string_view kDefaultDeclaration = "xmlns";
constexpr std::string_view kPrefixDeclaration = "xmlns:";
constexpr std::string_view kColonInFront = ":xmlns";

bool StartsWith(std::string_view text, std::string_view start) noexcept {
    return text.substr(0, start.size()) == start;
}

/// True when `element` declares a default namespace. Then gives its URI, nothing when it declares
/// one in several spellings: which of them canonicalization takes depends on where its apex is.
bool DeclaresDefault(const ElementNodeImpl& element, FoundText& uri) {
    int spellings = 0;
    for (const std::string_view name : {kDefaultDeclaration, kPrefixDeclaration, kColonInFront})
        if (const FoundText declared = element.FindAttribute(name)) {
            uri = declared;
            ++spellings;
        }
    if (spellings > 1) uri = std::nullopt;
    return spellings != 0;
}

/// By prefix, what canonicalization finds declared by `element`, when not null, and above it.
DeclarationMap CanonicalNamespaces(const ElementNodeImpl* element) {
    DeclarationMap namespaces;
    for (; element != nullptr; element = ParentElement(*element)) {
        FoundText defaultUri;
        if (DeclaresDefault(*element, defaultUri))
            namespaces.emplace(std::string_view(), defaultUri);
        for (const auto& [name, uri] : element->Attributes())
            if (IsNamespaceDeclaration(name) && !DeclaredPrefix(name).empty())
                namespaces.emplace(DeclaredPrefix(name), uri);
    }
    return namespaces;
}

}  // namespace

bool IsNamespaceDeclaration(std::string_view attributeName) noexcept {
    return attributeName == kDefaultDeclaration || StartsWith(attributeName, kPrefixDeclaration);
}

bool IsCanonicalDeclaration(std::string_view attributeName) noexcept {
    return IsNamespaceDeclaration(attributeName) || attributeName == kColonInFront;
}

std::string_view DeclaredPrefix(std::string_view declaration) noexcept {
    const QualifiedName name = SplitQualifiedName(declaration);
    return name.prefix.empty() ? std::string_view() : name.localName;
}

std::string DeclarationName(std::string_view prefix) {
    std::string name(prefix.empty() ? kDefaultDeclaration : kPrefixDeclaration);
    name.append(prefix);
    return name;
}

FoundText FindNamespaceURI(const ElementNodeImpl& element, std::string_view prefix) {
    const std::string declaration = DeclarationName(prefix);
    for (const ElementNodeImpl* scope = &element; scope != nullptr; scope = ParentElement(*scope)) {
        const FoundText uri = scope->FindAttribute(declaration);
        if (uri) return uri;
    }
    return std::nullopt;
}

FoundText FindAttributeByName(const ElementNodeImpl& element, std::string_view uri,
                              std::string_view localName) {
    return NamespaceContext(element).FindAttribute(element, uri, localName);
}

DeclarationMap DeclarationsInForce(const ElementNodeImpl* element) {
    DeclarationMap declarations;
    for (; element != nullptr; element = ParentElement(*element))
        for (const auto& [name, uri] : element->Attributes())
            if (IsNamespaceDeclaration(name)) declarations.emplace(name, uri);
    return declarations;
}

FoundText NamespaceContext::Find(const ElementNodeImpl& element, std::string_view prefix) const {
    if (!element.Attributes().IsEmpty() || &element == &apex_) return Search(element, prefix);
    if (last_.parent != element.Parent() || last_.prefix != prefix) {
        const FoundText uri = Search(element, prefix);
        last_.parent = nullptr;  // nothing is known until all of it is
        last_.prefix = prefix;
        last_.uri = uri;
        last_.parent = element.Parent();
    }
    return last_.uri;
}

FoundText NamespaceContext::Search(const ElementNodeImpl& element, std::string_view prefix) const {
    const std::string declaration = DeclarationName(prefix);
    const ElementNodeImpl* const above = ParentElement(apex_);
    for (const ElementNodeImpl* scope = &element; scope != nullptr && scope != above;
         scope = ParentElement(*scope)) {
        if (prefix.empty()) {
            FoundText uri;
            if (DeclaresDefault(*scope, uri)) return uri;
        } else if (const FoundText uri = scope->FindAttribute(declaration)) {
            return uri;
        }
    }
    if (!inheritedKnown_) {
        inherited_ = CanonicalNamespaces(above);
        inheritedKnown_ = true;
    }
    const auto found = inherited_.find(prefix);
    return found != inherited_.end() ? found->second : std::nullopt;
}

FoundText NamespaceContext::FindAttribute(const ElementNodeImpl& element, std::string_view uri,
                                          std::string_view localName) const {
    for (const auto& [written, value] : element.Attributes()) {
        const QualifiedName name = SplitQualifiedName(written);
        if (name.localName != localName) continue;
        // Without a prefix an attribute is in no namespace, whatever the default declaration says.
        const FoundText bound = name.prefix.empty() ? std::nullopt : Find(element, name.prefix);
        if (bound.value_or("") == uri) return value;
    }
    return std::nullopt;
}

}  // namespace Saml::Xml
