// Store/<what>/<n>: the group store with many vectors, groups and contexts. Limit/<what>/<n>: what the containers of
// the standard library take for the like.
#include "Store.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <unordered_map>

namespace {

std::vector<YString> names(std::int64_t n) {
    std::vector<YString> all;
    for (std::int64_t i = 0; i < n; ++i) all.emplace_back("vector" + std::to_string(i * 7919 % n));
    return all;
}

YString newGroup() {
    bench::context();
    YString name;
    vec_MakeGroup("", "bench", name, 0, AnalysisInfo());
    return name;
}

// Vectors of a run over one reference, each with one value.
void fill(YString const & group, std::vector<YString> const & vectors) {
    VectorParam y, x;
    x.name = "time";
    IfVector yOut, xOut;
    for (YString const & name : vectors) {
        y.name = name;
        vec_MakeVector(group, &y, &x, &yOut, &xOut, MakeVectorOptions());
        yOut.addVal(1.0);
    }
    int count = 0;
    vec_GetNumVectorsInGroup(group, &count);
    bench::check("vectors of a group", count, static_cast<double>(vectors.size() + 1));
}

void countItems(benchmark::State & state) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

void makeVectors(benchmark::State & state) {
    auto const vectors = names(state.range(0));
    for (auto _ : state) {
        YString const group = newGroup();
        fill(group, vectors);
        vec_DestroyGroup(group, false);
    }
    countItems(state);
}

void findVectors(benchmark::State & state) {
    auto const vectors = names(state.range(0));
    YString const group = newGroup();
    fill(group, vectors);
    for (auto _ : state) {
        int found = 0;
        for (YString const & name : vectors) {
            XYVector * vector = nullptr;
            found += vec_GetVector(group, name, &vector) == VEC_OK;
        }
        if (found != state.range(0)) state.SkipWithError("vectors missing");
    }
    vec_DestroyGroup(group, false);
    countItems(state);
}

void listVectors(benchmark::State & state) {
    YString const group = newGroup();
    fill(group, names(state.range(0)));
    std::vector<VectorInfo> records(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) vec_GetVectorsInGroup(group, records.data(), static_cast<int>(state.range(0)));
    vec_DestroyGroup(group, false);
    countItems(state);
}

void manyGroups(benchmark::State & state) {
    for (auto _ : state) {
        for (std::int64_t i = 0; i < state.range(0); ++i) newGroup();
        YList<YString> listed;
        vec_GetGroups(&listed);
        bench::check("groups", static_cast<double>(listed.size()), static_cast<double>(state.range(0) + 1));
        vec_DestroyAllGroups();
    }
    countItems(state);
}

void nestedContexts(benchmark::State & state) {
    bench::context();
    for (auto _ : state) {
        for (std::int64_t i = 0; i < state.range(0); ++i) vec_PushContext();
        for (std::int64_t i = 0; i < state.range(0); ++i) vec_PopContext();
    }
    countItems(state);
}

// A context that begins and ends while temporaries of its caller wait for collection.
void contextBesideTemporaries(benchmark::State & state) {
    bench::context();
    for (std::int64_t i = 0; i < state.range(0); ++i) new dvec("temporary", 1.0);
    for (auto _ : state) {
        vec_PushContext();
        new dvec("local", 1.0);
        vec_PopContext();
    }
    vec_CollectGarbage();
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

void mapFind(benchmark::State & state) {
    std::unordered_map<std::string, int> map;
    std::vector<std::string> keys;
    for (YString const & name : names(state.range(0))) keys.emplace_back(name.view());
    for (std::string const & key : keys) map.emplace(key, 1);
    for (auto _ : state) {
        int found = 0;
        for (std::string const & key : keys) found += map.find(key)->second;
        benchmark::DoNotOptimize(found);
    }
    countItems(state);
}

void mapMake(benchmark::State & state) {
    std::vector<std::string> keys;
    for (YString const & name : names(state.range(0))) keys.emplace_back(name.view());
    for (auto _ : state) {
        std::unordered_map<std::string, std::unique_ptr<std::vector<double>>> map;
        for (std::string const & key : keys) map.emplace(key, std::make_unique<std::vector<double>>(1, 1.0));
        benchmark::DoNotOptimize(map.size());
    }
    countItems(state);
}

void sortNames(benchmark::State & state) {
    std::vector<std::string> keys;
    for (YString const & name : names(state.range(0))) keys.emplace_back(name.view());
    for (auto _ : state) {
        auto sorted = keys;
        std::sort(sorted.begin(), sorted.end());
        benchmark::DoNotOptimize(sorted.data());
    }
    countItems(state);
}

void upTo50000(benchmark::internal::Benchmark * bench) {
    bench->Arg(12500)->Arg(25000)->Arg(50000)->Arg(200000);
}

} // namespace

BENCHMARK(makeVectors)->Name("Store/make_vectors")->Apply(upTo50000);
BENCHMARK(mapMake)->Name("Limit/map_make")->Apply(upTo50000);
BENCHMARK(findVectors)->Name("Store/find_vectors")->Apply(upTo50000);
BENCHMARK(mapFind)->Name("Limit/map_find")->Apply(upTo50000);
BENCHMARK(listVectors)->Name("Store/list_vectors")->Apply(upTo50000);
BENCHMARK(sortNames)->Name("Limit/sort_names")->Apply(upTo50000);
BENCHMARK(manyGroups)->Name("Store/groups")->Arg(2500)->Arg(5000)->Arg(10000);
BENCHMARK(nestedContexts)->Name("Store/contexts")->Arg(1)->Arg(100)->Arg(10000);
BENCHMARK(contextBesideTemporaries)->Name("Store/context_beside_temporaries")->Arg(0)->Arg(50000);
BENCHMARK_MAIN();
