#include "registry/KVitemType.h"

#include <atomic>
#include <string_view>

#include "common/Assert.h"
#include "registry/HashIndex.h"
#include "registry/Table.h"

using namespace xun::contract;

namespace {
std::atomic<unsigned long> ItemTypeVersion_{0};
} // namespace

unsigned long xunItemTypeVersion_() {
    return ItemTypeVersion_.load(std::memory_order_relaxed);
}

void xunItemTypesChanged_() {
    ItemTypeVersion_.fetch_add(1, std::memory_order_relaxed);
}

CKVitemType::CKVitemType(const std::string& keyText, long key, const std::string& ident,
                         const CKVdimension& dimension)
    : m_strKey(keyText), m_nNumId(key), m_lUserUnit(-1), m_strIdent(ident),
      m_pDimension(&dimension), m_lFilter(0), m_nFileItem(1), m_nDecimals(-1), m_dDefault(0.0) {}

struct CKVitemType::AllowedIndex {
    CKVhashIndex<long, bool> keys;
    CKVhashIndex<CKVhashedView, bool> idents; // views of the units' idents
};

void CKVitemType::AllowedIndexDelete::operator()(AllowedIndex* index) const {
    delete index;
}

bool CKVitemType::AllowUnit(const CKVunit& unit, bool atFront) {
    // An item type without a dimension accepts no unit at all.
    const bool bOk = m_pDimension != nullptr && unit.IsEqv(*m_pDimension);
    XUN_ASSERT(bOk, kAllowUnitDimension);
    // The unit's ident with its hash, for the indexes (hashed once).
    const CKVhashedView ident = m_allowed || m_lstUnits.size() >= kIndexFrom
                                    ? CKVhashedView(unit.m_strIdent)
                                    : CKVhashedView();
    if (m_lstUnits.size() < kIndexFrom) {
        for (const CKVunit* allowed : m_lstUnits) {
            if (allowed == nullptr)
                continue;
            if (allowed->m_lKey == unit.m_lKey || allowed->m_strIdent == unit.m_strIdent)
                return false;
        }
    } else {
        if (!m_allowed)
            m_allowed.reset(new AllowedIndex);
        m_allowed->keys.Reserve(m_lstUnits.size() + 1);
        m_allowed->idents.Reserve(m_lstUnits.size() + 1);
        for (; m_nIndexed < m_lstUnits.size(); ++m_nIndexed) {
            const CKVunit* allowed = m_lstUnits[m_nIndexed];
            if (allowed == nullptr)
                continue;
            m_allowed->keys.Set(allowed->m_lKey, true);
            m_allowed->idents.Set(CKVhashedView(allowed->m_strIdent), true);
        }
        if (m_allowed->keys.Find(unit.m_lKey) != nullptr ||
            m_allowed->idents.Find(ident) != nullptr)
            return false;
    }
    // Room first (the indexes have it already), so that a failure leaves
    // everything as it was.
    xunReserveOneMore_(m_lstUnits);
    if (atFront)
        m_lstUnits.insert(m_lstUnits.begin(), &unit);
    else
        m_lstUnits.push_back(&unit);
    if (m_allowed) {
        m_allowed->keys.Set(unit.m_lKey, true);
        m_allowed->idents.Set(ident, true);
        m_nIndexed = m_lstUnits.size();
    }
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
