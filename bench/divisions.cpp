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

// A function of waveforms on each division; `loop` is the same work on all of them as one array.
struct Measure {
    char const * expr;
    std::size_t perDivision; // elements of result
    void (*loop)(double * out, double const * y, std::size_t divisions);
};

void integrate(double * out, double const * y, std::size_t divisions) {
    for (std::size_t d = 0; d < divisions; ++d, y += perDivision, out += perDivision) {
        out[0] = 0;
        for (std::size_t i = 1; i < perDivision; ++i) out[i] = out[i - 1] + (y[i] + y[i - 1]) * 0.5;
    }
}

void mean(double * out, double const * y, std::size_t divisions) {
    for (std::size_t d = 0; d < divisions; ++d, y += perDivision) {
        double sum = 0;
        for (std::size_t i = 1; i < perDivision; ++i) sum += (y[i] + y[i - 1]) * 0.5;
        out[d] = sum / (perDivision - 1);
    }
}

constexpr Measure measures[] = {{"integ(x)", perDivision, integrate}, {"Mean1(x)", 1, mean}};

void measureDivisions(benchmark::State & state, Measure const & m) {
    auto const count = static_cast<std::size_t>(state.range(0));
    std::vector<double> const y = bench::values(count * perDivision, 3, 1, 2);
    std::vector<double> out(y.size());
    bench::setDivisions("x", y, perDivision, true);
    m.loop(out.data(), y.data(), count);
    std::size_t const last = m.perDivision - 1; // of the first division
    bench::check(m.expr, bench::elementOf(m.expr, count * m.perDivision, last).re, out[last], 1e-12);
    for (auto _ : state) bench::evaluate(m.expr);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * y.size()));
}

void measureFlat(benchmark::State & state, Measure const & m) {
    auto const count = static_cast<std::size_t>(state.range(0));
    std::vector<double> const y = bench::values(count * perDivision, 3, 1, 2);
    std::vector<double> out(y.size());
    for (auto _ : state) {
        m.loop(out.data(), y.data(), count);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * y.size()));
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
BENCHMARK_CAPTURE(measureDivisions, integ, measures[0])->Name("Divisions/integ(v)")->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(measureFlat, integ, measures[0])->Name("Limit/flat_integ(v)")->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(measureDivisions, mean, measures[1])->Name("Divisions/Mean1(v)")->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(measureFlat, mean, measures[1])->Name("Limit/flat_Mean1(v)")->Arg(1000)->Arg(100000);
BENCHMARK_MAIN();
