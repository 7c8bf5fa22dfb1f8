// Array conversion: xunConvertItemArrayD/F against UDUNITS-2's
// cv_convert_doubles/floats over the same array and an in-place memory stream
// over it (the bound for arrays past every cache).
//
// Every iteration converts the array forth and back, so the values stay in
// their range however often the benchmark repeats; items per second count
// both passes. Conversion pairs:
//   scale   foot <-> inch: no offsets; both directions divide by a factor
//           that is not a power of two.
//   offset  degree Fahrenheit <-> degree Reaumur (kelvin * 1.25 + 273.15,
//           defined at run time in both libraries): offsets on both sides,
//           and both directions divide by a factor that is not a power of
//           two, so no pass takes the exact-reciprocal shortcut.
//   celsius degree Celsius <-> degree Fahrenheit: the pair of the usual
//           comparisons; in libxun the way back divides by the Celsius factor
//           1 and multiplies instead.
// A fraction (0 %, 10 % or 50 %) of the elements, at random places, holds the
// delete value, which libxun leaves untouched; UDUNITS-2 has no delete value
// and runs on the arrays without any.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <immintrin.h>

#include "bench_common.h"
#include "xun.h"

#ifdef XUN_BENCH_UDUNITS
#include <udunits2.h>
#endif

namespace xunbench {
namespace {

enum class Kind { Scale, Offset, Celsius };

const char* KindName(Kind kind) {
    switch (kind) {
    case Kind::Scale:
        return "scale";
    case Kind::Offset:
        return "offset";
    case Kind::Celsius:
        return "celsius";
    }
    return "?";
}

const double kDeleteValue = -9999.0;

// The two units of a pair in libxun (tags), forth and back.
struct XunPair {
    int from;
    int to;
};

XunPair XunUnits(Kind kind) {
    LoadDefaultInstallation();
    switch (kind) {
    case Kind::Scale:
        return {TagOf("UnitFoot"), TagOf("UnitInch")};
    case Kind::Offset: {
        int tag = 0;
        if (!xunGetUnitTagFromIdent("BenchDegreeReaumur", &tag) &&
            !xunUnitNew("BenchDegreeReaumur", "degree Reaumur", "Re", "UnitKelvin*1.25+273.15")) {
            std::fprintf(stderr, "could not define the Reaumur scale\n");
            std::abort();
        }
        return {TagOf("UnitDegreeFahrenheit"), TagOf("BenchDegreeReaumur")};
    }
    case Kind::Celsius:
        return {TagOf("UnitDegreeCelsius"), TagOf("UnitDegreeFahrenheit")};
    }
    std::abort();
}

// Values of the pair's first unit, away from the delete value after either
// conversion.
void Range(Kind kind, double& low, double& high) {
    low = kind == Kind::Celsius ? -50.0 : 0.0;
    high = kind == Kind::Celsius ? 150.0 : 500.0;
}

// count values of the pair's first unit, deletePercent % of them (at random
// places) the delete value.
template <class T> void Fill(std::vector<T>& values, size_t count, Kind kind, int deletePercent) {
    values.resize(count);
    double low, high;
    Range(kind, low, high);
    Random random(count * 131 + static_cast<uint64_t>(deletePercent));
    for (T& value : values) {
        if (random.Below(100) < static_cast<uint64_t>(deletePercent))
            value = static_cast<T>(kDeleteValue);
        else
            value = static_cast<T>(low + (high - low) * random.Uniform());
    }
}

// One array per element type, kept from one benchmark to the next while the
// same data is asked for (the largest arrays take a while to fill).
template <class T> std::vector<T>& Data(size_t count, Kind kind, int deletePercent) {
    struct Cache {
        size_t count = 0;
        Kind kind = Kind::Scale;
        int deletePercent = -1;
        std::vector<T> values;
    };
    static Cache cache;
    if (cache.count != count || cache.kind != kind || cache.deletePercent != deletePercent) {
        cache.values.clear();
        cache.values.shrink_to_fit();
        Fill(cache.values, count, kind, deletePercent);
        cache.count = count;
        cache.kind = kind;
        cache.deletePercent = deletePercent;
    }
    return cache.values;
}

int Convert(int from, int to, double* values, int count) {
    return xunConvertItemArrayD(from, to, values, count, kDeleteValue);
}

int Convert(int from, int to, float* values, int count) {
    return xunConvertItemArrayF(from, to, values, count, static_cast<float>(kDeleteValue));
}

template <class T> void XunArray(benchmark::State& state, size_t count, Kind kind, int percent) {
    const XunPair pair = XunUnits(kind);
    std::vector<T>& values = Data<T>(count, kind, percent);
    const int n = static_cast<int>(count);
    for (auto _ : state) {
        if (!Convert(pair.from, pair.to, values.data(), n) ||
            !Convert(pair.to, pair.from, values.data(), n)) {
            state.SkipWithError("conversion refused");
            break;
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * 2 *
                            static_cast<int64_t>(count));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 2 *
                            static_cast<int64_t>(count * sizeof(T)));
}

// The in-place stream: every element read once and written once per pass,
// scaled by two and back by one half (exact, so nothing drifts). It is meant
// as the memory bound of an in-place pass, so it uses the widest vectors the
// processor has and the same software prefetch as the library's loops (2 KB
// ahead, one per 64-byte line); a plain loop reaches less of the bandwidth.
const size_t kStreamPrefetchBytes = 2048;

template <class T> __attribute__((noinline)) void ScalePlain(T* values, size_t count, T factor) {
    for (size_t i = 0; i < count; ++i) {
        if (i % (64 / sizeof(T)) == 0)
            _mm_prefetch(reinterpret_cast<const char*>(values + i) + kStreamPrefetchBytes,
                         _MM_HINT_T0);
        values[i] *= factor;
    }
}

__attribute__((target("avx512f"), noinline)) void ScaleWide(double* values, size_t count,
                                                            double factor) {
    const __m512d k = _mm512_set1_pd(factor);
    size_t i = 0;
    // Up to a 64-byte boundary first, so that no access spans two lines.
    for (; i < count && reinterpret_cast<uintptr_t>(values + i) % 64 != 0; ++i)
        values[i] *= factor;
    for (; i + 8 <= count; i += 8) {
        _mm_prefetch(reinterpret_cast<const char*>(values + i) + kStreamPrefetchBytes, _MM_HINT_T0);
        _mm512_storeu_pd(values + i, _mm512_mul_pd(_mm512_loadu_pd(values + i), k));
    }
    for (; i < count; ++i)
        values[i] *= factor;
}

__attribute__((target("avx512f"), noinline)) void ScaleWide(float* values, size_t count,
                                                            float factor) {
    const __m512 k = _mm512_set1_ps(factor);
    size_t i = 0;
    for (; i < count && reinterpret_cast<uintptr_t>(values + i) % 64 != 0; ++i)
        values[i] *= factor;
    for (; i + 16 <= count; i += 16) {
        _mm_prefetch(reinterpret_cast<const char*>(values + i) + kStreamPrefetchBytes, _MM_HINT_T0);
        _mm512_storeu_ps(values + i, _mm512_mul_ps(_mm512_loadu_ps(values + i), k));
    }
    for (; i < count; ++i)
        values[i] *= factor;
}

template <class T> void Scale(T* values, size_t count, T factor) {
    static const bool wide = __builtin_cpu_supports("avx512f");
    if (wide)
        ScaleWide(values, count, factor);
    else
        ScalePlain(values, count, factor);
}

template <class T> void StreamArray(benchmark::State& state, size_t count) {
    std::vector<T>& values = Data<T>(count, Kind::Offset, 0);
    T up = 2, down = 0.5;
    benchmark::DoNotOptimize(up);
    benchmark::DoNotOptimize(down);
    for (auto _ : state) {
        Scale(values.data(), count, up);
        Scale(values.data(), count, down);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * 2 *
                            static_cast<int64_t>(count));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 2 *
                            static_cast<int64_t>(count * sizeof(T)));
}

#ifdef XUN_BENCH_UDUNITS
struct UdunitsPair {
    cv_converter* forth;
    cv_converter* back;
};

UdunitsPair UdunitsConverters(Kind kind) {
    ut_system* system = UdunitsSystem();
    ut_unit* from = nullptr;
    ut_unit* to = nullptr;
    switch (kind) {
    case Kind::Scale:
        from = ut_parse(system, "ft", UT_UTF8);
        to = ut_parse(system, "in", UT_UTF8);
        break;
    case Kind::Offset: {
        from = ut_parse(system, "degF", UT_UTF8);
        ut_unit* celsius = ut_parse(system, "degC", UT_UTF8);
        to = ut_scale(1.25, celsius);
        ut_free(celsius);
        break;
    }
    case Kind::Celsius:
        from = ut_parse(system, "degC", UT_UTF8);
        to = ut_parse(system, "degF", UT_UTF8);
        break;
    }
    UdunitsPair pair{nullptr, nullptr};
    if (from != nullptr && to != nullptr) {
        pair.forth = ut_get_converter(from, to);
        pair.back = ut_get_converter(to, from);
    }
    ut_free(from);
    ut_free(to);
    if (pair.forth == nullptr || pair.back == nullptr) {
        std::fprintf(stderr, "UDUNITS-2 has no converter for the %s pair\n", KindName(kind));
        std::abort();
    }
    return pair;
}

void UdunitsConvert(const cv_converter* converter, double* values, size_t count) {
    cv_convert_doubles(converter, values, count, values);
}

void UdunitsConvert(const cv_converter* converter, float* values, size_t count) {
    cv_convert_floats(converter, values, count, values);
}

template <class T> void UdunitsArray(benchmark::State& state, size_t count, Kind kind) {
    const UdunitsPair pair = UdunitsConverters(kind);
    std::vector<T>& values = Data<T>(count, kind, 0);
    for (auto _ : state) {
        UdunitsConvert(pair.forth, values.data(), count);
        UdunitsConvert(pair.back, values.data(), count);
        benchmark::ClobberMemory();
    }
    cv_free(pair.forth);
    cv_free(pair.back);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * 2 *
                            static_cast<int64_t>(count));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 2 *
                            static_cast<int64_t>(count * sizeof(T)));
}
#endif

