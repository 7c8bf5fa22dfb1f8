// The evaluator's memory: a long expression nested deep takes memory linear
// in its length (no copy of the text per level of nesting), and running out
// of memory while it is evaluated makes xunUnitNew fail with a reason
// instead of ending the host's process. The program counts the bytes that
// are live through replaced allocation functions; it is a process of its
// own, like every test.
#include <gtest/gtest.h>

#include <malloc.h>

#include <cstdlib>
#include <new>
#include <string>

#include "registry_access.h"
#include "unit_fixture.h"
#include "xun.h"

namespace {

// The bytes live now, their peak since the last reset, and the most that may
// be live (an allocation beyond it fails as when memory runs out).
std::size_t Live_ = 0;
std::size_t Peak_ = 0;
std::size_t Cap_ = static_cast<std::size_t>(-1);

void* Allocate(std::size_t size) {
    if (size > Cap_ || Live_ > Cap_ - size)
        return nullptr;
    void* p = std::malloc(size == 0 ? 1 : size);
    if (p == nullptr)
        return nullptr;
    Live_ += malloc_usable_size(p);
    if (Live_ > Peak_)
        Peak_ = Live_;
    return p;
}

__attribute__((noinline)) void Release(void* p) {
    if (p == nullptr)
        return;
    Live_ -= malloc_usable_size(p);
    std::free(p);
}

} // namespace

#include "replaced_allocation.h"

namespace {

const int kDepth = 150;

// depth parentheses around "kelvin" and terms: "+1" (each sign starts the
// evaluation of the rest, a frame on the evaluator's stack) or "*1" (read in
// one scan).
std::string Nested(int depth, const char* term, std::size_t terms) {
    std::string text(depth, '(');
    text += "kelvin";
    text.reserve(text.size() + 2 * terms + depth);
    for (std::size_t i = 0; i < terms; ++i)
        text += term;
    text.append(depth, ')');
    return text;
}

// The most bytes live at once while xunUnitNew registers the text as a new
// unit (the unit and its copy of the text included).
std::size_t PeakOfUnitNew(const char* ident, const std::string& text) {
    const std::size_t before = Live_;
    Peak_ = Live_;
    EXPECT_EQ(xunUnitNew(ident, ident, ident, text.c_str()), 1) << ident;
    return Peak_ - before;
}

class ExprMemory : public ::testing::Test {
  protected:
    void SetUp() override {
        xuntest::RegisterBaseUnits();
        xuntest::Define("kelvin", 1200, "Temperature");
    }
    void TearDown() override { Cap_ = static_cast<std::size_t>(-1); }
};

// Two megabytes of text at depth 150 take a few bytes per character: the
// text, its copy in the unit and the index of the parentheses (a copy of
// the rest of the text per level would take 150 per character).
TEST_F(ExprMemory, DeepLongProductTakesMemoryLinearInItsLength) {
    const std::size_t terms = 1000000;
    const std::string text = Nested(kDepth, "*1", terms);
    const std::size_t used = PeakOfUnitNew("UnitLong", text);
    EXPECT_LE(used, 16 * text.size()) << used << " bytes for " << text.size() << " characters";
    const CKVunit* unit = xuntest::UnitByIdent("UnitLong");
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->m_dFactor, 1.0);
    EXPECT_EQ(unit->m_strExpr, text);
}

// Each sign evaluates the rest of the text as a frame of its own: a frame
// holds a range of the text, never a copy, so the same two megabytes of
// terms take the memory at depth 150 that they take at depth 0, but for the
// index of the parentheses (one position per character) and the 150 frames
// of the parentheses.
TEST_F(ExprMemory, DepthAddsNoMemoryPerCharacter) {
    const std::size_t terms = 1000000;
    const std::string flat = Nested(0, "+1", terms);
    const std::string deep = Nested(kDepth, "+1", terms);
    const std::size_t flatUsed = PeakOfUnitNew("UnitFlat", flat);
    const std::size_t deepUsed = PeakOfUnitNew("UnitDeep", deep);
    EXPECT_LE(deepUsed, flatUsed + 9 * deep.size() + 1024 * kDepth)
        << deepUsed << " bytes at depth 150, " << flatUsed << " at depth 0";
    // The designed results: the terms give the offset; the parentheses give
    // a copy of the unit, which drops it.
    EXPECT_EQ(xuntest::UnitByIdent("UnitFlat")->m_dOffset, static_cast<double>(terms));
    EXPECT_EQ(xuntest::UnitByIdent("UnitDeep")->m_dOffset, 0.0);
    EXPECT_EQ(xuntest::UnitByIdent("UnitDeep")->m_dFactor, 1.0);
}

// With memory capped below what the evaluation needs, xunUnitNew fails with
// XUN_ERR_NO_MEMORY and its name in the message, registers nothing, and
// succeeds once memory is there again.
TEST_F(ExprMemory, RunningOutOfMemoryIsAFailedCallWithAReason) {
    const std::string text = Nested(kDepth, "+1", 200000);
    const std::size_t units = xuntest::Registries().units.Count();
    Cap_ = Live_ + text.size() / 2;
    const int result = xunUnitNew("UnitLong", "long", "lg", text.c_str());
    Cap_ = static_cast<std::size_t>(-1);
    EXPECT_EQ(result, 0);
    const char* message = nullptr;
    EXPECT_EQ(xunGetLastError(&message), XUN_ERR_NO_MEMORY);
    EXPECT_STREQ(message, "xunUnitNew: out of memory");
    EXPECT_EQ(xuntest::Registries().units.Count(), units);
    EXPECT_EQ(xuntest::UnitByIdent("UnitLong"), nullptr);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
    ASSERT_EQ(xunUnitNew("UnitLong", "long", "lg", text.c_str()), 1);
    EXPECT_EQ(xuntest::UnitByIdent("UnitLong")->m_strExpr, text);
}

} // namespace
