#include "torvelan/Complex.h"

#include <cmath>
#include <complex>

namespace {

using Std = std::complex<double>;

Std toStd(complex z) {
    return {z.re, z.im};
}

complex fromStd(Std const & z) {
    return {z.real(), z.imag()};
}

complex fromPolar(double radius, double angle) {
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

// By repeated squaring: exact where the products are, so that squares and cubes of round numbers come out round.
complex wholePower(complex base, int n) {
    complex result{1, 0};
    for (; n != 0; n >>= 1) {
        if ((n & 1) != 0) result = result * base;
        base = base * base;
    }
    return result;
}

} // namespace

complex operator/(complex a, complex b) {
    return fromStd(toStd(a) / toStd(b));
}

complex operator/(double a, complex b) {
    return fromStd(Std(a) / toStd(b));
}

double abs(complex z) {
    return std::hypot(z.re, z.im);
}

double arg(complex z) {
    return std::atan2(z.im, z.re);
}

complex sin(complex z) {
    return fromStd(std::sin(toStd(z)));
}

complex cos(complex z) {
    return fromStd(std::cos(toStd(z)));
}

complex tan(complex z) {
    return fromStd(std::tan(toStd(z)));
}

complex sinh(complex z) {
    return fromStd(std::sinh(toStd(z)));
}

complex cosh(complex z) {
    return fromStd(std::cosh(toStd(z)));
}

complex tanh(complex z) {
    return fromStd(std::tanh(toStd(z)));
}

complex atan(complex z) {
    return fromStd(std::atan(toStd(z)));
}

complex exp(complex z) {
    return fromStd(std::exp(toStd(z)));
}

complex log(complex z) {
    return fromStd(std::log(toStd(z)));
}

complex log10(complex z) {
    return fromStd(std::log10(toStd(z)));
}

complex sqrt(complex z) {
    return fromStd(std::sqrt(toStd(z)));
}

complex pow(complex a, complex b) {
    if (b.im == 0) return pow(a, b.re);
    if (a.re == 0 && a.im == 0 && b.re > 0) return {};
    return exp(b * log(a));
}

complex pow(double a, complex b) {
    if (a > 0) return fromPolar(std::pow(a, b.re), b.im * std::log(a));
    return pow(complex{a, 0}, b);
}

complex pow(complex a, double b) {
    constexpr double largestWhole = 64;
    if (std::fabs(b) <= largestWhole && b == std::trunc(b)) {
        int const n = static_cast<int>(b);
        return n < 0 ? 1.0 / wholePower(a, -n) : wholePower(a, n);
    }
    if (a.im == 0 && a.re >= 0) return {std::pow(a.re, b), 0};
    return fromPolar(std::pow(abs(a), b), b * arg(a));
}
