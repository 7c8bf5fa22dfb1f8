#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/UnitRegistry.h"
#include "setup/Installation.h"
#include "xun.h"
#include "registry_access.h"

namespace {

std::string DataFile(const std::string& name) {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data") + "/setup/" + name;
}

std::vector<std::string> UnitIdents() {
    std::vector<std::string> idents;
    for (const CKVunit* unit : xuntest::Registries().units)
        idents.push_back(unit->m_strIdent);
    return idents;
}

std::vector<long> AllowedKeys(const CKVitemType& item) {
    std::vector<long> keys;
    for (const CKVunit* unit : const_cast<CKVitemType&>(item).GetUnitList())
        keys.push_back(unit->m_lKey);
    return keys;
}

int LoadQuietly(const std::string& path, std::string* out = nullptr, std::string* err = nullptr) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int result = xunSetupLoad(path.c_str());
    const std::string o = testing::internal::GetCapturedStdout();
    const std::string e = testing::internal::GetCapturedStderr();
    if (out != nullptr)
        *out = o;
    else
        EXPECT_EQ(o, "");
    if (err != nullptr)
        *err = e;
    else
        EXPECT_EQ(e, "");
    return result;
}

const CKVitemType& Item(long key) {
    const CKVitemType* item = xuntest::ItemByKey(key);
    EXPECT_NE(item, nullptr) << key;
    static CKVitemType missing("", 1, "", CKVdimension::GetNonDim());
    return item != nullptr ? *item : missing;
}

TEST(SetupLoader, LoadsTheExampleIntoAnEmptyLibrary) {
    ASSERT_EQ(LoadQuietly(DataFile("basic.xml")), 1);
    EXPECT_EQ(UnitIdents(),
              (std::vector<std::string>{"UnitMeter", "UnitKilometer", "UnitSecond", "UnitHour",
                                        "UnitKelvin", "UnitCelsius", "UnitMps"}));
    for (long k = 1; k <= 8; ++k)
        EXPECT_EQ(xuntest::UnitByKey(k), nullptr) << k;
    EXPECT_EQ(xuntest::UnitByIdent("Length"), nullptr);
    EXPECT_EQ(xuntest::UnitByIdent("Mass"), nullptr);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");

    const CKVunit* km = xuntest::UnitByKey(1001);
    ASSERT_NE(km, nullptr);
    EXPECT_EQ(km->m_strIdent, "UnitKilometer");
    EXPECT_EQ(km->m_strDesc, "kilometer");
    EXPECT_EQ(km->m_strAbbr, "km");
    EXPECT_EQ(km->m_strExpr, "UnitMeter*1000");
    EXPECT_EQ(km->m_dFactor, 1000.0);
    EXPECT_TRUE(km->IsEqv(CKVdimension::GetLength()));
    const CKVunit* meter = xuntest::UnitByKey(1000);
    ASSERT_NE(meter, nullptr);
    EXPECT_TRUE(meter->IsAlias("metre"));
    const CKVunit* second = xuntest::UnitByKey(1100);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(std::vector<std::string>(second->m_lstAlias.begin(), second->m_lstAlias.end()),
              (std::vector<std::string>{"sec", "secs"}));
    const CKVunit* celsius = xuntest::UnitByKey(1201);
    ASSERT_NE(celsius, nullptr);
    EXPECT_EQ(celsius->m_dOffset, 273.15);
    EXPECT_EQ(celsius->m_dFactor, 1.0);

    ASSERT_EQ(xuntest::Registries().itemTypes.Count(), 3u);
    const CKVitemType& level = Item(100);
    EXPECT_EQ(level.m_strKey, "Water Level");
    EXPECT_EQ(level.m_strIdent, "ItemWaterLevel");
    EXPECT_EQ(level.m_nDecimals, 3);
    EXPECT_EQ(level.m_dDefault, 0.0);
    EXPECT_EQ(AllowedKeys(level), (std::vector<long>{1000, 1001}));
    EXPECT_EQ(level.m_lUserUnit, 1000);
    EXPECT_EQ(level.GetFilter(), 5);
    EXPECT_TRUE(level.m_pDimension->IsEqv(CKVdimension::GetLength()));
    EXPECT_NE(level.m_pDimension, &CKVdimension::GetLength());

    const CKVitemType& temperature = Item(101);
    // The default unit named again in AllowedUnits keeps a single entry; the
    // doubled delimiter is skipped.
    EXPECT_EQ(AllowedKeys(temperature), (std::vector<long>{1201, 1200}));
    EXPECT_EQ(temperature.m_dDefault, 1.5);
    EXPECT_EQ(temperature.m_lUserUnit, 1200);
    EXPECT_EQ(temperature.GetFilter(), 4);

    const CKVitemType& speed = Item(102);
    EXPECT_EQ(AllowedKeys(speed), (std::vector<long>{1300}));
    EXPECT_EQ(speed.m_dDefault, -2.25);
    EXPECT_EQ(speed.m_lUserUnit, -1);
    EXPECT_EQ(speed.GetFilter(), 1);

    ASSERT_EQ(xuntest::Registries().filters.Count(), 2u);
    EXPECT_EQ(static_cast<long>(*xuntest::Registries().filters.At(0)), 1);
    EXPECT_EQ(xuntest::Registries().filters.At(0)->m_strIdent, "FilterHydro");
    EXPECT_EQ(xuntest::Registries().filters.At(0)->m_strKey, "Hydrodynamics");
    EXPECT_EQ(static_cast<long>(*xuntest::Registries().filters.At(1)), 4);

    const char* docName = nullptr;
    xunSetupGetPath(&docName);
    EXPECT_EQ(std::string(docName), DataFile("basic.xml"));
}

