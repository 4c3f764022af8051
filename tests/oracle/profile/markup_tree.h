#pragma once

#include "support/qualified_names.h"

#include <map>
#include <string>
#include <vector>

/// A document as a plain value: tests change it, write its text, and predict from it what a reader
/// must say. It shares nothing with the library's own tree.
namespace Oracle {

enum class MarkupKind { Document, Element, Text, CData, Comment, Instruction, EntityReference };

struct Attribute {
    std::string name;
    std::string value;
};

struct Markup {
    MarkupKind kind = MarkupKind::Element;
    std::string name;  ///< Of an element, as written; of an instruction its target; of an entity.
    std::string text;  ///< Character data, unescaped; of a comment what it says.
    std::vector<Attribute> attributes;  ///< In written order, declarations among them.
    std::vector<Markup> children;

    std::string Prefix() const;
    std::string LocalName() const;
    bool IsElement() const { return kind == MarkupKind::Element; }
    /// The value of the attribute that is written so; null without one.
    const std::string* Find(const std::string& attributeName) const;
};

Markup ElementOf(const std::string& name, std::vector<Attribute> attributes,
                 std::vector<Markup> children = {});
Markup TextOf(const std::string& text);
/// An element whose content is `text`.
Markup ElementWith(const std::string& name, std::vector<Attribute> attributes,
                   const std::string& text);
/// A text, CDATA section or comment, or an instruction or entity reference of this name.
Markup Leaf(MarkupKind kind, const std::string& content);

/// The text of a document; it begins with a DOCTYPE when an entity is referred to.
std::string Written(const Markup& document);

/// Why a document is no document: the tokenizer's words.
struct NotWellFormed {
    std::string message;
};

/// The document as a parser reports it: references replaced, adjacent runs of text joined.
/// \throws NotWellFormed
Markup AsParsed(const Markup& document);

/// What a reference to this entity stands for; null when nothing declares it.
const std::string* ReplacementOf(const std::string& entity);

/// Prefixes and what they are bound to; the default declaration's prefix is empty.
using Scope = std::map<std::string, std::string>;
Scope ScopeIn(const Scope& outer, const Markup& element);
/// Gives false for an unbound prefix.
bool Resolve(const Scope& scope, const std::string& prefix, std::string& uri);
/// What the element's own prefix is bound to, where `outer` holds around the element.
bool NamespaceOf(const Scope& outer, const Markup& element, std::string& uri);

using QualifiedNames::IsDeclaration;
using QualifiedNames::LocalNameOf;
using QualifiedNames::PrefixOf;
bool IsBlank(const std::string& text);

}  // namespace Oracle
