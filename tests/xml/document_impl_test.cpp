#include "saml/xml/element_node_impl.h"
#include "support/foreign_nodes.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

constexpr char kSecondRoot[] = "Document's Root Element Node already set";

TEST(Document, StartsEmptyAndDetached) {
    const Held<Document> document = NewDocument();
    EXPECT_EQ(document->GetType(), 0);
    EXPECT_EQ(document->GetRootElement(), nullptr);
    EXPECT_EQ(document->GetFirstChild(), nullptr);
    EXPECT_EQ(document->GetVersion(), "");
    EXPECT_EQ(document->GetEncoding(), "");
    ExpectDetached(*document);
}

TEST(Document, KeepsItsDeclarationTexts) {
    const Held<Document> document = NewDocument();
    document->SetVersion("1.0");
    document->SetEncoding("UTF-8");
    EXPECT_EQ(document->GetVersion(), "1.0");
    EXPECT_EQ(document->GetEncoding(), "UTF-8");
}

TEST(Document, TakesCommentsAndInstructionsBesideOneElement) {
    const Held<Document> document = NewDocument();
    document->AppendChild(CreateCommentNode());
    document->AppendChild(NewInstruction("p", "d").get());
    const Held<ElementNode> root = NewElement("root");
    document->AppendChild(root.get());
    document->AppendChild(NewComment("after").get());
    document->AppendChild(NewInstruction("q", "e").get());

    EXPECT_EQ(Outline(*document), "#document{<!----> <?p d?> root <!--after--> <?q e?>}");
    EXPECT_EQ(document->GetRootElement(), root.get());
    EXPECT_EQ(root->GetParent(), document.get());
    ExpectSoundLinks(*document);
}

TEST(Document, RefusesASecondElement) {
    const Held<Document> document = Parsed("<!--c--><root/>");
    ElementNode* const root = document->GetRootElement();
    const Held<ElementNode> second = NewElement("second");
    for (const int way : {0, 1, 2})
        EXPECT_EQ(MessageOf<InvalidArgumentException>([&] {
                      if (way == 0) document->AppendChild(second.get());
                      if (way == 1) document->InsertAfter(second.get(), root);
                      if (way == 2) document->InsertBefore(second.get(), root);
                  }),
                  kSecondRoot);
    EXPECT_EQ(Outline(*document), "#document{<!--c--> root}");
    EXPECT_EQ(document->GetRootElement(), root);
    ExpectDetached(*second);
    EXPECT_EQ(second->use_count(), 1u);
}

TEST(Document, RefusesItsOwnRootOnceMore) {
    const Held<Document> document = Parsed("<root/><!--c-->");
    ElementNode* const root = document->GetRootElement();
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { document->AppendChild(root); }),
              kSecondRoot);
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [&] { document->InsertAfter(root, document->GetLastChild()); }),
              kSecondRoot);
    EXPECT_EQ(Outline(*document), "#document{root <!--c-->}");
    EXPECT_EQ(document->GetRootElement(), root);
    EXPECT_EQ(root->use_count(), 1u);
}

TEST(Document, RefusesADescendantOfItsRootBesideIt) {
    const Held<Document> document = Parsed("<root><a/></root>");
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [&] { document->AppendChild(document->GetRootElement()->GetFirstChild()); }),
              kSecondRoot);
    EXPECT_EQ(Outline(*document), "#document{root{a}}");
}

TEST(Document, ForgetsARemovedRoot) {
    const Held<Document> document = Parsed("<!--c--><root/>");
    document->RemoveChild(document->GetRootElement());
    EXPECT_EQ(document->GetRootElement(), nullptr);
    EXPECT_EQ(Outline(*document), "#document{<!--c-->}");

    const Held<ElementNode> next = NewElement("next");
    document->AppendChild(next.get());
    EXPECT_EQ(document->GetRootElement(), next.get());
}

TEST(Document, KeepsItsRootWhenAnotherChildGoes) {
    const Held<Document> document = Parsed("<?p d?><!--c--><root/>");
    document->RemoveChild(document->GetFirstChild());
    document->RemoveChild(document->GetFirstChild());
    ASSERT_NE(document->GetRootElement(), nullptr);
    EXPECT_EQ(Outline(*document), "#document{root}");
    EXPECT_EQ(document->GetRootElement()->GetLocalName(), "root");
}

TEST(Document, ForgetsARootThatMovesAway) {
    const Held<Document> document = Parsed("<root><a/></root>");
    const Held<ElementNode> top = NewElement("top");
    top->AppendChild(document->GetRootElement());
    EXPECT_EQ(document->GetRootElement(), nullptr);
    EXPECT_EQ(Outline(*document), "#document");
    EXPECT_EQ(Outline(*top), "top{root{a}}");
}

TEST(Document, RecordsAnInsertedRoot) {
    const Held<Document> document = NewDocument();
    document->AppendChild(CreateCommentNode());
    const Held<ElementNode> root = NewElement("root");
    document->InsertBefore(root.get(), document->GetFirstChild());
    EXPECT_EQ(document->GetRootElement(), root.get());
    document->RemoveChild(root.get());
    document->InsertAfter(root.get(), document->GetFirstChild());
    EXPECT_EQ(document->GetRootElement(), root.get());
    EXPECT_EQ(Outline(*document), "#document{<!----> root}");
}

