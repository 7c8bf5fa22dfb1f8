// xun-bench-scale: how the work that grows with a registry grows, at 10,000
// and 100,000 objects. Each case must cost O(n) or O(n log n) in total, so
// that 100,000 cost at most about 12 times what 10,000 cost; report.py (or
// the counters here) gives the ratio.
//
// Every iteration starts from empty registries (xunResetRegistries_, which
// is why this program links the static core instead of libxun.so); building
// what a case needs is not timed unless it is the case itself.
//
// The cases:
// - scale/unit-new/<n>: n calls of xunUnitNew (run-time units over one
//   registered unit);
// - scale/item-seq/<n>: xunGetItemTypeSeq for seq 1..n over n item types;
// - scale/filtered-seq/<n>: xunGetFilteredItemTypeCount, then
//   xunGetFilteredItemTypeSeq for every seq, over n item types of which
//   every second is in the filter;
// - scale/allow-units/<n>: n calls of xunAddItemUnit, one item type
//   allowing n units;
// - scale/item-unit-name/<n>: xunGetItemUnitTag of the last of n allowed
//   units, and of a name no unit has;
// - scale/load-distinct-dims/<n>: xunSetupLoad of a setup file of n units,
//   each of a dimension of its own;
// - scale/load-units/<n>: the same with every unit a length, for
//   comparison.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "registry/Registries.h"
#include "xun.h"

namespace {

// A temporary folder for the generated setup files, removed at the end.
class TempDir {
  public:
    TempDir() {
        char pattern[] = "/tmp/xun-bench-scale-XXXXXX";
        if (mkdtemp(pattern) == nullptr)
            std::abort();
        m_path = pattern;
    }
    ~TempDir() {
        const std::string command = "rm -rf '" + m_path + "'";
        if (std::system(command.c_str()) != 0)
            std::fprintf(stderr, "could not remove %s\n", m_path.c_str());
    }
    const std::string& Path() const { return m_path; }

  private:
    std::string m_path;
};

const TempDir& Temp() {
    static const TempDir dir;
    return dir;
}

// Writes a setup file of n units (each a length, or each of a dimension of
// its own: length to the power 1 + k/n) and one item type; returns its path.
std::string SetupFile(long n, bool distinctDimensions) {
    const std::string path = Temp().Path() + "/units-" + std::to_string(n) +
                             (distinctDimensions ? "-dims" : "-lengths") + ".xml";
    std::ifstream exists(path);
    if (exists.good())
        return path;
    std::ofstream out(path);
    out << "<XUN><Group Name=\"Units\"><Rows>\n"
           "<R Ident=\"UnitMeter\" KvId=\"1000\" Desc=\"meter\" Expr=\"Length\"/>\n";
    for (long k = 1; k < n; ++k) {
        out << "<R Ident=\"U" << k << "\" KvId=\"" << 1000 + k << "\" Desc=\"unit " << k
            << "\" Expr=\"";
        if (distinctDimensions)
            out << "Length^" << 1.0 + static_cast<double>(k) / static_cast<double>(n);
        else
            out << "UnitMeter*" << k;
        out << "\"/>\n";
    }
    out << "</Rows></Group><Group Name=\"Items\"><Rows>\n"
           "<R Ident=\"ItemLength\" KvId=\"100\" Desc=\"length\" DefaultUnit=\"UnitMeter\"/>\n"
           "</Rows></Group></XUN>\n";
    return path;
}

// Empty registries holding one unit, UnitMeter (key 1000), and one item
// type of length, ItemLength (key 100).
void StartSmall() {
    xunResetRegistries_();
    static const std::string path = SetupFile(1, false);
    if (!xunSetupLoad(path.c_str()))
        std::abort();
}

// n - 1 run-time lengths beside UnitMeter; their descriptions are "s<k>".
void AddUnits(long n) {
    for (long k = 1; k < n; ++k) {
        const std::string ident = "S" + std::to_string(k);
        const std::string desc = "s" + std::to_string(k);
        if (!xunUnitNew(ident.c_str(), desc.c_str(), "s", "UnitMeter*2"))
            std::abort();
    }
}

// n item types of length; every second one in filter bit 1.
void AddItemTypes(long n) {
    for (long k = 1; k < n; ++k) {
        const std::string ident = "I" + std::to_string(k);
        if (!xunItemTypeNew(ident.c_str(), ident.c_str(), 0, "UnitMeter"))
            std::abort();
    }
    int key = 0;
    const char* text = nullptr;
    for (int seq = 1; seq <= n; seq += 2)
        if (!xunGetItemTypeSeq(seq, &key, &text) || !xunAddItemFilter(key, 1))
            std::abort();
}

// Pushes everything out of the processor's caches (by writing a buffer well
// beyond their size), so that a walk over 10,000 objects does not run from
// the cache while one over 100,000 runs from memory: both start cold, as a
// host's walk after other work does.
void EvictCaches() {
    static std::vector<char> buffer(256u << 20);
    for (size_t i = 0; i < buffer.size(); i += 64)
        buffer[i] = static_cast<char>(buffer[i] + 1);
    benchmark::ClobberMemory();
}

void Ratio(benchmark::State& state, long n) {
    state.counters["n"] = static_cast<double>(n);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * n);
}

