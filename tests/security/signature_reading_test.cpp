#include "saml/security/signature_impl.h"
#include "support/foreign_nodes.h"
#include "support/signature_texts.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

TEST(SignatureReading, GivesWhatTheElementSays) {
    const Held<Document> document = Parsed(DocumentText());
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    EXPECT_EQ(signature->GetElement(), &ElementNamed(*document, "Signature"));
    EXPECT_EQ(signature->GetCanonicalizationMethod(), "http://www.w3.org/2001/10/xml-exc-c14n#");
    EXPECT_EQ(signature->GetSignatureMethod(), "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256");
    const auto references = ReferencesOf(*signature);
    ASSERT_EQ(references.size(), 1u);
    EXPECT_EQ(references.front()->GetElement(), &ElementNamed(*document, "Reference"));
    EXPECT_EQ(references.front()->GetURI(), "#r");
}

TEST(SignatureReading, GivesTheReferencesInDocumentOrder) {
    std::string references;
    for (const char* const uri : {"#c", "", "#a", "#b"})
        references += std::string("<ds:Reference URI='") + uri +
                      "'><ds:DigestMethod Algorithm='x'/><ds:DigestValue>AA==</ds:DigestValue>"
                      "</ds:Reference>";
    const Held<Document> document = Parsed(DocumentText(
        Replaced(kSignatureText, "</ds:SignedInfo>", references + "</ds:SignedInfo>")));
    std::vector<std::string> uris;
    for (const auto& reference : ReferencesOf(*SignatureOf(*document)))
        uris.push_back(reference->GetURI());
    EXPECT_EQ(uris, (std::vector<std::string>{"#r", "#c", "", "#a", "#b"}));
}

struct AcceptedCase {
    const char* name;
    const char* piece;
    const char* by;
};
class AcceptedSignature : public testing::TestWithParam<AcceptedCase> {};

TEST_P(AcceptedSignature, IsRead) {
    const Held<Document> document =
        Parsed(DocumentText(Replaced(kSignatureText, GetParam().piece, GetParam().by)));
    const std::string before = Outline(*document);
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    ASSERT_NE(signature, nullptr);
    EXPECT_EQ(ReferencesOf(*signature).size(), 1u);
    EXPECT_EQ(Outline(*document), before);
    ExpectSoundLinks(*document);
}

INSTANTIATE_TEST_SUITE_P(
    SignatureReading, AcceptedSignature,
    testing::Values(
        AcceptedCase{"AsItIs", "<ds:SignedInfo>", "<ds:SignedInfo>"},
        AcceptedCase{"IdOfSignature", "<ds:Signature ", "<ds:Signature Id='s' "},
        AcceptedCase{"IdOfSignedInfo", "<ds:SignedInfo>", "<ds:SignedInfo Id='s'>"},
        AcceptedCase{"IdOfSignatureValue", "<ds:SignatureValue>", "<ds:SignatureValue Id='s'>"},
        AcceptedCase{"DeclarationsAnywhere", "<ds:SignatureMethod ",
                     "<ds:SignatureMethod xmlns='urn:a' xmlns:b='urn:b' "},
        AcceptedCase{
            "AnyPrefixOfTheNamespace", "<ds:SignatureValue>c2lnbmF0dXJl</ds:SignatureValue>",
            "<SignatureValue xmlns='http://www.w3.org/2000/09/xmldsig#'>AA==</SignatureValue>"},
        AcceptedCase{"BlanksAndCommentsBetweenChildren", "<ds:SignedInfo>",
                     " \t\r\n<!-- c -->&#xD; <ds:SignedInfo> <!-- c -->"},
        AcceptedCase{"BlanksAndCommentsAtTheEnd", "</ds:Signature>",
                     " <!-- c -->\n</ds:Signature>"},
        AcceptedCase{"BlanksAndCommentsInAMethod",
                     "<ds:SignatureMethod "
                     "Algorithm=\"http://www.w3.org/2001/04/xmldsig-more#rsa-sha256\"/>",
                     "<ds:SignatureMethod Algorithm='x'> <!-- c -->\n</ds:SignatureMethod>"},
        AcceptedCase{"CommentsNextToTheSignatureValue", "c2lnbmF0dXJl", "<!-- c -->AA==<!-- c -->"},
        AcceptedCase{"ASignatureValueThatIsNoBase64", "c2lnbmF0dXJl", "?"},
        AcceptedCase{"UnknownCanonicalizationMethod",
                     "CanonicalizationMethod Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\"",
                     "CanonicalizationMethod Algorithm='urn:unknown'"},
        AcceptedCase{"UnknownSignatureMethod", "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256",
                     ""},
        AcceptedCase{"NoKeyInfo",
                     "<ds:KeyInfo><ds:X509Data><ds:X509Certificate>Y2VydA==</ds:X509Certificate>"
                     "</ds:X509Data></ds:KeyInfo>",
                     ""}),
    [](const auto& row) { return std::string(row.param.name); });

