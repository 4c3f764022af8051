#include "saml/foundations/demangled_name.h"
#include "saml/foundations/platform.h"

namespace Saml {

std::string ReadableTypeName(const std::type_info& type) {
    return DemangledName(type);
}

}  // namespace Saml
