// Helpers for tests that need registered units: the eight base units the
// setup loader registers (keys 1 to 8) and units defined by expression.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "units/KVexpr.h"
#include "xun.h"
#include "registry_access.h"

namespace xuntest {

inline CKVunit* RegisterUnit(const char* ident, long key, double factor, double offset,
                             const CKVdimension& dim, const char* desc = nullptr) {
    CKVunit* unit = new CKVunit(desc ? desc : ident, ident, key, factor, offset, dim);
    unit->m_strIdent = ident;
    EXPECT_EQ(xuntest::AddUnit(unit, 0), 1) << ident;
    return unit;
}

// The base units of the seven dimensions and the dimensionless one.
inline void RegisterBaseUnits() {
    RegisterUnit("NonDimensional", 1, 1.0, 0.0, CKVdimension::GetNonDim());
    RegisterUnit("Length", 2, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("Mass", 3, 1.0, 0.0, CKVdimension::GetMass());
    RegisterUnit("Time", 4, 1.0, 0.0, CKVdimension::GetTime());
    RegisterUnit("Temperature", 5, 1.0, 0.0, CKVdimension::GetTemp());
    RegisterUnit("ElectricCurrent", 6, 1.0, 0.0, CKVdimension::GetCurr());
    RegisterUnit("AmountOfSubstance", 7, 1.0, 0.0, CKVdimension::GetSubs());
    RegisterUnit("LuminousIntensity", 8, 1.0, 0.0, CKVdimension::GetLumi());
}

// Defines a unit by expression and gives it a key of our choice.
inline CKVunit* Define(const char* ident, long key, const char* expr, const char* desc = nullptr,
                       const char* abbr = "") {
    CKVunit* unit = nullptr;
    double* value = nullptr;
    EXPECT_TRUE(bEvaluateExpression(expr, &unit, &value)) << expr;
    delete value;
    if (unit == nullptr)
        return nullptr;
    unit->m_strIdent = ident;
    unit->m_strDesc = desc ? desc : ident;
    unit->m_strAbbr = abbr;
    unit->m_strExpr = expr;
    unit->m_lKey = key;
    EXPECT_EQ(xuntest::AddUnit(unit, 0), 1) << ident;
    return unit;
}

inline int Tag(const char* ident) {
    int tag = -12345;
    EXPECT_EQ(xunGetUnitTagFromIdent(ident, &tag), 1) << ident;
    return tag;
}

} // namespace xuntest
