#include "saml/token/assertion_validation.h"

namespace Saml {
namespace {

constexpr char kInvalidVersion[] = "Invalid token version";
constexpr char kInvalidId[] = "Invalid token ID";
constexpr char kUnsatisfiable[] =
    "Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter.";
std::string StartsInFuture(DateTime notBefore) {
    return "Token start date is in the future: " + notBefore.value();
}
std::string Expired(DateTime notOnOrAfter) {
    return "The token has expired at: " + notOnOrAfter.value();
}
constexpr char kInvalidSubjectValidity[] = "Invalid token subject validity";
constexpr char kIdWithoutRestriction[] =
    "Token SubjectConfirmation contains delegate id, but no delegation restriction is present";
constexpr char kOtherDelegate[] =
    "The SubjectConfirmation delegate id does not match the id of the last delegate";
constexpr char kRestrictionWithoutId[] =
    "Token has delegation restriction, but no delegate id is present in the SubjectConfirmation";

void CheckVersion(const ParsedAssertion& assertion) {
    if (assertion.version != "2.0") throw ParseException(kInvalidVersion);
}

// Stricter than xs:ID: issuers of this profile begin every ID with an underscore.
void CheckId(const ParsedAssertion& assertion) {
    if (assertion.id.empty() || assertion.id.front() != '_') throw ParseException(kInvalidId);
}

// The seconds of a DateTime fit in 32 bits, so no difference of two overflows; a sum with the
// tolerance could, so there is none.
void CheckWindow(const ParsedConditions& conditions, const DateTime& now, std::int64_t tolerance) {
    const std::int64_t start = conditions.notBefore.timeT();
    const std::int64_t end = conditions.notOnOrAfter.timeT();
    if (start >= end) throw ParseException(kUnsatisfiable);
    const std::int64_t secondsUntilStart = start - now.timeT();
    if (secondsUntilStart > tolerance) throw ParseException(StartsInFuture(conditions.notBefore));
    const std::int64_t secondsSinceEnd = now.timeT() - end;
    if (secondsSinceEnd >= tolerance) throw ParseException(Expired(conditions.notOnOrAfter));
}

// A comparison of texts, not of instants: issuers write both dates alike, and callers depend on the
// refusal of those that do not.
void CheckSubjectValidity(const ParsedConfirmation& confirmation,
                          const ParsedConditions& conditions) {
    if (confirmation.method != ConfirmationType::Bearer) return;
    if (confirmation.notOnOrAfter < conditions.notOnOrAfter)
        throw ParseException(kInvalidSubjectValidity);
}

// Exact, unlike the equality of principals.
bool AreSameName(const NameRecord& left, const NameRecord& right) {
    return left.format == right.format && left.value == right.value;
}

void CheckDelegation(const ParsedConfirmation& confirmation, const ParsedConditions& conditions) {
    const auto& delegateId = confirmation.delegateId;
    const auto& delegation = conditions.delegation;
    if (delegateId && !delegation) throw ParseException(kIdWithoutRestriction);
    if (delegateId && !AreSameName(*delegateId, delegation->back().nameId))
        throw ParseException(kOtherDelegate);
    if (!delegateId && delegation) throw ParseException(kRestrictionWithoutId);
}

}  // namespace

void ValidateAssertion(const ParsedAssertion& assertion, const DateTime& now,
                       std::int64_t tolerance) {
    CheckVersion(assertion);
    CheckId(assertion);
    CheckWindow(assertion.conditions, now, tolerance);
    CheckSubjectValidity(assertion.subject.confirmation, assertion.conditions);
    CheckDelegation(assertion.subject.confirmation, assertion.conditions);
}

}  // namespace Saml
