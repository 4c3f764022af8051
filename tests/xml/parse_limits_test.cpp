#include "saml/xml/parse_limits.h"

#include "support/sliced_reader.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <expat.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <limits>
#include <string>

namespace Saml::Xml {
namespace {

constexpr long long kUnlimited = LLONG_MAX;

/// The refused parser serves on: it builds from the same text what a new one does.
void ExpectServesOn(XMLParser& parser, const std::string& text) {
    Held<Node> document;
    parser.Parse(text, document);
    EXPECT_EQ(Outline(*document), Outline(*Parsed(text)));
}

/// Whether a document handler with these limits accepts `text`.
bool IsAccepted(const std::string& text, long long size, long long nodes, long long depth,
                bool enforce = true) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(size, nodes, depth)));
    Held<Node> document;
    try {
        parser->Parse(text, enforce, document);
    } catch (const XMLParseException& rejected) {
        EXPECT_STREQ(rejected.what(), XML_ErrorString(XML_ERROR_ABORTED)) << text;
        EXPECT_EQ(document, nullptr);
        ExpectServesOn(*parser, text);
        return false;
    }
    EXPECT_NE(document, nullptr);
    return true;
}

struct Measure {
    const char* name;
    std::string text;
    long long size;   // bytes of names, values and character data
    long long nodes;  // without the document
    long long depth;  // the most open ancestors that any node has
};

class LimitBoundary : public testing::TestWithParam<Measure> {};

TEST_P(LimitBoundary, IsTheExactTotalSize) {
    const Measure& measure = GetParam();
    EXPECT_TRUE(IsAccepted(measure.text, measure.size, kUnlimited, kUnlimited));
    EXPECT_FALSE(IsAccepted(measure.text, measure.size - 1, kUnlimited, kUnlimited));
    EXPECT_TRUE(IsAccepted(measure.text, measure.size - 1, kUnlimited, kUnlimited, false));
}

TEST_P(LimitBoundary, IsTheExactNodeCount) {
    const Measure& measure = GetParam();
    EXPECT_TRUE(IsAccepted(measure.text, kUnlimited, measure.nodes, kUnlimited));
    EXPECT_FALSE(IsAccepted(measure.text, kUnlimited, measure.nodes - 1, kUnlimited));
    EXPECT_TRUE(IsAccepted(measure.text, kUnlimited, measure.nodes - 1, kUnlimited, false));
}

TEST_P(LimitBoundary, IsTheExactDepth) {
    const Measure& measure = GetParam();
    EXPECT_TRUE(IsAccepted(measure.text, kUnlimited, kUnlimited, measure.depth));
    EXPECT_FALSE(IsAccepted(measure.text, kUnlimited, kUnlimited, measure.depth - 1));
    EXPECT_TRUE(IsAccepted(measure.text, kUnlimited, kUnlimited, measure.depth - 1, false));
}

