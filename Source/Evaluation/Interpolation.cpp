#include "Evaluation/Interpolation.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

// Points of a curve: where the two sides differ in length, those that have both.
std::int64_t pointCount(Curve const & curve) noexcept {
    return std::min(curve.y.length(), curve.x.length());
}

bool isUsable(Curve const & curve) noexcept {
    return curve.y.isReal() && curve.x.isReal() && !curve.x.noData() && curve.x.length() >= curve.y.length();
}

bool ratioIsModerate(double ratio) noexcept {
    return ratio >= 0.1 && ratio <= 10.0;
}

// Through the points p[0..2] of x and y in Newton's form.
double parabola(double const * x, double const * y, double slope0, double slope1, double at) noexcept {
    double const bend = (slope1 - slope0) / (x[2] - x[0]);
    return y[0] + (at - x[0]) * (slope0 + bend * (at - x[1]));
}

double straight(double const * x, double const * y, double at) noexcept {
    return y[0] + (y[1] - y[0]) * ((at - x[0]) / (x[1] - x[0]));
}

// Value at a place strictly between the points left and left + 1.
double between(double const * x, double const * y, std::int64_t n, std::int64_t left, double at) noexcept {
    double const line = straight(x + left, y + left, at);
    if (n < 3) return line;
    std::int64_t const first = std::max<std::int64_t>(left - 1, 0);
    x += first;
    y += first;
    double const step0 = x[1] - x[0];
    double const step1 = x[2] - x[1];
    if (step0 == 0 || step1 == 0 || !ratioIsModerate(step1 / step0)) return line;
    double const slope0 = (y[1] - y[0]) / step0;
    double const slope1 = (y[2] - y[1]) / step1;
    if (slope0 == 0 || slope1 == 0 || y[0] == y[2] || !ratioIsModerate(std::fabs(slope1 / slope0))) return line;
    return parabola(x, y, slope0, slope1, at);
}

template <bool falling>
void resample(double const * xNew, std::int64_t nNew, double const * yOld, double const * xOld, std::int64_t nOld,
              double * yNew) {
    auto const before = [](double a, double b) { return falling ? a > b : a < b; };
    std::int64_t at = 0; // first old point that is not before the new x
    for (std::int64_t i = 0; i < nNew; ++i) {
        double const x = xNew[i];
        while (at < nOld && before(xOld[at], x)) ++at;
        bool const hit = at < nOld && xOld[at] == x;
        if (at == nOld)
            yNew[i] = yOld[nOld - 1];
        else if (hit || at == 0)
            yNew[i] = yOld[at];
        else
            yNew[i] = between(xOld, yOld, nOld, at - 1, x);
        // A step on both sides keeps both its ends.
        if (hit && i + 1 < nNew && xNew[i + 1] == x && at + 1 < nOld && xOld[at + 1] == x) ++at;
    }
}

// Owns a temporary until it is handed over.
struct Release {
    void operator()(dvec * vector) const { vector->release(); }
};
using Temporary = std::unique_ptr<dvec, Release>;

Temporary emptyLike(Curve const & curve) {
    return Temporary(new dvec(curve.y.name(), curve.group, curve.y.physType()));
}

// The curve on the first n points of the reference that `out` has already.
void resampleInto(dvec & out, std::int64_t n, Curve const & curve, bool falling) {
    out.setSize(n, VD_REAL);
    resampleOnto(out.ref.realData(), n, curve.y.realData(), curve.x.realData(), pointCount(curve), falling,
                 out.writableRealData());
}

bool isRising(Curve const & curve) {
    int direction = 0;
    return classifyDirection(curve, &direction) && direction == 1;
}

bool mergeStepped(Curve const & a, Curve const & b, dvec ** newA, dvec ** newB) {
    if (!isRising(a) || !isRising(b)) return false;
    NamedVector common(a.x.name());
    common.setPhysType(a.x.physType());
    std::int64_t n = 0;
    common.mergeAscending(a.x.realData(), pointCount(a), b.x.realData(), pointCount(b), &n);
    Temporary outA = emptyLike(a);
    Temporary outB = emptyLike(b);
    outA->ref = common;
    outB->ref = common;
    resampleInto(*outA, n, a, false);
    resampleInto(*outB, n, b, false);
    *newA = outA.release();
    *newB = outB.release();
    return true;
}

// The curve on the master's reference; null when their directions differ.
dvec * resampledLike(Curve const & curve, Curve const & master) {
    int direction = 0;
    int masterDirection = 0;
    if (!classifyDirection(curve, &direction) || !classifyDirection(master, &masterDirection)) return nullptr;
    if (direction != masterDirection) return nullptr;
    Temporary out = emptyLike(curve);
    out->ref = master.x;
    resampleInto(*out, pointCount(master), curve, direction == -1);
    return out.release();
}

} // namespace

bool isStepped(Curve const & curve) {
    double const * y = curve.y.realData();
    double const * x = curve.x.realData();
    if (y == nullptr || x == nullptr) return false;
    std::int64_t const n = pointCount(curve);
    for (std::int64_t i = 1; i < n; ++i)
        if (x[i] != x[i - 1] && y[i] != y[i - 1]) return false;
    return true;
}

bool classifyDirection(Curve const & curve, int * direction) {
    double const * x = curve.x.realData();
    *direction = 0;
    std::int64_t const n = x != nullptr ? pointCount(curve) : 0;
    for (std::int64_t i = 1; i < n; ++i) {
        if (x[i] == x[i - 1]) continue;
        int const step = x[i] > x[i - 1] ? 1 : x[i] < x[i - 1] ? -1 : 0;
        if (step == 0 || step == -*direction) return false;
        *direction = step;
    }
    return true;
}

void resampleOnto(double const * xNew, std::int64_t nNew, double const * yOld, double const * xOld, std::int64_t nOld,
                  bool falling, double * yNew) {
    if (nOld <= 0) return;
    if (falling)
        resample<true>(xNew, nNew, yOld, xOld, nOld, yNew);
    else
        resample<false>(xNew, nNew, yOld, xOld, nOld, yNew);
}

bool interpolateToCommonReference(Curve const & a, Curve const & b, dvec ** newA, dvec ** newB) {
    *newA = *newB = nullptr;
    if (!isUsable(a) || !isUsable(b) || a.y.noData() || b.y.noData()) return false;
    if (isStepped(a) && isStepped(b)) return mergeStepped(a, b, newA, newB);
    bool const aIsMaster = a.y.length() >= b.y.length();
    if (aIsMaster)
        *newB = resampledLike(b, a);
    else
        *newA = resampledLike(a, b);
    return *newA != nullptr || *newB != nullptr;
}
