#include "peers/fitness.h"

#include "support/our_works.h"

namespace Bench {

std::string WhyUnfit(const Peer::Accepts& accepts, const Token& token) {
    if (!accepts(token.xml)) return "it refuses the token";
    if (accepts(Tampered(token))) return "it accepts a tampered token";
    if (accepts(SignedByStranger(token))) return "it accepts a stranger's token";
    return {};
}

std::string WhyUnfit(const std::function<std::string()>& canonicalization, const Token& token) {
    return canonicalization() == token.canonicalAssertion ? "" : "it writes other bytes";
}

std::string WhyUnfit(const Signing& signing) {
    std::string text;
    signing(&text);
    return Ours::Accepts(text, Ours::TrustChain()) ? "" : "what it signs is refused";
}

}  // namespace Bench
