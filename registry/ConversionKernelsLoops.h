// The array conversion loops, written once for every vector width
// (docs/kernels.md). Internal.
//
// The loops are templates over a vector traits type S, one per instruction
// set (ConversionKernelsSse2/Avx2/Avx512.cpp): S holds every intrinsic, the
// loops hold the logic. S provides
//   kLanes              doubles per vector (2, 4, 8)
//   kFusedMultiplyAdd   whether it has fused multiply-adds (the Reciprocal
//                       plan needs them)
//   D                   a vector of kLanes doubles
//   F                   a vector of kLanes floats
//   M                   a mask of kLanes double lanes (a vector or a mask
//                       register); BelowOrAbove(F, F) gives the same for
//                       float lanes (another type where masks are vectors)
//   Set, SetBits        a double or float, or the bits of a double, in every
//                       lane
//   Add Sub Mul Div     the rounded operations, lane by lane
//   MulAdd, NegMulAdd   a * b + c and c - a * b, rounded once
//   And Or AndNot       bitwise on D (AndNot(a, b) = ~a & b)
//   SubBits             64-bit integer subtraction of the lanes' bits
//   Less IsZero BelowOrAbove   ordered comparisons (false for NaN)
//   MaskOr MaskAndNot Any      on masks
//   Select(m, a, b)     a where m is set, else b
//   Widen, Narrow       floats to doubles (exact) and doubles to floats
//   Load(at, lanes), Store(at, convert, converted, original, lanes)
//     for double and float elements, where lanes is AllLanes or a count
//     below kLanes (the first lanes; the others are not read or written):
//     Store writes the converted lanes where convert (the mask of
//     BelowOrAbove for the element type) is set and leaves the others as
//     they were (original is what Load gave).
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

// The exponent bits of a double, with its sign, and 2^-24 * (1 - 2^-23): see
// ReciprocalQuotient and ReciprocalToFloat.
const uint64_t kSignBit = 0x8000000000000000ull;
const uint64_t kExponentBits = 0x7FF0000000000000ull;
const uint64_t kExponentAndSignBits = 0xFFF0000000000000ull;
const double kFloatHalfGap = 0x1p-24 - 0x1p-47;

// A whole vector, as the lanes argument of Load and Store.
struct AllLanes {};

#define XUN_ALWAYS_INLINE inline __attribute__((always_inline))

// The plan's constants in every lane.
template <class S> struct Constants {
    using D = typename S::D;
    D f1, o1, o2, f2, y, deleteValue, halfUlpF2, floatHalfGap;
    D sign, one, exponent, exponentAndSign; // bit patterns
    Constants(const XunArrayPlan_& p, double del)
        : f1(S::Set(p.f1)), o1(S::Set(p.o1)), o2(S::Set(p.o2)), f2(S::Set(p.f2)), y(S::Set(p.y)),
          deleteValue(S::Set(del)), halfUlpF2(S::Set(p.halfUlpF2)),
          floatHalfGap(S::Set(kFloatHalfGap)), sign(S::SetBits(kSignBit)), one(S::SetBits(1)),
          exponent(S::SetBits(kExponentBits)), exponentAndSign(S::SetBits(kExponentAndSignBits)) {}
};

// a = (x * f1 + o1) - o2, each step rounded.
template <class S>
XUN_ALWAYS_INLINE typename S::D Dividend(const Constants<S>& k, typename S::D x) {
    return S::Sub(S::Add(S::Mul(x, k.f1), k.o1), k.o2);
}

// The Reciprocal plan's quotient (Markstein's method) and its proof. With
// y = 1 / f2 rounded:
//   q0 = a * y,  r = fma(-q0, f2, a),  q = fma(r, y, q0).
// Let g be the gap between |q| and the next double towards zero, pred(|q|):
// g = ulp(pred(|q|)) = 2^(e - 52) for the exponent e of pred(|q|), and the
// gap on the other side of |q| is g or 2g. So q is the rounded quotient a / f2
// when
//   |a - f2 q| < g / 2 * |f2| = 2^e * (|f2| * 2^-53).
// Both sides are computed rounded once from their exact values: the
// remainder by a fused multiply-add, the bound as 2^e (the exponent bits of
// pred(|q|), one integer subtraction from the bits of |q|) times the per-call
// constant |f2| * 2^-53 (exact: the plan makes sure of that). Rounding is
// monotonic, so when the rounded remainder is below the rounded bound, the
// exact remainder is below the exact bound: the proof. For a subnormal
// pred(|q|) the bound is 0, and for q = +-0 the subtraction borrows into the
// sign and the bound is negative: never proven; an infinite or NaN q gives an
// infinite or NaN remainder: never proven. A zero a is proven separately:
// q0 = a * y is then the correctly signed zero (y is finite and nonzero), the
// correction adds +0, and q takes q0's sign (for a nonzero quotient the two
// signs agree anyway). The proof assumes nothing of the values, so it also
// covers every input the method itself cannot (infinities, NaN, overflow,
// subnormal results): those simply fail it. Lanes to convert without a proof
// are divided.
template <class S>
XUN_ALWAYS_INLINE typename S::D ReciprocalQuotient(const Constants<S>& k, typename S::D a,
                                                   typename S::M convert) {
    using D = typename S::D;
    const D q0 = S::Mul(a, k.y);
    const D r = S::NegMulAdd(q0, k.f2, a);
    D q = S::Or(S::MulAdd(r, k.y, q0), S::And(q0, k.sign));
    const D pred = S::SubBits(S::AndNot(k.sign, q), k.one);
    const D bound = S::Mul(S::And(pred, k.exponentAndSign), k.halfUlpF2);
    const D remainder = S::AndNot(k.sign, S::NegMulAdd(q, k.f2, a));
    const typename S::M proven = S::MaskOr(S::Less(remainder, bound), S::IsZero(a));
    const typename S::M unproven = S::MaskAndNot(proven, convert);
    if (S::Any(unproven))
        q = S::Select(unproven, S::Div(a, k.f2), q);
    return q;
}

