#pragma once

#include "saml/xml.h"

#include <string>

namespace Saml::Xml {

/// Parses `text`, read in place, with the standard limits configured and not enforced: tokens above
/// them have always been accepted, and callers who want them parse for themselves.
/// \throws XMLParseException         The text is refused.
/// \throws InvalidArgumentException  The text is longer than 2^31 - 1 bytes.
boost::intrusive_ptr<Document> ParseDocument(const std::string& text);

}  // namespace Saml::Xml
