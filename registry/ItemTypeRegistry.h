// The process-wide item-type registry: three containers that always hold the
// same item types - a list in registration order, a map key -> item type and
// a map ident -> item type. The registry owns the item types until the
// process ends.
#pragma once

#include <map>
#include <string>

#include "registry/KVitemType.h"

typedef std::map<long, CKVitemType*> CKVitemTypeMap;
typedef std::map<std::string, CKVitemType*> CKVitemTypeStringMap;

extern CKVitemTypeList ItemTypeList_;
extern CKVitemTypeMap ItemTypeMap_;
extern CKVitemTypeStringMap ItemTypeStringMap_;

// The reserved any-unit item type: every registered unit is allowed for it.
const long AnyUnitItemType_ = 999;
// Item types created at run time get keys from this value up.
const long FirstRunTimeItemType_ = 110000;

// Registers an item type under key (the item's own key) and its ident,
// appended to the list. Returns 0 and changes nothing when the key or the
// ident is taken.
int AddItemType_(long key, CKVitemType& item);

// Lookups that never insert; null for an unknown key or ident (or an entry
// that holds no item type).
CKVitemType* xunFindItemTypeByKey_(long key);
CKVitemType* xunFindItemTypeByIdent_(const std::string& ident);
