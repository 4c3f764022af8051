#include "saml/security/uri_resolver.h"

#include "saml/security.h"
#include "support/canonical_forms.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Found = boost::intrusive_ptr<ElementNodeImpl>;

NodeImpl& Inner(Node& node) {
    return dynamic_cast<NodeImpl&>(node);
}

ElementNodeImpl& Inner(ElementNode& element) {
    return dynamic_cast<ElementNodeImpl&>(element);
}

Found Resolved(Node& root, const std::string& uri) {
    Found result;
    UniqueURIResolver().Resolve(&Inner(root), uri, result);
    return result;
}

/// The local name of what `uri` names at or below the root of `text`; empty when it names nothing.
std::string NameFound(const std::string& text, const std::string& uri) {
    const Held<Document> document = Parsed(text);
    const Found found = Resolved(*document->GetRootElement(), uri);
    return found ? found->LocalName() : "";
}

TEST(UniqueURIResolver, GivesTheRootForAnEmptyUri) {
    EXPECT_EQ(NameFound("<r ID='a'><x/></r>", ""), "r");
}

TEST(UniqueURIResolver, FindsTheElementWithTheIdentifier) {
    const char* const text = "<r ID='a'><x Id='b'><y id='c'/></x><z p:ID='d'/></r>";
    EXPECT_EQ(NameFound(text, "#a"), "r");
    EXPECT_EQ(NameFound(text, "#b"), "x");
    EXPECT_EQ(NameFound(text, "#c"), "y");
    EXPECT_EQ(NameFound(text, "#d"), "z");
}

struct IdentifierCase {
    const char* name;
    const char* attribute;
    bool matches;
};
class IdentifierAttributes : public testing::TestWithParam<IdentifierCase> {};

TEST_P(IdentifierAttributes, AreToldByTheirLocalName) {
    const std::string text = std::string("<r><x ") + GetParam().attribute + "='a'/></r>";
    EXPECT_EQ(NameFound(text, "#a"), GetParam().matches ? "x" : "");
}

INSTANTIATE_TEST_SUITE_P(URIResolver, IdentifierAttributes,
                         testing::Values(IdentifierCase{"Lower", "id", true},
                                         IdentifierCase{"Capitalised", "Id", true},
                                         IdentifierCase{"Upper", "ID", true},
                                         IdentifierCase{"InnerCapital", "iD", false},
                                         IdentifierCase{"Prefixed", "wsu:Id", true},
                                         IdentifierCase{"OfXml", "xml:id", true},
                                         IdentifierCase{"AssertionId", "AssertionID", false},
                                         IdentifierCase{"Longer", "Idx", false},
                                         IdentifierCase{"Shorter", "I", false},
                                         IdentifierCase{"AsPrefix", "ID:x", false},
                                         IdentifierCase{"BehindTheSecondColon", "p:q:ID", false},
                                         IdentifierCase{"BehindALeadingColon", ":ID", true},
                                         // By the letter: the part behind the first colon.
                                         IdentifierCase{"Declaration", "xmlns:id", true}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(UniqueURIResolver, ComparesTheWholeIdentifier) {
    const char* const text = "<r><x ID='ab'/><y ID='A'/><z ID=' c '/></r>";
    for (const char* const uri : {"#a", "#b", "#abc", "#c", "#AB", "##ab", "#ab ", "# ab", "#"})
        EXPECT_EQ(NameFound(text, uri), "") << uri;
    EXPECT_EQ(NameFound(text, "#A"), "y");
    EXPECT_EQ(NameFound(text, "# c "), "z");
}

TEST(UniqueURIResolver, TakesEscapesAndPointersByTheLetter) {
    EXPECT_EQ(NameFound("<r><x ID='a b'/></r>", "#a%20b"), "");
    EXPECT_EQ(NameFound("<r><x ID='a'/></r>", "#xpointer(id('a'))"), "");
    EXPECT_EQ(NameFound("<r><x ID='a'/></r>", "#xpointer(/)"), "");
    EXPECT_EQ(NameFound("<r><x ID='xpointer(/)'/></r>", "#xpointer(/)"), "x");
}

TEST(UniqueURIResolver, TakesTheEmptyIdentifier) {
    EXPECT_EQ(NameFound("<r><x ID=''/></r>", "#"), "x");
    EXPECT_EQ(NameFound("<r><x/></r>", "#"), "");
}

TEST(UniqueURIResolver, KnowsNoOtherFormOfUri) {
    const char* const text = "<r ID='a'><x ID='http://host/#a'/></r>";
    for (const char* const uri :
         {"a", "http://host/", "http://host/#a", " ", " #a", "?#a", "file:///etc/passwd", "."})
        EXPECT_EQ(NameFound(text, uri), "") << uri;
}

TEST(UniqueURIResolver, SearchesTheRootAndBelowOnly) {
    const Held<Document> document = Parsed("<r ID='a'><x ID='b'><y ID='c'/></x><z ID='d'/></r>");
    ElementNode& x = ElementNamed(*document, "x");
    EXPECT_EQ(Resolved(x, "#a"), nullptr);
    EXPECT_EQ(Resolved(x, "#b").get(), &x);
    EXPECT_EQ(Resolved(x, "#c").get(), &ElementNamed(*document, "y"));
    EXPECT_EQ(Resolved(x, "#d"), nullptr);
}

TEST(UniqueURIResolver, SearchesBehindOtherKindsOfNodes) {
    EXPECT_EQ(NameFound("<r>t<!--c--><![CDATA[<n ID='a'/>]]><x>t<y ID='a'/></x></r>", "#a"), "y");
}

TEST(UniqueURIResolver, GivesNullForARootThatIsNoElement) {
    const Held<Document> document = Parsed("<r ID='a'>t<!--c--></r>");
    const Held<Document> empty = NewDocument();
    for (const std::string uri : {"", "#a", "urn:x"}) {
        EXPECT_EQ(Resolved(*document, uri), nullptr) << uri;
        EXPECT_EQ(Resolved(*empty, uri), nullptr) << uri;
        EXPECT_EQ(Resolved(*NewText("t"), uri), nullptr) << uri;
    }
}

TEST(UniqueURIResolver, ReplacesTheFormerResult) {
    const Held<Document> document = Parsed("<r ID='a'><x ID='b'/></r>");
    NodeImpl& root = Inner(static_cast<Node&>(*document->GetRootElement()));
    Found result;
    UniqueURIResolver().Resolve(&root, "#a", result);
    UniqueURIResolver().Resolve(&root, "#b", result);
    EXPECT_EQ(result->LocalName(), "x");
    UniqueURIResolver().Resolve(&root, "#c", result);
    EXPECT_EQ(result, nullptr);
    UniqueURIResolver().Resolve(&root, "", result);
    UniqueURIResolver().Resolve(&root, "urn:x", result);
    EXPECT_EQ(result, nullptr);
}

struct DuplicateCase {
    const char* name;
    const char* text;
};
class DuplicateIdentifiers : public testing::TestWithParam<DuplicateCase> {};

TEST_P(DuplicateIdentifiers, AreRefusedWhereverTheSecondOneHides) {
    const Held<Document> document = Parsed(GetParam().text);
    ElementNodeImpl& root = Inner(*document->GetRootElement());
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] { Resolved(root, "#a"); }),
              "Duplicate URI found: a");

    IndexedURIResolver indexed(root);
    indexed.Expect("#a");
    Found result;
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] { indexed.Resolve(&root, "#a", result); }),
              "Duplicate URI found: a");
}

