#include "registry/KVitemType.h"

#include "common/Assert.h"

using namespace xun::contract;

CKVitemType::CKVitemType(const std::string& keyText, long key, const std::string& ident,
                         const CKVdimension& dimension)
    : m_strKey(keyText), m_nNumId(key), m_lUserUnit(-1), m_strIdent(ident),
      m_pDimension(&dimension), m_lFilter(0), m_nFileItem(1), m_nDecimals(-1), m_dDefault(0.0) {}

bool CKVitemType::AllowUnit(const CKVunit& unit, bool atFront) {
    // An item type without a dimension accepts no unit at all.
    const bool bOk = m_pDimension != nullptr && unit.IsEqv(*m_pDimension);
    XUN_ASSERT(bOk, kAllowUnitDimension);
    for (const CKVunit* allowed : m_lstUnits) {
        if (allowed == nullptr)
            continue;
        if (allowed->m_lKey == unit.m_lKey || allowed->m_strIdent == unit.m_strIdent)
            return false;
    }
    if (atFront)
        m_lstUnits.insert(m_lstUnits.begin(), &unit);
    else
        m_lstUnits.push_back(&unit);
    return true;
}

const CKVunit* CKVitemType::GetUnit(long seq) const {
    if (seq < 1 || seq > static_cast<long>(m_lstUnits.size()))
        return nullptr;
    const CKVunit* Un = m_lstUnits[static_cast<size_t>(seq - 1)];
    XUN_ASSERT(Un != nullptr, kGetUnitNull);
    return Un;
}

void CKVitemType::SetItemUserUnit(int tag) {
    m_lUserUnit = tag;
}

int CKVitemType::GetItemUserUnit() const {
    if (m_lUserUnit != -1)
        return static_cast<int>(m_lUserUnit);
    if (m_lstUnits.empty())
        return -1;
    const CKVunit* Un = m_lstUnits.front();
    XUN_ASSERT(Un != nullptr, kUserUnitNull);
    return static_cast<int>(Un->m_lKey);
}

void CKVitemType::AssertValid() const {
    XUN_ASSERT(m_nNumId != 0, kItemKeyZero);
    XUN_ASSERT(m_pDimension != nullptr, kItemNoDimension);
}

bool CKVitemType::IsMemberOf(const CKVfilter& filter) const {
    return (m_lFilter & static_cast<long>(filter)) != 0;
}

bool CKVitemType::IsMemberOf(long bits) const {
    return (m_lFilter & bits) != 0;
}
