// Small/<expression>: short texts over short data, where parsing and bookkeeping are all there is.
#include "Store.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

void small(benchmark::State & state, char const * expr, double wanted) {
    bench::setReal("x", {0.5});
    bench::setReal("v", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    bench::check(expr, bench::elementOf(expr, 1, 0).re, wanted);
    for (auto _ : state) bench::evaluate(expr);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

} // namespace

BENCHMARK_CAPTURE(small, constant, "2+3*4", 14.0)->Name("Small/2+3*4");
BENCHMARK_CAPTURE(small, sine, "sin(x)+1", std::sin(0.5) + 1)->Name("Small/sin(x)+1");
BENCHMARK_CAPTURE(small, sum, "sum(v*2)", 90.0)->Name("Small/sum(v*2)");
BENCHMARK_MAIN();
