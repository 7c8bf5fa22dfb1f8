// The array conversion loops, written once for every vector width
// (docs/kernels.md). Internal.
//
// The loops are templates over a vector traits type S, one per instruction
// set (ConversionKernelsSse2/Avx2/Avx512.cpp): S holds every intrinsic, the
// loops hold the logic. S provides
//   kLanes              elements per vector (4 for SSE2, a pair of
//                       registers; 4 for AVX2; 8 for AVX-512)
//   D, F                a vector of kLanes doubles, of kLanes floats
//   Set(v)              v (a double or a float) in every lane of D or F
//   Add Sub Mul Div     the rounded operations on D, lane by lane
//   BelowOrAbove(x, del)   per lane of D or F: x < del or x > del (false for
//                       equal and for NaN), as a mask for Store
//   Widen(x), Narrow(x) F to D (exact; D to D: x itself), D to F (rounded)
//   NarrowsAsQuotient(q, convert)
//                       for the FloatProduct plan (floats): true when every lane
//                       of q = a * y where convert (the mask of
//                       BelowOrAbove on floats) is set passes the check that
//                       proves Narrow(q) equal to Narrow(a / f2): the
//                       magnitude of q is below 2^-151, or it lies in
//                       [2^-126, 2^128) and the 29 bits of its significand
//                       below float precision are not within kNearMidpoint
//                       of the pattern of a midpoint between floats
//                       (100...0); see docs/kernels.md
//   Load(at, lanes), Store(at, convert, converted, original, lanes)
//                       for double and float elements, where lanes is
//                       AllLanes or a count below kLanes (the first lanes;
//                       the others are not read or written). Store writes
//                       the lanes of converted where convert is set and
//                       leaves the others as they were (original is what
//                       Load gave).
//
// This header is included only by the files of the instruction sets, after
// their target pragma, so that every function here is compiled for the
// including file's instruction set. Everything is in an anonymous namespace:
// nothing compiled for a wider set can be picked by the linker for a caller
// on another path.
#pragma once

#include "registry/ConversionKernelsPlan.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include <xmmintrin.h>

