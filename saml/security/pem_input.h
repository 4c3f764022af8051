#pragma once

#include "saml/security/openssl_handles.h"

#include <string_view>

namespace Saml::Xml::Security {

/// A buffer from which OpenSSL reads `pem`, all of it; the text is borrowed. Null when the text is
/// longer than OpenSSL can count.
/// \throws std::bad_alloc
BufferHandle OpenPem(std::string_view pem);

/// The pass-phrase callback of every PEM reader: it refuses. Without it OpenSSL would ask at the
/// terminal of a program that only wanted to read a key.
int RefusePassPhrase(char* buffer, int size, int forWriting, void* userData) noexcept;

}  // namespace Saml::Xml::Security
