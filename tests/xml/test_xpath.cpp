#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "xml/XPath.h"

namespace {

using Type = CXPathElement::Type;
using Elements = std::vector<std::pair<Type, std::string>>;

Elements Parsed(const char* path) {
    CXPath xpath{CString(path)};
    xpath.Parse();
    Elements elements;
    for (const CXPathElement& e : xpath.m_elements)
        elements.emplace_back(e.m_type, e.m_strText.GetString());
    return elements;
}

void ExpectNoElements(CXPath& xpath) {
    EXPECT_TRUE(xpath.m_elements.empty());
    EXPECT_EQ(xpath.GetTagDepth(), 0);
    EXPECT_TRUE(xpath.GetTag(0).IsEmpty());
    EXPECT_TRUE(xpath.GetToken(CXPathElement::Tag).IsEmpty());
    EXPECT_TRUE(xpath.GetToken(CXPathElement::Attribute).IsEmpty());
    EXPECT_TRUE(xpath.GetToken(CXPathElement::Value).IsEmpty());
}

TEST(XPathElement, TypeValues) {
    EXPECT_EQ(static_cast<int>(CXPathElement::Tag), 0);
    EXPECT_EQ(static_cast<int>(CXPathElement::Attribute), 1);
    EXPECT_EQ(static_cast<int>(CXPathElement::Value), 2);
    EXPECT_EQ(sizeof(CXPathElement::Type), 4u);
}

TEST(XPathElement, ConstructCopyAssign) {
    CXPathElement a(CXPathElement::Attribute, CString("Name"));
    EXPECT_EQ(a.m_type, CXPathElement::Attribute);
    EXPECT_STREQ(a.m_strText.GetString(), "Name");
    CXPathElement b(a);
    EXPECT_EQ(b.m_type, CXPathElement::Attribute);
    EXPECT_STREQ(b.m_strText.GetString(), "Name");
    CXPathElement c(CXPathElement::Value, CString("Units"));
    c = a;
    EXPECT_EQ(c.m_type, CXPathElement::Attribute);
    EXPECT_STREQ(c.m_strText.GetString(), "Name");
}

TEST(XPath, GroupWithPredicate) {
    EXPECT_EQ(Parsed("//Group[@Name=\"Units\"]"), (Elements{{CXPathElement::Tag, "Group"},
                                                            {CXPathElement::Attribute, "Name"},
                                                            {CXPathElement::Value, "Units"}}));
    CXPath xpath(CString("//Group[@Name=\"Units\"]"));
    xpath.Parse();
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Tag).GetString(), "Group");
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Attribute).GetString(), "Name");
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Value).GetString(), "Units");
    EXPECT_EQ(xpath.GetTagDepth(), 1);
}

TEST(XPath, LeadingSlashesLeaveNoTrace) {
    const Elements group{{CXPathElement::Tag, "Group"}};
    EXPECT_EQ(Parsed("Group"), group);
    EXPECT_EQ(Parsed("/Group"), group);
    EXPECT_EQ(Parsed("//Group"), group);
    EXPECT_EQ(Parsed("///Group/"), group);
}

TEST(XPath, RowsR) {
    EXPECT_EQ(Parsed("Rows/R"),
              (Elements{{CXPathElement::Tag, "Rows"}, {CXPathElement::Tag, "R"}}));
    CXPath xpath(CString("Rows/R"));
    xpath.Parse();
    EXPECT_EQ(xpath.GetTagDepth(), 2);
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Tag).GetString(), "R"); // the last tag
    EXPECT_STREQ(xpath.GetTag(0).GetString(), "Rows");
    EXPECT_STREQ(xpath.GetTag(1).GetString(), "R");
    EXPECT_TRUE(xpath.GetTag(2).IsEmpty());
    EXPECT_TRUE(xpath.GetTag(-1).IsEmpty());
    EXPECT_TRUE(xpath.GetToken(CXPathElement::Attribute).IsEmpty());
    EXPECT_TRUE(xpath.GetToken(CXPathElement::Value).IsEmpty());
}

TEST(XPath, AsteriskNeverBecomesAToken) {
    EXPECT_EQ(Parsed("//*"), Elements{});
    EXPECT_EQ(Parsed("/*/"), Elements{});
    EXPECT_EQ(Parsed("*"), Elements{});
    // A token after an asterisk is classified by the asterisk and dropped.
    EXPECT_EQ(Parsed("Rows/*R"), (Elements{{CXPathElement::Tag, "Rows"}}));
    EXPECT_EQ(Parsed("Rows/*/R"),
              (Elements{{CXPathElement::Tag, "Rows"}, {CXPathElement::Tag, "R"}}));
}