INSTANTIATE_TEST_SUITE_P(
    XMLDocHandlerImpl, LimitBoundary,
    testing::Values(
        Measure{"OneElement", "<abc/>", 3, 1, 0}, Measure{"APrefixCounts", "<p:a/>", 3, 1, 0},
        Measure{"OneAttribute", "<abc x=\"12345\"/>", 3 + 1 + 5, 1, 0},
        Measure{"ALongerAttributeName", "<abc xy=\"12345\"/>", 3 + 2 + 5, 1, 0},
        Measure{"SeveralAttributes", "<a x='1' yy='22' z=''/>", 1 + 2 + 4 + 1, 1, 0},
        Measure{"NamespaceDeclarations", "<a xmlns='dd' xmlns:p='u'/>", 1 + 7 + 8, 1, 0},
        Measure{"AttributeDefaults", "<!DOCTYPE a [<!ATTLIST a x CDATA 'd'>]><a/>", 1 + 2, 1, 0},
        Measure{"UnescapedAttributeValues", "<a x='&lt;&#x20AC;'/>", 1 + 1 + 1 + 3, 1, 0},
        Measure{"Text", "<a>xyz</a>", 1 + 3, 2, 1},
        Measure{"TextInBytes", "<a>\xC3\xA9\xE2\x82\xAC</a>", 1 + 2 + 3, 2, 1},
        Measure{"UnescapedText", "<a>&#x41;</a>", 1 + 1, 2, 1},
        Measure{"LineEndsOfTwoCharacters", "<a>\r\n</a>", 1 + 1, 2, 1},
        Measure{"ATextOfSeveralRunsIsOneNode", "<a>a&amp;b</a>", 1 + 3, 2, 1},
        Measure{"ATextOfSeveralLinesIsOneNode", "<a>1\n2\n3\n</a>", 1 + 6, 2, 1},
        Measure{"TextsAroundAnElement", "<a>x<b/>y</a>", 1 + 1 + 1 + 1, 4, 1},
        Measure{"TextsAroundAComment", "<a>x<!--cc-->y</a>", 1 + 1 + 2 + 1, 4, 1},
        Measure{"BlanksCount", "<a> <b/>\n</a>", 1 + 1 + 1 + 1, 4, 1},
        Measure{"OuterBlanksDoNotCount", " \n<a/>\n ", 1, 1, 0},
        Measure{"ASectionWithText", "<a><![CDATA[xy]]></a>", 1 + 0 + 2, 3, 2},
        Measure{"ASectionOfSeveralRuns", "<a><![CDATA[x\ny]]></a>", 1 + 0 + 3, 3, 2},
        Measure{"AnEmptySection", "<a><![CDATA[]]></a>", 1, 2, 1},
        Measure{"TwoSections", "<a><![CDATA[x]]><![CDATA[y]]></a>", 1 + 1 + 1, 5, 2},
        Measure{"ACommentInside", "<a><!--xyz--></a>", 1 + 3, 2, 1},
        Measure{"ACommentOutside", "<!--xyz--><a/>", 3 + 1, 2, 0},
        Measure{"AnEmptyComment", "<a><!----></a>", 1, 2, 1},
        Measure{"AnInstruction", "<?pi data?><a/>", 2 + 4 + 1, 2, 0},
        Measure{"AnInstructionWithoutData", "<a/><?pi?>", 2 + 1, 2, 0},
        Measure{"ACommentOfTheInternalSubset", "<!DOCTYPE a [<!--xy-->]><a/>", 2 + 1, 2, 0},
        Measure{"TheDeclaration", "<?xml version='1.0' encoding='UTF-8'?><a/>", 3 + 5 + 1, 1, 0},
        Measure{"TheDeclarationWithoutEncoding", "<?xml version='1.0'?><a/>", 3 + 1, 1, 0},
        Measure{"NestedElements", "<a><b><c/></b></a>", 3, 3, 2},
        Measure{"ATextBelowNestedElements", "<a><b><c>t</c></b></a>", 4, 4, 3},
        Measure{"ACommentBelowNestedElements", "<a><b><c><!--t--></c></b></a>", 4, 4, 3},
        Measure{"ASectionBelowNestedElements", "<a><b><![CDATA[]]></b></a>", 2, 3, 2},
        Measure{"TheDeepestBranchCounts", "<a><b/><c><d><e/></d></c><f/></a>", 6, 6, 3},
        Measure{"NodesBehindADeepBranch", "<a><b><c/></b><d>t</d></a>", 5, 5, 2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ParseWithLimits, RefusesThreeLevelsBelowTheRootAtDepthTwo) {
    const std::string text = "<root><a><b><c/></b></a></root>";
    EXPECT_FALSE(IsAccepted(text, kUnlimited, kUnlimited, 2));
    EXPECT_TRUE(IsAccepted(text, kUnlimited, kUnlimited, 2, false));
}

TEST(ParseWithLimits, RefusesOneCharacterMoreThanTheTotalSize) {
    EXPECT_TRUE(IsAccepted("<abc x=\"12345\"/>", 10, kUnlimited, kUnlimited));
    EXPECT_TRUE(IsAccepted("<abc xy=\"12345\"/>", 10, kUnlimited, kUnlimited));
    EXPECT_FALSE(IsAccepted("<abc xyz=\"12345\"/>", 10, kUnlimited, kUnlimited));
    EXPECT_FALSE(IsAccepted("<abc xy=\"123456\"/>", 10, kUnlimited, kUnlimited));
}

TEST(ParseWithLimits, RefusesTheFourthNodeAtANodeCountOfThree) {
    EXPECT_FALSE(IsAccepted("<a>x<b/>y</a>", kUnlimited, 3, kUnlimited));
    EXPECT_TRUE(IsAccepted("<a><b/></a>", kUnlimited, 3, kUnlimited));
}

TEST(ParseWithLimits, RefusesEverythingAtANegativeLimit) {
    for (const long long negative : {-1LL, LLONG_MIN}) {
        EXPECT_FALSE(IsAccepted("<a/>", negative, kUnlimited, kUnlimited)) << negative;
        EXPECT_FALSE(IsAccepted("<a/>", kUnlimited, negative, kUnlimited)) << negative;
        EXPECT_FALSE(IsAccepted("<a/>", kUnlimited, kUnlimited, negative)) << negative;
        EXPECT_TRUE(IsAccepted("<a/>", negative, negative, negative, false)) << negative;
    }
}

TEST(ParseWithLimits, CountsEveryDocumentAnew) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(4, 2, 1)));
    for (int turn = 0; turn < 10; ++turn) {
        Held<Node> document;
        parser->Parse("<a>xyz</a>", true, document);
        EXPECT_EQ(Outline(*document), "#document{a{\"xyz\"}}");
    }
}

