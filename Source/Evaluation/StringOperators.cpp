#include "Evaluation/StringOperators.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace {

std::string_view textOf(char const * s) noexcept {
    return s != nullptr ? std::string_view(s) : std::string_view();
}

// A string argument. Past its end stands its last element; an empty one gives null.
struct StringSide {
    char const * const * data;
    std::int64_t length;

    StringSide(FuncArgs const & args, int i) : data(args.stringData(i)), length(args.length(i)) {
        if (data == nullptr) length = 0;
    }

    char const * at(std::int64_t i) const noexcept { return length > 0 ? data[std::min(i, length - 1)] : nullptr; }
};

// A heap string; null from two nulls.
char * joined(char const * a, char const * b) {
    if (a == nullptr && b == nullptr) return nullptr;
    std::string_view const left = textOf(a), right = textOf(b);
    auto * out = static_cast<char *>(std::malloc(left.size() + right.size() + 1));
    if (out == nullptr) throw MemoryException("Detected in concatenationHandler");
    std::copy(left.begin(), left.end(), out);
    std::copy(right.begin(), right.end(), out + left.size());
    out[left.size() + right.size()] = '\0';
    return out;
}

} // namespace

FUNC_ERROR compareStrings(FuncArgs const & args, FuncResult & result, MessageHandler & messages, StringRelation holds) {
    StringSide const a(args, 0), b(args, 1);
    if (a.length != b.length) {
        messages.error("Arguments for string comparison must be the same length");
        return FUNC_FAILED;
    }
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(PT_NONE, PT_UNCHANGED);
    result.allocate(a.length, ALLOC_HINT, args.totalLength(0));
    double * const out = result.data();
    for (std::int64_t i = 0; i < a.length; ++i)
        out[i] = holds(compareNoCase(textOf(a.at(i)), textOf(b.at(i)))) ? 1.0 : 0.0;
    return FUNC_OK;
}

FUNC_ERROR concatenationHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                                MessageHandler &, ScpParseContext const &) {
    StringSide const a(args, 0), b(args, 1);
    std::int64_t const count = std::max(a.length, b.length);
    char ** const out = result->makeString(count);
    for (std::int64_t i = 0; i < count; ++i) out[i] = joined(a.at(i), b.at(i));
    return FUNC_OK;
}
