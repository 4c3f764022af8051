#include "saml/token/principal_rules.h"

#include <algorithm>
#include <locale>
#include <utility>

namespace Saml {
namespace {

std::string UnsupportedFormat(const std::string& format) {
    return "Invalid or unsupported NameId format '" + format + "'";
}
std::string MissingUpnPart(const std::string& value) {
    return "Failed to parse the UPN NameID: `" + value + "'; name or domain part is missing.";
}
std::string MissingGroupPart(const std::string& value) {
    return "Failed to parse Group Identity value: `" + value + "'; domain or group missing";
}

bool HasTextOnBothSides(const std::string& value, std::size_t separator) {
    return separator != std::string::npos && separator != 0 && separator + 1 != value.size();
}

}  // namespace

PrincipalId PrincipalFromUpn(const std::string& format, const std::string& value) {
    if (format != ProfileUri::UpnNameFormat) throw ParseException(UnsupportedFormat(format));

    const std::size_t at = value.rfind('@');  // the last one: a name may be a mail address itself
    if (!HasTextOnBothSides(value, at)) throw ParseException(MissingUpnPart(value));
    return {value.substr(0, at), value.substr(at + 1)};
}

PrincipalId PrincipalFromGroup(std::string value) {
    const std::size_t backslash = value.find('\\');  // the first one: a domain never holds one
    if (!HasTextOnBothSides(value, backslash)) throw ParseException(MissingGroupPart(value));
    PrincipalId group{{}, value.substr(0, backslash)};
    group.Name = std::move(value.erase(0, backslash + 1));
    return group;
}

bool EqualsIgnoringCase(const std::string& left, const std::string& right) {
    const std::locale locale;  // the global one: what counts as a letter is the process's choice
    const auto& characters = std::use_facet<std::ctype<char>>(locale);
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&characters](char one, char other) {
                          return characters.toupper(one) == characters.toupper(other);
                      });
}

bool PrincipalId::operator==(const PrincipalId& other) const {
    return this == &other ||
           (EqualsIgnoringCase(Name, other.Name) && EqualsIgnoringCase(Domain, other.Domain));
}

}  // namespace Saml
