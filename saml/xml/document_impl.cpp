#include "saml/xml/document_impl.h"

#include "saml/foundations/checked_cast.h"

namespace Saml::Xml {
namespace {

constexpr char kRootAlreadySet[] = "Document's Root Element Node already set";

}  // namespace

DocumentImpl::DocumentImpl() : NodeImpl(NodeType::Document) {}

// Both nodes are held to the end: neither the old root's destruction nor a move of the new root out
// of its old parent may pull a node away half-way.
void DocumentImpl::SetRootElement(ElementNode* root) {
    const boost::intrusive_ptr<ElementNodeImpl> oldRoot(root_);
    const boost::intrusive_ptr<ElementNodeImpl> newRoot(
        root != nullptr ? CheckedCast<ElementNodeImpl>(root) : nullptr);

    NodeImpl* successor = nullptr;
    if (oldRoot) {
        successor = oldRoot->NextSibling();
        RemoveChild(oldRoot.get());
    }
    if (!newRoot) return;
    if (successor != nullptr)
        InsertBefore(newRoot.get(), successor);
    else
        AppendNode(*newRoot);
}

void DocumentImpl::CheckChild(NodeImpl& child) {
    NodeImpl::CheckChild(child);
    if (child.Type() == NodeType::Element && root_ != nullptr)
        throw InvalidArgumentException(kRootAlreadySet);
}

void DocumentImpl::OnChildAdded(NodeImpl& child) {
    if (child.Type() == NodeType::Element) root_ = static_cast<ElementNodeImpl*>(&child);
}

void DocumentImpl::OnChildRemoved(NodeImpl& child) {
    if (child.Type() == NodeType::Element) root_ = nullptr;
}

// A whole document is written by writing its root element.
void DocumentImpl::WriteTo(Writer&, int) {}

Document* CreateDocument() {
    return new DocumentImpl;
}

}  // namespace Saml::Xml
