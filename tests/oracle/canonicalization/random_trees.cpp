#include "oracle/canonicalization/random_trees.h"

#include <algorithm>
#include <utility>

namespace RandomTrees {
namespace {

constexpr std::size_t kDeepest = 50;

// Some are the beginning of others, and their order is not that of the URIs.
constexpr const char* kPrefixes[] = {"a", "b", "n", "n1", "n-1", "A", "_", "\xC3\xA9", "z.z"};
constexpr const char* kUris[] = {"urn:b",
                                 "urn:a",
                                 "urn:a:b",
                                 "urn:A",
                                 "https://example.org/",
                                 "https://example.org/?a=1;b=%7E",
                                 "http://www.w3.org/2000/09/xmldsig#",
                                 "ftp://example.org/",
                                 "about:blank"};
// What comes before "base", the first of the local names of xml: attributes, stands first.
constexpr const char* kLocalNames[] = {"a",  "A",        "ID",    "a-b",         "a.b",
                                       "ab", "_",        "x",     "x1",          "type",
                                       "y",  "\xC3\xA9", "lange", "\xE4\xB8\x80"};
constexpr std::size_t kLocalNamesBeforeBase = 7;
constexpr char kXmlNamespace[] = "http://www.w3.org/XML/1998/namespace";
constexpr const char* kXmlAttributes[][2] = {
    {"xml:base", "urn:base"}, {"xml:lang", "en"}, {"xml:space", "preserve"}};

// For values and for texts: letters and blanks, references to what must be escaped, line ends and
// tabs as such and by reference, sequences of two, three and four bytes.
constexpr const char* kPieces[] = {"a",
                                   "word",
                                   " ",
                                   "  ",
                                   "&amp;",
                                   "&lt;",
                                   "&gt;",
                                   "&quot;",
                                   "&apos;",
                                   "&#38;",
                                   "&#x3C;",
                                   "&#62;",
                                   "&#34;",
                                   "&#9;",
                                   "&#xA;",
                                   "&#10;",
                                   "&#13;",
                                   "&#xD;",
                                   "&#x9;",
                                   "&#13;&#10;",
                                   "&amp;#13;",
                                   "]]&gt;",
                                   ">",
                                   "\t",
                                   "\n",
                                   "\r\n",
                                   "\rx",
                                   "\xC3\xA9",
                                   "\xE2\x82\xAC",
                                   "\xF0\x9F\x98\x80",
                                   "&#xE9;",
                                   "&#8364;",
                                   "&#x1F600;",
                                   "\x7F",
                                   "\xC2\x85",
                                   "\xE2\x80\xA8",
                                   "e\xCC\x81",
                                   "%41"};
constexpr const char* kBlanks[] = {" ", "\n", "\t", "\n    ", "\r\n  "};
constexpr const char* kComments[] = {"<!---->", "<!-- a comment -->", "<!-- <a b='c'/> & ]]> -->",
                                     "<!--\n\xC3\xA9\n-->"};
constexpr const char* kInstructions[] = {"<?t?>", "<?target some data?>", "<?t <a> & ]]> -->?>"};
constexpr const char* kCData[] = {"<![CDATA[]]>", "<![CDATA[text]]>", "<![CDATA[<a> & ]] > ]]>",
                                  "<![CDATA[\n]]>"};
constexpr const char* kDeclarations[] = {"", "", "<?xml version='1.0'?>",
                                         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n",
                                         "<?xml version='1.0' standalone='yes'?>\r\n"};

/// Limits.
struct Shape {
    std::size_t depth;
    std::size_t elements;
    std::size_t rootContent;  ///< Pieces of content of the root element.
    std::size_t content;      ///< Of any other.
    std::size_t attributes;   ///< Of one element, declarations not counted.
};
constexpr Shape kBushy{6, 16, 6, 5, 5};
constexpr Shape kDeep{kDeepest, 55, 2, 2, 3};
constexpr Shape kWide{3, 80, 200, 2, 2};
constexpr Shape kManyAttributes{3, 8, 3, 3, 24};

class Growth {
  public:
    Growth(Dice& dice, CDataSections sections)
        : dice_(dice), sections_(sections), shape_(PickShape()) {}

    Tree Grow() {
        Tree tree;
        tree.prolog = Pick(kDeclarations) + Misc();
        tree.root = GrowElement(nullptr, {});
        tree.epilog = Misc();
        tree.elements = std::move(elements_);
        return tree;
    }

  private:
    bool Chance(std::size_t percent) { return dice_.Chance(percent); }

    template <class Choices>
    std::string Pick(const Choices& choices) {
        return dice_.Any(choices);
    }

