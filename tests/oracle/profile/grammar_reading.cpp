#include "oracle/profile/grammar_reading.h"

#include "oracle/profile/assertion_grammar.h"
#include "oracle/profile/plain_values.h"

#include <algorithm>

namespace Oracle {
namespace {

using Grammar::AttributeRow;
using Grammar::Attributes;
using Grammar::Card;
using Grammar::ChildRow;
using Grammar::Content;
using Grammar::ElementRow;
using Grammar::Presence;
using Grammar::Wording;

[[noreturn]] void Refuse(Wording wording, const std::string& message) {
    const char* const prefix = wording == Wording::Signature ? "Signature syntax error: " : "";
    throw Refusal{"Saml::ParseException", prefix + message};
}

/// The `xsi:type`, whatever its prefix; the first by name should there be several.
const Attribute* TypeOf(const Markup& element, const Scope& scope) {
    const Attribute* type = nullptr;
    for (const Attribute& attribute : element.attributes) {
        std::string uri;
        if (IsDeclaration(attribute.name) || LocalNameOf(attribute.name) != "type") continue;
        if (PrefixOf(attribute.name).empty()) continue;
        if (!Resolve(scope, PrefixOf(attribute.name), uri) || uri != Grammar::kInstanceNamespace)
            continue;
        if (type == nullptr || attribute.name < type->name) type = &attribute;
    }
    return type;
}

/// The attribute that a row's attribute stands for.
const Attribute* Find(const Markup& element, const Scope& scope, const AttributeRow& row) {
    if (row.name == std::string(Grammar::kType)) return TypeOf(element, scope);
    for (const Attribute& attribute : element.attributes)
        if (attribute.name == row.name) return &attribute;
    return nullptr;
}

bool IsListed(const Markup& element, const Attribute& attribute, const Scope& scope,
              const ElementRow& row) {
    return std::any_of(row.attributes.begin(), row.attributes.end(), [&](const AttributeRow& one) {
        return Find(element, scope, one) == &attribute;
    });
}

void CheckAttributes(const Markup& element, const Scope& scope, const ElementRow& row) {
    if (row.rule == Attributes::NotExamined) return;
    const std::string name = element.LocalName();
    for (const AttributeRow& attribute : row.attributes) {
        if (attribute.presence == Presence::Optional) continue;
        if (Find(element, scope, attribute) != nullptr) continue;
        if (row.rule == Attributes::AtLeast)
            Refuse(row.wording, "Element '" + name + "' must have at least one attribute: '" +
                                    attribute.name + "'");
        Refuse(row.wording,
               "Node '" + name + " is missing required attribute '" + attribute.name + "'");
    }
    if (row.rule == Attributes::AtLeast) return;
    for (const Attribute& attribute : element.attributes) {
        if (IsDeclaration(attribute.name) || IsListed(element, attribute, scope, row)) continue;
        if (row.rule == Attributes::WithType)
            Refuse(row.wording,
                   "Unexpected attribute '" + attribute.name + "' on element '" + name + "'");
        Refuse(row.wording, "Unexpected attributes on element '" + name + "'");
    }
}

void CheckValues(const Markup& element, const Scope& scope, const ElementRow& row) {
    const std::string name = element.LocalName();
    for (const AttributeRow& attribute : row.attributes) {
        const Attribute* const found = Find(element, scope, attribute);
        if (found == nullptr) continue;
        if (attribute.value == Grammar::Value::Date && !InstantOf(found->value))
            Refuse(row.wording, name + "/@" + attribute.name + " is not a date");
        if (attribute.value == Grammar::Value::Count && !CountOf(found->value))
            Refuse(row.wording, name + "/@" + attribute.name + " is not a non-negative integer.");
    }
}

/// The element test without words.
bool IsNamed(const Markup* node, const Scope& outer, const ElementRow& row) {
    if (node == nullptr || !node->IsElement() || node->LocalName() != row.localName) return false;
    std::string uri;
    return NamespaceOf(outer, *node, uri) && uri == row.namespaceUri;
}

void ExpectElement(const Markup* node, const Scope& outer, const ElementRow& row) {
    if (node == nullptr || !node->IsElement() || node->LocalName() != row.localName)
        Refuse(row.wording, std::string("Expected element '") + row.localName + "' not found.");
    if (IsNamed(node, outer, row)) return;
    if (row.wording == Wording::Token)
        Refuse(row.wording,
               std::string("Element '") + row.localName + "' has unexpected namespace");
    std::string uri;
    NamespaceOf(outer, *node, uri);
    Refuse(row.wording,
           std::string("Element '") + row.localName + " has unexpected namespace: '" + uri + "'");
}

void CheckText(const Markup& element, const ElementRow& row) {
    const std::vector<const Markup*> children = Visible(element);
    if (children.empty() && row.content == Content::MaybeText) return;
    if (children.size() != 1 || children[0]->kind != MarkupKind::Text)
        Refuse(row.wording, "Element '" + element.LocalName() +
                                "' must only have textual content (but has extra children or is "
                                "empty).");
    if (row.content == Content::Base64 && !FromBase64(children[0]->text))
        Refuse(row.wording,
               row.wording == Wording::Token ? "Invalid Base64" : "Malformed base64 data");
}

void CheckNothing(const Markup& element, const ElementRow& row) {
    if (Visible(element).empty()) return;
    const std::string name = "Element '" + element.LocalName() + "'";
    Refuse(row.wording,
           name + (row.wording == Wording::Token ? " must be empty" : " may not have children"));
}

/// One reading of one assertion.
class Reading {
  public:
    /// For the whole assertion's `ID`.
    explicit Reading(const Markup& assertion) : assertion_(assertion) {}

