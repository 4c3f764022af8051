#include "oracle/profile/exclusive_form.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

namespace Oracle {
namespace {

std::string EscapedText(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '\r':
                escaped += "&#xD;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string EscapedValue(const std::string& value) {
    std::string escaped;
    for (const char c : EscapedText(value)) {
        switch (c) {
            case '"':
                escaped += "&quot;";
                break;
            case '\t':
                escaped += "&#x9;";
                break;
            case '\n':
                escaped += "&#xA;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

/// Split and joined again: a colon in front is lost.
std::string Rejoined(const std::string& name) {
    const std::string prefix = PrefixOf(name);
    return prefix.empty() ? LocalNameOf(name) : name;
}

/// Sort key and text of what stands in a start tag.
using Written = std::pair<std::string, std::string>;

std::string Assigned(const std::string& name, const std::string& value) {
    return " " + name + "=\"" + EscapedValue(value) + "\"";
}

// exc-c14n 3: a declaration is written where it is visibly utilized and not yet in force.
void Declare(const std::string& prefix, const Scope& inScope, Scope& rendered,
             std::vector<Written>& tag) {
    std::string uri;
    if (!Resolve(inScope, prefix, uri)) return;
    std::string before;
    const bool known = Resolve(rendered, prefix, before);
    if (known && before == uri) return;
    if (prefix.empty() && uri.empty() && !known) return;
    rendered[prefix] = uri;
    tag.emplace_back("  " + prefix, Assigned(prefix.empty() ? "xmlns" : "xmlns:" + prefix, uri));
}

void Render(const Markup& element, const Scope& outer, Scope rendered, const Markup* excluded,
            const std::vector<std::string>& prefixes, std::string& out) {
    const Scope inScope = ScopeIn(outer, element);
    std::vector<Written> tag;
    for (const std::string& prefix : prefixes)
        Declare(prefix, inScope, rendered, tag);
    Declare(element.Prefix(), inScope, rendered, tag);
    for (const Attribute& attribute : element.attributes) {
        const std::string prefix = PrefixOf(attribute.name);
        if (IsDeclaration(Rejoined(attribute.name))) continue;
        std::string uri;
        if (!prefix.empty()) {
            Declare(prefix, inScope, rendered, tag);
            Resolve(inScope, prefix, uri);
        }
        tag.emplace_back(uri + " " + LocalNameOf(attribute.name),
                         Assigned(Rejoined(attribute.name), attribute.value));
    }
    std::stable_sort(tag.begin(), tag.end(), [](const Written& left, const Written& right) {
        return left.first < right.first;
    });

    out += "<" + Rejoined(element.name);
    for (const Written& part : tag)
        out += part.second;
    out += ">";
    for (const Markup& child : element.children) {
        if (&child == excluded) continue;
        if (child.kind == MarkupKind::Text) out += EscapedText(child.text);
        if (child.kind == MarkupKind::EntityReference)
            out += EscapedText(*ReplacementOf(child.name));
        if (child.IsElement()) Render(child, inScope, rendered, excluded, {}, out);
    }
    out += "</" + Rejoined(element.name) + ">";
}

}  // namespace

std::string ExclusiveForm(const Markup& apex, const Scope& outer, const Markup* excluded,
                          const std::string& prefixList) {
    std::istringstream words(prefixList);
    std::vector<std::string> prefixes;
    for (std::string word; words >> word;)
        prefixes.push_back(word);
    std::string out;
    Render(apex, outer, {}, excluded, prefixes, out);
    return out;
}

}  // namespace Oracle
