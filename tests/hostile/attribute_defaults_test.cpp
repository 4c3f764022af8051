// A DTD may give attributes a default value, which every start tag without them then has a copy of.
// Tags are short and values may be long: memory grows with the product.
#include "support/big_documents.h"
#include "support/small_stack.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace Saml::Xml {
namespace {

using namespace BigDocuments;

constexpr std::size_t kElementsInEightMebibytes = 1024;  // each with a default of 8192 bytes

/// A document of so many elements `b` whose attribute `x` is supplied by a DTD, name and value
/// 8192 bytes together. `before` and `after` stand around them.
std::string Defaulted(std::size_t elements, const std::string& before = "",
                      const std::string& after = "") {
    return "<!DOCTYPE a [<!ATTLIST b x CDATA '" + std::string(8191, 'd') + "'>]><a>" + before +
           Repeated("<b/>", elements) + after + "</a>";
}

std::string Comment(std::size_t size) {
    return "<!--" + std::string(size, 'c') + "-->";
}

/// What a parser says about `text`, with limits that nothing exceeds or with none in force.
std::string RefusalOf(const std::string& text, bool enforceLimits) {
    const Held<XMLParser> parser(
        CreateXMLParser(CreateXMLDocumentHandler(1LL << 40, 1LL << 40, 1LL << 40)));
    Held<Node> document;
    return MessageOf<XMLParseException>([&] { parser->Parse(text, enforceLimits, document); });
}

TEST(AttributeDefaults, AreSuppliedUpToEightMebibytesWhateverTheTextsSize) {
    OnSmallStack([] {
        EXPECT_NO_THROW(Parsed(Defaulted(kElementsInEightMebibytes)));
        for (const bool enforceLimits : {false, true})
            EXPECT_EQ(RefusalOf(Defaulted(kElementsInEightMebibytes + 1), enforceLimits),
                      "parsing aborted");
    });
}

TEST(AttributeDefaults, MayBeAHundredTimesTheTextReadSoFar) {
    OnSmallStack([] {
        // 1025 times 8192 bytes are 100 times 83968.
        const std::size_t elements = kElementsInEightMebibytes + 1;
        EXPECT_NO_THROW(Parsed(Defaulted(elements, Comment(83968))));
        EXPECT_EQ(RefusalOf(Defaulted(elements, "", Comment(83968)), false), "parsing aborted");
    });
}

TEST(AttributeDefaults, CountInTheExpansionOfAnEntity) {
    OnSmallStack([] {
        const std::string text = "<!DOCTYPE a [<!ATTLIST b x CDATA '" + std::string(8191, 'd') +
                                 "'><!ENTITY e '" + Repeated("<b/>", 100) + "'>]><a>" +
                                 Repeated("&e;", 11) + "</a>";
        EXPECT_EQ(RefusalOf(text, false), "parsing aborted");
    });
}

TEST(AttributeDefaults, CountByTheirNamesToo) {
    OnSmallStack([] {
        std::string declarations;
        for (std::size_t i = 0; i != 2000; ++i)
            declarations += " x" + std::to_string(10000 + i) + " CDATA ''";
        const std::string text = "<!DOCTYPE a [<!ATTLIST b" + declarations + ">]><a>" +
                                 Repeated("<b/>", 1000) + "</a>";  // 12 million bytes of names
        EXPECT_EQ(RefusalOf(text, false), "parsing aborted");
    });
}

// A parser that refused one goes on as if nothing had been.
TEST(AttributeDefaults, AreCountedAnewForEachDocument) {
    OnSmallStack([] {
        const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
        Held<Node> document;
        EXPECT_THROW(parser->Parse(Defaulted(kElementsInEightMebibytes + 1), document),
                     XMLParseException);
        for (int turn = 0; turn < 2; ++turn)
            EXPECT_NO_THROW(parser->Parse(Defaulted(kElementsInEightMebibytes), document));
    });
}

}  // namespace
}  // namespace Saml::Xml
