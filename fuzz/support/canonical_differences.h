#pragma once

#include "saml/xml.h"

#include <string>
#include <string_view>

namespace Fuzz {

/// True when the canonical form of `document`, as this library makes it, may be another than that
/// of the recommendation, for one of the reasons that docs/choices.md and docs/interop.md give.
bool IsCanonicalizedAnotherWay(Saml::Xml::Document& document);

/// True when some element has an attribute of the XML namespace, which inclusive canonicalization
/// would let an apex inherit.
bool HasXmlAttributes(Saml::Xml::Document& document);

/// True when two accounts of `input`, ours and libxml2's, say the same. libxml2 takes a carriage
/// return in an entity's replacement text for a line end (XML 1.0, section 2.11, has those
/// normalised on input only): of a text that may declare entities, line ends do not count.
bool SayTheSame(const std::string& ours, const std::string& theirs, std::string_view input);

}  // namespace Fuzz
