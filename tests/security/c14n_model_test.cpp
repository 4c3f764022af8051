#include "saml/security/c14n_exclusive.h"
#include "saml/security/c14n_inclusive.h"
#include "support/canonical_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// The rules once more, written as plainly as they are told: maps copied for every child, keys put
/// together as strings, recursion. Random trees must look the same through both.
namespace Saml::Xml::Security {
namespace {

struct PlainState {
    std::map<std::string, std::string> inScope;
    std::map<std::string, std::string> rendered;
};

struct PlainEntry {
    std::string prefix;
    std::string localName;
    std::string value;

    bool IsDefaultDeclaration() const { return prefix.empty() && localName == "xmlns"; }
    bool IsDeclaration() const { return prefix == "xmlns" || IsDefaultDeclaration(); }
    std::string DeclaredPrefix() const { return IsDefaultDeclaration() ? "" : localName; }
};

PlainEntry Split(const std::string& written, const std::string& value) {
    const std::size_t colon = written.find(':');
    if (colon == std::string::npos) return {"", written, value};
    return {written.substr(0, colon), written.substr(colon + 1), value};
}

std::vector<PlainEntry> AttributesOf(ElementNode& element) {
    std::map<std::string, std::string> attributes;
    element.GetAttributes(attributes);
    std::vector<PlainEntry> entries;
    for (const auto& [written, value] : attributes)
        entries.push_back(Split(written, value));
    return entries;
}

std::string PlainEscaped(const std::string& text, bool inAttribute) {
    std::string escaped;
    for (const char byte : text) {
        if (byte == '&')
            escaped += "&amp;";
        else if (byte == '<')
            escaped += "&lt;";
        else if (byte == '>')
            escaped += "&gt;";
        else if (byte == '\r')
            escaped += "&#xD;";
        else if (inAttribute && byte == '"')
            escaped += "&quot;";
        else if (inAttribute && byte == '\t')
            escaped += "&#x9;";
        else if (inAttribute && byte == '\n')
            escaped += "&#xA;";
        else
            escaped += byte;
    }
    return escaped;
}

class PlainCanonicalization {
  public:
    PlainCanonicalization(bool inclusive, std::vector<std::string> prefixList)
        : inclusive_(inclusive), prefixList_(std::move(prefixList)) {}

    std::string FormOf(ElementNode& apex) {
        PlainState state;
        for (auto* element = &apex; element != nullptr;
             element = dynamic_cast<ElementNode*>(element->GetParent()))
            for (const PlainEntry& entry : AttributesOf(*element))
                if (entry.IsDeclaration())
                    state.inScope.emplace(entry.DeclaredPrefix(), entry.value);
        return Render(apex, state, true);
    }

  private:
    using Entries = std::vector<PlainEntry>;

    std::string Render(ElementNode& element, PlainState state, bool isApex) {
        Entries entries;
        for (const PlainEntry& entry : AttributesOf(element)) {
            if (entry.IsDeclaration())
                state.inScope[entry.DeclaredPrefix()] = entry.value;
            else
                entries.push_back(entry);
        }
        const Entries own = entries;
        if (isApex && !inclusive_)
            for (const std::string& word : prefixList_)
                RenderNamespace(word, state, entries);
        if (inclusive_) {
            for (const auto& [prefix, uri] : std::map<std::string, std::string>(state.inScope))
                RenderNamespace(prefix, state, entries);
        } else {
            RenderNamespace(element.GetPrefix(), state, entries);
            for (const PlainEntry& entry : own)
                if (!entry.prefix.empty()) RenderNamespace(entry.prefix, state, entries);
        }
        Sort(entries, state);

        std::string form = "<" + element.GetQualifiedName();
        for (const PlainEntry& entry : entries)
            form += " " + (entry.prefix.empty() ? "" : entry.prefix + ":") + entry.localName +
                    "=\"" + PlainEscaped(entry.value, true) + "\"";
        form += ">";
        for (Node* const child : ChildrenOf(element)) {
            if (child->GetType() == NodeType::Text)
                form += PlainEscaped(dynamic_cast<TextNode&>(*child).GetText(), false);
            if (child->GetType() == NodeType::Element)
                form += Render(dynamic_cast<ElementNode&>(*child), state, false);
        }
        return form + "</" + element.GetQualifiedName() + ">";
    }

