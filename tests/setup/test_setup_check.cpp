// xunSetupCheck and xunBaseGroupCheck: the whole load of a file run on a
// copy of the registry, every problem reported with its file, line and
// severity; nothing printed, nothing ended, nothing changed. One fixture per
// kind of problem, each with the exact reports it must give; every problem
// that a check says would end the process does end a real load, with the
// assertion named.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "units/KVexpr.h"
#include "check_severity.h"
#include "xun.h"

namespace {

std::string Data() {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data");
}

// The reports of one check, as "file-relative-to-data:line: [severity] message".
struct Reports {
    std::vector<std::string> lines;
    int result = 0;
};

void Collect(void* user, const char* file, int line, int severity, const char* message) {
    std::string name = file;
    const std::string prefix = Data() + "/";
    if (name.compare(0, prefix.size(), prefix) == 0)
        name = name.substr(prefix.size());
    static_cast<Reports*>(user)->lines.push_back(name + ":" + std::to_string(line) + ": [" +
                                                 CheckSeverityName(severity) + "] " + message);
}

Reports Check(const std::string& setup, const char* langDir = nullptr) {
    Reports reports;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const std::string lang = langDir != nullptr ? Data() + "/" + langDir : "";
    reports.result = xunSetupCheck((Data() + "/" + setup).c_str(),
                                   langDir != nullptr ? lang.c_str() : nullptr, Collect, &reports);
    // A check never prints.
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    return reports;
}

typedef std::vector<std::string> Lines;

TEST(SetupCheck, CleanFileHasNoProblems) {
    const Reports r = Check("tools/check/clean.xml");
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.lines, Lines{});
}

TEST(SetupCheck, GroupThatALoadDoesNotFind) {
    const Reports r = Check("check/group_attribute.xml");
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.lines,
              (Lines{"check/group_attribute.xml:6: [dropped] Group 'Units' is not found by a load: "
                     "its first attribute is not Name, so //Group[@Name=\"Units\"] does not match "
                     "it; its rows define nothing",
                     "check/group_attribute.xml:13: [dropped] item type 'ItemLevel': unknown "
                     "DefaultUnit 'UnitMeter'; the row is skipped"}));
    // And a load indeed defines nothing of that group.
    testing::internal::CaptureStdout();
    ASSERT_EQ(xunSetupLoad((Data() + "/check/group_attribute.xml").c_str()), 1);
    testing::internal::GetCapturedStdout();
    char* list = nullptr;
    EXPECT_EQ(xunUnitGetAll(&list), 0);
    EXPECT_EQ(xunGetItemTypeCount(), 0);
}

TEST(SetupCheck, SecondGroupAndRowsOutOfPlace) {
    const Reports r = Check("check/second_group.xml");
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.lines, (Lines{"check/second_group.xml:13: [dropped] another Group 'Units': only "
                              "the first one is read; its rows define nothing",
                              "check/second_group.xml:8: [dropped] this R element is not a row "
                              "(rows are the R children of a Rows child of the Group); it defines "
                              "nothing",
                              "check/second_group.xml:11: [dropped] this R element is not a row "
                              "(rows are the R children of a Rows child of the Group); it defines "
                              "nothing"}));
}

TEST(SetupCheck, EveryRowThatEndsALoadIsReportedAndTheCheckGoesOn) {
    const Reports r = Check("check/fatal_all.xml");
    EXPECT_EQ(r.result, 4);
    EXPECT_EQ(r.lines,
              (Lines{"check/fatal_all.xml:8: [FATAL] unit 'UnitZero': expression 'UnitMeter*0' "
                     "gives the factor 0; loading would stop",
                     "check/fatal_all.xml:14: [FATAL] item type 'ItemLevel': allowed unit "
                     "'UnitSecond' has the dimension T, but the item type has L; loading would "
                     "stop",
                     "check/fatal_all.xml:15: [FATAL] item type 'ItemLevel': DefaultUnit "
                     "'UnitSecond' has the dimension T, but the item type has L; loading would "
                     "stop",
                     "check/fatal_all.xml:20: [FATAL] filter 'FilterA': unknown item type "
                     "'ItemGhost' in Items; loading would stop"}));
}

