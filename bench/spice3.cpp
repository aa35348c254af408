// Spice3/read/<points>: a SPICE3 ASCII file of four real vectors through vec_OpenForeignDataFile. Limit/fast_float: a
// bare fast_float loop over the same mapped text.
#include "Store.h"

#include <benchmark/benchmark.h>
#include <fast_float/fast_float.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int vectors = 4;

// The file of so many points, made once and removed at exit.
class RawFile {
public:
    explicit RawFile(std::size_t points)
        : path_(std::filesystem::temp_directory_path() / ("torvelan-bench-" + std::to_string(getpid()) + ".raw")) {
        std::FILE * out = std::fopen(path_.c_str(), "w");
        std::fprintf(out,
                     "Title: benchmark\nDate: today\nPlotname: Transient Analysis\nFlags: real\nNo. Variables: %d\n"
                     "No. Points: %zu\nVariables:\n\t0\ttime\ttime\n\t1\tv(a)\tvoltage\n\t2\tv(b)\tvoltage\n"
                     "\t3\ti(v1)\tcurrent\nValues:\n",
                     vectors, points);
        std::vector<double> const v = bench::values(points * vectors, 1, -1, 1);
        for (std::size_t i = 0; i < points; ++i)
            std::fprintf(out, " %zu\t%.15e\n\t%.15e\n\t%.15e\n\t%.15e\n\n", i, static_cast<double>(i) * 1e-9,
                         v[4 * i + 1], v[4 * i + 2], v[4 * i + 3]);
        std::fclose(out);
    }
    ~RawFile() { std::filesystem::remove(path_); }
    std::filesystem::path const & path() const { return path_; }

private:
    std::filesystem::path path_;
};

RawFile const & rawFile(std::size_t points) {
    static RawFile const file(points);
    return file;
}

void readFile(benchmark::State & state) {
    auto const points = static_cast<std::size_t>(state.range(0));
    RawFile const & file = rawFile(points);
    YString const path(file.path().string());
    for (auto _ : state) {
        YString group;
        if (!vec_OpenForeignDataFile(path, DATA_SPICE3, {}, &group, bench::context().messages())) std::exit(1);
        XYVector * vector = nullptr;
        if (vec_GetVector(group, YString("b"), &vector) != VEC_OK ||
            vector->length() != static_cast<std::int64_t>(points))
            std::exit(1);
        (void)vec_DestroyGroup(group, false);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * std::filesystem::file_size(file.path())));
}

void bareLoop(benchmark::State & state) {
    RawFile const & file = rawFile(static_cast<std::size_t>(state.range(0)));
    std::size_t const size = std::filesystem::file_size(file.path());
    int const descriptor = open(file.path().c_str(), O_RDONLY);
    auto const * text = static_cast<char const *>(mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0));
    close(descriptor);
    char const * begin = std::string_view(text, size).find("Values:\n") + text + 8;
    for (auto _ : state) {
        double sum = 0;
        for (char const * p = begin; p < text + size;) {
            while (p < text + size && (*p == ' ' || *p == '\t' || *p == '\n')) ++p;
            double value = 0;
            auto const end = fast_float::from_chars(p, text + size, value);
            if (end.ec != std::errc()) break;
            p = end.ptr;
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
    munmap(const_cast<char *>(text), size);
}

} // namespace

BENCHMARK(readFile)->Name("Spice3/read")->Arg(500000)->Unit(benchmark::kMillisecond);
BENCHMARK(bareLoop)->Name("Limit/fast_float")->Arg(500000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
