// A file with given bytes that is gone when the object is.
#pragma once

#include "torvelan/YString.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>

class TemporaryFile {
public:
    explicit TemporaryFile(std::string_view bytes) : name_(testing::TempDir() + "torvelanXXXXXX") {
        int const descriptor = mkstemp(name_.data());
        EXPECT_GE(descriptor, 0);
        while (!bytes.empty()) {
            ssize_t const count = ::write(descriptor, bytes.data(), bytes.size());
            if (count <= 0) break;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        EXPECT_TRUE(bytes.empty());
        ::close(descriptor);
    }
    ~TemporaryFile() { ::unlink(name_.c_str()); }
    TemporaryFile(TemporaryFile const &) = delete;
    TemporaryFile & operator=(TemporaryFile const &) = delete;

    YString path() const { return YString(name_); }

private:
    std::string name_;
};
