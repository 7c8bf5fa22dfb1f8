// The array conversion loops (see ConversionKernels.h).
//
// Per call one plan is made: how to divide by the target factor f2.
//   Divide      a true division of every element.
//   Multiply    f2 is a power of two whose reciprocal is a normal double:
//               a / f2 and a * (1 / f2) are the same exact value rounded
//               once, in every rounding mode and for every a (zeros,
//               infinities, NaN, results that overflow or are subnormal
//               included); under flush-to-zero and denormals-are-zero both
//               see the same (normal) operands and flush the same result.
//   Reciprocal  (the two Reciprocal variants) each quotient is computed with
//               the reciprocal y = 1 / f2 and one correction step with fused
//               multiply-adds (Markstein's method):
//                 q0 = a * y,  r = fma(-q0, f2, a),  q = fma(r, y, q0),
//               and then proven equal to the rounded quotient, element by
//               element, by its remainder (Avx2Reciprocal below); an element
//               whose proof fails is divided after all. The proof assumes
//               nothing of the values, so it also covers every input the
//               method itself cannot (infinities, NaN, overflow, subnormal
//               results): those simply fail it. Only used while the
//               floating-point environment is the default one (round to
//               nearest, no flush-to-zero, no denormals-are-zero). The
//               AVX-512 loop sends every third vector to the divider
//               instead, which works beside the units the method keeps busy.
//               Float arrays need less: only the float that the rounded
//               quotient rounds to. There q0 = a * y alone is rounded to
//               float and proven to be that float by its distance from q0
//               (Avx2ReciprocalToFloat below), which saves the correction.
//
// The vector loops compute the conversion for every lane and store only the
// lanes to convert (a masked store, or a select that writes the other lanes
// back unchanged). Lanes not stored may raise floating-point exception flags
// that the stepwise evaluation would not; the library never reads those
// flags, and it does not support hosts that enable floating-point traps.
//
// Large arrays are streamed with a software prefetch some way ahead of the
// loop, one per 64-byte line: the loops are then bounded by memory bandwidth,
// and the prefetch keeps that bandwidth used across page boundaries, where
// the hardware prefetchers stop.
#include "registry/ConversionKernels.h"

#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <immintrin.h>

