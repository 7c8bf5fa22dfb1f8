// The exported item-type functions and the unit queries that take an item
// type key.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "registry_fixture.h"
#include "registry_access.h"

namespace {

using xuntest::Define;
using xuntest::RegisterBaseUnits;
using xuntest::RegisterItemType;
using xuntest::RegisterSampleUnits;
using xuntest::RegisterUnit;
using xuntest::Tag;

const char* const kUntouched = "untouched";

// Water level (500): m, km; flow time (600): h, s; any unit (999).
void RegisterSampleItems() {
    RegisterSampleUnits();
    RegisterItemType("WaterLevel", 500, CKVdimension::GetLength(), {"m", "km"}, "water level");
    RegisterItemType("FlowTime", 600, CKVdimension::GetTime(), {"h", "s"}, "flow time");
    RegisterItemType("Any", 999, CKVdimension::GetNonDim(), {}, "any unit");
}

TEST(ItemTypeQueries, GetAllOnEmptyRegistryLeavesTheOutput) {
    char sentinel = 'x';
    char* list = &sentinel;
    EXPECT_EQ(xunItemTypeGetAll(&list), 0);
    EXPECT_EQ(list, &sentinel);
}

TEST(ItemTypeQueries, GetAllJoinsIdentsInListOrder) {
    RegisterSampleItems();
    char* list = nullptr;
    ASSERT_EQ(xunItemTypeGetAll(&list), 1);
    EXPECT_STREQ(list, "WaterLevel;FlowTime;Any;");
    std::free(list);
}

TEST(ItemTypeQueries, CountAndSequence) {
    EXPECT_EQ(xunGetItemTypeCount(), 0);
    int key = -7;
    const char* text = kUntouched;
    EXPECT_EQ(xunGetItemTypeSeq(1, &key, &text), 0);
    RegisterSampleItems();
    EXPECT_EQ(xunGetItemTypeCount(), 3);
    ASSERT_EQ(xunGetItemTypeSeq(1, &key, &text), 1);
    EXPECT_EQ(key, 500);
    EXPECT_STREQ(text, "water level");
    ASSERT_EQ(xunGetItemTypeSeq(3, &key, &text), 1);
    EXPECT_EQ(key, 999);
    EXPECT_STREQ(text, "any unit");
    key = -7;
    text = kUntouched;
    EXPECT_EQ(xunGetItemTypeSeq(0, &key, &text), 0);
    EXPECT_EQ(xunGetItemTypeSeq(4, &key, &text), 0);
    EXPECT_EQ(xunGetItemTypeSeq(-1, &key, &text), 0);
    EXPECT_EQ(key, -7);
    EXPECT_EQ(text, kUntouched);
}

TEST(ItemTypeQueries, IdentKeyTextAndKeyFromIdent) {
    RegisterSampleItems();
    const char* text = kUntouched;
    ASSERT_EQ(xunGetItemTypeIdent(600, &text), 1);
    EXPECT_STREQ(text, "FlowTime");
    ASSERT_EQ(xunGetItemTypeKey(600, &text), 1);
    EXPECT_STREQ(text, "flow time");
    int key = -7;
    ASSERT_EQ(xunGetItemTypeKeyFromIdent("FlowTime", &key), 1);
    EXPECT_EQ(key, 600);

    text = kUntouched;
    key = -7;
    EXPECT_EQ(xunGetItemTypeIdent(601, &text), 0);
    EXPECT_EQ(xunGetItemTypeKey(-1, &text), 0);
    EXPECT_EQ(xunGetItemTypeKeyFromIdent("flowtime", &key), 0);
    EXPECT_EQ(xunGetItemTypeKeyFromIdent("flow time", &key), 0);
    EXPECT_EQ(xunGetItemTypeKeyFromIdent(nullptr, &key), 0);
    EXPECT_EQ(text, kUntouched);
    EXPECT_EQ(key, -7);
}

TEST(ItemTypeQueries, KeyFromIdentGivesTheLow32Bits) {
    RegisterItemType("Wide", 0x100000007L, CKVdimension::GetLength());
    int key = -7;
    ASSERT_EQ(xunGetItemTypeKeyFromIdent("Wide", &key), 1);
    EXPECT_EQ(key, 7);
    // Keys cross as int and widen with their sign: 7 is another item type.
    const char* text = kUntouched;
    EXPECT_EQ(xunGetItemTypeKey(7, &text), 0);
    EXPECT_EQ(text, kUntouched);
}

TEST(ItemTypeQueries, NegativeKeysWidenWithTheirSign) {
    RegisterItemType("Negative", -3, CKVdimension::GetLength(), {}, "negative");
    const char* text = kUntouched;
    ASSERT_EQ(xunGetItemTypeKey(-3, &text), 1);
    EXPECT_STREQ(text, "negative");
}

TEST(ItemTypeQueries, Params) {
    RegisterSampleItems();
    CKVitemType* level = xuntest::ItemByKey(500);
    level->m_nDecimals = 3;
    level->m_dDefault = -999.5;
    int decimals = -7;
    double value = 1.25;
    ASSERT_EQ(xunGetItemTypeParams(500, &decimals, &value), 1);
    EXPECT_EQ(decimals, 3);
    EXPECT_EQ(value, -999.5);
    ASSERT_EQ(xunGetItemTypeParams(600, &decimals, &value), 1);
    EXPECT_EQ(decimals, -1);
    EXPECT_EQ(value, 0.0);
    decimals = -7;
    value = 1.25;
    EXPECT_EQ(xunGetItemTypeParams(501, &decimals, &value), 0);
    EXPECT_EQ(decimals, -7);
    EXPECT_EQ(value, 1.25);
}

TEST(ItemTypeQueries, ItemTypeNewGetsKeysFrom110000) {
    RegisterSampleUnits();
    RegisterItemType("WaterLevel", 500, CKVdimension::GetLength(), {"m", "km"}, "water level");
    ASSERT_EQ(xunItemTypeNew("Depth", "depth", 0, "ft"), 1);
    ASSERT_EQ(xunItemTypeNew("Duration", "duration", 12345, "h"), 1);
    int key = -7;
    ASSERT_EQ(xunGetItemTypeKeyFromIdent("Depth", &key), 1);
    EXPECT_EQ(key, 110000);
    ASSERT_EQ(xunGetItemTypeKeyFromIdent("Duration", &key), 1);
    EXPECT_EQ(key, 110001);

    const CKVitemType* depth = xuntest::ItemByKey(110000);
    ASSERT_NE(depth, nullptr);
    EXPECT_EQ(depth->m_strKey, "depth");
    EXPECT_EQ(depth->m_strIdent, "Depth");
    EXPECT_EQ(depth->m_lUserUnit, -1);
    EXPECT_EQ(depth->m_lFilter, 0);
    EXPECT_EQ(depth->m_nFileItem, 1);
    EXPECT_EQ(depth->m_nDecimals, -1);
    EXPECT_EQ(depth->m_dDefault, 0.0);
    // Its own copy of the unit's dimension, and the unit as the only one.
    ASSERT_NE(depth->m_pDimension, nullptr);
    EXPECT_NE(depth->m_pDimension, &CKVdimension::GetLength());
    EXPECT_TRUE(depth->m_pDimension->IsEqv(CKVdimension::GetLength()));
    ASSERT_EQ(depth->m_lstUnits.size(), 1u);
    EXPECT_EQ(depth->m_lstUnits.front(), xuntest::UnitByIdent("ft"));
    int unit = -7;
    ASSERT_EQ(xunGetItemUserUnit(110000, &unit), 1);
    EXPECT_EQ(unit, 1002);
    EXPECT_EQ(xuntest::AllItemTypes().back(), xuntest::ItemByKey(110001));
}

TEST(ItemTypeQueries, ItemTypeNewCountsOnFromTheLargestKey) {
    RegisterSampleUnits();
    RegisterItemType("High", 200000, CKVdimension::GetLength());
    RegisterItemType("Low", 120000, CKVdimension::GetLength());
    ASSERT_EQ(xunItemTypeNew("Next", "next", 0, "m"), 1);
    EXPECT_NE(xuntest::ItemByKey(200001), nullptr);
    EXPECT_EQ(xuntest::ItemByKey(200001)->m_strIdent, "Next");
}

TEST(ItemTypeQueries, ItemTypeNewRefusesUnknownUnitsAndTakenIdents) {
    RegisterSampleItems();
    EXPECT_EQ(xunItemTypeNew("Depth", "depth", 0, "furlong"), 0);
    EXPECT_EQ(xunItemTypeNew("Depth", "depth", 0, "meter"), 0);
    EXPECT_EQ(xunGetItemTypeCount(), 3);
    EXPECT_EQ(xuntest::ItemByIdent("Depth"), nullptr);
    EXPECT_EQ(xunItemTypeNew("WaterLevel", "again", 0, "ft"), 0);
    EXPECT_EQ(xunGetItemTypeCount(), 3);
    EXPECT_EQ(xuntest::ItemByKey(110000), nullptr);
    EXPECT_EQ(xuntest::ItemByIdent("WaterLevel")->m_strKey, "water level");
}

TEST(ItemTypeQueries, ItemTypeNewFromAnExpressionUnit) {
    RegisterBaseUnits();
    ASSERT_EQ(xunUnitNew("mps", "meter per second", "m/s", "Length/Time"), 1);
    ASSERT_EQ(xunItemTypeNew("Velocity", "velocity", 0, "mps"), 1);
    const CKVitemType* velocity = xuntest::ItemByIdent("Velocity");
    ASSERT_NE(velocity, nullptr);
    EXPECT_TRUE(velocity->m_pDimension->IsEqv(CKVdimension::GetLength() / CKVdimension::GetTime()));
    EXPECT_EQ(xunItemUnitEqv(110000, Tag("mps")), 1);
    EXPECT_EQ(xunItemUnitEqv(110000, Tag("Length")), 0);
}

TEST(ItemTypeQueriesDeathTest, ItemTypeNewWithNullTextThrows) {
    RegisterSampleUnits();
    // A host calling through the C interface cannot catch the exception: it
    // terminates the process, as a noexcept frame does here.
    auto call = [](const char* ident, const char* keyText, const char* unitIdent) noexcept {
        xunItemTypeNew(ident, keyText, 0, unitIdent);
    };
    EXPECT_DEATH(call(nullptr, "depth", "m"), "basic_string::_M_construct null not valid");
    EXPECT_DEATH(call("Depth", nullptr, "m"), "basic_string::_M_construct null not valid");
    EXPECT_DEATH(call("Depth", "depth", nullptr), "basic_string::_M_construct null not valid");
    // Also when the unit would not be found.
    EXPECT_DEATH(call(nullptr, "depth", "furlong"), "basic_string::_M_construct null not valid");
}

TEST(ItemTypeQueries, UnitCountAndSequence) {
    RegisterSampleItems();
    EXPECT_EQ(xunGetItemUnitCount(500), 2);
    EXPECT_EQ(xunGetItemUnitCount(600), 2);
    EXPECT_EQ(xunGetItemUnitCount(501), 0);
    int tag = -7;
    const char* key = kUntouched;
    ASSERT_EQ(xunGetItemUnitSeq(600, 1, &tag, &key), 1);
    EXPECT_EQ(tag, 1011);
    EXPECT_STREQ(key, "hour");
    ASSERT_EQ(xunGetItemUnitSeq(600, 2, &tag, &key), 1);
    EXPECT_EQ(tag, 1010);
    EXPECT_STREQ(key, "second");
    tag = -7;
    key = kUntouched;
    EXPECT_EQ(xunGetItemUnitSeq(600, 0, &tag, &key), 0);
    EXPECT_EQ(xunGetItemUnitSeq(600, 3, &tag, &key), 0);
    EXPECT_EQ(xunGetItemUnitSeq(601, 1, &tag, &key), 0);
    EXPECT_EQ(tag, -7);
    EXPECT_EQ(key, kUntouched);
}

TEST(ItemTypeQueries, AnyUnitItemTypeWalksEveryRegisteredUnit) {
    RegisterSampleItems();
    EXPECT_EQ(xunGetItemUnitCount(999), 8);
    EXPECT_EQ(xunGetItemUnitCount(999), static_cast<int>(xuntest::Registries().units.Count()));
    std::vector<int> tags;
    int tag = -7;
    const char* key = kUntouched;
    for (int seq = 1; xunGetItemUnitSeq(999, seq, &tag, &key); ++seq)
        tags.push_back(tag);
    EXPECT_EQ(tags, (std::vector<int>{1000, 1001, 1002, 1010, 1011, 1020, 1021, 1022}));
    ASSERT_EQ(xunGetItemUnitSeq(999, 7, &tag, &key), 1);
    EXPECT_STREQ(key, "degree Celsius");
    tag = -7;
    key = kUntouched;
    EXPECT_EQ(xunGetItemUnitSeq(999, 0, &tag, &key), 0);
    EXPECT_EQ(xunGetItemUnitSeq(999, 9, &tag, &key), 0);
    EXPECT_EQ(tag, -7);
    EXPECT_EQ(key, kUntouched);
    // Its own allowed list is bypassed.
    xuntest::ItemByKey(999)->m_lstUnits.push_back(xuntest::UnitByIdent("m"));
    EXPECT_EQ(xunGetItemUnitCount(999), 8);
}

TEST(ItemTypeQueries, UserUnitDefaultsToTheFirstAllowedUnit) {
    RegisterSampleItems();
    int tag = -7;
    ASSERT_EQ(xunGetItemUserUnit(500, &tag), 1);
    EXPECT_EQ(tag, 1000);
    xuntest::ItemByKey(500)->AllowUnit(*xuntest::UnitByIdent("ft"), true);
    ASSERT_EQ(xunGetItemUserUnit(500, &tag), 1);
    EXPECT_EQ(tag, 1002);
    tag = -7;
    EXPECT_EQ(xunGetItemUserUnit(501, &tag), 0);
    EXPECT_EQ(tag, -7);
}

TEST(ItemTypeQueries, UserUnitOfAnItemTypeWithoutUnitsIsMinusOne) {
    RegisterSampleItems();
    int tag = -7;
    ASSERT_EQ(xunGetItemUserUnit(999, &tag), 1);
    EXPECT_EQ(tag, -1);
}

TEST(ItemTypeQueries, SetUserUnitAcceptsAnyUnitOfTheDimension) {
    RegisterSampleItems();
    // ft is not among the allowed units of the water level; that is fine.
    ASSERT_EQ(xunSetItemUserUnit(500, 1002), 1);
    int tag = -7;
    ASSERT_EQ(xunGetItemUserUnit(500, &tag), 1);
    EXPECT_EQ(tag, 1002);
    EXPECT_EQ(xuntest::ItemByKey(500)->m_lstUnits.size(), 2u);
}

TEST(ItemTypeQueries, SetUserUnitRefusesOtherDimensionsAndUnknowns) {
    RegisterSampleItems();
    ASSERT_EQ(xunSetItemUserUnit(500, 1001), 1);
    EXPECT_EQ(xunSetItemUserUnit(500, 1010), 0);
    EXPECT_EQ(xunSetItemUserUnit(500, 4711), 0);
    EXPECT_EQ(xunSetItemUserUnit(500, -1), 0);
    EXPECT_EQ(xunSetItemUserUnit(501, 1000), 0);
    int tag = -7;
    ASSERT_EQ(xunGetItemUserUnit(500, &tag), 1);
    EXPECT_EQ(tag, 1001);
}

TEST(ItemTypeQueries, SetUserUnitRefusesKeyZeroAndMissingDimension) {
    RegisterSampleItems();
    RegisterUnit("nolength", 0, 2.0, 0.0, CKVdimension::GetLength());
    EXPECT_EQ(xunSetItemUserUnit(500, 0), 0);
    CKVitemType* level = xuntest::ItemByKey(500);
    level->m_pDimension = nullptr;
    EXPECT_EQ(xunSetItemUserUnit(500, 1000), 0);
    EXPECT_EQ(level->m_lUserUnit, -1);
}

TEST(ItemTypeQueries, SetUserUnitOfAnyUnitItemTypeAcceptsEveryKnownUnit) {
    RegisterSampleItems();
    RegisterUnit("nolength", 0, 2.0, 0.0, CKVdimension::GetLength());
    int tag = -7;
    ASSERT_EQ(xunSetItemUserUnit(999, 1010), 1);
    ASSERT_EQ(xunGetItemUserUnit(999, &tag), 1);
    EXPECT_EQ(tag, 1010);
    ASSERT_EQ(xunSetItemUserUnit(999, 1022), 1);
    ASSERT_EQ(xunGetItemUserUnit(999, &tag), 1);
    EXPECT_EQ(tag, 1022);
    ASSERT_EQ(xunSetItemUserUnit(999, 0), 1);
    ASSERT_EQ(xunGetItemUserUnit(999, &tag), 1);
    EXPECT_EQ(tag, 0);
    EXPECT_EQ(xunSetItemUserUnit(999, 4711), 0);
    ASSERT_EQ(xunGetItemUserUnit(999, &tag), 1);
    EXPECT_EQ(tag, 0);
}

TEST(ItemTypeQueries, ItemUnitEqv) {
    RegisterSampleItems();
    RegisterUnit("nolength", 0, 2.0, 0.0, CKVdimension::GetLength());
    EXPECT_EQ(xunItemUnitEqv(500, 1000), 1);
    EXPECT_EQ(xunItemUnitEqv(500, 1002), 1);
    EXPECT_EQ(xunItemUnitEqv(500, 1010), 0);
    EXPECT_EQ(xunItemUnitEqv(500, 0), 0);
    EXPECT_EQ(xunItemUnitEqv(500, 4711), 0);
    EXPECT_EQ(xunItemUnitEqv(501, 1000), 0);
    EXPECT_EQ(xunItemUnitEqv(999, 1010), 1);
    EXPECT_EQ(xunItemUnitEqv(999, 0), 1);
    EXPECT_EQ(xunItemUnitEqv(999, 4711), 0);
    xuntest::ItemByKey(500)->m_pDimension = nullptr;
    EXPECT_EQ(xunItemUnitEqv(500, 1000), 0);
}

TEST(ItemTypeQueries, AddItemUnitAppendsAndRefusesDuplicates) {
    RegisterSampleItems();
    EXPECT_EQ(xunAddItemUnit(500, 1002), 1);
    EXPECT_EQ(xunGetItemUnitCount(500), 3);
    int tag = -7;
    const char* key = kUntouched;
    ASSERT_EQ(xunGetItemUnitSeq(500, 3, &tag, &key), 1);
    EXPECT_EQ(tag, 1002);
    EXPECT_STREQ(key, "foot");
    // The same unit again.
    EXPECT_EQ(xunAddItemUnit(500, 1000), 0);
    EXPECT_EQ(xunAddItemUnit(500, 1002), 0);
    // Unknown item type or unit.
    EXPECT_EQ(xunAddItemUnit(501, 1000), 0);
    EXPECT_EQ(xunAddItemUnit(500, 4711), 0);
    EXPECT_EQ(xunGetItemUnitCount(500), 3);
}

TEST(ItemTypeQueries, AddItemUnitRefusesAUnitWithTheIdentOfAnAllowedOne) {
    RegisterSampleUnits();
    // An allowed unit that is not registered, and a registered unit of
    // another key that carries the same ident.
    CKVunit allowed("fathom", "fm", 4711, 1.8288, CKVdimension::GetLength());
    allowed.m_strIdent = "fm";
    CKVitemType* level = RegisterItemType("Level", 500, CKVdimension::GetLength(), {"m"});
    ASSERT_TRUE(level->AllowUnit(allowed, false));
    RegisterUnit("fm", 1005, 1.8288, 0.0, CKVdimension::GetLength(), "fathom");
    EXPECT_EQ(xunAddItemUnit(500, 1005), 0);
    EXPECT_EQ(xunGetItemUnitCount(500), 2);
    EXPECT_EQ(level->m_lstUnits.back(), &allowed);
    level->m_lstUnits.clear();
}

TEST(ItemTypeQueriesDeathTest, AddItemUnitOfAnotherDimensionAborts) {
    RegisterSampleItems();
    EXPECT_DEATH(xunAddItemUnit(500, 1010),
                 "KVitemType:[0-9]+: bool CKVitemType::AllowUnit\\(CKVunit &, bool\\): "
                 "Assertion `bOk' failed");
}

TEST(ItemTypeQueries, AddItemFilterOrsTheBits) {
    RegisterSampleItems();
    EXPECT_EQ(xunAddItemFilter(500, 1), 1);
    EXPECT_EQ(xunAddItemFilter(500, 4), 1);
    EXPECT_EQ(xuntest::ItemByKey(500)->GetFilter(), 5);
    EXPECT_EQ(xunAddItemFilter(500, 4), 1);
    EXPECT_EQ(xuntest::ItemByKey(500)->GetFilter(), 5);
    EXPECT_EQ(xunAddItemFilter(501, 8), 0);
    // An int with bit 31 set widens with its sign.
    EXPECT_EQ(xunAddItemFilter(600, xunGetFlybyFilter()), 1);
    EXPECT_EQ(xuntest::ItemByKey(600)->GetFilter(), -0x80000000L);
}

TEST(ItemUnitQueries, ItemUnitTagMatchesDescriptionsOfAllowedUnits) {
    RegisterSampleItems();
    int tag = -7;
    ASSERT_EQ(xunGetItemUnitTag(500, "meter", &tag), 1);
    EXPECT_EQ(tag, 1000);
    ASSERT_EQ(xunGetItemUnitTag(500, "kilometers", &tag), 1);
    EXPECT_EQ(tag, 1001);
    tag = -7;
    // Registered, but not allowed for the water level.
    EXPECT_EQ(xunGetItemUnitTag(500, "foot", &tag), 0);
    EXPECT_EQ(tag, 0);
    tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(500, "Meter", &tag), 0);
    EXPECT_EQ(tag, 0);
    tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(501, "meter", &tag), 0);
    EXPECT_EQ(tag, 0);
    tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(500, nullptr, &tag), 0);
    EXPECT_EQ(tag, 0);
}

