// Reading: counts, addresses, single elements, comparison. Nothing here copies a record or scans a table.
#include "torvelan/Vectors.h"

#include "Vectors/VectorRep.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr std::uint64_t currentDivisionMark = ~std::uint64_t{0};

double magnitude(complex z) noexcept {
    return std::sqrt(z.re * z.re + z.im * z.im);
}

// Calls `visit` with element i of a division, as the type that the kind of the vector has; false when there is none.
template <class Visit> bool visitElement(VectorRep const & rep, std::int64_t division, std::int64_t i, Visit visit) {
    if (i < 0 || i >= rep.divisionLength(division)) return false;
    std::int64_t at = rep.divisionStart(division) + i;
    switch (rep.type) {
    case VD_REAL: visit(*rep.element<double>(at)); return true;
    case VD_COMPLEX: visit(*rep.element<complex>(at)); return true;
    case VD_STRING: visit(static_cast<char const *>(*rep.element<char *>(at))); return true;
    default: return false;
    }
}

struct RealPart {
    double value = 0;
    void operator()(double v) noexcept { value = v; }
    void operator()(complex v) noexcept { value = v.re; }
    void operator()(char const *) noexcept {}
};

struct ImaginaryPart {
    double value = 0;
    void operator()(double) noexcept {}
    void operator()(complex v) noexcept { value = v.im; }
    void operator()(char const *) noexcept {}
};

struct Magnitude {
    double value = 0;
    void operator()(double v) noexcept { value = std::fabs(v); }
    void operator()(complex v) noexcept { value = magnitude(v); }
    void operator()(char const *) noexcept {}
};

struct Text {
    char const * value = nullptr;
    void operator()(double) noexcept {}
    void operator()(complex) noexcept {}
    void operator()(char const * v) noexcept { value = v; }
};

template <class Part> auto part(VectorRep const & rep, std::int64_t division, std::int64_t i) {
    Part found;
    visitElement(rep, division, i, [&](auto const & v) { found(v); });
    return found.value;
}

template <class T> T const * address(VectorRep const & rep, VD_type kind, std::int64_t division) {
    if (rep.type != kind || rep.divisionLength(division) == 0) return nullptr;
    return rep.element<T const>(rep.divisionStart(division));
}

template <class T>
bool readBlock(VectorRep const & rep, VD_type kind, std::int64_t division, T * dest, std::int64_t count) {
    std::int64_t length = rep.divisionLength(division);
    if (rep.type != kind || length == 0 || count < 0 || count > length) return false;
    std::uint64_t bytes = static_cast<std::uint64_t>(count) * sizeof(T);
    return rep.block->read(dest, bytes, static_cast<std::uint64_t>(rep.divisionStart(division)) * sizeof(T)) == bytes;
}

bool sameText(char const * a, char const * b) noexcept {
    return a && b ? std::strcmp(a, b) == 0 : a == b;
}

// Elements of two divisions of the same kind.
bool sameElements(VectorRep const & a, std::int64_t i, VectorRep const & b, std::int64_t j, std::int64_t n) {
    if (a.block == b.block && i == j) return true;
    switch (a.type) {
    case VD_REAL: return std::equal(a.element<double>(i), a.element<double>(i + n), b.element<double>(j));
    case VD_COMPLEX: return std::equal(a.element<complex>(i), a.element<complex>(i + n), b.element<complex>(j));
    case VD_STRING: return std::equal(a.element<char *>(i), a.element<char *>(i + n), b.element<char *>(j), sameText);
    default: return true;
    }
}

} // namespace

VectorRep const & BaseVector::record() const noexcept {
    return rep ? *rep : *VectorRep::untouched(false);
}

std::int64_t BaseVector::absolute(std::int64_t division) const noexcept {
    return division < 0 || division > INT64_MAX - firstDivision ? -1 : firstDivision + division;
}

// A forced length is never believed beyond what is there: the data may have been cut since.
std::int64_t BaseVector::shownLength(std::int64_t division) const {
    std::int64_t length = record().divisionLength(division);
    return forcedLength == -1 ? length : std::min(length, forcedLength);
}

std::int64_t BaseVector::length() const {
    return shownLength(currentDivision);
}

std::int64_t BaseVector::length(std::int64_t division) const {
    return shownLength(absolute(division));
}

std::int64_t BaseVector::numDivisions() const {
    std::int64_t end = endDivision != -1 ? endDivision : record().divisions();
    return std::max<std::int64_t>(end - firstDivision, 1);
}

std::int64_t BaseVector::totalLength() const {
    VectorRep const & r = record();
    if (forcedLength != -1) return std::min(forcedLength, r.elements());
    if (isWhole()) return r.elements();
    std::int64_t total = 0;
    for (std::int64_t i = 0, n = numDivisions(); i < n; ++i) total += r.divisionLength(firstDivision + i);
    return total;
}

