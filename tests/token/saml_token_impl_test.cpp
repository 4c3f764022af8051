#include "saml/token/saml_token_impl.h"

#include "support/thrown.h"
#include "token/parsed_attribute.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace Saml;

DateTime Date(const std::string& text) {
    DateTime date;
    EXPECT_TRUE(DateTime::Create(text, date)) << text;
    return date;
}

NameRecord Upn(const std::string& value) {
    return {ProfileUri::UpnNameFormat, value};
}

/// The least that an assertion says.
ParsedAssertion Least() {
    ParsedAssertion assertion;
    assertion.version = "2.0";
    assertion.id = "_1";
    assertion.subject.nameId = Upn("jdoe@corp");
    assertion.conditions.notBefore = Date("2020-06-01T12:00:00Z");
    assertion.conditions.notOnOrAfter = Date("2020-06-01T13:00:00Z");
    return assertion;
}

std::string Text(DateTime date) {
    return date.value();
}

TEST(SamlToken, GivesWhatTheAssertionSays) {
    const SamlTokenImpl token("<text/>", Least());
    EXPECT_EQ(token.GetXml(), "<text/>");
    EXPECT_EQ(token.GetId(), "_1");
    EXPECT_EQ(Text(token.GetStartTime()), "2020-06-01T12:00:00Z");
    EXPECT_EQ(Text(token.GetExpirationTime()), "2020-06-01T13:00:00Z");
    EXPECT_EQ(token.GetSubject().Name, "jdoe");
    EXPECT_EQ(token.GetSubject().Domain, "corp");
    EXPECT_EQ(token.GetConfirmationType(), ConfirmationType::Bearer);
}

TEST(SamlToken, IsEmptyWhereTheAssertionSaysNothing) {
    const SamlTokenImpl token("", Least());
    EXPECT_FALSE(token.IsRenewable());
    EXPECT_FALSE(token.IsDelegable());
    EXPECT_FALSE(token.IsSolution());
    PersonName name{"old", "old"};
    token.GetPersonName(name);
    EXPECT_EQ(name.FirstName, "");
    EXPECT_EQ(name.LastName, "");
    EXPECT_TRUE(token.GetGroups().empty());
    EXPECT_TRUE(token.GetDelegationChain().empty());
    std::set<std::string> audience{"old"};
    token.GetAudience(audience);
    EXPECT_TRUE(audience.empty());
    EXPECT_TRUE(token.GetAdvice().empty());
    EXPECT_EQ(token.GetHolderOfKeyCertificate(), nullptr);
}

TEST(SamlToken, KeepsTheCertificateOfAHolderOfKey) {
    const auto certificate =
        std::make_shared<const std::vector<unsigned char>>(std::vector<unsigned char>{1, 2, 3});
    ParsedAssertion assertion = Least();
    assertion.subject.confirmation.method = ConfirmationType::HolderOfKey;
    assertion.subject.confirmation.certificate = certificate;
    const SamlTokenImpl token("", std::move(assertion));
    EXPECT_EQ(token.GetConfirmationType(), ConfirmationType::HolderOfKey);
    EXPECT_EQ(token.GetHolderOfKeyCertificate(), certificate);
}

TEST(SamlToken, IsRenewableWhenTheRenewRestrictionHasACountAboveZero) {
    const auto isRenewable = [](std::optional<ParsedRenewal> renewal) {
        ParsedAssertion assertion = Least();
        assertion.conditions.renewal = renewal;
        return SamlTokenImpl("", std::move(assertion)).IsRenewable();
    };
    EXPECT_FALSE(isRenewable(std::nullopt));
    EXPECT_FALSE(isRenewable(ParsedRenewal{}));
    EXPECT_FALSE(isRenewable(ParsedRenewal{0}));
    EXPECT_TRUE(isRenewable(ParsedRenewal{1}));
    EXPECT_TRUE(isRenewable(ParsedRenewal{std::numeric_limits<std::int64_t>::max()}));
}

TEST(SamlToken, IsDelegableWhenTheProxyRestrictionHasACountAboveZero) {
    const auto isDelegable = [](std::optional<std::uint64_t> count) {
        ParsedAssertion assertion = Least();
        assertion.conditions.proxyCount = count;
        return SamlTokenImpl("", std::move(assertion)).IsDelegable();
    };
    EXPECT_FALSE(isDelegable(std::nullopt));
    EXPECT_FALSE(isDelegable(0));
    EXPECT_TRUE(isDelegable(1));
    EXPECT_TRUE(isDelegable(std::numeric_limits<std::int64_t>::max()));
}

