#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "langfile/KVLangFile.h"

namespace {

typedef std::map<int, std::string> TypeMap;
typedef std::map<int, std::pair<std::string, std::string>> UnitMap;

const char* const kTypeAssertion =
    "KVLangFile:[0-9]+: bool CKVLangFile::SetTypeMap\\(\\): Assertion "
    "`m_TypeIterator == m_xunTypeMap.end\\(\\)' failed";

std::string DataPath(const std::string& name) {
    const char* dir = std::getenv("XUN_TEST_DATA");
    return std::string(dir != nullptr ? dir : "tests/data") + "/langfile/" + name;
}

// The readers take a modifiable name.
std::vector<char> NameBuffer(const std::string& name) {
    return std::vector<char>(name.c_str(), name.c_str() + name.size() + 1);
}

bool OpenType(CKVLangFile& file, const std::string& name) {
    std::vector<char> path = NameBuffer(DataPath(name));
    return file.OpenLangTypeFile(path.data());
}

bool OpenUnit(CKVLangFile& file, const std::string& name) {
    std::vector<char> path = NameBuffer(DataPath(name));
    return file.OpenLangUnitFile(path.data());
}

// Opens a fixture past its two header lines (read as the reader reads them,
// 249 characters at most) without reading the entries, so that the result of
// SetTypeMap or SetUnitMap can be seen: the open operations return true
// either way.
FILE* OpenPastHeader(const std::string& name) {
    FILE* stream = std::fopen(DataPath(name).c_str(), "r");
    EXPECT_NE(stream, nullptr) << name;
    char line[250];
    EXPECT_NE(std::fgets(line, sizeof line, stream), nullptr);
    EXPECT_NE(std::fgets(line, sizeof line, stream), nullptr);
    return stream;
}

bool TypeMapResult(const std::string& name, TypeMap* entries = nullptr) {
    CKVLangFile file;
    file.m_pTypeFile = OpenPastHeader(name);
    const bool result = file.SetTypeMap();
    file.CloseLangTypeFile();
    if (entries != nullptr)
        *entries = file.m_xunTypeMap;
    return result;
}

bool UnitMapResult(const std::string& name, UnitMap* entries = nullptr) {
    CKVLangFile file;
    file.m_pUnitFile = OpenPastHeader(name);
    const bool result = file.SetUnitMap();
    file.CloseLangUnitFile();
    if (entries != nullptr)
        *entries = file.m_xunUnitMap;
    return result;
}

TypeMap ReadTypes(const std::string& name) {
    CKVLangFile file;
    EXPECT_TRUE(OpenType(file, name)) << name;
    file.CloseLangTypeFile();
    return file.m_xunTypeMap;
}

UnitMap ReadUnits(const std::string& name) {
    CKVLangFile file;
    EXPECT_TRUE(OpenUnit(file, name)) << name;
    file.CloseLangUnitFile();
    return file.m_xunUnitMap;
}

int CountOpenDescriptors() {
    int count = 0;
    DIR* dir = opendir("/proc/self/fd");
    if (dir == nullptr)
        return -1;
    while (readdir(dir) != nullptr)
        ++count;
    closedir(dir);
    return count;
}

bool DescriptorIsOpen(int fd) {
    return fcntl(fd, F_GETFD) != -1;
}

std::string Letters(char first, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += static_cast<char>(first + i % 26);
    return text;
}

// ---------------------------------------------------------------- type files

TEST(LangTypeFile, ConstructorLeavesStreamsNullAndMapsEmpty) {
    CKVLangFile file;
    EXPECT_EQ(file.m_pUnitFile, nullptr);
    EXPECT_EQ(file.m_pTypeFile, nullptr);
    EXPECT_TRUE(file.m_xunTypeMap.empty());
    EXPECT_TRUE(file.m_xunUnitMap.empty());
}

TEST(LangTypeFile, ReadsKeysAsPercentIAndTextsUpToTheQuote) {
    CKVLangFile file;
    ASSERT_TRUE(OpenType(file, "types_basic.lan"));
    EXPECT_NE(file.m_pTypeFile, nullptr);
    const TypeMap expected = {
        {10, "Water level"},
        {8, "Water level"}, // 010 is octal
        {31, "Hex thirty-one"},
        {32, "Upper-case hex prefix"},
        {-16, "Negative hex"},
        {-3, "Leading blanks before the key"},
        {42, "No blank before the quote"},
        {43, "Closed"},
        {44, "Text without closing quote\n"},
    };
    EXPECT_EQ(file.m_xunTypeMap, expected);
    EXPECT_EQ(file.LoadTypeString(10), "Water level");
    EXPECT_EQ(file.LoadTypeString(8), "Water level");
    EXPECT_EQ(file.LoadTypeString(0x1F), "Hex thirty-one");
    EXPECT_EQ(file.LoadTypeString(44), "Text without closing quote\n");
    // Nothing after END is read.
    EXPECT_EQ(file.m_xunTypeMap.count(99), 0u);
    EXPECT_TRUE(file.CloseLangTypeFile());
    EXPECT_TRUE(TypeMapResult("types_basic.lan"));
}

TEST(LangTypeFile, LookupSetsTheIterator) {
    CKVLangFile file;
    ASSERT_TRUE(OpenType(file, "types_basic.lan"));
    file.CloseLangTypeFile();
    EXPECT_EQ(file.LoadTypeString(42), "No blank before the quote");
    ASSERT_NE(file.m_TypeIterator, file.m_xunTypeMap.end());
    EXPECT_EQ(file.m_TypeIterator->first, 42);
}

TEST(LangTypeFile, HeaderAndEndOnlyGivesEmptyMapsAndTrue) {
    CKVLangFile file;
    EXPECT_TRUE(OpenType(file, "types_header_end.lan"));
    file.CloseLangTypeFile();
    EXPECT_TRUE(file.m_xunTypeMap.empty());
    EXPECT_TRUE(file.m_xunUnitMap.empty());
    EXPECT_TRUE(TypeMapResult("types_header_end.lan"));
}

TEST(LangTypeFile, OnlyTheFirstThreeCharactersAreComparedWithEnd) {
    TypeMap entries;
    EXPECT_TRUE(TypeMapResult("types_ending.lan", &entries));
    EXPECT_EQ(entries, (TypeMap{{1, "one"}}));
}

TEST(LangTypeFile, MixedCaseEndIsAnEntryLineThatDoesNotScan) {
    // "End" does not close the list. As the first entry line it scans
    // nothing, so the key and text keep their initial values 0 and "".
    TypeMap entries;
    EXPECT_FALSE(TypeMapResult("types_End_mixed_case.lan", &entries));
    EXPECT_EQ(entries, (TypeMap{{0, ""}, {5, "five"}}));
}

TEST(LangTypeFile, FileWithoutEndKeepsEntriesAndOpenStillSucceeds) {
    EXPECT_EQ(ReadTypes("types_no_end.lan"), (TypeMap{{1, "one"}, {2, "two"}}));
    EXPECT_FALSE(TypeMapResult("types_no_end.lan"));
    TypeMap entries;
    EXPECT_FALSE(TypeMapResult("types_no_end_last_line_open.lan", &entries));
    EXPECT_EQ(entries, (TypeMap{{1, "one"}, {2, "two"}}));
}

TEST(LangTypeFile, TwoHeaderLinesAloneOpen) {
    CKVLangFile file;
    EXPECT_TRUE(OpenType(file, "types_header_only.lan"));
    file.CloseLangTypeFile();
    EXPECT_TRUE(file.m_xunTypeMap.empty());
    EXPECT_FALSE(TypeMapResult("types_header_only.lan"));
}

TEST(LangTypeFile, FileShorterThanTwoLinesDoesNotOpen) {
    for (const char* name : {"types_one_line.lan", "types_empty.lan"}) {
        CKVLangFile file;
        EXPECT_FALSE(OpenType(file, name)) << name;
        EXPECT_EQ(file.m_pTypeFile, nullptr) << name;
        EXPECT_TRUE(file.m_xunTypeMap.empty()) << name;
    }
}

TEST(LangTypeFile, FailedOpenLeavesNoStreamOpen) {
    const int before = CountOpenDescriptors();
    ASSERT_GT(before, 0);
    for (int i = 0; i < 5; ++i) {
        CKVLangFile file;
        EXPECT_FALSE(OpenType(file, "types_one_line.lan"));
        EXPECT_FALSE(OpenUnit(file, "types_empty.lan"));
    }
    EXPECT_EQ(CountOpenDescriptors(), before);
}

TEST(LangTypeFile, MissingFileAndNullPathDoNotOpen) {
    CKVLangFile file;
    EXPECT_FALSE(OpenType(file, "no_such_file.lan"));
    EXPECT_FALSE(file.OpenLangTypeFile(nullptr));
    EXPECT_FALSE(file.OpenLangUnitFile(nullptr));
    EXPECT_EQ(file.m_pTypeFile, nullptr);
    EXPECT_EQ(file.m_pUnitFile, nullptr);
    EXPECT_TRUE(file.m_xunTypeMap.empty());
    // Without an open stream there is nothing to read.
    EXPECT_FALSE(file.SetTypeMap());
    EXPECT_FALSE(file.SetUnitMap());
}

TEST(LangTypeFile, EmptyTextKeepsThePreviousText) {
    EXPECT_EQ(ReadTypes("types_empty_text.lan"), (TypeMap{{1, "one"}, {2, "one"}, {3, "three"}}));
}

TEST(LangTypeFile, KeyWithoutQuotedTextKeepsThePreviousText) {
    EXPECT_EQ(ReadTypes("types_key_without_quote.lan"), (TypeMap{{1, "one"}, {2, "one"}}));
}

TEST(LangTypeFile, TextsAreTakenByteForByte) {
    EXPECT_EQ(ReadTypes("types_bytes.lan"),
              (TypeMap{{1, "Wasserstand \xc3\xa4\xc3\xb6\xc3\xbc"}, {2, "Druck \xe4"}}));
}

TEST(LangTypeFile, CarriageReturnsStayInUnclosedTexts) {
    TypeMap entries;
    EXPECT_TRUE(TypeMapResult("types_crlf.lan", &entries));
    EXPECT_EQ(entries, (TypeMap{{1, "one"}, {2, "two\r\n"}}));
}

TEST(LangTypeFile, TextsAreCutAt103Characters) {
    const TypeMap entries = ReadTypes("types_long_text.lan");
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at(1), Letters('a', 103));
    EXPECT_EQ(entries.at(1).size(), 103u);
    EXPECT_EQ(entries.at(2), Letters('A', 103));
}

