// Spectra, apart from the registration of their functions.
#pragma once

#include "torvelan/Functions.h"

#include <cstdint>

namespace fourier {

// FourierCalculation.cpp
FUNC_ERROR transform(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// FourierWindow.cpp
FUNC_ERROR window(FuncArgs const & args, FuncResult & result, MessageHandler & messages);

// Makes a result of n elements on both sides, complex and not yet written: the elements keep the unit of argument 0,
// the reference has 1 over that of its reference, and the name of what it measures.
void makeSpectrum(FuncArgs const & args, FuncResult & result, std::int64_t n);

} // namespace fourier
