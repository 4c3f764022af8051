// From text to tree and away again; expat with empty handlers is what no tree can go below.
#include "peers/peer.h"
#include "support/curve.h"
#include "support/floor.h"
#include "support/our_works.h"

namespace Bench {
namespace {

void Parse(benchmark::State& state) {
    const std::string& xml = TokenOf(state.range(0)).xml;
    Measure(state, xml, [&] { benchmark::DoNotOptimize(Ours::Parse(xml)); });
}
BENCHMARK(Parse)->Name("parse/samltoken")->Apply(OverSizes);

void Tokenize(benchmark::State& state) {
    const std::string& xml = TokenOf(state.range(0)).xml;
    Measure(state, xml, [&] { Floor::Tokenize(xml); });
}
BENCHMARK(Tokenize)->Name("parse/floor")->Apply(OverSizes);

void ParseElsewhere(benchmark::State& state) {
    const auto parse = FoundParser();
    if (!parse) return state.SkipWithError("built without libxml2");
    const std::string& xml = TokenOf(state.range(0)).xml;
    Measure(state, xml, [&] { parse(xml); });
}
BENCHMARK(ParseElsewhere)->Name("parse/libxml2")->Apply(OverSizes);

}  // namespace
}  // namespace Bench
