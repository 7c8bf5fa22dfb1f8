// Helpers for tests that need registered item types and filters, on top of
// the unit helpers: item types with a dimension and allowed units, filters
// with a bit value, and a small set of length, time and temperature units.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "units/unit_fixture.h"
#include "registry_access.h"

namespace xuntest {

// Registers an item type of the given dimension and allows the units named
// by ident, in order (the first becomes the default unit).
inline CKVitemType* RegisterItemType(const char* ident, long key, const CKVdimension& dim,
                                     std::initializer_list<const char*> units = {},
                                     const char* desc = nullptr) {
    CKVitemType* item = new CKVitemType(desc ? desc : ident, key, ident, dim);
    EXPECT_EQ(xuntest::AddItemType(item), 1) << ident;
    for (const char* unitIdent : units) {
        const CKVunit* unit = xuntest::UnitByIdent(unitIdent);
        EXPECT_NE(unit, nullptr) << unitIdent;
        if (unit != nullptr) {
            EXPECT_TRUE(item->AllowUnit(*unit, false)) << unitIdent;
        }
    }
    return item;
}

// Registers a filter with a bit value of our choice.
inline CKVfilter* RegisterFilter(const char* ident, long bit, const char* desc = nullptr) {
    CKVfilter* filter = new CKVfilter(desc ? desc : ident, bit);
    filter->m_strIdent = ident;
    EXPECT_EQ(xuntest::AddFilter(filter), 1) << ident;
    return filter;
}

// Units of three dimensions, keys in the thousands:
//   length: m 1000 "meter" (factor 1), km 1001 "kilometer" (1000),
//           ft 1002 "foot" (0.3048)
//   time:   s 1010 "second" (1), h 1011 "hour" (3600)
//   temperature: K 1020 "kelvin" (1), degC 1021 "degree Celsius"
//           (1, offset 273.15), degF 1022 "degree Fahrenheit" (5/9, offset
//           459.67 * 5/9)
inline void RegisterSampleUnits() {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    RegisterUnit("km", 1001, 1000.0, 0.0, CKVdimension::GetLength(), "kilometer");
    RegisterUnit("ft", 1002, 0.3048, 0.0, CKVdimension::GetLength(), "foot");
    RegisterUnit("s", 1010, 1.0, 0.0, CKVdimension::GetTime(), "second");
    RegisterUnit("h", 1011, 3600.0, 0.0, CKVdimension::GetTime(), "hour");
    RegisterUnit("K", 1020, 1.0, 0.0, CKVdimension::GetTemp(), "kelvin");
    RegisterUnit("degC", 1021, 1.0, 273.15, CKVdimension::GetTemp(), "degree Celsius");
    RegisterUnit("degF", 1022, 5.0 / 9.0, 459.67 * 5.0 / 9.0, CKVdimension::GetTemp(),
                 "degree Fahrenheit");
}

} // namespace xuntest
