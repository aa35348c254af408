// The main program of a fuzz target in ordinary builds: feeds files, and the files of folders, to the target. So every
// stored input is a test with every compiler and under every sanitizer.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> filesOf(fs::path const & place) {
    if (!fs::is_directory(place)) return {place};
    std::vector<fs::path> files;
    for (auto const & entry : fs::recursive_directory_iterator(place))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

bool replay(fs::path const & file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return false;
    }
    std::vector<char> const bytes{std::istreambuf_iterator<char>(stream), {}};
    std::fprintf(stderr, "%s, %zu bytes\n", file.c_str(), bytes.size());
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const *>(bytes.data()), bytes.size());
    return true;
}

} // namespace

// Status 1 when a place named has no file to replay or one cannot be read.
int main(int argc, char ** argv) {
    try {
        bool good = argc > 1;
        for (int i = 1; i < argc; ++i) {
            auto const files = filesOf(argv[i]);
            if (files.empty()) std::fprintf(stderr, "no files in %s\n", argv[i]);
            good = !files.empty() && std::all_of(files.begin(), files.end(), replay) && good;
        }
        return good ? 0 : 1;
    } catch (std::exception const & e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
