#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include <unistd.h>

#include "registry/registry_fixture.h"
#include "registry/IncludeWriter.h"
#include "registry_access.h"

namespace {

using xuntest::RegisterFilter;
using xuntest::RegisterItemType;
using xuntest::RegisterUnit;

std::string Read(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Runs each test in a fresh, empty working directory.
class IncludeWriter : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/xun-include-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        ASSERT_EQ(chdir(m_dir.c_str()), 0);
    }
    void TearDown() override {
        for (const char* name : {"xunDefine.c__", "xunDefine.p__", "xunDefine.f__", "xunDefine.cs",
                                 "xunAllowedUnits.HTML"})
            unlink((m_dir + "/" + name).c_str());
        ASSERT_EQ(chdir("/"), 0);
        rmdir(m_dir.c_str());
    }

    // The creation line of a written file, checked for its form.
    static std::string CreationLine(const std::string& text) {
        std::smatch match;
        const std::regex form("Created on [A-Z][a-z]{2} [ 0-3][0-9] [0-9]{4} at "
                              "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] by UNIX");
        EXPECT_TRUE(std::regex_search(text, match, form)) << text;
        return match.empty() ? std::string() : match.str();
    }

    std::string m_dir;
};

TEST_F(IncludeWriter, EmptyRegistry) {
    xunWriteItemTypeIncludes();
    const std::string c = Read("xunDefine.c__");
    const std::string stamp = CreationLine(c);
    EXPECT_EQ(c, "/* xunDefine.c__ */\n"
                 "/* Korvane item type definitions from KVitemType */\n"
                 "/* " +
                     stamp +
                     " */\n\n"
                     "#ifndef _KORVANE_ITEMDEFINES_\n#define _KORVANE_ITEMDEFINES_\n\n"
                     "\n/* ===== Engineering units ===== */\n"
                     "\n/* ===== Filters ===== */\n"
                     "\n#endif\n"
                     "\n/* ===== End of file ===== */\n");
    EXPECT_EQ(Read("xunDefine.p__"), "(* xunDefine.p__ *)\n"
                                     "(* Korvane item type definitions from KVitemType *)\n"
                                     "(* " +
                                         stamp +
                                         " *)\n\n"
                                         "\n(* ===== Engineering units ===== *)\n"
                                         "\n(* ===== Filters ===== *)\n"
                                         "\n(* ===== End of file ===== *)\n");
    EXPECT_EQ(Read("xunDefine.f__"), "!     xunDefine.f__\n"
                                     "!     Korvane item type definitions from KVitemType\n"
                                     "!     " +
                                         stamp +
                                         "\n\n"
                                         "\n!     ===== Engineering units =====\n"
                                         "\n!     ===== Filters =====\n"
                                         "\n!     ===== End of file =====\n");
    EXPECT_EQ(Read("xunDefine.cs"),
              "using System.Runtime.InteropServices;\n\nnamespace Ostrel.Generic.Korvane\n{\n"
              "\t///<summary>\n\t///.NET XUN Item definitions\n\t///</summary>\n"
              "\t[ComVisible(true)]\n\t[Guid(\"5C2E7A00-91D4-4b3f-A6E8-3D0F71B94C2A\")]\n"
              "\tpublic enum xunItem\n\t{\n"
              "\n\t}\n"
              "\n"
              "\t///<summary>\n\t///.NET XUN Unit definitions\n\t///</summary>\n"
              "\t[ComVisible(true)]\n\t[Guid(\"5C2E7A01-91D4-4b3f-A6E8-3D0F71B94C2A\")]\n"
              "\tpublic enum xunUnit\n\t{\n"
              "\n\t}\n"
              "\t///<summary>\n\t///.NET XUN Filter definitions\n\t///</summary>\n"
              "\t[ComVisible(true)]\n\t[Guid(\"5C2E7A02-91D4-4b3f-A6E8-3D0F71B94C2A\")]\n"
              "\tpublic enum xunFilter\n\t{\n"
              "\n\t}\n"
              "}\n/* ===== End of file ===== */\n");
    const std::string report = Read("xunAllowedUnits.HTML");
    EXPECT_EQ(report,
              "<Pre>\nDefinitions of the Korvane item types and allowed units.\n" + stamp + "\n\n");
}

