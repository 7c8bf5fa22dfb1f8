#include "registry/ItemTypeRegistry.h"

#include <climits>
#include <stdexcept>

#include "common/Contract.h"

bool CKVitemTypeRegistry::Add(std::unique_ptr<CKVitemType>& item,
                              std::unique_ptr<CKVdimension>& dimension) {
    if (dimension)
        m_dimensions.reserve(m_dimensions.size() + 1);
    if (!m_table.Add(item))
        return false;
    if (dimension)
        m_dimensions.push_back(std::move(dimension));
    return true;
}

bool CKVitemTypeRegistry::NextRunTimeKey(long& key) const {
    key = xun::contract::kFirstRunTimeItemTypeKey;
    for (const CKVitemType* item : m_table) {
        if (item->m_nNumId < key)
            continue;
        if (item->m_nNumId >= INT_MAX)
            return false;
        key = item->m_nNumId + 1;
    }
    return true;
}

void CKVitemTypeRegistry::CheckInvariants() const {
    m_table.CheckInvariants("item-type registry");
    for (const CKVitemType* item : m_table) {
        if (item->m_pDimension == nullptr)
            throw std::logic_error("item-type registry: an item type without a dimension");
        for (const CKVunit* unit : item->m_lstUnits)
            if (unit == nullptr)
                throw std::logic_error("item-type registry: a null allowed unit");
    }
}
