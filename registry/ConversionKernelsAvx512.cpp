// The array conversion loops for AVX-512 (F and VL), and its vector traits
// for ConversionKernelsLoops.h: eight doubles per vector, mask registers for
// the delete value and for partial vectors (masked loads and stores).
// Everything below the pragma is compiled for AVX-512 and runs only after the
// processor was checked for it (ConversionKernels.cpp); the library as a
// whole stays baseline x86-64. The headers that the loops use come first,
// outside the pragma.
#include "registry/ConversionKernelsPlan.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include <immintrin.h>

// GCC takes the target as a pragma; clang (the fuzz build) as an attribute
// applied to every function declared up to the matching pop.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512vl"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512vl")
#endif

#include "registry/ConversionKernelsLoops.h"

namespace {

struct Avx512 {
    static constexpr size_t kLanes = 8;
    using D = __m512d;
    using F = __m256;
    using M = __mmask8;

    static D Set(double v) { return _mm512_set1_pd(v); }
    static F Set(float v) { return _mm256_set1_ps(v); }
    static D Add(D a, D b) { return _mm512_add_pd(a, b); }
    static D Sub(D a, D b) { return _mm512_sub_pd(a, b); }
    static D Mul(D a, D b) { return _mm512_mul_pd(a, b); }
    static D Div(D a, D b) { return _mm512_div_pd(a, b); }
    static M BelowOrAbove(D x, D del) { return _mm512_cmp_pd_mask(x, del, _CMP_NEQ_OQ); }
    static M BelowOrAbove(F x, F del) { return _mm256_cmp_ps_mask(x, del, _CMP_NEQ_OQ); }

    // (The zero-masking forms of the two conversions, with every lane set,
    // are the plain conversions without GCC's undefined-source placeholder.)
    static D Widen(D x) { return x; }
    static D Widen(F x) { return _mm512_maskz_cvtps_pd(0xFF, x); }
    static F Narrow(D x) { return _mm512_maskz_cvtpd_ps(0xFF, x); }

    // The FloatProduct plan's check (ConversionKernelsLoops.h).
    static bool NarrowsAsQuotient(D q, M convert) {
        const D magnitude = _mm512_abs_pd(q);
        const M normal = _mm512_mask_cmp_pd_mask(
            _mm512_cmp_pd_mask(magnitude, Set(kFloatNormalFrom), _CMP_GE_OQ), magnitude,
            Set(kFloatNormalTo), _CMP_LT_OQ);
        const M tiny = _mm512_cmp_pd_mask(magnitude, Set(kTiny), _CMP_LT_OQ);
        const __m512i below = _mm512_and_si512(
            _mm512_sub_epi64(_mm512_castpd_si512(q), _mm512_set1_epi64(static_cast<long long>(
                                                         kMidpointBits - kNearMidpoint))),
            _mm512_set1_epi64(static_cast<long long>(kBelowFloatBits)));
        const M far = _mm512_mask_cmpgt_epu64_mask(
            normal, below, _mm512_set1_epi64(static_cast<long long>(2 * kNearMidpoint)));
        return (convert & static_cast<M>(~(far | tiny))) == 0;
    }

    static M FirstLanes(size_t n) { return static_cast<M>((1u << n) - 1u); }

    static D Load(const double* at, AllLanes) { return _mm512_loadu_pd(at); }
    static D Load(const double* at, size_t n) { return _mm512_maskz_loadu_pd(FirstLanes(n), at); }
    static void Store(double* at, M convert, D converted, D, AllLanes) {
        _mm512_mask_storeu_pd(at, convert, converted);
    }
    static void Store(double* at, M convert, D converted, D, size_t n) {
        _mm512_mask_storeu_pd(at, static_cast<M>(convert & FirstLanes(n)), converted);
    }

    static F Load(const float* at, AllLanes) { return _mm256_loadu_ps(at); }
    static F Load(const float* at, size_t n) { return _mm256_maskz_loadu_ps(FirstLanes(n), at); }
    static void Store(float* at, M convert, F converted, F, AllLanes) {
        _mm256_mask_storeu_ps(at, convert, converted);
    }
    static void Store(float* at, M convert, F converted, F, size_t n) {
        _mm256_mask_storeu_ps(at, static_cast<M>(convert & FirstLanes(n)), converted);
    }
};

} // namespace

const XunArrayLoops_ xunAvx512Loops_ = LoopsOf<Avx512>();

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
