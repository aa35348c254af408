// A module of its own, as a device module is: it knows the exported headers and links to nothing.

#include "torvelan/UserFunctions.h"

namespace {

constexpr char const * const throwing[] = {"throw_memory", "throw_torvelan", "throw_other"};

} // namespace

extern "C" {

// The root mean square of argument 0, by functions of the library; null, and why, when one of them fails.
__attribute__((visibility("default"))) double * plugin_rms(UserFunctionInterface * frame, int * error) {
    UserFunctionArgument const & v = frame->arguments[0];
    double * const squares = frame->allocateReal(frame->environment, v.length);
    for (int i = 0; i < v.length; ++i) {
        double const value = static_cast<double const *>(v.yData)[i];
        squares[i] = value * value;
    }
    UserFunctionArgument record = v;
    record.yData = squares;
    record.xData = nullptr;
    UserFunctionArgument const * const mean = frame->callFunction(frame->environment, "mean", &record, 1, error);
    if (mean == nullptr) return nullptr;
    UserFunctionArgument const * const root = frame->callFunction(frame->environment, "sqrt", mean, 1, error);
    if (root == nullptr) return nullptr;
    double * const result = frame->allocateReal(frame->environment, 1);
    result[0] = *static_cast<double const *>(root->yData);
    return result;
}

// What calls of functions that throw come to, one after another; -1 for one that gave a result.
__attribute__((visibility("default"))) void plugin_codes(UserFunctionInterface * frame, int * codes) {
    double const one = 1;
    UserFunctionArgument const record = {&one, nullptr, 1, USER_REAL, USER_NONE, "unknown", "unknown"};
    for (char const * name : throwing) {
        int error = 0;
        bool const gave = frame->callFunction(frame->environment, name, &record, 1, &error) != nullptr;
        *codes++ = gave ? -1 : error;
    }
}
}
