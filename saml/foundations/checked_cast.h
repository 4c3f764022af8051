#pragma once

#include "saml/foundations.h"

#include <typeinfo>

namespace Saml {

/// Converts `object`, which is not null, to the more specific class `Target`.
/// \throws TypeMismatchException naming `Target` and the object's own class, when it is no
/// `Target`.
template <class Target, class Source>
Target* CheckedCast(Source* object) {
    Target* const converted = dynamic_cast<Target*>(object);
    if (converted == nullptr) throw TypeMismatchException(typeid(Target), typeid(*object));
    return converted;
}

}  // namespace Saml
