#include "DataFiles/StreamBacking.h"

#include "support/ReportingMemory.h"
#include "torvelan/Exceptions.h"
#include "torvelan/Host.h"

#include <string>

namespace {

// Known to settings of hosts; buffers have the size that the file gives them.
constexpr int defaultBufferSize = 256;
MakeOption const bufferSize("VectorBufferSize", defaultBufferSize, OptionPersistence::stored, __FILE__, __LINE__);

} // namespace

void throwWriteFailure(YString const & path) {
    throw FatalException("Write failure to data file " + std::string(path.view()));
}

std::uint64_t StreamBacking::read(void * dest, std::uint64_t bytes, std::uint64_t offset) {
    return file_->readAt(stream_, dest, bytes, offset);
}

// From now on appending needs no look at the file until the writer is full.
void StreamBacking::findWriter() {
    if (writer != nullptr) return;
    StreamWriter * const found = file_->writer(stream_);
    if (found != nullptr && found->type == StreamType::bytes) writer = found; // the others are told when they change
}

void StreamBacking::append(void const * data, std::uint64_t bytes) {
    if (bytes == 0) return;
    if (!reportingMemory([&] { return file_->write(stream_, data, bytes); })) throwWriteFailure(file_->path());
    findWriter();
}

bool StreamBacking::appendShared(SharedBlockManager & blocks, int block, std::uint64_t bytes) {
    bool const failedBefore = file_->writeFailed();
    if (reportingMemory([&] { return file_->writeSharedBlock(stream_, blocks, block, bytes); })) return true;
    if (file_->writeFailed() && !failedBefore) throwWriteFailure(file_->path());
    return false;
}

void StreamBacking::flush() {
    if (!reportingMemory([this] { return file_->flush(stream_); })) throwWriteFailure(file_->path());
}

// A group may show what lies in another file than its own: the stream of that number is not the one meant then.
bool StreamBacking::splice(int link, BlockBacking const & other) {
    auto const * theirs = dynamic_cast<StreamBacking const *>(&other);
    takeBack();
    writer = nullptr;
    return theirs != nullptr && file_->isLink(link, *theirs->file_) &&
           file_->spliceLinkedStream(stream_, link, theirs->stream_);
}