    Shape PickShape() {
        const std::size_t number = dice_.Below(100);
        return number < 88 ? kBushy : number < 92 ? kDeep : number < 95 ? kWide : kManyAttributes;
    }

    /// Around the root element.
    std::string Misc() {
        std::string markup;
        while (Chance(30))
            markup += Pick(kComments) + Pick(kBlanks) + Pick(kInstructions);
        return markup;
    }

    std::unique_ptr<Element> GrowElement(const Element* parent, const Scope& outer) {
        auto element = std::make_unique<Element>();
        element->parent = parent;
        element->number = elements_.size();
        if (parent != nullptr) element->depth = parent->depth + 1;
        elements_.push_back(element.get());

        AddDeclarations(*element, outer);
        const Scope scope = ScopeBelow(outer, *element);
        element->name = QualifiedName(Chance(30) ? "" : PickPrefix(scope), Pick(kLocalNames));
        AddAttributes(*element, scope);
        dice_.Shuffle(element->attributes);
        AddContent(*element, scope);
        element->hasShortTag = element->content.empty() && Chance(50);
        return element;
    }

    void AddDeclarations(Element& element, const Scope& outer) {
        if (!Chance(element.parent == nullptr ? 80 : 35)) return;
        for (std::size_t left = 1 + dice_.Below(3); left != 0; --left) {
            const std::string prefix = Chance(25) ? "" : Pick(kPrefixes);
            const std::string name = prefix.empty() ? "xmlns" : "xmlns:" + prefix;
            if (HasAttribute(element, name)) continue;
            Add(element, name, DeclaredUri(prefix, outer));
        }
    }

    std::string DeclaredUri(const std::string& prefix, const Scope& outer) {
        const auto before = outer.find(prefix);
        if (before != outer.end() && Chance(25)) return before->second;  // once more the same
        if (prefix.empty() && Chance(40)) return {};
        if (!outer.empty() && Chance(20)) return PickBound(outer).second;  // a second prefix for it
        return Pick(kUris);
    }

    std::pair<std::string, std::string> PickBound(const Scope& scope) { return dice_.Any(scope); }

    /// Empty when there is nothing in scope to pick.
    std::string PickPrefix(const Scope& scope) {
        return scope.empty() ? "" : PickBound(scope).first;
    }

    void AddAttributes(Element& element, const Scope& scope) {
        const bool hasXmlAttribute = Chance(6);
        std::vector<std::pair<std::string, std::string>> expandedNames;
        for (std::size_t left = dice_.Below(shape_.attributes + 1); left != 0; --left) {
            const std::string prefix = Chance(50) ? "" : PickPrefix(scope);
            const std::string uri = prefix.empty() ? "" : scope.at(prefix);
            std::string local = Pick(kLocalNames);
            if (hasXmlAttribute && prefix.empty())
                local = kLocalNames[dice_.Below(kLocalNamesBeforeBase)];
            if (hasXmlAttribute && !prefix.empty() && uri < kXmlNamespace) continue;
            if (std::count(expandedNames.begin(), expandedNames.end(), std::pair(uri, local)) != 0)
                continue;
            expandedNames.emplace_back(uri, local);
            AddWithValue(element, QualifiedName(prefix, local));
        }
        if (!hasXmlAttribute) return;
        for (const auto& [name, value] : kXmlAttributes)
            if (Chance(50)) Add(element, name, value);
    }

    void AddWithValue(Element& element, const std::string& name) {
        Add(element, name, {});
        Attribute& attribute = element.attributes.back();
        attribute.value = Characters(5);
        if (Chance(10)) attribute.value += attribute.quote == '"' ? '\'' : '"';
    }

    void Add(Element& element, const std::string& name, const std::string& value) {
        const std::string space = Chance(80) ? " " : Pick(kBlanks);
        element.attributes.push_back({name, value, space, Chance(50) ? '"' : '\''});
    }

    static bool HasAttribute(const Element& element, const std::string& name) {
        return std::any_of(element.attributes.begin(), element.attributes.end(),
                           [&name](const Attribute& other) { return other.name == name; });
    }

    static std::string QualifiedName(const std::string& prefix, const std::string& localName) {
        return prefix.empty() ? localName : prefix + ":" + localName;
    }

    std::string Characters(std::size_t most) {
        std::string spelled;
        for (std::size_t left = dice_.Below(most + 1); left != 0; --left)
            spelled += Pick(kPieces);
        return spelled;
    }

    void AddContent(Element& element, const Scope& scope) {
        const std::size_t most = element.parent == nullptr ? shape_.rootContent : shape_.content;
        for (std::size_t left = dice_.Below(most + 1); left != 0; --left)
            AddOne(element, scope);
        // A deep tree goes on where others may end.
        if (shape_.depth == kDeepest) AddElement(element, scope);
    }

