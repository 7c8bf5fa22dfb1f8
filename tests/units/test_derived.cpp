#include <gtest/gtest.h>

#include <cmath>

#include "unit_fixture.h"
#include "registry_access.h"

namespace {

using xuntest::Define;
using xuntest::RegisterBaseUnits;
using xuntest::RegisterUnit;
using xuntest::Tag;

class Derived : public ::testing::Test {
  protected:
    void SetUp() override {
        RegisterBaseUnits();
        Define("ratio", 100, "NonDimensional");
        Define("m", 1000, "Length");
        Define("km", 1001, "m*1000");
        Define("m2", 1010, "m^2");
        Define("km2", 1011, "km^2");
        Define("m3", 1020, "m^3");
        Define("s", 1100, "Time");
        Define("h", 1101, "s*3600");
        Define("Hz", 1110, "1/s");
        Define("perHour", 1111, "1/h");
        Define("mps", 1200, "m/s");
        Define("kmph", 1201, "km/h");
        Define("m3ps", 1300, "m3/s");
        Define("m3ph", 1301, "m3/h");
        Define("m3ps2", 1302, "m3/(s^2)");
        Define("kmh", 1400, "km*h");
        Define("mps36", 1401, "m*s*3600000");
    }
};

TEST_F(Derived, MultiplyMetreByMetreFindsSquareMetre) {
    int match = -1, eqv = -1;
    double factor = -1;
    ASSERT_EQ(xunUnitMultiply(Tag("m"), Tag("m"), &match, &eqv, &factor), 1);
    EXPECT_EQ(match, 1010);
    EXPECT_EQ(eqv, 1010);
    EXPECT_EQ(factor, 1.0);
}

TEST_F(Derived, MultiplyKilometresFindsSquareKilometre) {
    int match = -1, eqv = -1;
    double factor = -1;
    ASSERT_EQ(xunUnitMultiply(1001, 1001, &match, &eqv, &factor), 1);
    EXPECT_EQ(match, 1011);
    EXPECT_EQ(eqv, 1010);
    EXPECT_EQ(factor, 1e6);
}

TEST_F(Derived, DivideFindsTheQuotient) {
    int match = -1, eqv = -1;
    double factor = -1;
    ASSERT_EQ(xunUnitDivide(1001, 1101, &match, &eqv, &factor), 1);
    EXPECT_EQ(match, 1201);
    EXPECT_EQ(eqv, 1200);
    EXPECT_EQ(factor, 1000.0 / 3600.0);
}

TEST_F(Derived, ResultIsOneWithoutAnExactMatch) {
    int match = -1, eqv = -1;
    double factor = -1;
    // m / h: a speed, but no registered speed has factor 1/3600.
    ASSERT_EQ(xunUnitDivide(1000, 1101, &match, &eqv, &factor), 1);
    EXPECT_EQ(match, 0);
    EXPECT_EQ(eqv, 1200);
    EXPECT_EQ(factor, 1.0 / 3600.0);
}

TEST_F(Derived, PowerZeroFindsTheFirstDimensionlessUnit) {
    int match = -1, eqv = -1;
    double factor = -1;
    ASSERT_EQ(xunUnitPower(1001, &match, &eqv, &factor, 0.0), 1);
    EXPECT_EQ(match, 1);
    EXPECT_EQ(eqv, 1);
    EXPECT_EQ(factor, 1.0);
}

TEST_F(Derived, PowerOfSquareKilometre) {
    int match = -1, eqv = -1;
    double factor = -1;
    ASSERT_EQ(xunUnitPower(1011, &match, &eqv, &factor, 0.5), 1);
    EXPECT_EQ(match, 1001);
    EXPECT_EQ(eqv, 2);
    EXPECT_EQ(factor, 1000.0);
    ASSERT_EQ(xunUnitPower(1000, &match, &eqv, &factor, 3.0), 1);
    EXPECT_EQ(match, 1020);
}

TEST_F(Derived, NoRegisteredDimensionGivesZero) {
    int match = -1, eqv = -1;
    double factor = -1;
    // m3 / (m3/s^2) is s^2, which no registered unit has.
    EXPECT_EQ(xunUnitDivide(1020, 1302, &match, &eqv, &factor), 0);
    EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(xunUnitMultiply(1300, 1300, &match, &eqv, &factor), 0);
    EXPECT_EQ(match, 0);
    EXPECT_EQ(eqv, 0);
    EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(xunUnitPower(1000, &match, &eqv, &factor, 7.0), 0);
    EXPECT_EQ(factor, 1.0);
}

TEST_F(Derived, UnknownUnitsGiveZeroWithInitialOutputs) {
    int match = -1, eqv = -1;
    double factor = -1;
    EXPECT_EQ(xunUnitMultiply(1000, 4242, &match, &eqv, &factor), 0);
    EXPECT_EQ(match, 0);
    EXPECT_EQ(eqv, 0);
    EXPECT_EQ(factor, 1.0);
    match = eqv = -1;
    factor = -1;
    EXPECT_EQ(xunUnitDivide(4242, 1000, &match, &eqv, &factor), 0);
    EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(xunUnitPower(4242, &match, &eqv, &factor, 2.0), 0);
    EXPECT_EQ(match, 0);
}

TEST_F(Derived, MatchToleranceIsOneInATrillion) {
    RegisterUnit("close", 1500, 1000.0 * (1 + 5e-13), 0.0, CKVdimension::GetLength());
    Define("far", 1501, "m*1000.000000003");
    int match = -1, eqv = -1;
    double factor = -1;
    // km * 1 is found as km (exact) first.
    ASSERT_EQ(xunUnitMultiply(1001, 100, &match, &eqv, &factor), 1);
    EXPECT_EQ(match, 1001);
    // 1000.000000003 m is 3e-12 away from km and 1500: only itself matches.
    ASSERT_EQ(xunUnitMultiply(1501, 100, &match, &eqv, &factor), 1);
    EXPECT_EQ(match, 1501);
    ASSERT_EQ(xunUnitMultiply(1500, 100, &match, &eqv, &factor), 1);
    EXPECT_EQ(match, 1001);
}

TEST_F(Derived, IntegrationOfDischargeOverHours) {
    int result = -1, inverse = -1;
    double factor = -1;
    ASSERT_EQ(xunUnitGetIntegrationFactor(1300, 1101, &result, &inverse, &factor), 1);
    EXPECT_EQ(factor, 3600.0);
    EXPECT_EQ(result, 1020);
    EXPECT_EQ(inverse, 1110);
}

TEST_F(Derived, DerivationOfDischargeOverHours) {
    int result = -1, inverse = -1;
    double factor = -1;
    ASSERT_EQ(xunUnitGetDerivationFactor(1300, 1101, &result, &inverse, &factor), 1);
    EXPECT_EQ(factor, 1.0 / 3600.0);
    EXPECT_EQ(result, 1302);
    // unit / (unit / h) is an hour, which s = 1/3600 scales to the second: the
    // first such unit is the base unit Time.
    EXPECT_EQ(inverse, 4);
}

TEST_F(Derived, IntegrationOverSeconds) {
    int result = -1, inverse = -1;
    double factor = -1;
    ASSERT_EQ(xunUnitGetIntegrationFactor(1300, 1100, &result, &inverse, &factor), 1);
    EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(result, 1020);
    EXPECT_EQ(inverse, 1110);
    ASSERT_EQ(xunUnitGetIntegrationFactor(1301, 1101, &result, &inverse, &factor), 1);
    // m3/h over hours: the time slot of m3/h is 1/3600, so s = 3600 * (1/3600).
    EXPECT_EQ(factor, 3600.0 * std::pow(1.0 / 3600.0, -1.0 / -1.0));
    EXPECT_EQ(result, 1020);
}

TEST_F(Derived, SlotsMustAgreeNotOnlyTheOverallFactor) {
    // km*h and m*s*3600000 have the same factor but spread it differently.
    const CKVunit* kmh = xuntest::UnitByKey(1400);
    const CKVunit* mps36 = xuntest::UnitByKey(1401);
    ASSERT_NE(kmh, nullptr);
    ASSERT_NE(mps36, nullptr);
    EXPECT_EQ(kmh->m_dFactor, mps36->m_dFactor);
    int result = -1, inverse = -1;
    double factor = -1;
    // kmph * h: the integral of a speed over hours, a length in km.
    ASSERT_EQ(xunUnitGetIntegrationFactor(1201, 1101, &result, &inverse, &factor), 1);
    EXPECT_EQ(result, 1001);
}

TEST_F(Derived, CompositeVariableGivesZero) {
    int result = -1, inverse = -1;
    double factor = -1;
    EXPECT_EQ(xunUnitGetIntegrationFactor(1020, 1200, &result, &inverse, &factor), 0);
    EXPECT_EQ(result, 1020);
    EXPECT_EQ(inverse, 0);
    EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(xunUnitGetDerivationFactor(1020, 1200, &result, &inverse, &factor), 0);
    EXPECT_EQ(xunUnitGetDerivationFactor(1020, 100, &result, &inverse, &factor), 0);
}

TEST_F(Derived, VariableDimensionMissingFromTheUnitGivesZero) {
    int result = -1, inverse = -1;
    double factor = -1;
    EXPECT_EQ(xunUnitGetDerivationFactor(1000, 1101, &result, &inverse, &factor), 0);
    EXPECT_EQ(result, 1000);
    EXPECT_EQ(inverse, 0);
    EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(xunUnitGetIntegrationFactor(1000, 1101, &result, &inverse, &factor), 0);
}

TEST_F(Derived, UnknownUnitsInIntegration) {
    int result = -1, inverse = -1;
    double factor = -1;
    EXPECT_EQ(xunUnitGetIntegrationFactor(4242, 1101, &result, &inverse, &factor), 0);
    EXPECT_EQ(result, 4242);
    EXPECT_EQ(inverse, 0);
    EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(xunUnitGetDerivationFactor(1300, 4242, &result, &inverse, &factor), 0);
    EXPECT_EQ(result, 1300);
}

} // namespace
