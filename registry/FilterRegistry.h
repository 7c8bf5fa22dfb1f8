// The process-wide filter registry (a list in registration order, a map bit
// value -> filter and a map ident -> filter, always holding the same
// filters) and the product filter. The registry owns the filters until the
// process ends.
#pragma once

#include <map>
#include <string>

#include "registry/KVfilter.h"

typedef std::map<long, CKVfilter*> CKVfilterMap;
typedef std::map<std::string, CKVfilter*> CKVfilterStringMap;

extern CKVfilterList FilterList_;
extern CKVfilterMap FilterMap_;
extern CKVfilterStringMap FilterStringMap_;

// The product filter, kept for clients: initially bits 0 to 30 set.
extern long ProductFilter_;

// The flyby filter bit (bit 31); negative when passed as int.
const long FlybyFilter_ = 0x80000000L;
// A filter of this bit value is left out when the next free bit is chosen.
const long SkippedFilterBit_ = 0x40000000L;

// Registers a filter under its bit value and its ident, appended to the list.
// Returns 0 and changes nothing when the bit value or the ident is taken.
int AddFilter_(CKVfilter& filter);

// Lookups that never insert; null for an unknown bit value or ident (or an
// entry that holds no filter).
CKVfilter* xunFindFilterByKey_(long bit);
CKVfilter* xunFindFilterByIdent_(const std::string& ident);