TEST(SetRootElement, AppendsTheFirstRoot) {
    const Held<Document> document = NewDocument();
    document->AppendChild(CreateCommentNode());
    const Held<ElementNode> root = NewElement("root");
    document->SetRootElement(root.get());
    EXPECT_EQ(Outline(*document), "#document{<!----> root}");
    EXPECT_EQ(document->GetRootElement(), root.get());
    EXPECT_EQ(root->use_count(), 2u);
}

TEST(SetRootElement, PutsTheNewRootInTheOldOnesPlace) {
    for (const std::string text :
         {"<root/>", "<!--a--><root/>", "<root/><!--b-->", "<!--a--><root/><!--b-->"}) {
        const Held<Document> document = Parsed(text);
        const Held<ElementNode> old = document->GetRootElement();
        const Held<ElementNode> next = NewElement("next");
        std::string expected = Outline(*document);
        expected.replace(expected.find("root"), 4, "next");

        document->SetRootElement(next.get());
        EXPECT_EQ(Outline(*document), expected);
        EXPECT_EQ(document->GetRootElement(), next.get());
        EXPECT_EQ(next->GetParent(), document.get());
        ExpectDetached(*old);
        EXPECT_EQ(old->use_count(), 1u);
        ExpectSoundLinks(*document);
    }
}

TEST(SetRootElement, OnlyRemovesForNull) {
    const Held<Document> document = Parsed("<!--a--><root/><!--b-->");
    document->SetRootElement(nullptr);
    EXPECT_EQ(document->GetRootElement(), nullptr);
    EXPECT_EQ(Outline(*document), "#document{<!--a--> <!--b-->}");
    document->SetRootElement(nullptr);
    EXPECT_EQ(Outline(*document), "#document{<!--a--> <!--b-->}");
}

TEST(SetRootElement, LeavesTheCurrentRootInPlace) {
    const Held<Document> document = Parsed("<!--a--><root><x/></root><!--b-->");
    ElementNode* const root = document->GetRootElement();
    document->SetRootElement(root);
    EXPECT_EQ(Outline(*document), "#document{<!--a--> root{x} <!--b-->}");
    EXPECT_EQ(document->GetRootElement(), root);
    EXPECT_EQ(root->use_count(), 1u);
    ExpectSoundLinks(*document);
}

TEST(SetRootElement, TakesADescendantOfTheOldRoot) {
    const Held<Document> document = Parsed("<!--a--><root><x/><y><z/></y></root><!--b-->");
    // Nobody but the old root owns the new one, and nobody but the document the old one.
    document->SetRootElement(document->GetRootElement()->GetFirstChildElement("y"));
    EXPECT_EQ(Outline(*document), "#document{<!--a--> y{z} <!--b-->}");
    ASSERT_NE(document->GetRootElement(), nullptr);
    EXPECT_EQ(document->GetRootElement()->GetLocalName(), "y");
    EXPECT_EQ(document->GetRootElement()->use_count(), 1u);
    ExpectSoundLinks(*document);
}

TEST(SetRootElement, TakesTheRootOfAnotherDocument) {
    const Held<Document> from = Parsed("<new><x/></new>");
    const Held<Document> to = Parsed("<old/><!--b-->");
    to->SetRootElement(from->GetRootElement());
    EXPECT_EQ(Outline(*to), "#document{new{x} <!--b-->}");
    EXPECT_EQ(Outline(*from), "#document");
    EXPECT_EQ(from->GetRootElement(), nullptr);
    EXPECT_EQ(to->GetRootElement()->use_count(), 1u);
}

TEST(SetRootElement, ChangesNothingForAForeignElement) {
    const Held<Document> document = Parsed("<!--a--><root/><!--b-->");
    ElementNode* const root = document->GetRootElement();
    const Held<ForeignElement> foreign(new ForeignElement);
    const TypeMismatchException expected(typeid(ElementNodeImpl), typeid(ForeignElement));
    EXPECT_EQ(MessageOf<TypeMismatchException>([&] { document->SetRootElement(foreign.get()); }),
              expected.what());
    EXPECT_EQ(Outline(*document), "#document{<!--a--> root <!--b-->}");
    EXPECT_EQ(document->GetRootElement(), root);
    EXPECT_EQ(foreign->use_count(), 1u);
    ExpectSoundLinks(*document);
}

TEST(SetRootElement, ChangesNothingForAForeignElementWhereThereIsNoRoot) {
    const Held<Document> document = NewDocument();
    const Held<ForeignElement> foreign(new ForeignElement);
    EXPECT_THROW(document->SetRootElement(foreign.get()), TypeMismatchException);
    EXPECT_EQ(Outline(*document), "#document");
    EXPECT_EQ(document->GetRootElement(), nullptr);
}

}  // namespace
}  // namespace Saml::Xml
