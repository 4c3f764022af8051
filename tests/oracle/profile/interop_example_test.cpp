#include "oracle/profile/interop_page.h"
#include "oracle/profile/plain_values.h"
#include "oracle/signatures/xmlsec1.h"
#include "saml/token.h"
#include "support/test_keys.h"
#include "support/thrown.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

// The examples of docs/interop.md, signed by xmlsec1: docs/assertion.rng and the library agree on
// them, and on what is broken.
namespace Saml {
namespace {

using InteropPage::BearerTemplate;
using InteropPage::Grammar;
using InteropPage::HolderOfKeyTemplate;
using TestKeys::CertificateNamed;

std::shared_ptr<const SamlToken> TokenFrom(const std::string& xml) {
    boost::intrusive_ptr<Xml::Security::KeyInfoResolver> resolver;
    Xml::Security::CreateTrustChainKeyResolver({CertificateNamed("root").der}, resolver);
    return CreateSamlToken(xml, resolver.get());
}

void ExpectWhatBothSay(const SamlToken& token) {
    EXPECT_EQ(token.GetId(), "_5f2b8c1e");
    EXPECT_EQ(token.GetSubject().Name, "jdoe");
    EXPECT_EQ(token.GetSubject().Domain, "corp.example");
    EXPECT_TRUE(token.IsRenewable());
    EXPECT_TRUE(token.IsDelegable());
    EXPECT_FALSE(token.IsSolution());

    PersonName person;
    token.GetPersonName(person);
    EXPECT_EQ(person.FirstName, "Jane");
    EXPECT_EQ(person.LastName, "Doe");

    const std::vector<PrincipalId> groups = token.GetGroups();
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].Name, "Auditors");
    EXPECT_EQ(groups[1].Name, "R&D");
    EXPECT_EQ(groups[1].Domain, "corp.example");

    const std::vector<DelegateInfo> chain = token.GetDelegationChain();
    ASSERT_EQ(chain.size(), 2u);
    EXPECT_EQ(chain[0].Delegate.Name, "portal");
    EXPECT_EQ(chain[1].Delegate.Name, "report-service");

    std::set<std::string> audience;
    token.GetAudience(audience);
    EXPECT_EQ(audience, (std::set<std::string>{"https://inventory.example.org/",
                                               "https://orders.example.org/"}));
    const std::vector<Advice> advice = token.GetAdvice();
    ASSERT_EQ(advice.size(), 1u);
    EXPECT_EQ(advice[0].AdviceSource, "https://sso.example.org/sts");
    ASSERT_EQ(advice[0].Attributes.size(), 1u);
    EXPECT_EQ(advice[0].Attributes[0].Values, std::vector<std::string>{"interactive"});
}

TEST(InteropPage, HasTwoExamples) {
    EXPECT_EQ(InteropPage::XmlBlocks().size(), 2u);
}

TEST(InteropExample, IsAcceptedAsABearerTokenThatXmlSec1Signed) {
    const std::string xml = XmlSec1::Sign(BearerTemplate());
    EXPECT_EQ(Grammar().FaultOf(xml), "");
    EXPECT_TRUE(XmlSec1::Verifies(xml));
    const auto token = TokenFrom(xml);
    ExpectWhatBothSay(*token);
    EXPECT_EQ(token->GetConfirmationType(), ConfirmationType::Bearer);
    EXPECT_EQ(token->GetHolderOfKeyCertificate(), nullptr);
}

TEST(InteropExample, IsAcceptedAsAHolderOfKeyTokenThatXmlSec1Signed) {
    const std::string xml = XmlSec1::Sign(HolderOfKeyTemplate());
    EXPECT_EQ(Grammar().FaultOf(xml), "");
    EXPECT_TRUE(XmlSec1::Verifies(xml));
    const auto token = TokenFrom(xml);
    ExpectWhatBothSay(*token);
    EXPECT_EQ(token->GetConfirmationType(), ConfirmationType::HolderOfKey);
    ASSERT_NE(token->GetHolderOfKeyCertificate(), nullptr);
    EXPECT_EQ(*token->GetHolderOfKeyCertificate(), *CertificateNamed("self-signed").der);
}

TEST(InteropExample, HasTheSignersCertificateFirst) {
    const std::string xml = XmlSec1::Sign(BearerTemplate());
    const auto document = Forge::Parse(xml);
    Xml::ElementNode* const signature =
        document->GetRootElement()->GetFirstChildElement("Signature");
    Xml::ElementNode* const certificate = signature->GetFirstChildElement("KeyInfo")
                                              ->GetFirstChildElement("X509Data")
                                              ->GetFirstChildElement("X509Certificate");
    const std::string text = dynamic_cast<Xml::TextNode&>(*certificate->GetFirstChild()).GetText();
    EXPECT_EQ(Oracle::FromBase64(text), *CertificateNamed("leaf").der);
}

