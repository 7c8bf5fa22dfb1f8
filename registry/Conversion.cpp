// Exported conversion functions: single values and float or double arrays
// between two units of the same dimension, to and from the base unit, and to
// and from the user unit of an item type.
//
// Every conversion is evaluated in double precision in one fixed order -
// multiply by the source factor, add the source offset, subtract the target
// offset, divide by the target factor - with nothing precomputed, so that each
// result equals this stepwise evaluation bit for bit. The library is built
// with -ffp-contract=off, so no multiply and add are ever fused. The array
// loops (registry/ConversionKernels.cpp) reach the same bits faster.
//
// Nothing here writes anything but the caller's outputs: after loading, any
// number of threads may convert at once.
#include "registry/ConversionKernels.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/UnitRegistry.h"
#include "xun.h"

namespace {

// The factors and offsets of a unit-to-unit conversion, copied out of the
// units so that the array loops see plain locals that no store can change.
struct Conversion : XunConversion_ {
    double Apply(double x) const { return ((x * fromFactor + fromOffset) - toOffset) / toFactor; }
};

// Whether the units of two key entries have equal dimensions, as
// CKVunit::IsEqv decides. The invariant checks that IsEqv makes held when the
// units were registered (else the entry says so and they are made now), and
// nothing they check changes afterwards.
bool SameDimension(const CKVunitKeyEntry& from, const CKVunitKeyEntry& to) {
    if (from.dimensionClass == kUncheckedUnit || to.dimensionClass == kUncheckedUnit)
        return from.unit->GetDim().IsEqv(to.unit->GetDim());
    return from.dimensionClass == to.dimensionClass && from.dimensionClass != kNoDimensionClass;
}

// Both units registered with non-zero keys and of the same dimension. The
// key index holds copies of what is needed (registry/UnitRegistry.h).
bool FindConversion(int fromTag, int toTag, Conversion& conversion) {
    const CKVunitKeyEntry* from = xunFindUnitEntryByKey_(fromTag);
    const CKVunitKeyEntry* to = xunFindUnitEntryByKey_(toTag);
    if (from == nullptr || to == nullptr || fromTag == 0 || toTag == 0 ||
        !SameDimension(*from, *to))
        return false;
    conversion.fromFactor = from->factor;
    conversion.fromOffset = from->offset;
    conversion.toOffset = to->offset;
    conversion.toFactor = to->factor;
    return true;
}

// The user unit of an item type (its chosen unit or its default unit, -1
// for none); false for an unknown item type.
bool FindUserUnit(int itemKey, int& userUnit) {
    const CKVitemType* item = xunFindItemTypeByKey_(itemKey);
    if (item == nullptr)
        return false;
    userUnit = item->GetItemUserUnit();
    return true;
}

} // namespace

extern "C" {

int xunConvertUnit(int fromTag, int toTag, double* result, double value) {
    Conversion conversion;
    if (!FindConversion(fromTag, toTag, conversion)) {
        *result = value;
        return 0;
    }
    *result = conversion.Apply(value);
    return 1;
}

int xunConvertItemArrayD(int fromTag, int toTag, double* values, int count, double deleteValue) {
    Conversion conversion;
    if (!FindConversion(fromTag, toTag, conversion))
        return 0;
    xunConvertArrayD_(conversion, values, count, deleteValue);
    return 1;
}

int xunConvertItemArrayF(int fromTag, int toTag, float* values, int count, float deleteValue) {
    Conversion conversion;
    if (!FindConversion(fromTag, toTag, conversion))
        return 0;
    xunConvertArrayF_(conversion, values, count, deleteValue);
    return 1;
}

int xunConvertUnitToBase(int tag, double* result, double value) {
    const CKVunit* unit = xunFindUnitByKey_(tag);
    if (unit == nullptr)
        return 0;
    *result = value * unit->m_dFactor + unit->m_dOffset;
    return 1;
}

int xunConvertUnitFromBase(int tag, double* result, double value) {
    const CKVunit* unit = xunFindUnitByKey_(tag);
    if (unit == nullptr)
        return 0;
    *result = (value - unit->m_dOffset) / unit->m_dFactor;
    return 1;
}

int xunConvertToUserUnit(int itemKey, int fromTag, double* result, double value) {
    int userUnit = -1;
    if (!FindUserUnit(itemKey, userUnit))
        return 0;
    return xunConvertUnit(fromTag, userUnit, result, value);
}

int xunConvertFromUserUnit(int itemKey, int toTag, double* result, double value) {
    int userUnit = -1;
    if (!FindUserUnit(itemKey, userUnit))
        return 0;
    return xunConvertUnit(userUnit, toTag, result, value);
}

int xunConvertItemArrayToUserUnitD(int itemKey, int fromTag, double* values, int count,
                                   double deleteValue) {
    int userUnit = -1;
    if (!FindUserUnit(itemKey, userUnit))
        return 0;
    return xunConvertItemArrayD(fromTag, userUnit, values, count, deleteValue);
}

int xunConvertItemArrayToUserUnitF(int itemKey, int fromTag, float* values, int count,
                                   float deleteValue) {
    int userUnit = -1;
    if (!FindUserUnit(itemKey, userUnit))
        return 0;
    return xunConvertItemArrayF(fromTag, userUnit, values, count, deleteValue);
}

int xunConvertItemArrayFromUserUnitD(int itemKey, int toTag, double* values, int count,
                                     double deleteValue) {
    int userUnit = -1;
    if (!FindUserUnit(itemKey, userUnit))
        return 0;
    return xunConvertItemArrayD(userUnit, toTag, values, count, deleteValue);
}

int xunConvertItemArrayFromUserUnitF(int itemKey, int toTag, float* values, int count,
                                     float deleteValue) {
    int userUnit = -1;
    if (!FindUserUnit(itemKey, userUnit))
        return 0;
    return xunConvertItemArrayF(userUnit, toTag, values, count, deleteValue);
}

} // extern "C"
