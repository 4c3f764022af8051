#include "saml/xml/strict_reading.h"

namespace Saml::Xml {
namespace {

using Security::SignatureSyntaxException;

constexpr std::string_view kSignatureNamespace = "http://www.w3.org/2000/09/xmldsig#";

// Two of these leave the quote behind the element's name open; callers match the texts as they are.
std::string NotFound(std::string_view localName) {
    return "Expected element '" + std::string(localName) + "' not found.";
}
std::string UnexpectedNamespace(const ElementNodeImpl& element, std::string_view uri) {
    return "Element '" + element.LocalName() + " has unexpected namespace: '" + std::string(uri) +
           "'";
}
std::string MissingAttribute(const ElementNodeImpl& element, std::string_view name) {
    return "Node '" + element.LocalName() + " is missing required attribute '" + std::string(name) +
           "'";
}
std::string UnexpectedAttributes(const ElementNodeImpl& element) {
    return "Unexpected attributes on element '" + element.LocalName() + "'";
}
std::string UnexpectedChildren(const ElementNodeImpl& element) {
    return "Element '" + element.LocalName() + "' may not have children";
}
std::string NotTextual(const ElementNodeImpl& element) {
    return "Element '" + element.LocalName() +
           "' must only have textual content (but has extra children or is empty).";
}

}  // namespace

void ExpectElement(const ElementNodeImpl* element, std::string_view localName,
                   std::string_view namespaceUri, const NamespaceContext& namespaces) {
    switch (MatchElement(element, localName, namespaceUri, namespaces)) {
        case ElementMatch::Match:
            return;
        case ElementMatch::OtherName:
            throw SignatureSyntaxException(NotFound(localName));
        case ElementMatch::OtherNamespace:
            break;
    }
    const FoundText uri = namespaces.NamespaceOf(*element);
    throw SignatureSyntaxException(UnexpectedNamespace(*element, uri.value_or("")));
}

void ExpectSignatureElement(const ElementNodeImpl* element, std::string_view localName,
                            const NamespaceContext& namespaces) {
    ExpectElement(element, localName, kSignatureNamespace, namespaces);
}

bool IsElement(const ElementNodeImpl* element, std::string_view localName,
               std::string_view namespaceUri, const NamespaceContext& namespaces) {
    return MatchElement(element, localName, namespaceUri, namespaces) == ElementMatch::Match;
}

bool IsSignatureElement(const ElementNodeImpl* element, std::string_view localName,
                        const NamespaceContext& namespaces) {
    return IsElement(element, localName, kSignatureNamespace, namespaces);
}

void CheckAttributes(const ElementNodeImpl& element, AttributeNames required,
                     AttributeNames optional) {
    const std::string_view missing = FindMissingAttribute(element, required);
    if (!missing.empty()) throw SignatureSyntaxException(MissingAttribute(element, missing));
    if (FindUnexpectedAttribute(element, required, optional))
        throw SignatureSyntaxException(UnexpectedAttributes(element));
}

std::string_view ReadRequiredAttribute(const ElementNodeImpl& element, std::string_view name) {
    CheckAttributes(element, {name});
    return *element.FindAttribute(name);
}

void ExpectNoChildren(ElementNodeImpl& element, const Security::NodeFilter& filter) {
    if (HasChildren(element, filter)) throw SignatureSyntaxException(UnexpectedChildren(element));
}

TextNodeImpl& ReadTextContent(ElementNodeImpl& element, const Security::NodeFilter& filter) {
    TextNodeImpl* const text = FindOnlyText(element, filter);
    if (text == nullptr) throw SignatureSyntaxException(NotTextual(element));
    return *text;
}

}  // namespace Saml::Xml
