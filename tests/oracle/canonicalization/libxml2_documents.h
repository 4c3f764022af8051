#pragma once

#include "saml/security/openssl_handles.h"

#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <memory>
#include <stdexcept>
#include <string>

/// What every use of libxml2 needs: an owner of documents, errors as exceptions.
namespace LibXml2 {

using DocumentHandle = std::unique_ptr<xmlDoc, Saml::Xml::Security::FreeWith<xmlFreeDoc>>;

inline void SayNothing(void*, const char*, ...) {}

/// Forgets the last error, and lets what comes go into exceptions instead of the standard error
/// stream.
inline void KeepQuiet() {
    xmlSetGenericErrorFunc(nullptr, SayNothing);
    xmlResetLastError();
}

/// What libxml2 said last.
inline std::string LastError() {
    const auto* const error = xmlGetLastError();
    const bool isKnown = error != nullptr && error->message != nullptr;
    return isKnown ? error->message : "libxml2 gives no reason";
}

inline std::runtime_error Failure(const std::string& what) {
    return std::runtime_error(what + ": " + LastError());
}

}  // namespace LibXml2
