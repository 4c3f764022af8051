#include "saml/xml/element_rules.h"

#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

ElementNodeImpl& Impl(Node* element) {
    return dynamic_cast<ElementNodeImpl&>(*element);
}

/// How the first child of the root, seen from the root, answers to (local name, namespace).
ElementMatch Match(const std::string& text, const char* localName, const char* namespaceUri) {
    const Held<Document> document = Parsed(text);
    ElementNode* const root = document->GetRootElement();
    const NamespaceContext namespaces(Impl(root));
    return MatchElement(&Impl(root->GetFirstChild()), localName, namespaceUri, namespaces);
}

TEST(MatchElement, WantsNameAndNamespaceByTheByte) {
    const std::string text = "<r xmlns:ds='urn:ds'><ds:Name/></r>";
    EXPECT_EQ(Match(text, "Name", "urn:ds"), ElementMatch::Match);
    EXPECT_EQ(Match(text, "name", "urn:ds"), ElementMatch::OtherName);
    EXPECT_EQ(Match(text, "ds:Name", "urn:ds"), ElementMatch::OtherName);
    EXPECT_EQ(Match(text, "", "urn:ds"), ElementMatch::OtherName);
    EXPECT_EQ(Match(text, "Name", "urn:DS"), ElementMatch::OtherNamespace);
    EXPECT_EQ(Match(text, "Name", "urn:ds#"), ElementMatch::OtherNamespace);
    EXPECT_EQ(Match(text, "Name", ""), ElementMatch::OtherNamespace);
    EXPECT_EQ(Match(text, "Other", "urn:other"), ElementMatch::OtherName) << "the name first";
}

TEST(MatchElement, ResolvesDefaultAndOwnDeclarations) {
    EXPECT_EQ(Match("<r xmlns='u'><a/></r>", "a", "u"), ElementMatch::Match);
    EXPECT_EQ(Match("<r xmlns='u'><a xmlns='v'/></r>", "a", "v"), ElementMatch::Match);
    EXPECT_EQ(Match("<r xmlns='u'><a xmlns=''/></r>", "a", "u"), ElementMatch::OtherNamespace);
    EXPECT_EQ(Match("<r xmlns='u'><a xmlns=''/></r>", "a", ""), ElementMatch::Match);
}

TEST(MatchElement, FindsNoNamespaceWithoutADeclaration) {
    EXPECT_EQ(Match("<r><a/></r>", "a", "u"), ElementMatch::OtherNamespace);
    EXPECT_EQ(Match("<r><p:a/></r>", "a", "u"), ElementMatch::OtherNamespace);
    EXPECT_EQ(Match("<r><a/></r>", "a", ""), ElementMatch::OtherNamespace)
        << "nothing found is not the empty namespace";
}

TEST(MatchElement, TakesNullForAnotherName) {
    const Held<ElementNode> apex = NewElement("r");
    const NamespaceContext namespaces(Impl(apex.get()));
    EXPECT_EQ(MatchElement(nullptr, "a", "u", namespaces), ElementMatch::OtherName);
}

std::string Missing(const std::string& text, AttributeNames required) {
    const Held<Document> document = Parsed(text);
    return std::string(FindMissingAttribute(Impl(document->GetRootElement()), required));
}

TEST(FindMissingAttribute, TellsTheFirstOneInTheListsOrder) {
    EXPECT_EQ(Missing("<e a='1' b=''/>", {"a", "b"}), "");
    EXPECT_EQ(Missing("<e a='1'/>", {"a", "z", "b"}), "z");
    EXPECT_EQ(Missing("<e/>", {"b", "a"}), "b");
    EXPECT_EQ(Missing("<e/>", {}), "");
    EXPECT_EQ(Missing("<e A='1' p:a='2'/>", {"a"}), "a") << "written names, by the byte";
    EXPECT_EQ(Missing("<e p:a='2'/>", {"p:a"}), "");
}

std::string Unexpected(const std::string& text, AttributeNames required, AttributeNames optional) {
    const Held<Document> document = Parsed(text);
    return std::string(FindUnexpectedAttribute(Impl(document->GetRootElement()), required, optional)
                           .value_or("(none)"));
}

