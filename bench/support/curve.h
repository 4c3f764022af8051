#pragma once

#include "support/bench_tokens.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <map>

namespace Bench {

/// The token with so many groups; kept, since making one takes longer than measuring it.
inline const Token& TokenOf(std::int64_t groups) {
    static std::map<std::int64_t, Token> tokens;
    const auto found = tokens.find(groups);
    if (found != tokens.end()) return found->second;
    return tokens.emplace(groups, MakeToken(static_cast<std::size_t>(groups))).first->second;
}

/// From 7 KB to 7 MB: what is not linear shows.
inline void OverSizes(benchmark::internal::Benchmark* curve) {
    curve->RangeMultiplier(4)->Range(16, 65536)->Complexity(benchmark::oN);
}

/// One point of a curve over the size of a text.
template <class Run>
void Measure(benchmark::State& state, const std::string& text, const Run& run) {
    for ([[maybe_unused]] auto _ : state)
        run();
    state.counters["bytes"] = static_cast<double>(text.size());
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
    state.SetComplexityN(static_cast<std::int64_t>(text.size()));
}

}  // namespace Bench
