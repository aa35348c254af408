// A waveform on an even grid.

#include "Funcs/Fft.h"
#include "Funcs/Waveform.h"

#include "support/Interpolate.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace {

constexpr int typeTakenStraight = 23; // values that a parabola would spoil

struct Grid {
    double start, interval;
    std::int64_t count;

    double at(std::int64_t i) const noexcept { return static_cast<double>(i) * interval + start; }
};

bool flag(FuncArgs const & args, std::int64_t element) {
    return numberOr(args, 3, 0, element) != 0;
}

int orderFrom(FuncArgs const & args, std::int64_t length) {
    std::int64_t order = countFrom(numberOr(args, 2, 2));
    if (order == -1) order = args.physType(0) == typeTakenStraight ? 1 : 2;
    return static_cast<int>(std::min(std::clamp<std::int64_t>(order, 1, highestInterpOrder), length - 1));
}

// x of the points of an argument; their numbers where it has no reference.
class Places {
public:
    explicit Places(Waveform const & v) : numbers_(v.hasReference() ? 0 : static_cast<std::size_t>(v.length)) {
        std::iota(numbers_.begin(), numbers_.end(), 0.0);
        x = v.hasReference() ? v.x : numbers_.data();
    }
    double const * x;

private:
    std::vector<double> numbers_;
};

// False when the call fails; a message tells when there would be too few points.
bool makeGrid(FuncArgs const & args, Waveform const & v, double const * x, Grid * grid, MessageHandler & messages) {
    double const first = x[0], last = x[v.length - 1], spec = numberOr(args, 1, 0);
    bool const givesInterval = flag(args, 1);
    if (givesInterval && (!v.hasReference() || !(spec > 0))) return false;
    std::int64_t const count =
        givesInterval ? countFrom(std::floor((last - first) / spec + 1e-14) + 1) : countFrom(spec);
    if (count < 2) {
        messages.error("Need at least 2 points for interpolation in function '%s'", args.getFuncName());
        return false;
    }
    double const start = numberOr(args, 1, first, 1), end = numberOr(args, 1, last, 2);
    auto const intervals = static_cast<double>(flag(args, 0) ? count - 1 : count);
    *grid = {start, givesInterval ? spec : (end - start) / intervals, count};
    return true;
}

// Through the order + 1 samples up to the one at or behind each place.
template <class Interpolate>
void resample(double * out, Grid const & grid, double const * y, double const * x, std::int64_t length, int order,
              Interpolate interpolate) {
    std::int64_t cursor = 0;
    for (std::int64_t i = 0; i < grid.count; ++i) {
        double const at = grid.at(i);
        while (cursor + 1 < length && x[cursor] < at) ++cursor;
        std::int64_t const first = std::max<std::int64_t>(cursor - order, 0);
        out[i] = interpolate(y + first, x + first, at);
    }
}

void resample(double * out, Grid const & grid, double const * y, double const * x, std::int64_t length, int order) {
    if (order == 1) return resample(out, grid, y, x, length, 1, interpolateBy<1>);
    if (order == 2) return resample(out, grid, y, x, length, 2, interpolateBy<2>);
    InterpOpts options;
    options.order = order;
    resample(out, grid, y, x, length, order, [&options](double const * ys, double const * xs, double at) {
        return support_Interp(ys, xs, at, options);
    });
}

} // namespace

namespace fft {

FUNC_ERROR interp(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (v.length == 0) return FUNC_FAILED;
    Places const places(v);
    Grid grid{};
    if (!makeGrid(args, v, places.x, &grid, messages)) return FUNC_FAILED;
    result.setType(VD_REAL, v.hasReference() ? VD_REAL : VD_UNSET);
    result.setPhysType(args.physType(0), args.refPhysType(0));
    result.allocate(grid.count, ALLOC_HINT, grid.count);
    resample(result.data(), grid, v.y, places.x, v.length, orderFrom(args, v.length));
    if (!v.hasReference()) return FUNC_OK;
    result.allocateRef(grid.count, ALLOC_HINT, grid.count);
    double * const x = result.refData();
    for (std::int64_t i = 0; i < grid.count; ++i) x[i] = grid.at(i);
    result.setRefName(args.refName(0));
    return FUNC_OK;
}

} // namespace fft
