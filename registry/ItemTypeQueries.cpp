// Exported item-type functions: creation at run time, lookups, the allowed
// units, the user unit and the filter mask; and the two unit queries that
// take an item type key.
#include <climits>
#include <memory>
#include <string>

#include "registry/ItemTypeRegistry.h"
#include "registry/TextArg.h"
#include "registry/TextList.h"
#include "registry/UnitRegistry.h"
#include "xun.h"

namespace {

// The seq-th element of the unit list (1-based), null when out of range or
// when the element holds no unit.
const CKVunit* UnitAt(long seq) {
    if (seq < 1 || seq > static_cast<long>(UnitList_.size()))
        return nullptr;
    CKVunitList::const_iterator it = UnitList_.begin();
    for (long i = 1; i < seq; ++i)
        ++it;
    return *it;
}

// The key for a new run-time item type: one above the largest key in use,
// at least FirstRunTimeItemType_. False when the largest key leaves no room.
bool NextItemTypeKey(long& key) {
    key = FirstRunTimeItemType_;
    for (const CKVitemType* item : ItemTypeList_) {
        if (item == nullptr || item->m_nNumId < key)
            continue;
        if (item->m_nNumId == LONG_MAX)
            return false;
        key = item->m_nNumId + 1;
    }
    return true;
}

} // namespace