TEST_F(IncludeWriter, EntriesInEveryLanguage) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    RegisterUnit("UnitWithAVeryLongNameOf25", -7, 1000.0, 0.0, CKVdimension::GetLength(),
                 "long one");
    RegisterUnit("s", 1010, 1.0, 0.0, CKVdimension::GetTime(), "second");
    RegisterItemType("ItemLevel", 100, CKVdimension::GetLength(),
                     {"m", "UnitWithAVeryLongNameOf25"}, "Water Level");
    RegisterItemType("ItemNoUnits", 101, CKVdimension::GetTime(), {}, "No units");
    RegisterFilter("FilterHydro", 1, "Hydrodynamics");
    RegisterFilter("FilterFlyby", 0x80000000L, "Flyby");
    xunWriteItemTypeIncludes();

    const std::string c = Read("xunDefine.c__");
    const std::string stamp = CreationLine(c);
    EXPECT_EQ(c, "/* xunDefine.c__ */\n"
                 "/* Korvane item type definitions from KVitemType */\n"
                 "/* " +
                     stamp +
                     " */\n\n"
                     "#ifndef _KORVANE_ITEMDEFINES_\n#define _KORVANE_ITEMDEFINES_\n\n"
                     "#define ItemLevel                   100 /* Water Level */\n"
                     "#define ItemNoUnits                 101 /* No units */\n"
                     "\n/* ===== Engineering units ===== */\n"
                     "#define m                          1000 /* meter */\n"
                     "#define UnitWithAVeryLongNameOf25         -7 /* long one */\n"
                     "#define s                          1010 /* second */\n"
                     "\n/* ===== Filters ===== */\n"
                     "#define FilterHydro                   1 /* Hydrodynamics */\n"
                     "#define FilterFlyby          -2147483648 /* Flyby */\n"
                     "\n#endif\n"
                     "\n/* ===== End of file ===== */\n");
    EXPECT_EQ(Read("xunDefine.p__"), "(* xunDefine.p__ *)\n"
                                     "(* Korvane item type definitions from KVitemType *)\n"
                                     "(* " +
                                         stamp +
                                         " *)\n\n"
                                         "CONST   ItemLevel        = 100; (* Water Level *)\n"
                                         "CONST   ItemNoUnits      = 101; (* No units *)\n"
                                         "\n(* ===== Engineering units ===== *)\n"
                                         "CONST   m                = 1000; (* meter *)\n"
                                         "CONST   UnitWithAVeryLongNameOf25 = -7; (* long one *)\n"
                                         "CONST   s                = 1010; (* second *)\n"
                                         "\n(* ===== Filters ===== *)\n"
                                         "CONST   FilterHydro      = 1; (* Hydrodynamics *)\n"
                                         "CONST   FilterFlyby      = -2147483648; (* Flyby *)\n"
                                         "\n(* ===== End of file ===== *)\n");
    EXPECT_EQ(Read("xunDefine.f__"),
              "!     xunDefine.f__\n"
              "!     Korvane item type definitions from KVitemType\n"
              "!     " +
                  stamp +
                  "\n\n"
                  "integer, parameter :: ItemLevel            =        100  ! Water Level\n"
                  "integer, parameter :: ItemNoUnits          =        101  ! No units\n"
                  "\n!     ===== Engineering units =====\n"
                  "integer, parameter :: m                    =       1000  ! meter\n"
                  "integer, parameter :: UnitWithAVeryLongNameOf25 =         -7  ! long one\n"
                  "integer, parameter :: s                    =       1010  ! second\n"
                  "\n!     ===== Filters =====\n"
                  "integer, parameter :: FilterHydro          =          1  ! Hydrodynamics\n"
                  "integer, parameter :: FilterFlyby          = -2147483648  ! Flyby\n"
                  "\n!     ===== End of file =====\n");
    EXPECT_EQ(Read("xunDefine.cs"),
              "using System.Runtime.InteropServices;\n\nnamespace Ostrel.Generic.Korvane\n{\n"
              "\t///<summary>\n\t///.NET XUN Item definitions\n\t///</summary>\n"
              "\t[ComVisible(true)]\n\t[Guid(\"5C2E7A00-91D4-4b3f-A6E8-3D0F71B94C2A\")]\n"
              "\tpublic enum xunItem\n\t{\n"
              "\t\t///<summary>\n\t\t/// Water Level\n\t\t///</summary>\n"
              "\t\tItemLevel            =        100,\n"
              "\t\t///<summary>\n\t\t/// No units\n\t\t///</summary>\n"
              "\t\tItemNoUnits          =        101"
              "\n\t}\n"
              "\n"
              "\t///<summary>\n\t///.NET XUN Unit definitions\n\t///</summary>\n"
              "\t[ComVisible(true)]\n\t[Guid(\"5C2E7A01-91D4-4b3f-A6E8-3D0F71B94C2A\")]\n"
              "\tpublic enum xunUnit\n\t{\n"
              "\t\t///<summary>\n\t\t/// meter\n\t\t///</summary>\n"
              "\t\tm                    =       1000,\n"
              "\t\t///<summary>\n\t\t/// long one\n\t\t///</summary>\n"
              "\t\tUnitWithAVeryLongNameOf25 =         -7,\n"
              "\t\t///<summary>\n\t\t/// second\n\t\t///</summary>\n"
              "\t\ts                    =       1010"
              "\n\t}\n"
              "\t///<summary>\n\t///.NET XUN Filter definitions\n\t///</summary>\n"
              "\t[ComVisible(true)]\n\t[Guid(\"5C2E7A02-91D4-4b3f-A6E8-3D0F71B94C2A\")]\n"
              "\tpublic enum xunFilter\n\t{\n"
              "\t\t///<summary>\n\t\t/// Hydrodynamics\n\t\t///</summary>\n"
              "\t\tFilterHydro          =          1,\n"
              "\t\t///<summary>\n\t\t/// Flyby\n\t\t///</summary>\n"
              "\t\tFilterFlyby          = -2147483648"
              "\n\t}\n"
              "}\n/* ===== End of file ===== */\n");
    EXPECT_EQ(Read("xunAllowedUnits.HTML"),
              "<Pre>\nDefinitions of the Korvane item types and allowed units.\n" + stamp +
                  "\n\n"
                  "\nitem: ItemLevel                   100   Water Level \n"
                  "      m                          1000   meter \n"
                  "      UnitWithAVeryLongNameOf25         -7   long one \n"
                  "\nitem: ItemNoUnits                 101   No units \n");
}

