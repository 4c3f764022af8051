#include "saml/xml/node_filter.h"
#include "saml/xml/node_impl.h"
#include "saml/xml/parse_document.h"
#include "support/big_documents.h"
#include "support/sliced_reader.h"
#include "support/small_stack.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

namespace Saml::Xml {
namespace {

using namespace BigDocuments;

constexpr std::size_t kTenMillion = 10000000;

/// The only text below the root of `text`.
std::string TextOf(Document& document) {
    Node* const root = document.GetRootElement();
    EXPECT_EQ(root->GetFirstChild(), root->GetLastChild()) << "one node";
    return dynamic_cast<TextNode&>(*root->GetFirstChild()).GetText();
}

TEST(HugeTexts, InRunsOfOneByteAreOneNode) {
    OnSmallStack([] {
        // The tokenizer tells every line end and every reference as a run of its own.
        EXPECT_TRUE(TextOf(*Parsed("<a>" + std::string(kTenMillion, '\n') + "</a>")) ==
                    std::string(kTenMillion, '\n'));
        EXPECT_TRUE(TextOf(*Parsed("<a>" + Repeated("&amp;", kTenMillion / 5) + "</a>")) ==
                    std::string(kTenMillion / 5, '&'));
    });
}

TEST(HugeTexts, InEventsOfOneByteAreOneNode) {
    OnSmallStack([] {
        const Held<XMLHandler> handler(CreateXMLDocumentHandler(0, 0, 0));
        Held<Node> document;
        handler->StartDocument(document);
        const char* noAttributes[] = {nullptr};
        handler->StartElement("a", 1, 0, noAttributes);
        for (std::size_t i = 0; i != kTenMillion; ++i)
            handler->Characters("x", 1);
        handler->EndElement("a");
        handler->Reset();
        EXPECT_TRUE(TextOf(dynamic_cast<Document&>(*document)) == std::string(kTenMillion, 'x'));
    });
}

TEST(HugeTexts, InReadsOfOneByteAreOneNode) {
    OnSmallStack([] {
        struct OneByteReader : Reader {
            int Read(char* buffer, int) override {
                const std::string begin = "<a>";
                const std::string end = "</a>";
                const std::size_t i = position++;
                if (i < begin.size())
                    *buffer = begin[i];
                else if (i < begin.size() + kTenMillion)
                    *buffer = 'x';
                else if (i < begin.size() + kTenMillion + end.size())
                    *buffer = end[i - begin.size() - kTenMillion];
                else
                    return -1;
                return 1;
            }
            std::size_t position = 0;
        } reader;
        const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
        Held<Node> document;
        parser->Parse(reader, document);
        EXPECT_TRUE(TextOf(dynamic_cast<Document&>(*document)) == std::string(kTenMillion, 'x'));
    });
}

TEST(HugeTexts, InASectionAreOneNode) {
    OnSmallStack([] {
        const std::string text = "<a><![CDATA[" + std::string(kTenMillion / 2, '\n') + "]]></a>";
        const Held<Document> document = Parsed(text);
        EXPECT_EQ(ChildrenOf(*document->GetRootElement()->GetFirstChild()).size(), 1u);
        StringWriter out;
        document->GetRootElement()->Write(out);
        EXPECT_TRUE(out.data == text);
    });
}

TEST(HugeTexts, AreEscaped) {
    OnSmallStack([] {
        const Held<TextNode> text = NewText(std::string(kTenMillion, '<'));
        StringWriter out;
        text->Write(out);
        EXPECT_TRUE(out.data == Repeated("&lt;", kTenMillion));
    });
}

TEST(HugeTexts, OfBlanksAreHidden) {
    OnSmallStack([] {
        const Security::SkipWsAndCommentsFilter filter;
        const Held<TextNode> text = NewText(std::string(kTenMillion, ' '));
        EXPECT_FALSE(filter.Accept(dynamic_cast<NodeImpl&>(*text)));
        text->AppendText("x", 1);
        EXPECT_TRUE(filter.Accept(dynamic_cast<NodeImpl&>(*text)));
    });
}

// One token each, which the tokenizer collects over a thousand reads.
TEST(HugeTokens, AreParsed) {
    OnSmallStack([] {
        const std::string huge(kTenMillion, 'x');
        const Held<Document> document = Parsed("<!--" + huge + "--><?p " + huge + "?><" + huge +
                                               " " + huge + "=\"" + huge + "\"/>");
        EXPECT_TRUE(dynamic_cast<CommentNode&>(*document->GetFirstChild()).GetText() == huge);
        ElementNode& root = *document->GetRootElement();
        EXPECT_TRUE(root.GetLocalName() == huge);
        std::string value;
        EXPECT_TRUE(root.GetAttribute(huge, value));
        EXPECT_TRUE(value == huge);
    });
}

TEST(TextsBeyondTheRangeOfAnInt, AreRefusedUpFront) {
    std::string text;
    try {
        text.assign(std::size_t{1} << 31, ' ');
    } catch (const std::bad_alloc&) {
        GTEST_SKIP() << "needs 2 GiB of memory";
    }
    text.replace(0, 4, "<a/>");
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    const Held<Node> before(CreateDocument());
    Held<Node> document = before;
    EXPECT_NE(MessageOf<InvalidArgumentException>([&] { parser->Parse(text, document); }), "");
    EXPECT_NE(MessageOf<InvalidArgumentException>([&] { parser->Parse(text, true, document); }),
              "");
    EXPECT_EQ(document, before);
    EXPECT_NE(MessageOf<InvalidArgumentException>([&] { ParseDocument(text); }), "");
}

}  // namespace
}  // namespace Saml::Xml
