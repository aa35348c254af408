// Tells a SPICE3 raw file, and its form, by its first lines.
#pragma once

#include <string>

enum class RawFileForm {
    ascii,
    binary,
    other,
    unreadable, // does not open
};

RawFileForm rawFileForm(std::string const & path);