// The Reciprocal plan for float arrays: the float that the rounded double
// quotient D = a / f2 rounds to, without D itself. q0 = a * y is within
// |q0| * 2^-51 of D: y = 1 / f2 and the product are each rounded once with a
// relative error of at most 2^-53 (y is normal, the plan makes sure of that,
// and so is q0 wherever the proof below can hold), and D is within a relative
// 2^-53 of a / f2. Let f be q0 rounded to float and 2^E the power of two at
// or below |q0| (the exponent bits of q0 alone). Then f is the float that D
// rounds to when
//   |q0 - f| < 2^(E - 24) * (1 - 2^-23):
// D lies within |q0 - f| + 2^(E - 49) of f, which is then below 2^(E - 24),
// half the gap between f and its neighbour on D's side (for f in the same
// binade as q0 both gaps are 2^(E - 23); for f a power of two either q0 lies
// below f, E is one less and the smaller gap under f is 2^(E - 23), or q0
// lies at or above f and D cannot fall under f's lower midpoint), so D rounds
// to f strictly, without a tie. Both sides are exact: f lies within a factor
// of two of q0, so the subtraction is exact, and the bound is a power of two
// times a 24-bit constant. Where floats are subnormal the gaps are larger than
// the bound assumes (still a proof); a zero or subnormal q0 gives the bound 0,
// an infinite or NaN q0 a NaN distance, and a q0 beyond the range of floats an
// infinite f: none is proven. Lanes to convert without a proof are divided
// and then rounded to float.
template <class S>
XUN_ALWAYS_INLINE typename S::F ReciprocalToFloat(const Constants<S>& k, typename S::D a,
                                                  typename S::M convert) {
    using D = typename S::D;
    const D q0 = S::Mul(a, k.y);
    const typename S::F f = S::Narrow(q0);
    const D back = S::Widen(f);
    const D distance = S::AndNot(k.sign, S::Sub(q0, back));
    const D bound = S::Mul(S::And(q0, k.exponent), k.floatHalfGap);
    const typename S::M unproven = S::MaskAndNot(S::Less(distance, bound), convert);
    if (S::Any(unproven))
        return S::Narrow(S::Select(unproven, S::Div(a, k.f2), back));
    return f;
}

// a / f2 by the plan.
template <class S, XunDivision_ Division>
XUN_ALWAYS_INLINE typename S::D Quotient(const Constants<S>& k, typename S::D a,
                                         typename S::M convert) {
    if constexpr (Division == XunDivision_::Multiply)
        return S::Mul(a, k.y);
    else if constexpr (Division == XunDivision_::Reciprocal)
        return ReciprocalQuotient(k, a, convert);
    else
        return S::Div(a, k.f2);
}

// Converts the lanes of one vector of elements at at; del is the delete value
// in every lane, as an element. The conversion is computed for every lane and
// stored only where the element is below or above the delete value (false for
// equal and for NaN), compared as elements, as the stepwise evaluation does.
// Lanes not stored may raise floating-point exception flags that the stepwise
// evaluation would not; the library never reads those flags, and it does not
// support hosts that enable floating-point traps.
template <class S, XunDivision_ Division, class T, class V, class Lanes>
XUN_ALWAYS_INLINE void Step(const Constants<S>& k, V del, T* at, Lanes lanes) {
    const V original = S::Load(at, lanes);
    const auto store = S::BelowOrAbove(original, del);
    const typename S::D x = S::Widen(original);
    // The same in double lanes, for the Reciprocal plan's fallback (for
    // double arrays the same comparison; for float arrays widening is exact,
    // so the comparison in double precision decides as the one in single).
    const typename S::M convert = S::BelowOrAbove(x, k.deleteValue);
    const typename S::D a = Dividend(k, x);
    if constexpr (std::is_same_v<T, double>)
        S::Store(at, store, Quotient<S, Division>(k, a, convert), original, lanes);
    else if constexpr (Division == XunDivision_::Reciprocal)
        S::Store(at, store, ReciprocalToFloat(k, a, convert), original, lanes);
    else
        S::Store(at, store, S::Narrow(Quotient<S, Division>(k, a, convert)), original, lanes);
}

