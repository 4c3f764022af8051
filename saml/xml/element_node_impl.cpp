#include "saml/xml/element_node_impl.h"

#include "saml/foundations/checked_cast.h"
#include "saml/xml/namespace_lookup.h"

#include <utility>

namespace Saml::Xml {

const AttributeMap ElementNodeImpl::kNoAttributes;

ElementNodeImpl::ElementNodeImpl(std::string_view prefix, std::string_view localName,
                                 std::int32_t line, std::int32_t column)
    : ElementNodeImpl(ElementNamePtr(new ElementName(prefix, localName)), line, column) {}

ElementNodeImpl::ElementNodeImpl(ElementNamePtr name, std::int32_t line,
                                 std::int32_t column) noexcept
    : NodeImpl(NodeType::Element), name_(std::move(name)), line_(line), column_(column) {}

void ElementNodeImpl::AppendChild(TextNode* child) {
    NodeImpl::AppendChild(child);
}

void ElementNodeImpl::AppendChild(ElementNode* child) {
    NodeImpl::AppendChild(child);
}

void ElementNodeImpl::SetPrefix(const std::string& prefix) {
    OwnName().prefix = prefix;
}

void ElementNodeImpl::SetLocalName(const std::string& localName) {
    OwnName().localName = localName;
}

// A name that nobody else has is changed where it stands.
ElementName& ElementNodeImpl::OwnName() {
    if (name_->use_count() != 1) name_ = new ElementName(Prefix(), LocalName());
    return *name_;
}

AttributeMap& ElementNodeImpl::OwnAttributes() {
    if (!attributes_) attributes_ = std::make_unique<AttributeMap>();
    return *attributes_;
}

std::string ElementNodeImpl::GetQualifiedName() {
    return Prefix().empty() ? LocalName() : Prefix() + ":" + LocalName();
}

ExpandedName ElementNodeImpl::GetExpandedName() {
    const std::string* const uri = FindNamespaceURI(*this, Prefix());
    return {uri != nullptr ? *uri : std::string(), LocalName()};
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
    std::map<std::string, std::string> copy(Attributes().begin(), Attributes().end());
    out.swap(copy);
}

void ElementNodeImpl::SetAttribute(const std::string& name, const std::string& value) {
    OwnAttributes().insert_or_assign(name, value);
}

void ElementNodeImpl::PutAttribute(std::string_view name, std::string_view value) {
    AttributeMap& attributes = OwnAttributes();
    attributes.insert_or_assign(attributes.end(), std::string(name), std::string(value));
}

bool ElementNodeImpl::RemoveAttribute(const std::string& name) {
    return attributes_ && attributes_->erase(name) != 0;
}

bool ElementNodeImpl::LookupNamespaceURI(const std::string& prefix, std::string& uri) {
    const std::string* const found = FindNamespaceURI(*this, prefix);
    if (found != nullptr) uri = *found;
    return found != nullptr;
}

const std::string* ElementNodeImpl::FindAttribute(std::string_view name) const {
    if (!attributes_) return nullptr;
    const auto found = attributes_->find(name);
    return found != attributes_->end() ? &found->second : nullptr;
}

ElementNode* CreateElementNode(const std::string& prefix, const std::string& localName) {
    return new ElementNodeImpl(prefix, localName);
}

}  // namespace Saml::Xml
