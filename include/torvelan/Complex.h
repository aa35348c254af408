// complex: a plain pair of doubles, real part first, as it stands in data blocks.
#pragma once

#include "torvelan/Export.h"

struct complex {
    double re = 0;
    double im = 0;

    friend bool operator==(complex const &, complex const &) = default;
};

inline complex operator+(complex a, complex b) {
    return {a.re + b.re, a.im + b.im};
}
inline complex operator-(complex a, complex b) {
    return {a.re - b.re, a.im - b.im};
}
inline complex operator-(complex a) {
    return {-a.re, -a.im};
}
inline complex operator*(complex a, complex b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
inline complex operator*(double a, complex b) {
    return {a * b.re, a * b.im};
}
inline complex operator*(complex a, double b) {
    return {a.re * b, a.im * b};
}
inline complex operator/(complex a, double b) {
    return {a.re / b, a.im / b};
}

// The standard functions of a complex variable.
TORVELAN_API complex operator/(complex a, complex b); // safe against overflow of the intermediate |b|^2
TORVELAN_API complex operator/(double a, complex b);
TORVELAN_API double abs(complex z);
TORVELAN_API double arg(complex z);
TORVELAN_API complex sin(complex z);
TORVELAN_API complex cos(complex z);
TORVELAN_API complex tan(complex z);
TORVELAN_API complex sinh(complex z);
TORVELAN_API complex cosh(complex z);
TORVELAN_API complex tanh(complex z);
TORVELAN_API complex atan(complex z);
TORVELAN_API complex exp(complex z);
TORVELAN_API complex log(complex z);
TORVELAN_API complex log10(complex z);
TORVELAN_API complex sqrt(complex z);
TORVELAN_API complex pow(complex a, complex b);
TORVELAN_API complex pow(double a, complex b);
TORVELAN_API complex pow(complex a, double b);
