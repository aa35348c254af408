// The transform of many real samples, in two steps that each work within the second cache.
//
// The N samples stand in a matrix of R rows and C columns, N = R C, row after row. The first step transforms the
// columns, sixteen real ones as eight complex ones at a time, and turns element k1 of column n2 by e^(2 pi i k1 n2 /
// N). What has k1 above R/2 mirrors the rest and is dropped. The second step transforms the rows that this makes, eight
// at a time: element k2 of row k1 is element k1 + R k2 of the whole where k2 < C/2; the others mirror elements of row R
// - k1.
#pragma once

#include "Funcs/LaneTransform.h"
#include "Funcs/RealTransform.h"

#include <vector>

namespace realtransform {

// The roots of 1 of a high order, each by one multiplication.
class RootTable {
public:
    explicit RootTable(std::size_t n);

    complex operator[](std::size_t k) const noexcept { return coarse_[k / step_] * fine_[k % step_]; } // k below n

private:
    std::size_t step_;
    std::vector<complex> coarse_, fine_;
};

class BlockedTransform {
public:
    static constexpr std::size_t shortest = 256;

    explicit BlockedTransform(std::size_t length); // a power of two, `shortest` at least

    std::size_t length() const noexcept { return columns_.length() * rows_.length(); }
    // As realtransform::run.
    void run(complex * out, complex * scratch, Samples const & samples, Window window, double scale);

private:
    void transformStrip(double * groups, std::size_t column, Samples const & samples, Window window);
    void keepMiddle(std::size_t column);
    void transformMiddle();
    void transformGroup(complex * out, double const * groups, std::size_t group, double scale);

    LaneTransform columns_, rows_;  // of R and of C elements
    RootTable roots_;               // of N
    std::vector<complex> rowRoots_; // of R
    std::vector<Row> laneTurns_;    // for each k1, e^(2 pi i k1 j / N) in lane j
    std::vector<Row> work_;         // the transforms under way
    std::vector<complex> middle_;   // row R/2, which has no group
    std::vector<complex> above_; // upper half of the row above a group: its mirror images stand with those of the group
};

} // namespace realtransform
