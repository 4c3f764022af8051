#include "support/recording_handler.h"
#include "support/sliced_reader.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

/// What a parser tells about `text`, without the frame of StartDocument and Reset.
Events EventsOf(const std::string& text, bool enforceLimits = false) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    Held<Node> document;
    parser->Parse(text, enforceLimits, document);
    Events events = handler->Joined();
    EXPECT_GE(events.size(), 2u);
    EXPECT_EQ(events.front(), enforceLimits ? "StartDocument true" : "StartDocument false");
    EXPECT_EQ(events.back(), "Reset");
    return Events(events.begin() + 1, events.end() - 1);
}

struct EventCase {
    const char* name;
    std::string text;
    Events expected;
};

class ParserEvents : public testing::TestWithParam<EventCase> {};

TEST_P(ParserEvents, ArriveInDocumentOrder) {
    EXPECT_EQ(EventsOf(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    XMLParserImpl, ParserEvents,
    testing::Values(
        EventCase{"EmptyElement", "<a/>", {"StartElement a at 1:0", "EndElement a"}},
        EventCase{
            "NestedElements",
            "<a><p:b></p:b></a>",
            {"StartElement a at 1:0", "StartElement p:b at 1:3", "EndElement p:b", "EndElement a"}},
        EventCase{"LinesFromOneAndColumnsFromZero",
                  "\n<a>\n  <b\n x='1'/></a>",
                  {"StartElement a at 2:0", "Characters \n  ", "StartElement b at 3:2 x=1",
                   "EndElement b", "EndElement a"}},
        EventCase{"AttributesInDocumentOrder",
                  "<a z='1' xmlns:p='u' b=\"2\" p:c='' xmlns='d'/>",
                  {"StartElement a at 1:0 z=1 xmlns:p=u b=2 p:c= xmlns=d", "EndElement a"}},
        EventCase{"AttributeValuesUnescapedAndNormalised",
                  "<a x='&lt;&amp;&#65;&quot;' y='1\n\t2' z='&#10;'/>",
                  {"StartElement a at 1:0 x=<&A\" y=1  2 z=\n", "EndElement a"}},
        EventCase{"AttributeDefaultsOfTheInternalSubset",
                  "<!DOCTYPE a [<!ATTLIST a x CDATA 'd' y CDATA 'e'>]><a y='f'/>",
                  {"StartElement a at 1:51 y=f x=d", "EndElement a"}},
        EventCase{"CharactersUnescaped",
                  "<a>x&amp;y&#x41;\xC3\xA9</a>",
                  {"StartElement a at 1:0", "Characters x&yA\xC3\xA9", "EndElement a"}},
        EventCase{"LineEndsAsLineFeeds",
                  "<a>1\r\n2\r3\n</a>",
                  {"StartElement a at 1:0", "Characters 1\n2\n3\n", "EndElement a"}},
        EventCase{"CDataSections",
                  "<a>x<![CDATA[<y>&amp;]]]]><![CDATA[>]]></a>",
                  {"StartElement a at 1:0", "Characters x", "StartCData", "Characters <y>&amp;]]",
                   "EndCData", "StartCData", "Characters >", "EndCData", "EndElement a"}},
        EventCase{"AnEmptyCDataSection",
                  "<a><![CDATA[]]></a>",
                  {"StartElement a at 1:0", "StartCData", "EndCData", "EndElement a"}},
        EventCase{
            "CommentsEverywhere",
            "<!--1--><a><!-- 2 --></a><!---->",
            {"Comment 1", "StartElement a at 1:8", "Comment  2 ", "EndElement a", "Comment "}},
        EventCase{
            "ProcessingInstructionsEverywhere",
            "<?p?><a><?q  d e ?></a><?r x='1'?>",
            {"ProcessingInstruction p|", "StartElement a at 1:5", "ProcessingInstruction q|d e ",
             "EndElement a", "ProcessingInstruction r|x='1'"}},
        EventCase{"TheDeclaration",
                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>",
                  {"XmlDeclaration 1.0|UTF-8", "StartElement a at 1:38", "EndElement a"}},
        EventCase{"TheDeclarationWithoutEncoding",
                  "<?xml version='1.0'?><a/>",
                  {"XmlDeclaration 1.0|", "StartElement a at 1:21", "EndElement a"}},
        EventCase{"TheDeclarationWithoutItsStandaloneFlag",
                  "<?xml version='1.0' encoding='us-ascii' standalone='yes'?>\n<a/>",
                  {"XmlDeclaration 1.0|us-ascii", "StartElement a at 2:0", "EndElement a"}},
        EventCase{"NothingForTheDoctypeAndOuterBlanks",
                  " \n<!DOCTYPE a SYSTEM 'none.dtd' [<!ELEMENT a ANY>]>\n <a/> \n",
                  {"StartElement a at 3:1", "EndElement a"}},
        EventCase{
            "CommentsAndInstructionsOfTheInternalSubset",
            "<!DOCTYPE a [<!--c--><?p d?>]><a/>",
            {"Comment c", "ProcessingInstruction p|d", "StartElement a at 1:30", "EndElement a"}},
        EventCase{"EntitiesExpanded",
                  "<!DOCTYPE a [<!ENTITY e 'x<b/>y'>]><a z='1'>1&e;2</a>",
                  {"StartElement a at 1:35 z=1", "Characters 1x", "StartElement b at 1:45",
                   "EndElement b", "Characters y2", "EndElement a"}},
        EventCase{"EntitiesExpandedInAttributes",
                  "<!DOCTYPE a [<!ENTITY e 'x'>]><a z='1&e;2'/>",
                  {"StartElement a at 1:30 z=1x2", "EndElement a"}},
        EventCase{"NothingForExternalEntities",
                  "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/hostname'>]><a>1&e;2</a>",
                  {"StartElement a at 1:56", "Characters 12", "EndElement a"}},
        EventCase{"NothingForEntitiesThatAnUnreadDtdMayDeclare",
                  "<!DOCTYPE a SYSTEM 'none.dtd'><a>1&unknown;2</a>",
                  {"StartElement a at 1:30", "Characters 12", "EndElement a"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ParserEventsInOtherEncodings, ArriveAsUtf8) {
    const std::string utf16("\xFE\xFF\0\n\0<\0a\0>\0\xE9\0<\0/\0a\0>", 20);
    const Events expected{"StartElement a at 2:0", "Characters \xC3\xA9", "EndElement a"};
    EXPECT_EQ(EventsOf(utf16), expected);
    EXPECT_EQ(EventsOf("\xEF\xBB\xBF\n<a>\xC3\xA9</a>"), expected)
        << "UTF-8 with a byte order mark";

    const Events latin = EventsOf("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>");
    EXPECT_EQ(latin, (Events{"XmlDeclaration 1.0|ISO-8859-1", "StartElement a at 1:43",
                             "Characters \xC3\xA9", "EndElement a"}));
}

constexpr char kEveryConstruct[] =
    "<?xml version='1.0' encoding='UTF-8'?>\r\n"
    "<!DOCTYPE a [<!ENTITY e 'E\xC3\xA9'><!--sub--><?sub set?>]>\n"
    "<!--before--><?pi some data?>\n"
    "<a xmlns:p='u' z=\"&lt;&#x20AC;&e;\">\xE2\x82\xAC t&amp;&e;\r\n"
    "<p:b\n q='1'\tr='\xF0\x9F\x98\x80'><!-- in - side --></p:b >"
    "<![CDATA[x]]&]]]>]]&gt;<c/>\r</a>\n<!--after-->\n";

TEST(ChunkBorders, DoNotShowInTheEvents) {
    const std::string text = kEveryConstruct;
    const Events expected{"StartDocument false",
                          "XmlDeclaration 1.0|UTF-8",
                          "Comment sub",
                          "ProcessingInstruction sub|set",
                          "Comment before",
                          "ProcessingInstruction pi|some data",
                          "StartElement a at 4:0 xmlns:p=u z=<\xE2\x82\xAC"
                          "E\xC3\xA9",
                          "Characters \xE2\x82\xAC t&E\xC3\xA9\n",
                          "StartElement p:b at 5:0 q=1 r=\xF0\x9F\x98\x80",
                          "Comment  in - side ",
                          "EndElement p:b",
                          "StartCData",
                          "Characters x]]&]",
                          "EndCData",
                          "Characters ]]>",
                          "StartElement c at 6:61",
                          "EndElement c",
                          "Characters \n",
                          "EndElement a",
                          "Comment after",
                          "Reset"};
    for (std::size_t slice = 1; slice <= text.size(); ++slice)
        for (const std::size_t emptyReads : {0u, 2u}) {
            const Held<RecordingHandler> handler(new RecordingHandler);
            const Held<XMLParser> parser(CreateXMLParser(handler.get()));
            SlicedReader reader(text, slice);
            reader.beforeEachSlice = emptyReads;
            Held<Node> document;
            parser->Parse(reader, document);
            EXPECT_EQ(handler->Joined(), expected) << "slices of " << slice;
        }
}

TEST(ChunkBorders, MayFallAnywhereIntoATextLongerThanTheBuffer) {
    // The tail is pushed over the border of the 10240-byte buffer byte by byte.
    const std::string tail = "\xE2\x82\xAC&amp;<b x='&lt;'/>\r\n<![CDATA[c]]>]]&gt;<!--d--></a>";
    for (std::size_t beforeBorder = 0; beforeBorder <= tail.size(); ++beforeBorder) {
        const std::size_t padding = 10240 - 3 - beforeBorder;
        const std::string text = "<a>" + std::string(padding, 'x') + tail;
        const std::string column = std::to_string(3 + padding + 1 + 5);
        EXPECT_EQ(EventsOf(text),
                  (Events{"StartElement a at 1:0",
                          "Characters " + std::string(padding, 'x') + "\xE2\x82\xAC&",
                          "StartElement b at 1:" + column + " x=<", "EndElement b", "Characters \n",
                          "StartCData", "Characters c", "EndCData", "Characters ]]>", "Comment d",
                          "EndElement a"}))
            << beforeBorder;
    }
}

TEST(ChunkBorders, TextsOfExactlyAnyNumberOfBuffersAreComplete) {
    for (const std::size_t buffers : {1u, 2u, 3u})
        for (const int more : {-1, 0, 1}) {
            const std::size_t size = 10240 * buffers + static_cast<std::size_t>(more) - 7;
            const std::string content(size, 'x');
            EXPECT_EQ(EventsOf("<a>" + content + "</a>"),
                      (Events{"StartElement a at 1:0", "Characters " + content, "EndElement a"}));
        }
}

TEST(ReadingOfTheInput, AsksFor10240BytesAtATimeUntilTheEnd) {
    const Held<XMLParser> parser(CreateXMLParser(new RecordingHandler));
    SlicedReader reader("<a>" + std::string(25000 - 7, 'x') + "</a>", 1u << 20);
    Held<Node> document;
    parser->Parse(reader, document);
    EXPECT_EQ(reader.requests, (std::vector<int>{10240, 10240, 10240, 10240}))
        << "three chunks and the end, which is asked for once";
}

TEST(ReadingOfTheInput, TakesAReadOfNothingForAPauseOnly) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    SlicedReader reader("<a>t</a>", 4);
    reader.beforeEachSlice = 3;
    Held<Node> document;
    parser->Parse(reader, document);
    EXPECT_EQ(reader.requests.size(), 12u) << "two slices and the end, each after three pauses";
    EXPECT_EQ(handler->Joined(), (Events{"StartDocument false", "StartElement a at 1:0",
                                         "Characters t", "EndElement a", "Reset"}));
}

TEST(FormsOfParse, TellTheHandlerWhetherLimitsHold) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    const auto firstEvent = [&](auto&& parse) {
        handler->events.clear();
        parse();
        return handler->events.front();
    };
    Held<Node> document;
    const std::string text = "<a/>";
    EXPECT_EQ(firstEvent([&] { parser->Parse(text, true, document); }), "StartDocument true");
    EXPECT_EQ(firstEvent([&] { parser->Parse(text, false, document); }), "StartDocument false");
    EXPECT_EQ(firstEvent([&] { parser->Parse(text, document); }), "StartDocument false");
    for (const bool enforce : {true, false}) {
        StringReader reader(text);
        EXPECT_EQ(firstEvent([&] { parser->Parse(reader, enforce, document); }),
                  enforce ? "StartDocument true" : "StartDocument false");
    }
    StringReader reader(text);
    EXPECT_EQ(firstEvent([&] { parser->Parse(reader, document); }), "StartDocument false");
}

}  // namespace
}  // namespace Saml::Xml
