#pragma once

#include "saml/token.h"
#include "saml/token/parsed_assertion.h"

#include <vector>

namespace Saml {

/// What the recognised attributes of a token say about its subject.
struct TokenAttributes {
    std::vector<PrincipalId> groups;
    PersonName personName;
    bool isSolution = false;
};

/// Applies the attributes one after the other: groups accumulate, of the others the last one holds,
/// unknown ones are dropped.
/// \throws ParseException   A group is malformed.
/// \throws ParseException*  A solution-user attribute does not have exactly one value.
TokenAttributes ApplyAttributes(std::vector<ParsedAttribute> attributes);

}  // namespace Saml
