// The header of a data file, of any format, and the versions that there are.
#pragma once

#include "support/FileSystem.h"

#include <string>
#include <string_view>

struct FileVersion {
    std::string_view name;
    int code;      // what is compared
    bool accepted; // files of it are read
};

constexpr int firstVersion = 10;  // has no links between groups
constexpr int streamVersion = 70; // files of streams; the one that is written

// By name, in any case. Null when there is none.
FileVersion const * findVersion(std::string_view name) noexcept;
FileVersion const & latestVersion() noexcept; // the last of the table, which is not the one written

enum class HeaderResult { good = 0, notDataFile = 1, unknownVersion = 2, refusedVersion = 3 };

struct FileHeader {
    FileVersion const * version = nullptr; // null unless it is in the table
    std::uint64_t bytes = 0;               // length of the header
};
HeaderResult readFileHeader(OpenFile & file, FileHeader * out);
std::string makeFileHeader(FileVersion const & version);
