#include "registry/UnitQueries.h"

#include <cstring>
#include <memory>

#include "units/KVderived.h"
#include "units/KVexpr.h"
#include "common/Contract.h"
#include "xun.h"

namespace {

// The name rules of xunUnitNameMatches_ for one name, its length taken once.
class NameMatcher {
  public:
    explicit NameMatcher(const char* name)
        : m_name(name), m_length(static_cast<int>(std::strlen(name))) {}
    bool operator()(const std::string& desc) const {
        return xunUnitNameMatches_(desc, m_name, m_length);
    }

  private:
    const char* m_name;
    int m_length;
};

} // namespace

bool xunUnitNameMatches_(const std::string& desc, const char* name) {
    return xunUnitNameMatches_(desc, name, static_cast<int>(std::strlen(name)));
}

bool xunUnitNameMatches_(const std::string& desc, const char* name, int nameLength) {
    const int descLength = static_cast<int>(desc.size());
    if (nameLength == descLength)
        return std::memcmp(desc.data(), name, static_cast<size_t>(nameLength)) == 0;
    if (descLength == nameLength + 1)
        return std::memcmp(desc.data(), name, static_cast<size_t>(nameLength)) == 0 &&
               desc[static_cast<size_t>(nameLength)] == 's';
    if (nameLength == descLength + 1)
        return std::memcmp(desc.data(), name, static_cast<size_t>(descLength)) == 0 &&
               name[descLength] == 's';
    return false;
}

const CKVunit* xunFindUnitByName_(const CKVunitRegistry& units, const char* name) {
    const NameMatcher matches(name);
    const std::string alias(name);
    for (const CKVunit* unit : units)
        if (matches(unit->m_strDesc) || unit->IsAlias(alias))
            return unit;
    return nullptr;
}

const CKVunit* xunFindItemUnitByName_(const CKVregistries& registries, const CKVitemType& item,
                                      const char* name) {
    // Each candidate is looked up again by its key and compared by the
    // description of the unit registered under that key. The length of the
    // name is taken once.
    const NameMatcher matches(name);
    auto match = [&](const CKVunit* candidate) -> const CKVunit* {
        const CKVunit* unit = registries.units.FindByKey(candidate->m_lKey);
        return unit != nullptr && matches(unit->m_strDesc) ? unit : nullptr;
    };
    if (item.m_nNumId == xun::contract::kAnyUnitItemType) {
        for (const CKVunit* candidate : registries.units)
            if (const CKVunit* found = match(candidate))
                return found;
        return nullptr;
    }
    // A long list is mostly outside the caches: each step asks for the key
    // and the description of the unit two strides ahead and for the key slot of the unit one stride
    // ahead (whose object the step before asked for), so that the scan runs at the speed of memory
    // rather than waiting on each unit in turn.
    const std::vector<const CKVunit*>& list = item.m_lstUnits;
    const long count = static_cast<long>(list.size());
    const long kAhead = 8;
    for (long i = 1; i <= count; ++i) {
        if (i + 2 * kAhead <= count)
            if (const CKVunit* ahead = list[static_cast<size_t>(i - 1 + 2 * kAhead)]) {
                __builtin_prefetch(&ahead->m_lKey);
                __builtin_prefetch(&ahead->m_strDesc);
            }
        if (i + kAhead <= count)
            if (const CKVunit* ahead = list[static_cast<size_t>(i - 1 + kAhead)])
                registries.units.PrefetchKey(ahead->m_lKey);
        if (const CKVunit* found = match(item.GetUnit(i)))
            return found;
    }
    return nullptr;
}

const CKVunit* xunBaseUnitOf_(const CKVunitRegistry& units, const CKVdimension& dim) {
    return xunFirstUnitOfDimension_(units, dim);
}

namespace {

// The unit that the calling thread's last step of a walk handed out, its
// index, and the registry and generation it was found in.
struct WalkMemory {
    const CKVunitRegistry* registry = nullptr;
    unsigned long long generation = 0;
    const CKVunit* unit = nullptr;
    size_t index = 0;

    // Whether prevTag is the int tag of the remembered unit and the registry
    // has not changed since (so that the unit is still at its index).
    bool Holds(const CKVunitRegistry& units, long prevTag) const {
        if (unit == nullptr || registry != &units || generation != units.Generation())
            return false;
        return static_cast<long>(static_cast<int>(unit->m_lKey)) == prevTag;
    }
    // Remembers what a step hands out (the unit at index), or (null) forgets.
    void Step(const CKVunitRegistry& units, const CKVunit* handedOut, size_t at) {
        registry = &units;
        generation = units.Generation();
        unit = handedOut;
        index = at;
    }
};

thread_local WalkMemory NextUnitWalk_;
thread_local WalkMemory NextEqvUnitWalk_;

// Where a walk goes on: index 0 for prevTag 0, else the index after the
// unit of prevTag (the remembered unit when prevTag is its tag: no lookup at
// all); npos when prevTag names no unit.
size_t WalkStart(const CKVunitRegistry& units, long prevTag, const WalkMemory& memory) {
    if (memory.Holds(units, prevTag))
        return memory.index + 1;
    if (prevTag == 0)
        return 0;
    const CKVunit* previous = units.FindByKey(prevTag);
    if (previous == nullptr)
        return CKVunitRegistry::npos;
    return units.IndexOf(previous) + 1;
}

} // namespace