TEST(SetupLoader, SecondLoadOfTheSameFileChangesNoCount) {
    ASSERT_EQ(LoadQuietly(DataFile("basic.xml")), 1);
    const size_t units = xuntest::Registries().units.Count();
    const std::vector<std::string> idents = UnitIdents();
    ASSERT_EQ(LoadQuietly(DataFile("basic.xml")), 1);
    EXPECT_EQ(xuntest::Registries().units.Count(), units);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
    EXPECT_EQ(UnitIdents(), idents);
    EXPECT_EQ(xuntest::Registries().itemTypes.Count(), 3u);
    EXPECT_EQ(xuntest::Registries().filters.Count(), 2u);
    EXPECT_EQ(AllowedKeys(Item(101)), (std::vector<long>{1201, 1200}));
    EXPECT_EQ(Item(100).GetFilter(), 5);
    EXPECT_EQ(Item(102).GetFilter(), 1);
}

TEST(SetupLoader, SecondLoadRefreshesTextsButNotExpressions) {
    ASSERT_EQ(LoadQuietly(DataFile("basic.xml")), 1);
    ASSERT_EQ(LoadQuietly(DataFile("basic_edited.xml")), 1);
    const CKVunit* meter = xuntest::UnitByKey(1000);
    ASSERT_NE(meter, nullptr);
    EXPECT_EQ(meter->m_strDesc, "metre");
    EXPECT_EQ(meter->m_strAbbr, "m.");
    EXPECT_EQ(meter->m_dFactor, 1.0);
    EXPECT_EQ(meter->m_strExpr, "Length");
    EXPECT_FALSE(meter->IsAlias("meter"));
    // The new unit was added after the ones already there.
    EXPECT_EQ(UnitIdents().back(), "UnitMile");
    EXPECT_EQ(xuntest::UnitByKey(1002)->m_dFactor, 1609.344);

    const CKVitemType& level = Item(100);
    EXPECT_EQ(level.m_strKey, "Level of water");
    EXPECT_EQ(level.m_nDecimals, 4);
    EXPECT_EQ(level.m_dDefault, 7.0);
    EXPECT_EQ(AllowedKeys(level), (std::vector<long>{1000, 1001, 1002}));
    EXPECT_EQ(level.m_lUserUnit, 1000);
    // An empty AllowedUnits is a missing one, so UserUnit is not read.
    EXPECT_EQ(Item(102).m_lUserUnit, -1);
    // Filter bits are only added.
    EXPECT_EQ(level.GetFilter(), 5);
    EXPECT_EQ(Item(102).GetFilter(), 1 | 8);
    EXPECT_EQ(xuntest::FilterByKey(4)->m_strKey, "Heat and cold");
    EXPECT_EQ(xuntest::Registries().filters.Count(), 3u);
}

