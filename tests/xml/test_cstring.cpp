#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/CString.h"

namespace {

// Every token that Tokenize yields until (and including) the first empty one.
std::vector<std::string> Tokens(const CString& text, const char* delimiters) {
    std::vector<std::string> tokens;
    int position = 0;
    for (int guard = 0; guard < 100; ++guard) {
        const CString token = text.Tokenize(delimiters, position);
        tokens.push_back(token.GetString());
        if (token.IsEmpty())
            break;
    }
    return tokens;
}

using Strings = std::vector<std::string>;

TEST(CString, DefaultIsEmpty) {
    CString s;
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(s.GetLength(), 0);
    EXPECT_STREQ(s.GetString(), "");
}

TEST(CString, ConstructionFromTextAndNull) {
    CString s("Rows/R");
    EXPECT_FALSE(s.IsEmpty());
    EXPECT_EQ(s.GetLength(), 6);
    EXPECT_STREQ(s.GetString(), "Rows/R");
    CString n(nullptr);
    EXPECT_TRUE(n.IsEmpty());
    EXPECT_STREQ(n.GetString(), "");
}

TEST(CString, CopyIsIndependent) {
    CString a("abc");
    CString b(a);
    b += "d";
    EXPECT_STREQ(a.GetString(), "abc");
    EXPECT_STREQ(b.GetString(), "abcd");
    CString c;
    c = a;
    a = "x";
    EXPECT_STREQ(c.GetString(), "abc");
    EXPECT_STREQ(a.GetString(), "x");
}

TEST(CString, AssignmentFromText) {
    CString s("old");
    s = "new text";
    EXPECT_STREQ(s.GetString(), "new text");
    EXPECT_EQ(s.GetLength(), 8);
    s = nullptr;
    EXPECT_TRUE(s.IsEmpty());
    s = "";
    EXPECT_TRUE(s.IsEmpty());
}

TEST(CString, AssignmentFromItsOwnText) {
    CString s("abcdef");
    s = s.GetString() + 2;
    EXPECT_STREQ(s.GetString(), "cdef");
    CString& same = s;
    s = same;
    EXPECT_STREQ(s.GetString(), "cdef");
}

TEST(CString, Append) {
    CString s("a");
    s += "bc";
    s += "";
    s += nullptr;
    EXPECT_STREQ(s.GetString(), "abc");
    EXPECT_EQ(s.GetLength(), 3);
    CString e;
    e += "x";
    EXPECT_STREQ(e.GetString(), "x");
}

TEST(CString, AppendItsOwnText) {
    CString s("abc");
    s += s.GetString();
    EXPECT_STREQ(s.GetString(), "abcabc");
    // Large enough to force a new buffer while the source is the old one.
    CString big(std::string(1000, 'q').c_str());
    big += big.GetString();
    EXPECT_EQ(big.GetLength(), 2000);
    EXPECT_EQ(std::string(big.GetString()), std::string(2000, 'q'));
}

TEST(CString, FindAtOrAfterStart) {
    CString s("Rows/Rows");
    EXPECT_EQ(s.Find("Rows", 0), 0);
    EXPECT_EQ(s.Find("Rows", 1), 5);
    EXPECT_EQ(s.Find("ows", 1), 1);
    EXPECT_EQ(s.Find("ows", 2), 6);
    EXPECT_EQ(s.Find("/", 0), 4);
    EXPECT_EQ(s.Find("Rows"), 0);
}

TEST(CString, FindOfAbsentTextIsMinusOne) {
    CString s("Group");
    EXPECT_EQ(s.Find("Units", 0), -1);
    EXPECT_EQ(s.Find("group", 0), -1); // case-sensitive
    EXPECT_EQ(s.Find("Group", 1), -1);
    EXPECT_EQ(s.Find("Groups", 0), -1);
    EXPECT_EQ(CString().Find("a", 0), -1);
    EXPECT_EQ(s.Find(nullptr, 0), -1);
}

TEST(CString, FindWithStartBeyondTheEndOrNegative) {
    CString s("abcabc");
    EXPECT_EQ(s.Find("a", 6), -1);
    EXPECT_EQ(s.Find("a", 7), -1);
    EXPECT_EQ(s.Find("a", 1000000), -1);
    EXPECT_EQ(s.Find("", 7), -1);
    // Every occurrence lies at or after a negative start.
    EXPECT_EQ(s.Find("b", -1), 1);
    EXPECT_EQ(s.Find("c", -2147483647 - 1), 2);
    EXPECT_EQ(s.Find("x", -5), -1);
}

TEST(CString, FindOfEmptyTextIsAtStart) {
    CString s("abc");
    EXPECT_EQ(s.Find("", 0), 0);
    EXPECT_EQ(s.Find("", 2), 2);
    EXPECT_EQ(s.Find("", 3), 3);
    EXPECT_EQ(CString().Find("", 0), 0);
}

TEST(CString, CompareIsThreeWay) {
    CString s("Units");
    EXPECT_EQ(s.Compare("Units"), 0);
    EXPECT_EQ(s.Compare("Unit"), 1);
    EXPECT_EQ(s.Compare("Unitsx"), -1);
    EXPECT_EQ(s.Compare("units"), -1); // 'U' < 'u'
    EXPECT_EQ(s.Compare("A"), 1);
    EXPECT_EQ(CString().Compare(""), 0);
    EXPECT_EQ(CString().Compare(nullptr), 0);
    EXPECT_EQ(s.Compare(nullptr), 1);
    // Bytes compare unsigned: a byte above 0x7f sorts after ASCII.
    EXPECT_EQ(CString("\xc3").Compare("z"), 1);
    EXPECT_EQ(CString("z").Compare("\xc3"), -1);
}

TEST(CString, EqualityIsExactAndCaseSensitive) {
    EXPECT_TRUE(CString("Name") == CString("Name"));
    EXPECT_FALSE(CString("Name") == CString("name"));
    EXPECT_FALSE(CString("Name") == CString("Name "));
    EXPECT_TRUE(CString("Name") != CString("Nam"));
    EXPECT_TRUE(CString("Name") == "Name");
    EXPECT_TRUE(CString("Name") != "Names");
    EXPECT_TRUE(CString() == "");
    EXPECT_TRUE(CString() == static_cast<const char*>(nullptr));
}

TEST(CString, IndexReadsBytesAndNothingOutside) {
    CString s("R;x");
    EXPECT_EQ(s[0], 'R');
    EXPECT_EQ(s[1], ';');
    EXPECT_EQ(s[2], 'x');
    EXPECT_EQ(s[3], '\0');
    EXPECT_EQ(s[4], '\0');
    EXPECT_EQ(s[-1], '\0');
    EXPECT_EQ(s[2147483647], '\0');
    EXPECT_EQ(CString()[0], '\0');
    EXPECT_EQ(CString("\xff")[0], '\xff');
}

TEST(CString, TokenizeSkipsEmptyFields) {
    // a;;b yields a, then b, then an empty text.
    EXPECT_EQ(Tokens(CString("a;;b"), ";"), (Strings{"a", "b", ""}));
    EXPECT_EQ(Tokens(CString(";;a;b;;"), ";"), (Strings{"a", "b", ""}));
    EXPECT_EQ(Tokens(CString("UnitA;UnitB"), ";"), (Strings{"UnitA", "UnitB", ""}));
}

TEST(CString, TokenizeOverOnlyDelimitersOrEmptyIsEmptyAtOnce) {
    EXPECT_EQ(Tokens(CString(";;;"), ";"), (Strings{""}));
    EXPECT_EQ(Tokens(CString(";"), ";"), (Strings{""}));
    EXPECT_EQ(Tokens(CString(""), ";"), (Strings{""}));
    EXPECT_EQ(Tokens(CString("//*[]@\"="), "/*[]@\"="), (Strings{""}));
}

TEST(CString, TokenizeMovesPositionPastTheEndingDelimiter) {
    CString s("ab;;cd;e");
    int position = 0;
    EXPECT_STREQ(s.Tokenize(";", position).GetString(), "ab");
    EXPECT_EQ(position, 3);
    EXPECT_STREQ(s.Tokenize(";", position).GetString(), "cd");
    EXPECT_EQ(position, 7);
    EXPECT_STREQ(s.Tokenize(";", position).GetString(), "e");
    EXPECT_EQ(position, 9); // one past the end
    EXPECT_STREQ(s.Tokenize(";", position).GetString(), "");
    EXPECT_EQ(position, -1);
    // Once exhausted it stays exhausted.
    EXPECT_STREQ(s.Tokenize(";", position).GetString(), "");
    EXPECT_EQ(position, -1);
}

TEST(CString, TokenizeFromAGivenPosition) {
    CString s("ab;cd");
    int position = 1;
    EXPECT_STREQ(s.Tokenize(";", position).GetString(), "b");
    EXPECT_EQ(position, 3);
    position = 3;
    EXPECT_STREQ(s.Tokenize(";", position).GetString(), "cd");
    position = 5;
    EXPECT_TRUE(s.Tokenize(";", position).IsEmpty());
    EXPECT_EQ(position, -1);
    position = 99;
    EXPECT_TRUE(s.Tokenize(";", position).IsEmpty());
    EXPECT_EQ(position, -1);
    position = -3;
    EXPECT_TRUE(s.Tokenize(";", position).IsEmpty());
    EXPECT_EQ(position, -1);
}

TEST(CString, TokenizeWithSeveralDelimitersKeepsBlanks) {
    EXPECT_EQ(Tokens(CString("//Group[@Name=\"Units\"]"), "/*[]@\"="),
              (Strings{"Group", "Name", "Units", ""}));
    EXPECT_EQ(Tokens(CString("a b/c d"), "/"), (Strings{"a b", "c d", ""}));
}

TEST(CString, TokenizeWithoutDelimitersGivesTheRest) {
    CString s("a;b");
    int position = 1;
    EXPECT_STREQ(s.Tokenize("", position).GetString(), ";b");
    EXPECT_EQ(position, 4);
    position = 0;
    EXPECT_STREQ(s.Tokenize(nullptr, position).GetString(), "a;b");
    EXPECT_TRUE(s.Tokenize(nullptr, position).IsEmpty());
}

TEST(CString, TokenizeDoesNotChangeTheText) {
    const CString s("x;y");
    int position = 0;
    s.Tokenize(";", position);
    EXPECT_STREQ(s.GetString(), "x;y");
}

TEST(CString, HighBytesAreOrdinaryCharacters) {
    CString s("\xc3\xa9;\xff\xfe");
    EXPECT_EQ(s.GetLength(), 5);
    EXPECT_EQ(Tokens(s, ";"), (Strings{"\xc3\xa9", "\xff\xfe", ""}));
    EXPECT_EQ(s.Find("\xff", 0), 3);
}

} // namespace
