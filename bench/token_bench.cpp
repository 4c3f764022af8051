// From the text to the accepted token, with both resolvers: ours, the floor, and every peer.
#include "token_bench.h"

#include "peers/fitness.h"
#include "support/curve.h"
#include "support/floor.h"
#include "support/our_works.h"

namespace Bench {
namespace {

void Accept(benchmark::State& state, const Peer::Accepts& accepts) {
    const Token& token = TokenOf(state.range(0));
    const std::string unfit = WhyUnfit(accepts, token);
    if (!unfit.empty()) return state.SkipWithError(unfit.c_str());
    Measure(state, token.xml, [&] { accepts(token.xml); });
}

void Register(const std::string& task, const std::string& who, const Peer::Accepts& accepts) {
    if (!accepts) return;
    benchmark::RegisterBenchmark((task + "/" + who).c_str(), [accepts](benchmark::State& state) {
        Accept(state, accepts);
    })->Apply(OverSizes);
}

void KnownKeyFloor(benchmark::State& state) {
    const Token& token = TokenOf(state.range(0));
    Measure(state, token.xml, [&] { Floor::KnownKey(token); });
}
BENCHMARK(KnownKeyFloor)->Name("known key/floor")->Apply(OverSizes);

void ChainFloor(benchmark::State& state) {
    const Token& token = TokenOf(state.range(0));
    Measure(state, token.xml, [&] { Floor::Chain(token); });
}
BENCHMARK(ChainFloor)->Name("chain/floor")->Apply(OverSizes);

}  // namespace

void RegisterTokenCurves() {
    std::vector<Peer> peers = FoundPeers(TheProvider().files);
    peers.insert(peers.begin(), Ours::AsPeer());
    for (const Peer& peer : peers) {
        Register("known key", peer.name, peer.knownKey);
        Register("chain", peer.name, peer.chain);
    }
}

}  // namespace Bench
