// End-to-end tests of xun check: the built program runs as a subprocess in
// tests/data/tools; standard output, standard error and exit status are
// compared exactly.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tools/tool_runner.h"
#include "registry_access.h"

using xuntest::Xun;

namespace {

TEST(ToolCheck, AllowedDimension) {
    EXPECT_TOOL(Xun({"check", "check/allowed_dimension.xml"}), 1,
                "check/allowed_dimension.xml:13: fatal: item type 'ItemLevel': allowed unit "
                "'UnitSecond' has the dimension T, but the item type has L; loading would stop\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, AllowedUnknown) {
    EXPECT_TOOL(Xun({"check", "check/allowed_unknown.xml"}), 1,
                "check/allowed_unknown.xml:13: dropped: item type 'ItemLevel': unknown unit "
                "'UnitFathom' in AllowedUnits; it is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, Clean) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml"}), 0, "", "");
}

TEST(ToolCheck, ExprFails) {
    EXPECT_TOOL(Xun({"check", "check/expr_fails.xml"}), 1,
                "check/expr_fails.xml:9: message: unit 'UnitBad': expression 'UnitNothing*2' does "
                "not evaluate; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ExprMissing) {
    EXPECT_TOOL(Xun({"check", "check/expr_missing.xml"}), 1,
                "check/expr_missing.xml:9: message: unit 'UnitBad': no Expr; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ExprNotFinite) {
    EXPECT_TOOL(Xun({"check", "check/expr_not_finite.xml"}), 1,
                "check/expr_not_finite.xml:9: warning: unit 'UnitBad': expression 'UnitMeter/0' "
                "gives the factor inf and the offset 0; its conversions give no number\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ExprNumber) {
    EXPECT_TOOL(Xun({"check", "check/expr_number.xml"}), 1,
                "check/expr_number.xml:9: dropped: unit 'UnitBad': expression '2*3' gives a "
                "number, not a unit; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ExprZeroFactor) {
    EXPECT_TOOL(Xun({"check", "check/expr_zero_factor.xml"}), 1,
                "check/expr_zero_factor.xml:9: fatal: unit 'UnitBad': expression 'UnitMeter*0' "
                "gives the factor 0; loading would stop\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FilterDupIdent) {
    EXPECT_TOOL(
        Xun({"check", "check/filter_dup_ident.xml"}), 1,
        "check/filter_dup_ident.xml:19: dropped: filter 'FilterA': the ident is already used by "
        "filter key 0x1 (line 18); the row is dropped, but its Items still get bit 0x2\n",
        "xun: 1 problem found\n");
}

TEST(ToolCheck, FilterDupKey) {
    EXPECT_TOOL(
        Xun({"check", "check/filter_dup_key.xml"}), 1,
        "check/filter_dup_key.xml:19: dropped: filter 'FilterB': key 0x1 is already used by filter "
        "'FilterA' (line 18); the row is dropped, but its Items still get bit 0x1\n",
        "xun: 1 problem found\n");
}

TEST(ToolCheck, FilterUnknownItem) {
    EXPECT_TOOL(Xun({"check", "check/filter_unknown_item.xml"}), 1,
                "check/filter_unknown_item.xml:18: fatal: filter 'FilterA': unknown item type "
                "'ItemGhost' in Items; loading would stop\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FirstRowDecimals) {
    EXPECT_TOOL(Xun({"check", "check/first_row_decimals.xml"}), 1,
                "check/first_row_decimals.xml:13: warning: no Decimals on the first row of the "
                "group: -1 is used\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FirstRowDefaultValue) {
    EXPECT_TOOL(Xun({"check", "check/first_row_default_value.xml"}), 1,
                "check/first_row_default_value.xml:13: warning: no DefaultValue on the first row "
                "of the group: 0 is used\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FirstRowKvid) {
    EXPECT_TOOL(Xun({"check", "check/first_row_kvid.xml"}), 1,
                "check/first_row_kvid.xml:6: warning: no KvId on the first row of the group: the "
                "key 0 is used\n"
                "check/first_row_kvid.xml:6: warning: unit 'UnitMeter': the key 0 makes the unit "
                "unusable for conversions\n"
                "check/first_row_kvid.xml:13: warning: no KvId on the first row of the group: the "
                "key 0 is used\n"
                "check/first_row_kvid.xml:13: warning: item type 'ItemLevel': the key 0 is not a "
                "valid item key\n"
                "check/first_row_kvid.xml:18: warning: no KvId on the first row of the group: the "
                "key 0 is used\n"
                "check/first_row_kvid.xml:18: warning: filter 'FilterA': the key 0 sets no bit: "
                "its item types join no filter\n",
                "xun: 6 problems found\n");
}

// A group is found by the path //Group[@Name="..."], which matches only a
// Name that is the element's first attribute.
TEST(ToolCheck, GroupNotFound) {
    EXPECT_TOOL(Xun({"check", "check/group_not_found.xml"}), 1,
                "check/group_not_found.xml:4: dropped: Group 'Units' is not found by a load: its "
                "first attribute is not Name, so //Group[@Name=\"Units\"] does not match it; its "
                "rows define nothing\n"
                "check/group_not_found.xml:12: dropped: item type 'ItemLevel': unknown DefaultUnit "
                "'UnitMeter'; the row is skipped\n",
                "xun: 2 problems found\n");
}

TEST(ToolCheck, ItemDupIdent) {
    EXPECT_TOOL(Xun({"check", "check/item_dup_ident.xml"}), 1,
                "check/item_dup_ident.xml:14: dropped: item type 'ItemLevel': the ident is already "
                "used by item key 100 (line 13); the row is dropped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ItemDupKey) {
    EXPECT_TOOL(Xun({"check", "check/item_dup_key.xml"}), 1,
                "check/item_dup_key.xml:14: dropped: item type 'ItemDepth': key 100 is already "
                "used by item type 'ItemLevel' (line 13); the row is dropped\n"
                "check/item_dup_key.xml:15: dropped: item type 'ItemHeight': key 100 is already "
                "used by item type 'ItemLevel' (line 13); the row is dropped (KvId carried over "
                "from the row above)\n",
                "xun: 2 problems found\n");
}

TEST(ToolCheck, ItemNoDefaultUnit) {
    EXPECT_TOOL(Xun({"check", "check/item_no_default_unit.xml"}), 1,
                "check/item_no_default_unit.xml:14: dropped: item type 'ItemDepth': no "
                "DefaultUnit; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ItemRefreshDimension) {
    EXPECT_TOOL(Xun({"check", "check/item_refresh_dimension.xml"}), 1,
                "check/item_refresh_dimension.xml:14: fatal: item type 'ItemLevel': DefaultUnit "
                "'UnitSecond' has the dimension T, but the item type has L; loading would stop\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ItemUnknownDefaultUnit) {
    EXPECT_TOOL(Xun({"check", "check/item_unknown_default_unit.xml"}), 1,
                "check/item_unknown_default_unit.xml:14: dropped: item type 'ItemDepth': unknown "
                "DefaultUnit 'UnitFathom'; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, KeyRange) {
    EXPECT_TOOL(Xun({"check", "check/key_range.xml"}), 1,
                "check/key_range.xml:9: warning: KvId '4294968299' does not fit in 32 bits: the "
                "interface sees 1003\n"
                "check/key_range.xml:15: warning: KvId '4294967397' does not fit in 32 bits: the "
                "interface sees 101\n"
                "check/key_range.xml:21: warning: KvId '0x100000002' does not fit in 32 bits: the "
                "interface sees 0x2\n",
                "xun: 3 problems found\n");
}

TEST(ToolCheck, KeyZero) {
    EXPECT_TOOL(
        Xun({"check", "check/key_zero.xml"}), 1,
        "check/key_zero.xml:9: warning: unit 'UnitInch': the key 0 makes the unit unusable for "
        "conversions\n"
        "check/key_zero.xml:15: warning: item type 'ItemDepth': the key 0 is not a valid item key\n"
        "check/key_zero.xml:21: warning: filter 'FilterB': the key 0 sets no bit: its item types "
        "join no filter\n",
        "xun: 3 problems found\n");
}

TEST(ToolCheck, Malformed) {
    EXPECT_TOOL(Xun({"check", "check/malformed.xml"}), 1,
                "check/malformed.xml:9: message: not well-formed XML: unterminated end tag 'R'; a "
                "load refuses the file\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, Multiline) {
    EXPECT_TOOL(Xun({"check", "check/multiline.xml"}), 1,
                "check/multiline.xml:9: message: unit 'UnitB\xC3\xA4"
                "d': expression 'UnitNothing*2' does not evaluate; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, NumberText) {
    EXPECT_TOOL(Xun({"check", "check/number_text.xml"}), 1,
                "check/number_text.xml:9: warning: KvId '1003x' reads as 1003\n"
                "check/number_text.xml:15: warning: Decimals '2.5' reads as 2\n"
                "check/number_text.xml:15: warning: DefaultValue '1,5' reads as 1\n"
                "check/number_text.xml:21: warning: KvId '0x2z' reads as 0x2\n",
                "xun: 4 problems found\n");
}

TEST(ToolCheck, UnitBaseIdent) {
    EXPECT_TOOL(Xun({"check", "check/unit_base_ident.xml"}), 1,
                "check/unit_base_ident.xml:9: dropped: unit 'Mass': the ident names a base unit "
                "while units are read; the row is dropped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UnitBaseKey) {
    EXPECT_TOOL(Xun({"check", "check/unit_base_key.xml"}), 1,
                "check/unit_base_key.xml:9: dropped: unit 'UnitKilogram': key 3 is taken by the "
                "base unit 'Mass' while units are read; the row is dropped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UnitDupIdent) {
    EXPECT_TOOL(Xun({"check", "check/unit_dup_ident.xml"}), 1,
                "check/unit_dup_ident.xml:9: dropped: unit 'UnitFoot': the ident is already used "
                "by unit key 1001 (line 7); the row is dropped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UnitDupKey) {
    EXPECT_TOOL(
        Xun({"check", "check/unit_dup_key.xml"}), 1,
        "check/unit_dup_key.xml:9: dropped: unit 'UnitYard': key 1000 is already used by unit "
        "'UnitMeter' (line 6); the row is dropped\n"
        "check/unit_dup_key.xml:10: dropped: unit 'UnitInch': key 1000 is already used by unit "
        "'UnitMeter' (line 6); the row is dropped (KvId carried over from the row above)\n",
        "xun: 2 problems found\n");
}

TEST(ToolCheck, UnitRefresh) {
    EXPECT_TOOL(Xun({"check", "check/unit_refresh.xml"}), 0, "", "");
}

TEST(ToolCheck, UserDimension) {
    EXPECT_TOOL(
        Xun({"check", "check/user_dimension.xml"}), 1,
        "check/user_dimension.xml:13: warning: item type 'ItemLevel': UserUnit 'UnitSecond' has "
        "the dimension T, but the item type has L; conversions to the user unit fail\n",
        "xun: 1 problem found\n");
}

TEST(ToolCheck, UserUnknown) {
    EXPECT_TOOL(Xun({"check", "check/user_unknown.xml"}), 1,
                "check/user_unknown.xml:13: dropped: item type 'ItemLevel': unknown UserUnit "
                "'UnitFathom'; it is ignored\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UserWithoutAllowed) {
    EXPECT_TOOL(Xun({"check", "check/user_without_allowed.xml"}), 1,
                "check/user_without_allowed.xml:13: dropped: item type 'ItemLevel': UserUnit "
                "'UnitFoot' is ignored without AllowedUnits\n",
                "xun: 1 problem found\n");
}

// A language file that is missing is skipped by a load, which keeps the
// texts of the setup file; so is one shorter than two lines.
std::string Skipped(const std::string& path) {
    return path + ": dropped: the file cannot be read (No such file or directory); a load keeps "
                  "the texts it has\n";
}
std::string TooShort(const std::string& path) {
    return path + ": dropped: the file has fewer than two lines; a load skips it\n";
}

TEST(ToolCheckLanguageFiles, LineTooLong) {
    const std::string dir = "check/lang/line_too_long/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/line_too_long"}), 1,
                dir +
                    "xuntype.lan:3: dropped: line longer than 249 characters: the rest is read "
                    "as another line\n" +
                    dir +
                    "xuntype.lan:3: fatal: the line does not read as KEY \"TEXT\" and "
                    "repeats key 100 of line 3; loading would stop\n" +
                    Skipped(dir + "xununit.lan") + Skipped(dir + "xunfilter.lan"),
                "xun: 4 problems found\n");
}

TEST(ToolCheckLanguageFiles, MissingKeys) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/missing_keys"}), 1,
                "check/lang/missing_keys/xuntype.lan:3: fatal: no text for item type 100 "
                "'ItemLevel'; loading would stop\n"
                "check/lang/missing_keys/xununit.lan:5: fatal: no text for unit 1001 'UnitFoot'; "
                "loading would stop\n"
                "check/lang/missing_keys/xununit.lan:5: fatal: no text for unit 1002 "
                "'UnitSecond'; loading would stop\n"
                "check/lang/missing_keys/xunfilter.lan:3: fatal: no text for filter 1 'FilterA'; "
                "loading would stop\n",
                "xun: 4 problems found\n");
}

TEST(ToolCheckLanguageFiles, NoClosingQuote) {
    const std::string dir = "check/lang/no_closing_quote/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/no_closing_quote"}), 1,
                dir +
                    "xuntype.lan:3: dropped: the text has no closing quote: it runs to the end "
                    "of the line, line break included\n" +
                    Skipped(dir + "xununit.lan") + Skipped(dir + "xunfilter.lan"),
                "xun: 3 problems found\n");
}

TEST(ToolCheckLanguageFiles, NoEnd) {
    const std::string dir = "check/lang/no_end/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/no_end"}), 1,
                dir + "xuntype.lan:3: dropped: the list does not end with END\n" +
                    Skipped(dir + "xununit.lan") + Skipped(dir + "xunfilter.lan"),
                "xun: 3 problems found\n");
}

TEST(ToolCheckLanguageFiles, NoText) {
    const std::string dir = "check/lang/no_text/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/no_text"}), 1,
                dir +
                    "xuntype.lan:4: dropped: key 100 has no quoted text and takes the text of "
                    "the entry above\n" +
                    Skipped(dir + "xununit.lan") + Skipped(dir + "xunfilter.lan"),
                "xun: 3 problems found\n");
}

TEST(ToolCheckLanguageFiles, ShortFile) {
    const std::string dir = "check/lang/short_file/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/short_file"}), 1,
                TooShort(dir + "xuntype.lan") + Skipped(dir + "xununit.lan") +
                    Skipped(dir + "xunfilter.lan"),
                "xun: 3 problems found\n");
}

TEST(ToolCheckLanguageFiles, TextTooLong) {
    const std::string dir = "check/lang/text_too_long/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/text_too_long"}), 1,
                dir +
                    "xuntype.lan:3: dropped: the text is longer than 103 characters and is "
                    "cut\n" +
                    Skipped(dir + "xununit.lan") + Skipped(dir + "xunfilter.lan"),
                "xun: 3 problems found\n");
}