TEST(ItemUnitQueries, ItemUnitTagIgnoresAliases) {
    RegisterSampleItems();
    // Aliases are no part of the registry's indexes.
    const_cast<CKVunit*>(xuntest::UnitByIdent("m"))->SetAlias("metre;metres");
    int tag = -7;
    EXPECT_EQ(xunGetUnitTag("metre", &tag), 1);
    EXPECT_EQ(tag, 1000);
    tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(500, "metre", &tag), 0);
    EXPECT_EQ(tag, 0);
    tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(999, "metre", &tag), 0);
    EXPECT_EQ(tag, 0);
}

TEST(ItemUnitQueries, ItemUnitTagForAnyUnitSearchesEveryUnit) {
    RegisterSampleItems();
    int tag = -7;
    ASSERT_EQ(xunGetItemUnitTag(999, "foot", &tag), 1);
    EXPECT_EQ(tag, 1002);
    ASSERT_EQ(xunGetItemUnitTag(999, "hours", &tag), 1);
    EXPECT_EQ(tag, 1011);
    tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(999, "fathom", &tag), 0);
    EXPECT_EQ(tag, 0);
}

TEST(ItemUnitQueries, ItemUnitTagWithoutCandidatesStoresZero) {
    RegisterSampleUnits();
    RegisterItemType("Empty", 700, CKVdimension::GetLength());
    int tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(700, "meter", &tag), 0);
    EXPECT_EQ(tag, 0);
}

