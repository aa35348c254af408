// The difference of two waveforms on unlike grids.

#include "Funcs/Fft.h"
#include "Funcs/Waveform.h"

#include "support/Interpolate.h"

#include <algorithm>

namespace {

// On the line from the sample before `next` on, or on the first line.
double between(Waveform const & v, std::int64_t next, double at) {
    std::int64_t const left = std::max<std::int64_t>(next - 1, 0);
    return support_Interp(v.y + left, v.x + left, at, InterpOpts());
}

// Walks both rising grids up to the end of the shorter one. visit(i, j, takesA, takesB): the next points of both, and
// which of them stands first; both where they are equal.
template <class Visit> void merge(Waveform const & a, Waveform const & b, Visit const & visit) {
    std::int64_t i = 0, j = 0;
    while (i < a.length && j < b.length) {
        bool const takesA = !(b.x[j] < a.x[i]), takesB = b.x[j] <= a.x[i];
        visit(i, j, takesA, takesB);
        i += takesA ? 1 : 0;
        j += takesB ? 1 : 0;
    }
}

std::int64_t countMerged(Waveform const & a, Waveform const & b) {
    std::int64_t count = 0;
    merge(a, b, [&count](std::int64_t, std::int64_t, bool, bool) { ++count; });
    return count;
}

} // namespace

namespace fft {

FUNC_ERROR diffMergeVecs(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Waveform const a(args, 0), b(args, 1);
    if (!a.hasReference() || !b.hasReference() || a.length < 2 || b.length < 2) return FUNC_OK;
    std::int64_t const n = countMerged(a, b);
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(args.physType(0), args.refPhysType(0));
    result.allocate(n, ALLOC_DIVISIONS, 0);
    result.allocateRef(n, ALLOC_DIVISIONS, 0);
    double *y = result.data(), *x = result.refData();
    merge(a, b, [&](std::int64_t i, std::int64_t j, bool takesA, bool takesB) {
        double const at = takesA ? a.x[i] : b.x[j];
        double const ya = takesA ? a.y[i] : between(a, i, at);
        *y++ = ya - (takesB ? b.y[j] : between(b, j, at));
        *x++ = at;
    });
    result.setRefName(args.refName(0));
    return FUNC_OK;
}

} // namespace fft
