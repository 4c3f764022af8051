#include "saml/xml/text_escaping.h"

namespace Saml::Xml {
namespace {

constexpr std::string_view kControlCharacters[] = {
    "",    "%01", "%02", "%03", "%04", "%05", "%06", "%07", "%08", "",    "",
    "%0b", "%0c", "",    "%0e", "%0f", "%10", "%11", "%12", "%13", "%14", "%15",
    "%16", "%17", "%18", "%19", "%1a", "%1b", "%1c", "%1d", "%1e", "%1f"};

constexpr EscapeTable SerializationEscapes() {
    EscapeTable table;
    char control = 0;
    for (const std::string_view replacement : kControlCharacters) {
        if (!replacement.empty()) table.Replace(control, replacement);
        ++control;
    }
    table.Replace('<', "&lt;");
    table.Replace('>', "&gt;");
    table.Replace('&', "&amp;");
    table.Replace('\'', "&apos;");
    table.Replace('"', "&quot;");
    return table;
}

}  // namespace

constexpr EscapeTable kSerializationEscapes = SerializationEscapes();

}  // namespace Saml::Xml
