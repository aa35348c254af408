#include "Evaluation.h"

#include "torvelan/Groups.h"

Evaluation::Evaluation(std::string const & expression, YRef<MessageHandler> messages) {
    YString group;
    vec_GetCurrentGroupName(group);
    ScpParseContext const context(std::move(messages));
    code_ = vec_EvalVecList(expression.c_str(), &values_, context, group, false);
    std::erase(values_, nullptr);
}

Evaluation::~Evaluation() {
    for (XYVector * value : values_) vec_ReleaseVector(value);
}