struct RefusedCase {
    const char* name;
    const char* piece;
    const char* by;
    const char* message;
};
class RefusedSignature : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedSignature, SaysWhatIsWrong) {
    const Held<Document> document =
        Parsed(DocumentText(Replaced(kSignatureText, GetParam().piece, GetParam().by)));
    const std::string before = Outline(*document);
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { SignatureOf(*document); }),
              GetParam().message);
    EXPECT_EQ(Outline(*document), before);
    ExpectSoundLinks(*document);
}

const auto kRowName = [](const auto& row) { return std::string(row.param.name); };

constexpr char kCanonicalizationMethod[] =
    R"(<ds:CanonicalizationMethod Algorithm="http://www.w3.org/2001/10/xml-exc-c14n#"/>)";
constexpr char kSignatureMethod[] =
    R"(<ds:SignatureMethod Algorithm="http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"/>)";
constexpr char kSignatureValue[] = "<ds:SignatureValue>c2lnbmF0dXJl</ds:SignatureValue>";
constexpr char kNoText[] =
    "Element 'SignatureValue' must only have textual content (but has extra children or is empty).";

INSTANTIATE_TEST_SUITE_P(
    OfTheSignatureElement, RefusedSignature,
    testing::Values(
        RefusedCase{"OtherNamespace", "xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"",
                    "xmlns:ds='urn:other'",
                    "Element 'Signature has unexpected namespace: 'urn:other'"},
        RefusedCase{"NamespaceWithoutNumberSign", "xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"",
                    "xmlns:ds='http://www.w3.org/2000/09/xmldsig'",
                    "Element 'Signature has unexpected namespace: "
                    "'http://www.w3.org/2000/09/xmldsig'"},
        RefusedCase{"UnboundPrefix", "xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"", "",
                    "Element 'Signature has unexpected namespace: ''"},
        RefusedCase{"UnknownAttribute", "<ds:Signature ", "<ds:Signature x='' ",
                    "Unexpected attributes on element 'Signature'"},
        RefusedCase{"PrefixedId", "<ds:Signature ", "<ds:Signature ds:Id='' ",
                    "Unexpected attributes on element 'Signature'"},
        RefusedCase{"OtherSpellingOfId", "<ds:Signature ", "<ds:Signature ID='' ",
                    "Unexpected attributes on element 'Signature'"},
        RefusedCase{"ObjectInFront", "<ds:SignedInfo>", "<ds:Object/><ds:SignedInfo>",
                    "Expected element 'SignedInfo' not found."},
        RefusedCase{"ObjectAtTheEnd", "</ds:Signature>", "<ds:Object/></ds:Signature>",
                    "Unexpected child nodes under 'Signature'"},
        RefusedCase{"SecondKeyInfo", "</ds:Signature>", "<ds:KeyInfo/></ds:Signature>",
                    "Unexpected child nodes under 'Signature'"},
        RefusedCase{"SecondSignatureValue", kSignatureValue,
                    "<ds:SignatureValue>AA==</ds:SignatureValue>"
                    "<ds:SignatureValue>AA==</ds:SignatureValue>",
                    "Unexpected child nodes under 'Signature'"},
        RefusedCase{"TextAtTheEnd", "</ds:Signature>", "x</ds:Signature>",
                    "Unexpected child nodes under 'Signature'"},
        RefusedCase{"EmptyCDataAtTheEnd", "</ds:Signature>", "<![CDATA[]]></ds:Signature>",
                    "Unexpected child nodes under 'Signature'"},
        RefusedCase{"NoBreakSpaceAtTheEnd", "</ds:Signature>", "&#xA0;</ds:Signature>",
                    "Unexpected child nodes under 'Signature'"},
        RefusedCase{"KeyInfoOfAnotherNamespace", "<ds:KeyInfo>", "<ds:KeyInfo xmlns:ds='urn:o'>",
                    "Unexpected child nodes under 'Signature'"},
        RefusedCase{"TextBeforeKeyInfo", "<ds:KeyInfo>", "x<ds:KeyInfo>",
                    "Unexpected child nodes under 'Signature'"}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    OfSignedInfo, RefusedSignature,
    testing::Values(
        RefusedCase{"TextInItsPlace", "<ds:SignedInfo>", "x<ds:SignedInfo>",
                    "Expected element 'SignedInfo' not found."},
        RefusedCase{"CDataInItsPlace", "<ds:SignedInfo>", "<![CDATA[ ]]><ds:SignedInfo>",
                    "Expected element 'SignedInfo' not found."},
        RefusedCase{"OtherNamespace", "<ds:SignedInfo>", "<ds:SignedInfo xmlns:ds='urn:o'>",
                    "Element 'SignedInfo has unexpected namespace: 'urn:o'"},
        RefusedCase{"Attribute", "<ds:SignedInfo>", "<ds:SignedInfo ID=''>",
                    "Unexpected attributes on element 'SignedInfo'"},
        RefusedCase{"AttributeAndTextInFront", "<ds:SignedInfo>", "<ds:SignedInfo ID=''>x",
                    "Unexpected attributes on element 'SignedInfo'"},
        RefusedCase{"NoCanonicalizationMethod", kCanonicalizationMethod, "",
                    "Expected element 'CanonicalizationMethod' not found."},
        RefusedCase{"TextBeforeCanonicalizationMethod", kCanonicalizationMethod, "x",
                    "Expected element 'CanonicalizationMethod' not found."},
        RefusedCase{"CanonicalizationMethodOfAnotherNamespace", "<ds:CanonicalizationMethod ",
                    "<ds:CanonicalizationMethod xmlns:ds='urn:o' ",
                    "Element 'CanonicalizationMethod has unexpected namespace: 'urn:o'"},
        RefusedCase{"CanonicalizationMethodWithoutAlgorithm", kCanonicalizationMethod,
                    "<ds:CanonicalizationMethod/>",
                    "Node 'CanonicalizationMethod is missing required attribute 'Algorithm'"},
        RefusedCase{"CanonicalizationMethodWithAPrefixedAlgorithm", kCanonicalizationMethod,
                    "<ds:CanonicalizationMethod ds:Algorithm='x'/>",
                    "Node 'CanonicalizationMethod is missing required attribute 'Algorithm'"},
        RefusedCase{"CanonicalizationMethodWithMore", "<ds:CanonicalizationMethod ",
                    "<ds:CanonicalizationMethod Id='x' ",
                    "Unexpected attributes on element 'CanonicalizationMethod'"},
        RefusedCase{"CanonicalizationMethodWithAParameter", kCanonicalizationMethod,
                    "<ds:CanonicalizationMethod Algorithm='x'><c:InclusiveNamespaces "
                    "xmlns:c='http://www.w3.org/2001/10/xml-exc-c14n#' PrefixList='a'/>"
                    "</ds:CanonicalizationMethod>",
                    "Element 'CanonicalizationMethod' may not have children"},
        RefusedCase{"CanonicalizationMethodWithText", kCanonicalizationMethod,
                    "<ds:CanonicalizationMethod Algorithm='x'>x</ds:CanonicalizationMethod>",
                    "Element 'CanonicalizationMethod' may not have children"},
        RefusedCase{"CanonicalizationMethodWithChildrenAndWithoutAlgorithm",
                    kCanonicalizationMethod,
                    "<ds:CanonicalizationMethod><x/></ds:CanonicalizationMethod>",
                    "Element 'CanonicalizationMethod' may not have children"},
        RefusedCase{"NoSignatureMethod", kSignatureMethod, "",
                    "Expected element 'SignatureMethod' not found."},
        RefusedCase{"SignatureMethodOfAnotherNamespace", "<ds:SignatureMethod ",
                    "<ds:SignatureMethod xmlns:ds='urn:o' ",
                    "Element 'SignatureMethod has unexpected namespace: 'urn:o'"},
        RefusedCase{"SignatureMethodWithoutAlgorithm", kSignatureMethod, "<ds:SignatureMethod/>",
                    "Node 'SignatureMethod is missing required attribute 'Algorithm'"},
        RefusedCase{"SignatureMethodWithMore", "<ds:SignatureMethod ", "<ds:SignatureMethod x='' ",
                    "Unexpected attributes on element 'SignatureMethod'"},
        RefusedCase{"SignatureMethodWithAParameter", kSignatureMethod,
                    "<ds:SignatureMethod Algorithm='x'><ds:HMACOutputLength>1</ds:HMACOutputLength>"
                    "</ds:SignatureMethod>",
                    "Element 'SignatureMethod' may not have children"},
        RefusedCase{"SignatureMethodTwice", kSignatureMethod,
                    "<ds:SignatureMethod Algorithm='x'/><ds:SignatureMethod Algorithm='x'/>",
                    "Expected element 'Reference' not found."},
        RefusedCase{"TextBehindTheReferences", "</ds:SignedInfo>", "x</ds:SignedInfo>",
                    "Expected element 'Reference' not found."},
        RefusedCase{"CDataBehindTheReferences", "</ds:SignedInfo>", "<![CDATA[x]]></ds:SignedInfo>",
                    "Expected element 'Reference' not found."},
        RefusedCase{"ElementBehindTheReferences", "</ds:SignedInfo>",
                    "<ds:Object/></ds:SignedInfo>", "Expected element 'Reference' not found."},
        RefusedCase{"ReferenceOfAnotherNamespaceBehindTheReferences", "</ds:SignedInfo>",
                    "<Reference xmlns='urn:o'/></ds:SignedInfo>",
                    "Element 'Reference has unexpected namespace: 'urn:o'"}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    OfSignatureValue, RefusedSignature,
    testing::Values(
        RefusedCase{"Missing", kSignatureValue, "", "Expected element 'SignatureValue' not found."},
        RefusedCase{"OtherNamespace", "<ds:SignatureValue>", "<ds:SignatureValue xmlns:ds='urn:o'>",
                    "Element 'SignatureValue has unexpected namespace: 'urn:o'"},
        RefusedCase{"Attribute", "<ds:SignatureValue>", "<ds:SignatureValue Algorithm='x'>",
                    "Unexpected attributes on element 'SignatureValue'"},
        RefusedCase{"Empty", "c2lnbmF0dXJl", "", kNoText},
        RefusedCase{"BlanksOnly", "c2lnbmF0dXJl", " \t\n", kNoText},
        RefusedCase{"CommentOnly", "c2lnbmF0dXJl", "<!-- c -->", kNoText},
        RefusedCase{"TextSplitByAComment", "c2lnbmF0dXJl", "c2ln<!-- c -->bmF0dXJl", kNoText},
        RefusedCase{"TextSplitByCData", "c2lnbmF0dXJl", "c2ln<![CDATA[bmF0]]>dXJl", kNoText},
        RefusedCase{"CDataOnly", "c2lnbmF0dXJl", "<![CDATA[c2lnbmF0dXJl]]>", kNoText},
        RefusedCase{"Element", "c2lnbmF0dXJl", "<x>c2lnbmF0dXJl</x>", kNoText},
        RefusedCase{"ElementBehindTheText", "c2lnbmF0dXJl", "c2lnbmF0dXJl<x/>", kNoText}),
    kRowName);

// What the readers of certificates refuse comes through here unchanged.
INSTANTIATE_TEST_SUITE_P(
    OfKeyInfo, RefusedSignature,
    testing::Values(RefusedCase{"Id", "<ds:KeyInfo>", "<ds:KeyInfo Id='k'>",
                                "Unexpected attributes on element 'KeyInfo'"},
                    RefusedCase{"KeyValue", "<ds:KeyInfo>", "<ds:KeyInfo><ds:KeyValue/>",
                                "Expected element 'X509Data' not found."},
                    RefusedCase{"MalformedCertificate", "Y2VydA==", "?", "Malformed base64 data"}),
    kRowName);

TEST(SignatureReading, NeedsAReference) {
    const std::string text = kSignatureText;
    const std::size_t start = text.find("<ds:Reference");
    const std::string end = "</ds:Reference>";
    const std::string reference = text.substr(start, text.find(end) + end.size() - start);
    const Held<Document> document = Parsed(DocumentText(Replaced(text, reference, " ")));
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { SignatureOf(*document); }),
              "Expected element 'Reference' not found.");
}

