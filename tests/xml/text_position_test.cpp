#include "saml/xml/text_position.h"

#include "support/dice.h"
#include "support/random_seed.h"
#include "support/recording_handler.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Saml::Xml {
namespace {

using LineAndColumn = std::pair<unsigned, unsigned>;

LineAndColumn EndOf(const std::string& text) {
    TextPosition position;
    position.AdvanceTo(text);
    return {position.Line(), position.Column()};
}

struct PositionCase {
    const char* name;
    std::string text;
    LineAndColumn expected;
};

class PositionOfTheEnd : public testing::TestWithParam<PositionCase> {};

TEST_P(PositionOfTheEnd, IsCounted) {
    EXPECT_EQ(EndOf(GetParam().text), GetParam().expected);
}

// However the text is divided, among the ways of going on and among the runs that are counted.
TEST_P(PositionOfTheEnd, IsTheSameInTwoSteps) {
    for (const std::size_t padding : {0u, 200u, 238u, 239u, 240u, 241u, 255u, 256u, 480u}) {
        const std::string text = std::string(padding, '\n') + GetParam().text;
        LineAndColumn expected = GetParam().expected;
        expected.first += static_cast<unsigned>(padding);
        for (std::size_t half = 0; half <= text.size(); ++half) {
            TextPosition position;
            position.AdvanceTo(std::string_view(text).substr(0, half));
            position.AdvanceTo(text);
            EXPECT_EQ(LineAndColumn(position.Line(), position.Column()), expected)
                << padding << " line feeds, " << half << " bytes first";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    TextPosition, PositionOfTheEnd,
    testing::Values(PositionCase{"Nothing", "", {1, 0}}, PositionCase{"Ascii", "abc", {1, 3}},
                    PositionCase{"LineFeed", "a\n", {2, 0}},
                    PositionCase{"CarriageReturn", "a\rbc", {2, 2}},
                    PositionCase{"CarriageReturnAndLineFeed", "a\r\nb", {2, 1}},
                    PositionCase{"LineFeedAndCarriageReturn", "a\n\rb", {3, 1}},
                    PositionCase{"TwoCarriageReturnsAndLineFeed", "\r\r\n", {3, 0}},
                    PositionCase{"TwoBytes", "\xC3\xA9", {1, 1}},
                    PositionCase{"ThreeBytes", "\n\xE2\x82\xAC\xE2\x82\xAC", {2, 2}},
                    PositionCase{"FourBytes", "\xF0\x9D\x84\x9E|", {1, 2}},
                    PositionCase{"LineLongerThanARun", "\n" + std::string(1000, 'x'), {2, 1000}},
                    PositionCase{"Tab", "\t", {1, 1}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TextPosition, TellsUtf8ByTheFirstTwoBytes) {
    for (const char* const text : {"<a/>", " <a/>", "\xEF\xBB\xBF<a/>", "\xC3\xA9", "<?xml?>"})
        EXPECT_TRUE(TextPosition::StartsAsUtf8(text)) << text;
    for (const std::string& text :
         {std::string("\xFF\xFE<\0", 4), std::string("\xFE\xFF\0<", 4), std::string("<\0a\0", 4),
          std::string("\0<\0a", 4), std::string("<"), std::string()})
        EXPECT_FALSE(TextPosition::StartsAsUtf8(text)) << text;
}

/// The events of one text, parsed where it stands, and read in pieces, which expat counts.
std::pair<Events, Events> EventsOfBoth(const std::string& text) {
    const auto eventsOf = [](auto&& parse) {
        const Held<RecordingHandler> handler(new RecordingHandler);
        const Held<XMLParser> parser(CreateXMLParser(handler.get()));
        parse(*parser);
        return handler->Joined();
    };
    Held<Node> document;
    StringReader reader(text);
    return {eventsOf([&](XMLParser& parser) { parser.Parse(text, document); }),
            eventsOf([&](XMLParser& parser) { parser.Parse(reader, document); })};
}

std::string Utf16(const std::string& ascii) {
    std::string text = "\xFF\xFE";
    for (const char byte : ascii)
        text.append({byte, '\0'});
    return text;
}

TEST(PositionsOfElements, AreThoseOfExpatInEveryEncoding) {
    const std::string body = "\r\n\r<a>\n\xC3\xA9<b/>\r</a>";
    const std::string ascii = "<!--\n-->\r\n<a>\n <b/>\r<b/></a>";
    for (const std::string& text :
         std::vector<std::string>{body, "\xEF\xBB\xBF" + body, "\xEF\xBB\xBF<a/>",
                                  "<?xml version='1.0' encoding='UTF-8'?>" + body,
                                  "<?xml version='1.0' encoding='utf-8'?>" + body,
                                  "<?xml version='1.0' encoding='Utf-8'?>" + body,
                                  "<?xml version='1.0' encoding='ISO-8859-1'?>" + body,
                                  "<?xml version='1.0' encoding='US-ASCII'?>" + ascii, Utf16(ascii),
                                  Utf16("<?xml version='1.0' encoding='UTF-16'?>" + ascii)}) {
        const auto [whole, inPieces] = EventsOfBoth(text);
        EXPECT_EQ(whole, inPieces) << text;
    }
}

TEST(PositionsOfElements, InAnEntityAreThoseOfItsReference) {
    const auto [whole, inPieces] =
        EventsOfBoth("<!DOCTYPE a [<!ENTITY e '<b/>\n\n<b/>'>]>\n<a>\n&e;<c/>\n  &e;</a>");
    EXPECT_EQ(whole, inPieces);
    EXPECT_EQ(whole, (Events{"StartDocument false", "StartElement a at 4:0", "Characters \n",
                             "StartElement b at 5:0", "EndElement b", "Characters \n\n",
                             "StartElement b at 5:0", "EndElement b", "StartElement c at 5:3",
                             "EndElement c", "Characters \n  ", "StartElement b at 6:2",
                             "EndElement b", "Characters \n\n", "StartElement b at 6:2",
                             "EndElement b", "EndElement a", "Reset"}));
}

TEST(PositionsOfElements, AreThoseOfExpatInAnyDocument) {
    const std::vector<std::string> pieces{"x",
                                          "\n",
                                          "\r",
                                          "\r\n",
                                          "\t",
                                          "\xC3\xA9",
                                          "\xE2\x82\xAC",
                                          "\xF0\x9D\x84\x9E",
                                          "<b/>",
                                          "<b\r\nx='\xC3\xA9\n'\ry=''/>",
                                          "<c><b/></c \n>",
                                          "<!--\r\n\xE2\x82\xAC\r-->",
                                          "<![CDATA[\r]]>",
                                          "<?p \n\xC3\xA9?>",
                                          "&e;",
                                          "&#10;",
                                          std::string(260, '-')};
    Dice dice(RandomSeed(20), "positions");
    for (int document = 0; document < 300; ++document) {
        std::string text = "<!DOCTYPE a [\r\n<!ENTITY e '\n<b/>\n'>]><a>";
        for (std::size_t count = dice.Below(60); count > 0; --count)
            text += dice.Any(pieces);
        const auto [whole, inPieces] = EventsOfBoth(text + "</a>");
        ASSERT_EQ(whole, inPieces) << text;
    }
}

}  // namespace
}  // namespace Saml::Xml
