// CKVunitRegistry: the units of a registry - in registration order, found by
// numeric key (tag) and by ident, owned by the registry.
//
// A registered unit does not change any more, except for its description
// and abbreviation (SetTexts: a second load, the language files): the
// registry hands units out as const. What a conversion reads of a unit is
// kept with it in the key index (CKVunitKeyEntry), derived once when the
// unit is registered, so that a conversion reads one slot per unit.
//
// Lookups, walks and conversions only read: after loading, any number of
// threads may use them at once. Adding and removing must run alone.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "registry/HashIndex.h"
#include "registry/Table.h"
#include "units/KVunit.h"
#include "units/UnitSet.h"

inline long XunKeyOf(const CKVunit& unit) {
    return unit.m_lKey;
}
inline const std::string& XunIdentOf(const CKVunit& unit) {
    return unit.m_strIdent;
}

// What a conversion reads of a unit: its factor and offset, and a dimension
// class - equal for units of equal dimensions (CKVdimension::IsEqv),
// different otherwise; kNoDimensionClass for a dimension equal to none, not
// even to itself (an exponent that is NaN); kUncheckedUnit for a unit that
// its invariant checks (CKVunit::AssertValid) would stop, which a conversion
// then meets as it would without this entry.
struct CKVunitKeyEntry {
    const CKVunit* unit = nullptr;
    double factor = 0.0;
    double offset = 0.0;
    int dimensionClass = 0;
};
const int kNoDimensionClass = -1;
const int kUncheckedUnit = -2;

// Data derived from the units that code outside the registry keeps with it
// (the index of the unit-string functions, registry/UnitStrings.h). It
// belongs to the registry object: a copy of the registry starts without it,
// and it goes when the registry goes.
class CKVunitRegistryCache {
  public:
    virtual ~CKVunitRegistryCache() = default;
};

class CKVunitRegistry : public IUnitSet {
  public:
    CKVunitRegistry();
    ~CKVunitRegistry() override;
    CKVunitRegistry(const CKVunitRegistry&) = delete;
    CKVunitRegistry& operator=(const CKVunitRegistry&) = delete;

    // Registers a fully built unit, appended or (atFront) inserted before all
    // others, and takes it over. Returns false and changes nothing (the unit
    // stays with the caller) when its key or its ident is taken.
    bool Add(std::unique_ptr<CKVunit>& unit, bool atFront);

    // Takes a registered unit out and hands it back (null when it is not
    // registered). The unit must be alive, registered or not: its key is
    // read.
    std::unique_ptr<CKVunit> Remove(const CKVunit* unit);

    // Replaces the description and abbreviation of a registered unit.
    void SetTexts(const CKVunit& unit, const std::string& desc, const std::string& abbr);

    // Starts fetching what an Add of a unit of this key and ident reads
    // first; the caller does other work (evaluating the unit) meanwhile.
    void Prefetch(long key, std::string_view ident) const { m_table.Prefetch(key, ident); }
    // The same for a lookup of key (FindByKey, FindEntry).
    void PrefetchKey(long key) const { m_table.PrefetchKey(key); }

    const CKVunit* FindByKey(long key) const { return m_table.FindByKey(key); }
    const CKVunit* FindByIdent(std::string_view ident) const { return m_table.FindByIdent(ident); }
    // The key index entry of a unit; null for an unknown key.
    const CKVunitKeyEntry* FindEntry(long key) const { return m_table.FindExtra(key); }

    std::size_t Count() const { return m_table.Count(); }
    const CKVunit* At(std::size_t index) const { return m_table.At(index); }
    // The index of a registered unit in registration order; npos otherwise.
    std::size_t IndexOf(const CKVunit* unit) const { return m_table.IndexOf(unit); }
    static constexpr std::size_t npos = CKVtable<const CKVunit>::npos;
    auto begin() const { return m_table.begin(); }
    auto end() const { return m_table.end(); }

    // The key for a unit created at run time: one above the largest key in
    // use, at least 100000. False when the largest key leaves no room in the
    // interface's int. Constant time: the registry keeps its largest key.
    bool NextRunTimeKey(long& key) const;

    // Throws std::logic_error naming the first broken invariant (the table's,
    // and every key entry matching its unit).
    void CheckInvariants() const;

    // A number that changes with every change of the units (Add, Remove,
    // SetTexts), and that no other registry of the process has had: what was
    // found in this registry under one generation (a position, a text, any
    // derived data) still holds while the generation is the same.
    unsigned long long Generation() const { return m_generation; }

    // The derived data kept with the registry (null until set). It is
    // written by the one thread that may change things (docs/conventions.md).
    CKVunitRegistryCache* Cache() const { return m_cache.get(); }
    void SetCache(std::unique_ptr<CKVunitRegistryCache> cache) { m_cache = std::move(cache); }

    // IUnitSet
    const CKVunit* FindUnitByKey(long key) const override { return FindByKey(key); }
    const CKVunit* FindUnitByIdent(std::string_view ident) const override {
        return FindByIdent(ident);
    }
    std::size_t UnitCount() const override { return Count(); }
    const CKVunit* UnitAt(std::size_t index) const override { return At(index); }

  private:
    CKVunitKeyEntry EntryOf(const CKVunit& unit);
    int DimensionClassOf(const CKVdimension& dim);

    void Changed();

    // The units, each with its key entry in the same record of the key index.
    CKVtable<const CKVunit, CKVunitKeyEntry> m_table;
    // The largest key registered (meaningless while the registry is empty).
    long m_largestKey = 0;
    // The dimension classes handed out: a dimension's exponents (as bit
    // patterns, zeros of either sign alike) -> its class.
    struct DimensionKey {
        unsigned long long bits[7];
        bool operator==(const DimensionKey& other) const;
    };
    struct DimensionKeyHash {
        std::size_t operator()(const DimensionKey& key) const;
    };
    struct DimensionClasses;
    std::unique_ptr<DimensionClasses> m_classes;
    unsigned long long m_generation = 0;
    std::unique_ptr<CKVunitRegistryCache> m_cache;
};