TEST(ItemUnitQueries, ItemUnitTagOfKeyZeroIsFoundButFails) {
    RegisterSampleUnits();
    RegisterUnit("zero", 0, 2.0, 0.0, CKVdimension::GetLength(), "double meter");
    RegisterItemType("Level", 500, CKVdimension::GetLength(), {"zero", "m"});
    int tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(500, "double meter", &tag), 0);
    EXPECT_EQ(tag, 0);
    ASSERT_EQ(xunGetItemUnitTag(500, "meter", &tag), 1);
    EXPECT_EQ(tag, 1000);
}

TEST(ItemUnitQueries, ItemUnitTagComparesTheUnitRegisteredUnderTheKey) {
    RegisterSampleUnits();
    // An allowed unit that is not in the registry is skipped; one whose key
    // names another registered unit is compared by that unit's description.
    CKVunit stray("stray", "st", 4711, 2.0, CKVdimension::GetLength());
    stray.m_strIdent = "stray";
    CKVunit shadow("shadow", "sh", 1001, 3.0, CKVdimension::GetLength());
    shadow.m_strIdent = "shadow";
    CKVitemType* level = RegisterItemType("Level", 500, CKVdimension::GetLength());
    level->AllowUnit(stray, false);
    level->AllowUnit(shadow, false);
    int tag = -7;
    EXPECT_EQ(xunGetItemUnitTag(500, "stray", &tag), 0);
    EXPECT_EQ(tag, 0);
    EXPECT_EQ(xunGetItemUnitTag(500, "shadow", &tag), 0);
    EXPECT_EQ(tag, 0);
    ASSERT_EQ(xunGetItemUnitTag(500, "kilometer", &tag), 1);
    EXPECT_EQ(tag, 1001);
}

