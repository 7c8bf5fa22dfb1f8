// Exported unit functions: lookups by key, ident and name, equivalence,
// iteration and run-time creation of units.
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

#include "registry/TextArg.h"
#include "registry/TextList.h"
#include "registry/UnitRegistry.h"
#include "units/KVexpr.h"
#include "xun.h"

namespace {

// Name rules shared by the unit name searches: the description itself, its
// singular (description = name + 's') or its plural (name = description + 's').
// Lengths are compared as 32-bit values.
bool MatchesDescription(const std::string& desc, const char* name) {
    const int nameLength = static_cast<int>(std::strlen(name));
    const int descLength = static_cast<int>(desc.size());
    if (nameLength == descLength)
        return std::memcmp(desc.data(), name, nameLength) == 0;
    if (descLength == nameLength + 1)
        return std::memcmp(desc.data(), name, nameLength) == 0 && desc[nameLength] == 's';
    if (nameLength == descLength + 1)
        return std::memcmp(desc.data(), name, descLength) == 0 && name[descLength] == 's';
    return false;
}

// First unit in list order with the given dimension and a non-zero key.
const CKVunit* FirstEqvUnit(const CKVdimension& dim) {
    for (const CKVunit* unit : UnitList_)
        if (unit != nullptr && unit->IsEqv(dim) && unit->m_lKey != 0)
            return unit;
    return nullptr;
}

// Stores a found unit's key and description; 1 for a real unit (key != 0).
int HandOut(const CKVunit* unit, int* tag, const char** key) {
    *tag = static_cast<int>(unit->m_lKey);
    *key = unit->m_strDesc.c_str();
    return 1;
}

int HandOut(const CKVunitOrderEntry& entry, int* tag, const char** key) {
    *tag = static_cast<int>(entry.key);
    *key = entry.unit->m_strDesc.c_str();
    return 1;
}

// How many entries ahead the walks load units.
const size_t kLoadAhead = 8;

} // namespace

bool xunUnitNameMatches_(const std::string& desc, const char* name) {
    return MatchesDescription(desc, name);
}

const CKVunit* xunFirstEqvUnit_(const CKVdimension& dim) {
    return FirstEqvUnit(dim);
}

