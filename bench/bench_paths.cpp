// The paths of the array conversion loops (registry/ConversionKernels.h),
// each forced in turn, and the one that the automatic choice keeps:
//   paths/<type>/<n>/<pair>/<path>   the loops of the path over n elements,
//                                    forth and back per iteration (the pairs
//                                    of bench_array.cpp: scale is foot <->
//                                    inch, offset degree Fahrenheit <->
//                                    degree Reaumur)
//   paths/chosen                     the automatic choice of this process:
//                                    counters path (1 Baseline, 2 Avx2,
//                                    3 Avx512, 4-6 the same with the float
//                                    product), forced, and every path's
//                                    speed as the choice timed it
// They call the core's loops directly (linked from the static core), the
// code that the shared library runs; a path the processor lacks is skipped.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "registry/ConversionKernels.h"

namespace xunbench {
namespace {

const char* PathName(XunConversionPath_ path) {
    switch (path) {
    case XunConversionPath_::Auto:
        return "auto";
    case XunConversionPath_::Baseline:
        return "baseline";
    case XunConversionPath_::Avx2:
        return "avx2";
    case XunConversionPath_::Avx512:
        return "avx512";
    case XunConversionPath_::BaselineFloatProduct:
        return "baseline-product";
    case XunConversionPath_::Avx2FloatProduct:
        return "avx2-product";
    case XunConversionPath_::Avx512FloatProduct:
        return "avx512-product";
    }
    return "?";
}

struct Pair {
    const char* name;
    XunConversion_ forth;
    XunConversion_ back;
};

// As the units of the default installation define them (factor and offset
// to kelvin or metre); the Reaumur scale is kelvin * 1.25 + 273.15.
const Pair kPairs[] = {
    {"scale", {0.3048, 0.0, 0.0, 0.0254}, {0.0254, 0.0, 0.0, 0.3048}},
    {"offset",
     {5.0 / 9.0, 459.67 * 5.0 / 9.0, 273.15, 1.25},
     {1.25, 273.15, 459.67 * 5.0 / 9.0, 5.0 / 9.0}},
};

const XunConversionPath_ kPaths[] = {
    XunConversionPath_::Baseline,         XunConversionPath_::Avx2,
    XunConversionPath_::Avx512,           XunConversionPath_::BaselineFloatProduct,
    XunConversionPath_::Avx2FloatProduct, XunConversionPath_::Avx512FloatProduct,
};

void Convert(const XunConversion_& c, std::vector<double>& values) {
    xunConvertArrayD_(c, values.data(), static_cast<int>(values.size()), -9999.0);
}
void Convert(const XunConversion_& c, std::vector<float>& values) {
    xunConvertArrayF_(c, values.data(), static_cast<int>(values.size()), -9999.0f);
}

template <class T>
void ForcedPath(benchmark::State& state, XunConversionPath_ path, const Pair& pair, size_t count) {
    if (!xunSetConversionPath_(path)) {
        state.SkipWithError("the processor lacks this path");
        return;
    }
    std::vector<T> values(count);
    for (size_t i = 0; i < count; ++i)
        values[i] = static_cast<T>(static_cast<double>(i % 1000) * 0.25 - 100.0);
    for (auto _ : state) {
        Convert(pair.forth, values);
        Convert(pair.back, values);
        benchmark::ClobberMemory();
    }
    xunSetConversionPath_(XunConversionPath_::Auto);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(2 * count));
}

void Chosen(benchmark::State& state) {
    const XunConversionChoice_& choice = xunConversionChoice_();
    for (auto _ : state)
        benchmark::DoNotOptimize(&choice);
    state.counters["path"] = static_cast<double>(choice.path);
    state.counters["forced"] = choice.forced ? 1 : 0;
    for (const auto& speed : choice.speeds) {
        state.counters[std::string(PathName(speed.path)) + "_double_Gps"] = speed.doubles;
        state.counters[std::string(PathName(speed.path)) + "_float_Gps"] = speed.floats;
    }
    state.SetLabel(PathName(choice.path));
}

template <class T> void RegisterType(const char* type) {
    for (size_t count : {size_t{1000}, size_t{100000}})
        for (const Pair& pair : kPairs)
            for (XunConversionPath_ path : kPaths)
                benchmark::RegisterBenchmark((std::string("paths/") + type + "/" +
                                              std::to_string(count) + "/" + pair.name + "/" +
                                              PathName(path))
                                                 .c_str(),
                                             [path, &pair, count](benchmark::State& state) {
                                                 ForcedPath<T>(state, path, pair, count);
                                             })
                    ->MinTime(0.1);
}

} // namespace

void RegisterPathBenchmarks() {
    benchmark::RegisterBenchmark("paths/chosen", Chosen)->Iterations(1);
    RegisterType<double>("double");
    RegisterType<float>("float");
}

} // namespace xunbench
