#pragma once

#include "saml/xml.h"

#include <map>
#include <string>

/// Nodes of classes that are not the library's own: a caller may derive from the public interfaces.
namespace Saml::Xml {

template <class Interface>
class ForeignNode : public Interface {
  public:
    using Interface::AppendChild;

    Node* GetParent() override { return nullptr; }
    Node* GetFirstChild() override { return nullptr; }
    Node* GetLastChild() override { return nullptr; }
    Node* GetNextSibling() override { return nullptr; }
    Node* GetPreviousSibling() override { return nullptr; }
    void AppendChild(Node*) override {}
    void InsertAfter(Node*, Node*) override {}
    void InsertBefore(Node*, Node*) override {}
    void RemoveChild(Node*) override {}
    void Write(Writer&) override {}
    void WriteFormatted(Writer&) override {}
    ElementNode* GetFirstChildElement(const std::string&) override { return nullptr; }
    ElementNode* GetNextSiblingElement(const std::string&) override { return nullptr; }
    ElementNode* GetFirstChildElement(const ExpandedName&) override { return nullptr; }
    ElementNode* GetNextSiblingElement(const ExpandedName&) override { return nullptr; }
};

/// Of no particular kind: it only claims to be a comment.
class ForeignPlainNode final : public ForeignNode<Node> {
  public:
    std::int32_t GetType() override { return NodeType::Comment; }
};

class ForeignText final : public ForeignNode<TextNode> {
  public:
    std::int32_t GetType() override { return NodeType::Text; }
    const std::string& GetText() override { return text_; }
    void SetText(const std::string& text) override { text_ = text; }
    void AppendText(const char*, int) override {}

  private:
    std::string text_;
};

class ForeignElement final : public ForeignNode<ElementNode> {
  public:
    std::int32_t GetType() override { return NodeType::Element; }
    using ForeignNode<ElementNode>::AppendChild;
    void AppendChild(TextNode*) override {}
    void AppendChild(ElementNode*) override {}
    const std::string& GetPrefix() override { return name_; }
    void SetPrefix(const std::string&) override {}
    const std::string& GetLocalName() override { return name_; }
    void SetLocalName(const std::string&) override {}
    std::string GetQualifiedName() override { return name_; }
    ExpandedName GetExpandedName() override { return {}; }
    std::int32_t GetLine() override { return -1; }
    std::int32_t GetColumn() override { return -1; }
    bool GetAttribute(const std::string&, std::string&) override { return false; }
    bool GetAttribute(const ExpandedName&, std::string&) override { return false; }
    void GetAttributes(std::map<std::string, std::string>& out) override { out.clear(); }
    void SetAttribute(const std::string&, const std::string&) override {}
    bool RemoveAttribute(const std::string&) override { return false; }
    bool LookupNamespaceURI(const std::string&, std::string&) override { return false; }

  private:
    std::string name_;
};

}  // namespace Saml::Xml
