#pragma once

#include "saml/xml.h"

#include <string>

namespace Fuzz {

/// True when the canonical form of `document`, as this library makes it, may be another than that
/// of the recommendation, for one of the reasons that docs/choices.md and docs/interop.md give.
bool IsCanonicalizedAnotherWay(Saml::Xml::Document& document);

/// True when some element has an attribute of the XML namespace, which inclusive canonicalization
/// would let an apex inherit.
bool HasXmlAttributes(Saml::Xml::Document& document);

/// The one difference that a replacement brings out: ">" is escaped in attribute values, too.
std::string WithGreaterThanSignsEscaped(const std::string& form);

}  // namespace Fuzz