namespace {

enum class Division { Divide, Multiply, Reciprocal };

struct Plan {
    double f1;
    double o1;
    double o2;
    double f2;
    double y;         // 1 / f2 (exact for Multiply, rounded for Reciprocal)
    double halfUlpF2; // |f2| * 2^-53 (Reciprocal)
    Division division;
};

// Arrays from this size on are prefetched; the distance is how far ahead.
const size_t kPrefetchFromBytes = 256 * 1024;
const size_t kPrefetchAheadBytes = 2048;

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

// Round to nearest, no flush-to-zero, no denormals-are-zero (the MXCSR bits
// 13-14, 15 and 6 all clear).
bool DefaultEnvironment() {
    return (_mm_getcsr() & 0xE040u) == 0;
}

Plan MakePlan(const XunConversion_& c, bool reciprocalPath) {
    Plan plan{c.fromFactor, c.fromOffset, c.toOffset, c.toFactor, 0.0, 0.0, Division::Divide};
    if (HasExactReciprocal(c.toFactor)) {
        plan.division = Division::Multiply;
        plan.y = 1.0 / c.toFactor;
    } else if (reciprocalPath && DefaultEnvironment() && std::fabs(c.toFactor) >= 0x1p-960 &&
               std::fabs(c.toFactor) <= 0x1p1020) {
        // A finite f2 and a normal y: zeros then come out of the method
        // correctly signed (see Avx2Reciprocal), and y is 1 / f2 within a
        // relative 2^-53 (see Avx2ReciprocalToFloat). |f2| >= 2^-960 keeps
        // |f2| * 2^-53 exact, as the proof of the double quotient needs.
        plan.division = Division::Reciprocal;
        plan.y = 1.0 / c.toFactor;
        plan.halfUlpF2 = std::fabs(c.toFactor) * 0x1p-53;
    }
    return plan;
}

// The stepwise evaluation, for the elements before and after the vector
// loops. Markstein's method gives the bits of the division, so the Reciprocal
// plan divides here.
template <class T> void ScalarLoop(const Plan& p, T* values, size_t count, T deleteValue) {
    for (size_t i = 0; i < count; ++i) {
        const T x = values[i];
        if (x < deleteValue || x > deleteValue) {
            const double a = (static_cast<double>(x) * p.f1 + p.o1) - p.o2;
            values[i] = static_cast<T>(p.division == Division::Multiply ? a * p.y : a / p.f2);
        }
    }
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

// ---------------------------------------------------------------------------
// Baseline: SSE2, two doubles per vector. Divide and Multiply only.

struct Sse2Constants {
    __m128d f1, o1, o2, f2, y, deleteValue;
    explicit Sse2Constants(const Plan& p, double del)
        : f1(_mm_set1_pd(p.f1)), o1(_mm_set1_pd(p.o1)), o2(_mm_set1_pd(p.o2)),
          f2(_mm_set1_pd(p.f2)), y(_mm_set1_pd(p.y)), deleteValue(_mm_set1_pd(del)) {}
};

template <Division D> inline __m128d Sse2Convert(const Sse2Constants& k, __m128d x) {
    const __m128d a = _mm_sub_pd(_mm_add_pd(_mm_mul_pd(x, k.f1), k.o1), k.o2);
    return D == Division::Multiply ? _mm_mul_pd(a, k.y) : _mm_div_pd(a, k.f2);
}

inline __m128d Sse2Select(__m128d convert, __m128d converted, __m128d original) {
    return _mm_or_pd(_mm_and_pd(convert, converted), _mm_andnot_pd(convert, original));
}

template <Division D> inline void Sse2StepD(const Sse2Constants& k, double* at) {
    const __m128d x = _mm_loadu_pd(at);
    // Below or above: false for equal and for NaN on either side.
    const __m128d convert =
        _mm_or_pd(_mm_cmplt_pd(x, k.deleteValue), _mm_cmpgt_pd(x, k.deleteValue));
    _mm_storeu_pd(at, Sse2Select(convert, Sse2Convert<D>(k, x), x));
}

template <Division D> inline void Sse2StepF(const Sse2Constants& k, __m128 deleteValue, float* at) {
    const __m128 x = _mm_loadu_ps(at);
    const __m128 convert = _mm_or_ps(_mm_cmplt_ps(x, deleteValue), _mm_cmpgt_ps(x, deleteValue));
    const __m128d low = Sse2Convert<D>(k, _mm_cvtps_pd(x));
    const __m128d high = Sse2Convert<D>(k, _mm_cvtps_pd(_mm_movehl_ps(x, x)));
    const __m128 converted = _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
    _mm_storeu_ps(at, _mm_or_ps(_mm_and_ps(convert, converted), _mm_andnot_ps(convert, x)));
}

template <Division D, bool Prefetch>
void Sse2LoopD(const Plan& p, double* values, size_t count, double deleteValue) {
    const Sse2Constants k(p, deleteValue);
    size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        if (Prefetch)
            _mm_prefetch(reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes,
                         _MM_HINT_T0);
        Sse2StepD<D>(k, values + i);
        Sse2StepD<D>(k, values + i + 2);
        Sse2StepD<D>(k, values + i + 4);
        Sse2StepD<D>(k, values + i + 6);
    }
    ScalarLoop(p, values + i, count - i, deleteValue);
}

template <Division D, bool Prefetch>
void Sse2LoopF(const Plan& p, float* values, size_t count, float deleteValue) {
    const Sse2Constants k(p, deleteValue);
    const __m128 del = _mm_set1_ps(deleteValue);
    size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        if (Prefetch)
            _mm_prefetch(reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes,
                         _MM_HINT_T0);
        Sse2StepF<D>(k, del, values + i);
        Sse2StepF<D>(k, del, values + i + 4);
        Sse2StepF<D>(k, del, values + i + 8);
        Sse2StepF<D>(k, del, values + i + 12);
    }
    ScalarLoop(p, values + i, count - i, deleteValue);
}

// ---------------------------------------------------------------------------
// AVX2 (with FMA): four doubles per vector.

#define XUN_AVX2 __attribute__((target("avx2,fma")))

struct Avx2Constants {
    __m256d f1, o1, o2, f2, y, deleteValue, sign, exponentAndSign, halfUlpF2, exponent,
        floatHalfGap;
    __m256i one;
};

// The exponent bits of a double, and 2^-24 * (1 - 2^-23): see
// Avx2ReciprocalToFloat.
const uint64_t kExponentBits = 0x7FF0000000000000ull;
const double kFloatHalfGap = 0x1p-24 - 0x1p-47;

