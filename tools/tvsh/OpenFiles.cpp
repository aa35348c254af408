#include "OpenFiles.h"

#include "RawFileForm.h"

#include "torvelan/ForeignData.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>
#include <unistd.h>

namespace {

struct TypeRow {
    std::string_view name;
    DataFileType type; // DATA_NOT_RECOGNISED: the library has no reader to ask
};

constexpr TypeRow typeRows[] = {
    {"native", DATA_NOT_RECOGNISED}, {"text", DATA_TEXT},           {"spice2", DATA_SPICE2},   {"spice3", DATA_SPICE3},
    {"pspice", DATA_PSPICE},         {"csdf", DATA_NOT_RECOGNISED}, {"quadrel", DATA_QUADREL},
};

struct FileArgument {
    TypeRow const * type = nullptr; // null: to be found by looking
    std::string path;
};

// A pipe cannot be looked into and then read from its beginning, and a device may never end. The library tells of
// folders and of what is missing.
bool isPipeOrDevice(std::string const & path) {
    std::error_code ignored;
    return std::filesystem::is_other(path, ignored);
}

FileArgument splitArgument(std::string const & argument) {
    auto const colon = argument.find(':');
    if (colon == std::string::npos) return {nullptr, argument};
    for (TypeRow const & row : typeRows)
        if (std::string_view(argument).substr(0, colon) == row.name) return {&row, argument.substr(colon + 1)};
    return {nullptr, argument};
}

constexpr char const * binaryText =
    "this is a SPICE3 raw file in the binary form, and only the ASCII form can be read; "
    "give ngspice the command 'set filetype=ascii' before it writes the file";
constexpr char const * notAFileText = "this is a device or a pipe; results are read from files only";
constexpr char const * unknownText = "the type of this file is not recognised; SPICE3 raw files (ASCII) can be read";

bool isReadable(FileArgument const & file, RawFileForm form, MessageHandler & messages) {
    if (form == RawFileForm::binary) {
        messages.error("%s", binaryText);
    } else if (file.type != nullptr && file.type->type == DATA_NOT_RECOGNISED) {
        messages.error("files of type '%s' cannot be read yet; SPICE3 raw files (ASCII) can", file.type->name);
    } else if (file.type == nullptr && form == RawFileForm::other) {
        messages.error("%s", unknownText);
    } else {
        return true;
    }
    return false;
}

bool openAs(FileArgument const & file, std::shared_ptr<ConsoleMessages> const & messages) {
    if (isPipeOrDevice(file.path)) {
        messages->error("%s", notAFileText);
        return false;
    }
    bool const mayBeRaw = file.type == nullptr || file.type->type == DATA_SPICE3;
    RawFileForm const form = mayBeRaw ? rawFileForm(file.path) : RawFileForm::other;
    if (!isReadable(file, form, *messages)) return false;
    DataFileType const type = file.type != nullptr ? file.type->type : DATA_SPICE3;
    if (!vec_OpenForeignDataFile(YString(file.path), type, VecOpenGroupOptions(), nullptr, messages)) return false;
    if (int const sets = countDataSets(file.path); sets > 1)
        messages->warning("the file holds %d data sets, of which only the first has been read", sets);
    return true;
}

} // namespace

char const * const fileHelp = "a SPICE3 raw file (ASCII); TYPE:FILE names the type, as in spice3:FILE";

bool openFile(std::string const & argument, std::shared_ptr<ConsoleMessages> const & messages) {
    FileArgument const file = splitArgument(argument);
    messages->setSubject(file.path);
    bool opened = false;
    try {
        opened = openAs(file, messages);
    } catch (std::bad_alloc const &) {
        messages->error("there is not enough memory for this file");
    }
    messages->setSubject("");
    return opened;
}

bool canWriteFile(std::string const & path, MessageHandler & messages) {
    std::filesystem::path const file(path);
    std::error_code problem;
    auto const status = std::filesystem::status(file, problem);
    bool const exists = std::filesystem::exists(status);
    auto const folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
    char const * const asked = exists ? file.c_str() : folder.c_str();
    bool const isFile = !exists || std::filesystem::is_regular_file(status);
    if (!path.empty() && isFile && access(asked, W_OK) == 0) return true;
    messages.error("Cannot write file '%s': %s", path.c_str(),
                   isFile ? std::strerror(errno) : "it is a folder, a device or a pipe");
    return false;
}
