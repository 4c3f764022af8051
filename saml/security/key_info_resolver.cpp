#include "saml/security.h"

namespace Saml::Xml::Security {

KeyInfoResolver::KeyInfoResolver() = default;
KeyInfoResolver::~KeyInfoResolver() = default;

}  // namespace Saml::Xml::Security
