// NativeDataFile: a file of streams as the file of a group.
#pragma once

#include "Dfs/DfsFile.h"
#include "Groups/GroupDataFile.h"

class NativeDataFile final : public GroupDataFile {
public:
    explicit NativeDataFile(YRef<DfsFile> streams) noexcept : streams_(std::move(streams)) {}
    ~NativeDataFile() override;

    YString path() const override { return streams_->path(); }
    bool appendText(int stream, YString const & text) override;
    void readTexts(int stream, YArray<YString> * out) override;
    void update() override; // throws FatalException when the file does not take what is to be written
    int link(GroupDataFile & other) override;
    void writeLinks() override;
    void deleteWhenClosed() override { streams_->deleteWhenClosed(); }

private:
    YRef<DfsFile> streams_;
};
