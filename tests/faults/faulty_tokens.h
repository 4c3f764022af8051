#pragma once

#include "faults/faulty_calls.h"
#include "saml/token.h"
#include "support/token_forge.h"

#include <string>
#include <vector>

/// Tokens and resolvers for calls with faults. Keys and certificates are those of
/// tests/support/test_keys.h; a token is signed by "leaf" unless told otherwise.
namespace Saml::Faults {

enum class Trust { Chain, Set };
using ResolverPtr = boost::intrusive_ptr<Xml::Security::KeyInfoResolver>;

ResolverPtr CreateResolver(Trust trust, const std::vector<const char*>& trusted);
/// Trusts "root" or, as a set, "leaf".
ResolverPtr UsualResolver(Trust trust);
/// Trusts "intermediate" or, as a set, "leaf": with less to read, it is the quicker one.
ResolverPtr NearResolver(Trust trust);

/// A token of this form, with the certificates of these names in its `KeyInfo`; none: no `KeyInfo`.
std::string SignedToken(const Forge::TokenSpec& spec, const std::vector<const char*>& sent,
                        const Forge::SignatureSpec& choices = {});
/// A token with "leaf" and "intermediate" in its `KeyInfo`.
std::string BearerToken();
std::string HolderOfKeyToken();

/// `CreateSamlToken` of a text: with the resolver given, or each time with a new `NearResolver`.
FaultyCall CallOfText(const std::string& xml, const ResolverPtr& resolver);
FaultyCall FirstCallOf(const std::string& xml, Trust trust);
/// `CreateSamlTokenFromDom`.
FaultyCall CallOfDom(const std::string& xml, const ResolverPtr& resolver);

/// How far a token comes before it is accepted or refused.
enum class Stage { Parsing, Reading, Digesting, Resolving, Verifying };
/// What shortages of memory make of a token that comes this far, with this resolver. Where OpenSSL
/// does not say that it was short of memory, what it could not do counts as refused.
Failures FailuresUpTo(Stage stage, Trust trust);

}  // namespace Saml::Faults
