// formatMessage: printf forms over typed arguments.
#include "torvelan/Messages.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace {

constexpr int widest = 4096;

// One directive: %[flags][width][.precision][length]conversion
struct Directive {
    bool left = false, zero = false, plus = false, space = false, alternate = false, isLong = false;
    int width = 0;
    int precision = -1; // none given
    char conversion = 0;
};

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

PrintfArg::Kind kindOf(char conversion) {
    static constexpr std::string_view integers = "diuxXoc", reals = "gGfFeE";
    if (conversion == 's') return PrintfArg::Kind::text;
    if (integers.find(conversion) != std::string_view::npos) return PrintfArg::Kind::integer;
    if (reals.find(conversion) != std::string_view::npos) return PrintfArg::Kind::real;
    return PrintfArg::Kind::none;
}

// Puts a sign or base prefix and the body into the field.
void pad(std::string & out, Directive const & directive, std::string_view prefix, std::string_view body, bool zeros) {
    std::size_t const length = prefix.size() + body.size();
    std::size_t const fill = std::max(static_cast<std::size_t>(directive.width), length) - length;
    bool const zeroFilled = zeros && directive.zero && !directive.left;
    if (!directive.left && !zeroFilled) out.append(fill, ' ');
    out.append(prefix);
    if (zeroFilled) out.append(fill, '0');
    out.append(body);
    if (directive.left) out.append(fill, ' ');
}

std::string_view signPrefix(Directive const & directive, bool negative) {
    return negative ? "-" : directive.plus ? "+" : directive.space ? " " : "";
}

void formatText(std::string & out, Directive const & directive, std::string_view text) {
    pad(out, directive, "",
        directive.precision < 0 ? text : text.substr(0, static_cast<std::size_t>(directive.precision)), false);
}

// Digits of a number in a base, at least as many as the precision says.
std::string digitsOf(unsigned long long magnitude, int base, int precision) {
    char room[66];
    char const * const end = std::to_chars(room, room + sizeof room, magnitude, base).ptr;
    std::string_view const digits(room, precision == 0 && magnitude == 0 ? 0 : static_cast<std::size_t>(end - room));
    std::size_t const wanted = static_cast<std::size_t>(std::max(precision, 0));
    return std::string(std::max(wanted, digits.size()) - digits.size(), '0').append(digits);
}

void formatSigned(std::string & out, Directive const & directive, long long value) {
    auto const bits = static_cast<unsigned long long>(value);
    pad(out, directive, signPrefix(directive, value < 0),
        digitsOf(value < 0 ? 0 - bits : bits, 10, directive.precision), directive.precision < 0);
}

void formatUnsigned(std::string & out, Directive const & directive, long long value) {
    // Without a length a negative number is an int's.
    bool const narrow = !directive.isLong && value < 0 && value >= INT32_MIN;
    auto const bits = narrow ? static_cast<std::uint32_t>(value) : static_cast<unsigned long long>(value);
    int const base = directive.conversion == 'u' ? 10 : directive.conversion == 'o' ? 8 : 16;
    std::string digits = digitsOf(bits, base, directive.precision);
    bool const capital = directive.conversion == 'X';
    if (capital) std::transform(digits.begin(), digits.end(), digits.begin(), upper);
    bool const prefixed = directive.alternate && base == 16 && bits != 0;
    pad(out, directive, !prefixed ? "" : capital ? "0X" : "0x", digits, directive.precision < 0);
}

void formatInteger(std::string & out, Directive const & directive, long long value) {
    if (directive.conversion == 'c') {
        char const c = static_cast<char>(static_cast<unsigned char>(value));
        pad(out, directive, "", {&c, 1}, false);
    } else if (directive.conversion == 'd' || directive.conversion == 'i') {
        formatSigned(out, directive, value);
    } else {
        formatUnsigned(out, directive, value);
    }
}

