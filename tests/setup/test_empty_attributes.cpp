// An attribute written with an empty value loads exactly as the attribute
// left out: the XML layer gives both the same empty text. Checked through
// the C interface on one fixture that writes every attribute of every row
// kind empty, beside rows that show what the value carried over is.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "xun.h"

namespace {

std::string DataFile(const std::string& name) {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data") + "/setup/" + name;
}

class EmptyAttributes : public testing::Test {
  protected:
    void SetUp() override {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        m_result = xunSetupLoad(DataFile("empty_attributes.xml").c_str());
        m_out = testing::internal::GetCapturedStdout();
        m_err = testing::internal::GetCapturedStderr();
        ASSERT_EQ(m_result, 1);
        ASSERT_EQ(m_err, "");
    }

    static std::string UnitKey(int tag) {
        const char* text = nullptr;
        return xunGetUnitKey(tag, &text) ? text : "<none>";
    }
    static std::string ItemKey(int key) {
        const char* text = nullptr;
        return xunGetItemTypeKey(key, &text) ? text : "<none>";
    }

    int m_result = 0;
    std::string m_out, m_err;
};

TEST_F(EmptyAttributes, UnitRows) {
    // Idents in registration order: an empty KvId reuses 1000 (the rows
    // before), which is taken, so "UnitEmptyKey" is dropped (as key 0 it
    // would have been registered); an empty Expr fails like a missing one.
    char* list = nullptr;
    ASSERT_EQ(xunUnitGetAll(&list), 1);
    EXPECT_STREQ(list, ";UnitMeter;UnitKm;");
    std::free(list);
    int tag = -1;
    EXPECT_EQ(xunGetUnitTagFromIdent("UnitEmptyKey", &tag), 0);
    EXPECT_EQ(UnitKey(0), "<none>");
    EXPECT_EQ(m_out, "Error reading unit\nUnitEmptyExpr\nUnsuccessful parsing of the expression\n");
    // An empty Alias adds no alias: neither "" nor anything else finds the
    // meter by alias.
    EXPECT_EQ(xunGetUnitTag("", &tag), 0);
    EXPECT_EQ(tag, 0);
    // The second UnitMeter row has an empty KvId: it carries 1000 and so
    // names the meter by key and ident, which refreshes its texts.
    EXPECT_EQ(UnitKey(1000), "metre");
    const char* abbr = nullptr;
    ASSERT_EQ(xunGetUnitAbbreviation(1000, &abbr), 1);
    EXPECT_STREQ(abbr, "m.");
    EXPECT_EQ(UnitKey(1500), "nameless");
}

TEST_F(EmptyAttributes, ItemRowsCarryKeyDecimalsAndDefaultValue) {
    EXPECT_EQ(xunGetItemTypeCount(), 4);
    int decimals = 0;
    double defaultValue = 0;
    ASSERT_EQ(xunGetItemTypeParams(101, &decimals, &defaultValue), 1);
    // Carried from ItemA, not 0 (nor the "not given" -1).
    EXPECT_EQ(decimals, 3);
    EXPECT_EQ(defaultValue, 1.5);
    // The refresh row with an empty KvId carries 101 and names ItemB again.
    EXPECT_EQ(ItemKey(101), "b refreshed");
    EXPECT_EQ(ItemKey(0), "<none>");
}

TEST_F(EmptyAttributes, EmptyDefaultUnitDefinesNothing) {
    // Even though a unit with the empty ident exists.
    EXPECT_EQ(ItemKey(102), "<none>");
    int key = 0;
    EXPECT_EQ(xunGetItemTypeKeyFromIdent("ItemEmptyDefault", &key), 0);
}

TEST_F(EmptyAttributes, EmptyAllowedUnitsStopsBeforeUserUnit) {
    EXPECT_EQ(xunGetItemUnitCount(103), 1);
    int user = 0;
    ASSERT_EQ(xunGetItemUserUnit(103, &user), 1);
    EXPECT_EQ(user, 1000); // the default unit: UserUnit was not read
}

TEST_F(EmptyAttributes, EmptyUserUnitIsNoUserUnit) {
    EXPECT_EQ(xunGetItemUnitCount(104), 2);
    int user = 0;
    ASSERT_EQ(xunGetItemUserUnit(104, &user), 1);
    // Not 1500, the unit whose ident is empty (a length unit, so it would
    // have been taken).
    EXPECT_EQ(user, 1000);
}

TEST_F(EmptyAttributes, FilterRows) {
    EXPECT_EQ(xunGetFilterCount(), 2);
    const char* text = nullptr;
    ASSERT_EQ(xunGetFilterKey(4, &text), 1);
    EXPECT_STREQ(text, "a refreshed");
    EXPECT_EQ(xunGetFilterKey(0, &text), 0);
    // The carried bit 4 reaches ItemB; the empty Items list adds nothing.
    EXPECT_EQ(xunItemFilterEqv(101, 4), 1);
    EXPECT_EQ(xunItemFilterEqv(100, 4), 1);
    EXPECT_EQ(xunGetFilteredItemTypeCount(8), 0);
}

} // namespace
