#include "saml/xml/element_node_impl.h"

#include "saml/foundations/checked_cast.h"
#include "saml/xml/namespace_lookup.h"

namespace Saml::Xml {

ElementNodeImpl::ElementNodeImpl(std::string_view prefix, std::string_view localName,
                                 std::int32_t line, std::int32_t column)
    : NodeImpl(NodeType::Element),
      prefix_(prefix),
      localName_(localName),
      line_(line),
      column_(column) {}

void ElementNodeImpl::AppendChild(TextNode* child) {
    NodeImpl::AppendChild(child);
}

void ElementNodeImpl::AppendChild(ElementNode* child) {
    NodeImpl::AppendChild(child);
}

std::string ElementNodeImpl::GetQualifiedName() {
    return prefix_.empty() ? localName_ : prefix_ + ":" + localName_;
}

ExpandedName ElementNodeImpl::GetExpandedName() {
    const std::string* const uri = FindNamespaceURI(*this, prefix_);
    return {uri != nullptr ? *uri : std::string(), localName_};
}

bool ElementNodeImpl::GetAttribute(const std::string& name, std::string& value) {
    const std::string* const found = FindAttribute(name);
    if (found != nullptr) value = *found;
    return found != nullptr;
}

bool ElementNodeImpl::GetAttribute(const ExpandedName& name, std::string& value) {
    const std::string* const found = FindAttributeByName(*this, name.namespaceUri, name.localName);
    if (found != nullptr) value = *found;
    return found != nullptr;
}

void ElementNodeImpl::GetAttributes(std::map<std::string, std::string>& out) {
    std::map<std::string, std::string> copy(attributes_.begin(), attributes_.end());
    out.swap(copy);
}

void ElementNodeImpl::SetAttribute(const std::string& name, const std::string& value) {
    attributes_.insert_or_assign(name, value);
}

void ElementNodeImpl::PutAttribute(std::string_view name, std::string_view value) {
    attributes_.insert_or_assign(attributes_.end(), std::string(name), std::string(value));
}

bool ElementNodeImpl::RemoveAttribute(const std::string& name) {
    return attributes_.erase(name) != 0;
}

bool ElementNodeImpl::LookupNamespaceURI(const std::string& prefix, std::string& uri) {
    const std::string* const found = FindNamespaceURI(*this, prefix);
    if (found != nullptr) uri = *found;
    return found != nullptr;
}

const std::string* ElementNodeImpl::FindAttribute(std::string_view name) const {
    const auto found = attributes_.find(name);
    return found != attributes_.end() ? &found->second : nullptr;
}

ElementNode* CreateElementNode(const std::string& prefix, const std::string& localName) {
    return new ElementNodeImpl(prefix, localName);
}

}  // namespace Saml::Xml
