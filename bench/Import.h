// What the benchmarks of import share: a file made for the run, the timed call, and the limits.
#pragma once

#include "Store.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>

namespace bench {

// Made in the temporary directory and removed at exit, or made in the folder TORVELAN_BENCH_FILES and kept there, for
// other programs to read.
class ImportFile {
public:
    ImportFile(std::string const & name, std::function<void(std::FILE *)> const & write);
    ~ImportFile();
    ImportFile(ImportFile const &) = delete;
    ImportFile & operator=(ImportFile const &) = delete;

    std::filesystem::path const & path() const { return path_; }
    std::size_t bytes() const { return bytes_; }

private:
    std::filesystem::path path_;
    std::size_t bytes_ = 0;
};

// Times vec_OpenForeignDataFile and the end of the group. The vector named has so many elements, and the last one.
void readFile(benchmark::State & state, ImportFile const & file, DataFileType type, char const * vector,
              std::size_t elements, double last);
// Times a bare fast_float loop over the mapped text behind the first `mark`.
void fastFloatLoop(benchmark::State & state, ImportFile const & file, char const * mark);
// Times read(2) of the file in pieces.
void readLoop(benchmark::State & state, ImportFile const & file);
// Times read(2) of the file into fresh memory that holds it all, of pages as large as the machine gives.
void readFreshLoop(benchmark::State & state, ImportFile const & file);

} // namespace bench
