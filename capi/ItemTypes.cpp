// Exported item-type functions: creation at run time, lookups, the allowed
// units, the user unit and the filter mask.
#include "capi/Api.h"
#include "registry/ItemTypeQueries.h"

using namespace xun::capi;

namespace {

// Finds the item type of key for function; records the failure otherwise.
template <class Body> int WithItemType(const char* function, int key, Body body) {
    return Guard(function, 0, [&] {
        CKVitemType* item = ItemTypes().FindByKey(key);
        if (item == nullptr)
            return UnknownItemType(function, key);
        return body(*item);
    });
}

template <class Text>
int ItemText(const char* function, int key, const char** out, const char* name, Text text) {
    if (out == nullptr)
        return Guard(function, 0, [&] { return NullArgument(function, name); });
    return WithItemType(function, key, [&](CKVitemType& item) {
        *out = text(item);
        return 1;
    });
}

int UserUnitRefused(const char* function, int result, int key, int unitTag) {
    switch (result) {
    case XUN_ERR_UNKNOWN_ITEM_TYPE:
        return UnknownItemType(function, key);
    case XUN_ERR_UNKNOWN_UNIT:
        return UnknownUnit(function, unitTag);
    case XUN_ERR_NO_REAL_UNIT:
        return xunFail_(result, "%s: the unit of key 0 cannot be a user unit", function);
    default: {
        const CKVitemType* item = ItemTypes().FindByKey(key);
        return xunFail_(
            result, "%s: unit %s cannot be the user unit of item type %d (dimension %s)", function,
            UnitText(*Units().FindByKey(unitTag)).c_str(), key,
            item->m_pDimension != nullptr ? xunDimensionText_(*item->m_pDimension).c_str()
                                          : "none");
    }
    }
}

} // namespace

