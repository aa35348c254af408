// Stream/<what>/<place>: a run of 1,000 vectors of 100,000 points written point by point, with an update each 1,000
// points, to the memory file system (memory) or the disk (disk). Open/<what>/10000: a file of 10,000 vectors opened and
// listed. Read/<what>/<MiB>: one whole vector out of a file. Shared/<what>: the bytes of a run handed over in blocks of
// shared memory. Limit/...: what plain calls of the system take, and HDF5 where it is there: fed with a row of the
// matrix a point, or with all that comes between two updates in one call, when the program gathers it itself. The
// counter `entries` is the number of directory entries of the file.
#include "Store.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <unistd.h>
#ifdef TORVELAN_HDF5
#include <hdf5.h>
#endif

namespace {

constexpr int vectorCount = 1000;
constexpr int points = 100'000;
constexpr int pointsPerUpdate = 1000;

std::string fileIn(char const * place, char const * name = "run") {
    std::string const folder =
        std::strcmp(place, "memory") == 0 ? "/dev/shm" : std::filesystem::current_path().string();
    return folder + "/torvelan-bench-" + name + ".tvdat";
}

double valueOf(int vector, int point) {
    return point * 1e-9 + vector;
}

[[noreturn]] void stop(char const * what) {
    std::perror(what);
    std::exit(EXIT_FAILURE);
}

class Run {
public:
    explicit Run(std::string const & path, int count = vectorCount) {
        bench::context();
        VecMakeGroupOptions options;
        options.makeCurrent = true;
        vec_MakeGroup("bench", "run", options);
        vec_GetCurrentGroupName(name);
        VectorParam x, y;
        x.name = "time";
        for (int k = 0; k < count; ++k) {
            y.name = YString("v" + std::to_string(k));
            IfVector out, ref;
            vec_MakeVector(name, &y, &x, &out, &ref, MakeVectorOptions());
            vectors.push_back(out);
            if (k == 0) reference = ref;
        }
        auto const messages = std::make_shared<bench::Loud>();
        if (vec_InitialiseSimulationGroup(true, YString(path), name, false, false, messages, nullptr) != VEC_OK)
            stop(path.c_str());
    }
    ~Run() { vec_DestroyGroup(name, true); }

