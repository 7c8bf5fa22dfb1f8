#include <gtest/gtest.h>

#include <unistd.h>

#include <cctype>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "langfile/KeywordFile.h"

namespace {

std::string DataPath(const std::string& name) {
    const char* dir = std::getenv("XUN_TEST_DATA");
    return std::string(dir != nullptr ? dir : "tests/data") + "/langfile/" + name;
}

// Writes text to a file in the test's temporary directory and returns its name
// (made unique by the process id: tests may run in parallel processes).
std::string WriteTemp(const std::string& name, const std::string& text) {
    const std::string path = testing::TempDir() + "xun_kw_" + std::to_string(getpid()) + "_" + name;
    FILE* file = std::fopen(path.c_str(), "wb");
    EXPECT_NE(file, nullptr) << path;
    if (file != nullptr) {
        EXPECT_EQ(std::fwrite(text.data(), 1, text.size(), file), text.size());
        std::fclose(file);
    }
    return path;
}

// Frees the loaded file at the end of a test.
struct Loaded {
    explicit Loaded(const std::string& path) : file(lrxLoadFile(path.c_str(), 1)) {}
    ~Loaded() { lrxClose(&file); }
    CLrxFile* file;
};

// The loop of the base-group reader: every "Data" keyword of the first
// "Item_Unit" section, as (parameter 1, parameter 2).
std::vector<std::pair<int, int>> ItemUnitPairs(const CLrxFile* file) {
    std::vector<std::pair<int, int>> pairs;
    const CLrxSection* section = lrxTargetByNameNum(file, "Item_Unit", 1);
    int n = 1;
    for (const CLrxKeyword* key = lrxKeywordByNameNum(section, "Data", n); key != nullptr;
         key = lrxKeywordByNameNum(section, "Data", ++n))
        pairs.emplace_back(lrxGetInt(lrxParamByNum(key, 1)), lrxGetInt(lrxParamByNum(key, 2)));
    return pairs;
}

typedef std::vector<std::pair<int, int>> Pairs;

int ParamCount(const CLrxKeyword* keyword) {
    int count = 0;
    while (lrxParamByNum(keyword, count + 1) != nullptr)
        ++count;
    return count;
}

// ------------------------------------------------------------------ loading

TEST(KeywordFile, ErrorIsEmptyBeforeAnyLoad) {
    EXPECT_STREQ(lrxGetErrorGlb(), "");
}

TEST(KeywordFile, ReadsTheExample) {
    Loaded loaded(DataPath("kw_example.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    EXPECT_STREQ(lrxGetErrorGlb(), "");
    EXPECT_EQ(ItemUnitPairs(loaded.file), (Pairs{{1001, 2001}, {1002, 2004}}));
}

TEST(KeywordFile, SectionsAreNumberedPerName) {
    Loaded loaded(DataPath("kw_sections.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const CLrxSection* a1 = lrxTargetByNameNum(loaded.file, "A", 1);
    const CLrxSection* a2 = lrxTargetByNameNum(loaded.file, "A", 2);
    const CLrxSection* b1 = lrxTargetByNameNum(loaded.file, "B", 1);
    const CLrxSection* c1 = lrxTargetByNameNum(loaded.file, "C", 1);
    ASSERT_NE(a1, nullptr);
    ASSERT_NE(a2, nullptr);
    ASSERT_NE(b1, nullptr);
    ASSERT_NE(c1, nullptr);
    EXPECT_NE(a1, a2);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(lrxKeywordByNameNum(a1, "Key", 1), 1)), 1);
    EXPECT_EQ(lrxKeywordByNameNum(a1, "Key", 2), nullptr);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(lrxKeywordByNameNum(b1, "Key", 1), 1)), 2);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(lrxKeywordByNameNum(a2, "Key", 1), 1)), 3);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(lrxKeywordByNameNum(a2, "Key", 2), 1)), 4);
    // A section without keywords exists but has none.
    EXPECT_EQ(lrxKeywordByNameNum(c1, "Key", 1), nullptr);
    EXPECT_EQ(lrxTargetByNameNum(loaded.file, "A", 3), nullptr);
    EXPECT_EQ(lrxTargetByNameNum(loaded.file, "B", 2), nullptr);
    EXPECT_EQ(lrxTargetByNameNum(loaded.file, "A", 0), nullptr);
    EXPECT_EQ(lrxTargetByNameNum(loaded.file, "A", -1), nullptr);
    // Names compare case-sensitively.
    EXPECT_EQ(lrxTargetByNameNum(loaded.file, "a", 1), nullptr);
    EXPECT_EQ(lrxTargetByNameNum(loaded.file, "D", 1), nullptr);
}

