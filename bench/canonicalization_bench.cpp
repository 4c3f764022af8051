// The exclusive form of an assertion that is parsed already.
#include "peers/peer.h"
#include "support/curve.h"
#include "support/our_works.h"

namespace Bench {
namespace {

void Canonicalize(benchmark::State& state) {
    const Token& token = TokenOf(state.range(0));
    const auto document = Ours::Parse(token.unsignedXml);
    Measure(state, token.unsignedXml,
            [&] { benchmark::DoNotOptimize(Ours::ExclusiveForm(document->GetRootElement())); });
}
BENCHMARK(Canonicalize)->Name("canonicalize/samltoken")->Apply(OverSizes);

void CanonicalizeElsewhere(benchmark::State& state) {
    const Token& token = TokenOf(state.range(0));
    const auto canonicalize = FoundCanonicalization(token.unsignedXml);
    if (!canonicalize) return state.SkipWithError("built without libxml2");
    Measure(state, token.unsignedXml, [&] { benchmark::DoNotOptimize(canonicalize()); });
}
BENCHMARK(CanonicalizeElsewhere)->Name("canonicalize/libxml2")->Apply(OverSizes);

}  // namespace
}  // namespace Bench
