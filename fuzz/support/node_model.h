#pragma once

#include "saml/xml.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Fuzz {

/// A forest of nodes next to a model of it made of vectors and numbers. Every operation is done to
/// both; `RequireAgreement` compares them link by link. Numbers of nodes count from 0 in the order
/// in which they were made.
class NodeModel {
  public:
    /// Makes a detached node of one of the `NodeType` codes, which is held.
    void Create(std::int32_t type);
    std::size_t Size() const { return nodes_.size(); }
    bool IsAlive(std::size_t node) const { return nodes_[node].isAlive; }
    bool IsElement(std::size_t node) const;
    bool IsDocument(std::size_t node) const;

    // Each node given to one of these is alive.
    void Append(std::size_t parent, std::size_t child);
    void InsertAfter(std::size_t parent, std::size_t child, std::size_t reference);
    void InsertBefore(std::size_t parent, std::size_t child, std::size_t reference);
    /// Takes the node from its parent, if it has one.
    void Remove(std::size_t child);
    /// `root` is an element, or the number behind the last one for a null pointer.
    void SetRoot(std::size_t document, std::size_t root);
    /// Holds the node no more: without a parent it dies, with those below it that nobody holds.
    void Release(std::size_t node);
    void Hold(std::size_t node);

    void RequireAgreement() const;

  private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    struct ModelNode {
        Saml::Xml::Node* node;
        boost::intrusive_ptr<Saml::Xml::Node> held;  ///< Null when only the parent owns it.
        std::int32_t type;
        std::size_t parent = kNone;
        std::vector<std::size_t> children = {};
        bool isAlive = true;
    };

    bool MayStandUnder(std::size_t parent, std::size_t child) const;
    bool IsAtOrAbove(std::size_t upper, std::size_t node) const;
    std::size_t RootOf(std::size_t document) const;
    void Detach(std::size_t child);
    void Attach(std::size_t parent, std::size_t child, std::size_t place);
    void DieIfUnowned(std::size_t node);
    std::size_t PlaceOf(std::size_t child) const;
    Saml::Xml::Node* NodeAt(std::size_t number) const;
    /// Places the child by `insert`, which throws when the model refuses and not otherwise.
    template <class Insert>
    void RequireOutcome(bool isAllowed, Insert insert);
    void RequireAgreementOf(std::size_t number) const;

    std::vector<ModelNode> nodes_;
};

}  // namespace Fuzz
