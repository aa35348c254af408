// Indexing: elements, divisions, and one element of every division.

#include "Evaluation/Action.h"
#include "Evaluation/CallFrame.h"
#include "Evaluation/EvaluatorHandlers.h"
#include "Evaluation/Resolve.h"

#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace {

FuncInfo & elementIndexInfo() {
    static argType const types[] = {ARG_ANY, ARG_REAL};
    static FuncInfo info("[]", types, 2, 2, elementIndexHandler, nullptr, false);
    return info;
}

YString indexText(ExprValue const & base, char const * open, ExprValue const & index) {
    return YString::joined(base.text, {open, index.text.view(), "]"});
}

ExprValue * textOnly(YString text) {
    ExprValue * value = EvaluationDepth::newValue();
    value->text = std::move(text);
    return value;
}

// Keeps messages until it is known whether anybody is to see them.
class HeldMessages final : public MessageHandler {
public:
    void finalOutput(MessageLevel level, YString const & text) override { held.emplace_back(level, text); }
    void passOn(MessageHandler & to) const {
        for (auto const & [level, text] : held) to.output(level, text);
    }

private:
    std::vector<std::pair<MessageLevel, YString>> held;
};

// What the base of an index stands for. An alias is evaluated once, both to count its divisions and to take an element
// of it: twice at each level of a chain of aliases would double the work with every level.
struct IndexBase {
    IndexBase(dvec * vector, ScpParseContext const & context) : named(vector), resolved(vector) {
        if (!named->isAlias()) return;
        messages = std::make_shared<HeldMessages>();
        if (!resolveVector(named, &resolved, messages, context)) resolved = nullptr;
    }
    // The vector whose divisions count: the alias itself when there is nothing behind it.
    dvec & counted() const noexcept { return resolved != nullptr ? *resolved : *named; }

    dvec * named;
    dvec * resolved; // null when the evaluation failed
    std::shared_ptr<HeldMessages> messages;
};

void releaseIfNew(dvec * vector, dvec const * original) {
    if (vector != original) releaseTemporary(vector);
}

// Puts the value of an alias in its place. Without one the call reports the alias by its name.
void replaceAlias(ParseState & state, ExprValue & value, IndexBase const & base) {
    if (base.messages == nullptr) return;
    base.messages->passOn(state.messages());
    if (base.resolved == nullptr) value.text = base.named->name();
    if (base.resolved != base.named) releaseTemporary(base.named);
    value.vector = base.resolved;
}

ExprValue * indexElement(ParseState & state, ExprValue * base, ExprValue * index, YString text) {
    ExprValue * result = EvaluationDepth::newValue();
    result->text = std::move(text);
    base->next = index;
    index->next = nullptr;
    return callFunction(elementIndexInfo(), elementIndexInfo().name, base, *result, state) != nullptr ? result
                                                                                                      : nullptr;
}

// A view of one division; no element is copied.
ExprValue * selectDivision(ParseState & state, dvec const & base, ExprValue const & index, YString text) {
    double i = 0;
    if (!scalarIndex(*index.vector, &i, state.messages())) return nullptr;
    if (!(i >= 0 && i < static_cast<double>(base.numDivisions()))) {
        state.messages().error("Index out of range");
        return nullptr;
    }
    dvec * view = new dvec(base);
    view->setName(text);
    view->selectDivision(static_cast<std::int64_t>(i));
    view->ref.selectDivision(static_cast<std::int64_t>(i));
    ExprValue * result = textOnly(std::move(text));
    result->vector = view;
    return result;
}

// Element of an index vector with one element for all divisions or one for each; -1 when it is no valid index.
std::int64_t indexForDivision(BaseVector const & index, std::int64_t division, std::int64_t length) {
    double const i = std::floor(index.getReal(index.length() == 1 ? 0 : division));
    return i >= 0 && i < static_cast<double>(length) ? static_cast<std::int64_t>(i) : -1;
}

bool everyIndexInRange(dvec const & base, BaseVector const & index, std::int64_t divisions) {
    for (std::int64_t d = 0; d < divisions; ++d)
        if (indexForDivision(index, d, base.length(d)) < 0) return false;
    return true;
}

// Back to the first division, whatever happens on the way.
struct DivisionReset {
    dvec & vector;
    ~DivisionReset() {
        vector.setDivision(0);
        vector.ref.setDivision(0);
    }
};

void copyElements(dvec & base, BaseVector const & index, std::int64_t divisions, dvec & result) {
    bool const hasReference = base.ref.totalLength() > 0;
    result.setSize(divisions, base.type());
    if (hasReference) {
        result.ref.setSize(divisions, base.ref.type());
        result.ref.setPhysType(base.ref.physType());
        result.ref.setName(base.ref.name());
    }
    DivisionReset const reset{base};
    for (std::int64_t d = 0; d < divisions; ++d) {
        base.setDivision(d);
        base.ref.setDivision(d);
        std::int64_t const i = indexForDivision(index, d, base.length());
        result.copyElement(base, d, i);
        if (hasReference) result.ref.copyElement(base.ref, d, i);
    }
}

} // namespace

bool scalarIndex(BaseVector const & index, double * value, MessageHandler & messages) {
    if (index.length() != 1 || !index.isReal()) {
        messages.error("Index must be scalar");
        return false;
    }
    *value = index.getReal(0);
    if (std::floor(*value) == *value) return true;
    messages.error("Index must be an integer");
    return false;
}

ExprValue * indexValue(ParseState & state, ExprValue * base, ExprValue * index) {
    if (hasFailed(state, base) || hasFailed(state, index)) return nullptr;
    YString text = indexText(*base, "[", *index);
    if (state.substitution != nullptr) return textOnly(std::move(text));
    IndexBase const what(base->vector, state.context);
    if (what.counted().numDivisions() == 1) {
        replaceAlias(state, *base, what);
        return indexElement(state, base, index, std::move(text));
    }
    ExprValue * result = selectDivision(state, what.counted(), *index, std::move(text));
    releaseIfNew(&what.counted(), base->vector);
    releaseTemporary(base->vector);
    releaseTemporary(index->vector);
    return result;
}

ExprValue * indexEachDivision(ParseState & state, ExprValue * base, ExprValue * index) {
    if (hasFailed(state, base) || hasFailed(state, index)) return nullptr;
    YString text = indexText(*base, "[][", *index);
    if (state.substitution != nullptr) return textOnly(std::move(text));
    dvec * vector = nullptr;
    if (!resolveVector(base->vector, &vector, state.context.messages(), state.context)) {
        state.messages().error("Type conversion of '%s' failed", base->vector->name());
        return nullptr;
    }
    std::int64_t const divisions = vector->numDivisions();
    ExprValue * value = nullptr;
    if (index->vector->isReal() && (index->vector->length() == 1 || index->vector->length() == divisions)) {
        value = textOnly(text);
        value->vector = new dvec(std::move(text), nullptr, vector->physType());
        if (everyIndexInRange(*vector, *index->vector, divisions))
            copyElements(*vector, *index->vector, divisions, *value->vector);
    }
    releaseIfNew(vector, base->vector);
    releaseTemporary(base->vector);
    releaseTemporary(index->vector);
    return value;
}