XUN_AVX2 inline Avx2Constants MakeAvx2Constants(const Plan& p, double del) {
    Avx2Constants k;
    k.f1 = _mm256_set1_pd(p.f1);
    k.o1 = _mm256_set1_pd(p.o1);
    k.o2 = _mm256_set1_pd(p.o2);
    k.f2 = _mm256_set1_pd(p.f2);
    k.y = _mm256_set1_pd(p.y);
    k.deleteValue = _mm256_set1_pd(del);
    k.sign = _mm256_set1_pd(-0.0);
    k.exponentAndSign =
        _mm256_castsi256_pd(_mm256_set1_epi64x(static_cast<long long>(0xFFF0000000000000ull)));
    k.halfUlpF2 = _mm256_set1_pd(p.halfUlpF2);
    k.exponent = _mm256_castsi256_pd(_mm256_set1_epi64x(static_cast<long long>(kExponentBits)));
    k.floatHalfGap = _mm256_set1_pd(kFloatHalfGap);
    k.one = _mm256_set1_epi64x(1);
    return k;
}

// The reciprocal step and its proof. Let g be the gap between |q| and the
// next double towards zero, pred(|q|): g = ulp(pred(|q|)) = 2^(e - 52) for
// the exponent e of pred(|q|), and the gap on the other side is g or 2g. So
// q is the rounded quotient a / f2 when
//   |a - f2 q| < g / 2 * |f2| = 2^e * (|f2| * 2^-53).
// Both sides are computed rounded once from their exact values: the
// remainder by the fused multiply-add, the bound as 2^e (the exponent bits of
// pred(|q|), one integer subtraction from the bits of |q|) times the per-call
// constant |f2| * 2^-53 (exact: the plan makes sure of that). Rounding is
// monotonic, so when the rounded remainder is below the rounded bound, the
// exact remainder is below the exact bound: the proof. For a subnormal
// pred(|q|) the bound is 0, and for q = +-0 the subtraction borrows into the
// sign and the bound is negative: never proven; an infinite or NaN q gives
// an infinite or NaN remainder: never proven. A zero a is proven separately:
// q0 = a * y is then the correctly signed zero (y is finite and nonzero), the
// correction adds +0, and q takes q0's sign (for a nonzero quotient the two
// signs agree anyway). Elements without a proof are divided.
XUN_AVX2 inline __m256d Avx2Reciprocal(const Avx2Constants& k, __m256d a, __m256d convert) {
    const __m256d q0 = _mm256_mul_pd(a, k.y);
    const __m256d r = _mm256_fnmadd_pd(q0, k.f2, a);
    __m256d q = _mm256_fmadd_pd(r, k.y, q0);
    q = _mm256_or_pd(q, _mm256_and_pd(q0, k.sign));
    const __m256i pred = _mm256_sub_epi64(_mm256_castpd_si256(_mm256_andnot_pd(k.sign, q)), k.one);
    const __m256d bound =
        _mm256_mul_pd(_mm256_and_pd(_mm256_castsi256_pd(pred), k.exponentAndSign), k.halfUlpF2);
    const __m256d remainder = _mm256_andnot_pd(k.sign, _mm256_fnmadd_pd(q, k.f2, a));
    const __m256d proven = _mm256_or_pd(_mm256_cmp_pd(remainder, bound, _CMP_LT_OQ),
                                        _mm256_cmp_pd(a, _mm256_setzero_pd(), _CMP_EQ_OQ));
    const __m256d unproven = _mm256_andnot_pd(proven, convert);
    if (!_mm256_testz_pd(unproven, unproven))
        q = _mm256_blendv_pd(q, _mm256_div_pd(a, k.f2), unproven);
    return q;
}

