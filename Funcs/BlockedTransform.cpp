#include "Funcs/BlockedTransform.h"

#include "Funcs/LaneShuffles.h"
#include "support/Multiversion.h"

#include <algorithm>
#include <bit>

namespace realtransform {

namespace {

constexpr std::size_t stripWidth = 2 * laneCount; // columns
constexpr std::size_t rowDoubles = 2 * laneCount;

// Results from this length on are written past the cache. They are written in short pieces far apart, which share few
// places of the cache.
constexpr std::size_t streamedLength = std::size_t{1} << 19;

std::size_t lowerHalf(std::size_t n) noexcept {
    return std::size_t{1} << (std::bit_width(n) - 1) / 2;
}

TORVELAN_INLINE void turnLanes(Row & a, Row const & w) noexcept {
    a = {a.re * w.re - a.im * w.im, a.re * w.im + a.im * w.re};
}

// --- the first step

// Sixteen columns of the samples, and the window over them: the cosine of a sum by those of row and column.
struct Strip {
    Lanes cosine[2], sine[2]; // of the columns, times the swing
    double offset;
    complex const * rowRoots;
    double const * values;
    std::size_t count, columnCount, column;
};

void copyEnd(double * to, Strip const & strip, std::size_t at) noexcept {
    std::size_t const there = at < strip.count ? std::min(strip.count - at, stripWidth) : 0;
    std::copy_n(strip.values + (there > 0 ? at : 0), there, to);
    std::fill(to + there, to + stripWidth, 0.0);
}

// The eight columns on the left as real parts, the others as imaginary parts.
template <bool windowed> struct SampleLoad {
    Strip const & strip;

    TORVELAN_INLINE void operator()(Row & row, std::size_t i) const noexcept {
        std::size_t const at = i * strip.columnCount + strip.column;
        if (at + stripWidth <= strip.count) {
            row = {*looseLanesAt(strip.values + at), *looseLanesAt(strip.values + at + laneCount)};
        } else {
            alignas(laneAlignment) double end[stripWidth];
            copyEnd(end, strip, at);
            row = {*lanesAt(end), *lanesAt(end + laneCount)};
        }
        if (!windowed) return;
        complex const & w = strip.rowRoots[i];
        row.re *= strip.offset - (strip.cosine[0] * w.re - strip.sine[0] * w.im);
        row.im *= strip.offset - (strip.cosine[1] * w.re - strip.sine[1] * w.im);
    }
};

TORVELAN_MULTIVERSION void transformPlain(Row * work, LaneTransform const & transform, Strip const & strip) {
    transform.run(work, SampleLoad<false>{strip});
}

TORVELAN_MULTIVERSION void transformWindowed(Row * work, LaneTransform const & transform, Strip const & strip) {
    transform.run(work, SampleLoad<true>{strip});
}

// Where the rows of a strip go, and how they are turned.
struct Split {
    double * groups;
    Row const * work;
    LaneTransform const & columns;
    RootTable const & roots;
    Row const * laneTurns;
    std::size_t columnCount, column;
    complex first[laneCount],
        second[laneCount]; // turns of k1 from 0 to 7, for the column and the one of the right half
};

TORVELAN_INLINE void storeTransposed(double * to, Lanes const (&re)[laneCount], Lanes const (&im)[laneCount]) noexcept {
    Lanes columns[laneCount];
    transpose(columns, re);
    for (std::size_t j = 0; j < laneCount; ++j) *looseLanesAt(to + j * rowDoubles) = columns[j];
    transpose(columns, im);
    for (std::size_t j = 0; j < laneCount; ++j) *looseLanesAt(to + j * rowDoubles + laneCount) = columns[j];
}

// Takes the two real columns of each lane apart, turns their elements and puts them to the rows that they belong to.
TORVELAN_MULTIVERSION void splitStrip(Split const & s) {
    std::size_t const count = s.columns.length();
    for (std::size_t k = 0; k < count / 2; k += laneCount) {
        Lanes re[2][laneCount], im[2][laneCount];
        complex const first = s.roots[k * s.column], second = s.roots[k * (s.column + laneCount)];
        for (std::size_t b = 0; b < laneCount; ++b) {
            Row const & z = s.work[s.columns.placeOf(k + b)];
            Row const & mirror = s.work[s.columns.placeOf((count - k - b) % count)];
            Row left{z.re + mirror.re, z.im - mirror.im}, right{z.im + mirror.im, mirror.re - z.re};
            turn(left, first * s.first[b]);
            turn(right, second * s.second[b]);
            turnLanes(left, s.laneTurns[k + b]);
            turnLanes(right, s.laneTurns[k + b]);
            re[0][b] = left.re;
            im[0][b] = left.im;
            re[1][b] = right.re;
            im[1][b] = right.im;
        }
        double * const to = s.groups + (k / laneCount * s.columnCount + s.column) * rowDoubles;
        storeTransposed(to, re[0], im[0]);
        storeTransposed(to + laneCount * rowDoubles, re[1], im[1]);
    }
}

// --- the second step

TORVELAN_MULTIVERSION void transformRows(Row * work, LaneTransform const & transform, double const * group) {
    transform.run(
        work, [group](Row & row, std::size_t i) __attribute__((always_inline)) {
            double const * const from = group + i * rowDoubles;
            row = {*looseLanesAt(from), *looseLanesAt(from + laneCount)};
        });
}

// One row, in lane 0.
TORVELAN_MULTIVERSION void transformOne(Row * work, LaneTransform const & transform, complex const * row) {
    transform.run(
        work, [row](Row & to, std::size_t i) __attribute__((always_inline)) {
            to = {Lanes{row[i].re}, Lanes{row[i].im}};
        });
}

struct Placing {
    complex * out;
    complex * above;
    Row const * work;
    LaneTransform const & rows;
    std::size_t rowCount, first; // number of the first row of the group
    double scale;
    bool streams;
};

TORVELAN_INLINE void storePairs(complex * to, Lanes const & re, Lanes const & im, Placing const & p) noexcept {
    Lanes low, high;
    interleave(low, high, re, im);
    low *= p.scale;
    high *= p.scale;
    if (p.streams) {
        streamLanes(&to->re, low);
        streamLanes(&to->re + laneCount, high);
    } else {
        *looseLanesAt(&to->re) = low;
        *looseLanesAt(&to->re + laneCount) = high;
    }
}

// Of the rows k1 of a group: elements of their lower half where they belong, mirror images of their upper half where
// the elements of row R - k1 belong. The images of one row more, the first of the group above, make whole lines of
// them.
TORVELAN_MULTIVERSION void placeRows(Placing const & p) {
    std::size_t const count = p.rows.length();
    for (std::size_t q = 0; q < count / 2; ++q) {
        Row const & row = p.work[p.rows.placeOf(q)];
        storePairs(p.out + q * p.rowCount + p.first, row.re, row.im, p);
        Row const & upper = p.work[p.rows.placeOf(count - 1 - q)];
        Lanes re, im;
        reverseBehind(re, upper.re, p.above[q].re);
        reverseBehind(im, upper.im, p.above[q].im);
        storePairs(p.out + (q + 1) * p.rowCount - p.first - laneCount, re, -im, p);
        p.above[q] = {upper.re[0], upper.im[0]};
    }
}

} // namespace

RootTable::RootTable(std::size_t n) : step_(lowerHalf(n)), coarse_(n / step_), fine_(step_) {
    for (std::size_t k = 0; k < coarse_.size(); ++k) coarse_[k] = root(k, coarse_.size());
    for (std::size_t k = 0; k < step_; ++k) fine_[k] = root(k, n);
}

BlockedTransform::BlockedTransform(std::size_t length)
    : columns_(length / lowerHalf(length)), rows_(lowerHalf(length)), roots_(length), rowRoots_(columns_.length()),
      laneTurns_(columns_.length() / 2), work_(columns_.length()), middle_(rows_.length()), above_(rows_.length() / 2) {
    for (std::size_t i = 0; i < rowRoots_.size(); ++i) rowRoots_[i] = root(i, rowRoots_.size());
    for (std::size_t k = 0; k < laneTurns_.size(); ++k)
        for (std::size_t j = 0; j < laneCount; ++j) {
            complex const turn = root(k * j, length);
            laneTurns_[k].re[j] = turn.re;
            laneTurns_[k].im[j] = turn.im;
        }
}

void BlockedTransform::run(complex * out, complex * scratch, Samples const & samples, Window window, double scale) {
    double * const groups = &scratch->re;
    for (std::size_t column = 0; column < rows_.length(); column += stripWidth)
        transformStrip(groups, column, samples, window);
    transformMiddle();
    // Taking real columns apart has left twice of each.
    for (std::size_t group = columns_.length() / stripWidth; group-- > 0;)
        transformGroup(out, groups, group, scale / 2);
    endStreaming();
}

void BlockedTransform::transformStrip(double * groups, std::size_t column, Samples const & samples, Window window) {
    Strip strip{{},
                {},
                window.offset,
                rowRoots_.data(),
                samples.values,
                static_cast<std::size_t>(samples.count),
                rows_.length(),
                column};
    for (std::size_t j = 0; j < stripWidth; ++j) {
        complex const turn = roots_[column + j];
        strip.cosine[j / laneCount][j % laneCount] = window.swing * turn.re;
        strip.sine[j / laneCount][j % laneCount] = window.swing * turn.im;
    }
    (window.swing == 0 ? transformPlain : transformWindowed)(work_.data(), columns_, strip);
    Split split{groups, work_.data(), columns_, roots_, laneTurns_.data(), rows_.length(), column, {}, {}};
    for (std::size_t b = 0; b < laneCount; ++b) {
        split.first[b] = roots_[b * column];
        split.second[b] = roots_[b * (column + laneCount)];
    }
    splitStrip(split);
    keepMiddle(column);
}

void BlockedTransform::keepMiddle(std::size_t column) {
    std::size_t const half = columns_.length() / 2;
    Row const & row = work_[columns_.placeOf(half)];
    for (std::size_t j = 0; j < laneCount; ++j) {
        middle_[column + j] = 2 * row.re[j] * roots_[half * (column + j)];
        middle_[column + laneCount + j] = 2 * row.im[j] * roots_[half * (column + laneCount + j)];
    }
}

void BlockedTransform::transformMiddle() {
    transformOne(work_.data(), rows_, middle_.data());
    for (std::size_t q = 0; q < above_.size(); ++q) {
        Row const & row = work_[rows_.placeOf(rows_.length() - 1 - q)];
        above_[q] = {row.re[0], row.im[0]};
    }
}

void BlockedTransform::transformGroup(complex * out, double const * groups, std::size_t group, double scale) {
    transformRows(work_.data(), rows_, groups + group * rows_.length() * rowDoubles);
    placeRows({out, above_.data(), work_.data(), rows_, columns_.length(), group * laneCount, scale,
               length() >= streamedLength});
}

} // namespace realtransform
