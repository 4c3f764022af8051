#include "saml/xml/node_impl.h"

#include "saml/foundations/checked_cast.h"
#include "saml/xml/child_rules.h"
#include "saml/xml/element_node_impl.h"
#include "saml/xml/namespace_lookup.h"

#include <utility>

namespace Saml::Xml {
namespace {

constexpr char kNullNode[] = "A null pointer was passed where a node is required.";
constexpr char kForeignReference[] = "The reference node is not a child of this node.";
constexpr char kOwnDescendant[] = "A node cannot be added below itself.";

constexpr int kCompact = -1;
constexpr int kOutermostLevel = 0;

NodeImpl& RequireNode(Node* node) {
    if (node == nullptr) throw InvalidArgumentException(kNullNode);
    return *CheckedCast<NodeImpl>(node);
}

ElementNode* FindByLocalName(NodeImpl* first, const std::string& localName) {
    for (NodeImpl* node = first; node != nullptr; node = node->NextSibling()) {
        ElementNodeImpl* const element = AsElement(node);
        if (element != nullptr && element->LocalName() == localName) return element;
    }
    return nullptr;
}

bool Declares(const ElementNodeImpl& element, const std::string& declaration,
              const std::string& uri) {
    return element.FindAttribute(declaration) == uri;
}

// A candidate's own declaration counts only when it gives the wanted URI; another URI does not hide
// what the ancestors declare.
ElementNode* FindByExpandedName(NodeImpl* first, const ExpandedName& name) {
    DeclarationMap inherited;
    bool inheritedKnown = false;
    for (NodeImpl* node = first; node != nullptr; node = node->NextSibling()) {
        ElementNodeImpl* const candidate = AsElement(node);
        if (candidate == nullptr || candidate->LocalName() != name.localName) continue;

        const std::string declaration = DeclarationName(candidate->Prefix());
        if (Declares(*candidate, declaration, name.namespaceUri)) return candidate;

        if (!std::exchange(inheritedKnown, true))
            inherited = DeclarationsInForce(ParentElement(*candidate));
        const auto found = inherited.find(declaration);
        if (found != inherited.end() && found->second == name.namespaceUri) return candidate;
    }
    return nullptr;
}

}  // namespace

// The children are taken apart in a loop, not by destructors calling each other: a document may be
// deeper than any stack. A child that nobody else holds gives its own children to the loop before
// it goes; one that is still held becomes a detached tree.
NodeImpl::~NodeImpl() {
    boost::intrusive_ptr<NodeImpl> pending = std::move(firstChild_);
    while (pending) {
        const boost::intrusive_ptr<NodeImpl> child = std::move(pending);
        pending = std::move(child->nextSibling_);
        child->previousSibling_ = nullptr;
        child->parent_ = nullptr;
        const bool dies = child->use_count() == 1;
        if (dies && child->firstChild_) {
            child->lastChild_->nextSibling_ = std::move(pending);
            pending = std::move(child->firstChild_);
        }
    }
}

void NodeImpl::AppendChild(Node* child) {
    AppendNode(RequireNode(child));
}

void NodeImpl::AppendNode(NodeImpl& child) {
    CheckChild(child);
    CheckMove(child);
    const boost::intrusive_ptr<NodeImpl> held(&child);
    if (child.parent_ != nullptr) child.parent_->Unlink(child);
    LinkBehind(child, lastChild_);
}

void NodeImpl::AppendNew(boost::intrusive_ptr<NodeImpl> child) {
    CheckChild(*child);
    NodeImpl& added = *child;
    boost::intrusive_ptr<NodeImpl>& link =
        lastChild_ != nullptr ? lastChild_->nextSibling_ : firstChild_;
    link = std::move(child);
    added.parent_ = this;
    added.previousSibling_ = lastChild_;
    lastChild_ = &added;
    OnChildAdded(added);
}

void NodeImpl::InsertAfter(Node* newChild, Node* refChild) {
    NodeImpl& child = RequireNode(newChild);
    if (newChild == refChild && child.parent_ == this) return;
    CheckChild(child);
    CheckMove(child);
    NodeImpl& reference = CheckReference(refChild);

    const boost::intrusive_ptr<NodeImpl> held(&child);
    if (child.parent_ != nullptr) child.parent_->Unlink(child);
    LinkBehind(child, &reference);
}

void NodeImpl::InsertBefore(Node* newChild, Node* refChild) {
    NodeImpl& child = RequireNode(newChild);
    if (newChild == refChild && child.parent_ == this) return;
    CheckChild(child);
    CheckMove(child);
    NodeImpl& reference = CheckReference(refChild);

    const boost::intrusive_ptr<NodeImpl> held(&child);
    if (child.parent_ != nullptr) child.parent_->Unlink(child);
    LinkBehind(child, reference.previousSibling_);
}

void NodeImpl::RemoveChild(Node* child) {
    Unlink(RequireNode(child));
}

void NodeImpl::CheckChild(NodeImpl& child) {
    const char* const refusal = FindChildRefusal(type_, child.type_);
    if (refusal != nullptr) throw InvalidArgumentException(refusal);
}

// A node without children is nobody's ancestor: no walk then, or building a deep tree from the top
// would be quadratic.
void NodeImpl::CheckMove(NodeImpl& child) {
    if (&child == this) throw InvalidArgumentException(kOwnDescendant);
    if (!child.firstChild_) return;
    for (const NodeImpl* node = parent_; node != nullptr; node = node->parent_)
        if (node == &child) throw InvalidArgumentException(kOwnDescendant);
}

NodeImpl& NodeImpl::CheckReference(Node* refChild) {
    NodeImpl& reference = RequireNode(refChild);
    if (reference.parent_ != this) throw InvalidArgumentException(kForeignReference);
    return reference;
}

void NodeImpl::LinkBehind(NodeImpl& child, NodeImpl* predecessor) {
    boost::intrusive_ptr<NodeImpl>& link =
        predecessor != nullptr ? predecessor->nextSibling_ : firstChild_;
    child.parent_ = this;
    child.previousSibling_ = predecessor;
    child.nextSibling_.swap(link);  // a detached child has none
    link.reset(&child);
    if (child.nextSibling_)
        child.nextSibling_->previousSibling_ = &child;
    else
        lastChild_ = &child;
    OnChildAdded(child);
}

void NodeImpl::Unlink(NodeImpl& child) {
    const boost::intrusive_ptr<NodeImpl> held(&child);
    NodeImpl* const previous = child.previousSibling_;
    boost::intrusive_ptr<NodeImpl> next = std::move(child.nextSibling_);
    if (lastChild_ == &child) lastChild_ = previous;
    if (next) next->previousSibling_ = previous;
    if (previous != nullptr)
        previous->nextSibling_ = std::move(next);
    else if (firstChild_ == &child)
        firstChild_ = std::move(next);
    child.parent_ = nullptr;
    child.previousSibling_ = nullptr;
    OnChildRemoved(child);
}

void NodeImpl::OnChildAdded(NodeImpl&) {}

void NodeImpl::OnChildRemoved(NodeImpl&) {}

void NodeImpl::Write(Writer& out) {
    WriteTo(out, kCompact);
}

void NodeImpl::WriteFormatted(Writer& out) {
    WriteTo(out, kOutermostLevel);
}

ElementNode* NodeImpl::GetFirstChildElement(const std::string& localName) {
    return FindByLocalName(FirstChild(), localName);
}

ElementNode* NodeImpl::GetNextSiblingElement(const std::string& localName) {
    return FindByLocalName(NextSibling(), localName);
}

ElementNode* NodeImpl::GetFirstChildElement(const ExpandedName& name) {
    return FindByExpandedName(FirstChild(), name);
}

ElementNode* NodeImpl::GetNextSiblingElement(const ExpandedName& name) {
    return FindByExpandedName(NextSibling(), name);
}

}  // namespace Saml::Xml
