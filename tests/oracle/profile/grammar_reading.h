#pragma once

#include "oracle/profile/markup_tree.h"

#include <string>
#include <vector>

/// Reads a tree by the rows of `assertion_grammar.h`.
namespace Oracle {

/// The class that is thrown, by its whole name, and its message.
struct Refusal {
    std::string exception;
    std::string message;
};

/// Holds `assertion` against the grammar: the first violation in reading order decides.
/// \throws Refusal
void ExpectGrammar(const Markup& assertion);

/// The children that count: all but comments and blank text.
std::vector<const Markup*> Visible(const Markup& element);
/// The text of an element that the grammar accepted as one with text.
std::string TextIn(const Markup& element);
/// True for an element that names this type by its `xsi:type`, which `scope` resolves.
bool HasType(const Markup& element, const Scope& scope, const std::string& uri,
             const std::string& localName);

}  // namespace Oracle
