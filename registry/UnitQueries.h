// The unit questions of the C interface, over a unit registry: name
// matching, walks in registration order, base units and the creation of
// units at run time. Each answers with a result code (XUN_OK or one of the
// XUN_ERR_... values of xun.h); the C interface records the reason.
#pragma once

#include <string>

#include "registry/Registries.h"

// The name rules of the unit name searches: name equals the description, or
// is its singular (description = name + "s") or its plural (name =
// description + "s"). Case-sensitive; lengths compared as 32-bit values.
bool xunUnitNameMatches_(const std::string& desc, const char* name);
// The same with the name's length (strlen) given.
bool xunUnitNameMatches_(const std::string& desc, const char* name, int nameLength);

// The first unit in registration order whose description matches name by
// the rules above or which has name as an alias; null when none does.
const CKVunit* xunFindUnitByName_(const CKVunitRegistry& units, const char* name);

// The first of the item type's candidate units (its allowed units; every
// unit for the any-unit item type 999) whose description matches name by
// the rules above (aliases do not count); null when none does.
const CKVunit* xunFindItemUnitByName_(const CKVregistries& registries, const CKVitemType& item,
                                      const char* name);

// The base unit of a dimension: the first unit in registration order of
// that dimension with a non-zero key; null when there is none.
const CKVunit* xunBaseUnitOf_(const CKVunitRegistry& units, const CKVdimension& dim);

// The unit after prevTag in registration order (the first for prevTag 0).
// XUN_ERR_UNKNOWN_UNIT when prevTag names no unit, XUN_ERR_END at the end
// or at a unit with key 0.
//
// prevTag is what the interface handed out: a unit's key as an int, which
// for a key beyond the int range is its low 32 bits - the tag of another
// unit, or of none, or 0. So each walk remembers, per thread, the unit its
// last step handed out; when prevTag is that unit's int tag, the walk goes
// on after that very unit. A walk thus visits every unit once, whatever
// the keys, and ends. The memory is the calling thread's own (nothing is
// shared), holds while the registry is unchanged (Generation), and is
// forgotten when the walk ends or fails.
int xunNextUnit_(const CKVunitRegistry& units, long prevTag, const CKVunit*& next);

// The next unit after prevTag (from the start for 0) that is equivalent to
// the reference unit and has a non-zero key; prevTag as above, with a
// memory of its own.
int xunNextEqvUnit_(const CKVunitRegistry& units, const CKVunit& reference, long prevTag,
                    const CKVunit*& next);

// Creates a unit at run time from an expression over the registered units
// and registers it under the next run-time key: XUN_OK,
// XUN_ERR_EXPRESSION (no unit), XUN_ERR_TAKEN (ident taken) or
// XUN_ERR_LIMIT (no key left).
int xunCreateUnit_(CKVunitRegistry& units, const std::string& ident, const std::string& desc,
                   const std::string& abbr, const std::string& expression);
