#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlIO.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace Bench {

template <auto Free>
struct FreeWith {
    template <typename Object>
    void operator()(Object* object) const noexcept {
        Free(object);
    }
};
using Libxml2Document = std::unique_ptr<xmlDoc, FreeWith<xmlFreeDoc>>;

inline Libxml2Document Libxml2DocumentOf(const std::string& xml) {
    Libxml2Document document(
        xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, XML_PARSE_NONET));
    if (!document) throw std::runtime_error("libxml2 cannot parse this");
    return document;
}

}  // namespace Bench
