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
                "check/allowed_dimension.xml:13: item type 'ItemLevel': allowed unit 'UnitSecond' "
                "has the dimension T, but the item type has L; loading would stop\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, AllowedUnknown) {
    EXPECT_TOOL(Xun({"check", "check/allowed_unknown.xml"}), 1,
                "check/allowed_unknown.xml:13: item type 'ItemLevel': unknown unit 'UnitFathom' in "
                "AllowedUnits; it is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, Clean) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml"}), 0, "", "");
}

TEST(ToolCheck, ExprFails) {
    EXPECT_TOOL(Xun({"check", "check/expr_fails.xml"}), 1,
                "check/expr_fails.xml:9: unit 'UnitBad': expression 'UnitNothing*2' does not "
                "evaluate; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ExprMissing) {
    EXPECT_TOOL(Xun({"check", "check/expr_missing.xml"}), 1,
                "check/expr_missing.xml:9: unit 'UnitBad': no Expr; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ExprNotFinite) {
    EXPECT_TOOL(Xun({"check", "check/expr_not_finite.xml"}), 1,
                "check/expr_not_finite.xml:9: unit 'UnitBad': expression 'UnitMeter/0' gives the "
                "factor inf and the offset 0; its conversions give no number\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ExprNumber) {
    EXPECT_TOOL(Xun({"check", "check/expr_number.xml"}), 1,
                "check/expr_number.xml:9: unit 'UnitBad': expression '2*3' gives a number, not a "
                "unit; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ExprZeroFactor) {
    EXPECT_TOOL(Xun({"check", "check/expr_zero_factor.xml"}), 1,
                "check/expr_zero_factor.xml:9: unit 'UnitBad': expression 'UnitMeter*0' gives the "
                "factor 0; loading would stop\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FilterDupIdent) {
    EXPECT_TOOL(Xun({"check", "check/filter_dup_ident.xml"}), 1,
                "check/filter_dup_ident.xml:19: filter 'FilterA': the ident is already used by "
                "filter key 0x1 (line 18); the row is dropped, but its Items still get bit 0x2\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FilterDupKey) {
    EXPECT_TOOL(Xun({"check", "check/filter_dup_key.xml"}), 1,
                "check/filter_dup_key.xml:19: filter 'FilterB': key 0x1 is already used by filter "
                "'FilterA' (line 18); the row is dropped, but its Items still get bit 0x1\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FilterUnknownItem) {
    EXPECT_TOOL(Xun({"check", "check/filter_unknown_item.xml"}), 1,
                "check/filter_unknown_item.xml:18: filter 'FilterA': unknown item type 'ItemGhost' "
                "in Items; loading would stop\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FirstRowDecimals) {
    EXPECT_TOOL(
        Xun({"check", "check/first_row_decimals.xml"}), 1,
        "check/first_row_decimals.xml:13: no Decimals on the first row of the group: -1 is used\n",
        "xun: 1 problem found\n");
}

TEST(ToolCheck, FirstRowDefaultValue) {
    EXPECT_TOOL(Xun({"check", "check/first_row_default_value.xml"}), 1,
                "check/first_row_default_value.xml:13: no DefaultValue on the first row of the "
                "group: 0 is used\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, FirstRowKvid) {
    EXPECT_TOOL(
        Xun({"check", "check/first_row_kvid.xml"}), 1,
        "check/first_row_kvid.xml:6: no KvId on the first row of the group: the key 0 is used\n"
        "check/first_row_kvid.xml:6: unit 'UnitMeter': the key 0 makes the unit unusable for "
        "conversions\n"
        "check/first_row_kvid.xml:13: no KvId on the first row of the group: the key 0 is used\n"
        "check/first_row_kvid.xml:13: item type 'ItemLevel': the key 0 is not a valid item key\n"
        "check/first_row_kvid.xml:18: no KvId on the first row of the group: the key 0 is used\n"
        "check/first_row_kvid.xml:18: filter 'FilterA': the key 0 sets no bit: its item types join "
        "no filter\n",
        "xun: 6 problems found\n");
}

TEST(ToolCheck, ItemDupIdent) {
    EXPECT_TOOL(Xun({"check", "check/item_dup_ident.xml"}), 1,
                "check/item_dup_ident.xml:14: item type 'ItemLevel': the ident is already used by "
                "item key 100 (line 13); the row is dropped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ItemDupKey) {
    EXPECT_TOOL(
        Xun({"check", "check/item_dup_key.xml"}), 1,
        "check/item_dup_key.xml:14: item type 'ItemDepth': key 100 is already used by item type "
        "'ItemLevel' (line 13); the row is dropped\n"
        "check/item_dup_key.xml:15: item type 'ItemHeight': key 100 is already used by item type "
        "'ItemLevel' (line 13); the row is dropped (KvId carried over from the row above)\n",
        "xun: 2 problems found\n");
}

TEST(ToolCheck, ItemNoDefaultUnit) {
    EXPECT_TOOL(Xun({"check", "check/item_no_default_unit.xml"}), 1,
                "check/item_no_default_unit.xml:14: item type 'ItemDepth': no DefaultUnit; the row "
                "is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, ItemRefreshDimension) {
    EXPECT_TOOL(
        Xun({"check", "check/item_refresh_dimension.xml"}), 1,
        "check/item_refresh_dimension.xml:14: item type 'ItemLevel': DefaultUnit 'UnitSecond' has "
        "the dimension T, but the item type (line 13) has L; loading would stop\n",
        "xun: 1 problem found\n");
}

TEST(ToolCheck, ItemUnknownDefaultUnit) {
    EXPECT_TOOL(Xun({"check", "check/item_unknown_default_unit.xml"}), 1,
                "check/item_unknown_default_unit.xml:14: item type 'ItemDepth': unknown "
                "DefaultUnit 'UnitFathom'; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, KeyRange) {
    EXPECT_TOOL(Xun({"check", "check/key_range.xml"}), 1,
                "check/key_range.xml:9: KvId '4294968299' does not fit in 32 bits: the interface "
                "sees 1003\n"
                "check/key_range.xml:15: KvId '4294967397' does not fit in 32 bits: the interface "
                "sees 101\n"
                "check/key_range.xml:21: KvId '0x100000002' does not fit in 32 bits: the interface "
                "sees 0x2\n",
                "xun: 3 problems found\n");
}

TEST(ToolCheck, KeyZero) {
    EXPECT_TOOL(
        Xun({"check", "check/key_zero.xml"}), 1,
        "check/key_zero.xml:9: unit 'UnitInch': the key 0 makes the unit unusable for conversions\n"
        "check/key_zero.xml:15: item type 'ItemDepth': the key 0 is not a valid item key\n"
        "check/key_zero.xml:21: filter 'FilterB': the key 0 sets no bit: its item types join no "
        "filter\n",
        "xun: 3 problems found\n");
}

TEST(ToolCheck, Malformed) {
    EXPECT_TOOL(Xun({"check", "check/malformed.xml"}), 1,
                "check/malformed.xml:9: not well-formed XML: unterminated end tag 'R'; a load "
                "refuses the file\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, Multiline) {
    EXPECT_TOOL(Xun({"check", "check/multiline.xml"}), 1,
                "check/multiline.xml:9: unit 'UnitB\xC3"
                "\xA4"
                "d': expression 'UnitNothing*2' does not evaluate; the row is skipped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, NumberText) {
    EXPECT_TOOL(Xun({"check", "check/number_text.xml"}), 1,
                "check/number_text.xml:9: KvId '1003x' reads as 1003\n"
                "check/number_text.xml:15: Decimals '2.5' reads as 2\n"
                "check/number_text.xml:15: DefaultValue '1,5' reads as 1\n"
                "check/number_text.xml:21: KvId '0x2z' reads as 0x2\n",
                "xun: 4 problems found\n");
}

TEST(ToolCheck, UnitBaseIdent) {
    EXPECT_TOOL(Xun({"check", "check/unit_base_ident.xml"}), 1,
                "check/unit_base_ident.xml:9: unit 'Mass': the ident names a base unit while units "
                "are read; the row is dropped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UnitBaseKey) {
    EXPECT_TOOL(Xun({"check", "check/unit_base_key.xml"}), 1,
                "check/unit_base_key.xml:9: unit 'UnitKilogram': key 3 is taken by the base unit "
                "'Mass' while units are read; the row is dropped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UnitDupIdent) {
    EXPECT_TOOL(Xun({"check", "check/unit_dup_ident.xml"}), 1,
                "check/unit_dup_ident.xml:9: unit 'UnitFoot': the ident is already used by unit "
                "key 1001 (line 7); the row is dropped\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UnitDupKey) {
    EXPECT_TOOL(Xun({"check", "check/unit_dup_key.xml"}), 1,
                "check/unit_dup_key.xml:9: unit 'UnitYard': key 1000 is already used by unit "
                "'UnitMeter' (line 6); the row is dropped\n"
                "check/unit_dup_key.xml:10: unit 'UnitInch': key 1000 is already used by unit "
                "'UnitMeter' (line 6); the row is dropped (KvId carried over from the row above)\n",
                "xun: 2 problems found\n");
}

TEST(ToolCheck, UnitRefresh) {
    EXPECT_TOOL(Xun({"check", "check/unit_refresh.xml"}), 0, "", "");
}

TEST(ToolCheck, UserDimension) {
    EXPECT_TOOL(Xun({"check", "check/user_dimension.xml"}), 1,
                "check/user_dimension.xml:13: item type 'ItemLevel': UserUnit 'UnitSecond' has the "
                "dimension T, but the item type has L; conversions to the user unit fail\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UserUnknown) {
    EXPECT_TOOL(Xun({"check", "check/user_unknown.xml"}), 1,
                "check/user_unknown.xml:13: item type 'ItemLevel': unknown UserUnit 'UnitFathom'; "
                "it is ignored\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheck, UserWithoutAllowed) {
    EXPECT_TOOL(Xun({"check", "check/user_without_allowed.xml"}), 1,
                "check/user_without_allowed.xml:13: item type 'ItemLevel': UserUnit 'UnitFoot' is "
                "ignored without AllowedUnits\n",
                "xun: 1 problem found\n");
}

TEST(ToolCheckLanguageFiles, LineTooLong) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/line_too_long"}), 1,
                "check/lang/line_too_long/xuntype.lan:3: line longer than 249 characters: the rest "
                "is read as another line\n"
                "check/lang/line_too_long/xuntype.lan:3: the line does not read as KEY \"TEXT\" "
                "and repeats key 100 of line 3; loading would stop\n",
                "xun: note: cannot read 'check/lang/line_too_long/xununit.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/line_too_long/xunfilter.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: 2 problems found\n");
}

TEST(ToolCheckLanguageFiles, MissingKeys) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/missing_keys"}), 1,
                "check/lang/missing_keys/xuntype.lan:3: no text for item type 100 'ItemLevel' "
                "(check/clean.xml:13); loading would stop\n"
                "check/lang/missing_keys/xununit.lan:5: no text for unit 1001 'UnitFoot' "
                "(check/clean.xml:7); loading would stop\n"
                "check/lang/missing_keys/xununit.lan:5: no text for unit 1002 'UnitSecond' "
                "(check/clean.xml:8); loading would stop\n"
                "check/lang/missing_keys/xunfilter.lan:3: no text for filter 1 'FilterA' "
                "(check/clean.xml:18); loading would stop\n",
                "xun: 4 problems found\n");
}

TEST(ToolCheckLanguageFiles, NoClosingQuote) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/no_closing_quote"}), 1,
                "check/lang/no_closing_quote/xuntype.lan:3: the text has no closing quote: it runs "
                "to the end of the line, line break included\n",
                "xun: note: cannot read 'check/lang/no_closing_quote/xununit.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/no_closing_quote/xunfilter.lan': No such file "
                "or directory; a load keeps the setup file's texts\n"
                "xun: 1 problem found\n");
}

TEST(ToolCheckLanguageFiles, NoEnd) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/no_end"}), 1,
                "check/lang/no_end/xuntype.lan:3: the list does not end with END\n",
                "xun: note: cannot read 'check/lang/no_end/xununit.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/no_end/xunfilter.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: 1 problem found\n");
}

TEST(ToolCheckLanguageFiles, NoText) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/no_text"}), 1,
                "check/lang/no_text/xuntype.lan:4: key 100 has no quoted text and takes the text "
                "of the entry above\n",
                "xun: note: cannot read 'check/lang/no_text/xununit.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/no_text/xunfilter.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: 1 problem found\n");
}

TEST(ToolCheckLanguageFiles, ShortFile) {
    EXPECT_TOOL(
        Xun({"check", "check/clean.xml", "--lang", "check/lang/short_file"}), 0, "",
        "xun: note: 'check/lang/short_file/xuntype.lan' has fewer than two lines; a load skips it\n"
        "xun: note: cannot read 'check/lang/short_file/xununit.lan': No such file or directory; a "
        "load keeps the setup file's texts\n"
        "xun: note: cannot read 'check/lang/short_file/xunfilter.lan': No such file or directory; "
        "a load keeps the setup file's texts\n");
}

TEST(ToolCheckLanguageFiles, TextTooLong) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/text_too_long"}), 1,
                "check/lang/text_too_long/xuntype.lan:3: the text is longer than 103 characters "
                "and is cut\n",
                "xun: note: cannot read 'check/lang/text_too_long/xununit.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/text_too_long/xunfilter.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: 1 problem found\n");
}

TEST(ToolCheckLanguageFiles, TypeDuplicate) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/type_duplicate"}), 1,
                "check/lang/type_duplicate/xuntype.lan:4: duplicate key 100 (first on line 3); "
                "loading would stop\n",
                "xun: note: cannot read 'check/lang/type_duplicate/xununit.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/type_duplicate/xunfilter.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: 1 problem found\n");
}

TEST(ToolCheckLanguageFiles, TypeUnreadableLine) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/type_unreadable_line"}), 1,
                "check/lang/type_unreadable_line/xuntype.lan:3: the line does not read as KEY "
                "\"TEXT\"; it is stored as key 0\n"
                "check/lang/type_unreadable_line/xuntype.lan:5: the line does not read as KEY "
                "\"TEXT\" and repeats key 100 of line 4; loading would stop\n",
                "xun: note: cannot read 'check/lang/type_unreadable_line/xununit.lan': No such "
                "file or directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/type_unreadable_line/xunfilter.lan': No such "
                "file or directory; a load keeps the setup file's texts\n"
                "xun: 2 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitDuplicate) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_duplicate"}), 1,
                "check/lang/unit_duplicate/xununit.lan:9: duplicate unit key 1001 (first on line "
                "5); this entry is ignored\n",
                "xun: note: cannot read 'check/lang/unit_duplicate/xuntype.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/unit_duplicate/xunfilter.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: 1 problem found\n");
}

TEST(ToolCheckLanguageFiles, UnitEndInside) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_end_inside"}), 1,
                "check/lang/unit_end_inside/xununit.lan:9: the file ends inside the entry of key "
                "1003: its second text is taken from this line\n"
                "check/lang/unit_end_inside/xununit.lan:9: the list does not end with END\n",
                "xun: note: cannot read 'check/lang/unit_end_inside/xuntype.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/unit_end_inside/xunfilter.lan': No such file "
                "or directory; a load keeps the setup file's texts\n"
                "xun: 2 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitEndSecondLine) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_end_second_line"}), 1,
                "check/lang/unit_end_second_line/xununit.lan:10: END stands on the second line of "
                "an entry and does not end the list\n"
                "check/lang/unit_end_second_line/xununit.lan:10: the list does not end with END\n",
                "xun: note: cannot read 'check/lang/unit_end_second_line/xuntype.lan': No such "
                "file or directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/unit_end_second_line/xunfilter.lan': No such "
                "file or directory; a load keeps the setup file's texts\n"
                "xun: 2 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitPairKeys) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_pair_keys"}), 1,
                "check/lang/unit_pair_keys/xununit.lan:5: the two lines of this entry carry the "
                "keys 1001 and 1002: it is stored under 1002\n"
                "check/lang/unit_pair_keys/xununit.lan:7: duplicate unit key 1002 (first on line "
                "5); this entry is ignored\n"
                "check/lang/unit_pair_keys/xununit.lan:9: no text for unit 1001 'UnitFoot' "
                "(check/clean.xml:7); loading would stop\n",
                "xun: note: cannot read 'check/lang/unit_pair_keys/xuntype.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/unit_pair_keys/xunfilter.lan': No such file or "
                "directory; a load keeps the setup file's texts\n"
                "xun: 3 problems found\n");
}

