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

/// The default namespace that `element` declares, nothing when it does not. Null when it declares
/// one in several spellings: which of them canonicalization takes depends on where its apex is.
std::optional<const std::string*> FindDefault(const ElementNodeImpl& element) {
    std::optional<const std::string*> found;
    for (const std::string_view name : {kDefaultDeclaration, kPrefixDeclaration, kColonInFront}) {
        const std::string* const uri = element.FindAttribute(name);
        if (uri == nullptr) continue;
        if (found) return nullptr;
        found = uri;
    }
    return found;
}

/// By prefix, what canonicalization finds declared by `element`, when not null, and above it.
DeclarationMap CanonicalNamespaces(const ElementNodeImpl* element) {
    DeclarationMap namespaces;
    for (; element != nullptr; element = ParentElement(*element)) {
        if (const auto uri = FindDefault(*element)) namespaces.emplace(std::string_view(), *uri);
        for (const auto& [name, uri] : element->Attributes())
            if (IsNamespaceDeclaration(name) && !DeclaredPrefix(name).empty())
                namespaces.emplace(DeclaredPrefix(name), &uri);
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

const std::string* FindNamespaceURI(const ElementNodeImpl& element, std::string_view prefix) {
    const std::string declaration = DeclarationName(prefix);
    for (const ElementNodeImpl* scope = &element; scope != nullptr; scope = ParentElement(*scope)) {
        const std::string* const uri = scope->FindAttribute(declaration);
        if (uri != nullptr) return uri;
    }
    return nullptr;
}

const std::string* FindAttributeByName(const ElementNodeImpl& element, std::string_view uri,
                                       std::string_view localName) {
    return NamespaceContext(element).FindAttribute(element, uri, localName);
}

DeclarationMap DeclarationsInForce(const ElementNodeImpl* element) {
    DeclarationMap declarations;
    for (; element != nullptr; element = ParentElement(*element))
        for (const auto& [name, uri] : element->Attributes())
            if (IsNamespaceDeclaration(name)) declarations.emplace(name, &uri);
    return declarations;
}

const std::string* NamespaceContext::Find(const ElementNodeImpl& element,
                                          std::string_view prefix) const {
    if (!element.Attributes().empty() || &element == &apex_) return Search(element, prefix);
    if (last_.parent != element.Parent() || last_.prefix != prefix) {
        const std::string* const uri = Search(element, prefix);
        last_.parent = nullptr;  // nothing is known until all of it is
        last_.prefix = prefix;
        last_.uri = uri;
        last_.parent = element.Parent();
    }
    return last_.uri;
}

const std::string* NamespaceContext::Search(const ElementNodeImpl& element,
                                            std::string_view prefix) const {
    const std::string declaration = DeclarationName(prefix);
    const ElementNodeImpl* const above = ParentElement(apex_);
    for (const ElementNodeImpl* scope = &element; scope != nullptr && scope != above;
         scope = ParentElement(*scope)) {
        if (prefix.empty()) {
            if (const auto uri = FindDefault(*scope)) return *uri;
        } else if (const std::string* const uri = scope->FindAttribute(declaration)) {
            return uri;
        }
    }
    if (!inheritedKnown_) {
        inherited_ = CanonicalNamespaces(above);
        inheritedKnown_ = true;
    }
    const auto found = inherited_.find(prefix);
    return found != inherited_.end() ? found->second : nullptr;
}

const std::string* NamespaceContext::FindAttribute(const ElementNodeImpl& element,
                                                   std::string_view uri,
                                                   std::string_view localName) const {
    for (const auto& [written, value] : element.Attributes()) {
        const QualifiedName name = SplitQualifiedName(written);
        if (name.localName != localName) continue;
        // Without a prefix an attribute is in no namespace, whatever the default declaration says.
        const std::string* const bound = name.prefix.empty() ? nullptr : Find(element, name.prefix);
        if ((bound != nullptr ? std::string_view(*bound) : std::string_view()) == uri)
            return &value;
    }
    return nullptr;
}

}  // namespace Saml::Xml
