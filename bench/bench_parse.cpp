// Reading unit strings: xunParseUnit against UDUNITS-2's ut_parse on the
// same texts, for texts the library has not read before and for one text
// read again and again.
//
// New texts: 1,000 composed units of the CF notation ("km2 W-3 s", three
// symbols both libraries know, each with an exponent from -3 to 3), each
// written in 16 different ways (blank, '.' or '*' between the factors,
// exponents written right after the symbol, after '^' or after '**', the
// factors in another order). A block parses one way of writing each of the
// 1,000 units; the next block takes the next way, so a text comes back only
// after 15,000 others. The library remembers at most 4,096 texts (it forgets
// them all at once when full), so every text a block reads is new to it:
// each is read by the grammar and its meaning looked up among the units of
// its dimension. The units these meanings need are registered by a first
// pass over all of them before any timing (the counter first_pass_ns gives
// its time per text: reading, rendering the normalised texts, registering).
// UDUNITS-2 parses the same texts (and frees each unit), which it does the
// same way every time.
//
// Repeated text: "kg m-2 s-1" over and over.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "bench_common.h"
#include "xun.h"

#ifdef XUN_BENCH_UDUNITS
#include <udunits2.h>
#endif

namespace xunbench {
namespace {

const size_t kUnits = 1000;
const size_t kWritings = 16;
const char* const kRepeated = "kg m-2 s-1";

// Symbols that mean the same in both libraries (the cross-check of
// tests/udunits compares them).
const char* const kSymbols[] = {"m", "km", "cm", "mm", "kg", "g",   "s",   "min", "h",
                                "d", "K",  "W",  "J",  "N",  "Pa",  "hPa", "mol", "A",
                                "V", "Hz", "Bq", "kW", "MJ", "kPa", "ha"};
const size_t kSymbolCount = sizeof(kSymbols) / sizeof(kSymbols[0]);

struct Factor {
    size_t symbol;
    int exponent;
};

std::string Write(const std::vector<Factor>& factors, Random& random) {
    static const char* const kSeparators[] = {" ", ".", "*"};
    static const char* const kPowers[] = {"", "^", "**"};
    std::vector<Factor> order = factors;
    for (size_t i = order.size(); i > 1; --i)
        std::swap(order[i - 1], order[random.Below(i)]);
    std::string text;
    for (size_t i = 0; i < order.size(); ++i) {
        if (i > 0)
            text += kSeparators[random.Below(3)];
        text += kSymbols[order[i].symbol];
        if (order[i].exponent != 1)
            text += kPowers[random.Below(3)] + std::to_string(order[i].exponent);
    }
    return text;
}

// texts[w * kUnits + u]: the w-th way of writing the u-th unit.
const std::vector<std::string>& NewTexts() {
    static const std::vector<std::string> texts = [] {
        Random random(2718);
        std::set<std::string> meanings;
        std::vector<std::vector<Factor>> units;
        while (units.size() < kUnits) {
            std::vector<Factor> factors;
            std::set<size_t> used;
            while (factors.size() < 3) {
                const size_t symbol = random.Below(kSymbolCount);
                if (!used.insert(symbol).second)
                    continue;
                int exponent = static_cast<int>(random.Below(6)) - 3; // -3 .. 2
                if (exponent >= 0)
                    ++exponent; // -3 .. -1, 1 .. 3
                factors.push_back({symbol, exponent});
            }
            std::vector<Factor> sorted = factors;
            std::sort(sorted.begin(), sorted.end(),
                      [](const Factor& a, const Factor& b) { return a.symbol < b.symbol; });
            std::string key;
            for (const Factor& f : sorted)
                key += std::to_string(f.symbol) + "^" + std::to_string(f.exponent) + " ";
            if (meanings.insert(key).second)
                units.push_back(factors);
        }
        std::vector<std::string> all(kUnits * kWritings);
        std::set<std::string> seen;
        for (size_t u = 0; u < kUnits; ++u) {
            for (size_t w = 0; w < kWritings;) {
                std::string text = Write(units[u], random);
                if (seen.insert(text).second)
                    all[w++ * kUnits + u] = text;
            }
        }
        return all;
    }();
    return texts;
}

// The texts loaded, checked and their units registered (once).
const std::vector<std::string>& PreparedTexts(double& firstPassNs) {
    static double firstPass = 0;
    static const std::vector<std::string>& texts = [&]() -> const std::vector<std::string>& {
        LoadDefaultInstallation();
        const std::vector<std::string>& all = NewTexts();
        int tag = 0;
        // Warm the index of names (built on the first call after a change).
        xunParseUnit("m", &tag);
        using Clock = std::chrono::steady_clock;
        const Clock::time_point start = Clock::now();
        for (size_t u = 0; u < kUnits; ++u) {
            if (!xunParseUnit(all[u].c_str(), &tag)) {
                const char* why = "";
                xunGetLastError(&why);
                std::fprintf(stderr, "libxun does not read '%s': %s\n", all[u].c_str(), why);
                std::abort();
            }
        }
        firstPass = std::chrono::duration<double>(Clock::now() - start).count() /
                    static_cast<double>(kUnits) * 1e9;
        for (const std::string& text : all) {
            if (!xunParseUnit(text.c_str(), &tag)) {
                std::fprintf(stderr, "libxun does not read '%s'\n", text.c_str());
                std::abort();
            }
#ifdef XUN_BENCH_UDUNITS
            ut_unit* unit = ut_parse(UdunitsSystem(), text.c_str(), UT_ASCII);
            if (unit == nullptr) {
                std::fprintf(stderr, "UDUNITS-2 does not read '%s'\n", text.c_str());
                std::abort();
            }
            ut_free(unit);
#endif
        }
        return all;
    }();
    firstPassNs = firstPass;
    return texts;
}

// The way of writing the next block uses; shared by all benchmarks, so
// that no block reads a text another has just read.
size_t g_writing = 0;

const std::string* NextBlock(const std::vector<std::string>& texts) {
    const std::string* block = &texts[g_writing * kUnits];
    g_writing = (g_writing + 1) % kWritings;
    return block;
}

void XunBlock(const std::string* block) {
    int tag = 0;
    for (size_t u = 0; u < kUnits; ++u) {
        xunParseUnit(block[u].c_str(), &tag);
        benchmark::DoNotOptimize(tag);
    }
}

void ParseNewXun(benchmark::State& state) {
    double firstPassNs = 0;
    const std::vector<std::string>& texts = PreparedTexts(firstPassNs);
    for (auto _ : state)
        XunBlock(NextBlock(texts));
    state.counters["first_pass_ns"] = firstPassNs;
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kUnits));
}

