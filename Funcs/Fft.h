// The measures of waveforms and their spectrum, apart from their registration.
#pragma once

#include "torvelan/Functions.h"

namespace fft {

// Resample.cpp
FUNC_ERROR interp(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// PeakSearch.cpp
FUNC_ERROR maxima(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR minima(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// Crossings.cpp
FUNC_ERROR xFromY(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR yFromX(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR cyclePeriod(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// DiffMergeVecs.cpp
FUNC_ERROR diffMergeVecs(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// WaveformIntegrals.cpp
FUNC_ERROR mean1(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR rms1(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR sumNoise(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// EvenSpectrum.cpp
FUNC_ERROR spectrum(FuncArgs const & args, FuncResult & result, MessageHandler & messages);

} // namespace fft
