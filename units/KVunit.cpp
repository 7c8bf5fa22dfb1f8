#include "units/KVunit.h"

#include <cmath>
#include <memory>

#include "common/Assert.h"

namespace {
void AssertFactor(double factor) {
    XUN_ASSERT(factor != 0.0, xun::contract::kUnitFactor);
}

// The invariant check at the end of a constructor that may have allocated
// the unit's own dimension. When a check fails and the assertion hook throws
// (an assertion trap or hook does that), the constructor does not complete and the
// destructor never runs, so the dimension is freed here before the exception
// leaves.
void AssertValidWhileConstructing(CKVunit& unit) {
    try {
        unit.AssertValid();
    } catch (...) {
        delete unit.m_pDimTemp;
        unit.m_pDimTemp = nullptr;
        throw;
    }
}
} // namespace

CKVunit::CKVunit(const std::string& desc, const std::string& abbr, long key, const double& factor,
                 const CKVdimension& dim)
    : m_strAbbr(abbr), m_strDesc(desc), m_lKey(key), m_pDimParent(&dim), m_pDimTemp(nullptr),
      m_dFactor(factor), m_dOffset(0.0) {
    SetAllDimFactors(1.0);
    AssertFactor(m_dFactor);
}

CKVunit::CKVunit(const std::string& desc, const std::string& abbr, long key, const double& factor,
                 const double& offset, const CKVdimension& dim)
    : m_strAbbr(abbr), m_strDesc(desc), m_lKey(key), m_pDimParent(&dim), m_pDimTemp(nullptr),
      m_dFactor(factor), m_dOffset(offset) {
    SetAllDimFactors(1.0);
    AssertFactor(m_dFactor);
}

CKVunit::CKVunit(const std::string& desc, const std::string& abbr, long key, const CKVunit& source)
    : m_strAbbr(abbr), m_strDesc(desc), m_lKey(key), m_pDimParent(nullptr), m_pDimTemp(nullptr),
      m_dFactor(source.m_dFactor), m_dOffset(0.0) {
    CopyDimFrom(source);
    for (int i = 0; i < CKVdimension::kBaseCount; ++i)
        m_dDimFactors[i] = source.m_dDimFactors[i];
    AssertValidWhileConstructing(*this);
}

CKVunit::CKVunit(const std::string& desc, const std::string& abbr, long key, const CKVunit& source,
                 const CKVdimension& dim)
    : m_strAbbr(abbr), m_strDesc(desc), m_lKey(key), m_pDimParent(&dim), m_pDimTemp(nullptr),
      m_dFactor(source.m_dFactor), m_dOffset(0.0) {
    for (int i = 0; i < CKVdimension::kBaseCount; ++i)
        m_dDimFactors[i] = source.m_dDimFactors[i];
}

CKVunit::CKVunit(const CKVunit& source)
    : m_lstAlias(source.m_lstAlias), m_strAbbr(source.m_strAbbr), m_strDesc(source.m_strDesc),
      m_lKey(-1), m_pDimParent(nullptr), m_pDimTemp(nullptr), m_dFactor(source.m_dFactor),
      m_dOffset(0.0) {
    CopyDimFrom(source);
    for (int i = 0; i < CKVdimension::kBaseCount; ++i)
        m_dDimFactors[i] = source.m_dDimFactors[i];
    AssertValidWhileConstructing(*this);
}

CKVunit::CKVunit(const double& factor, const CKVdimension& dim)
    : m_lKey(-1), m_pDimParent(nullptr), m_pDimTemp(new CKVdimension(dim)), m_dFactor(factor),
      m_dOffset(0.0) {
    SetAllDimFactors(1.0);
    int type = m_pDimTemp->GetDimType();
    if (type >= 1 && type <= CKVdimension::kBaseCount)
        m_dDimFactors[type - 1] = factor;
    AssertValidWhileConstructing(*this);
}

std::unique_ptr<CKVunit> xunCloneUnit_(const CKVunit& unit) {
    std::unique_ptr<CKVunit> copy(new CKVunit(unit.m_strDesc, unit.m_strAbbr, unit.m_lKey, unit));
    copy->m_lstAlias = unit.m_lstAlias;
    copy->m_strIdent = unit.m_strIdent;
    copy->m_strExpr = unit.m_strExpr;
    copy->m_dOffset = unit.m_dOffset;
    return copy;
}

CKVunit::~CKVunit() {
    delete m_pDimTemp;
}

void CKVunit::SetAllDimFactors(double value) {
    for (double& slot : m_dDimFactors)
        slot = value;
}

void CKVunit::CopyDimFrom(const CKVunit& source) {
    if (source.m_pDimParent != nullptr)
        m_pDimParent = source.m_pDimParent;
    else if (source.m_pDimTemp != nullptr)
        m_pDimTemp = new CKVdimension(*source.m_pDimTemp);
}