TEST(ParseWithLimits, CountsAnewAfterARefusal) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(4, 2, 1)));
    for (const std::string tooMuch : {"<a>wxyz</a>", "<a>x<b/></a>", "<a><b><c/></b></a>"}) {
        Held<Node> document;
        EXPECT_THROW(parser->Parse(tooMuch, true, document), XMLParseException);
        parser->Parse("<a>xyz</a>", true, document);
        EXPECT_EQ(Outline(*document), "#document{a{\"xyz\"}}");
    }
}

TEST(ParseWithLimits, ForgetsTheSwitchWithEveryDocument) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(4, 2, 1)));
    const std::string text = "<a>wxyz<b><c/></b></a>";
    for (int turn = 0; turn < 2; ++turn) {
        Held<Node> document;
        EXPECT_THROW(parser->Parse(text, true, document), XMLParseException);
        parser->Parse(text, document);
        EXPECT_EQ(Outline(*document), "#document{a{\"wxyz\" b{c}}}");
    }
}

TEST(ParseWithLimits, ReportsTheLineWhereALimitIsCrossed) {
    // a, line feed, b, line feed: the fifth node stands on the third line.
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(100, 4, 100)));
    Held<Node> document;
    try {
        parser->Parse("<a>\n<b/>\n<c/>\n<d/></a>", true, document);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const XMLParseException& rejected) {
        EXPECT_EQ(rejected.line, 3u);
    }
}

TEST(ParseWithLimits, ReadsNoFurtherThanALimitIsCrossed) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(100000, 10, 10)));
    SlicedReader reader("<a>" + std::string(10000000, 'x'), 10240);
    Held<Node> document;
    EXPECT_THROW(parser->Parse(reader, true, document), XMLParseException);
    // 1 + (10 * 10240 - 3) bytes of name and text cross the limit.
    EXPECT_EQ(reader.requests.size(), 10u);
}

TEST(ParseWithLimits, RefusesInTheMiddleOfAnAttributeList) {
    EXPECT_FALSE(IsAccepted("<a x='1' y='2' z='3'/>", 6, kUnlimited, kUnlimited));
    EXPECT_TRUE(IsAccepted("<a x='1' y='2' z='3'/>", 7, kUnlimited, kUnlimited));
}

TEST(ParseLimits, AreFarOutAtTheEndOfTheirRange) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    ParseLimits limits(kMost, kMost, kMost);
    limits.Start(true);
    limits.CountSize(static_cast<std::size_t>(kMost));
    EXPECT_THROW(limits.CountSize(1), ParsingAbortedException);
    limits.Start(true);
    EXPECT_THROW(limits.CountNode(static_cast<std::size_t>(kMost) + 1), ParsingAbortedException);
    EXPECT_NO_THROW(limits.CheckDepth(static_cast<std::size_t>(kMost)));
    EXPECT_THROW(limits.CheckDepth(static_cast<std::size_t>(kMost) + 1), ParsingAbortedException);
}

TEST(ParseLimits, DoNothingBeforeAStartAndWithoutEnforcement) {
    ParseLimits limits(0, 0, 0);
    EXPECT_NO_THROW(limits.CountNode(1));
    EXPECT_NO_THROW(limits.CountSize(1));
    EXPECT_NO_THROW(limits.CheckDepth(1));
    limits.Start(false);
    EXPECT_NO_THROW(limits.CountNode(1));
    EXPECT_NO_THROW(limits.CountSize(1));
    EXPECT_NO_THROW(limits.CheckDepth(1));
    limits.Start(true);
    EXPECT_NO_THROW(limits.CountSize(0));
    EXPECT_THROW(limits.CountNode(0), ParsingAbortedException);
    EXPECT_THROW(limits.CheckDepth(1), ParsingAbortedException);
}

TEST(ParseLimits, ThrowWithoutAMessage) {
    ParseLimits limits(0, 0, 0);
    limits.Start(true);
    EXPECT_EQ(MessageOf<ParsingAbortedException>([&] { limits.CountSize(1); }), "");
}

}  // namespace
}  // namespace Saml::Xml
