#pragma once

#include "saml/xml.h"
#include "support/token_account.h"

#include <string>

/// What was signed, as another reader reads it.
namespace Saml::Attacks {

/// The bytes that the digest of an enveloped signature is made of: the exclusive canonical form of
/// the assertion, without its signature. The signature is taken out of the tree.
std::string DigestInput(Xml::ElementNode& assertion);

/// The Base64 text of the SHA-256 digest, by OpenSSL.
std::string Sha256(const std::string& bytes);

/// What an assertion in canonical form says, read by libxml2 and a few lines of its own.
/// \throws std::runtime_error  It is not well-formed, or something required is missing.
Oracle::Account DigestedAccount(const std::string& canonical);

}  // namespace Saml::Attacks