// The float result without the rounded double quotient D = a / f2 itself.
// q0 = a * y is within |q0| * 2^-51 of D: y = 1 / f2 and the product are
// each rounded once with a relative error of at most 2^-53 (y is normal,
// the plan makes sure of that, and so is q0 wherever the proof below can
// hold), and D is within a relative 2^-53 of a / f2. Let f be q0 rounded to
// float and 2^E the power of two at or below |q0| (the exponent bits of q0
// alone). Then f is the float that D rounds to when
//   |q0 - f| < 2^(E - 24) * (1 - 2^-23):
// D lies within |q0 - f| + 2^(E - 49) of f, which is then below 2^(E - 24),
// half the gap between f and its neighbour on D's side (for f in the same
// binade as q0 both gaps are 2^(E - 23); for f a power of two either q0
// lies below f, E is one less and the smaller gap under f is 2^(E - 23), or
// q0 lies at or above f and D cannot fall under f's lower midpoint), so D
// rounds to f strictly, without a tie. Both sides are exact: f lies within a
// factor of two of q0, so the subtraction is exact, and the bound is a
// power of two times a 24-bit constant. Where floats are subnormal the gaps
// are larger than the bound assumes (still a proof); a zero or subnormal q0
// gives the bound 0, an infinite or NaN q0 a NaN distance, and a q0 beyond
// the range of floats an infinite f: none is proven. Unproven elements are
// divided and then rounded to float.
XUN_AVX2 inline __m128 Avx2ReciprocalToFloat(const Avx2Constants& k, __m256d a, __m256d convert) {
    const __m256d q0 = _mm256_mul_pd(a, k.y);
    const __m128 f = _mm256_cvtpd_ps(q0);
    const __m256d back = _mm256_cvtps_pd(f);
    const __m256d distance = _mm256_andnot_pd(k.sign, _mm256_sub_pd(q0, back));
    const __m256d bound = _mm256_mul_pd(_mm256_and_pd(q0, k.exponent), k.floatHalfGap);
    const __m256d unproven = _mm256_andnot_pd(_mm256_cmp_pd(distance, bound, _CMP_LT_OQ), convert);
    if (!_mm256_testz_pd(unproven, unproven))
        return _mm256_cvtpd_ps(_mm256_blendv_pd(back, _mm256_div_pd(a, k.f2), unproven));
    return f;
}

// a = (x * f1 + o1) - o2, each step rounded.
XUN_AVX2 inline __m256d Avx2Dividend(const Avx2Constants& k, __m256d x) {
    return _mm256_sub_pd(_mm256_add_pd(_mm256_mul_pd(x, k.f1), k.o1), k.o2);
}

template <Division D>
XUN_AVX2 inline __m256d Avx2Convert(const Avx2Constants& k, __m256d x, __m256d convert) {
    const __m256d a = Avx2Dividend(k, x);
    if constexpr (D == Division::Multiply)
        return _mm256_mul_pd(a, k.y);
    else if constexpr (D == Division::Reciprocal)
        return Avx2Reciprocal(k, a, convert);
    else
        return _mm256_div_pd(a, k.f2);
}

template <Division D> XUN_AVX2 inline void Avx2StepD(const Avx2Constants& k, double* at) {
    const __m256d x = _mm256_loadu_pd(at);
    const __m256d convert = _mm256_cmp_pd(x, k.deleteValue, _CMP_NEQ_OQ);
    _mm256_storeu_pd(at, _mm256_blendv_pd(x, Avx2Convert<D>(k, x, convert), convert));
}

template <Division D>
XUN_AVX2 inline void Avx2StepF(const Avx2Constants& k, __m256 deleteValue, float* at) {
    const __m256 x = _mm256_loadu_ps(at);
    const __m256d low = _mm256_cvtps_pd(_mm256_castps256_ps128(x));
    const __m256d high = _mm256_cvtps_pd(_mm256_extractf128_ps(x, 1));
    // Widening is exact, so the comparisons in double precision decide as
    // the one in single precision.
    const __m256d convertLow = _mm256_cmp_pd(low, k.deleteValue, _CMP_NEQ_OQ);
    const __m256d convertHigh = _mm256_cmp_pd(high, k.deleteValue, _CMP_NEQ_OQ);
    __m128 convertedLow, convertedHigh;
    if constexpr (D == Division::Reciprocal) {
        convertedLow = Avx2ReciprocalToFloat(k, Avx2Dividend(k, low), convertLow);
        convertedHigh = Avx2ReciprocalToFloat(k, Avx2Dividend(k, high), convertHigh);
    } else {
        convertedLow = _mm256_cvtpd_ps(Avx2Convert<D>(k, low, convertLow));
        convertedHigh = _mm256_cvtpd_ps(Avx2Convert<D>(k, high, convertHigh));
    }
    const __m256 converted = _mm256_set_m128(convertedHigh, convertedLow);
    const __m256 convert = _mm256_cmp_ps(x, deleteValue, _CMP_NEQ_OQ);
    _mm256_storeu_ps(at, _mm256_blendv_ps(x, converted, convert));
}

