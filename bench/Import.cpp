#include "Import.h"

#include <fast_float/fast_float.h>

#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace bench {

namespace {

namespace fs = std::filesystem;

fs::path placeOf(std::string const & name) {
    if (char const * folder = std::getenv("TORVELAN_BENCH_FILES")) return fs::path(folder) / name;
    return fs::temp_directory_path() / ("torvelan-bench-" + std::to_string(getpid()) + "-" + name);
}

bool isBetweenNumbers(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == ',' || c == '(' || c == ')';
}

void finish(benchmark::State & state, ImportFile const & file) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(file.bytes()));
}

} // namespace

ImportFile::ImportFile(std::string const & name, std::function<void(std::FILE *)> const & write)
    : path_(placeOf(name)) {
    std::FILE * const out = std::fopen(path_.c_str(), "wb");
    if (out == nullptr) std::exit(1);
    write(out);
    if (std::fclose(out) != 0) std::exit(1);
    bytes_ = fs::file_size(path_);
}

ImportFile::~ImportFile() {
    if (std::getenv("TORVELAN_BENCH_FILES") == nullptr) fs::remove(path_);
}

void readFile(benchmark::State & state, ImportFile const & file, DataFileType type, char const * name,
              std::size_t elements, double last) {
    YString const path(file.path().string());
    for (auto _ : state) {
        YString group;
        if (!vec_OpenForeignDataFile(path, type, {}, &group, context().messages())) std::exit(1);
        XYVector * vector = nullptr;
        if (vec_GetVector(group, YString(name), &vector) != VEC_OK) std::exit(1);
        check(name, static_cast<double>(vector->length()), static_cast<double>(elements), 0);
        check(name, vector->getReal(vector->length() - 1), last, 0);
        (void)vec_DestroyGroup(group, false);
    }
    finish(state, file);
}

void fastFloatLoop(benchmark::State & state, ImportFile const & file, char const * mark) {
    std::size_t const size = file.bytes();
    int const descriptor = open(file.path().c_str(), O_RDONLY);
    auto const * text = static_cast<char const *>(mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0));
    close(descriptor);
    char const * const end = text + size;
    char const * const begin = text + std::string_view(text, size).find(mark) + std::string_view(mark).size();
    for (auto _ : state) {
        double sum = 0;
        for (char const * p = begin; p < end;) {
            while (p < end && isBetweenNumbers(*p)) ++p;
            double value = 0;
            auto const parsed = fast_float::from_chars(p, end, value);
            if (parsed.ec != std::errc()) break;
            p = parsed.ptr;
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
    finish(state, file);
    munmap(const_cast<char *>(text), size);
}

void readLoop(benchmark::State & state, ImportFile const & file) {
    constexpr std::size_t pieceBytes = std::size_t{256} << 10;
    auto const piece = std::make_unique<char[]>(pieceBytes);
    for (auto _ : state) {
        int const descriptor = open(file.path().c_str(), O_RDONLY);
        std::size_t total = 0;
        for (ssize_t n = 0; (n = read(descriptor, piece.get(), pieceBytes)) > 0;) total += static_cast<std::size_t>(n);
        close(descriptor);
        if (total != file.bytes()) std::exit(1);
        benchmark::DoNotOptimize(piece.get());
    }
    finish(state, file);
}

void readFreshLoop(benchmark::State & state, ImportFile const & file) {
    for (auto _ : state) {
        int const descriptor = open(file.path().c_str(), O_RDONLY);
        void * const memory = mmap(nullptr, file.bytes(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        madvise(memory, file.bytes(), MADV_HUGEPAGE);
        std::size_t total = 0;
        for (ssize_t n = 0; (n = read(descriptor, static_cast<char *>(memory) + total, file.bytes() - total)) > 0;)
            total += static_cast<std::size_t>(n);
        close(descriptor);
        if (total != file.bytes()) std::exit(1);
        munmap(memory, file.bytes());
    }
    finish(state, file);
}

} // namespace bench
