#include "Groups/ManageTempData.h"

#include "support/Paths.h"
#include "torvelan/Host.h"
#include "torvelan/TempData.h"

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

constexpr char defaultDirectory[] = "%TEMPPATH%/TorvelanTempData";
constexpr int lastSuffix = 998;

MakeOption const tempDataDir("TempDataDir", defaultDirectory, OptionPersistence::stored, __FILE__, __LINE__);

// Each is found once in a session. Never destroyed: groups with files may end among static destructors.
struct Directories {
    YString atStart;
    YString ofNames; // looked for again when the first name is made
};
Directories & directories() {
    static auto & instance = *new Directories;
    return instance;
}

bool isUsable(YString const & directory) {
    return (sp_ExistDir(directory) || sp_MakeTree(directory)) && isPrivateDirectory(directory) &&
           sp_DirectoryIsWriteable(directory);
}

void resolveAtStart() {
    directories() = {vec_ResolveTempDataDir(), YString()};
}

AutoFunc const atInitCli("InitCli", resolveAtStart, "resolveTempDataDir");

// A group's name as one part of a path.
std::string fileStem(YString const & groupName) {
    std::string stem(groupName.view());
    std::replace_if(
        stem.begin(), stem.end(), [](char c) { return c == '/' || c == '\0'; }, '_');
    if (stem.empty() || stem.front() == '.') stem.insert(0, "_");
    constexpr std::size_t longest = 200;
    return stem.substr(0, longest);
}

bool makeMarker(std::string const & path) {
    int const descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) return false;
    close(descriptor);
    return true;
}

} // namespace

YString vec_ResolveTempDataDir() {
    for (YString const & candidate : {sp_GetStringOption("TempDataDir"), YString(defaultDirectory)}) {
        YString const directory = sp_TranslateLogicalPath(candidate);
        if (!directory.empty() && isUsable(directory)) return directory;
    }
    return sp_GetTempPath();
}

YString vec_GetTempDataDir() {
    return directories().atStart;
}

YString makeTempDataFileName(YString const & groupName) {
    YString & directory = directories().ofNames;
    if (directory.empty()) directory = vec_ResolveTempDataDir();
    std::string const stem = std::string(directory) + "/" + fileStem(groupName);
    std::string const extension = "." + std::string(sp_GetTorvelanDefaultExtension("Data"));
    std::string path = stem + extension;
    for (int n = 1; !makeMarker(path) && n <= lastSuffix; ++n) path = stem + "_" + std::to_string(n) + extension;
    return YString(path);
}
