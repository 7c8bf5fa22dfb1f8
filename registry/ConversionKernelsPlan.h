// What the array conversion loops share between the selection
// (ConversionKernels.cpp) and the loops of each instruction set
// (ConversionKernelsSse2/Avx2/Avx512.cpp). Internal; see docs/kernels.md.
#pragma once

#include <cstddef>

// How a call divides by the target factor f2 (MakePlan in
// ConversionKernels.cpp).
enum class XunDivision_ {
    Divide,   // a true division of every element
    Multiply, // a multiplication by the exact reciprocal of a power of two
    // Float arrays in the default floating-point environment only: the
    // product with the rounded reciprocal, narrowed to float, wherever it is
    // proven to give the float of the rounded quotient; every vector with a
    // lane not proven is divided (docs/kernels.md).
    FloatProduct,
};

// The per-call constants of a conversion.
struct XunArrayPlan_ {
    double f1;
    double o1;
    double o2;
    double f2;
    double y; // 1 / f2: exact (Multiply), rounded and normal (FloatProduct)
    XunDivision_ division;
};

// The loops of one instruction set: they convert count >= 1 elements in place
// by the plan, leaving every element that is not below or above the delete
// value (a number, never NaN) as it is.
struct XunArrayLoops_ {
    void (*doubles)(const XunArrayPlan_& plan, double* values, size_t count, double deleteValue);
    void (*floats)(const XunArrayPlan_& plan, float* values, size_t count, float deleteValue);
};

// The loops of each instruction set. The AVX2 and AVX-512 ones may only run
// where the processor has those instruction sets.
extern const XunArrayLoops_ xunSse2Loops_;
extern const XunArrayLoops_ xunAvx2Loops_;
extern const XunArrayLoops_ xunAvx512Loops_;
