// One expression text and what came of it.
#pragma once

#include "torvelan/Evaluate.h"

#include <string>

// Holds the values until it ends. To be made within an EngineSession::Command.
class Evaluation {
public:
    // Evaluates in the current group.
    Evaluation(std::string const & expression, YRef<MessageHandler> messages);
    ~Evaluation();
    Evaluation(Evaluation const &) = delete;
    Evaluation & operator=(Evaluation const &) = delete;

    bool ok() const noexcept { return code_ == VEC_OK; }
    VEC_ERROR code() const noexcept { return code_; }
    YArray<XYVector *> const & values() const noexcept { return values_; }

private:
    YArray<XYVector *> values_;
    VEC_ERROR code_;
};
