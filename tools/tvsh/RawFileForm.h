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

// Number of data sets that stand one behind the other in a file in ASCII form.
int countDataSets(std::string const & path);
