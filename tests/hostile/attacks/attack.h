#pragma once

#include "saml/token.h"
#include "support/token_account.h"
#include "support/token_forge.h"

#include <boost/core/demangle.hpp>

#include <cstdint>
#include <string>
#include <typeinfo>
#include <vector>

/// What an attacker presents, and what must come of it.
namespace Saml::Attacks {

using Resolver = boost::intrusive_ptr<Xml::Security::KeyInfoResolver>;

/// The outcome of a token that is refused with exactly this class and message.
template <class Refusal>
std::string Refused(const std::string& message) {
    return boost::core::demangle(typeid(Refusal).name()) + ": " + message;
}
/// The outcome of a token that is accepted and says this.
std::string Accepted(const Oracle::Account& account);
/// What a token of this description says, when it is accepted. The names in it are plain: one "@"
/// in a principal, one backslash in a group, no markup.
Oracle::Account AccountOf(const Forge::TokenSpec& spec);
/// The outcome of a token made from `spec` that is accepted as it stands.
std::string Accepted(const Forge::TokenSpec& spec);

/// Said when a digest, the signature value or the trust does not hold.
std::string RefusedAsTampered();
/// Said when no reference is to the assertion.
std::string RefusedAsUncovered();

struct Attack {
    std::string name;
    std::string token;
    std::string outcome;
    /// Who is trusted. Not given, the attack is tried on everybody: with the root of the provider
    /// trusted and with exactly its signer trusted.
    Resolver trust = nullptr;
    std::int64_t tolerance = DefaultClockTolerance;
};

/// What comes of `token` by text alone: for many tokens.
std::string OutcomeByText(const std::string& token, const Resolver& trust,
                          std::int64_t tolerance = DefaultClockTolerance);

/// What comes of `token`: by text and by document, which must be the same.
std::string OutcomeOf(const std::string& token, const Resolver& trust,
                      std::int64_t tolerance = DefaultClockTolerance);

/// What comes of an assertion that stands somewhere in a document.
std::string OutcomeOf(Xml::ElementNode& assertion, const Resolver& trust);

/// Tries each of the attacks, whose names must differ; prints and records how many there were.
void ExpectOutcomes(const std::vector<Attack>& attacks);

}  // namespace Saml::Attacks
