// Exported unit functions: lookups by key, ident and name, equivalence,
// walks, parameters and run-time creation of units.
#include <iterator>

#include "capi/Api.h"
#include "registry/UnitQueries.h"

using namespace xun::capi;

namespace {

// A text of a unit found by tag.
template <class Text>
int UnitText(const char* function, int tag, const char** out, const char* name, Text text) {
    return Guard(function, 0, [&] {
        if (out == nullptr)
            return NullArgument(function, name);
        const CKVunit* unit = Units().FindByKey(tag);
        if (unit == nullptr)
            return UnknownUnit(function, tag);
        *out = text(*unit);
        return 1;
    });
}

// Hands out a unit of a walk or search: its key and description.
int HandOut(const CKVunit& unit, int* tag, const char** key) {
    *tag = static_cast<int>(unit.m_lKey);
    *key = unit.m_strDesc.c_str();
    return 1;
}

} // namespace

extern "C" {

int xunUnitGetAll(char** list) {
    return Guard("xunUnitGetAll", 0, [&] { return JoinIdents("xunUnitGetAll", Units(), "units", list); });
}

int xunUnitNew(const char* ident, const char* key, const char* abbreviation,
               const char* expression) {
    RequireText(ident);
    RequireText(key);
    RequireText(abbreviation);
    RequireText(expression);
    return Guard("xunUnitNew", 0, [&] {
        const int result = xunCreateUnit_(Units(), ident, key, abbreviation, expression);
        switch (result) {
        case XUN_OK:
            return 1;
        case XUN_ERR_EXPRESSION:
            return xunFail_(result, "xunUnitNew: the expression '%s' does not give a unit",
                            expression);
        case XUN_ERR_TAKEN:
            return xunFail_(result, "xunUnitNew: the ident '%s' is already registered", ident);
        default:
            return xunFail_(result, "xunUnitNew: no key is left for a new unit (the largest "
                                    "key in use is the largest int)");
        }
    });
}

int xunGetUnitKey(int tag, const char** key) {
    return UnitText("xunGetUnitKey", tag, key, "key",
                    [](const CKVunit& unit) { return unit.m_strDesc.c_str(); });
}

int xunGetUnitIdent(int tag, const char** ident) {
    return UnitText("xunGetUnitIdent", tag, ident, "ident",
                    [](const CKVunit& unit) { return unit.m_strIdent.c_str(); });
}

int xunGetUnitAbbreviation(int tag, const char** abbreviation) {
    return UnitText("xunGetUnitAbbreviation", tag, abbreviation, "abbreviation",
                    [](const CKVunit& unit) { return unit.m_strAbbr.c_str(); });
}

int xunGetUnitExpression(int tag, const char** expression) {
    return UnitText("xunGetUnitExpression", tag, expression, "expression",
                    [](const CKVunit& unit) { return unit.m_strExpr.c_str(); });
}

int xunGetUnitAlias(int tag, int seq, const char** alias) {
    return Guard("xunGetUnitAlias", 0, [&] {
        if (alias == nullptr)
            return NullArgument("xunGetUnitAlias", "alias");
        const CKVunit* unit = Units().FindByKey(tag);
        if (unit == nullptr)
            return UnknownUnit("xunGetUnitAlias", tag);
        if (seq < 1 || static_cast<size_t>(seq) > unit->m_lstAlias.size())
            return xunFail_(XUN_ERR_RANGE, "xunGetUnitAlias: unit %d has %zu aliases, not %d",
                            tag, unit->m_lstAlias.size(), seq);
        auto it = unit->m_lstAlias.begin();
        std::advance(it, seq - 1);
        *alias = it->c_str();
        return 1;
    });
}

int xunGetUnitTag(const char* name, int* tag) {
    return Guard("xunGetUnitTag", 0, [&] {
        if (tag == nullptr)
            return NullArgument("xunGetUnitTag", "tag");
        *tag = 0;
        if (name == nullptr)
            return NullArgument("xunGetUnitTag", "name");
        const CKVunit* unit = xunFindUnitByName_(Units(), name);
        if (unit == nullptr)
            return xunFail_(XUN_ERR_NOT_FOUND,
                            "xunGetUnitTag: no unit is described or aliased as '%s'", name);
        *tag = static_cast<int>(unit->m_lKey);
        if (unit->m_lKey == 0)
            return xunFail_(XUN_ERR_NO_REAL_UNIT, "xunGetUnitTag: '%s' names the unit '%s' of key 0",
                            name, unit->m_strIdent.c_str());
        return 1;
    });
}

int xunGetUnitTagFromIdent(const char* ident, int* tag) {
    return Guard("xunGetUnitTagFromIdent", 0, [&] {
        if (ident == nullptr)
            return NullArgument("xunGetUnitTagFromIdent", "ident");
        if (tag == nullptr)
            return NullArgument("xunGetUnitTagFromIdent", "tag");
        const CKVunit* unit = Units().FindByIdent(ident);
        if (unit == nullptr)
            return xunFail_(XUN_ERR_UNKNOWN_UNIT, "xunGetUnitTagFromIdent: no unit has the ident '%s'",
                            ident);
        *tag = static_cast<int>(unit->m_lKey);
        return 1;
    });
}

int xunGetItemUnitTag(int itemKey, const char* name, int* tag) {
    return Guard("xunGetItemUnitTag", 0, [&] {
        if (tag == nullptr)
            return NullArgument("xunGetItemUnitTag", "tag");
        *tag = 0;
        if (name == nullptr)
            return NullArgument("xunGetItemUnitTag", "name");
        const CKVitemType* item = ItemTypes().FindByKey(itemKey);
        if (item == nullptr)
            return UnknownItemType("xunGetItemUnitTag", itemKey);
        const CKVunit* unit = xunFindItemUnitByName_(Registries(), *item, name);
        if (unit == nullptr)
            return xunFail_(XUN_ERR_NOT_FOUND,
                            "xunGetItemUnitTag: no unit of item type %d is described as '%s'",
                            itemKey, name);
        *tag = static_cast<int>(unit->m_lKey);
        if (unit->m_lKey == 0)
            return xunFail_(XUN_ERR_NO_REAL_UNIT,
                            "xunGetItemUnitTag: '%s' names the unit '%s' of key 0", name,
                            unit->m_strIdent.c_str());
        return 1;
    });
}

int xunGetItemFirstEqvUnit(int itemKey, int* tag, const char** key) {
    return Guard("xunGetItemFirstEqvUnit", 0, [&] {
        if (tag == nullptr)
            return NullArgument("xunGetItemFirstEqvUnit", "tag");
        if (key == nullptr)
            return NullArgument("xunGetItemFirstEqvUnit", "key");
        const CKVitemType* item = ItemTypes().FindByKey(itemKey);
        if (item == nullptr)
            return UnknownItemType("xunGetItemFirstEqvUnit", itemKey);
        if (item->m_pDimension == nullptr)
            return xunFail_(XUN_ERR_DIMENSION, "xunGetItemFirstEqvUnit: item type %d has no dimension",
                            itemKey);
        const CKVunit* unit = xunBaseUnitOf_(Units(), *item->m_pDimension);
        if (unit == nullptr)
            return xunFail_(XUN_ERR_NOT_FOUND,
                            "xunGetItemFirstEqvUnit: no unit has the dimension %s of item type %d",
                            xunDimensionText_(*item->m_pDimension).c_str(), itemKey);
        return HandOut(*unit, tag, key);
    });
}

int xunUnitsEqv(int tag1, int tag2) {
    return Guard("xunUnitsEqv", 0, [&] {
        const CKVunit* unit1 = Units().FindByKey(tag1);
        const CKVunit* unit2 = Units().FindByKey(tag2);
        if (unit1 == nullptr || unit2 == nullptr)
            return UnknownUnit("xunUnitsEqv", unit1 == nullptr ? tag1 : tag2);
        if (unit1->m_lKey == 0 || unit2->m_lKey == 0)
            return xunFail_(XUN_ERR_NO_REAL_UNIT, "xunUnitsEqv: a unit of key 0 is no real unit");
        return unit1->IsEqv(*unit2) ? 1 : 0;
    });
}

int xunGetBaseUnit(int tag, int* baseTag, const char** baseKey) {
    return Guard("xunGetBaseUnit", 0, [&] {
        if (baseTag == nullptr)
            return NullArgument("xunGetBaseUnit", "baseTag");
        if (baseKey == nullptr)
            return NullArgument("xunGetBaseUnit", "baseKey");
        const CKVunit* unit = Units().FindByKey(tag);
        if (unit == nullptr)
            return UnknownUnit("xunGetBaseUnit", tag);
        const CKVunit* base = xunBaseUnitOf_(Units(), unit->GetDim());
        if (base == nullptr)
            return xunFail_(XUN_ERR_NOT_FOUND,
                            "xunGetBaseUnit: no unit of the dimension %s has a non-zero key",
                            xunDimensionText_(unit->GetDim()).c_str());
        return HandOut(*base, baseTag, baseKey);
    });
}

int xunGetNextEqvUnit(int tag, int prevTag, int* nextTag, const char** nextKey) {
    return Guard("xunGetNextEqvUnit", 0, [&] {
        if (nextTag == nullptr)
            return NullArgument("xunGetNextEqvUnit", "nextTag");
        if (nextKey == nullptr)
            return NullArgument("xunGetNextEqvUnit", "nextKey");
        const CKVunit* reference = Units().FindByKey(tag);
        if (reference == nullptr)
            return UnknownUnit("xunGetNextEqvUnit", tag);
        const CKVunit* next = nullptr;
        const int result = xunNextEqvUnit_(Units(), *reference, prevTag, next);
        if (result == XUN_ERR_UNKNOWN_UNIT)
            return UnknownUnit("xunGetNextEqvUnit", prevTag);
        if (result != XUN_OK)
            return xunFail_(XUN_ERR_END, "xunGetNextEqvUnit: no unit equivalent to %d after %d",
                            tag, prevTag);
        return HandOut(*next, nextTag, nextKey);
    });
}

int xunGetNextUnit(int prevTag, int* nextTag, const char** nextKey) {
    return Guard("xunGetNextUnit", 0, [&] {
        if (nextTag == nullptr)
            return NullArgument("xunGetNextUnit", "nextTag");
        if (nextKey == nullptr)
            return NullArgument("xunGetNextUnit", "nextKey");
        const CKVunit* next = nullptr;
        const int result = xunNextUnit_(Units(), prevTag, next);
        if (result == XUN_ERR_UNKNOWN_UNIT)
            return UnknownUnit("xunGetNextUnit", prevTag);
        if (result != XUN_OK)
            return xunFail_(XUN_ERR_END, "xunGetNextUnit: no unit after %d", prevTag);
        return HandOut(*next, nextTag, nextKey);
    });
}

int xunUnitGetParameters(int tag, double* factor, double* offset, double* powers, double* factors) {
    return Guard("xunUnitGetParameters", 0, [&] {
        if (factor == nullptr)
            return NullArgument("xunUnitGetParameters", "factor");
        if (offset == nullptr)
            return NullArgument("xunUnitGetParameters", "offset");
        if (powers == nullptr)
            return NullArgument("xunUnitGetParameters", "powers");
        if (factors == nullptr)
            return NullArgument("xunUnitGetParameters", "factors");
        const CKVunit* unit = Units().FindByKey(tag);
        if (unit == nullptr)
            return UnknownUnit("xunUnitGetParameters", tag);
        *factor = unit->m_dFactor;
        *offset = unit->m_dOffset;
        unit->GetDim().GetPowers(powers[0], powers[1], powers[2], powers[3], powers[4], powers[5],
                                 powers[6]);
        unit->GetFactors(factors[0], factors[1], factors[2], factors[3], factors[4], factors[5],
                         factors[6]);
        return 1;
    });
}

} // extern "C"
