#include "saml/xml/namespace_lookup.h"

#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

/// The first element with this local name, in document order, below `top` or `top` itself.
ElementNode* Find(Node& top, const std::string& localName) {
    auto* const element = dynamic_cast<ElementNode*>(&top);
    if (element != nullptr && element->GetLocalName() == localName) return element;
    for (Node* child : ChildrenOf(top))
        if (ElementNode* const found = Find(*child, localName)) return found;
    return nullptr;
}

/// The outcome of a lookup: the URI, or "(none)" with the out-parameter checked to be untouched.
std::string Lookup(ElementNode& element, const std::string& prefix) {
    std::string uri = "untouched";
    if (element.LookupNamespaceURI(prefix, uri)) return uri;
    EXPECT_EQ(uri, "untouched");
    return "(none)";
}

std::string AttributeOf(ElementNode& element, const ExpandedName& name) {
    std::string value = "untouched";
    if (element.GetAttribute(name, value)) return value;
    EXPECT_EQ(value, "untouched");
    return "(none)";
}

std::string Told(ElementNode* element) {
    return element == nullptr ? "(none)" : Outline(*element);
}

TEST(LookupNamespaceURI, FindsTheDeclarationOfAGrandparent) {
    const Held<Document> document = Parsed("<g xmlns:saml='urn:saml'><p><e/></p></g>");
    EXPECT_EQ(Lookup(*Find(*document, "e"), "saml"), "urn:saml");
    EXPECT_EQ(Lookup(*Find(*document, "g"), "saml"), "urn:saml");
}

TEST(LookupNamespaceURI, FindsNothingOnADetachedElementWithoutTheDeclaration) {
    const Held<ElementNode> element(CreateElementNode("saml", "Assertion"));
    EXPECT_EQ(Lookup(*element, "saml"), "(none)");
    EXPECT_EQ(Lookup(*element, ""), "(none)");
    element->SetAttribute("xmlns:saml", "urn:saml");
    EXPECT_EQ(Lookup(*element, "saml"), "urn:saml");
    EXPECT_EQ(Lookup(*element, ""), "(none)");
}

TEST(LookupNamespaceURI, TakesTheNearestDeclaration) {
    const Held<Document> document =
        Parsed("<a xmlns:p='far' xmlns='dfar'><b xmlns:p='near'><c xmlns='dnear'/></b></a>");
    EXPECT_EQ(Lookup(*Find(*document, "a"), "p"), "far");
    EXPECT_EQ(Lookup(*Find(*document, "b"), "p"), "near");
    EXPECT_EQ(Lookup(*Find(*document, "c"), "p"), "near");
    EXPECT_EQ(Lookup(*Find(*document, "b"), ""), "dfar");
    EXPECT_EQ(Lookup(*Find(*document, "c"), ""), "dnear");
}

TEST(LookupNamespaceURI, FindsAnEmptyDefaultDeclaration) {
    const Held<Document> document = Parsed("<a xmlns='u'><b xmlns=''><c/></b></a>");
    EXPECT_EQ(Lookup(*Find(*document, "c"), ""), "");
}

TEST(LookupNamespaceURI, PredefinesNoPrefix) {
    const Held<Document> document = Parsed("<a xml:lang='en'/>");
    EXPECT_EQ(Lookup(*document->GetRootElement(), "xml"), "(none)");
    EXPECT_EQ(Lookup(*document->GetRootElement(), "xmlns"), "(none)");
    document->GetRootElement()->SetAttribute("xmlns:xml", "http://www.w3.org/XML/1998/namespace");
    EXPECT_EQ(Lookup(*document->GetRootElement(), "xml"), "http://www.w3.org/XML/1998/namespace");
}

TEST(LookupNamespaceURI, ComparesPrefixesByTheByte) {
    const Held<Document> document = Parsed("<a xmlns:p='u' xmlns:pp='v'/>");
    EXPECT_EQ(Lookup(*document->GetRootElement(), "P"), "(none)");
    EXPECT_EQ(Lookup(*document->GetRootElement(), "pp"), "v");
    EXPECT_EQ(Lookup(*document->GetRootElement(), "ppp"), "(none)");
}

