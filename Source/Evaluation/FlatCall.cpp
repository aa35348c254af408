#include "Evaluation/FlatCall.h"

#include "Evaluation/MatchVecs.h"

namespace {

bool hasOneElement(NamedVector const & vector) {
    return vector.numDivisions() == 1 && vector.length() == 1;
}

// A reference that goes with its vector division by division, or none. Whether all lengths agree matters only where
// it has to change.
bool referenceFits(NamedVector const & y, NamedVector const * ref) {
    if (ref == nullptr || ref->totalLength() == 0) return true;
    bool const alike = ref->totalLength() == y.totalLength() && ref->numDivisions() == y.numDivisions();
    return alike && ref->isWhole() && !ref->noData();
}

class FlatCall {
public:
    FlatCall(HandlerCall & handlerCall, std::int64_t count)
        : call(handlerCall), args(handlerCall.args), result(handlerCall.result), divisionCount(count),
          matcher(args, *handlerCall.messages), matches(call.info.matchArgs && args.getNumArgs() == 2),
          wasMultiple(result.getXVec()->isMultiple()) {}

    bool run() {
        if (!argumentsAreRegular()) return false;
        bool const done = attempt();
        if (!done) takeBack();
        return done;
    }

private:
    // The frame answers for all divisions only as long as the handler runs.
    struct FlatGuard {
        FuncArgs & args;
        explicit FlatGuard(FuncArgs & frame) noexcept : args(frame) { args.setFlat(true); }
        ~FlatGuard() { args.setFlat(false); }
        FlatGuard(FlatGuard const &) = delete;
        FlatGuard & operator=(FlatGuard const &) = delete;
    };

    bool argumentsAreRegular() {
        for (int i = 0; i < args.getNumArgs(); ++i)
            if (!isRegular(i)) return false;
        return table != nullptr && (!call.info.walksDivisions || everySideIsDivided());
    }

    // The first argument and all references have the divisions that a handler walks through.
    bool everySideIsDivided() const { return args.getYVec(0)->sameDivisions(*table) && referencesAreExact(); }

    bool isRegular(int i) {
        NamedVector const & y = *args.getYVec(i);
        bool const iterated = call.info.multiDefs[i] != MULTI_WHOLE;
        if (y.isString()) return false;
        if (y.numDivisions() == 1) return !iterated || hasOneElement(y);
        if (!iterated || !y.isWhole() || !referenceFits(y, args.getXVec(i))) return false;
        if (table != nullptr) return y.sameDivisions(*table);
        table = &y;
        return y.everyDivisionHasData();
    }

    bool attempt() {
        args.setDivision(0);
        result.setDivision(0);
        result.setNumDivisions(1);
        result.beginCall();
        if (matches && !matcher.matchFlat()) return false;
        FlatGuard const guard(args);
        return call.run() == FUNC_OK && giveDivisions();
    }

    // False unless the handler has made an element for each one of the arguments, or, where it walks, for each
    // division.
    bool giveDivisions() {
        NamedVector & y = *result.getYVec();
        NamedVector & ref = *result.getXVec();
        std::int64_t const total = table->totalLength();
        if (call.info.walksDivisions && y.totalLength() == divisionCount && ref.totalLength() == 0) {
            y.divideEvenly(1);
            return true;
        }
        if (y.numDivisions() != 1 || y.totalLength() != total) return false;
        bool const refIsWhole = ref.totalLength() == 0 || ref.numDivisions() == divisionCount;
        if (!refIsWhole && (ref.numDivisions() != 1 || ref.totalLength() != total)) return false;
        if (!refIsWhole && !referencesAreExact()) return false;
        if (!refIsWhole) ref.adoptDivisions(*table);
        y.adoptDivisions(*table);
        return true;
    }

    // Every reference has the very divisions of the arguments.
    bool referencesAreExact() const {
        for (int i = 0; i < args.getNumArgs(); ++i) {
            NamedVector const * ref = args.getXVec(i);
            if (ref != nullptr && ref->totalLength() > 0 && !ref->sameDivisions(*table)) return false;
        }
        return true;
    }

    void takeBack() {
        if (matches) matcher.undoFlat();
        result.emptyVectors();
        result.setNumDivisions(divisionCount);
        if (!wasMultiple) return;
        result.getYVec()->setMultiple();
        result.getXVec()->setMultiple();
    }

    HandlerCall & call;
    FuncArgs & args;
    FuncResult & result;
    std::int64_t divisionCount;
    ArgumentMatcher matcher;
    bool matches;
    bool wasMultiple;
    NamedVector const * table = nullptr; // an argument with the divisions that all have
};

} // namespace

bool callFlat(HandlerCall & call, std::int64_t count) {
    return FlatCall(call, count).run();
}
