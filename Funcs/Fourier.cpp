// Registers the Fourier transform of waveforms on any grid.

#include "Funcs/Fourier.h"

#include "Funcs/FunctionFamily.h"

namespace {

constexpr argType real = ARG_REAL, text = ARG_STRING;
constexpr MultiDef each = MULTI_EACH;

constexpr FunctionRow rows[] = {
    {"Fourier", handlerOf<fourier::transform>, 3, 4, {real, real, real, real}, {each}, "Harmonics, exact on any grid"},
    {"FourierWindow", handlerOf<fourier::window>, 1, 3, {real, text, real}, {each}, "A waveform times a window"},
};

FunctionFamily const family(rows);

} // namespace

namespace fourier {

void makeSpectrum(FuncArgs const & args, FuncResult & result, std::int64_t n) {
    PhysType const inverse = div(PT_NONE, args.refPhysType(0));
    result.setType(VD_COMPLEX, VD_COMPLEX);
    result.setPhysType(args.physType(0), inverse);
    result.allocate(n, ALLOC_DIVISIONS, n);
    result.allocateRef(n, ALLOC_DIVISIONS, n);
    YString const name = sp_GetPhysTypeName(inverse);
    if (!name.empty()) result.setRefName(name);
}

} // namespace fourier
