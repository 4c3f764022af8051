#pragma once

#include "saml/xml.h"
#include "saml/xml/element_name.h"
#include "saml/xml/node_impl.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Saml::Xml {

/// Attributes by written name, in the byte order of the names.
using AttributeMap = std::map<std::string, std::string, std::less<>>;

class ElementNodeImpl final : public virtual ElementNode, public NodeImpl {
  public:
    static constexpr std::int32_t kNoPosition = -1;

    ElementNodeImpl(std::string_view prefix, std::string_view localName,
                    std::int32_t line = kNoPosition, std::int32_t column = kNoPosition);
    ElementNodeImpl(ElementNamePtr name, std::int32_t line, std::int32_t column) noexcept;

    using NodeImpl::AppendChild;
    void AppendChild(TextNode* child) override;
    void AppendChild(ElementNode* child) override;

    const std::string& GetPrefix() override { return Prefix(); }
    void SetPrefix(const std::string& prefix) override;
    const std::string& GetLocalName() override { return LocalName(); }
    void SetLocalName(const std::string& localName) override;
    std::string GetQualifiedName() override;
    ExpandedName GetExpandedName() override;
    std::int32_t GetLine() override { return line_; }
    std::int32_t GetColumn() override { return column_; }

    bool GetAttribute(const std::string& name, std::string& value) override;
    bool GetAttribute(const ExpandedName& name, std::string& value) override;
    void GetAttributes(std::map<std::string, std::string>& out) override;
    void SetAttribute(const std::string& name, const std::string& value) override;
    bool RemoveAttribute(const std::string& name) override;
    bool LookupNamespaceURI(const std::string& prefix, std::string& uri) override;

    void WriteTo(Writer& out, int indent) override;

    const std::string& Prefix() const noexcept { return name_->prefix; }
    const std::string& LocalName() const noexcept { return name_->localName; }
    const AttributeMap& Attributes() const noexcept {
        return attributes_ ? *attributes_ : kNoAttributes;
    }
    /// `SetAttribute` for texts that are not strings yet; cheapest in ascending order of names.
    void PutAttribute(std::string_view name, std::string_view value);
    /// The value of the attribute with this written name; null when there is none.
    const std::string* FindAttribute(std::string_view name) const;

  private:
    static const AttributeMap kNoAttributes;

    AttributeMap& OwnAttributes();
    ElementName& OwnName();

    std::unique_ptr<AttributeMap> attributes_;  ///< Null while there are none: most have none.
    ElementNamePtr name_;
    std::int32_t line_;
    std::int32_t column_;
};

/// `node` as an element; null when it is null or of another kind.
inline ElementNodeImpl* AsElement(NodeImpl* node) noexcept {
    return node != nullptr && node->Type() == NodeType::Element
               ? static_cast<ElementNodeImpl*>(node)
               : nullptr;
}
inline const ElementNodeImpl* AsElement(const NodeImpl* node) noexcept {
    return node != nullptr && node->Type() == NodeType::Element
               ? static_cast<const ElementNodeImpl*>(node)
               : nullptr;
}

/// The parent of `node` when that is an element, else null.
inline ElementNodeImpl* ParentElement(const NodeImpl& node) noexcept {
    return AsElement(node.Parent());
}

}  // namespace Saml::Xml
