// Writing that gives a vector another shape: more divisions, fewer, the memory of another.
#include "torvelan/Vectors.h"

#include "Vectors/VectorRep.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

// Elements that all the lengths come to, negative ones counting as 0.
std::int64_t totalOf(YArray<std::int64_t> const & lengths) {
    std::int64_t total = 0;
    for (std::int64_t n : lengths)
        if (__builtin_add_overflow(total, std::max<std::int64_t>(n, 0), &total)) throwVectorAllocationFailed();
    return total;
}

// Writes `wanted` elements behind a block that has room for them, by repeating the first `have` elements of a division;
// zeros when there are none to repeat.
void appendRepeated(NewDataBlock & to, VectorRep const & from, std::int64_t division, std::int64_t have,
                    std::int64_t wanted) {
    char * first = to.realise() + to.size();
    std::uint64_t bytes = byteCount(wanted, from.type);
    std::uint64_t done = byteCount(std::min(have, wanted), from.type);
    if (done == 0)
        std::memset(first, 0, bytes);
    else
        std::memcpy(first, from.element<char>(0) + byteCount(from.divisionStart(division), from.type), done);
    // What is written already is copied behind itself in ever greater parts.
    for (std::uint64_t part = 0; done != 0 && done < bytes; done += part) {
        part = std::min(done, bytes - done);
        std::memcpy(first + done, first, part);
    }
    to.resize(to.size() + bytes);
}

// Walks both arrays by the lesser head, equal heads together, and tells each value.
template <class Take> void mergeHeads(double const * a, std::int64_t na, double const * b, std::int64_t nb, Take take) {
    std::int64_t i = 0, j = 0;
    while (i < na && j < nb) {
        bool fromA = a[i] <= b[j];
        bool equal = a[i] == b[j];
        take(fromA ? a[i] : b[j]);
        i += fromA;
        j += !fromA || equal;
    }
    for (; i < na; ++i) take(a[i]);
    for (; j < nb; ++j) take(b[j]);
}

// The table of n divisions as they start in `from`, for elements of another width or a part of the divisions.
DivisionTable scaledDivisions(VectorRep const & from, std::int64_t first, std::int64_t n, std::uint64_t width) {
    DivisionTable table;
    std::int64_t origin = from.divisionStart(first);
    for (std::int64_t i = 1; i < n; ++i)
        table.append(static_cast<std::uint64_t>(from.divisionStart(first + i) - origin) * width);
    return table;
}

} // namespace

void BaseVector::expandTo(YArray<std::int64_t> const & lengths) {
    std::size_t n = lengths.size();
    auto have = static_cast<std::size_t>(numDivisions());
    if (n == 0 || (have != 1 && have != n)) return;
    VectorRep * own = unique();
    BlockRef block = NewDataBlock::make();
    block->reserve(byteCount(totalOf(lengths), own->type));
    DivisionTable divisions;
    for (std::size_t i = 0; i < n; ++i) {
        std::int64_t source = firstDivision + static_cast<std::int64_t>(have == 1 ? 0 : i);
        if (i > 0) divisions.append(block->size());
        appendRepeated(*block.get(), *own, source, shownLength(source), std::max<std::int64_t>(lengths[i], 0));
    }
    if (own->type == VD_STRING) block = copiedBlock(*block.get(), block->size(), 0, true);
    own->replaceContents(std::move(block), own->type, std::move(divisions));
    if (have != n) own->setLabels(nullptr);
    std::int64_t shown = currentDivisionIndex();
    showAll();
    setDivision(shown);
}

void BaseVector::mergeAscending(double const * a, std::int64_t na, double const * b, std::int64_t nb,
                                std::int64_t * n) {
    std::int64_t count = 0;
    mergeHeads(a, na, b, nb, [&](double) { ++count; });
    BlockRef block = NewDataBlock::make();
    block->resize(byteCount(count, VD_REAL));
    auto * out = reinterpret_cast<double *>(block->realise());
    mergeHeads(a, na, b, nb, [&](double x) { *out++ = x; });
    unique()->replaceContents(std::move(block), VD_REAL, {});
    showAll();
    *n = count;
}

void BaseVector::adoptDivisions(BaseVector const & other) {
    if (!isWhole() || sharesRep(other) || totalLength() != other.totalLength()) return;
    VectorRep const & from = other.record();
    std::uint64_t width = elementWidth(type());
    std::int64_t n = other.numDivisions();
    bool asTheyAre = other.isWhole() && width == elementWidth(from.type);
    DivisionTable divisions = asTheyAre ? from.divisionIndex : scaledDivisions(from, other.firstDivision, n, width);
    divisions.cut(n);
    VectorRep * own = unique();
    own->becomeOneDivision();
    own->divisionIndex = std::move(divisions);
}

void BaseVector::divideEvenly(std::int64_t n) {
    if (!isWhole() || n <= 0) return;
    VectorRep * own = unique();
    own->becomeOneDivision();
    own->divisionIndex.reserve(own->elements() / n);
    std::uint64_t const width = elementWidth(own->type);
    for (std::int64_t i = n; i < own->elements(); i += n)
        own->divisionIndex.append(static_cast<std::uint64_t>(i) * width);
}

void BaseVector::truncate(std::int64_t total, std::int64_t divisions) {
    VectorRep const & r = record();
    std::int64_t n = std::clamp<std::int64_t>(total, 0, r.elements());
    if (n == r.elements() && divisions >= r.divisionIndex.count()) return;
    VectorRep * own = unique();
    own->resize(n, own->type);
    own->divisionIndex.cut(divisions);
    if (currentDivision >= own->divisions()) currentDivision = firstDivision;
}

bool BaseVector::ownsStorageAlone() const noexcept {
    if (!rep || rep->isShared() || !rep->block) return false;
    return isWhole() && !isString() && !rep->block->isShared() && !rep->block->hasBacking();
}

bool BaseVector::takeStorage(BaseVector & donor, std::int64_t n, VD_type type) {
    std::uint64_t width = elementWidth(type);
    if (&donor == this || !donor.ownsStorageAlone() || type == VD_STRING || n < 0) return false;
    if (width == 0 || static_cast<std::uint64_t>(n) > donor.rep->block->capacity() / width) return false;
    VectorRep * own = unique();
    BlockRef block = std::move(donor.rep->block);
    donor.rep->becomeOneDivision();
    donor.rep->invalidateRanges();
    block->resize(static_cast<std::uint64_t>(n) * width);
    own->replaceContents(std::move(block), type, {});
    showAll();
    return true;
}
