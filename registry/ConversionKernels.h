// The array conversion loops, in several instruction-set variants chosen at
// run time. Internal: not part of the exported interface.
//
// Every variant computes, for each element x that is below or above the
// delete value, ((x * f1 + o1) - o2) / f2 in double precision in this order,
// and stores it (rounded to float for float arrays); every other element
// (equal to the delete value, or NaN, or every element when the delete value
// is NaN) is left as it is. All variants give the same bits as that stepwise
// evaluation. They differ only in how fast they get there:
//   Baseline          SSE2 (every x86-64 processor), true division.
//   Avx2, Avx512      wider vectors, true division.
//   Avx2Reciprocal,   the division replaced, where it is proven to give the
//   Avx512Reciprocal  same bits, by a multiplication with the reciprocal of f2
//                     and one correction with fused multiply-adds (for float
//                     arrays the product alone, proven to round to the same
//                     float); a true division for every element it does not
//                     cover.
// In every variant a divisor f2 that is a power of two with a normal
// reciprocal is replaced by a multiplication with that exact reciprocal
// (the same value, rounded once, in every floating-point environment).
#pragma once

// The instruction-set variants of the array loops.
enum class XunConversionPath_ {
    Auto,     // the default: Avx512Reciprocal, else Avx2, else Baseline
    Baseline, // SSE2
    Avx2,     // AVX2
    Avx2Reciprocal,
    Avx512, // AVX-512 F and VL
    Avx512Reciprocal,
};

// Whether the processor can run the variant (Auto and Baseline: always).
bool xunConversionPathSupported_(XunConversionPath_ path);

// Selects the variant the array conversions use from now on; Auto returns to
// the automatic choice. A variant the processor does not support is ignored
// (the current choice stays) and false is returned. For tests and
// benchmarks; must not be called while conversions run on other threads.
bool xunSetConversionPath_(XunConversionPath_ path);

// The variant the array conversions use (never Auto).
XunConversionPath_ xunConversionPathInUse_();

// The factors and offsets of a unit-to-unit conversion.
struct XunConversion_ {
    double fromFactor;
    double fromOffset;
    double toOffset;
    double toFactor;
};

// Converts count elements in place (count < 1: nothing), as described above.
void xunConvertArrayD_(const XunConversion_& conversion, double* values, int count,
                       double deleteValue);
void xunConvertArrayF_(const XunConversion_& conversion, float* values, int count,
                       float deleteValue);
