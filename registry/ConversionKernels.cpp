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
#include "registry/ConversionKernels.h"
#include "registry/ConversionKernelsPlan.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

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

XunArrayPlan_ MakePlan(const XunConversion_& c) {
    XunArrayPlan_ plan{c.fromFactor, c.fromOffset, c.toOffset,
                       c.toFactor,   0.0,          XunDivision_::Divide};
    if (HasExactReciprocal(c.toFactor)) {
        plan.division = XunDivision_::Multiply;
        plan.y = 1.0 / c.toFactor;
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
    Needs needs;
    const XunArrayLoops_* loops;
};

// Every path, the simplest first.
const PathInfo kPaths[] = {
    {XunConversionPath_::Baseline, Needs::Nothing, &xunSse2Loops_},
    {XunConversionPath_::Avx2, Needs::Avx2, &xunAvx2Loops_},
    {XunConversionPath_::Avx512, Needs::Avx512, &xunAvx512Loops_},
};

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

// The automatic choice, made once: the widest supported path, the last of
// kPaths that the processor supports. Each wider path was the fastest of the
// paths its processors support where measured (docs/kernels.md); a choice by
// measuring the supported paths would go here.
const PathInfo& BestPath() {
    static const PathInfo* const best = [] {
        const PathInfo* widest = &kPaths[0];
        for (const PathInfo& info : kPaths)
            if (Supported(info))
                widest = &info;
        return widest;
    }();
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
    const XunArrayLoops_& loops = *CurrentPath().loops;
    const XunArrayPlan_ plan = MakePlan(conversion);
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

void xunConvertArrayD_(const XunConversion_& conversion, double* values, int count,
                       double deleteValue) {
    ConvertArray(conversion, values, count, deleteValue);
}

void xunConvertArrayF_(const XunConversion_& conversion, float* values, int count,
                       float deleteValue) {
    ConvertArray(conversion, values, count, deleteValue);
}
