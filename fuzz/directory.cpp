// A good data file whose bytes are changed at places that hold something: the input is pairs of a place and a byte. So
// the search spends its time in the directory and the records, and not in finding a header.
#include "DataFileTarget.h"

#include <vector>

namespace {

std::string makeSample() {
    fuzz::session();
    MemoryFiles disk;
    FileSystemInUse const inUse(disk);
    Group * group = makeGroup("sample", "sample", 0);
    auto * time = new dvec("time", group, PT_TIME);
    time->enterGroup();
    for (char const * name : {"a", "b"}) {
        auto * vector = new dvec(name, group, PT_VOLTAGE);
        static_cast<NamedVector &>(vector->ref) = *time;
        vector->enterGroup();
    }
    group->addPostProcess("script");
    vec_InitialiseSimulationGroup(true, fuzz::fileName, group->name, false, false, nullptr, nullptr);
    for (int step = 0; step < 3; ++step) {
        vec_AddGroupDivision(group->name, "s;1;voltage");
        for (char const * name : {"time", "a", "b"}) {
            if (step != 0) group->find(name)->addDivision(group->name);
            for (int i = 0; i < 4; ++i) group->find(name)->addVal(i);
        }
    }
    destroyGroup(group);
    return disk.bytes(fuzz::fileName);
}

std::vector<std::size_t> usedPlaces(std::string const & bytes) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] != 0 || i < 1200) places.push_back(i);
    return places;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    constexpr std::size_t changeBytes = 3;
    static std::string const sample = makeSample();
    static std::vector<std::size_t> const places = usedPlaces(sample);
    std::string bytes = sample;
    for (; size >= changeBytes; size -= changeBytes, data += changeBytes)
        bytes[places[static_cast<std::size_t>(data[0] | data[1] << 8) % places.size()]] = static_cast<char>(data[2]);
    fuzz::openBytes(std::move(bytes));
    return 0;
}
