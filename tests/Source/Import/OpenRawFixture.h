// Raw files read by vec_OpenRawFile, with data files that only tell what is asked of them.
#pragma once

#include "ImportFixture.h"
#include "Source/Groups/DataFileFixture.h"

// Data files are recorded, not made.
class OpenRawFixture : public ImportFixture {
protected:
    OpenRawFixture() {
        present = this;
        dataFileMakers().create = create;
    }
    ~OpenRawFixture() override {
        vec_DestroyAllGroups();
        dataFileMakers() = makers_;
        present = nullptr;
    }

    bool openRaw(std::string_view content, char const * output = "out.tvdat", VecOpenRawFileOptions options = {}) {
        file_.rewrite(content);
        messages_->clear();
        events.clear();
        return vec_OpenRawFile(file_.path(), output, options, messages_);
    }
    static std::vector<std::string> groupNames() {
        std::vector<std::string> result;
        for (Group * g = groupListHead(); g != nullptr; g = g->next)
            if (!g->isProtected() && !g->isLocal()) result.insert(result.begin(), std::string(g->name.view()));
        return result;
    }
    static Group * newest() { return groupListHead(); }

    Texts events; // of all data files
    bool canCreate = true;

private:
    static VEC_ERROR create(Group & group, YString const & path, YRef<MessageHandler> const &) {
        std::string const vectors = std::to_string(group.vectorsInOrder().size());
        std::string const kind(group.name.view().substr(0, group.name.view().find('_')));
        present->events.push_back(std::string(path.view()) + " for " + vectors + " vectors of " + kind);
        if (!present->canCreate) return VEC_NO_DATA_FILE;
        group.dataFile = std::make_shared<RecordedDataFile>(std::string(path.view()), present->events);
        return VEC_OK;
    }

    static inline OpenRawFixture * present = nullptr;

    DataFileMakers const makers_ = dataFileMakers(); // the real ones
};
