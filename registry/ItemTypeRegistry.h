// CKVitemTypeRegistry: the item types of a registry - in registration order,
// found by numeric key and by ident, owned by the registry together with the
// dimension each item type was given.
//
// Lookups and walks only read; adding and changing item types (user unit,
// allowed units, filter mask, texts) must run alone.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "registry/KVitemType.h"
#include "registry/Table.h"

inline long XunKeyOf(const CKVitemType& item) {
    return item.m_nNumId;
}
inline const std::string& XunIdentOf(const CKVitemType& item) {
    return item.m_strIdent;
}

class CKVitemTypeRegistry {
  public:
    CKVitemTypeRegistry() = default;
    CKVitemTypeRegistry(const CKVitemTypeRegistry&) = delete;
    CKVitemTypeRegistry& operator=(const CKVitemTypeRegistry&) = delete;

    // Registers an item type (appended) under its key and ident, and takes
    // it over together with its dimension (which may be null when the item
    // type points to a dimension owned elsewhere). Returns false and changes
    // nothing (both stay with the caller) when the key or the ident is taken.
    bool Add(std::unique_ptr<CKVitemType>& item, std::unique_ptr<CKVdimension>& dimension);

    CKVitemType* FindByKey(long key) const { return m_table.FindByKey(key); }
    CKVitemType* FindByIdent(std::string_view ident) const { return m_table.FindByIdent(ident); }
    std::size_t Count() const { return m_table.Count(); }
    CKVitemType* At(std::size_t index) const { return m_table.At(index); }
    auto begin() const { return m_table.begin(); }
    auto end() const { return m_table.end(); }

    // The key for an item type created at run time: one above the largest
    // key in use, at least 110000. False when the largest key leaves no room
    // in the interface's int. Constant time: the registry keeps its largest
    // key.
    bool NextRunTimeKey(long& key) const;

    // Throws std::logic_error naming the first broken invariant.
    void CheckInvariants() const;

  private:
    CKVtable<CKVitemType> m_table;
    std::vector<std::unique_ptr<CKVdimension>> m_dimensions;
    long m_largestKey = 0; // meaningless while the registry is empty
};
