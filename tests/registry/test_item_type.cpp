// CKVitemType, CKVfilter and the registration functions of both registries.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "registry_fixture.h"
#include "registry_access.h"

namespace {

using xuntest::RegisterFilter;
using xuntest::RegisterItemType;
using xuntest::RegisterSampleUnits;
using xuntest::RegisterUnit;

TEST(ItemType, ConstructorSetsTheInitialValues) {
    const CKVdimension& dim = CKVdimension::GetLength();
    CKVitemType item("water level", 500, "WaterLevel", dim);
    EXPECT_EQ(item.m_strKey, "water level");
    EXPECT_EQ(item.m_nNumId, 500);
    EXPECT_EQ(item.m_lUserUnit, -1);
    EXPECT_EQ(item.m_strIdent, "WaterLevel");
    EXPECT_EQ(item.m_pDimension, &dim);
    EXPECT_TRUE(item.m_lstUnits.empty());
    EXPECT_EQ(item.m_lFilter, 0);
    EXPECT_EQ(item.GetFilter(), 0);
    EXPECT_EQ(item.m_nFileItem, 1);
    EXPECT_EQ(item.IsFileItem(), 1);
    EXPECT_EQ(item.m_nDecimals, -1);
    EXPECT_EQ(item.m_dDefault, 0.0);
    EXPECT_EQ(&item.GetUnitList(), &item.m_lstUnits);
}

TEST(ItemType, AllowUnitAppendsOrPutsInFront) {
    RegisterSampleUnits();
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    EXPECT_TRUE(item.AllowUnit(*xuntest::UnitByIdent("m"), false));
    EXPECT_TRUE(item.AllowUnit(*xuntest::UnitByIdent("km"), false));
    EXPECT_TRUE(item.AllowUnit(*xuntest::UnitByIdent("ft"), true));
    ASSERT_EQ(item.m_lstUnits.size(), 3u);
    EXPECT_EQ(item.GetUnit(1)->m_strIdent, "ft");
    EXPECT_EQ(item.GetUnit(2)->m_strIdent, "m");
    EXPECT_EQ(item.GetUnit(3)->m_strIdent, "km");
    EXPECT_EQ(item.GetItemUserUnit(), 1002);
}

TEST(ItemType, AllowUnitRefusesSameKeyOrSameIdent) {
    RegisterSampleUnits();
    const CKVunit* m = xuntest::UnitByIdent("m");
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    ASSERT_TRUE(item.AllowUnit(*m, false));
    EXPECT_FALSE(item.AllowUnit(*m, false));
    EXPECT_FALSE(item.AllowUnit(*m, true));
    // An unregistered unit that shares only the key, or only the ident.
    CKVunit sameKey("other", "o", 1000, 2.0, CKVdimension::GetLength());
    sameKey.m_strIdent = "other";
    EXPECT_FALSE(item.AllowUnit(sameKey, true));
    CKVunit sameIdent("meter again", "m", 4711, 2.0, CKVdimension::GetLength());
    sameIdent.m_strIdent = "m";
    EXPECT_FALSE(item.AllowUnit(sameIdent, false));
    // The ident is compared byte for byte, whole.
    CKVunit longer("longer", "mm", 4712, 0.001, CKVdimension::GetLength());
    longer.m_strIdent = "mm";
    EXPECT_TRUE(item.AllowUnit(longer, false));
    ASSERT_EQ(item.m_lstUnits.size(), 2u);
    EXPECT_EQ(item.m_lstUnits.front(), m);
    EXPECT_EQ(item.m_lstUnits.back(), &longer);
}

// A long list keeps the keys and idents it holds in hash sets: the same
// answers as the scan of a short one, for units appended, put in front or
// (as a registry copy does) pushed onto the list directly.
TEST(ItemType, AllowUnitRefusesDuplicatesInALongList) {
    std::vector<std::unique_ptr<CKVunit>> units;
    for (int k = 0; k < 60; ++k) {
        units.emplace_back(new CKVunit("u", "u", 2000 + k, 1.0 + k, CKVdimension::GetLength()));
        units.back()->m_strIdent = "U" + std::to_string(k);
    }
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    for (int k = 0; k < 20; ++k)
        ASSERT_TRUE(item.AllowUnit(*units[static_cast<size_t>(k)], k % 3 == 0)) << k;
    item.m_lstUnits.push_back(units[20].get());
    item.m_lstUnits.push_back(nullptr);
    for (int k = 21; k < 40; ++k)
        ASSERT_TRUE(item.AllowUnit(*units[static_cast<size_t>(k)], k % 5 == 0)) << k;
    for (int k = 0; k < 40; ++k) {
        EXPECT_FALSE(item.AllowUnit(*units[static_cast<size_t>(k)], false)) << k;
        EXPECT_FALSE(item.AllowUnit(*units[static_cast<size_t>(k)], true)) << k;
    }
    CKVunit sameKey("other", "o", 2030, 2.0, CKVdimension::GetLength());
    sameKey.m_strIdent = "other";
    EXPECT_FALSE(item.AllowUnit(sameKey, false));
    CKVunit sameIdent("again", "a", 4711, 2.0, CKVdimension::GetLength());
    sameIdent.m_strIdent = "U7";
    EXPECT_FALSE(item.AllowUnit(sameIdent, true));
    for (int k = 40; k < 60; ++k)
        EXPECT_TRUE(item.AllowUnit(*units[static_cast<size_t>(k)], false)) << k;
    EXPECT_EQ(item.m_lstUnits.size(), 61u);
    EXPECT_EQ(item.GetUnit(61), units[59].get());
}

TEST(ItemType, AllowUnitSkipsNullElements) {
    RegisterSampleUnits();
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    item.m_lstUnits.push_back(nullptr);
    EXPECT_TRUE(item.AllowUnit(*xuntest::UnitByIdent("km"), false));
    EXPECT_FALSE(item.AllowUnit(*xuntest::UnitByIdent("km"), false));
    EXPECT_EQ(item.m_lstUnits.size(), 2u);
}

TEST(ItemType, GetUnitCountsFromOne) {
    RegisterSampleUnits();
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    EXPECT_EQ(item.GetUnit(1), nullptr);
    item.AllowUnit(*xuntest::UnitByIdent("m"), false);
    item.AllowUnit(*xuntest::UnitByIdent("km"), false);
    EXPECT_EQ(item.GetUnit(0), nullptr);
    EXPECT_EQ(item.GetUnit(-1), nullptr);
    EXPECT_EQ(item.GetUnit(3), nullptr);
    EXPECT_EQ(item.GetUnit(1), xuntest::UnitByIdent("m"));
    EXPECT_EQ(item.GetUnit(2), xuntest::UnitByIdent("km"));
}

TEST(ItemType, UserUnitFallsBackToTheDefaultUnit) {
    RegisterSampleUnits();
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    EXPECT_EQ(item.GetItemUserUnit(), -1);
    item.AllowUnit(*xuntest::UnitByIdent("m"), false);
    EXPECT_EQ(item.GetItemUserUnit(), 1000);
    item.AllowUnit(*xuntest::UnitByIdent("km"), true);
    EXPECT_EQ(item.GetItemUserUnit(), 1001);
    // Stored without any check, even a unit of another dimension.
    item.SetItemUserUnit(1011);
    EXPECT_EQ(item.m_lUserUnit, 1011);
    EXPECT_EQ(item.GetItemUserUnit(), 1011);
    item.SetItemUserUnit(-1);
    EXPECT_EQ(item.GetItemUserUnit(), 1001);
    item.SetItemUserUnit(-5);
    EXPECT_EQ(item.m_lUserUnit, -5);
    EXPECT_EQ(item.GetItemUserUnit(), -5);
}

TEST(ItemType, FilterMaskAndFileItemFlag) {
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    item.SetFilter(5);
    EXPECT_EQ(item.GetFilter(), 5);
    EXPECT_TRUE(item.IsMemberOf(1L));
    EXPECT_TRUE(item.IsMemberOf(6L));
    EXPECT_FALSE(item.IsMemberOf(2L));
    EXPECT_FALSE(item.IsMemberOf(0L));
    EXPECT_TRUE(item.IsMemberOf(CKVfilter("four", 4)));
    EXPECT_FALSE(item.IsMemberOf(CKVfilter("eight", 8)));
    item.SetFilter(0x80000000L);
    EXPECT_TRUE(item.IsMemberOf(-0x80000000L));
    EXPECT_FALSE(item.IsMemberOf(0x7FFFFFFFL));
    item.FileItem(0);
    EXPECT_EQ(item.IsFileItem(), 0);
    item.FileItem(7);
    EXPECT_EQ(item.IsFileItem(), 7);
}

TEST(ItemType, AssertValidAcceptsAValidItemType) {
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    item.AssertValid();
    SUCCEED();
}

TEST(ItemTypeDeathTest, AllowUnitOfAnotherDimensionAborts) {
    RegisterSampleUnits();
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    EXPECT_DEATH(item.AllowUnit(*xuntest::UnitByIdent("s"), false),
                 "KVitemType:[0-9]+: bool CKVitemType::AllowUnit\\(CKVunit &, bool\\): "
                 "Assertion `bOk' failed");
    item.m_pDimension = nullptr;
    EXPECT_DEATH(item.AllowUnit(*xuntest::UnitByIdent("m"), true),
                 "KVitemType:[0-9]+: bool CKVitemType::AllowUnit\\(CKVunit &, bool\\): "
                 "Assertion `bOk' failed");
}

TEST(ItemTypeDeathTest, NullAllowedUnitAborts) {
    RegisterSampleUnits();
    CKVitemType item("level", 500, "Level", CKVdimension::GetLength());
    item.AllowUnit(*xuntest::UnitByIdent("m"), false);
    item.m_lstUnits.push_back(nullptr);
    EXPECT_EQ(item.GetUnit(1), xuntest::UnitByIdent("m"));
    EXPECT_DEATH(item.GetUnit(2),
                 "KVitemType:[0-9]+: const CKVunit \\*CKVitemType::GetUnit\\(long\\) "
                 "const: Assertion `Un' failed");
    item.m_lstUnits.insert(item.m_lstUnits.begin(), nullptr);
    EXPECT_DEATH(
        item.GetItemUserUnit(),
        "KVitemType:[0-9]+: int CKVitemType::GetItemUserUnit\\(\\): Assertion `Un' failed");
    // A chosen user unit is returned without looking at the list.
    item.SetItemUserUnit(1001);
    EXPECT_EQ(item.GetItemUserUnit(), 1001);
}

TEST(ItemTypeDeathTest, AssertValidChecksKeyThenDimension) {
    CKVitemType item("level", 0, "Level", CKVdimension::GetLength());
    item.m_pDimension = nullptr;
    EXPECT_DEATH(item.AssertValid(),
                 "KVitemType:[0-9]+: void CKVitemType::AssertValid\\(\\) const: "
                 "Assertion `m_nNumId' failed");
    item.m_nNumId = 3;
    EXPECT_DEATH(item.AssertValid(),
                 "KVitemType:[0-9]+: void CKVitemType::AssertValid\\(\\) const: "
                 "Assertion `m_pDimension' failed");
}

TEST(ItemTypeRegistry, AddItemTypeRefusesTakenKeyOrIdent) {
    CKVitemType* level = RegisterItemType("Level", 500, CKVdimension::GetLength());
    std::unique_ptr<CKVitemType> sameKey(
        new CKVitemType("other", 500, "Other", CKVdimension::GetLength()));
    std::unique_ptr<CKVdimension> noDimension;
    EXPECT_FALSE(xuntest::Registries().itemTypes.Add(sameKey, noDimension));
    EXPECT_NE(sameKey, nullptr);
    std::unique_ptr<CKVitemType> sameIdent(
        new CKVitemType("level again", 501, "Level", CKVdimension::GetLength()));
    EXPECT_FALSE(xuntest::Registries().itemTypes.Add(sameIdent, noDimension));
    EXPECT_NE(sameIdent, nullptr);
    ASSERT_EQ(xuntest::Registries().itemTypes.Count(), 1u);
    EXPECT_EQ(xuntest::Registries().itemTypes.At(0), level);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
    EXPECT_EQ(xuntest::ItemByKey(500), level);
    EXPECT_EQ(xuntest::ItemByIdent("Level"), level);
}

TEST(ItemTypeRegistry, AddItemTypeAppendsAndLookupsNeverInsert) {
    CKVitemType* a = RegisterItemType("A", 700, CKVdimension::GetLength());
    CKVitemType* b = RegisterItemType("B", 600, CKVdimension::GetTime());
    EXPECT_EQ(xuntest::Registries().itemTypes.At(0), a);
    EXPECT_EQ(xuntest::Registries().itemTypes.At(1), b);
    EXPECT_EQ(xuntest::ItemByKey(601), nullptr);
    EXPECT_EQ(xuntest::ItemByIdent("C"), nullptr);
    EXPECT_EQ(xuntest::ItemByIdent("a"), nullptr);
    EXPECT_EQ(xuntest::Registries().itemTypes.Count(), 2u);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

TEST(Filter, ConstructorAndBitValue) {
    CKVfilter filter("surface water", 4);
    EXPECT_EQ(filter.m_strKey, "surface water");
    EXPECT_EQ(filter.m_strIdent, "");
    EXPECT_EQ(filter.m_lKey, 4);
    EXPECT_EQ(static_cast<long>(filter), 4);
    CKVfilter* flyby = new CKVfilter("flyby", 0x80000000L);
    EXPECT_EQ(static_cast<long>(*flyby), 0x80000000L);
    delete flyby;
}

TEST(FilterRegistry, AddFilterRefusesTakenBitOrIdent) {
    CKVfilter* water = RegisterFilter("Water", 4);
    std::unique_ptr<CKVfilter> sameBit(new CKVfilter("other", 4));
    sameBit->m_strIdent = "Other";
    EXPECT_FALSE(xuntest::Registries().filters.Add(sameBit));
    std::unique_ptr<CKVfilter> sameIdent(new CKVfilter("water again", 8));
    sameIdent->m_strIdent = "Water";
    EXPECT_FALSE(xuntest::Registries().filters.Add(sameIdent));
    ASSERT_EQ(xuntest::Registries().filters.Count(), 1u);
    EXPECT_EQ(xuntest::Registries().filters.At(0), water);
    EXPECT_EQ(xuntest::FilterByKey(4), water);
    EXPECT_EQ(xuntest::FilterByIdent("Water"), water);
    EXPECT_EQ(xuntest::FilterByKey(8), nullptr);
    EXPECT_EQ(xuntest::FilterByIdent("Other"), nullptr);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

TEST(FilterRegistry, ProductFilterStartsWithBitsZeroToThirty) {
    EXPECT_EQ(xunProductFilter_(), 0x7FFFFFFFL);
    EXPECT_EQ(xun::contract::kFlybyFilterBit, 0x80000000L);
}

} // namespace
