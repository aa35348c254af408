// Divisions/<what>/<D>: D divisions of 10 points. Limit/flat_<what>/<D>: one loop over the same points.
#include "Store.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::size_t perDivision = 10;

void divisions(benchmark::State & state, char const * expr, double factorA, double factorB) {
    auto const count = static_cast<std::size_t>(state.range(0));
    std::vector<double> const a = bench::values(count * perDivision, 1, 1, 2),
                              b = bench::values(count * perDivision, 2, 1, 2);
    bench::setDivisions("v", a, perDivision);
    bench::setDivisions("w", b, perDivision);
    bench::check(expr, bench::elementOf(expr, a.size(), 3).re, factorA * a[3] + factorB * b[3]);
    for (auto _ : state) bench::evaluate(expr);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * a.size()));
}

template <class Loop> void flat(benchmark::State & state, Loop loop) {
    std::size_t const n = static_cast<std::size_t>(state.range(0)) * perDivision;
    std::vector<double> const a = bench::values(n, 1, 1, 2), b = bench::values(n, 2, 1, 2);
    std::vector<double> out(n);
    for (auto _ : state) {
        for (std::size_t i = 0; i < n; ++i) out[i] = loop(a[i], b[i]);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
}

void flatDouble(benchmark::State & state) {
    flat(state, [](double a, double) { return a * 2; });
}
void flatAdd(benchmark::State & state) {
    flat(state, [](double a, double b) { return a + b; });
}

} // namespace

BENCHMARK_CAPTURE(divisions, scale, "v*2", 2.0, 0.0)->Name("Divisions/v*2")->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(flatDouble)->Name("Limit/flat_v*2")->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK_CAPTURE(divisions, add, "v+w", 1.0, 1.0)->Name("Divisions/v+w")->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(flatAdd)->Name("Limit/flat_v+w")->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK_MAIN();
