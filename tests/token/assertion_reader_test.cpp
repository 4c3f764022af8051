#include "saml/token/assertion_reader.h"

#include "support/thrown.h"
#include "support/token_forge.h"
#include "token/fragment.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Saml;

/// Texts that do not depend on the clock, so that a row can name them.
Forge::TokenSpec Spec() {
    Forge::TokenSpec spec;
    spec.id = "_1";
    spec.issueInstant = "2020-01-01T00:00:00Z";
    spec.notBefore = "2020-01-01T00:00:01Z";
    spec.notOnOrAfter = "2020-01-01T00:00:02Z";
    spec.authnInstant = "2020-01-01T00:00:03Z";
    spec.contextClass = "urn:class";
    spec.issuer = {"urn:issuer-format", "issuer"};
    spec.subject = {"urn:subject-format", "subject"};
    spec.advice = {{"source", {{"advised", {}}}}};
    spec.attributes = {{"stated", {"value"}}};
    spec.signature = Forge::HollowSignature("#_1");
    return spec;
}

ParsedAssertion Read(const std::string& xml) {
    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(xml);
    return ReadAssertion(dynamic_cast<Xml::ElementNodeImpl&>(*document->GetRootElement()));
}

TEST(AssertionReader, ReadsEveryPartIntoItsField) {
    ParsedAssertion assertion = Read(Forge::Write(Spec()));
    EXPECT_EQ(assertion.version, "2.0");
    EXPECT_EQ(assertion.id, "_1");
    EXPECT_EQ(assertion.issueInstant.value(), "2020-01-01T00:00:00Z");
    EXPECT_EQ(assertion.issuer.format, "urn:issuer-format");
    EXPECT_EQ(assertion.issuer.value, "issuer");
    ASSERT_NE(assertion.signature, nullptr);
    EXPECT_EQ(assertion.signature->GetSignatureMethod(),
              "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256");
    EXPECT_EQ(assertion.subject.nameId.format, "urn:subject-format");
    EXPECT_EQ(assertion.subject.nameId.value, "subject");
    EXPECT_EQ(assertion.subject.confirmation.notOnOrAfter.value(), "2020-01-01T00:00:02Z");
    EXPECT_EQ(assertion.conditions.notBefore.value(), "2020-01-01T00:00:01Z");
    EXPECT_EQ(assertion.conditions.notOnOrAfter.value(), "2020-01-01T00:00:02Z");
    ASSERT_TRUE(assertion.advice.has_value());
    EXPECT_EQ(assertion.advice->front().AdviceSource, "source");
    EXPECT_EQ(assertion.authentication.instant.value(), "2020-01-01T00:00:03Z");
    EXPECT_EQ(assertion.authentication.contextClass, "urn:class");
    ASSERT_TRUE(assertion.attributes.has_value());
    EXPECT_EQ(assertion.attributes->front().name, "stated");
}

TEST(AssertionReader, JudgesNoValueOfItsOwn) {
    Forge::TokenSpec spec = Spec();
    spec.version = "1.1";
    spec.id = "no underscore";
    spec.signature = Forge::HollowSignature("#no underscore");
    spec.notBefore = spec.notOnOrAfter;
    spec.delegateId = Forge::Name{"f", "nobody"};
    EXPECT_EQ(Read(Forge::Write(spec)).version, "1.1");
}

TEST(AssertionReader, FindsNoAdviceAndNoAttributesWhereThereAreNone) {
    Forge::TokenSpec spec = Spec();
    spec.advice.clear();
    spec.attributes.clear();
    const ParsedAssertion assertion = Read(Forge::Write(spec));
    EXPECT_FALSE(assertion.advice.has_value());
    EXPECT_FALSE(assertion.attributes.has_value());
}

TEST(AssertionReader, ReadsAnyPrefixAndTheDefaultDeclaration) {
    for (const std::string prefix : {"", "a", "saml2"}) {
        Forge::TokenSpec spec = Spec();
        spec.prefix = prefix;
        spec.holderOfKeyCertificate = "AQID";
        spec.delegateId = Forge::Name{"f", "d"};
        spec.delegates = {{{"f", "d"}}};
        spec.renewRestriction = true;
        const ParsedAssertion assertion = Read(Forge::Write(spec));
        EXPECT_EQ(assertion.subject.confirmation.method, ConfirmationType::HolderOfKey) << prefix;
        EXPECT_TRUE(assertion.conditions.renewal.has_value()) << prefix;
        EXPECT_EQ(assertion.conditions.delegation->size(), 1U) << prefix;
    }
}