TEST(SetupCheck, RowsALoadDropsOrWarnsAbout) {
    struct Case {
        const char* file;
        Lines lines;
    };
    const Case cases[] = {
        {"tools/check/allowed_unknown.xml",
         {"tools/check/allowed_unknown.xml:13: [dropped] item type 'ItemLevel': unknown unit "
          "'UnitFathom' in AllowedUnits; it is skipped"}},
        {"tools/check/expr_fails.xml",
         {"tools/check/expr_fails.xml:9: [message] unit 'UnitBad': expression 'UnitNothing*2' "
          "does not evaluate; the row is skipped"}},
        {"tools/check/expr_missing.xml",
         {"tools/check/expr_missing.xml:9: [message] unit 'UnitBad': no Expr; the row is "
          "skipped"}},
        {"tools/check/expr_not_finite.xml",
         {"tools/check/expr_not_finite.xml:9: [warning] unit 'UnitBad': expression "
          "'UnitMeter/0' gives the factor inf and the offset 0; its conversions give no number"}},
        {"tools/check/expr_number.xml",
         {"tools/check/expr_number.xml:9: [dropped] unit 'UnitBad': expression '2*3' gives a "
          "number, not a unit; the row is skipped"}},
        {"tools/check/filter_dup_ident.xml",
         {"tools/check/filter_dup_ident.xml:19: [dropped] filter 'FilterA': the ident is already "
          "used by filter key 0x1 (line 18); the row is dropped, but its Items still get bit "
          "0x2"}},
        {"tools/check/filter_dup_key.xml",
         {"tools/check/filter_dup_key.xml:19: [dropped] filter 'FilterB': key 0x1 is already "
          "used by filter 'FilterA' (line 18); the row is dropped, but its Items still get bit "
          "0x1"}},
        {"tools/check/first_row_kvid.xml",
         {"tools/check/first_row_kvid.xml:6: [warning] no KvId on the first row of the group: "
          "the key 0 is used",
          "tools/check/first_row_kvid.xml:6: [warning] unit 'UnitMeter': the key 0 makes the unit "
          "unusable for conversions",
          "tools/check/first_row_kvid.xml:13: [warning] no KvId on the first row of the group: "
          "the key 0 is used",
          "tools/check/first_row_kvid.xml:13: [warning] item type 'ItemLevel': the key 0 is not a "
          "valid item key",
          "tools/check/first_row_kvid.xml:18: [warning] no KvId on the first row of the group: "
          "the key 0 is used",
          "tools/check/first_row_kvid.xml:18: [warning] filter 'FilterA': the key 0 sets no bit: "
          "its item types join no filter"}},
        {"tools/check/item_dup_key.xml",
         {"tools/check/item_dup_key.xml:14: [dropped] item type 'ItemDepth': key 100 is already "
          "used by item type 'ItemLevel' (line 13); the row is dropped",
          "tools/check/item_dup_key.xml:15: [dropped] item type 'ItemHeight': key 100 is already "
          "used by item type 'ItemLevel' (line 13); the row is dropped (KvId carried over from "
          "the row above)"}},
        {"tools/check/item_no_default_unit.xml",
         {"tools/check/item_no_default_unit.xml:14: [dropped] item type 'ItemDepth': no "
          "DefaultUnit; the row is skipped"}},
        {"tools/check/key_range.xml",
         {"tools/check/key_range.xml:9: [warning] KvId '4294968299' does not fit in 32 bits: the "
          "interface sees 1003",
          "tools/check/key_range.xml:15: [warning] KvId '4294967397' does not fit in 32 bits: the "
          "interface sees 101",
          "tools/check/key_range.xml:21: [warning] KvId '0x100000002' does not fit in 32 bits: "
          "the interface sees 0x2"}},
        {"check/shared_keys.xml",
         {"check/shared_keys.xml:7: [warning] KvId '4294968296' does not fit in 32 bits: the "
          "interface sees 1000",
          "check/shared_keys.xml:8: [warning] KvId '-4294966296' does not fit in 32 bits: the "
          "interface sees 1000",
          "check/shared_keys.xml:13: [warning] no Decimals on the first row of the group: -1 is "
          "used",
          "check/shared_keys.xml:13: [warning] no DefaultValue on the first row of the group: 0 "
          "is used",
          "check/shared_keys.xml:14: [warning] KvId '4294967396' does not fit in 32 bits: the "
          "interface sees 100",
          "check/shared_keys.xml:20: [warning] KvId '0x100000001' does not fit in 32 bits: the "
          "interface sees 0x1",
          "check/shared_keys.xml:7: [warning] unit 'UnitWide': KvId 4294968296 reaches the "
          "interface as the tag 1000, as does the KvId 1000 of unit 'UnitMeter' (line 6): the "
          "interface cannot tell the two apart",
          "check/shared_keys.xml:8: [warning] unit 'UnitBelow': KvId -4294966296 reaches the "
          "interface as the tag 1000, as does the KvId 1000 of unit 'UnitMeter' (line 6): the "
          "interface cannot tell the two apart",
          "check/shared_keys.xml:14: [warning] item type 'ItemDepth': KvId 4294967396 reaches "
          "the interface as the key 100, as does the KvId 100 of item type 'ItemLevel' (line "
          "13): the interface cannot tell the two apart",
          "check/shared_keys.xml:20: [warning] filter 'FilterB': KvId 0x100000001 reaches the "
          "interface as the bit 0x1, as does the KvId 0x1 of filter 'FilterA' (line 19): the "
          "interface cannot tell the two apart"}},
        {"tools/check/number_text.xml",
         {"tools/check/number_text.xml:9: [warning] KvId '1003x' reads as 1003",
          "tools/check/number_text.xml:15: [warning] Decimals '2.5' reads as 2",
          "tools/check/number_text.xml:15: [warning] DefaultValue '1,5' reads as 1",
          "tools/check/number_text.xml:21: [warning] KvId '0x2z' reads as 0x2"}},
        {"tools/check/unit_base_ident.xml",
         {"tools/check/unit_base_ident.xml:9: [dropped] unit 'Mass': the ident names a base unit "
          "while units are read; the row is dropped"}},
        {"tools/check/unit_base_key.xml",
         {"tools/check/unit_base_key.xml:9: [dropped] unit 'UnitKilogram': key 3 is taken by the "
          "base unit 'Mass' while units are read; the row is dropped"}},
        {"tools/check/unit_dup_key.xml",
         {"tools/check/unit_dup_key.xml:9: [dropped] unit 'UnitYard': key 1000 is already used "
          "by unit 'UnitMeter' (line 6); the row is dropped",
          "tools/check/unit_dup_key.xml:10: [dropped] unit 'UnitInch': key 1000 is already used "
          "by unit 'UnitMeter' (line 6); the row is dropped (KvId carried over from the row "
          "above)"}},
        {"tools/check/unit_refresh.xml", {}},
        {"tools/check/user_dimension.xml",
         {"tools/check/user_dimension.xml:13: [warning] item type 'ItemLevel': UserUnit "
          "'UnitSecond' has the dimension T, but the item type has L; conversions to the user "
          "unit fail"}},
        {"tools/check/user_unknown.xml",
         {"tools/check/user_unknown.xml:13: [dropped] item type 'ItemLevel': unknown UserUnit "
          "'UnitFathom'; it is ignored"}},
        {"tools/check/user_without_allowed.xml",
         {"tools/check/user_without_allowed.xml:13: [dropped] item type 'ItemLevel': UserUnit "
          "'UnitFoot' is ignored without AllowedUnits"}},
    };
    for (const Case& c : cases) {
        const Reports r = Check(c.file);
        EXPECT_EQ(r.result, 0) << c.file;
        EXPECT_EQ(r.lines, c.lines) << c.file;
    }
}

