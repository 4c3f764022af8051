#include "oracle/profile/assertion_grammar.h"

#include "oracle/profile/assertion_neighbours.h"
#include "oracle/profile/full_assertion.h"
#include "oracle/profile/grammar_reading.h"

#include <gtest/gtest.h>

#include <ctime>
#include <iostream>
#include <set>
#include <string>

// The neighbours are worth what they break: every rule of the grammar is broken by one of them.
namespace {

using namespace Oracle;
using Grammar::AttributeRow;
using Grammar::Attributes;
using Grammar::Card;
using Grammar::ChildRow;
using Grammar::Content;
using Grammar::ElementRow;
using Grammar::Wording;

/// What the grammar alone says of all neighbours.
std::set<std::string> SaidOfNeighbours() {
    std::set<std::string> said;
    const long long now = std::time(nullptr);
    for (const Confirmation confirmation : {Confirmation::Bearer, Confirmation::HolderOfKey}) {
        const Markup base = FullAssertion(confirmation, now);
        for (const FaultFamily& family : FaultFamilies()) {
            if (family.name == std::string("NeutralContent")) continue;  // breaks nothing new
            family.each(base, [&](const Neighbour& neighbour) {
                try {
                    ExpectGrammar(AsParsed(neighbour.document).children.front());
                } catch (const Refusal& refusal) {
                    said.insert(refusal.message);
                } catch (const NotWellFormed&) {  // nothing that the grammar sees
                }
            });
        }
    }
    return said;
}

/// A restriction of another type is nobody's, so these lose no type.
bool IsChosenByType(const ElementRow& row) {
    return row.localName == std::string("Condition");
}

std::set<std::string> AttributeRefusals(const ElementRow& row) {
    const std::string name = row.localName;
    std::set<std::string> refusals;
    for (const AttributeRow& attribute : row.attributes) {
        const std::string called = attribute.name;
        const bool required = attribute.presence == Grammar::Presence::Required;
        if (required && row.rule == Attributes::AtLeast)
            refusals.insert("Element '" + name + "' must have at least one attribute: '" + called +
                            "'");
        else if (required && !IsChosenByType(row))
            refusals.insert("Node '" + name + " is missing required attribute '" + called + "'");
        if (attribute.value == Grammar::Value::Date)
            refusals.insert(name + "/@" + called + " is not a date");
        if (attribute.value == Grammar::Value::Count)
            refusals.insert(name + "/@" + called + " is not a non-negative integer.");
    }
    if (row.rule == Attributes::Plain)
        refusals.insert("Unexpected attributes on element '" + name + "'");
    if (row.rule == Attributes::WithType)
        refusals.insert("Unexpected attribute 'extra' on element '" + name + "'");
    return refusals;
}

std::set<std::string> ContentRefusals(const ElementRow& row) {
    const bool isToken = row.wording == Wording::Token;
    const std::string name = row.localName;
    switch (row.content) {
        case Content::Base64:
            return {isToken ? "Invalid Base64" : "Malformed base64 data",
                    "Element '" + name +
                        "' must only have textual content (but has extra children or is empty)."};
        case Content::Text:
        case Content::MaybeText:
            return {"Element '" + name +
                    "' must only have textual content (but has extra children or is empty)."};
        case Content::Nothing:
            return {"Element '" + name + (isToken ? "' must be empty" : "' may not have children")};
        default:
            return {};
    }
}

std::set<std::string> ChildRefusals(const ElementRow& row) {
    std::set<std::string> refusals;
    if (row.behindLast != nullptr) refusals.insert(row.behindLast);
    if (row.content != Content::Children) return refusals;
    for (const ChildRow& child : row.children) {
        if (child.card == Card::IfNamed) continue;
        const ElementRow& of = Grammar::RowsOf(child.key).front();
        if (child.whenNoElement != nullptr) refusals.insert(child.whenNoElement);
        // Where the words change with the child, they are the child's.
        if (of.wording != row.wording) continue;
        refusals.insert(std::string("Expected element '") + of.localName + "' not found.");
        refusals.insert(of.wording == Wording::Token
                            ? std::string("Element '") + of.localName + "' has unexpected namespace"
                            : std::string("Element '") + of.localName +
                                  " has unexpected namespace: 'urn:example:stray'");
    }
    return refusals;
}

TEST(AssertionGrammar, IsBrokenInEveryRuleByTheNeighbours) {
    const std::set<std::string> said = SaidOfNeighbours();
    int rules = 0;
    for (const auto& [key, rows] : Grammar::Rows())
        for (const ElementRow& row : rows)
            for (const auto& refusals :
                 {AttributeRefusals(row), ContentRefusals(row), ChildRefusals(row)})
                for (const std::string& refusal : refusals) {
                    ++rules;
                    const char* const prefix =
                        row.wording == Wording::Signature ? "Signature syntax error: " : "";
                    EXPECT_EQ(said.count(prefix + refusal), 1U) << key << ": " << refusal;
                }
    std::cout << rules << " rules looked for in " << said.size() << " different refusals\n";
    RecordProperty("rules", rules);
    EXPECT_GT(rules, 100);
}

}  // namespace
