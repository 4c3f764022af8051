#include "saml/xml/document_order.h"
#include "saml/xml/namespace_lookup.h"
#include "support/big_documents.h"
#include "support/sliced_reader.h"
#include "support/small_stack.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace Saml::Xml {
namespace {

using namespace BigDocuments;

constexpr std::size_t kLevels = 1000000;

std::size_t Depth(Node& top) {
    std::size_t depth = 0;
    for (Node* node = &top; node; node = node->GetFirstChild())
        ++depth;
    return depth;
}

Node* Innermost(Node& top) {
    Node* node = &top;
    while (node->GetFirstChild() != nullptr)
        node = node->GetFirstChild();
    return node;
}

Node* Below(Node& top, std::size_t levels) {
    Node* node = &top;
    for (std::size_t level = 0; level != levels; ++level)
        node = node->GetFirstChild();
    return node;
}

Held<ElementNode> TreeBuiltDownwards(std::size_t levels) {
    const Held<ElementNode> top = NewElement("a");
    Node* innermost = top.get();
    for (std::size_t level = 1; level != levels; ++level) {
        innermost->AppendChild(CreateElementNode("", "a"));
        innermost = innermost->GetFirstChild();
    }
    return top;
}

TEST(DeepTrees, AreParsedAndWrittenBack) {
    OnSmallStack([] {
        const std::string text = NestedElements(kLevels);
        const Held<Document> document = Parsed(text);
        StringWriter out;
        document->GetRootElement()->Write(out);
        EXPECT_TRUE(out.data == text);
    });
}

TEST(DeepTrees, AreWrittenWithIndentation) {
    OnSmallStack([] {
        // Not deeper: the blanks themselves grow with the square of the depth.
        constexpr std::size_t kIndented = 3000;
        const Held<ElementNode> top = TreeBuiltDownwards(kIndented);
        StringWriter out;
        top->WriteFormatted(out);
        // 2 * level blanks in front of both tags; the innermost element has but one.
        constexpr std::size_t kBlanks = 2 * (kIndented - 1) * (kIndented - 1);
        constexpr std::size_t kTagsAndLineFeeds = (kIndented - 1) * (3 + 4 + 2) + 4;
        EXPECT_EQ(out.data.size(), kBlanks + kTagsAndLineFeeds);
    });
}

TEST(DeepTrees, AreAcceptedUpToTheExactDepthLimit) {
    OnSmallStack([] {
        const std::string text = NestedElements(kLevels);
        for (const bool enough : {true, false}) {
            // The innermost element has kLevels - 1 open ancestors.
            const auto limit = static_cast<long long>(kLevels) - (enough ? 1 : 2);
            const Held<XMLParser> parser(
                CreateXMLParser(CreateXMLDocumentHandler(1LL << 40, 1LL << 40, limit)));
            Held<Node> document;
            if (enough) {
                parser->Parse(text, true, document);
                EXPECT_EQ(Depth(*document), kLevels + 1);
            } else {
                EXPECT_THROW(parser->Parse(text, true, document), XMLParseException);
            }
        }
    });
}

TEST(DeepTrees, AreTornDownAfterAFailedParse) {
    OnSmallStack([] {
        const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
        for (const char* end : {"", "</b>", "<", "<?p in an element?>"}) {
            Held<Node> document;
            EXPECT_THROW(parser->Parse(OpenElements(kLevels, end), document), XMLParseException);
        }
        Held<Node> document;
        parser->Parse("<a/>", document);
        EXPECT_EQ(Depth(*document), 2u) << "the parser serves on";
    });
}

TEST(DeepTrees, AreTornDownAfterAFailedRead) {
    OnSmallStack([] {
        struct FailingReader : SlicedReader {
            using SlicedReader::SlicedReader;
            int Read(char* buffer, int size) override {
                const int count = SlicedReader::Read(buffer, size);
                if (count < 0) throw std::runtime_error("disk");
                return count;
            }
        } reader(OpenElements(kLevels), 10240);
        const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
        Held<Node> document;
        EXPECT_EQ(MessageOf<std::runtime_error>([&] { parser->Parse(reader, document); }), "disk");
    });
}

TEST(DeepTrees, AreBuiltDownwardsAndUpwards) {
    OnSmallStack([] {
        EXPECT_EQ(Depth(*TreeBuiltDownwards(kLevels)), kLevels);
        Held<ElementNode> top = NewElement("a");
        for (std::size_t level = 1; level != kLevels; ++level) {
            const Held<ElementNode> parent = NewElement("a");
            parent->AppendChild(top.get());
            top = parent;
        }
        EXPECT_EQ(Depth(*top), kLevels);
    });
}

TEST(DeepTrees, AreNavigated) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(NestedElements(kLevels));
        std::size_t byElement = 0;
        for (ElementNode* element = GetFirstChildElement(document.get()); element;
             element = GetFirstChildElement(element))
            ++byElement;
        EXPECT_EQ(byElement, kLevels);

        std::size_t byName = 0;
        for (ElementNode* element = document->GetFirstChildElement("a"); element;
             element = element->GetFirstChildElement("a"))
            ++byName;
        EXPECT_EQ(byName, kLevels);

        std::size_t upwards = 0;
        for (Node* node = Innermost(*document); node; node = node->GetParent())
            ++upwards;
        EXPECT_EQ(upwards, kLevels + 1);

        std::size_t entered = 0;
        std::size_t left = 0;
        WalkInDocumentOrder(
            dynamic_cast<const NodeImpl&>(*document), [&](const NodeImpl&) { return ++entered; },
            [&](const NodeImpl&) { ++left; });
        EXPECT_EQ(entered, kLevels + 1);
        EXPECT_EQ(left, kLevels + 1);
    });
}

