#pragma once

#include "peers/peer.h"
#include "saml/security.h"

#include <string>

/// What this library is measured at.
namespace Bench::Ours {

/// The resolver that trusts the leaf, and the one that trusts the root.
Saml::Xml::Security::KeyInfoResolver* TrustSet();
Saml::Xml::Security::KeyInfoResolver* TrustChain();

bool Accepts(const std::string& xml, Saml::Xml::Security::KeyInfoResolver* resolver);
/// The same as one among peers.
Peer AsPeer();

boost::intrusive_ptr<Saml::Xml::Document> Parse(const std::string& xml);
std::string ExclusiveForm(Saml::Xml::Node* apex);
Signing SigningOf(const std::string& unsignedXml);

}  // namespace Bench::Ours