TEST(SetupCheck, FileThatCannotBeLoaded) {
    Reports r = Check("tools/check/malformed.xml");
    EXPECT_EQ(r.result, -1);
    EXPECT_EQ(r.lines, (Lines{"tools/check/malformed.xml:9: [message] not well-formed XML: "
                              "unterminated end tag 'R'; a load refuses the file"}));
    const char* message = nullptr;
    EXPECT_EQ(xunGetLastError(&message), XUN_ERR_FILE);
    EXPECT_NE(std::string(message).find("malformed.xml"), std::string::npos) << message;

    r = Check("check/no_such_file.xml");
    EXPECT_EQ(r.result, -1);
    EXPECT_EQ(r.lines, (Lines{"check/no_such_file.xml:0: [message] the file cannot be read (No "
                              "such file or directory); a load refuses it"}));

    // A path of 260 bytes or more is refused like a file that cannot be read.
    const std::string longPath = "/tmp/" + std::string(300, 'x') + ".xml";
    Reports longReports;
    EXPECT_EQ(xunSetupCheck(longPath.c_str(), nullptr, Collect, &longReports), -1);
    ASSERT_EQ(longReports.lines.size(), 1u);
    EXPECT_NE(longReports.lines[0].find(
                  "[message] the path has 309 bytes; a load refuses paths of 260 bytes or more"),
              std::string::npos)
        << longReports.lines[0];
}

