#include "saml/xml/parse_document.h"

#include "support/thrown.h"
#include "support/xml_trees.h"

#include <expat.h>
#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

TEST(ParseDocument, GivesTheDocumentOfAText) {
    const Held<Document> document =
        ParseDocument("<?xml version='1.0'?><!--c--><a x='1'>t<b/></a>");
    EXPECT_EQ(Outline(*document), "#document{<!--c--> a[x=1]{\"t\" b}}");
    EXPECT_EQ(document->GetVersion(), "1.0");
    EXPECT_EQ(document->use_count(), 1u);
}

TEST(ParseDocument, RefusesWhatIsNotWellFormed) {
    try {
        ParseDocument("<a>\n</b>");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const XMLParseException& rejected) {
        EXPECT_STREQ(rejected.what(), XML_ErrorString(XML_ERROR_TAG_MISMATCH));
        EXPECT_EQ(rejected.line, 2u);
    }
    EXPECT_EQ(MessageOf<XMLParseException>([] { ParseDocument(""); }),
              XML_ErrorString(XML_ERROR_NO_ELEMENTS));
}

TEST(ParseDocument, ReadsATextWithAZeroByteToItsEnd) {
    EXPECT_EQ(MessageOf<XMLParseException>([] { ParseDocument(std::string("<a/>\0", 5)); }),
              XML_ErrorString(XML_ERROR_INVALID_TOKEN));
}

// The standard limits are configured and, on purpose, not in force: callers rely on tokens above
// them being read.
TEST(ParseDocument, LeavesTheDepthLimitOff) {
    std::string text;
    for (int level = 0; level < 9000; ++level)
        text += "<a>";
    for (int level = 0; level < 9000; ++level)
        text += "</a>";
    const Held<Document> document = ParseDocument(text);
    int depth = 0;
    for (Node* node = document->GetFirstChild(); node; node = node->GetFirstChild())
        ++depth;
    EXPECT_EQ(depth, 9000);
}

TEST(ParseDocument, LeavesTheBanOfEntitiesOff) {
    EXPECT_EQ(Outline(*ParseDocument("<!DOCTYPE a [<!ENTITY e \"x\">]><a>&e;</a>")),
              "#document{a{\"x\"}}");
}

}  // namespace
}  // namespace Saml::Xml
