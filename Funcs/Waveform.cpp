#include "Funcs/Waveform.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

Waveform::Waveform(FuncArgs const & args, int argument)
    : Samples{args.data(argument), args.refData(argument), 0},
      divisions_(args.isFlat() ? args.getYVec(argument) : nullptr) {
    if (y != nullptr) length = args.length(argument);
    std::int64_t const refLength = args.refLength(argument);
    if (complex const * pairs = args.complexRefData(argument); pairs != nullptr && refLength > 0) {
        realParts_.resize(static_cast<std::size_t>(refLength));
        for (std::int64_t i = 0; i < refLength; ++i) realParts_[static_cast<std::size_t>(i)] = pairs[i].re;
        x = realParts_.data();
    }
    if (refLength <= 0) x = nullptr;
    if (x != nullptr) length = std::min(length, refLength);
}

bool Samples::isStrictlyMonotonic() const {
    bool const falls = length > 1 && x[0] > x[1];
    for (std::int64_t i = 1; i < length; ++i)
        if (falls ? x[i] >= x[i - 1] : x[i - 1] >= x[i]) return false;
    return true;
}

bool isGiven(FuncArgs const & args, int argument) {
    return args.data(argument) != nullptr && args.length(argument) > 0;
}

double numberOr(FuncArgs const & args, int argument, double otherwise, std::int64_t element) {
    double const * const values = args.data(argument);
    return values != nullptr && element < args.length(argument) ? values[element] : otherwise;
}

std::string_view textOf(FuncArgs const & args, int argument) {
    char const * const * const strings = args.stringData(argument);
    return strings != nullptr && args.length(argument) > 0 && strings[0] != nullptr ? strings[0] : "";
}

std::int64_t countFrom(double value) noexcept {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    double const whole = std::trunc(value);
    if (!(whole > -9e18)) return std::isnan(value) ? 0 : -most;
    return whole < 9e18 ? static_cast<std::int64_t>(whole) : most;
}

bool hasWord(FuncArgs const & args, int argument, std::string_view word) {
    char const * const * const words = args.stringData(argument);
    if (words == nullptr) return false;
    auto const isWord = [word](char const * text) { return text != nullptr && equalNoCase(text, word); };
    return std::any_of(words, words + args.length(argument), isWord);
}

FUNC_ERROR refuseMissingReference(FuncArgs const & args, int argument, MessageHandler & messages) {
    messages.error("Argument %d in function '%s' has no reference (xvalues)", argument + 1, args.getFuncName());
    return FUNC_FAILED;
}

FUNC_ERROR refuseRange(char const * name, MessageHandler & messages) {
    messages.error("Argument out of range for function '%s'", name);
    return FUNC_FAILED;
}

double * resultLike(FuncArgs const & args, FuncResult & result, std::int64_t n, PhysType physType) {
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(physType, PT_UNCHANGED);
    if (!result.takeStorage(args, 0, n)) result.allocate(n, ALLOC_HINT, args.totalLength(0));
    result.copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    return result.data();
}

void giveStrings(FuncResult & result, std::vector<std::string> const & texts) {
    if (texts.empty()) return;
    char ** out = result.makeString(static_cast<std::int64_t>(texts.size()));
    for (std::string const & text : texts) {
        *out = strdup(text.c_str());
        if (*out++ == nullptr) throw MemoryException("Detected in giveStrings");
    }
}

void giveNumber(FuncResult & result, double value, PhysType physType) {
    result.setType(VD_REAL, VD_UNSET);
    result.setPhysType(physType, PT_UNCHANGED);
    result.allocate(1, ALLOC_DIVISIONS, 1);
    *result.data() = value;
}

double * numberForEachDivision(FuncArgs const & args, FuncResult & result, PhysType physType) {
    std::int64_t const count = args.isFlat() ? args.numYDivisions(0) : 1;
    result.setType(VD_REAL, VD_UNSET);
    result.setPhysType(physType, PT_UNCHANGED);
    result.allocate(count, ALLOC_DIVISIONS, 1);
    return result.data();
}
