// Files made in memory, written to a file of the test's own and read into a running session.
#pragma once

#include "Groups/GroupStore.h"
#include "RecordedMessages.h"
#include "torvelan/EngineSession.h"
#include "torvelan/Evaluate.h"
#include "torvelan/ForeignData.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

// A file that is gone when the test ends.
class ScratchFile {
public:
    explicit ScratchFile(std::string_view content) {
        int const descriptor = mkstemp(path_);
        EXPECT_GE(descriptor, 0);
        close(descriptor);
        rewrite(content);
    }
    ~ScratchFile() { std::remove(path_); }
    ScratchFile(ScratchFile const &) = delete;
    ScratchFile & operator=(ScratchFile const &) = delete;

    // As a new file each time: truncating one makes some file systems wait for the disk.
    void rewrite(std::string_view content) const {
        std::remove(path_);
        std::ofstream out(path_, std::ios::binary);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    char const * path() const noexcept { return path_; }

private:
    char path_[32] = "/tmp/torvelan-import-XXXXXX";
};

class ImportFixture : public testing::Test {
protected:
    bool open(std::string_view content, DataFileType type, VecOpenGroupOptions options = {}) {
        file_.rewrite(content);
        return openPath(file_.path(), type, options);
    }
    bool openPath(char const * path, DataFileType type, VecOpenGroupOptions options = {}) {
        messages_->clear();
        groupName_ = "untouched";
        return vec_OpenForeignDataFile(path, type, options, &groupName_, messages_);
    }

    Group * group() const { return findGroup(groupName_); }
    dvec * vector(char const * name) const { return group() != nullptr ? group()->find(name) : nullptr; }
    std::vector<double> reals(char const * name) const {
        dvec const * v = vector(name);
        EXPECT_NE(v, nullptr) << name;
        return v != nullptr ? realsOf(*v) : std::vector<double>();
    }
    std::vector<complex> complexes(char const * name) const {
        std::vector<complex> values;
        dvec const * v = vector(name);
        EXPECT_NE(v, nullptr) << name;
        for (std::int64_t i = 0; v != nullptr && i < v->length(); ++i) values.push_back({v->getReal(i), v->getImag(i)});
        return values;
    }
    static std::vector<double> realsOf(BaseVector const & v) {
        std::vector<double> values;
        for (std::int64_t i = 0; i < v.length(); ++i) values.push_back(v.getReal(i));
        return values;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (YString const & name : group()->namesInOrder()) result.emplace_back(name.view());
        return result;
    }
    std::vector<std::string> const & texts() const { return messages_->texts; }
    // A refusal by a reader that lists its group only when all went well: the general message last, nothing in the
    // store.
    void expectRefused(std::string_view content, DataFileType type, char const * message) {
        Group * const head = groupListHead();
        EXPECT_FALSE(open(content, type));
        ASSERT_FALSE(texts().empty());
        EXPECT_EQ(texts().back(), message);
        EXPECT_EQ(groupListHead(), head);
        EXPECT_EQ(groupName_, "untouched");
    }
    // Whether such a reader took it, perhaps with a warning. The group that came of it is destroyed again.
    bool openAnything(std::string_view content, DataFileType type) {
        Group * const head = groupListHead();
        bool const done = open(content, type);
        EXPECT_EQ(groupListHead() == head, !done);
        EXPECT_EQ(messages_->count(MessageLevel::error) == 0, done);
        if (done) {
            EXPECT_EQ(groupListHead(), group());
            vec_DestroyGroup(groupName_, false);
        }
        return done;
    }
    void expectUsable() {
        double two = 0;
        EXPECT_EQ(vec_Evaluate(&two, "1+1", ScpParseContext(messages_)), VEC_EVAL_OK);
        EXPECT_EQ(two, 2);
    }

    std::shared_ptr<RecordedMessages> messages_ = std::make_shared<RecordedMessages>();
    EngineSession session_{messages_};
    ScratchFile file_{""};
    YString groupName_;
};
