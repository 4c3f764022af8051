#include "saml/token/conditions_reader.h"

#include "support/thrown.h"
#include "token/fragment.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace Saml;

constexpr char kConditions[] =
    "<saml:Conditions NotBefore='2020-01-01T00:00:00Z' NotOnOrAfter='2020-01-02T00:00:00.500Z'>"
    "<saml:AudienceRestriction><saml:Audience>b</saml:Audience><saml:Audience>a</saml:Audience>"
    "</saml:AudienceRestriction>"
    "<saml:ProxyRestriction Count='3'/>"
    "<saml:Condition xsi:type='ext:RenewRestrictionType' Count='4'/>"
    "<saml:Condition xsi:type='del:DelegationRestrictionType'>"
    "<del:Delegate DelegationInstant='2020-01-01T01:00:00Z'>"
    "<saml:NameID Format='f1'>one@corp</saml:NameID></del:Delegate>"
    "<del:Delegate DelegationInstant='2020-01-01T02:00:00Z'>"
    "<saml:NameID Format='f2'>two@corp</saml:NameID></del:Delegate>"
    "</saml:Condition>"
    "</saml:Conditions>";

constexpr char kAudience[] =
    "<saml:AudienceRestriction><saml:Audience>b</saml:Audience><saml:Audience>a</saml:Audience>"
    "</saml:AudienceRestriction>";
constexpr char kProxy[] = "<saml:ProxyRestriction Count='3'/>";
constexpr char kRenewal[] = "<saml:Condition xsi:type='ext:RenewRestrictionType' Count='4'/>";

ParsedConditions Read(const std::string& xml) {
    return ReadConditions(Fragment(xml).Element());
}

ParsedConditions ReadWithin(const std::string& restrictions) {
    return Read(
        "<saml:Conditions NotBefore='2020-01-01T00:00:00Z' NotOnOrAfter='2020-01-02T00:00:00Z'>" +
        restrictions + "</saml:Conditions>");
}

TEST(ConditionsReader, ReadsTheWindowAndEveryRestriction) {
    ParsedConditions conditions = Read(kConditions);
    EXPECT_EQ(conditions.notBefore.value(), "2020-01-01T00:00:00Z");
    EXPECT_EQ(conditions.notOnOrAfter.value(), "2020-01-02T00:00:00.500Z");
    EXPECT_EQ(conditions.audience, (std::set<std::string>{"a", "b"}));
    EXPECT_EQ(conditions.proxyCount, 3U);
    ASSERT_TRUE(conditions.renewal.has_value());
    EXPECT_EQ(conditions.renewal->count, 4U);
    ASSERT_TRUE(conditions.delegation.has_value());
    ASSERT_EQ(conditions.delegation->size(), 2U);
    EXPECT_EQ((*conditions.delegation)[0].instant.value(), "2020-01-01T01:00:00Z");
    EXPECT_EQ((*conditions.delegation)[0].nameId.format, "f1");
    EXPECT_EQ((*conditions.delegation)[0].nameId.value, "one@corp");
    EXPECT_EQ((*conditions.delegation)[1].instant.value(), "2020-01-01T02:00:00Z");
    EXPECT_EQ((*conditions.delegation)[1].nameId.format, "f2");
    EXPECT_EQ((*conditions.delegation)[1].nameId.value, "two@corp");
}

TEST(ConditionsReader, FindsNoRestrictionWhereThereIsNone) {
    const ParsedConditions conditions = ReadWithin("");
    EXPECT_FALSE(conditions.audience.has_value());
    EXPECT_FALSE(conditions.proxyCount.has_value());
    EXPECT_FALSE(conditions.renewal.has_value());
    EXPECT_FALSE(conditions.delegation.has_value());
}