TEST(ToolCheckLanguageFiles, TypeDuplicate) {
    const std::string dir = "check/lang/type_duplicate/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/type_duplicate"}), 1,
                dir +
                    "xuntype.lan:4: fatal: duplicate key 100 (first on line 3); loading would "
                    "stop\n" +
                    Skipped(dir + "xununit.lan") + Skipped(dir + "xunfilter.lan"),
                "xun: 3 problems found\n");
}

TEST(ToolCheckLanguageFiles, TypeUnreadableLine) {
    const std::string dir = "check/lang/type_unreadable_line/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/type_unreadable_line"}), 1,
                dir +
                    "xuntype.lan:3: dropped: the line does not read as KEY \"TEXT\"; it is "
                    "stored as key 0\n" +
                    dir +
                    "xuntype.lan:5: fatal: the line does not read as KEY \"TEXT\" and "
                    "repeats key 100 of line 4; loading would stop\n" +
                    Skipped(dir + "xununit.lan") + Skipped(dir + "xunfilter.lan"),
                "xun: 4 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitDuplicate) {
    const std::string dir = "check/lang/unit_duplicate/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_duplicate"}), 1,
                Skipped(dir + "xuntype.lan") + dir +
                    "xununit.lan:9: dropped: duplicate unit key 1001 (first on line 5); this "
                    "entry is ignored\n" +
                    Skipped(dir + "xunfilter.lan"),
                "xun: 3 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitEndInside) {
    const std::string dir = "check/lang/unit_end_inside/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_end_inside"}), 1,
                Skipped(dir + "xuntype.lan") + dir +
                    "xununit.lan:9: dropped: the file ends inside the entry of key 1003: its "
                    "second text is taken from this line\n" +
                    dir + "xununit.lan:9: dropped: the list does not end with END\n" +
                    Skipped(dir + "xunfilter.lan"),
                "xun: 4 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitEndSecondLine) {
    const std::string dir = "check/lang/unit_end_second_line/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_end_second_line"}), 1,
                Skipped(dir + "xuntype.lan") + dir +
                    "xununit.lan:10: dropped: END stands on the second line of an entry and does "
                    "not end the list\n" +
                    dir + "xununit.lan:10: dropped: the list does not end with END\n" +
                    Skipped(dir + "xunfilter.lan"),
                "xun: 4 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitPairKeys) {
    const std::string dir = "check/lang/unit_pair_keys/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_pair_keys"}), 1,
                Skipped(dir + "xuntype.lan") + dir +
                    "xununit.lan:5: dropped: the two lines of this entry carry the keys 1001 and "
                    "1002: it is stored under 1002\n" +
                    dir +
                    "xununit.lan:7: dropped: duplicate unit key 1002 (first on line 5); "
                    "this entry is ignored\n" +
                    dir +
                    "xununit.lan:9: fatal: no text for unit 1001 'UnitFoot'; loading would "
                    "stop\n" +
                    Skipped(dir + "xunfilter.lan"),
                "xun: 5 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitUnreadableLine) {
    const std::string dir = "check/lang/unit_unreadable_line/";
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_unreadable_line"}), 1,
                Skipped(dir + "xuntype.lan") + dir +
                    "xununit.lan:4: dropped: the line does not read as KEY \"TEXT\": it keeps key "
                    "1000 and the pairing of the lines below shifts\n" +
                    dir +
                    "xununit.lan:5: dropped: the two lines of this entry carry the keys "
                    "1000 and 1001: it is stored under 1001\n" +
                    dir +
                    "xununit.lan:7: dropped: the two lines of this entry carry the keys "
                    "1001 and 1002: it is stored under 1002\n" +
                    dir +
                    "xununit.lan:9: dropped: duplicate unit key 1002 (first on line 7); "
                    "this entry is ignored\n" +
                    dir +
                    "xununit.lan:10: dropped: END stands on the second line of an entry "
                    "and does not end the list\n" +
                    dir + "xununit.lan:10: dropped: the list does not end with END\n" +
                    Skipped(dir + "xunfilter.lan"),
                "xun: 8 problems found\n");
}

