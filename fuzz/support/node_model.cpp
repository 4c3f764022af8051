#include "support/node_model.h"

#include "support/laws.h"

#include <algorithm>

namespace Fuzz {
namespace {

using namespace Saml::Xml;

Node* NewNode(std::int32_t type) {
    switch (type) {
        case NodeType::Document:
            return CreateDocument();
        case NodeType::Text:
            return CreateTextNode();
        case NodeType::CData:
            return CreateCDataNode();
        case NodeType::Comment:
            return CreateCommentNode();
        case NodeType::Element:
            return CreateElementNode("", "e");
        default:
            return CreateProcessingInstructionNode();
    }
}

/// What `Node::AppendChild` says about kinds, but for the one root of a document.
bool TakesKind(std::int32_t parent, std::int32_t child) {
    switch (parent) {
        case NodeType::Document:
            return child == NodeType::Comment || child == NodeType::ProcessingInstruction ||
                   child == NodeType::Element;
        case NodeType::Element:
            return child == NodeType::Element || child == NodeType::Text ||
                   child == NodeType::CData || child == NodeType::Comment;
        case NodeType::CData:
            return child == NodeType::Text;
        default:
            return false;
    }
}

}  // namespace

bool NodeModel::IsElement(std::size_t node) const {
    return nodes_[node].type == NodeType::Element;
}

bool NodeModel::IsDocument(std::size_t node) const {
    return nodes_[node].type == NodeType::Document;
}

Node* NodeModel::NodeAt(std::size_t number) const {
    return number < nodes_.size() ? nodes_[number].node : nullptr;
}

void NodeModel::Create(std::int32_t type) {
    Node* const node = NewNode(type);
    nodes_.push_back({node, boost::intrusive_ptr<Node>(node), type});
}

std::size_t NodeModel::RootOf(std::size_t document) const {
    for (const std::size_t child : nodes_[document].children)
        if (IsElement(child)) return child;
    return kNone;
}

bool NodeModel::IsAtOrAbove(std::size_t upper, std::size_t node) const {
    while (node != kNone && node != upper)
        node = nodes_[node].parent;
    return node == upper;
}

// A second root is refused even when it is the first one: it would have to leave before it comes.
bool NodeModel::MayStandUnder(std::size_t parent, std::size_t child) const {
    const bool isSecondRoot = IsDocument(parent) && IsElement(child) && RootOf(parent) != kNone;
    return TakesKind(nodes_[parent].type, nodes_[child].type) && !isSecondRoot &&
           !IsAtOrAbove(child, parent);
}

std::size_t NodeModel::PlaceOf(std::size_t child) const {
    const std::vector<std::size_t>& siblings = nodes_[nodes_[child].parent].children;
    return static_cast<std::size_t>(std::find(siblings.begin(), siblings.end(), child) -
                                    siblings.begin());
}

void NodeModel::Detach(std::size_t child) {
    if (nodes_[child].parent == kNone) return;
    std::vector<std::size_t>& siblings = nodes_[nodes_[child].parent].children;
    siblings.erase(siblings.begin() + static_cast<std::ptrdiff_t>(PlaceOf(child)));
    nodes_[child].parent = kNone;
}

void NodeModel::Attach(std::size_t parent, std::size_t child, std::size_t place) {
    std::vector<std::size_t>& children = nodes_[parent].children;
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(place), child);
    nodes_[child].parent = parent;
}

void NodeModel::DieIfUnowned(std::size_t node) {
    std::vector<std::size_t> pending{node};
    while (!pending.empty()) {
        ModelNode& next = nodes_[pending.back()];
        pending.pop_back();
        if (next.held || next.parent != kNone) continue;
        next.isAlive = false;
        for (const std::size_t child : next.children) {
            nodes_[child].parent = kNone;
            pending.push_back(child);
        }
        next.children.clear();
    }
}

template <class Insert>
void NodeModel::RequireOutcome(bool isAllowed, Insert insert) {
    bool isRefused = false;
    try {
        insert();
    } catch (const Saml::InvalidArgumentException&) {
        isRefused = true;
    }
    Require(isRefused != isAllowed, "a node is refused exactly where it may not stand");
}

