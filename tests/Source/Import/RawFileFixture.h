// SPICE3 raw files made in memory, written to a file of the test's own and read into a running session.
#pragma once

#include "Groups/GroupStore.h"
#include "RecordedMessages.h"
#include "torvelan/EngineSession.h"
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

// The parts of a raw file, each with a sound default.
struct RawFile {
    std::string flags = "real";
    std::string variableCount = "2";
    std::string pointCount = "2";
    std::string extra; // further lines of the header
    std::string variables = "\t0\ttime\ttime\n\t1\tv(out)\tvoltage\n";
    std::string valuesLine = "Values:\n";
    std::string values = "0\t0.5\n\t1.5\n1\t1\n\t2.5\n";

    std::string header() const {
        return "Title: a circuit\nDate: today\nPlotname: Transient Analysis\nFlags: " + flags +
               "\nNo. Variables: " + variableCount + "\nNo. Points: " + pointCount + "\n" + extra;
    }
    std::string text() const { return header() + "Variables:\n" + variables + valuesLine + values; }

    static RawFile complexOne(std::string points, std::string data) {
        RawFile file;
        file.flags = "complex";
        file.variableCount = "1";
        file.pointCount = std::move(points);
        file.variables = "0 frequency frequency\n";
        file.values = std::move(data);
        return file;
    }
};

class RawFileFixture : public testing::Test {
protected:
    static constexpr char const * generalFailure = "SPICE3 raw data file read failed because of incorrect format";

    bool open(std::string_view content) {
        file_.rewrite(content);
        return openPath(file_.path(), DATA_SPICE3);
    }
    bool open(RawFile const & file) { return open(file.text()); }
    bool openPath(char const * path, DataFileType type) {
        messages_->clear();
        groupName_ = "untouched";
        return vec_OpenForeignDataFile(path, type, VecOpenGroupOptions(), &groupName_, messages_);
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
    // A refusal: the general message last, nothing in the store.
    void expectRefused(std::string_view content) {
        Group * const head = groupListHead();
        EXPECT_FALSE(open(content));
        ASSERT_FALSE(texts().empty());
        EXPECT_EQ(texts().back(), generalFailure);
        EXPECT_EQ(groupListHead(), head);
        EXPECT_EQ(groupName_, "untouched");
    }

    std::shared_ptr<RecordedMessages> messages_ = std::make_shared<RecordedMessages>();
    EngineSession session_{messages_};
    ScratchFile file_{""};
    YString groupName_;
};
