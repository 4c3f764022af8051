#include "saml/xml/element_node_impl.h"

#include "saml/foundations/checked_cast.h"
#include "saml/xml/namespace_lookup.h"

#include <utility>

namespace Saml::Xml {

namespace {

// A function of its own: GCC 12 leaks what a constructor that throws was to fill, when it is made
// among the arguments of a delegating constructor.
ElementNamePtr MakeElementName(std::string_view prefix, std::string_view localName) {
    return ElementNamePtr(new ElementName(prefix, localName));
}

/// `out` stays as it is when nothing was found.
bool Give(FoundText found, std::string& out) {
    if (found) out = *found;
    return found.has_value();
}

}  // namespace

ElementNodeImpl::ElementNodeImpl(std::string_view prefix, std::string_view localName,
                                 std::int32_t line, std::int32_t column)
    : ElementNodeImpl(MakeElementName(prefix, localName), line, column) {}

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
    if (name_->use_count() != 1) name_ = MakeElementName(Prefix(), LocalName());
    return *name_;
}

std::string ElementNodeImpl::GetQualifiedName() {
    return Prefix().empty() ? LocalName() : Prefix() + ":" + LocalName();
}

ExpandedName ElementNodeImpl::GetExpandedName() {
    return {std::string(FindNamespaceURI(*this, Prefix()).value_or("")), LocalName()};
}

bool ElementNodeImpl::GetAttribute(const std::string& name, std::string& value) {
    return Give(FindAttribute(name), value);
}

bool ElementNodeImpl::GetAttribute(const ExpandedName& name, std::string& value) {
    return Give(FindAttributeByName(*this, name.namespaceUri, name.localName), value);
}

void ElementNodeImpl::GetAttributes(std::map<std::string, std::string>& out) {
    std::map<std::string, std::string> copy;
    for (const auto& [name, value] : attributes_)
        copy.emplace_hint(copy.end(), name, value);
    out.swap(copy);
}

void ElementNodeImpl::SetAttribute(const std::string& name, const std::string& value) {
    attributes_.Set(name, value);
}

bool ElementNodeImpl::RemoveAttribute(const std::string& name) {
    return attributes_.Remove(name);
}

bool ElementNodeImpl::LookupNamespaceURI(const std::string& prefix, std::string& uri) {
    return Give(FindNamespaceURI(*this, prefix), uri);
}

ElementNode* CreateElementNode(const std::string& prefix, const std::string& localName) {
    return new ElementNodeImpl(prefix, localName);
}

}  // namespace Saml::Xml