void CKVunit::ScaleSingleBaseSlot(const double& d, bool divide) {
    int type = GetDim().GetDimType();
    if (type >= 1 && type <= CKVdimension::kBaseCount) {
        double& slot = m_dDimFactors[type - 1];
        slot = divide ? slot / d : slot * d;
    }
}

void CKVunit::AssertValid() const {
    XUN_ASSERT((m_pDimParent == nullptr) != (m_pDimTemp == nullptr),
               xun::contract::kUnitOneDimension);
    AssertFactor(m_dFactor);
}

const CKVdimension& CKVunit::GetDim() const {
    AssertValid();
    return m_pDimParent != nullptr ? *m_pDimParent : *m_pDimTemp;
}

bool CKVunit::IsEqv(const CKVunit& other) const {
    AssertValid();
    return GetDim().IsEqv(other.GetDim());
}

bool CKVunit::IsEqv(const CKVdimension& dim) const {
    AssertValid();
    return GetDim().IsEqv(dim);
}

bool CKVunit::IsAlias(const std::string& name) const {
    for (const std::string& alias : m_lstAlias)
        if (alias == name)
            return true;
    return false;
}

void CKVunit::SetAlias(const std::string& list) {
    int pos = 0;
    std::string token = _Tokenize(list, ";", pos);
    while (!token.empty()) {
        m_lstAlias.push_back(token);
        token = _Tokenize(list, ";", pos);
    }
}

std::string CKVunit::_Tokenize(const std::string& text, const char* separators, int& pos) const {
    std::string::size_type start = std::string::npos;
    if (pos >= 0)
        start = text.find_first_not_of(separators, static_cast<std::string::size_type>(pos));
    if (start == std::string::npos) {
        pos = -1;
        return std::string();
    }
    std::string::size_type end = text.find_first_of(separators, start);
    if (end == std::string::npos)
        end = text.size();
    std::string token = text.substr(start, end - start);
    pos = token.empty() ? -1 : static_cast<int>(start + token.size() + 1);
    return token;
}

void CKVunit::GetFactors(double& length, double& mass, double& time, double& temperature,
                         double& current, double& substance, double& luminous) const {
    length = m_dDimFactors[0];
    mass = m_dDimFactors[1];
    time = m_dDimFactors[2];
    temperature = m_dDimFactors[3];
    current = m_dDimFactors[4];
    substance = m_dDimFactors[5];
    luminous = m_dDimFactors[6];
}

void CKVunit::RemoveDesc() {
    m_lstAlias.clear();
    m_strAbbr.clear();
    m_strDesc.clear();
    m_strIdent.clear();
}

CKVunit operator*(const CKVunit& a, const CKVunit& b) {
    a.AssertValid();
    b.AssertValid();
    CKVunit r(a.m_dFactor * b.m_dFactor, a.GetDim() * b.GetDim());
    for (int i = 0; i < CKVdimension::kBaseCount; ++i)
        r.m_dDimFactors[i] = a.m_dDimFactors[i] * b.m_dDimFactors[i];
    return r;
}

CKVunit operator/(const CKVunit& a, const CKVunit& b) {
    a.AssertValid();
    b.AssertValid();
    CKVunit r(a.m_dFactor / b.m_dFactor, a.GetDim() / b.GetDim());
    for (int i = 0; i < CKVdimension::kBaseCount; ++i)
        r.m_dDimFactors[i] = a.m_dDimFactors[i] / b.m_dDimFactors[i];
    return r;
}

CKVunit operator*(const CKVunit& u, const double& d) {
    u.AssertValid();
    CKVunit r(u);
    r.m_dFactor = u.m_dFactor * d;
    r.ScaleSingleBaseSlot(d, false);
    r.RemoveDesc();
    r.AssertValid();
    return r;
}

CKVunit operator/(const CKVunit& u, const double& d) {
    u.AssertValid();
    CKVunit r(u);
    r.m_dFactor = u.m_dFactor / d;
    r.ScaleSingleBaseSlot(d, true);
    r.RemoveDesc();
    r.AssertValid();
    return r;
}

CKVunit operator/(const double& d, const CKVunit& u) {
    u.AssertValid();
    CKVunit r(1.0 / u.m_dFactor, u.GetDim() ^ -1.0);
    r.m_dFactor = r.m_dFactor * d;
    r.ScaleSingleBaseSlot(d, false);
    r.AssertValid();
    return r;
}

CKVunit operator^(const CKVunit& u, const double& p) {
    u.AssertValid();
    return CKVunit(std::pow(u.m_dFactor, p), u.GetDim() ^ p);
}
