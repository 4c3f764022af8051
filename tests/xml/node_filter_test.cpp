#include "saml/xml/node_filter.h"

#include "saml/xml/filtered_node_cursor.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

const NodeImpl& Impl(Node& node) {
    return dynamic_cast<const NodeImpl&>(node);
}
NodeImpl* MutableImpl(Node* node) {
    return &dynamic_cast<NodeImpl&>(*node);
}

/// The children that a cursor over `parent` meets, in one line.
std::string Seen(Node& parent, const NodeFilter& filter) {
    FilteredNodeCursor cursor(MutableImpl(&parent), filter);
    EXPECT_EQ(cursor.Current(), &parent);
    EXPECT_EQ(&cursor.Filter(), &filter);
    std::string seen;
    cursor.MoveToFirstChild();
    while (cursor.Current() != nullptr) {
        seen += (seen.empty() ? "" : " ") + Outline(*cursor.Current());
        cursor.MoveToNextSibling();
    }
    return seen;
}

TEST(AcceptAllNodesFilter, AcceptsEveryKind) {
    const AcceptAllNodesFilter filter;
    for (const Held<Node>& node : std::vector<Held<Node>>{
             NewDocument(), NewText(), NewCData(), NewComment(), NewElement("a"), NewInstruction()})
        EXPECT_TRUE(filter.Accept(Impl(*node))) << node->GetType();
}

TEST(SkipWsAndCommentsFilter, HidesCommentsOnlyOfTheOtherKinds) {
    const SkipWsAndCommentsFilter filter;
    EXPECT_FALSE(filter.Accept(Impl(*NewComment())));
    EXPECT_FALSE(filter.Accept(Impl(*NewComment("text"))));
    for (const Held<Node>& node :
         std::vector<Held<Node>>{NewDocument(), NewCData(), NewElement("a"), NewInstruction()})
        EXPECT_TRUE(filter.Accept(Impl(*node))) << node->GetType();
}

TEST(SkipWsAndCommentsFilter, KeepsASectionOfBlanks) {
    const SkipWsAndCommentsFilter filter;
    const Held<CDataNode> section = NewCData();
    section->AppendChild(NewText("  ").get());
    EXPECT_TRUE(filter.Accept(Impl(*section)));
}

TEST(SkipWsAndCommentsFilter, HidesTextsOfTheFourBlanksOnly) {
    const SkipWsAndCommentsFilter filter;
    for (const std::string blank : {"", " ", "\t", "\n", "\r", " \t\r\n \t"})
        EXPECT_FALSE(filter.Accept(Impl(*NewText(blank)))) << testing::PrintToString(blank);
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const bool isBlank = byte == 0x09 || byte == 0x0A || byte == 0x0D || byte == 0x20;
        EXPECT_EQ(filter.Accept(Impl(*NewText(text))), !isBlank) << byte;
        EXPECT_EQ(filter.Accept(Impl(*NewText("  " + text + "\n"))), !isBlank) << byte;
    }
    // No-break space and ideographic space are characters like any other.
    EXPECT_TRUE(filter.Accept(Impl(*NewText("\xC2\xA0"))));
    EXPECT_TRUE(filter.Accept(Impl(*NewText("\xE3\x80\x80"))));
}

TEST(SkipWsAndCommentsFilter, HasTwoNamesForOneRule) {
    const ::Saml::SkipWsAndCommentsFilter filter;
    const ::Saml::NodeFilter& asFilter = filter;
    EXPECT_FALSE(asFilter.Accept(Impl(*NewText(" "))));
    EXPECT_FALSE(asFilter.Accept(Impl(*NewComment())));
    EXPECT_TRUE(asFilter.Accept(Impl(*NewText("x"))));
}

TEST(ExcludeNodeFilter, HidesExactlyOneNode) {
    const Held<Document> document = Parsed("<r><a/><a/></r>");
    Node* const first = document->GetRootElement()->GetFirstChild();
    const ExcludeNodeFilter filter(&Impl(*first));
    EXPECT_FALSE(filter.Accept(Impl(*first)));
    EXPECT_TRUE(filter.Accept(Impl(*first->GetNextSibling())));
    EXPECT_TRUE(filter.Accept(Impl(*document)));
}

TEST(ExcludeNodeFilter, HidesNothingForNull) {
    const ExcludeNodeFilter filter(nullptr);
    EXPECT_TRUE(filter.Accept(Impl(*NewElement("a"))));
}

TEST(ExcludeNodeFilter, KeepsItsNodeAlive) {
    Held<ElementNode> element = NewElement("a");
    const NodeImpl& node = Impl(*element);
    const ExcludeNodeFilter filter(&node);
    EXPECT_EQ(element->use_count(), 2u);
    element.reset();
    EXPECT_FALSE(filter.Accept(node));
}

TEST(FilteredNodeCursor, SeesAllChildrenThroughTheOpenFilter) {
    const Held<Document> document = Parsed("<r> <a/>t<!--c--><![CDATA[s]]>\n</r>");
    EXPECT_EQ(Seen(*document->GetRootElement(), AcceptAllNodesFilter()),
              "\" \" a \"t\" <!--c--> CDATA{\"s\"} \"\n\"");
}

TEST(FilteredNodeCursor, SkipsRejectedNodesWhereverTheyStand) {
    const SkipWsAndCommentsFilter filter;
    const Held<Document> document =
        Parsed("<r> <!--c--> <a><b/></a><!--c-->\n<!--d-->t<![CDATA[ ]]> <!--e--></r>");
    EXPECT_EQ(Seen(*document->GetRootElement(), filter), "a{b} \"t\" CDATA{\" \"}");
    EXPECT_EQ(Seen(*Parsed("<r> <!--c--> </r>")->GetRootElement(), filter), "");
    EXPECT_EQ(Seen(*Parsed("<r/>")->GetRootElement(), filter), "");
    EXPECT_EQ(Seen(*NewText("t"), filter), "");
}

TEST(FilteredNodeCursor, SkipsARejectedNodeWithItsSubtree) {
    const Held<Document> document = Parsed("<r><a><x/></a><b/></r>");
    Node* const a = document->GetRootElement()->GetFirstChild();
    EXPECT_EQ(Seen(*document->GetRootElement(), ExcludeNodeFilter(&Impl(*a))), "b");
}

TEST(FilteredNodeCursor, DoesNotAskAboutTheNodeThatItStartsFrom) {
    const Held<Document> document = Parsed("<r><a/></r>");
    Node* const root = document->GetRootElement();
    EXPECT_EQ(Seen(*root, ExcludeNodeFilter(&Impl(*root))), "a");
}

TEST(FilteredNodeCursor, IsAValue) {
    const SkipWsAndCommentsFilter filter;
    const Held<Document> document = Parsed("<r> <a/> <b/></r>");
    FilteredNodeCursor cursor(MutableImpl(document->GetRootElement()), filter);
    cursor.MoveToFirstChild();
    FilteredNodeCursor copy = cursor;
    copy.MoveToNextSibling();
    EXPECT_EQ(Outline(*cursor.Current()), "a");
    EXPECT_EQ(Outline(*copy.Current()), "b");
    copy.MoveToNextSibling();
    EXPECT_EQ(copy.Current(), nullptr);
}

}  // namespace
}  // namespace Saml::Xml::Security
