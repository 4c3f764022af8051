#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>

namespace Saml::Xml {
namespace {

constexpr std::array<const char*, 6> kKinds = {"Document", "Text",    "CData",
                                               "Comment",  "Element", "Instruction"};

Held<Node> NewNode(std::int32_t type) {
    switch (type) {
        case NodeType::Document:
            return NewDocument();
        case NodeType::Text:
            return NewText("t");
        case NodeType::CData:
            return NewCData();
        case NodeType::Comment:
            return NewComment("c");
        case NodeType::Element:
            return NewElement("e");
        default:
            return NewInstruction("p", "d");
    }
}

struct ChildRule {
    std::int32_t parent;
    std::int32_t child;
    const char* refusal;  // null: allowed

    std::string Name() const {
        return std::string(kKinds.at(static_cast<std::size_t>(child))) + "Under" +
               kKinds.at(static_cast<std::size_t>(parent));
    }
};

void PrintTo(const ChildRule& rule, std::ostream* out) {
    *out << rule.Name();
}

class ChildRules : public testing::TestWithParam<ChildRule> {
  protected:
    Held<Node> parent_ = NewNode(GetParam().parent);
    Held<Node> child_ = NewNode(GetParam().child);

    void ExpectRefused(Node& oldParent) {
        EXPECT_EQ(child_->GetParent(), &oldParent) << "a refused child stays where it is";
        EXPECT_EQ(child_->use_count(), 2u);
        ExpectSoundLinks(oldParent);
        ExpectSoundLinks(*parent_);
    }
};

TEST_P(ChildRules, HoldForAppending) {
    if (GetParam().refusal == nullptr) {
        parent_->AppendChild(child_.get());
        EXPECT_EQ(child_->GetParent(), parent_.get());
        EXPECT_EQ(parent_->GetFirstChild(), child_.get());
        return;
    }
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { parent_->AppendChild(child_.get()); }),
              GetParam().refusal);
    EXPECT_EQ(parent_->GetFirstChild(), nullptr);
    EXPECT_EQ(child_->GetParent(), nullptr);
    EXPECT_EQ(child_->use_count(), 1u);
}

TEST_P(ChildRules, HoldForInserting) {
    // Only what may have children at all can have a child to insert beside.
    const bool isLeaf = GetParam().parent == NodeType::Text ||
                        GetParam().parent == NodeType::Comment ||
                        GetParam().parent == NodeType::ProcessingInstruction;
    if (isLeaf) return;

    const Held<Node> reference =
        NewNode(GetParam().parent == NodeType::CData ? NodeType::Text : NodeType::Comment);
    parent_->AppendChild(reference.get());
    if (GetParam().refusal == nullptr) {
        parent_->InsertAfter(child_.get(), reference.get());
        EXPECT_EQ(reference->GetNextSibling(), child_.get());
        parent_->RemoveChild(child_.get());
        parent_->InsertBefore(child_.get(), reference.get());
        EXPECT_EQ(reference->GetPreviousSibling(), child_.get());
        ExpectSoundLinks(*parent_);
        return;
    }
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [&] { parent_->InsertAfter(child_.get(), reference.get()); }),
              GetParam().refusal);
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [&] { parent_->InsertBefore(child_.get(), reference.get()); }),
              GetParam().refusal);
    EXPECT_EQ(ChildrenOf(*parent_).size(), 1u);
    EXPECT_EQ(child_->GetParent(), nullptr);
    EXPECT_EQ(child_->use_count(), 1u);
}

TEST_P(ChildRules, LeaveARefusedChildUnderItsOldParent) {
    if (GetParam().refusal == nullptr || GetParam().child == NodeType::Document) return;
    const Held<Node> oldParent = GetParam().child == NodeType::ProcessingInstruction
                                     ? NewNode(NodeType::Document)
                                     : NewNode(NodeType::Element);
    oldParent->AppendChild(child_.get());
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { parent_->AppendChild(child_.get()); }),
              GetParam().refusal);
    ExpectRefused(*oldParent);
}

constexpr char kUnderElement[] = "Elements cannot have document or PI children.";
constexpr char kUnderText[] = "Cannot add child to text node.";
constexpr char kUnderCData[] = "Cannot add non-text child to CData node.";
constexpr char kUnderComment[] = "Cannot add child to Comment node.";
constexpr char kUnderInstruction[] = "Cannot add child to PI node.";

INSTANTIATE_TEST_SUITE_P(
    AllPairs, ChildRules,
    testing::Values(
        ChildRule{NodeType::Document, NodeType::Document,
                  "DocumentNode cannot have document node as child"},
        ChildRule{NodeType::Document, NodeType::Text,
                  "DocumentNode cannot have text node children"},
        ChildRule{NodeType::Document, NodeType::CData,
                  "DocumentNode cannot have CData node children"},
        ChildRule{NodeType::Document, NodeType::Comment, nullptr},
        ChildRule{NodeType::Document, NodeType::Element, nullptr},
        ChildRule{NodeType::Document, NodeType::ProcessingInstruction, nullptr},

        ChildRule{NodeType::Text, NodeType::Document, kUnderText},
        ChildRule{NodeType::Text, NodeType::Text, kUnderText},
        ChildRule{NodeType::Text, NodeType::CData, kUnderText},
        ChildRule{NodeType::Text, NodeType::Comment, kUnderText},
        ChildRule{NodeType::Text, NodeType::Element, kUnderText},
        ChildRule{NodeType::Text, NodeType::ProcessingInstruction, kUnderText},

        ChildRule{NodeType::CData, NodeType::Document, kUnderCData},
        ChildRule{NodeType::CData, NodeType::Text, nullptr},
        ChildRule{NodeType::CData, NodeType::CData, kUnderCData},
        ChildRule{NodeType::CData, NodeType::Comment, kUnderCData},
        ChildRule{NodeType::CData, NodeType::Element, kUnderCData},
        ChildRule{NodeType::CData, NodeType::ProcessingInstruction, kUnderCData},

        ChildRule{NodeType::Comment, NodeType::Document, kUnderComment},
        ChildRule{NodeType::Comment, NodeType::Text, kUnderComment},
        ChildRule{NodeType::Comment, NodeType::CData, kUnderComment},
        ChildRule{NodeType::Comment, NodeType::Comment, kUnderComment},
        ChildRule{NodeType::Comment, NodeType::Element, kUnderComment},
        ChildRule{NodeType::Comment, NodeType::ProcessingInstruction, kUnderComment},

        ChildRule{NodeType::Element, NodeType::Document, kUnderElement},
        ChildRule{NodeType::Element, NodeType::Text, nullptr},
        ChildRule{NodeType::Element, NodeType::CData, nullptr},
        ChildRule{NodeType::Element, NodeType::Comment, nullptr},
        ChildRule{NodeType::Element, NodeType::Element, nullptr},
        ChildRule{NodeType::Element, NodeType::ProcessingInstruction, kUnderElement},

        ChildRule{NodeType::ProcessingInstruction, NodeType::Document, kUnderInstruction},
        ChildRule{NodeType::ProcessingInstruction, NodeType::Text, kUnderInstruction},
        ChildRule{NodeType::ProcessingInstruction, NodeType::CData, kUnderInstruction},
        ChildRule{NodeType::ProcessingInstruction, NodeType::Comment, kUnderInstruction},
        ChildRule{NodeType::ProcessingInstruction, NodeType::Element, kUnderInstruction},
        ChildRule{NodeType::ProcessingInstruction, NodeType::ProcessingInstruction,
                  kUnderInstruction}),
    [](const auto& row) { return row.param.Name(); });

}  // namespace
}  // namespace Saml::Xml
