// Numbers to feed element loops with, and how their answers are compared.
#pragma once

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

// Random numbers with the difficult ones among them.
class NumberSamples {
public:
    explicit NumberSamples(unsigned seed) : random_(seed) {}

    double ordinary(double low = -10, double high = 10) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    double any() {
        static constexpr double infinity = std::numeric_limits<double>::infinity();
        static constexpr double difficult[] = {0.0,     -0.0,    1.0,      -1.0,      2.0,          -3.0,
                                               0.5,     1e-310,  -5e-324,  1e300,     -1e300,       1e-300,
                                               DBL_MAX, DBL_MIN, infinity, -infinity, std::nan(""), 2147483647.0};
        return random_() % 4 != 0 ? ordinary() : difficult[random_() % std::size(difficult)];
    }
    std::vector<double> many(std::size_t count, bool difficult = true) {
        std::vector<double> out(count);
        for (double & x : out) x = difficult ? any() : ordinary();
        return out;
    }

private:
    std::mt19937_64 random_;
};

// Equal to the last bit, the sign of zero included; NaNs are alike.
inline bool sameNumber(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// How many doubles apart; 0 for two NaNs, and for zeros of one sign.
inline std::uint64_t doublesApart(double a, double b) {
    if (sameNumber(a, b)) return 0;
    if (std::isnan(a) || std::isnan(b)) return std::numeric_limits<std::uint64_t>::max();
    auto const place = [](double x) {
        auto const bits = std::bit_cast<std::int64_t>(x);
        return bits < 0 ? std::numeric_limits<std::int64_t>::min() - bits - 1 : bits;
    };
    std::int64_t const p = place(a), q = place(b);
    return p > q ? static_cast<std::uint64_t>(p) - static_cast<std::uint64_t>(q)
                 : static_cast<std::uint64_t>(q) - static_cast<std::uint64_t>(p);
}
