#pragma once

#include <expat.h>

#include <memory>

namespace Saml::Xml {

struct FreeTokenizer {
    void operator()(XML_Parser tokenizer) const noexcept { XML_ParserFree(tokenizer); }
};

/// Owns expat's tokenizer.
using TokenizerHandle = std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeTokenizer>;

}  // namespace Saml::Xml
