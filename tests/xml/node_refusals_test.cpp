#include "saml/xml/node_impl.h"
#include "support/foreign_nodes.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace Saml::Xml {
namespace {

/// `top{a{a1} b}` and `other{o}`: what a refused operation must leave as it is.
class RefusedOperation : public testing::Test {
  protected:
    void SetUp() override {
        top_->AppendChild(a_.get());
        top_->AppendChild(b_.get());
        a_->AppendChild(a1_.get());
        other_->AppendChild(o_.get());
    }

    template <class Action>
    void ExpectRefused(Action&& action) {
        EXPECT_NE(MessageOf<InvalidArgumentException>(action), "");
        ExpectNothingChanged();
    }

    template <class Action>
    void ExpectTypeMismatch(Node& found, Action&& action) {
        // Which class a foreign node lacks and which it has instead.
        const TypeMismatchException expected(typeid(NodeImpl), typeid(found));
        EXPECT_EQ(MessageOf<TypeMismatchException>(action), expected.what());
        ExpectNothingChanged();
        EXPECT_EQ(found.use_count(), 1u);
    }

    void ExpectNothingChanged() {
        EXPECT_EQ(Outline(*top_), "top{a{a1} b}");
        EXPECT_EQ(Outline(*other_), "other{o}");
        ExpectSoundLinks(*top_);
        ExpectSoundLinks(*other_);
        ExpectDetached(*top_);
        ExpectDetached(*other_);
        for (Node* linked : std::initializer_list<Node*>{a_.get(), b_.get(), a1_.get(), o_.get()})
            EXPECT_EQ(linked->use_count(), 2u) << Outline(*linked);
        for (Node* detached : std::initializer_list<Node*>{top_.get(), other_.get()})
            EXPECT_EQ(detached->use_count(), 1u) << Outline(*detached);
    }