template <Division D, bool Prefetch>
XUN_AVX2 void Avx2LoopD(const Plan& p, double* values, size_t count, double deleteValue) {
    const Avx2Constants k = MakeAvx2Constants(p, deleteValue);
    size_t i = ElementsToAlignment(values, count, 32);
    ScalarLoop(p, values, i, deleteValue);
    for (; i + 8 <= count; i += 8) {
        if (Prefetch)
            _mm_prefetch(reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes,
                         _MM_HINT_T0);
        Avx2StepD<D>(k, values + i);
        Avx2StepD<D>(k, values + i + 4);
    }
    if (i + 4 <= count) {
        Avx2StepD<D>(k, values + i);
        i += 4;
    }
    ScalarLoop(p, values + i, count - i, deleteValue);
}

template <Division D, bool Prefetch>
XUN_AVX2 void Avx2LoopF(const Plan& p, float* values, size_t count, float deleteValue) {
    const Avx2Constants k = MakeAvx2Constants(p, deleteValue);
    const __m256 del = _mm256_set1_ps(deleteValue);
    size_t i = ElementsToAlignment(values, count, 32);
    ScalarLoop(p, values, i, deleteValue);
    for (; i + 16 <= count; i += 16) {
        if (Prefetch)
            _mm_prefetch(reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes,
                         _MM_HINT_T0);
        Avx2StepF<D>(k, del, values + i);
        Avx2StepF<D>(k, del, values + i + 8);
    }
    if (i + 8 <= count) {
        Avx2StepF<D>(k, del, values + i);
        i += 8;
    }
    ScalarLoop(p, values + i, count - i, deleteValue);
}

// ---------------------------------------------------------------------------
// AVX-512 (F and VL): eight doubles per vector; masked loads and stores for
// the delete value and for the ends of the array.

#define XUN_AVX512 __attribute__((target("avx512f,avx512vl,avx512dq,avx2,fma")))

struct Avx512Constants {
    __m512d f1, o1, o2, f2, y, deleteValue, halfUlpF2, floatHalfGap;
    __m512i sign, one, exponentAndSign, exponent;
};

XUN_AVX512 inline Avx512Constants MakeAvx512Constants(const Plan& p, double del) {
    Avx512Constants k;
    k.f1 = _mm512_set1_pd(p.f1);
    k.o1 = _mm512_set1_pd(p.o1);
    k.o2 = _mm512_set1_pd(p.o2);
    k.f2 = _mm512_set1_pd(p.f2);
    k.y = _mm512_set1_pd(p.y);
    k.deleteValue = _mm512_set1_pd(del);
    k.halfUlpF2 = _mm512_set1_pd(p.halfUlpF2);
    k.sign = _mm512_set1_epi64(static_cast<long long>(0x8000000000000000ull));
    k.one = _mm512_set1_epi64(1);
    k.exponentAndSign = _mm512_set1_epi64(static_cast<long long>(0xFFF0000000000000ull));
    k.exponent = _mm512_set1_epi64(static_cast<long long>(kExponentBits));
    k.floatHalfGap = _mm512_set1_pd(kFloatHalfGap);
    return k;
}

// As Avx2Reciprocal.
XUN_AVX512 inline __m512d Avx512Reciprocal(const Avx512Constants& k, __m512d a, __mmask8 convert) {
    const __m512d q0 = _mm512_mul_pd(a, k.y);
    const __m512d r = _mm512_fnmadd_pd(q0, k.f2, a);
    // q | (q0 & sign)
    const __m512d q = _mm512_castsi512_pd(_mm512_ternarylogic_epi64(
        _mm512_castpd_si512(_mm512_fmadd_pd(r, k.y, q0)), _mm512_castpd_si512(q0), k.sign, 0xF8));
    const __m512i pred = _mm512_sub_epi64(_mm512_castpd_si512(_mm512_abs_pd(q)), k.one);
    const __m512d bound =
        _mm512_mul_pd(_mm512_castsi512_pd(_mm512_and_si512(pred, k.exponentAndSign)), k.halfUlpF2);
    const __m512d remainder = _mm512_abs_pd(_mm512_fnmadd_pd(q, k.f2, a));
    const __mmask8 proven = _kor_mask8(_mm512_cmp_pd_mask(remainder, bound, _CMP_LT_OQ),
                                       _mm512_cmp_pd_mask(a, _mm512_setzero_pd(), _CMP_EQ_OQ));
    const __mmask8 unproven = _kandn_mask8(proven, convert);
    if (!_ktestz_mask8_u8(unproven, unproven))
        return _mm512_mask_div_pd(q, unproven, a, k.f2);
    return q;
}

