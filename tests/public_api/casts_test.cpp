#include "token_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace Saml;
using namespace Saml::Xml;
using namespace Saml::Xml::Security;

namespace {

// Whether `Interface` is the only one of the six that `node` can be cast to.
template <class Interface>
void ExpectOnly(Node* node) {
    ASSERT_NE(node, nullptr);
    EXPECT_NE(dynamic_cast<Interface*>(node), nullptr);
    const int interfaces =
        (dynamic_cast<Document*>(node) != nullptr) + (dynamic_cast<ElementNode*>(node) != nullptr) +
        (dynamic_cast<TextNode*>(node) != nullptr) + (dynamic_cast<CDataNode*>(node) != nullptr) +
        (dynamic_cast<CommentNode*>(node) != nullptr) +
        (dynamic_cast<ProcessingInstructionNode*>(node) != nullptr);
    EXPECT_EQ(interfaces, 1);
}

TEST(NodesOfTheFactories, CastToTheirOwnInterfaceOnly) {
    ExpectOnly<Document>(boost::intrusive_ptr<Node>(CreateDocument()).get());
    ExpectOnly<ElementNode>(boost::intrusive_ptr<Node>(CreateElementNode("p", "a")).get());
    ExpectOnly<TextNode>(boost::intrusive_ptr<Node>(CreateTextNode()).get());
    ExpectOnly<CDataNode>(boost::intrusive_ptr<Node>(CreateCDataNode()).get());
    ExpectOnly<CommentNode>(boost::intrusive_ptr<Node>(CreateCommentNode()).get());
    ExpectOnly<ProcessingInstructionNode>(
        boost::intrusive_ptr<Node>(CreateProcessingInstructionNode()).get());
}

TEST(NodesOfAParsedTree, CastToTheirOwnInterfaceOnly) {
    const auto document = ParseDocument("<?pi x?><a>text<![CDATA[more]]><!--c--></a>");
    ExpectOnly<ProcessingInstructionNode>(document->GetFirstChild());
    ExpectOnly<ElementNode>(document->GetLastChild());
    ExpectOnly<Document>(document->GetRootElement()->GetParent());

    Node* const text = document->GetRootElement()->GetFirstChild();
    ExpectOnly<TextNode>(text);
    ExpectOnly<CDataNode>(text->GetNextSibling());
    ExpectOnly<TextNode>(text->GetNextSibling()->GetFirstChild());
    ExpectOnly<CommentNode>(text->GetNextSibling()->GetNextSibling());
}

TEST(ACastNode, IsTheSameObject) {
    const auto document = ParseDocument("<a>text</a>");
    Node* const child = document->GetRootElement()->GetFirstChild();
    auto* const text = dynamic_cast<TextNode*>(child);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(static_cast<Node*>(text), child);
    EXPECT_EQ(text->GetText(), "text");
}

// A text node that the library did not make: the caller's own implementation of the interface.
class ForeignText : public TextNode {
  public:
    Node* GetParent() override { return nullptr; }
    Node* GetFirstChild() override { return nullptr; }
    Node* GetLastChild() override { return nullptr; }
    Node* GetNextSibling() override { return nullptr; }
    Node* GetPreviousSibling() override { return nullptr; }
    void AppendChild(Node*) override {}
    void InsertAfter(Node*, Node*) override {}
    void InsertBefore(Node*, Node*) override {}
    void RemoveChild(Node*) override {}
    std::int32_t GetType() override { return NodeType::Text; }
    void Write(Writer&) override {}
    void WriteFormatted(Writer&) override {}
    ElementNode* GetFirstChildElement(const std::string&) override { return nullptr; }
    ElementNode* GetNextSiblingElement(const std::string&) override { return nullptr; }
    ElementNode* GetFirstChildElement(const ExpandedName&) override { return nullptr; }
    ElementNode* GetNextSiblingElement(const ExpandedName&) override { return nullptr; }
    const std::string& GetText() override { return text_; }
    void SetText(const std::string& text) override { text_ = text; }
    void AppendText(const char* data, int length) override {
        text_.append(data, static_cast<std::size_t>(length));
    }

  private:
    std::string text_;
};

TEST(ANodeOfTheCallersOwnClass, IsRefusedByTheTreeWithItsName) {
    const boost::intrusive_ptr<ElementNode> element(CreateElementNode("", "a"));
    const boost::intrusive_ptr<Node> foreign(new ForeignText);
    try {
        element->AppendChild(foreign.get());
        FAIL() << "nothing was thrown";
    } catch (const TypeMismatchException& caught) {
        EXPECT_THAT(caught.what(), testing::StartsWith("Type Mismatch: expected: Saml::Xml::"));
        EXPECT_THAT(caught.what(), testing::HasSubstr(", found: "));
        EXPECT_THAT(caught.what(), testing::EndsWith("ForeignText"));
    }
    EXPECT_EQ(element->GetFirstChild(), nullptr);
}

TEST(TheCanonicalizer, TakesNoTextForAnElement) {
    const boost::intrusive_ptr<TextNode> text(CreateTextNode());
    boost::intrusive_ptr<Canonicalizer> canonicalizer;
    CreateCanonicalizer(Algorithm::InclusiveC14N, canonicalizer);
    StringWriter out;
    EXPECT_THROW(canonicalizer->Canonicalize(text.get(), out), TypeMismatchException);
    EXPECT_EQ(out.data, "");
}

}  // namespace
