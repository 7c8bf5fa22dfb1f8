// Exported conversion functions: single values and float or double arrays
// between two units of the same dimension, to and from the base unit, and to
// and from the user unit of an item type (registry/Conversion.h).
#include "capi/Api.h"
#include "registry/Conversion.h"

using namespace xun::capi;

namespace {

// The user unit of an item type (its chosen unit or its default unit, -1
// for none); 0 for an unknown item type.
int FindUserUnit(const char* function, int itemKey, int& userUnit) {
    const CKVitemType* item = ItemTypes().FindByKey(itemKey);
    if (item == nullptr)
        return UnknownItemType(function, itemKey);
    userUnit = item->GetItemUserUnit();
    return 1;
}

// The user unit -1 (an item type without user unit and allowed units) names
// no unit; the message says which item type lacks one.
int NoUserUnit(const char* function, int itemKey) {
    return xunFail_(XUN_ERR_UNKNOWN_UNIT,
                    "%s: item type %d has neither a user unit nor an allowed unit", function,
                    itemKey);
}

int ConvertOne(const char* function, int fromTag, int toTag, double* result, double value) {
    if (result == nullptr)
        return NullArgument(function, "result");
    XunConversion_ conversion;
    const int found = xunFindConversion_(Units(), fromTag, toTag, conversion);
    if (found != XUN_OK) {
        *result = value;
        return ConversionRefused(function, found, fromTag, toTag);
    }
    *result = xunConvertValue_(conversion, value);
    return 1;
}

template <class T>
int ConvertArray(const char* function, int fromTag, int toTag, T* values, int count,
                 T deleteValue) {
    XunConversion_ conversion;
    const int found = xunFindConversion_(Units(), fromTag, toTag, conversion);
    if (found != XUN_OK)
        return ConversionRefused(function, found, fromTag, toTag);
    if (values == nullptr && count > 0)
        return NullArgument(function, "values");
    if constexpr (sizeof(T) == sizeof(double))
        xunConvertArrayD_(conversion, values, count, deleteValue);
    else
        xunConvertArrayF_(conversion, values, count, deleteValue);
    return 1;
}

// An array to (toUser) or from the user unit of an item type.
template <class T>
int ConvertArrayUser(const char* function, int itemKey, int otherTag, bool toUser, T* values,
                     int count, T deleteValue) {
    return Guard(function, 0, [&] {
        int userUnit = -1;
        if (!FindUserUnit(function, itemKey, userUnit))
            return 0;
        if (userUnit == -1)
            return NoUserUnit(function, itemKey);
        return toUser ? ConvertArray(function, otherTag, userUnit, values, count, deleteValue)
                      : ConvertArray(function, userUnit, otherTag, values, count, deleteValue);
    });
}

} // namespace

extern "C" {

int xunConvertUnit(int fromTag, int toTag, double* result, double value) {
    // The common case first: it cannot throw or fail, and needs no frame.
    if (result != nullptr && xunConvertCommonCase_(Units(), fromTag, toTag, value, *result))
        return 1;
    return Guard("xunConvertUnit", 0,
                 [&] { return ConvertOne("xunConvertUnit", fromTag, toTag, result, value); });
}

int xunConvertItemArrayD(int fromTag, int toTag, double* values, int count, double deleteValue) {
    return Guard("xunConvertItemArrayD", 0, [&] {
        return ConvertArray("xunConvertItemArrayD", fromTag, toTag, values, count, deleteValue);
    });
}

int xunConvertItemArrayF(int fromTag, int toTag, float* values, int count, float deleteValue) {
    return Guard("xunConvertItemArrayF", 0, [&] {
        return ConvertArray("xunConvertItemArrayF", fromTag, toTag, values, count, deleteValue);
    });
}

int xunConvertUnitToBase(int tag, double* result, double value) {
    return Guard("xunConvertUnitToBase", 0, [&] {
        if (result == nullptr)
            return NullArgument("xunConvertUnitToBase", "result");
        const CKVunitKeyEntry* unit = Units().FindEntry(tag);
        if (unit == nullptr)
            return UnknownUnit("xunConvertUnitToBase", tag);
        *result = value * unit->factor + unit->offset;
        return 1;
    });
}

int xunConvertUnitFromBase(int tag, double* result, double value) {
    return Guard("xunConvertUnitFromBase", 0, [&] {
        if (result == nullptr)
            return NullArgument("xunConvertUnitFromBase", "result");
        const CKVunitKeyEntry* unit = Units().FindEntry(tag);
        if (unit == nullptr)
            return UnknownUnit("xunConvertUnitFromBase", tag);
        *result = (value - unit->offset) / unit->factor;
        return 1;
    });
}

int xunConvertToUserUnit(int itemKey, int fromTag, double* result, double value) {
    return Guard("xunConvertToUserUnit", 0, [&] {
        int userUnit = -1;
        if (!FindUserUnit("xunConvertToUserUnit", itemKey, userUnit))
            return 0;
        if (userUnit == -1 && result != nullptr) {
            *result = value;
            return NoUserUnit("xunConvertToUserUnit", itemKey);
        }
        return ConvertOne("xunConvertToUserUnit", fromTag, userUnit, result, value);
    });
}

int xunConvertFromUserUnit(int itemKey, int toTag, double* result, double value) {
    return Guard("xunConvertFromUserUnit", 0, [&] {
        int userUnit = -1;
        if (!FindUserUnit("xunConvertFromUserUnit", itemKey, userUnit))
            return 0;
        if (userUnit == -1 && result != nullptr) {
            *result = value;
            return NoUserUnit("xunConvertFromUserUnit", itemKey);
        }
        return ConvertOne("xunConvertFromUserUnit", userUnit, toTag, result, value);
    });
}

int xunConvertItemArrayToUserUnitD(int itemKey, int fromTag, double* values, int count,
                                   double deleteValue) {
    return ConvertArrayUser("xunConvertItemArrayToUserUnitD", itemKey, fromTag, true, values, count,
                            deleteValue);
}

int xunConvertItemArrayToUserUnitF(int itemKey, int fromTag, float* values, int count,
                                   float deleteValue) {
    return ConvertArrayUser("xunConvertItemArrayToUserUnitF", itemKey, fromTag, true, values, count,
                            deleteValue);
}

int xunConvertItemArrayFromUserUnitD(int itemKey, int toTag, double* values, int count,
                                     double deleteValue) {
    return ConvertArrayUser("xunConvertItemArrayFromUserUnitD", itemKey, toTag, false, values,
                            count, deleteValue);
}

int xunConvertItemArrayFromUserUnitF(int itemKey, int toTag, float* values, int count,
                                     float deleteValue) {
    return ConvertArrayUser("xunConvertItemArrayFromUserUnitF", itemKey, toTag, false, values,
                            count, deleteValue);
}

} // extern "C"