// Paired benchmarks: two candidates timed in alternating blocks of passes
// (each block long enough for the clock, short against changes of the
// machine's load), so that their ratio holds on a busy machine too. The
// counters are each candidate's rate (G elements/s) and the ratio of the
// first to the second.
enum class Pairing { VsUdunits, VsStream, Deleted50VsNone };

template <class T> void PairedArray(benchmark::State& state, size_t count, Pairing pairing) {
    const XunPair pair = XunUnits(Kind::Offset);
    // Both candidates run over the same memory, except for the comparison of
    // two kinds of data. The arrays stay allocated from one benchmark to the
    // next: fresh allocations of the largest arrays may be backed by pages of
    // another size, which changes the speed of a memory-bound loop.
    static std::vector<T> first, other;
    Fill(first, count, Kind::Offset, pairing == Pairing::Deleted50VsNone ? 50 : 0);
    if (pairing == Pairing::Deleted50VsNone)
        Fill(other, count, Kind::Offset, 0);
    std::vector<T>& second = pairing == Pairing::Deleted50VsNone ? other : first;
#ifdef XUN_BENCH_UDUNITS
    const UdunitsPair converters = UdunitsConverters(Kind::Offset);
#endif
    const int n = static_cast<int>(count);
    T up = 2, down = 0.5;
    benchmark::DoNotOptimize(up);
    benchmark::DoNotOptimize(down);
    // Each pass converts forth and back; a block is about 200 microseconds
    // of passes (at 1 G elements/s), at least one.
    const size_t passes = count >= 100000 ? 1 : 100000 / count;
    auto runFirst = [&] {
        for (size_t p = 0; p < passes; ++p) {
            Convert(pair.from, pair.to, first.data(), n);
            Convert(pair.to, pair.from, first.data(), n);
        }
    };
    auto runSecond = [&] {
        for (size_t p = 0; p < passes; ++p) {
            switch (pairing) {
            case Pairing::VsUdunits:
#ifdef XUN_BENCH_UDUNITS
                UdunitsConvert(converters.forth, second.data(), count);
                UdunitsConvert(converters.back, second.data(), count);
#endif
                break;
            case Pairing::VsStream:
                Scale(second.data(), count, up);
                Scale(second.data(), count, down);
                break;
            case Pairing::Deleted50VsNone:
                Convert(pair.from, pair.to, second.data(), n);
                Convert(pair.to, pair.from, second.data(), n);
                break;
            }
        }
    };
    double firstSeconds = 0, secondSeconds = 0;
    TimeAlternating(state, runFirst, runSecond, firstSeconds, secondSeconds);
#ifdef XUN_BENCH_UDUNITS
    cv_free(converters.forth);
    cv_free(converters.back);
#endif
    const double elements = static_cast<double>(state.iterations()) * static_cast<double>(passes) *
                            2.0 * static_cast<double>(count);
    const double firstRate = elements / firstSeconds / 1e9;
    const double secondRate = elements / secondSeconds / 1e9;
    state.counters["first_Gps"] = firstRate;
    state.counters["second_Gps"] = secondRate;
    state.counters["ratio"] = firstRate / secondRate;
}

