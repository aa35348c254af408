// Registration of a function together with its place in the sources.
#pragma once

#include "torvelan/Functions.h"

#include <source_location>

// From a static initialiser. The place is that of the declaration.
struct PlacedFunction {
    explicit PlacedFunction(FuncInfo const & info, std::source_location place = std::source_location::current()) {
        FuncDef{info};
        FuncLoc(info.name.c_str(), place.file_name(), static_cast<int>(place.line()),
                reinterpret_cast<void *>(info.handler));
    }
};
