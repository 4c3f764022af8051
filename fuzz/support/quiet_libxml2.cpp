#include "support/quiet_libxml2.h"

#include <libxml/parser.h>

#include <stdexcept>

namespace Fuzz {
namespace {

xmlParserInput* OpenNothing(const char*, const char*, xmlParserCtxt*) {
    return nullptr;
}

}  // namespace

void ForbidExternalEntities() {
    xmlSetExternalEntityLoader(OpenNothing);
}

std::unique_ptr<LibXml2::ParsedText> ReadByLibXml2(const std::string& text) {
    ForbidExternalEntities();
    try {
        auto parsed = std::make_unique<LibXml2::ParsedText>(text);
        return parsed->IsNamespaceWellFormed() ? std::move(parsed) : nullptr;
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

}  // namespace Fuzz
