// What the front end asks of the script function Fourier.
#pragma once

#include "torvelan/Export.h"

// Seconds that Fourier takes for each point and harmonic, measured on this machine by a small run and kept. The clock
// counts whole milliseconds: where the run takes less, the answer is 0 and the next call measures again.
TORVELAN_API void fourier_EstimateFourierCalculationTime(double * seconds);