// As Avx2ReciprocalToFloat.
XUN_AVX512 inline __m256 Avx512ReciprocalToFloat(const Avx512Constants& k, __m512d a,
                                                 __mmask8 convert) {
    const __m512d q0 = _mm512_mul_pd(a, k.y);
    const __m256 f = _mm512_maskz_cvtpd_ps(0xFF, q0);
    const __m512d distance = _mm512_abs_pd(_mm512_sub_pd(q0, _mm512_maskz_cvtps_pd(0xFF, f)));
    const __m512d bound = _mm512_mul_pd(
        _mm512_castsi512_pd(_mm512_and_si512(_mm512_castpd_si512(q0), k.exponent)), k.floatHalfGap);
    // Not below the bound, NaN included.
    const __mmask8 unproven = _mm512_mask_cmp_pd_mask(convert, distance, bound, _CMP_NLT_UQ);
    if (unproven != 0)
        return _mm512_mask_cvtpd_ps(f, unproven, _mm512_div_pd(a, k.f2));
    return f;
}

// a = (x * f1 + o1) - o2, each step rounded.
XUN_AVX512 inline __m512d Avx512Dividend(const Avx512Constants& k, __m512d x) {
    return _mm512_sub_pd(_mm512_add_pd(_mm512_mul_pd(x, k.f1), k.o1), k.o2);
}

template <Division D>
XUN_AVX512 inline __m512d Avx512Convert(const Avx512Constants& k, __m512d x, __mmask8 convert) {
    const __m512d a = Avx512Dividend(k, x);
    if constexpr (D == Division::Multiply)
        return _mm512_mul_pd(a, k.y);
    else if constexpr (D == Division::Reciprocal)
        return Avx512Reciprocal(k, a, convert);
    else
        return _mm512_div_pd(a, k.f2);
}

// lanes: the elements of the vector that belong to the array.
template <Division D>
XUN_AVX512 inline void Avx512StepD(const Avx512Constants& k, double* at, __mmask8 lanes) {
    const __m512d x = _mm512_maskz_loadu_pd(lanes, at);
    const __mmask8 convert = _mm512_mask_cmp_pd_mask(lanes, x, k.deleteValue, _CMP_NEQ_OQ);
    _mm512_mask_storeu_pd(at, convert, Avx512Convert<D>(k, x, convert));
}

template <Division D>
XUN_AVX512 inline void Avx512StepF(const Avx512Constants& k, float* at, __mmask8 lanes) {
    // (The zero-masking forms of the two conversions, with every lane set,
    // are the plain conversions without GCC's undefined-source placeholder.)
    const __m512d x = _mm512_maskz_cvtps_pd(0xFF, _mm256_maskz_loadu_ps(lanes, at));
    const __mmask8 convert = _mm512_mask_cmp_pd_mask(lanes, x, k.deleteValue, _CMP_NEQ_OQ);
    if constexpr (D == Division::Reciprocal)
        _mm256_mask_storeu_ps(at, convert,
                              Avx512ReciprocalToFloat(k, Avx512Dividend(k, x), convert));
    else
        _mm256_mask_storeu_ps(at, convert,
                              _mm512_maskz_cvtpd_ps(0xFF, Avx512Convert<D>(k, x, convert)));
}

XUN_AVX512 inline __mmask8 FirstLanes(size_t n) {
    return static_cast<__mmask8>((1u << n) - 1u);
}

