#include "Funcs/HarmonicSums.h"

#include "Evaluation/VectorMath.h"
#include "support/Lanes.h"
#include "support/Multiversion.h"

#include <algorithm>

namespace fourier {

namespace {

constexpr std::size_t room = Changes::room;
constexpr std::size_t together = 2; // points of a lane whose powers are kept in registers
static_assert(room % (together * laneCount) == 0);

// Harmonics that the lanes add up before their sums leave the first cache. The powers of each stretch start from those
// of the one before, by one turn for all its harmonics: so the error of a power does not grow with each harmonic.
constexpr std::size_t stretch = 32;

// Changes as the lanes take them: each lane has points that follow each other. A steep piece means a great change and
// one as great the other way at the next point; added up in order they do not grow.
struct LaneChanges {
    alignas(Lanes) double x[room], slope[room], curvature[room];
    std::size_t count; // of all lanes, changes of nothing at the end included
};

void distribute(LaneChanges & out, Changes const & changes) {
    auto const count = static_cast<std::size_t>(changes.count);
    std::size_t const perLane = (count + together * laneCount - 1) / (together * laneCount) * together;
    out.count = perLane * laneCount;
    for (std::size_t lane = 0; lane < laneCount; ++lane)
        for (std::size_t i = 0; i < perLane; ++i) {
            std::size_t const to = i * laneCount + lane, from = lane * perLane + i;
            bool const isThere = from < count;
            out.x[to] = isThere ? changes.x[from] : 0;
            out.slope[to] = isThere ? changes.slope[from] : 0;
            out.curvature[to] = isThere ? changes.curvature[from] : 0;
        }
}

struct Turns {
    alignas(Lanes) double re[room], im[room];
};

void turnsOf(Turns & out, LaneChanges const & changes, double w) {
    double angle[room];
    for (std::size_t i = 0; i < changes.count; ++i) angle[i] = w * changes.x[i];
    vectormath::cos(out.re, angle, changes.count);
    vectormath::sin(out.im, angle, changes.count);
}

// From the first harmonic of a stretch to that of the next.
TORVELAN_MULTIVERSION void turnAll(Turns & start, Turns const & by, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        double const re = start.re[i] * by.re[i] - start.im[i] * by.im[i];
        start.im[i] = start.re[i] * by.im[i] + start.im[i] * by.re[i];
        start.re[i] = re;
    }
}

struct LaneSums {
    Lanes slopeRe, slopeIm, curvatureRe, curvatureIm;
};

struct Power {
    Lanes re, im, stepRe, stepIm, slope, curvature;

    TORVELAN_INLINE Power(Turns const & start, Turns const & step, LaneChanges const & changes, std::size_t i) noexcept
        : re(*lanesAt(start.re + i)), im(*lanesAt(start.im + i)), stepRe(*lanesAt(step.re + i)),
          stepIm(*lanesAt(step.im + i)), slope(*lanesAt(changes.slope + i)),
          curvature(*lanesAt(changes.curvature + i)) {}
    TORVELAN_INLINE void advance() noexcept {
        Lanes const next = re * stepRe - im * stepIm;
        im = re * stepIm + im * stepRe;
        re = next;
    }
};

template <bool curved>
TORVELAN_INLINE void addPowers(LaneSums * sums, std::size_t harmonics, Turns const & start, Turns const & step,
                               LaneChanges const & changes) {
    for (std::size_t i = 0; i < changes.count; i += together * laneCount) {
        Power a(start, step, changes, i), b(start, step, changes, i + laneCount);
        for (std::size_t h = 0; h < harmonics; ++h) {
            sums[h].slopeRe += a.slope * a.re + b.slope * b.re;
            sums[h].slopeIm += a.slope * a.im + b.slope * b.im;
            if (curved) {
                sums[h].curvatureRe += a.curvature * a.re + b.curvature * b.re;
                sums[h].curvatureIm += a.curvature * a.im + b.curvature * b.im;
            }
            a.advance();
            b.advance();
        }
    }
}

TORVELAN_MULTIVERSION void addStraight(LaneSums * sums, std::size_t harmonics, Turns const & start, Turns const & step,
                                       LaneChanges const & changes) {
    addPowers<false>(sums, harmonics, start, step, changes);
}

TORVELAN_MULTIVERSION void addCurved(LaneSums * sums, std::size_t harmonics, Turns const & start, Turns const & step,
                                     LaneChanges const & changes) {
    addPowers<true>(sums, harmonics, start, step, changes);
}

double total(Lanes const & lanes) noexcept {
    double out = 0;
    for (std::size_t i = 0; i < laneCount; ++i) out += lanes[i];
    return out;
}

} // namespace

void addHarmonicSums(HarmonicSums * sums, std::size_t count, Changes const & changes, double first, double w0) {
    LaneChanges points;
    Turns start, step, whole;
    distribute(points, changes);
    turnsOf(start, points, first * w0);
    turnsOf(step, points, w0);
    if (count > stretch) turnsOf(whole, points, static_cast<double>(stretch) * w0);
    for (std::size_t k = 0; k < count; k += stretch) {
        std::size_t const harmonics = std::min(stretch, count - k);
        if (k > 0) turnAll(start, whole, points.count);
        LaneSums lanes[stretch] = {};
        (changes.curved ? addCurved : addStraight)(lanes, harmonics, start, step, points);
        for (std::size_t h = 0; h < harmonics; ++h) {
            HarmonicSums & sum = sums[k + h];
            sum.slope = sum.slope + complex{total(lanes[h].slopeRe), total(lanes[h].slopeIm)};
            sum.curvature = sum.curvature + complex{total(lanes[h].curvatureRe), total(lanes[h].curvatureIm)};
        }
    }
}

} // namespace fourier
