#include "torvelan/Functions.h"
#include "torvelan/dvec.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int64_t mostElements = std::numeric_limits<std::int64_t>::max();

// Sum of two lengths; one that cannot be is left to the allocation to refuse.
std::int64_t sum(std::int64_t a, std::int64_t b) noexcept {
    std::int64_t out;
    return __builtin_add_overflow(a, b, &out) ? mostElements : out;
}

bool isNumeric(VD_type type) noexcept {
    return type == VD_REAL || type == VD_COMPLEX;
}

// Makes the record of a vector its own, since announcing a division would show in all that share it.
void unshare(NamedVector & vector) {
    vector.setLength(vector.totalLength());
}

// An empty division is not announced: nothing would fill it.
void extend(NamedVector & vector, std::int64_t n) {
    if (n == 0) return;
    unshare(vector);
    vector.addDivision(YString());
    vector.setLength(sum(vector.totalLength(), n));
}

void copyUnitAndMark(NamedVector & to, NamedVector const & from) {
    to.setPhysType(from.physType());
    if (from.isMultiple()) to.setMultiple();
}

// A real vector as a complex one of the same divisions.
void makeComplexCopy(NamedVector & vector) {
    NamedVector wide(vector.name());
    wide.setSize(vector.totalLength(), VD_COMPLEX);
    complex * out = wide.writableComplexData();
    for (std::int64_t d = 0; d < vector.numDivisions(); ++d)
        for (std::int64_t i = 0; i < vector.length(d); ++i) *out++ = {vector.getReal(i, d), 0.0};
    if (vector.numDivisions() > 1) wide.adoptDivisions(vector);
    copyUnitAndMark(wide, vector);
    vector = wide;
}

// Makes a vector with earlier divisions ready for one of a kind. Real ones become complex; divisions of kinds that
// cannot stand in one vector with the new one are given up.
void bringToKind(NamedVector & vector, VD_type kind) {
    if (vector.type() == kind) return;
    if (vector.isReal() && kind == VD_COMPLEX) return makeComplexCopy(vector);
    PhysType const physType = vector.physType();
    vector.reset();
    vector.setPhysType(physType);
}

} // namespace

void FuncResult::add(NamedVector * y_, NamedVector * ref_) noexcept {
    y = y_;
    ref = ref_;
}

void FuncResult::add(dvec * vector) noexcept {
    add(vector, vector != nullptr ? &vector->ref : nullptr);
}

void FuncResult::setType(VD_type yType_, VD_type refType_) noexcept {
    yType = yType_;
    refType = refType_;
}

void FuncResult::setPhysType(PhysType yPhysType, PhysType refPhysType) {
    if (y != nullptr && yPhysType != PT_UNCHANGED) y->setPhysType(yPhysType);
    if (ref != nullptr && refPhysType != PT_UNCHANGED) ref->setPhysType(refPhysType);
}

void FuncResult::setName(YString name) {
    if (y != nullptr) y->setName(std::move(name));
}

void FuncResult::setRefName(YString name) {
    if (ref != nullptr) ref->setName(std::move(name));
}

void FuncResult::beginCall() noexcept {
    yMark = markOf(y);
    refMark = markOf(ref);
}

FuncResult::Mark FuncResult::markOf(NamedVector const * vector) noexcept {
    if (vector == nullptr) return {};
    std::int64_t const total = vector->totalLength();
    // An empty vector answers one division, too.
    return {total, total > 0 ? vector->numDivisions() : 0};
}

bool FuncResult::hasNewDivision() const noexcept {
    return markOf(y).divisions > yMark.divisions;
}

void FuncResult::emptyVectors() {
    cutBack(y, yMark);
    cutBack(ref, refMark);
}

void FuncResult::cutBack(NamedVector * vector, Mark const & mark) {
    if (vector == nullptr) return;
    if (mark.total == 0)
        vector->reset();
    else if (vector->isWhole()) // a view is a reference carried along, which no handler writes to
        vector->truncate(mark.total, mark.divisions);
}

std::int64_t FuncResult::capacity(std::int64_t n, ResultAllocType how, std::int64_t hint) const noexcept {
    if (numDivisions == 1) return std::max<std::int64_t>(n, 1); // nothing will be added behind it
    // One element a division: the hint, which is the length of an argument, says too much.
    if (how == ALLOC_HINT) return std::max<std::int64_t>({n, n == 1 ? std::min(hint, numDivisions) : hint, 1});
    std::int64_t divisions = numDivisions;
    if (how == ALLOC_DIVISIONS_X15 && __builtin_mul_overflow(divisions, 3, &divisions)) return n;
    if (how == ALLOC_DIVISIONS_X15) divisions /= 2;
    std::int64_t product;
    if (__builtin_mul_overflow(divisions, n, &product)) return std::max<std::int64_t>(n, 1);
    return std::max<std::int64_t>(product, 1);
}

