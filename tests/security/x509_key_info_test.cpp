#include "saml/security/x509_key_info.h"

#include "saml/security/key_info_extended.h"
#include "support/canonical_forms.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using KeyInfoPtr = boost::intrusive_ptr<X509KeyInfo>;

ByteBlob Blob(const std::string& bytes) {
    return std::make_shared<const std::vector<unsigned char>>(bytes.begin(), bytes.end());
}

std::vector<std::string> Texts(const std::list<ByteBlob>& blobs) {
    std::vector<std::string> texts;
    for (const ByteBlob& blob : blobs)
        texts.emplace_back(blob->begin(), blob->end());
    return texts;
}

KeyInfoPtr Read(ElementNode& element) {
    auto& keyInfo = dynamic_cast<ElementNodeImpl&>(element);
    return KeyInfoPtr(new X509KeyInfo(keyInfo, NamespaceContext(keyInfo)));
}

/// The certificates of a `KeyInfo` with this content.
std::vector<std::string> CertificatesIn(const std::string& content) {
    const Held<Document> document =
        Parsed("<KeyInfo xmlns='http://www.w3.org/2000/09/xmldsig#'>" + content + "</KeyInfo>");
    return Texts(Read(*document->GetRootElement())->Certificates());
}

using Certificates = std::vector<std::string>;

TEST(KeyInfoReading, GivesTheCertificatesInDocumentOrder) {
    EXPECT_EQ(CertificatesIn("<X509Data><X509Certificate>b25l</X509Certificate>"
                             "<X509Certificate>dHdv</X509Certificate>"
                             "<X509Certificate>dGhyZWU=</X509Certificate></X509Data>"),
              (Certificates{"one", "two", "three"}));
}

TEST(KeyInfoReading, GivesNoCertificatesOfAnEmptyElement) {
    EXPECT_EQ(CertificatesIn(""), Certificates());
    EXPECT_EQ(CertificatesIn(" <!-- c -->\n"), Certificates());
    EXPECT_EQ(CertificatesIn("<X509Data/>"), Certificates());
    EXPECT_EQ(CertificatesIn("<X509Data> <!-- c --></X509Data>"), Certificates());
}

TEST(KeyInfoReading, PassesOverWhateverElseX509DataHolds) {
    EXPECT_EQ(CertificatesIn("<X509Data><X509SubjectName>CN=x</X509SubjectName>text"
                             "<X509IssuerSerial x=''><y/></X509IssuerSerial><![CDATA[x]]>"
                             "<X509Certificate xmlns='urn:o' x=''>?</X509Certificate>"
                             "<X509Certificate>b25l</X509Certificate>"
                             "<x509Certificate>?</x509Certificate><X509CRL/></X509Data>"),
              Certificates{"one"});
}

TEST(KeyInfoReading, TakesBlanksAndCommentsNextToAnything) {
    EXPECT_EQ(CertificatesIn(" <!-- c --><X509Data>\n<!-- c --><X509Certificate><!-- c -->"
                             "\n  b25l\n  dHdv\n  <!-- c --></X509Certificate> </X509Data>\t"
                             "<!-- c -->"),
              Certificates{"onetwo"});
}

TEST(KeyInfoReading, TakesElementsThatDeclareNamespaces) {
    EXPECT_EQ(CertificatesIn("<d:X509Data xmlns:d='http://www.w3.org/2000/09/xmldsig#'>"
                             "<d:X509Certificate xmlns='urn:x'>b25l</d:X509Certificate>"
                             "</d:X509Data>"),
              Certificates{"one"});
}

// What the bytes are is the resolver's business.
TEST(KeyInfoReading, DoesNotParseCertificates) {
    EXPECT_EQ(CertificatesIn("<X509Data><X509Certificate>AA==</X509Certificate></X509Data>"),
              Certificates{std::string(1, '\0')});
}

struct RefusedCase {
    const char* name;
    const char* content;
    const char* message;
};
class RefusedKeyInfo : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedKeyInfo, SaysWhatIsWrong) {
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([] { CertificatesIn(GetParam().content); }),
              GetParam().message);
}

