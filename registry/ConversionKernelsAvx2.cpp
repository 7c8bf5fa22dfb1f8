// The array conversion loops for AVX2, and its vector traits for
// ConversionKernelsLoops.h: four doubles per vector. Everything below the
// pragma is compiled for AVX2 and runs only after the processor was checked
// for it (ConversionKernels.cpp); the library as a whole stays baseline
// x86-64. The headers that the loops use come first, outside the pragma.
#include "registry/ConversionKernelsPlan.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include <immintrin.h>

// GCC takes the target as a pragma; clang (the fuzz build) as an attribute
// applied to every function declared up to the matching pop.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif

#include "registry/ConversionKernelsLoops.h"

namespace {

struct Avx2 {
    static constexpr size_t kLanes = 4;
    using D = __m256d;
    using F = __m128;
    using M = __m256d;

    static D Set(double v) { return _mm256_set1_pd(v); }
    static F Set(float v) { return _mm_set1_ps(v); }
    static D Add(D a, D b) { return _mm256_add_pd(a, b); }
    static D Sub(D a, D b) { return _mm256_sub_pd(a, b); }
    static D Mul(D a, D b) { return _mm256_mul_pd(a, b); }
    static D Div(D a, D b) { return _mm256_div_pd(a, b); }
    static M BelowOrAbove(D x, D del) { return _mm256_cmp_pd(x, del, _CMP_NEQ_OQ); }
    static __m128 BelowOrAbove(F x, F del) { return _mm_cmp_ps(x, del, _CMP_NEQ_OQ); }
    static D Select(M m, D a, D b) { return _mm256_blendv_pd(b, a, m); }

    static D Widen(D x) { return x; }
    static D Widen(F x) { return _mm256_cvtps_pd(x); }
    static F Narrow(D x) { return _mm256_cvtpd_ps(x); }

    // The FloatProduct plan's check (ConversionKernelsLoops.h). The bits below
    // float precision are below 2^29, so a signed comparison sees them right.
    static bool NarrowsAsQuotient(D q, __m128 convert) {
        const D magnitude = _mm256_andnot_pd(_mm256_set1_pd(-0.0), q);
        const D normal = _mm256_and_pd(_mm256_cmp_pd(magnitude, Set(kFloatNormalFrom), _CMP_GE_OQ),
                                       _mm256_cmp_pd(magnitude, Set(kFloatNormalTo), _CMP_LT_OQ));
        const D tiny = _mm256_cmp_pd(magnitude, Set(kTiny), _CMP_LT_OQ);
        const __m256i below = _mm256_and_si256(
            _mm256_sub_epi64(_mm256_castpd_si256(q), _mm256_set1_epi64x(static_cast<long long>(
                                                         kMidpointBits - kNearMidpoint))),
            _mm256_set1_epi64x(static_cast<long long>(kBelowFloatBits)));
        const __m256i far = _mm256_cmpgt_epi64(
            below, _mm256_set1_epi64x(static_cast<long long>(2 * kNearMidpoint)));
        const D proven = _mm256_or_pd(_mm256_and_pd(normal, _mm256_castsi256_pd(far)), tiny);
        return (_mm_movemask_ps(convert) & ~_mm256_movemask_pd(proven)) == 0;
    }

    // The first n lanes, for the masked loads and stores of partial vectors
    // (which do not touch the other lanes' memory).
    static __m256i FirstLanes(size_t n) {
        return _mm256_cmpgt_epi64(_mm256_set1_epi64x(static_cast<long long>(n)),
                                  _mm256_setr_epi64x(0, 1, 2, 3));
    }
    static __m128i FirstFloatLanes(size_t n) {
        return _mm_cmpgt_epi32(_mm_set1_epi32(static_cast<int>(n)), _mm_setr_epi32(0, 1, 2, 3));
    }
    static D Load(const double* at, AllLanes) { return _mm256_loadu_pd(at); }
    static D Load(const double* at, size_t n) { return _mm256_maskload_pd(at, FirstLanes(n)); }
    static void Store(double* at, M convert, D converted, D original, AllLanes) {
        _mm256_storeu_pd(at, Select(convert, converted, original));
    }
    static void Store(double* at, M convert, D converted, D, size_t n) {
        _mm256_maskstore_pd(at, _mm256_and_si256(_mm256_castpd_si256(convert), FirstLanes(n)),
                            converted);
    }

    static F Load(const float* at, AllLanes) { return _mm_loadu_ps(at); }
    static F Load(const float* at, size_t n) { return _mm_maskload_ps(at, FirstFloatLanes(n)); }
    static void Store(float* at, __m128 convert, F converted, F original, AllLanes) {
        _mm_storeu_ps(at, _mm_blendv_ps(original, converted, convert));
    }
    static void Store(float* at, __m128 convert, F converted, F, size_t n) {
        _mm_maskstore_ps(at, _mm_and_si128(_mm_castps_si128(convert), FirstFloatLanes(n)),
                         converted);
    }
};

} // namespace

const XunArrayLoops_ xunAvx2Loops_ = LoopsOf<Avx2>();

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