TEST(SetupLoader, RowRules) {
    std::string out;
    ASSERT_EQ(LoadQuietly(DataFile("rows.xml"), &out), 1);
    EXPECT_EQ(out, "Error reading unit\nUnitBad\nUnsuccessful parsing of the expression\n"
                   "UnitMeter*furlong"
                   "Error reading unit\nUnitNoExpr\nUnsuccessful parsing of the expression\n");
    // A row without KvId takes the previous key and is refused as a duplicate.
    EXPECT_EQ(xuntest::UnitByIdent("UnitNoKey"), nullptr);
    // 0x10 reads as 0 in base 10.
    const CKVunit* hex = xuntest::UnitByIdent("UnitHex");
    ASSERT_NE(hex, nullptr);
    EXPECT_EQ(hex->m_lKey, 0);
    // Base-unit idents and keys are taken while units are read.
    EXPECT_EQ(xuntest::UnitByKey(1005), nullptr);
    EXPECT_EQ(xuntest::UnitByIdent("UnitBaseKey"), nullptr);
    // A duplicate key with another ident changes nothing.
    EXPECT_EQ(xuntest::UnitByIdent("UnitOther"), nullptr);
    EXPECT_EQ(xuntest::UnitByKey(1000)->m_strDesc, "meter");
    EXPECT_EQ(xuntest::UnitByIdent("UnitNumber"), nullptr);
    EXPECT_EQ(UnitIdents(), (std::vector<std::string>{"UnitMeter", "UnitHex", "UnitLast"}));
    EXPECT_TRUE(xuntest::UnitByIdent("UnitLast")->IsEqv(CKVdimension::GetMass()));

    EXPECT_NE(xuntest::ItemByKey(0), nullptr);
    EXPECT_EQ(xuntest::ItemByKey(0)->m_strIdent, "ItemHex");
    EXPECT_EQ(xuntest::ItemByIdent("ItemNoDefault"), nullptr);
    EXPECT_EQ(xuntest::ItemByIdent("ItemUnknownDefault"), nullptr);
    const CKVitemType& userOnly = Item(202);
    EXPECT_EQ(userOnly.m_lUserUnit, -1);
    EXPECT_EQ(userOnly.m_nDecimals, 5);
    EXPECT_EQ(userOnly.m_dDefault, 3.5);
    // Carried over from the previous row; unknown allowed units are skipped.
    const CKVitemType& carried = Item(203);
    EXPECT_EQ(carried.m_nDecimals, 5);
    EXPECT_EQ(carried.m_dDefault, 3.5);
    EXPECT_EQ(AllowedKeys(carried), (std::vector<long>{1000, 0}));
    // A row without KvId reuses 203 and is refused.
    EXPECT_EQ(xuntest::ItemByIdent("ItemNoKey"), nullptr);

    EXPECT_NE(xuntest::FilterByKey(16), nullptr);
    EXPECT_EQ(xuntest::FilterByKey(16)->m_strIdent, "FilterHex");
    EXPECT_EQ(xuntest::ItemByKey(0)->GetFilter(), 16);
    EXPECT_NE(xuntest::FilterByKey(8), nullptr);
    EXPECT_EQ(xuntest::FilterByKey(8)->m_strIdent, "FilterOctal");
    EXPECT_EQ(xuntest::FilterByIdent("FilterNoKey"), nullptr);
}

TEST(SetupLoader, ItemTypesNeedUnitsRegisteredBefore) {
    ASSERT_EQ(LoadQuietly(DataFile("items_only.xml")), 1);
    EXPECT_TRUE((xuntest::Registries().itemTypes.Count() == 0));
    EXPECT_TRUE((xuntest::Registries().units.Count() == 0));
    ASSERT_EQ(LoadQuietly(DataFile("basic.xml")), 1);
    ASSERT_EQ(LoadQuietly(DataFile("items_only.xml")), 1);
    EXPECT_EQ(Item(100).m_strKey, "Water Level");
}

