#include "DataFiles/NativeDataFile.h"

#include "DataFiles/StreamBacking.h"
#include "Dfs/RecordText.h"
#include "Dfs/StreamReader.h"

NativeDataFile::~NativeDataFile() = default;

bool NativeDataFile::appendText(int stream, YString const & text) {
    RecordText record;
    record.string(text);
    return streams_->write(stream, record.data(), record.size());
}

void NativeDataFile::readTexts(int stream, YArray<YString> * out) {
    StreamReader reader(*streams_, stream);
    for (YString text; reader.readString(&text);) out->push_back(text);
}

void NativeDataFile::update() {
    if (streams_->isWritable() && !streams_->update()) throwWriteFailure(streams_->path());
}

int NativeDataFile::link(GroupDataFile & other) {
    auto * theirs = dynamic_cast<NativeDataFile *>(&other);
    if (theirs == nullptr) return -1;
    bool const failedBefore = streams_->writeFailed();
    int const number = streams_->addLink(*theirs->streams_);
    if (streams_->writeFailed() && !failedBefore) throwWriteFailure(streams_->path());
    return number;
}

void NativeDataFile::writeLinks() {
    if (streams_->isWritable() && !streams_->rewriteLinkTable()) throwWriteFailure(streams_->path());
}
