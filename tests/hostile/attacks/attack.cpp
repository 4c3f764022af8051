#include "hostile/attacks/attack.h"

#include "hostile/attacks/hardened_road.h"
#include "hostile/attacks/provider.h"

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <set>

namespace Saml::Attacks {
namespace {

template <class Create>
std::string Observed(const Create& create) {
    try {
        return Accepted(Oracle::AccountOf(*create()));
    } catch (ParseException* thrown) {
        const std::unique_ptr<ParseException> refusal(thrown);
        return "Saml::ParseException*: " + std::string(refusal->what());
    } catch (const std::exception& refusal) {
        return boost::core::demangle(typeid(refusal).name()) + ": " + refusal.what();
    }
}

std::string Principal(const std::string& text, char separator, bool isNameFirst) {
    const std::size_t place = text.find(separator);
    const std::string before = text.substr(0, place);
    const std::string behind = text.substr(place + 1);
    return isNameFirst ? Oracle::PrincipalAccount(before, behind)
                       : Oracle::PrincipalAccount(behind, before);
}

void AddAttribute(const Forge::Attribute& attribute, Oracle::Account& account) {
    if (attribute.name == ProfileUri::GroupIdentity)
        for (const std::string& group : attribute.values)
            account.groups.push_back(Principal(group, '\\', false));
    else if (attribute.name == ProfileUri::GivenName)
        account.firstName = attribute.values.at(0);
    else if (attribute.name == ProfileUri::Surname)
        account.lastName = attribute.values.at(0);
    else if (attribute.name == ProfileUri::IsSolution)
        account.solution = attribute.values.at(0) == "true";
}

}  // namespace

std::string Accepted(const Oracle::Account& account) {
    return "accepted\n" + Oracle::Told(account);
}

Oracle::Account AccountOf(const Forge::TokenSpec& spec) {
    Oracle::Account account;
    account.id = spec.id;
    account.start = spec.notBefore;
    account.end = spec.notOnOrAfter;
    account.subject = Principal(spec.subject.value, '@', true);
    account.renewable = spec.renewRestriction && spec.renewCount.value_or("0") != "0";
    account.delegable = spec.proxyCount.value_or("0") != "0";
    account.holderOfKey = spec.holderOfKeyCertificate.has_value();
    std::string error;
    if (account.holderOfKey)
        account.certificate = Base64::Decode(*spec.holderOfKeyCertificate, error);
    for (const Forge::Delegate& delegate : spec.delegates)
        account.delegates.push_back(Principal(delegate.name.value, '@', true) + " " +
                                    delegate.instant);
    account.audience = {spec.audience.begin(), spec.audience.end()};
    for (const Forge::AdviceEntry& entry : spec.advice) {
        account.advice.push_back(entry.source);
        for (const Forge::Attribute& attribute : entry.attributes)
            account.advice.push_back(
                Oracle::AttributeAccount({attribute.name, attribute.nameFormat,
                                          attribute.friendlyName.value_or(""), attribute.values}));
    }
    for (const Forge::Attribute& attribute : spec.attributes)
        AddAttribute(attribute, account);
    return account;
}

std::string Accepted(const Forge::TokenSpec& spec) {
    return Accepted(AccountOf(spec));
}

std::string RefusedAsTampered() {
    return Refused<InvalidSignatureException>(
        "Failed to verify signature: token might have been tampered with.");
}

std::string RefusedAsUncovered() {
    return Refused<ParseException>("Token's signature must cover the entire token");
}

std::string OutcomeByText(const std::string& token, const Resolver& trust, std::int64_t tolerance) {
    return Observed([&] { return CreateSamlToken(token, trust.get(), tolerance); });
}

std::string OutcomeOf(const std::string& token, const Resolver& trust, std::int64_t tolerance) {
    const std::string byText = OutcomeByText(token, trust, tolerance);
    const std::string byDocument = Observed([&] {
        const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(token);
        return CreateSamlTokenFromDom(document->GetRootElement(), trust.get(), tolerance);
    });
    EXPECT_EQ(byDocument, byText) << "the two entries differ";
    const std::string withinLimits = OutcomeWithinLimits(token, trust, tolerance);
    EXPECT_TRUE(withinLimits == byText || withinLimits == Stopped())
        << "within limits: " << withinLimits << "\nwithout: " << byText;
    return byText;
}

std::string OutcomeWithinLimits(const std::string& token, const Resolver& trust,
                                std::int64_t tolerance) {
    return Observed([&] {
        const boost::intrusive_ptr<Xml::XMLHandler> handler(
            Xml::CreateXMLDocumentHandler(kRecommendedSize, kRecommendedNodes, kRecommendedDepth));
        const boost::intrusive_ptr<Xml::XMLParser> parser(Xml::CreateXMLParser(handler.get()));
        boost::intrusive_ptr<Xml::Node> document;
        parser->Parse(token, true, document);
        auto& parsed = dynamic_cast<Xml::Document&>(*document);
        return CreateSamlTokenFromDom(parsed.GetRootElement(), trust.get(), tolerance);
    });
}

std::string Stopped() {
    return Refused<Xml::XMLParseException>("parsing aborted");
}

std::string OutcomeOf(Xml::ElementNode& assertion, const Resolver& trust) {
    return Observed([&] { return CreateSamlTokenFromDom(&assertion, trust.get()); });
}

void ExpectOutcomes(const std::vector<Attack>& attacks) {
    std::set<std::string> names;
    for (const Attack& attack : attacks) {
        SCOPED_TRACE(attack.name);
        EXPECT_TRUE(names.insert(attack.name).second) << "two attacks have one name";
        const std::vector<Resolver> everybody = {Provider::TrustInTheRoot(),
                                                 Provider::TrustInTheSigner()};
        for (const Resolver& trust : attack.trust ? std::vector{attack.trust} : everybody)
            EXPECT_EQ(OutcomeOf(attack.token, trust, attack.tolerance), attack.outcome)
                << "token: " << attack.token.substr(0, 20000);
    }
    std::cout << attacks.size() << " attacks\n";
    testing::Test::RecordProperty("attacks", static_cast<int>(attacks.size()));
}

}  // namespace Saml::Attacks