int xunNextUnit_(const CKVunitRegistry& units, long prevTag, const CKVunit*& next) {
    const size_t index = WalkStart(units, prevTag, NextUnitWalk_);
    if (index == CKVunitRegistry::npos || index >= units.Count() || units.At(index)->m_lKey == 0) {
        NextUnitWalk_.Step(units, nullptr, 0);
        return index == CKVunitRegistry::npos ? XUN_ERR_UNKNOWN_UNIT : XUN_ERR_END;
    }
    next = units.At(index);
    NextUnitWalk_.Step(units, next, index);
    return XUN_OK;
}

namespace {

// The next unit of reference's dimension after prevTag, and its index.
int NextEqvUnit(const CKVunitRegistry& units, const CKVunit& reference, long prevTag,
                const CKVunit*& next, size_t& nextIndex) {
    size_t index = WalkStart(units, prevTag, NextEqvUnitWalk_);
    if (index == CKVunitRegistry::npos)
        return XUN_ERR_UNKNOWN_UNIT;
    // The key entries hold the units' dimension classes: units of equal
    // dimensions share a class, so the walk compares two numbers per unit.
    // Units without a class are compared as CKVunit::IsEqv does (with its
    // checks).
    const CKVunitKeyEntry* ref = units.FindEntry(reference.m_lKey);
    const int refClass =
        ref != nullptr && ref->unit == &reference ? ref->dimensionClass : kUncheckedUnit;
    // A unit's class is in its key entry, a slot of the key index apart from
    // the unit: the scan asks for the key of the unit two strides ahead and
    // for the key entry of the unit one stride ahead, so that it does not
    // wait on memory in a large registry.
    const size_t kAhead = 8;
    const size_t count = units.Count();
    for (; index < count; ++index) {
        if (index + 2 * kAhead < count)
            __builtin_prefetch(&units.At(index + 2 * kAhead)->m_lKey);
        if (index + kAhead < count)
            units.PrefetchKey(units.At(index + kAhead)->m_lKey);
        const CKVunit* unit = units.At(index);
        const int unitClass = units.FindEntry(unit->m_lKey)->dimensionClass;
        bool eqv = false;
        if (refClass == kUncheckedUnit || unitClass == kUncheckedUnit)
            eqv = unit->IsEqv(reference);
        else if (refClass >= 0 && unitClass >= 0)
            eqv = refClass == unitClass;
        if (eqv && unit->m_lKey != 0) {
            next = unit;
            nextIndex = index;
            return XUN_OK;
        }
    }
    return XUN_ERR_END;
}

} // namespace

int xunNextEqvUnit_(const CKVunitRegistry& units, const CKVunit& reference, long prevTag,
                    const CKVunit*& next) {
    size_t index = 0;
    const int result = NextEqvUnit(units, reference, prevTag, next, index);
    NextEqvUnitWalk_.Step(units, result == XUN_OK ? next : nullptr, index);
    return result;
}

int xunCreateUnit_(CKVunitRegistry& units, const std::string& ident, const std::string& desc,
                   const std::string& abbr, const std::string& expression) {
    long key = 0;
    const bool keyLeft = units.NextRunTimeKey(key);
    // The index slots of the new unit are far apart in a large registry: let
    // them come from memory while the expression is evaluated.
    units.Prefetch(key, ident);
    CKVunit* rawUnit = nullptr;
    double* rawValue = nullptr;
    const bool ok = xunEvaluateExpression_(expression.c_str(), units, &rawUnit, &rawValue);
    std::unique_ptr<CKVunit> unit(rawUnit);
    std::unique_ptr<double> value(rawValue);
    if (!ok || !unit)
        return XUN_ERR_EXPRESSION;
    if (!keyLeft)
        return XUN_ERR_LIMIT;
    unit->m_strIdent = ident;
    unit->m_strDesc = desc;
    unit->m_strAbbr = abbr;
    unit->m_strExpr = expression;
    unit->m_lKey = key;
    return units.Add(unit, false) ? XUN_OK : XUN_ERR_TAKEN;
}