void FuncResult::allocate(NamedVector & vector, VD_type kind, std::int64_t n, ResultAllocType how, std::int64_t hint) {
    n = sum(std::max<std::int64_t>(n, 0), incrementalOffset);
    if (how == ALLOC_HINT && hint == -1) return vector.setSize(n, kind);
    if (vector.totalLength() > 0) bringToKind(vector, kind);
    if (vector.totalLength() > 0)
        extend(vector, n);
    else
        startWith(vector, kind, n, capacity(n, how, hint));
    if (division != 0) vector.setDivision(division);
}

void FuncResult::startWith(NamedVector & vector, VD_type kind, std::int64_t n, std::int64_t room) {
    allocatedLength = n;
    if (room == n) return vector.setSize(n, kind);
    vector.allocate(room, kind);
    vector.setLength(n);
}

void FuncResult::allocate(std::int64_t n, ResultAllocType how, std::int64_t hint) {
    if (y != nullptr) allocate(*y, yType, n, how, hint);
}

void FuncResult::allocateRef(std::int64_t n, ResultAllocType how, std::int64_t hint) {
    if (ref != nullptr) allocate(*ref, refType, n, how, hint);
}

namespace {

// The n elements of this call, cleared; null when there are none.
template <class T> T * cleared(T * elements, std::int64_t n) {
    if (elements == nullptr || n <= 0) return nullptr;
    std::fill_n(elements, n, T());
    return elements;
}

} // namespace

double * FuncResult::makeReal(std::int64_t n, ResultAllocType how, std::int64_t hint) {
    yType = VD_REAL;
    allocate(n, how, hint);
    return cleared(data(), n);
}

complex * FuncResult::makeComplex(std::int64_t n, ResultAllocType how, std::int64_t hint) {
    yType = VD_COMPLEX;
    allocate(n, how, hint);
    return cleared(complexData(), n);
}

double * FuncResult::makeRealRef(std::int64_t n, ResultAllocType how, std::int64_t hint) {
    refType = VD_REAL;
    allocateRef(n, how, hint);
    return cleared(refData(), n);
}

complex * FuncResult::makeComplexRef(std::int64_t n, ResultAllocType how, std::int64_t hint) {
    refType = VD_COMPLEX;
    allocateRef(n, how, hint);
    return cleared(complexRefData(), n);
}

char ** FuncResult::makeString(std::int64_t n) {
    yType = VD_STRING;
    if (y == nullptr || n < 0) return nullptr;
    if (y->totalLength() > 0) bringToKind(*y, VD_STRING);
    if (y->totalLength() > 0)
        extend(*y, n);
    else
        y->setSize(n, VD_STRING);
    y->setDivision(division);
    return n > 0 ? y->writableStringData() : nullptr;
}

template <class T> T * FuncResult::advanced(T * elements, NamedVector const & vector) const noexcept {
    if (incrementalOffset == 0 || elements == nullptr) return elements;
    return incrementalOffset <= vector.length() ? elements + incrementalOffset : nullptr;
}

double * FuncResult::data() {
    return y != nullptr ? advanced(y->writableRealData(), *y) : nullptr;
}

complex * FuncResult::complexData() {
    return y != nullptr ? advanced(y->writableComplexData(), *y) : nullptr;
}

char ** FuncResult::stringData() {
    return y != nullptr ? y->writableStringData() : nullptr;
}

double * FuncResult::refData() {
    return ref != nullptr ? advanced(ref->writableRealData(), *ref) : nullptr;
}

complex * FuncResult::complexRefData() {
    return ref != nullptr ? advanced(ref->writableComplexData(), *ref) : nullptr;
}

std::int64_t FuncResult::length() const noexcept {
    if (y == nullptr) return 0;
    std::int64_t const n = y->length();
    return n >= incrementalOffset ? n - incrementalOffset : n;
}

std::int64_t FuncResult::length(std::int64_t d) const noexcept {
    if (y == nullptr) return 0;
    std::int64_t const n = y->length(d);
    return n >= incrementalOffset ? n - incrementalOffset : n;
}

std::int64_t FuncResult::getNumYVecDivisions() const noexcept {
    return y != nullptr ? y->numDivisions() : 0;
}

void FuncResult::setDivisionLabelArray(NameArray const & labels) {
    if (ref != nullptr) ref->setLabels(labels, true);
    if (y != nullptr) y->setLabels(labels, false);
}

void FuncResult::setMultiple() {
    if (y != nullptr) y->setMultiple();
}

