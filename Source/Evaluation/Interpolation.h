// Curves brought onto one reference.
#pragma once

#include "torvelan/dvec.h"

#include <cstdint>

// A y side and the reference that goes with it, which need not belong to one vector.
struct Curve {
    NamedVector const & y;
    NamedVector const & x;
    Group * group; // for a vector made in its place
};

// All changes of y happen between points of equal x, as in a digital signal. A constant is one.
bool isStepped(Curve const & curve);
// Direction of the reference: +1 rising, -1 falling, 0 when all values are equal. False when it turns, or when it has
// values that cannot be ordered.
bool classifyDirection(Curve const & curve, int * direction);
// y at each of nNew new x, which run in one direction (falling or rising) as the nOld old ones do. A parabola through
// three points where steps and slopes are of like size, a straight line elsewhere; constant outside the old points.
void resampleOnto(double const * xNew, std::int64_t nNew, double const * yOld, double const * xOld, std::int64_t nOld,
                  bool falling, double * yNew);
// Gives two curves of one division one reference. The vectors to use in their place, new temporaries, are left in *newA
// and *newB, null where the curve itself stays. False when they cannot be brought together.
bool interpolateToCommonReference(Curve const & a, Curve const & b, dvec ** newA, dvec ** newB);
