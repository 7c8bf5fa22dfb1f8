// Value conversion over a unit registry: finding the factors and offsets of
// a unit-to-unit conversion, and converting single values and arrays.
//
// Every conversion is evaluated in double precision in one fixed order -
// multiply by the source factor, add the source offset, subtract the target
// offset, divide by the target factor - with nothing precomputed, so that
// each result equals this stepwise evaluation bit for bit. The library is
// built with -ffp-contract=off, so no multiply and add are ever fused. The
// array loops (registry/ConversionKernels.h) reach the same bits faster.
//
// Nothing here writes anything but the caller's outputs: after loading, any
// number of threads may convert at once.
#pragma once

#include "registry/ConversionKernels.h"
#include "registry/Registries.h"
#include "xun.h"

// Whether the units of two key entries have equal dimensions, as
// CKVunit::IsEqv decides. The invariant checks that IsEqv makes held when
// the units were registered (else the entry says so and they are made now).
inline bool xunSameDimension_(const CKVunitKeyEntry& from, const CKVunitKeyEntry& to) {
    if (from.dimensionClass == kUncheckedUnit || to.dimensionClass == kUncheckedUnit)
        return from.unit->GetDim().IsEqv(to.unit->GetDim());
    return from.dimensionClass == to.dimensionClass && from.dimensionClass != kNoDimensionClass;
}

// The factors and offsets of the conversion between two units: both
// registered with non-zero keys and of the same dimension. XUN_OK,
// XUN_ERR_UNKNOWN_UNIT, XUN_ERR_NO_REAL_UNIT or XUN_ERR_DIMENSION.
inline int xunFindConversion_(const CKVunitRegistry& units, long fromTag, long toTag,
                              XunConversion_& conversion) {
    const CKVunitKeyEntry* from = units.FindEntry(fromTag);
    const CKVunitKeyEntry* to = units.FindEntry(toTag);
    if (from == nullptr || to == nullptr)
        return XUN_ERR_UNKNOWN_UNIT;
    if (fromTag == 0 || toTag == 0)
        return XUN_ERR_NO_REAL_UNIT;
    if (!xunSameDimension_(*from, *to))
        return XUN_ERR_DIMENSION;
    conversion.fromFactor = from->factor;
    conversion.fromOffset = from->offset;
    conversion.toOffset = to->offset;
    conversion.toFactor = to->factor;
    return XUN_OK;
}

// ((x * f1 + o1) - o2) / f2, in this order.
inline double xunConvertValue_(const XunConversion_& c, double x) {
    return ((x * c.fromFactor + c.fromOffset) - c.toOffset) / c.toFactor;
}

// The common case of xunFindConversion_ and xunConvertValue_ together, for
// the single-value functions: when both units are registered with non-zero
// keys and have the same known dimension class, stores the converted value
// and returns true. Returns false, and stores nothing, in every other case
// (also ones that xunFindConversion_ accepts after checking the units'
// dimensions themselves); the caller then goes the whole way. It calls
// nothing, so that the common path of a conversion needs no stack frame.
inline bool xunConvertCommonCase_(const CKVunitRegistry& units, long fromTag, long toTag,
                                  double value, double& result) noexcept {
    const CKVunitKeyEntry* from = units.FindEntry(fromTag);
    const CKVunitKeyEntry* to = units.FindEntry(toTag);
    if (from == nullptr || to == nullptr || fromTag == 0 || toTag == 0 ||
        from->dimensionClass != to->dimensionClass || from->dimensionClass < 0)
        return false;
    result = ((value * from->factor + from->offset) - to->offset) / to->factor;
    return true;
}