TEST(LookupNamespaceURI, FollowsAnElementIntoItsNewTree) {
    const Held<Document> from = Parsed("<a xmlns:p='old'><b/></a>");
    const Held<Document> to = Parsed("<a xmlns:p='new'/>");
    const Held<ElementNode> b = Find(*from, "b");
    EXPECT_EQ(Lookup(*b, "p"), "old");
    from->GetRootElement()->RemoveChild(b.get());
    EXPECT_EQ(Lookup(*b, "p"), "(none)");
    to->GetRootElement()->AppendChild(b.get());
    EXPECT_EQ(Lookup(*b, "p"), "new");
}

TEST(AttributeByExpandedName, FindsAnUnprefixedAttributeInNoNamespace) {
    const Held<Document> document = Parsed("<a xmlns='urn:default' ID='_1'/>");
    ElementNode& a = *document->GetRootElement();
    EXPECT_EQ(AttributeOf(a, {"", "ID"}), "_1") << "a default namespace does not apply";
    EXPECT_EQ(AttributeOf(a, {"urn:default", "ID"}), "(none)");
    EXPECT_EQ(AttributeOf(a, {"", "id"}), "(none)");
}

TEST(AttributeByExpandedName, ResolvesPrefixesUpTheTree) {
    const Held<Document> document = Parsed(
        "<a xmlns:p='urn:p' xmlns:q='urn:far'><b xmlns:q='urn:near'>"
        "<c p:x='1' q:x='2' x='3'/></b></a>");
    ElementNode& c = *Find(*document, "c");
    EXPECT_EQ(AttributeOf(c, {"urn:p", "x"}), "1");
    EXPECT_EQ(AttributeOf(c, {"urn:near", "x"}), "2");
    EXPECT_EQ(AttributeOf(c, {"urn:far", "x"}), "(none)");
    EXPECT_EQ(AttributeOf(c, {"", "x"}), "3");
    EXPECT_EQ(AttributeOf(c, {"urn:p", "p:x"}), "(none)");
    EXPECT_EQ(AttributeOf(c, {"urn:p", "y"}), "(none)");
}

TEST(AttributeByExpandedName, TreatsAnUnboundPrefixAsNoNamespace) {
    const Held<Document> document = Parsed("<a q:x='1'/>");
    EXPECT_EQ(AttributeOf(*document->GetRootElement(), {"", "x"}), "1");
}

TEST(AttributeByExpandedName, TakesTheFirstMatchInTheOrderOfWrittenNames) {
    const Held<Document> document =
        Parsed("<a xmlns:p='u' xmlns:o='u' p:x='second' o:x='first' ID='third' A:ID='fourth'/>");
    ElementNode& a = *document->GetRootElement();
    EXPECT_EQ(AttributeOf(a, {"u", "x"}), "first") << "'o:x' stands before 'p:x'";
    EXPECT_EQ(AttributeOf(a, {"", "ID"}), "fourth") << "'A:ID' stands before 'ID'";
}

TEST(AttributeByExpandedName, SplitsAtTheFirstColonOnly) {
    const Held<Document> document = Parsed("<a xmlns:p='u' p:x:y='1'/>");
    ElementNode& a = *document->GetRootElement();
    EXPECT_EQ(AttributeOf(a, {"u", "x:y"}), "1");
    EXPECT_EQ(AttributeOf(a, {"u", "y"}), "(none)");
}

TEST(AttributeByExpandedName, TreatsDeclarationsLikeAnyOtherAttribute) {
    const Held<Document> document = Parsed("<a xmlns='urn:default' xmlns:p='urn:p'/>");
    ElementNode& a = *document->GetRootElement();
    EXPECT_EQ(AttributeOf(a, {"", "xmlns"}), "urn:default");
    EXPECT_EQ(AttributeOf(a, {"", "p"}), "urn:p") << "nothing binds the prefix 'xmlns'";
}

TEST(AttributeByExpandedName, TreatsAPrefixBoundToNothingAsNoNamespace) {
    const Held<ElementNode> element = NewElement("a");
    element->SetAttribute("xmlns:p", "");
    element->SetAttribute("p:x", "1");
    EXPECT_EQ(AttributeOf(*element, {"", "x"}), "1");
}

