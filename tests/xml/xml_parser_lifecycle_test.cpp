#include "support/recording_handler.h"
#include "support/sliced_reader.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace Saml::Xml {
namespace {

constexpr char kWithEntity[] = "<!DOCTYPE a [<!ENTITY e 'x<b/>'>]><a>&e;&e;</a>";
constexpr char kEntityExpanded[] = "#document{a{\"x\" b \"x\" b}}";

std::string OutlineBy(XMLParser& parser, const std::string& text) {
    Held<Node> document;
    parser.Parse(text, document);
    return Outline(*document);
}

TEST(CreateXMLParser, GivesAParserWithoutOwner) {
    XMLParser* const parser = CreateXMLParser(new RecordingHandler);
    EXPECT_EQ(parser->use_count(), 0u);
    const Held<XMLParser> adopted(parser);
    EXPECT_EQ(parser->use_count(), 1u);
}

TEST(CreateXMLParser, RefusesANullHandler) {
    EXPECT_NE(
        MessageOf<InvalidArgumentException>([] { Held<XMLParser>(CreateXMLParser(nullptr)); }), "");
}

TEST(CreateXMLDocumentHandler, GivesAHandlerWithoutOwner) {
    XMLHandler* const handler = CreateXMLDocumentHandler(1, 1, 1);
    EXPECT_EQ(handler->use_count(), 0u);
    const Held<XMLHandler> adopted(handler);
}

TEST(XMLParser, KeepsItsHandlerAlive) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    {
        const Held<XMLParser> parser(CreateXMLParser(handler.get()));
        EXPECT_EQ(parser->GetHandler(), handler.get());
        EXPECT_EQ(handler->use_count(), 2u);
        EXPECT_EQ(OutlineBy(*parser, "<a/>"), "#document");
        EXPECT_EQ(handler->use_count(), 2u) << "a parse leaves no further owner behind";
    }
    EXPECT_EQ(handler->use_count(), 1u);
}

TEST(XMLParser, TakesAnotherHandler) {
    const Held<RecordingHandler> first(new RecordingHandler);
    const Held<RecordingHandler> second(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(first.get()));
    parser->SetHandler(second.get());
    EXPECT_EQ(parser->GetHandler(), second.get());
    EXPECT_EQ(first->use_count(), 1u);
    EXPECT_EQ(second->use_count(), 2u);

    Held<Node> document;
    parser->Parse("<a/>", document);
    EXPECT_TRUE(first->events.empty());
    EXPECT_EQ(second->events.size(), 4u);
}

TEST(XMLParser, TakesItsOwnHandlerOnceMore) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    parser->SetHandler(parser->GetHandler());
    EXPECT_EQ(parser->GetHandler()->use_count(), 1u);
    EXPECT_EQ(OutlineBy(*parser, "<a/>"), "#document{a}");
}

TEST(XMLParser, KeepsItsHandlerWhenTheNextOneIsNull) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    EXPECT_NE(MessageOf<InvalidArgumentException>([&] { parser->SetHandler(nullptr); }), "");
    EXPECT_EQ(parser->GetHandler(), handler.get());
    EXPECT_EQ(handler->use_count(), 2u);
}

TEST(XMLParser, HandsTheOldHandlerTheRestOfADocumentDuringWhichItWasReplaced) {
    const Held<RecordingHandler> next(new RecordingHandler);
    RecordingHandler* const first = new RecordingHandler;
    const Held<XMLParser> parser(CreateXMLParser(first));  // the only owner of `first`
    Events told;
    first->onEvent = [&](const std::string& event) {
        told.push_back(event);
        if (event == "StartElement a at 1:0") parser->SetHandler(next.get());
    };
    Held<Node> document;
    parser->Parse("<a><b/></a>", document);
    EXPECT_EQ(told, (Events{"StartDocument false", "StartElement a at 1:0", "StartElement b at 1:3",
                            "EndElement b", "EndElement a", "Reset"}));
    EXPECT_TRUE(next->events.empty());
    EXPECT_EQ(parser->GetHandler(), next.get());
}