    void AddOne(Element& element, const Scope& scope) {
        const std::size_t number = dice_.Below(100);
        if (number < 40)
            AddElement(element, scope);
        else if (number < 65)
            element.content.push_back({Content::Kind::Text, Characters(5) + Quote()});
        else if (number < 80)
            element.content.push_back({Content::Kind::Text, Pick(kBlanks)});
        else if (number < 92 || sections_ == CDataSections::No)
            element.content.push_back({Content::Kind::Comment, Pick(kComments)});
        else
            element.content.push_back({Content::Kind::CData, Pick(kCData)});
    }

    std::string Quote() { return Chance(10) ? (Chance(50) ? "\"" : "'") : ""; }

    void AddElement(Element& element, const Scope& scope) {
        if (element.depth == shape_.depth || elements_.size() >= shape_.elements) return;
        element.content.push_back({Content::Kind::Element, "", GrowElement(&element, scope)});
    }

    Dice& dice_;
    const CDataSections sections_;
    const Shape shape_;
    std::vector<const Element*> elements_;
};

void Append(const Element& element, CDataSections sections, std::string& text) {
    text += "<" + element.name;
    for (const Attribute& attribute : element.attributes)
        text += attribute.space + attribute.name + "=" + attribute.quote + attribute.value +
                attribute.quote;
    if (element.hasShortTag) {
        text += "/>";
        return;
    }
    text += ">";
    for (const Content& content : element.content) {
        const bool isCData = content.kind == Content::Kind::CData;
        if (content.element)
            Append(*content.element, sections, text);
        else if (!isCData || sections == CDataSections::Yes)
            text += content.markup;
    }
    text += "</" + element.name + ">";
}

/// The prefixes to which anything at or below `element` gives another meaning than `scope` without
/// using them there.
void CollectUnusedChanges(const Element& element, const Scope& scope,
                          std::vector<std::string>& prefixes) {
    const Scope inside = ScopeBelow(scope, element);
    for (const auto& [prefix, uri] : inside) {
        const auto before = scope.find(prefix);
        const bool changes = before == scope.end() || before->second != uri;
        if (changes && !prefix.empty() && !Uses(element, prefix)) prefixes.push_back(prefix);
    }
    for (const Content& content : element.content)
        if (content.element) CollectUnusedChanges(*content.element, inside, prefixes);
}

}  // namespace

Tree Grow(Dice& dice, CDataSections sections) {
    return Growth(dice, sections).Grow();
}

std::string Write(const Tree& tree, CDataSections sections) {
    std::string text = tree.prolog;
    Append(*tree.root, sections, text);
    return text + tree.epilog;
}

bool IsDeclaration(const Attribute& attribute) {
    return QualifiedNames::IsDeclaration(attribute.name);
}

std::string DeclaredPrefix(const Attribute& declaration) {
    return declaration.name == "xmlns" ? "" : LocalNameOf(declaration.name);
}

Scope ScopeBelow(Scope scope, const Element& element) {
    for (const Attribute& attribute : element.attributes) {
        if (!IsDeclaration(attribute)) continue;
        if (attribute.value.empty())
            scope.erase(DeclaredPrefix(attribute));
        else
            scope[DeclaredPrefix(attribute)] = attribute.value;
    }
    return scope;
}

Scope ScopeAt(const Element& element) {
    return ScopeBelow(element.parent != nullptr ? ScopeAt(*element.parent) : Scope(), element);
}

bool Uses(const Element& element, const std::string& prefix) {
    return PrefixOf(element.name) == prefix ||
           std::any_of(element.attributes.begin(), element.attributes.end(),
                       [&prefix](const Attribute& attribute) {
                           return !IsDeclaration(attribute) && PrefixOf(attribute.name) == prefix;
                       });
}

std::vector<std::string> PrefixesForAList(const Element& apex) {
    const Scope scope = ScopeAt(apex);
    std::vector<std::string> changed;
    for (const Content& content : apex.content)
        if (content.element) CollectUnusedChanges(*content.element, scope, changed);
    std::vector<std::string> prefixes;
    for (const auto& [prefix, uri] : scope)
        if (!prefix.empty() && std::count(changed.begin(), changed.end(), prefix) == 0)
            prefixes.push_back(prefix);
    return prefixes;
}

bool IsBelowXmlAttributes(const Element& element) {
    for (const Element* above = element.parent; above != nullptr; above = above->parent)
        if (Uses(*above, "xml")) return true;
    return false;
}

}  // namespace RandomTrees