TEST(SignatureReading, NeedsChildrenInTheirOrder) {
    const std::string text = kSignatureText;
    const std::string moved = Replaced(Replaced(text, kSignatureValue, ""), "<ds:SignedInfo>",
                                       std::string(kSignatureValue) + "<ds:SignedInfo>");
    const Held<Document> valueFirst = Parsed(DocumentText(moved));
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { SignatureOf(*valueFirst); }),
              "Expected element 'SignedInfo' not found.");

    const std::string swapped =
        Replaced(Replaced(text, kSignatureMethod, ""), kCanonicalizationMethod,
                 std::string(kSignatureMethod) + kCanonicalizationMethod);
    const Held<Document> methodFirst = Parsed(DocumentText(swapped));
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { SignatureOf(*methodFirst); }),
              "Expected element 'CanonicalizationMethod' not found.");

    const Held<Document> keyFirst = Parsed(DocumentText(
        Replaced(text, kSignatureValue, std::string("<ds:KeyInfo/>") + kSignatureValue)));
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { SignatureOf(*keyFirst); }),
              "Expected element 'SignatureValue' not found.");
}

TEST(SignatureReading, NeedsAllChildren) {
    const Held<Document> document =
        Parsed("<Signature xmlns='http://www.w3.org/2000/09/xmldsig#'> </Signature>");
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { SignatureOf(*document); }),
              "Expected element 'SignedInfo' not found.");
}

