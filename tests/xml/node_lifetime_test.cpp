#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Saml::Xml {
namespace {

Node* Child(const Held<Document>& document, int index) {
    return ChildrenOf(*document->GetRootElement()).at(static_cast<std::size_t>(index));
}

TEST(NodeLifetime, AFactoryGivesANodeWithoutOwner) {
    ElementNode* const node = CreateElementNode("", "a");
    EXPECT_EQ(node->use_count(), 0u);
    const Held<ElementNode> adopted(node);
    EXPECT_EQ(adopted->use_count(), 1u);
}

TEST(NodeLifetime, HoldingTheDocumentHoldsTheTree) {
    const Held<Document> document = Parsed("<r><a/>t<b><c/></b></r>");
    EXPECT_EQ(document->use_count(), 1u);
    for (Node* child : ChildrenOf(*document->GetRootElement()))
        EXPECT_EQ(child->use_count(), 1u);
}

TEST(NodeLifetime, AHeldChildOfADyingParentIsADetachedTree) {
    for (int index = 0; index < 3; ++index) {
        Held<Document> document = Parsed("<r><x1><y/></x1><x2><y/></x2><x3><y/></x3></r>");
        const Held<Node> held = Child(document, index);
        document.reset();
        EXPECT_EQ(Outline(*held), "x" + std::to_string(index + 1) + "{y}");
        EXPECT_EQ(held->use_count(), 1u);
        ExpectDetached(*held);
        ExpectSoundLinks(*held);
    }
}

TEST(NodeLifetime, HeldNeighboursOfADyingParentAreDetachedFromEachOther) {
    Held<Document> document = Parsed("<r><a/><b/><c/><d/></r>");
    const Held<Node> b = Child(document, 1);
    const Held<Node> c = Child(document, 2);
    document.reset();
    ExpectDetached(*b);
    ExpectDetached(*c);
    EXPECT_EQ(b->use_count(), 1u);
    EXPECT_EQ(c->use_count(), 1u);
}

TEST(NodeLifetime, EveryKindOfHeldChildSurvivesItsParent) {
    for (const auto& [text, expected] : {
             std::pair("<?p d?><!--c--><r/>", "<?p d?> <!--c--> r "),
             std::pair("<r>t<![CDATA[s]]><!--c--><e/></r>", "\"t\" CDATA{\"s\"} <!--c--> e "),
         }) {
        Held<Document> document = Parsed(text);
        Node* const root = document->GetRootElement();
        std::vector<Held<Node>> held;
        for (Node* child : ChildrenOf(root->GetFirstChild() ? *root : *document))
            held.emplace_back(child);
        document.reset();

        std::string told;
        for (const Held<Node>& node : held) {
            ExpectDetached(*node);
            EXPECT_EQ(node->use_count(), 1u);
            told += Outline(*node) + " ";
        }
        EXPECT_EQ(told, expected);
    }
}

TEST(NodeLifetime, ATextHeldOutOfADyingSectionIsDetached) {
    Held<CDataNode> section = NewCData();
    const Held<TextNode> text = NewText("t");
    section->AppendChild(text.get());
    section.reset();
    ExpectDetached(*text);
    EXPECT_EQ(text->use_count(), 1u);
}

TEST(NodeLifetime, ANodeHeldFarBelowADyingTreeIsDetached) {
    Held<Document> document = Parsed("<a xmlns:p='u'><b><c><d/><e><f/></e></c></b></a>");
    const Held<Node> e = Child(document, 0)->GetFirstChild()->GetLastChild();
    document.reset();
    EXPECT_EQ(Outline(*e), "e{f}");
    ExpectDetached(*e);
    std::string uri = "untouched";
    EXPECT_FALSE(dynamic_cast<ElementNode&>(*e).LookupNamespaceURI("p", uri));
    EXPECT_EQ(uri, "untouched");
}

TEST(NodeLifetime, NodesHeldOnSeveralLevelsStayLinkedWhereTheParentLives) {
    Held<Document> document = Parsed("<a><b><c><d/></c></b></a>");
    const Held<Node> b = Child(document, 0);
    const Held<Node> d = b->GetFirstChild()->GetFirstChild();
    document.reset();
    ExpectDetached(*b);
    EXPECT_EQ(Outline(*b), "b{c{d}}");
    EXPECT_EQ(d->GetParent(), b->GetFirstChild());
    ExpectSoundLinks(*b);
}

TEST(NodeLifetime, ASurvivorMayBeAddedToAnotherTree) {
    Held<Document> document = Parsed("<r><a/><b><c/></b></r>");
    const Held<Node> b = Child(document, 1);
    document.reset();
    const Held<ElementNode> top = NewElement("top");
    top->AppendChild(b.get());
    EXPECT_EQ(Outline(*top), "top{b{c}}");
    ExpectSoundLinks(*top);
}

TEST(NodeLifetime, ARemovedNodeThatNobodyHoldsReleasesItsHeldChildren) {
    const Held<Document> document = Parsed("<r><a><b/><c/></a></r>");
    const Held<Node> c = Child(document, 0)->GetLastChild();
    document->GetRootElement()->RemoveChild(Child(document, 0));
    EXPECT_EQ(Outline(*document), "#document{r}");
    ExpectDetached(*c);
    EXPECT_EQ(c->use_count(), 1u);
}

TEST(NodeLifetime, AParentReleasedByTheMoveOfItsChildLeavesTheChildIntact) {
    // The old parent hangs below a node that is released while the child is elsewhere already.
    Held<ElementNode> old = NewElement("old");
    const Held<ElementNode> top = NewElement("top");
    old->AppendChild(CreateElementNode("", "child"));
    top->AppendChild(old->GetFirstChild());
    old.reset();
    EXPECT_EQ(Outline(*top), "top{child}");
    EXPECT_EQ(top->GetFirstChild()->use_count(), 1u);
}

TEST(NodeLifetime, NodesMayBeReleasedOnAnyThread) {
    const Held<Document> document = Parsed("<r><a/><b/></r>");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([held = Held<Node>(Child(document, 0))] {
            for (int turn = 0; turn < 1000; ++turn)
                const Held<Node> again = held;
        });
    for (std::thread& thread : threads)
        thread.join();
    threads.clear();
    EXPECT_EQ(Child(document, 0)->use_count(), 1u);
}

}  // namespace
}  // namespace Saml::Xml
