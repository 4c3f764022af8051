#include "oracle/canonicalization/tree_features.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace RandomTrees {
namespace {

/// Markup that is looked for, in values and in texts.
constexpr std::pair<const char*, const char*> kSpellings[] = {
    {"an ampersand", "&amp;"},
    {"a less-than sign", "&lt;"},
    {"a greater-than sign", "&gt;"},
    {"a greater-than sign as such", ">"},
    {"a quotation mark", "&quot;"},
    {"a quotation mark as such", "\""},
    {"an apostrophe", "&apos;"},
    {"an apostrophe as such", "'"},
    {"a tab by reference", "&#9;"},
    {"a tab by hexadecimal reference", "&#x9;"},
    {"a tab as such", "\t"},
    {"a line feed by reference", "&#10;"},
    {"a line feed by hexadecimal reference", "&#xA;"},
    {"a line feed as such", "\n"},
    {"a carriage return by reference", "&#13;"},
    {"a carriage return by hexadecimal reference", "&#xD;"},
    {"a carriage return as such", "\rx"},
    {"a line end of two characters", "\r\n"},
    {"a reference that is escaped itself", "&amp;#13;"},
    {"an escaped end of a CDATA section", "]]&gt;"},
    {"two bytes", "\xC3\xA9"},
    {"three bytes", "\xE2\x82\xAC"},
    {"four bytes", "\xF0\x9F\x98\x80"},
    {"two bytes by reference", "&#xE9;"},
    {"three bytes by reference", "&#8364;"},
    {"four bytes by reference", "&#x1F600;"},
    {"two blanks", "  "}};

constexpr const char* kOthers[] = {
    "a declared default namespace",
    "a default namespace declared again with the same URI",
    "a default namespace declared again with another URI",
    "an undeclared default namespace",
    "an undeclared default namespace where there is none",
    "a default namespace declared below its undeclaration",
    "an undeclared default namespace that a child without prefix needs",
    "a declared prefix",
    "a prefix declared again with the same URI",
    "a prefix declared again with another URI",
    "a prefix declared again with its first URI below another",
    "a prefix declared by siblings",
    "a prefix that its subtree does not use",
    "a prefix that is first used below its declaration",
    "two prefixes of one URI",
    "an element without namespace",
    "an element in the default namespace",
    "an element with a prefix",
    "an element or attribute whose prefix another declaration shadowed",
    "attributes in no namespace",
    "attributes in a namespace",
    "attributes of two prefixes of one URI",
    "attributes whose URIs sort other than their prefixes",
    "attributes of one local name in several namespaces",
    "attributes of one namespace",
    "an attribute in no namespace where there is a default one",
    "an empty value",
    "an xml: attribute",
    "an xml: attribute and others",
    "ten attributes",
    "a name that is not ASCII",
    "a prefix that is not ASCII",
    "a text of white space",
    "a comment",
    "a comment between texts",
    "a CDATA section",
    "a processing instruction around the root element",
    "an element with a short tag",
    "an empty element with two tags",
    "a depth of 50",
    "40 child elements",
};

std::string InValue(const char* name) {
    return std::string(name) + ", in a value";
}
std::string InText(const char* name) {
    return std::string(name) + ", in a text";
}

/// The features of one element after the other.
class Counting {
  public:
    explicit Counting(FeatureCounts& counts) : counts_(counts) {}

    void CountSurroundings(const Tree& tree) {
        Note("a processing instruction around the root element",
             (tree.prolog + tree.epilog).find("<?t") != std::string::npos);
    }

    void Count(const Element& element) {
        const Scope outer = element.parent != nullptr ? ScopeAt(*element.parent) : Scope();
        const Scope scope = ScopeBelow(outer, element);
        for (const Attribute& attribute : element.attributes)
            if (IsDeclaration(attribute)) CountDeclaration(element, attribute, outer);
        CountPrefixes(element, scope);
        CountAttributes(element, scope);
        CountNames(element);
        CountContent(element);
    }

  private:
    void Note(const std::string& feature, bool occurs = true) {
        std::size_t& count = counts_.at(feature);
        if (occurs) ++count;
    }

