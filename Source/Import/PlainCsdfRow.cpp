#include "Import/PlainCsdfRow.h"

#include "Import/CsdfTokeniser.h"

#include <charconv>
#include <fast_float/fast_float.h>

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    auto const letter = static_cast<char>(c | 0x20);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// Goes forward through a text; once something does not fit it has failed for good.
class RowScanner {
public:
    explicit RowScanner(std::string_view text) : start_(text.data()), position_(start_), end_(start_ + text.size()) {}

    void number(double & value) {
        skipSpace();
        numberHere(value);
    }
    void value(double & value) { number(value); }
    void value(complex & value) {
        number(value.re);
        expect('/');
        numberHere(value.im);
    }
    // The number n, in decimal.
    void count(std::size_t n) {
        skipSpace();
        std::size_t given = 0;
        auto const result = std::from_chars(position_, end_, given);
        require(result.ec == std::errc() && given == n);
        position_ = result.ptr;
        space();
    }
    // What is behind a value: the index n, in hexadecimal, or nothing.
    void index(std::size_t n) {
        hasIndex_ = position_ != end_ && *position_ == ':';
        if (!hasIndex_) return space();
        ++position_;
        require(n == hexHere());
        space();
    }
    void beginningOfRow() {
        skipSpace();
        expect('#');
        require(position_ != end_ && (*position_ == 'C' || *position_ == 'c'));
        if (failed_) return;
        ++position_;
        space();
    }
    void space() { require(position_ != end_ && isCsdfSpace(*position_)); }
    bool failed() const noexcept { return failed_; }
    bool hasIndex() const noexcept { return hasIndex_; }
    std::size_t taken() const noexcept { return static_cast<std::size_t>(position_ - start_); }

private:
    void require(bool condition) noexcept { failed_ = failed_ || !condition; }
    void expect(char c) {
        require(position_ != end_ && *position_ == c);
        if (!failed_) ++position_;
    }
    void skipSpace() {
        while (position_ != end_ && isCsdfSpace(*position_)) ++position_;
    }
    void numberHere(double & value) {
        auto const result = fast_float::from_chars(position_, end_, value);
        require(result.ec == std::errc() && value == value);
        position_ = result.ptr;
    }
    // Of at most eight digits; with more, white space does not follow.
    std::size_t hexHere() {
        constexpr int most = 8;
        std::size_t given = 0;
        for (int i = 0; i < most && position_ != end_ && hexDigit(*position_) >= 0; ++i)
            given = given * 16 + static_cast<std::size_t>(hexDigit(*position_++));
        return given;
    }

    char const * const start_;
    char const * position_;
    char const * const end_;
    bool hasIndex_ = false;
    bool failed_ = false;
};

template <class Element> PlainCsdfRow parseRow(std::string_view text, double & sweep, Element * values, std::size_t n) {
    if (n == 0) return {};
    RowScanner scanner(text);
    scanner.number(sweep);
    scanner.space();
    scanner.count(n);
    for (std::size_t i = 0; i < n && !scanner.failed(); ++i) {
        scanner.value(values[i]);
        scanner.index(i + 1);
    }
    scanner.beginningOfRow();
    if (scanner.failed()) return {};
    // Sweep, count, and what is behind the last value.
    return {scanner.taken(), scanner.hasIndex() ? 5 : 3};
}

} // namespace

PlainCsdfRow parsePlainCsdfRow(std::string_view text, double & sweep, double * values, std::size_t n) {
    return parseRow(text, sweep, values, n);
}

PlainCsdfRow parsePlainCsdfRow(std::string_view text, double & sweep, complex * values, std::size_t n) {
    return parseRow(text, sweep, values, n);
}