struct Size {
    size_t count;
    const char* name;
};
const Size kSizes[] = {{1000, "1000"}, {100000, "100000"}, {size_t(64) << 20, "64M"}};

void Tune(benchmark::internal::Benchmark* b, const Size& size) {
    b->UseRealTime();
    if (size.count > 1000000)
        b->MinTime(1.0);
}

std::string Prefix(const char* type, const Size& size) {
    return std::string("array/") + type + "/" + size.name + "/";
}

// The stream and libxun against it. They are registered before every
// benchmark that calls UDUNITS-2: once UDUNITS-2 had converted an array in
// the process, the stream was seen to run at a tenth of its speed from then
// on (libxun's loops were not), on the machine of the latest run.
template <class T> void RegisterStreams(const char* type) {
    for (const Size& size : kSizes) {
        const std::string prefix = Prefix(type, size);
        Tune(benchmark::RegisterBenchmark(
                 (prefix + "stream").c_str(),
                 [=](benchmark::State& s) { StreamArray<T>(s, size.count); }),
             size);
        Tune(benchmark::RegisterBenchmark(
                 (prefix + "paired/xun-vs-stream").c_str(),
                 [=](benchmark::State& s) { PairedArray<T>(s, size.count, Pairing::VsStream); }),
             size);
    }
}

