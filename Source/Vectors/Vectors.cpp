// The handles: sharing a record of data, appending to it, names and references.
#include "torvelan/Vectors.h"

#include "Vectors/VectorRep.h"
#include "torvelan/SharedBlocks.h"

#include <cmath>
#include <utility>

namespace {

// A second holder of a record. An untouched vector gets a record of its own first, so that both see what either
// appends later. Without memory for it they stay strangers, which is noticed at the first value.
VectorRep * shared(VectorRep *& rep) noexcept {
    if (!rep) return nullptr;
    if (rep->isUntouched())
        if (VectorRep * own = rep->tryMakeOwn()) rep = own;
    rep->retain();
    return rep;
}

void release(VectorRep * rep) noexcept {
    if (rep) rep->release();
}

// The divisions that `to` has when those of `from` stand behind its own. Announced ones are forgotten, since the data
// behind which they were announced go on elsewhere.
DivisionTable joinedDivisions(VectorRep const & to, VectorRep const & from) {
    DivisionTable joined = to.divisionIndex;
    if (from.bytes() == 0) return joined;
    std::int64_t added = from.divisions();
    if (to.bytes() == 0) {
        joined = from.divisionIndex;
        joined.cut(added);
        return joined;
    }
    joined.cut(to.divisions());
    joined.append(to.bytes());
    joined.reserve(added);
    for (std::int64_t i = 1; i < added; ++i) joined.append(to.bytes() + from.divisionIndex.entry(i));
    return joined;
}

// The same in the table of a file, which only grows: a division that was announced there is filled now.
void appendDivisions(VectorRep & to, VectorRep const & from) {
    if (from.bytes() == 0) return;
    DivisionTable & table = to.divisionIndex;
    std::int64_t const count = table.count();
    bool const isAnnounced = count > 0 && table.entry(count - 1) == to.bytes();
    if (to.bytes() != 0 && !isAnnounced) table.append(to.bytes());
    for (std::int64_t i = 1, n = from.divisions(); i < n; ++i) table.append(to.bytes() + from.divisionIndex.entry(i));
}

// Apart, so that the way of most values stays short.
[[gnu::noinline]] void appendReal(VectorRep & to, double value) {
    if (to.type == VD_COMPLEX) to.append(complex{value, 0}, value);
}

} // namespace

IfVector::IfVector(IfVector const & other) noexcept : rep(shared(other.rep)) {}

IfVector & IfVector::operator=(IfVector const & other) noexcept {
    VectorRep * taken = shared(other.rep);
    release(rep);
    rep = taken;
    return *this;
}

IfVector::~IfVector() {
    release(rep);
}

VectorRep * IfVector::appendable() {
    if (rep && rep->isUntouched()) {
        VectorRep * own = rep->tryMakeOwn();
        if (!own) throwVectorAllocationFailed();
        rep = own;
    }
    return rep;
}

void IfVector::addDivision(YString const & labelGroupName) {
    addDivision(labelGroupName, 0);
}

void IfVector::addDivision(YString const & labelGroupName, unsigned long long extraOffset) {
    VectorRep * own = appendable();
    if (!own) return;
    if (extraOffset > UINT64_MAX - own->bytes()) throwVectorAllocationFailed();
    own->divisionIndex.append(own->bytes() + extraOffset);
    if (!labelGroupName.empty()) own->labelGroup = labelGroupName;
}

VEC_ERROR IfVector::addVal(complex const & value) {
    VectorRep * own = appendable();
    if (!own) return VEC_NO_DATA_RECORD;
    if (own->type == VD_COMPLEX) own->append(value, std::sqrt(value.re * value.re + value.im * value.im));
    return VEC_OK;
}

VEC_ERROR IfVector::addVal(double value) {
    VectorRep * own = appendable();
    if (!own) return VEC_NO_DATA_RECORD;
    if (own->type == VD_REAL)
        own->append(value, value);
    else
        appendReal(*own, value);
    return VEC_OK;
}

bool IfVector::becomeComplex() {
    VectorRep * own = appendable();
    if (!own || own->type == VD_COMPLEX) return own;
    if (own->type != VD_REAL || own->bytes() != 0) return false;
    own->type = VD_COMPLEX;
    return true;
}

void IfVector::appendVector(IfVector const * other, int linkIndex, NameArray const & labels) {
    if (!rep || !other || !other->rep) return;
    VectorRep & own = *appendable();
    VectorRep const & from = *other->rep;
    if (own.bytes() != 0 && own.type != from.type) return;
    auto newLabels = std::make_shared<NameArray const>(labels);
    DivisionTable joined;
    if (own.divisionIndex.isWritten())
        appendDivisions(own, from);
    else
        joined = joinedDivisions(own, from);
    own.appendElements(from, linkIndex);
    if (!own.divisionIndex.isWritten()) own.divisionIndex = std::move(joined);
    own.setLabels(std::move(newLabels));
}

bool IfVector::addSharedBlock(SharedBlockToken pool, int blockId, unsigned long long bytes) {
    VectorRep * own = appendable();
    if (!own || (own->type != VD_REAL && own->type != VD_COMPLEX)) return false;
    return own->addSharedBlock(pool.get().get(), blockId, bytes);
}

unsigned long long IfVector::getObjectSize() const noexcept {
    return rep ? rep->bytes() : 0;
}

bool IfVector::isRealised() const noexcept {
    return rep && rep->block;
}

void IfVector::setBufferSize(int) noexcept {}

void IfVector::shrinkReal() {
    if (!rep || rep->isUntouched()) return;
    bool isNumeric = rep->type == VD_REAL || rep->type == VD_COMPLEX;
    if (isNumeric && rep->block) rep->block->shrink();
    rep->divisionIndex.shrink();
}

BaseVector::BaseVector() noexcept : IfVector(VectorRep::untouched(false)) {}

BaseVector::~BaseVector() = default;

void BaseVector::shareLazily(BaseVector const & other) noexcept {
    VectorRep * taken = other.rep;
    if (taken) taken->retain();
    release(rep);
    rep = taken;
    forcedLength = other.forcedLength;
    currentDivision = other.currentDivision;
    firstDivision = other.firstDivision;
    endDivision = other.endDivision;
}

NamedVector::~NamedVector() = default;

void NamedVector::setName(YString newName) {
    name_ = std::move(newName);
}

// A vector without reference is the common case, and nobody waits for values of a reference that it may get.
XYVector::XYVector(XYVector const & other) : NamedVector(other), ref(other.ref.name()) {
    ref.shareLazily(other.ref);
}

XYVector & XYVector::operator=(XYVector const & other) {
    NamedVector::operator=(other);
    ref.setName(other.ref.name());
    ref.shareLazily(other.ref);
    return *this;
}

XYVector::~XYVector() = default;