TEST(AssertionReader, SkipsBlanksAndCommentsBetweenElements) {
    std::string xml = Forge::Write(Spec());
    for (const char* const tag :
         {"<saml:Issuer ", "<ds:Signature ", "<saml:Subject>", "<saml:Conditions ", "<saml:Advice>",
          "<saml:AuthnStatement ", "<saml:AttributeStatement>", "</saml:Assertion>"})
        xml = Forge::Replaced(xml, tag, std::string("\r\n\t <!-- c --> <!-- d -->") + tag);
    EXPECT_EQ(Read(xml).id, "_1");
}

TEST(AssertionReader, AllowsNamespaceDeclarationsOnEveryElement) {
    Forge::TokenSpec spec = Spec();
    spec.holderOfKeyCertificate = "AQID";
    spec.proxyCount = "1";
    spec.audience = {"a"};
    spec.renewRestriction = true;
    spec.delegates = {{{"f", "d"}}};
    std::string declared;
    for (const char character : Forge::Write(spec)) {
        declared += character;
        const std::size_t open = declared.rfind('<');
        const bool endsName = character == ' ' && declared.find(' ', open) == declared.size() - 1;
        if (endsName && declared[open + 1] != '/') declared += "xmlns:unused='urn:unused' ";
    }
    ASSERT_GT(declared.size(), Forge::Write(spec).size() + 20 * 26);
    EXPECT_EQ(Read(declared).id, "_1");
}

TEST(AssertionReader, ReadsNilElementsLikeAnyOther) {
    EXPECT_EQ(MessageOf<ParseException>([] {
                  Read(Forge::Replaced(Forge::Write(Spec()), "<saml:Advice>",
                                       "<saml:Advice xsi:nil='true'>"));
              }),
              "Unexpected attributes on element 'Advice'");
    EXPECT_EQ(MessageOf<ParseException>([] {
                  Read(Forge::Replaced(Forge::Write(Spec()), "</saml:Assertion>",
                                       "<saml:Left xsi:nil='true'/></saml:Assertion>"));
              }),
              "Unexpected elements under Assertion");
}

TEST(AssertionReader, HoldsOnToWhatTheSignatureNeeds) {
    const ParsedAssertion assertion = Read(Forge::Write(Spec()));  // its document is gone
    EXPECT_EQ(assertion.signature->GetElement()->GetLocalName(), "Signature");
}

class AssertionRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(AssertionRefusal, SaysWhatIsWrong) {
    const std::string xml = Forge::Replaced(Forge::Write(Spec()), GetParam().from, GetParam().to);
    EXPECT_EQ(MessageOf<ParseException>([&] { Read(xml); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Attributes, AssertionRefusal,
    testing::Values(
        Refusal{"OtherNamespace", "xmlns:saml=\"urn:oasis:names:tc:SAML:2.0:assertion\"",
                "xmlns:saml=\"urn:oasis:names:tc:SAML:1.0:assertion\"",
                "Element 'Assertion' has unexpected namespace"},
        Refusal{"NoNamespace", "xmlns:saml=\"urn:oasis:names:tc:SAML:2.0:assertion\"", "",
                "Element 'Assertion' has unexpected namespace"},
        Refusal{"NoVersion", " Version=\"2.0\"", "",
                "Node 'Assertion is missing required attribute 'Version'"},
        Refusal{"NoId", " ID=\"_1\"", "", "Node 'Assertion is missing required attribute 'ID'"},
        Refusal{"NoIssueInstant", " IssueInstant=\"2020-01-01T00:00:00Z\"", "",
                "Node 'Assertion is missing required attribute 'IssueInstant'"},
        Refusal{"NoneOfThem", " ID=\"_1\" IssueInstant=\"2020-01-01T00:00:00Z\" Version=\"2.0\"",
                "", "Node 'Assertion is missing required attribute 'Version'"},
        Refusal{"UnexpectedAttribute", " Version=", " Extra=\"1\" Version=",
                "Unexpected attributes on element 'Assertion'"},
        Refusal{"MissingBeforeUnexpected", " Version=\"2.0\"", " Extra=\"1\"",
                "Node 'Assertion is missing required attribute 'Version'"},
        Refusal{"UnexpectedBeforeBadDate", "\"2020-01-01T00:00:00Z\"", "\"x\" Extra=\"1\"",
                "Unexpected attributes on element 'Assertion'"},
        Refusal{"IssueInstantIsNoDate", "\"2020-01-01T00:00:00Z\"", "\"2020-01-01T24:00:00Z\"",
                "Assertion/@IssueInstant is not a date"},
        Refusal{"DateBeforeChildren", "\"2020-01-01T00:00:00Z\" Version=\"2.0\">",
                "\"x\" Version=\"2.0\"><saml:Other/>", "Assertion/@IssueInstant is not a date"}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    IssuerAndSignature, AssertionRefusal,
    testing::Values(
        Refusal{"NoIssuer", "<saml:Issuer Format=\"urn:issuer-format\">issuer</saml:Issuer>", "",
                "Expected element 'Issuer' not found."},
        Refusal{"IssuerOfAnotherNamespace", "<saml:Issuer ", "<ext:Issuer/><saml:Issuer ",
                "Element 'Issuer' has unexpected namespace"},
        Refusal{"CDataBeforeIssuer", "<saml:Issuer ", "<![CDATA[]]><saml:Issuer ",
                "Expected element 'Issuer' not found."},
        Refusal{"IssuerWithoutFormat", " Format=\"urn:issuer-format\"", "",
                "Node 'Issuer is missing required attribute 'Format'"},
        Refusal{"AttributeOnIssuer", "\"urn:issuer-format\"", "\"\" SPProvidedID=\"1\"",
                "Unexpected attributes on element 'Issuer'"},
        Refusal{"EmptyIssuer", ">issuer<", "><",
                "Element 'Issuer' must only have textual content (but has extra children or is "
                "empty)."},
        Refusal{"SecondIssuer", "<ds:Signature ",
                "<saml:Issuer Format=\"f\">i</saml:Issuer><ds:Signature ",
                "Signature syntax error: Expected element 'Signature' not found."},
        Refusal{"TextInPlaceOfTheSignature", "<ds:Signature ", "x<ds:Signature ",
                "Expected element ds:Signature not found"},
        Refusal{"CDataInPlaceOfTheSignature", "<ds:Signature ", "<![CDATA[]]><ds:Signature ",
                "Expected element ds:Signature not found"},
        Refusal{"SignatureOfAnotherNamespace", "<ds:Signature ",
                "<saml:Signature></saml:Signature><ds:Signature ",
                "Signature syntax error: Element 'Signature has unexpected namespace: "
                "'urn:oasis:names:tc:SAML:2.0:assertion'"},
        Refusal{"SignatureWithObject", "</ds:Signature>", "<ds:Object/></ds:Signature>",
                "Signature syntax error: Unexpected child nodes under 'Signature'"},
        Refusal{"SignatureWithoutValue", "<ds:SignatureValue>AAAA</ds:SignatureValue>", "",
                "Signature syntax error: Expected element 'SignatureValue' not found."},
        Refusal{"ReferenceToAnotherElement", "URI=\"#_1\"", "URI=\"#_2\"",
                "Token's signature must cover the entire token"},
        Refusal{"ReferenceWithoutNumberSign", "URI=\"#_1\"", "URI=\"_1\"",
                "Token's signature must cover the entire token"},
        Refusal{"SecondSignature", "</ds:Signature>",
                "</ds:Signature><ds:Signature></ds:Signature>",
                "Expected element 'Subject' not found."}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    OrderOfChildren, AssertionRefusal,
    testing::Values(
        Refusal{"SubjectOfAnotherNamespace", "<saml:Subject>", "<ext:Subject/><saml:Subject>",
                "Element 'Subject' has unexpected namespace"},
        Refusal{"TextBeforeSubject", "<saml:Subject>", "x<saml:Subject>",
                "Expected element 'Subject' not found."},
        Refusal{"AttributeOnSubject", "<saml:Subject>", "<saml:Subject a=\"1\">",
                "Unexpected attributes on element 'Subject'"},
        Refusal{"SecondSubject", "</saml:Subject>", "</saml:Subject><saml:Subject/>",
                "Expected element 'Conditions' not found."},
        Refusal{"AdviceBeforeConditions", "<saml:Conditions ", "<saml:Advice/><saml:Conditions ",
                "Expected element 'Conditions' not found."},
        Refusal{"ConditionsOfAnotherNamespace", "<saml:Conditions ",
                "<ext:Conditions/><saml:Conditions ",
                "Element 'Conditions' has unexpected namespace"},
        Refusal{"BadConditions", " NotBefore=\"2020-01-01T00:00:01Z\"", "",
                "Node 'Conditions is missing required attribute 'NotBefore'"},
        Refusal{"AdviceOfAnotherNamespace", "<saml:Advice>", "<ext:Advice/><saml:Advice>",
                "Expected element 'AuthnStatement' not found."},
        Refusal{"SecondAdvice", "</saml:Advice>", "</saml:Advice><saml:Advice/>",
                "Expected element 'AuthnStatement' not found."},
        Refusal{"TextBeforeAuthnStatement", "<saml:AuthnStatement ", "x<saml:AuthnStatement ",
                "Expected element 'AuthnStatement' not found."},
        Refusal{"AuthnStatementOfAnotherNamespace", "<saml:AuthnStatement ",
                "<ext:AuthnStatement/><saml:AuthnStatement ",
                "Element 'AuthnStatement' has unexpected namespace"},
        Refusal{"AuthnInstantIsNoDate", "\"2020-01-01T00:00:03Z\"", "\"\"",
                "AuthnStatement/@AuthnInstant is not a date"},
        Refusal{"AdviceAfterAuthnStatement", "<saml:AttributeStatement>",
                "<saml:Advice/><saml:AttributeStatement>",
                "Expected element 'AttributeStatement' not found."},
        Refusal{"SecondAuthnStatement", "</saml:AuthnStatement>",
                "</saml:AuthnStatement><saml:AuthnStatement/>",
                "Expected element 'AttributeStatement' not found."},
        Refusal{"TextAfterAuthnStatement", "</saml:AuthnStatement>", "</saml:AuthnStatement>x",
                "Expected element 'AttributeStatement' not found."},
        Refusal{"AttributeStatementOfAnotherNamespace", "<saml:AttributeStatement>",
                "<ext:AttributeStatement/><saml:AttributeStatement>",
                "Element 'AttributeStatement' has unexpected namespace"},
        Refusal{"SecondAttributeStatement", "</saml:AttributeStatement>",
                "</saml:AttributeStatement><saml:AttributeStatement/>",
                "Unexpected elements under Assertion"},
        Refusal{"TextAfterAttributeStatement", "</saml:AttributeStatement>",
                "</saml:AttributeStatement>x", "Unexpected elements under Assertion"},
        Refusal{"CDataAfterAttributeStatement", "</saml:AttributeStatement>",
                "</saml:AttributeStatement><![CDATA[]]>", "Unexpected elements under Assertion"}),
    NameOfRow);

TEST(AssertionReader, RefusesAnotherRoot) {
    EXPECT_EQ(MessageOf<ParseException>(
                  [] { Read("<Response xmlns='urn:oasis:names:tc:SAML:2.0:protocol'/>"); }),
              "Expected element 'Assertion' not found.");
}

TEST(AssertionReader, ExpectsTheIssuerBeforeTheSignature) {
    Forge::TokenSpec spec = Spec();
    const std::string issuer = "<saml:Issuer Format=\"urn:issuer-format\">issuer</saml:Issuer>";
    const std::string xml =
        Forge::Replaced(Forge::Write(spec), issuer + spec.signature, spec.signature + issuer);
    EXPECT_EQ(MessageOf<ParseException>([&] { Read(xml); }),
              "Expected element 'Issuer' not found.");
}

TEST(AssertionReader, ExpectsEachPartInItsTurn) {
    const std::string xml = Forge::Write(Spec());
    const auto cutAt = [&xml](const std::string& start) {
        return xml.substr(0, xml.find(start)) + "</saml:Assertion>";
    };
    const struct {
        const char* cut;
        const char* message;
    } kCuts[] = {
        {"<saml:Issuer ", "Expected element 'Issuer' not found."},
        {"<ds:Signature ", "Expected element ds:Signature not found"},
        {"<saml:Subject>", "Expected element 'Subject' not found."},
        {"<saml:Conditions ", "Expected element 'Conditions' not found."},
        {"<saml:Advice>", "Expected element 'AuthnStatement' not found."},
        {"<saml:AuthnStatement ", "Expected element 'AuthnStatement' not found."},
    };
    for (const auto& row : kCuts)
        EXPECT_EQ(MessageOf<ParseException>([&] { Read(cutAt(row.cut)); }), row.message) << row.cut;
    EXPECT_EQ(Read(cutAt("<saml:AttributeStatement>")).id, "_1");
}

TEST(AssertionReader, GivesTheElementInPlaceOfAMissingSignatureToTheSignatureReader) {
    Forge::TokenSpec spec = Spec();
    spec.signature.clear();
    EXPECT_EQ(MessageOf<ParseException>([&] { Read(Forge::Write(spec)); }),
              "Signature syntax error: Expected element 'Signature' not found.");
}

TEST(AssertionReader, TakesAnEmptyOrAbsentUriForTheWholeAssertion) {
    Forge::TokenSpec spec = Spec();
    spec.signature = Forge::HollowSignature("");
    EXPECT_EQ(Read(Forge::Write(spec)).id, "_1");
    spec.signature = Forge::Replaced(spec.signature, " URI=\"\"", "");
    EXPECT_EQ(Read(Forge::Write(spec)).id, "_1");
}

TEST(AssertionReader, ReportsMissingCoverageBeforeABadSubject) {
    Forge::TokenSpec spec = Spec();
    spec.signature = Forge::HollowSignature("#_2");
    spec.subject.value = "";
    EXPECT_EQ(MessageOf<ParseException>([&] { Read(Forge::Write(spec)); }),
              "Token's signature must cover the entire token");
}

}  // namespace
