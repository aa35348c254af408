// A piecewise polynomial through points, as the changes of slope and curvature at them: all that integrals of it times
// e^(iwx) need besides its two ends.
#pragma once

#include <cstdint>
#include <vector>

namespace fourier {

struct Points {
    double const * y;
    double const * x;
    std::int64_t count;
};

// The points without those that stand, within 1e-10 of their x, where the point before them stood. Keeps copies where
// there are such points.
class DistinctPoints {
public:
    explicit DistinctPoints(Points const & points);
    DistinctPoints(DistinctPoints const &) = delete;
    DistinctPoints & operator=(DistinctPoints const &) = delete;

    Points const & get() const noexcept { return kept_; }

private:
    Points kept_;
    std::vector<double> y_, x_;
};

// Some points with what the polynomial does there: its first and its second derivative in front less that behind, both
// taken as 0 outside the points. Points where neither changes are left out.
struct Changes {
    static constexpr std::int64_t room = 512; // a multiple of the points worked on at a time

    std::int64_t count = 0;
    bool curved = false; // some curvature changes
    double x[room], slope[room], curvature[room];
};

// Between two points the polynomial is a straight line; or, with `parabolas`, the parabola through them and the next
// point, else the previous one, where neither slope nor step changes tenfold at the point between.
class PiecewisePolynomial {
public:
    PiecewisePolynomial(Points const & points, bool parabolas) noexcept : points_(points), parabolas_(parabolas) {}

    // Of the points from `first` on, up to Changes::room of them.
    void findChanges(Changes & out, std::int64_t first) const;
    double integral() const;

private:
    struct Pieces;
    void examine(Pieces & pieces, std::int64_t first, std::int64_t count) const;

    Points points_;
    bool parabolas_;
};

} // namespace fourier