    void CountDeclaration(const Element& element, const Attribute& declaration,
                          const Scope& outer) {
        const std::string prefix = DeclaredPrefix(declaration);
        const auto before = outer.find(prefix);
        const bool isBound = before != outer.end();
        const bool isSame = isBound && before->second == declaration.value;
        if (!prefix.empty()) {
            Note("a declared prefix");
            Note("a prefix declared again with the same URI", isSame);
            Note("a prefix declared again with another URI", isBound && !isSame);
            Note("a prefix declared again with its first URI below another",
                 isBound && !isSame && WasBoundAbove(element, prefix, declaration.value));
            Note("a prefix declared by siblings", SiblingDeclares(element, declaration.name));
            const bool usedBelow = IsUsedBelow(element, prefix);
            Note("a prefix that its subtree does not use", !Uses(element, prefix) && !usedBelow);
            Note("a prefix that is first used below its declaration",
                 !Uses(element, prefix) && usedBelow);
        } else if (!declaration.value.empty()) {
            Note("a declared default namespace");
            Note("a default namespace declared again with the same URI", isSame);
            Note("a default namespace declared again with another URI", isBound && !isSame);
            Note("a default namespace declared below its undeclaration",
                 !isBound && IsBelowDefaultDeclaration(element));
        } else {
            Note("an undeclared default namespace", isBound);
            Note("an undeclared default namespace where there is none", !isBound);
            Note("an undeclared default namespace that a child without prefix needs",
                 isBound && !PrefixOf(element.name).empty() && HasChildWithoutPrefix(element));
        }
    }

    static bool WasBoundAbove(const Element& element, const std::string& prefix,
                              const std::string& uri) {
        for (const Element* above = element.parent; above != nullptr; above = above->parent) {
            const Scope scope = ScopeAt(*above);
            const auto found = scope.find(prefix);
            if (found != scope.end() && found->second == uri) return true;
        }
        return false;
    }

    static bool Declares(const Element& element, const std::string& name) {
        return std::any_of(element.attributes.begin(), element.attributes.end(),
                           [&name](const Attribute& other) { return other.name == name; });
    }

    static bool SiblingDeclares(const Element& element, const std::string& name) {
        if (element.parent == nullptr) return false;
        const auto& content = element.parent->content;
        return std::any_of(content.begin(), content.end(), [&](const Content& one) {
            return one.element && one.element.get() != &element && Declares(*one.element, name);
        });
    }

    static bool IsUsedBelow(const Element& element, const std::string& prefix) {
        return std::any_of(element.content.begin(), element.content.end(), [&](const Content& one) {
            return one.element && !Declares(*one.element, "xmlns:" + prefix) &&
                   (Uses(*one.element, prefix) || IsUsedBelow(*one.element, prefix));
        });
    }

    static bool IsBelowDefaultDeclaration(const Element& element) {
        for (const Element* above = element.parent; above != nullptr; above = above->parent)
            if (ScopeAt(*above).count("") != 0) return true;
        return false;
    }

    static bool HasChildWithoutPrefix(const Element& element) {
        return std::any_of(element.content.begin(), element.content.end(), [](const Content& one) {
            return one.element && PrefixOf(one.element->name).empty() &&
                   !Declares(*one.element, "xmlns");
        });
    }

    void CountPrefixes(const Element& element, const Scope& scope) {
        std::set<std::string> uris;
        for (const auto& [prefix, uri] : scope)
            uris.insert(uri);
        Note("two prefixes of one URI", uris.size() != scope.size());
        const std::string prefix = PrefixOf(element.name);
        Note("an element with a prefix", !prefix.empty());
        Note("an element in the default namespace", prefix.empty() && scope.count("") != 0);
        Note("an element without namespace", prefix.empty() && scope.count("") == 0);
        bool isShadowing = false;
        for (const auto& [bound, uri] : scope)
            if (!bound.empty() && Uses(element, bound) && IsShadowing(element, bound, uri))
                isShadowing = true;
        Note("an element or attribute whose prefix another declaration shadowed", isShadowing);
    }

    static bool IsShadowing(const Element& element, const std::string& prefix,
                            const std::string& uri) {
        for (const Element* above = element.parent; above != nullptr; above = above->parent) {
            const Scope scope = ScopeAt(*above);
            const auto found = scope.find(prefix);
            if (found != scope.end() && found->second != uri) return true;
        }
        return false;
    }

