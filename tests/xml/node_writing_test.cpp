#include "saml/xml/node_impl.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace Saml::Xml {
namespace {

std::string Compact(Node& node) {
    StringWriter out;
    node.Write(out);
    return out.data;
}

std::string Formatted(Node& node) {
    StringWriter out;
    node.WriteFormatted(out);
    return out.data;
}

struct WritingCase {
    const char* name;
    const char* text;
    const char* compact;
    const char* formatted;
};

class Writing : public testing::TestWithParam<WritingCase> {};

TEST_P(Writing, IsCompactOrFormatted) {
    const Held<Document> document = Parsed(GetParam().text);
    EXPECT_EQ(Compact(*document->GetRootElement()), GetParam().compact);
    EXPECT_EQ(Formatted(*document->GetRootElement()), GetParam().formatted);
}

INSTANTIATE_TEST_SUITE_P(
    NodeWriting, Writing,
    testing::Values(
        WritingCase{"AnEmptyElement", "<a></a>", "<a/>", "<a/>"},
        WritingCase{"APrefixedElement", "<p:a><p:b/></p:a>", "<p:a><p:b/></p:a>",
                    "<p:a>\n  <p:b/>\n</p:a>"},
        WritingCase{"ElementChildren", "<a><b/><c/></a>", "<a><b/><c/></a>",
                    "<a>\n  <b/>\n  <c/>\n</a>"},
        WritingCase{"DeeperElements", "<a><b><c><d/></c></b><e/></a>",
                    "<a><b><c><d/></c></b><e/></a>",
                    "<a>\n  <b>\n    <c>\n      <d/>\n    </c>\n  </b>\n  <e/>\n</a>"},
        WritingCase{"TextOnly", "<a>text</a>", "<a>text</a>", "<a>text</a>"},
        WritingCase{"TextFirst", "<a>text<b/></a>", "<a>text<b/></a>", "<a>text<b/></a>"},
        // What stands in a line stays in it, however deep.
        WritingCase{"TextFirstAboveDeeperElements", "<a>t<b><c/><d/></b></a>",
                    "<a>t<b><c/><d/></b></a>", "<a>t<b><c/><d/></b></a>"},
        WritingCase{"TextFirstInsideElements", "<a><b>t<c><d/></c></b><e/></a>",
                    "<a><b>t<c><d/></c></b><e/></a>", "<a>\n  <b>t<c><d/></c></b>\n  <e/>\n</a>"},
        WritingCase{"TextLater", "<a><b/>t</a>", "<a><b/>t</a>", "<a>\n  <b/>\nt\n</a>"},
        WritingCase{"BlanksFirst", "<a> <b/></a>", "<a> <b/></a>", "<a> <b/></a>"},
        WritingCase{"ASectionFirst", "<a><![CDATA[x]]><b/></a>", "<a><![CDATA[x]]><b/></a>",
                    "<a><![CDATA[x]]><b/></a>"},
        WritingCase{"ASectionLater", "<a><b/><![CDATA[x]]></a>", "<a><b/><![CDATA[x]]></a>",
                    "<a>\n  <b/>\n<![CDATA[x]]>\n</a>"},
        WritingCase{"ASectionUnescaped", "<a><![CDATA[a<b&\"'>]]></a>",
                    "<a><![CDATA[a<b&\"'>]]></a>", "<a><![CDATA[a<b&\"'>]]></a>"},
        WritingCase{"AnEmptySection", "<a><![CDATA[]]></a>", "<a><![CDATA[]]></a>",
                    "<a><![CDATA[]]></a>"},
        // A comment is dropped, its line and its indentation are not.
        WritingCase{"ACommentOnly", "<a><!--c--></a>", "<a></a>", "<a>\n  \n</a>"},
        WritingCase{"ACommentFirst", "<a><!--c--><b/></a>", "<a><b/></a>", "<a>\n  \n  <b/>\n</a>"},
        WritingCase{"ACommentLater", "<a><b/><!--c--></a>", "<a><b/></a>", "<a>\n  <b/>\n  \n</a>"},
        WritingCase{"ADeeperComment", "<a><b><!--c--></b></a>", "<a><b></b></a>",
                    "<a>\n  <b>\n    \n  </b>\n</a>"},
        WritingCase{"ACommentAfterText", "<a>t<!--c-->u</a>", "<a>tu</a>", "<a>tu</a>"},
        WritingCase{"AttributesInByteOrder", "<a z='1' b='x&lt;y'>t</a>",
                    "<a b=\"x&lt;y\" z=\"1\">t</a>", "<a b=\"x&lt;y\" z=\"1\">t</a>"},
        WritingCase{"DeclarationsAmongTheAttributes",
                    "<p:a y='1' xmlns:p='u' xmlns='d' p:x='2' B='3'/>",
                    "<p:a B=\"3\" p:x=\"2\" xmlns=\"d\" xmlns:p=\"u\" y=\"1\"/>",
                    "<p:a B=\"3\" p:x=\"2\" xmlns=\"d\" xmlns:p=\"u\" y=\"1\"/>"},
        WritingCase{"AnEmptyAttribute", "<a x=''/>", "<a x=\"\"/>", "<a x=\"\"/>"},
        WritingCase{"EscapedText", "<a>&lt;&gt;&amp;&apos;&quot;</a>",
                    "<a>&lt;&gt;&amp;&apos;&quot;</a>", "<a>&lt;&gt;&amp;&apos;&quot;</a>"},
        WritingCase{"EscapedAttributes", "<a x='&lt;&gt;&amp;&apos;&quot;'/>",
                    "<a x=\"&lt;&gt;&amp;&apos;&quot;\"/>",
                    "<a x=\"&lt;&gt;&amp;&apos;&quot;\"/>"}),
    [](const auto& row) { return std::string(row.param.name); });

/// How one byte leaves in text and in an attribute value.
std::string Escaped(int byte) {
    switch (byte) {
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '&':
            return "&amp;";
        case '\'':
            return "&apos;";
        case '"':
            return "&quot;";
        default:
            break;
    }
    const bool isControl = (byte >= 0x01 && byte <= 0x08) || byte == 0x0B || byte == 0x0C ||
                           (byte >= 0x0E && byte <= 0x1F);
    if (!isControl) return std::string(1, static_cast<char>(byte));
    char text[4];
    std::snprintf(text, sizeof text, "%%%02x", static_cast<unsigned>(byte));
    return text;
}

TEST(Escaping, IsRightForEveryByte) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string raw(1, static_cast<char>(byte));
        for (const std::string before : {"", "ab"})
            for (const std::string after : {"", "cd"}) {
                const Held<ElementNode> element = NewElement("e");
                element->SetAttribute("x", before + raw + after);
                element->AppendChild(NewText(before + raw + after).get());
                const std::string written = before + Escaped(byte) + after;
                EXPECT_EQ(Compact(*element), "<e x=\"" + written + "\">" + written + "</e>")
                    << byte;
            }
    }
}

