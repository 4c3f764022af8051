#include "saml/security/signature_reference_impl.h"
#include "support/signature_texts.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml::Security {
namespace {

using ReferencePtr = boost::intrusive_ptr<SignatureReference>;

constexpr char kTransforms[] =
    R"(<ds:Transforms>)"
    R"(<ds:Transform Algorithm="http://www.w3.org/2000/09/xmldsig#enveloped-signature"/>)"
    R"(<ds:Transform Algorithm="http://www.w3.org/2001/10/xml-exc-c14n#"/>)"
    R"(</ds:Transforms>)";
constexpr char kEnveloped[] =
    R"(<ds:Transform Algorithm="http://www.w3.org/2000/09/xmldsig#enveloped-signature"/>)";
constexpr char kExclusive[] =
    R"(<ds:Transform Algorithm="http://www.w3.org/2001/10/xml-exc-c14n#"/>)";
constexpr char kDigestMethod[] =
    R"(<ds:DigestMethod Algorithm="http://www.w3.org/2001/04/xmlenc#sha256"/>)";
constexpr char kDigestValue[] = "<ds:DigestValue>ZGlnZXN0</ds:DigestValue>";
constexpr char kNoText[] =
    "Element 'DigestValue' must only have textual content (but has extra children or is empty).";

/// The one reference of the usual signature in which `piece` was replaced.
ReferencePtr ReferenceWith(const std::string& piece, const std::string& by) {
    const Held<Document> document = Parsed(DocumentText(Replaced(kSignatureText, piece, by)));
    return ReferencesOf(*SignatureOf(*document)).front();
}

TEST(ReferenceReading, GivesWhatTheElementSays) {
    const ReferencePtr reference = ReferenceWith(kDigestValue, kDigestValue);
    EXPECT_EQ(reference->GetElement()->GetLocalName(), "Reference");
    EXPECT_EQ(reference->GetURI(), "#r");
    EXPECT_EQ(reference->GetDigestMethod(), "http://www.w3.org/2001/04/xmlenc#sha256");
    EXPECT_EQ(reference->GetCanonicalizationMethod(), "http://www.w3.org/2001/10/xml-exc-c14n#");
    EXPECT_TRUE(reference->IsEnveloped());
}

TEST(ReferenceReading, TakesAnAbsentUriAsTheEmptyOne) {
    EXPECT_EQ(ReferenceWith(" URI=\"#r\"", "")->GetURI(), "");
    EXPECT_EQ(ReferenceWith(" URI=\"#r\"", " URI=''")->GetURI(), "");
}

TEST(ReferenceReading, DoesNotJudgeTheUri) {
    EXPECT_EQ(ReferenceWith("\"#r\"", "'http://host/'")->GetURI(), "http://host/");
}

TEST(ReferenceReading, DoesNotJudgeTheDigestMethod) {
    EXPECT_EQ(ReferenceWith("http://www.w3.org/2001/04/xmlenc#sha256", "x")->GetDigestMethod(),
              "x");
    EXPECT_EQ(ReferenceWith("http://www.w3.org/2001/04/xmlenc#sha256", "")->GetDigestMethod(), "");
}

TEST(ReferenceReading, IsNotEnvelopedWithoutThatTransform) {
    const ReferencePtr reference = ReferenceWith(kEnveloped, "");
    EXPECT_FALSE(reference->IsEnveloped());
    EXPECT_EQ(reference->GetCanonicalizationMethod(), "http://www.w3.org/2001/10/xml-exc-c14n#");
}

TEST(ReferenceReading, HasNoCanonicalizationMethodWithoutThatTransform) {
    const ReferencePtr reference = ReferenceWith(kExclusive, "");
    EXPECT_TRUE(reference->IsEnveloped());
    EXPECT_EQ(reference->GetCanonicalizationMethod(), "");
}

TEST(ReferenceReading, NeedsNoTransforms) {
    for (const char* const by :
         {"", "<ds:Transforms/>", "<ds:Transforms> <!-- c --></ds:Transforms>"}) {
        const ReferencePtr reference = ReferenceWith(kTransforms, by);
        EXPECT_FALSE(reference->IsEnveloped()) << by;
        EXPECT_EQ(reference->GetCanonicalizationMethod(), "") << by;
    }
}

TEST(ReferenceReading, TakesTransformsInAnyOrderAndNumber) {
    const ReferencePtr reference =
        ReferenceWith(kTransforms, std::string("<ds:Transforms>") + kExclusive + kEnveloped +
                                       kExclusive + kEnveloped + "</ds:Transforms>");
    EXPECT_TRUE(reference->IsEnveloped());
    EXPECT_EQ(reference->GetCanonicalizationMethod(), "http://www.w3.org/2001/10/xml-exc-c14n#");
}

struct AcceptedCase {
    const char* name;
    const char* piece;
    const char* by;
};
class AcceptedReference : public testing::TestWithParam<AcceptedCase> {};

TEST_P(AcceptedReference, IsRead) {
    const ReferencePtr reference = ReferenceWith(GetParam().piece, GetParam().by);
    EXPECT_EQ(reference->GetURI(), "#r");
    EXPECT_TRUE(reference->IsEnveloped());
    EXPECT_EQ(reference->GetCanonicalizationMethod(), "http://www.w3.org/2001/10/xml-exc-c14n#");
    EXPECT_EQ(reference->GetDigestMethod(), "http://www.w3.org/2001/04/xmlenc#sha256");
}

const auto kRowName = [](const auto& row) { return std::string(row.param.name); };

INSTANTIATE_TEST_SUITE_P(
    ReferenceReading, AcceptedReference,
    testing::Values(
        AcceptedCase{"Id", "<ds:Reference ", "<ds:Reference Id='x' "},
        AcceptedCase{"Declarations", "<ds:Reference ",
                     "<ds:Reference xmlns='urn:a' xmlns:b='urn:b' "},
        AcceptedCase{"BlanksAndComments", "<ds:Transforms>",
                     " \t\r\n<!-- c --><ds:Transforms> <!-- c -->"},
        AcceptedCase{"BlanksAndCommentsAtTheEnd", "</ds:Reference>", " <!-- c --></ds:Reference>"},
        AcceptedCase{"BlanksAndCommentsInTheDigestMethod", kDigestMethod,
                     "<ds:DigestMethod Algorithm='http://www.w3.org/2001/04/xmlenc#sha256'> "
                     "<!-- c -->\n</ds:DigestMethod>"},
        AcceptedCase{"CommentsNextToTheDigestValue", "ZGlnZXN0", "<!-- c -->ZGlnZXN0<!-- c -->"},
        AcceptedCase{"ADigestValueThatIsNoBase64", "ZGlnZXN0", "?"},
        AcceptedCase{"AnyPrefixOfTheNamespace", "<ds:DigestValue>ZGlnZXN0</ds:DigestValue>",
                     "<DigestValue xmlns='http://www.w3.org/2000/09/xmldsig#'>AA==</DigestValue>"},
        AcceptedCase{"ContentOfTheEnvelopedTransform", kEnveloped,
                     "<ds:Transform "
                     "Algorithm='http://www.w3.org/2000/09/xmldsig#enveloped-signature'>"
                     "x<y z=''/><![CDATA[x]]></ds:Transform>"},
        AcceptedCase{"ForeignContentOfTheCanonicalization", kExclusive,
                     "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#'>"
                     "<x/><y/></ds:Transform>"},
        AcceptedCase{"TextInTheCanonicalization", kExclusive,
                     "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#'>"
                     "x</ds:Transform>"},
        AcceptedCase{"ParameterOfAnotherNamespaceWithoutPrefixList", kExclusive,
                     "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#'>"
                     "<InclusiveNamespaces xmlns='urn:o'/></ds:Transform>"},
        AcceptedCase{"ParameterThatIsNotTheFirstChild", kExclusive,
                     "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#'>"
                     "<x/><c:InclusiveNamespaces "
                     "xmlns:c='http://www.w3.org/2001/10/xml-exc-c14n#'/></ds:Transform>"},
        AcceptedCase{
            "ParameterWithMore", kExclusive,
            "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#'>"
            " <!-- c --><c:InclusiveNamespaces x='' PrefixList='a' "
            "xmlns:c='http://www.w3.org/2001/10/xml-exc-c14n#'><y/></c:InclusiveNamespaces>"
            "<z/></ds:Transform>"}),
    kRowName);

struct RefusedCase {
    const char* name;
    const char* piece;
    const char* by;
    const char* message;
};
class RefusedReference : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedReference, SaysWhatIsWrong) {
    const Held<Document> document =
        Parsed(DocumentText(Replaced(kSignatureText, GetParam().piece, GetParam().by)));
    const std::string before = Outline(*document);
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { SignatureOf(*document); }),
              GetParam().message);
    EXPECT_EQ(Outline(*document), before);
    ExpectSoundLinks(*document);
}

