// The assertion hook may throw (xunSetAssertHook_): the fuzz targets turn
// every assertion into an exception that way. What the failing operation had
// allocated must then be freed on the way out. These cases leaked before:
// the fuzz targets found them.
//
// The heap in use is measured with the C library's allocator statistics, so
// a leak shows as growth over many repetitions. (Under AddressSanitizer the
// C library's allocator is not the one in use and the statistics stay
// still; the fuzz targets' leak checks cover these paths there.)
#include <gtest/gtest.h>

#include <malloc.h>

#include <string>

#include "common/Assert.h"
#include "units/KVexpr.h"
#include "units/KVunit.h"
#include "units/unit_fixture.h"
#include "registry_access.h"

namespace {

struct Thrown {
    std::string expr;
};

void ThrowingHook(const char* expr, const char*, unsigned, const char*) {
    throw Thrown{expr};
}

size_t HeapInUse() {
    return mallinfo2().uordblks;
}

// Runs the operation once to warm up, then `times` times, and returns how
// much more heap is in use afterwards. Each run must throw the assertion
// "m_dFactor".
template <class Operation> long GrowthOver(int times, Operation operation) {
    const auto runOnce = [&operation]() {
        try {
            operation();
            ADD_FAILURE() << "no assertion";
        } catch (const Thrown& thrown) {
            EXPECT_EQ(thrown.expr, "m_dFactor");
        }
    };
    runOnce();
    const size_t before = HeapInUse();
    for (int i = 0; i < times; ++i)
        runOnce();
    return static_cast<long>(HeapInUse()) - static_cast<long>(before);
}

class ThrowingAssertions : public ::testing::Test {
  protected:
    void SetUp() override { m_previous = xunSetAssertHook_(&ThrowingHook); }
    void TearDown() override { xunSetAssertHook_(m_previous); }

  private:
    XunAssertHook m_previous = nullptr;
};

// Far below what one lost dimension (or expression copy) per run would add.
const long kNoGrowth = 1024;

TEST_F(ThrowingAssertions, UnitOfZeroFactorFreesTheDimensionItAllocated) {
    const long growth = GrowthOver(2000, [] { CKVunit unit(0.0, CKVdimension::GetLength()); });
    EXPECT_LT(growth, kNoGrowth);
}

TEST_F(ThrowingAssertions, CopiesOfAnInvalidUnitFreeTheirDimension) {
    // A unit that owns its dimension, made invalid afterwards.
    CKVunit source(2.0, CKVdimension::GetLength() * CKVdimension::GetTime());
    ASSERT_NE(source.m_pDimTemp, nullptr);
    source.m_dFactor = 0.0;
    EXPECT_LT(GrowthOver(2000, [&source] { CKVunit copy(source); }), kNoGrowth);
    EXPECT_LT(GrowthOver(2000, [&source] { CKVunit copy("tmp", "tmp", 1, source); }), kNoGrowth);
    source.m_dFactor = 2.0;
}

TEST_F(ThrowingAssertions, ParenthesisWhoseEvaluationStopsFreesItsCopy) {
    xuntest::RegisterUnit("UnitMeter", 1000, 1.0, 0.0, CKVdimension::GetLength());
    // The assertion comes from inside the parentheses (a zero factor), after
    // the evaluator copied their 800-character content.
    std::string expr = "(UnitMeter*0";
    for (int i = 0; i < 400; ++i)
        expr += "*1";
    expr += ")";
    CKVunit* unit = nullptr;
    double* value = nullptr;
    const long growth = GrowthOver(200, [&] { bEvaluateExpression(expr.c_str(), &unit, &value); });
    EXPECT_LT(growth, kNoGrowth);
    // The outputs were cleared on entry and nothing was handed out.
    EXPECT_EQ(unit, nullptr);
    EXPECT_EQ(value, nullptr);
}

TEST_F(ThrowingAssertions, PowerThatUnderflowsLeavesNothingBehind) {
    xuntest::RegisterUnit("UnitTiny", 1001, 1e-7, 0.0, CKVdimension::GetLength());
    int match = 0, eqv = 0;
    double factor = 0;
    EXPECT_LT(GrowthOver(500, [&] { xunUnitPower(1001, &match, &eqv, &factor, 227.0); }),
              kNoGrowth);
}

} // namespace
