// A data file in memory, opened and asked for everything that is in it.
#pragma once

#include "Groups/GroupStore.h"
#include "support/MemoryFiles.h"
#include "torvelan/torvelan.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace fuzz {

constexpr char const * fileName = "/fuzz.tvdat";

class ErrorCount final : public MessageHandler {
public:
    void finalOutput(MessageLevel level, YString const &) override { count += level == MessageLevel::error; }
    int count = 0;
};

inline EngineSession & session() {
    static EngineSession running(std::make_shared<NullMessageHandler>());
    return running;
}

inline void useVector(dvec & vector) {
    constexpr std::int64_t enough = 50;
    for (std::int64_t i = 0; i < std::min(vector.numDivisions(), enough); ++i) {
        vector.getReal(0, i);
        vector.getString(0, i);
        vector.divisionLabel(i);
    }
    vector.getRange(true);
    vector.ref.getRange(false);
}

// A stream that is damaged may take nothing more.
inline void goOn(Group & group) {
    try {
        group.forEachVector([](dvec & vector) {
            vector.addDivision(YString());
            vector.addVal(1.0);
        });
        if (group.dataFile != nullptr) group.dataFile->update();
    } catch (FatalException const &) {
    }
}

// A file that opens has told no error, one that does not has told at least one; the store has no more groups than it
// had. What can be opened can be saved and opened again.
inline void openDataFile(bool update) {
    auto const words = std::make_shared<ErrorCount>();
    VecOpenGroupOptions options;
    options.ignoreLock = true;
    options.update = update;
    YString name;
    bool const opened = vec_OpenGroup(fileName, options, &name, words);
    if (opened != (words->count == 0)) std::abort();
    while (Group * group = groupListHead()) {
        if (group->isProtected()) break;
        group->forEachVector(useVector);
        group->postProcessScripts();
        if (update) goOn(*group);
        destroyGroup(group);
    }
}

inline void openBytes(std::string bytes) {
    session();
    MemoryFiles disk;
    FileSystemInUse const inUse(disk);
    for (bool update : {false, true}) {
        disk.put(fileName, bytes);
        openDataFile(update);
    }
}

} // namespace fuzz
