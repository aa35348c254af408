// Waveform/<what>/<n>: whole calls of functions of waveforms over n points with uneven steps of x.
// Limit/loop_<what>/<n>: the same definition as a plain loop, on warm memory.
#include "Store.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Reals = std::vector<double>;

struct Signal {
    Reals x, y;
    Reals taps = bench::values(32, 5, -1, 1);
};

// A wave of about a hundred samples a period, with its third harmonic.
Signal const & signal(std::size_t n) {
    static Signal current;
    if (current.x.size() == n) return current;
    current.x = bench::values(n, 1, 0.5, 1.5);
    current.y.resize(n);
    for (std::size_t i = 1; i < n; ++i) current.x[i] += current.x[i - 1];
    double const turn = 2 * std::numbers::pi / 100;
    for (std::size_t i = 0; i < n; ++i)
        current.y[i] = std::sin(turn * current.x[i]) + 0.2 * std::sin(3 * turn * current.x[i]);
    bench::setReal("t", current.x);
    bench::setReal("u", current.y);
    bench::setReal("taps", current.taps);
    bench::evaluate("w=XY(u,t)");
    return current;
}

// What a loop leaves: the values, and where it makes its own x, those.
struct Points {
    Reals y, x;
    void clear() {
        y.clear();
        x.clear();
    }
    void put(double atX, double atY) {
        x.push_back(atX);
        y.push_back(atY);
    }
};

// --- the definitions as plain loops

void integ(Signal const & s, Points & out) {
    std::size_t const n = s.x.size();
    out.y.resize(n);
    out.y[0] = 0;
    for (std::size_t i = 1; i < n; ++i) out.y[i] = out.y[i - 1] + (s.y[i] + s.y[i - 1]) * 0.5 * (s.x[i] - s.x[i - 1]);
}

void avg(Signal const & s, Points & out) {
    integ(s, out);
    for (std::size_t i = 1; i < s.x.size(); ++i) out.y[i] /= s.x[i] - s.x[0];
}

void rms(Signal const & s, Points & out) {
    std::size_t const n = s.x.size();
    out.y.resize(n);
    out.y[0] = std::fabs(s.y[0]);
    double sum = 0;
    for (std::size_t i = 1; i < n; ++i) {
        double const a = s.y[i - 1], b = s.y[i];
        sum += (b * b + a * a + b * a) / 3 * (s.x[i] - s.x[i - 1]);
        out.y[i] = std::sqrt(sum / (s.x[i] - s.x[0]));
    }
}

// No step is below the threshold here.
void diff(Signal const & s, Points & out) {
    std::size_t const n = s.x.size();
    double const threshold = (s.x[n - 1] - s.x[0]) / static_cast<double>(n - 1) * 1e-6;
    out.y.resize(n);
    for (std::size_t i = 1; i < n; ++i) {
        double const step = s.x[i] - s.x[i - 1];
        if (!(std::fabs(step) > threshold)) std::abort();
        out.y[i] = (s.y[i] - s.y[i - 1]) / step;
    }
    out.y[0] = out.y[1];
}

template <int order> void interp(Signal const & s, Points & out) {
    std::size_t const n = s.x.size();
    double const step = (s.x[n - 1] - s.x[0]) / static_cast<double>(n);
    out.y.resize(n);
    out.x.resize(n);
    std::size_t k = 0;
    for (std::size_t i = 0; i < n; ++i) {
        double const at = static_cast<double>(i) * step + s.x[0];
        while (k + 1 < n && s.x[k] < at) ++k;
        std::size_t const first = k > order ? k - order : 0;
        double const *x = &s.x[first], *y = &s.y[first];
        double value = 0;
        for (int a = 0; a <= order; ++a) {
            double weight = 1;
            for (int b = 0; b <= order; ++b)
                if (b != a) weight *= (at - x[b]) / (x[a] - x[b]);
            value += weight * y[a];
        }
        out.x[i] = at;
        out.y[i] = value;
    }
}

constexpr double level = 0.25;

