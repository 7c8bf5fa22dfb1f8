#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/UnitRegistry.h"
#include "setup/Installation.h"
#include "xun.h"
#include "registry_access.h"

namespace {

std::string Home(const char* name) {
    return std::string(std::getenv("XUN_TEST_DATA")) + "/setup/" + name;
}

void LoadFrom(const char* home, const char* path = "") {
    setenv("KORVANE_HOME", Home(home).c_str(), 1);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    xunLoadItemTypeTables(path);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

std::string UnitText(int tag, int (*get)(int, const char**)) {
    const char* text = nullptr;
    EXPECT_EQ(get(tag, &text), 1) << tag;
    return text != nullptr ? text : "";
}

TEST(LoadTables, EmptyPathLoadsTheDefaultSetupFile) {
    LoadFrom("nolang");
    const char* docName = nullptr;
    xunSetupGetPath(&docName);
    EXPECT_EQ(std::string(docName), Home("nolang") + "/bin/XUN.xml");
    EXPECT_STREQ(szDllFileName, "");
    EXPECT_EQ(xuntest::Registries().units.Count(), 3u);
}

TEST(LoadTables, PathIsKeptInTheDllFileName) {
    const std::string path = Home("langhome") + "/bin/XUN.xml";
    LoadFrom("nolang", path.c_str());
    EXPECT_EQ(std::string(szDllFileName), path);
    const char* docName = nullptr;
    xunSetupGetPath(&docName);
    EXPECT_EQ(std::string(docName), path);
    // The language files come from KORVANE_HOME, which has none here.
    EXPECT_EQ(UnitText(1000, xunGetUnitKey), "meter");
}

TEST(LoadTables, WithoutLanguageFilesTheSetupTextsStay) {
    LoadFrom("nolang");
    EXPECT_EQ(UnitText(1000, xunGetUnitKey), "meter");
    EXPECT_EQ(UnitText(1000, xunGetUnitAbbreviation), "m");
    const char* text = nullptr;
    ASSERT_EQ(xunGetItemTypeKey(100, &text), 1);
    EXPECT_STREQ(text, "Water Level");
    ASSERT_EQ(xunGetFilterKey(1, &text), 1);
    EXPECT_STREQ(text, "Hydrodynamics");
}

TEST(LoadTables, LanguageFilesReplaceDescriptionsAndAbbreviations) {
    LoadFrom("langhome");
    EXPECT_EQ(UnitText(1000, xunGetUnitKey), "Meter");
    EXPECT_EQ(UnitText(1001, xunGetUnitKey), "Kilometer");
    EXPECT_EQ(UnitText(1100, xunGetUnitKey), "Sekunde");
    EXPECT_EQ(UnitText(1100, xunGetUnitAbbreviation), "s");
    EXPECT_EQ(UnitText(1000, xunGetUnitIdent), "UnitMeter");
    int tag = 0;
    ASSERT_EQ(xunGetUnitTagFromIdent("UnitKilometer", &tag), 1);
    EXPECT_EQ(tag, 1001);
    // Name matching now works on the translated descriptions.
    ASSERT_EQ(xunGetUnitTag("Meters", &tag), 1);
    EXPECT_EQ(tag, 1000);
    EXPECT_EQ(xunGetUnitTag("meter", &tag), 0);
    ASSERT_EQ(xunGetUnitTag("metre", &tag), 1);
    EXPECT_EQ(tag, 1000);

    const char* text = nullptr;
    ASSERT_EQ(xunGetItemTypeKey(100, &text), 1);
    EXPECT_STREQ(text, "Wasserstand");
    // "010" is an octal key in type files: 8.
    ASSERT_EQ(xunGetItemTypeKey(8, &text), 1);
    EXPECT_STREQ(text, "Dauer");
    ASSERT_EQ(xunGetItemTypeIdent(100, &text), 1);
    EXPECT_STREQ(text, "ItemWaterLevel");
    ASSERT_EQ(xunGetFilterKey(1, &text), 1);
    EXPECT_STREQ(text, "Hydrodynamik");
    // An empty quoted text does not scan: the entry keeps the text before it.
    ASSERT_EQ(xunGetFilterKey(16, &text), 1);
    EXPECT_STREQ(text, "Hydrodynamik");
}

TEST(LoadTables, EachLanguageFileIsAppliedIndependently) {
    LoadFrom("unitlang");
    EXPECT_EQ(UnitText(1000, xunGetUnitKey), "Meter");
    const char* text = nullptr;
    ASSERT_EQ(xunGetItemTypeKey(100, &text), 1);
    EXPECT_STREQ(text, "Water Level");
}

TEST(LoadTables, SecondLoadAppliesTheLanguageFilesAgain) {
    LoadFrom("langhome");
    LoadFrom("langhome");
    EXPECT_EQ(UnitText(1000, xunGetUnitKey), "Meter");
    EXPECT_EQ(xuntest::Registries().units.Count(), 3u);
    EXPECT_EQ(xuntest::Registries().itemTypes.Count(), 2u);
}

TEST(LoadTables, FailedSetupLoadReadsNoLanguageFile) {
    setenv("KORVANE_HOME", Home("langhome").c_str(), 1);
    testing::internal::CaptureStderr();
    xunLoadItemTypeTables("/nonexistent/XUN.xml");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Document '/nonexistent/XUN.xml' not parsed successfully. \n");
    EXPECT_TRUE((xuntest::Registries().units.Count() == 0));
    EXPECT_STREQ(szDllFileName, "/nonexistent/XUN.xml");
    const char* docName = nullptr;
    xunSetupGetPath(&docName);
    EXPECT_STREQ(docName, "");
}

TEST(LoadTables, NullPathIsTakenAsEmpty) {
    setenv("KORVANE_HOME", Home("nolang").c_str(), 1);
    xunLoadItemTypeTables(nullptr);
    EXPECT_EQ(xuntest::Registries().units.Count(), 3u);
    EXPECT_STREQ(szDllFileName, "");
}

TEST(LoadTablesDeathTest, MissingKeyInALanguageFileEndsTheProcess) {
    setenv("KORVANE_HOME", Home("missingkey").c_str(), 1);
    EXPECT_DEATH(xunLoadItemTypeTables(""),
                 "KVLangFile:[0-9]+: string CKVLangFile::LoadTypeString\\(int\\): Assertion "
                 "`m_TypeIterator != m_xunTypeMap.end\\(\\)' failed");
}

} // namespace
