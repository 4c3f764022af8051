#include "saml/xml/element_rules.h"

#include <algorithm>

namespace Saml::Xml {
namespace {

bool Contains(AttributeNames names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

ElementMatch MatchElement(const ElementNodeImpl* element, std::string_view localName,
                          std::string_view namespaceUri, const NamespaceContext& namespaces) {
    if (element == nullptr || element->LocalName() != localName) return ElementMatch::OtherName;
    return namespaces.NamespaceOf(*element) == namespaceUri ? ElementMatch::Match
                                                            : ElementMatch::OtherNamespace;
}

std::string_view FindMissingAttribute(const ElementNodeImpl& element, AttributeNames required) {
    for (const std::string_view name : required)
        if (!element.FindAttribute(name)) return name;
    return {};
}

FoundText FindUnexpectedAttribute(const ElementNodeImpl& element, AttributeNames required,
                                  AttributeNames optional) {
    for (const auto& [name, value] : element.Attributes())
        if (!Contains(required, name) && !Contains(optional, name) && !IsNamespaceDeclaration(name))
            return name;
    return std::nullopt;
}

TextNodeImpl* FindOnlyText(ElementNodeImpl& element, const Security::NodeFilter& filter) {
    Security::FilteredNodeCursor child(&element, filter);
    child.MoveToFirstChild();
    TextNodeImpl* const text = AsText(child.Current());
    if (text == nullptr) return nullptr;
    child.MoveToNextSibling();
    return child.Current() == nullptr ? text : nullptr;
}

bool HasChildren(ElementNodeImpl& element, const Security::NodeFilter& filter) {
    Security::FilteredNodeCursor child(&element, filter);
    child.MoveToFirstChild();
    return child.Current() != nullptr;
}

}  // namespace Saml::Xml