VD_type BaseVector::type() const noexcept {
    return record().type;
}

PhysType BaseVector::physType() const noexcept {
    return record().physType;
}

bool BaseVector::isMultiple() const noexcept {
    return record().multiple;
}

double const * BaseVector::realData() const {
    return address<double>(record(), VD_REAL, currentDivision);
}

complex const * BaseVector::complexData() const {
    return address<complex>(record(), VD_COMPLEX, currentDivision);
}

char const * const * BaseVector::stringData() const {
    return address<char const *>(record(), VD_STRING, currentDivision);
}

double const * BaseVector::realData(std::int64_t division) const {
    return address<double>(record(), VD_REAL, absolute(division));
}

complex const * BaseVector::complexData(std::int64_t division) const {
    return address<complex>(record(), VD_COMPLEX, absolute(division));
}

char const * const * BaseVector::stringData(std::int64_t division) const {
    return address<char const *>(record(), VD_STRING, absolute(division));
}

double const * BaseVector::allRealData() const {
    VectorRep const & r = record();
    return isWhole() && r.type == VD_REAL && r.elements() > 0 ? r.element<double const>(0) : nullptr;
}

complex const * BaseVector::allComplexData() const {
    VectorRep const & r = record();
    return isWhole() && r.type == VD_COMPLEX && r.elements() > 0 ? r.element<complex const>(0) : nullptr;
}

double BaseVector::getReal(std::int64_t i) const {
    return part<RealPart>(record(), currentDivision, i);
}

double BaseVector::getImag(std::int64_t i) const {
    return part<ImaginaryPart>(record(), currentDivision, i);
}

double BaseVector::getMag(std::int64_t i) const {
    return part<Magnitude>(record(), currentDivision, i);
}

char const * BaseVector::getString(std::int64_t i) const {
    return part<Text>(record(), currentDivision, i);
}

double BaseVector::getReal(std::int64_t i, std::int64_t division) const {
    return part<RealPart>(record(), absolute(division), i);
}

double BaseVector::getImag(std::int64_t i, std::int64_t division) const {
    return part<ImaginaryPart>(record(), absolute(division), i);
}

double BaseVector::getMag(std::int64_t i, std::int64_t division) const {
    return part<Magnitude>(record(), absolute(division), i);
}

char const * BaseVector::getString(std::int64_t i, std::int64_t division) const {
    return part<Text>(record(), absolute(division), i);
}

bool BaseVector::readRealBlock(double * dest, std::int64_t count, std::uint64_t division) const {
    std::int64_t at = division == currentDivisionMark ? currentDivision : absolute(static_cast<std::int64_t>(division));
    return readBlock(record(), VD_REAL, at, dest, count);
}

bool BaseVector::readComplexBlock(complex * dest, std::int64_t count, std::uint64_t division) const {
    std::int64_t at = division == currentDivisionMark ? currentDivision : absolute(static_cast<std::int64_t>(division));
    return readBlock(record(), VD_COMPLEX, at, dest, count);
}

void const * BaseVector::dataIdentity() const noexcept {
    return rep != nullptr && !rep->isUntouched() ? rep : nullptr;
}

bool BaseVector::sharesRep(BaseVector const & other) const noexcept {
    return this == &other || (rep && rep == other.rep && !rep->isUntouched());
}

bool BaseVector::sameData(BaseVector const & other) const {
    bool sameView = firstDivision == other.firstDivision && endDivision == other.endDivision &&
                    currentDivision == other.currentDivision;
    if (sameView && sharesRep(other)) return true;
    std::int64_t n = length();
    if (n != other.length()) return false;
    if (n == 0) return true;
    VectorRep const & a = record();
    VectorRep const & b = other.record();
    if (a.type != b.type) return false;
    return sameElements(a, a.divisionStart(currentDivision), b, b.divisionStart(other.currentDivision), n);
}

bool BaseVector::sameDivisions(BaseVector const & other) const {
    VectorRep const & a = record();
    VectorRep const & b = other.record();
    std::int64_t n = a.divisions();
    if (!isWhole() || !other.isWhole() || n != b.divisions()) return false;
    if (n == 1) return true;
    if (elementWidth(a.type) == elementWidth(b.type) && a.divisionIndex.sharesEntries(b.divisionIndex)) return true;
    for (std::int64_t i = 0; i < n; ++i)
        if (a.divisionStart(i) != b.divisionStart(i)) return false;
    return true;
}

bool BaseVector::everyDivisionHasData() const {
    VectorRep const & r = record();
    std::int64_t n = numDivisions();
    if (length(0) == 0 || length(n - 1) == 0) return false;
    if (forcedLength == -1 && r.divisionIndex.risesBy(elementWidth(r.type))) return true;
    for (std::int64_t i = 1; i < n; ++i)
        if (length(i) == 0) return false;
    return true;
}