TEST(SetupCheck, LanguageFiles) {
    struct Case {
        const char* dir;
        int result;
        Lines lines;
    };
    const std::string prefix = "tools/check/lang/";
    const Case cases[] = {
        {"line_too_long",
         1,
         {"tools/check/lang/line_too_long/xuntype.lan:3: [dropped] line longer than 249 "
          "characters: the rest is read as another line",
          "tools/check/lang/line_too_long/xuntype.lan:3: [FATAL] the line does not read as KEY "
          "\"TEXT\" and repeats key 100 of line 3; loading would stop",
          "tools/check/lang/line_too_long/xununit.lan:0: [dropped] the file cannot be read (No "
          "such file or directory); a load keeps the texts it has",
          "tools/check/lang/line_too_long/xunfilter.lan:0: [dropped] the file cannot be read (No "
          "such file or directory); a load keeps the texts it has"}},
        {"missing_keys",
         4,
         {"tools/check/lang/missing_keys/xuntype.lan:3: [FATAL] no text for item type 100 "
          "'ItemLevel'; loading would stop",
          "tools/check/lang/missing_keys/xununit.lan:5: [FATAL] no text for unit 1001 "
          "'UnitFoot'; loading would stop",
          "tools/check/lang/missing_keys/xununit.lan:5: [FATAL] no text for unit 1002 "
          "'UnitSecond'; loading would stop",
          "tools/check/lang/missing_keys/xunfilter.lan:3: [FATAL] no text for filter 1 "
          "'FilterA'; loading would stop"}},
        {"type_duplicate",
         1,
         {"tools/check/lang/type_duplicate/xuntype.lan:4: [FATAL] duplicate key 100 (first on "
          "line 3); loading would stop",
          "tools/check/lang/type_duplicate/xununit.lan:0: [dropped] the file cannot be read (No "
          "such file or directory); a load keeps the texts it has",
          "tools/check/lang/type_duplicate/xunfilter.lan:0: [dropped] the file cannot be read (No "
          "such file or directory); a load keeps the texts it has"}},
        {"unit_pair_keys",
         1,
         {"tools/check/lang/unit_pair_keys/xuntype.lan:0: [dropped] the file cannot be read (No "
          "such file or directory); a load keeps the texts it has",
          "tools/check/lang/unit_pair_keys/xununit.lan:5: [dropped] the two lines of this entry "
          "carry the keys 1001 and 1002: it is stored under 1002",
          "tools/check/lang/unit_pair_keys/xununit.lan:7: [dropped] duplicate unit key 1002 "
          "(first on line 5); this entry is ignored",
          "tools/check/lang/unit_pair_keys/xununit.lan:9: [FATAL] no text for unit 1001 "
          "'UnitFoot'; loading would stop",
          "tools/check/lang/unit_pair_keys/xunfilter.lan:0: [dropped] the file cannot be read (No "
          "such file or directory); a load keeps the texts it has"}},
        {"short_file",
         0,
         {"tools/check/lang/short_file/xuntype.lan:0: [dropped] the file has fewer than two "
          "lines; a load skips it",
          "tools/check/lang/short_file/xununit.lan:0: [dropped] the file cannot be read (No such "
          "file or directory); a load keeps the texts it has",
          "tools/check/lang/short_file/xunfilter.lan:0: [dropped] the file cannot be read (No such "
          "file or directory); a load keeps the texts it has"}},
    };
    for (const Case& c : cases) {
        const Reports r = Check("tools/check/clean.xml", (prefix + c.dir).c_str());
        EXPECT_EQ(r.result, c.result) << c.dir;
        EXPECT_EQ(r.lines, c.lines) << c.dir;
    }
}

