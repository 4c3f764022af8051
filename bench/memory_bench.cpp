// The heap that accepting a token takes at once, and how many allocations: in the counters `peak`
// and `allocations`. A program of its own, since it replaces the allocation functions; its times
// mean nothing.
#include "peers/peer.h"
#include "support/counted_heap.h"
#include "support/curve.h"
#include "support/our_works.h"

namespace Bench {
namespace {

void Peak(benchmark::State& state, const Peer::Accepts& accepts) {
    const std::string& xml = TokenOf(state.range(0)).xml;
    accepts(xml);  // whatever is made at the first use
    const HeapUse use = HeapUseOf([&] { accepts(xml); });
    for ([[maybe_unused]] auto _ : state) {
    }
    state.counters["bytes"] = static_cast<double>(xml.size());
    state.counters["peak"] = static_cast<double>(use.peak);
    state.counters["allocations"] = static_cast<double>(use.allocations);
}

void RegisterMemoryCurves() {
    std::vector<Peer> peers = FoundPeers(TheProvider().files);
    peers.insert(peers.begin(), Ours::AsPeer());
    for (const Peer& peer : peers)
        benchmark::RegisterBenchmark(
            ("memory/" + peer.name).c_str(),
            [accepts = peer.knownKey](benchmark::State& state) { Peak(state, accepts); })
            ->RangeMultiplier(4)
            ->Range(16, 65536)
            ->Iterations(1);
}

}  // namespace
}  // namespace Bench

int main(int count, char** values) {
    benchmark::Initialize(&count, values);
    if (benchmark::ReportUnrecognizedArguments(count, values)) return 2;
    Bench::RegisterMemoryCurves();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