extern "C" {

int xunItemTypeGetAll(char** list) {
    return Guard("xunItemTypeGetAll", 0,
                 [&] { return JoinIdents("xunItemTypeGetAll", ItemTypes(), "item types", list); });
}

int xunItemTypeNew(const char* ident, const char* keyText, long reserved, const char* unitIdent) {
    (void)reserved;
    RequireText(ident);
    RequireText(keyText);
    RequireText(unitIdent);
    return Guard("xunItemTypeNew", 0, [&] {
        const int result = xunCreateItemType_(Registries(), ident, keyText, unitIdent);
        switch (result) {
        case XUN_OK:
            return 1;
        case XUN_ERR_UNKNOWN_UNIT:
            return xunFail_(result, "xunItemTypeNew: no unit has the ident '%s'", unitIdent);
        case XUN_ERR_TAKEN:
            return xunFail_(result, "xunItemTypeNew: the ident '%s' is already registered", ident);
        default:
            return xunFail_(result, "xunItemTypeNew: no key is left for a new item type");
        }
    });
}

int xunGetItemTypeCount(void) {
    return static_cast<int>(ItemTypes().Count());
}

int xunGetItemTypeSeq(int seq, int* key, const char** keyText) {
    return Guard("xunGetItemTypeSeq", 0, [&] {
        if (key == nullptr)
            return NullArgument("xunGetItemTypeSeq", "key");
        if (keyText == nullptr)
            return NullArgument("xunGetItemTypeSeq", "keyText");
        if (seq < 1 || static_cast<size_t>(seq) > ItemTypes().Count())
            return xunFail_(XUN_ERR_RANGE, "xunGetItemTypeSeq: %d is not in 1..%zu", seq,
                            ItemTypes().Count());
        const CKVitemType* item = ItemTypes().At(static_cast<size_t>(seq - 1));
        *key = static_cast<int>(item->m_nNumId);
        *keyText = item->m_strKey.c_str();
        return 1;
    });
}

int xunGetItemTypeIdent(int key, const char** ident) {
    return ItemText("xunGetItemTypeIdent", key, ident, "ident",
                    [](const CKVitemType& item) { return item.m_strIdent.c_str(); });
}

int xunGetItemTypeKey(int key, const char** keyText) {
    return ItemText("xunGetItemTypeKey", key, keyText, "keyText",
                    [](const CKVitemType& item) { return item.m_strKey.c_str(); });
}

int xunGetItemTypeKeyFromIdent(const char* ident, int* key) {
    return Guard("xunGetItemTypeKeyFromIdent", 0, [&] {
        if (ident == nullptr)
            return NullArgument("xunGetItemTypeKeyFromIdent", "ident");
        if (key == nullptr)
            return NullArgument("xunGetItemTypeKeyFromIdent", "key");
        const CKVitemType* item = ItemTypes().FindByIdent(ident);
        if (item == nullptr)
            return xunFail_(XUN_ERR_UNKNOWN_ITEM_TYPE,
                            "xunGetItemTypeKeyFromIdent: no item type has the ident '%s'", ident);
        *key = static_cast<int>(item->m_nNumId);
        return 1;
    });
}

int xunGetItemTypeParams(int key, int* decimals, double* defaultValue) {
    if (decimals == nullptr || defaultValue == nullptr)
        return Guard("xunGetItemTypeParams", 0, [&] {
            return NullArgument("xunGetItemTypeParams",
                                decimals == nullptr ? "decimals" : "defaultValue");
        });
    return WithItemType("xunGetItemTypeParams", key, [&](CKVitemType& item) {
        *decimals = item.m_nDecimals;
        *defaultValue = item.m_dDefault;
        return 1;
    });
}

int xunGetItemUnitCount(int key) {
    return WithItemType("xunGetItemUnitCount", key, [&](CKVitemType& item) {
        return static_cast<int>(xunItemUnitCount_(Registries(), item));
    });
}

int xunGetItemUnitSeq(int key, int seq, int* unitTag, const char** unitKey) {
    if (unitTag == nullptr || unitKey == nullptr)
        return Guard("xunGetItemUnitSeq", 0, [&] {
            return NullArgument("xunGetItemUnitSeq", unitTag == nullptr ? "unitTag" : "unitKey");
        });
    return WithItemType("xunGetItemUnitSeq", key, [&](CKVitemType& item) {
        const CKVunit* unit = xunItemUnitAt_(Registries(), item, seq);
        if (unit == nullptr)
            return xunFail_(XUN_ERR_RANGE, "xunGetItemUnitSeq: item type %d has no unit %d", key,
                            seq);
        *unitTag = static_cast<int>(unit->m_lKey);
        *unitKey = unit->m_strDesc.c_str();
        return 1;
    });
}

int xunSetItemUserUnit(int key, int unitTag) {
    return Guard("xunSetItemUserUnit", 0, [&] {
        const int result = xunSetItemUserUnit_(Registries(), key, unitTag);
        if (result != XUN_OK)
            return UserUnitRefused("xunSetItemUserUnit", result, key, unitTag);
        return 1;
    });
}

int xunItemUnitEqv(int key, int unitTag) {
    return Guard("xunItemUnitEqv", 0, [&] {
        const CKVitemType* item = ItemTypes().FindByKey(key);
        const CKVunit* unit = Units().FindByKey(unitTag);
        if (item == nullptr)
            return UnknownItemType("xunItemUnitEqv", key);
        if (unit == nullptr)
            return UnknownUnit("xunItemUnitEqv", unitTag);
        if (item->m_nNumId == xun::contract::kAnyUnitItemType)
            return 1;
        if (unit->m_lKey == 0)
            return xunFail_(XUN_ERR_NO_REAL_UNIT,
                            "xunItemUnitEqv: a unit of key 0 is no real unit");
        if (item->m_pDimension == nullptr)
            return xunFail_(XUN_ERR_DIMENSION, "xunItemUnitEqv: item type %d has no dimension",
                            key);
        return unit->IsEqv(*item->m_pDimension) ? 1 : 0;
    });
}

int xunGetItemUserUnit(int key, int* unitTag) {
    if (unitTag == nullptr)
        return Guard("xunGetItemUserUnit", 0,
                     [&] { return NullArgument("xunGetItemUserUnit", "unitTag"); });
    return WithItemType("xunGetItemUserUnit", key, [&](CKVitemType& item) {
        *unitTag = item.GetItemUserUnit();
        return 1;
    });
}

int xunAddItemUnit(int key, int unitTag) {
    return WithItemType("xunAddItemUnit", key, [&](CKVitemType& item) {
        const CKVunit* unit = Units().FindByKey(unitTag);
        if (unit == nullptr)
            return UnknownUnit("xunAddItemUnit", unitTag);
        // A unit of another dimension ends the process (assertion "bOk").
        if (!item.AllowUnit(*unit, false))
            return xunFail_(XUN_ERR_TAKEN,
                            "xunAddItemUnit: item type %d already allows a unit of the key or "
                            "ident of unit %d",
                            key, unitTag);
        return 1;
    });
}

int xunAddItemFilter(int key, int bits) {
    return WithItemType("xunAddItemFilter", key, [&](CKVitemType& item) {
        item.SetFilter(item.GetFilter() | static_cast<long>(bits));
        return 1;
    });
}

} // extern "C"