namespace {

// Fills the current division of `to` from that of `from`, which is as long.
void copyElements(NamedVector & to, NamedVector const & from) {
    std::int64_t const n = from.length();
    if (to.type() == from.type()) {
        for (std::int64_t i = 0; i < n; ++i) to.copyElement(from, i, i);
    } else if (complex * out = to.writableComplexData()) {
        for (std::int64_t i = 0; i < n; ++i) out[i] = {from.getReal(i), 0.0};
    }
}

// Adds the divisions of `from` behind those of `to`.
void append(NamedVector & to, NamedVector from) {
    bool const widens = to.isComplex() && from.isReal();
    if (!widens) bringToKind(to, from.type());
    for (std::int64_t d = 0; d < from.numDivisions(); ++d) {
        from.setDivision(d);
        if (to.totalLength() > 0)
            extend(to, from.length());
        else
            to.setSize(from.length(), from.type());
        to.setDivision(to.numDivisions() - 1);
        copyElements(to, from);
    }
}

} // namespace

// The data are shared where nothing stands before them and nothing can come behind.
void FuncResult::takeOver(NamedVector & to, NamedVector const & from) const {
    if (to.totalLength() == 0 && (numDivisions == 1 || from.isWhole())) {
        static_cast<BaseVector &>(to) = from;
        return;
    }
    append(to, from);
    to.setPhysType(from.physType());
}

void FuncResult::copyVector(NamedVector const & vector) {
    if (y != nullptr) takeOver(*y, vector);
}

void FuncResult::copyVector(NamedVector const & vector, NamedVector const & reference) {
    copyVector(vector);
    if (ref == nullptr) return;
    takeOver(*ref, reference);
    ref->setName(reference.name());
}

void FuncResult::copy(FuncResult const & other) {
    if (other.y == nullptr) return;
    if (other.ref != nullptr)
        copyVector(*other.y, *other.ref);
    else
        copyVector(*other.y);
}

void FuncResult::importNames(FuncResult const & other) {
    if (other.y != nullptr) setName(other.y->name());
    if (other.ref != nullptr) setRefName(other.ref->name());
}

bool FuncResult::copyRefFromArgs(FuncArgs const & args, ResultAllocType how, std::int64_t hint, int argIndex) {
    FuncArgs::Argument const * argument = args.at(argIndex);
    if (argument == nullptr) return false;
    NamedVector * const source = argument->ref;
    if (source == nullptr || ref == nullptr) return true;
    // An evaluation inside the handler may have moved the vectors of a group.
    std::int64_t const d = args.isFlat() ? 0 : args.division;
    if (d < source->numDivisions()) source->setDivision(d);
    std::int64_t const n = args.isFlat() ? source->totalLength() : source->length();
    if (argument->offset == n) return true;
    bool const changesKind = isNumeric(refType) && isNumeric(source->type()) && refType != source->type();
    if (changesKind)
        convertRef(args, how, hint, argIndex);
    else if (!ref->sharesRep(*source))
        *ref = *source;
    return true;
}

void FuncResult::convertRef(FuncArgs const & args, ResultAllocType how, std::int64_t hint, int argIndex) {
    std::int64_t const n = args.refLength(argIndex);
    allocateRef(n, how, hint);
    if (double const * real = args.refData(argIndex)) {
        if (complex * out = complexRefData())
            for (std::int64_t i = 0; i < n; ++i) out[i] = {real[i], 0.0};
    } else if (complex const * pairs = args.complexRefData(argIndex)) {
        if (double * out = refData())
            for (std::int64_t i = 0; i < n; ++i) out[i] = pairs[i].re;
    }
    ref->setPhysType(args.refPhysType(argIndex));
    ref->setName(args.refName(argIndex));
}

bool FuncResult::takeStorage(FuncArgs const & args, int argIndex, std::int64_t n) {
    FuncArgs::Argument const * argument = args.at(argIndex);
    if (argument == nullptr || !args.owns(argIndex)) return false;
    if (y == nullptr || !isNumeric(yType) || n <= 0 || argument->repeated) return false;
    if (numDivisions != 1 || args.isFlat() || incrementalOffset != 0 || argument->offset != 0) return false;
    if (args.standsElsewhere(argIndex)) return false;
    dvec & donor = *argument->vector;
    if (donor.isReadOnly() || donor.numDivisions() != 1 || donor.length() < n || y->totalLength() != 0) return false;
    // Elements that grow would be written over others that are still to be read.
    if (yType == VD_COMPLEX && !donor.isComplex()) return false;
    return donor.ownsStorageAlone() && y->takeStorage(donor, n, yType);
}
