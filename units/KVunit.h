// CKVunit: one engineering unit - names, key, dimension and the linear
// conversion to the base unit of its dimension (value * m_dFactor + m_dOffset).
#pragma once

#include <list>
#include <memory>
#include <string>

#include "units/KVdim.h"

class CKVunit {
  public:
    // (description, abbreviation, key, factor, dimension): the dimension is
    // borrowed, offset 0, all per-dimension factors 1.0.
    CKVunit(const std::string& desc, const std::string& abbr, long key, const double& factor,
            const CKVdimension& dim);
    // As above with an offset.
    CKVunit(const std::string& desc, const std::string& abbr, long key, const double& factor,
            const double& offset, const CKVdimension& dim);
    // Named copy of a source unit's scale: factor and per-dimension factors
    // copied, dimension shared (or deep-copied when the source owns its own);
    // the offset is dropped, deliberately.
    CKVunit(const std::string& desc, const std::string& abbr, long key, const CKVunit& source);
    // As above with a borrowed dimension; checks nothing.
    CKVunit(const std::string& desc, const std::string& abbr, long key, const CKVunit& source,
            const CKVdimension& dim);
    // Anonymous copy: abbreviation, description and aliases copied; ident,
    // expression, key (-1) and offset (0) are not, deliberately.
    CKVunit(const CKVunit& source);
    // Anonymous unit of the given scale, owning a copy of the dimension; a
    // single-base dimension gets the factor in its per-dimension slot.
    CKVunit(const double& factor, const CKVdimension& dim);
    CKVunit& operator=(const CKVunit&) = delete;
    virtual ~CKVunit();

    void AssertValid() const;
    const CKVdimension& GetDim() const;
    bool IsEqv(const CKVunit& other) const;
    bool IsEqv(const CKVdimension& dim) const;

    bool IsAlias(const std::string& name) const;
    // Appends the ";"-separated aliases of list.
    void SetAlias(const std::string& list);
    // Next token of text after pos, skipping separators; pos moves past the
    // token's separator, or becomes -1 when nothing is left.
    std::string _Tokenize(const std::string& text, const char* separators, int& pos) const;

    void GetFactors(double& length, double& mass, double& time, double& temperature,
                    double& current, double& substance, double& luminous) const;
    // Clears aliases, abbreviation, description and ident.
    void RemoveDesc();

    std::list<std::string> m_lstAlias;
    std::string m_strAbbr;
    std::string m_strDesc;
    std::string m_strIdent;
    std::string m_strExpr;
    long m_lKey;
    const CKVdimension* m_pDimParent;
    CKVdimension* m_pDimTemp;
    double m_dFactor;
    double m_dOffset;
    double m_dDimFactors[CKVdimension::kBaseCount];

  private:
    void SetAllDimFactors(double value);
    void CopyDimFrom(const CKVunit& source);
    // Multiplies the per-dimension slot of a single-base dimension by d.
    void ScaleSingleBaseSlot(const double& d, bool divide);

    friend CKVunit operator*(const CKVunit& a, const CKVunit& b);
    friend CKVunit operator/(const CKVunit& a, const CKVunit& b);
    friend CKVunit operator*(const CKVunit& u, const double& d);
    friend CKVunit operator/(const CKVunit& u, const double& d);
    friend CKVunit operator/(const double& d, const CKVunit& u);
    friend CKVunit operator^(const CKVunit& u, const double& p);
};

// Unit arithmetic. Offsets never enter it: every result has offset 0.
CKVunit operator*(const CKVunit& a, const CKVunit& b);
CKVunit operator/(const CKVunit& a, const CKVunit& b);
CKVunit operator*(const CKVunit& u, const double& d);
CKVunit operator/(const CKVunit& u, const double& d);
CKVunit operator/(const double& d, const CKVunit& u);
CKVunit operator^(const CKVunit& u, const double& p);

// A copy that keeps everything of the unit: names, aliases, expression,
// key, offset, factor, per-dimension factors and dimension (shared when the
// unit borrows it, else copied).
std::unique_ptr<CKVunit> xunCloneUnit_(const CKVunit& unit);
