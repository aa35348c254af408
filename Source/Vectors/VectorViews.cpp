// The view: which divisions a vector shows. The data are not touched.
#include "torvelan/Vectors.h"

#include "Vectors/VectorRep.h"

void BaseVector::setDivision(std::int64_t i) {
    std::int64_t division = absolute(i);
    if (division >= 0 && division < record().divisions()) currentDivision = division;
}

void BaseVector::selectDivision(std::int64_t i) {
    if (i < 0 || i >= numDivisions()) return;
    firstDivision += i;
    currentDivision = firstDivision;
    endDivision = firstDivision + 1;
}

void BaseVector::openDivisionAt(std::int64_t i) {
    if (i < 0 || i >= numDivisions()) return;
    firstDivision += i;
    currentDivision = firstDivision;
    endDivision = -1;
}

bool BaseVector::limitDivisions(std::int64_t n) {
    if (firstDivision != 0 || endDivision != -1) return false;
    std::int64_t count = record().divisions();
    if (n < 1 || n > count) return false;
    if (n == count) return true;
    endDivision = n;
    currentDivision = firstDivision;
    rep->invalidateRanges();
    return true;
}

bool BaseVector::limitLength(std::int64_t n) {
    if (numDivisions() != 1 || n < 0 || n > length()) return false;
    if (n < length()) forcedLength = n;
    return true;
}

void BaseVector::showAll() noexcept {
    forcedLength = -1;
    currentDivision = 0;
    firstDivision = 0;
    endDivision = -1;
}

void BaseVector::reset() {
    if (rep) rep->release();
    rep = VectorRep::untouched(false);
    showAll();
}
