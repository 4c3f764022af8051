#include "saml/token/token_attributes.h"

#include "saml/token/principal_rules.h"

#include <algorithm>
#include <cstddef>

namespace Saml {
namespace {

constexpr char kNoSolutionValue[] = "No value found for attribute isSolution.";
constexpr char kSeveralSolutionValues[] = "More than one value found for attribute isSolution.";

constexpr char kTrue[] = "true";

constexpr std::size_t kFirstRoom = 1024;

std::string FirstValue(ParsedAttribute& attribute) {
    return attribute.values.empty() ? std::string() : attribute.values.front().Take();
}

// A tree that nobody else holds gives memory back as values are taken from it, and the room for
// many groups grows with what is given back.
std::size_t RoomFor(const std::vector<AttributeValue>& values) {
    if (values.empty() || values.front().IsShared()) return values.size();
    return std::min(values.size(), kFirstRoom);
}

void AppendGroups(ParsedAttribute& attribute, std::vector<PrincipalId>& groups) {
    if (groups.empty()) groups.reserve(RoomFor(attribute.values));
    for (AttributeValue& value : attribute.values)
        groups.push_back(PrincipalFromGroup(value.Take()));
}

// The two refusals leave as pointers, unlike all others: callers have long told a broken
// solution-user attribute from a broken token by a handler of its own for `ParseException*`, and
// rely on their handlers for references not seeing it. Who catches the pointer deletes it.
bool SolutionFlag(ParsedAttribute& attribute) {
    if (attribute.values.empty()) throw new ParseException(kNoSolutionValue);
    if (attribute.values.size() > 1) throw new ParseException(kSeveralSolutionValues);
    return EqualsIgnoringCase(attribute.values.front().Take(), kTrue);
}

void Apply(ParsedAttribute& attribute, TokenAttributes& result) {
    if (attribute.name == ProfileUri::GroupIdentity)
        AppendGroups(attribute, result.groups);
    else if (attribute.name == ProfileUri::IsSolution)
        result.isSolution = SolutionFlag(attribute);
    else if (attribute.name == ProfileUri::GivenName)
        result.personName.FirstName = FirstValue(attribute);
    else if (attribute.name == ProfileUri::Surname)
        result.personName.LastName = FirstValue(attribute);
}

}  // namespace

TokenAttributes ApplyAttributes(std::vector<ParsedAttribute> attributes) {
    TokenAttributes result;
    for (ParsedAttribute& attribute : attributes) {
        Apply(attribute, result);
        attribute.values.clear();  // values that nobody wants keep memory of the tree, too
    }
    result.groups.shrink_to_fit();
    return result;
}

}  // namespace Saml