TEST(ChildByLocalName, IgnoresNamespacesAndOtherKindsOfNodes) {
    const Held<Document> document =
        Parsed("<r>a<!--a--><b/><![CDATA[a]]><p:a n='1'/><a n='2'/>t<a n='3'/></r>");
    ElementNode* const first = document->GetRootElement()->GetFirstChildElement("a");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(Outline(*first), "p:a[n=1]");
    ElementNode* const second = first->GetNextSiblingElement("a");
    EXPECT_EQ(Told(second), "a[n=2]");
    EXPECT_EQ(Told(second->GetNextSiblingElement("a")), "a[n=3]");
    EXPECT_EQ(second->GetNextSiblingElement("a")->GetNextSiblingElement("a"), nullptr);
}

TEST(ChildByLocalName, SearchesFromAnyKindOfNode) {
    const Held<Document> document = Parsed("<?p d?><!--c--><r>t<a/></r>");
    EXPECT_EQ(Told(document->GetFirstChildElement("r")), "r{\"t\" a}");
    EXPECT_EQ(Told(document->GetFirstChild()->GetNextSiblingElement("r")), "r{\"t\" a}");
    Node* const text = document->GetRootElement()->GetFirstChild();
    EXPECT_EQ(Told(text->GetNextSiblingElement("a")), "a");
    EXPECT_EQ(text->GetFirstChildElement("a"), nullptr);
}

TEST(ChildByLocalName, FindsNothingDeeperOrElsewhere) {
    const Held<Document> document = Parsed("<r><b><a/></b><A/><p:b/></r>");
    ElementNode* const root = document->GetRootElement();
    EXPECT_EQ(root->GetFirstChildElement("a"), nullptr);
    EXPECT_EQ(root->GetFirstChildElement("r"), nullptr);
    EXPECT_EQ(root->GetFirstChildElement(""), nullptr);
    EXPECT_EQ(root->GetFirstChildElement("p:b"), nullptr) << "local names hold no prefix";
    EXPECT_EQ(root->GetNextSiblingElement("r"), nullptr);
}

TEST(ChildByLocalName, DoesNotSkipNilElements) {
    const Held<Document> document = Parsed("<r><a xsi:nil='true'/><a n='2'/></r>");
    EXPECT_EQ(Told(document->GetRootElement()->GetFirstChildElement("a")), "a[xsi:nil=true]");
}

struct SearchCase {
    const char* name;
    const char* text;
    ExpandedName wanted;
    const char* found;  // value of the attribute n; "(none)" when there is no match
};

class ChildByExpandedName : public testing::TestWithParam<SearchCase> {
  protected:
    static std::string Number(ElementNode* element) {
        if (element == nullptr) return "(none)";
        std::string number = "(unnumbered)";
        element->GetAttribute("n", number);
        return number;
    }
};

// The element `r` is searched, wherever it stands in the text.
TEST_P(ChildByExpandedName, FindsTheFirstMatchAmongTheChildren) {
    const Held<Document> document = Parsed(GetParam().text);
    EXPECT_EQ(Number(Find(*document, "r")->GetFirstChildElement(GetParam().wanted)),
              GetParam().found);
}

