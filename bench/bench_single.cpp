// Single conversions between random pairs of units: xunConvertUnit over the
// units of the default installation against UDUNITS-2's cv_convert_double
// over the units of its database, with a converter prepared for every pair
// beforehand and with one made (and freed) for every conversion.
//
// The pairs are drawn once, at random, among all pairs of convertible units
// (same dimension), so that every call converts; a second xunConvertUnit
// benchmark draws among all pairs, most of which are refused.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

#include "bench_common.h"
#include "xun.h"

#ifdef XUN_BENCH_UDUNITS
#include <udunits2.h>
#endif

namespace xunbench {
namespace {

const size_t kPairs = 4096; // a power of two: the loops wrap with a mask

// Groups of mutually convertible things, given an equivalence test: each
// group is a list of indexes into the input.
template <class Eqv> std::vector<std::vector<size_t>> Group(size_t count, Eqv eqv) {
    std::vector<std::vector<size_t>> groups;
    for (size_t i = 0; i < count; ++i) {
        bool placed = false;
        for (std::vector<size_t>& group : groups) {
            if (eqv(group.front(), i)) {
                group.push_back(i);
                placed = true;
                break;
            }
        }
        if (!placed)
            groups.push_back({i});
    }
    return groups;
}

// kPairs random pairs (indexes) of different members of one group, the group
// chosen with probability proportional to its number of ordered pairs.
std::vector<std::pair<size_t, size_t>> RandomPairs(const std::vector<std::vector<size_t>>& groups) {
    std::vector<double> weight;
    double total = 0;
    for (const std::vector<size_t>& group : groups) {
        const double n = static_cast<double>(group.size());
        total += n * (n - 1);
        weight.push_back(total);
    }
    Random random(12345);
    std::vector<std::pair<size_t, size_t>> pairs;
    while (pairs.size() < kPairs) {
        const double pick = random.Uniform() * total;
        size_t g = 0;
        while (weight[g] <= pick)
            ++g;
        const std::vector<size_t>& group = groups[g];
        const size_t a = random.Below(group.size());
        const size_t b = random.Below(group.size());
        if (a != b)
            pairs.emplace_back(group[a], group[b]);
    }
    return pairs;
}

std::vector<double> RandomValues() {
    Random random(777);
    std::vector<double> values(kPairs);
    for (double& value : values)
        value = 1000.0 * random.Uniform() - 500.0;
    return values;
}

// Every unit tag of the loaded installation, in list order.
std::vector<int> XunTags() {
    LoadDefaultInstallation();
    std::vector<int> tags;
    int tag = 0;
    const char* key = nullptr;
    for (int prev = 0; xunGetNextUnit(prev, &tag, &key); prev = tag)
        tags.push_back(tag);
    return tags;
}

struct TagPair {
    int from;
    int to;
};

void XunSingle(benchmark::State& state, bool convertibleOnly) {
    const std::vector<int> tags = XunTags();
    std::vector<TagPair> pairs;
    if (convertibleOnly) {
        const auto groups =
            Group(tags.size(), [&](size_t a, size_t b) { return xunUnitsEqv(tags[a], tags[b]); });
        for (const auto& pair : RandomPairs(groups))
            pairs.push_back({tags[pair.first], tags[pair.second]});
    } else {
        Random random(4242);
        for (size_t i = 0; i < kPairs; ++i)
            pairs.push_back({tags[random.Below(tags.size())], tags[random.Below(tags.size())]});
    }
    const std::vector<double> values = RandomValues();
    size_t i = 0;
    int converted = 0;
    for (auto _ : state) {
        double result;
        converted += xunConvertUnit(pairs[i].from, pairs[i].to, &result, values[i]);
        benchmark::DoNotOptimize(result);
        i = (i + 1) & (kPairs - 1);
    }
    state.counters["units"] = static_cast<double>(tags.size());
    state.counters["converted"] =
        static_cast<double>(converted) / static_cast<double>(state.iterations());
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

#ifdef XUN_BENCH_UDUNITS
struct UnitPair {
    ut_unit* from;
    ut_unit* to;
};

const std::vector<ut_unit*>& UdunitsUnits() {
    static const std::vector<ut_unit*> units = [] {
        std::vector<ut_unit*> parsed;
        for (const std::string& name : UdunitsUnitNames())
            parsed.push_back(ut_parse(UdunitsSystem(), name.c_str(), UT_UTF8));
        return parsed;
    }();
    return units;
}

std::vector<UnitPair> UdunitsPairs() {
    const std::vector<ut_unit*>& units = UdunitsUnits();
    const auto groups = Group(units.size(), [&](size_t a, size_t b) {
        return ut_are_convertible(units[a], units[b]) != 0;
    });
    std::vector<UnitPair> pairs;
    for (const auto& pair : RandomPairs(groups))
        pairs.push_back({units[pair.first], units[pair.second]});
    return pairs;
}

void UdunitsPrepared(benchmark::State& state) {
    std::vector<cv_converter*> converters;
    for (const UnitPair& pair : UdunitsPairs())
        converters.push_back(ut_get_converter(pair.from, pair.to));
    const std::vector<double> values = RandomValues();
    size_t i = 0;
    for (auto _ : state) {
        double result = cv_convert_double(converters[i], values[i]);
        benchmark::DoNotOptimize(result);
        i = (i + 1) & (kPairs - 1);
    }
    for (cv_converter* converter : converters)
        cv_free(converter);
    state.counters["units"] = static_cast<double>(UdunitsUnits().size());
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

void UdunitsMadeEachTime(benchmark::State& state) {
    const std::vector<UnitPair> pairs = UdunitsPairs();
    const std::vector<double> values = RandomValues();
    size_t i = 0;
    for (auto _ : state) {
        cv_converter* converter = ut_get_converter(pairs[i].from, pairs[i].to);
        double result = cv_convert_double(converter, values[i]);
        benchmark::DoNotOptimize(result);
        cv_free(converter);
        i = (i + 1) & (kPairs - 1);
    }
    state.counters["units"] = static_cast<double>(UdunitsUnits().size());
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

// libxun's conversions and UDUNITS-2's made-each-time ones in alternating
// blocks of all 4096 pairs (see PairedArray in bench_array.cpp): counters
// first_ns and second_ns per conversion and their ratio.
void PairedSingle(benchmark::State& state) {
    const std::vector<int> tags = XunTags();
    const auto groups =
        Group(tags.size(), [&](size_t a, size_t b) { return xunUnitsEqv(tags[a], tags[b]); });
    std::vector<TagPair> pairs;
    for (const auto& pair : RandomPairs(groups))
        pairs.push_back({tags[pair.first], tags[pair.second]});
    const std::vector<UnitPair> theirs = UdunitsPairs();
    const std::vector<double> values = RandomValues();
    auto ours = [&] {
        for (size_t i = 0; i < kPairs; ++i) {
            double result;
            xunConvertUnit(pairs[i].from, pairs[i].to, &result, values[i]);
            benchmark::DoNotOptimize(result);
        }
    };
    auto made = [&] {
        for (size_t i = 0; i < kPairs; ++i) {
            cv_converter* converter = ut_get_converter(theirs[i].from, theirs[i].to);
            double result = cv_convert_double(converter, values[i]);
            benchmark::DoNotOptimize(result);
            cv_free(converter);
        }
    };
    TimePairedBlocks(state, ours, made, kPairs);
}
#endif

} // namespace

void RegisterSingleBenchmarks() {
    benchmark::RegisterBenchmark("single/convertible/xun",
                                 [](benchmark::State& s) { XunSingle(s, true); });
    benchmark::RegisterBenchmark("single/any/xun",
                                 [](benchmark::State& s) { XunSingle(s, false); });
#ifdef XUN_BENCH_UDUNITS
    benchmark::RegisterBenchmark("single/convertible/udunits-prepared", UdunitsPrepared);
    benchmark::RegisterBenchmark("single/convertible/udunits-made", UdunitsMadeEachTime);
    benchmark::RegisterBenchmark("single/paired/xun-vs-udunits-made", PairedSingle);
#endif
}

} // namespace xunbench
