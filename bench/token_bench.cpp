// From the text to the accepted token, with both resolvers: ours, the floor, and every peer.
#include "token_bench.h"

#include "peers/fitness.h"
#include "support/curve.h"
#include "support/floor.h"
#include "support/our_works.h"

#include <map>
#include <utility>

namespace Bench {
namespace {

/// Asked once for each point: finding out takes longer than measuring.
const std::string& WhyUnfitAt(std::int64_t groups, const std::string& name,
                              const Peer::Accepts& accepts) {
    static std::map<std::pair<std::string, std::int64_t>, std::string> answers;
    const auto found = answers.find({name, groups});
    if (found != answers.end()) return found->second;
    return answers[{name, groups}] = WhyUnfit(accepts, TokenOf(groups));
}

void Accept(benchmark::State& state, const std::string& name, const Peer::Accepts& accepts) {
    const std::string& unfit = WhyUnfitAt(state.range(0), name, accepts);
    if (!unfit.empty()) return state.SkipWithError(unfit.c_str());
    const std::string& xml = TokenOf(state.range(0)).xml;
    Measure(state, xml, [&] { accepts(xml); });
}

void Register(const std::string& task, const std::string& who, const Peer::Accepts& accepts) {
    if (!accepts) return;
    const std::string name = task + "/" + who;
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        Accept(state, name, accepts);
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
