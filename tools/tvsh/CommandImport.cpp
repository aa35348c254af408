#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "ExitStatus.h"
#include "FileForm.h"
#include "OpenFiles.h"
#include "ReadingProgress.h"

#include "torvelan/DataFiles.h"
#include "torvelan/EngineSession.h"
#include "torvelan/Groups.h"
#include "torvelan/VectorStore.h"

#include <chrono>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

std::string megabytes(std::uintmax_t bytes) {
    return std::string(formatMessage("%.1f MB", static_cast<double>(bytes) / 1e6));
}

std::uintmax_t sizeOf(std::string const & path) {
    std::error_code unknown;
    std::uintmax_t const size = fs::file_size(path, unknown);
    return unknown ? 0 : size;
}

// "out.tvdat", "out_1.tvdat", and so on.
std::string outputName(std::string const & output, std::size_t n) {
    if (n == 0) return output;
    fs::path const path(output);
    fs::path const name = path.stem().string() + "_" + std::to_string(n) + path.extension().string();
    return (path.has_parent_path() ? path.parent_path() / name : name).string();
}

class Import {
public:
    explicit Import(std::string output) : output_(std::move(output)) {}

    int run(std::vector<std::string> const & files) {
        int status = exitDone;
        for (std::string const & file : files) {
            EngineSession::Command const command;
            std::vector<YString> groups;
            auto const start = Clock::now();
            if (!read(file, &groups)) status = exitInput;
            std::chrono::duration<double> const taken = Clock::now() - start;
            for (YString const & group : groups)
                if (!save(group, file)) return exitOutput;
            if (!groups.empty()) tellSpeed(file, taken.count());
        }
        return status;
    }

private:
    bool read(std::string const & file, std::vector<YString> * groups) {
        ReadingProgress const progress(pathOf(file));
        return openFile(file, console_, groups);
    }

    // The name chosen may be that of any file; names that follow from it only stand for files of the same kind.
    bool save(YString const & group, std::string const & file) {
        int count = 0;
        vec_GetNumVectorsInGroup(group, &count);
        if (count == 0) return true; // what a failure has left
        std::string const path = outputName(output_, saved_);
        std::error_code unknown;
        if (saved_ != 0 && fs::exists(path, unknown) && fileForm(path) != FileForm::native) {
            console_->error("Cannot write file '%s': there is a file that is no data file", path.c_str());
            return false;
        }
        vec_SetCurrentGroup(group);
        if (!canWriteFile(path, *console_) || !vec_SaveGroup(YString(path), VecSaveGroupOptions(), console_))
            return false;
        ++saved_;
        writeOut(file + ": " + summary(group) + " -> " + path + " (" + megabytes(sizeOf(path)) + ")\n");
        vec_DestroyGroup(group, true);
        return true;
    }

    static std::string summary(YString const & group) {
        int count = 0;
        vec_GetNumVectorsInGroup(group, &count);
        std::vector<VectorInfo> vectors(static_cast<std::size_t>(count));
        count = vec_GetVectorsInGroup(group, vectors.data(), count);
        long long values = 0;
        for (int i = 0; i < count; ++i) values += vectors[static_cast<std::size_t>(i)].length;
        return std::string(formatMessage("group %s, %d vectors, %d values", group, count, values));
    }

    // For work that takes a while, to a person only.
    static void tellSpeed(std::string const & file, double seconds) {
        constexpr double worthTelling = 0.5;
        if (isatty(STDERR_FILENO) == 0 || seconds < worthTelling) return;
        double const rate = static_cast<double>(sizeOf(pathOf(file))) / seconds / 1e6;
        writeError(std::string(formatMessage("read in %.1f s, %.0f MB/s\n", seconds, rate)));
    }

    std::string output_;
    std::size_t saved_ = 0;
    std::shared_ptr<ConsoleMessages> console_ = std::make_shared<ConsoleMessages>();
    EngineSession session_{console_};
};

} // namespace

int runImport(Arguments const & arguments) {
    CommandLine line({.command = "import",
                      .summary = "Turns files of other simulators into native data files, one for each data set.",
                      .operands = "FILE",
                      .operandHelp = fileHelp,
                      .example = "tvsh import startup.raw -o startup.tvdat"});
    std::string output;
    line.app
        .add_option("-o,--output", output, "the data file of the first data set; the next ones get '_1', '_2', ...")
        ->type_name("OUT")
        ->required();
    if (auto const status = line.parse(arguments)) return *status;
    if (line.operands().empty()) return line.usageError("a FILE is needed");
    return finishOutput(Import(output).run(line.operands()));
}