TEST(ConditionsReader, TakesTheRestrictionsInAnyOrder) {
    const ParsedConditions conditions =
        ReadWithin(std::string("\n ") + kRenewal + " <!-- c --> " + kProxy + kAudience);
    EXPECT_EQ(conditions.renewal->count, 4U);
    EXPECT_EQ(conditions.proxyCount, 3U);
    EXPECT_EQ(conditions.audience->size(), 2U);
}

TEST(ConditionsReader, LetsARenewRestrictionHaveNoCount) {
    const ParsedConditions conditions =
        ReadWithin("<saml:Condition xsi:type='ext:RenewRestrictionType'/>");
    ASSERT_TRUE(conditions.renewal.has_value());
    EXPECT_FALSE(conditions.renewal->count.has_value());
}

TEST(ConditionsReader, IgnoresTheOtherAttributesOfARenewRestriction) {
    const ParsedConditions conditions = ReadWithin(
        "<saml:Condition Postdatable='no bool' RenewExpired='' Count='1'"
        " xsi:type='ext:RenewRestrictionType'> <!-- c --> </saml:Condition>");
    EXPECT_EQ(conditions.renewal->count, 1U);
}

TEST(ConditionsReader, AcceptsAProxyCountOfZero) {
    EXPECT_EQ(ReadWithin("<saml:ProxyRestriction Count='0'> </saml:ProxyRestriction>").proxyCount,
              0U);
}

TEST(ConditionsReader, FindsTheTypeOfAConditionByItsNamespaces) {
    const ParsedConditions conditions = ReadWithin(
        "<c:Condition xmlns:c='urn:oasis:names:tc:SAML:2.0:assertion'"
        " xmlns:i='http://www.w3.org/2001/XMLSchema-instance'"
        " xmlns='urn:oasis:names:tc:SAML:2.0:conditions:delegation'"
        " i:type='DelegationRestrictionType'>"
        "<Delegate DelegationInstant='2020-01-01T01:00:00Z'>"
        "<c:NameID Format='f'>x@corp</c:NameID></Delegate></c:Condition>");
    ASSERT_TRUE(conditions.delegation.has_value());
    EXPECT_EQ(conditions.delegation->front().nameId.value, "x@corp");
}

TEST(ConditionsReader, CollapsesEqualAudiencesAndLooksAtNoAttributeOfThem) {
    const ParsedConditions conditions = ReadWithin(
        "<saml:AudienceRestriction a='not examined'><saml:Audience b='2'>x</saml:Audience>"
        " <saml:Audience>x</saml:Audience><saml:Audience> x</saml:Audience>"
        "</saml:AudienceRestriction>");
    EXPECT_EQ(conditions.audience, (std::set<std::string>{" x", "x"}));
}

TEST(ConditionsReader, ReadsAHundredThousandDelegatesAndAudiences) {
    constexpr std::size_t kMany = 100000;
    std::string delegates;
    std::string audience;
    for (std::size_t i = 0; i < kMany; ++i) {
        delegates +=
            "<del:Delegate DelegationInstant='2020-01-01T01:00:00Z'><saml:NameID Format='f'>x@" +
            std::to_string(i) + "</saml:NameID></del:Delegate>";
        audience += "<saml:Audience>" + std::to_string(i) + "</saml:Audience>";
    }
    const ParsedConditions conditions = ReadWithin(
        "<saml:Condition xsi:type='del:DelegationRestrictionType'>" + delegates +
        "</saml:Condition><saml:AudienceRestriction>" + audience + "</saml:AudienceRestriction>");
    EXPECT_EQ(conditions.delegation->size(), kMany);
    EXPECT_EQ(conditions.delegation->back().nameId.value, "x@99999");
    EXPECT_EQ(conditions.audience->size(), kMany);
}

class ConditionsRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(ConditionsRefusal, SaysWhatIsWrong) {
    const std::string xml = Forge::Replaced(kConditions, GetParam().from, GetParam().to);
    EXPECT_EQ(MessageOf<ParseException>([&] { Read(xml); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Window, ConditionsRefusal,
    testing::Values(
        Refusal{"NoStart", " NotBefore='2020-01-01T00:00:00Z'", "",
                "Node 'Conditions is missing required attribute 'NotBefore'"},
        Refusal{"NoEnd", " NotOnOrAfter='2020-01-02T00:00:00.500Z'", "",
                "Node 'Conditions is missing required attribute 'NotOnOrAfter'"},
        Refusal{"MissingBeforeBadDate",
                " NotBefore='2020-01-01T00:00:00Z' NotOnOrAfter='2020-01-02T00:00:00.500Z'",
                " NotBefore='x'", "Node 'Conditions is missing required attribute 'NotOnOrAfter'"},
        Refusal{"UnexpectedBeforeBadDate", "'2020-01-01T00:00:00Z'", "'x' a='1'",
                "Unexpected attributes on element 'Conditions'"},
        Refusal{"StartIsNoDate", "'2020-01-01T00:00:00Z'", "'2020-01-01'",
                "Conditions/@NotBefore is not a date"},
        Refusal{"EndIsNoDate", "'2020-01-02T00:00:00.500Z'", "''",
                "Conditions/@NotOnOrAfter is not a date"},
        Refusal{"BothAreNoDates",
                "NotBefore='2020-01-01T00:00:00Z' NotOnOrAfter='2020-01-02T00:00:00.500Z'",
                "NotBefore='x' NotOnOrAfter='y'", "Conditions/@NotBefore is not a date"},
        Refusal{"BadDateBeforeBadChild", "'2020-01-02T00:00:00.500Z'>",
                "'2020-01-02'><other:child/>", "Conditions/@NotOnOrAfter is not a date"}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    UnknownOrDuplicate, ConditionsRefusal,
    testing::Values(
        Refusal{"UnknownElement", "<saml:ProxyRestriction ",
                "<saml:OneTimeUse/><saml:ProxyRestriction ",
                "Unknown or duplicate restriction node under Conditions: OneTimeUse"},
        Refusal{"RestrictionOfAnotherNamespace", "<saml:ProxyRestriction ",
                "<other:ProxyRestriction Count='1'/><saml:ProxyRestriction ",
                "Unknown or duplicate restriction node under Conditions: ProxyRestriction"},
        Refusal{"SecondAudience", "<saml:ProxyRestriction ",
                "<saml:AudienceRestriction><saml:Audience>c</saml:Audience>"
                "</saml:AudienceRestriction><saml:ProxyRestriction ",
                "Unknown or duplicate restriction node under Conditions: AudienceRestriction"},
        Refusal{"SecondProxy", "<saml:ProxyRestriction ",
                "<saml:ProxyRestriction Count='1'/><saml:ProxyRestriction ",
                "Unknown or duplicate restriction node under Conditions: ProxyRestriction"},
        Refusal{"SecondRenewal", "</saml:Conditions>",
                "<saml:Condition xsi:type='ext:RenewRestrictionType'/></saml:Conditions>",
                "Unknown or duplicate restriction node under Conditions: Condition"},
        Refusal{"SecondDelegation", "</saml:Conditions>",
                "<saml:Condition xsi:type='del:DelegationRestrictionType'>"
                "<del:Delegate DelegationInstant='2020-01-01T01:00:00Z'>"
                "<saml:NameID Format='f'>x</saml:NameID></del:Delegate></saml:Condition>"
                "</saml:Conditions>",
                "Unknown or duplicate restriction node under Conditions: Condition"},
        Refusal{"ConditionWithoutType", " xsi:type='ext:RenewRestrictionType'", "",
                "Unknown or duplicate restriction node under Conditions: Condition"},
        Refusal{"ConditionOfAnotherType", "ext:RenewRestrictionType", "ext:OtherType",
                "Unknown or duplicate restriction node under Conditions: Condition"},
        Refusal{"TypeOfAnotherNamespace", "ext:RenewRestrictionType", "del:RenewRestrictionType",
                "Unknown or duplicate restriction node under Conditions: Condition"},
        Refusal{"TypeOfNoNamespace", "xsi:type='ext:RenewRestrictionType'",
                "type='ext:RenewRestrictionType'",
                "Unknown or duplicate restriction node under Conditions: Condition"},
        Refusal{"ConditionOfAnotherNamespace", "</saml:Conditions>",
                "<other:Condition xsi:type='ext:RenewRestrictionType'/></saml:Conditions>",
                "Unknown or duplicate restriction node under Conditions: Condition"},
        Refusal{"Text", "<saml:ProxyRestriction ", "x<saml:ProxyRestriction ",
                "Unknown or duplicate restriction node under Conditions"},
        Refusal{"CData", "</saml:Conditions>", "<![CDATA[]]></saml:Conditions>",
                "Unknown or duplicate restriction node under Conditions"}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Delegation, ConditionsRefusal,
    testing::Values(
        Refusal{"UnexpectedAttribute", "xsi:type='del:DelegationRestrictionType'",
                "xsi:type='del:DelegationRestrictionType' Count='1'",
                "Unexpected attribute 'Count' on element 'Condition'"},
        Refusal{"NoDelegate",
                "<del:Delegate DelegationInstant='2020-01-01T01:00:00Z'>"
                "<saml:NameID Format='f1'>one@corp</saml:NameID></del:Delegate>"
                "<del:Delegate DelegationInstant='2020-01-01T02:00:00Z'>"
                "<saml:NameID Format='f2'>two@corp</saml:NameID></del:Delegate>",
                " ", "Expected element 'Delegate' not found."},
        Refusal{"DelegateOfAnotherNamespace", "<del:Delegate DelegationInstant='2020-01-01T01",
                "<saml:Delegate/><del:Delegate DelegationInstant='2020-01-01T01",
                "Element 'Delegate' has unexpected namespace"},
        Refusal{"ForeignChild", "<del:Delegate DelegationInstant='2020-01-01T02",
                "<other:child/><del:Delegate DelegationInstant='2020-01-01T02",
                "Expected element 'Delegate' not found."},
        Refusal{"TextBehindDelegates", "two@corp</saml:NameID></del:Delegate>",
                "two@corp</saml:NameID></del:Delegate>x", "Expected element 'Delegate' not found."},
        Refusal{"NoInstant", " DelegationInstant='2020-01-01T01:00:00Z'", "",
                "Node 'Delegate is missing required attribute 'DelegationInstant'"},
        Refusal{"InstantIsNoDate", "'2020-01-01T01:00:00Z'", "'2020-01-01T01:00:00'",
                "Delegate/@DelegationInstant is not a date"},
        Refusal{"AttributeOnDelegate", "'2020-01-01T01:00:00Z'", "'x' ConfirmationMethod='m'",
                "Unexpected attributes on element 'Delegate'"},
        Refusal{"DateBeforeChildren", "'2020-01-01T01:00:00Z'>", "'x'><other:child/>",
                "Delegate/@DelegationInstant is not a date"},
        Refusal{"NoName", "<saml:NameID Format='f1'>one@corp</saml:NameID>", "",
                "Expected element 'NameID' not found."},
        Refusal{"NameOfAnotherNamespace", "<saml:NameID Format='f1'>one@corp</saml:NameID>",
                "<del:NameID Format='f1'>one@corp</del:NameID>",
                "Element 'NameID' has unexpected namespace"},
        Refusal{"NameWithoutFormat", " Format='f1'", "",
                "Node 'NameID is missing required attribute 'Format'"},
        Refusal{"AttributeOnName", " Format='f1'", " Format='f1' SPNameQualifier='q'",
                "Unexpected attributes on element 'NameID'"},
        Refusal{"EmptyName", "one@corp", "",
                "Element 'NameID' must only have textual content (but has extra children or is "
                "empty)."},
        Refusal{"ForeignChildBehindName", "one@corp</saml:NameID>",
                "one@corp</saml:NameID><other:child/>", "Expected element 'NameID' not found."},
        Refusal{"SecondName", "one@corp</saml:NameID>",
                "one@corp</saml:NameID><saml:NameID Format='f'>x@corp</saml:NameID>",
                "Expected element 'NameID' not found."}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Others, ConditionsRefusal,
    testing::Values(
        Refusal{"NoAudience", "<saml:Audience>b</saml:Audience><saml:Audience>a</saml:Audience>",
                "<!-- none -->", "Expected element 'Audience' not found."},
        Refusal{"AudienceOfAnotherNamespace", "<saml:Audience>a</saml:Audience>",
                "<other:Audience>a</other:Audience>",
                "Element 'Audience' has unexpected namespace"},
        Refusal{"ForeignChildOfAudienceRestriction", "<saml:Audience>a</saml:Audience>",
                "<saml:Spectator>a</saml:Spectator>", "Expected element 'Audience' not found."},
        Refusal{"TextBesideAudience", "b</saml:Audience>", "b</saml:Audience>,",
                "Expected element 'Audience' not found."},
        Refusal{"EmptyAudience", "<saml:Audience>a</saml:Audience>", "<saml:Audience/>",
                "Element 'Audience' must only have textual content (but has extra children or is "
                "empty)."},
        Refusal{"SplitAudience", "<saml:Audience>a<", "<saml:Audience>a<!-- -->b<",
                "Element 'Audience' must only have textual content (but has extra children or is "
                "empty)."},
        Refusal{"ProxyWithoutCount", " Count='3'", "",
                "Node 'ProxyRestriction is missing required attribute 'Count'"},
        Refusal{"ProxyCountIsNoNumber", "'3'", "'abc'",
                "ProxyRestriction/@Count is not a non-negative integer."},
        Refusal{"ProxyCountIsNegative", "'3'", "'-1'",
                "ProxyRestriction/@Count is not a non-negative integer."},
        Refusal{"AttributeOnProxy", "Count='3'", "Count='abc' a='1'",
                "Unexpected attributes on element 'ProxyRestriction'"},
        Refusal{"TypeOnProxy", "Count='3'", "Count='3' xsi:type='t'",
                "Unexpected attributes on element 'ProxyRestriction'"},
        Refusal{"ProxyWithAudience", "<saml:ProxyRestriction Count='3'/>",
                "<saml:ProxyRestriction Count='3'><saml:Audience>a</saml:Audience>"
                "</saml:ProxyRestriction>",
                "Element 'ProxyRestriction' must be empty"},
        Refusal{"FullProxyWithBadCount", "<saml:ProxyRestriction Count='3'/>",
                "<saml:ProxyRestriction Count='abc'>x</saml:ProxyRestriction>",
                "Element 'ProxyRestriction' must be empty"},
        Refusal{"RenewCountIsNoNumber", "'4'", "'four'",
                "Condition/@Count is not a non-negative integer."},
        Refusal{"RenewCountIsNegative", "'4'", "'-4'",
                "Condition/@Count is not a non-negative integer."},
        Refusal{"EmptyRenewCount", "'4'", "''", "Condition/@Count is not a non-negative integer."},
        Refusal{"AttributeOnRenewal", "Count='4'", "Count='4' Renewable='true'",
                "Unexpected attribute 'Renewable' on element 'Condition'"},
        Refusal{"PrefixedCountOnRenewal", " Count='4'", " ext:Count='4'",
                "Unexpected attribute 'ext:Count' on element 'Condition'"},
        Refusal{"RenewalWithChild", "Count='4'/>", "Count='four'><other:child/></saml:Condition>",
                "Element 'Condition' must be empty"},
        Refusal{"RenewalWithText", "Count='4'/>", "Count='4'>x</saml:Condition>",
                "Element 'Condition' must be empty"}),
    NameOfRow);

}  // namespace