    YString name;
    std::vector<IfVector> vectors;
    IfVector reference;
};

// The number of directory entries from the description of a file.
class EntryCount final : public MessageHandler {
public:
    void finalOutput(MessageLevel, YString const & text) override {
        constexpr std::string_view start = "Directory: ";
        if (text.view().starts_with(start)) entries = std::atof(text.c_str() + start.size());
    }
    double entries = 0;
};

double entriesOf(std::string const & path) {
    auto const count = std::make_shared<EntryCount>();
    if (!vec_DescribeDataFile(YString(path), count)) stop(path.c_str());
    return count->entries;
}

void countBytes(benchmark::State & state, double bytes) {
    state.counters["bytes"] = benchmark::Counter(bytes, benchmark::Counter::kIsIterationInvariantRate);
}

void streamEngine(benchmark::State & state, char const * place) {
    std::string const path = fileIn(place);
    for (auto _ : state) {
        Run run(path);
        for (int i = 0; i < points; ++i) {
            run.reference.addVal(i * 1e-9);
            for (int k = 0; k < vectorCount; ++k) run.vectors[static_cast<std::size_t>(k)].addVal(valueOf(k, i));
            if (i % pointsPerUpdate == pointsPerUpdate - 1) vec_DataSent(run.name, false);
        }
    }
    state.counters["entries"] = entriesOf(path);
    countBytes(state, 8.0 * vectorCount * points);
    unlink(path.c_str());
}

// The same bytes, gathered in rows and written as they come.
void streamWrite(benchmark::State & state, char const * place) {
    std::string const path = fileIn(place);
    std::vector<double> rows(static_cast<std::size_t>(vectorCount) * 8);
    for (auto _ : state) {
        int const file = open(path.c_str(), O_CREAT | O_TRUNC | O_RDWR, 0600);
        for (int i = 0; i < points; i += 8) {
            for (int r = 0; r < 8; ++r)
                for (int k = 0; k < vectorCount; ++k)
                    rows[static_cast<std::size_t>(r * vectorCount + k)] = valueOf(k, i + r);
            if (write(file, rows.data(), rows.size() * 8) < 0) stop("write");
        }
        close(file);
    }
    countBytes(state, 8.0 * vectorCount * points);
    unlink(path.c_str());
}

// The same bytes, a column a vector: each goes to the file when 32 KiB of it are there. Nothing that keeps vectors
// apart and takes their points in turn does less.
void streamColumns(benchmark::State & state, char const * place) {
    constexpr std::size_t piece = 32768 / sizeof(double);
    std::string const path = fileIn(place);
    for (auto _ : state) {
        int const file = open(path.c_str(), O_CREAT | O_TRUNC | O_RDWR, 0600);
        std::vector<std::vector<double>> columns(vectorCount, std::vector<double>(piece));
        for (std::size_t i = 0; i < points; ++i) {
            std::size_t const at = i % piece;
            for (std::size_t k = 0; k < vectorCount; ++k)
                columns[k][at] = valueOf(static_cast<int>(k), static_cast<int>(i));
            if (at + 1 != piece && i + 1 != points) continue;
            for (std::vector<double> const & column : columns)
                if (write(file, column.data(), (at + 1) * sizeof(double)) < 0) stop("write");
        }
        close(file);
    }
    countBytes(state, 8.0 * vectorCount * points);
    unlink(path.c_str());
}

void streamFwrite(benchmark::State & state, char const * place) {
    std::string const path = fileIn(place);
    for (auto _ : state) {
        FILE * const file = fopen(path.c_str(), "wb");
        for (int i = 0; i < points; ++i)
            for (int k = 0; k < vectorCount; ++k) {
                double const value = valueOf(k, i);
                fwrite(&value, sizeof value, 1, file);
            }
        fclose(file);
    }
    countBytes(state, 8.0 * vectorCount * points);
    unlink(path.c_str());
}

#ifdef TORVELAN_HDF5
// One matrix of a column a vector, in chunks of the rows between two flushes, which come `rowsPerWrite` at a time.
template <int rowsPerWrite> void streamHdf5Matrix(benchmark::State & state, char const * place) {
    std::string const path = fileIn(place);
    for (auto _ : state) {
        hid_t const file = H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
        hsize_t size[2] = {0, vectorCount}, most[2] = {H5S_UNLIMITED, vectorCount};
        hsize_t const chunk[2] = {pointsPerUpdate, vectorCount};
        hid_t const space = H5Screate_simple(2, size, most);
        hid_t const properties = H5Pcreate(H5P_DATASET_CREATE);
        H5Pset_chunk(properties, 2, chunk);
        hid_t const data = H5Dcreate2(file, "run", H5T_NATIVE_DOUBLE, space, H5P_DEFAULT, properties, H5P_DEFAULT);
        hsize_t const count[2] = {rowsPerWrite, vectorCount};
        hid_t const source = H5Screate_simple(2, count, nullptr);
        std::vector<double> rows(static_cast<std::size_t>(rowsPerWrite) * vectorCount);
        for (int i = 0; i < points; i += rowsPerWrite) {
            for (int r = 0; r < rowsPerWrite; ++r)
                for (int k = 0; k < vectorCount; ++k)
                    rows[static_cast<std::size_t>(r) * vectorCount + static_cast<std::size_t>(k)] = valueOf(k, i + r);
            hsize_t const start[2] = {size[0], 0};
            size[0] += rowsPerWrite;
            H5Dset_extent(data, size);
            hid_t const target = H5Dget_space(data);
            H5Sselect_hyperslab(target, H5S_SELECT_SET, start, nullptr, count, nullptr);
            if (H5Dwrite(data, H5T_NATIVE_DOUBLE, source, target, H5P_DEFAULT, rows.data()) < 0) stop("H5Dwrite");
            H5Sclose(target);
            if (size[0] % pointsPerUpdate == 0) H5Fflush(file, H5F_SCOPE_GLOBAL);
        }
        H5Sclose(source);
        H5Dclose(data);
        H5Pclose(properties);
        H5Sclose(space);
        H5Fclose(file);
    }
    countBytes(state, 8.0 * vectorCount * points);
    unlink(path.c_str());
}

// A data set a vector, as the engine keeps them.
void streamHdf5Sets(benchmark::State & state, char const * place) {
    std::string const path = fileIn(place);
    for (auto _ : state) {
        hid_t const file = H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
        hsize_t const chunk = 4096;
        hsize_t size = 0, most = H5S_UNLIMITED;
        hid_t const space = H5Screate_simple(1, &size, &most);
        hid_t const properties = H5Pcreate(H5P_DATASET_CREATE);
        H5Pset_chunk(properties, 1, &chunk);
        std::vector<hid_t> sets;
        for (int k = 0; k < vectorCount; ++k)
            sets.push_back(H5Dcreate2(file, ("v" + std::to_string(k)).c_str(), H5T_NATIVE_DOUBLE, space, H5P_DEFAULT,
                                      properties, H5P_DEFAULT));
        std::vector<double> column(pointsPerUpdate);
        for (int i = 0; i < points; i += pointsPerUpdate) {
            hsize_t const start = size, count = pointsPerUpdate;
            size += count;
            hid_t const source = H5Screate_simple(1, &count, nullptr);
            for (int k = 0; k < vectorCount; ++k) {
                for (int r = 0; r < pointsPerUpdate; ++r) column[static_cast<std::size_t>(r)] = valueOf(k, i + r);
                hid_t const data = sets[static_cast<std::size_t>(k)];
                H5Dset_extent(data, &size);
                hid_t const target = H5Dget_space(data);
                H5Sselect_hyperslab(target, H5S_SELECT_SET, &start, nullptr, &count, nullptr);
                if (H5Dwrite(data, H5T_NATIVE_DOUBLE, source, target, H5P_DEFAULT, column.data()) < 0) stop("H5Dwrite");
                H5Sclose(target);
            }
            H5Sclose(source);
            H5Fflush(file, H5F_SCOPE_GLOBAL);
        }
        for (hid_t set : sets) H5Dclose(set);
        H5Pclose(properties);
        H5Sclose(space);
        H5Fclose(file);
    }
    countBytes(state, 8.0 * vectorCount * points);
    unlink(path.c_str());
}
#endif

void openEngine(benchmark::State & state) {
    constexpr int count = 10'000;
    std::string const path = fileIn("memory", "open");
    {
        Run run(path, count);
        run.reference.addVal(0.0);
        for (IfVector & vector : run.vectors) vector.addVal(1.0);
    }
    auto const messages = std::make_shared<NullMessageHandler>();
    for (auto _ : state) {
        YString name;
        if (!vec_OpenGroup(YString(path), VecOpenGroupOptions(), &name, messages)) stop(path.c_str());
        YList<YString> names;
        vec_GetVectorsInGroup(&names, name);
        bench::check("vectors of the file", static_cast<double>(names.size()), count + 1);
        state.PauseTiming();
        vec_DestroyGroup(name, true);
        state.ResumeTiming();
    }
    unlink(path.c_str());
}

constexpr int wideVectors = 10'000;
constexpr int widePoints = 1000;

std::string const & wideFile() {
    static std::string const path = [] {
        std::string const made = fileIn("memory", "wide");
        Run run(made, wideVectors);
        for (int i = 0; i < widePoints; ++i)
            for (IfVector & vector : run.vectors) vector.addVal(static_cast<double>(i));
        for (int i = 0; i < widePoints; ++i) run.reference.addVal(static_cast<double>(i));
        return made;
    }();
    return path;
}

// Each time another vector of the open file: found by its name, and its values for the first time.
void readOneEngine(benchmark::State & state) {
    auto const messages = std::make_shared<NullMessageHandler>();
    YString name;
    if (!vec_OpenGroup(YString(wideFile()), VecOpenGroupOptions(), &name, messages)) stop(wideFile().c_str());
    std::vector<YString> names;
    for (int k = 0; k < wideVectors; ++k) names.emplace_back("v" + std::to_string(k));
    std::size_t next = 0;
    for (auto _ : state) {
        XYVector * vector = nullptr;
        vec_GetVector(name, names[next++], &vector);
        bench::check("the last value", vector->realData()[widePoints - 1], widePoints - 1);
    }
    vec_DestroyGroup(name, true);
}

void readOnePread(benchmark::State & state) {
    int const file = open(wideFile().c_str(), O_RDONLY);
    std::vector<double> data(widePoints);
    off_t at = 100'000;
    for (auto _ : state) {
        if (pread(file, data.data(), widePoints * sizeof(double), at) < 0) stop("pread");
        benchmark::DoNotOptimize(data.data());
        at += widePoints * static_cast<off_t>(sizeof(double));
    }
    close(file);
}

constexpr std::int64_t largeVectors = 16;
constexpr std::int64_t largePoints = 8 << 20; // of 64 MiB each: a file of 1 GiB

// Written together, so that the pieces of a vector lie apart.
std::string const & largeFile() {
    static std::string const path = [] {
        std::string const made = fileIn("memory", "large");
        Run run(made, largeVectors);
        for (std::int64_t i = 0; i < largePoints; ++i)
            for (IfVector & vector : run.vectors) vector.addVal(static_cast<double>(i));
        return made;
    }();
    return path;
}

void readEngine(benchmark::State & state) {
    auto const messages = std::make_shared<NullMessageHandler>();
    YString const path(largeFile());
    for (auto _ : state) {
        state.PauseTiming();
        YString name;
        if (!vec_OpenGroup(path, VecOpenGroupOptions(), &name, messages)) stop(path.c_str());
        XYVector * vector = nullptr;
        vec_GetVector(name, "v7", &vector);
        state.ResumeTiming();
        double const * const data = vector->realData();
        bench::check("the last value", data[largePoints - 1], static_cast<double>(largePoints - 1));
        state.PauseTiming();
        vec_DestroyGroup(name, true);
        state.ResumeTiming();
    }
    countBytes(state, 8.0 * largePoints);
}

// The bytes of one vector, from where they lie, in the pieces in which they lie there.
void readPread(benchmark::State & state) {
    constexpr std::size_t piece = 32768;
    int const file = open(largeFile().c_str(), O_RDONLY);
    std::size_t const bytes = static_cast<std::size_t>(largePoints) * 8;
    std::vector<double> data(static_cast<std::size_t>(largePoints));
    for (auto _ : state) {
        for (std::size_t at = 0; at < bytes; at += piece)
            if (pread(file, reinterpret_cast<char *>(data.data()) + at, piece,
                      static_cast<off_t>(40000 + at * largeVectors)) < 0)
                stop("pread");
        benchmark::DoNotOptimize(data.data());
    }
    close(file);
    countBytes(state, 8.0 * largePoints);
}

constexpr std::size_t blockBytes = 1 << 20;
constexpr int blocksSent = 800;

void sharedEngine(benchmark::State & state) {
    std::string const path = fileIn("memory");
    auto const pool = SharedBlockManager::create(blockBytes, 4);
    SharedBlockToken const token(pool);
    for (auto _ : state) {
        Run run(path, 1);
        for (int i = 0; i < blocksSent; ++i) {
            int const id = pool->allocate();
            if (id < 0 || !run.vectors[0].addSharedBlock(token, id, blockBytes)) stop("addSharedBlock");
        }
    }
    countBytes(state, static_cast<double>(blockBytes) * blocksSent);
    unlink(path.c_str());
}

void sharedWrite(benchmark::State & state) {
    std::string const path = fileIn("memory");
    std::vector<char> const block(blockBytes, 'x');
    for (auto _ : state) {
        int const file = open(path.c_str(), O_CREAT | O_TRUNC | O_RDWR, 0600);
        for (int i = 0; i < blocksSent; ++i)
            if (write(file, block.data(), block.size()) < 0) stop("write");
        close(file);
    }
    countBytes(state, static_cast<double>(blockBytes) * blocksSent);
    unlink(path.c_str());
}

void addAll() {
    for (char const * place : {"memory", "disk"}) {
        std::string const at = std::string("/") + place;
        auto const add = [&](std::string const & name, void (*run)(benchmark::State &, char const *)) {
            benchmark::RegisterBenchmark((name + at).c_str(), run, place)
                ->Iterations(1)
                ->Repetitions(3)
                ->Unit(benchmark::kMillisecond);
        };
        add("Stream/engine", streamEngine);
        add("Limit/stream/write", streamWrite);
        add("Limit/stream/columns", streamColumns);
        add("Limit/stream/fwrite", streamFwrite);
#ifdef TORVELAN_HDF5
        add("Limit/stream/hdf5_matrix_by_row", streamHdf5Matrix<1>);
        add("Limit/stream/hdf5_matrix_gathered", streamHdf5Matrix<pointsPerUpdate>);
        add("Limit/stream/hdf5_sets", streamHdf5Sets);
#endif
    }
    benchmark::RegisterBenchmark("Open/engine/10000", openEngine)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("Read/one", readOneEngine)->Iterations(wideVectors)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("Limit/read/one", readOnePread)
        ->Iterations(wideVectors)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("Read/engine/64", readEngine)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("Limit/read/pread/64", readPread)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("Shared/engine", sharedEngine)
        ->Iterations(1)
        ->Repetitions(3)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("Limit/shared/write", sharedWrite)
        ->Iterations(1)
        ->Repetitions(3)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char ** argv) {
    addAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    for (char const * made : {"large", "wide"}) unlink(fileIn("memory", made).c_str());
}