constexpr char kNoText[] =
    "Element 'X509Certificate' must only have textual content (but has extra children or is "
    "empty).";

INSTANTIATE_TEST_SUITE_P(
    KeyInfoReading, RefusedKeyInfo,
    testing::Values(
        RefusedCase{"OtherChild", "<KeyValue/>", "Expected element 'X509Data' not found."},
        RefusedCase{"OtherChildInFront", "<KeyName>x</KeyName><X509Data/>",
                    "Expected element 'X509Data' not found."},
        RefusedCase{"Text", "x", "Expected element 'X509Data' not found."},
        RefusedCase{"CData", "<![CDATA[ ]]>", "Expected element 'X509Data' not found."},
        RefusedCase{"X509DataOfAnotherNamespace", "<X509Data xmlns='urn:o'/>",
                    "Element 'X509Data has unexpected namespace: 'urn:o'"},
        RefusedCase{"X509DataOfNoNamespace", "<p:X509Data/>",
                    "Element 'X509Data has unexpected namespace: ''"},
        RefusedCase{"X509DataWithAnAttribute", "<X509Data Id='x'/>",
                    "Unexpected attributes on element 'X509Data'"},
        RefusedCase{"SecondX509Data", "<X509Data/><X509Data/>",
                    "Unexpected extra element(s) after <X509Data>"},
        RefusedCase{"OtherElementBehindX509Data", "<X509Data/><KeyName>x</KeyName>",
                    "Unexpected extra element(s) after <X509Data>"},
        RefusedCase{"TextBehindX509Data", "<X509Data/>x",
                    "Unexpected extra element(s) after <X509Data>"},
        RefusedCase{"CDataBehindX509Data", "<X509Data/><![CDATA[]]>",
                    "Unexpected extra element(s) after <X509Data>"},
        RefusedCase{"CertificateWithAnAttribute",
                    "<X509Data><X509Certificate Id='x'>AA==</X509Certificate></X509Data>",
                    "Unexpected attributes on element 'X509Certificate'"},
        RefusedCase{"EmptyCertificate", "<X509Data><X509Certificate/></X509Data>", kNoText},
        RefusedCase{"BlankCertificate",
                    "<X509Data><X509Certificate> \n</X509Certificate></X509Data>", kNoText},
        RefusedCase{"SplitCertificate",
                    "<X509Data><X509Certificate>AA<!-- c -->==</X509Certificate></X509Data>",
                    kNoText},
        RefusedCase{"CDataCertificate",
                    "<X509Data><X509Certificate><![CDATA[AA==]]></X509Certificate></X509Data>",
                    kNoText},
        RefusedCase{"NoBase64", "<X509Data><X509Certificate>A?==</X509Certificate></X509Data>",
                    "Malformed base64 data"},
        RefusedCase{"TruncatedBase64",
                    "<X509Data><X509Certificate>AAA</X509Certificate></X509Data>",
                    "Malformed base64 data"},
        RefusedCase{"SecondCertificateIsNoBase64",
                    "<X509Data><X509Certificate>AA==</X509Certificate>"
                    "<X509Certificate>A</X509Certificate></X509Data>",
                    "Malformed base64 data"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(KeyInfoReading, RefusesAnIdAlthoughTheStandardAllowsOne) {
    const Held<Document> document =
        Parsed("<KeyInfo xmlns='http://www.w3.org/2000/09/xmldsig#' Id='k'><X509Data/></KeyInfo>");
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { Read(*document->GetRootElement()); }),
              "Unexpected attributes on element 'KeyInfo'");
}

TEST(KeyInfoReading, RefusesElementsThatAreNoKeyInfo) {
    const Held<Document> otherName =
        Parsed("<Keyinfo xmlns='http://www.w3.org/2000/09/xmldsig#'/>");
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { Read(*otherName->GetRootElement()); }),
              "Expected element 'KeyInfo' not found.");
    const Held<Document> otherNamespace = Parsed("<KeyInfo xmlns='urn:o'/>");
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { Read(*otherNamespace->GetRootElement()); }),
              "Element 'KeyInfo has unexpected namespace: 'urn:o'");
}

