#include "registry/ItemTypeQueries.h"

#include <memory>

#include "common/Contract.h"
#include "xun.h"

int xunCreateItemType_(CKVregistries& registries, const std::string& ident,
                       const std::string& keyText, const std::string& unitIdent) {
    const CKVunit* unit = registries.units.FindByIdent(unitIdent);
    if (unit == nullptr)
        return XUN_ERR_UNKNOWN_UNIT;
    long key = 0;
    if (!registries.itemTypes.NextRunTimeKey(key))
        return XUN_ERR_LIMIT;
    // The item type gets its own copy of the unit's dimension.
    double p[CKVdimension::kBaseCount];
    unit->GetDim().GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
    std::unique_ptr<CKVdimension> dimension(new CKVdimension(p[0], p[1], p[2], p[3], p[4], p[5], p[6]));
    std::unique_ptr<CKVitemType> item(new CKVitemType(keyText, key, ident, *dimension));
    CKVitemType* raw = item.get();
    raw->m_lstUnits.reserve(1);
    if (!registries.itemTypes.Add(item, dimension))
        return XUN_ERR_TAKEN;
    raw->AllowUnit(*unit, true);
    return XUN_OK;
}

int xunSetItemUserUnit_(CKVregistries& registries, long key, long unitTag) {
    const CKVunit* unit = registries.units.FindByKey(unitTag);
    CKVitemType* item = registries.itemTypes.FindByKey(key);
    if (item == nullptr)
        return XUN_ERR_UNKNOWN_ITEM_TYPE;
    if (unit == nullptr)
        return XUN_ERR_UNKNOWN_UNIT;
    // Any unit of the item type's dimension is accepted, allowed or not.
    if (item->m_nNumId != xun::contract::kAnyUnitItemType) {
        if (unit->m_lKey == 0)
            return XUN_ERR_NO_REAL_UNIT;
        if (item->m_pDimension == nullptr || !unit->IsEqv(*item->m_pDimension))
            return XUN_ERR_DIMENSION;
    }
    item->SetItemUserUnit(static_cast<int>(unitTag));
    return XUN_OK;
}

long xunItemUnitCount_(const CKVregistries& registries, const CKVitemType& item) {
    if (item.m_nNumId == xun::contract::kAnyUnitItemType)
        return static_cast<long>(registries.units.Count());
    return static_cast<long>(item.m_lstUnits.size());
}

const CKVunit* xunItemUnitAt_(const CKVregistries& registries, const CKVitemType& item, long seq) {
    if (item.m_nNumId != xun::contract::kAnyUnitItemType)
        return item.GetUnit(seq);
    if (seq < 1 || seq > static_cast<long>(registries.units.Count()))
        return nullptr;
    return registries.units.At(static_cast<size_t>(seq - 1));
}

bool xunIsCountedInFilter_(const CKVitemType& item, long filter) {
    if (filter >= 0)
        return item.IsFileItem() != 0 && item.IsMemberOf(filter);
    return item.IsMemberOf(filter);
}
