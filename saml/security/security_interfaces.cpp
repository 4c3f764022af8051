#include "saml/security.h"

// The interfaces' constructors and destructors stand here so that their type information is emitted
// once, in the library: that is what lets callers derive and cast across its border.
namespace Saml::Xml::Security {

Canonicalizer::Canonicalizer() = default;
Canonicalizer::~Canonicalizer() = default;

SignatureReference::SignatureReference() = default;
SignatureReference::~SignatureReference() = default;

KeyInfo::KeyInfo() = default;
KeyInfo::~KeyInfo() = default;

KeyInfoResolver::KeyInfoResolver() = default;
KeyInfoResolver::~KeyInfoResolver() = default;

Signature::Signature() = default;
Signature::~Signature() = default;

}  // namespace Saml::Xml::Security
