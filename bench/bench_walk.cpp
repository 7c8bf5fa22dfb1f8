// Walks over every unit with xunGetNextUnit, and over every unit of one
// dimension with xunGetNextEqvUnit, in registries of 1,000 and 10,000 units.
//
// The registry is the default installation grown with run-time units
// (xunUnitNew, lengths) to the size asked for. Units cannot be taken out
// again, so the sizes must be asked for in increasing order: they are
// registered that way, and a benchmark that finds the registry already larger
// than its size reports an error instead of a figure.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_common.h"
#include "xun.h"

namespace xunbench {
namespace {

int CountUnits() {
    int count = 0, tag = 0;
    const char* key = nullptr;
    for (int prev = 0; xunGetNextUnit(prev, &tag, &key); prev = tag)
        ++count;
    return count;
}

// Grows the registry to count units; false when it already holds more.
bool GrowRegistry(int count) {
    LoadDefaultInstallation();
    static int units = CountUnits();
    static int serial = 0;
    if (units > count)
        return false;
    for (; units < count; ++units) {
        const std::string ident = "BenchWalk" + std::to_string(++serial);
        if (!xunUnitNew(ident.c_str(), ident.c_str(), "w", "UnitMeter*2"))
            return false;
    }
    return true;
}

void WalkAll(benchmark::State& state, int count) {
    if (!GrowRegistry(count)) {
        state.SkipWithError("the registry is already larger");
        return;
    }
    int visited = 0;
    for (auto _ : state) {
        int tag = 0;
        const char* key = nullptr;
        for (int prev = 0; xunGetNextUnit(prev, &tag, &key); prev = tag)
            ++visited;
        benchmark::DoNotOptimize(visited);
    }
    state.counters["units"] =
        static_cast<double>(visited) / static_cast<double>(state.iterations());
    state.SetItemsProcessed(visited);
}

void WalkEqv(benchmark::State& state, int count) {
    if (!GrowRegistry(count)) {
        state.SkipWithError("the registry is already larger");
        return;
    }
    const int meter = TagOf("UnitMeter");
    int visited = 0;
    for (auto _ : state) {
        int tag = 0;
        const char* key = nullptr;
        for (int prev = 0; xunGetNextEqvUnit(meter, prev, &tag, &key); prev = tag)
            ++visited;
        benchmark::DoNotOptimize(visited);
    }
    state.counters["units"] =
        static_cast<double>(visited) / static_cast<double>(state.iterations());
    state.SetItemsProcessed(visited);
}

} // namespace

void RegisterWalkBenchmarks() {
    for (int count : {1000, 10000}) {
        const std::string size = std::to_string(count);
        benchmark::RegisterBenchmark(("walk/all/" + size + "/xun").c_str(),
                                     [=](benchmark::State& s) { WalkAll(s, count); });
        benchmark::RegisterBenchmark(("walk/eqv/" + size + "/xun").c_str(),
                                     [=](benchmark::State& s) { WalkEqv(s, count); });
    }
}

} // namespace xunbench
