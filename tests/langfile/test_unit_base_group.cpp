#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "registry/registry_fixture.h"
#include "xun.h"
#include "registry_access.h"

namespace {

using xuntest::RegisterItemType;
using xuntest::RegisterUnit;

std::vector<char> File(const char* name) {
    const std::string path = std::string(std::getenv("XUN_TEST_DATA")) + "/langfile/" + name;
    return std::vector<char>(path.c_str(), path.c_str() + path.size() + 1);
}

class UnitBaseGroup : public ::testing::Test {
  protected:
    void SetUp() override {
        RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
        RegisterUnit("km", 1001, 1000.0, 0.0, CKVdimension::GetLength(), "kilometer");
        RegisterUnit("s", 1100, 1.0, 0.0, CKVdimension::GetTime(), "second");
        RegisterItemType("ItemLevel", 100, CKVdimension::GetLength(), {"m"});
        RegisterItemType("ItemDuration", 8, CKVdimension::GetTime(), {"s"});
        xunSetItemUserUnit(8, 1100);
    }

    static int UserUnit(int item) {
        int tag = 0;
        EXPECT_EQ(xunGetItemUserUnit(item, &tag), 1);
        return tag;
    }
};

TEST_F(UnitBaseGroup, AssignmentsApplyInFileOrder) {
    std::vector<char> name = File("ubg_three.kw");
    LoadUnitBaseGroupFile(name.data());
    // 100 -> 1001, then 100 -> 1000: the later assignment wins.
    EXPECT_EQ(UserUnit(100), 1000);
    EXPECT_EQ(xuntest::ItemByKey(100)->m_lUserUnit, 1000);
    EXPECT_EQ(UserUnit(8), 1100);
}

TEST_F(UnitBaseGroup, EmptyNameLoadsNothing) {
    char empty[] = "";
    LoadUnitBaseGroupFile(empty);
    LoadUnitBaseGroupFile(nullptr);
    EXPECT_EQ(xuntest::ItemByKey(100)->m_lUserUnit, -1);
    EXPECT_EQ(UserUnit(100), 1000);
}

TEST_F(UnitBaseGroup, MissingSectionOrKeywordChangesNothing) {
    std::vector<char> noSection = File("ubg_no_section.kw");
    LoadUnitBaseGroupFile(noSection.data());
    std::vector<char> noData = File("ubg_no_data.kw");
    LoadUnitBaseGroupFile(noData.data());
    std::vector<char> missing = File("ubg_does_not_exist.kw");
    LoadUnitBaseGroupFile(missing.data());
    std::vector<char> broken = File("ubg_syntax_error.kw");
    LoadUnitBaseGroupFile(broken.data());
    EXPECT_EQ(xuntest::ItemByKey(100)->m_lUserUnit, -1);
}

TEST_F(UnitBaseGroup, RefusedAssignmentsAreSkipped) {
    std::vector<char> name = File("ubg_unknown.kw");
    LoadUnitBaseGroupFile(name.data());
    // Unknown item, unknown unit, a unit of another dimension and a keyword
    // without a second parameter are refused; the last line still applies.
    EXPECT_EQ(UserUnit(100), 1001);
}

} // namespace
