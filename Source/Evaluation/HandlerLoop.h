// Runs the handler of a function over the divisions of its arguments and puts the result together.
#pragma once

#include "Evaluation/ParseState.h"
#include "torvelan/Functions.h"

#include <memory>

// What the arguments of a call have in common.
struct DivisionState {
    std::int64_t count = 1;
    bool allMultiple = true;
    bool collapse = false;                   // the result becomes one division
    std::shared_ptr<NameArray const> labels; // null: "?" for every division
};

// One call of a handler on a frame, timed. Exceptions pass.
struct HandlerCall {
    FuncInfo & info;
    FuncArgs & args;
    FuncResult & result;
    YRef<MessageHandler> messages; // null handlers swallow what a single division has to say
    ScpParseContext const & context;

    FUNC_ERROR run();
};

class HandlerLoop {
public:
    HandlerLoop(FuncInfo & info, FuncArgs & args, dvec & resultVector, DivisionState const & divisions,
                ParseState const & state);

    // On success the result is complete, with its first division current.
    FUNC_ERROR run();

private:
    bool isIncremental() const noexcept { return state.incrementalDivision != -1; }
    bool mayRunFlat() const noexcept;
    FUNC_ERROR runEach();
    FUNC_ERROR runDivision(std::int64_t d);
    void noteOutcome(std::int64_t d);
    bool matchArguments(std::int64_t * count);
    void setOffset(std::int64_t d, std::int64_t count);
    void assemble();
    void setLabels();
    std::shared_ptr<NameArray const> keptLabels() const;
    void dropFromReference();

    FuncInfo & info;
    FuncArgs & args;
    DivisionState const & divisions;
    ParseState const & state;
    FuncResult result;
    HandlerCall call;
    std::int64_t produced = 0;    // divisions of the result
    YArray<std::int64_t> dropped; // divisions that gave nothing, rising
    bool ended = false;           // nothing new lies behind
};
