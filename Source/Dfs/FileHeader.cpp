#include "Dfs/FileHeader.h"

#include "Dfs/LittleEndian.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr std::string_view magic = "Torvelan datafile";
constexpr std::int32_t longestMagic = 200, longestVersion = 30;

constexpr FileVersion versions[] = {
    {"1.0", 10, false}, {"1.1", 11, true}, {"4.0", 40, true},  {"4.1", 41, true},
    {"4.5", 45, true},  {"6.0", 60, true}, {"6.2", 62, false}, {"7.0", streamVersion, true},
    {"7.1", 71, true},
};

// A counted string at *at, which moves behind it. False when it is longer than may be, or the file ends.
bool readCounted(OpenFile & file, std::int32_t longest, std::uint64_t * at, std::string * text) {
    char count[sizeof(std::int32_t)];
    if (file.readAt(count, sizeof count, *at) != sizeof count) return false;
    auto const length = loadNumber<std::int32_t>(count);
    if (length < 0 || length > longest) return false;
    text->resize(static_cast<std::size_t>(length));
    *at += sizeof count;
    if (file.readAt(text->data(), text->size(), *at) != text->size()) return false;
    *at += text->size();
    return true;
}

void appendCounted(std::string * to, std::string_view text) {
    char count[sizeof(std::int32_t)];
    storeNumber(count, static_cast<std::int32_t>(text.size()));
    to->append(count, sizeof count);
    to->append(text);
}

} // namespace

FileVersion const * findVersion(std::string_view name) noexcept {
    auto const * found = std::find_if(std::begin(versions), std::end(versions),
                                      [name](FileVersion const & version) { return equalNoCase(version.name, name); });
    return found != std::end(versions) ? found : nullptr;
}

FileVersion const & latestVersion() noexcept {
    return *std::prev(std::end(versions));
}

HeaderResult readFileHeader(OpenFile & file, FileHeader * out) {
    *out = {};
    std::string text;
    if (!readCounted(file, longestMagic, &out->bytes, &text) || text != magic) return HeaderResult::notDataFile;
    if (!readCounted(file, longestVersion, &out->bytes, &text)) return HeaderResult::unknownVersion;
    out->version = findVersion(text);
    if (out->version == nullptr) return HeaderResult::unknownVersion;
    return out->version->accepted ? HeaderResult::good : HeaderResult::refusedVersion;
}

std::string makeFileHeader(FileVersion const & version) {
    std::string header;
    appendCounted(&header, magic);
    appendCounted(&header, version.name);
    return header;
}
