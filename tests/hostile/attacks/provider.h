#pragma once

#include "hostile/attacks/attack.h"

#include <string>
#include <vector>

/// The identity provider whom everybody trusts, and one of its customers, whom nobody should be
/// able to pass for somebody else.
namespace Saml::Attacks::Provider {

/// What the provider says about the customer: a rich token, so that there is much to steal.
/// mallory@corp has one group, guests, and nothing else of value.
Forge::TokenSpec CustomerSpec();

/// `xml`, or the token of `spec`, with the provider's signature, which sends the signer's
/// certificate and the one above it.
std::string Signed(const std::string& xml, const Forge::SignatureSpec& choices = {});
std::string Signed(const Forge::TokenSpec& spec, const Forge::SignatureSpec& choices = {});

/// Signs an assertion where it stands, with references to each of these URIs.
void SignInPlace(Xml::ElementNode& assertion, const std::vector<std::string>& uris);

/// A chain resolver that trusts the root above the signer.
const Resolver& TrustInTheRoot();
/// A set resolver that trusts exactly the signer.
const Resolver& TrustInTheSigner();
/// Resolvers of the same kinds that trust the test certificates of these names.
Resolver TrustChain(const std::vector<std::string>& certificates);
Resolver TrustSet(const std::vector<std::string>& certificates);

}  // namespace Saml::Attacks::Provider