    static void RenderNamespace(const std::string& prefix, PlainState& state, Entries& entries) {
        const auto bound = state.inScope.find(prefix);
        if (bound == state.inScope.end()) return;
        const auto known = state.rendered.find(prefix);
        if (known != state.rendered.end() && known->second == bound->second) return;
        if (prefix.empty() && bound->second.empty() && known == state.rendered.end()) return;
        if (prefix.empty())
            entries.push_back({"", "xmlns", bound->second});
        else
            entries.push_back({"xmlns", prefix, bound->second});
        state.rendered[prefix] = bound->second;
    }

    static void Sort(Entries& entries, const PlainState& state) {
        const auto keyOf = [&state](const PlainEntry& entry) {
            if (entry.IsDeclaration()) return "  " + entry.DeclaredPrefix();
            const auto bound = state.inScope.find(entry.prefix);
            const bool qualified = !entry.prefix.empty() && bound != state.inScope.end();
            return (qualified ? bound->second : "") + " " + entry.localName;
        };
        std::stable_sort(entries.begin(), entries.end(),
                         [&keyOf](const PlainEntry& left, const PlainEntry& right) {
                             return keyOf(left) < keyOf(right);
                         });
    }

    bool inclusive_;
    std::vector<std::string> prefixList_;
};

/// Trees in which the same few prefixes are declared, redeclared, undeclared and used all over.
class RandomTree {
  public:
    explicit RandomTree(unsigned seed) : random_(seed) {
        elements_.push_back(CreateElement());
        for (std::size_t count = Below(30); count != 0; --count) {
            ElementNode& parent = *elements_[Below(elements_.size())];
            const Held<ElementNode> child = CreateElement();
            parent.AppendChild(CreateContent().get());
            parent.AppendChild(child.get());
            elements_.push_back(child);
        }
    }

    ElementNode& AnyElement() { return *elements_[Below(elements_.size())]; }
    std::vector<std::string> AnyPrefixes() {
        std::vector<std::string> words;
        for (std::size_t count = Below(4); count != 0; --count)
            words.push_back(PickFrom({"p", "q", "r", "#default", "unbound"}));
        return words;
    }
    std::string Told() const { return Outline(*elements_.front()); }

  private:
    std::size_t Below(std::size_t bound) { return random_() % bound; }
    std::string PickFrom(const std::vector<std::string>& from) { return from[Below(from.size())]; }

    Held<ElementNode> CreateElement() {
        const Held<ElementNode> element =
            NewElement(PickFrom({"a", "b"}), PickFrom({"", "", "p", "q", "unbound"}));
        for (std::size_t count = Below(6); count != 0; --count)
            element->SetAttribute(PickFrom({"xmlns", "xmlns:p", "xmlns:q", "xmlns:r", "x", "p:x",
                                            "q:x", "p:y", "r:y", "xml:x", "unbound:x", "y"}),
                                  PickFrom({"", "urn:a", "urn:b", "urn:b", "<&>\"\t\r\n"}));
        return element;
    }
    Held<Node> CreateContent() {
        switch (Below(4)) {
            case 0:
                return NewComment("c");
            case 1: {
                const Held<CDataNode> section = NewCData();
                section->AppendChild(NewText("d").get());
                return section;
            }
            default:
                return NewText(PickFrom({"", " ", "t&\r"}));
        }
    }

    std::mt19937 random_;
    std::vector<Held<ElementNode>> elements_;
};

TEST(C14NModel, GivesTheInclusiveFormOfRandomTrees) {
    for (unsigned seed = 0; seed != 2000; ++seed) {
        RandomTree tree(seed);
        ElementNode& apex = tree.AnyElement();
        ASSERT_EQ(CanonicalForm(C14NCanonicalizerInclusive(), apex, AcceptAllNodesFilter()),
                  PlainCanonicalization(true, {}).FormOf(apex))
            << "seed " << seed << ": " << tree.Told();
    }
}

TEST(C14NModel, GivesTheExclusiveFormOfRandomTrees) {
    for (unsigned seed = 0; seed != 2000; ++seed) {
        RandomTree tree(seed);
        ElementNode& apex = tree.AnyElement();
        const std::vector<std::string> words = tree.AnyPrefixes();
        ASSERT_EQ(CanonicalForm(C14NCanonicalizerExclusive(words), apex, AcceptAllNodesFilter()),
                  PlainCanonicalization(false, words).FormOf(apex))
            << "seed " << seed << ": " << tree.Told();
    }
}

}  // namespace
}  // namespace Saml::Xml::Security
