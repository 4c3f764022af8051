#pragma once

#include "saml/security.h"
#include "saml/xml.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Fuzz {

using DocumentPtr = boost::intrusive_ptr<Saml::Xml::Document>;

/// The document of `text`, parsed without limits; null when the parser refuses it.
DocumentPtr Parsed(std::string_view text);

/// True when `text` holds `markup`, which is ASCII, in whichever encoding the parser knows.
bool Mentions(std::string_view text, std::string_view markup);

constexpr std::size_t kAllElements = static_cast<std::size_t>(-1);

/// In document order; at most `atMost` of them.
std::vector<Saml::Xml::ElementNode*> ElementsOf(Saml::Xml::Document& document,
                                                std::size_t atMost = kAllElements);

std::vector<Saml::Xml::Node*> ChildrenOf(Saml::Xml::Node& parent);

/// False when a name would come out of the library's writers as another one, or as none: names are
/// split at their first colon, and nothing remembers a colon in front; and what is written is
/// UTF-8.
bool NamesSurvive(std::string_view text);

/// The canonical form; nothing when canonicalization refuses to repeat declarations any further.
std::string CanonicalForm(const char* algorithm, Saml::Xml::ElementNode& apex);

}  // namespace Fuzz
