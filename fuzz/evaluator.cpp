// Any text is an expression: it evaluates, or it is refused with words, and the engine stays usable.
#include "Evaluation/ParseState.h"
#include "torvelan/torvelan.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

constexpr std::size_t longestText = 1 << 16;

// Vectors of every kind and shape for the expressions to work on.
void fillStore(ScpParseContext const & context) {
    for (char const * expr : {"v=[1,2,3,4]", "i=[0.5,-1,0,2]", "z=[(1,2),(3,4),(0,0)]", "s=['a','it''s','v+1']", "x=3"})
        (void)vec_Evaluate(static_cast<char **>(nullptr), expr, context, false, false);
    auto * stepped = new dvec(YString("w"), nullptr, PT_VOLTAGE);
    for (int d = 0; d < 3; ++d) {
        if (d > 0) stepped->addDivision(YString());
        for (int k = 0; k <= d; ++k) {
            (void)stepped->addVal(k - 1.0);
            (void)stepped->ref.addVal(static_cast<double>(k));
        }
        if (d < 2) stepped->ref.addDivision(YString());
    }
    stepped->enterGroup();
    auto * alias = new dvec(YString("a"), "v*2", nullptr, PT_UNKNOWN);
    alias->enterGroup();
    alias->flags |= VF_ALIAS;
}

void require(bool condition) {
    if (!condition) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    if (size > longestText) return 0;
    std::string const text(reinterpret_cast<char const *>(data), size);
    EngineSession const session(std::make_shared<NullMessageHandler>());
    ScpParseContext const context{std::make_shared<NullMessageHandler>()};
    fillStore(context);
    YArray<XYVector *> values;
    (void)vec_EvalVecList(text.c_str(), &values, context, YString(), false);
    for (XYVector const * value : values) require(value->length() > 0);
    char * out = nullptr;
    if (vec_Evaluate(&out, text.c_str(), context, true, false) == 1) std::free(out);
    require(EvaluationDepth::depth() == 0);
    double two = 0;
    require(vec_Evaluate(&two, YString("1+1"), context) == VEC_EVAL_OK && two == 2);
    return 0;
}
