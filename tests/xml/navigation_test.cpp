#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

std::string Told(ElementNode* element) {
    return element == nullptr ? "(none)" : Outline(*element);
}

struct NilCase {
    const char* name;
    const char* attributes;
    bool nil;
};

class NilElements : public testing::TestWithParam<NilCase> {
  protected:
    Held<Document> document_ =
        Parsed("<r><a n='1' " + std::string(GetParam().attributes) + "/><b/></r>");
    ElementNode* root_ = document_->GetRootElement();
    ElementNode* a_ = root_->GetFirstChildElement("a");
    ElementNode* b_ = root_->GetFirstChildElement("b");
};

TEST_P(NilElements, AreTold) {
    EXPECT_EQ(IsNil(a_), GetParam().nil);
    EXPECT_FALSE(IsNil(b_));
}

TEST_P(NilElements, ReadAsMissing) {
    ElementNode* const expected = GetParam().nil ? b_ : a_;
    EXPECT_EQ(GetFirstSiblingElement(a_), expected);
    EXPECT_EQ(GetFirstChildElement(root_), expected);
    root_->InsertBefore(NewText("t").get(), a_);
    EXPECT_EQ(GetNextSiblingElement(root_->GetFirstChild()), expected);
}

// The attribute's prefix is taken by the letter: what it is bound to, if anything, is no matter.
INSTANTIATE_TEST_SUITE_P(
    IsNil, NilElements,
    testing::Values(
        NilCase{"NoAttribute", "", false}, NilCase{"NilTrue", "xsi:nil='true'", true},
        NilCase{"NilOne", "xsi:nil='1'", true}, NilCase{"NilFalse", "xsi:nil='false'", false},
        NilCase{"NilZero", "xsi:nil='0'", false}, NilCase{"NilEmpty", "xsi:nil=''", false},
        NilCase{"NilInCapitals", "xsi:nil='TRUE'", false},
        NilCase{"NilCapitalised", "xsi:nil='True'", false},
        NilCase{"NilWithBlanks", "xsi:nil=' true '", false},
        NilCase{"NilOneOne", "xsi:nil='11'", false}, NilCase{"NullTrue", "xsi:null='true'", true},
        NilCase{"NullOne", "xsi:null='1'", true}, NilCase{"NullFalse", "xsi:null='false'", false},
        NilCase{"NullWithBlanks", "xsi:null='1 '", false},
        NilCase{"NilFalseAndNullTrue", "xsi:nil='false' xsi:null='true'", true},
        NilCase{"NilTrueAndNullFalse", "xsi:nil='true' xsi:null='false'", true},
        NilCase{"NilFalseAndNullFalse", "xsi:nil='0' xsi:null='0'", false},
        NilCase{"OtherPrefix", "xs:nil='true'", false},
        NilCase{"OtherPrefixOfTheSameNamespace",
                "xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:nil='true'", false},
        NilCase{"ThePrefixOfAnotherNamespace", "xmlns:xsi='urn:other' xsi:nil='true'", true},
        NilCase{"NoPrefix", "nil='true'", false}, NilCase{"OtherName", "xsi:nill='true'", false},
        NilCase{"OtherCase", "xsi:Nil='true'", false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(IsNil, IsFalseForNull) {
    EXPECT_FALSE(IsNil(nullptr));
}

TEST(GetFirstSiblingElement, BeginsAtTheNodeItself) {
    const Held<Document> document = Parsed("<r>t<!--c--><![CDATA[s]]><a/>u<b/></r>");
    const std::vector<Node*> children = ChildrenOf(*document->GetRootElement());
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(Told(GetFirstSiblingElement(children[i])), "a");
    for (std::size_t i = 4; i < 6; ++i)
        EXPECT_EQ(Told(GetFirstSiblingElement(children[i])), "b");
}

TEST(GetFirstSiblingElement, IsNullWhereTheChainEnds) {
    const Held<Document> document = Parsed("<r><a/>t<!--c--></r>");
    EXPECT_EQ(GetFirstSiblingElement(document->GetRootElement()->GetLastChild()), nullptr);
    EXPECT_EQ(GetFirstSiblingElement(NewText("t").get()), nullptr);
    EXPECT_EQ(GetFirstSiblingElement(document.get()), nullptr);
}

TEST(GetFirstChildElement, FindsTheFirstElementAmongTheChildren) {
    const Held<Document> document = Parsed("<!--c--><r>t<a><x/></a><b/></r>");
    EXPECT_EQ(GetFirstChildElement(document.get()), document->GetRootElement());
    EXPECT_EQ(Told(GetFirstChildElement(document->GetRootElement())), "a{x}");
}

TEST(GetFirstChildElement, IsNullWithoutElements) {
    const Held<Document> document = Parsed("<r>t<!--c--></r>");
    EXPECT_EQ(GetFirstChildElement(document->GetRootElement()), nullptr);
    EXPECT_EQ(GetFirstChildElement(NewElement("a").get()), nullptr);
    EXPECT_EQ(GetFirstChildElement(NewText("t").get()), nullptr);
}

TEST(GetNextSiblingElement, BeginsBehindTheNode) {
    const Held<Document> document = Parsed("<r><a/>t<b/><c/></r>");
    ElementNode* const a = GetFirstChildElement(document->GetRootElement());
    ElementNode* const b = GetNextSiblingElement(a);
    EXPECT_EQ(Told(b), "b");
    EXPECT_EQ(Told(GetNextSiblingElement(b)), "c");
    EXPECT_EQ(GetNextSiblingElement(GetNextSiblingElement(b)), nullptr);
    EXPECT_EQ(GetNextSiblingElement(document->GetRootElement()), nullptr);
}

TEST(Navigation, PassesOverSeveralNilElements) {
    const Held<Document> document =
        Parsed("<r><a xsi:nil='1'><x/></a><b xsi:null='true'/>t<c xsi:nil='true'/><d/></r>");
    EXPECT_EQ(Told(GetFirstChildElement(document->GetRootElement())), "d");
}

TEST(Navigation, IsNullForNull) {
    EXPECT_EQ(GetFirstSiblingElement(nullptr), nullptr);
    EXPECT_EQ(GetFirstChildElement(nullptr), nullptr);
    EXPECT_EQ(GetNextSiblingElement(nullptr), nullptr);
}

struct NamespaceCase {
    const char* name;
    const char* text;
    const char* uri;  // of the first child of the root; null: none
};

class NamespaceOfAnElement : public testing::TestWithParam<NamespaceCase> {};

TEST_P(NamespaceOfAnElement, IsWhatItsOwnPrefixIsBoundTo) {
    const Held<Document> document = Parsed(GetParam().text);
    auto* const element = dynamic_cast<ElementNode*>(document->GetRootElement()->GetFirstChild());
    std::string uri = "untouched";
    EXPECT_EQ(GetNamespace(element, uri), GetParam().uri != nullptr);
    EXPECT_EQ(uri, GetParam().uri != nullptr ? GetParam().uri : "untouched");
}

INSTANTIATE_TEST_SUITE_P(
    GetNamespace, NamespaceOfAnElement,
    testing::Values(NamespaceCase{"Prefixed", "<r xmlns:p='u'><p:a/></r>", "u"},
                    NamespaceCase{"DeclaredOnItself", "<r><p:a xmlns:p='u'/></r>", "u"},
                    NamespaceCase{"Nearest", "<r xmlns:p='u'><p:a xmlns:p='v'/></r>", "v"},
                    NamespaceCase{"Default", "<r xmlns='u' xmlns:p='v'><a/></r>", "u"},
                    NamespaceCase{"EmptyDefault", "<r xmlns='u'><a xmlns=''/></r>", ""},
                    NamespaceCase{"Undeclared", "<r xmlns='u'><p:a/></r>", nullptr},
                    NamespaceCase{"NoDefault", "<r xmlns:p='u'><a/></r>", nullptr}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(GetNamespace, IsFalseForNull) {
    std::string uri = "untouched";
    EXPECT_FALSE(GetNamespace(nullptr, uri));
    EXPECT_EQ(uri, "untouched");
}

// Tokens carry URIs that no syntax check would pass; none may be refused for that.
TEST(ValidateAnyURI, AcceptsEverything) {
    for (const char* uri : {"http://example.org/a", "", " ", "no uri at all", "::%zz<>", "\xFF"})
        EXPECT_NO_THROW(ValidateAnyURI(uri));
    EXPECT_NO_THROW(ValidateAnyURI(nullptr));
}

}  // namespace
}  // namespace Saml::Xml
