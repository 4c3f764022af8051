#include "oracle/profile/markup_tree.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Oracle {
namespace {

// What the tokenizer says (expat's error table).
constexpr char kNoElement[] = "no element found";
constexpr char kSecondRoot[] = "junk after document element";
constexpr char kRepeatedAttribute[] = "duplicate attribute";
constexpr char kUndeclaredEntity[] = "undefined entity";
/// The document refused a node, and the parser stopped.
constexpr char kStopped[] = "parsing aborted";

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '&')
            escaped += "&amp;";
        else if (c == '<')
            escaped += "&lt;";
        else if (c == '>')
            escaped += "&gt;";
        else if (c == '"')
            escaped += "&quot;";
        else
            escaped += c;
    }
    return escaped;
}

bool HoldsReference(const Markup& node) {
    return node.kind == MarkupKind::EntityReference ||
           std::any_of(node.children.begin(), node.children.end(), HoldsReference);
}

/// "amp" needs no declaration (XML 1.0, 4.6).
std::string DocumentType() {
    return "<!DOCTYPE saml:Assertion [<!ENTITY blank \" \"><!ENTITY stray \"stray!\">"
           "<!ENTITY void \"\">]>";
}

void Append(const Markup& node, std::string& out) {
    switch (node.kind) {
        case MarkupKind::Text:
            out += Escaped(node.text);
            return;
        case MarkupKind::CData:
            out += "<![CDATA[" + node.text + "]]>";
            return;
        case MarkupKind::Comment:
            out += "<!--" + node.text + "-->";
            return;
        case MarkupKind::Instruction:
            out += "<?" + node.name + "?>";
            return;
        case MarkupKind::EntityReference:
            out += "&" + node.name + ";";
            return;
        case MarkupKind::Document:
            if (HoldsReference(node)) out += DocumentType();
            for (const Markup& child : node.children)
                Append(child, out);
            return;
        case MarkupKind::Element:
            break;
    }
    out += "<" + node.name;
    for (const Attribute& attribute : node.attributes)
        out += " " + attribute.name + "=\"" + Escaped(attribute.value) + "\"";
    out += ">";
    for (const Markup& child : node.children)
        Append(child, out);
    out += "</" + node.name + ">";
}

void CheckAttributesDiffer(const Markup& element) {
    std::set<std::string> names;
    for (const Attribute& attribute : element.attributes)
        if (!names.insert(attribute.name).second) throw NotWellFormed{kRepeatedAttribute};
}

void AddText(std::vector<Markup>& children, const std::string& text) {
    if (text.empty()) return;
    if (!children.empty() && children.back().kind == MarkupKind::Text)
        children.back().text += text;
    else
        children.push_back(TextOf(text));
}

Markup ParsedElement(const Markup& element) {
    CheckAttributesDiffer(element);
    Markup parsed = ElementOf(element.name, element.attributes);
    for (const Markup& child : element.children) {
        if (child.kind == MarkupKind::Instruction) throw NotWellFormed{kStopped};
        if (child.kind == MarkupKind::EntityReference) {
            const std::string* const replacement = ReplacementOf(child.name);
            if (replacement == nullptr) throw NotWellFormed{kUndeclaredEntity};
            AddText(parsed.children, *replacement);
        } else if (child.kind == MarkupKind::Text) {
            AddText(parsed.children, child.text);
        } else if (child.IsElement()) {
            parsed.children.push_back(ParsedElement(child));
        } else {
            parsed.children.push_back(child);
        }
    }
    return parsed;
}

}  // namespace

bool IsBlank(const std::string& text) {
    return text.find_first_not_of("\t\n\r ") == std::string::npos;
}

std::string Markup::Prefix() const {
    return PrefixOf(name);
}

std::string Markup::LocalName() const {
    return LocalNameOf(name);
}

const std::string* Markup::Find(const std::string& attributeName) const {
    for (const Attribute& attribute : attributes)
        if (attribute.name == attributeName) return &attribute.value;
    return nullptr;
}

Markup ElementOf(const std::string& name, std::vector<Attribute> attributes,
                 std::vector<Markup> children) {
    return {MarkupKind::Element, name, {}, std::move(attributes), std::move(children)};
}

Markup TextOf(const std::string& text) {
    return {MarkupKind::Text, {}, text, {}, {}};
}

Markup ElementWith(const std::string& name, std::vector<Attribute> attributes,
                   const std::string& text) {
    return ElementOf(name, std::move(attributes), {TextOf(text)});
}

Markup Leaf(MarkupKind kind, const std::string& content) {
    if (kind == MarkupKind::Instruction || kind == MarkupKind::EntityReference)
        return {kind, content, {}, {}, {}};
    return {kind, {}, content, {}, {}};
}

std::string Written(const Markup& document) {
    std::string text;
    Append(document, text);
    return text;
}

Markup AsParsed(const Markup& document) {
    Markup parsed{MarkupKind::Document, {}, {}, {}, {}};
    for (const Markup& child : document.children) {
        if (!child.IsElement()) continue;
        if (!parsed.children.empty()) throw NotWellFormed{kSecondRoot};
        parsed.children.push_back(ParsedElement(child));
    }
    if (parsed.children.empty()) throw NotWellFormed{kNoElement};
    return parsed;
}

const std::string* ReplacementOf(const std::string& entity) {
    static const std::map<std::string, std::string> entities = {
        {"amp", "&"}, {"blank", " "}, {"stray", "stray!"}, {"void", ""}};
    const auto found = entities.find(entity);
    return found == entities.end() ? nullptr : &found->second;
}

Scope ScopeIn(const Scope& outer, const Markup& element) {
    Scope scope = outer;
    for (const Attribute& attribute : element.attributes) {
        if (attribute.name == "xmlns")
            scope[""] = attribute.value;
        else if (IsDeclaration(attribute.name))
            scope[LocalNameOf(attribute.name)] = attribute.value;
    }
    return scope;
}

bool Resolve(const Scope& scope, const std::string& prefix, std::string& uri) {
    const auto binding = scope.find(prefix);
    if (binding == scope.end()) return false;
    uri = binding->second;
    return true;
}

bool NamespaceOf(const Scope& outer, const Markup& element, std::string& uri) {
    const std::string prefix = element.Prefix();
    const std::string* const own = element.Find(prefix.empty() ? "xmlns" : "xmlns:" + prefix);
    if (own == nullptr) return Resolve(outer, prefix, uri);
    uri = *own;
    return true;
}

}  // namespace Oracle