INSTANTIATE_TEST_SUITE_P(
    URIResolver, DuplicateIdentifiers,
    testing::Values(
        DuplicateCase{"InSiblings", "<r><x ID='a'/><y Id='a'/></r>"},
        DuplicateCase{"InTheRootAndBelow", "<r ID='a'><x id='a'/></r>"},
        DuplicateCase{"DeepBelowTheFirst", "<r><x ID='a'><y><z><w p:ID='a'/></z></y></x></r>"},
        DuplicateCase{"BehindADeeperFirst", "<r><x><y><z ID='a'/></y></x><w ID='a'/></r>"},
        DuplicateCase{"ThreeTimes", "<r><x ID='a'/><x ID='a'/><x ID='a'/></r>"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(UniqueURIResolver, NamesTheEmptyIdentifierThatOccursTwice) {
    EXPECT_EQ(
        MessageOf<DuplicateURIException>([] { NameFound("<r><x ID=''/><y ID=''/></r>", "#"); }),
        "Duplicate URI found: ");
}

TEST(UniqueURIResolver, CountsAnElementWithTwoMatchingAttributesOnce) {
    EXPECT_EQ(NameFound("<r><x ID='a' Id='a' p:id='a'/></r>", "#a"), "x");
}

TEST(UniqueURIResolver, DoesNotMindDuplicatesOfOtherIdentifiers) {
    EXPECT_EQ(NameFound("<r><x ID='b'/><y ID='b'/><z ID='a'/></r>", "#a"), "z");
}

TEST(UniqueURIResolver, DoesNotMindADuplicateOutsideItsRoot) {
    const Held<Document> document = Parsed("<r><x><y ID='a'/></x><z ID='a'/></r>");
    EXPECT_EQ(Resolved(ElementNamed(*document, "x"), "#a").get(), &ElementNamed(*document, "y"));
}

TEST(IndexedURIResolver, SearchesBelowAnElementThatItGave) {
    const Held<Document> document =
        Parsed("<r ID='a'><x ID='b'><y ID='c'/></x><z ID='d'/><w ID='c'/></r>");
    ElementNodeImpl& root = Inner(*document->GetRootElement());
    IndexedURIResolver resolver(root);
    for (const char* const uri : {"", "#b", "#c", "#d", "#none", "urn:x"})
        resolver.Expect(uri);

    Found x;
    resolver.Resolve(&root, "#b", x);
    ASSERT_EQ(x.get(), &ElementNamed(*document, "x"));
    Found below;
    resolver.Resolve(x.get(), "#c", below);
    EXPECT_EQ(below.get(), &ElementNamed(*document, "y"));
    resolver.Resolve(x.get(), "", below);
    EXPECT_EQ(below, x);
    resolver.Resolve(x.get(), "#d", below);
    EXPECT_EQ(below, nullptr);
    resolver.Resolve(x.get(), "#none", below);
    EXPECT_EQ(below, nullptr);
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] { resolver.Resolve(&root, "#c", below); }),
              "Duplicate URI found: c");
}

