// Spectrum/fft/<n>, Spectrum/fft_none/<n>: whole calls of fft over n samples, with its Hanning window and without.
// Limit/fftw_measured/<n>, Limit/fftw_estimated/<n>: the transform alone by FFTW, where it is installed.
// Spectrum/Fourier_lines/<n>, Spectrum/Fourier_parabolas/<n>: whole calls of Fourier, 100 harmonics of n uneven points.
// Limit/recurrence_lines/<n>, Limit/recurrence_parabolas/<n>: the integrals as a plain loop over points and harmonics.
#include "Store.h"

#include <benchmark/benchmark.h>

#ifdef TORVELAN_HAS_FFTW
#include <fftw3.h>
#endif

#include <cmath>
#include <numbers>

namespace {

using Reals = std::vector<double>;

constexpr double turn = 2 * std::numbers::pi;
constexpr std::size_t harmonicCount = 100;

// --- even samples

Reals const & samples(std::size_t n) {
    static Reals current;
    if (current.size() == n) return current;
    current = bench::values(n, 1, -1, 1);
    bench::setReal("s", current, true);
    return current;
}

// Element k by its definition.
complex elementBySum(Reals const & v, std::size_t k) {
    complex sum;
    for (std::size_t i = 0; i < v.size(); ++i) {
        double const angle = turn * static_cast<double>(i * k % v.size()) / static_cast<double>(v.size());
        sum = sum + v[i] * complex{std::cos(angle), std::sin(angle)};
    }
    return sum / (static_cast<double>(v.size()) / 2);
}

void spectrum(benchmark::State & state, char const * expr, std::size_t n) {
    Reals const & v = samples(n);
    complex const found = bench::elementOf("fft(s,'none')", n / 2, n / 3), wanted = elementBySum(v, n / 3);
    bench::check("fft", found.re, wanted.re, 1e-8);
    bench::check("fft", found.im, wanted.im, 1e-8);
    for (auto _ : state) bench::evaluate(expr);
}

#ifdef TORVELAN_HAS_FFTW

// In vectors of the library, which stand in large pages as those of fft do.
void fftw(benchmark::State & state, unsigned effort, std::size_t n) {
    Reals const & v = samples(n);
    NamedVector from("from"), to("to");
    from.setSize(static_cast<std::int64_t>(n), VD_REAL);
    to.setSize(static_cast<std::int64_t>(n / 2 + 1), VD_COMPLEX);
    double * const in = from.writableRealData();
    auto * const out = reinterpret_cast<fftw_complex *>(to.writableComplexData());
    fftw_plan const plan = fftw_plan_dft_r2c_1d(static_cast<int>(n), in, out, effort | FFTW_PRESERVE_INPUT);
    std::copy(v.begin(), v.end(), in);
    for (auto _ : state) fftw_execute(plan);
    complex const wanted = bench::elementOf("fft(s,'none')", n / 2, n / 3);
    bench::check("FFTW", out[n / 3][0] * 2 / static_cast<double>(n), wanted.re, 1e-8);
    fftw_destroy_plan(plan);
}

#endif

// --- uneven points

struct Curve {
    Reals x, y;
    double fundamental = 0;
};

Curve const & curve(std::size_t n) {
    static Curve current;
    if (current.x.size() == n) return current;
    current.x = bench::values(n, 2, 0.5, 1.5);
    for (std::size_t i = 1; i < n; ++i) current.x[i] += current.x[i - 1];
    current.fundamental = 1 / (current.x.back() - current.x.front());
    current.y = bench::values(n, 3, -1e-3, 1e-3);
    for (std::size_t i = 0; i < n; ++i) current.y[i] += std::sin(turn * 7 * current.fundamental * current.x[i]);
    bench::setReal("t", current.x);
    bench::setReal("u", current.y);
    bench::evaluate("w=XY(u,t)");
    return current;
}

struct Polynomial {
    double c1, c2;
};

Polynomial parabola(double const * x, double const * y) {
    double const first = (y[1] - y[0]) / (x[1] - x[0]), second = (y[2] - y[1]) / (x[2] - x[1]);
    double const c2 = (second - first) / (x[2] - x[0]);
    return {first - c2 * (x[0] + x[1]), c2};
}

bool fits(double const * x, double const * y) {
    double const left = x[1] - x[0], right = x[2] - x[1];
    double const leftSlope = std::fabs((y[1] - y[0]) / left), rightSlope = std::fabs((y[2] - y[1]) / right);
    return left > 0.1 * right && 10 * right > left && leftSlope > 0.1 * rightSlope && 10 * rightSlope > leftSlope;
}

Polynomial pieceEndingAt(Curve const & c, std::size_t i, bool parabolas) {
    double const *const x = c.x.data() + i, *const y = c.y.data() + i;
    if (parabolas && i + 1 < c.x.size() && fits(x - 1, y - 1)) return parabola(x - 1, y - 1);
    if (parabolas && i > 1 && fits(x - 2, y - 2)) return parabola(x - 2, y - 2);
    return {(y[0] - y[-1]) / (x[0] - x[-1]), 0};
}

// The definition, piece by piece; sine and cosine go from harmonic to harmonic by turning.
void recur(complex * out, Curve const & c, bool parabolas) {
    double sine[harmonicCount], cosine[harmonicCount], inverse[harmonicCount];
    double const w0 = turn * c.fundamental;
    for (std::size_t k = 1; k < harmonicCount; ++k) {
        double const w = static_cast<double>(k) * w0;
        sine[k] = std::sin(w * c.x[0]);
        cosine[k] = std::cos(w * c.x[0]);
        inverse[k] = 1 / w;
        out[k] = {};
    }
    for (std::size_t i = 1; i < c.x.size(); ++i) {
        Polynomial const p = pieceEndingAt(c, i, parabolas);
        double const slopeA = 2 * p.c2 * c.x[i - 1] + p.c1, slopeB = 2 * p.c2 * c.x[i] + p.c1;
        double const s0 = std::sin(w0 * c.x[i]), c0 = std::cos(w0 * c.x[i]);
        double s = s0, co = c0;
        for (std::size_t k = 1; k < harmonicCount; ++k) {
            double const v = inverse[k], square = v * v, e = 2 * p.c2 * square;
            double const valueA = (e - c.y[i - 1]) * v, valueB = (e - c.y[i]) * v;
            out[k].re += slopeB * square * co - valueB * s - (slopeA * square * cosine[k] - valueA * sine[k]);
            out[k].im += slopeB * square * s + valueB * co - (slopeA * square * sine[k] + valueA * cosine[k]);
            sine[k] = s;
            cosine[k] = co;
            double const next = s * c0 + co * s0;
            co = co * c0 - s * s0;
            s = next;
        }
    }
    for (std::size_t k = 1; k < harmonicCount; ++k) out[k] = out[k] * (2 * c.fundamental);
}

std::string harmonicsOf(bool parabolas) {
    return "Fourier(w,1/(t[length(t)-1]-t[0])," + std::to_string(harmonicCount) + ",[0," + (parabolas ? "2])" : "1])");
}

void harmonics(benchmark::State & state, bool parabolas, std::size_t n) {
    Curve const & c = curve(n);
    complex wanted[harmonicCount];
    recur(wanted, c, parabolas);
    std::string const expr = harmonicsOf(parabolas);
    complex const found = bench::elementOf(expr.c_str(), harmonicCount, 7);
    bench::check("Fourier", found.im, wanted[7].im, 1e-6); // where x is large the loop rounds more
    for (auto _ : state) bench::evaluate(expr.c_str());
}

void recurrence(benchmark::State & state, bool parabolas, std::size_t n) {
    Curve const & c = curve(n);
    complex out[harmonicCount];
    for (auto _ : state) {
        recur(out, c, parabolas);
        benchmark::DoNotOptimize(out);
    }
}

template <class Run, class... Arguments>
void add(std::string const & name, std::size_t n, Run run, Arguments... arguments) {
    benchmark::RegisterBenchmark((name + "/" + std::to_string(n)).c_str(), [=](benchmark::State & state) {
        run(state, arguments..., n);
    })->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char ** argv) {
    for (std::size_t n : {std::size_t(1) << 10, std::size_t(1) << 20, std::size_t(1) << 24}) {
        add("Spectrum/fft", n, spectrum, "fft(s)");
        add("Spectrum/fft_none", n, spectrum, "fft(s,'none')");
#ifdef TORVELAN_HAS_FFTW
        add("Limit/fftw_estimated", n, fftw, FFTW_ESTIMATE);
        add("Limit/fftw_measured", n, fftw, FFTW_MEASURE);
#endif
    }
    for (std::size_t n : {1000u, 100000u, 1000000u})
        for (bool parabolas : {false, true}) {
            std::string const pieces = parabolas ? "parabolas" : "lines";
            add("Spectrum/Fourier_" + pieces, n, harmonics, parabolas);
            add("Limit/recurrence_" + pieces, n, recurrence, parabolas);
        }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