TEST(ItemUnitQueriesDeathTest, ItemUnitTagWithANullAllowedUnitAborts) {
    RegisterSampleItems();
    xuntest::ItemByKey(500)->m_lstUnits.insert(xuntest::ItemByKey(500)->m_lstUnits.begin(), nullptr);
    int tag = -7;
    EXPECT_DEATH(xunGetItemUnitTag(500, "meter", &tag),
                 "KVitemType:[0-9]+: const CKVunit \\*CKVitemType::GetUnit\\(long\\) const: "
                 "Assertion `Un' failed");
}

TEST(ItemUnitQueries, FirstEqvUnitIsTheFirstRegisteredUnitOfTheDimension) {
    RegisterSampleUnits();
    RegisterUnit("zeroTime", 0, 60.0, 0.0, CKVdimension::GetTime());
    RegisterItemType("Duration", 600, CKVdimension::GetTime(), {"h"});
    // The list order of the registry decides, not the allowed units.
    int tag = -7;
    const char* key = kUntouched;
    ASSERT_EQ(xunGetItemFirstEqvUnit(600, &tag, &key), 1);
    EXPECT_EQ(tag, 1010);
    EXPECT_STREQ(key, "second");
}

TEST(ItemUnitQueries, FirstEqvUnitSkipsKeyZeroAndFailsWithoutMatch) {
    RegisterUnit("zeroTime", 0, 60.0, 0.0, CKVdimension::GetTime(), "zero");
    RegisterUnit("h", 1011, 3600.0, 0.0, CKVdimension::GetTime(), "hour");
    RegisterItemType("Duration", 600, CKVdimension::GetTime());
    RegisterItemType("Mass", 700, CKVdimension::GetMass());
    int tag = -7;
    const char* key = kUntouched;
    ASSERT_EQ(xunGetItemFirstEqvUnit(600, &tag, &key), 1);
    EXPECT_EQ(tag, 1011);
    EXPECT_STREQ(key, "hour");
    tag = -7;
    key = kUntouched;
    EXPECT_EQ(xunGetItemFirstEqvUnit(700, &tag, &key), 0);
    EXPECT_EQ(xunGetItemFirstEqvUnit(701, &tag, &key), 0);
    xuntest::ItemByKey(600)->m_pDimension = nullptr;
    EXPECT_EQ(xunGetItemFirstEqvUnit(600, &tag, &key), 0);
    EXPECT_EQ(tag, -7);
    EXPECT_EQ(key, kUntouched);
}

} // namespace
