// Every curve of time. The options are Google Benchmark's; scripts/bench gives those that make
// sense on a machine that does other things, too.
#include "token_bench.h"

#include <benchmark/benchmark.h>

int main(int count, char** values) {
    benchmark::Initialize(&count, values);
    if (benchmark::ReportUnrecognizedArguments(count, values)) return 2;
    Bench::RegisterTokenCurves();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
