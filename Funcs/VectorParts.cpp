// Parts of vectors, and vectors from parts.

#include "Funcs/Funcs1.h"
#include "Funcs/Waveform.h"

#include <algorithm>
#include <cstring>

namespace {

struct Slice {
    std::int64_t first, count;
};

char * copied(char const * text) {
    char * const copy = strdup(text != nullptr ? text : "");
    if (copy == nullptr) throw MemoryException("Detected in Range");
    return copy;
}

// Both sides of a slice as they lie in the argument; a side that has no such part stays empty.
void copyValues(FuncArgs const & args, FuncResult & result, Slice slice) {
    if (char const * const * strings = args.stringData(0)) {
        char ** const out = result.makeString(slice.count);
        std::transform(strings + slice.first, strings + slice.first + slice.count, out, copied);
        return;
    }
    result.allocate(slice.count, ALLOC_HINT, args.totalLength(0));
    if (double const * reals = args.data(0)) std::copy_n(reals + slice.first, slice.count, result.data());
    if (complex const * pairs = args.complexData(0))
        std::copy_n(pairs + slice.first, slice.count, result.complexData());
}

void copyReference(FuncArgs const & args, FuncResult & result, Slice slice) {
    if (slice.first + slice.count > args.refLength(0)) return;
    result.allocateRef(slice.count, ALLOC_HINT, args.totalLength(0));
    if (double const * reals = args.refData(0)) std::copy_n(reals + slice.first, slice.count, result.refData());
    if (complex const * pairs = args.complexRefData(0))
        std::copy_n(pairs + slice.first, slice.count, result.complexRefData());
    result.setPhysType(PT_UNCHANGED, args.refPhysType(0));
    result.setRefName(args.refName(0));
}

bool isNumeric(VD_type type) noexcept {
    return type == VD_REAL || type == VD_COMPLEX;
}

} // namespace

namespace funcs1 {

FUNC_ERROR range(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    std::int64_t const length = args.length(0);
    std::int64_t const first = countFrom(numberOr(args, 1, 0));
    std::int64_t const last = countFrom(numberOr(args, 2, static_cast<double>(length - 1)));
    if (last < first || first < 0 || last >= length) {
        messages.error("Invalid range in 'Range()' function");
        return FUNC_FAILED;
    }
    Slice const slice{first, last - first + 1};
    result.setType(args.type(0), args.refType(0));
    result.setPhysType(args.physType(0), PT_UNCHANGED);
    copyValues(args, result, slice);
    if (isNumeric(args.refType(0))) copyReference(args, result, slice);
    return FUNC_OK;
}

FUNC_ERROR ref(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    std::int64_t const length = args.refLength(0);
    if (length == 0 || !isNumeric(args.refType(0))) return FUNC_OK;
    result.setType(args.refType(0), VD_UNSET);
    result.setPhysType(args.refPhysType(0), PT_UNCHANGED);
    result.allocate(length, ALLOC_HINT, args.totalLength(0));
    if (double const * reals = args.refData(0)) std::copy_n(reals, length, result.data());
    if (complex const * pairs = args.complexRefData(0)) std::copy_n(pairs, length, result.complexData());
    return FUNC_OK;
}

FUNC_ERROR xy(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    std::int64_t const length = args.length(0), refLength = args.length(1), both = std::min(length, refLength);
    result.setPhysType(args.physType(0), args.physType(1));
    double * const y = result.makeReal(length, ALLOC_HINT, args.totalLength(0));
    double * const x = result.makeRealRef(refLength, ALLOC_HINT, args.totalLength(1));
    if (both > 0) std::copy_n(args.data(0), both, y);
    if (both > 0) std::copy_n(args.data(1), both, x);
    if (NamedVector const * const name = args.getYVec(1)) result.setRefName(name->name());
    return FUNC_OK;
}

} // namespace funcs1
