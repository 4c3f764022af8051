#include "saml/token.h"

// The texts come from CMake cache variables of the same names, see CMakeLists.txt.
namespace Saml::ProfileUri {

const char* const UpnNameFormat = SAMLTOKEN_UPN_NAME_FORMAT;
const char* const GroupIdentity = SAMLTOKEN_GROUP_IDENTITY;
const char* const IsSolution = SAMLTOKEN_IS_SOLUTION;
const char* const GivenName = SAMLTOKEN_GIVEN_NAME;
const char* const Surname = SAMLTOKEN_SURNAME;
const char* const ExtensionNamespace = SAMLTOKEN_EXTENSION_NAMESPACE;

}  // namespace Saml::ProfileUri