TEST(XMLParser, MakesTheCallersPointerTheOnlyOwnerOfADocument) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    Held<Node> document;
    parser->Parse("<a><b/></a>", document);
    EXPECT_EQ(document->GetType(), 0);
    EXPECT_EQ(document->use_count(), 1u);

    const Held<Node> first = document;
    parser->Parse("<c/>", document);
    EXPECT_EQ(first->use_count(), 1u) << "replaced";
    EXPECT_EQ(Outline(*first), "#document{a{b}}");
    EXPECT_EQ(Outline(*document), "#document{c}");
}

TEST(XMLParser, HandsTheDocumentOverAtTheEndOnly) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    const Held<Node> before(CreateDocument());
    Held<Node> document = before;
    handler->onEvent = [&](const std::string&) { EXPECT_EQ(document, before); };
    parser->Parse("<a>t</a>", document);
    EXPECT_NE(document, before);
}

TEST(XMLParser, ParsesManyDocumentsInTurn) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    for (int turn = 0; turn < 100; ++turn) {
        const std::string name = "a" + std::to_string(turn);
        EXPECT_EQ(OutlineBy(*parser, "<" + name + "/>"), "#document{" + name + "}");
        EXPECT_EQ(OutlineBy(*parser, kWithEntity), kEntityExpanded);
    }
}

TEST(XMLParser, ForgetsTheEntitiesAndTheEncodingOfTheDocumentBefore) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    EXPECT_EQ(OutlineBy(*parser, kWithEntity), kEntityExpanded);
    Held<Node> document;
    EXPECT_THROW(parser->Parse("<a>&e;</a>", document), XMLParseException);
    EXPECT_EQ(OutlineBy(*parser, "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>"),
              "#document{a{\"\xC3\xA9\"}}");
    EXPECT_EQ(OutlineBy(*parser, "<a>\xC3\xA9</a>"), "#document{a{\"\xC3\xA9\"}}");
}

TEST(XMLParser, ServesOnAfterAFailureInAnyState) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    for (const std::string broken :
         {"", "<", "<a", "<a>", "<a><b><![CDATA[x", "<!DOCTYPE a [<!ENTITY e 'x'>", "<a>&e;</a>",
          "<a><?p?></a>", "<!-- ", "<?xml version='1.0' encoding='nope'?><a/>"}) {
        Held<Node> document;
        EXPECT_THROW(parser->Parse(broken, document), XMLParseException) << broken;
        EXPECT_EQ(OutlineBy(*parser, kWithEntity), kEntityExpanded) << broken;
    }
}

TEST(XMLParser, ServesOnAfterAVeryLargeDocument) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    for (int turn = 0; turn < 3; ++turn) {
        Held<Node> document;
        parser->Parse(
            "<a x='" + std::string(3000000, 'v') + "'>" + std::string(3000000, 't') + "</a>",
            document);
        EXPECT_EQ(OutlineBy(*parser, kWithEntity), kEntityExpanded);
    }
}

TEST(XMLParser, ServesOnAfterAVeryDeepDocument) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    std::string text;
    for (int level = 0; level < 50000; ++level)
        text += "<a>";
    for (const bool complete : {true, false}) {
        std::string closed = text;
        if (complete)
            for (int level = 0; level < 50000; ++level)
                closed += "</a>";
        Held<Node> document;
        if (complete)
            parser->Parse(closed, document);
        else
            EXPECT_THROW(parser->Parse(closed, document), XMLParseException);
        EXPECT_EQ(OutlineBy(*parser, kWithEntity), kEntityExpanded);
    }
}

