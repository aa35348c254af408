// A waveform times a window, ahead of its Fourier transform.

#include "Funcs/Fourier.h"
#include "Funcs/Waveform.h"

#include "Evaluation/VectorMath.h"

#include <algorithm>

namespace {

constexpr double turn = 6.283185307179586;
constexpr std::int64_t pieceLength = 256;

// The factor 1 - first cos(2 pi u) + second cos(4 pi u): a classical window over its mean, so that amplitudes stay
// right.
struct Shape {
    std::string_view name;
    double first, second;
};

constexpr std::string_view rectangular = "rectangular";
constexpr Shape shapes[] = {
    {"hanning", 1, 0},
    {"blackman", 1.1904761904761905, 0.1904761904761905},
    {"hamming", 0.8518518518518519, 0},
};

Shape const * shapeNamed(std::string_view name) {
    auto const isNamed = [name](Shape const & shape) { return equalNoCase(shape.name, name); };
    Shape const * const found = std::find_if(std::begin(shapes), std::end(shapes), isNamed);
    return found != std::end(shapes) ? found : nullptr;
}

void applyPiece(double * out, double const * y, double const * x, std::int64_t n, Shape const & shape, double start,
                double width) {
    double cosine[pieceLength] = {};
    for (std::int64_t i = 0; i < n; ++i) cosine[i] = turn * ((x[i] - start) / width);
    vectormath::cos(cosine, cosine, static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i) {
        double const c = cosine[i], ofTwice = 2 * c * c - 1;
        out[i] = y[i] * (1 - shape.first * c + shape.second * ofTwice);
    }
}

void apply(double * out, Waveform const & v, Shape const & shape, double width) {
    for (std::int64_t i = 0; i < v.length; i += pieceLength)
        applyPiece(out + i, v.y + i, v.x + i, std::min(pieceLength, v.length - i), shape, v.x[0], width);
}

void leaveUnfilled(FuncArgs const & args, FuncResult & result, std::int64_t n) {
    result.setPhysType(args.physType(0), args.refPhysType(0));
    result.makeReal(n, ALLOC_HINT, args.totalLength(0));
    result.makeRealRef(n, ALLOC_HINT, args.totalLength(0));
    result.setRefName(args.refName(0));
}

} // namespace

namespace fourier {

FUNC_ERROR window(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Waveform const v(args, 0);
    if (!v.hasReference() || v.length == 0 || numberOr(args, 2, 1) <= 0) return FUNC_OK;
    double const width = numberOr(args, 2, v.x[v.length - 1] - v.x[0]);
    std::string_view const name = args.length(1) > 0 ? textOf(args, 1) : shapes[0].name;
    Shape const * const shape = shapeNamed(name);
    if (shape == nullptr && !equalNoCase(name, rectangular)) {
        leaveUnfilled(args, result, v.length);
        return FUNC_OK;
    }
    double * const out = resultLike(args, result, v.length, args.physType(0));
    if (shape != nullptr)
        apply(out, v, *shape, width);
    else
        std::fill_n(out, v.length, 1.0);
    return FUNC_OK;
}

} // namespace fourier