    void CountAttributes(const Element& element, const Scope& scope) {
        std::vector<const Attribute*> plain, qualified, xml;
        for (const Attribute& attribute : element.attributes) {
            if (IsDeclaration(attribute)) continue;
            CountSpellings(attribute.value, InValue);
            Note("an empty value", attribute.value.empty());
            const std::string prefix = PrefixOf(attribute.name);
            (prefix.empty() ? plain : prefix == "xml" ? xml : qualified).push_back(&attribute);
        }
        Note("attributes in no namespace", plain.size() > 1);
        Note("attributes in a namespace", qualified.size() > 1);
        Note("an attribute in no namespace where there is a default one",
             !plain.empty() && scope.count("") != 0);
        Note("an xml: attribute", !xml.empty());
        Note("an xml: attribute and others", !xml.empty() && !plain.empty() && !qualified.empty());
        Note("ten attributes", plain.size() + qualified.size() + xml.size() >= 10);
        bool ofOneUri = false, ofOnePrefix = false, sortedOtherwise = false, sameLocalName = false;
        for (const Attribute* left : qualified)
            for (const Attribute* right : qualified) {
                const std::string leftPrefix = PrefixOf(left->name);
                const std::string rightPrefix = PrefixOf(right->name);
                const std::string& leftUri = scope.at(leftPrefix);
                const std::string& rightUri = scope.at(rightPrefix);
                if (leftPrefix < rightPrefix && leftUri == rightUri) ofOneUri = true;
                if (left != right && leftPrefix == rightPrefix) ofOnePrefix = true;
                if (leftPrefix < rightPrefix && leftUri > rightUri) sortedOtherwise = true;
                if (left != right && LocalNameOf(left->name) == LocalNameOf(right->name))
                    sameLocalName = true;
            }
        Note("attributes of two prefixes of one URI", ofOneUri);
        Note("attributes of one namespace", ofOnePrefix);
        Note("attributes whose URIs sort other than their prefixes", sortedOtherwise);
        Note("attributes of one local name in several namespaces", sameLocalName);
    }

    void CountNames(const Element& element) {
        const auto isAscii = [](const std::string& name) {
            return std::all_of(name.begin(), name.end(),
                               [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
        };
        Note("a name that is not ASCII", !isAscii(LocalNameOf(element.name)));
        Note("a prefix that is not ASCII", !isAscii(PrefixOf(element.name)));
    }

    void CountContent(const Element& element) {
        Note("a depth of 50", element.depth == 50);
        Note("an element with a short tag", element.hasShortTag);
        Note("an empty element with two tags", element.content.empty() && !element.hasShortTag);
        std::size_t children = 0;
        for (std::size_t i = 0; i != element.content.size(); ++i) {
            const Content& content = element.content[i];
            if (content.element) ++children;
            Note("a comment", content.kind == Content::Kind::Comment);
            Note("a CDATA section", content.kind == Content::Kind::CData);
            Note("a comment between texts", content.kind == Content::Kind::Comment &&
                                                IsText(element, i + 1) && i != 0 &&
                                                IsText(element, i - 1));
            if (content.kind != Content::Kind::Text) continue;
            CountSpellings(content.markup, InText);
            Note("a text of white space",
                 !content.markup.empty() &&
                     content.markup.find_first_not_of(" \t\r\n") == std::string::npos);
        }
        Note("40 child elements", children >= 40);
    }

    static bool IsText(const Element& element, std::size_t index) {
        return index < element.content.size() && element.content[index].kind == Content::Kind::Text;
    }

    void CountSpellings(const std::string& markup, std::string (*where)(const char*)) {
        for (const auto& [name, spelling] : kSpellings)
            Note(where(name), markup.find(spelling) != std::string::npos);
    }

    FeatureCounts& counts_;
};

}  // namespace

FeatureCounts NoFeatures() {
    FeatureCounts counts;
    for (const auto& [name, spelling] : kSpellings)
        counts[InValue(name)] = counts[InText(name)] = 0;
    for (const char* name : kOthers)
        counts[name] = 0;
    return counts;
}

void CountFeatures(const Tree& tree, FeatureCounts& counts) {
    Counting counting(counts);
    counting.CountSurroundings(tree);
    for (const Element* element : tree.elements)
        counting.Count(*element);
}

}  // namespace RandomTrees
