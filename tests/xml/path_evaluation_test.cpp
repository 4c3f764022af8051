#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace Saml::Xml {
namespace {

using Values = std::vector<std::string>;

/// The value at `path` from the root; the element form and the document form must agree.
std::optional<std::string> Simple(Document& document, const std::string& path) {
    std::string fromElement = "untouched";
    std::string fromDocument = "untouched";
    const bool found = EvaluateSimplePath(document.GetRootElement(), path, fromElement);
    EXPECT_EQ(EvaluateSimplePath(&document, path, fromDocument), found) << path;
    EXPECT_EQ(fromDocument, fromElement) << path;
    if (found) return fromElement;
    EXPECT_EQ(fromElement, "untouched") << path;
    return std::nullopt;
}

/// The values at `path` from the root; the element form and the document form must agree.
Values Multi(Document& document, const std::string& path) {
    Values fromElement{"left over"};
    Values fromDocument{"left", "over"};
    const bool found = EvaluateMultiPath(document.GetRootElement(), path, fromElement);
    EXPECT_EQ(EvaluateMultiPath(&document, path, fromDocument), found) << path;
    EXPECT_EQ(fromDocument, fromElement) << path;
    EXPECT_EQ(found, !fromElement.empty()) << path;
    return fromElement;
}

constexpr char kAssertion[] =
    "<saml:Assertion ID='_1' xmlns:saml='urn:saml' empty=''>"
    "<Issuer Format='f'>idp</Issuer>"
    "<Subject><NameID xsi:type='t'>jdoe</NameID></Subject>"
    "<Empty/>"
    "<Nil xsi:nil='true'>nil</Nil>"
    "</saml:Assertion>";

struct PathCase {
    const char* name;
    const char* text;
    const char* path;
    const char* value;  // null: none
};

class PathToOneValue : public testing::TestWithParam<PathCase> {};

TEST_P(PathToOneValue, IsFollowedBySimpleEvaluation) {
    const Held<Document> document = Parsed(GetParam().text);
    const std::optional<std::string> value = Simple(*document, GetParam().path);
    EXPECT_EQ(value.value_or("(none)"), GetParam().value ? GetParam().value : "(none)");
}

TEST_P(PathToOneValue, IsFollowedByMultipleEvaluation) {
    const Held<Document> document = Parsed(GetParam().text);
    EXPECT_EQ(Multi(*document, GetParam().path),
              GetParam().value ? Values{GetParam().value} : Values{});
}

// Where no step has a choice both evaluations agree.
INSTANTIATE_TEST_SUITE_P(
    PathEvaluation, PathToOneValue,
    testing::Values(
        PathCase{"ToAnElement", kAssertion, "Assertion/Issuer", "idp"},
        PathCase{"AnyStart", kAssertion, "*/Issuer", "idp"},
        PathCase{"OtherStart", kAssertion, "Response/Issuer", nullptr},
        PathCase{"StartWithoutItsName", kAssertion, "Issuer", nullptr},
        PathCase{"StartWithPrefix", kAssertion, "saml:Assertion/Issuer", nullptr},
        PathCase{"StepWithPrefix", "<a><saml:Issuer>x</saml:Issuer></a>", "a/saml:Issuer", nullptr},
        PathCase{"StepWithoutItsPrefix", "<a><saml:Issuer>x</saml:Issuer></a>", "a/Issuer", "x"},
        PathCase{"Deeper", kAssertion, "Assertion/Subject/NameID", "jdoe"},
        PathCase{"AnyInTheMiddle", "<a><b><c>x</c></b></a>", "a/*/c", "x"},
        PathCase{"AnyAtTheEnd", "<a><b><c>x</c></b></a>", "a/b/*", "x"},
        PathCase{"AnyEverywhere", "<a><b><c>x</c></b></a>", "*/*/*", "x"},
        PathCase{"TooDeep", kAssertion, "Assertion/Issuer/Issuer", nullptr},
        PathCase{"OtherCase", kAssertion, "Assertion/issuer", nullptr},
        PathCase{"OuterSeparators", kAssertion, "/Assertion/Issuer/", "idp"},
        PathCase{"DoubleSeparators", kAssertion, "//Assertion///Issuer//", "idp"},
        PathCase{"TheStartItself", "<a>x</a>", "a", "x"},
        PathCase{"AnyStartItself", "<a>x</a>", "*", "x"},
        PathCase{"AttributeOfTheStart", kAssertion, "Assertion/@ID", "_1"},
        PathCase{"AttributeOfAnyStart", kAssertion, "*/@ID", "_1"},
        PathCase{"AttributeBelow", kAssertion, "Assertion/Issuer/@Format", "f"},
        PathCase{"AttributeAsWritten", kAssertion, "Assertion/Subject/NameID/@xsi:type", "t"},
        PathCase{"AttributeWithoutItsPrefix", kAssertion, "Assertion/Subject/NameID/@type",
                 nullptr},
        PathCase{"DeclarationAsAttribute", kAssertion, "Assertion/@xmlns:saml", "urn:saml"},
        PathCase{"EmptyAttribute", kAssertion, "Assertion/@empty", ""},
        PathCase{"AbsentAttribute", kAssertion, "Assertion/@Nope", nullptr},
        PathCase{"NamelessAttribute", kAssertion, "Assertion/@", nullptr},
        PathCase{"AnyAttribute", kAssertion, "Assertion/@*", nullptr},
        PathCase{"StepsBehindAnAttributeAreIgnored", kAssertion, "Assertion/@ID/Ignored", "_1"},
        PathCase{"AttributesBehindAnAttributeAreIgnored", kAssertion, "Assertion/@ID/@Nope", "_1"},
        PathCase{"StepsBehindAnAbsentAttribute", kAssertion, "Assertion/@Nope/Issuer", nullptr},
        PathCase{"AttributeInPlaceOfTheStart", kAssertion, "@ID", nullptr},
        PathCase{"NilElementsAreNotSkipped", kAssertion, "Assertion/Nil", "nil"},
        PathCase{"AnEmptyElementHasNoValue", kAssertion, "Assertion/Empty", nullptr},
        PathCase{"AnElementFirstIsNoValue", "<a><b/>x</a>", "a", nullptr},
        PathCase{"ACommentFirstIsNoValue", "<Issuer><!--c-->idp</Issuer>", "Issuer", nullptr},
        PathCase{"ASectionFirstIsNoValue", "<a><![CDATA[x]]>y</a>", "a", nullptr},
        PathCase{"ATextBeforeOthersIsTheValue", "<a>x<b/>y</a>", "a", "x"},
        PathCase{"BlanksAreAValue", "<a> <b/></a>", "a", " "},
        PathCase{"OtherNodesAreNoSteps", "<a>x<!--b--><![CDATA[b]]><b>y</b></a>", "a/b", "y"},
        PathCase{"NoSteps", kAssertion, "", nullptr},
        PathCase{"SeparatorsOnly", kAssertion, "///", nullptr}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(EvaluateSimplePath, TakesTheFirstMatchAndDoesNotGoBack) {
    const Held<Document> document =
        Parsed("<r><A><x>1</x></A><A><B>2</B></A><C k='3'/><C>4</C><D/><D>5</D></r>");
    EXPECT_EQ(Simple(*document, "r/A/x"), "1");
    EXPECT_EQ(Simple(*document, "r/A/B"), std::nullopt) << "only the second A has a B";
    EXPECT_EQ(Simple(*document, "r/*/B"), std::nullopt);
    EXPECT_EQ(Simple(*document, "r/C/@k"), "3");
    EXPECT_EQ(Simple(*document, "r/D"), std::nullopt) << "the first D has no value";
}

TEST(EvaluateSimplePath, TakesAnEmptyTextForAValue) {
    const Held<ElementNode> element = NewElement("a");
    element->AppendChild(NewText("").get());
    std::string value = "untouched";
    EXPECT_TRUE(EvaluateSimplePath(element.get(), "a", value));
    EXPECT_EQ(value, "");
}

TEST(EvaluateMultiPath, TellsTheValuesInDocumentOrder) {
    const Held<Document> document = Parsed("<A><B>1</B><B/><B>2</B></A>");
    EXPECT_EQ(Multi(*document, "A/B"), (Values{"1", "2"}));
}

TEST(EvaluateMultiPath, IsFalseAndEmptyWhereNoneHasAValue) {
    const Held<Document> document = Parsed("<A><B/><B><!--c-->1</B><B><C/></B></A>");
    EXPECT_EQ(Multi(*document, "A/B"), Values{});
}

TEST(EvaluateMultiPath, BranchesAtEveryStep) {
    const Held<Document> document = Parsed(
        "<r><a><b k='1'>x</b><c>no</c><b>y</b></a><d><b>z</b></d><a/><a><b "
        "k='2'/><b>w</b></a></r>");
    EXPECT_EQ(Multi(*document, "r/a/b"), (Values{"x", "y", "w"}));
    EXPECT_EQ(Multi(*document, "r/*/b"), (Values{"x", "y", "z", "w"}));
    EXPECT_EQ(Multi(*document, "*/*/*"), (Values{"x", "no", "y", "z", "w"}));
    EXPECT_EQ(Multi(*document, "r/a/b/@k"), (Values{"1", "2"}));
    EXPECT_EQ(Multi(*document, "r/a/b/@k/ignored/@too"), (Values{"1", "2"}));
    EXPECT_EQ(Multi(*document, "r/*/b/@k"), (Values{"1", "2"}));
}

TEST(EvaluateMultiPath, GoesDepthFirst) {
    const Held<Document> document =
        Parsed("<r><a><b>1</b><b>2</b></a><a><b>3</b></a><a><b>4</b><b>5</b></a></r>");
    EXPECT_EQ(Multi(*document, "r/a/b"), (Values{"1", "2", "3", "4", "5"}));
}

TEST(EvaluateMultiPath, StaysBelowItsStart) {
    const Held<Document> document = Parsed("<r><a><b>1</b></a><a><b>2</b></a></r>");
    ElementNode* const a = document->GetRootElement()->GetFirstChildElement("a");
    Values values;
    EXPECT_TRUE(EvaluateMultiPath(a, "a/b", values));
    EXPECT_EQ(values, Values{"1"});
    EXPECT_TRUE(EvaluateMultiPath(a, "*/*", values));
    EXPECT_EQ(values, Values{"1"});
}

TEST(EvaluateMultiPath, TakesNilElementsLikeAnyOther) {
    const Held<Document> document = Parsed("<r><a xsi:nil='true'>1</a><a>2</a></r>");
    EXPECT_EQ(Multi(*document, "r/a"), (Values{"1", "2"}));
}

TEST(PathFromNull, GivesNothing) {
    std::string value = "untouched";
    EXPECT_FALSE(EvaluateSimplePath(static_cast<ElementNode*>(nullptr), "a", value));
    EXPECT_EQ(value, "untouched");
    Values values{"left over"};
    EXPECT_FALSE(EvaluateMultiPath(static_cast<ElementNode*>(nullptr), "a", values));
    EXPECT_EQ(values, Values{});
}

TEST(PathFromADocument, NeedsARoot) {
    const Held<Document> empty = NewDocument();
    empty->AppendChild(CreateCommentNode());
    for (Document* document : {empty.get(), static_cast<Document*>(nullptr)}) {
        std::string value = "untouched";
        EXPECT_EQ(
            MessageOf<InvalidArgumentException>([&] { EvaluateSimplePath(document, "a", value); }),
            "Document has no root.");
        EXPECT_EQ(value, "untouched");
        Values values;
        EXPECT_EQ(
            MessageOf<InvalidArgumentException>([&] { EvaluateMultiPath(document, "a", values); }),
            "Document has no root.");
    }
}

}  // namespace
}  // namespace Saml::Xml