template <Division D, bool Prefetch>
XUN_AVX512 void Avx512LoopD(const Plan& p, double* values, size_t count, double deleteValue) {
    const Avx512Constants k = MakeAvx512Constants(p, deleteValue);
    // A partial first vector up to a 64-byte boundary, so that no load or
    // store of the main loop spans two cache lines.
    size_t i = ElementsToAlignment(values, count, 64);
    if (i > 0)
        Avx512StepD<D>(k, values, FirstLanes(i));
    if constexpr (D == Division::Reciprocal) {
        // Two vectors by the reciprocal, every third by the divider, which
        // works beside the units the reciprocal keeps busy.
        for (; i + 24 <= count; i += 24) {
            if (Prefetch) {
                const char* ahead = reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes;
                _mm_prefetch(ahead, _MM_HINT_T0);
                _mm_prefetch(ahead + 64, _MM_HINT_T0);
                _mm_prefetch(ahead + 128, _MM_HINT_T0);
            }
            Avx512StepD<Division::Reciprocal>(k, values + i, 0xFF);
            Avx512StepD<Division::Reciprocal>(k, values + i + 8, 0xFF);
            Avx512StepD<Division::Divide>(k, values + i + 16, 0xFF);
        }
    }
    for (; i + 8 <= count; i += 8) {
        if (Prefetch)
            _mm_prefetch(reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes,
                         _MM_HINT_T0);
        Avx512StepD<D>(k, values + i, 0xFF);
    }
    if (i < count)
        Avx512StepD<D>(k, values + i, FirstLanes(count - i));
}

template <Division D, bool Prefetch>
XUN_AVX512 void Avx512LoopF(const Plan& p, float* values, size_t count, float deleteValue) {
    const Avx512Constants k = MakeAvx512Constants(p, deleteValue);
    size_t i = ElementsToAlignment(values, count, 32);
    if (i > 0)
        Avx512StepF<D>(k, values, FirstLanes(i));
    if constexpr (D == Division::Reciprocal) {
        // As in Avx512LoopD, but every second vector: the conversions
        // between float and double make the reciprocal's share dearer.
        for (; i + 16 <= count; i += 16) {
            if (Prefetch)
                _mm_prefetch(reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes,
                             _MM_HINT_T0);
            Avx512StepF<Division::Reciprocal>(k, values + i, 0xFF);
            Avx512StepF<Division::Divide>(k, values + i + 8, 0xFF);
        }
    }
    for (; i + 16 <= count; i += 16) {
        if (Prefetch)
            _mm_prefetch(reinterpret_cast<const char*>(values + i) + kPrefetchAheadBytes,
                         _MM_HINT_T0);
        Avx512StepF<D>(k, values + i, 0xFF);
        Avx512StepF<D>(k, values + i + 8, 0xFF);
    }
    for (; i < count; i += 8)
        Avx512StepF<D>(k, values + i, FirstLanes(count - i < 8 ? count - i : 8));
}

// ---------------------------------------------------------------------------
// Selection.

// What the processor offers, asked once (thread-safe static initialisation).
struct CpuFeatures {
    bool avx2 = false;   // AVX2 and FMA
    bool avx512 = false; // and AVX-512 F, VL and DQ
    CpuFeatures() {
        __builtin_cpu_init();
        avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
        avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
                 __builtin_cpu_supports("avx512dq");
    }
};

const CpuFeatures& Cpu() {
    static const CpuFeatures features;
    return features;
}

bool CpuHasAvx2() {
    return Cpu().avx2;
}

bool CpuHasAvx512() {
    return Cpu().avx512;
}

XunConversionPath_ BestPath() {
    // The AVX2 reciprocal variant is slower than AVX2 division where it was
    // measured (a processor with AVX-512, whose 256-bit units it runs on), so
    // without AVX-512 the choice is AVX2 division.
    static const XunConversionPath_ best = CpuHasAvx512() ? XunConversionPath_::Avx512Reciprocal
                                           : CpuHasAvx2() ? XunConversionPath_::Avx2
                                                          : XunConversionPath_::Baseline;
    return best;
}

// The variant forced by xunSetConversionPath_ (Auto: none).
std::atomic<XunConversionPath_> ForcedPath_{XunConversionPath_::Auto};

XunConversionPath_ CurrentPath() {
    const XunConversionPath_ forced = ForcedPath_.load(std::memory_order_relaxed);
    return forced == XunConversionPath_::Auto ? BestPath() : forced;
}

// Runs Loop<Division, Prefetch> for the plan.
template <template <Division, bool> class Loop, class T>
void Run(const Plan& plan, T* values, size_t count, T deleteValue) {
    const bool prefetch = count * sizeof(T) >= kPrefetchFromBytes;
    switch (plan.division) {
    case Division::Multiply:
        prefetch ? Loop<Division::Multiply, true>::Call(plan, values, count, deleteValue)
                 : Loop<Division::Multiply, false>::Call(plan, values, count, deleteValue);
        break;
    case Division::Reciprocal:
        prefetch ? Loop<Division::Reciprocal, true>::Call(plan, values, count, deleteValue)
                 : Loop<Division::Reciprocal, false>::Call(plan, values, count, deleteValue);
        break;
    case Division::Divide:
        prefetch ? Loop<Division::Divide, true>::Call(plan, values, count, deleteValue)
                 : Loop<Division::Divide, false>::Call(plan, values, count, deleteValue);
        break;
    }
}

