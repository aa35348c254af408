// Evaluate/<what>/<n>: whole calls of vec_EvalVecList, parse to released result. Limit/<what>/<n>: a loop written by
// hand on warm memory, and the bandwidth of a copy. n is 10, 1e3, 1e6 and 1e7; TORVELAN_BENCH_LARGE adds 1e8.
#include "Store.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

using bench::elementOf;
using benchmark::State;

struct Case {
    char const * name;
    char const * expr;
    int bytes; // read and written for an element, in the least
    double (*wanted)(double v, double a, double b, double c);
};

constexpr Case realCases[] = {
    {"add_scalar", "v+1", 16, [](double v, double, double, double) { return v + 1; }},
    {"mul", "a*b", 24, [](double, double a, double b, double) { return a * b; }},
    {"mul_add", "a*b+c", 32, [](double, double a, double b, double c) { return a * b + c; }},
    {"sum_difference", "(a+b)*(a-b)/2", 24, [](double, double a, double b, double) { return (a + b) * (a - b) / 2; }},
    {"sin", "sin(v)", 16, [](double v, double, double, double) { return std::sin(v); }},
    {"exp", "exp(v)", 16, [](double v, double, double, double) { return std::exp(v); }},
    {"ln", "ln(v)", 16, [](double v, double, double, double) { return std::log(v); }},
    {"db", "db(v)", 16, [](double v, double, double, double) { return 20 * std::log10(std::fabs(v)); }},
};

struct Operands {
    std::vector<double> v, a, b, c;
};

Operands const & operands(std::size_t n) {
    static Operands current;
    if (current.v.size() == n) return current;
    current = {bench::values(n, 1, 0.1, 9), bench::values(n, 2, 1, 2), bench::values(n, 3, 1, 2),
               bench::values(n, 4, 1, 2)};
    bench::setReal("v", current.v);
    bench::setReal("a", current.a);
    bench::setReal("b", current.b);
    bench::setReal("c", current.c);
    bench::setComplex("z", current.a, current.b);
    bench::setComplex("y", current.b, current.c);
    return current;
}

void count(State & state, std::size_t n, int bytes) {
    auto const elements = static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(n);
    state.SetItemsProcessed(elements);
    state.SetBytesProcessed(elements * bytes);
}

void evaluateCase(State & state, Case const & c, std::size_t n) {
    Operands const & x = operands(n);
    for (std::size_t i : {std::size_t(0), n / 2, n - 1})
        bench::check(c.expr, elementOf(c.expr, n, i).re, c.wanted(x.v[i], x.a[i], x.b[i], x.c[i]), 1e-13);
    for (auto _ : state) bench::evaluate(c.expr);
    count(state, n, c.bytes);
}

void evaluateSum(State & state, std::size_t n) {
    Operands const & x = operands(n);
    double wanted = 0;
    for (double v : x.v) wanted += v * 2;
    bench::check("sum(v*2)", elementOf("sum(v*2)", 1, 0).re, wanted);
    for (auto _ : state) bench::evaluate("sum(v*2)");
    count(state, n, 8);
}

void evaluateComplexProduct(State & state, std::size_t n) {
    Operands const & x = operands(n);
    bench::check("z*y", elementOf("z*y", n, n - 1).re, x.a[n - 1] * x.b[n - 1] - x.b[n - 1] * x.c[n - 1], 1e-12);
    for (auto _ : state) bench::evaluate("z*y");
    count(state, n, 48);
}

void evaluateMagnitude(State & state, std::size_t n) {
    Operands const & x = operands(n);
    bench::check("mag(z)", elementOf("mag(z)", n, n - 1).re, std::hypot(x.a[n - 1], x.b[n - 1]));
    for (auto _ : state) bench::evaluate("mag(z)");
    count(state, n, 24);
}

// --- limits

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define ALL_PROCESSORS __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define ALL_PROCESSORS
#endif

ALL_PROCESSORS void fusedMulAdd(double * __restrict out, double const * __restrict a, double const * __restrict b,
                                double const * __restrict c, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = a[i] * b[i] + c[i];
}

ALL_PROCESSORS void fusedSumDifference(double * __restrict out, double const * __restrict a,
                                       double const * __restrict b, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = (a[i] + b[i]) * (a[i] - b[i]) / 2;
}

ALL_PROCESSORS void product(double * __restrict out, double const * __restrict a, double const * __restrict b,
                            std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = a[i] * b[i];
}

template <class Loop> void limit(State & state, std::size_t n, int bytes, Loop loop) {
    Operands const & x = operands(n);
    std::vector<double> out(n);
    for (auto _ : state) {
        loop(out.data(), x, n);
        benchmark::ClobberMemory();
    }
    count(state, n, bytes);
}

void addLimits(std::string const & size, std::size_t n) {
    benchmark::RegisterBenchmark(("Limit/copy/" + size).c_str(), [n](State & state) {
        limit(state, n, 16,
              [](double * out, Operands const & x, std::size_t k) { std::memcpy(out, x.a.data(), k * 8); });
    });
    benchmark::RegisterBenchmark(("Limit/mul/" + size).c_str(), [n](State & state) {
        limit(state, n, 24,
              [](double * out, Operands const & x, std::size_t k) { product(out, x.a.data(), x.b.data(), k); });
    });
    benchmark::RegisterBenchmark(("Limit/mul_add/" + size).c_str(), [n](State & state) {
        limit(state, n, 32, [](double * out, Operands const & x, std::size_t k) {
            fusedMulAdd(out, x.a.data(), x.b.data(), x.c.data(), k);
        });
    });
    benchmark::RegisterBenchmark(("Limit/sum_difference/" + size).c_str(), [n](State & state) {
        limit(state, n, 24, [](double * out, Operands const & x, std::size_t k) {
            fusedSumDifference(out, x.a.data(), x.b.data(), k);
        });
    });
}

void addSize(std::size_t n) {
    std::string const size = std::to_string(n);
    auto name = [&size](char const * what) { return std::string("Evaluate/") + what + "/" + size; };
    addLimits(size, n);
    for (Case const & c : realCases)
        benchmark::RegisterBenchmark(name(c.name).c_str(), [&c, n](State & state) { evaluateCase(state, c, n); });
    benchmark::RegisterBenchmark(name("sum").c_str(), [n](State & state) { evaluateSum(state, n); });
    benchmark::RegisterBenchmark(name("complex_mul").c_str(), [n](State & state) { evaluateComplexProduct(state, n); });
    benchmark::RegisterBenchmark(name("mag").c_str(), [n](State & state) { evaluateMagnitude(state, n); });
}

} // namespace

int main(int argc, char ** argv) {
    for (std::size_t n : {10u, 1000u, 1000000u, 10000000u}) addSize(n);
    if (std::getenv("TORVELAN_BENCH_LARGE") != nullptr) addSize(100000000);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
