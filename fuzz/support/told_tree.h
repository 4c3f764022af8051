#pragma once

#include "saml/xml.h"

#include <string>

namespace Fuzz {

enum class Keep {
    All,       ///< Elements, attributes, texts and CDATA sections.
    Elements,  ///< Elements and attributes.
};

/// The tree at and below `apex` as one text: equal trees give equal texts. Comments say nothing;
/// texts around one are joined. White space is told as a parser leaves it that reads it unescaped
/// (XML 1.0, sections 2.11 and 3.3.3), since the serializer does not escape it.
std::string Told(Saml::Xml::ElementNode& apex, Keep keep);

}  // namespace Fuzz
