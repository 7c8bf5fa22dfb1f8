#include "registry/KVitemType.h"

#include "units/KVassert.h"

namespace {
const char kSource[] = "KVitemType";
const char kAllowUnit[] = "bool CKVitemType::AllowUnit(CKVunit &, bool)";
const char kGetUnit[] = "const CKVunit *CKVitemType::GetUnit(long) const";
const char kGetItemUserUnit[] = "int CKVitemType::GetItemUserUnit()";
const char kAssertValid[] = "void CKVitemType::AssertValid() const";
} // namespace

CKVitemType::CKVitemType(const std::string& keyText, long key, const std::string& ident,
                         const CKVdimension& dimension)
    : m_strKey(keyText), m_nNumId(key), m_lUserUnit(-1), m_strIdent(ident),
      m_pDimension(&dimension), m_lFilter(0), m_nFileItem(1), m_nDecimals(-1), m_dDefault(0.0) {}

bool CKVitemType::AllowUnit(CKVunit& unit, bool atFront) {
    // An item type without a dimension accepts no unit at all.
    const bool bOk = m_pDimension != nullptr && unit.IsEqv(*m_pDimension);
    XUN_ASSERT(bOk, "bOk", kSource, __LINE__, kAllowUnit);
    for (const CKVunit* allowed : m_lstUnits) {
        if (allowed == nullptr)
            continue;
        if (allowed->m_lKey == unit.m_lKey || allowed->m_strIdent == unit.m_strIdent)
            return false;
    }
    if (atFront)
        m_lstUnits.push_front(&unit);
    else
        m_lstUnits.push_back(&unit);
    return true;
}

const CKVunit* CKVitemType::GetUnit(long seq) const {
    if (seq < 1 || seq > static_cast<long>(m_lstUnits.size()))
        return nullptr;
    std::list<CKVunit*>::const_iterator it = m_lstUnits.begin();
    for (long i = 1; i < seq; ++i)
        ++it;
    const CKVunit* Un = *it;
    XUN_ASSERT(Un != nullptr, "Un", kSource, __LINE__, kGetUnit);
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
    XUN_ASSERT(Un != nullptr, "Un", kSource, __LINE__, kGetItemUserUnit);
    return static_cast<int>(Un->m_lKey);
}

void CKVitemType::AssertValid() const {
    XUN_ASSERT(m_nNumId != 0, "m_nNumId", kSource, __LINE__, kAssertValid);
    XUN_ASSERT(m_pDimension != nullptr, "m_pDimension", kSource, __LINE__, kAssertValid);
}

bool CKVitemType::IsMemberOf(const CKVfilter& filter) const {
    return (m_lFilter & static_cast<long>(filter)) != 0;
}

bool CKVitemType::IsMemberOf(long bits) const {
    return (m_lFilter & bits) != 0;
}
