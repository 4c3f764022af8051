#pragma once

#include "saml/foundations.h"
#include "saml/token/attribute_value.h"
#include "saml/xml/element_rules.h"
#include "saml/xml/filtered_node_cursor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Saml {

class AssertionCursor;

/// One element of an assertion, with the strict rules for its attributes and its content. Every
/// refusal is a `ParseException`. A view: the tree and the context must outlive it.
class AssertionElement {
  public:
    AssertionElement(Xml::ElementNodeImpl& node, const Xml::NamespaceContext& namespaces) noexcept
        : node_(&node), namespaces_(&namespaces) {}

    Xml::ElementNodeImpl& Node() const noexcept { return *node_; }
    const std::string& LocalName() const noexcept { return node_->LocalName(); }

    bool Is(std::string_view localName, std::string_view namespaceUri) const;
    void Expect(std::string_view localName, std::string_view namespaceUri) const;

    /// Refuses the element when one of `required` is missing or when anything else than these,
    /// `optional` and namespace declarations is there. Names are compared as written.
    void CheckAttributes(Xml::AttributeNames required, Xml::AttributeNames optional = {}) const;
    /// The same for an element that must have an `xsi:type`, which is found by its namespace
    /// whatever its prefix.
    void CheckTypedAttributes(Xml::AttributeNames optional = {}) const;

    bool HasAttribute(std::string_view name) const;
    /// Empty when there is none.
    std::string Attribute(std::string_view name) const;
    /// Refuses an absent value like one that is no date.
    DateTime Date(std::string_view name) const;
    /// The `Count`, when there is one.
    std::optional<std::uint64_t> Count() const;

    /// True when the `xsi:type` names this type: a qualified name whose prefix, or the lack of it,
    /// is resolved by the declarations in scope.
    bool HasType(std::string_view localName, std::string_view namespaceUri) const;
    /// The `xsi:type` as written; empty when there is none.
    std::string TypeAsWritten() const;

    /// The text of an element that holds one text and nothing else but comments. Texts with
    /// something between them are never joined, and none of them is passed over, blank or not:
    /// "admin<!-- -->.evil" and " <!-- -->admin" are refused, neither must read as "admin".
    const std::string& Text() const;
    /// The same, and the empty value for an element without any child but blanks and comments.
    AttributeValue Value() const;
    /// True when there is no child but blanks and comments.
    bool IsEmpty() const;
    void ExpectEmpty() const;
    AssertionCursor Children() const;

  private:
    Xml::TextNodeImpl* LoneText() const;
    Xml::TextNodeImpl& OnlyText() const;
    std::optional<Xml::Attribute> FindType() const;

    Xml::ElementNodeImpl* node_;
    const Xml::NamespaceContext* namespaces_;
};

/// A place among the children of an element, in document order. Blanks and comments are invisible;
/// every other node counts, elements marked as nil, too: what is signed does not go unread.
class AssertionCursor {
  public:
    /// Stands on the first child of `parent`.
    AssertionCursor(Xml::ElementNodeImpl& parent, const Xml::NamespaceContext& namespaces);

    bool AtEnd() const noexcept { return place_.Current() == nullptr; }
    /// Refuses, with `message`, any child that is left.
    void ExpectEnd(const char* message) const;

    /// Gives the current child, which must be the named element, and moves on.
    AssertionElement Take(std::string_view localName, std::string_view namespaceUri);
    /// The same for an element that may be missing: any other node stays for the next rule.
    std::optional<AssertionElement> TakeIf(std::string_view localName,
                                           std::string_view namespaceUri);
    /// The same for any element; nothing at the end and at a node of another kind.
    std::optional<AssertionElement> TakeElement();

  private:
    Xml::Security::FilteredNodeCursor place_;
    const Xml::NamespaceContext* namespaces_;
};

}  // namespace Saml
