// Where a waveform crosses a level, what it is at a place, and its periods.

#include "Funcs/Fft.h"
#include "Funcs/Waveform.h"

#include "support/Interpolate.h"

#include <algorithm>

namespace {

constexpr std::int32_t defaultOrder = 2;
constexpr std::uint32_t allCrossings = 1;

InterpOpts optionsFrom(FuncArgs const & args, int orderArgument, std::uint32_t flags) {
    InterpOpts options;
    std::int64_t const order = countFrom(numberOr(args, orderArgument, defaultOrder));
    options.order = order > 0 ? static_cast<std::int32_t>(std::min<std::int64_t>(order, 1000)) : defaultOrder;
    options.flags = flags;
    return options;
}

int signOf(double value) noexcept {
    return value > 0 ? 1 : value < 0 ? -1 : 0;
}

using Places = std::vector<CrossingPlace>;

Places crossings(Waveform const & v, double level, InterpOpts const & options) {
    return findYFromX(v.x, v.y, v.length, level, options);
}

void give(FuncResult & result, Places const & places) {
    if (places.empty()) return;
    auto const n = static_cast<std::int64_t>(places.size());
    result.setType(VD_REAL, VD_UNSET);
    result.allocate(n, ALLOC_HINT, n);
    std::transform(places.begin(), places.end(), result.data(), [](CrossingPlace const & place) { return place.y; });
}

// Which of the three crossings of a period its value stands at: 0 the last, 1 the one between, 2 the first.
std::size_t positionFrom(FuncArgs const & args) {
    std::int64_t const position = countFrom(numberOr(args, 3, 0));
    return position == 1 || position == 2 ? static_cast<std::size_t>(position) : 0;
}

void givePeriods(FuncResult & result, Places const & places, std::size_t position) {
    auto const n = static_cast<std::int64_t>(places.size() - 2);
    result.setType(VD_REAL, VD_REAL);
    result.allocate(n, ALLOC_HINT, n);
    result.allocateRef(n, ALLOC_HINT, n);
    double *const periods = result.data(), *const x = result.refData();
    for (std::size_t k = 2; k < places.size(); ++k) {
        periods[k - 2] = places[k].y - places[k - 2].y;
        x[k - 2] = places[k - position].y;
    }
}

} // namespace

namespace fft {

FUNC_ERROR xFromY(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (!v.hasReference()) return refuseMissingReference(args, 0, messages);
    InterpOpts options = optionsFrom(args, 2, allCrossings);
    options.direction = signOf(numberOr(args, 3, 0));
    result.setPhysType(args.refPhysType(0), args.physType(0));
    give(result, crossings(v, numberOr(args, 1, 0), options));
    return FUNC_OK;
}

FUNC_ERROR yFromX(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (!v.hasReference()) return refuseMissingReference(args, 0, messages);
    result.setPhysType(args.physType(0), args.refPhysType(0));
    give(result, findYFromX(v.y, v.x, v.length, numberOr(args, 1, 0), optionsFrom(args, 2, 0)));
    return FUNC_OK;
}

// Crossings alternate in direction, so a period lies between a crossing and the one before the last.
FUNC_ERROR cyclePeriod(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (!v.hasReference()) return refuseMissingReference(args, 0, messages);
    Places const places = crossings(v, numberOr(args, 1, 0), optionsFrom(args, 2, allCrossings));
    if (places.size() <= 2) return FUNC_OK;
    givePeriods(result, places, positionFrom(args));
    result.setPhysType(args.refPhysType(0), args.refPhysType(0));
    return FUNC_OK;
}

} // namespace fft
