#include "OpenFiles.h"

#include "FileFaults.h"
#include "FileForm.h"

#include "torvelan/DataFiles.h"
#include "torvelan/Exceptions.h"
#include "torvelan/ForeignData.h"
#include "torvelan/Groups.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

struct TypeRow {
    std::string_view name;
    FileForm form;
};

constexpr TypeRow typeRows[] = {
    {"native", FileForm::native},   {"text", FileForm::text},     {"spice2", FileForm::spice2},
    {"spice3", FileForm::spice3},   {"pspice", FileForm::pspice}, {"csdf", FileForm::csdf},
    {"quadrel", FileForm::quadrel},
};

struct FileArgument {
    TypeRow const * type = nullptr; // null: to be found by looking
    std::string path;
};

bool isFile(std::string const & path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

FileArgument splitArgument(std::string const & argument) {
    auto const colon = argument.find(':');
    if (colon == std::string::npos) return {nullptr, argument};
    for (TypeRow const & row : typeRows)
        if (std::string_view(argument).substr(0, colon) == row.name) return {&row, argument.substr(colon + 1)};
    return {nullptr, argument};
}

// A pipe cannot be looked into and then read from its beginning, and a device may never end. The library tells of
// folders and of what is missing.
bool isPipeOrDevice(std::string const & path) {
    std::error_code ignored;
    return fs::is_other(path, ignored);
}

constexpr char const * binaryText =
    "this is a SPICE3 raw file in the binary form, and only the ASCII form can be read; "
    "give ngspice the command 'set filetype=ascii' before it writes the file";
constexpr char const * noMemoryText = "there is not enough memory for this file";
constexpr char const * notAFileText = "this is a device or a pipe; results are read from files only";
constexpr char const * unknownText =
    "the type of this file is not recognised; native data files, text tables, SPICE2 and SPICE3 raw "
    "files (ASCII), PSpice data files, CSDF "
    "files and Quadrel data files can be read, and TYPE:FILE names the type";

using Messages = std::shared_ptr<ConsoleMessages>;

bool openForeign(std::string const & path, DataFileType type, Messages const & messages) {
    return vec_OpenForeignDataFile(YString(path), type, VecOpenGroupOptions(), nullptr, messages);
}

// A folder that is gone afterwards; what is open in it lives on as long as it is used.
class ScratchFolder {
public:
    ScratchFolder() {
        std::error_code problem;
        std::string pattern = (fs::temp_directory_path(problem) / "tvsh-XXXXXX").string();
        if (!problem && mkdtemp(pattern.data()) != nullptr) path_ = pattern;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove_all(path_, ignored);
    }
    ScratchFolder(ScratchFolder const &) = delete;
    ScratchFolder & operator=(ScratchFolder const &) = delete;
    std::string path() const { return path_.string(); }

private:
    fs::path path_;
};

// Passes on what does not concern a folder: where a scratch file cannot be made the values stay in memory, which is
// nothing for the user to know.
class MessagesButOf final : public MessageHandler {
public:
    MessagesButOf(std::string folder, Messages rest) : folder_(std::move(folder)), rest_(std::move(rest)) {}
    void finalOutput(MessageLevel level, YString const & text) override {
        bool const ofFolder = level == MessageLevel::warning && text.view().find(folder_) != std::string_view::npos;
        if (!ofFolder) rest_->finalOutput(level, text);
    }

private:
    std::string folder_;
    Messages rest_;
};

// Every data set of the file, with the values in data files of this process alone.
bool openSets(std::string const & path, bool isCsdf, Messages const & messages) {
    ScratchFolder const folder;
    if (folder.path().empty()) {
        messages->error("there is no folder for temporary files; TMPDIR names one");
        return false;
    }
    VecOpenRawFileOptions options;
    options.csdf = isCsdf;
    options.ramPercent = 10;
    auto const words = std::make_shared<MessagesButOf>(folder.path() + "/", messages);
    return vec_OpenRawFile(YString(path), YString(folder.path() + "/set.tvdat"), options, words);
}

bool openSpice3(std::string const & path, Messages const & messages) {
    return countDataSets(path) > 1 ? openSets(path, false, messages) : openForeign(path, DATA_SPICE3, messages);
}

bool openForm(FileForm form, std::string const & path, Messages const & messages) {
    switch (form) {
    case FileForm::text: return openForeign(path, DATA_TEXT, messages);
    case FileForm::spice2: return openForeign(path, DATA_SPICE2, messages);
    case FileForm::spice3: return openSpice3(path, messages);
    case FileForm::pspice: return openForeign(path, DATA_PSPICE, messages);
    case FileForm::csdf: return openSets(path, true, messages);
    case FileForm::quadrel: return openForeign(path, DATA_QUADREL, messages);
    case FileForm::native: return vec_OpenGroup(YString(path), VecOpenGroupOptions(), nullptr, messages);
    case FileForm::spice3Binary: messages->error("%s", binaryText); return false;
    case FileForm::unknown: messages->error("%s", unknownText); return false;
    case FileForm::unreadable: break;
    }
    return openForeign(path, DATA_SPICE3, messages); // says why not
}

// Beside what the engine says: what the file was taken for, and where it is not as such files are.
void explainFailure(FileForm form, bool wasRecognised, std::string const & path, Messages const & messages) {
    std::string const fault = faultOf(form, path);
    if (wasRecognised) messages->info("by its content this is %s", describe(form));
    if (!fault.empty()) messages->info("%s", std::string_view(fault));
}

bool isExplicable(FileForm form) {
    return form != FileForm::unreadable && form != FileForm::unknown && form != FileForm::spice3Binary &&
           form != FileForm::native;
}

bool openAs(FileArgument const & file, Messages const & messages) {
    if (isPipeOrDevice(file.path)) {
        messages->error("%s", notAFileText);
        return false;
    }
    bool const mustLook = file.type == nullptr || file.type->form == FileForm::spice3; // the binary form has its words
    FileForm const found = mustLook ? fileForm(file.path) : FileForm::unknown;
    bool const binary = found == FileForm::spice3Binary;
    FileForm const form = file.type != nullptr && !binary ? file.type->form : found;
    if (openForm(form, file.path, messages)) return true;
    if (isExplicable(form) && isFile(file.path)) explainFailure(form, file.type == nullptr, file.path, messages);
    return false;
}

// The data sets ahead of a bad one are complete; other files leave a part of a group at most.
bool leavesWholeSets(FileArgument const & file) {
    if (isPipeOrDevice(file.path)) return false;
    FileForm const form = file.type != nullptr ? file.type->form : fileForm(file.path);
    return form == FileForm::csdf || form == FileForm::spice3;
}

std::vector<YString> groupsInStore() {
    YList<YString> names;
    vec_GetGroups(&names);
    return {names.rbegin(), names.rend()}; // oldest first
}

void appendNew(std::vector<YString> const & before, std::vector<YString> * groups) {
    for (YString const & name : groupsInStore())
        if (std::find(before.begin(), before.end(), name) == before.end()) groups->push_back(name);
}

} // namespace