TEST(ToolCheckLanguageFiles, UnitUnreadableLine) {
    EXPECT_TOOL(Xun({"check", "check/clean.xml", "--lang", "check/lang/unit_unreadable_line"}), 1,
                "check/lang/unit_unreadable_line/xununit.lan:4: the line does not read as KEY "
                "\"TEXT\": it keeps key 1000 and the pairing of the lines below shifts\n"
                "check/lang/unit_unreadable_line/xununit.lan:5: the two lines of this entry carry "
                "the keys 1000 and 1001: it is stored under 1001\n"
                "check/lang/unit_unreadable_line/xununit.lan:7: the two lines of this entry carry "
                "the keys 1001 and 1002: it is stored under 1002\n"
                "check/lang/unit_unreadable_line/xununit.lan:9: duplicate unit key 1002 (first on "
                "line 7); this entry is ignored\n"
                "check/lang/unit_unreadable_line/xununit.lan:10: END stands on the second line of "
                "an entry and does not end the list\n"
                "check/lang/unit_unreadable_line/xununit.lan:10: the list does not end with END\n",
                "xun: note: cannot read 'check/lang/unit_unreadable_line/xuntype.lan': No such "
                "file or directory; a load keeps the setup file's texts\n"
                "xun: note: cannot read 'check/lang/unit_unreadable_line/xunfilter.lan': No such "
                "file or directory; a load keeps the setup file's texts\n"
                "xun: 6 problems found\n");
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
                "unit_dup_ident.xml:9: unit 'UnitFoot': the ident is already used by unit key "
                "1001 (line 7); the row is dropped\n",
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
