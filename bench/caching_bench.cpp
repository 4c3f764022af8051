// What examples/caching_resolver.h saves: a 7 KB token from text to acceptance by a trust chain,
// with and without it. The known key is what is left when no certificate is looked at but the
// signer's. The options are Google Benchmark's; docs/performance.md has those for figures to
// compare.
#include "examples/caching_resolver.h"
#include "support/curve.h"
#include "support/our_works.h"
#include "support/sizes.h"

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace Bench {
namespace {

using Saml::Xml::Security::KeyInfoResolver;

KeyInfoResolver* CachedTrustChain() {
    static const boost::intrusive_ptr<KeyInfoResolver> resolver(
        new CachingKeyInfoResolver(Ours::TrustChain(), {64, std::chrono::minutes(5)}));
    return resolver.get();
}

/// A resolver that accepts too little or too much is not worth measuring.
void RequireJudgement(const Token& token, KeyInfoResolver* resolver) {
    if (!Ours::Accepts(token.xml, resolver) || Ours::Accepts(Tampered(token), resolver) ||
        Ours::Accepts(SignedByStranger(token), resolver))
        throw std::runtime_error("a token is judged wrongly");
}

void Accept(benchmark::State& state, KeyInfoResolver* (*resolverOf)()) {
    const Token& token = TokenOf(state.range(0));
    KeyInfoResolver* const resolver = resolverOf();
    RequireJudgement(token, resolver);
    Measure(state, token.xml,
            [&] { benchmark::DoNotOptimize(Ours::Accepts(token.xml, resolver)); });
}
BENCHMARK_CAPTURE(Accept, chain, Ours::TrustChain)->Arg(kSmall);
BENCHMARK_CAPTURE(Accept, chain_cached, CachedTrustChain)->Arg(kSmall);
BENCHMARK_CAPTURE(Accept, known_key, Ours::TrustSet)->Arg(kSmall);

}  // namespace
}  // namespace Bench

BENCHMARK_MAIN();
