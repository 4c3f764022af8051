#pragma once

#include <libxml/xmlerror.h>

#include <stdexcept>
#include <string>

namespace LibXml2 {

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
