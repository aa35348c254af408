#include "support/Settings.h"

#include "support/FileLock.h"
#include "support/TextScan.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int longestWait = 20000; // milliseconds, for processes that write one after another
constexpr std::size_t greatestFile = std::size_t{16} << 20;

struct LessNoCase {
    bool operator()(YString const & a, YString const & b) const noexcept { return compareNoCase(a, b) < 0; }
};
using Section = std::map<YString, YString, LessNoCase>;
using Sections = std::map<YString, Section, LessNoCase>;

YString & openPath() {
    static auto & path = *new YString; // options are still set at shut-down
    return path;
}

class Descriptor {
public:
    explicit Descriptor(int value) noexcept : value_(value) {}
    ~Descriptor() {
        if (value_ >= 0) close(value_);
    }
    Descriptor(Descriptor const &) = delete;
    Descriptor & operator=(Descriptor const &) = delete;
    int get() const noexcept { return value_; }

private:
    int value_;
};

// --- the text: "[section]" and "key=value" lines, with escapes for what would end a name or a line

std::string encoded(YString const & text, std::string_view special) {
    YString const escaped = sp_EscapeStringEncode(text.view(), false);
    std::string out;
    for (char const c : escaped.view()) {
        if (special.find(c) != std::string_view::npos) out += '\\';
        out += c;
    }
    return out;
}

std::string textOf(Sections const & sections) {
    std::string text;
    for (auto const & [name, section] : sections) {
        text += "[" + encoded(name, "]") + "]\n";
        for (auto const & [key, value] : section) text += encoded(key, "=[#") + "=" + encoded(value, "") + "\n";
    }
    return text;
}

// The first place of a character that no escape stands before.
std::size_t findPlain(std::string_view text, char wanted) noexcept {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == wanted)
            return i;
    }
    return std::string_view::npos;
}

// Lines that are neither are passed over.
Sections parse(std::string_view text) {
    Sections sections;
    Section * section = nullptr;
    while (!text.empty()) {
        std::size_t const length = std::min(text.find('\n'), text.size());
        std::string_view const line = text.substr(0, length);
        text.remove_prefix(std::min(length + 1, text.size()));
        std::size_t const end = findPlain(line, line.starts_with('[') ? ']' : '=');
        if (end == std::string_view::npos) continue;
        if (line.starts_with('['))
            section = &sections[sp_EscapeString(line.substr(1, end - 1))];
        else if (section != nullptr)
            (*section)[sp_EscapeString(line.substr(0, end))] = sp_EscapeString(line.substr(end + 1));
    }
    return sections;
}

// --- the file

bool isSettingsFile(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
           static_cast<std::size_t>(status.st_size) <= greatestFile;
}

// Nothing when the file is there and cannot be read.
std::optional<std::string> readFile(YString const & path) {
    Descriptor const file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.get() < 0) return errno == ENOENT ? std::optional(std::string()) : std::nullopt;
    if (!isSettingsFile(file.get())) return std::nullopt;
    std::string text;
    char block[65536];
    while (text.size() <= greatestFile) {
        ssize_t const n = read(file.get(), block, sizeof block);
        if (n == 0) return text;
        if (n < 0) return std::nullopt;
        text.append(block, static_cast<std::size_t>(n));
    }
    return std::nullopt;
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        ssize_t const n = write(descriptor, text.data(), text.size());
        if (n <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(n));
    }
    return fsync(descriptor) == 0;
}

// Beside the file, and then in its place.
bool replaceFile(YString const & path, std::string_view text) {
    std::string beside = std::string(path.view()) + ".XXXXXX";
    Descriptor const file(mkostemp(beside.data(), O_CLOEXEC));
    if (file.get() < 0) return false;
    if (writeAll(file.get(), text) && rename(beside.c_str(), path.c_str()) == 0) return true;
    unlink(beside.c_str());
    return false;
}

// Other processes wait with their changes meanwhile.
bool change(std::function<void(Sections &)> const & apply) {
    YString const & path = openPath();
    if (path.empty()) return false;
    std::string const lockPath = std::string(path.view()) + ".lock";
    Descriptor const lock(open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (lock.get() < 0 || !lockForWriting(lock.get(), longestWait)) return false;
    auto const text = readFile(path);
    if (!text) return false;
    Sections sections = parse(*text);
    apply(sections);
    return replaceFile(path, textOf(sections));
}

Section sectionOf(YString const & name) {
    auto const text = openPath().empty() ? std::nullopt : readFile(openPath());
    Sections const sections = text ? parse(*text) : Sections();
    auto const found = sections.find(name);
    return found != sections.end() ? found->second : Section();
}

} // namespace

bool openSettings(YString const & path) {
    bool const isPath = path.view().find('\0') == std::string_view::npos;
    bool const good = path.empty() || (isPath && readFile(path).has_value());
    openPath() = good ? path : YString();
    return good;
}

bool cfgman_GetConfigSetting(YString const & section, YString const & key, YString * value) {
    Section const values = sectionOf(section);
    auto const found = values.find(key);
    if (found == values.end()) return false;
    *value = found->second;
    return true;
}

bool cfgman_WriteConfigSetting(YString const & section, YString const & key, YString const & value) {
    return change([&](Sections & sections) { sections[section][key] = value; });
}

bool cfgman_DeleteConfigSection(YString const & section) {
    return change([&](Sections & sections) { sections.erase(section); });
}

void cfgman_GetConfigKeyNames(YString const & section, YList<YString> * out) {
    for (auto const & [key, value] : sectionOf(section)) out->push_back(key);
}

ConfigLocation cfgman_GetBaseConfigLocation() {
    return ConfigLocation(openPath());
}
