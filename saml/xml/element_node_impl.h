#pragma once

#include "saml/xml.h"
#include "saml/xml/element_attributes.h"
#include "saml/xml/element_name.h"
#include "saml/xml/node_impl.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Saml::Xml {

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
    const ElementAttributes& Attributes() const noexcept { return attributes_; }
    /// What a parser reported, for an element without attributes; see `ElementAttributes::Fill`.
    void FillAttributes(std::vector<Attribute>& reported, NodePool& pool) {
        attributes_.Fill(reported, pool);
    }
    /// The value of the attribute with this written name.
    FoundText FindAttribute(std::string_view name) const { return attributes_.Find(name); }

  private:
    ElementName& OwnName();

    ElementAttributes attributes_;
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
