#pragma once

#include "hostile/attacks/attack.h"

#include <vector>

namespace Saml::Attacks {

/// Tokens that name something outside of themselves, in every way in which XML, XInclude, XML
/// Schema and XML signatures can make a careless reader fetch it.
std::vector<Attack> OutsideReferences();

}  // namespace Saml::Attacks
