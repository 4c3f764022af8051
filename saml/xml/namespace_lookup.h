#pragma once

#include "saml/xml/element_node_impl.h"

#include <map>
#include <string>
#include <string_view>

namespace Saml::Xml {

/// True for "xmlns" and for everything that begins with "xmlns:".
bool IsNamespaceDeclaration(std::string_view attributeName) noexcept;

/// True for what canonicalization takes for a declaration: the names above and ":xmlns", which is
/// "xmlns" once it is split at its colon. Strict readers refuse that name; what they do not examine
/// must still be digested as it always was.
bool IsCanonicalDeclaration(std::string_view attributeName) noexcept;

/// The prefix that a namespace declaration declares; empty for the default declaration.
std::string_view DeclaredPrefix(std::string_view declaration) noexcept;

/// The name of the attribute that declares `prefix`; "xmlns" for the empty one.
std::string DeclarationName(std::string_view prefix);

/// The URI that `element` or its nearest declaring ancestor element binds to `prefix`; nothing
/// when none does. Walks up the parents: a pass that asks often uses a `NamespaceContext`.
FoundText FindNamespaceURI(const ElementNodeImpl& element, std::string_view prefix);

/// The value of the first attribute, in name order, with this namespace and local part; nothing
/// when there is none. Walks up the parents once at most.
FoundText FindAttributeByName(const ElementNodeImpl& element, std::string_view uri,
                              std::string_view localName);

/// Declarations by a text of theirs; refers into the tree. Without a URI where an element declares
/// its default namespace in several spellings.
using DeclarationMap = std::map<std::string_view, FoundText>;

/// What `element`, when not null, and its ancestor elements declare, by declaration name ("xmlns",
/// "xmlns:p"); the nearest one wins.
DeclarationMap DeclarationsInForce(const ElementNodeImpl* element);

/// Namespace lookups of one pass over an unchanging tree, at and below an apex.
///
/// What the apex inherits is collected once, when first needed. Without this, each element of a
/// shallow subtree deep inside a hostile document would pay for a walk to the top of it.
///
/// It sees a default declaration where canonicalization does, in "xmlns:" and ":xmlns", too, and
/// takes none from an element with several: else whoever adds one of these beside a signed "xmlns"
/// decides what the reader takes an element for.
/// Threads: used by one thread, like the tree.
class NamespaceContext {
  public:
    explicit NamespaceContext(const ElementNodeImpl& apex) noexcept : apex_(apex) {}

    /// The URI that is bound to `prefix` at `element`, the apex or one below it; nothing when there
    /// is none.
    FoundText Find(const ElementNodeImpl& element, std::string_view prefix) const;
    /// The URI bound to the prefix of `element`; nothing when none is.
    FoundText NamespaceOf(const ElementNodeImpl& element) const {
        return Find(element, element.Prefix());
    }
    /// The value of the first attribute, in name order, with this namespace and local part; nothing
    /// when there is none.
    FoundText FindAttribute(const ElementNodeImpl& element, std::string_view uri,
                            std::string_view localName) const;

  private:
    /// What was found last, where all that counts is the parent: an element without attributes
    /// declares nothing, and there are many such in a row.
    struct Answer {
        const NodeImpl* parent = nullptr;
        std::string prefix;
        FoundText uri;
    };

    FoundText Search(const ElementNodeImpl& element, std::string_view prefix) const;

    const ElementNodeImpl& apex_;
    mutable DeclarationMap inherited_;  ///< By prefix.
    mutable bool inheritedKnown_ = false;
    mutable Answer last_;
};

}  // namespace Saml::Xml
