#include "saml/token/conditions_reader.h"

#include "saml/token/saml_identifiers.h"
#include "saml/token/subject_reader.h"

namespace Saml {
namespace {

constexpr char kUnknownRestriction[] = "Unknown or duplicate restriction node under Conditions";
std::string UnknownRestriction(const std::string& element) {
    return std::string(kUnknownRestriction) + ": " + element;
}
// A delegate has one name; what follows it fails the test for a name.
constexpr char kAfterDelegateName[] = "Expected element 'NameID' not found.";

constexpr char kNotBefore[] = "NotBefore";
constexpr char kNotOnOrAfter[] = "NotOnOrAfter";
constexpr char kDelegationInstant[] = "DelegationInstant";
constexpr char kCount[] = "Count";

bool IsDelegationRestriction(const AssertionElement& element) {
    return element.Is("Condition", SamlUri::AssertionNamespace) &&
           element.HasType("DelegationRestrictionType", SamlUri::DelegationNamespace);
}
bool IsAudienceRestriction(const AssertionElement& element) {
    return element.Is("AudienceRestriction", SamlUri::AssertionNamespace);
}
bool IsProxyRestriction(const AssertionElement& element) {
    return element.Is("ProxyRestriction", SamlUri::AssertionNamespace);
}
bool IsRenewRestriction(const AssertionElement& element) {
    return element.Is("Condition", SamlUri::AssertionNamespace) &&
           element.HasType("RenewRestrictionType", ProfileUri::ExtensionNamespace);
}

ParsedDelegate ReadDelegate(const AssertionElement& element) {
    element.CheckAttributes({kDelegationInstant});
    ParsedDelegate delegate;
    delegate.instant = element.Date(kDelegationInstant);
    AssertionCursor children = element.Children();
    delegate.nameId = ReadNameRecord(children.Take("NameID", SamlUri::AssertionNamespace));
    children.ExpectEnd(kAfterDelegateName);
    return delegate;
}

std::vector<ParsedDelegate> ReadDelegation(const AssertionElement& restriction) {
    restriction.CheckTypedAttributes();
    std::vector<ParsedDelegate> delegates;
    AssertionCursor children = restriction.Children();
    do {  // at least one
        delegates.push_back(ReadDelegate(children.Take("Delegate", SamlUri::DelegationNamespace)));
    } while (!children.AtEnd());
    return delegates;
}

std::set<std::string> ReadAudience(const AssertionElement& restriction) {
    std::set<std::string> audience;
    AssertionCursor children = restriction.Children();
    do {  // at least one
        audience.insert(children.Take("Audience", SamlUri::AssertionNamespace).Text());
    } while (!children.AtEnd());
    return audience;
}

// SAML leaves the Count optional; a token that does not say how often it may be passed on is
// refused here, and 0 says that it may not be.
std::optional<std::uint64_t> ReadProxyCount(const AssertionElement& restriction) {
    restriction.CheckAttributes({kCount});
    restriction.ExpectEmpty();
    return restriction.Count();
}

ParsedRenewal ReadRenewal(const AssertionElement& restriction) {
    restriction.CheckTypedAttributes({kCount, "Postdatable", "RenewExpired"});
    restriction.ExpectEmpty();
    return {restriction.Count()};
}

void ReadRestriction(AssertionCursor& children, ParsedConditions& conditions) {
    const std::optional<AssertionElement> element = children.TakeElement();
    if (!element) throw ParseException(kUnknownRestriction);

    if (!conditions.delegation && IsDelegationRestriction(*element))
        conditions.delegation = ReadDelegation(*element);
    else if (!conditions.audience && IsAudienceRestriction(*element))
        conditions.audience = ReadAudience(*element);
    else if (!conditions.proxyCount && IsProxyRestriction(*element))
        conditions.proxyCount = ReadProxyCount(*element);
    else if (!conditions.renewal && IsRenewRestriction(*element))
        conditions.renewal = ReadRenewal(*element);
    else
        throw ParseException(UnknownRestriction(element->LocalName()));
}

}  // namespace

ParsedConditions ReadConditions(const AssertionElement& element) {
    element.CheckAttributes({kNotBefore, kNotOnOrAfter});
    ParsedConditions conditions;
    conditions.notBefore = element.Date(kNotBefore);
    conditions.notOnOrAfter = element.Date(kNotOnOrAfter);
    for (AssertionCursor children = element.Children(); !children.AtEnd();)
        ReadRestriction(children, conditions);
    return conditions;
}

}  // namespace Saml