TEST(Escaping, ReplacesByteByByte) {
    const std::string raw("<<\x07>\x1B&&\x7F\t\r\n\xE2\x82\xAC\0'", 16);
    std::string written;
    for (const char byte : raw)
        written += Escaped(static_cast<unsigned char>(byte));
    EXPECT_EQ(Compact(*NewText(raw)), written);
    EXPECT_EQ(written,
              std::string("&lt;&lt;%07&gt;%1b&amp;&amp;\x7F\t\r\n\xE2\x82\xAC\0&apos;", 42));
}

TEST(Escaping, LeavesSectionsAlone) {
    const Held<CDataNode> section = NewCData();
    section->AppendChild(NewText(std::string("<&\x07\0>", 5)).get());
    section->AppendChild(NewText("]]>").get());
    EXPECT_EQ(Compact(*section), std::string("<![CDATA[<&\x07\0>]]>]]>", 20));
}

TEST(WritingOfSingleNodes, FollowsTheirKind) {
    const Held<CDataNode> section = NewCData();
    section->AppendChild(NewText("a<b").get());
    for (const auto& write : {Compact, Formatted}) {
        EXPECT_EQ(write(*NewText("a<b")), "a&lt;b");
        EXPECT_EQ(write(*NewText("")), "");
        EXPECT_EQ(write(*section), "<![CDATA[a<b]]>");
        EXPECT_EQ(write(*NewComment("c")), "");
        EXPECT_EQ(write(*NewInstruction("p", "d")), "");
        EXPECT_EQ(write(*NewElement("a")), "<a/>");
        EXPECT_EQ(write(*Parsed("<?xml version='1.0'?><?p d?><!--c--><a>t</a>")), "");
    }
}

TEST(WritingOfAnInnerNode, StartsAtItsOwnLevel) {
    const Held<Document> document = Parsed("<a><b><c/></b><d/></a>");
    Node* const b = document->GetRootElement()->GetFirstChild();
    EXPECT_EQ(Compact(*b), "<b><c/></b>");
    EXPECT_EQ(Formatted(*b), "<b>\n  <c/>\n</b>");
}

std::string AtLevel(Node& node, int level) {
    StringWriter out;
    dynamic_cast<NodeImpl&>(node).WriteTo(out, level);
    return out.data;
}

