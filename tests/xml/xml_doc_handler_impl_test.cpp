#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

struct TreeCase {
    const char* name;
    std::string text;
    std::string outline;
};

class ParsedTree : public testing::TestWithParam<TreeCase> {};

TEST_P(ParsedTree, HoldsWhatTheTextSays) {
    const Held<Document> document = Parsed(GetParam().text);
    EXPECT_EQ(Outline(*document), GetParam().outline);
    ExpectSoundLinks(*document);
}

INSTANTIATE_TEST_SUITE_P(
    XMLDocHandlerImpl, ParsedTree,
    testing::Values(
        TreeCase{"Elements", "<a><b><c/></b><d/></a>", "#document{a{b{c} d}}"},
        TreeCase{"TextAroundASection", "<a>x<![CDATA[y]]>z</a>",
                 "#document{a{\"x\" CDATA{\"y\"} \"z\"}}"},
        TreeCase{"TextInSeveralRuns", "<a>a&amp;b</a>", "#document{a{\"a&b\"}}"},
        TreeCase{"TextInManyRuns", "<a>1&#50;\r\n&lt;\r3\xC3\xA9</a>",
                 "#document{a{\"12\n<\n3\xC3\xA9\"}}"},
        TreeCase{"TextSplitByAComment", "<a>x<!--c-->y</a>", "#document{a{\"x\" <!--c--> \"y\"}}"},
        TreeCase{"TextSplitByAnElement", "<a>x<b/>y</a>", "#document{a{\"x\" b \"y\"}}"},
        TreeCase{"BlanksAreText", "<a> <b/>\n\t</a>", "#document{a{\" \" b \"\n\t\"}}"},
        TreeCase{"NothingIsTrimmed", "<a>\n x \n</a>", "#document{a{\"\n x \n\"}}"},
        TreeCase{"OuterBlanksLeaveNoTrace", " \n<a/> \n", "#document{a}"},
        TreeCase{"ASectionInSeveralRuns", "<a><![CDATA[1\n<2>\n]]></a>",
                 "#document{a{CDATA{\"1\n<2>\n\"}}}"},
        TreeCase{"AnEmptySection", "<a><![CDATA[]]></a>", "#document{a{CDATA}}"},
        TreeCase{"NeighbouringSections", "<a><![CDATA[x]]><![CDATA[y]]></a>",
                 "#document{a{CDATA{\"x\"} CDATA{\"y\"}}}"},
        TreeCase{"CommentsAroundTheRoot", "<!--b--><a/><!--e-->", "#document{<!--b--> a <!--e-->}"},
        TreeCase{"InstructionsAroundTheRoot", "<?p  d ?><a/><?q?>", "#document{<?p d ?> a <?q ?>}"},
        TreeCase{"TheDeclarationIsNoNode", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>",
                 "#document{a}"},
        TreeCase{"TheDoctypeIsNoNode", "<!DOCTYPE a PUBLIC 'p' 's' [<!ELEMENT a ANY>]><a/>",
                 "#document{a}"},
        TreeCase{"CommentsOfTheInternalSubset", "<!DOCTYPE a [<!--c--><?p d?>]><a/>",
                 "#document{<!--c--> <?p d?> a}"},
        TreeCase{"EntitiesExpanded", "<!DOCTYPE a [<!ENTITY e 'x<b>y</b>'>]><a>1&e;2</a>",
                 "#document{a{\"1x\" b{\"y\"} \"2\"}}"},
        TreeCase{"EntityTextJoinsItsSurroundings", "<!DOCTYPE a [<!ENTITY e 'x'>]><a>1&e;2</a>",
                 "#document{a{\"1x2\"}}"},
        TreeCase{"ExternalEntitiesLeaveNoTrace",
                 "<!DOCTYPE a [<!ENTITY e SYSTEM 'none'>]><a>1&e;2</a>", "#document{a{\"12\"}}"},
        TreeCase{"AttributesWithTheirDeclarations",
                 "<p:a xmlns:p='u' xmlns='d' ID='_1' p:x='&lt;'/>",
                 "#document{p:a[ID=_1 p:x=< xmlns=d xmlns:p=u]}"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ParsedDocument, KnowsItsDeclaration) {
    const Held<Document> document = Parsed("<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>");
    EXPECT_EQ(document->GetVersion(), "1.0");
    EXPECT_EQ(document->GetEncoding(), "UTF-8");
}

TEST(ParsedDocument, HasEmptyTextsForWhatTheDeclarationLacks) {
    const Held<Document> partial = Parsed("<?xml version='1.0' standalone='no'?><a/>");
    EXPECT_EQ(partial->GetVersion(), "1.0");
    EXPECT_EQ(partial->GetEncoding(), "");
    const Held<Document> none = Parsed("<a/>");
    EXPECT_EQ(none->GetVersion(), "");
    EXPECT_EQ(none->GetEncoding(), "");
}

TEST(ParsedDocument, KnowsItsRoot) {
    const Held<Document> document = Parsed("<!--c--><a/><!--d-->");
    EXPECT_EQ(document->GetRootElement(), document->GetFirstChild()->GetNextSibling());
}

TEST(ParsedElement, KnowsItsPosition) {
    const Held<Document> document = Parsed("<!--c-->\n  <a\nx='1'><b/>\n<c/></a>");
    ElementNode* const a = document->GetRootElement();
    EXPECT_EQ(a->GetLine(), 2);
    EXPECT_EQ(a->GetColumn(), 2);
    EXPECT_EQ(a->GetFirstChildElement("b")->GetLine(), 3);
    EXPECT_EQ(a->GetFirstChildElement("b")->GetColumn(), 6);
    EXPECT_EQ(a->GetFirstChildElement("c")->GetLine(), 4);
    EXPECT_EQ(a->GetFirstChildElement("c")->GetColumn(), 0);
}

/// A document handler driven by hand, as a parser drives it.
class DocumentHandler : public testing::Test {
  protected:
    void Start(const char* name) {
        const char* noAttributes[] = {nullptr};
        handler_->StartElement(name, 1, 0, noAttributes);
    }
    void Text(const std::string& text) {
        handler_->Characters(text.data(), static_cast<int>(text.size()));
    }

    Held<XMLHandler> handler_{CreateXMLDocumentHandler(0, 0, 0)};
    Held<Node> document_;
};

TEST_F(DocumentHandler, HandsANewDocumentOutAtItsStart) {
    handler_->StartDocument(document_);
    ASSERT_NE(document_, nullptr);
    EXPECT_EQ(document_->GetType(), 0);
    Start("a");
    Text("t");
    handler_->EndElement("a");
    EXPECT_EQ(Outline(*document_), "#document{a{\"t\"}}");
}

TEST_F(DocumentHandler, OwnsTheDocumentUntilItsReset) {
    handler_->StartDocument(false, document_);
    EXPECT_EQ(document_->use_count(), 2u);
    handler_->Reset();
    EXPECT_EQ(document_->use_count(), 1u);
    handler_->Reset();
    EXPECT_EQ(document_->use_count(), 1u);
}

TEST_F(DocumentHandler, BeginsAfreshWithEveryStart) {
    handler_->StartDocument(document_);
    Start("a");
    const Held<Node> first = document_;
    handler_->StartDocument(document_);
    Start("b");
    EXPECT_EQ(Outline(*first), "#document{a}");
    EXPECT_EQ(Outline(*document_), "#document{b}");
    EXPECT_EQ(first->use_count(), 1u);
}

TEST_F(DocumentHandler, CopiesWhatItIsTold) {
    handler_->StartDocument(document_);
    std::string name = "a";
    std::string attribute = "x";
    std::string value = "1";
    {
        const char* attributes[] = {attribute.c_str(), value.c_str(), nullptr};
        handler_->StartElement(name, 3, 4, attributes);
        name = attribute = value = "overwritten";
    }
    EXPECT_EQ(Outline(*document_), "#document{a[x=1]}");
}

TEST_F(DocumentHandler, EnforcesNothingByItsShortStart) {
    handler_->StartDocument(document_);
    Start("a");
    Text("text");
    handler_->Comment("comment");
    EXPECT_EQ(Outline(*document_), "#document{a{\"text\" <!--comment-->}}");
}

TEST_F(DocumentHandler, EnforcesItsLimitsByTheOtherStart) {
    handler_->StartDocument(true, document_);
    EXPECT_EQ(MessageOf<ParsingAbortedException>([&] { Start("a"); }), "");
}

TEST_F(DocumentHandler, SurvivesAnEndWithoutItsStart) {
    handler_->StartDocument(document_);
    handler_->EndElement("a");
    handler_->EndCData();
    Start("a");
    handler_->EndElement("a");
    handler_->EndElement("a");
    handler_->EndCData();
    handler_->Comment("c");
    EXPECT_EQ(Outline(*document_), "#document{a <!--c-->}");

    handler_->Reset();
    handler_->EndElement("a");
    handler_->EndCData();
    EXPECT_EQ(Outline(*document_), "#document{a <!--c-->}");
}

TEST_F(DocumentHandler, RefusesEventsOutsideADocument) {
    const auto expectRefusals = [&] {
        for (const int event : {0, 1, 2, 3, 4, 5})
            EXPECT_EQ(MessageOf<InternalErrorException>([&] {
                          if (event == 0) Start("a");
                          if (event == 1) Text("t");
                          if (event == 2) handler_->StartCData();
                          if (event == 3) handler_->Comment("c");
                          if (event == 4) handler_->ProcessingInstruction("p", "d");
                          if (event == 5) handler_->XmlDeclaration("1.0", "");
                      }),
                      "An event arrived outside a document.")
                << event;
    };
    expectRefusals();
    handler_->StartDocument(document_);
    Start("a");
    handler_->Reset();
    expectRefusals();
    EXPECT_EQ(Outline(*document_), "#document{a}");
}

TEST_F(DocumentHandler, JoinsRunsOfCharactersOnly) {
    handler_->StartDocument(document_);
    Start("a");
    Text("x");
    Text("");
    Text(std::string("\0y", 2));
    handler_->Characters("ignored", -1);
    handler_->StartCData();
    Text("s");
    Text("t");
    handler_->EndCData();
    Text("z");
    EXPECT_EQ(Outline(*document_),
              "#document{a{\"x" + std::string("\0y", 2) + "\" CDATA{\"st\"} \"z\"}}");
}

TEST_F(DocumentHandler, LetsTheLastOfTwoEqualAttributesHold) {
    handler_->StartDocument(document_);
    const char* attributes[] = {"x", "1", "y", "2", "x", "3", nullptr};
    handler_->StartElement("a", 1, 0, attributes);
    EXPECT_EQ(Outline(*document_), "#document{a[x=3 y=2]}");
}

TEST_F(DocumentHandler, KeepsTheRulesOfTheTree) {
    handler_->StartDocument(document_);
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { Text("t"); }),
              "DocumentNode cannot have text node children");
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { handler_->StartCData(); }),
              "DocumentNode cannot have CData node children");
    Start("a");
    EXPECT_EQ(
        MessageOf<InvalidArgumentException>([&] { handler_->ProcessingInstruction("p", "d"); }),
        "Elements cannot have document or PI children.");
    handler_->StartCData();
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { Start("b"); }),
              "Cannot add non-text child to CData node.");
    handler_->EndCData();
    handler_->EndElement("a");
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { Start("b"); }),
              "Document's Root Element Node already set");
    EXPECT_EQ(Outline(*document_), "#document{a{CDATA}}");
}

}  // namespace
}  // namespace Saml::Xml
