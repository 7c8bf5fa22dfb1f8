#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "unit_fixture.h"
#include "units/KVexpr.h"
#include "registry_access.h"

namespace {

using xuntest::Define;
using xuntest::RegisterBaseUnits;
using xuntest::RegisterUnit;

// One evaluation with its outputs owned by the test.
struct Result {
    bool ok = false;
    std::unique_ptr<CKVunit> unit;
    std::unique_ptr<double> value;
};

Result Eval(const std::string& text) {
    CKVunit* unit = reinterpret_cast<CKVunit*>(0x1);
    double* value = reinterpret_cast<double*>(0x1);
    Result r;
    r.ok = bEvaluateExpression(text.c_str(), &unit, &value);
    r.unit.reset(unit);
    r.value.reset(value);
    return r;
}

std::vector<double> Powers(const CKVunit& u) {
    std::vector<double> p(7);
    u.GetDim().GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
    return p;
}

std::vector<double> Slots(const CKVunit& u) {
    std::vector<double> s(7);
    u.GetFactors(s[0], s[1], s[2], s[3], s[4], s[5], s[6]);
    return s;
}

class Expr : public ::testing::Test {
  protected:
    void SetUp() override {
        RegisterBaseUnits();
        Define("m", 1000, "Length");
        Define("km", 1001, "m*1000");
        Define("s", 1100, "Time");
        Define("h", 1101, "s*3600");
        Define("kelvin", 1200, "Temperature");
        RegisterUnit("degC", 1201, 1.0, 273.15, CKVdimension::GetTemp());
    }
};

TEST_F(Expr, KilometrePerHour) {
    Result r = Eval("km/h");
    ASSERT_TRUE(r.ok);
    ASSERT_TRUE(r.unit);
    EXPECT_FALSE(r.value);
    EXPECT_EQ(r.unit->m_dFactor, 1000.0 / 3600.0);
    EXPECT_EQ(Powers(*r.unit), (std::vector<double>{1, 0, -1, 0, 0, 0, 0}));
    EXPECT_EQ(Slots(*r.unit), (std::vector<double>{1000, 1, 1 / 3600.0, 1, 1, 1, 1}));
    EXPECT_EQ(r.unit->m_dOffset, 0.0);
}

TEST_F(Expr, IntermediateUnitsAreNamedTmpWithKeyOne) {
    Result r = Eval("km");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_EQ(r.unit->m_strDesc, "tmp");
    EXPECT_EQ(r.unit->m_strAbbr, "tmp");
    EXPECT_EQ(r.unit->m_lKey, 1);
    EXPECT_EQ(r.unit->m_strIdent, "");
}

TEST_F(Expr, NumberAlone) {
    Result r = Eval("1000");
    ASSERT_TRUE(r.ok);
    EXPECT_FALSE(r.unit);
    ASSERT_TRUE(r.value);
    EXPECT_EQ(*r.value, 1000.0);
}

TEST_F(Expr, Pi) {
    Result r = Eval("pi");
    ASSERT_TRUE(r.ok && r.value);
    EXPECT_FALSE(r.unit);
    EXPECT_EQ(*r.value, 3.141592653589793);
    Result pm = Eval("pi*km");
    ASSERT_TRUE(pm.ok && pm.unit);
    EXPECT_FALSE(pm.value);
    EXPECT_EQ(pm.unit->m_dFactor, 3.141592653589793 * 1000.0);
}

TEST_F(Expr, RegisteredPiWinsOverTheNumber) {
    RegisterUnit("pi", 1300, 2.0, 0.0, CKVdimension::GetLength());
    Result r = Eval("pi");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_FALSE(r.value);
    EXPECT_EQ(r.unit->m_dFactor, 2.0);
}

TEST_F(Expr, BlankFails) {
    Result r = Eval("m s");
    EXPECT_FALSE(r.ok);
    // What was accumulated before the failure is handed out.
    ASSERT_TRUE(r.unit);
    EXPECT_EQ(r.unit->m_dFactor, 1.0);
}

TEST_F(Expr, MissingClosingParenthesisFails) {
    EXPECT_FALSE(Eval("m*(s").ok);
}

TEST_F(Expr, NoPrecedence) {
    Result r = Eval("m/s^2");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_EQ(Powers(*r.unit), (std::vector<double>{2, 0, -2, 0, 0, 0, 0}));
    Result p = Eval("m/(s^2)");
    ASSERT_TRUE(p.ok && p.unit);
    EXPECT_EQ(Powers(*p.unit), (std::vector<double>{1, 0, -2, 0, 0, 0, 0}));
    Result n = Eval("2+3*4");
    ASSERT_TRUE(n.ok && n.value);
    EXPECT_EQ(*n.value, 14.0);
    Result q = Eval("2*3+4");
    ASSERT_TRUE(q.ok && q.value);
    EXPECT_EQ(*q.value, 10.0);
}

TEST_F(Expr, OffsetsFromPlusAndMinus) {
    Result plus = Eval("kelvin+273.15");
    ASSERT_TRUE(plus.ok && plus.unit);
    EXPECT_FALSE(plus.value);
    EXPECT_EQ(plus.unit->m_dOffset, 273.15);
    EXPECT_EQ(plus.unit->m_dFactor, 1.0);
    Result minus = Eval("kelvin-273.15");
    ASSERT_TRUE(minus.ok && minus.unit);
    EXPECT_EQ(minus.unit->m_dOffset, -273.15);
    Result f = Eval("kelvin*5/9+459.67*5/9");
    ASSERT_TRUE(f.ok && f.unit);
    EXPECT_EQ(f.unit->m_dFactor, 1.0 * 5 / 9);
    EXPECT_EQ(f.unit->m_dOffset, 459.67 * 5 / 9);
}

TEST_F(Expr, IntermediateCopiesDropOffsets) {
    Result r = Eval("degC");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_EQ(r.unit->m_dOffset, 0.0);
    Result twice = Eval("degC+1+2");
    ASSERT_TRUE(twice.ok && twice.unit);
    EXPECT_EQ(twice.unit->m_dOffset, 3.0);
}

TEST_F(Expr, SignsGroupToTheRight) {
    Result neg = Eval("-5");
    ASSERT_TRUE(neg.ok && neg.value);
    EXPECT_FALSE(neg.unit);
    EXPECT_EQ(*neg.value, -5.0);
    Result r = Eval("2-3-4");
    ASSERT_TRUE(r.ok && r.value);
    EXPECT_EQ(*r.value, 3.0);
    Result dd = Eval("2--3");
    ASSERT_TRUE(dd.ok && dd.value);
    EXPECT_EQ(*dd.value, 5.0);
    Result p = Eval("+5");
    ASSERT_TRUE(p.ok && p.value);
    EXPECT_EQ(*p.value, 5.0);
}

TEST_F(Expr, NumberPlusUnitKeepsTheNumberAndDropsTheOffset) {
    Result r = Eval("2+km");
    ASSERT_TRUE(r.ok);
    ASSERT_TRUE(r.unit);
    ASSERT_TRUE(r.value);
    EXPECT_EQ(*r.value, 2.0);
    EXPECT_EQ(r.unit->m_dFactor, 1000.0);
    EXPECT_EQ(r.unit->m_dOffset, 0.0);
    EXPECT_EQ(r.unit->m_strDesc, "tmp");
    Result m = Eval("2-degC");
    ASSERT_TRUE(m.ok && m.unit && m.value);
    EXPECT_EQ(m.unit->m_dOffset, 0.0);
    EXPECT_EQ(*m.value, 2.0);
    // The registered unit on the right is left as it was.
    EXPECT_EQ(xuntest::UnitByIdent("degC")->m_dOffset, 273.15);
}

TEST_F(Expr, UnitsOnBothSidesOfASignFail) {
    EXPECT_FALSE(Eval("m+s").ok);
    EXPECT_FALSE(Eval("m-km").ok);
    EXPECT_FALSE(Eval("-m").ok);
}

TEST_F(Expr, FailedRightHandSideSkipsTheSign) {
    // The empty rest after a trailing sign fails; the sign is skipped and the
    // scan ends with what it had.
    Result r = Eval("kelvin-");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_EQ(r.unit->m_dOffset, 0.0);
    EXPECT_FALSE(Eval("2-x").ok);
    // "2*-3 x": the rest "3 x" fails having read 3, which becomes the operand
    // of '*'; the scan then reads 3 again after the sign: two numbers in a row.
    Result twice = Eval("2*-3 x");
    EXPECT_FALSE(twice.ok);
    ASSERT_TRUE(twice.value);
    EXPECT_EQ(*twice.value, 6.0);
}

TEST_F(Expr, ScientificNotation) {
    Result r = Eval("1.5e-3*km");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_EQ(r.unit->m_dFactor, 1000.0 * 1.5e-3);
    Result e3 = Eval("1e3");
    ASSERT_TRUE(e3.ok && e3.value);
    EXPECT_EQ(*e3.value, 1000.0);
    Result em3 = Eval("1e-3");
    ASSERT_TRUE(em3.ok && em3.value);
    EXPECT_EQ(*em3.value, 0.001);
    Result cap = Eval("2E2");
    ASSERT_TRUE(cap.ok && cap.value);
    EXPECT_EQ(*cap.value, 200.0);
}

TEST_F(Expr, ExponentLetterDReadsAsItsMantissa) {
    Result r = Eval("1d3");
    ASSERT_TRUE(r.ok && r.value);
    EXPECT_EQ(*r.value, 1.0);
    Result d = Eval("2.5D-2");
    ASSERT_TRUE(d.ok && d.value);
    EXPECT_EQ(*d.value, 2.5);
}

TEST_F(Expr, ExponentWithoutDigitsFails) {
    EXPECT_FALSE(Eval("1e+3").ok);
    EXPECT_FALSE(Eval("1e").ok);
    EXPECT_FALSE(Eval("1e-").ok);
    EXPECT_FALSE(Eval("3d*m").ok);
}

TEST_F(Expr, SecondDecimalSymbolEndsTheNumber) {
    EXPECT_FALSE(Eval("1.5.3").ok);
}

TEST_F(Expr, TrailingDecimalSymbol) {
    Result r = Eval("2.");
    ASSERT_TRUE(r.ok && r.value);
    EXPECT_EQ(*r.value, 2.0);
}

TEST_F(Expr, EmptyTextFails) {
    Result r = Eval("");
    EXPECT_FALSE(r.ok);
    EXPECT_FALSE(r.unit);
    EXPECT_FALSE(r.value);
}

TEST_F(Expr, UnknownNameFails) {
    EXPECT_FALSE(Eval("furlong").ok);
    EXPECT_FALSE(Eval("M").ok);
    EXPECT_FALSE(Eval("km*mile").ok);
}

TEST_F(Expr, StrayCharactersFail) {
    EXPECT_FALSE(Eval("m,s").ok);
    EXPECT_FALSE(Eval("_m").ok);
    EXPECT_FALSE(Eval(".5").ok);
    EXPECT_FALSE(Eval("m)").ok);
    EXPECT_FALSE(Eval(" m").ok);
    EXPECT_FALSE(Eval("m\xc3\xa9").ok);
}

TEST_F(Expr, TwoOperandsInARowFail) {
    EXPECT_FALSE(Eval("m(s)").ok);
    EXPECT_FALSE(Eval("2(3)").ok);
    EXPECT_FALSE(Eval("(m)(s)").ok);
}

TEST_F(Expr, UnitExponentFails) {
    EXPECT_FALSE(Eval("m^s").ok);
    EXPECT_FALSE(Eval("2^m").ok);
}

TEST_F(Expr, NumberFollowedByNameKeepsBoth) {
    Result r = Eval("2km");
    ASSERT_TRUE(r.ok);
    ASSERT_TRUE(r.unit && r.value);
    EXPECT_EQ(*r.value, 2.0);
    EXPECT_EQ(r.unit->m_dFactor, 1000.0);
    Result sq = Eval("3km^2");
    ASSERT_TRUE(sq.ok && sq.unit && sq.value);
    EXPECT_EQ(*sq.value, 3.0);
    EXPECT_EQ(sq.unit->m_dFactor, 1e6);
}

TEST_F(Expr, NumberTimesUnitDropsTheNumber) {
    Result r = Eval("2*km");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_FALSE(r.value);
    EXPECT_EQ(r.unit->m_dFactor, 2000.0);
    EXPECT_EQ(Slots(*r.unit), (std::vector<double>{2000, 1, 1, 1, 1, 1, 1}));
}

TEST_F(Expr, NumberDividedByUnit) {
    Result r = Eval("2/h");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_FALSE(r.value);
    EXPECT_EQ(r.unit->m_dFactor, (1.0 / 3600.0) * 2.0);
    EXPECT_EQ(Powers(*r.unit), (std::vector<double>{0, 0, -1, 0, 0, 0, 0}));
}

TEST_F(Expr, UnitTimesAndByNumber) {
    Result t = Eval("km*2");
    ASSERT_TRUE(t.ok && t.unit);
    EXPECT_FALSE(t.value);
    EXPECT_EQ(t.unit->m_dFactor, 2000.0);
    Result d = Eval("km/4");
    ASSERT_TRUE(d.ok && d.unit);
    EXPECT_EQ(d.unit->m_dFactor, 250.0);
    EXPECT_EQ(Slots(*d.unit)[0], 250.0);
}

TEST_F(Expr, NumberArithmetic) {
    Result m = Eval("2*3");
    ASSERT_TRUE(m.ok && m.value);
    EXPECT_EQ(*m.value, 6.0);
    Result d = Eval("6/4");
    ASSERT_TRUE(d.ok && d.value);
    EXPECT_EQ(*d.value, 1.5);
    Result p = Eval("2^10");
    ASSERT_TRUE(p.ok && p.value);
    EXPECT_EQ(*p.value, 1024.0);
}

TEST_F(Expr, UnitProductAndQuotient) {
    Result r = Eval("km*h");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_EQ(r.unit->m_dFactor, 3.6e6);
    EXPECT_EQ(Powers(*r.unit), (std::vector<double>{1, 0, 1, 0, 0, 0, 0}));
    Result sq = Eval("m^0.5");
    ASSERT_TRUE(sq.ok && sq.unit);
    EXPECT_EQ(Powers(*sq.unit), (std::vector<double>{0.5, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Expr, LeadingAndTrailingOperatorsAreIgnored) {
    Result lead = Eval("*km");
    ASSERT_TRUE(lead.ok && lead.unit);
    EXPECT_EQ(lead.unit->m_dFactor, 1000.0);
    Result trail = Eval("km/");
    ASSERT_TRUE(trail.ok && trail.unit);
    EXPECT_EQ(trail.unit->m_dFactor, 1000.0);
    Result caret = Eval("^2");
    ASSERT_TRUE(caret.ok && caret.value);
    EXPECT_EQ(*caret.value, 2.0);
}

TEST_F(Expr, Parentheses) {
    Result r = Eval("(km)");
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_EQ(r.unit->m_dFactor, 1000.0);
    Result n = Eval("((2))");
    ASSERT_TRUE(n.ok && n.value);
    EXPECT_EQ(*n.value, 2.0);
    Result inner = Eval("m/(s*(2+1))");
    ASSERT_TRUE(inner.ok && inner.unit);
    EXPECT_EQ(inner.unit->m_dFactor, 1.0 / 3.0);
    EXPECT_FALSE(Eval("()").ok);
    EXPECT_FALSE(Eval("(m").ok);
    EXPECT_FALSE(Eval("(x)").ok);
}

TEST_F(Expr, NameAndNumberLimits) {
    const std::string longest(kExprMaxNameLength, 'q');
    const std::string tooLong(kExprMaxNameLength + 1, 'q');
    RegisterUnit(longest.c_str(), 1400, 5.0, 0.0, CKVdimension::GetLength());
    RegisterUnit(tooLong.c_str(), 1401, 6.0, 0.0, CKVdimension::GetLength());
    Result ok = Eval(longest);
    ASSERT_TRUE(ok.ok && ok.unit);
    EXPECT_EQ(ok.unit->m_dFactor, 5.0);
    EXPECT_FALSE(Eval(tooLong).ok);
    EXPECT_FALSE(Eval(std::string(100000, 'a')).ok);

    const std::string digits(kExprMaxNumberLength, '1');
    Result n = Eval(digits);
    ASSERT_TRUE(n.ok && n.value);
    EXPECT_EQ(*n.value, 11111111111111111111111.0);
    EXPECT_FALSE(Eval(digits + "1").ok);
    EXPECT_FALSE(Eval("1.00000000000000000000000").ok);
}

// Nesting is bounded by memory only: deep texts give the designed result.
TEST_F(Expr, DeepNestingEvaluates) {
    const int depth = 100000;
    Result deep = Eval(std::string(depth, '(') + "km" + std::string(depth, ')'));
    ASSERT_TRUE(deep.ok && deep.unit);
    EXPECT_EQ(deep.unit->m_dFactor, 1000.0);
    EXPECT_FALSE(deep.value);
    // Each '-' negates the rest: an even number of them gives 5 back.
    Result signs = Eval(std::string(100000, '-') + "5");
    ASSERT_TRUE(signs.ok && signs.value);
    EXPECT_EQ(*signs.value, 5.0);
    Result odd = Eval(std::string(99999, '-') + "5");
    ASSERT_TRUE(odd.ok && odd.value);
    EXPECT_EQ(*odd.value, -5.0);
    // A missing ')' deep inside still fails.
    EXPECT_FALSE(Eval(std::string(depth, '(') + "m" + std::string(depth - 1, ')')).ok);
}

// Texts whose failed signs make the scan read the rest again: remembered
// outcomes keep them quick, and they fail as designed.
TEST_F(Expr, FailingSignRunsFail) {
    EXPECT_FALSE(Eval(std::string(60, '-') + "x").ok);
    EXPECT_FALSE(Eval("1" + std::string(60, '+') + "x").ok);
    EXPECT_FALSE(Eval(std::string(40, '(') + std::string(40, '-') + "x" + std::string(40, ')')).ok);
    EXPECT_FALSE(Eval(std::string(200000, '-') + "x").ok);
    EXPECT_FALSE(Eval("1" + std::string(200000, '+') + "x").ok);
}

// A megabyte of nested parentheses around a unit, and a megabyte of "+1"
// terms after a unit.
TEST_F(Expr, MegabyteTexts) {
    const size_t pairs = 512 * 1024;
    Result nested = Eval(std::string(pairs, '(') + "km" + std::string(pairs, ')'));
    ASSERT_TRUE(nested.ok && nested.unit);
    EXPECT_EQ(nested.unit->m_dFactor, 1000.0);
    EXPECT_EQ(nested.unit->m_dOffset, 0.0);
    EXPECT_EQ(Powers(*nested.unit), (std::vector<double>{1, 0, 0, 0, 0, 0, 0}));

    const size_t terms = 512 * 1024;
    std::string sum = "kelvin";
    for (size_t i = 0; i < terms; ++i)
        sum += "+1";
    Result offset = Eval(sum);
    ASSERT_TRUE(offset.ok && offset.unit);
    EXPECT_EQ(offset.unit->m_dFactor, 1.0);
    EXPECT_EQ(offset.unit->m_dOffset, static_cast<double>(terms));
    EXPECT_FALSE(offset.value);
}

// Valid expressions that a cap on nesting or on nested evaluations used to
// make fail.
TEST_F(Expr, LongValidExpressions) {
    std::string plusOnes = "kelvin";
    for (int i = 0; i < 300; ++i)
        plusOnes += "+1";
    Result r = Eval(plusOnes);
    ASSERT_TRUE(r.ok && r.unit);
    EXPECT_EQ(r.unit->m_dOffset, 300.0);

    Result nested = Eval(std::string(400, '(') + "h" + std::string(400, ')'));
    ASSERT_TRUE(nested.ok && nested.unit);
    EXPECT_EQ(nested.unit->m_dFactor, 3600.0);

    std::string factors = "(m)";
    for (int i = 1; i < 3000; ++i)
        factors += "*(m)";
    Result product = Eval(factors);
    ASSERT_TRUE(product.ok && product.unit);
    EXPECT_EQ(Powers(*product.unit), (std::vector<double>{3000, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(product.unit->m_dFactor, 1.0);

    // Sign pairs before a number, and before a unit with an offset term.
    Result pairs = Eval(std::string("+-+-+-+-+-+-+-+-") + "5");
    ASSERT_TRUE(pairs.ok && pairs.value);
    EXPECT_EQ(*pairs.value, 5.0);
    Result unitPairs = Eval("kelvin" + std::string("+-+-+-+-+-+-") + "2");
    ASSERT_TRUE(unitPairs.ok && unitPairs.unit);
    EXPECT_EQ(unitPairs.unit->m_dOffset, 2.0);
}

TEST(ExprDecimalSymbol, TakenFromTheLocaleOnFirstUse) {
    EXPECT_EQ(szDecimalSymbol, ' ');
    CKVunit* unit = nullptr;
    double* value = nullptr;
    EXPECT_TRUE(bEvaluateExpression("1.25", &unit, &value));
    EXPECT_EQ(szDecimalSymbol, '.');
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(*value, 1.25);
    EXPECT_EQ(unit, nullptr);
    delete value;
}

TEST(ExprDecimalSymbol, AnotherSymbolChangesNumberTokens) {
    szDecimalSymbol = ',';
    CKVunit* unit = nullptr;
    double* value = nullptr;
    // With ',' as the symbol, '.' is a stray character.
    EXPECT_FALSE(bEvaluateExpression("1.5", &unit, &value));
    delete unit;
    delete value;
}

TEST(ExprEmptyRegistry, NamesFailAndNumbersWork) {
    CKVunit* unit = nullptr;
    double* value = nullptr;
    EXPECT_FALSE(bEvaluateExpression("Length", &unit, &value));
    EXPECT_EQ(unit, nullptr);
    EXPECT_EQ(value, nullptr);
    EXPECT_TRUE(bEvaluateExpression("pi*2", &unit, &value));
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(*value, 3.141592653589793 * 2);
    delete value;
}

} // namespace
