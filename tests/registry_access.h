// Test access to the process-wide registry: lookups, the objects in
// registration order, and registration of objects a test built itself.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "registry/Registries.h"

namespace xuntest {

inline CKVregistries& Registries() {
    return xunRegistries_();
}

inline const CKVunit* UnitByKey(long key) {
    return xunRegistries_().units.FindByKey(key);
}
inline const CKVunit* UnitByIdent(const std::string& ident) {
    return xunRegistries_().units.FindByIdent(ident);
}
inline CKVitemType* ItemByKey(long key) {
    return xunRegistries_().itemTypes.FindByKey(key);
}
inline CKVitemType* ItemByIdent(const std::string& ident) {
    return xunRegistries_().itemTypes.FindByIdent(ident);
}
inline CKVfilter* FilterByKey(long key) {
    return xunRegistries_().filters.FindByKey(key);
}
inline CKVfilter* FilterByIdent(const std::string& ident) {
    return xunRegistries_().filters.FindByIdent(ident);
}

// The registered objects in registration order.
inline std::vector<const CKVunit*> AllUnits() {
    return std::vector<const CKVunit*>(xunRegistries_().units.begin(), xunRegistries_().units.end());
}
inline std::vector<CKVitemType*> AllItemTypes() {
    return std::vector<CKVitemType*>(xunRegistries_().itemTypes.begin(),
                                     xunRegistries_().itemTypes.end());
}
inline std::vector<CKVfilter*> AllFilters() {
    return std::vector<CKVfilter*>(xunRegistries_().filters.begin(),
                                   xunRegistries_().filters.end());
}

// Registers an object built with new; the registry owns it when the result
// is 1, the caller keeps it otherwise.
inline int AddUnit(CKVunit* unit, bool atFront = false) {
    std::unique_ptr<CKVunit> owned(unit);
    const bool added = xunRegistries_().units.Add(owned, atFront);
    owned.release();
    return added ? 1 : 0;
}
inline int AddItemType(CKVitemType* item) {
    std::unique_ptr<CKVitemType> owned(item);
    std::unique_ptr<CKVdimension> noDimension;
    const bool added = xunRegistries_().itemTypes.Add(owned, noDimension);
    owned.release();
    return added ? 1 : 0;
}
inline int AddFilter(CKVfilter* filter) {
    std::unique_ptr<CKVfilter> owned(filter);
    const bool added = xunRegistries_().filters.Add(owned);
    owned.release();
    return added ? 1 : 0;
}

// Checks every registry invariant; a failure names the broken one.
inline std::string BrokenInvariant() {
    try {
        xunRegistries_().CheckInvariants();
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace xuntest
