#pragma once

#include "peers/libxml2_handles.h"

#include <xmlsec/crypto.h>
#include <xmlsec/errors.h>
#include <xmlsec/xmldsig.h>
#include <xmlsec/xmlsec.h>
#include <xmlsec/xmltree.h>

namespace Bench {

using XmlsecKey = std::unique_ptr<xmlSecKey, FreeWith<xmlSecKeyDestroy>>;
using XmlsecKeys = std::unique_ptr<xmlSecKeysMngr, FreeWith<xmlSecKeysMngrDestroy>>;
using XmlsecContext = std::unique_ptr<xmlSecDSigCtx, FreeWith<xmlSecDSigCtxDestroy>>;

inline void RequireXmlsec(bool held, const char* what) {
    if (!held) throw std::runtime_error(std::string("xmlsec1 failed: ") + what);
}

/// Once in a process, and quiet about tokens that do not verify.
inline void InitializeXmlsec() {
    static const bool done = [] {
        xmlInitParser();
        RequireXmlsec(
            xmlSecInit() == 0 && xmlSecCryptoAppInit(nullptr) == 0 && xmlSecCryptoInit() == 0,
            "initialization");
        xmlSecErrorsDefaultCallbackEnableOutput(0);
        return true;
    }();
    static_cast<void>(done);
}

/// Makes `ID` of the root element what references refer to.
inline void RegisterRootId(xmlDoc* document) {
    const xmlChar* names[] = {BAD_CAST "ID", nullptr};
    xmlSecAddIDs(document, xmlDocGetRootElement(document), names);
}

}  // namespace Bench
