// The item-type questions and changes of the C interface, over a registry.
// Each answers with a result code (XUN_OK or an XUN_ERR_... value of xun.h).
#pragma once

#include <string>

#include "registry/Registries.h"

// Creates an item type at run time whose dimension and only (default) unit
// are those of the unit unitIdent, under the next run-time key: XUN_OK,
// XUN_ERR_UNKNOWN_UNIT, XUN_ERR_TAKEN (ident taken) or XUN_ERR_LIMIT.
int xunCreateItemType_(CKVregistries& registries, const std::string& ident,
                       const std::string& keyText, const std::string& unitIdent);

// Sets the user unit: any unit of the item type's dimension (any unit for
// the any-unit item type 999). XUN_OK, XUN_ERR_UNKNOWN_UNIT,
// XUN_ERR_UNKNOWN_ITEM_TYPE, XUN_ERR_NO_REAL_UNIT or XUN_ERR_DIMENSION.
int xunSetItemUserUnit_(CKVregistries& registries, long key, long unitTag);

// The number of units an item type allows (every registered unit for 999),
// and the seq-th of them (from 1; null out of range).
long xunItemUnitCount_(const CKVregistries& registries, const CKVitemType& item);
const CKVunit* xunItemUnitAt_(const CKVregistries& registries, const CKVitemType& item, long seq);

// Whether an item type is counted in a filter: for a filter >= 0 only file
// items that are members, for a negative filter (the flyby filter) every
// member.
bool xunIsCountedInFilter_(const CKVitemType& item, long filter);

// The number of item types counted in a filter.
long xunFilteredItemTypeCount_(const CKVitemTypeRegistry& items, long filter);

// The seq-th item type counted in a filter, in registration order; null when
// there is none. The position test follows every item type, counted or not,
// as designed: seq 0 names the first item type when that one is not counted
// itself.
//
// Both remember, per thread, where the calling thread's last question left
// off (and the count), for as long as no item type is added and no filter
// membership changes (xunItemTypeVersion_): walking seq = 1, 2, ... n costs
// O(n) in all instead of O(n) per step. Nothing is shared between threads.
const CKVitemType* xunFilteredItemTypeAt_(const CKVitemTypeRegistry& items, long filter, long seq);
