#pragma once

#include "peers/peer.h"
#include "support/bench_tokens.h"

namespace Bench {

/// Why a peer's figure would mean nothing: it refuses the token, or accepts it tampered with or
/// signed by a stranger. Empty when it does what it is measured at.
std::string WhyUnfit(const Peer::Accepts& accepts, const Token& token);

/// The same of a canonical form that is not the one that was signed.
std::string WhyUnfit(const std::function<std::string()>& canonicalization, const Token& token);
/// The same of a signature that this library does not accept.
std::string WhyUnfit(const Signing& signing);

}  // namespace Bench
