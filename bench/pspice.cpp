// PSpice/<layout>/<points>: a PSpice file of eight vectors through vec_OpenForeignDataFile. Limit/read_<layout>:
// read(2) of the same bytes. Limit/widen_flat: the same as a plain loop that widens them into arrays.
#include "Import.h"

#include <cstdint>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::size_t vectors = 8, points = 1000000;

class Writer {
public:
    explicit Writer(std::FILE * out) : out_(out) {}

    template <class T> void put(T value) { std::fwrite(&value, sizeof value, 1, out_); }
    void text(char const * value) { std::fprintf(out_, "%s%c", value, '\0'); }
    void skip(std::size_t n) {
        while (n-- != 0) put('\0');
    }
    void start(std::uint8_t marker) {
        std::fputs("\xFF\xFF\xFF\xFF\xFF\xFF\x01", out_);
        put(marker);
    }
    void names(char const * reference) {
        text(reference);
        for (std::size_t i = 1; i < vectors; ++i) text(("V(" + std::to_string(i) + ")").c_str());
    }

private:
    std::FILE * out_;
};

// The numbers of each vector are those of the points.
void writePoints(std::FILE * out, std::size_t values) {
    std::vector<float> point(values);
    for (std::size_t i = 0; i < points; ++i) {
        point.assign(values, static_cast<float>(i));
        std::fwrite(point.data(), sizeof(float), values, out);
    }
}

void writeFlat(std::FILE * out, bool isComplex) {
    Writer file(out);
    file.start(0xF3);
    file.text("benchmark");
    file.skip(1);
    file.text("");
    file.text("today");
    file.skip(4);
    file.text("");
    file.skip(1 + 4 + 2);
    file.put(static_cast<std::uint16_t>(isComplex ? 2 : 1));
    file.skip(10);
    file.put(static_cast<std::uint16_t>(vectors));
    file.skip(2 + 4 + 4 + 3);
    file.names(isComplex ? "Frequency" : "Time");
    writePoints(out, isComplex ? 2 * vectors : vectors);
}

void writeFrame(Writer & file, char type, std::size_t size) {
    file.put(type);
    file.put(std::uint32_t{0});
    file.put(static_cast<std::uint32_t>(size));
}

void writeRecords(std::FILE * out) {
    constexpr std::size_t frame = 9, frameInData = 8;
    constexpr std::string_view entries("AnaCols=8\0AnaRows=0xF4240\0DataType=0\0Complex=1\0", 47);
    Writer file(out);
    file.start(0xF8);
    writeFrame(file, 'I', frame);
    writeFrame(file, 'H', frame + entries.size());
    std::fwrite(entries.data(), 1, entries.size(), out);
    writeFrame(file, 'N', 0);
    file.names("Time");
    writeFrame(file, 'S', frame + 8 * points);
    for (std::size_t i = 0; i < points; ++i) file.put(static_cast<double>(i));
    writeFrame(file, 'A', frameInData + 4 * (vectors - 1) * points);
    writePoints(out, vectors - 1);
}

bench::ImportFile const & flatFile() {
    static bench::ImportFile const made("flat.pspice", [](std::FILE * out) { writeFlat(out, false); });
    return made;
}

bench::ImportFile const & complexFile() {
    static bench::ImportFile const made("complex.pspice", [](std::FILE * out) { writeFlat(out, true); });
    return made;
}

bench::ImportFile const & recordsFile() {
    static bench::ImportFile const made("records.pspice", writeRecords);
    return made;
}

// Reads the same bytes and widens them into one plain array a vector.
void widen(benchmark::State & state) {
    constexpr std::size_t pointBytes = vectors * sizeof(float), pieceBytes = std::size_t{256} << 10;
    bench::ImportFile const & file = flatFile();
    std::vector<std::vector<double>> columns(vectors, std::vector<double>(points));
    std::vector<float> piece(pieceBytes / sizeof(float));
    for (auto _ : state) {
        int const descriptor = open(file.path().c_str(), O_RDONLY);
        lseek(descriptor, static_cast<off_t>(file.bytes() - points * pointBytes), SEEK_SET);
        std::size_t done = 0;
        for (ssize_t n = 0; (n = ::read(descriptor, piece.data(), pieceBytes)) > 0;) {
            std::size_t const count = static_cast<std::size_t>(n) / pointBytes;
            for (std::size_t v = 0; v < vectors; ++v)
                for (std::size_t i = 0; i < count; ++i) columns[v][done + i] = piece[i * vectors + v];
            done += count;
        }
        close(descriptor);
        bench::check("points", static_cast<double>(done), static_cast<double>(points), 0);
        benchmark::DoNotOptimize(columns.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(file.bytes()));
}

template <auto file> void read(benchmark::State & state) {
    bench::readFile(state, file(), DATA_PSPICE, "7", points, static_cast<double>(points - 1));
}

template <auto file> void limit(benchmark::State & state) {
    bench::readLoop(state, file());
}

} // namespace

BENCHMARK(read<flatFile>)->Name("PSpice/flat/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(limit<flatFile>)->Name("Limit/read_flat/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(widen)->Name("Limit/widen_flat/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(read<complexFile>)->Name("PSpice/flat_complex/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(limit<complexFile>)->Name("Limit/read_flat_complex/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(read<recordsFile>)->Name("PSpice/records/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK(limit<recordsFile>)->Name("Limit/read_records/1000000")->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