char const * const fileHelp =
    "results of a simulator, or a text table; TYPE:FILE names the type (native, text, spice2, spice3, "
    "pspice, csdf, quadrel), as in spice3:FILE";

std::string pathOf(std::string const & argument) {
    return splitArgument(argument).path;
}

bool openFile(std::string const & argument, std::shared_ptr<ConsoleMessages> const & messages,
              std::vector<YString> * groups) {
    FileArgument const file = splitArgument(argument);
    messages->setSubject(file.path);
    std::vector<YString> const before = groupsInStore();
    bool opened = false;
    try {
        opened = openAs(file, messages);
    } catch (FatalException const &) { // what can be written here is files of the values while they are read
        messages->error("cannot write to the folder for temporary files, which may be full; TMPDIR names another one");
    } catch (MemoryException const &) {
        messages->error("%s", noMemoryText);
    } catch (std::bad_alloc const &) {
        messages->error("%s", noMemoryText);
    }
    if (groups != nullptr && (opened || leavesWholeSets(file))) appendNew(before, groups);
    messages->setSubject("");
    return opened;
}

bool canWriteFile(std::string const & path, MessageHandler & messages) {
    if (path.empty()) {
        messages.error("Cannot write file '': a file without a name");
        return false;
    }
    std::filesystem::path const file(path);
    std::error_code problem;
    auto const status = std::filesystem::status(file, problem);
    bool const exists = std::filesystem::exists(status);
    auto const folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
    char const * const asked = exists ? file.c_str() : folder.c_str();
    bool const isFile = !exists || std::filesystem::is_regular_file(status);
    if (isFile && access(asked, W_OK) == 0) return true;
    messages.error("Cannot write file '%s': %s", path.c_str(),
                   isFile ? std::strerror(errno) : "it is a folder, a device or a pipe");
    return false;
}
