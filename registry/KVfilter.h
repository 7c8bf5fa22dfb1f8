// CKVfilter: one filter - a single bit that groups item types. An item type
// belongs to the filter when its filter mask has that bit set.
#pragma once

#include <string>

class CKVfilter {
  public:
    // (description, bit value); the ident is set by the creator before
    // registration.
    CKVfilter(const std::string& keyText, long bit);
    virtual ~CKVfilter();

    // The bit value, which is also the filter's numeric key.
    operator long() const { return m_lKey; }

    std::string m_strKey;   // the description text
    std::string m_strIdent; // unique among filters
    long m_lKey;            // the bit value
};