TEST(LangTypeFile, LineOf300CharactersIsReadAsTwoLines) {
    // The first 249 characters hold key 5 and its text; the remaining 51 are
    // read as the next line, which holds key 6.
    TypeMap entries;
    EXPECT_TRUE(TypeMapResult("types_long_line.lan", &entries));
    EXPECT_EQ(entries, (TypeMap{{5, std::string(100, 'a')}, {6, "tail text"}}));
}

TEST(LangTypeFile, LongHeaderLineTakesBothHeaderReads) {
    // A header line of 300 characters fills both header reads, so the real
    // second line is read as an entry.
    EXPECT_EQ(ReadTypes("types_long_header.lan"), (TypeMap{{7, "seven"}, {8, "eight"}}));
}

TEST(LangTypeFile, CloseReturnsTrueClosesAndLeavesThePointer) {
    CKVLangFile file;
    ASSERT_TRUE(OpenType(file, "types_basic.lan"));
    FILE* stream = file.m_pTypeFile;
    const int fd = fileno(stream);
    ASSERT_TRUE(DescriptorIsOpen(fd));
    EXPECT_TRUE(file.CloseLangTypeFile());
    EXPECT_FALSE(DescriptorIsOpen(fd));
    EXPECT_EQ(file.m_pTypeFile, stream);
    // The texts stay after closing.
    EXPECT_EQ(file.m_xunTypeMap.size(), 9u);
    EXPECT_EQ(file.LoadTypeString(43), "Closed");
}

