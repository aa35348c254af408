// Incremental/<what>/<n>: 1,000 points are appended to vectors of n points (not timed), and a result follows.
#include "Store.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>

namespace {

constexpr int newPoints = 1000;

dvec * member(char const * name) {
    bench::setReal(name, {});
    XYVector * vector = nullptr;
    (void)vec_GetVector(YString(), YString(name), &vector);
    return static_cast<dvec *>(vector);
}

// A run over one reference, shared by its vectors.
class Run {
public:
    explicit Run(std::int64_t n) : t(member("t")), a(member("a")), b(member("b")) {
        a->ref = *t;
        b->ref = *t;
        append(n);
    }
    void append(std::int64_t n) {
        for (std::int64_t i = 0; i < n; ++i) {
            double const x = static_cast<double>(length++);
            (void)t->addVal(x);
            (void)a->addVal(2 + std::sin(x));
            (void)b->addVal(3 + std::cos(x));
        }
    }

    dvec *t, *a, *b;
    std::int64_t length = 0;
};

XYVector * evaluated(char const * expr) {
    YArray<XYVector *> out;
    (void)vec_EvalVecList(expr, &out, bench::context(), YString(), false);
    return out.at(0);
}

void extend(benchmark::State & state, char const * expr) {
    Run run(state.range(0));
    XYVector * const result = evaluated(expr);
    for (auto _ : state) {
        run.append(newPoints);
        auto const start = std::chrono::steady_clock::now();
        IncEvalErr error = INC_EVAL_OK;
        if (vec_IncrementalEvaluate(expr, result, YString(), &error, bench::context().messages(), bench::context()))
            state.SkipWithError("not extended");
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    bench::check(expr, result->getReal(run.length - 1), evaluated(expr)->getReal(run.length - 1));
    bench::check("length", static_cast<double>(result->totalLength()), static_cast<double>(run.length));
    state.SetItemsProcessed(state.iterations() * newPoints);
    vec_CollectGarbage();
}

} // namespace

BENCHMARK_CAPTURE(extend, db, "db(a/b)")
    ->Name("Incremental/db(a/b)")
    ->Arg(1000)
    ->Arg(10000000)
    ->UseManualTime()
    ->Iterations(2000);
BENCHMARK_CAPTURE(extend, add, "a+b")
    ->Name("Incremental/a+b")
    ->Arg(1000)
    ->Arg(10000000)
    ->UseManualTime()
    ->Iterations(2000);
BENCHMARK_MAIN();
