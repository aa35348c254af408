// Registration of a function together with its place in the sources.
#pragma once

#include "support/SourcePlace.h"
#include "torvelan/Functions.h"

// From a static initialiser. The place is that of the declaration.
struct PlacedFunction {
    explicit PlacedFunction(FuncInfo const & info, SourcePlace place = SourcePlace::current()) {
        FuncDef{info};
        FuncLoc(info.name.c_str(), place.file, place.line, reinterpret_cast<void *>(info.handler));
    }
};