TEST(LangTypeFile, CloseWithoutStreamReturnsTrue) {
    CKVLangFile file;
    EXPECT_TRUE(file.CloseLangTypeFile());
    EXPECT_TRUE(file.CloseLangUnitFile());
    EXPECT_EQ(file.m_pTypeFile, nullptr);
    EXPECT_EQ(file.m_pUnitFile, nullptr);
}

TEST(LangTypeFile, DestructorDoesNotCloseTheStream) {
    FILE* stream = nullptr;
    {
        CKVLangFile file;
        ASSERT_TRUE(OpenType(file, "types_basic.lan"));
        stream = file.m_pTypeFile;
    }
    const int fd = fileno(stream);
    EXPECT_TRUE(DescriptorIsOpen(fd));
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST(LangTypeFileDeathTest, DuplicateKeyStopsTheProcess) {
    CKVLangFile file;
    EXPECT_DEATH(OpenType(file, "types_duplicate_key.lan"), kTypeAssertion);
    EXPECT_DEATH(OpenType(file, "types_duplicate_octal_key.lan"), kTypeAssertion);
}

TEST(LangTypeFileDeathTest, LineThatDoesNotScanRepeatsThePreviousKey) {
    CKVLangFile file;
    EXPECT_DEATH(OpenType(file, "types_blank_line.lan"), kTypeAssertion);
    EXPECT_DEATH(OpenType(file, "types_text_line.lan"), kTypeAssertion);
}

TEST(LangTypeFileDeathTest, RemainderOfALongLineWithoutKeyStopsTheProcess) {
    // 300 characters of one text: the remainder after 249 characters has no
    // key and repeats key 5.
    CKVLangFile file;
    EXPECT_DEATH(OpenType(file, "types_long_line_split_text.lan"), kTypeAssertion);
}

TEST(LangTypeFileDeathTest, AbsentKeyStopsTheProcess) {
    CKVLangFile file;
    ASSERT_TRUE(OpenType(file, "types_basic.lan"));
    file.CloseLangTypeFile();
    EXPECT_DEATH(file.LoadTypeString(99),
                 "KVLangFile:[0-9]+: string CKVLangFile::LoadTypeString\\(int\\): Assertion "
                 "`m_TypeIterator != m_xunTypeMap.end\\(\\)' failed");
    CKVLangFile empty;
    EXPECT_DEATH(empty.LoadTypeString(0), "Assertion `m_TypeIterator != m_xunTypeMap.end\\(\\)'");
}

// ---------------------------------------------------------------- unit files

TEST(LangUnitFile, KeyComesFromTheSecondLineOfAPair) {
    CKVLangFile file;
    ASSERT_TRUE(OpenUnit(file, "units_basic.lan"));
    EXPECT_NE(file.m_pUnitFile, nullptr);
    EXPECT_EQ(file.m_pTypeFile, nullptr);
    EXPECT_EQ(file.m_xunUnitMap, (UnitMap{{9, {"metre", "m"}}, {11, {"second", "s"}}}));
    EXPECT_EQ(file.m_xunUnitMap.count(7), 0u);
    EXPECT_TRUE(file.m_xunTypeMap.empty());
    EXPECT_TRUE(file.CloseLangUnitFile());
    EXPECT_TRUE(UnitMapResult("units_basic.lan"));
}

TEST(LangUnitFile, SelectorOneGivesTheFirstTextEveryOtherTheSecond) {
    CKVLangFile file;
    ASSERT_TRUE(OpenUnit(file, "units_basic.lan"));
    file.CloseLangUnitFile();
    EXPECT_EQ(file.LoadUnitString(9, 1), "metre");
    EXPECT_EQ(file.LoadUnitString(9, 2), "m");
    EXPECT_EQ(file.LoadUnitString(9, 0), "m");
    EXPECT_EQ(file.LoadUnitString(9, -1), "m");
    EXPECT_EQ(file.LoadUnitString(9, 3), "m");
    EXPECT_EQ(file.LoadUnitString(11, 1), "second");
    ASSERT_NE(file.m_UnitIterator, file.m_xunUnitMap.end());
    EXPECT_EQ(file.m_UnitIterator->first, 11);
}

TEST(LangUnitFile, HeaderAndEndOnlyGivesEmptyMapsAndTrue) {
    CKVLangFile file;
    EXPECT_TRUE(OpenUnit(file, "units_header_end.lan"));
    file.CloseLangUnitFile();
    EXPECT_TRUE(file.m_xunUnitMap.empty());
    EXPECT_TRUE(file.m_xunTypeMap.empty());
    EXPECT_TRUE(UnitMapResult("units_header_end.lan"));
}

TEST(LangUnitFile, FirstEntryOfAKeyWins) {
    EXPECT_EQ(ReadUnits("units_first_wins.lan"), (UnitMap{{5, {"metre", "m"}}}));
    EXPECT_TRUE(UnitMapResult("units_first_wins.lan"));
}

TEST(LangUnitFile, FileEndingAfterTheFirstLineOfAPairStoresBothTextsEqual) {
    for (const char* name : {"units_ends_in_pair.lan", "units_ends_in_pair_no_newline.lan"}) {
        UnitMap entries;
        EXPECT_FALSE(UnitMapResult(name, &entries)) << name;
        EXPECT_EQ(entries, (UnitMap{{4, {"metre", "m"}}, {5, {"second", "second"}}})) << name;
        EXPECT_EQ(ReadUnits(name), entries) << name;
    }
    UnitMap entries;
    EXPECT_FALSE(UnitMapResult("units_ends_in_pair_open_text.lan", &entries));
    EXPECT_EQ(entries, (UnitMap{{5, {"second", "second"}}}));
}

TEST(LangUnitFile, LineThatDoesNotScanShiftsThePairing) {
    // Pairs: (1 metre, 1 m); (no scan, 2 second) -> key 2 keeps "metre";
    // (2 s, 3 kelvin) -> key 3; (3 K, END) -> END is a second line, scans
    // nothing and repeats key 3, which is taken: dropped. The file then ends.
    UnitMap entries;
    EXPECT_FALSE(UnitMapResult("units_shifted.lan", &entries));
    EXPECT_EQ(entries,
              (UnitMap{{1, {"metre", "m"}}, {2, {"metre", "second"}}, {3, {"s", "kelvin"}}}));
}

TEST(LangUnitFile, EndOnTheSecondLineOfAPairDoesNotCloseTheList) {
    UnitMap entries;
    EXPECT_TRUE(UnitMapResult("units_end_second_line.lan", &entries));
    EXPECT_EQ(entries, (UnitMap{{1, {"a", ""}}, {2, {"b", "c"}}}));
}

TEST(LangUnitFile, OnlyTheFirstThreeCharactersAreComparedWithEnd) {
    UnitMap entries;
    EXPECT_TRUE(UnitMapResult("units_ending.lan", &entries));
    EXPECT_EQ(entries, (UnitMap{{1, {"a", "b"}}}));
    EXPECT_TRUE(UnitMapResult("units_End_mixed_case.lan", &entries));
    EXPECT_EQ(entries, (UnitMap{{1, {"", "a"}}, {2, {"b", "c"}}}));
}

TEST(LangUnitFile, KeysAreDecimalOnly) {
    // 010 is ten; "0x10" scans as 0 and stops at the x, keeping the texts.
    EXPECT_EQ(ReadUnits("units_decimal_keys.lan"),
              (UnitMap{{10, {"ten", "10"}}, {0, {"ten", "10"}}}));
}

TEST(LangUnitFile, EmptyTextKeepsThePreviousTextOfItsLine) {
    EXPECT_EQ(ReadUnits("units_empty_text.lan"),
              (UnitMap{{1, {"metre", "m"}}, {2, {"metre", "m"}}, {3, {"kelvin", "m"}}}));
}

TEST(LangUnitFile, TextsAreCutAt103Characters) {
    EXPECT_EQ(ReadUnits("units_long_text.lan"),
              (UnitMap{{1, {Letters('A', 103), Letters('a', 103)}}}));
}

TEST(LangUnitFile, LineOf300CharactersIsReadAsTwoLines) {
    // Its first 249 characters are the first line of a pair, the remainder
    // (key 2) the second.
    UnitMap entries;
    EXPECT_TRUE(UnitMapResult("units_long_line.lan", &entries));
    EXPECT_EQ(entries, (UnitMap{{2, {std::string(103, 'u'), "second"}}}));
}

TEST(LangUnitFile, FileShorterThanTwoLinesOrMissingDoesNotOpen) {
    for (const char* name : {"types_one_line.lan", "types_empty.lan", "no_such_file.lan"}) {
        CKVLangFile file;
        EXPECT_FALSE(OpenUnit(file, name)) << name;
        EXPECT_EQ(file.m_pUnitFile, nullptr) << name;
        EXPECT_TRUE(file.m_xunUnitMap.empty()) << name;
    }
}

TEST(LangUnitFile, CloseReturnsTrueClosesAndLeavesThePointer) {
    CKVLangFile file;
    ASSERT_TRUE(OpenUnit(file, "units_basic.lan"));
    FILE* stream = file.m_pUnitFile;
    const int fd = fileno(stream);
    ASSERT_TRUE(DescriptorIsOpen(fd));
    EXPECT_TRUE(file.CloseLangUnitFile());
    EXPECT_FALSE(DescriptorIsOpen(fd));
    EXPECT_EQ(file.m_pUnitFile, stream);
    EXPECT_EQ(file.LoadUnitString(11, 2), "s");
}

TEST(LangUnitFileDeathTest, AbsentKeyStopsTheProcess) {
    CKVLangFile file;
    ASSERT_TRUE(OpenUnit(file, "units_basic.lan"));
    file.CloseLangUnitFile();
    // 7 is only the key of the first line of a pair.
    EXPECT_DEATH(file.LoadUnitString(7, 1),
                 "KVLangFile:[0-9]+: string CKVLangFile::LoadUnitString\\(int, int\\): "
                 "Assertion `m_UnitIterator != m_xunUnitMap.end\\(\\)' failed");
    EXPECT_DEATH(file.LoadUnitString(7, 2), "Assertion `m_UnitIterator != m_xunUnitMap.end\\(\\)'");
}

TEST(LangUnitFileDeathTest, UnitKeysDoNotServeTypeLookups) {
    CKVLangFile file;
    ASSERT_TRUE(OpenUnit(file, "units_basic.lan"));
    file.CloseLangUnitFile();
    EXPECT_DEATH(file.LoadTypeString(9), "Assertion `m_TypeIterator != m_xunTypeMap.end\\(\\)'");
}

} // namespace
