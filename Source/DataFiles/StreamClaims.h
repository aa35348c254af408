// StreamClaims: the streams that something of a data file is read from. A stream is one thing only, and no part of
// another one, so that all that is read is never more than the file.
#pragma once

#include "Dfs/DfsFile.h"
#include "Dfs/ExtentIndex.h"

#include <vector>

class StreamClaims {
public:
    explicit StreamClaims(DfsFile const & file);
    // False for what is no stream of this type, or has been claimed already.
    bool claim(std::int64_t id, StreamType type);

private:
    struct Range {
        std::int64_t first, end;
    };
    bool isBegin(std::int64_t id) const noexcept;

    DfsFile const & file_;
    std::vector<Range> successors_; // ids that other extents go on with, in order
    ExtentIndex taken_;
};