// A change before signing: the signature holds, what is refused is the structure.
struct BreakCase {
    const char* name;
    const char* from;
    const char* to;
    const char* refusal;
};
class BrokenInteropExample : public testing::TestWithParam<BreakCase> {};

TEST_P(BrokenInteropExample, IsRefusedByTheGrammarAndByTheLibrary) {
    const BreakCase& row = GetParam();
    const std::string xml = XmlSec1::Sign(Forge::Replaced(BearerTemplate(), row.from, row.to));
    EXPECT_TRUE(XmlSec1::Verifies(xml));
    EXPECT_NE(Grammar().FaultOf(xml), "");
    EXPECT_EQ(MessageOf<ParseException>([&] { TokenFrom(xml); }), row.refusal);
}

INSTANTIATE_TEST_SUITE_P(
    Oracle, BrokenInteropExample,
    testing::Values(
        BreakCase{"IssuerWithoutFormat",
                  " Format=\"urn:oasis:names:tc:SAML:2.0:nameid-format:entity\"", "",
                  "Node 'Issuer is missing required attribute 'Format'"},
        BreakCase{"SessionIndex", "<saml:AuthnStatement ", "<saml:AuthnStatement SessionIndex='1' ",
                  "Unexpected attributes on element 'AuthnStatement'"},
        BreakCase{"Recipient", "<saml:SubjectConfirmationData ",
                  "<saml:SubjectConfirmationData Recipient='https://sp.example/' ",
                  "Unexpected attributes on element 'SubjectConfirmationData'"},
        BreakCase{"OneTimeUse", "<saml:ProxyRestriction ",
                  "<saml:OneTimeUse/><saml:ProxyRestriction ",
                  "Unknown or duplicate restriction node under Conditions: OneTimeUse"},
        BreakCase{"SecondAudienceRestriction", "<saml:ProxyRestriction ",
                  "<saml:AudienceRestriction><saml:Audience>a</saml:Audience>"
                  "</saml:AudienceRestriction><saml:ProxyRestriction ",
                  "Unknown or duplicate restriction node under Conditions: AudienceRestriction"},
        BreakCase{"ProxyRestrictionWithoutCount", "<saml:ProxyRestriction Count=\"3\"/>",
                  "<saml:ProxyRestriction/>",
                  "Node 'ProxyRestriction is missing required attribute 'Count'"},
        BreakCase{"TypeOfAnotherNamespace", "\"ext:RenewRestrictionType\"",
                  "\"saml:RenewRestrictionType\"",
                  "Unknown or duplicate restriction node under Conditions: Condition"},
        BreakCase{"DateWithAnOffset", " AuthnInstant=\"", " AuthnInstant=\"+00:00 ",
                  "AuthnStatement/@AuthnInstant is not a date"},
        BreakCase{"ElementInAValue", ">interactive<", "><b/><",
                  "Element 'AttributeValue' must only have textual content (but has extra children "
                  "or is empty)."},
        BreakCase{"EmptyAdvice", "</saml:Advice>", "<b/></saml:Advice>",
                  "Expected element 'RSAAdvice' not found."},
        BreakCase{"CallerWithoutDomain", ">jdoe@corp.example<", ">jdoe<",
                  "Failed to parse the UPN NameID: `jdoe'; name or domain part is missing."},
        BreakCase{"GroupWithoutDomain", ">corp.example\\Auditors<", ">Auditors<",
                  "Failed to parse Group Identity value: `Auditors'; domain or group missing"},
        BreakCase{"InclusiveTransform",
                  "<ds:Transform Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\">",
                  "<ds:Transform Algorithm=\"http://www.w3.org/TR/2001/REC-xml-c14n-20010315\">",
                  "Signature syntax error: Unsupported transformation algorithm: "
                  "http://www.w3.org/TR/2001/REC-xml-c14n-20010315"},
        BreakCase{"KeyValue", "<ds:X509Data/>", "<ds:KeyValue/><ds:X509Data/>",
                  "Signature syntax error: Expected element 'X509Data' not found."},
        BreakCase{"IdOfKeyInfo", "<ds:KeyInfo>", "<ds:KeyInfo Id='key'>",
                  "Signature syntax error: Unexpected attributes on element 'KeyInfo'"},
        BreakCase{"ObjectInTheSignature", "</ds:Signature>", "<ds:Object/></ds:Signature>",
                  "Signature syntax error: Unexpected child nodes under 'Signature'"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Saml