TEST(SignatureReading, TakesNamespacesDeclaredAboveTheSignature) {
    const std::string declaration = " xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"";
    const Held<Document> document = Parsed(
        "<root" + declaration + "><x>" + Replaced(kSignatureText, declaration, "") + "</x></root>");
    EXPECT_EQ(ReferencesOf(*SignatureOf(*document)).size(), 1u);
}

TEST(SignatureReading, TakesASignatureThatIsTheRootItself) {
    const Held<Document> document = Parsed(kSignatureText);
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    EXPECT_EQ(signature->GetElement(), document->GetRootElement());
}

TEST(SignatureReading, TakesASignatureOutsideItsRoot) {
    const Held<Document> document = Parsed(DocumentText());
    const Held<Document> other = Parsed("<other ID='r'/>");
    boost::intrusive_ptr<Signature> signature;
    CreateSignatureFromDom(other->GetRootElement(), &ElementNamed(*document, "Signature"),
                           signature);
    EXPECT_EQ(ReferencesOf(*signature).front()->GetReferent(), other->GetRootElement());
}

TEST(SignatureReading, FindsNoSignatureInAnotherElementOrNone) {
    const Held<Document> document = Parsed(DocumentText());
    ElementNode* const root = document->GetRootElement();
    boost::intrusive_ptr<Signature> result;
    EXPECT_EQ(
        MessageOf<SignatureSyntaxException>([&] { CreateSignatureFromDom(root, nullptr, result); }),
        "Expected element 'Signature' not found.");
    EXPECT_EQ(
        MessageOf<SignatureSyntaxException>([&] { CreateSignatureFromDom(root, root, result); }),
        "Expected element 'Signature' not found.");
    EXPECT_EQ(result, nullptr);
}

