#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

#include "units/KVunit.h"

namespace {

std::vector<double> Slots(const CKVunit& u) {
    std::vector<double> s(7);
    u.GetFactors(s[0], s[1], s[2], s[3], s[4], s[5], s[6]);
    return s;
}

std::vector<double> Powers(const CKVunit& u) {
    std::vector<double> p(7);
    u.GetDim().GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
    return p;
}

std::vector<std::string> Aliases(const CKVunit& u) {
    return std::vector<std::string>(u.m_lstAlias.begin(), u.m_lstAlias.end());
}

const CKVdimension kSpeed = CKVdimension::GetLength() / CKVdimension::GetTime();

TEST(Unit, NamedConstructorBorrowsTheDimension) {
    CKVunit u("meter", "m", 1000, 2.5, CKVdimension::GetLength());
    EXPECT_EQ(u.m_strDesc, "meter");
    EXPECT_EQ(u.m_strAbbr, "m");
    EXPECT_EQ(u.m_lKey, 1000);
    EXPECT_EQ(u.m_strIdent, "");
    EXPECT_EQ(u.m_strExpr, "");
    EXPECT_TRUE(u.m_lstAlias.empty());
    EXPECT_EQ(u.m_pDimParent, &CKVdimension::GetLength());
    EXPECT_EQ(u.m_pDimTemp, nullptr);
    EXPECT_EQ(u.m_dFactor, 2.5);
    EXPECT_EQ(u.m_dOffset, 0.0);
    EXPECT_EQ(Slots(u), std::vector<double>(7, 1.0));
}

TEST(Unit, NamedConstructorWithOffset) {
    CKVunit u("degree Celsius", "C", 5, 1.0, 273.15, CKVdimension::GetTemp());
    EXPECT_EQ(u.m_dFactor, 1.0);
    EXPECT_EQ(u.m_dOffset, 273.15);
    EXPECT_EQ(u.m_pDimParent, &CKVdimension::GetTemp());
    EXPECT_EQ(Slots(u), std::vector<double>(7, 1.0));
}

TEST(Unit, FactorConstructorFillsTheSingleBaseSlot) {
    CKVunit km(1000.0, CKVdimension::GetLength());
    EXPECT_EQ(Slots(km), (std::vector<double>{1000, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(km.m_pDimParent, nullptr);
    ASSERT_NE(km.m_pDimTemp, nullptr);
    EXPECT_NE(km.m_pDimTemp, &CKVdimension::GetLength());
    EXPECT_EQ(km.m_lKey, -1);
    CKVunit lumi(3.0, CKVdimension::GetLumi());
    EXPECT_EQ(Slots(lumi), (std::vector<double>{1, 1, 1, 1, 1, 1, 3}));
}

TEST(Unit, FactorConstructorOnCompositeKeepsAllSlotsAtOne) {
    CKVunit u(7.0, kSpeed);
    EXPECT_EQ(Slots(u), std::vector<double>(7, 1.0));
    CKVunit d(7.0, CKVdimension::GetNonDim());
    EXPECT_EQ(Slots(d), std::vector<double>(7, 1.0));
}

TEST(Unit, KilometrePerHourSpreadsItsFactorOverTheSlots) {
    CKVunit km(1000.0, CKVdimension::GetLength());
    CKVunit h(3600.0, CKVdimension::GetTime());
    CKVunit kmh = km / h;
    EXPECT_EQ(kmh.m_dFactor, 1000.0 / 3600.0);
    EXPECT_EQ(Powers(kmh), (std::vector<double>{1, 0, -1, 0, 0, 0, 0}));
    EXPECT_EQ(Slots(kmh), (std::vector<double>{1000, 1, 1 / 3600.0, 1, 1, 1, 1}));
    EXPECT_EQ(kmh.m_lKey, -1);
    EXPECT_NE(kmh.m_pDimTemp, nullptr);
}

TEST(Unit, ProductMultipliesFactorsAndSlots) {
    CKVunit km(1000.0, CKVdimension::GetLength());
    CKVunit h(3600.0, CKVdimension::GetTime());
    CKVunit p = km * h;
    EXPECT_EQ(p.m_dFactor, 3.6e6);
    EXPECT_EQ(Powers(p), (std::vector<double>{1, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(Slots(p), (std::vector<double>{1000, 1, 3600, 1, 1, 1, 1}));
}

TEST(Unit, CopyConstructorDropsOffsetKeyIdentAndExpression) {
    CKVunit c("degree Celsius", "C", 17, 1.0, 273.15, CKVdimension::GetTemp());
    c.m_strIdent = "degC";
    c.m_strExpr = "kelvin+273.15";
    c.SetAlias("celsius;centigrade");
    CKVunit copy(c);
    EXPECT_EQ(copy.m_dOffset, 0.0);
    EXPECT_EQ(copy.m_lKey, -1);
    EXPECT_EQ(copy.m_strIdent, "");
    EXPECT_EQ(copy.m_strExpr, "");
    EXPECT_EQ(copy.m_strDesc, "degree Celsius");
    EXPECT_EQ(copy.m_strAbbr, "C");
    EXPECT_EQ(Aliases(copy), (std::vector<std::string>{"celsius", "centigrade"}));
    EXPECT_EQ(copy.m_pDimParent, &CKVdimension::GetTemp());
    EXPECT_EQ(copy.m_dFactor, 1.0);
}

TEST(Unit, CopyOfAnOwnedDimensionIsDeep) {
    CKVunit u(2.0, kSpeed);
    CKVunit copy(u);
    ASSERT_NE(copy.m_pDimTemp, nullptr);
    EXPECT_NE(copy.m_pDimTemp, u.m_pDimTemp);
    EXPECT_TRUE(copy.IsEqv(u));
}

TEST(Unit, NamedCopyDropsTheOffset) {
    CKVunit c("degree Celsius", "C", 17, 1.0, 273.15, CKVdimension::GetTemp());
    CKVunit t("tmp", "tmp", 1, c);
    EXPECT_EQ(t.m_dOffset, 0.0);
    EXPECT_EQ(t.m_lKey, 1);
    EXPECT_EQ(t.m_strDesc, "tmp");
    EXPECT_EQ(t.m_pDimParent, &CKVdimension::GetTemp());
    CKVunit km(1000.0, CKVdimension::GetLength());
    CKVunit t2("a", "b", 3, km);
    EXPECT_EQ(Slots(t2), Slots(km));
    EXPECT_NE(t2.m_pDimTemp, km.m_pDimTemp);
}

TEST(Unit, NamedCopyWithDimensionBorrowsIt) {
    CKVunit km(1000.0, CKVdimension::GetLength());
    CKVunit t("a", "b", 3, km, CKVdimension::GetLength());
    EXPECT_EQ(t.m_pDimParent, &CKVdimension::GetLength());
    EXPECT_EQ(t.m_pDimTemp, nullptr);
    EXPECT_EQ(t.m_dFactor, 1000.0);
    EXPECT_EQ(Slots(t), Slots(km));
}

TEST(Unit, ScalarProductAndQuotient) {
    CKVunit m("meter", "m", 10, 1.0, CKVdimension::GetLength());
    m.m_strIdent = "m";
    m.SetAlias("metre");
    CKVunit km = m * 1000.0;
    EXPECT_EQ(km.m_dFactor, 1000.0);
    EXPECT_EQ(Slots(km), (std::vector<double>{1000, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(km.m_strDesc, "");
    EXPECT_EQ(km.m_strAbbr, "");
    EXPECT_TRUE(km.m_lstAlias.empty());
    EXPECT_EQ(km.m_lKey, -1);
    EXPECT_EQ(km.m_pDimParent, &CKVdimension::GetLength());
    CKVunit mm = m / 1000.0;
    EXPECT_EQ(mm.m_dFactor, 1.0 / 1000.0);
    EXPECT_EQ(Slots(mm), (std::vector<double>{0.001, 1, 1, 1, 1, 1, 1}));
    CKVunit v(1.0, kSpeed);
    CKVunit v2 = v * 3.0;
    EXPECT_EQ(v2.m_dFactor, 3.0);
    EXPECT_EQ(Slots(v2), std::vector<double>(7, 1.0));
}

TEST(Unit, NumberDividedByUnit) {
    CKVunit s("second", "s", 4, 1.0, CKVdimension::GetTime());
    CKVunit hz = 2.0 / s;
    EXPECT_EQ(hz.m_dFactor, 2.0);
    EXPECT_EQ(Powers(hz), (std::vector<double>{0, 0, -1, 0, 0, 0, 0}));
    EXPECT_EQ(Slots(hz), (std::vector<double>{1, 1, 2, 1, 1, 1, 1}));
    CKVunit h(3600.0, CKVdimension::GetTime());
    CKVunit perHour = 3.0 / h;
    EXPECT_EQ(perHour.m_dFactor, (1.0 / 3600.0) * 3.0);
    EXPECT_EQ(Slots(perHour)[2], (1.0 / 3600.0) * 3.0);
}

TEST(Unit, PowerOfSquareMetreAndSquareKilometre) {
    CKVunit m2(1.0, CKVdimension::GetLength() ^ 2.0);
    CKVunit m = m2 ^ 0.5;
    EXPECT_EQ(m.m_dFactor, 1.0);
    EXPECT_EQ(Powers(m), (std::vector<double>{1, 0, 0, 0, 0, 0, 0}));
    CKVunit km2(1e6, CKVdimension::GetLength() ^ 2.0);
    CKVunit km = km2 ^ 0.5;
    EXPECT_EQ(km.m_dFactor, 1000.0);
    EXPECT_EQ(Slots(km), (std::vector<double>{1000, 1, 1, 1, 1, 1, 1}));
}

TEST(Unit, ArithmeticIgnoresOffsets) {
    CKVunit c("degree Celsius", "C", 17, 1.0, 273.15, CKVdimension::GetTemp());
    CKVunit m("meter", "m", 10, 1.0, CKVdimension::GetLength());
    EXPECT_EQ((c * m).m_dOffset, 0.0);
    EXPECT_EQ((c / m).m_dOffset, 0.0);
    EXPECT_EQ((c * 2.0).m_dOffset, 0.0);
    EXPECT_EQ((c / 2.0).m_dOffset, 0.0);
    EXPECT_EQ((2.0 / c).m_dOffset, 0.0);
    EXPECT_EQ((c ^ 2.0).m_dOffset, 0.0);
}

TEST(Unit, SetAliasAppendsInOrder) {
    CKVunit u("meter", "m", 10, 1.0, CKVdimension::GetLength());
    u.SetAlias("mtr");
    u.SetAlias("metre;meter");
    EXPECT_EQ(Aliases(u), (std::vector<std::string>{"mtr", "metre", "meter"}));
    EXPECT_TRUE(u.IsAlias("metre"));
    EXPECT_TRUE(u.IsAlias("mtr"));
    EXPECT_FALSE(u.IsAlias("Metre"));
    EXPECT_FALSE(u.IsAlias("meter "));
}

TEST(Unit, SetAliasWithNothingAddsNothing) {
    CKVunit u("meter", "m", 10, 1.0, CKVdimension::GetLength());
    u.SetAlias("");
    u.SetAlias(";;");
    u.SetAlias(";");
    EXPECT_TRUE(u.m_lstAlias.empty());
    EXPECT_FALSE(u.IsAlias(""));
}

TEST(Unit, SetAliasSkipsSeparatorRunsAndKeepsBlanks) {
    CKVunit u("meter", "m", 10, 1.0, CKVdimension::GetLength());
    u.SetAlias(";a;;b; c;");
    EXPECT_EQ(Aliases(u), (std::vector<std::string>{"a", "b", " c"}));
    u.SetAlias("a");
    EXPECT_EQ(Aliases(u), (std::vector<std::string>{"a", "b", " c", "a"}));
}

TEST(Unit, TokenizeMovesThePosition) {
    CKVunit u(1.0, CKVdimension::GetLength());
    int pos = 0;
    EXPECT_EQ(u._Tokenize("ab;;cd", ";", pos), "ab");
    EXPECT_EQ(pos, 3);
    EXPECT_EQ(u._Tokenize("ab;;cd", ";", pos), "cd");
    EXPECT_EQ(pos, 7);
    EXPECT_EQ(u._Tokenize("ab;;cd", ";", pos), "");
    EXPECT_EQ(pos, -1);
    EXPECT_EQ(u._Tokenize("ab;;cd", ";", pos), "");
    EXPECT_EQ(pos, -1);
    pos = -5;
    EXPECT_EQ(u._Tokenize("ab", ";", pos), "");
    EXPECT_EQ(pos, -1);
    pos = 0;
    EXPECT_EQ(u._Tokenize("x,y;z", ",;", pos), "x");
    EXPECT_EQ(u._Tokenize("x,y;z", ",;", pos), "y");
    EXPECT_EQ(u._Tokenize("x,y;z", ",;", pos), "z");
}

TEST(Unit, RemoveDescKeepsExpressionKeyAndScale) {
    CKVunit u("kilometer", "km", 1001, 1000.0, CKVdimension::GetLength());
    u.m_strIdent = "km";
    u.m_strExpr = "m*1000";
    u.SetAlias("kilometre");
    u.RemoveDesc();
    EXPECT_TRUE(u.m_lstAlias.empty());
    EXPECT_EQ(u.m_strAbbr, "");
    EXPECT_EQ(u.m_strDesc, "");
    EXPECT_EQ(u.m_strIdent, "");
    EXPECT_EQ(u.m_strExpr, "m*1000");
    EXPECT_EQ(u.m_lKey, 1001);
    EXPECT_EQ(u.m_dFactor, 1000.0);
    EXPECT_EQ(u.m_pDimParent, &CKVdimension::GetLength());
}

TEST(Unit, IsEqvComparesDimensionsOnly) {
    CKVunit m("meter", "m", 10, 1.0, CKVdimension::GetLength());
    CKVunit ft("foot", "ft", 11, 0.3048, 5.0, CKVdimension::GetLength());
    CKVunit s("second", "s", 12, 1.0, CKVdimension::GetTime());
    EXPECT_TRUE(m.IsEqv(ft));
    EXPECT_FALSE(m.IsEqv(s));
    EXPECT_TRUE(m.IsEqv(CKVdimension::GetLength()));
    EXPECT_FALSE(m.IsEqv(CKVdimension::GetTime()));
    EXPECT_EQ(&m.GetDim(), &CKVdimension::GetLength());
}

TEST(UnitDeathTest, ZeroFactorAbortsAtConstruction) {
    EXPECT_DEATH(CKVunit(0.0, CKVdimension::GetLength()),
                 "KVunit:285: void CKVunit::AssertValid\\(\\) const: Assertion `m_dFactor' failed");
    EXPECT_DEATH(CKVunit("a", "b", 1, 0.0, CKVdimension::GetLength()),
                 "KVunit:285: .*Assertion `m_dFactor' failed");
}

TEST(UnitDeathTest, ScalingByZeroAborts) {
    CKVunit m("meter", "m", 10, 1.0, CKVdimension::GetLength());
    EXPECT_DEATH(m * 0.0, "Assertion `m_dFactor' failed");
    EXPECT_DEATH(0.0 / m, "Assertion `m_dFactor' failed");
}

TEST(UnitDeathTest, UnderflowingPowerAborts) {
    CKVunit tiny(1e-300, CKVdimension::GetLength());
    EXPECT_DEATH(tiny ^ 2.0, "Assertion `m_dFactor' failed");
}

TEST(UnitDeathTest, TwoDimensionsOrNoneAbort) {
    CKVunit m("meter", "m", 10, 1.0, CKVdimension::GetLength());
    m.m_pDimTemp = new CKVdimension(CKVdimension::GetLength());
    EXPECT_DEATH(m.AssertValid(), "KVunit:284: void CKVunit::AssertValid\\(\\) const: Assertion "
                                  "`\\(m_pDimParent == 0\\) != \\(m_pDimTemp == 0\\)' failed");
    m.m_pDimParent = nullptr;
    delete m.m_pDimTemp;
    m.m_pDimTemp = nullptr;
    EXPECT_DEATH(m.GetDim(), "Assertion `\\(m_pDimParent == 0\\) != \\(m_pDimTemp == 0\\)'");
    m.m_pDimParent = &CKVdimension::GetLength();
}

} // namespace
