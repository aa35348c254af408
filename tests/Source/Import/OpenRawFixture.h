// Raw files read by vec_OpenRawFile, with data files in memory.
#pragma once

#include "ImportFixture.h"
#include "support/MemoryFiles.h"
#include "support/Paths.h"

class OpenRawFixture : public ImportFixture {
protected:
    ~OpenRawFixture() override { vec_DestroyAllGroups(); }

    bool openRaw(std::string_view content, char const * output = "out.tvdat", VecOpenRawFileOptions options = {}) {
        file_.rewrite(content);
        messages_->clear();
        return vec_OpenRawFile(file_.path(), output, options, messages_);
    }
    static std::vector<std::string> groupNames() {
        std::vector<std::string> result;
        for (Group * g = groupListHead(); g != nullptr; g = g->next)
            if (!g->isProtected() && !g->isLocal()) result.insert(result.begin(), std::string(g->name.view()));
        return result;
    }
    static Group * newest() { return groupListHead(); }

    static std::string fullPath(char const * name) { return std::string(sp_GetFullPath(name).view()); }
    // Names of the data files that there are.
    std::vector<std::string> dataFiles() const {
        std::vector<std::string> names;
        std::size_t const folder = fullPath("x").size() - 1;
        for (auto const & [path, content] : disk_.contents) names.push_back(path.substr(folder));
        return names;
    }

    MemoryFiles disk_;

private:
    FileSystemInUse const inUse_{disk_};
};