    void Read(const Markup* node, const Scope& outer, const std::string& key) {
        const std::vector<ElementRow>& rows = Grammar::RowsOf(key);
        ExpectElement(node, outer, rows.front());
        const Scope scope = ScopeIn(outer, *node);
        CheckAttributes(*node, scope, rows.front());
        CheckValues(*node, scope, rows.front());
        const ElementRow& row = Chosen(*node, rows);
        ExpectType(*node, scope, row);
        ReadContent(*node, scope, row);
        if (row.key == std::string("Signature")) ExpectCoverage(*node);
    }

  private:
    static const ElementRow& Chosen(const Markup& element, const std::vector<ElementRow>& rows) {
        const Grammar::Choice& choice = rows.front().choice;
        if (choice.attribute == nullptr) return rows.front();
        const std::string value = *element.Find(choice.attribute);
        for (const ElementRow& row : rows)
            if (row.choice.value == value) return row;
        Refuse(rows.front().wording, choice.otherwiseBefore + value + choice.otherwiseBehind);
    }

    static void ExpectType(const Markup& element, const Scope& scope, const ElementRow& row) {
        const Grammar::Type& type = row.type;
        if (type.otherwiseBefore == nullptr) return;
        if (HasType(element, scope, type.namespaceUri, type.localName)) return;
        Refuse(row.wording,
               type.otherwiseBefore + TypeOf(element, scope)->value + type.otherwiseBehind);
    }

    void ReadContent(const Markup& element, const Scope& scope, const ElementRow& row) {
        switch (row.content) {
            case Content::Children:
                ReadChildren(element, scope, row);
                return;
            case Content::AnyOrder:
                ReadRestrictions(element, scope, row);
                return;
            case Content::Selected:
                ReadSelected(element, scope, row);
                return;
            case Content::Text:
            case Content::Base64:
            case Content::MaybeText:
                CheckText(element, row);
                return;
            case Content::Nothing:
                CheckNothing(element, row);
                return;
            case Content::NotExamined:
                return;
        }
    }

    void ReadChildren(const Markup& element, const Scope& scope, const ElementRow& row) {
        const std::vector<const Markup*> children = Visible(element);
        std::size_t next = 0;
        const auto current = [&] { return next < children.size() ? children[next] : nullptr; };
        for (const ChildRow& child : row.children) {
            if (child.card == Card::IfNamed &&
                !IsNamed(current(), scope, Grammar::RowsOf(child.key).front()))
                continue;
            if ((child.card == Card::IfPresent || child.card == Card::Any) && current() == nullptr)
                continue;
            if (child.whenNoElement != nullptr && (current() == nullptr || !current()->IsElement()))
                Refuse(row.wording, child.whenNoElement);
            const bool all = child.card == Card::OneOrMore || child.card == Card::Any;
            do {
                Read(current(), scope, child.key);
                ++next;
            } while (all && current() != nullptr);
        }
        if (current() != nullptr && row.behindLast != nullptr) Refuse(row.wording, row.behindLast);
    }

    void ReadRestrictions(const Markup& element, const Scope& scope, const ElementRow& row) {
        std::vector<ChildRow> untried = row.children;
        for (const Markup* const node : Visible(element)) {
            const auto accepting =
                std::find_if(untried.begin(), untried.end(), [&](const ChildRow& child) {
                    const ElementRow& candidate = Grammar::RowsOf(child.key).front();
                    return IsNamed(node, scope, candidate) &&
                           (candidate.type.localName == nullptr ||
                            HasType(*node, ScopeIn(scope, *node), candidate.type.namespaceUri,
                                    candidate.type.localName));
                });
            if (accepting == untried.end())
                Refuse(row.wording,
                       row.behindLast + (node->IsElement() ? ": " + node->LocalName() : ""));
            const std::string key = accepting->key;
            untried.erase(accepting);
            Read(node, scope, key);
        }
    }

    void ReadSelected(const Markup& element, const Scope& scope, const ElementRow& row) {
        for (const Markup* const node : Visible(element))
            if (IsNamed(node, scope, Grammar::RowsOf(row.children.front().key).front()))
                Read(node, scope, row.children.front().key);
    }

    /// One reference at least must speak of the whole assertion.
    void ExpectCoverage(const Markup& signature) const {
        const std::string whole = "#" + *assertion_.Find("ID");
        for (const Markup* const reference : Visible(*Visible(signature).front())) {
            if (reference->LocalName() != "Reference") continue;
            const std::string* const uri = reference->Find("URI");
            if (uri == nullptr || uri->empty() || *uri == whole) return;
        }
        Refuse(Wording::Token, "Token's signature must cover the entire token");
    }

    const Markup& assertion_;
};

}  // namespace

void ExpectGrammar(const Markup& assertion) {
    Reading(assertion).Read(&assertion, {}, "Assertion");
}

std::vector<const Markup*> Visible(const Markup& element) {
    std::vector<const Markup*> visible;
    for (const Markup& child : element.children) {
        if (child.kind == MarkupKind::Comment) continue;
        if (child.kind == MarkupKind::Text && IsBlank(child.text)) continue;
        if (child.kind == MarkupKind::EntityReference && IsBlank(*ReplacementOf(child.name)))
            continue;
        visible.push_back(&child);
    }
    return visible;
}

std::string TextIn(const Markup& element) {
    const std::vector<const Markup*> children = Visible(element);
    return children.empty() ? std::string() : children.front()->text;
}

bool HasType(const Markup& element, const Scope& scope, const std::string& uri,
             const std::string& localName) {
    const Attribute* const type = TypeOf(element, scope);
    std::string found;
    return type != nullptr && Resolve(scope, PrefixOf(type->value), found) && found == uri &&
           LocalNameOf(type->value) == localName;
}

}  // namespace Oracle
