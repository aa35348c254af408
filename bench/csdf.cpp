// Csdf/<kind>/<points>: a CSDF file of four nodes through vec_OpenRawFile, without a data file. Quadrel/real/<points>:
// the same values as a Quadrel file. Limit/fast_float_<format>: a bare fast_float loop over the same mapped text.
#include "Import.h"

#include <fast_float/fast_float.h>

#include <cmath>
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int nodes = 4;
constexpr std::size_t points = 500000;

double valueAt(std::size_t point, int node) {
    return std::sin(static_cast<double>(point) * 1e-3 + node);
}

void writeCsdf(std::FILE * out, bool isComplex) {
    std::fprintf(out, "#H\nTITLE='benchmark' NODES='%d' SWEEPVAR='TIME' COMPLEXVALUES='%s'\n#N\n", nodes,
                 isComplex ? "YES" : "NO");
    for (int node = 0; node < nodes; ++node) std::fprintf(out, "'V(n%d)' ", node);
    for (std::size_t point = 0; point < points; ++point) {
        std::fprintf(out, "\n#C %.12e %d\n", static_cast<double>(point) * 1e-9, nodes);
        for (int node = 0; node < nodes; ++node)
            if (isComplex)
                std::fprintf(out, "%.12e/%.12e:%x ", valueAt(point, node), valueAt(point, node + 1), node + 1);
            else
                std::fprintf(out, "%.12e:%x ", valueAt(point, node), node + 1);
    }
    std::fputs("\n#;\n", out);
}

void writeQuadrel(std::FILE * out) {
    std::fprintf(out, "benchmark\n\n\n%zu\n%d\n0 TIME\n", points, nodes);
    for (int node = 0; node < nodes; ++node) std::fprintf(out, "%d V(n%d)\n", node + 1, node);
    for (std::size_t point = 0; point < points; ++point) {
        std::fprintf(out, "%.12e", static_cast<double>(point) * 1e-9);
        for (int node = 0; node < nodes; ++node) std::fprintf(out, " %.12e", valueAt(point, node));
        std::fputc('\n', out);
    }
}

bench::ImportFile const & realFile() {
    static bench::ImportFile const made("real.csdf", [](std::FILE * out) { writeCsdf(out, false); });
    return made;
}

bench::ImportFile const & complexFile() {
    static bench::ImportFile const made("complex.csdf", [](std::FILE * out) { writeCsdf(out, true); });
    return made;
}

bench::ImportFile const & quadrelFile() {
    static bench::ImportFile const made("real.quadrel", writeQuadrel);
    return made;
}

// What "%.12e" keeps of a value.
double lastValue() {
    char text[32];
    std::snprintf(text, sizeof text, "%.12e", valueAt(points - 1, nodes - 1));
    return std::strtod(text, nullptr);
}

template <auto file> void readCsdf(benchmark::State & state) {
    VecOpenRawFileOptions options;
    options.csdf = true;
    YString const path(file().path().string());
    auto const silence = std::make_shared<NullMessageHandler>(); // there is no place for a data file, which is told
    for (auto _ : state) {
        if (!vec_OpenRawFile(path, "/nonexistent/x", options, silence)) std::exit(1);
        YString group;
        XYVector * vector = nullptr;
        (void)vec_GetCurrentGroupName(group);
        if (vec_GetVector(group, "n3", &vector) != VEC_OK) std::exit(1);
        bench::check("n3", static_cast<double>(vector->length()), static_cast<double>(points), 0);
        bench::check("n3", vector->getReal(vector->length() - 1), lastValue(), 0);
        (void)vec_DestroyGroup(group, false);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(file().bytes()));
}

// From number to number, whatever stands between them.
template <auto file> void bareLoop(benchmark::State & state) {
    std::size_t const size = file().bytes();
    int const descriptor = open(file().path().c_str(), O_RDONLY);
    auto const * text = static_cast<char const *>(mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0));
    close(descriptor);
    char const * const end = text + size;
    char const * const begin = text + std::string_view(text, size).find("#C");
    for (auto _ : state) {
        double sum = 0;
        for (char const * p = begin; p < end;) {
            while (p < end && *p != '-' && (*p < '0' || *p > '9')) ++p;
            double value = 0;
            auto const parsed = fast_float::from_chars(p, end, value);
            if (parsed.ec != std::errc()) break;
            p = parsed.ptr;
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(size));
    munmap(const_cast<char *>(text), size);
}

void readQuadrel(benchmark::State & state) {
    bench::readFile(state, quadrelFile(), DATA_QUADREL, "n3", points, lastValue());
}

void quadrelLoop(benchmark::State & state) {
    bench::fastFloatLoop(state, quadrelFile(), "V(n3)\n");
}

} // namespace

BENCHMARK(readCsdf<realFile>)->Name("Csdf/real/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(bareLoop<realFile>)->Name("Limit/fast_float_csdf/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(readCsdf<complexFile>)->Name("Csdf/complex/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(bareLoop<complexFile>)->Name("Limit/fast_float_csdf_complex/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(readQuadrel)->Name("Quadrel/real/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(quadrelLoop)->Name("Limit/fast_float_quadrel/500000")->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
