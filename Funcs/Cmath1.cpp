// Registers the elementwise and reducing functions.

#include "Evaluation/PlacedFunction.h"
#include "Funcs/FunctionFamily.h"
#include "Funcs/MathTable.h"
#include "Funcs/VectorCounts.h"

namespace {

struct Registration {
    char const * name;
    FuncHandler handler;
    argType type;
    MultiDef multi;
    FunctionTraits traits;
    char const * summary;
};

template <Math row> constexpr FuncHandler run = mathHandler<row>;

constexpr Registration functions[] = {
    {"abs", run<Math::mag>, ARG_NUMERIC, MULTI_EACH, elementwise, "Absolute value, of complex values the magnitude"},
    {"mag", run<Math::mag>, ARG_NUMERIC, MULTI_EACH, elementwise, "Magnitude"},
    {"magnitude", run<Math::mag>, ARG_NUMERIC, MULTI_EACH, elementwise, "Magnitude"},
    {"arg", run<Math::arg>, ARG_NUMERIC, MULTI_EACH, elementwise, "Angle in degrees, between -180 and 180"},
    {"arg_rad", run<Math::argRad>, ARG_NUMERIC, MULTI_EACH, elementwise, "Angle in radians, between -pi and pi"},
    {"ph", run<Math::phase>, ARG_NUMERIC, MULTI_EACH, plain, "Angle in degrees, unwrapped"},
    {"phase", run<Math::phase>, ARG_NUMERIC, MULTI_EACH, plain, "Angle in degrees, unwrapped"},
    {"phase_rad", run<Math::phaseRad>, ARG_NUMERIC, MULTI_EACH, plain, "Angle in radians, unwrapped"},
    {"re", run<Math::real>, ARG_NUMERIC, MULTI_EACH, elementwise, "Real part"},
    {"real", run<Math::real>, ARG_NUMERIC, MULTI_EACH, elementwise, "Real part"},
    {"im", run<Math::imag>, ARG_NUMERIC, MULTI_EACH, elementwise, "Imaginary part"},
    {"imag", run<Math::imag>, ARG_NUMERIC, MULTI_EACH, elementwise, "Imaginary part"},
    {"sign", run<Math::sign>, ARG_REAL, MULTI_EACH, elementwise, "1 for a positive value, 0 for any other"},
    {"db", run<Math::db>, ARG_NUMERIC, MULTI_EACH, elementwise, "Decibels: 20 log10 of the magnitude"},
    {"log", run<Math::log>, ARG_NUMERIC, MULTI_EACH, elementwise, "Logarithm to base 10"},
    {"log10", run<Math::log>, ARG_NUMERIC, MULTI_EACH, elementwise, "Logarithm to base 10"},
    {"ln", run<Math::ln>, ARG_NUMERIC, MULTI_EACH, elementwise, "Natural logarithm"},
    {"exp", run<Math::exp>, ARG_NUMERIC, MULTI_EACH, elementwise, "Exponential"},
    {"sin", run<Math::sin>, ARG_NUMERIC, MULTI_EACH, elementwise, "Sine of radians"},
    {"cos", run<Math::cos>, ARG_NUMERIC, MULTI_EACH, elementwise, "Cosine of radians"},
    {"tan", run<Math::tan>, ARG_NUMERIC, MULTI_EACH, elementwise, "Tangent of radians"},
    {"atan", run<Math::atan>, ARG_NUMERIC, MULTI_EACH, elementwise, "Inverse tangent in radians"},
    {"sin_deg", run<Math::sinDeg>, ARG_NUMERIC, MULTI_EACH, elementwise, "Sine of degrees (complex: of radians)"},
    {"cos_deg", run<Math::cosDeg>, ARG_NUMERIC, MULTI_EACH, elementwise, "Cosine of degrees (complex: of radians)"},
    {"tan_deg", run<Math::tanDeg>, ARG_NUMERIC, MULTI_EACH, elementwise, "Tangent of degrees (complex: of radians)"},
    {"atan_deg", run<Math::atanDeg>, ARG_NUMERIC, MULTI_EACH, elementwise,
     "Inverse tangent in degrees (complex: in radians)"},
    {"sinh", run<Math::sinh>, ARG_NUMERIC, MULTI_EACH, elementwise, "Hyperbolic sine"},
    {"cosh", run<Math::cosh>, ARG_NUMERIC, MULTI_EACH, elementwise, "Hyperbolic cosine"},
    {"tanh", run<Math::tanh>, ARG_NUMERIC, MULTI_EACH, elementwise, "Hyperbolic tangent"},
    {"sqrt", run<Math::sqrt>, ARG_NUMERIC, MULTI_EACH, elementwise, "Square root; a negative real value is refused"},
    {"norm", run<Math::norm>, ARG_NUMERIC, MULTI_EACH, incremental, "Scaled so that the greatest magnitude is 1"},
    {"rnd", run<Math::rnd>, ARG_REAL, MULTI_EACH, incremental, "Random values between 0 and each value"},
    {"floorv", run<Math::floorv>, ARG_NUMERIC, MULTI_EACH, elementwise, "Greatest whole number not above each value"},
    {"mean", run<Math::mean>, ARG_NUMERIC, MULTI_EACH, plain, "Mean of all elements"},
    {"sum", run<Math::sum>, ARG_NUMERIC, MULTI_EACH, plain, "Sum of all elements"},
    {"maxidx", run<Math::maxidx>, ARG_NUMERIC, MULTI_EACH, plain, "Index of the greatest element"},
    {"minidx", run<Math::minidx>, ARG_NUMERIC, MULTI_EACH, plain, "Index of the least element"},
    {"length", lengthHandler, ARG_ANY, MULTI_WHOLE, plain, "Number of elements of the first division"},
    {"NumElems", numElemsHandler, ARG_ANY, MULTI_COLLAPSE, plain, "Number of elements of each division"},
    {"NumDivisions", numDivisionsHandler, ARG_AS_IS, MULTI_WHOLE, plain, "Number of divisions"},
};

FuncInfo describe(Registration const & function) {
    FuncInfo info(function.name, &function.type, 1, 1, function.handler, &function.multi,
                  (function.traits & incremental) != 0);
    info.flatDivisions = (function.traits & flat) != 0;
    info.summary = function.summary;
    return info;
}

struct Registrar {
    Registrar() {
        for (Registration const & function : functions) PlacedFunction{describe(function)};
    }
};

Registrar const registrar;

} // namespace
