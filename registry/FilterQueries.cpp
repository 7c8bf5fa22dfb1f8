// Exported filter functions: creation at run time, lookups, the item types
// of a filter, the product filter and the flyby filter.
#include <climits>
#include <memory>
#include <string>

#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/TextArg.h"
#include "registry/TextList.h"
#include "units/KVassert.h"
#include "xun.h"

namespace {

const char kSource[] = "ItemTypeTables";
const char kFilteredCount[] = "int xunGetFilteredItemTypeCount(int)";
const char kFilteredSeq[] = "int xunGetFilteredItemTypeSeq(int, int, int *, const char **)";

// The smallest power of two, reached by doubling from 1, that is above every
// registered bit value; a filter of bit value 0x40000000 does not count.
// False when no such bit fits into the key type (a registered bit value at
// or above 2^62).
bool NextFilterBit(long& bit) {
    bit = 1;
    for (const CKVfilter* filter : FilterList_) {
        if (filter == nullptr || filter->m_lKey == SkippedFilterBit_)
            continue;
        while (bit <= filter->m_lKey) {
            if (bit > LONG_MAX / 2)
                return false;
            bit *= 2;
        }
    }
    return true;
}

// Whether an item type is counted in a filter: for a filter >= 0 only file
// items that are members, for a negative filter (the flyby filter) every
// member.
bool IsCounted(const CKVitemType& item, long filter) {
    if (filter >= 0)
        return item.IsFileItem() != 0 && item.IsMemberOf(filter);
    return item.IsMemberOf(filter);
}

} // namespace

extern "C" {

int xunFilterGetAll(char** list) {
    return xunJoinIdents_(
        FilterList_, [](const CKVfilter* filter) { return &filter->m_strIdent; }, list);
}

int xunFilterNew(const char* ident, const char* keyText) {
    const std::string identText = xunTextArg_(ident), keyTextText = xunTextArg_(keyText);
    long bit = 0;
    if (!NextFilterBit(bit))
        return 0;
    std::unique_ptr<CKVfilter> filter(new CKVfilter(keyTextText, bit));
    filter->m_strIdent = identText;
    if (!AddFilter_(*filter))
        return 0;
    filter.release();
    return 1;
}

int xunGetFilterCount(void) {
    return static_cast<int>(FilterList_.size());
}

int xunGetFilterSeq(int seq, int* key, const char** keyText) {
    if (seq < 1 || seq > static_cast<int>(FilterList_.size()))
        return 0;
    CKVfilterList::const_iterator it = FilterList_.begin();
    for (int i = 1; i < seq; ++i)
        ++it;
    const CKVfilter* filter = *it;
    if (filter == nullptr)
        return 0;
    *key = static_cast<int>(filter->m_lKey);
    *keyText = filter->m_strKey.c_str();
    return 1;
}

int xunGetFilterKey(int key, const char** keyText) {
    const CKVfilter* filter = xunFindFilterByKey_(key);
    if (filter == nullptr)
        return 0;
    *keyText = filter->m_strKey.c_str();
    return 1;
}

int xunGetFilterIdent(int key, const char** ident) {
    const CKVfilter* filter = xunFindFilterByKey_(key);
    if (filter == nullptr)
        return 0;
    *ident = filter->m_strIdent.c_str();
    return 1;
}

int xunGetFilterKeyFromIdent(const char* ident, int* key) {
    const CKVfilter* filter = ident != nullptr ? xunFindFilterByIdent_(ident) : nullptr;
    if (filter == nullptr)
        return 0;
    *key = static_cast<int>(filter->m_lKey);
    return 1;
}

int xunGetFilteredItemTypeCount(int filter) {
    int count = 0;
    for (const CKVitemType* It : ItemTypeList_) {
        XUN_ASSERT(It != nullptr, "It", kSource, __LINE__, kFilteredCount);
        if (IsCounted(*It, filter))
            ++count;
    }
    return count;
}

int xunGetFilteredItemTypeSeq(int filter, int seq, int* key, const char** keyText) {
    // The position test follows every item type, counted or not: seq 0
    // names the first item type when that one is not counted itself.
    int counter = 0;
    for (const CKVitemType* It : ItemTypeList_) {
        XUN_ASSERT(It != nullptr, "It", kSource, __LINE__, kFilteredSeq);
        if (IsCounted(*It, filter))
            ++counter;
        if (counter == seq) {
            *key = static_cast<int>(It->m_nNumId);
            *keyText = It->m_strKey.c_str();
            return 1;
        }
    }
    return 0;
}

int xunItemFilterEqv(int itemKey, int filter) {
    const CKVitemType* item = xunFindItemTypeByKey_(itemKey);
    if (item == nullptr)
        return 0;
    return item->IsMemberOf(static_cast<long>(filter)) ? 1 : 0;
}

long xunSetProductFilter(int filter) {
    ProductFilter_ = filter;
    return ProductFilter_;
}

long xunGetProductFilter(void) {
    return ProductFilter_;
}

int xunGetFlybyFilter(void) {
    return static_cast<int>(FlybyFilter_);
}

} // extern "C"
