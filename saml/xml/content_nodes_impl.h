#pragma once

#include "saml/xml.h"
#include "saml/xml/node_impl.h"

#include <string>
#include <string_view>
#include <utility>

namespace Saml::Xml {

class TextNodeImpl final : public virtual TextNode, public NodeImpl {
  public:
    explicit TextNodeImpl(std::string_view text = {});

    const std::string& GetText() override { return text_; }
    void SetText(const std::string& text) override { text_ = text; }
    void AppendText(const char* data, int length) override;
    void WriteTo(Writer& out, int indent) override;

    const std::string& Text() const noexcept { return text_; }
    std::string TakeText() noexcept { return std::move(text_); }

  private:
    std::string text_;
};

/// The content of the section is held as text children.
class CDataNodeImpl final : public virtual CDataNode, public NodeImpl {
  public:
    CDataNodeImpl();

    void WriteTo(Writer& out, int indent) override;
};

class CommentNodeImpl final : public virtual CommentNode, public NodeImpl {
  public:
    explicit CommentNodeImpl(std::string_view text = {});

    const std::string& GetText() override { return text_; }
    void SetText(const std::string& text) override { text_ = text; }
    void WriteTo(Writer& out, int indent) override;

  private:
    std::string text_;
};

class ProcessingInstructionNodeImpl final : public virtual ProcessingInstructionNode,
                                            public NodeImpl {
  public:
    explicit ProcessingInstructionNodeImpl(std::string_view target = {},
                                           std::string_view data = {});

    const std::string& GetTarget() override { return target_; }
    void SetTarget(const std::string& target) override { target_ = target; }
    const std::string& GetData() override { return data_; }
    void SetData(const std::string& data) override { data_ = data; }
    void WriteTo(Writer& out, int indent) override;

  private:
    std::string target_;
    std::string data_;
};

/// `node` as a text; null when it is null or of another kind.
inline TextNodeImpl* AsText(NodeImpl* node) noexcept {
    return node != nullptr && node->Type() == NodeType::Text ? static_cast<TextNodeImpl*>(node)
                                                             : nullptr;
}
inline const TextNodeImpl* AsText(const NodeImpl* node) noexcept {
    return node != nullptr && node->Type() == NodeType::Text
               ? static_cast<const TextNodeImpl*>(node)
               : nullptr;
}

}  // namespace Saml::Xml
