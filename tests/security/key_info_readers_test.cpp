#include "saml/security/key_info_readers.h"

#include "support/canonical_forms.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml::Security {
namespace {

const std::array<KeyInfoReader, 2> kFreeContentFirst = {kKeyInfoReaders[1], kKeyInfoReaders[0]};

/// What the readers make of a `KeyInfo` with this content; `document` keeps what they refer to.
struct ReadContent {
    ReadContent(const std::string& content, const std::array<KeyInfoReader, 2>& readers)
        : document(Parsed("<KeyInfo xmlns='http://www.w3.org/2000/09/xmldsig#'>" + content +
                          "</KeyInfo>")) {
        auto& element = dynamic_cast<ElementNodeImpl&>(*document->GetRootElement());
        keyInfo = ReadKeyInfo(element, NamespaceContext(element), readers);
        keyInfo->GetElement(standsFor);
    }

    Held<Document> document;
    boost::intrusive_ptr<KeyInfo> keyInfo;
    boost::intrusive_ptr<ElementNode> standsFor;
};

TEST(KeyInfoReaders, ReadX509DataFirst) {
    const ReadContent read("<X509Data/>", kKeyInfoReaders);
    EXPECT_TRUE(read.keyInfo->IsX509());
    EXPECT_EQ(read.standsFor->GetLocalName(), "KeyInfo");
}

TEST(KeyInfoReaders, NeverAskTheSecondOne) {
    EXPECT_EQ(MessageOf<SignatureSyntaxException>(
                  [] { ReadContent("<KeyName>signer</KeyName>", kKeyInfoReaders); }),
              "Expected element 'X509Data' not found.");
}

TEST(KeyInfoReaders, TakeTheFirstElementForFreeContent) {
    const ReadContent read(" <!-- c --><KeyName>signer</KeyName><X509Data/>", kFreeContentFirst);
    EXPECT_FALSE(read.keyInfo->IsX509());
    EXPECT_EQ(read.standsFor->GetLocalName(), "KeyName");
}

TEST(KeyInfoReaders, RefuseWhatTheFirstOneMakesNothingOf) {
    for (const std::string content : {"", "text", "<!-- c -->"})
        EXPECT_EQ(
            MessageOf<SignatureSyntaxException>([&] { ReadContent(content, kFreeContentFirst); }),
            "Unknown KeyInfo type");
}

}  // namespace
}  // namespace Saml::Xml::Security