INSTANTIATE_TEST_SUITE_P(
    OfTheReferenceElement, RefusedReference,
    testing::Values(
        RefusedCase{"OtherNamespace", "<ds:Reference ", "<ds:Reference xmlns:ds='urn:o' ",
                    "Element 'Reference has unexpected namespace: 'urn:o'"},
        RefusedCase{"UnknownAttribute", "<ds:Reference ", "<ds:Reference Type='x' ",
                    "Unexpected attributes on element 'Reference'"},
        RefusedCase{"PrefixedUri", "<ds:Reference ", "<ds:Reference ds:URI='' ",
                    "Unexpected attributes on element 'Reference'"},
        RefusedCase{"ElementAtTheEnd", "</ds:Reference>", "<x/></ds:Reference>",
                    "Unexpected child nodes under 'Reference'"},
        RefusedCase{"SecondDigestValue", kDigestValue,
                    "<ds:DigestValue>AA==</ds:DigestValue><ds:DigestValue>AA==</ds:DigestValue>",
                    "Unexpected child nodes under 'Reference'"},
        RefusedCase{"TextAtTheEnd", "</ds:Reference>", "x</ds:Reference>",
                    "Unexpected child nodes under 'Reference'"},
        RefusedCase{"CDataAtTheEnd", "</ds:Reference>", "<![CDATA[ ]]></ds:Reference>",
                    "Unexpected child nodes under 'Reference'"}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    OfTransforms, RefusedReference,
    testing::Values(
        RefusedCase{"OtherNamespace", "<ds:Transforms>", "<ds:Transforms xmlns:ds='urn:o'>",
                    "Expected element 'DigestMethod' not found."},
        RefusedCase{"Twice", kTransforms, "<ds:Transforms/><ds:Transforms/>",
                    "Expected element 'DigestMethod' not found."},
        RefusedCase{"TextInFront", "<ds:Transforms>", "x<ds:Transforms>",
                    "Expected element 'DigestMethod' not found."},
        RefusedCase{"Attribute", "<ds:Transforms>", "<ds:Transforms Id='x'>",
                    "Unexpected attributes on element 'Transforms'"},
        RefusedCase{"AttributeAndForeignChild", "<ds:Transforms>", "<ds:Transforms Id='x'><x/>",
                    "Unexpected attributes on element 'Transforms'"},
        RefusedCase{"ForeignChild", "</ds:Transforms>", "<x/></ds:Transforms>",
                    "Expected element 'Transform' not found."},
        RefusedCase{"Text", "</ds:Transforms>", "x</ds:Transforms>",
                    "Expected element 'Transform' not found."},
        RefusedCase{"CData", "</ds:Transforms>", "<![CDATA[]]></ds:Transforms>",
                    "Expected element 'Transform' not found."},
        RefusedCase{"TransformOfAnotherNamespace", kEnveloped, "<Transform xmlns='urn:o'/>",
                    "Element 'Transform has unexpected namespace: 'urn:o'"},
        RefusedCase{"TransformWithoutAlgorithm", kEnveloped, "<ds:Transform/>",
                    "Node 'Transform is missing required attribute 'Algorithm'"},
        RefusedCase{"TransformWithMore", kEnveloped, "<ds:Transform Algorithm='x' Id='y'/>",
                    "Unexpected attributes on element 'Transform'"},
        RefusedCase{"InclusiveCanonicalization", kExclusive,
                    "<ds:Transform Algorithm='http://www.w3.org/TR/2001/REC-xml-c14n-20010315'/>",
                    "Unsupported transformation algorithm: "
                    "http://www.w3.org/TR/2001/REC-xml-c14n-20010315"},
        RefusedCase{"InclusiveCanonicalizationWithANumberSign", kExclusive,
                    "<ds:Transform Algorithm='http://www.w3.org/TR/2001/REC-xml-c14n-20010315#'/>",
                    "Unsupported transformation algorithm: "
                    "http://www.w3.org/TR/2001/REC-xml-c14n-20010315#"},
        RefusedCase{
            "ExclusiveCanonicalizationWithComments", kExclusive,
            "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#WithComments'/>",
            "Unsupported transformation algorithm: "
            "http://www.w3.org/2001/10/xml-exc-c14n#WithComments"},
        RefusedCase{
            "Base64", kExclusive,
            "<ds:Transform Algorithm='http://www.w3.org/2000/09/xmldsig#base64'/>",
            "Unsupported transformation algorithm: http://www.w3.org/2000/09/xmldsig#base64"},
        RefusedCase{"Stylesheet", kEnveloped,
                    "<ds:Transform Algorithm='http://www.w3.org/TR/1999/REC-xslt-19991116'>"
                    "<x/></ds:Transform>",
                    "Unsupported transformation algorithm: "
                    "http://www.w3.org/TR/1999/REC-xslt-19991116"},
        RefusedCase{
            "OtherCase", kExclusive,
            "<ds:Transform Algorithm='HTTP://www.w3.org/2001/10/xml-exc-c14n#'/>",
            "Unsupported transformation algorithm: HTTP://www.w3.org/2001/10/xml-exc-c14n#"},
        RefusedCase{
            "BlankBehindIt", kExclusive,
            "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n# '/>",
            "Unsupported transformation algorithm: http://www.w3.org/2001/10/xml-exc-c14n# "},
        RefusedCase{"EmptyAlgorithm", kExclusive, "<ds:Transform Algorithm=''/>",
                    "Unsupported transformation algorithm: "},
        RefusedCase{"ParameterWithoutPrefixList", kExclusive,
                    "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#'>"
                    "<c:InclusiveNamespaces xmlns:c='http://www.w3.org/2001/10/xml-exc-c14n#'/>"
                    "</ds:Transform>",
                    "Element 'InclusiveNamespaces' must have at least one attribute: 'PrefixList'"},
        RefusedCase{
            "ParameterWithAPrefixedPrefixList", kExclusive,
            "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#'><!-- c -->"
            "<c:InclusiveNamespaces c:PrefixList='a' x='' "
            "xmlns:c='http://www.w3.org/2001/10/xml-exc-c14n#'/></ds:Transform>",
            "Element 'InclusiveNamespaces' must have at least one attribute: 'PrefixList'"}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    OfDigestMethod, RefusedReference,
    testing::Values(
        RefusedCase{"Missing", kDigestMethod, "", "Expected element 'DigestMethod' not found."},
        RefusedCase{"BehindDigestValue", kDigestValue,
                    "<ds:DigestMethod Algorithm='x'/><ds:DigestValue>AA==</ds:DigestValue>",
                    "Expected element 'DigestValue' not found."},
        RefusedCase{"OtherNamespace", "<ds:DigestMethod ", "<ds:DigestMethod xmlns:ds='urn:o' ",
                    "Element 'DigestMethod has unexpected namespace: 'urn:o'"},
        RefusedCase{"WithoutAlgorithm", kDigestMethod, "<ds:DigestMethod/>",
                    "Node 'DigestMethod is missing required attribute 'Algorithm'"},
        RefusedCase{"MoreAttributes", kDigestMethod, "<ds:DigestMethod Algorithm='x' y=''/>",
                    "Unexpected attributes on element 'DigestMethod'"},
        RefusedCase{"Child", kDigestMethod, "<ds:DigestMethod Algorithm='x'><y/></ds:DigestMethod>",
                    "Element 'DigestMethod' may not have children"},
        RefusedCase{"Text", kDigestMethod, "<ds:DigestMethod Algorithm='x'>y</ds:DigestMethod>",
                    "Element 'DigestMethod' may not have children"},
        RefusedCase{"ChildAndNoAlgorithm", kDigestMethod, "<ds:DigestMethod><y/></ds:DigestMethod>",
                    "Element 'DigestMethod' may not have children"}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    OfDigestValue, RefusedReference,
    testing::Values(
        RefusedCase{"Missing", kDigestValue, "", "Expected element 'DigestValue' not found."},
        RefusedCase{"OtherNamespace", "<ds:DigestValue>", "<ds:DigestValue xmlns:ds='urn:o'>",
                    "Element 'DigestValue has unexpected namespace: 'urn:o'"},
        RefusedCase{"Attribute", "<ds:DigestValue>", "<ds:DigestValue Id='x'>",
                    "Unexpected attributes on element 'DigestValue'"},
        RefusedCase{"Empty", "ZGlnZXN0", "", kNoText},
        RefusedCase{"BlanksOnly", "ZGlnZXN0", " \r\n\t", kNoText},
        RefusedCase{"CommentOnly", "ZGlnZXN0", "<!-- c -->", kNoText},
        RefusedCase{"TextSplitByAComment", "ZGlnZXN0", "ZGln<!-- c -->ZXN0", kNoText},
        RefusedCase{"CDataOnly", "ZGlnZXN0", "<![CDATA[ZGlnZXN0]]>", kNoText},
        RefusedCase{"CDataBehindTheText", "ZGlnZXN0", "ZGlnZXN0<![CDATA[]]>", kNoText},
        RefusedCase{"Element", "ZGlnZXN0", "<x/>", kNoText}),
    kRowName);

TEST(ReferenceReading, RefusesAnEmptyReference) {
    const std::string text = kSignatureText;
    const std::string start = "<ds:Reference URI=\"#r\">";
    const std::size_t content = text.find(start) + start.size();
    const std::string children = text.substr(content, text.find("</ds:Reference>") - content);
    EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { ReferenceWith(children, ""); }),
              "Expected element 'DigestMethod' not found.");
}

}  // namespace
}  // namespace Saml::Xml::Security
