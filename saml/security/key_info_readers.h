#pragma once

#include "saml/security.h"
#include "saml/xml/element_node_impl.h"
#include "saml/xml/namespace_lookup.h"

#include <array>

namespace Saml::Xml::Security {

/// Makes the object that a `KeyInfo` element stands for; null when it is of another kind.
using KeyInfoReader = boost::intrusive_ptr<KeyInfo> (*)(ElementNodeImpl&, const NamespaceContext&);

/// X.509 data, then free content.
extern const std::array<KeyInfoReader, 2> kKeyInfoReaders;

/// What the first of these readers makes of a `KeyInfo` element. The others are never asked:
/// callers rely on every `KeyInfo` that is read being certificates or a refusal, never content that
/// a resolver would have to be trusted with.
///
/// \throws SignatureSyntaxException  It makes nothing of it, or refuses it.
boost::intrusive_ptr<KeyInfo> ReadKeyInfo(
    ElementNodeImpl& keyInfo, const NamespaceContext& namespaces,
    const std::array<KeyInfoReader, 2>& readers = kKeyInfoReaders);

}  // namespace Saml::Xml::Security
