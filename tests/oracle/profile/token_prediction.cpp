#include "oracle/profile/token_prediction.h"

#include "oracle/profile/assertion_grammar.h"
#include "oracle/profile/grammar_reading.h"
#include "oracle/profile/plain_values.h"
#include "support/token_account.h"

#include <ostream>

namespace Oracle {
namespace {

constexpr long long kTolerance = 600;

[[noreturn]] void Refuse(const std::string& message) {
    throw Refusal{"Saml::ParseException", message};
}

struct NameRecord {
    std::string format;
    std::string value;
};

NameRecord NameIn(const Markup& element) {
    return {*element.Find("Format"), TextIn(element)};
}

/// Of a tree that the grammar accepts; null without such a child.
const Markup* Child(const Markup& element, const std::string& localName) {
    for (const Markup* const child : Visible(element))
        if (child->IsElement() && child->LocalName() == localName) return child;
    return nullptr;
}

const Markup* DelegationIn(const Markup& conditions) {
    for (const Markup* const child : Visible(conditions))
        if (Child(*child, "Delegate") != nullptr) return child;
    return nullptr;
}

const Markup* RenewalIn(const Markup& conditions) {
    for (const Markup* const child : Visible(conditions))
        if (child->LocalName() == "Condition" && Child(*child, "Delegate") == nullptr) return child;
    return nullptr;
}

void ExpectWindow(const Markup& conditions, long long now) {
    const std::string& notBefore = *conditions.Find("NotBefore");
    const std::string& notOnOrAfter = *conditions.Find("NotOnOrAfter");
    if (*InstantOf(notBefore) >= *InstantOf(notOnOrAfter))
        Refuse(
            "Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter.");
    if (now < *InstantOf(notBefore) - kTolerance)
        Refuse("Token start date is in the future: " + notBefore);
    if (now >= *InstantOf(notOnOrAfter) + kTolerance)
        Refuse("The token has expired at: " + notOnOrAfter);
}

void ExpectDelegation(const Markup* delegateId, const Markup* restriction) {
    if (delegateId != nullptr && restriction == nullptr)
        Refuse(
            "Token SubjectConfirmation contains delegate id, but no delegation restriction is "
            "present");
    if (delegateId == nullptr && restriction != nullptr)
        Refuse(
            "Token has delegation restriction, but no delegate id is present in the "
            "SubjectConfirmation");
    if (delegateId == nullptr) return;
    const NameRecord id = NameIn(*delegateId);
    const NameRecord last = NameIn(*Child(*Visible(*restriction).back(), "NameID"));
    if (id.format != last.format || id.value != last.value)
        Refuse("The SubjectConfirmation delegate id does not match the id of the last delegate");
}

void ExpectValidity(const Markup& assertion, long long now) {
    if (*assertion.Find("Version") != "2.0") Refuse("Invalid token version");
    if ((*assertion.Find("ID"))[0] != '_') Refuse("Invalid token ID");
    const Markup& conditions = *Child(assertion, "Conditions");
    ExpectWindow(conditions, now);
    const Markup& confirmation = *Child(*Child(assertion, "Subject"), "SubjectConfirmation");
    const std::string& method = *confirmation.Find("Method");
    const Markup& data = *Child(confirmation, "SubjectConfirmationData");
    if (method.find("bearer") != std::string::npos &&
        *data.Find("NotOnOrAfter") < *conditions.Find("NotOnOrAfter"))
        Refuse("Invalid token subject validity");
    ExpectDelegation(Child(confirmation, "NameID"), DelegationIn(conditions));
}

std::string Principal(const Markup& nameId) {
    const NameRecord name = NameIn(nameId);
    if (name.format != Saml::ProfileUri::UpnNameFormat)
        Refuse("Invalid or unsupported NameId format '" + name.format + "'");
    const std::size_t at = name.value.rfind('@');
    if (at == std::string::npos || at == 0 || at + 1 == name.value.size())
        Refuse("Failed to parse the UPN NameID: `" + name.value +
               "'; name or domain part is missing.");
    return PrincipalAccount(name.value.substr(0, at), name.value.substr(at + 1));
}

std::string Group(const std::string& value) {
    const std::size_t backslash = value.find('\\');
    if (backslash == std::string::npos || backslash == 0 || backslash + 1 == value.size())
        Refuse("Failed to parse Group Identity value: `" + value + "'; domain or group missing");
    return PrincipalAccount(value.substr(backslash + 1), value.substr(0, backslash));
}

bool IsTrue(const std::string& value) {
    std::string upper;
    for (const char c : value)
        upper += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return upper == "TRUE";
}

bool SolutionFlag(const std::vector<std::string>& values) {
    if (values.empty())
        throw Refusal{"Saml::ParseException*", "No value found for attribute isSolution."};
    if (values.size() > 1)
        throw Refusal{"Saml::ParseException*",
                      "More than one value found for attribute isSolution."};
    return IsTrue(values[0]);
}

Saml::SamlAttribute AttributeIn(const Markup& element) {
    Saml::SamlAttribute attribute;
    attribute.Name = *element.Find("Name");
    attribute.NameFormat = *element.Find("NameFormat");
    if (const std::string* const friendly = element.Find("FriendlyName"))
        attribute.FriendlyName = *friendly;
    for (const Markup* const value : Visible(element))
        attribute.Values.push_back(TextIn(*value));
    return attribute;
}

void ReadAttributes(const Markup& assertion, Account& account) {
    const Markup* const statement = Child(assertion, "AttributeStatement");
    if (statement == nullptr) return;
    for (const Markup* const element : Visible(*statement)) {
        const Saml::SamlAttribute attribute = AttributeIn(*element);
        const std::string first = attribute.Values.empty() ? "" : attribute.Values[0];
        if (attribute.Name == Saml::ProfileUri::GroupIdentity)
            for (const std::string& value : attribute.Values)
                account.groups.push_back(Group(value));
        else if (attribute.Name == Saml::ProfileUri::IsSolution)
            account.solution = SolutionFlag(attribute.Values);
        else if (attribute.Name == Saml::ProfileUri::GivenName)
            account.firstName = first;
        else if (attribute.Name == Saml::ProfileUri::Surname)
            account.lastName = first;
    }
}

void ReadAdvice(const Markup& assertion, Account& account) {
    const Markup* const advice = Child(assertion, "Advice");
    if (advice == nullptr) return;
    for (const Markup* const entry : Visible(*advice)) {
        account.advice.push_back(*entry->Find("AdviceSource"));
        for (const Markup* const attribute : Visible(*entry))
            account.advice.push_back(AttributeAccount(AttributeIn(*attribute)));
    }
}

bool IsPositive(const Markup* element) {
    if (element == nullptr || element->Find("Count") == nullptr) return false;
    return *CountOf(*element->Find("Count")) > 0;
}

void ReadRestrictions(const Markup& conditions, Account& account) {
    account.renewable = IsPositive(RenewalIn(conditions));
    account.delegable = IsPositive(Child(conditions, "ProxyRestriction"));
    if (const Markup* const audience = Child(conditions, "AudienceRestriction"))
        for (const Markup* const one : Visible(*audience))
            account.audience.insert(TextIn(*one));
    if (const Markup* const delegation = DelegationIn(conditions))
        for (const Markup* const delegate : Visible(*delegation))
            account.delegates.push_back(Principal(*Child(*delegate, "NameID")) + " " +
                                        *delegate->Find("DelegationInstant"));
}

void ReadSubject(const Markup& subject, Account& account) {
    account.subject = Principal(*Child(subject, "NameID"));
    const Markup& confirmation = *Child(subject, "SubjectConfirmation");
    account.holderOfKey = confirmation.Find("Method")->find("holder") != std::string::npos;
    const Markup& data = *Child(confirmation, "SubjectConfirmationData");
    if (const Markup* const keyInfo = Child(data, "KeyInfo"))
        account.certificate =
            *FromBase64(TextIn(*Child(*Child(*keyInfo, "X509Data"), "X509Certificate")));
}

Account AccountOf(const Markup& assertion) {
    Account account;
    const Markup& conditions = *Child(assertion, "Conditions");
    account.id = *assertion.Find("ID");
    account.start = *conditions.Find("NotBefore");
    account.end = *conditions.Find("NotOnOrAfter");
    ReadSubject(*Child(assertion, "Subject"), account);
    ReadAdvice(assertion, account);
    ReadAttributes(assertion, account);
    ReadRestrictions(conditions, account);
    return account;
}

}  // namespace

bool operator==(const Outcome& left, const Outcome& right) {
    return left.exception == right.exception && left.text == right.text;
}

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    if (outcome.exception.empty()) return out << "a token that says\n" << outcome.text;
    return out << outcome.exception << ": " << outcome.text;
}

Outcome Predict(const Markup& document, const Trust& trust, long long now) {
    try {
        const Markup parsed = AsParsed(document);
        const Markup& assertion = parsed.children.front();
        ExpectGrammar(assertion);
        ExpectValidity(assertion, now);
        ExpectSignature(assertion, trust);
        return {{}, Told(AccountOf(assertion))};
    } catch (const NotWellFormed& fault) {
        return {"Saml::Xml::XMLParseException", fault.message};
    } catch (const Refusal& refusal) {
        return {refusal.exception, refusal.message};
    }
}

}  // namespace Oracle