TEST(SetupLoader, GroupsAreFoundByTagAndFirstMatchingAttribute) {
    ASSERT_EQ(LoadQuietly(DataFile("nested_groups.xml")), 1);
    EXPECT_EQ(UnitIdents(), (std::vector<std::string>{"UnitMeter", "UnitFoot"}));
}

TEST(SetupLoader, MissingFileFailsAndLeavesTheLocaleAtC) {
    std::string err;
    const std::string path = DataFile("does-not-exist.xml");
    EXPECT_EQ(LoadQuietly(path, nullptr, &err), 0);
    EXPECT_EQ(err, "Document '" + path + "' not parsed successfully. \n");
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
    const char* docName = nullptr;
    xunSetupGetPath(&docName);
    EXPECT_STREQ(docName, "");
}

TEST(SetupLoader, MalformedFileFails) {
    std::string err;
    const std::string path = DataFile("malformed.xml");
    EXPECT_EQ(LoadQuietly(path, nullptr, &err), 0);
    EXPECT_EQ(err, "Document '" + path + "' not parsed successfully. \n");
    EXPECT_TRUE((xuntest::Registries().units.Count() == 0));
}

TEST(SetupLoader, OverlongPathIsRefused) {
    std::string err;
    const std::string path = "/" + std::string(300, 'p') + ".xml";
    EXPECT_EQ(LoadQuietly(path, nullptr, &err), 0);
    EXPECT_EQ(err, "Document '" + path + "' not parsed successfully. \n");
}

TEST(SetupLoader, NullAndEmptyPathLoadTheDefaultFile) {
    const std::string home = std::string(std::getenv("XUN_TEST_DATA")) + "/setup/home";
    setenv("KORVANE_HOME", home.c_str(), 1);
    ASSERT_EQ(LoadQuietly(""), 1);
    const char* docName = nullptr;
    xunSetupGetPath(&docName);
    EXPECT_EQ(std::string(docName), home + "/bin/XUN.xml");
    EXPECT_NE(xuntest::UnitByKey(1000), nullptr);
    testing::internal::CaptureStdout();
    EXPECT_EQ(xunSetupLoad(nullptr), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(xunSetupLoadLinux(nullptr), 1);
    xunSetupGetPath(&docName);
    EXPECT_EQ(std::string(docName), home + "/bin/XUN.xml");
    EXPECT_EQ(xuntest::Registries().units.Count(), 1u);
}

TEST(SetupLoader, UnsetHomeLooksForTheNullText) {
    unsetenv("KORVANE_HOME");
    std::string err;
    EXPECT_EQ(LoadQuietly("", nullptr, &err), 0);
    EXPECT_EQ(err, "Document '(null)/bin/XUN.xml' not parsed successfully. \n");
}

TEST(SetupLoader, NumbersParseInTheCLocaleAndTheHostLocaleComesBack) {
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr)
        GTEST_SKIP() << "no German locale (set LOCPATH to the build's locale folder)";
    ASSERT_EQ(LoadQuietly(DataFile("basic.xml")), 1);
    EXPECT_EQ(Item(101).m_dDefault, 1.5);
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "de_DE.UTF-8");
    std::setlocale(LC_NUMERIC, "C");
}

TEST(SetupLoaderDeathTest, UnknownFilterItemEndsTheProcess) {
    EXPECT_DEATH(xunSetupLoad(DataFile("unknown_filter_item.xml").c_str()),
                 "ItemTypeTables:3707: int xunSetupLoad\\(const char \\*\\): Assertion `ok' "
                 "failed");
}

TEST(SetupLoaderDeathTest, AllowedUnitOfAnotherDimensionEndsTheProcess) {
    EXPECT_DEATH(xunSetupLoad(DataFile("wrong_dimension.xml").c_str()),
                 "KVitemType:[0-9]+: bool CKVitemType::AllowUnit\\(CKVunit &, bool\\): "
                 "Assertion `bOk' failed");
}

} // namespace
