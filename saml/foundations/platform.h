#pragma once

#include <string>
#include <typeinfo>

namespace Saml {

/// The platform's human-readable name of `type`, such as "int"; its raw name where the platform has
/// no better one.
std::string ReadableTypeName(const std::type_info& type);

}  // namespace Saml
