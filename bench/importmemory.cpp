// Peak memory of vec_OpenRawFile on a file that is larger than its budget.
//   import_memory spice2|spice3|csdf GIB PERCENT FOLDER
// Makes a file of so many GiB in the folder (SPICE2: a hole, which reads as zeros; the others: data sets of 64 MiB, one
// behind the other), imports it into data files beside it with so many percent of the machine's memory as budget, and
// prints what the process has taken. The files go at the end.
#include "torvelan/torvelan.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t setBytes = std::size_t{64} << 20;

std::string spice2Header() {
    constexpr char counts[] = {8, 0, 4, 0};
    std::string text = std::string(96, ' ') + std::string(counts, sizeof counts) + "time    ";
    for (char name = '1'; name < '8'; ++name) text += name + std::string(7, ' ');
    return text + std::string(2 + 8 * 4 + 22, ' ');
}

std::string row(char const * format, std::size_t i) {
    char text[160];
    double const x = static_cast<double>(i);
    std::snprintf(text, sizeof text, format, x, 1 / (x + 1), 2 / (x + 1), 3 / (x + 1));
    return text;
}

std::string spice3Set() {
    std::string values;
    std::size_t points = 0;
    for (; values.size() < setBytes; ++points)
        values += std::to_string(points) + row("\t%.15e\n\t%.15e\n\t%.15e\n\t%.15e\n", points);
    return "Title: x\nDate: y\nFlags: real\nNo. Variables: 4\nNo. Points: " + std::to_string(points) +
           "\nVariables:\n0 time time\n1 v(a) voltage\n2 v(b) voltage\n3 v(c) voltage\nValues:\n" + values;
}

std::string csdfSet() {
    std::string text = "#H\nNODES='3' SWEEPVAR='TIME' COMPLEXVALUES='NO'\n#N\n'V(a)' 'V(b)' 'V(c)'\n";
    for (std::size_t i = 0; text.size() < setBytes; ++i) text += row("#C %.15e 3\n%.15e:1 %.15e:2 %.15e:3\n", i);
    return text + "#;\n";
}

// In a process of its own, whose memory does not count.
void makeFile(fs::path const & path, std::string const & format, std::size_t bytes) {
    std::string const set = format == "spice2" ? spice2Header() : format == "csdf" ? csdfSet() : spice3Set();
    std::FILE * const out = std::fopen(path.c_str(), "wb");
    std::size_t const sets = format == "spice2" ? 1 : bytes / set.size();
    bool good = out != nullptr;
    for (std::size_t i = 0; i < sets && good; ++i) good = std::fwrite(set.data(), 1, set.size(), out) == set.size();
    if (!good || std::fclose(out) != 0) std::exit(1);
    if (format == "spice2") fs::resize_file(path, bytes);
}

template <class Work> bool inChild(Work work) {
    pid_t const child = fork();
    if (child == 0) {
        work();
        std::exit(0);
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

long long valuesRead() {
    long long total = 0;
    YList<YString> groups;
    vec_GetGroups(&groups);
    for (YString const & group : groups) {
        int count = 0;
        vec_GetNumVectorsInGroup(group, &count);
        std::vector<VectorInfo> vectors(static_cast<std::size_t>(count));
        count = vec_GetVectorsInGroup(group, vectors.data(), count);
        for (int i = 0; i < count; ++i) total += vectors[static_cast<std::size_t>(i)].length;
    }
    return total;
}

} // namespace

int main(int argc, char ** argv) {
    if (argc != 5) {
        std::fputs("import_memory spice2|spice3|csdf GIB PERCENT FOLDER\n", stderr);
        return 2;
    }
    std::string const format = argv[1];
    fs::path const folder = fs::path(argv[4]) / ("torvelan-import-" + std::to_string(getpid()));
    fs::create_directory(folder);
    if (!inChild([&] { makeFile(folder / "in", format, static_cast<std::size_t>(std::atof(argv[2]) * (1 << 30))); })) {
        fs::remove_all(folder);
        return 1;
    }
    VecOpenRawFileOptions options;
    options.spice2 = format == "spice2";
    options.csdf = format == "csdf";
    options.ramPercent = std::atoi(argv[3]);
    bool done = false;
    {
        EngineSession const session(std::make_shared<NullMessageHandler>());
        double const before = peakMegabytes();
        auto const start = std::chrono::steady_clock::now();
        done = vec_OpenRawFile(YString((folder / "in").string()), YString((folder / "out.tvdat").string()), options,
                               nullptr);
        std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;
        std::printf("%s: %.2f GB, %lld values, %.1f s, peak %.1f MB, before the import %.1f MB\n", format.c_str(),
                    static_cast<double>(fs::file_size(folder / "in")) / 1e9, valuesRead(), taken.count(),
                    peakMegabytes(), before);
    }
    fs::remove_all(folder);
    return done ? 0 : 1;
}