// The loops as class templates, so that Run can take them as parameters.
// The baseline has no Reciprocal plan (MakePlan never makes one for it).
template <Division D, bool P> struct Sse2D {
    static void Call(const Plan& p, double* v, size_t n, double d) {
        Sse2LoopD<D == Division::Reciprocal ? Division::Divide : D, P>(p, v, n, d);
    }
};
template <Division D, bool P> struct Sse2F {
    static void Call(const Plan& p, float* v, size_t n, float d) {
        Sse2LoopF<D == Division::Reciprocal ? Division::Divide : D, P>(p, v, n, d);
    }
};
template <Division D, bool P> struct Avx2D {
    static void Call(const Plan& p, double* v, size_t n, double d) { Avx2LoopD<D, P>(p, v, n, d); }
};
template <Division D, bool P> struct Avx2F {
    static void Call(const Plan& p, float* v, size_t n, float d) { Avx2LoopF<D, P>(p, v, n, d); }
};
template <Division D, bool P> struct Avx512D {
    static void Call(const Plan& p, double* v, size_t n, double d) {
        Avx512LoopD<D, P>(p, v, n, d);
    }
};
template <Division D, bool P> struct Avx512F {
    static void Call(const Plan& p, float* v, size_t n, float d) { Avx512LoopF<D, P>(p, v, n, d); }
};

bool IsReciprocal(XunConversionPath_ path) {
    return path == XunConversionPath_::Avx2Reciprocal ||
           path == XunConversionPath_::Avx512Reciprocal;
}

} // namespace

bool xunConversionPathSupported_(XunConversionPath_ path) {
    switch (path) {
    case XunConversionPath_::Auto:
    case XunConversionPath_::Baseline:
        return true;
    case XunConversionPath_::Avx2:
    case XunConversionPath_::Avx2Reciprocal:
        return CpuHasAvx2();
    case XunConversionPath_::Avx512:
    case XunConversionPath_::Avx512Reciprocal:
        return CpuHasAvx512();
    }
    return false;
}

bool xunSetConversionPath_(XunConversionPath_ path) {
    if (!xunConversionPathSupported_(path))
        return false;
    ForcedPath_.store(path, std::memory_order_relaxed);
    return true;
}

XunConversionPath_ xunConversionPathInUse_() {
    return CurrentPath();
}

namespace {

// Converts with the loops of the variant in use: Wide, Avx2 and Baseline are
// the AVX-512, AVX2 and SSE2 loops for the element type T.
template <template <Division, bool> class Wide, template <Division, bool> class Avx2,
          template <Division, bool> class Baseline, class T>
void ConvertArray(const XunConversion_& conversion, T* values, int count, T deleteValue) {
    // No element compares below or above a NaN delete value: nothing to do.
    if (count < 1 || deleteValue != deleteValue)
        return;
    const XunConversionPath_ path = CurrentPath();
    const Plan plan = MakePlan(conversion, IsReciprocal(path));
    const size_t n = static_cast<size_t>(count);
    switch (path) {
    case XunConversionPath_::Avx512:
    case XunConversionPath_::Avx512Reciprocal:
        Run<Wide>(plan, values, n, deleteValue);
        break;
    case XunConversionPath_::Avx2:
    case XunConversionPath_::Avx2Reciprocal:
        Run<Avx2>(plan, values, n, deleteValue);
        break;
    default:
        Run<Baseline>(plan, values, n, deleteValue);
        break;
    }
}

} // namespace

void xunConvertArrayD_(const XunConversion_& conversion, double* values, int count,
                       double deleteValue) {
    ConvertArray<Avx512D, Avx2D, Sse2D>(conversion, values, count, deleteValue);
}

void xunConvertArrayF_(const XunConversion_& conversion, float* values, int count,
                       float deleteValue) {
    ConvertArray<Avx512F, Avx2F, Sse2F>(conversion, values, count, deleteValue);
}