TEST(IndexedURIResolver, ReplacesTheFormerResult) {
    const Held<Document> document = Parsed("<r ID='a'/>");
    ElementNodeImpl& root = Inner(*document->GetRootElement());
    IndexedURIResolver resolver(root);
    resolver.Expect("#a");
    resolver.Expect("#b");
    Found result;
    resolver.Resolve(&root, "#a", result);
    EXPECT_EQ(result.get(), &root);
    resolver.Resolve(&root, "#b", result);
    EXPECT_EQ(result, nullptr);
    resolver.Resolve(&root, "", result);
    resolver.Resolve(&root, "urn:x", result);
    EXPECT_EQ(result, nullptr);
}

/// A tree in which few identifiers stand on many elements, and what may be asked about it.
class RandomDocument {
  public:
    explicit RandomDocument(unsigned seed) : random_(seed) {
        elements_.push_back(CreateElement());
        for (std::size_t count = random_() % 25; count != 0; --count) {
            ElementNode& parent = *elements_[random_() % elements_.size()];
            const Held<ElementNode> child = CreateElement();
            if (random_() % 4 == 0) parent.AppendChild(NewText("t").get());
            parent.AppendChild(child.get());
            elements_.push_back(child);
        }
    }

    ElementNodeImpl& Root() { return Inner(*elements_.front()); }
    const std::vector<std::string>& URIs() const { return uris_; }
    std::string Told() const { return Outline(*elements_.front()); }

  private:
    Held<ElementNode> CreateElement() {
        static const std::vector<std::string> names = {"id", "Id", "ID", "p:ID", "iD", "x"};
        static const std::vector<std::string> values = {"",  "a", "b", "c", "d", "e",
                                                        "f", "g", "h", "i", "j", "k"};
        const Held<ElementNode> element = NewElement("e");
        for (std::size_t count = random_() % 3; count != 0; --count)
            element->SetAttribute(names[random_() % names.size()],
                                  values[random_() % values.size()]);
        return element;
    }

    std::mt19937 random_;
    std::vector<Held<ElementNode>> elements_;
    const std::vector<std::string> uris_ = {"",   "#",  "#a", "#b", "#c", "#d",    "#e", "#f",
                                            "#g", "#h", "#i", "#j", "#k", "#none", "a",  "##a"};
};

/// What a resolver answers: an element, null, or the message of its exception.
std::pair<const NodeImpl*, std::string> Answer(const URIResolver& resolver, NodeImpl& root,
                                               const std::string& uri) {
    Found result;
    try {
        resolver.Resolve(&root, uri, result);
    } catch (const DuplicateURIException& refusal) {
        return {nullptr, refusal.what()};
    }
    return {result.get(), ""};
}

TEST(IndexedURIResolver, AnswersWhatTheSearchAnswers) {
    const UniqueURIResolver search;
    int duplicates = 0;
    int nestedFinds = 0;
    for (unsigned seed = 0; seed != 2000; ++seed) {
        RandomDocument document(seed);
        IndexedURIResolver indexed(document.Root());
        for (const std::string& uri : document.URIs())
            indexed.Expect(uri);
        for (const std::string& uri : document.URIs()) {
            const auto expected = Answer(search, document.Root(), uri);
            ASSERT_EQ(Answer(indexed, document.Root(), uri), expected)
                << "seed " << seed << ": " << uri << " in " << document.Told();
            if (!expected.second.empty()) ++duplicates;
            if (expected.first == nullptr) continue;

            NodeImpl& referent = const_cast<NodeImpl&>(*expected.first);
            for (const std::string& inner : document.URIs()) {
                const auto below = Answer(search, referent, inner);
                ASSERT_EQ(Answer(indexed, referent, inner), below)
                    << "seed " << seed << ": " << inner << " below " << uri << " in "
                    << document.Told();
                if (below.first != nullptr && below.first != &referent) ++nestedFinds;
            }
        }
    }
    // The trees were worth asking about.
    EXPECT_GT(duplicates, 1000);
    EXPECT_GT(nestedFinds, 1000);
}

}  // namespace
}  // namespace Saml::Xml::Security