void NodeModel::Append(std::size_t parent, std::size_t child) {
    const bool isAllowed = MayStandUnder(parent, child);
    RequireOutcome(isAllowed, [&] { nodes_[parent].node->AppendChild(NodeAt(child)); });
    if (!isAllowed) return;
    Detach(child);
    Attach(parent, child, nodes_[parent].children.size());
}

void NodeModel::InsertAfter(std::size_t parent, std::size_t child, std::size_t reference) {
    const bool isChild = nodes_[reference].parent == parent;
    const bool staysInPlace = isChild && child == reference;
    const bool isAllowed = staysInPlace || (isChild && MayStandUnder(parent, child));
    RequireOutcome(isAllowed,
                   [&] { nodes_[parent].node->InsertAfter(NodeAt(child), NodeAt(reference)); });
    if (!isAllowed || staysInPlace) return;
    Detach(child);
    Attach(parent, child, PlaceOf(reference) + 1);
}

void NodeModel::InsertBefore(std::size_t parent, std::size_t child, std::size_t reference) {
    const bool isChild = nodes_[reference].parent == parent;
    const bool staysInPlace = isChild && child == reference;
    const bool isAllowed = staysInPlace || (isChild && MayStandUnder(parent, child));
    RequireOutcome(isAllowed,
                   [&] { nodes_[parent].node->InsertBefore(NodeAt(child), NodeAt(reference)); });
    if (!isAllowed || staysInPlace) return;
    Detach(child);
    Attach(parent, child, PlaceOf(reference));
}

void NodeModel::Remove(std::size_t child) {
    if (nodes_[child].parent == kNone) return;
    NodeAt(nodes_[child].parent)->RemoveChild(NodeAt(child));
    Detach(child);
    DieIfUnowned(child);
}

void NodeModel::SetRoot(std::size_t document, std::size_t root) {
    dynamic_cast<Document&>(*NodeAt(document))
        .SetRootElement(dynamic_cast<ElementNode*>(NodeAt(root)));
    const std::size_t oldRoot = RootOf(document);
    std::size_t place = nodes_[document].children.size();
    if (oldRoot != kNone) {
        place = PlaceOf(oldRoot);
        Detach(oldRoot);
    }
    if (root < nodes_.size()) {
        Detach(root);
        Attach(document, root, place);
    }
    if (oldRoot != kNone) DieIfUnowned(oldRoot);
}

void NodeModel::Release(std::size_t node) {
    nodes_[node].held.reset();
    DieIfUnowned(node);
}

void NodeModel::Hold(std::size_t node) {
    nodes_[node].held = NodeAt(node);
}

void NodeModel::RequireAgreement() const {
    for (std::size_t number = 0; number != nodes_.size(); ++number)
        if (nodes_[number].isAlive) RequireAgreementOf(number);
}

void NodeModel::RequireAgreementOf(std::size_t number) const {
    const ModelNode& model = nodes_[number];
    Node& node = *model.node;
    Require(node.GetType() == model.type, "a node keeps its type");
    Require(node.GetParent() == NodeAt(model.parent), "a node's parent is where it was put");
    Node* child = node.GetFirstChild();
    Node* previous = nullptr;
    for (const std::size_t expected : model.children) {
        Require(child == NodeAt(expected), "children stand in their order");
        Require(child->GetPreviousSibling() == previous, "siblings agree about their order");
        previous = child;
        child = child->GetNextSibling();
    }
    Require(child == nullptr, "there are no more children");
    Require(node.GetLastChild() == previous, "the last child is the last one");
    if (model.parent == kNone)
        Require(node.GetNextSibling() == nullptr && node.GetPreviousSibling() == nullptr,
                "a detached node has no siblings");
    if (IsDocument(number))
        Require(dynamic_cast<Document&>(node).GetRootElement() == NodeAt(RootOf(number)),
                "the root element is the element among the children");
}

}  // namespace Fuzz
