#include "torvelan/Substitution.h"

#include "Evaluation/ParseState.h"
#include "Groups/GroupStore.h"

#include <optional>
#include <string>

namespace {

constexpr int mostPasses = 19;
constexpr std::size_t longestText = std::size_t{4} << 20; // the parse of a text takes some 50 times as much memory

// Nothing when the text does not parse.
std::optional<std::string> substitute(YString const & expr, VecSubstExpressionObject & object) {
    EvaluationDepth const depth;
    EvalOptions options;
    options.substitution = &object;
    ExprValue const * const first = parseExpression(expr.c_str(), options, ScpParseContext(nullptr));
    if (first == nullptr) return std::nullopt;
    std::string text(first->text.view());
    for (ExprValue const * value = first->next; value != nullptr; value = value->next)
        text.append(", ").append(value->text.view());
    return text;
}

// One level of definitions in a text. Beyond the longest text it leaves the rest as it is and says so.
class ExpandAliasSubstExpressionObject final : public VecSubstExpressionObject {
public:
    explicit ExpandAliasSubstExpressionObject(std::size_t textLength) noexcept : length(textLength) {}

    YString substituteName(YString const & name) override {
        dvec const * const vector = findVector(name, nullptr, false);
        if (vector == nullptr || !vector->isAlias()) return name;
        char const * const definition = vector->getString(0);
        std::string_view const text = definition != nullptr ? definition : "";
        length += text.size();
        isTooLong |= length > longestText;
        if (isTooLong) return name;
        changed = true;
        return YString::joined("(", {text, ")"});
    }

    bool changed = false;
    bool isTooLong = false;

private:
    std::size_t length; // of the text with the definitions so far
};

} // namespace

VecSubstExpressionObject::~VecSubstExpressionObject() = default;

YString VecSubstExpressionObject::substituteFunction(YString const & name, NameArray const &) {
    return name;
}

bool VecSubstExpressionObject::substitutesFunctions() {
    return false;
}

YString vec_SubstituteExpression(YString expr, VecSubstExpressionObject * object) {
    return YString(substitute(expr, *object).value_or(std::string()));
}

YString vec_ExpandAlias(YString expr) {
    for (int pass = 0; pass < mostPasses; ++pass) {
        ExpandAliasSubstExpressionObject level(expr.view().size());
        auto const text = substitute(expr, level);
        if (!text || level.isTooLong) break;
        expr = YString(*text);
        if (!level.changed) break;
    }
    return expr;
}
