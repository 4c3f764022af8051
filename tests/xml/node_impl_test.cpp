#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace Saml::Xml {
namespace {

/// `top{a b c}`, each node held.
struct Siblings {
    Held<ElementNode> top = NewElement("top");
    Held<ElementNode> a = NewElement("a");
    Held<ElementNode> b = NewElement("b");
    Held<ElementNode> c = NewElement("c");

    Siblings() {
        for (ElementNode* child : {a.get(), b.get(), c.get()})
            top->AppendChild(child);
    }
};

TEST(AppendChild, AddsAtTheEnd) {
    const Held<ElementNode> top = NewElement("top");
    const Held<ElementNode> a = NewElement("a");
    const Held<TextNode> text = NewText("t");
    const Held<CDataNode> section = NewCData();
    const Held<CommentNode> comment = NewComment("c");

    top->AppendChild(a.get());
    EXPECT_EQ(top->GetFirstChild(), a.get());
    EXPECT_EQ(top->GetLastChild(), a.get());
    top->AppendChild(text.get());
    top->AppendChild(section.get());
    top->AppendChild(comment.get());

    EXPECT_EQ(Outline(*top), "top{a \"t\" CDATA <!--c-->}");
    EXPECT_EQ(a->GetParent(), top.get());
    EXPECT_EQ(a->GetNextSibling(), text.get());
    EXPECT_EQ(comment->GetPreviousSibling(), section.get());
    EXPECT_EQ(top->GetFirstChild(), a.get());
    EXPECT_EQ(top->GetLastChild(), comment.get());
    ExpectSoundLinks(*top);
}

TEST(AppendChild, TakesACountedReference) {
    const Held<ElementNode> top = NewElement("top");
    const Held<ElementNode> first = NewElement("first");
    const Held<ElementNode> second = NewElement("second");
    EXPECT_EQ(first->use_count(), 1u);

    top->AppendChild(first.get());
    top->AppendChild(second.get());
    EXPECT_EQ(first->use_count(), 2u);
    EXPECT_EQ(second->use_count(), 2u);
    EXPECT_EQ(top->use_count(), 1u) << "a child does not own its parent";
}

TEST(AppendChild, AdoptsANodeThatNobodyHolds) {
    const Held<ElementNode> top = NewElement("top");
    top->AppendChild(CreateElementNode("", "child"));
    ASSERT_NE(top->GetFirstChild(), nullptr);
    EXPECT_EQ(top->GetFirstChild()->use_count(), 1u);
    EXPECT_EQ(Outline(*top), "top{child}");
}

TEST(AppendChild, MovesANodeFromItsOldParent) {
    Siblings from;
    const Held<ElementNode> to = NewElement("to");

    to->AppendChild(from.b.get());
    EXPECT_EQ(Outline(*from.top), "top{a c}");
    EXPECT_EQ(Outline(*to), "to{b}");
    EXPECT_EQ(from.b->GetParent(), to.get());
    EXPECT_EQ(from.b->use_count(), 2u);
    ExpectSoundLinks(*from.top);
    ExpectSoundLinks(*to);
}

TEST(AppendChild, MovesTheFirstAndTheLastChildAndTheOnlyOne) {
    Siblings from;
    const Held<ElementNode> to = NewElement("to");

    to->AppendChild(from.a.get());
    EXPECT_EQ(Outline(*from.top), "top{b c}");
    ExpectSoundLinks(*from.top);
    to->AppendChild(from.c.get());
    EXPECT_EQ(Outline(*from.top), "top{b}");
    ExpectSoundLinks(*from.top);
    to->AppendChild(from.b.get());
    EXPECT_EQ(Outline(*from.top), "top");
    EXPECT_EQ(from.top->GetFirstChild(), nullptr);
    EXPECT_EQ(from.top->GetLastChild(), nullptr);
    EXPECT_EQ(Outline(*to), "to{a c b}");
    ExpectSoundLinks(*to);
}

TEST(AppendChild, MovesANodeWithItsDescendants) {
    const Held<Document> document = Parsed("<r><from><a x='1'>t<b/></a></from><to/></r>");
    Node* const root = document->GetRootElement();
    Node* const moved = root->GetFirstChild()->GetFirstChild();

    root->GetLastChild()->AppendChild(moved);
    EXPECT_EQ(Outline(*root), "r{from to{a[x=1]{\"t\" b}}}");
    ExpectSoundLinks(*document);
}

TEST(AppendChild, KeepsANodeAliveThatOnlyItsOldParentOwned) {
    const Held<Document> document = Parsed("<r><from><a><b/></a></from><to/></r>");
    Node* const root = document->GetRootElement();

    root->GetLastChild()->AppendChild(root->GetFirstChild()->GetFirstChild());
    Node* const moved = root->GetLastChild()->GetFirstChild();
    EXPECT_EQ(moved->use_count(), 1u);
    EXPECT_EQ(Outline(*root), "r{from to{a{b}}}");
}

TEST(AppendChild, MovesAChildOfTheSameParentToTheEnd) {
    Siblings siblings;
    siblings.top->AppendChild(siblings.a.get());
    EXPECT_EQ(Outline(*siblings.top), "top{b c a}");
    siblings.top->AppendChild(siblings.a.get());
    EXPECT_EQ(Outline(*siblings.top), "top{b c a}") << "the last one stays the last one";
    EXPECT_EQ(siblings.a->use_count(), 2u);
    ExpectSoundLinks(*siblings.top);
}

TEST(AppendChild, LeavesAnOnlyChildInPlace) {
    const Held<ElementNode> top = NewElement("top");
    top->AppendChild(CreateElementNode("", "only"));
    top->AppendChild(top->GetFirstChild());
    EXPECT_EQ(Outline(*top), "top{only}");
    EXPECT_EQ(top->GetFirstChild()->use_count(), 1u);
    ExpectSoundLinks(*top);
}

TEST(AppendChild, AcceptsADescendantFromDeeperDown) {
    const Held<Document> document = Parsed("<r><a><b><c/></b></a></r>");
    Node* const root = document->GetRootElement();
    Node* const c = root->GetFirstChild()->GetFirstChild()->GetFirstChild();
    root->AppendChild(c);
    EXPECT_EQ(Outline(*root), "r{a{b} c}");
    ExpectSoundLinks(*document);
}

struct Insertion {
    const char* name;
    std::function<void(Siblings&)> act;
    const char* expected;
};

class MovingAmongSiblings : public testing::TestWithParam<Insertion> {};

TEST_P(MovingAmongSiblings, PlacesTheNodeWhereTheReferenceSays) {
    Siblings siblings;
    GetParam().act(siblings);
    EXPECT_EQ(Outline(*siblings.top), GetParam().expected);
    ExpectSoundLinks(*siblings.top);
    for (ElementNode* child : {siblings.a.get(), siblings.b.get(), siblings.c.get()})
        EXPECT_EQ(child->use_count(), 2u) << Outline(*child);
}

INSTANTIATE_TEST_SUITE_P(
    NodeImpl, MovingAmongSiblings,
    testing::Values(
        Insertion{"FirstBehindLast", [](Siblings& s) { s.top->InsertAfter(s.a.get(), s.c.get()); },
                  "top{b c a}"},
        Insertion{"FirstBehindItsNeighbour",
                  [](Siblings& s) { s.top->InsertAfter(s.a.get(), s.b.get()); }, "top{b a c}"},
        Insertion{"MiddleBehindItsLeftNeighbourWhereItIs",
                  [](Siblings& s) { s.top->InsertAfter(s.b.get(), s.a.get()); }, "top{a b c}"},
        Insertion{"LastBehindFirst", [](Siblings& s) { s.top->InsertAfter(s.c.get(), s.a.get()); },
                  "top{a c b}"},
        Insertion{"MiddleBehindLast", [](Siblings& s) { s.top->InsertAfter(s.b.get(), s.c.get()); },
                  "top{a c b}"},
        Insertion{"BehindItselfFirst",
                  [](Siblings& s) { s.top->InsertAfter(s.a.get(), s.a.get()); }, "top{a b c}"},
        Insertion{"BehindItselfMiddle",
                  [](Siblings& s) { s.top->InsertAfter(s.b.get(), s.b.get()); }, "top{a b c}"},
        Insertion{"BehindItselfLast", [](Siblings& s) { s.top->InsertAfter(s.c.get(), s.c.get()); },
                  "top{a b c}"},
        Insertion{"LastBeforeFirst", [](Siblings& s) { s.top->InsertBefore(s.c.get(), s.a.get()); },
                  "top{c a b}"},
        Insertion{"LastBeforeItsNeighbour",
                  [](Siblings& s) { s.top->InsertBefore(s.c.get(), s.b.get()); }, "top{a c b}"},
        Insertion{"MiddleBeforeItsRightNeighbourWhereItIs",
                  [](Siblings& s) { s.top->InsertBefore(s.b.get(), s.c.get()); }, "top{a b c}"},
        Insertion{"FirstBeforeLast", [](Siblings& s) { s.top->InsertBefore(s.a.get(), s.c.get()); },
                  "top{b a c}"},
        Insertion{"MiddleBeforeFirst",
                  [](Siblings& s) { s.top->InsertBefore(s.b.get(), s.a.get()); }, "top{b a c}"},
        Insertion{"BeforeItselfFirst",
                  [](Siblings& s) { s.top->InsertBefore(s.a.get(), s.a.get()); }, "top{a b c}"},
        Insertion{"BeforeItselfMiddle",
                  [](Siblings& s) { s.top->InsertBefore(s.b.get(), s.b.get()); }, "top{a b c}"},
        Insertion{"BeforeItselfLast",
                  [](Siblings& s) { s.top->InsertBefore(s.c.get(), s.c.get()); }, "top{a b c}"}),
    [](const auto& row) { return std::string(row.param.name); });

struct Placement {
    const char* name;
    std::function<void(Siblings&, Node*)> act;
    const char* expected;
};

class InsertingAnotherNode : public testing::TestWithParam<Placement> {};

TEST_P(InsertingAnotherNode, PlacesADetachedNode) {
    Siblings siblings;
    const Held<ElementNode> added = NewElement("n");
    GetParam().act(siblings, added.get());
    EXPECT_EQ(Outline(*siblings.top), GetParam().expected);
    EXPECT_EQ(added->use_count(), 2u);
    ExpectSoundLinks(*siblings.top);
}

TEST_P(InsertingAnotherNode, MovesANodeThatOnlyItsOldParentOwned) {
    Siblings siblings;
    const Held<Document> old = Parsed("<old><l/><n/><r/></old>");
    Node* const added = old->GetRootElement()->GetFirstChild()->GetNextSibling();
    GetParam().act(siblings, added);
    EXPECT_EQ(Outline(*siblings.top), GetParam().expected);
    EXPECT_EQ(Outline(*old), "#document{old{l r}}");
    EXPECT_EQ(added->use_count(), 1u);
    ExpectSoundLinks(*siblings.top);
    ExpectSoundLinks(*old);
}

INSTANTIATE_TEST_SUITE_P(
    NodeImpl, InsertingAnotherNode,
    testing::Values(
        Placement{"BehindTheFirst", [](Siblings& s, Node* n) { s.top->InsertAfter(n, s.a.get()); },
                  "top{a n b c}"},
        Placement{"BehindTheMiddle", [](Siblings& s, Node* n) { s.top->InsertAfter(n, s.b.get()); },
                  "top{a b n c}"},
        Placement{"BehindTheLast", [](Siblings& s, Node* n) { s.top->InsertAfter(n, s.c.get()); },
                  "top{a b c n}"},
        Placement{"BeforeTheFirst", [](Siblings& s, Node* n) { s.top->InsertBefore(n, s.a.get()); },
                  "top{n a b c}"},
        Placement{"BeforeTheMiddle",
                  [](Siblings& s, Node* n) { s.top->InsertBefore(n, s.b.get()); }, "top{a n b c}"},
        Placement{"BeforeTheLast", [](Siblings& s, Node* n) { s.top->InsertBefore(n, s.c.get()); },
                  "top{a b n c}"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Insert, WorksWithAnOnlyChildAsReference) {
    for (const bool behind : {true, false}) {
        const Held<ElementNode> top = NewElement("top");
        top->AppendChild(CreateElementNode("", "only"));
        if (behind)
            top->InsertAfter(CreateElementNode("", "n"), top->GetFirstChild());
        else
            top->InsertBefore(CreateElementNode("", "n"), top->GetFirstChild());
        EXPECT_EQ(Outline(*top), behind ? "top{only n}" : "top{n only}");
        ExpectSoundLinks(*top);
    }
}

TEST(RemoveChild, UnlinksTheFirstTheMiddleAndTheLastChild) {
    {
        Siblings siblings;
        siblings.top->RemoveChild(siblings.a.get());
        EXPECT_EQ(Outline(*siblings.top), "top{b c}");
        ExpectSoundLinks(*siblings.top);
        ExpectDetached(*siblings.a);
    }
    {
        Siblings siblings;
        siblings.top->RemoveChild(siblings.b.get());
        EXPECT_EQ(Outline(*siblings.top), "top{a c}");
        ExpectSoundLinks(*siblings.top);
        ExpectDetached(*siblings.b);
    }
    Siblings siblings;
    siblings.top->RemoveChild(siblings.c.get());
    EXPECT_EQ(Outline(*siblings.top), "top{a b}");
    ExpectSoundLinks(*siblings.top);
    ExpectDetached(*siblings.c);
}

TEST(RemoveChild, LeavesNothingBehindAfterTheOnlyChild) {
    const Held<ElementNode> top = NewElement("top");
    top->AppendChild(CreateElementNode("", "only"));
    top->RemoveChild(top->GetFirstChild());
    EXPECT_EQ(top->GetFirstChild(), nullptr);
    EXPECT_EQ(top->GetLastChild(), nullptr);
}

TEST(RemoveChild, DropsItsReference) {
    Siblings siblings;
    siblings.top->RemoveChild(siblings.b.get());
    EXPECT_EQ(siblings.b->use_count(), 1u);
    EXPECT_EQ(siblings.a->use_count(), 2u);
    EXPECT_EQ(siblings.c->use_count(), 2u);
}

TEST(RemoveChild, KeepsTheDescendantsOfTheRemovedNode) {
    const Held<Document> document = Parsed("<r><a><b>t</b></a><c/></r>");
    Node* const root = document->GetRootElement();
    const Held<Node> a = root->GetFirstChild();
    root->RemoveChild(a.get());
    EXPECT_EQ(Outline(*root), "r{c}");
    EXPECT_EQ(Outline(*a), "a{b{\"t\"}}");
    ExpectDetached(*a);
    ExpectSoundLinks(*a);
}

// Callers pass genuine children; another's child leaves the chain that it is in.
TEST(RemoveChild, UnlinksTheChildOfAnotherNodeFromItsChain) {
    Siblings siblings;
    const Held<ElementNode> stranger = NewElement("stranger");
    stranger->RemoveChild(siblings.b.get());
    EXPECT_EQ(Outline(*siblings.top), "top{a c}");
    ExpectSoundLinks(*siblings.top);
    ExpectDetached(*siblings.b);
    EXPECT_EQ(siblings.b->use_count(), 1u);
}

TEST(RemoveChild, LeavesADetachedNodeDetached) {
    const Held<ElementNode> top = NewElement("top");
    const Held<ElementNode> detached = NewElement("detached");
    detached->AppendChild(NewText("t").get());
    top->RemoveChild(detached.get());
    EXPECT_EQ(Outline(*detached), "detached{\"t\"}");
    EXPECT_EQ(detached->use_count(), 1u);
    ExpectDetached(*detached);
}

TEST(RemoveChild, AllowsTheNodeToBeAddedAgain) {
    Siblings siblings;
    siblings.top->RemoveChild(siblings.a.get());
    siblings.top->AppendChild(siblings.a.get());
    EXPECT_EQ(Outline(*siblings.top), "top{b c a}");
    ExpectSoundLinks(*siblings.top);
}

}  // namespace
}  // namespace Saml::Xml
