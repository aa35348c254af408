#include "support/Paths.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fnmatch.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr mode_t privateMode = S_IRWXU;

struct KindRow {
    std::string_view kind, extension;
};
constexpr KindRow extensions[] = {{"Data", "tvdat"}};

std::string systemTemporaryFolder() {
    char const * const folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder == '/' ? folder : "/tmp";
}

// Of this process, where the user's own name is taken.
std::string freshFolder(std::string const & parent) {
    std::string pattern = parent + "/torvelan-XXXXXX";
    return mkdtemp(pattern.data()) != nullptr ? pattern : parent;
}

bool holdsNul(YString const & path) {
    return path.view().find('\0') != std::string_view::npos;
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::optional<std::string> expandedName(std::string_view name) {
    if (equalNoCase(name, "TEMPPATH")) return std::string(sp_GetTempPath());
    return std::nullopt;
}

fs::path pathOf(YString const & path) {
    return std::string(path.view());
}

// Without links, as far as it exists.
fs::path realPath(YString const & path) {
    std::error_code problem;
    fs::path const real = fs::weakly_canonical(fs::absolute(pathOf(path), problem), problem);
    return problem ? pathOf(path).lexically_normal() : real;
}

} // namespace

YString sp_GetFullPath(YString const & path) {
    std::error_code problem;
    fs::path const full = fs::absolute(pathOf(path), problem);
    return problem || path.empty() ? path : YString(full.lexically_normal().string());
}

YString sp_GetDirFromPath(YString const & path) {
    std::size_t const slash = path.view().rfind('/');
    if (slash == std::string_view::npos) return ".";
    return YString(path.view().substr(0, slash == 0 ? 1 : slash));
}

bool sp_IsRelativePath(YString const & path) noexcept {
    return !path.view().starts_with('/');
}

YString sp_RelativePath(YString const & path, YString const & directory) {
    fs::path const to = realPath(path);
    fs::path const way = to.lexically_relative(realPath(directory));
    return YString((way.empty() ? to : way).string());
}

YString sp_FollowLinks(YString const & path) {
    constexpr int mostLinks = 40;
    fs::path at = pathOf(path);
    std::error_code problem;
    for (int followed = 0; followed < mostLinks && fs::is_symlink(at, problem); ++followed) {
        fs::path const target = fs::read_symlink(at, problem);
        if (problem) break;
        at = target.is_absolute() ? target : at.parent_path() / target;
    }
    return YString(at.string());
}

YString sp_ConvertUnixToLocal(YString const & path) {
    return path;
}

YString sp_GetTempPath() {
    static std::string fresh; // stays what it is once it had to be made
    if (!fresh.empty()) return YString(fresh);
    std::string const parent = systemTemporaryFolder();
    YString const own(parent + "/torvelan-" + std::to_string(geteuid()));
    if (mkdir(own.c_str(), privateMode) == 0 || isPrivateDirectory(own)) return own;
    fresh = freshFolder(parent);
    return YString(fresh);
}

YString sp_TranslateLogicalPath(YString const & path) {
    std::string_view rest = path.view();
    std::string out;
    while (!rest.empty()) {
        std::size_t const end = rest.front() == '%' ? rest.find('%', 1) : std::string_view::npos;
        auto const value = end != std::string_view::npos ? expandedName(rest.substr(1, end - 1)) : std::nullopt;
        out += value ? *value : std::string(rest.substr(0, 1));
        rest.remove_prefix(value ? end + 1 : 1);
    }
    return YString(out);
}

PathName sp_SplitPath(YString const & path) {
    std::string_view rest = path.view();
    auto const cut = [&rest](std::size_t n) {
        YString const piece(rest.substr(0, n));
        rest.remove_prefix(piece.size());
        return piece;
    };
    bool const hasDrive = rest.size() > 1 && rest[1] == ':' && isLetter(rest[0]);
    PathName parts;
    parts.drive = cut(hasDrive ? 2 : 0);
    parts.directory = cut(rest.find_last_of("/\\") + 1);
    parts.name = cut(rest.rfind('.'));
    parts.extension = YString(rest);
    return parts;
}

bool sp_ExistPath(YString const & path) {
    struct stat status {};
    return !holdsNul(path) && lstat(path.c_str(), &status) == 0;
}

bool sp_ExistDir(YString const & path) {
    struct stat status {};
    return !holdsNul(path) && stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool sp_MakeTree(YString const & path) {
    if (path.empty() || holdsNul(path)) return false;
    if (sp_ExistDir(path)) return true;
    fs::path const whole(std::string(path.view()));
    fs::path const parent = whole.has_filename() ? whole.parent_path() : whole.parent_path().parent_path();
    if (!parent.empty() && parent != whole && !sp_MakeTree(YString(parent.string()))) return false;
    return mkdir(path.c_str(), privateMode) == 0 || (errno == EEXIST && sp_ExistDir(path));
}

bool sp_DirectoryIsWriteable(YString const & path) {
    return sp_ExistDir(path) && access(path.c_str(), W_OK | X_OK) == 0;
}

bool isPrivateDirectory(YString const & path) {
    struct stat status {};
    if (holdsNul(path) || lstat(path.c_str(), &status) != 0) return false;
    return S_ISDIR(status.st_mode) && status.st_uid == geteuid() && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

void sp_ListDirectory(YString const & pattern, YList<YString> * out, bool filesOnly, bool fullPaths) {
    if (holdsNul(pattern)) return;
    fs::path const whole(std::string(pattern.view()));
    fs::path const folder = whole.has_parent_path() ? whole.parent_path() : fs::path(".");
    std::string const names = whole.filename().string();
    YArray<YString> found;
    std::error_code problem;
    for (fs::directory_iterator entry(folder, problem), end; !problem && entry != end; entry.increment(problem)) {
        std::error_code unknown;
        if (filesOnly && !entry->is_regular_file(unknown)) continue;
        std::string const name = entry->path().filename().string();
        if (fnmatch(names.c_str(), name.c_str(), FNM_PERIOD) != 0) continue;
        found.emplace_back(fullPaths ? entry->path().string() : name);
    }
    std::sort(found.begin(), found.end(), [](YString const & a, YString const & b) { return a.view() < b.view(); });
    out->insert(out->end(), found.begin(), found.end());
}

bool unlink_utf8(YString const & path) {
    return !holdsNul(path) && unlink(path.c_str()) == 0;
}

YString sp_GetTorvelanDefaultExtension(std::string_view kind) {
    for (KindRow const & row : extensions)
        if (equalNoCase(kind, row.kind)) return YString(row.extension);
    return YString();
}
