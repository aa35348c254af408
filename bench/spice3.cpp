// Spice3/read/<points>: a SPICE3 ASCII file of four real vectors through vec_OpenForeignDataFile. Limit/fast_float: a
// bare fast_float loop over the same mapped text.
#include "Import.h"

namespace {

constexpr std::size_t vectors = 4, points = 500000;
constexpr double step = 1e-9;

bench::ImportFile const & file() {
    static bench::ImportFile const made("points.raw", [](std::FILE * out) {
        std::fprintf(out,
                     "Title: benchmark\nDate: today\nPlotname: Transient Analysis\nFlags: real\nNo. Variables: %zu\n"
                     "No. Points: %zu\nVariables:\n\t0\ttime\ttime\n\t1\tv(a)\tvoltage\n\t2\tv(b)\tvoltage\n"
                     "\t3\ti(v1)\tcurrent\nValues:\n",
                     vectors, points);
        std::vector<double> const v = bench::values(points * vectors, 1, -1, 1);
        for (std::size_t i = 0; i < points; ++i)
            std::fprintf(out, " %zu\t%.15e\n\t%.15e\n\t%.15e\n\t%.15e\n\n", i, static_cast<double>(i) * step,
                         v[4 * i + 1], v[4 * i + 2], v[4 * i + 3]);
    });
    return made;
}

void read(benchmark::State & state) {
    bench::readFile(state, file(), DATA_SPICE3, "time", points, static_cast<double>(points - 1) * step);
}

void limit(benchmark::State & state) {
    bench::fastFloatLoop(state, file(), "Values:\n");
}

} // namespace

BENCHMARK(read)->Name("Spice3/read/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(limit)->Name("Limit/fast_float/500000")->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
