#include "registry/ItemTypeRegistry.h"

#include <climits>
#include <stdexcept>

#include "common/Contract.h"

bool CKVitemTypeRegistry::Add(std::unique_ptr<CKVitemType>& item,
                              std::unique_ptr<CKVdimension>& dimension) {
    if (dimension)
        xunReserveOneMore_(m_dimensions);
    const long key = item->m_nNumId;
    if (!m_table.Add(item))
        return false;
    if (dimension)
        m_dimensions.push_back(std::move(dimension));
    if (m_table.Count() == 1 || key > m_largestKey)
        m_largestKey = key;
    xunItemTypesChanged_();
    return true;
}

bool CKVitemTypeRegistry::NextRunTimeKey(long& key) const {
    key = xun::contract::kFirstRunTimeItemTypeKey;
    if (m_table.Count() == 0 || m_largestKey < key)
        return true;
    // A key crosses the interface as an int.
    if (m_largestKey >= INT_MAX)
        return false;
    key = m_largestKey + 1;
    return true;
}

void CKVitemTypeRegistry::CheckInvariants() const {
    m_table.CheckInvariants("item-type registry");
    bool largestFound = m_table.Count() == 0;
    for (const CKVitemType* item : m_table) {
        if (item->m_nNumId > m_largestKey)
            throw std::logic_error("item-type registry: a key is larger than the largest key kept");
        largestFound = largestFound || item->m_nNumId == m_largestKey;
        if (item->m_pDimension == nullptr)
            throw std::logic_error("item-type registry: an item type without a dimension");
        for (const CKVunit* unit : item->m_lstUnits)
            if (unit == nullptr)
                throw std::logic_error("item-type registry: a null allowed unit");
    }
    if (!largestFound)
        throw std::logic_error("item-type registry: no item type has the largest key kept");
}
