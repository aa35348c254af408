// What a file is, by its content.
#pragma once

#include <cstddef>
#include <string>

enum class FileForm {
    native,
    text,
    spice2,
    spice3,
    spice3Binary,
    pspice,
    csdf,
    quadrel,
    unknown,
    unreadable, // does not open
};

// "a text table"; for what is none, why.
char const * describe(FileForm form) noexcept;
FileForm fileForm(std::string const & path);

// Number of data sets that stand one behind the other in a SPICE3 file in ASCII form.
int countDataSets(std::string const & path);
