#pragma once

#include "oracle/canonicalization/libxml2_canonicalizer.h"

#include <memory>
#include <string>

namespace Fuzz {

/// Keeps libxml2 from opening what a text names: to be called once, before anything is parsed.
void ForbidExternalEntities();

/// `text` as libxml2 reads it; null when it is the stricter one: it knows newer rules for names,
/// fewer ways of leaving entities undeclared, and Namespaces in XML.
std::unique_ptr<LibXml2::ParsedText> ReadByLibXml2(const std::string& text);

}  // namespace Fuzz