void UnitNew(benchmark::State& state) {
    const long n = state.range(0);
    for (auto _ : state) {
        state.PauseTiming();
        StartSmall();
        state.ResumeTiming();
        AddUnits(n);
    }
    Ratio(state, n);
}

// Times query over a cold cache: each iteration evicts the caches first
// (not timed).
template <class Query> void TimedCold(benchmark::State& state, Query query) {
    for (auto _ : state) {
        state.PauseTiming();
        EvictCaches();
        state.ResumeTiming();
        query();
    }
}

void ItemSeq(benchmark::State& state) {
    const long n = state.range(0);
    StartSmall();
    AddItemTypes(n);
    long sum = 0;
    TimedCold(state, [&] {
        int key = 0;
        const char* text = nullptr;
        for (int seq = 1; xunGetItemTypeSeq(seq, &key, &text); ++seq)
            sum += key;
        benchmark::DoNotOptimize(sum);
    });
    Ratio(state, n);
}

void FilteredSeq(benchmark::State& state) {
    const long n = state.range(0);
    StartSmall();
    AddItemTypes(n);
    long sum = 0;
    TimedCold(state, [&] {
        int key = 0;
        const char* text = nullptr;
        const int count = xunGetFilteredItemTypeCount(1);
        for (int seq = 1; seq <= count; ++seq)
            if (xunGetFilteredItemTypeSeq(1, seq, &key, &text))
                sum += key;
        benchmark::DoNotOptimize(sum);
    });
    Ratio(state, n);
}

void AllowUnits(benchmark::State& state) {
    const long n = state.range(0);
    for (auto _ : state) {
        state.PauseTiming();
        StartSmall();
        AddUnits(n);
        state.ResumeTiming();
        for (long k = 1; k < n; ++k)
            if (!xunAddItemUnit(100, 100000 + static_cast<int>(k) - 1))
                std::abort();
    }
    Ratio(state, n);
}

void ItemUnitName(benchmark::State& state) {
    const long n = state.range(0);
    StartSmall();
    AddUnits(n);
    for (long k = 1; k < n; ++k)
        if (!xunAddItemUnit(100, 100000 + static_cast<int>(k) - 1))
            std::abort();
    const std::string last = "s" + std::to_string(n - 1);
    TimedCold(state, [&] {
        int tag = 0;
        if (!xunGetItemUnitTag(100, last.c_str(), &tag) || xunGetItemUnitTag(100, "none", &tag))
            std::abort();
        benchmark::DoNotOptimize(tag);
    });
    Ratio(state, n);
}

void Load(benchmark::State& state, bool distinctDimensions) {
    const long n = state.range(0);
    const std::string path = SetupFile(n, distinctDimensions);
    for (auto _ : state) {
        state.PauseTiming();
        xunResetRegistries_();
        state.ResumeTiming();
        if (!xunSetupLoad(path.c_str()))
            std::abort();
    }
    Ratio(state, n);
}

void LoadDistinctDims(benchmark::State& state) {
    Load(state, true);
}

void LoadUnits(benchmark::State& state) {
    Load(state, false);
}

} // namespace

#define XUN_SCALE(function, name)                                                                  \
    BENCHMARK(function)->Name(name)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)

XUN_SCALE(UnitNew, "scale/unit-new");
XUN_SCALE(ItemSeq, "scale/item-seq");
XUN_SCALE(FilteredSeq, "scale/filtered-seq");
XUN_SCALE(AllowUnits, "scale/allow-units");
XUN_SCALE(ItemUnitName, "scale/item-unit-name");
XUN_SCALE(LoadDistinctDims, "scale/load-distinct-dims");
XUN_SCALE(LoadUnits, "scale/load-units");

BENCHMARK_MAIN();
