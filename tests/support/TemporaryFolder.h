// A folder of the test's own that is gone, with all in it, when the object is.
#pragma once

#include "torvelan/YString.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

class TemporaryFolder {
public:
    TemporaryFolder() : name_(testing::TempDir() + "torvelanXXXXXX") { EXPECT_NE(mkdtemp(name_.data()), nullptr); }
    ~TemporaryFolder() {
        std::error_code problem;
        std::filesystem::remove_all(name_, problem);
    }
    TemporaryFolder(TemporaryFolder const &) = delete;
    TemporaryFolder & operator=(TemporaryFolder const &) = delete;

    YString path(std::string const & file) const { return YString(name_ + "/" + file); }
    std::size_t fileCount() const {
        auto const files = std::filesystem::directory_iterator(name_);
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

private:
    std::string name_;
};

inline std::string bytesOf(YString const & path) {
    std::ifstream file(std::string(path.view()), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void putBytes(YString const & path, std::string const & bytes) {
    std::ofstream file(std::string(path.view()), std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file.good());
}