TEST(XPath, UnquotedValueAndPositionAreDropped) {
    EXPECT_EQ(Parsed("Group[@Name=Units]"),
              (Elements{{CXPathElement::Tag, "Group"}, {CXPathElement::Attribute, "Name"}}));
    EXPECT_EQ(Parsed("Rows/R[2]"),
              (Elements{{CXPathElement::Tag, "Rows"}, {CXPathElement::Tag, "R"}}));
    EXPECT_EQ(Parsed("Group[Name]"), (Elements{{CXPathElement::Tag, "Group"}}));
}

TEST(XPath, TokenInsideThePreviousTokenIsDropped) {
    // The second token "ows" is found at index 1, after the letter R.
    EXPECT_EQ(Parsed("Rows/ows"), (Elements{{CXPathElement::Tag, "Rows"}}));
    CXPath xpath(CString("Rows/ows"));
    xpath.Parse();
    EXPECT_EQ(xpath.GetTagDepth(), 1);
    EXPECT_TRUE(xpath.GetTag(1).IsEmpty());
    // A token equal to the previous one is found at its own place.
    EXPECT_EQ(Parsed("R/R"), (Elements{{CXPathElement::Tag, "R"}, {CXPathElement::Tag, "R"}}));
    // "s" is found inside "Rows", after the letter w: dropped. "R" after it is
    // searched from there on and found after the slash.
    EXPECT_EQ(Parsed("Rows/s/R"),
              (Elements{{CXPathElement::Tag, "Rows"}, {CXPathElement::Tag, "R"}}));
    // A value whose text occurs in the attribute name right after its first
    // letter is found there and dropped.
    EXPECT_EQ(Parsed("G[@Name=\"ame\"]"),
              (Elements{{CXPathElement::Tag, "G"}, {CXPathElement::Attribute, "Name"}}));
}

TEST(XPath, GetTagCountsElementsOfEveryType) {
    CXPath xpath(CString("Group[@Name=\"Units\"]/R"));
    xpath.Parse();
    EXPECT_EQ(xpath.GetTagDepth(), 2);
    EXPECT_STREQ(xpath.GetTag(0).GetString(), "Group");
    EXPECT_STREQ(xpath.GetTag(1).GetString(), "Name");
    EXPECT_STREQ(xpath.GetTag(2).GetString(), "Units");
    EXPECT_STREQ(xpath.GetTag(3).GetString(), "R");
    EXPECT_TRUE(xpath.GetTag(4).IsEmpty());
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Tag).GetString(), "R");
}

TEST(XPath, LastTokenOfEachTypeWins) {
    CXPath xpath(CString("A[@x=\"1\"]/B[@y=\"2\"]"));
    xpath.Parse();
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Tag).GetString(), "B");
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Attribute).GetString(), "y");
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Value).GetString(), "2");
}

TEST(XPath, EmptyOrOnlyDelimitersGivesNothing) {
    for (const char* path : {"", "/", "//", "*", "/*[]@\"=", "[[]]", "\"\"", "@=@", "//*"}) {
        SCOPED_TRACE(path);
        CXPath xpath{CString(path)};
        xpath.Parse();
        ExpectNoElements(xpath);
    }
}

TEST(XPath, DefaultPathIsEmpty) {
    CXPath xpath;
    EXPECT_TRUE(xpath.m_strPath.IsEmpty());
    xpath.Parse();
    ExpectNoElements(xpath);
}

TEST(XPath, NoElementsBeforeParse) {
    CXPath xpath(CString("Rows/R"));
    EXPECT_STREQ(xpath.m_strPath.GetString(), "Rows/R");
    ExpectNoElements(xpath);
}

TEST(XPath, ParseTwiceGivesTheSameList) {
    CXPath xpath(CString("//Group[@Name=\"Units\"]/Rows/R"));
    xpath.Parse();
    const size_t first = xpath.m_elements.size();
    xpath.Parse();
    EXPECT_EQ(xpath.m_elements.size(), first);
    EXPECT_EQ(first, 5u);
    EXPECT_EQ(xpath.GetTagDepth(), 3);
}

TEST(XPath, ChangedPathIsParsedAfresh) {
    CXPath xpath(CString("A/B/C"));
    xpath.Parse();
    xpath.m_strPath = "X";
    xpath.Parse();
    EXPECT_EQ(xpath.m_elements.size(), 1u);
    EXPECT_STREQ(xpath.GetTag(0).GetString(), "X");
}