void ParseRepeatedXun(benchmark::State& state) {
    LoadDefaultInstallation();
    int tag = 0;
    xunParseUnit(kRepeated, &tag);
    for (auto _ : state) {
        xunParseUnit(kRepeated, &tag);
        benchmark::DoNotOptimize(tag);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

#ifdef XUN_BENCH_UDUNITS
void UdunitsBlock(const std::string* block) {
    for (size_t u = 0; u < kUnits; ++u) {
        ut_unit* unit = ut_parse(UdunitsSystem(), block[u].c_str(), UT_ASCII);
        benchmark::DoNotOptimize(unit);
        ut_free(unit);
    }
}

void ParseNewUdunits(benchmark::State& state) {
    double firstPassNs = 0;
    const std::vector<std::string>& texts = PreparedTexts(firstPassNs);
    for (auto _ : state)
        UdunitsBlock(NextBlock(texts));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kUnits));
}

void ParseRepeatedUdunits(benchmark::State& state) {
    ut_system* system = UdunitsSystem();
    for (auto _ : state) {
        ut_unit* unit = ut_parse(system, kRepeated, UT_ASCII);
        benchmark::DoNotOptimize(unit);
        ut_free(unit);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

// Both libraries in alternating blocks (TimePairedBlocks): libxun reads one
// way of writing the 1,000 units, UDUNITS-2 the same texts; counters
// first_ns and second_ns per text and their ratio.
void PairedNew(benchmark::State& state) {
    double firstPassNs = 0;
    const std::vector<std::string>& texts = PreparedTexts(firstPassNs);
    const std::string* block = nullptr;
    auto ours = [&] {
        block = NextBlock(texts);
        XunBlock(block);
    };
    // UDUNITS-2 reads the block libxun read last (or the next one when it
    // goes first): the same texts, equally often.
    auto theirs = [&] { UdunitsBlock(block != nullptr ? block : &texts[g_writing * kUnits]); };
    TimePairedBlocks(state, ours, theirs, kUnits);
    state.counters["first_pass_ns"] = firstPassNs;
}

// The same text, in alternating blocks of 1,000 parses.
void PairedRepeated(benchmark::State& state) {
    LoadDefaultInstallation();
    ut_system* system = UdunitsSystem();
    int tag = 0;
    xunParseUnit(kRepeated, &tag);
    auto ours = [&] {
        for (size_t i = 0; i < kUnits; ++i) {
            xunParseUnit(kRepeated, &tag);
            benchmark::DoNotOptimize(tag);
        }
    };
    auto theirs = [&] {
        for (size_t i = 0; i < kUnits; ++i) {
            ut_unit* unit = ut_parse(system, kRepeated, UT_ASCII);
            benchmark::DoNotOptimize(unit);
            ut_free(unit);
        }
    };
    TimePairedBlocks(state, ours, theirs, kUnits);
}
#endif

} // namespace

void RegisterParseBenchmarks() {
    benchmark::RegisterBenchmark("parse/new/xun", ParseNewXun);
    benchmark::RegisterBenchmark("parse/repeated/xun", ParseRepeatedXun);
#ifdef XUN_BENCH_UDUNITS
    benchmark::RegisterBenchmark("parse/new/udunits", ParseNewUdunits);
    benchmark::RegisterBenchmark("parse/repeated/udunits", ParseRepeatedUdunits);
    benchmark::RegisterBenchmark("parse/paired/new/xun-vs-udunits", PairedNew);
    benchmark::RegisterBenchmark("parse/paired/repeated/xun-vs-udunits", PairedRepeated);
#endif
}

} // namespace xunbench
