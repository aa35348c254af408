// Raw files that hold several data sets.
#include "Import/GroupBeingRead.h"
#include "Import/OutputFile.h"
#include "Import/Spice3.h"
#include "support/Paths.h"
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

    bool readSpice3Sets() {
        for (int n = 0; stream_.peek() >= 0; ++n) {
            GroupBeingRead const group = newGroup();
            Spice3Result const result = readSpice3(stream_, group.get(), outputOf(n), budget_, *messages_);
            if (result != Spice3Result::done) return isEndOfSets(n, result);
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

    tvfstream & stream_;
    YString const & outputPath_;
    YRef<MessageHandler> const & messages_;
    std::int32_t const budget_; // for the buffers of a group's vectors together
    std::uint32_t const stamp_;
};

} // namespace

bool vec_OpenRawFile(YString const & path, YString const & outputPath, VecOpenRawFileOptions options,
                     YRef<MessageHandler> messages) {
    if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
    tvfstream stream(path, tvfstream::modeReadUntranslated, false, false);
    if (!stream) {
        messages->error("Cannot open data file '%s'", path);
        return false;
    }
    RawFileReader reader(stream, outputPath, options, messages);
    if (options.spice2 || options.csdf) {
        messages->error("Reading several data sets of this format is not supported yet");
        return false;
    }
    return reader.readSpice3Sets();
}