namespace {

// Arrays from this size on are prefetched; the distance is how far ahead.
const size_t kPrefetchFromBytes = 256 * 1024;
const size_t kPrefetchAheadBytes = 2048;
const size_t kLineBytes = 64;

// A whole vector, as the lanes argument of Load and Store.
struct AllLanes {};

// The FloatProduct plan's check on the bits of a double q (docs/kernels.md):
// the bits of q's significand below float precision, and how close to the
// pattern of a midpoint they may come (the proof needs 7 units of the last
// place; 16 leaves a margin).
const uint64_t kBelowFloatBits = (uint64_t{1} << 29) - 1;
const uint64_t kMidpointBits = uint64_t{1} << 28;
const uint64_t kNearMidpoint = 16;
// The magnitudes (as doubles) of the range where the check applies: from
// 2^-126, the smallest normal float, up to (not including) 2^128; and below
// kTiny = 2^-151, where q and the quotient both narrow to a zero.
const double kFloatNormalFrom = 0x1p-126;
const double kFloatNormalTo = 0x1p128;
const double kTiny = 0x1p-151;

#define XUN_ALWAYS_INLINE inline __attribute__((always_inline))

// The plan's factors and offsets in every lane.
template <class S> struct Constants {
    typename S::D f1, o1, o2, f2, y;
    explicit Constants(const XunArrayPlan_& p)
        : f1(S::Set(p.f1)), o1(S::Set(p.o1)), o2(S::Set(p.o2)), f2(S::Set(p.f2)), y(S::Set(p.y)) {}
};

// ((x * f1 + o1) - o2) / f2, each step rounded; the division by the plan.
template <class S, XunDivision_ Division>
XUN_ALWAYS_INLINE typename S::D Convert(const Constants<S>& k, typename S::D x) {
    const typename S::D a = S::Sub(S::Add(S::Mul(x, k.f1), k.o1), k.o2);
    if constexpr (Division == XunDivision_::Multiply)
        return S::Mul(a, k.y);
    else
        return S::Div(a, k.f2);
}

// The FloatProduct plan for one vector of floats (see XunDivision_ and
// docs/kernels.md): q = a * y narrowed to float wherever the check proves it
// to be the float of the rounded quotient; when a lane to convert is not
// proven, the whole vector is divided instead (rare: about one element in
// 10^7 of ordinary data, and elements whose result is not a normal float and
// not zero).
template <class S, class Lanes>
XUN_ALWAYS_INLINE void StepFloatProduct(const Constants<S>& k, typename S::F del, float* at,
                                        Lanes lanes) {
    const typename S::F original = S::Load(at, lanes);
    const auto convert = S::BelowOrAbove(original, del);
    const typename S::D x = S::Widen(original);
    const typename S::D a = S::Sub(S::Add(S::Mul(x, k.f1), k.o1), k.o2);
    typename S::D q = S::Mul(a, k.y);
    if (__builtin_expect(!S::NarrowsAsQuotient(q, convert), 0))
        q = S::Div(a, k.f2);
    S::Store(at, convert, S::Narrow(q), original, lanes);
}

// Converts the lanes of one vector of elements at at; del is the delete value
// in every lane, as an element. The conversion is computed for every lane and
// stored only where the element is below or above the delete value, compared
// as elements, as the stepwise evaluation does. Lanes not stored may raise
// floating-point exception flags that the stepwise evaluation would not; the
// library never reads those flags, and it does not support hosts that enable
// floating-point traps.
template <class S, XunDivision_ Division, class T, class V, class Lanes>
XUN_ALWAYS_INLINE void Step(const Constants<S>& k, V del, T* at, Lanes lanes) {
    if constexpr (Division == XunDivision_::FloatProduct) {
        static_assert(std::is_same_v<T, float>, "the FloatProduct plan is for floats");
        StepFloatProduct<S>(k, del, at, lanes);
    } else {
        const V original = S::Load(at, lanes);
        const typename S::D converted = Convert<S, Division>(k, S::Widen(original));
        if constexpr (std::is_same_v<T, double>)
            S::Store(at, S::BelowOrAbove(original, del), converted, original, lanes);
        else
            S::Store(at, S::BelowOrAbove(original, del), S::Narrow(converted), original, lanes);
    }
}

// The vectors of one block.
template <class S, XunDivision_ Division, class T, class V, size_t... I>
XUN_ALWAYS_INLINE void Block(const Constants<S>& k, V del, T* at, std::index_sequence<I...>) {
    (Step<S, Division>(k, del, at + I * S::kLanes, AllLanes{}), ...);
}

// Elements from values up to the next multiple of alignment bytes (none when
// values is not even aligned to its element size), at most count.
template <class T> size_t ElementsToAlignment(const T* values, size_t count, size_t alignment) {
    const uintptr_t address = reinterpret_cast<uintptr_t>(values);
    if (address % sizeof(T) != 0)
        return 0;
    const size_t head = ((alignment - address % alignment) % alignment) / sizeof(T);
    return head < count ? head : count;
}

// Converts count elements: a partial vector up to the vectors' alignment (so
// that no load or store of the main loop spans two cache lines), then blocks
// of one cache line, then whole vectors, then a partial vector.
//
// Large arrays are streamed with a software prefetch some way ahead of the
// loop, one per 64-byte line: the loops are then bounded by memory bandwidth,
// and the prefetch keeps that bandwidth used across page boundaries, where the
// hardware prefetchers stop.
template <class S, XunDivision_ Division, bool Prefetch, class T>
void Loop(const XunArrayPlan_& plan, T* values, size_t count, T deleteValue) {
    const Constants<S> k(plan);
    const auto del = S::Set(deleteValue);
    constexpr size_t kVectorBytes = S::kLanes * sizeof(T);
    static_assert(kLineBytes % kVectorBytes == 0, "vectors split cache lines");
    constexpr size_t kBlockVectors = kLineBytes / kVectorBytes;
    constexpr size_t kBlock = kBlockVectors * S::kLanes;
    size_t i = ElementsToAlignment(values, count, kVectorBytes);
    if (i > 0)
        Step<S, Division>(k, del, values, i);
    for (; i + kBlock <= count; i += kBlock) {
        if constexpr (Prefetch)
            _mm_prefetch(reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes,
                         _MM_HINT_T0);
        Block<S, Division>(k, del, values + i, std::make_index_sequence<kBlockVectors>{});
    }
    for (; i + S::kLanes <= count; i += S::kLanes)
        Step<S, Division>(k, del, values + i, AllLanes{});
    if (i < count)
        Step<S, Division>(k, del, values + i, count - i);
}

// The loop for the plan and the array's size.
template <class S, class T>
void ConvertArray(const XunArrayPlan_& plan, T* values, size_t count, T deleteValue) {
    const bool prefetch = count * sizeof(T) >= kPrefetchFromBytes;
    if constexpr (std::is_same_v<T, float>) {
        if (plan.division == XunDivision_::FloatProduct) {
            prefetch ? Loop<S, XunDivision_::FloatProduct, true>(plan, values, count, deleteValue)
                     : Loop<S, XunDivision_::FloatProduct, false>(plan, values, count, deleteValue);
            return;
        }
    }
    if (plan.division == XunDivision_::Multiply)
        prefetch ? Loop<S, XunDivision_::Multiply, true>(plan, values, count, deleteValue)
                 : Loop<S, XunDivision_::Multiply, false>(plan, values, count, deleteValue);
    else
        prefetch ? Loop<S, XunDivision_::Divide, true>(plan, values, count, deleteValue)
                 : Loop<S, XunDivision_::Divide, false>(plan, values, count, deleteValue);
}

// The loop set of S.
template <class S> constexpr XunArrayLoops_ LoopsOf() {
    return XunArrayLoops_{&ConvertArray<S, double>, &ConvertArray<S, float>};
}

} // namespace
