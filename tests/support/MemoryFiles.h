// A file system in memory that records what is written, and can fail it: what a killed process leaves of a file is any
// beginning of the record, the last write of it cut at a page edge.
#pragma once

#include "support/FileSystem.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <string>
#include <vector>

class MemoryFiles final : public FileSystem {
public:
    struct Content {
        std::string bytes;
        std::uint64_t number = 0;
    };
    struct Write {
        std::string path;
        std::uint64_t offset;
        std::string bytes;
    };
    enum class Failure { noSpace, inputOutput, shortWrite };

    std::unique_ptr<OpenFile> open(YString const & path, FileMode mode) override {
        std::string const name(path.view());
        auto known = contents.find(name);
        if (known == contents.end() && (mode != FileMode::create || !takesNew)) {
            errno = takesNew ? ENOENT : EACCES;
            return nullptr;
        }
        if (known == contents.end()) known = contents.emplace(name, newContent()).first;
        return std::make_unique<File>(*this, name, known->second);
    }
    std::unique_ptr<OpenFile> openUnique(YString const & prefix, YString * path) override {
        *path = YString::joined(prefix, {YString(++lastNumber)});
        return open(*path, FileMode::create);
    }
    bool replace(YString const & from, YString const & to) override {
        if (!canReplace) return false;
        contents[std::string(to.view())] = contents.at(std::string(from.view()));
        return remove(from);
    }
    bool remove(YString const & path) override { return contents.erase(std::string(path.view())) != 0; }

    void put(std::string const & path, std::string bytes) {
        contents[path] = newContent();
        contents[path]->bytes = std::move(bytes);
    }
    std::string const & bytes(std::string const & path) const { return contents.at(path)->bytes; }

    // The n-th write from now fails, and with `everAfter` all that follow. 0 ends this.
    void failAt(std::uint64_t n, Failure how = Failure::noSpace, bool everAfter = false) {
        failIn = n;
        failure = how;
        failsOn = everAfter;
        isFailing = false;
    }
    bool hasFailed() const noexcept { return isFailing; }

    std::map<std::string, std::shared_ptr<Content>> contents;
    std::vector<Write> writes; // while records
    bool records = false;
    bool takesNew = true;   // files that were not there
    bool canReplace = true; // names can change

private:
    class File final : public OpenFile {
    public:
        File(MemoryFiles & home_, std::string name_, std::shared_ptr<Content> content_)
            : home(home_), name(std::move(name_)), content(std::move(content_)) {}

        std::size_t readAt(void * dest, std::size_t bytes, std::uint64_t offset) override {
            std::string const & all = content->bytes;
            if (offset >= all.size()) return 0;
            std::size_t const n = std::min<std::size_t>(bytes, all.size() - offset);
            std::copy_n(all.data() + offset, n, static_cast<char *>(dest));
            return n;
        }
        bool writeAt(Bytes first, Bytes second, std::uint64_t offset) override {
            std::string bytes(first.begin(), first.end());
            bytes.append(second.begin(), second.end());
            bool const fails = home.nextFails();
            if (fails) bytes.resize(home.failure == Failure::shortWrite ? bytes.size() / 2 : 0);
            if (home.records && !fails) home.writes.push_back({name, offset, bytes});
            if (content->bytes.size() < offset + bytes.size()) content->bytes.resize(offset + bytes.size());
            std::copy(bytes.begin(), bytes.end(), content->bytes.begin() + static_cast<std::ptrdiff_t>(offset));
            errno = home.failure == Failure::inputOutput ? EIO : ENOSPC;
            return !fails;
        }
        using OpenFile::writeAt;
        std::uint64_t size() override { return content->bytes.size(); }
        bool truncate() override {
            content->bytes.clear();
            return true;
        }
        bool sync() override { return true; }
        FileIdentity identity() override { return {1, content->number}; }
        int descriptor() const noexcept override { return -1; }

    private:
        MemoryFiles & home;
        std::string name;
        std::shared_ptr<Content> content;
    };

    std::shared_ptr<Content> newContent() {
        auto content = std::make_shared<Content>();
        content->number = ++lastNumber;
        return content;
    }
    bool nextFails() noexcept {
        if (isFailing && failsOn) return true;
        if (failIn == 0 || --failIn != 0) return false;
        isFailing = true;
        return true;
    }

    std::uint64_t lastNumber = 0;
    std::uint64_t failIn = 0;
    Failure failure = Failure::noSpace;
    bool failsOn = false;
    bool isFailing = false;
};
