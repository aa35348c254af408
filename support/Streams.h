// Byte streams with the stream rules that the file readers rely on: nothing is translated; eof() is a flag set by a
// read that met the end, also by one that got what it wanted up to there; fail() is a flag set by a read that got less
// than it wanted, and while it is set nothing more is read. seekg clears both.
#pragma once

#include "torvelan/YString.h"

#include <cstddef>
#include <cstdint>

class tvstream {
public:
    virtual ~tvstream() = default;
    virtual std::size_t read(char * dest, std::size_t n) = 0; // bytes moved
    virtual int get() = 0;                                    // -1 at the end
    // The byte that get would give, or -1. Touches no flag.
    virtual int peek() = 0;
    // A line without its line feed (a CR is kept). False, and an empty line, when nothing was left to read.
    virtual bool getline(YString * line) = 0;
    // As istream::getline: at most size-1 characters and a NUL; a longer line sets fail(), and leaves the rest. What
    // fail() says is the answer turned round.
    virtual bool getline(char * dest, std::size_t size) = 0;
    // Origin 0 start, 1 current. A place before the start is refused: fail() is set and the position stays. One behind
    // the end is not.
    virtual void seekg(std::int64_t offset, int origin = 0) = 0;
    virtual std::int64_t tellg() const = 0; // -1 when not open
    virtual bool eof() const noexcept = 0;
    virtual bool fail() const noexcept = 0;
    virtual explicit operator bool() const noexcept = 0; // open and good
};

// Read-only file stream over a buffer of large blocks.
class tvfstream final : public tvstream {
public:
    static constexpr int modeRead = 0;
    static constexpr int modeReadUntranslated = 129;

    // `lock` and `exclusive` hold a file as being written, which a stream that only reads never does.
    tvfstream(YString const & path, int mode, bool lock, bool exclusive);
    ~tvfstream() override;
    tvfstream(tvfstream const &) = delete;
    tvfstream & operator=(tvfstream const &) = delete;

    std::size_t read(char * dest, std::size_t n) override;
    int get() override {
        if (begin_ != end_ && !fail_) [[likely]]
            return static_cast<unsigned char>(buffer_[begin_++]);
        return getSlowly();
    }
    int peek() override;
    bool getline(YString * line) override;
    bool getline(char * dest, std::size_t size) override;
    void seekg(std::int64_t offset, int origin = 0) override;
    std::int64_t tellg() const override;
    bool eof() const noexcept override { return eof_; }
    bool fail() const noexcept override { return fail_; }
    explicit operator bool() const noexcept override { return descriptor_ >= 0 && !fail_; }

    std::uint64_t getFileSize() const; // of the open file now; 0 when not open
    // White space, then a number, as stream extraction reads it: decimal, with a sign, and for double an exponent,
    // "inf" and "nan" too. On failure (which a number beyond int is) the variable is unchanged, fail() is set, and
    // eof() too when the end was met. A double too large is infinite, one too small is 0.
    tvfstream & operator>>(int & value);
    tvfstream & operator>>(double & value);

    // For readers that look ahead: what is next to come, as far as it is in the buffer now (nothing after a failure),
    // and going over the first n characters of it.
    std::string_view buffered() const noexcept {
        return fail_ ? std::string_view() : std::string_view(buffer_ + begin_, end_ - begin_);
    }
    void skipBuffered(std::size_t n) noexcept { begin_ += n; }

private:
    bool refill();              // false at the end of the file
    bool ensure(std::size_t n); // at least n bytes from begin_ on are in the buffer, or the file ends
    void makeRoom();
    std::size_t readBlock(char * dest, std::size_t n);
    std::size_t take(char * dest, std::size_t n) noexcept;
    bool takeLine(std::string_view & piece) noexcept;
    bool meetEnd(bool satisfied) noexcept;
    int getSlowly();
    bool skipWhiteSpace();
    template <class Number> tvfstream & extract(Number & value);
    template <class Number> void extractAtEdge(Number & value);

    int descriptor_ = -1;
    char * buffer_ = nullptr;         // made at the first read
    std::size_t begin_ = 0, end_ = 0; // unread part of the buffer
    std::size_t capacity_ = 0;
    std::int64_t fileOffset_ = 0; // of the byte behind the buffer's last
    bool eof_ = false;
    bool fail_ = false;
};
