// The array conversion loops, in several instruction-set paths chosen at run
// time. Internal: not part of the exported interface. See docs/kernels.md.
//
// Every path computes, for each element x that is below or above the delete
// value, ((x * f1 + o1) - o2) / f2 in double precision in this order, and
// stores it (rounded to float for float arrays); every other element (equal
// to the delete value, or NaN, or every element when the delete value is NaN)
// is left as it is. All paths give the same bits as that stepwise evaluation,
// in every floating-point environment. They differ only in how fast they get
// there:
//   Baseline   SSE2 (every x86-64 processor).
//   Avx2       AVX2, four doubles per vector.
//   Avx512     AVX-512 F and VL, eight doubles per vector.
//   ...FloatProduct  the same, float arrays without a division where a
//              check proves the same bits (docs/kernels.md).
// In every path a divisor f2 that is a power of two with a normal reciprocal
// is replaced by a multiplication with that exact reciprocal (the same value,
// rounded once, in every floating-point environment); every other divisor is
// divided by.
#pragma once

#include <cstddef>

// The paths of the array loops: an instruction set, and for float arrays
// how they divide.
enum class XunConversionPath_ {
    Auto,     // the default: the fastest path, measured once per process
    Baseline, // SSE2
    Avx2,     // AVX2
    Avx512,   // AVX-512 F and VL
    // The same loops, with float arrays converted by the product with the
    // rounded reciprocal of the target factor where a check of its bits
    // proves the same float (in the default floating-point environment;
    // elsewhere, and for doubles, as the paths above).
    BaselineFloatProduct,
    Avx2FloatProduct,
    Avx512FloatProduct,
};

// Whether the processor can run the path (Auto and Baseline: always).
bool xunConversionPathSupported_(XunConversionPath_ path);

// Selects the path the array conversions use from now on; Auto returns to the
// automatic choice. A path the processor does not support is ignored (the
// current choice stays) and false is returned. For tests and benchmarks; must
// not be called while conversions run on other threads.
bool xunSetConversionPath_(XunConversionPath_ path);

// The path the array conversions use (never Auto).
XunConversionPath_ xunConversionPathInUse_();

// How Auto's path was chosen, once per process, at the first array
// conversion (or the first call of this function or of
// xunConversionPathInUse_): the path named by the environment variable
// XUN_CONVERSION_PATH ("baseline", "avx2", "avx512", "baseline-product",
// "avx2-product" or "avx512-product") when the processor supports it,
// otherwise the fastest of the supported paths on a block in the first-level
// cache (a path later in the list must be 2 % faster than an earlier one).
struct XunConversionChoice_ {
    static constexpr size_t kPaths = 6;
    XunConversionPath_ path; // never Auto
    bool forced;             // named by XUN_CONVERSION_PATH, nothing timed
    // Every path, the simplest first; G elements per second on the timed
    // block, 0 where not timed (unsupported or forced).
    struct {
        XunConversionPath_ path;
        double doubles;
        double floats;
    } speeds[kPaths];
};
const XunConversionChoice_& xunConversionChoice_();

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