    Held<ElementNode> top_ = NewElement("top");
    Held<ElementNode> a_ = NewElement("a");
    Held<ElementNode> a1_ = NewElement("a1");
    Held<ElementNode> b_ = NewElement("b");
    Held<ElementNode> other_ = NewElement("other");
    Held<ElementNode> o_ = NewElement("o");
};

TEST_F(RefusedOperation, NullIsNoChild) {
    Node* const nothing = nullptr;
    ExpectRefused([&] { top_->AppendChild(nothing); });
    ExpectRefused([&] { top_->InsertAfter(nothing, a_.get()); });
    ExpectRefused([&] { top_->InsertBefore(nothing, a_.get()); });
    ExpectRefused([&] { top_->InsertAfter(nothing, nothing); });
    ExpectRefused([&] { top_->InsertBefore(nothing, nothing); });
    ExpectRefused([&] { top_->RemoveChild(nothing); });
}

TEST_F(RefusedOperation, NullIsNoChildOfTheTypedShortcuts) {
    ExpectRefused([&] { top_->AppendChild(static_cast<TextNode*>(nullptr)); });
    ExpectRefused([&] { top_->AppendChild(static_cast<ElementNode*>(nullptr)); });
}

TEST_F(RefusedOperation, NullIsNoReference) {
    ExpectRefused([&] { top_->InsertAfter(o_.get(), nullptr); });
    ExpectRefused([&] { top_->InsertBefore(o_.get(), nullptr); });
    ExpectRefused([&] { top_->InsertAfter(a_.get(), nullptr); });
    ExpectRefused([&] { top_->InsertBefore(a_.get(), nullptr); });
}

TEST_F(RefusedOperation, AReferenceMustBeAChildOfThisNode) {
    const Held<ElementNode> detached = NewElement("detached");
    const std::initializer_list<Node*> noChildren{o_.get(), a1_.get(), top_.get(), other_.get(),
                                                  detached.get()};
    for (Node* reference : noChildren) {
        const Held<ElementNode> added = NewElement("added");
        ExpectRefused([&] { top_->InsertAfter(added.get(), reference); });
        ExpectRefused([&] { top_->InsertBefore(added.get(), reference); });
        ExpectDetached(*added);
        EXPECT_EQ(added->use_count(), 1u);
    }
}

TEST_F(RefusedOperation, AMovedNodeStaysWhereItIsWhenTheReferenceIsNoChild) {
    ExpectRefused([&] { top_->InsertAfter(o_.get(), a1_.get()); });
    ExpectRefused([&] { top_->InsertBefore(o_.get(), a1_.get()); });
    ExpectRefused([&] { top_->InsertAfter(a1_.get(), a1_.get()); });
    ExpectRefused([&] { top_->InsertBefore(o_.get(), o_.get()); });
}

TEST_F(RefusedOperation, ANodeDoesNotStandBelowItself) {
    ExpectRefused([&] { top_->AppendChild(top_.get()); });
    ExpectRefused([&] { top_->InsertAfter(top_.get(), a_.get()); });
    ExpectRefused([&] { top_->InsertBefore(top_.get(), a_.get()); });
    ExpectRefused([&] { a1_->AppendChild(a1_.get()); });
    ExpectRefused([&] { b_->AppendChild(b_.get()); });
}

TEST_F(RefusedOperation, ANodeDoesNotStandBelowItsDescendants) {
    ExpectRefused([&] { a_->AppendChild(top_.get()); });
    ExpectRefused([&] { a1_->AppendChild(top_.get()); });
    ExpectRefused([&] { a1_->AppendChild(a_.get()); });
    ExpectRefused([&] { a_->InsertAfter(top_.get(), a1_.get()); });
    ExpectRefused([&] { a_->InsertBefore(top_.get(), a1_.get()); });
}

TEST_F(RefusedOperation, ADetachedNodeDoesNotStandBelowItself) {
    const Held<ElementNode> alone = NewElement("alone");
    ExpectRefused([&] { alone->AppendChild(alone.get()); });
    EXPECT_EQ(alone->GetFirstChild(), nullptr);
    EXPECT_EQ(alone->use_count(), 1u);
    ExpectDetached(*alone);
}

TEST_F(RefusedOperation, AForeignClassIsATypeMismatch) {
    const Held<Node> foreign(new ForeignPlainNode);
    Node* const node = foreign.get();
    ExpectTypeMismatch(*node, [&] { top_->AppendChild(node); });
    ExpectTypeMismatch(*node, [&] { top_->InsertAfter(node, a_.get()); });
    ExpectTypeMismatch(*node, [&] { top_->InsertBefore(node, a_.get()); });
    ExpectTypeMismatch(*node, [&] { top_->RemoveChild(node); });
}

TEST_F(RefusedOperation, AForeignClassDoesNotPassAsTheKindThatItDerivesFrom) {
    const Held<ForeignText> text(new ForeignText);
    const Held<ForeignElement> element(new ForeignElement);
    ExpectTypeMismatch(*text, [&] { top_->AppendChild(static_cast<TextNode*>(text.get())); });
    ExpectTypeMismatch(*text, [&] { top_->AppendChild(static_cast<Node*>(text.get())); });
    ExpectTypeMismatch(*element,
                       [&] { top_->AppendChild(static_cast<ElementNode*>(element.get())); });
    ExpectTypeMismatch(*element, [&] { top_->InsertBefore(element.get(), b_.get()); });
}

TEST_F(RefusedOperation, AForeignReferenceIsRefused) {
    const Held<Node> foreign(new ForeignPlainNode);
    EXPECT_THROW(top_->InsertAfter(o_.get(), foreign.get()), Exception);
    EXPECT_THROW(top_->InsertBefore(o_.get(), foreign.get()), Exception);
    ExpectNothingChanged();
}

TEST_F(RefusedOperation, AKindThatMayNotStandThereStaysUnderItsOldParent) {
    const Held<Document> document = NewDocument();
    const Held<ProcessingInstructionNode> instruction = NewInstruction("t", "d");
    document->AppendChild(instruction.get());

    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { top_->AppendChild(instruction.get()); }),
              "Elements cannot have document or PI children.");
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [&] { top_->InsertAfter(instruction.get(), a_.get()); }),
              "Elements cannot have document or PI children.");
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [&] { top_->InsertBefore(instruction.get(), a_.get()); }),
              "Elements cannot have document or PI children.");
    ExpectNothingChanged();
    EXPECT_EQ(Outline(*document), "#document{<?t d?>}");
    ExpectSoundLinks(*document);
    EXPECT_EQ(instruction->use_count(), 2u);
}

}  // namespace
}  // namespace Saml::Xml
