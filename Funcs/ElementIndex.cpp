// The handler of "[]" with one index.

#include "Evaluation/EvaluatorHandlers.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

// The index; -1 after a message.
std::int64_t readIndex(FuncArgs const & args, MessageHandler & messages) {
    char const * problem = nullptr;
    double const * const index = args.data(1);
    if (args.type(1) == VD_COMPLEX) {
        problem = "Complex index";
    } else if (args.length(1) != 1) {
        problem = "Index must be scalar";
    } else if (index == nullptr) {
        internal_error("Error found in module %s, line %d", "ElementIndex.cpp", __LINE__);
        return -1;
    } else if (std::floor(*index) != *index) {
        problem = "Index must be an integer";
    } else if (!(*index >= 0 && *index < static_cast<double>(args.length(0)))) {
        problem = "Index out of range";
    }
    if (problem == nullptr) return static_cast<std::int64_t>(*index);
    messages.error(problem);
    return -1;
}

char * copied(char const * text) {
    char * const copy = strdup(text != nullptr ? text : "");
    if (copy == nullptr) throw MemoryException("Detected in elementIndexHandler");
    return copy;
}

} // namespace

FUNC_ERROR elementIndexHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                               MessageHandler & messages, ScpParseContext const &) {
    std::int64_t const index = readIndex(args, messages);
    if (index < 0) return FUNC_FAILED;
    result->setType(args.type(0), args.refType(0));
    result->setPhysType(args.physType(0), PT_UNCHANGED);
    if (char const * const * strings = args.stringData(0)) {
        result->makeString(1)[0] = copied(strings[index]);
    } else if (complex const * pairs = args.complexData(0)) {
        result->makeComplex(1, ALLOC_HINT, 1)[0] = pairs[index];
    } else if (double const * reals = args.data(0)) {
        result->makeReal(1, ALLOC_HINT, 1)[0] = reals[index];
    }
    return FUNC_OK;
}
