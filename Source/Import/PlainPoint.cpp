#include "Import/PlainPoint.h"

#include <fast_float/fast_float.h>

namespace {

bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Goes forward through a text; once something does not fit it has failed for good.
class PlainScanner {
public:
    explicit PlainScanner(std::string_view text) : start_(text.data()), position_(start_), end_(start_ + text.size()) {}

    void index() {
        constexpr std::ptrdiff_t mostDigits = 9; // any such number is an int
        skipWhiteSpace();
        char const * const first = position_;
        while (position_ != end_ && *position_ >= '0' && *position_ <= '9') ++position_;
        std::ptrdiff_t const digits = position_ - first;
        require(digits > 0 && digits <= mostDigits && position_ != end_ && isWhiteSpace(*position_));
    }
    void number(double & value) {
        skipWhiteSpace();
        numberHere(value);
        require(position_ != end_ && isWhiteSpace(*position_));
    }
    void number(complex & value) {
        skipWhiteSpace();
        numberHere(value.re);
        require(position_ != end_ && *position_ == ',');
        if (failed_) return;
        ++position_;
        numberHere(value.im);
        require(position_ != end_ && isWhiteSpace(*position_));
    }
    bool failed() const noexcept { return failed_; }
    std::size_t taken() const noexcept { return static_cast<std::size_t>(position_ - start_); }

private:
    void require(bool condition) noexcept { failed_ = failed_ || !condition; }
    void skipWhiteSpace() {
        while (position_ != end_ && isWhiteSpace(*position_)) ++position_;
    }
    void numberHere(double & value) {
        auto const result = fast_float::from_chars(position_, end_, value);
        require(result.ec == std::errc() && value == value);
        position_ = result.ptr;
    }

    char const * const start_;
    char const * position_;
    char const * const end_;
    bool failed_ = false;
};

template <class Element> std::size_t parsePoint(std::string_view text, Element * values, std::size_t n) {
    PlainScanner scanner(text);
    scanner.index();
    for (std::size_t i = 0; i < n && !scanner.failed(); ++i) scanner.number(values[i]);
    return scanner.failed() ? 0 : scanner.taken();
}

bool isColumnSeparator(char c) {
    return c == ' ' || c == ',' || c == '\t' || c == '\r';
}

char const * skipColumnSeparators(char const * p, char const * end) {
    while (p != end && isColumnSeparator(*p)) ++p;
    return p;
}

// Whether a column ends here.
bool endsColumn(char const * p, char const * end) {
    return p != end && (isColumnSeparator(*p) || *p == '\n');
}

// A number that begins with a digit or a point, which "inf" and "nan" do not. Null when it is none.
char const * parseDecimal(char const * p, char const * end, double & value) {
    char const first = p != end && *p == '-' ? (p + 1 != end ? p[1] : '\0') : (p != end ? *p : '\0');
    if (first != '.' && (first < '0' || first > '9')) return nullptr;
    auto const result = fast_float::from_chars(p, end, value);
    return result.ec == std::errc() ? result.ptr : nullptr;
}

// The same, null also when it has something behind it that is no separator.
char const * parseColumn(char const * p, char const * end, double & value) {
    p = parseDecimal(p, end, value);
    return p != nullptr && endsColumn(p, end) ? p : nullptr;
}

char const * parsePair(char const * p, char const * end, complex & value) {
    bool const opened = p != end && *p == '(';
    p = parseColumn(opened ? p + 1 : p, end, value.re);
    if (p == nullptr) return nullptr;
    p = skipColumnSeparators(p, end);
    if (!opened) return parseColumn(p, end, value.im);
    p = parseDecimal(p, end, value.im);
    return p != nullptr && p != end && *p == ')' && endsColumn(p + 1, end) ? p + 1 : nullptr;
}

// Behind the line feed that the line ends with, whatever else it holds; 0 when that is not there.
std::size_t behindLine(std::string_view text, char const * p) {
    std::size_t const feed = text.find('\n', static_cast<std::size_t>(p - text.data()));
    return feed == text.npos ? 0 : feed + 1;
}

} // namespace

std::size_t parsePlainPoint(std::string_view text, double * values, std::size_t n) {
    return parsePoint(text, values, n);
}

std::size_t parsePlainPoint(std::string_view text, complex * values, std::size_t n) {
    return parsePoint(text, values, n);
}

std::size_t parsePlainRow(std::string_view text, double * values, std::size_t n) {
    char const * p = text.data();
    char const * const end = p + text.size();
    for (std::size_t i = 0; i < n; ++i) {
        p = parseColumn(skipColumnSeparators(p, end), end, values[i]);
        if (p == nullptr) return 0;
    }
    return behindLine(text, p);
}

std::size_t parsePlainRow(std::string_view text, complex * values, std::span<PlainColumn const> columns) {
    char const * p = text.data();
    char const * const end = p + text.size();
    for (PlainColumn const column : columns) {
        p = skipColumnSeparators(p, end);
        values->im = 0;
        p = column == PlainColumn::pair ? parsePair(p, end, *values) : parseColumn(p, end, values->re);
        if (p == nullptr) return 0;
        ++values;
    }
    return behindLine(text, p);
}

PlainNumbers parsePlainNumbers(std::string_view text, double * values, std::size_t most) {
    PlainNumbers run;
    char const * p = text.data();
    char const * const end = p + text.size();
    while (run.count < most) {
        while (p != end && (isColumnSeparator(*p) || *p == '\n')) ++p;
        p = parseColumn(p, end, values[run.count]);
        if (p == nullptr) break;
        run.taken = static_cast<std::size_t>(p - text.data());
        ++run.count;
    }
    return run;
}
