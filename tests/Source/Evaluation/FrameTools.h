// What the tests of the call frame share: vectors written as lists of divisions, and handlers that do one thing.
#pragma once

#include "Evaluation/CallFrame.h"
#include "Evaluation/ParseState.h"
#include "RecordedMessages.h"
#include "torvelan/EngineSession.h"
#include "torvelan/Functions.h"
#include "torvelan/dvec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using Values = std::vector<double>;
using Divisions = std::vector<Values>;
using Texts = std::vector<std::string>;

inline void appendTo(BaseVector & vector, Divisions const & divisions) {
    for (Values const & values : divisions) {
        if (vector.totalLength() > 0) vector.addDivision(YString());
        for (double value : values) vector.addVal(value);
    }
}

inline dvec * makeVector(char const * name, Divisions const & y, Divisions const & x = {}, char const * xName = "t") {
    dvec * vector = new dvec(YString(name), nullptr, PT_UNKNOWN);
    appendTo(*vector, y);
    appendTo(vector->ref, x);
    if (!x.empty()) vector->ref.setName(YString(xName));
    return vector;
}

inline dvec * makeMember(char const * name, Divisions const & y, Divisions const & x = {}) {
    dvec * vector = makeVector(name, y, x);
    vector->enterGroup();
    return vector;
}

inline dvec * makeComplexVector(char const * name, std::vector<complex> const & values) {
    dvec * vector = new dvec(YString(name), nullptr, PT_UNKNOWN);
    vector->setComplexFlag();
    for (complex value : values) vector->addVal(value);
    return vector;
}

inline NameArray namesOf(std::initializer_list<char const *> texts) {
    NameArray names;
    for (char const * text : texts) names.push_back(YString(text));
    return names;
}

// Every division of a real vector; no division at all for an empty one.
inline Divisions divisionsOf(BaseVector const & vector) {
    Divisions out;
    if (vector.totalLength() == 0) return out;
    for (std::int64_t d = 0; d < vector.numDivisions(); ++d) {
        out.emplace_back();
        for (std::int64_t i = 0; i < vector.length(d); ++i) out.back().push_back(vector.getReal(i, d));
    }
    return out;
}

inline Texts labelsOf(BaseVector const & vector) {
    NameArray names;
    vector.divisionLabels(&names);
    Texts out;
    for (YString const & name : names) out.emplace_back(name.view());
    return out;
}

// A session, recorded messages, and calls of functions on lists of vectors.
class FrameTest : public testing::Test {
protected:
    dvec * call(FuncInfo & info, std::vector<dvec *> const & vectors, EvalOptions const & options = {}) {
        EvaluationDepth const depth;
        ParseState state("", options, context);
        result = {};
        result.text = "the call";
        dvec * out = callFunction(info, info.name, listOf(vectors), result, state);
        code = state.functionError;
        EXPECT_EQ(out, result.vector);
        return out;
    }

    static ExprValue * listOf(std::vector<dvec *> const & vectors) {
        ExprValue * first = nullptr;
        for (auto vector = vectors.rbegin(); vector != vectors.rend(); ++vector) {
            ExprValue * value = EvaluationDepth::newValue();
            value->vector = *vector;
            if (*vector != nullptr) value->text = (*vector)->name();
            value->next = first;
            first = value;
        }
        return first;
    }

    EngineSession session;
    std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
    ScpParseContext context{messages};
    ExprValue result;
    FUNC_ERROR code = FUNC_OK;
};

using Handler = FUNC_ERROR(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                           ScpParseContext const &);

// A function of one kind for all arguments.
inline FuncInfo makeInfo(char const * name, Handler * handler, int minArgs, int maxArgs, argType type = ARG_NUMERIC,
                         MultiDef multi = MULTI_EACH) {
    std::vector<argType> const types(FuncInfo::maxArguments, type);
    std::vector<MultiDef> const multis(FuncInfo::maxArguments, multi);
    return FuncInfo(name, types.data(), minArgs, maxArgs, handler, multis.data(), true);
}

// Twice the argument, reference carried along. An element of -1 is refused.
inline FUNC_ERROR twiceHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                               MessageHandler & messages, ScpParseContext const &) {
    std::int64_t const n = args.length(0);
    double const * in = args.data(0);
    result->setType(VD_REAL, VD_REAL);
    double * out = result->makeReal(n, ALLOC_HINT, args.totalLength(0));
    for (std::int64_t i = 0; i < n; ++i) out[i] = 2 * in[i];
    result->copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    if (n == 0 || std::find(in, in + n, -1.0) == in + n) return FUNC_OK;
    messages.error("refused");
    result->emptyVectors();
    return FUNC_FAILED;
}

// Sum of two arguments of one length.
inline FUNC_ERROR sumHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                             MessageHandler &, ScpParseContext const &) {
    std::int64_t const n = args.length(0);
    if (args.length(1) != n) return FUNC_OK;
    result->setType(VD_REAL, VD_REAL);
    double * out = result->makeReal(n, ALLOC_HINT, args.totalLength(0));
    for (std::int64_t i = 0; i < n; ++i) out[i] = args.data(0)[i] + args.data(1)[i];
    result->copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    return FUNC_OK;
}