TEST(FindUnexpectedAttribute, AllowsBothListsAndDeclarations) {
    EXPECT_EQ(Unexpected("<e a='1' b='2' xmlns='u' xmlns:p='v'/>", {"a"}, {"b", "c"}), "(none)");
    EXPECT_EQ(Unexpected("<e/>", {"a"}, {"b"}), "(none)");
    EXPECT_EQ(Unexpected("<e xmlns='u'/>", {}, {}), "(none)");
}

TEST(FindUnexpectedAttribute, TellsTheFirstOneInTheOrderOfNames) {
    EXPECT_EQ(Unexpected("<e z='1' c='2' a='3'/>", {"a"}, {}), "c");
    EXPECT_EQ(Unexpected("<e p:a='1'/>", {"a"}, {"b"}), "p:a");
    EXPECT_EQ(Unexpected("<e A='1'/>", {"a"}, {}), "A");
    EXPECT_EQ(Unexpected("<e a='1'/>", {}, {}), "a");
}

TEST(FindUnexpectedAttribute, KnowsDeclarationsByTheirExactNames) {
    EXPECT_EQ(Unexpected("<e xmlnsp='u'/>", {}, {}), "xmlnsp");
    EXPECT_EQ(Unexpected("<e XMLNS='u'/>", {}, {}), "XMLNS");
    EXPECT_EQ(Unexpected("<e p:xmlns='u'/>", {}, {}), "p:xmlns");
    EXPECT_EQ(Unexpected("<e xml:lang='u'/>", {}, {}), "xml:lang");
}

struct ContentCase {
    const char* name;
    const char* text;
    bool hasChildren;
    const char* onlyText;  // null: none
};

class FilteredContent : public testing::TestWithParam<ContentCase> {};

TEST_P(FilteredContent, IsSeenThroughTheFilter) {
    const Held<Document> document = Parsed(GetParam().text);
    ElementNodeImpl& element = Impl(document->GetRootElement());
    const Security::SkipWsAndCommentsFilter filter;
    EXPECT_EQ(HasChildren(element, filter), GetParam().hasChildren);
    TextNodeImpl* const text = FindOnlyText(element, filter);
    EXPECT_EQ(text == nullptr ? "(none)" : text->Text(),
              GetParam().onlyText == nullptr ? "(none)" : GetParam().onlyText);
}

INSTANTIATE_TEST_SUITE_P(
    ElementRules, FilteredContent,
    testing::Values(ContentCase{"Empty", "<e/>", false, nullptr},
                    ContentCase{"Blank", "<e> \n</e>", false, nullptr},
                    ContentCase{"Comment", "<e><!--c--></e>", false, nullptr},
                    ContentCase{"BlanksAndComments", "<e> <!--c--> <!--d--></e>", false, nullptr},
                    ContentCase{"Text", "<e> x </e>", true, " x "},
                    ContentCase{"CommentAndText", "<e><!--c-->x</e>", true, "x"},
                    ContentCase{"TextAndComment", "<e>x<!--c--></e>", true, "x"},
                    ContentCase{"TextBetweenComments", "<e> <!--c-->x<!--c--> </e>", true, "x"},
                    ContentCase{"TextSplitByAComment", "<e>x<!--c-->y</e>", true, nullptr},
                    ContentCase{"TextAndSection", "<e>x<![CDATA[y]]></e>", true, nullptr},
                    ContentCase{"TextAndEmptySection", "<e>x<![CDATA[]]></e>", true, nullptr},
                    ContentCase{"Section", "<e><![CDATA[x]]></e>", true, nullptr},
                    ContentCase{"Element", "<e><a/></e>", true, nullptr},
                    ContentCase{"NilElement", "<e><a xsi:nil='true'/></e>", true, nullptr},
                    ContentCase{"ElementAndText", "<e><a/>x</e>", true, nullptr},
                    ContentCase{"TextAndElement", "<e>x<a/></e>", true, nullptr}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(FilteredContentOfAllNodes, CountsCommentsAndBlanks) {
    const Security::AcceptAllNodesFilter filter;
    const Held<Document> blank = Parsed("<e> </e>");
    EXPECT_TRUE(HasChildren(Impl(blank->GetRootElement()), filter));
    EXPECT_EQ(FindOnlyText(Impl(blank->GetRootElement()), filter),
              blank->GetRootElement()->GetFirstChild());
    const Held<Document> mixed = Parsed("<e>x<!--c--></e>");
    EXPECT_EQ(FindOnlyText(Impl(mixed->GetRootElement()), filter), nullptr);
}

}  // namespace
}  // namespace Saml::Xml
