#include "saml/token/statements_reader.h"

#include "support/thrown.h"
#include "token/fragment.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace Saml;
using Texts = std::vector<std::string>;

// --- Attributes, in a statement

constexpr char kStatement[] =
    "<saml:AttributeStatement>"
    "<saml:Attribute Name='n1' NameFormat='f1' FriendlyName='friend'>"
    "<saml:AttributeValue>a</saml:AttributeValue><saml:AttributeValue>b</saml:AttributeValue>"
    "</saml:Attribute>"
    "<saml:Attribute Name='n2' NameFormat='f2'></saml:Attribute>"
    "</saml:AttributeStatement>";

std::vector<ParsedAttribute> ReadStatement(const std::string& xml) {
    return ReadAttributeStatement(Fragment(xml).Element());
}

Texts Values(ParsedAttribute attribute) {
    Texts texts;
    for (AttributeValue& value : attribute.values)
        texts.push_back(value.Take());
    return texts;
}

Texts ReadValues(const std::string& values) {
    return Values(
        ReadStatement("<saml:AttributeStatement><saml:Attribute Name='n' NameFormat='f'>" + values +
                      "</saml:Attribute></saml:AttributeStatement>")
            .front());
}

TEST(AttributeStatement, GivesAttributesAndValuesInDocumentOrder) {
    const std::vector<ParsedAttribute> attributes = ReadStatement(kStatement);
    ASSERT_EQ(attributes.size(), 2U);
    EXPECT_EQ(attributes[0].name, "n1");
    EXPECT_EQ(attributes[0].nameFormat, "f1");
    EXPECT_EQ(attributes[0].friendlyName, "friend");
    EXPECT_EQ(Values(attributes[0]), (Texts{"a", "b"}));
    EXPECT_EQ(attributes[1].name, "n2");
    EXPECT_EQ(attributes[1].nameFormat, "f2");
    EXPECT_EQ(attributes[1].friendlyName, "");
    EXPECT_EQ(Values(attributes[1]), Texts{});
}

TEST(AttributeValues, AreEmptyWhenNothingIsThereButBlanksAndComments) {
    EXPECT_EQ(ReadValues("<saml:AttributeValue/>"), Texts{""});
    EXPECT_EQ(ReadValues("<saml:AttributeValue> \n</saml:AttributeValue>"), Texts{""});
    EXPECT_EQ(ReadValues("<saml:AttributeValue><!-- c --></saml:AttributeValue>"), Texts{""});
}

TEST(AttributeValues, KeepTheirTextAndHaveAttributesThatNobodyExamines) {
    EXPECT_EQ(ReadValues("<saml:AttributeValue xsi:type='x:string' a='1'> a b "
                         "</saml:AttributeValue>"),
              Texts{" a b "});
    EXPECT_EQ(ReadValues("<saml:AttributeValue xsi:nil='true'>read</saml:AttributeValue>"),
              Texts{"read"});
}

TEST(AttributeStatement, ReadsTwoHundredThousandValues) {
    constexpr std::size_t kMany = 200000;
    std::string values;
    for (std::size_t i = 0; i < kMany; ++i)
        values += "<saml:AttributeValue>v</saml:AttributeValue>";
    EXPECT_EQ(ReadValues(values).size(), kMany);
}

TEST(AttributeStatement, IsReadAtOnceFarBelowTheTopOfADocument) {
    // Looking each prefix up from the top would take a thousand million steps.
    constexpr std::size_t kDepth = 20000;
    constexpr std::size_t kMany = 50000;
    std::string statement = "<saml:AttributeStatement>";
    for (std::size_t i = 0; i < kMany; ++i)
        statement += "<saml:Attribute Name='n' NameFormat='f'/>";
    statement += "</saml:AttributeStatement>";
    std::string xml = "<top xmlns:saml='urn:oasis:names:tc:SAML:2.0:assertion'>";
    for (std::size_t i = 0; i < kDepth; ++i)
        xml += "<e>";
    xml += statement;
    for (std::size_t i = 0; i < kDepth; ++i)
        xml += "</e>";
    xml += "</top>";

    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(xml);
    auto* element = dynamic_cast<Xml::ElementNodeImpl*>(document->GetRootElement());
    while (element->LocalName() != "AttributeStatement")
        element = AsElement(element->FirstChild());
    const Xml::NamespaceContext namespaces(*element);
    EXPECT_EQ(ReadAttributeStatement({*element, namespaces}).size(), kMany);
}

class StatementRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(StatementRefusal, SaysWhatIsWrong) {
    const std::string xml = Forge::Replaced(kStatement, GetParam().from, GetParam().to);
    EXPECT_EQ(MessageOf<ParseException>([&] { ReadStatement(xml); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    AttributeStatement, StatementRefusal,
    testing::Values(
        Refusal{"AttributeOnStatement", "<saml:AttributeStatement>",
                "<saml:AttributeStatement a='1'>",
                "Unexpected attributes on element 'AttributeStatement'"},
        Refusal{"ForeignChild", "<saml:AttributeStatement>",
                "<saml:AttributeStatement><saml:EncryptedAttribute/>",
                "Expected element 'Attribute' not found."},
        Refusal{"ForeignChildLast", "</saml:AttributeStatement>",
                "<other:child/></saml:AttributeStatement>",
                "Expected element 'Attribute' not found."},
        Refusal{"TextBetween", "<saml:Attribute Name='n2'", "x<saml:Attribute Name='n2'",
                "Expected element 'Attribute' not found."},
        Refusal{"AttributeOfAnotherNamespace", "<saml:AttributeStatement>",
                "<saml:AttributeStatement><other:Attribute/>",
                "Element 'Attribute' has unexpected namespace"},
        Refusal{"NoName", " Name='n1'", "", "Node 'Attribute is missing required attribute 'Name'"},
        Refusal{"NoNameFormat", " NameFormat='f1'", "",
                "Node 'Attribute is missing required attribute 'NameFormat'"},
        Refusal{"NeitherName", " Name='n1' NameFormat='f1'", "",
                "Node 'Attribute is missing required attribute 'Name'"},
        Refusal{"UnexpectedAttribute",
                "FriendlyName=", "OriginalIssuer=", "Unexpected attributes on element 'Attribute'"},
        Refusal{"ForeignChildOfAttribute", "<saml:AttributeValue>b</saml:AttributeValue>",
                "<saml:Value>b</saml:Value>", "Expected element 'AttributeValue' not found."},
        Refusal{"ValueOfAnotherNamespace", "<saml:AttributeValue>b</saml:AttributeValue>",
                "<other:AttributeValue>b</other:AttributeValue>",
                "Element 'AttributeValue' has unexpected namespace"},
        Refusal{"TextBesideValues", "</saml:Attribute><saml:Attribute Name='n2'",
                "x</saml:Attribute><saml:Attribute Name='n2'",
                "Expected element 'AttributeValue' not found."},
        Refusal{"ValueWithElement", "<saml:AttributeValue>b<", "<saml:AttributeValue><other:b/><",
                "Element 'AttributeValue' must only have textual content (but has extra children "
                "or is empty)."},
        Refusal{"SplitValue", "<saml:AttributeValue>b<", "<saml:AttributeValue>admin<!-- -->.evil<",
                "Element 'AttributeValue' must only have textual content (but has extra children "
                "or is empty)."},
        Refusal{"CDataValue", "<saml:AttributeValue>b<", "<saml:AttributeValue><![CDATA[]]><",
                "Element 'AttributeValue' must only have textual content (but has extra children "
                "or is empty)."}),
    NameOfRow);

TEST(AttributeStatement, NeedsAnAttribute) {
    for (const std::string xml : {"<saml:AttributeStatement/>",
                                  "<saml:AttributeStatement> <!----> "
                                  "</saml:AttributeStatement>"})
        EXPECT_EQ(MessageOf<ParseException>([&] { ReadStatement(xml); }),
                  "Expected element 'Attribute' not found.")
            << xml;
}

// --- Advice

constexpr char kAdvice[] =
    "<saml:Advice>"
    "<ext:RSAAdvice AdviceSource='s1'>"
    "<saml:Attribute Name='n1' NameFormat='f1' FriendlyName='friend'>"
    "<saml:AttributeValue>a</saml:AttributeValue><saml:AttributeValue/>"
    "</saml:Attribute><saml:Attribute Name='n2' NameFormat='f2'/></ext:RSAAdvice>"
    "<ext:RSAAdvice AdviceSource='s2'/>"
    "</saml:Advice>";

std::vector<Advice> ReadEntries(const std::string& xml) {
    return ReadAdvice(Fragment(xml).Element());
}

TEST(AdviceOfAnAssertion, GivesEntriesAndAttributesInDocumentOrder) {
    const std::vector<Advice> advice = ReadEntries(kAdvice);
    ASSERT_EQ(advice.size(), 2U);
    EXPECT_EQ(advice[0].AdviceSource, "s1");
    ASSERT_EQ(advice[0].Attributes.size(), 2U);
    EXPECT_EQ(advice[0].Attributes[0].Name, "n1");
    EXPECT_EQ(advice[0].Attributes[0].NameFormat, "f1");
    EXPECT_EQ(advice[0].Attributes[0].FriendlyName, "friend");
    EXPECT_EQ(advice[0].Attributes[0].Values, (Texts{"a", ""}));
    EXPECT_EQ(advice[0].Attributes[1].Name, "n2");
    EXPECT_EQ(advice[0].Attributes[1].NameFormat, "f2");
    EXPECT_EQ(advice[0].Attributes[1].FriendlyName, "");
    EXPECT_EQ(advice[0].Attributes[1].Values, Texts{});
    EXPECT_EQ(advice[1].AdviceSource, "s2");
    EXPECT_TRUE(advice[1].Attributes.empty());
}

class AdviceRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(AdviceRefusal, SaysWhatIsWrong) {
    const std::string xml = Forge::Replaced(kAdvice, GetParam().from, GetParam().to);
    EXPECT_EQ(MessageOf<ParseException>([&] { ReadEntries(xml); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Advice, AdviceRefusal,
    testing::Values(Refusal{"AttributeOnAdvice", "<saml:Advice>", "<saml:Advice a='1'>",
                            "Unexpected attributes on element 'Advice'"},
                    Refusal{"ForeignChild", "<saml:Advice>", "<saml:Advice><saml:AssertionIDRef/>",
                            "Expected element 'RSAAdvice' not found."},
                    Refusal{"TextLast", "</saml:Advice>", "x</saml:Advice>",
                            "Expected element 'RSAAdvice' not found."},
                    Refusal{"EntryOfAnotherNamespace", "<saml:Advice>",
                            "<saml:Advice><saml:RSAAdvice/>",
                            "Element 'RSAAdvice' has unexpected namespace"},
                    Refusal{"NoSource", " AdviceSource='s1'", "",
                            "Node 'RSAAdvice is missing required attribute 'AdviceSource'"},
                    Refusal{"AttributeOnEntry", "AdviceSource='s2'", "AdviceSource='s2' a='1'",
                            "Unexpected attributes on element 'RSAAdvice'"},
                    Refusal{"ForeignChildOfEntry", "AdviceSource='s2'/>",
                            "AdviceSource='s2'><other:child/></ext:RSAAdvice>",
                            "Expected element 'Attribute' not found."},
                    Refusal{"AttributeWithoutName", " Name='n2'", "",
                            "Node 'Attribute is missing required attribute 'Name'"}),
    NameOfRow);

TEST(AdviceOfAnAssertion, NeedsAnEntry) {
    EXPECT_EQ(MessageOf<ParseException>([&] { ReadEntries("<saml:Advice/>"); }),
              "Expected element 'RSAAdvice' not found.");
}

// --- Authentication

constexpr char kAuthentication[] =
    "<saml:AuthnStatement AuthnInstant='2020-01-01T00:00:00.000Z'>"
    "<saml:AuthnContext><saml:AuthnContextClassRef>urn:class</saml:AuthnContextClassRef>"
    "</saml:AuthnContext></saml:AuthnStatement>";

ParsedAuthentication ReadAuthentication(const std::string& xml) {
    return ReadAuthnStatement(Fragment(xml).Element());
}

TEST(AuthnStatement, GivesItsInstantAndClass) {
    ParsedAuthentication authentication = ReadAuthentication(kAuthentication);
    EXPECT_EQ(authentication.instant.value(), "2020-01-01T00:00:00.000Z");
    EXPECT_EQ(authentication.contextClass, "urn:class");
}

class AuthenticationRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(AuthenticationRefusal, SaysWhatIsWrong) {
    const std::string xml = Forge::Replaced(kAuthentication, GetParam().from, GetParam().to);
    EXPECT_EQ(MessageOf<ParseException>([&] { ReadAuthentication(xml); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    AuthnStatement, AuthenticationRefusal,
    testing::Values(
        Refusal{"NoInstant", " AuthnInstant='2020-01-01T00:00:00.000Z'", "",
                "Node 'AuthnStatement is missing required attribute 'AuthnInstant'"},
        Refusal{"InstantIsNoDate", "'2020-01-01T00:00:00.000Z'", "'2020-01-01T00:00:00.00Z'",
                "AuthnStatement/@AuthnInstant is not a date"},
        Refusal{"UnexpectedAttribute", "'2020-01-01T00:00:00.000Z'", "'x' SessionIndex='1'",
                "Unexpected attributes on element 'AuthnStatement'"},
        Refusal{"DateBeforeChildren", "'2020-01-01T00:00:00.000Z'>", "'x'><other:child/>",
                "AuthnStatement/@AuthnInstant is not a date"},
        Refusal{"OtherChildFirst", "<saml:AuthnContext>",
                "<saml:SubjectLocality/><saml:AuthnContext>",
                "Expected element 'AuthnContext' not found."},
        Refusal{"ContextOfAnotherNamespace", "<saml:AuthnContext>",
                "<other:AuthnContext/><saml:AuthnContext>",
                "Element 'AuthnContext' has unexpected namespace"},
        Refusal{"AttributeOnContext", "<saml:AuthnContext>", "<saml:AuthnContext a='1'>",
                "Unexpected attributes on element 'AuthnContext'"},
        Refusal{"AfterContext", "</saml:AuthnContext>", "</saml:AuthnContext><other:child/>",
                "Unexpected elements after AuthnContext"},
        Refusal{"TextAfterContext", "</saml:AuthnContext>", "</saml:AuthnContext>x",
                "Unexpected elements after AuthnContext"},
        Refusal{"NoClass", "<saml:AuthnContextClassRef>urn:class</saml:AuthnContextClassRef>", "",
                "Expected element 'AuthnContextClassRef' not found."},
        Refusal{"OtherReference",
                "<saml:AuthnContextClassRef>urn:class</saml:AuthnContextClassRef>",
                "<saml:AuthnContextDeclRef>urn:class</saml:AuthnContextDeclRef>",
                "Expected element 'AuthnContextClassRef' not found."},
        Refusal{"ClassOfAnotherNamespace", "<saml:AuthnContextClassRef>",
                "<other:AuthnContextClassRef/><saml:AuthnContextClassRef>",
                "Element 'AuthnContextClassRef' has unexpected namespace"},
        Refusal{"AttributeOnClass", "<saml:AuthnContextClassRef>",
                "<saml:AuthnContextClassRef a='1'>",
                "Unexpected attributes on element 'AuthnContextClassRef'"},
        Refusal{"EmptyClass", "urn:class", " ",
                "Element 'AuthnContextClassRef' must only have textual content (but has extra "
                "children or is empty)."},
        Refusal{"AfterClass", "</saml:AuthnContextClassRef>",
                "</saml:AuthnContextClassRef><saml:AuthenticatingAuthority/>",
                "Unexpected elements after AuthnContextClassRef"}),
    NameOfRow);

TEST(AuthnStatement, NeedsAContext) {
    EXPECT_EQ(MessageOf<ParseException>([&] {
                  ReadAuthentication("<saml:AuthnStatement AuthnInstant='2020-01-01T00:00:00Z'/>");
              }),
              "Expected element 'AuthnContext' not found.");
}

}  // namespace