TEST(X509KeyInfo, StandsForItsElement) {
    const Held<Document> document =
        Parsed("<KeyInfo xmlns='http://www.w3.org/2000/09/xmldsig#'><X509Data/></KeyInfo>");
    const KeyInfoPtr keyInfo = Read(*document->GetRootElement());
    EXPECT_TRUE(keyInfo->IsX509());
    Held<ElementNode> element = NewElement("other");
    keyInfo->GetElement(element);
    EXPECT_EQ(element.get(), document->GetRootElement());
}

TEST(X509KeyInfo, ChangesNothingByReading) {
    const Held<Document> document = Parsed(
        "<KeyInfo xmlns='http://www.w3.org/2000/09/xmldsig#'> <X509Data><!-- c -->"
        "<X509Certificate>AA==</X509Certificate></X509Data></KeyInfo>");
    const std::string before = Outline(*document);
    Read(*document->GetRootElement());
    EXPECT_EQ(Outline(*document), before);
}

std::string Built(const std::string& prefix, const std::list<ByteBlob>& certificates) {
    const KeyInfoPtr keyInfo(new X509KeyInfo(prefix, certificates));
    EXPECT_TRUE(keyInfo->IsX509());
    Held<ElementNode> element;
    keyInfo->GetElement(element);
    ExpectDetached(*element);
    ExpectSoundLinks(*element);
    return Outline(*element);
}

TEST(KeyInfoBuilding, HoldsEachCertificateInItsOrder) {
    EXPECT_EQ(Built("ds", {Blob("one"), Blob("three")}),
              "ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"b25l\"} "
              "ds:X509Certificate{\"dGhyZWU=\"}}}");
}

TEST(KeyInfoBuilding, HasNoPrefixWhenThereIsNone) {
    EXPECT_EQ(Built("", {Blob("one")}), "KeyInfo{X509Data{X509Certificate{\"b25l\"}}}");
}

TEST(KeyInfoBuilding, TakesNoCertificatesAtAll) {
    EXPECT_EQ(Built("ds", {}), "ds:KeyInfo{ds:X509Data}");
}

TEST(KeyInfoBuilding, TakesANullBlobAsAnEmptyOne) {
    EXPECT_EQ(Built("", {nullptr, Blob("")}),
              "KeyInfo{X509Data{X509Certificate{\"\"} X509Certificate{\"\"}}}");
}

TEST(KeyInfoBuilding, KeepsTheCertificates) {
    const KeyInfoPtr keyInfo(new X509KeyInfo("ds", {Blob("one"), nullptr, Blob("two")}));
    EXPECT_EQ(Texts(keyInfo->Certificates()), (Certificates{"one", "", "two"}));
}

TEST(KeyInfoBuilding, IsReadBackAsItWas) {
    const std::vector<std::string> sent = {"one", std::string("\0\xFF\x80", 3), "four"};
    const KeyInfoPtr built(new X509KeyInfo("", {Blob(sent[0]), Blob(sent[1]), Blob(sent[2])}));
    built->Element()->SetAttribute("xmlns", "http://www.w3.org/2000/09/xmldsig#");
    EXPECT_EQ(Texts(Read(*built->Element())->Certificates()), sent);
}

TEST(KeyInfoExtended, StandsForItsContent) {
    const Held<ElementNode> content = NewElement("SecurityTokenReference", "wsse");
    const boost::intrusive_ptr<KeyInfo> keyInfo(
        new KeyInfoExtended(dynamic_cast<ElementNodeImpl&>(*content)));
    EXPECT_FALSE(keyInfo->IsX509());
    Held<ElementNode> element = NewElement("other");
    keyInfo->GetElement(element);
    EXPECT_EQ(element, content);
}

TEST(KeyInfoExtended, KeepsItsContentAlive) {
    Held<ElementNode> content = NewElement("c");
    const boost::intrusive_ptr<KeyInfo> keyInfo(
        new KeyInfoExtended(dynamic_cast<ElementNodeImpl&>(*content)));
    content.reset();
    keyInfo->GetElement(content);
    EXPECT_EQ(content->GetLocalName(), "c");
}

}  // namespace
}  // namespace Saml::Xml::Security
