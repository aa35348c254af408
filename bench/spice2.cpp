// Spice2/<kind>/<points>: a SPICE2 file of eight vectors through vec_OpenForeignDataFile. Limit/read_<kind>: read(2) of
// the same bytes into a small buffer. Limit/read_fresh_<kind>: into fresh memory that holds them all.
#include "Import.h"

#include <complex>

namespace {

constexpr std::size_t vectors = 8, points = 1000000;

template <class Value> void writeFile(std::FILE * out, char const * reference) {
    constexpr unsigned short header[] = {vectors, 4};
    std::fprintf(out, "%-80s%-8s%-8s", "benchmark", "today", "now");
    std::fwrite(header, 2, 2, out);
    std::fprintf(out, "%-8s", reference);
    for (std::size_t i = 1; i < vectors; ++i) std::fprintf(out, "%-8zu", i);
    std::fprintf(out, "%*s", static_cast<int>(2 + 4 * vectors + 22), "");
    std::vector<Value> point(vectors);
    for (std::size_t i = 0; i < points; ++i) {
        for (Value & value : point) value = static_cast<float>(i);
        std::fwrite(point.data(), sizeof(Value), vectors, out);
    }
}

bench::ImportFile const & realFile() {
    static bench::ImportFile const made("real.spice2", [](std::FILE * out) { writeFile<double>(out, "time"); });
    return made;
}

bench::ImportFile const & complexFile() {
    static bench::ImportFile const made("complex.spice2",
                                        [](std::FILE * out) { writeFile<std::complex<float>>(out, "freq"); });
    return made;
}

template <auto file> void read(benchmark::State & state) {
    bench::readFile(state, file(), DATA_SPICE2, "7", points, static_cast<double>(points - 1));
}

template <auto file> void limit(benchmark::State & state) {
    bench::readLoop(state, file());
}

template <auto file> void freshLimit(benchmark::State & state) {
    bench::readFreshLoop(state, file());
}

} // namespace

BENCHMARK(read<realFile>)->Name("Spice2/real/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(limit<realFile>)->Name("Limit/read_real/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(freshLimit<realFile>)->Name("Limit/read_fresh_real/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(read<complexFile>)->Name("Spice2/complex/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(limit<complexFile>)->Name("Limit/read_complex/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(freshLimit<complexFile>)->Name("Limit/read_fresh_complex/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
