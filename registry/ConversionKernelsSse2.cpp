// The array conversion loops for SSE2, which every x86-64 processor has, and
// its vector traits for ConversionKernelsLoops.h.
//
// A vector here is a pair of SSE2 registers: four doubles, and four floats in
// one register, so that a float vector is loaded, widened, narrowed and
// stored whole (with vectors of two doubles the float side would handle two
// floats at a time, measurably slower).
#include "registry/ConversionKernelsPlan.h"

#include <cstddef>
#include <cstdint>

#include <emmintrin.h>

#include "registry/ConversionKernelsLoops.h"

namespace {

struct Sse2 {
    static constexpr size_t kLanes = 4;
    struct D {
        __m128d lo, hi;
    };
    using F = __m128;
    using M = D;

    static D Set(double v) { return {_mm_set1_pd(v), _mm_set1_pd(v)}; }
    static F Set(float v) { return _mm_set1_ps(v); }
    static D Add(D a, D b) { return {_mm_add_pd(a.lo, b.lo), _mm_add_pd(a.hi, b.hi)}; }
    static D Sub(D a, D b) { return {_mm_sub_pd(a.lo, b.lo), _mm_sub_pd(a.hi, b.hi)}; }
    static D Mul(D a, D b) { return {_mm_mul_pd(a.lo, b.lo), _mm_mul_pd(a.hi, b.hi)}; }
    static D Div(D a, D b) { return {_mm_div_pd(a.lo, b.lo), _mm_div_pd(a.hi, b.hi)}; }
    // (cmpneq is also true for NaN.)
    static __m128d BelowOrAbove(__m128d x, __m128d del) {
        return _mm_or_pd(_mm_cmplt_pd(x, del), _mm_cmpgt_pd(x, del));
    }
    static M BelowOrAbove(D x, D del) {
        return {BelowOrAbove(x.lo, del.lo), BelowOrAbove(x.hi, del.hi)};
    }
    static __m128 BelowOrAbove(F x, F del) {
        return _mm_or_ps(_mm_cmplt_ps(x, del), _mm_cmpgt_ps(x, del));
    }
    static __m128d Select(__m128d m, __m128d a, __m128d b) {
        return _mm_or_pd(_mm_and_pd(m, a), _mm_andnot_pd(m, b));
    }
    static D Select(M m, D a, D b) { return {Select(m.lo, a.lo, b.lo), Select(m.hi, a.hi, b.hi)}; }
    static F Select(__m128 m, F a, F b) { return _mm_or_ps(_mm_and_ps(m, a), _mm_andnot_ps(m, b)); }

    static D Widen(D x) { return x; }
    static D Widen(F x) { return {_mm_cvtps_pd(x), _mm_cvtps_pd(_mm_movehl_ps(x, x))}; }
    static F Narrow(D x) { return _mm_movelh_ps(_mm_cvtpd_ps(x.lo), _mm_cvtpd_ps(x.hi)); }

    static D Load(const double* at, AllLanes) { return {_mm_loadu_pd(at), _mm_loadu_pd(at + 2)}; }
    static D Load(const double* at, size_t n) {
        return {n >= 2 ? _mm_loadu_pd(at) : _mm_load_sd(at),
                n == 3 ? _mm_load_sd(at + 2) : _mm_setzero_pd()};
    }
    static void Store(double* at, M convert, D converted, D original, AllLanes) {
        const D v = Select(convert, converted, original);
        _mm_storeu_pd(at, v.lo);
        _mm_storeu_pd(at + 2, v.hi);
    }
    static void Store(double* at, M convert, D converted, D original, size_t n) {
        const D v = Select(convert, converted, original);
        if (n >= 2)
            _mm_storeu_pd(at, v.lo);
        else
            _mm_store_sd(at, v.lo);
        if (n == 3)
            _mm_store_sd(at + 2, v.hi);
    }

    // The FloatProduct plan's check (ConversionKernelsLoops.h), as a bit per
    // lane of one register. The bits below float precision are below 2^29:
    // they and their comparison fit the low 32 bits of each lane, whose mask
    // is then copied to the high 32 bits.
    static int ProvenLanes(__m128d q) {
        const __m128d magnitude = _mm_andnot_pd(_mm_set1_pd(-0.0), q);
        const __m128d normal = _mm_and_pd(_mm_cmpge_pd(magnitude, _mm_set1_pd(kFloatNormalFrom)),
                                          _mm_cmplt_pd(magnitude, _mm_set1_pd(kFloatNormalTo)));
        const __m128d tiny = _mm_cmplt_pd(magnitude, _mm_set1_pd(kTiny));
        const __m128i below = _mm_and_si128(
            _mm_sub_epi64(_mm_castpd_si128(q),
                          _mm_set1_epi64x(static_cast<long long>(kMidpointBits - kNearMidpoint))),
            _mm_set1_epi64x(static_cast<long long>(kBelowFloatBits)));
        const __m128i far = _mm_shuffle_epi32(
            _mm_cmpgt_epi32(below, _mm_set1_epi32(static_cast<int>(2 * kNearMidpoint))),
            _MM_SHUFFLE(2, 2, 0, 0));
        return _mm_movemask_pd(_mm_or_pd(_mm_and_pd(normal, _mm_castsi128_pd(far)), tiny));
    }
    static bool NarrowsAsQuotient(D q, __m128 convert) {
        const int proven = ProvenLanes(q.lo) | (ProvenLanes(q.hi) << 2);
        return (_mm_movemask_ps(convert) & ~proven) == 0;
    }

    // Two floats, as the low half of a register.
    static F LoadTwo(const float* at) {
        return _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)));
    }
    static void StoreTwo(float* at, F v) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(at), _mm_castps_si128(v));
    }
    static F Load(const float* at, AllLanes) { return _mm_loadu_ps(at); }
    static F Load(const float* at, size_t n) {
        if (n == 1)
            return _mm_load_ss(at);
        return n == 2 ? LoadTwo(at) : _mm_movelh_ps(LoadTwo(at), _mm_load_ss(at + 2));
    }
    static void Store(float* at, __m128 convert, F converted, F original, AllLanes) {
        _mm_storeu_ps(at, Select(convert, converted, original));
    }
    static void Store(float* at, __m128 convert, F converted, F original, size_t n) {
        const F v = Select(convert, converted, original);
        if (n == 1) {
            _mm_store_ss(at, v);
            return;
        }
        StoreTwo(at, v);
        if (n == 3)
            _mm_store_ss(at + 2, _mm_movehl_ps(v, v));
    }
};

} // namespace

const XunArrayLoops_ xunSse2Loops_ = LoopsOf<Sse2>();
