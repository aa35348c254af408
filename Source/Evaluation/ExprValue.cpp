#include "Evaluation/ExprValue.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace {

// Objects handed out one behind the other and reset together. The first chunk is kept for the next evaluation, so that
// a small expression allocates nothing here.
template <class T> class Pool {
public:
    T * make() {
        if (used_ == chunks_.size() * chunkSize) chunks_.push_back(std::make_unique<T[]>(chunkSize));
        T * item = &chunks_[used_ / chunkSize][used_ % chunkSize];
        ++used_;
        return item;
    }
    void clear() noexcept {
        for (std::size_t i = 0; i < used_; ++i) chunks_[i / chunkSize][i % chunkSize] = T();
        used_ = 0;
        if (chunks_.size() > 1) chunks_.resize(1);
    }

private:
    static constexpr std::size_t chunkSize = 256;
    std::vector<std::unique_ptr<T[]>> chunks_;
    std::size_t used_ = 0;
};

struct Arena {
    int depth = 0;
    Pool<Token> tokens;
    Pool<ExprValue> values;
};

Arena & arena() noexcept {
    static Arena instance;
    return instance;
}

} // namespace

EvaluationDepth::EvaluationDepth() noexcept {
    ++arena().depth;
}

EvaluationDepth::~EvaluationDepth() {
    if (--arena().depth > 0) return;
    arena().tokens.clear();
    arena().values.clear();
}

Token * EvaluationDepth::newToken() {
    return arena().tokens.make();
}

ExprValue * EvaluationDepth::newValue() {
    return arena().values.make();
}

int EvaluationDepth::depth() noexcept {
    return arena().depth;
}
