// The array conversion loops (see ConversionKernels.h and docs/kernels.md):
// the plan of a call, the paths and the choice between them. The loops
// themselves are written once, for every vector width, in
// ConversionKernelsLoops.h, and compiled per instruction set in
// ConversionKernelsSse2/Avx2/Avx512.cpp.
//
// Per call one plan is made: how to divide by the target factor f2.
//   Divide      a true division of every element.
//   Multiply    f2 is a power of two whose reciprocal is a normal double:
//               a / f2 and a * (1 / f2) are the same exact value rounded
//               once, in every rounding mode and for every a (zeros,
//               infinities, NaN, results that overflow or are subnormal
//               included); under flush-to-zero and denormals-are-zero both
//               see the same (normal) operands and flush the same result.
//   FloatProduct float arrays in the default floating-point environment, f2
//               with a normal reciprocal y = 1 / f2 (rounded): a * y, narrowed
//               to float, where a check of its bits proves that it narrows
//               to the float of the rounded quotient a / f2; a vector with a
//               lane not proven is divided (docs/kernels.md has the proof).
#include "registry/ConversionKernels.h"
#include "registry/ConversionKernelsPlan.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include <xmmintrin.h>

namespace {

uint64_t Bits(double value) {
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// True when f2 is a power of two whose reciprocal is a normal double: f2 is
// normal and |f2| < 2^1023. Then 1 / f2 is exact in every rounding mode, and
// flush-to-zero and denormals-are-zero cannot change it. (The reciprocal of
// +-2^1023 is the subnormal 2^-1023: flushed to zero, or read as zero, it
// would turn every quotient into 0 or NaN; such a divisor is divided.)
bool HasExactReciprocal(double f2) {
    const uint64_t bits = Bits(f2);
    const uint64_t exponent = (bits >> 52) & 0x7FF;
    return (bits & 0xFFFFFFFFFFFFFull) == 0 && exponent != 0 && exponent < 0x7FE;
}

// True when f2 has a normal reciprocal: f2 is normal and |f2| < 2^1022, so
// that 1 / f2 rounded lies in (2^-1022, 2^1022].
bool HasNormalReciprocal(double f2) {
    const uint64_t exponent = (Bits(f2) >> 52) & 0x7FF;
    return exponent != 0 && exponent < 1023 + 1022;
}

// True when the calling thread's floating-point environment is the default
// one: rounding to nearest, neither flush-to-zero nor denormals-are-zero
// (MXCSR bits 13-14, 15 and 6 clear).
bool DefaultEnvironment() {
    return (_mm_getcsr() & 0xE040u) == 0;
}

// The plan of a call; floatProduct: the path takes the FloatProduct plan for
// float arrays where it applies.
template <class T> XunArrayPlan_ MakePlan(const XunConversion_& c, bool floatProduct) {
    XunArrayPlan_ plan{c.fromFactor, c.fromOffset, c.toOffset,
                       c.toFactor,   0.0,          XunDivision_::Divide};
    if (HasExactReciprocal(c.toFactor)) {
        plan.division = XunDivision_::Multiply;
        plan.y = 1.0 / c.toFactor;
    } else if (std::is_same_v<T, float> && floatProduct && HasNormalReciprocal(c.toFactor) &&
               DefaultEnvironment()) {
        plan.division = XunDivision_::FloatProduct;
        plan.y = 1.0 / c.toFactor; // rounded to nearest, normal
    }
    return plan;
}

// ---------------------------------------------------------------------------
// The paths.

// What the processor offers, asked once (thread-safe static initialisation).
struct CpuFeatures {
    bool avx2 = false;
    bool avx512 = false; // AVX-512 F and VL (and AVX2)
    CpuFeatures() {
        __builtin_cpu_init();
        avx2 = __builtin_cpu_supports("avx2");
        avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl");
    }
};

const CpuFeatures& Cpu() {
    static const CpuFeatures features;
    return features;
}

enum class Needs { Nothing, Avx2, Avx512 };

struct PathInfo {
    XunConversionPath_ path;
    const char* name; // for XUN_CONVERSION_PATH
    Needs needs;
    const XunArrayLoops_* loops;
    bool floatProduct; // float arrays by the FloatProduct plan where it applies
};

// Every path, the simplest first: the loops dividing, then the same loops
// with the FloatProduct plan for floats.
const PathInfo kPaths[] = {
    {XunConversionPath_::Baseline, "baseline", Needs::Nothing, &xunSse2Loops_, false},
    {XunConversionPath_::Avx2, "avx2", Needs::Avx2, &xunAvx2Loops_, false},
    {XunConversionPath_::Avx512, "avx512", Needs::Avx512, &xunAvx512Loops_, false},
    {XunConversionPath_::BaselineFloatProduct, "baseline-product", Needs::Nothing, &xunSse2Loops_,
     true},
    {XunConversionPath_::Avx2FloatProduct, "avx2-product", Needs::Avx2, &xunAvx2Loops_, true},
    {XunConversionPath_::Avx512FloatProduct, "avx512-product", Needs::Avx512, &xunAvx512Loops_,
     true},
};
const size_t kPathCount = sizeof kPaths / sizeof kPaths[0];
static_assert(kPathCount == XunConversionChoice_::kPaths, "a speed for every path");

const PathInfo* Find(XunConversionPath_ path) {
    for (const PathInfo& info : kPaths)
        if (info.path == path)
            return &info;
    return nullptr;
}

bool Supported(const PathInfo& info) {
    switch (info.needs) {
    case Needs::Nothing:
        return true;
    case Needs::Avx2:
        return Cpu().avx2;
    case Needs::Avx512:
        return Cpu().avx512;
    }
    return false;
}

// The automatic choice, made once per process at the first array conversion
// (or the first question about it). The environment variable
// XUN_CONVERSION_PATH may name a supported path (the names of kPaths);
// otherwise every supported path is timed converting a small block that
// stays in the first-level cache, and the fastest is kept. A path must beat
// the earlier (simpler) one kept so far by more than kTieMargin: ties keep
// the simplest.
const double kTieMargin = 0.02;
const size_t kTimedElements = 1024; // 8 KB of doubles, 4 KB of floats
const int kTimedRounds = 9;         // the median of these rounds counts
const int kTimedPasses = 2;         // forth and back, this often per round

const PathInfo* PathNamed(const char* name) {
    if (name == nullptr)
        return nullptr;
    for (const PathInfo& info : kPaths)
        if (std::strcmp(name, info.name) == 0)
            return &info;
    return nullptr;
}

// Nanoseconds of one round of converting the block by the path, forth and
// back kTimedPasses times (foot and inch: both ways a true division, as most
// conversions are; in the caller's floating-point environment, as the
// conversions that follow).
template <class T> struct TimedBlock {
    alignas(64) T values[kTimedElements];
    TimedBlock() {
        for (size_t i = 0; i < kTimedElements; ++i)
            values[i] = static_cast<T>(static_cast<double>(i % 97) * 1.25 - 40.0);
    }
    double Pass(const PathInfo& info) {
        const XunArrayLoops_& loops = *info.loops;
        const XunArrayPlan_ forth =
            MakePlan<T>(XunConversion_{0.3048, 0.0, 0.0, 0.0254}, info.floatProduct);
        const XunArrayPlan_ back =
            MakePlan<T>(XunConversion_{0.0254, 0.0, 0.0, 0.3048}, info.floatProduct);
        const auto start = std::chrono::steady_clock::now();
        for (int pass = 0; pass < kTimedPasses; ++pass) {
            if constexpr (std::is_same_v<T, double>) {
                loops.doubles(forth, values, kTimedElements, -9999.0);
                loops.doubles(back, values, kTimedElements, -9999.0);
            } else {
                loops.floats(forth, values, kTimedElements, -9999.0f);
                loops.floats(back, values, kTimedElements, -9999.0f);
            }
        }
        const auto end = std::chrono::steady_clock::now();
        return std::chrono::duration<double, std::nano>(end - start).count();
    }
};

XunConversionChoice_ Choose() {
    XunConversionChoice_ choice{};
    for (size_t i = 0; i < kPathCount; ++i)
        choice.speeds[i].path = kPaths[i].path;
    if (const PathInfo* named = PathNamed(std::getenv("XUN_CONVERSION_PATH"))) {
        if (Supported(*named)) {
            choice.path = named->path;
            choice.forced = true;
            return choice;
        }
    }
    // The timing raises floating-point exception flags (inexact); the host's
    // flags, and its whole environment, are put back afterwards.
    const unsigned environment = _mm_getcsr();
    TimedBlock<double> doubles;
    TimedBlock<float> floats;
    double timesDoubles[kPathCount][kTimedRounds], timesFloats[kPathCount][kTimedRounds];
    for (int round = -1; round < kTimedRounds; ++round) {
        for (size_t i = 0; i < kPathCount; ++i) {
            if (!Supported(kPaths[i]))
                continue;
            // (The FloatProduct paths convert doubles as the dividing ones:
            // their doubles are timed once, below.)
            const double d = kPaths[i].floatProduct ? 0.0 : doubles.Pass(kPaths[i]);
            const double f = floats.Pass(kPaths[i]);
            if (round < 0)
                continue; // warming up (caches, the upper halves of the vector units)
            timesDoubles[i][round] = d;
            timesFloats[i][round] = f;
        }
    }
    // The median round of each: robust against rounds that another program
    // interrupted and against single rounds that ran unusually fast.
    double bestDoubles[kPathCount], bestFloats[kPathCount];
    for (size_t i = 0; i < kPathCount; ++i) {
        bestDoubles[i] = bestFloats[i] = 0.0;
        if (!Supported(kPaths[i]))
            continue;
        std::nth_element(timesDoubles[i], timesDoubles[i] + kTimedRounds / 2,
                         timesDoubles[i] + kTimedRounds);
        std::nth_element(timesFloats[i], timesFloats[i] + kTimedRounds / 2,
                         timesFloats[i] + kTimedRounds);
        bestDoubles[i] = timesDoubles[i][kTimedRounds / 2];
        bestFloats[i] = timesFloats[i][kTimedRounds / 2];
    }
    for (size_t i = 0; i < kPathCount; ++i)
        if (kPaths[i].floatProduct)
            for (size_t j = 0; j < kPathCount; ++j)
                if (!kPaths[j].floatProduct && kPaths[j].loops == kPaths[i].loops)
                    bestDoubles[i] = bestDoubles[j];
    _mm_setcsr(environment);
    const double elements = 2.0 * kTimedPasses * kTimedElements;
    size_t chosen = 0;
    for (size_t i = 0; i < kPathCount; ++i) {
        if (!Supported(kPaths[i]))
            continue;
        // Elements per nanosecond: G elements per second (a clock that did
        // not advance counts as one nanosecond).
        choice.speeds[i].doubles = elements / std::max(bestDoubles[i], 1.0);
        choice.speeds[i].floats = elements / std::max(bestFloats[i], 1.0);
        const double time = bestDoubles[i] + bestFloats[i];
        if (i > 0 && time < (bestDoubles[chosen] + bestFloats[chosen]) * (1.0 - kTieMargin))
            chosen = i;
    }
    choice.path = kPaths[chosen].path;
    return choice;
}

const XunConversionChoice_& Choice() {
    static const XunConversionChoice_ choice = Choose();
    return choice;
}

const PathInfo& BestPath() {
    static const PathInfo* const best = Find(Choice().path);
    return *best;
}

// The path forced by xunSetConversionPath_ (null: none).
std::atomic<const PathInfo*> ForcedPath_{nullptr};

const PathInfo& CurrentPath() {
    const PathInfo* forced = ForcedPath_.load(std::memory_order_relaxed);
    return forced != nullptr ? *forced : BestPath();
}

template <class T>
void ConvertArray(const XunConversion_& conversion, T* values, int count, T deleteValue) {
    // No element compares below or above a NaN delete value: nothing to do.
    if (count < 1 || deleteValue != deleteValue)
        return;
    const PathInfo& path = CurrentPath();
    const XunArrayLoops_& loops = *path.loops;
    const XunArrayPlan_ plan = MakePlan<T>(conversion, path.floatProduct);
    if constexpr (std::is_same_v<T, double>)
        loops.doubles(plan, values, static_cast<size_t>(count), deleteValue);
    else
        loops.floats(plan, values, static_cast<size_t>(count), deleteValue);
}

} // namespace

bool xunConversionPathSupported_(XunConversionPath_ path) {
    if (path == XunConversionPath_::Auto)
        return true;
    const PathInfo* info = Find(path);
    return info != nullptr && Supported(*info);
}

bool xunSetConversionPath_(XunConversionPath_ path) {
    if (!xunConversionPathSupported_(path))
        return false;
    ForcedPath_.store(path == XunConversionPath_::Auto ? nullptr : Find(path),
                      std::memory_order_relaxed);
    return true;
}

XunConversionPath_ xunConversionPathInUse_() {
    return CurrentPath().path;
}

const XunConversionChoice_& xunConversionChoice_() {
    return Choice();
}

void xunConvertArrayD_(const XunConversion_& conversion, double* values, int count,
                       double deleteValue) {
    ConvertArray(conversion, values, count, deleteValue);
}

void xunConvertArrayF_(const XunConversion_& conversion, float* values, int count,
                       float deleteValue) {
    ConvertArray(conversion, values, count, deleteValue);
}
