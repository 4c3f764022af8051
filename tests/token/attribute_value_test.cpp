#include "saml/token/attribute_value.h"

#include "saml/xml/element_node_impl.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Saml;
using Text = boost::intrusive_ptr<Xml::TextNodeImpl>;

const std::string kLong(100, 'x');  // no string holds it without memory of its own

TEST(AttributeValue, IsEmptyWithoutAText) {
    EXPECT_EQ(AttributeValue().Take(), "");
    EXPECT_FALSE(AttributeValue().IsShared());
}

TEST(AttributeValue, LeavesATextThatNobodyElseHoldsByMoving) {
    Text text(new Xml::TextNodeImpl(kLong));
    const char* const place = text->Text().data();
    AttributeValue value(*text);
    text.reset();
    const std::string taken = value.Take();
    EXPECT_EQ(taken, kLong);
    EXPECT_EQ(taken.data(), place);
}

TEST(AttributeValue, IsCopiedWhileAnybodyElseHoldsTheText) {
    const Text text(new Xml::TextNodeImpl(kLong));
    EXPECT_EQ(AttributeValue(*text).Take(), kLong);
    EXPECT_EQ(text->Text(), kLong);
    EXPECT_EQ(text->use_count(), 1U);
}

TEST(AttributeValue, IsCopiedWhileItsTreeHoldsTheText) {
    const boost::intrusive_ptr<Xml::ElementNodeImpl> parent(new Xml::ElementNodeImpl("", "a"));
    Text text(new Xml::TextNodeImpl(kLong));
    parent->AppendNode(*text);
    AttributeValue value(*text);
    text.reset();
    EXPECT_EQ(value.Take(), kLong);
    EXPECT_EQ(Xml::AsText(parent->FirstChild())->Text(), kLong);
}

TEST(AttributeValue, OutlivesItsTree) {
    boost::intrusive_ptr<Xml::ElementNodeImpl> parent(new Xml::ElementNodeImpl("", "a"));
    parent->AppendNode(*new Xml::CommentNodeImpl("before"));
    auto& text = *new Xml::TextNodeImpl(kLong);
    parent->AppendNode(text);
    parent->AppendNode(*new Xml::CommentNodeImpl("after"));
    AttributeValue value(text);
    EXPECT_TRUE(value.IsShared());
    parent.reset();
    EXPECT_FALSE(value.IsShared());
    EXPECT_EQ(text.Parent(), nullptr);
    EXPECT_EQ(text.PreviousSibling(), nullptr);
    EXPECT_EQ(text.NextSibling(), nullptr);
    EXPECT_EQ(value.Take(), kLong);
}

TEST(AttributeValue, TakesNoMoreMemoryThanItNeeds) {
    Text text(new Xml::TextNodeImpl(kLong));
    text->AppendText("y", 1);
    ASSERT_GT(text->Text().capacity(), text->Text().size());
    AttributeValue value(*text);
    text.reset();
    const std::string taken = value.Take();
    EXPECT_EQ(taken, kLong + "y");
    EXPECT_EQ(taken.capacity(), taken.size());
}

TEST(AttributeValue, IsThereOnce) {
    AttributeValue value(*new Xml::TextNodeImpl(kLong));
    EXPECT_EQ(value.Take(), kLong);
    EXPECT_EQ(value.Take(), "");
}

}  // namespace