void crossings(Signal const & s, Points & out) {
    out.clear();
    for (std::size_t i = 0; i + 1 < s.x.size(); ++i)
        if ((s.y[i] <= level) != (s.y[i + 1] <= level))
            out.y.push_back(s.x[i] + (s.x[i + 1] - s.x[i]) * ((level - s.y[i]) / (s.y[i + 1] - s.y[i])));
}

// Plain peaks, in the order of x. The first sample is none.
void peaks(Signal const & s, Points & out) {
    out.clear();
    for (std::size_t i = 1; i + 1 < s.x.size(); ++i)
        if (s.y[i] > s.y[i - 1] && s.y[i] > s.y[i + 1]) out.put(s.x[i], s.y[i]);
}

void histogram(Signal const & s, Points & out) {
    auto const [least, greatest] = std::minmax_element(s.y.begin(), s.y.end());
    double const width = (*greatest - *least) / 100;
    out.y.assign(100, 0.0);
    for (double value : s.y) out.y[std::min<std::size_t>(static_cast<std::size_t>((value - *least) / width), 99)] += 1;
}

void fir(Signal const & s, Points & out) {
    std::size_t const n = s.x.size(), count = s.taps.size();
    out.y.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        double sum = 0;
        for (std::size_t k = 0; k < count; ++k) sum += s.taps[k] * (k <= i ? s.y[i - k] : s.y[0]);
        out.y[i] = sum;
    }
}

// A quarter and three quarters of the way, on samples.
std::size_t lowSample(std::size_t n) {
    return n / 4;
}

void truncate(Signal const & s, Points & out) {
    std::size_t const n = s.x.size();
    double const low = s.x[lowSample(n)], high = s.x[n - 1 - lowSample(n)];
    out.clear();
    for (std::size_t i = 0; i < n; ++i)
        if (s.x[i] >= low && s.x[i] <= high) out.put(s.x[i], s.y[i]);
}

// --- what is measured

struct Case {
    char const * name;
    char const * expr;
    void (*loop)(Signal const &, Points &);
};

constexpr Case cases[] = {
    {"integ", "integ(w)", integ},
    {"avg", "avg(w)", avg},
    {"Rms", "Rms(w)", rms},
    {"diff", "diff(w)", diff},
    {"Interp1", "Interp(w,length(w),1)", interp<1>},
    {"Interp2", "Interp(w,length(w))", interp<2>},
    {"XFromY", "XFromY(w,0.25,1)", crossings},
    {"Maxima", "Maxima(w,-9,['xsort','nointerp','noendpts'])", peaks},
    {"Histogram", "Histogram(w,100)", histogram},
    {"FIR", "FIR(w,taps)", fir},
    {"Truncate", "Truncate(w,t[length(t)/4],t[length(t)*3/4-1])", truncate},
};

void checkAgainstLoop(Case const & c, Signal const & s) {
    Points wanted;
    c.loop(s, wanted);
    std::size_t const n = wanted.y.size();
    for (std::size_t i : {std::size_t(0), n / 3, n / 2, n - 1})
        bench::check(c.name, bench::elementOf(c.expr, n, i).re, wanted.y[i], 1e-9);
}

void evaluateCase(benchmark::State & state, Case const & c, std::size_t n) {
    checkAgainstLoop(c, signal(n));
    for (auto _ : state) bench::evaluate(c.expr);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

void runLoop(benchmark::State & state, Case const & c, std::size_t n) {
    Signal const & s = signal(n);
    Points out;
    for (auto _ : state) {
        c.loop(s, out);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

void add(Case const & c, std::size_t n) {
    std::string const end = std::string(c.name) + "/" + std::to_string(n);
    benchmark::RegisterBenchmark(("Waveform/" + end).c_str(), evaluateCase, c, n);
    benchmark::RegisterBenchmark(("Limit/loop_" + end).c_str(), runLoop, c, n);
}

} // namespace

int main(int argc, char ** argv) {
    for (std::size_t n : {10000u, 10000000u})
        for (Case const & c : cases) add(c, n);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
