// Groups and their files, in a running session and a folder of the test's own.
#pragma once

#include "Source/Groups/StoreFixture.h"
#include "support/TemporaryFolder.h"
#include "torvelan/DataFiles.h"
#include "torvelan/Groups.h"

#include <initializer_list>
#include <vector>

class DataFilesFixture : public StoreFixture {
protected:
    ~DataFilesFixture() override { destroyAllGroups(); }

    // A group as a run begins with: a time vector, and signals over it, all empty.
    Group * newRun(std::initializer_list<char const *> signals, VD_type type = VD_REAL) {
        Group * group = makeGroup("A run", "tran", 0);
        auto * time = new dvec("time", group, PT_TIME);
        time->enterGroup();
        for (char const * name : signals) {
            auto * signal = new dvec(name, group, PT_VOLTAGE);
            signal->setSize(0, type);
            static_cast<NamedVector &>(signal->ref) = *time;
            signal->enterGroup();
        }
        return group;
    }
    VEC_ERROR initialise(Group * group, YString const & path) {
        return vec_InitialiseSimulationGroup(true, path, group->name, false, false, words, nullptr);
    }
    // One point of a run: x, and the value of signal k is x * (k + 1).
    static void addPoint(Group * group, std::initializer_list<char const *> signals, double x) {
        group->find("time")->addVal(x);
        double factor = 1;
        for (char const * name : signals) group->find(name)->addVal(x * factor++);
    }
    void addDivision(Group * group, std::initializer_list<char const *> vectors, char const * label) {
        vec_AddGroupDivision(group->name, label);
        for (char const * name : vectors) group->find(name)->addDivision(group->name);
    }

    Group * open(YString const & path, VecOpenGroupOptions options = {}) {
        YString name;
        return vec_OpenGroup(path, options, &name, words) ? findGroup(name) : nullptr;
    }
    bool save(Group * group, YString const & path, bool create = false) {
        nameSpace().current = group;
        VecSaveGroupOptions options;
        options.create = create;
        return vec_SaveGroup(path, options, words);
    }
    static std::vector<double> values(BaseVector const & vector, std::int64_t division = 0) {
        double const * const data = vector.realData(division);
        return data != nullptr ? std::vector<double>(data, data + vector.length(division)) : std::vector<double>();
    }
    static VecOpenGroupOptions ignoringLock() {
        VecOpenGroupOptions options;
        options.ignoreLock = true;
        return options;
    }
    static VecOpenGroupOptions forUpdate() {
        VecOpenGroupOptions options;
        options.update = true;
        return options;
    }

    TemporaryFolder folder;
    std::shared_ptr<RecordedMessages> words = std::make_shared<RecordedMessages>();
};