extern "C" {

int xunItemTypeGetAll(char** list) {
    return xunJoinIdents_(
        ItemTypeList_, [](const CKVitemType* item) { return &item->m_strIdent; }, list);
}

int xunItemTypeNew(const char* ident, const char* keyText, long reserved, const char* unitIdent) {
    (void)reserved;
    const std::string identText = xunTextArg_(ident), keyTextText = xunTextArg_(keyText),
                      unitIdentText = xunTextArg_(unitIdent);
    CKVunit* unit = xunFindUnitByIdent_(unitIdentText);
    if (unit == nullptr)
        return 0;
    long key = 0;
    if (!NextItemTypeKey(key))
        return 0;

    // The item type gets its own copy of the unit's dimension; once the item
    // type is registered that copy lives as long as the process.
    double powers[CKVdimension::kBaseCount];
    unit->GetDim().GetPowers(powers[0], powers[1], powers[2], powers[3], powers[4], powers[5],
                             powers[6]);
    std::unique_ptr<CKVdimension> dimension(new CKVdimension(
        powers[0], powers[1], powers[2], powers[3], powers[4], powers[5], powers[6]));
    std::unique_ptr<CKVitemType> item(new CKVitemType(keyTextText, key, identText, *dimension));
    if (!AddItemType_(key, *item))
        return 0;
    CKVitemType* registered = item.release();
    dimension.release();
    registered->AllowUnit(*unit, true);
    return 1;
}

int xunGetItemTypeCount(void) {
    return static_cast<int>(ItemTypeList_.size());
}

int xunGetItemTypeSeq(int seq, int* key, const char** keyText) {
    if (seq < 1 || seq > static_cast<int>(ItemTypeList_.size()))
        return 0;
    CKVitemTypeList::const_iterator it = ItemTypeList_.begin();
    for (int i = 1; i < seq; ++i)
        ++it;
    const CKVitemType* item = *it;
    if (item == nullptr)
        return 0;
    *key = static_cast<int>(item->m_nNumId);
    *keyText = item->m_strKey.c_str();
    return 1;
}

int xunGetItemTypeIdent(int key, const char** ident) {
    const CKVitemType* item = xunFindItemTypeByKey_(key);
    if (item == nullptr)
        return 0;
    *ident = item->m_strIdent.c_str();
    return 1;
}

int xunGetItemTypeKey(int key, const char** keyText) {
    const CKVitemType* item = xunFindItemTypeByKey_(key);
    if (item == nullptr)
        return 0;
    *keyText = item->m_strKey.c_str();
    return 1;
}

int xunGetItemTypeKeyFromIdent(const char* ident, int* key) {
    const CKVitemType* item = ident != nullptr ? xunFindItemTypeByIdent_(ident) : nullptr;
    if (item == nullptr)
        return 0;
    *key = static_cast<int>(item->m_nNumId);
    return 1;
}

int xunGetItemTypeParams(int key, int* decimals, double* defaultValue) {
    const CKVitemType* item = xunFindItemTypeByKey_(key);
    if (item == nullptr)
        return 0;
    *decimals = item->m_nDecimals;
    *defaultValue = item->m_dDefault;
    return 1;
}

int xunGetItemUnitCount(int key) {
    const CKVitemType* item = xunFindItemTypeByKey_(key);
    if (item == nullptr)
        return 0;
    if (item->m_nNumId == AnyUnitItemType_)
        return static_cast<int>(UnitList_.size());
    return static_cast<int>(item->m_lstUnits.size());
}

int xunGetItemUnitSeq(int key, int seq, int* unitTag, const char** unitKey) {
    const CKVitemType* item = xunFindItemTypeByKey_(key);
    if (item == nullptr)
        return 0;
    const CKVunit* unit = item->m_nNumId == AnyUnitItemType_ ? UnitAt(seq) : item->GetUnit(seq);
    if (unit == nullptr)
        return 0;
    *unitTag = static_cast<int>(unit->m_lKey);
    *unitKey = unit->m_strDesc.c_str();
    return 1;
}

int xunSetItemUserUnit(int key, int unitTag) {
    const CKVunit* unit = xunFindUnitByKey_(unitTag);
    CKVitemType* item = xunFindItemTypeByKey_(key);
    if (unit == nullptr || item == nullptr)
        return 0;
    // Any unit of the item type's dimension is accepted, allowed or not.
    if (item->m_nNumId != AnyUnitItemType_ &&
        (unit->m_lKey == 0 || item->m_pDimension == nullptr || !unit->IsEqv(*item->m_pDimension)))
        return 0;
    item->SetItemUserUnit(unitTag);
    return 1;
}

int xunItemUnitEqv(int key, int unitTag) {
    const CKVitemType* item = xunFindItemTypeByKey_(key);
    const CKVunit* unit = xunFindUnitByKey_(unitTag);
    if (item == nullptr || unit == nullptr)
        return 0;
    if (item->m_nNumId == AnyUnitItemType_)
        return 1;
    if (unit->m_lKey == 0 || item->m_pDimension == nullptr)
        return 0;
    return unit->IsEqv(*item->m_pDimension) ? 1 : 0;
}

int xunGetItemUserUnit(int key, int* unitTag) {
    const CKVitemType* item = xunFindItemTypeByKey_(key);
    if (item == nullptr)
        return 0;
    *unitTag = item->GetItemUserUnit();
    return 1;
}

int xunAddItemUnit(int key, int unitTag) {
    CKVitemType* item = xunFindItemTypeByKey_(key);
    CKVunit* unit = xunFindUnitByKey_(unitTag);
    if (item == nullptr || unit == nullptr)
        return 0;
    return item->AllowUnit(*unit, false) ? 1 : 0;
}

int xunAddItemFilter(int key, int bits) {
    CKVitemType* item = xunFindItemTypeByKey_(key);
    if (item == nullptr)
        return 0;
    item->SetFilter(item->GetFilter() | static_cast<long>(bits));
    return 1;
}

int xunGetItemUnitTag(int itemKey, const char* name, int* tag) {
    const CKVitemType* item = xunFindItemTypeByKey_(itemKey);
    if (item == nullptr || name == nullptr) {
        *tag = 0;
        return 0;
    }
    // Descriptions only: aliases are not consulted for item types. Each
    // candidate is taken again from the key map and compared by the text of
    // the unit registered under its key.
    auto matches = [name](const CKVunit* candidate) -> const CKVunit* {
        if (candidate == nullptr)
            return nullptr;
        const CKVunit* unit = xunFindUnitByKey_(candidate->m_lKey);
        return unit != nullptr && xunUnitNameMatches_(unit->m_strDesc, name) ? unit : nullptr;
    };
    const CKVunit* found = nullptr;
    if (item->m_nNumId == AnyUnitItemType_) {
        for (CKVunitList::const_iterator it = UnitList_.begin(); !found && it != UnitList_.end();
             ++it)
            found = matches(*it);
    } else {
        const long count = static_cast<long>(item->m_lstUnits.size());
        for (long i = 1; !found && i <= count; ++i)
            found = matches(item->GetUnit(i));
    }
    if (found != nullptr) {
        *tag = static_cast<int>(found->m_lKey);
        return found->m_lKey != 0 ? 1 : 0;
    }
    *tag = 0;
    return 0;
}

int xunGetItemFirstEqvUnit(int itemKey, int* tag, const char** key) {
    const CKVitemType* item = xunFindItemTypeByKey_(itemKey);
    if (item == nullptr || item->m_pDimension == nullptr)
        return 0;
    const CKVunit* unit = xunFirstEqvUnit_(*item->m_pDimension);
    if (unit == nullptr)
        return 0;
    *tag = static_cast<int>(unit->m_lKey);
    *key = unit->m_strDesc.c_str();
    return 1;
}

} // extern "C"
