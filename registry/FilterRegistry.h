// CKVfilterRegistry: the filters of a registry - in registration order,
// found by bit value (their key) and by ident, owned by the registry. And
// the process-wide product filter, which the library only keeps for its
// clients.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "registry/KVfilter.h"
#include "registry/Table.h"

inline long XunKeyOf(const CKVfilter& filter) {
    return filter.m_lKey;
}
inline const std::string& XunIdentOf(const CKVfilter& filter) {
    return filter.m_strIdent;
}

class CKVfilterRegistry {
  public:
    CKVfilterRegistry() = default;
    CKVfilterRegistry(const CKVfilterRegistry&) = delete;
    CKVfilterRegistry& operator=(const CKVfilterRegistry&) = delete;

    // Registers a filter (appended) under its bit value and its ident, and
    // takes it over. Returns false and changes nothing when either is taken.
    bool Add(std::unique_ptr<CKVfilter>& filter) { return m_table.Add(filter); }

    CKVfilter* FindByKey(long bit) const { return m_table.FindByKey(bit); }
    CKVfilter* FindByIdent(std::string_view ident) const { return m_table.FindByIdent(ident); }
    std::size_t Count() const { return m_table.Count(); }
    CKVfilter* At(std::size_t index) const { return m_table.At(index); }
    auto begin() const { return m_table.begin(); }
    auto end() const { return m_table.end(); }

    // The bit for a filter created at run time: the smallest power of two,
    // reached by doubling from 1, above every registered bit value (a filter
    // of bit value 0x40000000 does not count). False when no such bit fits.
    bool NextBit(long& bit) const;

    void CheckInvariants() const { m_table.CheckInvariants("filter registry"); }

  private:
    CKVtable<CKVfilter> m_table;
};

// The product filter: 0x7FFFFFFF until the first xunSetProductFilter.
long xunProductFilter_();
void xunSetProductFilter_(long filter);
