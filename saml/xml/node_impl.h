#pragma once

#include "saml/xml.h"
#include "saml/xml/node_pool.h"

#include <cstddef>
#include <cstdint>

namespace Saml::Xml {

/// What all nodes share: the links of the tree, moving and removing, destruction.
///
/// A parent owns its first child and each child the next one; all other links are plain. Inside the
/// library trees are walked through the non-virtual accessors: every node of a tree is a
/// `NodeImpl`, and `Type()` tells which of the final classes it is, so no walk pays for a dynamic
/// cast.
class NodeImpl : public virtual Node, public Pooled {
  public:
    ~NodeImpl() override;

    Node* GetParent() final { return parent_; }
    Node* GetFirstChild() final { return firstChild_.get(); }
    Node* GetLastChild() final { return lastChild_; }
    Node* GetNextSibling() final { return nextSibling_.get(); }
    Node* GetPreviousSibling() final { return previousSibling_; }

    void AppendChild(Node* child) final;
    void InsertAfter(Node* newChild, Node* refChild) final;
    void InsertBefore(Node* newChild, Node* refChild) final;
    void RemoveChild(Node* child) final;

    std::int32_t GetType() final { return type_; }
    void Write(Writer& out) final;
    void WriteFormatted(Writer& out) final;

    ElementNode* GetFirstChildElement(const std::string& localName) final;
    ElementNode* GetNextSiblingElement(const std::string& localName) final;
    ElementNode* GetFirstChildElement(const ExpandedName& name) final;
    ElementNode* GetNextSiblingElement(const ExpandedName& name) final;

    NodeImpl* Parent() const noexcept { return parent_; }
    NodeImpl* FirstChild() const noexcept { return firstChild_.get(); }
    NodeImpl* LastChild() const noexcept { return lastChild_; }
    NodeImpl* NextSibling() const noexcept { return nextSibling_.get(); }
    NodeImpl* PreviousSibling() const noexcept { return previousSibling_; }
    std::int32_t Type() const noexcept { return type_; }

    /// `AppendChild` for a node that is known to be the library's own.
    void AppendNode(NodeImpl& child);
    /// The same for one that stands in no tree and has no children; takes the reference over.
    void AppendNew(boost::intrusive_ptr<NodeImpl> child);

    /// Writes this node and its descendants; `indent` is the level, or -1 for compact output.
    virtual void WriteTo(Writer& out, int indent) = 0;
    /// Refuses, by `InvalidArgumentException`, a child that may not stand under this node.
    virtual void CheckChild(NodeImpl& child);
    virtual void OnChildAdded(NodeImpl& child);
    virtual void OnChildRemoved(NodeImpl& child);

  protected:
    explicit NodeImpl(std::int32_t type) noexcept : type_(type) {}

  private:
    void CheckMove(NodeImpl& child);
    NodeImpl& CheckReference(Node* refChild);
    void LinkBehind(NodeImpl& child, NodeImpl* predecessor);
    void Unlink(NodeImpl& child);

    boost::intrusive_ptr<NodeImpl> firstChild_;
    NodeImpl* lastChild_ = nullptr;
    boost::intrusive_ptr<NodeImpl> nextSibling_;
    NodeImpl* previousSibling_ = nullptr;
    NodeImpl* parent_ = nullptr;
    const std::int32_t type_;
};

/// In place of the counter's own: a node that nobody else holds goes without counting down, since
/// nobody else can tell. Boost names it.
// NOLINTNEXTLINE(readability-identifier-naming)
inline void intrusive_ptr_release(const NodeImpl* node) noexcept {
    if (node->use_count() == 1)
        delete node;
    else
        intrusive_ptr_release(static_cast<const Node*>(node));
}

}  // namespace Saml::Xml
