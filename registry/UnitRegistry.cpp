#include "registry/UnitRegistry.h"

#include <algorithm>
#include <iterator>

#include "registry/HashIndex.h"

CKVunitList UnitList_;
CKVunitMap UnitMap_;
CKVunitStringMap UnitStringMap_;
CKVhashIndex<long, CKVunitKeyEntry> UnitKeyIndex_;

namespace {

// One dimension of each class handed out so far; the class is the index.
std::vector<CKVdimension> DimensionClasses;

// The class of a dimension: that of an equal one seen before, else a new one.
int DimensionClassOf(const CKVdimension& dim) {
    if (!dim.IsEqv(dim))
        return kNoDimensionClass;
    for (size_t i = 0; i < DimensionClasses.size(); ++i)
        if (DimensionClasses[i].IsEqv(dim))
            return static_cast<int>(i);
    DimensionClasses.push_back(dim);
    return static_cast<int>(DimensionClasses.size() - 1);
}

CKVunitKeyEntry KeyEntryOf(CKVunit& unit) {
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

// The lookup indexes, kept in step with the containers by AddUnit_ and
// xunRemoveUnit_. They hold registered units only, never null.
CKVhashIndex<std::string, CKVunit*> UnitIdentIndex_;

// The list position of every registered unit: its first element in
// UnitList_ (a unit is listed once; the first is what a walk from the front
// would find should it ever be listed twice), and the index of that element
// in UnitOrder_ while UnitOrder_ is up to date.
struct Position {
    CKVunitList::iterator position;
    size_t index;
};
CKVhashIndex<const CKVunit*, Position> UnitPositionIndex_;

// UnitList_ as an array (xunUnitOrder_); to be built again when stale.
std::vector<CKVunitOrderEntry> UnitOrder_;
bool UnitOrderStale = false;

// The find cache: the unit found by the last successful search and its place.
const CKVunit* PrevFoundUn = nullptr;
CKVunitList::iterator PrevFoundPos;
bool PrevFoundPosSet = false;

// The entry of UnitOrder_ an iteration function handed out last
// (kNoUnitIndex: none). Forgotten whenever UnitOrder_ is built again or a
// unit is removed.
size_t HandedOutIndex = kNoUnitIndex;
// Set once some unit is listed twice: positions found through the index are
// then the first ones, and the remembered one may not be.
bool UnitListedTwice = false;

void RebuildOrder() {
    UnitOrder_.clear();
    UnitOrder_.reserve(UnitList_.size());
    for (CKVunitList::iterator it = UnitList_.begin(); it != UnitList_.end(); ++it) {
        CKVunit* unit = *it;
        const size_t index = UnitOrder_.size();
        UnitOrder_.push_back(CKVunitOrderEntry{unit, unit != nullptr ? unit->m_lKey : 0, it});
        if (unit != nullptr) {
            const Position* known = UnitPositionIndex_.Find(unit);
            if (known != nullptr && known->position == it)
                UnitPositionIndex_.Set(unit, Position{it, index});
        }
    }
    UnitOrderStale = false;
    HandedOutIndex = kNoUnitIndex;
}

} // namespace

CKVunit* xunFindUnitByIdent_(std::string_view ident) {
    CKVunit* const* unit = UnitIdentIndex_.Find(ident);
    return unit != nullptr ? *unit : nullptr;
}

int AddUnit_(CKVunit& unit, int atFront) {
    const long key = unit.m_lKey;
    const std::string& ident = unit.m_strIdent;
    if (xunFindUnitByKey_(key) != nullptr || xunFindUnitByIdent_(ident) != nullptr)
        return 0;
    const bool listed = UnitPositionIndex_.Find(&unit) != nullptr;
    if (listed)
        UnitListedTwice = true;
    if (atFront) {
        UnitList_.push_front(&unit);
        UnitPositionIndex_.Set(&unit, Position{UnitList_.begin(), 0});
        // Every entry moves one place: the array is built again when needed.
        UnitOrderStale = true;
        HandedOutIndex = kNoUnitIndex;
    } else {
        UnitList_.push_back(&unit);
        const CKVunitList::iterator last = std::prev(UnitList_.end());
        if (!listed)
            UnitPositionIndex_.Set(&unit, Position{last, UnitOrder_.size()});
        if (!UnitOrderStale)
            UnitOrder_.push_back(CKVunitOrderEntry{&unit, key, last});
    }
    UnitMap_[key] = &unit;
    UnitStringMap_[ident] = &unit;
    UnitKeyIndex_.Set(key, KeyEntryOf(unit));
    UnitIdentIndex_.Set(ident, &unit);
    return 1;
}

CKVunitList::iterator xunFindUnit_(const CKVunit* unit) {
    if (!PrevFoundPosSet) {
        PrevFoundPos = UnitList_.begin();
        PrevFoundPosSet = true;
    }
    if (unit == nullptr) {
        // No registered unit is null, so the index cannot answer; the list
        // may still hold null elements put there by hand. Walk as the cache
        // prescribes: from the cached position when null was found last,
        // from the front otherwise.
        CKVunitList::iterator it = (unit == PrevFoundUn) ? PrevFoundPos : UnitList_.begin();
        for (; it != UnitList_.end(); ++it) {
            if (*it == unit) {
                PrevFoundUn = unit;
                PrevFoundPos = it;
                return it;
            }
        }
        return UnitList_.end();
    }
    // The cached position holds the cached unit (removals clear the cache),
    // so a search that starts there ends there at once.
    if (unit == PrevFoundUn)
        return PrevFoundPos;
    const Position* position = UnitPositionIndex_.Find(unit);
    if (position == nullptr)
        return UnitList_.end();
    PrevFoundUn = unit;
    PrevFoundPos = position->position;
    return position->position;
}

const std::vector<CKVunitOrderEntry>& xunUnitOrder_() {
    // A size that differs from the list's betrays a change made to UnitList_
    // directly.
    if (UnitOrderStale || UnitOrder_.size() != UnitList_.size())
        RebuildOrder();
    return UnitOrder_;
}

size_t xunFindUnitIndexByTag_(long tag) {
    if (HandedOutIndex != kNoUnitIndex && UnitOrder_[HandedOutIndex].key == tag &&
        !UnitListedTwice) {
        // What xunFindUnit_ does for this unit: the cached position when it
        // was found last, else its (first and only) position - this entry.
        const CKVunitOrderEntry& entry = UnitOrder_[HandedOutIndex];
        if (!PrevFoundPosSet) {
            PrevFoundPos = UnitList_.begin();
            PrevFoundPosSet = true;
        }
        if (entry.unit != PrevFoundUn) {
            PrevFoundUn = entry.unit;
            PrevFoundPos = entry.position;
        }
        return HandedOutIndex;
    }
    const CKVunit* unit = xunFindUnitByKey_(tag);
    const CKVunitList::iterator it = xunFindUnit_(unit);
    if (it == UnitList_.end())
        return kNoUnitIndex;
    if (unit != nullptr && !UnitListedTwice) {
        const Position* position = UnitPositionIndex_.Find(unit);
        if (position != nullptr && position->position == it)
            return position->index;
    }
    // A null element, or a unit listed twice: count.
    return static_cast<size_t>(std::distance(UnitList_.begin(), it));
}

void xunNoteHandedOut_(size_t index) {
    HandedOutIndex = index;
}

void xunRemoveUnit_(const CKVunit* unit) {
    CKVunitStringMap::iterator byIdent = UnitStringMap_.find(unit->m_strIdent);
    if (byIdent != UnitStringMap_.end() && byIdent->second == unit)
        UnitStringMap_.erase(byIdent);
    if (xunFindUnitByIdent_(unit->m_strIdent) == unit)
        UnitIdentIndex_.Erase(unit->m_strIdent);
    CKVunitMap::iterator byKey = UnitMap_.find(unit->m_lKey);
    if (byKey != UnitMap_.end() && byKey->second == unit)
        UnitMap_.erase(byKey);
    if (xunFindUnitByKey_(unit->m_lKey) == unit)
        UnitKeyIndex_.Erase(unit->m_lKey);
    // The first element that holds the unit goes.
    CKVunitList::iterator first = UnitList_.end();
    if (const Position* position = UnitPositionIndex_.Find(unit))
        first = position->position;
    else
        first = std::find(UnitList_.begin(), UnitList_.end(), unit);
    if (first != UnitList_.end()) {
        CKVunitList::iterator next = UnitList_.erase(first);
        UnitPositionIndex_.Erase(unit);
        // Should the unit be listed again further on, that element is now its
        // first.
        next = std::find(next, UnitList_.end(), unit);
        if (next != UnitList_.end())
            UnitPositionIndex_.Set(unit, Position{next, 0});
    }
    UnitOrderStale = true;
    PrevFoundUn = nullptr;
    PrevFoundPosSet = false;
    HandedOutIndex = kNoUnitIndex;
}
