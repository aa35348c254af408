// YString: the 8-bit string of the exported interface, and comparison without regard to (ASCII) case.
#pragma once

#include "torvelan/Export.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

// Reference-counted string of bytes, shared until written. Copies cost one increment. The count is a plain integer:
// strings belong to the interpreter's thread.
//
// A string is a slice from the start of a shared buffer. `joined` may let a new string grow in the buffer of its first
// part even while others hold that buffer, since each holder sees only its own length; so building "a", "a+b", "a+b+c"
// piece by piece costs only the new characters.
class TORVELAN_API YString {
public:
    YString() noexcept = default;
    YString(char const * text); // a null pointer gives the empty string
    YString(std::string_view text);
    YString(std::string const & text) : YString(std::string_view(text)) {}
    YString(char const * text, std::size_t length) : YString(std::string_view(text, length)) {}
    explicit YString(int value);
    explicit YString(unsigned value);
    explicit YString(long value);
    explicit YString(unsigned long value);
    explicit YString(long long value);
    explicit YString(unsigned long long value);
    explicit YString(double value); // the shortest text that reads back equal, with a decimal point, any locale
    YString(std::nullptr_t) = delete;
    YString(bool) = delete;
    YString(YString const & other) noexcept : buffer_(other.buffer_), length_(other.length_) { share(); }
    YString(YString && other) noexcept
        : buffer_(std::exchange(other.buffer_, nullptr)), length_(std::exchange(other.length_, 0)) {}
    ~YString() { release(); }
    YString & operator=(YString const & other) noexcept {
        YString taken(other);
        swap(taken);
        return *this;
    }
    YString & operator=(YString && other) noexcept {
        YString taken(std::move(other));
        swap(taken);
        return *this;
    }
    YString & operator=(char const * text) { return *this = YString(text); }
    // As assignment, but keeps the storage where nobody shares it and the text fits: for lines read in a loop.
    YString & assign(std::string_view text);

    // The parts one behind the other. Shares and extends the buffer of `first` where that is free behind it.
    static YString joined(YString const & first, std::initializer_list<std::string_view> rest);

    std::size_t length() const noexcept { return length_; }
    std::size_t size() const noexcept { return length_; }
    bool empty() const noexcept { return length_ == 0; }
    // Not NUL-terminated in general.
    char const * data() const noexcept { return buffer_ != nullptr ? buffer_->text() : ""; }
    // NUL-terminated; valid until this object changes or dies. May move the characters (not those of other holders), so
    // ask for it before data() or view().
    char const * c_str() const;
    std::string_view view() const noexcept { return {data(), length_}; }
    operator std::string_view() const noexcept { return view(); }
    char operator[](std::size_t i) const noexcept { return data()[i]; }

    YString & operator+=(std::string_view text);
    bool beginsWith(std::string_view prefix) const noexcept { return view().starts_with(prefix); }
    void stripTrailing(std::string_view set); // cuts trailing characters that stand in `set`
    void stripLeading(std::string_view set);
    char * copy() const; // a heap copy (strdup) that the caller frees
    void unique();       // makes the storage unshared and NUL-terminated

    // Folds case: names that compare equal without regard to case have equal values.
    std::size_t hashValue() const noexcept;

    friend bool operator==(YString const & a, YString const & b) noexcept { return a.view() == b.view(); }
    friend bool operator==(YString const & a, char const * b) noexcept { return a.view() == std::string_view(b); }
    friend bool operator<(YString const & a, YString const & b) noexcept { return a.view() < b.view(); }

private:
    // The characters stand behind the record, with a NUL behind the last one used.
    struct Buffer {
        std::size_t references;
        std::size_t used;          // length of the longest string that has been made here
        std::size_t capacity : 63; // characters there is room for, the NUL not counted
        std::size_t sealed : 1;    // somebody may hold a c_str(), so that the NUL must stay while the buffer is shared

        char * text() noexcept { return reinterpret_cast<char *>(this + 1); }
    };

    static Buffer * allocate(std::size_t capacity);
    static Buffer * allocateCopy(std::string_view text, std::size_t capacity);
    static void append(YString & target, std::initializer_list<std::string_view> rest);

    void share() noexcept {
        if (buffer_ != nullptr) ++buffer_->references;
    }
    void release() noexcept {
        if (buffer_ != nullptr && --buffer_->references == 0) std::free(buffer_);
    }
    void swap(YString & other) noexcept {
        std::swap(buffer_, other.buffer_);
        std::swap(length_, other.length_);
    }
    bool canGrowTo(std::size_t total) const noexcept;
    void endHere() const noexcept;

    mutable Buffer * buffer_ = nullptr; // null for a string that never held anything; changed by c_str alone when const
    std::size_t length_ = 0;
};

// ASCII folding only, bytes compared as unsigned after folding to lower case; no locale.
TORVELAN_API int compareNoCase(std::string_view a, std::string_view b) noexcept; // below 0, 0, above 0
TORVELAN_API bool equalNoCase(std::string_view a, std::string_view b) noexcept;
TORVELAN_API std::size_t hashNoCase(std::string_view text) noexcept;
