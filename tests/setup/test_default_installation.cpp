// The shipped default installation (data/): it loads completely and quietly,
// in English and in German, and answers like the units it defines.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/UnitRegistry.h"
#include "xun.h"
#include "registry_access.h"

namespace {

std::string DataDir() {
    return std::string(std::getenv("XUN_TEST_DATA")) + "/../../data";
}

void LoadQuietly(const std::string& home) {
    setenv("KORVANE_HOME", home.c_str(), 1);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    xunLoadItemTypeTables("");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

int Tag(const char* ident) {
    int tag = 0;
    EXPECT_EQ(xunGetUnitTagFromIdent(ident, &tag), 1) << ident;
    return tag;
}

void Copy(const std::string& from, const std::string& to) {
    std::ifstream in(from, std::ios::binary);
    std::ofstream out(to, std::ios::binary);
    out << in.rdbuf();
}

TEST(DefaultInstallation, LoadsEveryRowQuietly) {
    LoadQuietly(DataDir());
    EXPECT_GE(xuntest::Registries().units.Count(), 300u);
    EXPECT_GE(xuntest::Registries().itemTypes.Count(), 121u);
    EXPECT_GE(xuntest::Registries().filters.Count(), 8u);
    EXPECT_EQ(xunGetItemUnitCount(999), static_cast<int>(xuntest::Registries().units.Count()));
    // Every unit row became a unit: the file has as many rows as the registry.
    std::ifstream xml(DataDir() + "/bin/XUN.xml");
    std::string line;
    size_t unitRows = 0;
    bool inUnits = false;
    while (std::getline(xml, line)) {
        if (line.find("<Group Name=\"Units\">") != std::string::npos)
            inUnits = true;
        else if (line.find("</Group>") != std::string::npos)
            inUnits = false;
        else if (inUnits && line.find("<R ") != std::string::npos)
            ++unitRows;
    }
    EXPECT_EQ(xuntest::Registries().units.Count(), unitRows);
    for (const CKVitemType* item : xuntest::Registries().itemTypes) {
        EXPECT_FALSE(item->m_lstUnits.empty()) << item->m_strIdent;
        EXPECT_NE(item->GetFilter(), 0) << item->m_strIdent;
    }
    for (const CKVfilter* filter : xuntest::Registries().filters)
        EXPECT_GT(xunGetFilteredItemTypeCount(static_cast<int>(static_cast<long>(*filter))), 0)
            << filter->m_strIdent;
}

TEST(DefaultInstallation, ConvertsLikeTheUnitsItDefines) {
    LoadQuietly(DataDir());
    double result = 0;
    ASSERT_EQ(xunConvertUnit(Tag("UnitDegreeFahrenheit"), Tag("UnitDegreeCelsius"), &result, 212),
              1);
    EXPECT_EQ(result, 100.0);
    ASSERT_EQ(xunConvertUnit(Tag("UnitMile"), Tag("UnitKilometer"), &result, 1), 1);
    EXPECT_EQ(result, 1.609344);
    ASSERT_EQ(xunConvertUnit(Tag("UnitKilometer"), Tag("UnitMeter"), &result, 2.5), 1);
    EXPECT_EQ(result, 2500.0);
    EXPECT_EQ(xunConvertUnit(Tag("UnitMeter"), Tag("UnitKelvin"), &result, 1), 0);
    int tag = 0;
    ASSERT_EQ(xunGetUnitTag("metre", &tag), 1);
    EXPECT_EQ(tag, Tag("UnitMeter"));
    ASSERT_EQ(xunGetUnitTag("kilometers", &tag), 1);
    EXPECT_EQ(tag, Tag("UnitKilometer"));
}

TEST(DefaultInstallation, GermanTextsLoadFromACopiedTranslation) {
    char pattern[] = "/tmp/xun-home-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const std::string home = pattern;
    ASSERT_EQ(mkdir((home + "/bin").c_str(), 0700), 0);
    Copy(DataDir() + "/bin/XUN.xml", home + "/bin/XUN.xml");
    for (const char* name : {"xuntype.lan", "xununit.lan", "xunfilter.lan"})
        Copy(DataDir() + "/lang/de/" + name, home + "/bin/" + name);
    LoadQuietly(home);
    const char* text = nullptr;
    ASSERT_EQ(xunGetUnitKey(Tag("UnitMeter"), &text), 1);
    EXPECT_STREQ(text, "Meter");
    int key = 0;
    ASSERT_EQ(xunGetItemTypeKeyFromIdent("ItemWaterLevel", &key), 1);
    ASSERT_EQ(xunGetItemTypeKey(key, &text), 1);
    EXPECT_STREQ(text, "Wasserstand");
    for (const char* name : {"XUN.xml", "xuntype.lan", "xununit.lan", "xunfilter.lan"})
        unlink((home + "/bin/" + name).c_str());
    rmdir((home + "/bin").c_str());
    rmdir(home.c_str());
}

// The loader's parser validates every document; the shipped file declares its
// document type, so it validates without a single report (an attribute or
// element the declaration lacks would be reported here).
class CountingErrorHandler : public xercesc::ErrorHandler {
  public:
    void warning(const xercesc::SAXParseException& e) override { Note("warning", e); }
    void error(const xercesc::SAXParseException& e) override { Note("error", e); }
    void fatalError(const xercesc::SAXParseException& e) override { Note("fatal error", e); }
    void resetErrors() override {}
    std::string m_strReports;

  private:
    void Note(const char* kind, const xercesc::SAXParseException& e) {
        // The first reports tell what is wrong; the rest would only repeat it.
        if (++m_nReports > 5)
            return;
        char* message = xercesc::XMLString::transcode(e.getMessage());
        m_strReports += std::string(kind) + " at line " + std::to_string(e.getLineNumber()) + ": " +
                        message + "\n";
        xercesc::XMLString::release(&message);
    }
    int m_nReports = 0;
};

TEST(DefaultInstallation, SetupFileIsValidAgainstItsDocumentType) {
    xercesc::XMLPlatformUtils::Initialize();
    {
        xercesc::XercesDOMParser parser;
        parser.setValidationScheme(xercesc::XercesDOMParser::Val_Always);
        parser.setDoNamespaces(true);
        CountingErrorHandler handler;
        parser.setErrorHandler(&handler);
        parser.parse((DataDir() + "/bin/XUN.xml").c_str());
        ASSERT_NE(parser.getDocument(), nullptr);
        EXPECT_EQ(handler.m_strReports, "");
        EXPECT_EQ(parser.getErrorCount(), 0u);
    }
    xercesc::XMLPlatformUtils::Terminate();
}

} // namespace
