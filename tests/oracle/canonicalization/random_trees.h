#pragma once

#include "support/dice.h"
#include "support/qualified_names.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// Random documents for canonicalization, as trees of markup: names, values and texts stand in them
/// as they are spelled, references and all.
///
/// They hold only what this library and the recommendations canonicalize alike. In particular
/// namespace URIs are absolute, and where an element has an `xml:` attribute its others are such
/// that its place among them is the same by either order.
namespace RandomTrees {

/// An attribute or a namespace declaration.
struct Attribute {
    std::string name;
    std::string value;  ///< Without the quotation marks.
    std::string space;  ///< In front of the name.
    char quote;
};

struct Element;

struct Content {
    enum class Kind { Text, Element, Comment, CData };
    Kind kind;
    std::string markup;  ///< Of everything but an element.
    std::unique_ptr<Element> element = nullptr;
};

struct Element {
    std::string name;
    std::vector<Attribute> attributes;
    std::vector<Content> content;
    bool hasShortTag = false;  ///< "<a/>"; only without content.
    const Element* parent = nullptr;
    std::size_t number = 0;  ///< In document order; the root is 0.
    std::size_t depth = 1;
};

struct Tree {
    std::string prolog;
    std::unique_ptr<Element> root;
    std::string epilog;
    std::vector<const Element*> elements;  ///< By number.
};

/// Whether there are any. Where there are none, they were never written.
enum class CDataSections { No, Yes };

Tree Grow(Dice& dice, CDataSections sections);
/// The text of `tree`.
std::string Write(const Tree& tree, CDataSections sections);

using QualifiedNames::LocalNameOf;
using QualifiedNames::PrefixOf;
bool IsDeclaration(const Attribute& attribute);
/// What it declares; empty for the default namespace.
std::string DeclaredPrefix(const Attribute& declaration);

/// Namespace URIs by prefix. The default namespace has the empty prefix; it is missing when there
/// is none.
using Scope = std::map<std::string, std::string>;
/// What is in scope for the content of `element`.
Scope ScopeAt(const Element& element);
/// `scope` with the declarations of `element`.
Scope ScopeBelow(Scope scope, const Element& element);

/// True when `prefix`, which is not empty, is that of the element or of one of its attributes.
bool Uses(const Element& element, const std::string& prefix);

/// The prefixes that a `PrefixList` at `apex` may name: those for which it makes no difference
/// whether the list counts at the apex or at every element, because wherever below the apex the
/// prefix gets another meaning, the declaring element uses it itself.
std::vector<std::string> PrefixesForAList(const Element& apex);

/// True when an element above has an `xml:` attribute. Canonical XML 1.0 gives it to the apex.
bool IsBelowXmlAttributes(const Element& element);

}  // namespace RandomTrees
