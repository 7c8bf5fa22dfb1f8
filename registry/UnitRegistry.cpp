#include "registry/UnitRegistry.h"

#include <atomic>
#include <climits>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include "common/Contract.h"

// A flat index: a registry of many units of distinct dimensions meets one
// slot per new dimension rather than a bucket and a node.
struct CKVunitRegistry::DimensionClasses {
    CKVhashIndex<DimensionKey, int, DimensionKeyHash> byKey;
};

bool CKVunitRegistry::DimensionKey::operator==(const DimensionKey& other) const {
    return std::memcmp(bits, other.bits, sizeof bits) == 0;
}

std::size_t CKVunitRegistry::DimensionKeyHash::operator()(const DimensionKey& key) const {
    unsigned long long h = 0;
    for (unsigned long long b : key.bits)
        h = (h ^ b) * 0x9E3779B97F4A7C15ull;
    return static_cast<std::size_t>(h ^ (h >> 29));
}

namespace {
// The source of registry generations: every registry of the process draws
// its numbers from here, so that no two ever share one.
std::atomic<unsigned long long> Generations_{0};
} // namespace

CKVunitRegistry::CKVunitRegistry() : m_classes(new DimensionClasses) {
    Changed();
}

void CKVunitRegistry::Changed() {
    m_generation = ++Generations_;
}

CKVunitRegistry::~CKVunitRegistry() = default;

int CKVunitRegistry::DimensionClassOf(const CKVdimension& dim) {
    // Exact equality of the exponents, as CKVdimension::IsEqv decides: the
    // same bit patterns, with +0 and -0 alike; a NaN exponent makes the
    // dimension equal to none.
    DimensionKey key;
    for (int i = 0; i < CKVdimension::kBaseCount; ++i) {
        const double power = dim.GetPower(i + 1);
        if (std::isnan(power))
            return kNoDimensionClass;
        const double normal = power == 0.0 ? 0.0 : power;
        std::memcpy(&key.bits[i], &normal, sizeof normal);
    }
    if (const int* known = m_classes->byKey.Find(key))
        return *known;
    const int next = static_cast<int>(m_classes->byKey.Size());
    m_classes->byKey.Set(key, next);
    return next;
}

CKVunitKeyEntry CKVunitRegistry::EntryOf(const CKVunit& unit) {
    CKVunitKeyEntry entry;
    entry.unit = &unit;
    entry.factor = unit.m_dFactor;
    entry.offset = unit.m_dOffset;
    // The conditions of CKVunit::AssertValid, without its abort: a unit that
    // fails them is left to the checks at the time of use.
    const bool valid =
        (unit.m_pDimParent == nullptr) != (unit.m_pDimTemp == nullptr) && unit.m_dFactor != 0.0;
    entry.dimensionClass =
        valid
            ? DimensionClassOf(unit.m_pDimParent != nullptr ? *unit.m_pDimParent : *unit.m_pDimTemp)
            : kUncheckedUnit;
    return entry;
}

bool CKVunitRegistry::Add(std::unique_ptr<CKVunit>& unit, bool atFront) {
    const long key = unit->m_lKey;
    if (FindByKey(key) != nullptr || FindByIdent(unit->m_strIdent) != nullptr)
        return false;
    // Everything that may fail comes before the unit goes in.
    const CKVunitKeyEntry entry = EntryOf(*unit);
    std::unique_ptr<const CKVunit> owned(unit.release());
    if (!m_table.Add(owned, atFront, entry)) {
        unit.reset(const_cast<CKVunit*>(owned.release()));
        return false;
    }
    if (m_table.Count() == 1 || key > m_largestKey)
        m_largestKey = key;
    Changed();
    return true;
}

std::unique_ptr<CKVunit> CKVunitRegistry::Remove(const CKVunit* unit) {
    std::unique_ptr<const CKVunit> removed = m_table.Remove(unit);
    if (!removed)
        return nullptr;
    // Only the base units of a load are ever removed, so finding the largest
    // key again (which takes a pass over the units) is rare.
    if (removed->m_lKey == m_largestKey && m_table.Count() > 0) {
        m_largestKey = m_table.At(0)->m_lKey;
        for (const CKVunit* unit : m_table)
            if (unit->m_lKey > m_largestKey)
                m_largestKey = unit->m_lKey;
    }
    Changed();
    return std::unique_ptr<CKVunit>(const_cast<CKVunit*>(removed.release()));
}

void CKVunitRegistry::SetTexts(const CKVunit& unit, const std::string& desc,
                               const std::string& abbr) {
    // The registry owns the unit; the texts are nothing an index or a key
    // entry keeps.
    CKVunit& owned = const_cast<CKVunit&>(unit);
    std::string newDesc(desc), newAbbr(abbr);
    owned.m_strDesc.swap(newDesc);
    owned.m_strAbbr.swap(newAbbr);
    Changed();
}

bool CKVunitRegistry::NextRunTimeKey(long& key) const {
    key = xun::contract::kFirstRunTimeUnitKey;
    if (m_table.Count() == 0 || m_largestKey < key)
        return true;
    // A tag crosses the interface as an int: a key past INT_MAX would be
    // another unit's tag there (and one past LONG_MAX none at all).
    if (m_largestKey >= INT_MAX)
        return false;
    key = m_largestKey + 1;
    return true;
}

void CKVunitRegistry::CheckInvariants() const {
    m_table.CheckInvariants("unit registry");
    bool largestFound = m_table.Count() == 0;
    for (const CKVunit* unit : m_table) {
        if (unit->m_lKey > m_largestKey)
            throw std::logic_error("unit registry: a key is larger than the largest key kept");
        largestFound = largestFound || unit->m_lKey == m_largestKey;
        const CKVunitKeyEntry* entry = FindEntry(unit->m_lKey);
        if (entry == nullptr || entry->unit != unit)
            throw std::logic_error("unit registry: a unit has no key entry");
        if (std::memcmp(&entry->factor, &unit->m_dFactor, sizeof(double)) != 0 ||
            std::memcmp(&entry->offset, &unit->m_dOffset, sizeof(double)) != 0)
            throw std::logic_error("unit registry: a key entry differs from its unit");
    }
    if (!largestFound)
        throw std::logic_error("unit registry: no unit has the largest key kept");
}
