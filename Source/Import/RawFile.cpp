// Raw files that hold several data sets.
#include "Import/Csdf.h"
#include "Import/CsdfTokeniser.h"
#include "Import/GroupBeingRead.h"
#include "Import/OutputFile.h"
#include "Import/Spice2.h"
#include "Import/Spice3.h"
#include "support/FileSystem.h"
#include "support/Paths.h"
#include "support/ReportingMemory.h"
#include "support/Streams.h"
#include "support/System.h"
#include "torvelan/ForeignData.h"

#include <algorithm>
#include <limits>

namespace {

std::int32_t budgetOf(std::int32_t ramPercent) {
    constexpr std::int32_t mostPercent = 10000; // far beyond the bound, and the product stays in 64 bits
    auto const percent = static_cast<std::uint64_t>(std::clamp<std::int32_t>(ramPercent, 0, mostPercent));
    std::uint64_t const bytes = percent * sp_GetSystemRamSize() / 100;
    return static_cast<std::int32_t>(std::min<std::uint64_t>(bytes, std::numeric_limits<std::int32_t>::max()));
}

class RawFileReader {
public:
    RawFileReader(tvfstream & stream, YString const & outputPath, VecOpenRawFileOptions options,
                  YRef<MessageHandler> const & messages)
        : stream_(stream), outputPath_(outputPath), messages_(messages), budget_(budgetOf(options.ramPercent)),
          stamp_(options.stampGroups ? newRunId() : 0) {}

    // A file that is none is told of, but does not count as a failure, and its group is there.
    bool readSpice2File() {
        GroupBeingRead const group = newGroup();
        OutputFile output = outputOf(0);
        if (!readSpice2(stream_, group.get(), output, *messages_)) {
            messages_->error("Spice2 raw data file read failed because of incorrect format");
            listAsRead(group.get(), *messages_);
        }
        return true;
    }

    bool readSpice3Sets() {
        for (int n = 0; stream_.peek() >= 0; ++n) {
            GroupBeingRead const group = newGroup();
            OutputFile output = outputOf(n);
            Spice3Result const result = readSpice3(stream_, group.get(), output, budget_, *messages_);
            if (result != Spice3Result::done) return isEndOfSets(n, result);
        }
        return true;
    }

    bool readCsdfSections() {
        CsdfTokeniserImpl tokeniser(stream_);
        if (tokeniser.isAtEnd()) {
            messages_->error(nothingImported, "File is empty");
            return false;
        }
        auto const fileSize = static_cast<std::int64_t>(stream_.getFileSize());
        std::int64_t const bufferBytes = std::min<std::int64_t>(budget_, fileSize + fileSize / 2);
        for (int n = 0; !tokeniser.isAtEnd(); ++n) {
            GroupBeingRead const group = newGroup();
            OutputFile output = outputOf(n);
            CsdfResult const result = readCsdfSection(tokeniser, group.get(), output, bufferBytes, *messages_);
            if (result != CsdfResult::done) return isEndOfSections(n, result);
        }
        return true;
    }

private:
    GroupBeingRead newGroup() const {
        GroupBeingRead group(makeUnlistedGroup(YString()));
        group->runId = stamp_;
        return group;
    }

    OutputFile outputOf(int section) const {
        if (section == 0) return {outputPath_, OutputFile::Replaces::any, messages_};
        PathName const parts = sp_SplitPath(outputPath_);
        YString path =
            YString::joined(parts.drive, {parts.directory, parts.name, "_", YString(section), parts.extension});
        return {std::move(path), OutputFile::Replaces::nativeOnly, messages_};
    }

    // The line feeds behind the last set look like one more, of which nothing is there.
    bool isEndOfSets(int n, Spice3Result result) {
        if (n > 0 && result == Spice3Result::nothing) return true;
        messages_->error("SPICE3 raw data file read failed because of incorrect format");
        return false;
    }

    bool isEndOfSections(int n, CsdfResult result) {
        if (result == CsdfResult::unfinished) messages_->warning("Possible missing data in CSDF file");
        if (result == CsdfResult::unfinished || result == CsdfResult::nothing) return true;
        if (n == 0)
            messages_->error(nothingImported, csdfReason(result));
        else
            messages_->error("CSDF data file read failed due to bad format in section %d, reason: %s. Earlier sections "
                             "successfully imported",
                             n + 1, csdfReason(result));
        return false;
    }

    static constexpr char const * nothingImported =
        "CSDF data file read failed due to bad format, reason: %s. No data imported";

    tvfstream & stream_;
    YString const & outputPath_;
    YRef<MessageHandler> const & messages_;
    std::int32_t const budget_; // for the buffers of a group's vectors together
    std::uint32_t const stamp_;
};

// The file that is read must not be emptied to be written.
bool isSameFile(YString const & a, YString const & b) {
    auto const first = files().open(a, FileMode::read);
    auto const second = files().open(b, FileMode::read);
    return first != nullptr && second != nullptr && first->identity() == second->identity();
}

bool readRawFile(YString const & path, YString const & outputPath, VecOpenRawFileOptions options,
                 YRef<MessageHandler> const & messages) {
    tvfstream stream(path, tvfstream::modeReadUntranslated, false, false);
    if (!stream) {
        messages->error("Cannot open data file '%s'", path);
        return false;
    }
    YString const output = isSameFile(path, outputPath) ? YString() : outputPath;
    if (output.empty() && !outputPath.empty())
        messages->warning("Cannot create data file '%s'. The data are kept in memory", outputPath);
    RawFileReader reader(stream, output, options, messages);
    if (options.spice2) return reader.readSpice2File();
    return options.csdf ? reader.readCsdfSections() : reader.readSpice3Sets();
}

} // namespace

bool vec_OpenRawFile(YString const & path, YString const & outputPath, VecOpenRawFileOptions options,
                     YRef<MessageHandler> messages) {
    return reportingMemory([&] {
        if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
        return readRawFile(path, outputPath, options, messages);
    });
}
