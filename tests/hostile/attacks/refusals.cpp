#include "hostile/attacks/refusals.h"

#include "hostile/attacks/attack.h"

namespace Saml::Attacks {

std::string NotParsed(const std::string& reason) {
    return Refused<Xml::XMLParseException>(reason);
}

std::string NotWellFormed() {
    return NotParsed("not well-formed (invalid token)");
}

std::string NotFound(const std::string& element) {
    return Refused<ParseException>("Expected element '" + element + "' not found.");
}

std::string NotOnlyText(const std::string& element) {
    return Refused<ParseException>(
        "Element '" + element +
        "' must only have textual content (but has extra children or is empty).");
}

std::string NotEmpty(const std::string& element) {
    return Refused<ParseException>("Element '" + element + "' must be empty");
}

std::string UnexpectedAttributes(const std::string& element) {
    return Refused<ParseException>("Unexpected attributes on element '" + element + "'");
}

std::string RefusedSignatureSyntax(const std::string& reason) {
    return Refused<ParseException>("Signature syntax error: " + reason);
}

std::string RefusedVerification(const std::string& reason) {
    return Refused<InvalidSignatureException>("Signature verification error. " + reason);
}

std::string WithDtd(const std::string& declarations, const std::string& token) {
    return "<!DOCTYPE saml:Assertion [" + declarations + "]>" + token;
}

}  // namespace Saml::Attacks
