// CKVitemType: one item type - a physical quantity that data is stored as,
// with its dimension, its ordered list of allowed units (the first one is
// the default unit), an optional user unit, a filter mask, a file-item flag,
// a number of decimals and a default value.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "registry/KVfilter.h"
#include "units/KVdim.h"
#include "units/KVunit.h"

// A number that changes whenever an item type is registered or the filter
// membership of one changes (SetFilter, FileItem), in any registry: what
// was found among the item types of a filter still holds while it stays
// the same. Reading it takes no lock.
unsigned long xunItemTypeVersion_();
void xunItemTypesChanged_();

class CKVitemType {
  public:
    // Stores a pointer to the dimension (never freed by the item type) and
    // the initial values: no user unit (-1), no allowed units, filter mask 0,
    // file item 1, decimals -1 (not given), default value 0.0.
    CKVitemType(const std::string& keyText, long key, const std::string& ident,
                const CKVdimension& dimension);

    // Adds a unit of the item type's dimension to the allowed list, before
    // all others (it becomes the default unit) when atFront is true, else
    // after them. Returns false, changing nothing, when a unit with the same
    // key or ident is already allowed. A unit of another dimension ends the
    // process (assertion "bOk"). Constant time on average when appending
    // (a long list keeps the keys and idents it holds in hash sets).
    bool AllowUnit(const CKVunit& unit, bool atFront);
    // The seq-th allowed unit counting from 1; null when seq is out of range.
    const CKVunit* GetUnit(long seq) const;
    // Stores the tag as the user unit, without any check.
    void SetItemUserUnit(int tag);
    // The user unit if one was chosen, else the default unit's key, else -1.
    int GetItemUserUnit() const;
    // Ends the process when the key is 0 or the dimension is missing.
    void AssertValid() const;
    std::vector<const CKVunit*>& GetUnitList() { return m_lstUnits; }
    const std::vector<const CKVunit*>& GetUnitList() const { return m_lstUnits; }

    // The filter mask and the file-item flag are changed through these only
    // (the item types of a filter are remembered by xunItemTypeVersion_).
    void SetFilter(long mask) {
        m_lFilter = mask;
        xunItemTypesChanged_();
    }
    long GetFilter() const { return m_lFilter; }
    void FileItem(int flag) {
        m_nFileItem = flag;
        xunItemTypesChanged_();
    }
    int IsFileItem() const { return m_nFileItem; }
    // True when the filter mask shares a bit with the filter's bit value.
    bool IsMemberOf(const CKVfilter& filter) const;
    // True when the filter mask shares a bit with bits.
    bool IsMemberOf(long bits) const;

    std::string m_strKey;             // the description text
    long m_nNumId;                    // numeric key, never 0
    long m_lUserUnit;                 // tag of the user unit, -1 for none
    std::string m_strIdent;           // unique among item types
    const CKVdimension* m_pDimension; // borrowed, never freed here
    // The allowed units in order; the first is the default. An array, so
    // that the seq-th one is found at once. Changed through AllowUnit only
    // (or filled in order by a registry copy).
    std::vector<const CKVunit*> m_lstUnits;
    long m_lFilter;    // bit set of the filters it belongs to
    int m_nFileItem;   // may be stored in data files
    int m_nDecimals;   // decimals for display, -1 = not given
    double m_dDefault; // default value

  private:
    // The keys and idents of the allowed units, kept once the list is long
    // enough for a scan to cost more than a lookup; they cover the first
    // m_nIndexed entries of m_lstUnits (entries appended to the list
    // directly are taken in by the next AllowUnit).
    static constexpr std::size_t kIndexFrom = 16;
    struct AllowedIndex;
    struct AllowedIndexDelete {
        void operator()(AllowedIndex* index) const;
    };
    std::unique_ptr<AllowedIndex, AllowedIndexDelete> m_allowed;
    std::size_t m_nIndexed = 0;
};
