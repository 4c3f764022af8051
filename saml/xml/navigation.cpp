#include "saml/foundations/checked_cast.h"
#include "saml/xml.h"
#include "saml/xml/element_node_impl.h"

namespace Saml::Xml {
namespace {

// Documents in the field write these names with this very prefix, declared or not.
constexpr char kNil[] = "xsi:nil";
constexpr char kNull[] = "xsi:null";

bool IsTrue(FoundText value) {
    return value == "true" || value == "1";
}

bool IsNilElement(const ElementNodeImpl& element) {
    return IsTrue(element.FindAttribute(kNil)) || IsTrue(element.FindAttribute(kNull));
}

ElementNode* FirstPresentElement(NodeImpl* first) {
    for (NodeImpl* node = first; node != nullptr; node = node->NextSibling()) {
        ElementNodeImpl* const element = AsElement(node);
        if (element != nullptr && !IsNilElement(*element)) return element;
    }
    return nullptr;
}

}  // namespace

ElementNode* GetFirstSiblingElement(Node* node) {
    return node != nullptr ? FirstPresentElement(CheckedCast<NodeImpl>(node)) : nullptr;
}

ElementNode* GetFirstChildElement(Node* node) {
    return node != nullptr ? FirstPresentElement(CheckedCast<NodeImpl>(node)->FirstChild())
                           : nullptr;
}

ElementNode* GetNextSiblingElement(Node* node) {
    return node != nullptr ? FirstPresentElement(CheckedCast<NodeImpl>(node)->NextSibling())
                           : nullptr;
}

bool GetNamespace(ElementNode* element, std::string& uri) {
    return element != nullptr && element->LookupNamespaceURI(element->GetPrefix(), uri);
}

bool IsNil(ElementNode* element) {
    return element != nullptr && IsNilElement(*CheckedCast<ElementNodeImpl>(element));
}

// The place where URIs read from tokens would be judged; no syntax is imposed, so that no token is
// refused for one.
void ValidateAnyURI(const char*) {}

}  // namespace Saml::Xml
