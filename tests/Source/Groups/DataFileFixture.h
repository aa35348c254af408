// A store whose data files are kept in memory and tell what is asked of them.
#pragma once

#include "Groups/GroupDataFile.h"
#include "Source/Groups/StoreFixture.h"

#include <algorithm>
#include <map>

class RecordedDataFile : public GroupDataFile {
public:
    RecordedDataFile(std::string name_, Texts & events_) : name(std::move(name_)), events(events_) {}
    ~RecordedDataFile() override { tell("closed"); }

    YString path() const override { return YString(name); }
    bool appendText(int stream, YString const & text) override {
        if (readOnly) return false;
        streams[stream].push_back(text);
        return true;
    }
    void readTexts(int stream, YArray<YString> * out) override {
        out->insert(out->end(), streams[stream].begin(), streams[stream].end());
    }
    void update() override { tell("updated"); }
    int link(GroupDataFile & other) override {
        std::string const otherName(other.path().view());
        if (std::find(links.begin(), links.end(), otherName) != links.end()) return -1;
        links.push_back(otherName);
        return static_cast<int>(links.size());
    }
    void writeLinks() override { tell("links written"); }
    void deleteWhenClosed() override { tell("marked"); }

    bool readOnly = false;
    std::map<int, YArray<YString>> streams;
    Texts links;

private:
    void tell(char const * what) { events.push_back(name + " " + what); }

    std::string name;
    Texts & events;
};

class DataFileFixture : public StoreFixture {
protected:
    static constexpr int labelStream = 1004, postProcStream = 1006;

    DataFileFixture() {
        present = this;
        dataFileMakers() = {create, open};
    }
    ~DataFileFixture() override {
        destroyAllGroups();
        dataFileMakers() = {};
        present = nullptr;
    }

    static RecordedDataFile & fileOf(Group const * group) { return static_cast<RecordedDataFile &>(*group->dataFile); }
    void giveFile(Group * group, std::string const & name) {
        group->dataFile = std::make_shared<RecordedDataFile>(name, events);
        group->labelStream = labelStream;
        group->postProcStream = postProcStream;
    }
    Group * groupWithFile(char const * baseName, std::string const & file) {
        Group * group = makeGroup("", baseName, 0);
        giveFile(group, file);
        return group;
    }

    Texts events;                                  // of all files
    VEC_ERROR creation = VEC_OK;                   // how the making of files ends
    std::map<std::string, std::string> storedName; // the files that can be opened, with the groups in them

private:
    static VEC_ERROR create(Group & group, YString const & path, YRef<MessageHandler> const &) {
        present->events.push_back(text(path) + " created");
        if (present->creation == VEC_OK) present->giveFile(&group, text(path));
        return present->creation;
    }
    static Group * open(YString const & path, YRef<MessageHandler> const & messages) {
        auto const known = present->storedName.find(text(path));
        if (known == present->storedName.end()) {
            messages->error("no such file");
            return nullptr;
        }
        Group * group = makeUnlistedGroup("");
        group->keepDataFile = true;
        present->giveFile(group, known->first);
        group->addLabel(YString("of " + known->first));
        listRestoredGroup(group, YString(known->second), false, *messages);
        member(group, "v", static_cast<double>(present->events.size()));
        return group;
    }

    static inline DataFileFixture * present = nullptr;
};