template <class T> void RegisterType(const char* type) {
    for (const Size& size : kSizes) {
        const std::string prefix = Prefix(type, size);
        // Ordered so that consecutive benchmarks share their data.
        for (Kind kind : {Kind::Offset, Kind::Scale, Kind::Celsius}) {
            const std::string base = prefix + KindName(kind) + "/";
            for (int percent : {0, 10, 50}) {
                if (kind == Kind::Celsius && percent != 0)
                    continue;
                Tune(benchmark::RegisterBenchmark(
                         (base + "del" + std::to_string(percent) + "/xun").c_str(),
                         [=](benchmark::State& s) { XunArray<T>(s, size.count, kind, percent); }),
                     size);
#ifdef XUN_BENCH_UDUNITS
                if (percent == 0)
                    Tune(benchmark::RegisterBenchmark(
                             (base + "del0/udunits").c_str(),
                             [=](benchmark::State& s) { UdunitsArray<T>(s, size.count, kind); }),
                         size);
#endif
            }
        }
#ifdef XUN_BENCH_UDUNITS
        Tune(benchmark::RegisterBenchmark(
                 (prefix + "paired/xun-vs-udunits").c_str(),
                 [=](benchmark::State& s) { PairedArray<T>(s, size.count, Pairing::VsUdunits); }),
             size);
#endif
        Tune(benchmark::RegisterBenchmark((prefix + "paired/del50-vs-del0").c_str(),
                                          [=](benchmark::State& s) {
                                              PairedArray<T>(s, size.count,
                                                             Pairing::Deleted50VsNone);
                                          }),
             size);
    }
}

} // namespace

void RegisterArrayBenchmarks() {
    RegisterStreams<double>("double");
    RegisterStreams<float>("float");
    RegisterType<double>("double");
    RegisterType<float>("float");
}

} // namespace xunbench