TEST(ToolCheckBaseGroup, Assignments) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--base-group", "check/base_group.kw"}), 1,
                "check/base_group.kw:4: dropped: Data = 200, 1000: no item type has this key; the "
                "assignment is skipped\n"
                "check/base_group.kw:5: dropped: Data = 100, 1002: the unit is of another "
                "dimension than the item type; the assignment is skipped\n"
                "check/base_group.kw:6: dropped: Data = 100, 4242: no unit has this key; the "
                "assignment is skipped\n",
                "xun: 3 problems found\n");
}

TEST(ToolCheckBaseGroup, SyntaxError) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--base-group", "check/base_group_syntax.kw"}), 1,
                "check/base_group_syntax.kw:3: dropped: the file is not loaded and changes "
                "nothing: neither a section nor a keyword\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheckBaseGroup, MissingFile) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--base-group", "check/missing.kw"}), 1,
                "check/missing.kw: dropped: the file is not loaded and changes nothing: cannot "
                "open the file\n",
                "xun: 1 problem found\n");
}

// The base-group file is checked against a loaded setup file: not when the
// load would stop.
TEST(ToolCheckBaseGroup, NotCheckedWhenTheLoadWouldStop) {
    EXPECT_TOOL(
        Xun({"check", "check/filter_unknown_item.xml", "--base-group", "check/base_group.kw"}), 1,
        "check/filter_unknown_item.xml:18: fatal: filter 'FilterA': unknown item type "
        "'ItemGhost' in Items; loading would stop\n",
        "xun: note: 'check/base_group.kw' is not checked: the setup file cannot be loaded as it "
        "is\n"
        "xun: 1 problem found\n");
}

