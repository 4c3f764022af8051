#include "peers/libxml2_handles.h"
#include "peers/peer.h"

#include <libxml/c14n.h>

namespace Bench {

void Libxml2Parse(const std::string& xml) {
    Libxml2DocumentOf(xml);
}

std::function<std::string()> Libxml2Canonicalization(const std::string& xml) {
    const std::shared_ptr<xmlDoc> document = Libxml2DocumentOf(xml);
    return [document] {
        xmlChar* text = nullptr;
        const int size = xmlC14NDocDumpMemory(document.get(), nullptr, XML_C14N_EXCLUSIVE_1_0,
                                              nullptr, 0, &text);
        if (size < 0) throw std::runtime_error("libxml2 cannot canonicalize this");
        const std::unique_ptr<xmlChar, void (*)(void*)> owned(text, xmlFree);
        return std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
    };
}

}  // namespace Bench