void formatReal(std::string & out, Directive const & directive, double value) {
    char const form = directive.conversion;
    std::chars_format const format = form == 'f' || form == 'F'   ? std::chars_format::fixed
                                     : form == 'e' || form == 'E' ? std::chars_format::scientific
                                                                  : std::chars_format::general;
    int const precision = directive.precision < 0 ? 6 : directive.precision;
    std::string body(static_cast<std::size_t>(precision) + 330, '\0'); // 309 digits before the point, and an exponent
    char * const first = body.data();
    body.resize(static_cast<std::size_t>(
        std::to_chars(first, first + body.size(), value < 0 ? -value : value, format, precision).ptr - first));
    bool const negative = __builtin_signbit(value) != 0;
    if (body.front() == '-') body.erase(0, 1); // of a negative zero or NaN
    if (isUpper(form)) std::transform(body.begin(), body.end(), body.begin(), upper);
    pad(out, directive, signPrefix(directive, negative), body, __builtin_isfinite(value) != 0);
}

class Formatter {
public:
    Formatter(char const * format, PrintfArg const (&args)[4]) : p_(format), args_(args) {}

    YString run() {
        while (*p_ != '\0') {
            if (*p_ == '%')
                directive();
            else
                out_.push_back(*p_++);
        }
        return YString(out_);
    }

private:
    void directive() {
        char const * const start = p_++;
        if (*p_ == '%') {
            out_.push_back(*p_++);
            return;
        }
        Directive directive;
        PrintfArg const arg = readDirective(directive) ? take() : PrintfArg();
        if (arg.kind == PrintfArg::Kind::none || arg.kind != kindOf(directive.conversion))
            out_.append(start, p_);
        else
            apply(directive, arg);
    }

    void apply(Directive const & directive, PrintfArg const & arg) {
        if (arg.kind == PrintfArg::Kind::text)
            formatText(out_, directive, arg.text);
        else if (arg.kind == PrintfArg::Kind::integer)
            formatInteger(out_, directive, arg.integer);
        else
            formatReal(out_, directive, arg.real);
    }

    PrintfArg take() { return next_ < 4 ? args_[next_++] : PrintfArg(); }

    // False, with the position behind what was read, when this is no directive.
    bool readDirective(Directive & directive) {
        while (readFlag(directive)) ++p_;
        if (!readNumber(directive.width)) return false;
        if (directive.width < 0) {
            directive.left = true;
            directive.width = -directive.width;
        }
        if (*p_ == '.') {
            ++p_;
            directive.precision = 0;
            if (!readNumber(directive.precision)) return false;
        }
        for (; *p_ == 'l' || *p_ == 'h' || *p_ == 'z' || *p_ == 'j'; ++p_) directive.isLong |= *p_ != 'h';
        if (kindOf(*p_) == PrintfArg::Kind::none) return false;
        directive.conversion = *p_++;
        return true;
    }

    bool readFlag(Directive & directive) const {
        switch (*p_) {
        case '-': return directive.left = true;
        case '0': return directive.zero = true;
        case '+': return directive.plus = true;
        case ' ': return directive.space = true;
        case '#': return directive.alternate = true;
        default: return false;
        }
    }

    // Digits, or '*' for the next argument; false when that is no integer. The value is at most 4096 either way.
    bool readNumber(int & value) {
        if (*p_ == '*') {
            ++p_;
            PrintfArg const arg = take();
            value = static_cast<int>(std::clamp<long long>(arg.integer, -widest, widest));
            return arg.kind == PrintfArg::Kind::integer;
        }
        for (; *p_ >= '0' && *p_ <= '9'; ++p_) value = std::min(value * 10 + (*p_ - '0'), widest);
        return true;
    }

    char const * p_;
    PrintfArg const (&args_)[4];
    int next_ = 0;
    std::string out_;
};

} // namespace

YString formatMessage(char const * format, PrintfArg a, PrintfArg b, PrintfArg c, PrintfArg d) {
    PrintfArg const args[4] = {a, b, c, d};
    return Formatter(format, args).run();
}
