// Text/table/<rows>: a text table of four columns through vec_OpenForeignDataFile; Text/column/<rows>: one column
// without a name; Text/complex/<rows>: a frequency and two complex columns. Limit/fast_float_<what>: a bare fast_float
// loop over the same mapped text.
#include "Import.h"

namespace {

constexpr std::size_t rows = 500000;

bench::ImportFile const & table() {
    static bench::ImportFile const made("table.csv", [](std::FILE * out) {
        std::vector<double> const v = bench::values(rows * 3, 1, -1, 1);
        std::fputs("time,v(a),v(b),i(v1)\n", out);
        for (std::size_t i = 0; i < rows; ++i)
            std::fprintf(out, "%.15e,%.15e,%.15e,%.15e\n", static_cast<double>(i), v[3 * i], v[3 * i + 1],
                         v[3 * i + 2]);
    });
    return made;
}

bench::ImportFile const & column() {
    static bench::ImportFile const made("column.txt", [](std::FILE * out) {
        for (std::size_t i = 0; i < rows; ++i) std::fprintf(out, "%.15e\n", static_cast<double>(i));
    });
    return made;
}

bench::ImportFile const & pairs() {
    static bench::ImportFile const made("pairs.txt", [](std::FILE * out) {
        std::vector<double> const v = bench::values(rows * 4, 2, -1, 1);
        std::fputs("freq v(a) v(b)\n", out);
        for (std::size_t i = 0; i < rows; ++i)
            std::fprintf(out, "%.15e (%.15e,%.15e) (%.15e,%.15e)\n", static_cast<double>(i), v[4 * i], v[4 * i + 1],
                         v[4 * i + 2], v[4 * i + 3]);
    });
    return made;
}

void readTable(benchmark::State & state) {
    bench::readFile(state, table(), DATA_TEXT, "time", rows, static_cast<double>(rows - 1));
}

void readColumn(benchmark::State & state) {
    bench::readFile(state, column(), DATA_TEXT, "Data", rows, static_cast<double>(rows - 1));
}

void readPairs(benchmark::State & state) {
    bench::readFile(state, pairs(), DATA_TEXT, "freq", rows, static_cast<double>(rows - 1));
}

void tableLimit(benchmark::State & state) {
    bench::fastFloatLoop(state, table(), "\n");
}

void pairsLimit(benchmark::State & state) {
    bench::fastFloatLoop(state, pairs(), "\n");
}

void columnLimit(benchmark::State & state) {
    bench::fastFloatLoop(state, column(), "");
}

} // namespace

BENCHMARK(readTable)->Name("Text/table/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(tableLimit)->Name("Limit/fast_float_table/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(readPairs)->Name("Text/complex/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(pairsLimit)->Name("Limit/fast_float_complex/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(readColumn)->Name("Text/column/500000")->Unit(benchmark::kMillisecond);
BENCHMARK(columnLimit)->Name("Limit/fast_float_column/500000")->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
