#include "registry/ItemTypeQueries.h"

#include <memory>

#include "common/Assert.h"
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
    std::unique_ptr<CKVdimension> dimension(
        new CKVdimension(p[0], p[1], p[2], p[3], p[4], p[5], p[6]));
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

namespace {

// Where the calling thread's last filtered question left off: valid while
// the registry and xunItemTypeVersion_ are the same.
struct FilterMemory {
    const CKVitemTypeRegistry* registry = nullptr;
    unsigned long version = 0;
    long filter = 0;
    bool Holds(const CKVitemTypeRegistry& items, long f) const {
        return registry == &items && filter == f && version == xunItemTypeVersion_();
    }
    void Set(const CKVitemTypeRegistry& items, long f) {
        registry = &items;
        filter = f;
        version = xunItemTypeVersion_();
    }
};

struct CountMemory : FilterMemory {
    long count = 0;
};

struct PositionMemory : FilterMemory {
    long seq = 0;          // the seq-th counted item type ...
    std::size_t index = 0; // ... is at this index
};

thread_local CountMemory Counted_;
thread_local PositionMemory Position_;

} // namespace

long xunFilteredItemTypeCount_(const CKVitemTypeRegistry& items, long filter) {
    if (Counted_.Holds(items, filter))
        return Counted_.count;
    long count = 0;
    for (const CKVitemType* It : items) {
        XUN_ASSERT(It != nullptr, xun::contract::kFilteredCountNull);
        if (xunIsCountedInFilter_(*It, filter))
            ++count;
    }
    Counted_.Set(items, filter);
    Counted_.count = count;
    return count;
}

const CKVitemType* xunFilteredItemTypeAt_(const CKVitemTypeRegistry& items, long filter, long seq) {
    std::size_t index = 0;
    long counter = 0;
    // Going on from the last answer is the same walk: up to its index the
    // counter has reached exactly its seq.
    if (seq >= 1 && Position_.Holds(items, filter) && Position_.seq <= seq &&
        Position_.index < items.Count()) {
        index = Position_.index + 1;
        counter = Position_.seq;
        if (counter == seq)
            return items.At(Position_.index);
    }
    for (; index < items.Count(); ++index) {
        const CKVitemType* It = items.At(index);
        XUN_ASSERT(It != nullptr, xun::contract::kFilteredSeqNull);
        if (xunIsCountedInFilter_(*It, filter))
            ++counter;
        if (counter == seq) {
            if (seq >= 1) {
                Position_.Set(items, filter);
                Position_.seq = seq;
                Position_.index = index;
            }
            return It;
        }
    }
    return nullptr;
}
