#include "VectorText.h"

#include "support/Numbers.h"

#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace {

struct Element {
    VD_type type = VD_NONE;
    complex number;
    std::string text;
};

struct Parsed {
    std::vector<std::vector<Element>> divisions{1};
    std::string physType;
};

[[noreturn]] void refuse(std::string_view what, std::string_view text) {
    throw std::runtime_error(std::string(what) + " in vector text: " + std::string(text));
}

double number(std::string_view & rest) {
    std::string const copy(rest);
    for (auto const & [word, value] : {std::pair{"nan", std::nan("")}, {"inf", HUGE_VAL}, {"-inf", -HUGE_VAL}}) {
        if (!copy.starts_with(word)) continue;
        rest.remove_prefix(std::string_view(word).size());
        return value;
    }
    char const * end = nullptr;
    double const value = sp_ConvertEngToReal(copy.c_str(), &end);
    if (end == copy.c_str()) refuse("no number", rest);
    rest.remove_prefix(static_cast<std::size_t>(end - copy.c_str()));
    return value;
}

void expect(std::string_view & rest, char c) {
    if (rest.empty() || rest.front() != c) refuse("missing punctuation", rest);
    rest.remove_prefix(1);
}

Element element(std::string_view & rest) {
    Element e;
    if (rest.front() == '\'') {
        std::size_t const end = rest.find('\'', 1);
        if (end == std::string_view::npos) refuse("open quote", rest);
        e.type = VD_STRING;
        e.text = rest.substr(1, end - 1);
        rest.remove_prefix(end + 1);
    } else if (rest.front() == '(') {
        e.type = VD_COMPLEX;
        rest.remove_prefix(1);
        e.number.re = number(rest);
        expect(rest, ',');
        e.number.im = number(rest);
        expect(rest, ')');
    } else {
        e.type = VD_REAL;
        e.number.re = number(rest);
    }
    return e;
}

void skipBlanks(std::string_view & rest) {
    while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
}

Parsed parse(std::string_view text) {
    Parsed parsed;
    std::string_view rest = text;
    for (skipBlanks(rest); !rest.empty(); skipBlanks(rest)) {
        if (rest.front() == '|') {
            parsed.divisions.emplace_back();
            rest.remove_prefix(1);
        } else if (rest.front() == ':') {
            rest.remove_prefix(1);
            skipBlanks(rest);
            parsed.physType = rest;
            return parsed;
        } else {
            parsed.divisions.back().push_back(element(rest));
        }
    }
    return parsed;
}

PhysType physTypeOf(std::string const & name) {
    PhysType type = PT_UNKNOWN;
    if (!sp_GetPhysTypeFromName(YString(name), &type)) refuse("unknown physical type", name);
    return type;
}

void append(BaseVector & vector, Element const & e) {
    if (e.type == VD_STRING) {
        std::int64_t const total = vector.totalLength();
        vector.setLength(total + 1);
        vector.setDivision(vector.numDivisions() - 1);
        vector.setString(e.text.c_str(), vector.length() - 1);
        vector.setDivision(0);
    } else if (e.type == VD_COMPLEX) {
        (void)vector.addVal(e.number);
    } else {
        (void)vector.addVal(e.number.re);
    }
}

std::string shown(BaseVector const & v, std::int64_t i, std::int64_t d) {
    if (v.isString()) return "'" + std::string(YString(v.getString(i, d)).view()) + "'";
    std::string const re(YString(v.getReal(i, d)).view());
    if (!v.isComplex()) return re;
    return "(" + re + "," + std::string(YString(v.getImag(i, d)).view()) + ")";
}

bool near(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return a == b || std::fabs(a - b) <= 1e-12 * std::fmax(std::fabs(a), std::fabs(b));
}

bool agrees(BaseVector const & v, std::int64_t i, std::int64_t d, Element const & e) {
    if (v.type() != e.type) return false;
    if (e.type == VD_STRING) return e.text == YString(v.getString(i, d)).view();
    return near(v.getReal(i, d), e.number.re) && near(v.getImag(i, d), e.number.im);
}

bool agrees(BaseVector const & v, Parsed const & wanted) {
    if (!wanted.physType.empty() && v.physType() != physTypeOf(wanted.physType)) return false;
    auto const divisions = static_cast<std::int64_t>(wanted.divisions.size());
    if (v.numDivisions() != divisions) return false;
    for (std::int64_t d = 0; d < divisions; ++d) {
        auto const & elements = wanted.divisions[static_cast<std::size_t>(d)];
        if (v.length(d) != static_cast<std::int64_t>(elements.size())) return false;
        for (std::int64_t i = 0; i < v.length(d); ++i)
            if (!agrees(v, i, d, elements[static_cast<std::size_t>(i)])) return false;
    }
    return true;
}

} // namespace

void fillFromText(BaseVector & vector, std::string_view text) {
    Parsed const parsed = parse(text);
    if (!parsed.divisions[0].empty()) vector.setSize(0, parsed.divisions[0][0].type);
    for (std::size_t d = 0; d < parsed.divisions.size(); ++d) {
        if (d > 0) vector.addDivision(YString());
        for (Element const & e : parsed.divisions[d]) append(vector, e);
    }
    if (!parsed.physType.empty()) vector.setPhysType(physTypeOf(parsed.physType));
}

std::string textOf(BaseVector const & vector) {
    std::string text;
    for (std::int64_t d = 0; d < vector.numDivisions(); ++d) {
        if (d > 0) text += " | ";
        for (std::int64_t i = 0; i < vector.length(d); ++i) text += (i > 0 ? " " : "") + shown(vector, i, d);
    }
    if (vector.physType() != PT_UNKNOWN) text += " : " + std::string(sp_GetPhysTypeName(vector.physType()).view());
    return text;
}

std::string differenceFrom(BaseVector const & vector, std::string_view text) {
    if (agrees(vector, parse(text))) return {};
    return "wanted " + std::string(text) + "\n  found " + textOf(vector);
}
