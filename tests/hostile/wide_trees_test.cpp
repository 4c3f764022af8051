#include "saml/xml/element_rules.h"
#include "support/big_documents.h"
#include "support/small_stack.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Saml::Xml {
namespace {

using namespace BigDocuments;

constexpr std::size_t kSiblings = 2000000;

std::size_t Count(Node& parent) {
    std::size_t count = 0;
    for (Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling())
        ++count;
    return count;
}

TEST(WideTrees, AreParsedAndWrittenBack) {
    OnSmallStack([] {
        const std::string text = Siblings(kSiblings);
        const Held<Document> document = Parsed(text);
        StringWriter compact;
        document->GetRootElement()->Write(compact);
        EXPECT_TRUE(compact.data == text);
        StringWriter formatted;
        document->GetRootElement()->WriteFormatted(formatted);
        EXPECT_TRUE(formatted.data == "<r>" + Repeated("\n  <a/>", kSiblings) + "\n</r>");
    });
}

TEST(WideTrees, AreWalkedBothWays) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(Siblings(kSiblings));
        Node* const root = document->GetRootElement();
        EXPECT_EQ(Count(*root), kSiblings);
        std::size_t backwards = 0;
        for (Node* child = root->GetLastChild(); child; child = child->GetPreviousSibling())
            ++backwards;
        EXPECT_EQ(backwards, kSiblings);
        std::size_t byElement = 0;
        for (ElementNode* child = GetFirstChildElement(root); child;
             child = GetNextSiblingElement(child))
            ++byElement;
        EXPECT_EQ(byElement, kSiblings);
        std::size_t byName = 0;
        for (ElementNode* child = root->GetFirstChildElement("a"); child;
             child = child->GetNextSiblingElement("a"))
            ++byName;
        EXPECT_EQ(byName, kSiblings);
        EXPECT_EQ(root->GetFirstChildElement("b"), nullptr);
        EXPECT_EQ(root->GetFirstChildElement(ExpandedName{"u", "a"}), nullptr);
    });
}

TEST(WideTrees, AreTornDownAfterAFailedParse) {
    OnSmallStack([] {
        const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
        Held<Node> document;
        EXPECT_THROW(parser->Parse("<r>" + Repeated("<a/>", kSiblings) + "</b>", document),
                     XMLParseException);
        parser->Parse("<a/>", document);
        EXPECT_EQ(Outline(*document), "#document{a}") << "the parser serves on";
    });
}

TEST(WideTrees, AreAcceptedUpToTheExactNodeLimit) {
    OnSmallStack([] {
        const std::string text = Siblings(kSiblings);
        for (const bool enough : {true, false}) {
            const auto limit = static_cast<long long>(kSiblings) + (enough ? 1 : 0);
            const Held<XMLParser> parser(
                CreateXMLParser(CreateXMLDocumentHandler(1LL << 40, limit, 1)));
            Held<Node> document;
            if (enough)
                parser->Parse(text, true, document);
            else
                EXPECT_THROW(parser->Parse(text, true, document), XMLParseException);
        }
    });
}

TEST(WideTrees, AreMovedChildByChildFromEitherEnd) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(Siblings(kSiblings));
        Node* const from = document->GetRootElement();
        const Held<ElementNode> to = NewElement("to");
        while (Node* const first = from->GetFirstChild())
            to->AppendChild(first);
        EXPECT_EQ(Count(*to), kSiblings);
        from->AppendChild(to->GetLastChild());
        while (Node* const last = to->GetLastChild())
            from->InsertBefore(last, from->GetFirstChild());
        EXPECT_EQ(Count(*from), kSiblings);
    });
}

TEST(WideTrees, AreEmptiedChildByChildFromEitherEnd) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(Siblings(kSiblings));
        Node* const root = document->GetRootElement();
        for (std::size_t i = 0; i != kSiblings / 2; ++i) {
            root->RemoveChild(root->GetFirstChild());
            root->RemoveChild(root->GetLastChild());
        }
        EXPECT_EQ(root->GetFirstChild(), nullptr);
        EXPECT_EQ(root->GetLastChild(), nullptr);
    });
}

TEST(WideTrees, LeaveManyHeldChildrenBehind) {
    OnSmallStack([] {
        Held<Document> document = Parsed(Siblings(kSiblings));
        std::vector<Held<Node>> held;
        std::size_t index = 0;
        for (Node* child = document->GetRootElement()->GetFirstChild(); child;
             child = child->GetNextSibling())
            if (index++ % 1000 == 0) held.emplace_back(child);
        ASSERT_EQ(held.size(), kSiblings / 1000);
        document.reset();
        for (const Held<Node>& child : held) {
            ExpectDetached(*child);
            EXPECT_EQ(child->use_count(), 1u);
        }
    });
}

TEST(WideTrees, GiveTheirValuesByPath) {
    OnSmallStack([] {
        constexpr std::size_t kValues = 500000;
        const Held<Document> document = Parsed(Siblings(kValues, "<a k=\"w\">v</a>"));
        std::vector<std::string> values;
        EXPECT_TRUE(EvaluateMultiPath(document.get(), "r/a", values));
        EXPECT_TRUE(values == std::vector<std::string>(kValues, "v"));
        EXPECT_TRUE(EvaluateMultiPath(document.get(), "*/*/@k", values));
        EXPECT_TRUE(values == std::vector<std::string>(kValues, "w"));
        EXPECT_FALSE(EvaluateMultiPath(document.get(), "r/a/b", values));
        std::string value;
        EXPECT_TRUE(EvaluateSimplePath(document.get(), "r/a", value));
        EXPECT_FALSE(EvaluateSimplePath(document.get(), "r/b", value));
    });
}

TEST(WideTrees, OfNilElementsReadAsEmpty) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(Siblings(500000, "<a xsi:nil=\"1\"/>"));
        EXPECT_EQ(GetFirstChildElement(document->GetRootElement()), nullptr);
    });
}

TEST(WideTrees, OfBlanksAndCommentsReadAsEmpty) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(Siblings(1000000, " <!--c-->"));
        auto& root = dynamic_cast<ElementNodeImpl&>(*document->GetRootElement());
        const Security::SkipWsAndCommentsFilter filter;
        EXPECT_FALSE(HasChildren(root, filter));
        EXPECT_EQ(FindOnlyText(root, filter), nullptr);
        const Held<TextNode> text = NewText("t");
        root.AppendChild(text.get());
        EXPECT_TRUE(HasChildren(root, filter));
        EXPECT_EQ(FindOnlyText(root, filter), text.get());
    });
}

TEST(WideTrees, OfTextsAndElementsKeepTheirOrder) {
    OnSmallStack([] {
        const std::string text = Siblings(1000000, "t<a/>");
        const Held<Document> document = Parsed(text);
        StringWriter out;
        document->GetRootElement()->WriteFormatted(out);
        EXPECT_TRUE(out.data == text) << "a text first: all in one line";
    });
}

TEST(WideDocuments, FindAndReplaceTheirRootAtOnce) {
    OnSmallStack([] {
        const std::string comments = Repeated("<!--c-->", 500000);
        const Held<Document> document = Parsed(comments + "<a/>" + comments);
        for (int turn = 0; turn < 100000; ++turn) {
            const Held<ElementNode> next = NewElement("b");
            document->SetRootElement(next.get());
            ASSERT_EQ(document->GetRootElement(), next.get());
        }
        EXPECT_EQ(Count(*document), 1000001u);
    });
}

}  // namespace
}  // namespace Saml::Xml