TEST_P(ChildByExpandedName, FindsTheFirstMatchAmongTheFollowingSiblings) {
    const Held<Document> document = Parsed(GetParam().text);
    ElementNode* const r = Find(*document, "r");
    // A comment in front of all: what follows it are the same candidates.
    r->InsertBefore(NewComment().get(), r->GetFirstChild());
    EXPECT_EQ(Number(r->GetFirstChild()->GetNextSiblingElement(GetParam().wanted)),
              GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(
    NamespaceLookup, ChildByExpandedName,
    testing::Values(
        SearchCase{"DeclaredOnTheCandidate", "<r><p:a xmlns:p='u' n='1'/></r>", {"u", "a"}, "1"},
        SearchCase{"DeclaredOnTheParent", "<r xmlns:p='u'><p:a n='1'/></r>", {"u", "a"}, "1"},
        SearchCase{
            "DeclaredFartherUp", "<x xmlns:p='u'><y><r><p:a n='1'/></r></y></x>", {"u", "a"}, "1"},
        SearchCase{"DefaultOnTheCandidate", "<r><a xmlns='u' n='1'/></r>", {"u", "a"}, "1"},
        SearchCase{"DefaultOnTheParent", "<r xmlns='u'><a n='1'/></r>", {"u", "a"}, "1"},
        SearchCase{"NearerInheritedDeclarationWins",
                   "<x xmlns:p='far'><r xmlns:p='near'><p:a n='1'/></r></x>",
                   {"near", "a"},
                   "1"},
        SearchCase{"FartherInheritedDeclarationIsHidden",
                   "<x xmlns:p='far'><r xmlns:p='near'><p:a n='1'/></r></x>",
                   {"far", "a"},
                   "(none)"},
        SearchCase{"OwnDeclarationComesFirst",
                   "<r xmlns:p='parent'><p:a xmlns:p='own' n='1'/></r>",
                   {"own", "a"},
                   "1"},
        // Callers rely on it: an own declaration of another URI does not end the search.
        SearchCase{"OwnDeclarationDoesNotHideTheInheritedOne",
                   "<r xmlns:p='parent'><p:a xmlns:p='own' n='1'/></r>",
                   {"parent", "a"},
                   "1"},
        SearchCase{"OwnDefaultDoesNotHideTheInheritedOne",
                   "<r xmlns='parent'><a xmlns='own' n='1'/></r>",
                   {"parent", "a"},
                   "1"},
        SearchCase{"OtherLocalName", "<r xmlns='u'><b n='1'/></r>", {"u", "a"}, "(none)"},
        SearchCase{"OtherNamespace", "<r xmlns='u'><a n='1'/></r>", {"v", "a"}, "(none)"},
        SearchCase{"ComparedByTheByte", "<r xmlns='u'><a n='1'/></r>", {"U", "a"}, "(none)"},
        SearchCase{"PassesOverCandidatesOfOtherNamespaces",
                   "<r xmlns:p='u' xmlns:q='v'>t<q:a n='1'/><a n='2'/><p:b n='3'/><p:a n='4'/>"
                   "<p:a n='5'/></r>",
                   {"u", "a"},
                   "4"},
        SearchCase{"FindsTwoPrefixesOfOneNamespace",
                   "<r xmlns:p='u' xmlns:q='u'><q:a n='1'/><p:a n='2'/></r>",
                   {"u", "a"},
                   "1"},
        SearchCase{"DeclarationsOfSiblingsDoNotCount",
                   "<r><p:b xmlns:p='u'/><p:a n='1'/></r>",
                   {"u", "a"},
                   "(none)"},
        SearchCase{"DeclarationsOfChildrenDoNotCount",
                   "<r><p:a n='1'><b xmlns:p='u'/></p:a></r>",
                   {"u", "a"},
                   "(none)"},
        SearchCase{"UnboundPrefix", "<r><p:a n='1'/></r>", {"", "a"}, "(none)"},
        SearchCase{"NoDeclarationIsNotTheEmptyNamespace", "<r><a n='1'/></r>", {"", "a"}, "(none)"},
        SearchCase{"EmptyDefaultOnTheCandidateIsTheEmptyNamespace",
                   "<r xmlns='u'><a xmlns='' n='1'/></r>",
                   {"", "a"},
                   "1"},
        SearchCase{"EmptyInheritedDefaultIsTheEmptyNamespace",
                   "<x xmlns='u'><r xmlns=''><a n='1'/></r></x>",
                   {"", "a"},
                   "1"},
        SearchCase{"DoesNotSkipNilElements",
                   "<r xmlns='u'><a xsi:nil='true' n='1'/><a n='2'/></r>",
                   {"u", "a"},
                   "1"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ChildByExpandedNameElsewhere, SearchesADocument) {
    const Held<Document> document = Parsed("<!--c--><p:r xmlns:p='u'/>");
    EXPECT_EQ(Told(document->GetFirstChildElement(ExpandedName{"u", "r"})), "p:r[xmlns:p=u]");
    EXPECT_EQ(Told(document->GetFirstChild()->GetNextSiblingElement(ExpandedName{"u", "r"})),
              "p:r[xmlns:p=u]");
    EXPECT_EQ(document->GetFirstChildElement(ExpandedName{"v", "r"}), nullptr);
}

TEST(ChildByExpandedNameElsewhere, FindsNothingAroundADetachedElement) {
    const Held<ElementNode> element(CreateElementNode("", "a"));
    element->SetAttribute("xmlns", "u");
    EXPECT_EQ(element->GetFirstChildElement(ExpandedName{"u", "a"}), nullptr);
    EXPECT_EQ(element->GetNextSiblingElement(ExpandedName{"u", "a"}), nullptr);
}

TEST(ChildByExpandedNameElsewhere, SearchesADetachedTree) {
    const Held<ElementNode> top(CreateElementNode("", "top"));
    top->SetAttribute("xmlns:p", "u");
    top->AppendChild(CreateElementNode("p", "a"));
    top->AppendChild(CreateElementNode("p", "a"));
    ElementNode* const first = top->GetFirstChildElement(ExpandedName{"u", "a"});
    EXPECT_EQ(first, top->GetFirstChild());
    EXPECT_EQ(first->GetNextSiblingElement(ExpandedName{"u", "a"}), top->GetLastChild());
}

TEST(IsNamespaceDeclaration, KnowsTheTwoForms) {
    for (const char* declaration : {"xmlns", "xmlns:p", "xmlns:", "xmlns:a:b"})
        EXPECT_TRUE(IsNamespaceDeclaration(declaration)) << declaration;
    for (const char* other : {"", "xmln", "xmlnsp", "XMLNS", "xmlns2:p", "p:xmlns", " xmlns"})
        EXPECT_FALSE(IsNamespaceDeclaration(other)) << other;
}

TEST(IsCanonicalDeclaration, TakesTheEmptyPrefixForNone) {
    for (const char* declaration : {"xmlns", "xmlns:p", "xmlns:", "xmlns:a:b", ":xmlns"})
        EXPECT_TRUE(IsCanonicalDeclaration(declaration)) << declaration;
    for (const char* other : {"", ":", "xmlnsp", ":xmlns:p", ":xmlnsp", "p:xmlns", "::xmlns"})
        EXPECT_FALSE(IsCanonicalDeclaration(other)) << other;
}

TEST(DeclaredPrefix, IsWhatStandsBehindTheFirstColon) {
    EXPECT_EQ(DeclaredPrefix("xmlns"), "") << "the default declaration";
    EXPECT_EQ(DeclaredPrefix("xmlns:saml"), "saml");
    EXPECT_EQ(DeclaredPrefix("xmlns:a:b"), "a:b");
    EXPECT_EQ(DeclaredPrefix("xmlns:"), "");
    EXPECT_EQ(DeclaredPrefix(":xmlns"), "");
}

TEST(DeclarationName, IsBuiltFromThePrefix) {
    EXPECT_EQ(DeclarationName(""), "xmlns");
    EXPECT_EQ(DeclarationName("saml"), "xmlns:saml");
}

const ElementNodeImpl& Impl(ElementNode* element) {
    return dynamic_cast<const ElementNodeImpl&>(*element);
}

std::string Shown(FoundText text) {
    return std::string(text.value_or("(none)"));
}

TEST(DeclarationsInForce, CollectsTheNearestOfEachPrefix) {
    const Held<Document> document = Parsed(
        "<a xmlns='d' xmlns:p='far' xmlns:q='q'><b xmlns:p='near' x='1'><c xmlns=''/></b></a>");
    std::string told;
    for (const auto& [name, uri] : DeclarationsInForce(&Impl(Find(*document, "c"))))
        told += std::string(name) + "=" + Shown(uri) + " ";
    EXPECT_EQ(told, "xmlns= xmlns:p=near xmlns:q=q ");
    EXPECT_TRUE(DeclarationsInForce(nullptr).empty());
    EXPECT_TRUE(DeclarationsInForce(&Impl(NewElement("a").get())).empty());
}

TEST(NamespaceContext, AnswersLikeALookupAtAndBelowItsApex) {
    const Held<Document> document = Parsed(
        "<x xmlns='d' xmlns:p='far' xmlns:q='q'><apex xmlns:p='apex'>"
        "<b xmlns:p='near' xmlns=''><p:c/></b><p:e/></apex></x>");
    const NamespaceContext namespaces(Impl(Find(*document, "apex")));
    for (const char* element : {"apex", "b", "c", "e"})
        for (const char* prefix : {"", "p", "q", "xml", "none"})
            EXPECT_EQ(Shown(namespaces.Find(Impl(Find(*document, element)), prefix)),
                      Lookup(*Find(*document, element), prefix))
                << element << " " << prefix;
    EXPECT_EQ(Shown(namespaces.NamespaceOf(Impl(Find(*document, "apex")))), "d");
    EXPECT_EQ(Shown(namespaces.NamespaceOf(Impl(Find(*document, "c")))), "near");
    EXPECT_EQ(Shown(namespaces.NamespaceOf(Impl(Find(*document, "e")))), "apex");
}

// Canonicalization splits names before it asks what they are; a reader that did not would see other
// elements than were signed.
TEST(NamespaceContext, KnowsTheDefaultDeclarationInEverySpelling) {
    for (const std::string spelling : {"xmlns", "xmlns:", ":xmlns"}) {
        const Held<Document> document =
            Parsed("<x " + spelling + "='x'><apex " + spelling + "='apex' p='p'><b " + spelling +
                   "='b'/><c/></apex></x>");
        const NamespaceContext below(Impl(Find(*document, "c")));
        EXPECT_EQ(Shown(below.NamespaceOf(Impl(Find(*document, "c")))), "apex") << spelling;
        const NamespaceContext namespaces(Impl(Find(*document, "apex")));
        EXPECT_EQ(Shown(namespaces.NamespaceOf(Impl(Find(*document, "b")))), "b") << spelling;
        EXPECT_EQ(Shown(namespaces.NamespaceOf(Impl(Find(*document, "c")))), "apex") << spelling;
    }
}

TEST(NamespaceContext, TakesNoDefaultDeclarationWhereThereAreSeveral) {
    for (const std::string two :
         {"xmlns='u' xmlns:='u'", "xmlns:='v' :xmlns='u'", "xmlns='u' :xmlns='v'"}) {
        const Held<Document> document =
            Parsed("<x xmlns='u'><y " + two + " xmlns:p='p'><apex><p:b/></apex></y></x>");
        for (const char* apex : {"y", "apex"}) {
            const NamespaceContext namespaces(Impl(Find(*document, apex)));
            EXPECT_EQ(namespaces.NamespaceOf(Impl(Find(*document, "apex"))), std::nullopt) << two;
            EXPECT_EQ(Shown(namespaces.NamespaceOf(Impl(Find(*document, "b")))), "p") << two;
        }
    }
}

TEST(NamespaceContext, AnswersForADetachedApex) {
    const Held<ElementNode> top(CreateElementNode("p", "top"));
    const NamespaceContext namespaces(Impl(top.get()));
    EXPECT_EQ(namespaces.NamespaceOf(Impl(top.get())), std::nullopt);
}

TEST(NamespaceContext, FindsAttributesLikeTheElementItself) {
    const Held<Document> document = Parsed(
        "<x xmlns:p='u' xmlns:o='u'><apex xmlns='d'>"
        "<c p:x='second' o:x='first' y='plain' z:w='unbound' xmlns:s='s'/></apex></x>");
    ElementNode* const c = Find(*document, "c");
    const NamespaceContext namespaces(Impl(Find(*document, "apex")));
    for (const ExpandedName& name :
         {ExpandedName{"u", "x"}, ExpandedName{"", "y"}, ExpandedName{"d", "y"},
          ExpandedName{"", "w"}, ExpandedName{"", "s"}, ExpandedName{"", "x"},
          ExpandedName{"u", "y"}})
        EXPECT_EQ(Shown(namespaces.FindAttribute(Impl(c), name.namespaceUri, name.localName)),
                  AttributeOf(*c, name))
            << name.namespaceUri << " " << name.localName;
}

}  // namespace
}  // namespace Saml::Xml
