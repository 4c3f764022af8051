#include "support/token_account.h"

#include <sstream>

namespace Oracle {
namespace {

template <class Texts>
std::string Joined(const Texts& texts) {
    std::string joined;
    for (const std::string& text : texts)
        joined += "[" + text + "]";
    return joined;
}

std::string Hex(const std::vector<unsigned char>& bytes) {
    std::ostringstream out;
    out << std::hex;
    for (const unsigned char byte : bytes)
        out << (byte < 16 ? "0" : "") << unsigned{byte};
    return out.str();
}

}  // namespace

std::string PrincipalAccount(const std::string& name, const std::string& domain) {
    return "name '" + name + "' domain '" + domain + "'";
}

std::string AttributeAccount(const Saml::SamlAttribute& attribute) {
    return Joined(std::vector<std::string>{attribute.Name, attribute.NameFormat,
                                           attribute.FriendlyName}) +
           Joined(attribute.Values);
}

std::string Told(const Account& account) {
    std::ostringstream out;
    out << "id " << account.id << "\nfrom " << account.start << " to " << account.end
        << "\nsubject " << account.subject << (account.renewable ? "\nrenewable" : "")
        << (account.delegable ? "\ndelegable" : "") << (account.solution ? "\nsolution" : "")
        << (account.holderOfKey ? "\nholder of key" : "") << "\nfirst name '" << account.firstName
        << "' last name '" << account.lastName << "'\ngroups " << Joined(account.groups)
        << "\ndelegates " << Joined(account.delegates) << "\naudience " << Joined(account.audience)
        << "\nadvice " << Joined(account.advice) << "\ncertificate " << Hex(account.certificate);
    return out.str();
}

Account AccountOf(const Saml::SamlToken& token) {
    Account account;
    account.id = token.GetId();
    account.start = Saml::DateTime(token.GetStartTime()).value();
    account.end = Saml::DateTime(token.GetExpirationTime()).value();
    account.subject = PrincipalAccount(token.GetSubject().Name, token.GetSubject().Domain);
    account.renewable = token.IsRenewable();
    account.delegable = token.IsDelegable();
    account.solution = token.IsSolution();
    account.holderOfKey = token.GetConfirmationType() == Saml::ConfirmationType::HolderOfKey;
    Saml::PersonName person;
    token.GetPersonName(person);
    account.firstName = person.FirstName;
    account.lastName = person.LastName;
    for (const Saml::PrincipalId& group : token.GetGroups())
        account.groups.push_back(PrincipalAccount(group.Name, group.Domain));
    for (Saml::DelegateInfo& link : token.GetDelegationChain())
        account.delegates.push_back(PrincipalAccount(link.Delegate.Name, link.Delegate.Domain) +
                                    " " + link.DelegationInstant.value());
    token.GetAudience(account.audience);
    for (const Saml::Advice& advice : token.GetAdvice()) {
        account.advice.push_back(advice.AdviceSource);
        for (const Saml::SamlAttribute& attribute : advice.Attributes)
            account.advice.push_back(AttributeAccount(attribute));
    }
    if (token.GetHolderOfKeyCertificate()) account.certificate = *token.GetHolderOfKeyCertificate();
    return account;
}

}  // namespace Oracle