TEST(XPath, CopyCarriesOnlyThePath) {
    CXPath original(CString("Rows/R"));
    original.Parse();
    CXPath copy(original);
    EXPECT_STREQ(copy.m_strPath.GetString(), "Rows/R");
    ExpectNoElements(copy);
    copy.Parse();
    EXPECT_EQ(copy.GetTagDepth(), 2);
    EXPECT_EQ(original.GetTagDepth(), 2);
}

TEST(XPath, AssignmentCarriesOnlyThePath) {
    CXPath original(CString("Rows/R"));
    original.Parse();
    CXPath target(CString("A/B/C"));
    target.Parse();
    target = original;
    EXPECT_STREQ(target.m_strPath.GetString(), "Rows/R");
    ExpectNoElements(target);
    target.Parse();
    EXPECT_STREQ(target.GetTag(0).GetString(), "Rows");
    EXPECT_STREQ(target.GetTag(1).GetString(), "R");
    // Assigned to itself it keeps its path and must be parsed again as well.
    CXPath& same = target;
    target = same;
    EXPECT_STREQ(target.m_strPath.GetString(), "Rows/R");
    ExpectNoElements(target);
}

TEST(XPath, BlanksStayInsideTokens) {
    EXPECT_EQ(Parsed("My Group[@Long Name=\"two words\"]"),
              (Elements{{CXPathElement::Tag, "My Group"},
                        {CXPathElement::Attribute, "Long Name"},
                        {CXPathElement::Value, "two words"}}));
    EXPECT_EQ(Parsed(" / "), (Elements{{CXPathElement::Tag, " "}, {CXPathElement::Tag, " "}}));
}

TEST(XPath, ValueAfterQuoteAttributeAfterAt) {
    EXPECT_EQ(Parsed("\"v\""), (Elements{{CXPathElement::Value, "v"}}));
    EXPECT_EQ(Parsed("@a"), (Elements{{CXPathElement::Attribute, "a"}}));
    EXPECT_EQ(Parsed("[a]"), Elements{});
    EXPECT_EQ(Parsed("=a"), Elements{});
    EXPECT_EQ(Parsed("]a"), Elements{});
}

// Any bytes parse: every element has a non-empty text free of delimiters, the
// tag depth counts the Tag elements, and GetTag reads every position.
TEST(XPath, AnyBytesParse) {
    std::mt19937 random(20240611);
    const char alphabet[] = "/*[]@\"=ab \x01\x7f\x80\xff";
    for (int round = 0; round < 3000; ++round) {
        std::string path;
        const int length = static_cast<int>(random() % 40);
        for (int i = 0; i < length; ++i) {
            char c = (round % 2 == 0) ? alphabet[random() % (sizeof(alphabet) - 1)]
                                      : static_cast<char>(random() % 255 + 1);
            path.push_back(c);
        }
        CXPath xpath{CString(path.c_str())};
        xpath.Parse();
        int tags = 0;
        for (size_t i = 0; i < xpath.m_elements.size(); ++i) {
            const CXPathElement& e = xpath.m_elements[i];
            ASSERT_FALSE(e.m_strText.IsEmpty()) << path;
            ASSERT_EQ(std::strpbrk(e.m_strText.GetString(), "/*[]@\"="), nullptr) << path;
            ASSERT_NE(std::strstr(path.c_str(), e.m_strText.GetString()), nullptr) << path;
            ASSERT_TRUE(xpath.GetTag(static_cast<int>(i)) == e.m_strText) << path;
            if (e.m_type == CXPathElement::Tag)
                ++tags;
        }
        ASSERT_EQ(xpath.GetTagDepth(), tags) << path;
        ASSERT_TRUE(xpath.GetTag(static_cast<int>(xpath.m_elements.size())).IsEmpty());
    }
}

TEST(XPath, LongPathParses) {
    std::string path;
    for (int i = 0; i < 20000; ++i)
        path += "/Step" + std::to_string(i);
    CXPath xpath{CString(path.c_str())};
    xpath.Parse();
    EXPECT_EQ(xpath.GetTagDepth(), 20000);
    EXPECT_STREQ(xpath.GetTag(19999).GetString(), "Step19999");
    EXPECT_STREQ(xpath.GetToken(CXPathElement::Tag).GetString(), "Step19999");
}

} // namespace