TEST(SignatureReading, RefusesNullAsRoot) {
    const Held<Document> document = Parsed(DocumentText());
    boost::intrusive_ptr<Signature> result;
    EXPECT_NE(MessageOf<InvalidArgumentException>([&] {
                  CreateSignatureFromDom(nullptr, &ElementNamed(*document, "Signature"), result);
              }),
              "");
    EXPECT_NE(MessageOf<InvalidArgumentException>(
                  [&] { CreateSignatureFromDom(nullptr, nullptr, result); }),
              "");
    EXPECT_EQ(result, nullptr);
}

TEST(SignatureReading, RefusesElementsOfForeignClasses) {
    const Held<Document> document = Parsed(DocumentText());
    const Held<ElementNode> foreign(new ForeignElement);
    const TypeMismatchException expected(typeid(ElementNodeImpl), typeid(ForeignElement));
    boost::intrusive_ptr<Signature> result;
    EXPECT_EQ(MessageOf<TypeMismatchException>([&] {
                  CreateSignatureFromDom(foreign.get(), &ElementNamed(*document, "Signature"),
                                         result);
              }),
              expected.what());
    EXPECT_EQ(MessageOf<TypeMismatchException>([&] {
                  CreateSignatureFromDom(document->GetRootElement(), foreign.get(), result);
              }),
              expected.what());
    EXPECT_EQ(result, nullptr);
}