TEST(DeepTrees, AreFollowedByPathsOfAsManySteps) {
    OnSmallStack([] {
        const std::string value = "innermost";
        const Held<Document> document =
            Parsed(OpenElements(kLevels, value) + Repeated("</a>", kLevels));
        for (const std::string& path : {Repeated("/a", kLevels), Repeated("/*", kLevels)}) {
            std::string found;
            EXPECT_TRUE(EvaluateSimplePath(document.get(), path, found));
            EXPECT_EQ(found, value);
            std::vector<std::string> all;
            EXPECT_TRUE(EvaluateMultiPath(document.get(), path, all));
            EXPECT_EQ(all, std::vector<std::string>{value});
            EXPECT_FALSE(EvaluateSimplePath(document.get(), path + "/*", found));
            EXPECT_FALSE(EvaluateMultiPath(document.get(), path + "/*", all));
        }
    });
}

TEST(DeepTrees, AnswerNamespaceLookupsFromTheirInnermostElement) {
    OnSmallStack([] {
        const Held<Document> document =
            Parsed("<p:r xmlns:p=\"u\">" + NestedElements(kLevels) + "</p:r>");
        auto& innermost = dynamic_cast<ElementNode&>(*Innermost(*document));
        std::string uri;
        EXPECT_TRUE(innermost.LookupNamespaceURI("p", uri));
        EXPECT_EQ(uri, "u");
        EXPECT_FALSE(innermost.LookupNamespaceURI("q", uri));
        innermost.SetPrefix("p");
        EXPECT_EQ(innermost.GetExpandedName().namespaceUri, "u");
        EXPECT_EQ(innermost.GetParent()->GetFirstChildElement(ExpandedName{"u", "a"}), &innermost);
        EXPECT_EQ(DeclarationsInForce(&dynamic_cast<ElementNodeImpl&>(innermost)).size(), 1u);
    });
}

TEST(DeepTrees, AreMovedWhole) {
    OnSmallStack([] {
        const Held<Document> document =
            Parsed("<r><from>" + NestedElements(kLevels) + "</from><to/></r>");
        Node* const from = document->GetRootElement()->GetFirstChild();
        Node* const to = from->GetNextSibling();
        for (int turn = 0; turn < 1000; ++turn) {
            to->AppendChild(from->GetFirstChild());
            from->AppendChild(to->GetFirstChild());
        }
        to->AppendChild(from->GetFirstChild());
        EXPECT_EQ(from->GetFirstChild(), nullptr);
        EXPECT_EQ(Depth(*to), kLevels + 1);
    });
}

TEST(DeepTrees, AreMovedBelowEachOtherButNotBelowThemselves) {
    OnSmallStack([] {
        const Held<ElementNode> upper = TreeBuiltDownwards(kLevels);
        const Held<ElementNode> lower = TreeBuiltDownwards(kLevels);
        Node* const end = Innermost(*upper);
        end->AppendChild(lower.get());
        EXPECT_EQ(Depth(*upper), 2 * kLevels);
        Node* const innermost = Innermost(*lower);
        EXPECT_THROW(innermost->AppendChild(upper.get()), InvalidArgumentException);
        EXPECT_THROW(innermost->AppendChild(lower.get()), InvalidArgumentException);
        EXPECT_EQ(Depth(*upper), 2 * kLevels);
    });
}

TEST(DeepTrees, GrowAtTheirInnermostElementByLeavesOnly) {
    OnSmallStack([] {
        // A leaf cannot be an ancestor: no look at the ancestors, of which there are many here.
        const Held<ElementNode> top = TreeBuiltDownwards(100000);
        Node* const innermost = Innermost(*top);
        for (std::size_t i = 0; i != 100000; ++i)
            innermost->AppendChild(CreateElementNode("", "b"));
        EXPECT_EQ(ChildrenOf(*innermost).size(), 100000u);
    });
}

TEST(DeepTrees, LeaveAHeldInnerNodeBehind) {
    OnSmallStack([] {
        Held<Document> document = Parsed(NestedElements(kLevels));
        Held<Node> held(Below(*document, kLevels / 2));
        document.reset();
        ExpectDetached(*held);
        EXPECT_EQ(held->use_count(), 1u);
        EXPECT_EQ(Depth(*held), kLevels / 2 + 1);
        held.reset();
    });
}

TEST(DeepTrees, LeaveManyHeldInnerNodesBehind) {
    OnSmallStack([] {
        constexpr std::size_t kDistance = 1000;
        Held<ElementNode> top = TreeBuiltDownwards(kLevels);
        std::vector<Held<Node>> held;
        for (Node* node = Below(*top, kDistance); node; node = Below(*node, kDistance)) {
            held.emplace_back(node);
            if (held.size() == kLevels / kDistance - 1) break;
        }
        top.reset();
        for (std::size_t i = 0; i != held.size(); ++i) {
            ExpectDetached(*held[i]);
            EXPECT_EQ(held[i]->use_count(), 1u);
            held[i].reset();  // and with it all down to the next one
        }
    });
}

TEST(DeepTrees, AreRemovedFromALivingOne) {
    OnSmallStack([] {
        const Held<Document> document = Parsed("<r><b/>" + NestedElements(kLevels) + "<c/></r>");
        Node* const root = document->GetRootElement();
        root->RemoveChild(root->GetFirstChild()->GetNextSibling());
        EXPECT_EQ(Outline(*document), "#document{r{b c}}");
    });
}

}  // namespace
}  // namespace Saml::Xml
