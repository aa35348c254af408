// How long a Fourier transform takes on this machine.

#include "Funcs/FourierCalculation.h"
#include "torvelan/Fourier.h"

#include <chrono>
#include <cmath>
#include <vector>

namespace {

constexpr std::int64_t pointCount = 1000, harmonicCount = 100;
constexpr double turn = 6.283185307179586;

double calculateSine() {
    using Clock = std::chrono::system_clock;
    auto const milliseconds = [] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count();
    };
    std::vector<double> x(pointCount), y(pointCount);
    for (std::size_t i = 0; i < pointCount; ++i) {
        x[i] = static_cast<double>(i) / pointCount;
        y[i] = std::sin(turn * x[i]);
    }
    std::vector<complex> out(harmonicCount);
    auto const start = milliseconds();
    fourier::calculate(out.data(), {y.data(), x.data(), pointCount}, true, {0, harmonicCount, 1}, 1);
    return static_cast<double>(milliseconds() - start) / 1000;
}

} // namespace

void fourier_EstimateFourierCalculationTime(double * seconds) {
    static double measured = 0; // 0 until a run took a millisecond
    if (measured == 0) measured = calculateSine() / pointCount / harmonicCount;
    *seconds = measured;
}
