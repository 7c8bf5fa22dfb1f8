// The process-wide unit registry: three containers that always hold the same
// units - a list in registration order, a map key -> unit and a map ident ->
// unit. The registry owns the units until the process ends.
#pragma once

#include <list>
#include <map>
#include <string>

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

// Lookups that never insert; null for an unknown key or ident.
CKVunit* xunFindUnitByKey_(long key);
CKVunit* xunFindUnitByIdent_(const std::string& ident);

// Position of a unit in UnitList_ (end() when absent), with a one-entry cache
// for the case of the same unit asked for twice in a row.
CKVunitList::iterator xunFindUnit_(const CKVunit* unit);

// The name rules of the unit name searches: name equals the description, or
// is its singular (description = name + "s") or its plural (name =
// description + "s"). Case-sensitive.
bool xunUnitNameMatches_(const std::string& desc, const char* name);

// First unit in list order of the given dimension whose key is non-zero.
const CKVunit* xunFirstEqvUnit_(const CKVdimension& dim);

// Takes a registered unit out of UnitList_ and out of both maps (its key and
// ident entries); the caller deletes the unit. Clears the find cache, which
// must never outlive its element.
void xunRemoveUnit_(const CKVunit* unit);