TEST(ToolCheck, HomeInstallationIsClean) {
    EXPECT_TOOL(Xun({"check", "--home", "home"}), 0, "", "");
}

TEST(ToolCheck, SetupOptionTakesLanguageFilesBesideIt) {
    EXPECT_TOOL(Xun({"check", "--setup", "home/bin/XUN.xml"}), 0, "", "");
}

TEST(ToolCheck, MissingSetupFile) {
    EXPECT_TOOL(Xun({"check", "check/missing.xml"}), 1, "",
                "xun: cannot read setup file 'check/missing.xml': No such file or directory\n");
}

TEST(ToolCheck, MissingLanguageDirectory) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/missing"}), 1, "",
                "xun: cannot read the language-file directory 'check/missing'\n");
}

TEST(ToolCheck, SetupTwice) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--setup", "check/clean.xml"}), 2, "",
                "xun: give the setup file either as SETUP or with --setup\n"
                "Try 'xun check --help'.\n");
}

// A setup file in the working directory: the language files beside it are
// named without a directory.
TEST(ToolCheck, SetupInTheWorkingDirectory) {
    xuntest::ToolRun run;
    run.args = {"check", "unit_dup_ident.xml"};
    run.cwd = xuntest::FixtureDir() + "/check";
    EXPECT_TOOL(xuntest::RunTool(run), 1,
                "unit_dup_ident.xml:9: dropped: unit 'UnitFoot': the ident is already used by unit "
                "key 1001 (line 7); the row is dropped\n",
                "xun: 1 problem found\n");
}

// The shipped default installation. It is checked only while it is there;
// a clean check is part of what it promises.
TEST(ToolCheck, DefaultInstallationIsClean) {
    const std::string setup = xuntest::SourceDir() + "/data/bin/XUN.xml";
    EXPECT_TOOL(Xun({"check", setup, "--lang", xuntest::SourceDir() + "/data/bin"}), 0, "", "");
    EXPECT_TOOL(Xun({"check", setup, "--lang", xuntest::SourceDir() + "/data/lang/de"}), 0, "", "");
}

} // namespace