// What the library holds, in every detail a check could change.
std::string Snapshot() {
    std::string text;
    int tag = 0;
    const char* key = nullptr;
    for (int prev = 0; xunGetNextUnit(prev, &tag, &key) == 1; prev = tag) {
        const char *ident = nullptr, *abbr = nullptr, *expr = nullptr;
        xunGetUnitIdent(tag, &ident);
        xunGetUnitAbbreviation(tag, &abbr);
        xunGetUnitExpression(tag, &expr);
        text += std::to_string(tag) + " " + ident + " " + key + " " + abbr + " " + expr + "\n";
    }
    for (int seq = 1; seq <= xunGetItemTypeCount(); ++seq) {
        int itemKey = 0, decimals = 0, user = 0;
        double value = 0;
        xunGetItemTypeSeq(seq, &itemKey, &key);
        xunGetItemTypeParams(itemKey, &decimals, &value);
        xunGetItemUserUnit(itemKey, &user);
        text += std::to_string(itemKey) + " " + key + " " + std::to_string(decimals) + " " +
                std::to_string(value) + " " + std::to_string(user) + " " +
                std::to_string(xunGetItemUnitCount(itemKey));
        for (int f = 1; f <= xunGetFilterCount(); ++f) {
            int bit = 0;
            xunGetFilterSeq(f, &bit, &key);
            text += " " + std::to_string(xunItemFilterEqv(itemKey, bit)) + key;
        }
        text += "\n";
    }
    const char* path = nullptr;
    xunSetupGetPath(&path);
    return text + path + "\n" + std::setlocale(LC_NUMERIC, nullptr) + "\n" + szDecimalSymbol;
}

TEST(SetupCheck, ChangesNothing) {
    testing::internal::CaptureStdout();
    ASSERT_EQ(xunSetupLoad((Data() + "/setup/basic.xml").c_str()), 1);
    testing::internal::GetCapturedStdout();
    const std::string before = Snapshot();
    // The same file again (a load would refresh), an edited one, and files
    // that end a load.
    for (const char* file : {"setup/basic.xml", "setup/basic_edited.xml", "check/fatal_all.xml",
                             "setup/wrong_dimension.xml", "setup/unknown_filter_item.xml",
                             "tools/check/item_refresh_dimension.xml"})
        Check(file, "tools/check/lang/missing_keys");
    EXPECT_EQ(Snapshot(), before);
}

TEST(SetupCheck, HostLocaleAndDecimalSymbolStay) {
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr)
        GTEST_SKIP() << "no German locale (set LOCPATH to the build's locale folder)";
    EXPECT_EQ(szDecimalSymbol, ' ');
    Check("tools/check/clean.xml");
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "de_DE.UTF-8");
    EXPECT_EQ(szDecimalSymbol, ' ');
    std::setlocale(LC_NUMERIC, "C");
}

