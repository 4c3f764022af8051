// The signature of an assertion that is parsed already.
#include "peers/peer.h"
#include "support/curve.h"
#include "support/floor.h"
#include "support/our_works.h"

namespace Bench {
namespace {

void Sign(benchmark::State& state) {
    const std::string& xml = TokenOf(state.range(0)).unsignedXml;
    const Signing sign = Ours::SigningOf(xml);
    Measure(state, xml, [&] { sign(nullptr); });
}
BENCHMARK(Sign)->Name("sign/samltoken")->Apply(OverSizes);

void SignReadyBytes(benchmark::State& state) {
    const Token& token = TokenOf(state.range(0));
    Measure(state, token.unsignedXml, [&] { Floor::Sign(token); });
}
BENCHMARK(SignReadyBytes)->Name("sign/floor")->Apply(OverSizes);

void SignElsewhere(benchmark::State& state) {
    const std::string& xml = TokenOf(state.range(0)).unsignedXml;
    const Signing sign = FoundSigning(TheProvider().files, xml, *TheProvider().privateKey);
    if (!sign) return state.SkipWithError("built without xmlsec1");
    Measure(state, xml, [&] { sign(nullptr); });
}
BENCHMARK(SignElsewhere)->Name("sign/xmlsec1")->Apply(OverSizes);

}  // namespace
}  // namespace Bench
