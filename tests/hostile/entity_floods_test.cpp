#include "support/big_documents.h"
#include "support/small_stack.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace Saml::Xml {
namespace {

using namespace BigDocuments;

/// A document whose content is `content`, with each level's entity made of ten of the level before.
std::string Laughs(std::size_t levels, const std::string& content) {
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxx'>";
    for (std::size_t level = 1; level != levels; ++level)
        text += "<!ENTITY e" + std::to_string(level) + " '" +
                Repeated("&e" + std::to_string(level - 1) + ";", 10) + "'>";
    return text + "]>" + content;
}

struct Flood {
    const char* name;
    std::string text;
};

class EntityFlood : public testing::TestWithParam<Flood> {};

// Limits are off on the token path: the tokenizer's own guard against amplification is what stands
// between a nested entity and all the memory there is.
TEST_P(EntityFlood, IsRefusedWithoutLimits) {
    OnSmallStack([] {
        const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
        for (int turn = 0; turn < 2; ++turn) {
            Held<Node> document;
            EXPECT_THROW(parser->Parse(GetParam().text, document), XMLParseException);
            EXPECT_EQ(document, nullptr);
            parser->Parse("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", document);
            EXPECT_EQ(Outline(*document), "#document{a{\"x\"}}") << "the parser serves on";
        }
    });
}

TEST_P(EntityFlood, IsRefusedWithLimits) {
    OnSmallStack([] {
        const Held<XMLParser> parser(
            CreateXMLParser(CreateXMLDocumentHandler(1LL << 40, 1LL << 40, 1LL << 40)));
        Held<Node> document;
        EXPECT_THROW(parser->Parse(GetParam().text, true, document), XMLParseException);
        EXPECT_EQ(document, nullptr);
    });
}

INSTANTIATE_TEST_SUITE_P(
    XMLParserImpl, EntityFlood,
    testing::Values(
        Flood{"NestedInText", Laughs(20, "<a>&e19;</a>")},
        Flood{"NestedInAnAttribute", Laughs(20, "<a x='&e19;'/>")},
        Flood{"OneLargeEntityOften", "<!DOCTYPE a [<!ENTITY e '" + std::string(1000000, 'x') +
                                         "'>]><a>" + Repeated("&e;", 300000) + "</a>"},
        Flood{"ManyElementsOften", "<!DOCTYPE a [<!ENTITY e '" + Repeated("<b/>", 20000) +
                                       "'>]><a>" + Repeated("&e;", 300) + "</a>"},
        Flood{"EntitiesOfEachOther",
              "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a>&e;</a>"}),
    [](const auto& row) { return std::string(row.param.name); });

// One entity in the other, with no growth that the guard could see.
TEST(EntityChains, AreExpandedHoweverLong) {
    OnSmallStack([] {
        constexpr std::size_t kEntities = 100000;
        std::string declarations = "<!DOCTYPE a [<!ENTITY e0 'x'>";
        for (std::size_t i = 1; i != kEntities; ++i)
            declarations +=
                "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
        const std::string last = "&e" + std::to_string(kEntities - 1) + ";";
        EXPECT_EQ(Outline(*Parsed(declarations + "]><a>" + last + "</a>")), "#document{a{\"x\"}}");
        EXPECT_EQ(Outline(*Parsed(declarations + "]><a x='" + last + "'/>")), "#document{a[x=x]}");
    });
}

}  // namespace
}  // namespace Saml::Xml
