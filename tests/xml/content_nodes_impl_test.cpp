#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

struct Kind {
    const char* name;
    Node* (*create)();
    std::int32_t type;
};

class NewNodes : public testing::TestWithParam<Kind> {};

TEST_P(NewNodes, AreEmptyAndDetachedAndTellTheirType) {
    const Held<Node> node(GetParam().create());
    EXPECT_EQ(node->use_count(), 1u);
    EXPECT_EQ(node->GetType(), GetParam().type);
    EXPECT_EQ(node->GetFirstChild(), nullptr);
    EXPECT_EQ(node->GetLastChild(), nullptr);
    ExpectDetached(*node);
}

// The codes are fixed: callers compare against the numbers.
INSTANTIATE_TEST_SUITE_P(
    AllKinds, NewNodes,
    testing::Values(Kind{"Document", []() -> Node* { return CreateDocument(); }, 0},
                    Kind{"Text", []() -> Node* { return CreateTextNode(); }, 1},
                    Kind{"CData", []() -> Node* { return CreateCDataNode(); }, 2},
                    Kind{"Comment", []() -> Node* { return CreateCommentNode(); }, 3},
                    Kind{"Element", []() -> Node* { return CreateElementNode("p", "a"); }, 4},
                    Kind{"Instruction", []() -> Node* { return CreateProcessingInstructionNode(); },
                         5}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TextNode, KeepsItsTextByteForByte) {
    const Held<TextNode> text(CreateTextNode());
    EXPECT_EQ(text->GetText(), "");
    const std::string bytes("<&\0\xFF\r\n ", 7);
    text->SetText(bytes);
    EXPECT_EQ(text->GetText(), bytes);
    text->SetText("");
    EXPECT_EQ(text->GetText(), "");
}

TEST(TextNode, AppendsExactlyTheGivenLength) {
    const Held<TextNode> text = NewText("a");
    text->AppendText("bcd", 2);
    EXPECT_EQ(text->GetText(), "abc");
    text->AppendText("\0z", 2);
    EXPECT_EQ(text->GetText(), std::string("abc\0z", 5));
}

TEST(TextNode, AppendsNothingForALengthBelowOne) {
    const Held<TextNode> text = NewText("a");
    text->AppendText("bcd", 0);
    text->AppendText("bcd", -1);
    text->AppendText("bcd", std::numeric_limits<int>::min());
    text->AppendText(nullptr, 0);
    EXPECT_EQ(text->GetText(), "a");
}

TEST(CommentNode, KeepsItsText) {
    const Held<CommentNode> comment(CreateCommentNode());
    EXPECT_EQ(comment->GetText(), "");
    comment->SetText("a--b");
    EXPECT_EQ(comment->GetText(), "a--b");
}

TEST(ProcessingInstructionNode, KeepsTargetAndData) {
    const Held<ProcessingInstructionNode> instruction(CreateProcessingInstructionNode());
    EXPECT_EQ(instruction->GetTarget(), "");
    EXPECT_EQ(instruction->GetData(), "");
    instruction->SetTarget("xml-stylesheet");
    instruction->SetData("href='a'");
    EXPECT_EQ(instruction->GetTarget(), "xml-stylesheet");
    EXPECT_EQ(instruction->GetData(), "href='a'");
}

TEST(CDataNode, HoldsItsContentAsTextChildren) {
    const Held<CDataNode> section = NewCData();
    section->AppendChild(NewText("a").get());
    section->AppendChild(NewText("b").get());
    EXPECT_EQ(Outline(*section), "CDATA{\"a\" \"b\"}");
    ExpectSoundLinks(*section);
}

}  // namespace
}  // namespace Saml::Xml