// How the I-th vector of a block is divided: by the plan, or by the divider
// when DividerEvery says so.
template <XunDivision_ Division, size_t DividerEvery>
constexpr XunDivision_ DivisionOfVector(size_t i) {
    return DividerEvery != 0 && i % DividerEvery == DividerEvery - 1 ? XunDivision_::Divide
                                                                     : Division;
}

// The vectors of one block.
template <class S, XunDivision_ Division, size_t DividerEvery, class T, class V, size_t... I>
XUN_ALWAYS_INLINE void Block(const Constants<S>& k, V del, T* at, std::index_sequence<I...>) {
    (Step<S, DivisionOfVector<Division, DividerEvery>(I)>(k, del, at + I * S::kLanes, AllLanes{}),
     ...);
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
// of whole cache lines, then whole vectors, then a partial vector.
//
// Large arrays are streamed with a software prefetch some way ahead of the
// loop, one per 64-byte line: the loops are then bounded by memory bandwidth,
// and the prefetch keeps that bandwidth used across page boundaries, where the
// hardware prefetchers stop.
//
// DividerEvery (Reciprocal plan only): when not 0, every DividerEvery-th
// vector is divided instead, so that the divider works beside the units that
// the reciprocal keeps busy.
template <class S, XunDivision_ Division, size_t DividerEvery, bool Prefetch, class T>
void Loop(const XunArrayPlan_& plan, T* values, size_t count, T deleteValue) {
    const Constants<S> k(plan, static_cast<double>(deleteValue));
    const auto del = S::Set(deleteValue);
    constexpr size_t kVectorBytes = S::kLanes * sizeof(T);
    constexpr size_t kBlockVectors =
        (kLineBytes / kVectorBytes) * (DividerEvery != 0 ? DividerEvery : 1);
    constexpr size_t kBlock = kBlockVectors * S::kLanes;
    size_t i = ElementsToAlignment(values, count, kVectorBytes);
    if (i > 0)
        Step<S, Division>(k, del, values, i);
    for (; i + kBlock <= count; i += kBlock) {
        if constexpr (Prefetch) {
            const char* ahead = reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes;
            for (size_t line = 0; line < kBlock * sizeof(T); line += kLineBytes)
                _mm_prefetch(ahead + line, _MM_HINT_T0);
        }
        Block<S, Division, DividerEvery>(k, del, values + i,
                                         std::make_index_sequence<kBlockVectors>{});
    }
    for (; i + S::kLanes <= count; i += S::kLanes)
        Step<S, Division>(k, del, values + i, AllLanes{});
    if (i < count)
        Step<S, Division>(k, del, values + i, count - i);
}

// The loop for the plan; the Reciprocal plan only where S has fused
// multiply-adds (the plan is never made for other paths).
template <class S, size_t DividerEvery, class T>
void Convert(const XunArrayPlan_& plan, T* values, size_t count, T deleteValue) {
    const bool prefetch = count * sizeof(T) >= kPrefetchFromBytes;
    switch (plan.division) {
    case XunDivision_::Multiply:
        prefetch ? Loop<S, XunDivision_::Multiply, 0, true>(plan, values, count, deleteValue)
                 : Loop<S, XunDivision_::Multiply, 0, false>(plan, values, count, deleteValue);
        return;
    case XunDivision_::Reciprocal:
        if constexpr (S::kFusedMultiplyAdd) {
            prefetch ? Loop<S, XunDivision_::Reciprocal, DividerEvery, true>(plan, values, count,
                                                                             deleteValue)
                     : Loop<S, XunDivision_::Reciprocal, DividerEvery, false>(plan, values, count,
                                                                              deleteValue);
            return;
        }
        break;
    case XunDivision_::Divide:
        break;
    }
    prefetch ? Loop<S, XunDivision_::Divide, 0, true>(plan, values, count, deleteValue)
             : Loop<S, XunDivision_::Divide, 0, false>(plan, values, count, deleteValue);
}

// The loop set of S; DoubleEvery and FloatEvery are the DividerEvery of the
// Reciprocal plan for double and float arrays.
template <class S, size_t DoubleEvery, size_t FloatEvery> constexpr XunArrayLoops_ LoopsOf() {
    return XunArrayLoops_{&Convert<S, DoubleEvery, double>, &Convert<S, FloatEvery, float>};
}

} // namespace
