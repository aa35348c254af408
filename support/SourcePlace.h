// Where something stands in the sources: what std::source_location tells, which clang 14 does not have.
#pragma once

struct SourcePlace {
    char const * file;
    int line;

    // As a default argument: the place of the call.
    static constexpr SourcePlace current(char const * file = __builtin_FILE(), int line = __builtin_LINE()) noexcept {
        return {file, line};
    }
};