TEST(KeywordFile, KeywordsAreNumberedByOccurrencePerName) {
    Loaded loaded(DataPath("kw_keywords.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    EXPECT_EQ(ItemUnitPairs(loaded.file), (Pairs{{1, 10}, {3, 30}, {5, 50}}));
    const CLrxSection* section = lrxTargetByNameNum(loaded.file, "Item_Unit", 1);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(lrxKeywordByNameNum(section, "Other", 1), 1)), 2);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(lrxKeywordByNameNum(section, "Other", 2), 1)), 4);
    EXPECT_EQ(lrxKeywordByNameNum(section, "Other", 3), nullptr);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(lrxKeywordByNameNum(section, "data", 1), 1)), 6);
    EXPECT_EQ(lrxKeywordByNameNum(section, "Data", 0), nullptr);
    EXPECT_EQ(lrxKeywordByNameNum(section, "Data", -5), nullptr);
    EXPECT_EQ(lrxKeywordByNameNum(section, "Missing", 1), nullptr);
}

TEST(KeywordFile, IntegerParameters) {
    Loaded loaded(DataPath("kw_params.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const CLrxKeyword* key =
        lrxKeywordByNameNum(lrxTargetByNameNum(loaded.file, "Params", 1), "Integers", 1);
    ASSERT_EQ(ParamCount(key), 8);
    const int expected[] = {12, -7, 3, 7, 0, 0, 2147483647, -2147483647 - 1};
    for (int i = 0; i < 8; ++i) {
        const CLrxParam* param = lrxParamByNum(key, i + 1);
        EXPECT_EQ(lrxGetParamType(param), LRX_PARAM_INT) << i;
        EXPECT_EQ(lrxGetInt(param), expected[i]) << i;
        EXPECT_EQ(lrxGetReal(param), static_cast<double>(expected[i])) << i;
        EXPECT_EQ(lrxGetText(param), nullptr) << i;
    }
}

TEST(KeywordFile, RealParameters) {
    Loaded loaded(DataPath("kw_params.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const CLrxKeyword* key =
        lrxKeywordByNameNum(lrxTargetByNameNum(loaded.file, "Params", 1), "Reals", 1);
    ASSERT_EQ(ParamCount(key), 7);
    const double expected[] = {1.5, -0.5, 2.0, 1000.0, 6.02e23, 4.25e-2, 0.0};
    for (int i = 0; i < 7; ++i) {
        const CLrxParam* param = lrxParamByNum(key, i + 1);
        EXPECT_EQ(lrxGetParamType(param), LRX_PARAM_REAL) << i;
        EXPECT_EQ(lrxGetReal(param), expected[i]) << i;
        // Reals are not integers: no rounding.
        EXPECT_EQ(lrxGetInt(param), 0) << i;
        EXPECT_EQ(lrxGetText(param), nullptr) << i;
    }
}

TEST(KeywordFile, TextParameters) {
    Loaded loaded(DataPath("kw_params.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const CLrxKeyword* key =
        lrxKeywordByNameNum(lrxTargetByNameNum(loaded.file, "Params", 1), "Texts", 1);
    ASSERT_EQ(ParamCount(key), 6);
    const char* const expected[] = {"water level",     "a, b",  "",
                                    "  blanks kept  ", "x = y", "# not a comment"};
    for (int i = 0; i < 6; ++i) {
        const CLrxParam* param = lrxParamByNum(key, i + 1);
        EXPECT_EQ(lrxGetParamType(param), LRX_PARAM_TEXT) << i;
        EXPECT_STREQ(lrxGetText(param), expected[i]) << i;
        EXPECT_EQ(lrxGetInt(param), 0) << i;
        EXPECT_EQ(lrxGetReal(param), 0.0) << i;
    }
}

TEST(KeywordFile, MixedParametersAndKeywordWithoutParameters) {
    Loaded loaded(DataPath("kw_params.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const CLrxSection* section = lrxTargetByNameNum(loaded.file, "Params", 1);
    const CLrxKeyword* mixed = lrxKeywordByNameNum(section, "Mixed", 1);
    ASSERT_EQ(ParamCount(mixed), 4);
    EXPECT_STREQ(lrxGetText(lrxParamByNum(mixed, 1)), "text");
    EXPECT_EQ(lrxGetInt(lrxParamByNum(mixed, 2)), 42);
    EXPECT_EQ(lrxGetReal(lrxParamByNum(mixed, 3)), 3.5);
    EXPECT_STREQ(lrxGetText(lrxParamByNum(mixed, 4)), "tab");
    const CLrxKeyword* empty = lrxKeywordByNameNum(section, "Empty", 1);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(ParamCount(empty), 0);
}

TEST(KeywordFile, RealsAreReadAlikeInEveryLocale) {
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr)
        GTEST_SKIP() << "no German locale (set LOCPATH to the build's locale folder)";
    Loaded loaded(DataPath("kw_params.kw"));
    std::setlocale(LC_NUMERIC, "C");
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const CLrxKeyword* key =
        lrxKeywordByNameNum(lrxTargetByNameNum(loaded.file, "Params", 1), "Reals", 1);
    EXPECT_EQ(lrxGetReal(lrxParamByNum(key, 1)), 1.5);
    EXPECT_EQ(lrxGetReal(lrxParamByNum(key, 6)), 4.25e-2);
}

TEST(KeywordFile, ParameterNumbersOutOfRangeGiveNull) {
    Loaded loaded(DataPath("kw_example.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const CLrxKeyword* key =
        lrxKeywordByNameNum(lrxTargetByNameNum(loaded.file, "Item_Unit", 1), "Data", 1);
    ASSERT_NE(key, nullptr);
    EXPECT_NE(lrxParamByNum(key, 1), nullptr);
    EXPECT_NE(lrxParamByNum(key, 2), nullptr);
    EXPECT_EQ(lrxParamByNum(key, 3), nullptr);
    EXPECT_EQ(lrxParamByNum(key, 0), nullptr);
    EXPECT_EQ(lrxParamByNum(key, -1), nullptr);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(key, 3)), 0);
}

TEST(KeywordFile, CommentsBlankLinesAndBlanksAreIgnored) {
    Loaded loaded(DataPath("kw_comments.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    EXPECT_EQ(ItemUnitPairs(loaded.file), (Pairs{{1001, 2001}, {1002, 2004}}));
    // The commented section does not exist.
    EXPECT_EQ(lrxTargetByNameNum(loaded.file, "Item_Unit", 2), nullptr);
}

TEST(KeywordFile, CrlfLineEndsReadAlike) {
    Loaded loaded(DataPath("kw_crlf.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    EXPECT_EQ(ItemUnitPairs(loaded.file), (Pairs{{1001, 2001}, {1002, 0}}));
    const CLrxKeyword* key =
        lrxKeywordByNameNum(lrxTargetByNameNum(loaded.file, "Item_Unit", 1), "Data", 2);
    EXPECT_STREQ(lrxGetText(lrxParamByNum(key, 2)), "m");
}

TEST(KeywordFile, LastLineWithoutNewline) {
    Loaded loaded(DataPath("kw_no_final_newline.kw"));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    EXPECT_EQ(ItemUnitPairs(loaded.file), (Pairs{{1, 2}}));
}

TEST(KeywordFile, EmptyAndCommentOnlyFilesLoadWithoutSections) {
    for (const char* name : {"kw_empty.kw", "kw_comments_only.kw"}) {
        Loaded loaded(DataPath(name));
        ASSERT_NE(loaded.file, nullptr) << name;
        EXPECT_STREQ(lrxGetErrorGlb(), "");
        EXPECT_EQ(lrxTargetByNameNum(loaded.file, "Item_Unit", 1), nullptr);
        EXPECT_TRUE(ItemUnitPairs(loaded.file).empty());
    }
}

TEST(KeywordFile, MissingSectionOrKeywordGivesNoPairs) {
    for (const char* name : {"kw_no_item_unit.kw", "kw_no_data.kw"}) {
        Loaded loaded(DataPath(name));
        ASSERT_NE(loaded.file, nullptr) << name;
        EXPECT_TRUE(ItemUnitPairs(loaded.file).empty()) << name;
    }
}

TEST(KeywordFile, CloseReleasesAndNullsTheHandle) {
    CLrxFile* file = lrxLoadFile(DataPath("kw_example.kw").c_str(), 1);
    ASSERT_NE(file, nullptr);
    lrxClose(&file);
    EXPECT_EQ(file, nullptr);
    lrxClose(&file); // closing the null handle does nothing
    EXPECT_EQ(file, nullptr);
    lrxClose(nullptr);
}

TEST(KeywordFile, NullHandlesAndNamesGiveNull) {
    EXPECT_EQ(lrxTargetByNameNum(nullptr, "Item_Unit", 1), nullptr);
    EXPECT_EQ(lrxKeywordByNameNum(nullptr, "Data", 1), nullptr);
    EXPECT_EQ(lrxParamByNum(nullptr, 1), nullptr);
    EXPECT_EQ(lrxGetInt(nullptr), 0);
    EXPECT_EQ(lrxGetReal(nullptr), 0.0);
    EXPECT_EQ(lrxGetText(nullptr), nullptr);
    EXPECT_EQ(lrxGetParamType(nullptr), LRX_PARAM_NONE);
    Loaded loaded(DataPath("kw_example.kw"));
    ASSERT_NE(loaded.file, nullptr);
    EXPECT_EQ(lrxTargetByNameNum(loaded.file, nullptr, 1), nullptr);
    const CLrxSection* section = lrxTargetByNameNum(loaded.file, "Item_Unit", 1);
    EXPECT_EQ(lrxKeywordByNameNum(section, nullptr, 1), nullptr);
}

TEST(KeywordFile, NullNameDoesNotLoad) {
    EXPECT_EQ(lrxLoadFile(nullptr, 1), nullptr);
    EXPECT_STREQ(lrxGetErrorGlb(), "no file name given");
}

TEST(KeywordFile, OnlyModeOneLoads) {
    const std::string path = DataPath("kw_example.kw");
    EXPECT_EQ(lrxLoadFile(path.c_str(), 0), nullptr);
    EXPECT_EQ(lrxGetErrorGlb(), path + ": unsupported mode 0");
    EXPECT_EQ(lrxLoadFile(path.c_str(), 2), nullptr);
    EXPECT_EQ(lrxGetErrorGlb(), path + ": unsupported mode 2");
}

TEST(KeywordFile, MissingFileDoesNotLoad) {
    const std::string path = DataPath("no_such_file.kw");
    EXPECT_EQ(lrxLoadFile(path.c_str(), 1), nullptr);
    EXPECT_EQ(lrxGetErrorGlb(), path + ": cannot open the file");
    EXPECT_EQ(lrxLoadFile("", 1), nullptr);
    EXPECT_STREQ(lrxGetErrorGlb(), ": cannot open the file");
}

TEST(KeywordFile, UnreadableFileDoesNotLoad) {
    // A directory opens but cannot be read.
    const std::string path = DataPath("");
    EXPECT_EQ(lrxLoadFile(path.c_str(), 1), nullptr);
    EXPECT_EQ(lrxGetErrorGlb(), path + ": cannot read the file");
}

TEST(KeywordFile, SuccessfulLoadClearsTheError) {
    EXPECT_EQ(lrxLoadFile(DataPath("kw_err_plain_line.kw").c_str(), 1), nullptr);
    EXPECT_STRNE(lrxGetErrorGlb(), "");
    Loaded loaded(DataPath("kw_example.kw"));
    ASSERT_NE(loaded.file, nullptr);
    EXPECT_STREQ(lrxGetErrorGlb(), "");
}

TEST(KeywordFile, HandlesOfTwoFilesAreIndependent) {
    Loaded first(DataPath("kw_example.kw"));
    Loaded second(DataPath("kw_keywords.kw"));
    ASSERT_NE(first.file, nullptr);
    ASSERT_NE(second.file, nullptr);
    EXPECT_EQ(ItemUnitPairs(first.file), (Pairs{{1001, 2001}, {1002, 2004}}));
    EXPECT_EQ(ItemUnitPairs(second.file), (Pairs{{1, 10}, {3, 30}, {5, 50}}));
}

TEST(KeywordFile, VeryLongLinesAreRead) {
    // One keyword of 100,000 parameters and a text of a million characters.
    std::string many = "[Item_Unit]\nMany = 0";
    for (int i = 1; i < 100000; ++i)
        many += ", " + std::to_string(i);
    const std::string text(1000000, 't');
    many += "\nLong = \"" + text + "\"\nData = 1, 2\n";
    Loaded loaded(WriteTemp("long.kw", many));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const CLrxSection* section = lrxTargetByNameNum(loaded.file, "Item_Unit", 1);
    const CLrxKeyword* key = lrxKeywordByNameNum(section, "Many", 1);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(key, 1)), 0);
    EXPECT_EQ(lrxGetInt(lrxParamByNum(key, 100000)), 99999);
    EXPECT_EQ(lrxParamByNum(key, 100001), nullptr);
    EXPECT_EQ(lrxGetText(lrxParamByNum(lrxKeywordByNameNum(section, "Long", 1), 1)), text);
    EXPECT_EQ(ItemUnitPairs(loaded.file), (Pairs{{1, 2}}));
}

TEST(KeywordFile, ManyKeywordsAreFoundByNumber) {
    std::string content = "[Item_Unit]\n";
    for (int i = 1; i <= 20000; ++i)
        content += "Data = " + std::to_string(i) + ", " + std::to_string(-i) + "\n";
    Loaded loaded(WriteTemp("many.kw", content));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    const Pairs pairs = ItemUnitPairs(loaded.file);
    ASSERT_EQ(pairs.size(), 20000u);
    EXPECT_EQ(pairs.front(), std::make_pair(1, -1));
    EXPECT_EQ(pairs.back(), std::make_pair(20000, -20000));
}

TEST(KeywordFile, TextsKeepAnyBytes) {
    const char raw[] = "[S]\nK = \"\xc3\xa4\xff\x01\"\n";
    const std::string bytes(raw, sizeof raw - 1);
    Loaded loaded(WriteTemp("bytes.kw", bytes));
    ASSERT_NE(loaded.file, nullptr) << lrxGetErrorGlb();
    EXPECT_STREQ(lrxGetText(lrxParamByNum(
                     lrxKeywordByNameNum(lrxTargetByNameNum(loaded.file, "S", 1), "K", 1), 1)),
                 "\xc3\xa4\xff\x01");
}

TEST(KeywordFile, ZeroBytesAreSyntaxErrorsOutsideTexts) {
    const char raw[] = "[A]\nData\0 = 1\n";
    const std::string content(raw, sizeof raw - 1);
    const std::string path = WriteTemp("zero.kw", content);
    EXPECT_EQ(lrxLoadFile(path.c_str(), 1), nullptr);
    EXPECT_EQ(lrxGetErrorGlb(), path + ":2: invalid keyword name");
}

// ------------------------------------------------------------ syntax errors

struct ErrorFixture {
    const char* file;
    int line;
    const char* reason;
};

// Parameter values appear in the test names: keep them short and plain.
std::string PlainName(const std::string& text) {
    std::string name;
    for (char c : text)
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

void PrintTo(const ErrorFixture& fixture, std::ostream* out) {
    *out << PlainName(fixture.file);
}

std::string FixtureTestName(const testing::TestParamInfo<ErrorFixture>& info) {
    return PlainName(info.param.file);
}

class KeywordFileErrorFixture : public testing::TestWithParam<ErrorFixture> {};

TEST_P(KeywordFileErrorFixture, ReportsLineAndReason) {
    const ErrorFixture& fixture = GetParam();
    const std::string path = DataPath(fixture.file);
    EXPECT_EQ(lrxLoadFile(path.c_str(), 1), nullptr);
    EXPECT_EQ(lrxGetErrorGlb(), path + ":" + std::to_string(fixture.line) + ": " + fixture.reason);
}

INSTANTIATE_TEST_SUITE_P(
    Fixtures, KeywordFileErrorFixture,
    testing::Values(
        ErrorFixture{"kw_err_keyword_before_section.kw", 2, "keyword before the first section"},
        ErrorFixture{"kw_err_unclosed_section.kw", 3, "section name without closing ']'"},
        ErrorFixture{"kw_err_after_section.kw", 1, "characters after the closing ']'"},
        ErrorFixture{"kw_err_section_name.kw", 2, "invalid section name"},
        ErrorFixture{"kw_err_plain_line.kw", 2, "neither a section nor a keyword"},
        ErrorFixture{"kw_err_keyword_name.kw", 3, "invalid keyword name"},
        ErrorFixture{"kw_err_empty_param.kw", 2, "parameter 2 is empty"},
        ErrorFixture{"kw_err_unclosed_text.kw", 2, "parameter 2: text without closing quote"},
        ErrorFixture{"kw_err_after_quote.kw", 2, "parameter 1: characters after the closing quote"},
        ErrorFixture{"kw_err_int_range.kw", 2, "parameter 2: integer out of range"},
        ErrorFixture{"kw_err_real_range.kw", 2, "parameter 1: real out of range"},
        ErrorFixture{"kw_err_not_number.kw", 2, "parameter 2: not a number or a quoted text"},
        ErrorFixture{"kw_err_crlf.kw", 4, "parameter 1: not a number or a quoted text"}),
    FixtureTestName);

struct ErrorLine {
    const char* content;
    int line;
    const char* reason;
};

void PrintTo(const ErrorLine& error, std::ostream* out) {
    *out << "line_" << error.line << "_" << PlainName(error.reason);
}

std::string LineTestName(const testing::TestParamInfo<ErrorLine>& info) {
    return std::to_string(info.index) + "_line" + std::to_string(info.param.line) + "_" +
           PlainName(info.param.reason);
}

class KeywordFileErrorLine : public testing::TestWithParam<ErrorLine> {};

TEST_P(KeywordFileErrorLine, ReportsLineAndReason) {
    const ErrorLine& error = GetParam();
    const std::string path = WriteTemp("error.kw", error.content);
    EXPECT_EQ(lrxLoadFile(path.c_str(), 1), nullptr);
    EXPECT_EQ(lrxGetErrorGlb(), path + ":" + std::to_string(error.line) + ": " + error.reason);
}

INSTANTIATE_TEST_SUITE_P(
    Variants, KeywordFileErrorLine,
    testing::Values(
        // sections
        ErrorLine{"[]\n", 1, "invalid section name"},
        ErrorLine{"[  ]\n", 1, "invalid section name"},
        ErrorLine{"[A]]\n", 1, "characters after the closing ']'"},
        ErrorLine{"[A] # comment\n", 1, "characters after the closing ']'"},
        ErrorLine{"[A\n", 1, "section name without closing ']'"},
        ErrorLine{"[A[B]\n", 1, "invalid section name"},
        ErrorLine{"[A=B]\n", 1, "invalid section name"},
        ErrorLine{"[A\rB]\n", 1, "invalid section name"},
        ErrorLine{"# c\n\n[\xc3\xa4]\n", 3, "invalid section name"},
        // keywords
        ErrorLine{"Data = 1\n", 1, "keyword before the first section"},
        ErrorLine{"\n\n  Data = 1, 2\n[A]\n", 3, "keyword before the first section"},
        ErrorLine{"[A]\nData\n", 2, "neither a section nor a keyword"},
        ErrorLine{"[A]\nA] = 1\n", 2, "invalid keyword name"},
        ErrorLine{"[A]\n= 1\n", 2, "invalid keyword name"},
        ErrorLine{"[A]\nDa ta = 1\n", 2, "invalid keyword name"},
        ErrorLine{"[A]\n\"Data\" = 1\n", 2, "invalid keyword name"},
        ErrorLine{"[A]\nData == 1\n", 2, "parameter 1: not a number or a quoted text"},
        // empty parameters
        ErrorLine{"[A]\nData = ,\n", 2, "parameter 1 is empty"},
        ErrorLine{"[A]\nData = , 1\n", 2, "parameter 1 is empty"},
        ErrorLine{"[A]\nData = 1,\n", 2, "parameter 2 is empty"},
        ErrorLine{"[A]\nData = 1, 2, \t\n", 2, "parameter 3 is empty"},
        ErrorLine{"[A]\nData = \"a\",\n", 2, "parameter 2 is empty"},
        // texts
        ErrorLine{"[A]\nData = \"\n", 2, "parameter 1: text without closing quote"},
        ErrorLine{"[A]\nData = 1, \"a, b\n", 2, "parameter 2: text without closing quote"},
        ErrorLine{"[A]\nData = \"a\"\"b\"\n", 2, "parameter 1: characters after the closing quote"},
        ErrorLine{"[A]\nData = 1, \"a\" 2\n", 2, "parameter 2: characters after the closing quote"},
        ErrorLine{"[A]\nData = ab\"c\"\n", 2, "parameter 1: not a number or a quoted text"},
        // integers
        ErrorLine{"[A]\nData = 2147483648\n", 2, "parameter 1: integer out of range"},
        ErrorLine{"[A]\nData = -2147483649\n", 2, "parameter 1: integer out of range"},
        ErrorLine{"[A]\nData = +99999999999999999999\n", 2, "parameter 1: integer out of range"},
        // reals
        ErrorLine{"[A]\nData = -1e999\n", 2, "parameter 1: real out of range"},
        ErrorLine{"[A]\nData = 1e-400\n", 2, "parameter 1: real out of range"},
        // neither
        ErrorLine{"[A]\nData = 0x10\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = abc\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = 1e\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = 1e+\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = +-5\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = --1\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = +\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = -\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = .\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = .e5\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = 1.2.3\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = inf\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = nan\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = 1,5 2\n", 2, "parameter 2: not a number or a quoted text"},
        ErrorLine{"[A]\nData = 1 # comment\n", 2, "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\nData = 1\r2\n", 2, "parameter 1: not a number or a quoted text"},
        // the line number counts every line, comments and blank ones included
        ErrorLine{"# 1\n\n; 3\n[A]\nData = 1\n\n\nData = x\n", 8,
                  "parameter 1: not a number or a quoted text"},
        ErrorLine{"[A]\r\n\r\n# c\r\nData\r\n", 4, "neither a section nor a keyword"}),
    LineTestName);

} // namespace