TEST_F(IncludeWriter, AnyUnitItemTypeListsOnlyItsOwnUnits) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    RegisterUnit("s", 1010, 1.0, 0.0, CKVdimension::GetTime(), "second");
    RegisterItemType("ItemAny", 999, CKVdimension::GetTime(), {"s"}, "Any unit");
    xunWriteItemTypeIncludes();
    const std::string report = Read("xunAllowedUnits.HTML");
    EXPECT_NE(report.find("\nitem: ItemAny                     999   Any unit \n"
                          "      s                          1010   second \n"),
              std::string::npos);
    EXPECT_EQ(report.find("meter"), std::string::npos);
}

TEST_F(IncludeWriter, WritingTwiceReplacesTheFiles) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    xunWriteItemTypeIncludes();
    const std::string c = Read("xunDefine.c__");
    const std::string cs = Read("xunDefine.cs");
    const std::string report = Read("xunAllowedUnits.HTML");
    xunWriteItemTypeIncludes();
    EXPECT_EQ(Read("xunDefine.c__").size(), c.size());
    EXPECT_EQ(Read("xunDefine.cs").size(), cs.size());
    EXPECT_EQ(Read("xunAllowedUnits.HTML").size(), report.size());
}

TEST_F(IncludeWriter, WithoutUnitAndFilterListsTheUnitEnumStillCloses) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    xunWriteIncludes_(xuntest::Registries(), false, false);
    const std::string cs = Read("xunDefine.cs");
    EXPECT_NE(cs.find("\tpublic enum xunItem\n\t{\n\n\t}\n\n\t}\n\n\t}\n}\n"), std::string::npos)
        << cs;
    const std::string c = Read("xunDefine.c__");
    EXPECT_EQ(c.find("Engineering units"), std::string::npos);
    EXPECT_EQ(c.find("Filters"), std::string::npos);
    EXPECT_NE(c.find("#define _KORVANE_ITEMDEFINES_\n\n\n#endif\n"), std::string::npos);
}

TEST_F(IncludeWriter, NullAllowedUnitEndsTheProcess) {
    CKVitemType* item = RegisterItemType("ItemLevel", 100, CKVdimension::GetLength());
    item->GetUnitList().push_back(nullptr);
    EXPECT_DEATH(xunWriteAllowedUnits_(xuntest::Registries()),
                 "KVitemType:154: void CKVitemTypeList::WriteAllowedUnits\\(\\): Assertion `Un' "
                 "failed");
}

TEST_F(IncludeWriter, MissingDirectoryEndsTheProcess) {
    // The working directory is removed under the writer's feet: nothing can
    // be created in it, not even by root.
    ASSERT_EQ(rmdir(m_dir.c_str()), 0);
    EXPECT_DEATH(xunWriteItemTypeIncludes(), "Assertion `0' failed");
    EXPECT_DEATH(xunWriteAllowedUnits_(xuntest::Registries()),
                 "KVitemType:145: void CKVitemTypeList::WriteAllowedUnits\\(\\): Assertion `0' "
                 "failed");
}

} // namespace