TEST(SamlToken, GivesCopiesInDocumentOrder) {
    ParsedAssertion assertion = Least();
    assertion.conditions.delegation = {{Date("2020-06-01T12:00:01Z"), Upn("one@a")},
                                       {Date("2020-06-01T12:00:02Z"), Upn("two@b")}};
    assertion.conditions.audience = std::set<std::string>{"b", "a"};
    assertion.advice = {{"source 1", {{"n", "f", "fr", {"v1", "v2"}}}}, {"source 2", {}}};
    assertion.attributes = {
        Attribute(ProfileUri::GroupIdentity, {"d2\\g2", "d1\\g1"}),
        Attribute(ProfileUri::GivenName, {"Jane"}), Attribute(ProfileUri::Surname, {"Doe"}),
        Attribute(ProfileUri::IsSolution, {"true"}), Attribute("urn:other", {"dropped"})};
    const SamlTokenImpl token("", std::move(assertion));

    const std::vector<DelegateInfo> chain = token.GetDelegationChain();
    ASSERT_EQ(chain.size(), 2U);
    EXPECT_EQ(chain[0].Delegate.Name, "one");
    EXPECT_EQ(chain[0].Delegate.Domain, "a");
    EXPECT_EQ(Text(chain[0].DelegationInstant), "2020-06-01T12:00:01Z");
    EXPECT_EQ(chain[1].Delegate.Name, "two");
    EXPECT_EQ(Text(chain[1].DelegationInstant), "2020-06-01T12:00:02Z");

    std::set<std::string> audience{"old"};
    token.GetAudience(audience);
    EXPECT_EQ(audience, (std::set<std::string>{"a", "b"}));

    const std::vector<Advice> advice = token.GetAdvice();
    ASSERT_EQ(advice.size(), 2U);
    EXPECT_EQ(advice[0].AdviceSource, "source 1");
    ASSERT_EQ(advice[0].Attributes.size(), 1U);
    EXPECT_EQ(advice[0].Attributes[0].Name, "n");
    EXPECT_EQ(advice[0].Attributes[0].NameFormat, "f");
    EXPECT_EQ(advice[0].Attributes[0].FriendlyName, "fr");
    EXPECT_EQ(advice[0].Attributes[0].Values, (std::vector<std::string>{"v1", "v2"}));
    EXPECT_EQ(advice[1].AdviceSource, "source 2");

    const std::vector<PrincipalId> groups = token.GetGroups();
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].Name, "g2");
    EXPECT_EQ(groups[1].Domain, "d1");
    PersonName name;
    token.GetPersonName(name);
    EXPECT_EQ(name.FirstName, "Jane");
    EXPECT_EQ(name.LastName, "Doe");
    EXPECT_TRUE(token.IsSolution());
}

TEST(SamlToken, IsRefusedForTheSubjectsNameFirst) {
    ParsedAssertion assertion = Least();
    assertion.subject.nameId = {"urn:oasis:names:tc:SAML:1.1:nameid-format:emailAddress", "x"};
    assertion.attributes = {Attribute(ProfileUri::GroupIdentity, {"nobody"})};
    assertion.conditions.delegation = {{DateTime(), Upn("nobody")}};
    EXPECT_EQ(MessageOf<ParseException>([&] { SamlTokenImpl("", ParsedAssertion(assertion)); }),
              "Invalid or unsupported NameId format "
              "'urn:oasis:names:tc:SAML:1.1:nameid-format:emailAddress'");
}

TEST(SamlToken, IsRefusedForAnAttributeBeforeADelegate) {
    ParsedAssertion assertion = Least();
    assertion.attributes = {Attribute(ProfileUri::GroupIdentity, {"nobody"})};
    assertion.conditions.delegation = {{DateTime(), Upn("nobody")}};
    EXPECT_EQ(MessageOf<ParseException>([&] { SamlTokenImpl("", ParsedAssertion(assertion)); }),
              "Failed to parse Group Identity value: `nobody'; domain or group missing");
}

TEST(SamlToken, IsRefusedForAnyDelegatesName) {
    ParsedAssertion assertion = Least();
    assertion.conditions.delegation = {{DateTime(), Upn("one@a")}, {DateTime(), {"urn:f", "x@y"}}};
    EXPECT_EQ(MessageOf<ParseException>([&] { SamlTokenImpl("", ParsedAssertion(assertion)); }),
              "Invalid or unsupported NameId format 'urn:f'");
    assertion.conditions.delegation = {{DateTime(), Upn("@a")}, {DateTime(), Upn("two@b")}};
    EXPECT_EQ(MessageOf<ParseException>([&] { SamlTokenImpl("", ParsedAssertion(assertion)); }),
              "Failed to parse the UPN NameID: `@a'; name or domain part is missing.");
}

}  // namespace