extern "C" {

int xunUnitGetAll(char** list) {
    return xunJoinIdents_(
        UnitList_, [](const CKVunit* u) { return &u->m_strIdent; }, list);
}

int xunUnitNew(const char* ident, const char* key, const char* abbreviation,
               const char* expression) {
    const std::string identText = xunTextArg_(ident), keyText = xunTextArg_(key),
                      abbrText = xunTextArg_(abbreviation), exprText = xunTextArg_(expression);
    long newKey = 100000;
    for (const CKVunit* unit : UnitList_)
        if (unit != nullptr && unit->m_lKey >= newKey)
            newKey = unit->m_lKey + 1;

    CKVunit* rawUnit = nullptr;
    double* rawValue = nullptr;
    const bool ok = bEvaluateExpression(exprText.c_str(), &rawUnit, &rawValue);
    std::unique_ptr<CKVunit> unit(rawUnit);
    std::unique_ptr<double> value(rawValue);
    if (!ok || !unit)
        return 0;
    unit->m_strIdent = identText;
    unit->m_strDesc = keyText;
    unit->m_strAbbr = abbrText;
    unit->m_strExpr = exprText;
    unit->m_lKey = newKey;
    if (!AddUnit_(*unit, 0))
        return 0;
    unit.release();
    return 1;
}

int xunGetUnitKey(int tag, const char** key) {
    const CKVunit* unit = xunFindUnitByKey_(tag);
    if (unit == nullptr)
        return 0;
    *key = unit->m_strDesc.c_str();
    return 1;
}

int xunGetUnitIdent(int tag, const char** ident) {
    const CKVunit* unit = xunFindUnitByKey_(tag);
    if (unit == nullptr)
        return 0;
    *ident = unit->m_strIdent.c_str();
    return 1;
}

int xunGetUnitAbbreviation(int tag, const char** abbreviation) {
    const CKVunit* unit = xunFindUnitByKey_(tag);
    if (unit == nullptr)
        return 0;
    *abbreviation = unit->m_strAbbr.c_str();
    return 1;
}

int xunGetUnitTag(const char* name, int* tag) {
    if (name == nullptr) {
        *tag = 0;
        return 0;
    }
    for (const CKVunit* unit : UnitList_) {
        if (unit == nullptr)
            continue;
        if (MatchesDescription(unit->m_strDesc, name) || unit->IsAlias(name)) {
            *tag = static_cast<int>(unit->m_lKey);
            return unit->m_lKey != 0 ? 1 : 0;
        }
    }
    *tag = 0;
    return 0;
}

int xunGetUnitTagFromIdent(const char* ident, int* tag) {
    const CKVunit* unit = ident != nullptr ? xunFindUnitByIdent_(ident) : nullptr;
    if (unit == nullptr)
        return 0;
    *tag = static_cast<int>(unit->m_lKey);
    return 1;
}

int xunUnitsEqv(int tag1, int tag2) {
    const CKVunit* unit1 = xunFindUnitByKey_(tag1);
    const CKVunit* unit2 = xunFindUnitByKey_(tag2);
    if (unit1 == nullptr || unit2 == nullptr || unit1->m_lKey == 0 || unit2->m_lKey == 0)
        return 0;
    return unit1->IsEqv(*unit2) ? 1 : 0;
}

int xunGetBaseUnit(int tag, int* baseTag, const char** baseKey) {
    const CKVunit* unit = xunFindUnitByKey_(tag);
    if (unit == nullptr)
        return 0;
    const CKVunit* base = FirstEqvUnit(unit->GetDim());
    if (base == nullptr)
        return 0;
    return HandOut(base, baseTag, baseKey);
}

int xunGetNextEqvUnit(int tag, int prevTag, int* nextTag, const char** nextKey) {
    const CKVunit* reference = xunFindUnitByKey_(tag);
    if (reference == nullptr)
        return 0;
    const std::vector<CKVunitOrderEntry>& order = xunUnitOrder_();
    size_t i = 0;
    if (prevTag != 0) {
        const size_t found = xunFindUnitIndexByTag_(prevTag);
        if (found == kNoUnitIndex)
            return 0;
        i = found + 1;
    }
    for (; i < order.size(); ++i) {
        // Load ahead: the units a few entries on, and the dimensions of the
        // units (already loaded) a little closer.
        if (i + 2 * kLoadAhead < order.size() && order[i + 2 * kLoadAhead].unit != nullptr)
            __builtin_prefetch(&order[i + 2 * kLoadAhead].unit->m_pDimParent);
        if (i + kLoadAhead < order.size() && order[i + kLoadAhead].unit != nullptr) {
            // (The members, not GetDim(): a load ahead asserts nothing.)
            const CKVunit* ahead = order[i + kLoadAhead].unit;
            __builtin_prefetch(ahead->m_pDimParent != nullptr ? ahead->m_pDimParent
                                                              : ahead->m_pDimTemp);
        }
        const CKVunitOrderEntry& entry = order[i];
        if (entry.unit != nullptr && entry.unit->IsEqv(*reference) && entry.key != 0) {
            xunNoteHandedOut_(i);
            return HandOut(entry, nextTag, nextKey);
        }
    }
    return 0;
}

int xunGetNextUnit(int prevTag, int* nextTag, const char** nextKey) {
    const std::vector<CKVunitOrderEntry>& order = xunUnitOrder_();
    size_t next = 0;
    if (prevTag != 0) {
        const size_t found = xunFindUnitIndexByTag_(prevTag);
        if (found == kNoUnitIndex)
            return 0;
        next = found + 1;
    }
    if (next >= order.size())
        return 0;
    const CKVunitOrderEntry& entry = order[next];
    if (entry.unit == nullptr || entry.key == 0)
        return 0;
    xunNoteHandedOut_(next);
    // A walk asks for the following entries next: load the description of
    // one a few entries on while the caller goes on.
    if (next + kLoadAhead < order.size() && order[next + kLoadAhead].unit != nullptr)
        __builtin_prefetch(&order[next + kLoadAhead].unit->m_strDesc);
    return HandOut(entry, nextTag, nextKey);
}

int xunUnitGetParameters(int tag, double* factor, double* offset, double* powers, double* factors) {
    const CKVunit* unit = xunFindUnitByKey_(tag);
    if (unit == nullptr)
        return 0;
    *factor = unit->m_dFactor;
    *offset = unit->m_dOffset;
    unit->GetDim().GetPowers(powers[0], powers[1], powers[2], powers[3], powers[4], powers[5],
                             powers[6]);
    unit->GetFactors(factors[0], factors[1], factors[2], factors[3], factors[4], factors[5],
                     factors[6]);
    return 1;
}

} // extern "C"