TEST(SetupCheck, NullReportAndDefaultFile) {
    const std::string home = Data() + "/setup/home";
    setenv("KORVANE_HOME", home.c_str(), 1);
    EXPECT_EQ(xunSetupCheck(nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(xunSetupCheck("", nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(xunSetupCheck((Data() + "/check/fatal_all.xml").c_str(), nullptr, nullptr, nullptr),
              4);
}

// Every problem that a check says ends the process ends a real load, with
// the assertion given.
TEST(SetupCheckDeathTest, FatalProblemsEndARealLoad) {
    struct Case {
        const char* file;
        const char* assertion;
    };
    const Case cases[] = {
        {"tools/check/expr_zero_factor.xml",
         "KVunit:285: void CKVunit::AssertValid\\(\\) const: Assertion `m_dFactor' failed"},
        {"tools/check/allowed_dimension.xml",
         "KVitemType:21: bool CKVitemType::AllowUnit\\(CKVunit &, bool\\): Assertion `bOk' "
         "failed"},
        {"tools/check/item_refresh_dimension.xml",
         "KVitemType:21: bool CKVitemType::AllowUnit\\(CKVunit &, bool\\): Assertion `bOk' "
         "failed"},
        {"tools/check/filter_unknown_item.xml",
         "ItemTypeTables:3707: int xunSetupLoad\\(const char \\*\\): Assertion `ok' failed"},
    };
    for (const Case& c : cases) {
        const Reports r = Check(c.file);
        EXPECT_EQ(r.result, 1) << c.file;
        EXPECT_DEATH(xunSetupLoad((Data() + "/" + c.file).c_str()), c.assertion) << c.file;
    }
}

// The same for language files, through xunLoadItemTypeTables (which reads
// them from $KORVANE_HOME/bin).
TEST(SetupCheckDeathTest, FatalLanguageFilesEndARealLoad) {
    char pattern[] = "/tmp/xun-check-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const std::string home = pattern;
    const std::string bin = home + "/bin";
    ASSERT_EQ(mkdir(bin.c_str(), 0700), 0);
    auto copy = [](const std::string& from, const std::string& to) {
        std::ifstream in(from, std::ios::binary);
        std::ofstream out(to, std::ios::binary);
        out << in.rdbuf();
    };
    copy(Data() + "/tools/check/clean.xml", bin + "/XUN.xml");
    setenv("KORVANE_HOME", home.c_str(), 1);
    struct Case {
        const char* dir;
        const char* file;
        const char* assertion;
    };
    const Case cases[] = {
        {"type_duplicate", "xuntype.lan",
         "KVLangFile:104: bool CKVLangFile::SetTypeMap\\(\\): Assertion `m_TypeIterator == "
         "m_xunTypeMap.end\\(\\)' failed"},
        {"missing_keys", "xuntype.lan",
         "KVLangFile:112: string CKVLangFile::LoadTypeString\\(int\\): Assertion "
         "`m_TypeIterator != m_xunTypeMap.end\\(\\)' failed"},
        {"missing_keys", "xununit.lan",
         "KVLangFile:163: string CKVLangFile::LoadUnitString\\(int, int\\): Assertion "
         "`m_UnitIterator != m_xunUnitMap.end\\(\\)' failed"},
    };
    for (const Case& c : cases) {
        for (const char* name : {"xuntype.lan", "xununit.lan", "xunfilter.lan"})
            std::remove((bin + "/" + name).c_str());
        copy(Data() + "/tools/check/lang/" + c.dir + "/" + c.file, bin + "/" + c.file);
        Reports r;
        EXPECT_GT(xunSetupCheck((bin + "/XUN.xml").c_str(), bin.c_str(), Collect, &r), 0) << c.dir;
        EXPECT_DEATH(xunLoadItemTypeTables(""), c.assertion) << c.dir << " " << c.file;
    }
    std::system(("rm -rf '" + home + "'").c_str());
}

TEST(BaseGroupCheck, ReportsEachAssignmentALoadSkips) {
    testing::internal::CaptureStdout();
    ASSERT_EQ(xunSetupLoad((Data() + "/setup/basic.xml").c_str()), 1);
    testing::internal::GetCapturedStdout();
    Reports r;
    const std::string file = Data() + "/langfile/ubg_unknown.kw";
    r.result = xunBaseGroupCheck(file.c_str(), Collect, &r);
    EXPECT_EQ(r.result, 0);
    // The fifth assignment (Data = 100, 1001) is one a load makes.
    EXPECT_EQ(r.lines, (Lines{"langfile/ubg_unknown.kw:2: [dropped] Data = 4242, 1001: no item "
                              "type has this key; the assignment is skipped",
                              "langfile/ubg_unknown.kw:3: [dropped] Data = 100, 4242: no unit has "
                              "this key; the assignment is skipped",
                              "langfile/ubg_unknown.kw:4: [dropped] Data = 100, 1100: the unit is "
                              "of another dimension than the item type; the assignment is skipped",
                              "langfile/ubg_unknown.kw:5: [dropped] Data = 100, 0: no unit has "
                              "this key; the assignment is skipped"}));
    // Nothing changed: the user unit stays.
    int user = 0;
    ASSERT_EQ(xunGetItemUserUnit(100, &user), 1);
    EXPECT_EQ(user, 1000);

    Reports bad;
    EXPECT_EQ(xunBaseGroupCheck((Data() + "/langfile/ubg_syntax_error.kw").c_str(), Collect, &bad),
              -1);
    ASSERT_EQ(bad.lines.size(), 1u);
    EXPECT_NE(bad.lines[0].find("[dropped] the file is not loaded and changes nothing: "),
              std::string::npos)
        << bad.lines[0];
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_FILE);
}

} // namespace