TEST(WritingAtALevel, IndentsTheNodeItselfToo) {
    const Held<Document> document = Parsed("<a><b/>t<!--c--></a>");
    Node& a = *document->GetRootElement();
    EXPECT_EQ(AtLevel(a, 0), Formatted(a));
    EXPECT_EQ(AtLevel(a, 1), "  <a>\n    <b/>\nt\n    \n  </a>");
    EXPECT_EQ(AtLevel(a, 2), "    <a>\n      <b/>\nt\n      \n    </a>");
    EXPECT_EQ(AtLevel(a, -1), Compact(a));
    EXPECT_EQ(AtLevel(*NewText("t"), 1), "t");
    EXPECT_EQ(AtLevel(*NewCData(), 1), "<![CDATA[]]>");
    EXPECT_EQ(AtLevel(*NewComment("c"), 1), "  ");
    EXPECT_EQ(AtLevel(*NewInstruction("p", "d"), 1), "");
    EXPECT_EQ(AtLevel(*document, 1), "");
}

TEST(WritingOfBuiltTrees, UsesTheNamesAsTheyAre) {
    const Held<ElementNode> a = NewElement("a", "p");
    a->AppendChild(CreateElementNode("", "b"));
    a->SetAttribute("n", "1");
    EXPECT_EQ(Compact(*a), "<p:a n=\"1\"><b/></p:a>");
    a->SetPrefix("");
    a->SetLocalName("c");
    a->RemoveAttribute("n");
    EXPECT_EQ(Compact(*a), "<c><b/></c>");
    a->RemoveChild(a->GetFirstChild());
    EXPECT_EQ(Compact(*a), "<c/>");
}

TEST(WritingOfBuiltTrees, TakesAnEmptyTextForAChild) {
    const Held<ElementNode> a = NewElement("a");
    a->AppendChild(NewText("").get());
    EXPECT_EQ(Compact(*a), "<a></a>");
    a->AppendChild(CreateElementNode("", "b"));
    EXPECT_EQ(Formatted(*a), "<a><b/></a>") << "its first child is a text";
}

/// Remembers the pieces, and fails at one when told to.
struct PieceWriter : Writer {
    void Write(const char* data, int length) override {
        if (pieces.size() == failAt) throw std::runtime_error("full");
        ASSERT_GE(length, 0);
        pieces.emplace_back(data, static_cast<std::size_t>(length));
    }
    std::string Joined() const {
        std::string joined;
        for (const std::string& piece : pieces)
            joined += piece;
        return joined;
    }
    std::vector<std::string> pieces;
    std::size_t failAt = static_cast<std::size_t>(-1);
};

TEST(Indentation, HasTwoBlanksALevelInPiecesOfAtMost64) {
    constexpr std::size_t kDepth = 100;
    const Held<ElementNode> top = NewElement("a");
    Held<ElementNode> innermost = top;
    for (std::size_t level = 1; level < kDepth; ++level) {
        const Held<ElementNode> child = NewElement("a");
        innermost->AppendChild(child.get());
        innermost = child;
    }
    std::string expected;
    for (std::size_t level = 0; level + 1 < kDepth; ++level)
        expected += std::string(2 * level, ' ') + "<a>\n";
    expected += std::string(2 * (kDepth - 1), ' ') + "<a/>";
    for (std::size_t level = kDepth - 1; level-- > 0;)
        expected += "\n" + std::string(2 * level, ' ') + "</a>";

    PieceWriter out;
    top->WriteFormatted(out);
    EXPECT_EQ(out.Joined(), expected);
    std::size_t longest = 0;
    for (const std::string& piece : out.pieces)
        if (piece.find_first_not_of(' ') == std::string::npos && piece.size() > longest)
            longest = piece.size();
    EXPECT_EQ(longest, 64u);
}

TEST(AFailingWriter, IsHeardUnchanged) {
    const Held<Document> document = Parsed("<a x='1'>t&lt;<b/><![CDATA[c]]></a>");
    PieceWriter whole;
    document->GetRootElement()->Write(whole);
    ASSERT_GT(whole.pieces.size(), 5u);
    for (std::size_t failAt = 0; failAt < whole.pieces.size(); ++failAt) {
        PieceWriter out;
        out.failAt = failAt;
        EXPECT_EQ(MessageOf<std::runtime_error>([&] { document->GetRootElement()->Write(out); }),
                  "full");
        EXPECT_EQ(out.pieces.size(), failAt) << "what was written stays written";
    }
}

TEST(WrittenText, ParsesBackIntoTheSameTree) {
    const Held<Document> document = Parsed(
        "<p:a xmlns:p='u' x='&lt;&amp;&quot;&apos;&gt;'>t&amp;u<b><![CDATA[<&]]></b>v\n<c/></p:a>");
    EXPECT_EQ(Outline(*Parsed(Compact(*document->GetRootElement()))), Outline(*document));
}

}  // namespace
}  // namespace Saml::Xml