TEST(SignatureReading, ReplacesTheResultOnlyOnSuccess) {
    const Held<Document> document = Parsed(DocumentText());
    boost::intrusive_ptr<Signature> result = SignatureOf(*document);
    const boost::intrusive_ptr<Signature> former = result;
    EXPECT_THROW(CreateSignatureFromDom(document->GetRootElement(), nullptr, result),
                 SignatureSyntaxException);
    EXPECT_EQ(result, former);

    CreateSignatureFromDom(document->GetRootElement(), &ElementNamed(*document, "Signature"),
                           result);
    EXPECT_NE(result, former);
    EXPECT_EQ(former->use_count(), 1u);
}

TEST(SignatureReading, KeepsItsNodesAlive) {
    Held<Document> document = Parsed(DocumentText());
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    document.reset();
    EXPECT_EQ(signature->GetElement()->GetLocalName(), "Signature");
    EXPECT_EQ(ReferencesOf(*signature).front()->GetReferent()->GetLocalName(), "root");
}

TEST(SignatureReading, ReplacesTheListOfReferencesAskedFor) {
    const Held<Document> document = Parsed(DocumentText());
    const boost::intrusive_ptr<Signature> signature = SignatureOf(*document);
    auto references = ReferencesOf(*signature);
    signature->GetReferences(references);
    EXPECT_EQ(references.size(), 1u);
    EXPECT_EQ(references.front(), ReferencesOf(*signature).front());
}

}  // namespace
}  // namespace Saml::Xml::Security
