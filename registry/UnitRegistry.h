// The process-wide unit registry: three containers that always hold the same
// units - a list in registration order, a map key -> unit and a map ident ->
// unit. The registry owns the units until the process ends.
//
// Beside them AddUnit_ and xunRemoveUnit_ keep three hash indexes in step
// (registry/HashIndex.h): key -> unit and ident -> unit, which the lookups
// below use instead of walking the ordered maps, and unit -> list position,
// which lets the iteration functions find the previous unit without walking
// the list. The containers stay what the rest of the library reads in order;
// the indexes only answer lookups. Lookups never write anything, so after
// loading any number of threads may look up and convert at once.
#pragma once

#include <list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "registry/HashIndex.h"
#include "units/KVunit.h"

typedef std::list<CKVunit*> CKVunitList;
typedef std::map<long, CKVunit*> CKVunitMap;
typedef std::map<std::string, CKVunit*> CKVunitStringMap;

extern CKVunitList UnitList_;
extern CKVunitMap UnitMap_;
extern CKVunitStringMap UnitStringMap_;

// Registers a fully built unit, appended or (atFront != 0) inserted before all
// others. Returns 0 and changes nothing when its key or ident is taken.
int AddUnit_(CKVunit& unit, int atFront);

// An entry of the key index: the unit, and beside it what a conversion reads
// of it, copied when the unit is registered (the factor, offset and dimension
// of a registered unit never change). A conversion then reads one slot per
// unit instead of the unit and its dimension, which lie anywhere in memory.
struct CKVunitKeyEntry {
    CKVunit* unit = nullptr;
    double factor = 0.0;
    double offset = 0.0;
    // Equal for units of equal dimensions (CKVdimension::IsEqv), different
    // otherwise; kNoDimensionClass for a dimension equal to none, not even to
    // itself (an exponent that is NaN); kUncheckedUnit for a unit that its
    // invariant checks (CKVunit::AssertValid) would stop.
    int dimensionClass = 0;
};
const int kNoDimensionClass = -1;
const int kUncheckedUnit = -2;

// The key index (defined in UnitRegistry.cpp, kept in step by AddUnit_ and
// xunRemoveUnit_), declared here so that the key lookups below inline.
extern CKVhashIndex<long, CKVunitKeyEntry> UnitKeyIndex_;

// Lookups that never insert (nor write anything else); null for an unknown key
// or ident.
inline const CKVunitKeyEntry* xunFindUnitEntryByKey_(long key) {
    return UnitKeyIndex_.Find(key);
}
inline CKVunit* xunFindUnitByKey_(long key) {
    const CKVunitKeyEntry* entry = UnitKeyIndex_.Find(key);
    return entry != nullptr ? entry->unit : nullptr;
}
CKVunit* xunFindUnitByIdent_(std::string_view ident);

// Position of a unit in UnitList_ (end() when absent), with a one-entry cache
// for the case of the same unit asked for twice in a row: the position of the
// first element that holds the unit, found through the position index in
// constant time. Writes the cache, so it is for one thread at a time.
CKVunitList::iterator xunFindUnit_(const CKVunit* unit);

// The name rules of the unit name searches: name equals the description, or
// is its singular (description = name + "s") or its plural (name =
// description + "s"). Case-sensitive.
bool xunUnitNameMatches_(const std::string& desc, const char* name);

// First unit in list order of the given dimension whose key is non-zero.
const CKVunit* xunFirstEqvUnit_(const CKVdimension& dim);

// UnitList_ as an array, for the iteration functions: entry i describes
// element i of the list - its unit (null for a null element), the unit's key
// (0 for a null element) and its position in the list. Walking the array
// instead of the list lets the walks load ahead.
struct CKVunitOrderEntry {
    CKVunit* unit;
    long key;
    CKVunitList::iterator position;
};

// The array, brought up to date first: AddUnit_ appends to it, and after an
// insertion at the front, a removal, or a change of UnitList_ made directly
// it is built again from the list. For one thread at a time.
const std::vector<CKVunitOrderEntry>& xunUnitOrder_();

// The entry of the position that xunFindUnit_(xunFindUnitByKey_(tag))
// gives, with the same effect on the find cache; kNoUnitIndex when it finds
// nothing. A caller walking the list passes back the tag it was handed last;
// that entry is remembered (xunNoteHandedOut_), so such a step needs no
// lookup at all. Call xunUnitOrder_() first.
const size_t kNoUnitIndex = static_cast<size_t>(-1);
size_t xunFindUnitIndexByTag_(long tag);

// Remembers entry index of xunUnitOrder_() (a registered unit) as the one an
// iteration function has just handed out.
void xunNoteHandedOut_(size_t index);

// Takes a registered unit out of UnitList_ and out of both maps (its key and
// ident entries); the caller deletes the unit. Clears the find cache, which
// must never outlive its element.
void xunRemoveUnit_(const CKVunit* unit);
