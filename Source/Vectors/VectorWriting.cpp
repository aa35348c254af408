// Writing: each operation gives the vector a record of its own first.
#include "torvelan/Vectors.h"

#include "Vectors/VectorRep.h"

#include <cstdlib>
#include <memory>
#include <utility>

namespace {

struct FreeText {
    void operator()(char * s) const noexcept { std::free(s); }
};
using TextCopy = std::unique_ptr<char, FreeText>;

} // namespace

VectorRep * BaseVector::unique() {
    if (rep && !rep->isShared()) return rep;
    VectorRep * own = !rep ? VectorRep::make() : rep->isUntouched() ? rep->tryMakeOwn() : rep->makeSharing();
    if (!own) throwVectorAllocationFailed();
    if (rep) rep->release();
    rep = own;
    return rep;
}

// Address of the current division for writing; null when the kind differs or there is nothing.
template <class T> T * BaseVector::writable(VD_type kind) {
    if (type() != kind || record().divisionLength(currentDivision) == 0) return nullptr;
    VectorRep * own = unique();
    own->ownBlock();
    own->invalidateRange(currentDivision);
    return own->element<T>(own->divisionStart(currentDivision));
}

double * BaseVector::writableRealData() {
    return writable<double>(VD_REAL);
}

complex * BaseVector::writableComplexData() {
    return writable<complex>(VD_COMPLEX);
}

char ** BaseVector::writableStringData() {
    return writable<char *>(VD_STRING);
}

void BaseVector::setSize(std::int64_t n, VD_type type) {
    VectorRep * own = unique();
    own->resize(n, type);
    if (type == VD_STRING) own->clearStrings(own->divisionStart(firstDivision));
}

void BaseVector::allocate(std::int64_t n, VD_type type) {
    unique()->reserve(n, type);
}

void BaseVector::setLength(std::int64_t n) {
    unique()->resizeInSteps(n);
}

void BaseVector::setString(char const * s, std::int64_t i) {
    if (!isString() || i < 0 || i >= length()) return;
    TextCopy copy(duplicateString(s));
    char *& slot = writableStringData()[i];
    std::free(slot);
    slot = copy.release();
}

void BaseVector::copyElement(BaseVector const & src, std::int64_t dstIndex, std::int64_t srcIndex) {
    VD_type kind = type();
    bool inside = dstIndex >= 0 && dstIndex < length() && srcIndex >= 0 && srcIndex < src.length();
    if (!inside || src.type() != kind) return;
    if (kind == VD_REAL) {
        double value = src.getReal(srcIndex);
        writableRealData()[dstIndex] = value;
    } else if (kind == VD_COMPLEX) {
        complex value = src.complexData()[srcIndex];
        writableComplexData()[dstIndex] = value;
    } else if (kind == VD_STRING) {
        setString(src.getString(srcIndex), dstIndex);
    }
}

void BaseVector::setPhysType(PhysType type) {
    if (physType() != type) unique()->physType = type;
}

void BaseVector::setMultiple() {
    if (isMultiple()) return;
    if (rep && rep->isUntouched())
        rep = VectorRep::untouched(true);
    else
        unique()->multiple = true;
}

void BaseVector::setComplexFlag() {
    if (isComplex()) return;
    if (isString()) return allocate(0, VD_COMPLEX);
    VectorRep * own = unique();
    own->type = VD_COMPLEX;
    own->invalidateRanges();
}

void BaseVector::collapseDivisions() {
    if (isMultiple() || record().divisionIndex.exists()) {
        VectorRep * own = unique();
        own->becomeOneDivision();
        own->multiple = false;
        own->invalidateRanges();
    }
    firstDivision = 0;
    currentDivision = 0;
    endDivision = -1;
}
