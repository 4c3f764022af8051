#include "saml/token/token_attributes.h"

#include "saml/token/principal_rules.h"

#include <utility>

namespace Saml {
namespace {

constexpr char kNoSolutionValue[] = "No value found for attribute isSolution.";
constexpr char kSeveralSolutionValues[] = "More than one value found for attribute isSolution.";

constexpr char kTrue[] = "true";

std::string FirstValue(const SamlAttribute& attribute) {
    return attribute.Values.empty() ? std::string() : attribute.Values.front();
}

void AppendGroups(SamlAttribute& attribute, std::vector<PrincipalId>& groups) {
    if (groups.empty()) groups.reserve(attribute.Values.size());
    for (std::string& value : attribute.Values)
        groups.push_back(PrincipalFromGroup(std::move(value)));
}

// The two refusals leave as pointers, unlike all others: callers have long told a broken
// solution-user attribute from a broken token by a handler of its own for `ParseException*`, and
// rely on their handlers for references not seeing it. Who catches the pointer deletes it.
bool SolutionFlag(const SamlAttribute& attribute) {
    if (attribute.Values.empty()) throw new ParseException(kNoSolutionValue);
    if (attribute.Values.size() > 1) throw new ParseException(kSeveralSolutionValues);
    return EqualsIgnoringCase(attribute.Values.front(), kTrue);
}

void Apply(SamlAttribute& attribute, TokenAttributes& result) {
    if (attribute.Name == ProfileUri::GroupIdentity)
        AppendGroups(attribute, result.groups);
    else if (attribute.Name == ProfileUri::IsSolution)
        result.isSolution = SolutionFlag(attribute);
    else if (attribute.Name == ProfileUri::GivenName)
        result.personName.FirstName = FirstValue(attribute);
    else if (attribute.Name == ProfileUri::Surname)
        result.personName.LastName = FirstValue(attribute);
}

}  // namespace

TokenAttributes ApplyAttributes(std::vector<SamlAttribute> attributes) {
    TokenAttributes result;
    for (SamlAttribute& attribute : attributes)
        Apply(attribute, result);
    return result;
}

}  // namespace Saml
