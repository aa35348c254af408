#include "Evaluation/Resolve.h"

#include "Evaluation/Action.h"
#include "Groups/GroupStore.h"
#include "support/Numbers.h"

#include <cstring>

namespace {

constexpr int longestAliasChain = 100;
constexpr int printPrecision = 15;

bool isListed(Group const * group) noexcept {
    for (Group const * listed = groupListHead(); listed != nullptr; listed = listed->next)
        if (listed == group) return true;
    return false;
}

// Points one of the special groups elsewhere for a scope. The old group comes back unless it has died meanwhile.
class SpecialGroupGuard {
public:
    SpecialGroupGuard(Group *& slot, Group * replacement) noexcept : slot_(slot), saved_(slot) {
        if (replacement != nullptr) slot_ = replacement;
    }
    ~SpecialGroupGuard() {
        if (saved_ == nullptr || isListed(saved_)) slot_ = saved_;
    }
    SpecialGroupGuard(SpecialGroupGuard const &) = delete;
    SpecialGroupGuard & operator=(SpecialGroupGuard const &) = delete;

private:
    Group *& slot_;
    Group * saved_;
};

struct ConvertingGuard {
    dvec & vector;
    explicit ConvertingGuard(dvec & v) noexcept : vector(v) { vector.converting = true; }
    ~ConvertingGuard() { vector.converting = false; }
    ConvertingGuard(ConvertingGuard const &) = delete;
    ConvertingGuard & operator=(ConvertingGuard const &) = delete;
};

// Evaluates a text with the vector's group as local group. Null when there is no value.
dvec * evaluateFor(dvec const & vector, YString const & expression, ScpParseContext const & context) {
    SpecialGroupGuard const local(nameSpace().local, vector.owner());
    FUNC_ERROR error = FUNC_OK;
    ExprValue const * value = parseExpression(expression.c_str(), EvalOptions(), context, &error);
    return value != nullptr && error == FUNC_OK ? value->vector : nullptr;
}

// A private copy of a member of a group, so that naming the result does not touch the member.
dvec * asTemporary(dvec * vector) {
    return vector->isTemporary() ? vector : new dvec(*vector);
}

dvec * resolveChain(dvec * vector) {
    for (int step = 0; vector != nullptr && vector->isReferenceAlias(); ++step)
        vector = step < longestAliasChain ? vector->resolveReferenceAlias() : nullptr;
    return vector;
}

char * elementText(BaseVector const & vector, std::int64_t i, std::int64_t division) {
    double const re = vector.getReal(i, division);
    if (vector.isReal()) return strdup(sp_ConvertRealToJSEng(re, 6, false).c_str());
    YString const realText = sp_FormatG(re, printPrecision);
    YString const imaginaryText = sp_FormatG(vector.getImag(i, division), printPrecision);
    return YString::joined("(", {realText.view(), ",", imaginaryText.view(), ")"}).copy();
}

void appendDivisionTexts(dvec const & source, std::int64_t division, dvec & out) {
    std::int64_t const count = source.length(division);
    if (division > 0) out.addDivision(YString());
    out.setLength(out.totalLength() + count);
    out.setDivision(division);
    char ** slots = out.writableStringData();
    for (std::int64_t i = 0; i < count; ++i) slots[i] = elementText(source, i, division);
}

} // namespace

bool resolveVector(dvec * vector, dvec ** result, YRef<MessageHandler> const & messages,
                   ScpParseContext const & context) {
    dvec * target = resolveChain(vector);
    if (target == nullptr) return false;
    *result = target;
    if (!target->isAlias()) return true;
    PhysType const physType = target->physType();
    SpecialGroupGuard const current(nameSpace().current, target->owner());
    *result = convertToNumeric(target, messages, context);
    if (*result == nullptr) return false;
    (*result)->setPhysType(physType);
    return true;
}

dvec * convertToNumeric(dvec * vector, YRef<MessageHandler> const & messages, ScpParseContext const & context) {
    if (!vector->isString()) return vector;
    if (vector->converting) {
        messages->error("Recursive type conversion");
        return nullptr;
    }
    ConvertingGuard const guard(*vector);
    if (vector->length() != 1)
        messages->warning("The type conversion of non-scalars is not currently supported.\n"
                          "Only the first element will be converted");
    if (vector->noData()) return nullptr;
    EvaluationDepth const depth;
    ScpParseContext quietable(messages);
    quietable.scriptFunction = context.scriptFunction;
    dvec * value = evaluateFor(*vector, YString(vector->getString(0)), quietable);
    if (value == nullptr) return nullptr;
    dvec * numeric = convertToNumeric(value, messages, context);
    if (numeric != value) releaseTemporary(value);
    if (numeric == nullptr) return nullptr;
    numeric = asTemporary(numeric);
    numeric->setName(vector->name());
    return numeric;
}

dvec * convertToString(dvec * vector) {
    if (vector->isString()) return vector;
    dvec * text = new dvec(vector->name(), vector->owner(), PT_UNKNOWN);
    text->setSize(0, VD_STRING);
    for (std::int64_t d = 0; d < vector->numDivisions(); ++d) appendDivisionTexts(*vector, d, *text);
    text->setDivision(0);
    if (vector->isMultiple()) text->setMultiple();
    if (auto labels = vector->sharedLabels()) text->setLabels(std::move(labels), false);
    return text;
}