TEST(XMLParser, ServesOnAfterARefusedFloodOfEntities) {
    // Ten levels of ten references each would be 10^10 characters: the tokenizer's own guard
    // refuses them, and its account of what was expanded must not burden the next document.
    std::string flood = "<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxx'>";
    for (int level = 1; level < 10; ++level) {
        flood += "<!ENTITY e" + std::to_string(level) + " '";
        for (int i = 0; i < 10; ++i)
            flood += "&e" + std::to_string(level - 1) + ";";
        flood += "'>";
    }
    flood += "]><a>&e9;</a>";
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    for (int turn = 0; turn < 2; ++turn) {
        Held<Node> document;
        EXPECT_THROW(parser->Parse(flood, document), XMLParseException);
        EXPECT_EQ(document, nullptr);
        EXPECT_EQ(OutlineBy(*parser, kWithEntity), kEntityExpanded);
    }
}

TEST(XMLParser, MayRunInsideAnEventOfAnotherOne) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> outer(CreateXMLParser(handler.get()));
    const Held<XMLParser> inner(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    std::string told;
    handler->onEvent = [&](const std::string& event) {
        if (event.rfind("StartElement", 0) != 0) return;
        told += OutlineBy(*inner, "<in>" + std::to_string(told.size()) + "</in>");
        Held<Node> document;
        EXPECT_THROW(inner->Parse("<broken", document), XMLParseException);
    };
    Held<Node> document;
    outer->Parse("<a><b/></a>", document);
    EXPECT_EQ(told, "#document{in{\"0\"}}#document{in{\"18\"}}");
    EXPECT_EQ(handler->events.size(), 6u);
}

TEST(XMLParser, MayBeginAnotherDocumentInsideAnEventOfItsOwn) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    handler->onEvent = [&](const std::string& event) {
        if (event != "StartElement a at 1:0") return;
        Held<Node> inner;
        parser->Parse("<in/>", inner);
        EXPECT_NE(inner, nullptr);
        EXPECT_THROW(parser->Parse("<broken", inner), XMLParseException);
    };
    Held<Node> document;
    parser->Parse("<a><b/></a>", document);
    EXPECT_NE(document, nullptr);
    EXPECT_EQ(handler->events,
              (Events{"StartDocument false", "StartElement a at 1:0", "StartDocument false",
                      "StartElement in at 1:0", "EndElement in", "Reset", "StartDocument false",
                      "Reset", "StartElement b at 1:3", "EndElement b", "EndElement a", "Reset"}));
}

TEST(XMLParser, MayRunInsideTheReadingOfAnotherOne) {
    struct NestedReader : SlicedReader {
        using SlicedReader::SlicedReader;
        int Read(char* buffer, int size) override {
            told += Outline(*Parsed("<in/>"));
            return SlicedReader::Read(buffer, size);
        }
        std::string told;
    } reader("<a><b/></a>", 6);
    const Held<XMLParser> outer(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    Held<Node> document;
    outer->Parse(reader, document);
    EXPECT_EQ(Outline(*document), "#document{a{b}}");
    EXPECT_EQ(reader.told, "#document{in}#document{in}#document{in}");
}

TEST(XMLParser, MayShareAHandlerWithAnotherOneInTurn) {
    const Held<XMLHandler> handler(CreateXMLDocumentHandler(0, 0, 0));
    const Held<XMLParser> one(CreateXMLParser(handler.get()));
    const Held<XMLParser> two(CreateXMLParser(handler.get()));
    EXPECT_EQ(OutlineBy(*one, "<a><b/></a>"), "#document{a{b}}");
    EXPECT_EQ(OutlineBy(*two, "<c/>"), "#document{c}");
    Held<Node> document;
    EXPECT_THROW(one->Parse("<a><b>", document), XMLParseException);
    EXPECT_EQ(OutlineBy(*two, "<c/>"), "#document{c}");
}

TEST(XMLParser, RunsOnSeparateThreadsIndependently) {
    std::vector<std::thread> threads;
    std::vector<int> good(4, 0);
    for (int& count : good)
        threads.emplace_back([&count] {
            const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
            for (int turn = 0; turn < 200; ++turn)
                if (OutlineBy(*parser, kWithEntity) == kEntityExpanded) ++count;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good, std::vector<int>(4, 200));
}

}  // namespace
}  // namespace Saml::Xml
