#include <gtest/gtest.h>

#include <memory>

#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

#include "unit_fixture.h"
#include "registry_access.h"

namespace {

using xuntest::Define;
using xuntest::RegisterBaseUnits;
using xuntest::RegisterUnit;
using xuntest::Tag;

const char* const kUntouched = "untouched";

std::vector<std::string> WalkAll() {
    std::vector<std::string> idents;
    int tag = 0;
    const char* key = nullptr;
    for (int prev = 0; xunGetNextUnit(prev, &tag, &key); prev = tag) {
        const char* ident = nullptr;
        EXPECT_EQ(xunGetUnitIdent(tag, &ident), 1);
        idents.push_back(ident);
    }
    return idents;
}

std::vector<int> WalkEqv(int reference) {
    std::vector<int> tags;
    int tag = 0;
    const char* key = nullptr;
    for (int prev = 0; xunGetNextEqvUnit(reference, prev, &tag, &key); prev = tag)
        tags.push_back(tag);
    return tags;
}

TEST(UnitRegistry, GetAllOnEmptyRegistryLeavesTheOutput) {
    char sentinel = 'x';
    char* list = &sentinel;
    EXPECT_EQ(xunUnitGetAll(&list), 0);
    EXPECT_EQ(list, &sentinel);
}

TEST(UnitRegistry, GetAllJoinsIdentsInListOrder) {
    RegisterUnit("a", 10, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("b", 5, 1.0, 0.0, CKVdimension::GetTime());
    char* list = nullptr;
    ASSERT_EQ(xunUnitGetAll(&list), 1);
    EXPECT_STREQ(list, "a;b;");
    std::free(list);
}

TEST(UnitRegistry, AddUnitRefusesDuplicateKeyOrIdent) {
    CKVunit* a = RegisterUnit("a", 10, 1.0, 0.0, CKVdimension::GetLength());
    std::unique_ptr<CKVunit> sameKey(new CKVunit("other", "o", 10, 2.0, CKVdimension::GetLength()));
    sameKey->m_strIdent = "other";
    EXPECT_FALSE(xuntest::Registries().units.Add(sameKey, false));
    EXPECT_NE(sameKey, nullptr);
    std::unique_ptr<CKVunit> sameIdent(new CKVunit("a", "a", 11, 2.0, CKVdimension::GetLength()));
    sameIdent->m_strIdent = "a";
    EXPECT_FALSE(xuntest::Registries().units.Add(sameIdent, true));
    EXPECT_NE(sameIdent, nullptr);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
    EXPECT_EQ(xuntest::Registries().units.Count(), 1u);
    EXPECT_EQ(xuntest::UnitByKey(10), a);
    EXPECT_EQ(xuntest::UnitByKey(11), nullptr);
    EXPECT_EQ(xuntest::UnitByIdent("other"), nullptr);
}

TEST(UnitRegistry, AddAtFrontGoesBeforeAllOthers) {
    RegisterUnit("a", 10, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("b", 11, 1.0, 0.0, CKVdimension::GetLength());
    CKVunit* c = new CKVunit("c", "c", 12, 1.0, CKVdimension::GetLength());
    c->m_strIdent = "c";
    EXPECT_EQ(xuntest::AddUnit(c, 1), 1);
    EXPECT_EQ(WalkAll(), (std::vector<std::string>{"c", "a", "b"}));
}

TEST(UnitRegistry, FailedLookupsLeaveNothingBehind) {
    int tag = 7;
    EXPECT_EQ(xunGetUnitTagFromIdent("late", &tag), 0);
    EXPECT_EQ(tag, 7);
    const char* key = kUntouched;
    EXPECT_EQ(xunGetUnitKey(42, &key), 0);
    EXPECT_EQ(key, kUntouched);
    RegisterUnit("late", 42, 1.0, 0.0, CKVdimension::GetLength());
    EXPECT_EQ(xunGetUnitTagFromIdent("late", &tag), 1);
    EXPECT_EQ(tag, 42);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

TEST(UnitRegistry, UnitNewTakesKeysFrom100000) {
    RegisterBaseUnits();
    RegisterUnit("big", 2500, 1.0, 0.0, CKVdimension::GetLength());
    ASSERT_EQ(xunUnitNew("km", "kilometer", "km", "Length*1000"), 1);
    EXPECT_EQ(Tag("km"), 100000);
    ASSERT_EQ(xunUnitNew("mm", "millimeter", "mm", "Length/1000"), 1);
    EXPECT_EQ(Tag("mm"), 100001);
    ASSERT_EQ(xunUnitNew("cm", "centimeter", "cm", "Length/100"), 1);
    EXPECT_EQ(Tag("cm"), 100002);
}

TEST(UnitRegistry, UnitNewCountsUpFromTheLargestKey) {
    RegisterBaseUnits();
    RegisterUnit("far", 200000, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("near", 100000, 1.0, 0.0, CKVdimension::GetLength());
    ASSERT_EQ(xunUnitNew("x", "x", "x", "Length"), 1);
    EXPECT_EQ(Tag("x"), 200001);
}

// The registry keeps its largest key; when the unit of the largest key
// leaves, the next largest one counts.
TEST(UnitRegistry, UnitNewCountsOnFromTheLargestKeyLeft) {
    RegisterUnit("a", 100005, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("b", 100009, 1.0, 0.0, CKVdimension::GetLength());
    EXPECT_NE(xuntest::Registries().units.Remove(xuntest::UnitByKey(100009)), nullptr);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
    ASSERT_EQ(xunUnitNew("x", "x", "x", "a"), 1);
    EXPECT_EQ(Tag("x"), 100006);
    EXPECT_NE(xuntest::Registries().units.Remove(xuntest::UnitByKey(100006)), nullptr);
    EXPECT_NE(xuntest::Registries().units.Remove(xuntest::UnitByKey(100005)), nullptr);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
    RegisterUnit("c", 7, 1.0, 0.0, CKVdimension::GetLength());
    ASSERT_EQ(xunUnitNew("y", "y", "y", "c"), 1);
    EXPECT_EQ(Tag("y"), 100000);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

// A run-time key must cross the interface as the unit's own int tag: after a
// largest key of INT_MAX or LONG_MAX (registered from a file) none is left,
// and xunUnitNew fails with XUN_ERR_LIMIT instead of counting on past it.
TEST(UnitRegistry, UnitNewRefusesKeysBeyondTheInt) {
    const long largest[] = {INT_MAX, static_cast<long>(INT_MAX) + 1, LONG_MAX};
    for (long key : largest) {
        RegisterUnit("top", key, 1.0, 0.0, CKVdimension::GetLength());
        const std::size_t count = xuntest::Registries().units.Count();
        xunClearLastError();
        EXPECT_EQ(xunUnitNew("x", "x", "x", "top"), 0) << key;
        const char* message = nullptr;
        EXPECT_EQ(xunGetLastError(&message), XUN_ERR_LIMIT) << key;
        EXPECT_STREQ(message, "xunUnitNew: no key is left for a new unit (the largest key in use "
                              "is the largest int)");
        EXPECT_EQ(xuntest::Registries().units.Count(), count);
        EXPECT_EQ(xuntest::UnitByIdent("x"), nullptr);
        EXPECT_NE(xuntest::Registries().units.Remove(xuntest::UnitByKey(key)), nullptr);
        EXPECT_EQ(xuntest::BrokenInvariant(), "");
    }
}

// The last key left is INT_MAX itself, and that unit converts by its tag.
TEST(UnitRegistry, UnitNewTakesTheLargestIntAndItConverts) {
    RegisterUnit("m", INT_MAX - 1, 1.0, 0.0, CKVdimension::GetLength());
    ASSERT_EQ(xunUnitNew("km", "kilometre", "km", "m*1000"), 1);
    EXPECT_EQ(Tag("km"), INT_MAX);
    double x = 0;
    ASSERT_EQ(xunConvertUnit(INT_MAX, INT_MAX - 1, &x, 2.5), 1);
    EXPECT_EQ(x, 2500.0);
    EXPECT_EQ(xunUnitNew("mm", "millimetre", "mm", "m/1000"), 0);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_LIMIT);
}

TEST(UnitRegistry, UnitNewSetsNamesAndKeepsTheExpression) {
    RegisterBaseUnits();
    ASSERT_EQ(xunUnitNew("degF", "degree Fahrenheit", "F", "Temperature*5/9+459.67*5/9"), 1);
    const CKVunit* u = xuntest::UnitByIdent("degF");
    ASSERT_NE(u, nullptr);
    EXPECT_EQ(u->m_strDesc, "degree Fahrenheit");
    EXPECT_EQ(u->m_strAbbr, "F");
    EXPECT_EQ(u->m_strExpr, "Temperature*5/9+459.67*5/9");
    EXPECT_EQ(u->m_lKey, 100000);
    EXPECT_EQ(u->m_dFactor, 1.0 * 5 / 9);
    EXPECT_EQ(u->m_dOffset, 459.67 * 5 / 9);
}

TEST(UnitRegistry, UnitNewRefusesBadExpressionsAndTakenIdents) {
    RegisterBaseUnits();
    EXPECT_EQ(xunUnitNew("bad", "bad", "b", "Length*"), 1);
    EXPECT_EQ(xunUnitNew("bad2", "bad", "b", "Furlong"), 0);
    EXPECT_EQ(xunUnitNew("num", "number", "n", "1000"), 0);
    EXPECT_EQ(xunUnitNew("empty", "empty", "e", ""), 0);
    const size_t count = xuntest::Registries().units.Count();
    EXPECT_EQ(xunUnitNew("Length", "again", "l", "Length*2"), 0);
    EXPECT_EQ(xuntest::Registries().units.Count(), count);
    EXPECT_EQ(xuntest::UnitByIdent("Length")->m_dFactor, 1.0);
}

TEST(UnitRegistryDeathTest, UnitNewWithNullTextThrows) {
    // A host calling through the C interface cannot catch the exception: it
    // terminates the process, as a noexcept frame does here.
    auto call = [](const char* ident, const char* key, const char* abbr,
                   const char* expr) noexcept { xunUnitNew(ident, key, abbr, expr); };
    EXPECT_DEATH(call(nullptr, "k", "a", "Length"), "basic_string::_M_construct null not valid");
    EXPECT_DEATH(call("i", nullptr, "a", "Length"), "basic_string::_M_construct null not valid");
    EXPECT_DEATH(call("i", "k", nullptr, "Length"), "basic_string::_M_construct null not valid");
    EXPECT_DEATH(call("i", "k", "a", nullptr), "basic_string::_M_construct null not valid");
}

TEST(UnitRegistry, KeyIdentAndAbbreviation) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    const char* text = kUntouched;
    ASSERT_EQ(xunGetUnitKey(1000, &text), 1);
    EXPECT_STREQ(text, "meter");
    ASSERT_EQ(xunGetUnitIdent(1000, &text), 1);
    EXPECT_STREQ(text, "m");
    ASSERT_EQ(xunGetUnitAbbreviation(1000, &text), 1);
    EXPECT_STREQ(text, "m");
    text = kUntouched;
    EXPECT_EQ(xunGetUnitKey(1001, &text), 0);
    EXPECT_EQ(xunGetUnitIdent(-1, &text), 0);
    EXPECT_EQ(xunGetUnitAbbreviation(0, &text), 0);
    EXPECT_EQ(text, kUntouched);
}

TEST(UnitRegistry, TagFromIdent) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    int tag = -7;
    ASSERT_EQ(xunGetUnitTagFromIdent("m", &tag), 1);
    EXPECT_EQ(tag, 1000);
    tag = -7;
    EXPECT_EQ(xunGetUnitTagFromIdent("M", &tag), 0);
    EXPECT_EQ(xunGetUnitTagFromIdent("meter", &tag), 0);
    EXPECT_EQ(xunGetUnitTagFromIdent("", &tag), 0);
    EXPECT_EQ(tag, -7);
}

TEST(UnitRegistry, TagFromIdentGivesTheLow32BitsAndFindsKeyZero) {
    RegisterUnit("zero", 0, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("wide", 0x100000005L, 1.0, 0.0, CKVdimension::GetLength());
    int tag = -7;
    ASSERT_EQ(xunGetUnitTagFromIdent("zero", &tag), 1);
    EXPECT_EQ(tag, 0);
    ASSERT_EQ(xunGetUnitTagFromIdent("wide", &tag), 1);
    EXPECT_EQ(tag, 5);
}

TEST(UnitRegistry, GetUnitTagMatchesDescriptionsSingularAndPlural) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    RegisterUnit("ft", 1001, 0.3048, 0.0, CKVdimension::GetLength(), "feet");
    RegisterUnit("in", 1002, 0.0254, 0.0, CKVdimension::GetLength(), "inches");
    int tag = -1;
    ASSERT_EQ(xunGetUnitTag("meter", &tag), 1);
    EXPECT_EQ(tag, 1000);
    ASSERT_EQ(xunGetUnitTag("meters", &tag), 1);
    EXPECT_EQ(tag, 1000);
    ASSERT_EQ(xunGetUnitTag("feets", &tag), 1);
    EXPECT_EQ(tag, 1001);
    ASSERT_EQ(xunGetUnitTag("inche", &tag), 1);
    EXPECT_EQ(tag, 1002);
    tag = -1;
    EXPECT_EQ(xunGetUnitTag("Meter", &tag), 0);
    EXPECT_EQ(tag, 0);
    tag = -1;
    EXPECT_EQ(xunGetUnitTag("meterss", &tag), 0);
    EXPECT_EQ(tag, 0);
    EXPECT_EQ(xunGetUnitTag("metex", &tag), 0);
    EXPECT_EQ(xunGetUnitTag("meterx", &tag), 0);
    EXPECT_EQ(xunGetUnitTag("mete", &tag), 0);
    EXPECT_EQ(xunGetUnitTag("m", &tag), 0);
}

TEST(UnitRegistry, GetUnitTagFindsPluralDescriptionFromTheSingular) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meters");
    int tag = -1;
    ASSERT_EQ(xunGetUnitTag("meter", &tag), 1);
    EXPECT_EQ(tag, 1000);
}

TEST(UnitRegistry, GetUnitTagConsultsAliasesCaseSensitively) {
    CKVunit* m = RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    m->SetAlias("metre;Meter");
    int tag = -1;
    ASSERT_EQ(xunGetUnitTag("metre", &tag), 1);
    EXPECT_EQ(tag, 1000);
    ASSERT_EQ(xunGetUnitTag("Meter", &tag), 1);
    EXPECT_EQ(tag, 1000);
    EXPECT_EQ(xunGetUnitTag("METRE", &tag), 0);
    EXPECT_EQ(xunGetUnitTag("metres", &tag), 0);
}

TEST(UnitRegistry, GetUnitTagTakesTheFirstMatchInListOrder) {
    RegisterUnit("a", 20, 1.0, 0.0, CKVdimension::GetLength(), "gallons");
    RegisterUnit("b", 10, 1.0, 0.0, CKVdimension::GetLength(), "gallon");
    int tag = -1;
    ASSERT_EQ(xunGetUnitTag("gallon", &tag), 1);
    EXPECT_EQ(tag, 20);
    CKVunit* c = RegisterUnit("c", 30, 1.0, 0.0, CKVdimension::GetLength(), "x");
    c->SetAlias("gallon");
    ASSERT_EQ(xunGetUnitTag("gallon", &tag), 1);
    EXPECT_EQ(tag, 20);
}

TEST(UnitRegistry, GetUnitTagOfKeyZeroStoresZeroAndFails) {
    RegisterUnit("z", 0, 1.0, 0.0, CKVdimension::GetLength(), "zero");
    int tag = -1;
    EXPECT_EQ(xunGetUnitTag("zero", &tag), 0);
    EXPECT_EQ(tag, 0);
}

TEST(UnitRegistry, GetUnitTagOnEmptyRegistry) {
    int tag = -1;
    EXPECT_EQ(xunGetUnitTag("meter", &tag), 0);
    EXPECT_EQ(tag, 0);
    tag = -1;
    EXPECT_EQ(xunGetUnitTag("", &tag), 0);
    EXPECT_EQ(tag, 0);
}

TEST(UnitRegistry, UnitsEqv) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("ft", 1001, 0.3048, 0.0, CKVdimension::GetLength());
    RegisterUnit("s", 1100, 1.0, 0.0, CKVdimension::GetTime());
    RegisterUnit("z", 0, 1.0, 0.0, CKVdimension::GetLength());
    EXPECT_EQ(xunUnitsEqv(1000, 1001), 1);
    EXPECT_EQ(xunUnitsEqv(1000, 1000), 1);
    EXPECT_EQ(xunUnitsEqv(1000, 1100), 0);
    EXPECT_EQ(xunUnitsEqv(1000, 0), 0);
    EXPECT_EQ(xunUnitsEqv(0, 1000), 0);
    EXPECT_EQ(xunUnitsEqv(1000, 999), 0);
}

TEST(UnitRegistry, BaseUnitIsTheFirstOfTheDimension) {
    RegisterUnit("z", 0, 1.0, 0.0, CKVdimension::GetLength(), "zero");
    RegisterUnit("ft", 1001, 0.3048, 0.0, CKVdimension::GetLength(), "foot");
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    RegisterUnit("s", 1100, 1.0, 0.0, CKVdimension::GetTime(), "second");
    int tag = -1;
    const char* key = kUntouched;
    ASSERT_EQ(xunGetBaseUnit(1000, &tag, &key), 1);
    EXPECT_EQ(tag, 1001);
    EXPECT_STREQ(key, "foot");
    ASSERT_EQ(xunGetBaseUnit(1100, &tag, &key), 1);
    EXPECT_EQ(tag, 1100);
    EXPECT_STREQ(key, "second");
    tag = -1;
    key = kUntouched;
    EXPECT_EQ(xunGetBaseUnit(4242, &tag, &key), 0);
    EXPECT_EQ(tag, -1);
    EXPECT_EQ(key, kUntouched);
}

TEST(UnitRegistry, BaseUnitNeedsANonZeroKey) {
    RegisterUnit("z", 0, 1.0, 0.0, CKVdimension::GetMass(), "zero");
    int tag = -1;
    const char* key = kUntouched;
    EXPECT_EQ(xunGetBaseUnit(0, &tag, &key), 0);
    EXPECT_EQ(tag, -1);
}

TEST(UnitRegistry, NextUnitOnEmptyRegistry) {
    int tag = -1;
    const char* key = kUntouched;
    EXPECT_EQ(xunGetNextUnit(0, &tag, &key), 0);
    EXPECT_EQ(tag, -1);
    EXPECT_EQ(key, kUntouched);
}

TEST(UnitRegistry, NextUnitVisitsEveryUnitOnceInListOrder) {
    RegisterBaseUnits();
    Define("m", 1000, "Length", "meter");
    Define("km", 900, "m*1000", "kilometer");
    Define("h", 5000, "Time*3600", "hour");
    EXPECT_EQ(WalkAll(),
              (std::vector<std::string>{"NonDimensional", "Length", "Mass", "Time", "Temperature",
                                        "ElectricCurrent", "AmountOfSubstance", "LuminousIntensity",
                                        "m", "km", "h"}));
    int tag = -1;
    const char* key = kUntouched;
    EXPECT_EQ(xunGetNextUnit(5000, &tag, &key), 0);
    EXPECT_EQ(xunGetNextUnit(4711, &tag, &key), 0);
    EXPECT_EQ(tag, -1);
    EXPECT_EQ(key, kUntouched);
    ASSERT_EQ(xunGetNextUnit(1000, &tag, &key), 1);
    EXPECT_EQ(tag, 900);
    EXPECT_STREQ(key, "kilometer");
    // Asking for the same unit twice in a row is served from the find cache.
    ASSERT_EQ(xunGetNextUnit(1000, &tag, &key), 1);
    EXPECT_EQ(tag, 900);
}

TEST(UnitRegistry, NextUnitStopsAtAUnitWithKeyZero) {
    RegisterUnit("a", 10, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("z", 0, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("b", 11, 1.0, 0.0, CKVdimension::GetLength());
    EXPECT_EQ(WalkAll(), (std::vector<std::string>{"a"}));
    int tag = -1;
    const char* key = nullptr;
    ASSERT_EQ(xunGetNextUnit(0, &tag, &key), 1);
    EXPECT_EQ(tag, 10);
    tag = -1;
    EXPECT_EQ(xunGetNextUnit(10, &tag, &key), 0);
    EXPECT_EQ(tag, -1);
}

TEST(UnitRegistry, NextEqvUnitStartsAtTheFirstEquivalentUnit) {
    RegisterUnit("ft", 1001, 0.3048, 0.0, CKVdimension::GetLength(), "foot");
    RegisterUnit("s", 1100, 1.0, 0.0, CKVdimension::GetTime(), "second");
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    RegisterUnit("z", 0, 1.0, 0.0, CKVdimension::GetLength(), "zero");
    RegisterUnit("km", 1002, 1000.0, 0.0, CKVdimension::GetLength(), "kilometer");
    int tag = -1;
    const char* key = nullptr;
    ASSERT_EQ(xunGetNextEqvUnit(1000, 0, &tag, &key), 1);
    EXPECT_EQ(tag, 1001);
    EXPECT_STREQ(key, "foot");
    EXPECT_EQ(WalkEqv(1000), (std::vector<int>{1001, 1000, 1002}));
    EXPECT_EQ(WalkEqv(1100), (std::vector<int>{1100}));
    tag = -1;
    EXPECT_EQ(xunGetNextEqvUnit(1000, 1002, &tag, &key), 0);
    EXPECT_EQ(xunGetNextEqvUnit(1000, 77, &tag, &key), 0);
    EXPECT_EQ(xunGetNextEqvUnit(77, 0, &tag, &key), 0);
    EXPECT_EQ(tag, -1);
}

// Keys beyond the int range reach the interface as their low 32 bits: 1000
// for 2^32 + 1000 (the tag of UnitMeter), 0 for 2^32. A walk still visits
// every unit once and ends: each thread remembers what its walk handed out
// last.
TEST(UnitRegistry, WalksWithKeysBeyondTheIntRangeVisitEachUnitOnce) {
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength(), "meter");
    RegisterUnit("wide", 0x100000000L + 1000, 2.0, 0.0, CKVdimension::GetLength(), "wide");
    RegisterUnit("s", 1100, 1.0, 0.0, CKVdimension::GetTime(), "second");
    RegisterUnit("zero", 0x100000000L, 3.0, 0.0, CKVdimension::GetLength(), "zero");
    RegisterUnit("km", 1001, 1000.0, 0.0, CKVdimension::GetLength(), "kilometer");
    auto walk = [](int reference) {
        std::vector<std::string> seen;
        int tag = 0;
        const char* key = nullptr;
        for (int prev = 0; reference == 0 ? xunGetNextUnit(prev, &tag, &key)
                                          : xunGetNextEqvUnit(reference, prev, &tag, &key);
             prev = tag) {
            seen.push_back(key);
            if (seen.size() > 10)
                break;
        }
        return seen;
    };
    const std::vector<std::string> all{"meter", "wide", "second", "zero", "kilometer"};
    EXPECT_EQ(walk(0), all);
    EXPECT_EQ(walk(1001), (std::vector<std::string>{"meter", "wide", "zero", "kilometer"}));
    // Again: a finished walk starts from the front.
    EXPECT_EQ(walk(0), all);
    // A walk of all units with a walk of equivalents inside each step.
    std::vector<std::string> outer;
    int tag = 0;
    const char* key = nullptr;
    for (int prev = 0; xunGetNextUnit(prev, &tag, &key) && outer.size() < 10; prev = tag) {
        outer.push_back(key);
        EXPECT_EQ(walk(1001).size(), 4u);
    }
    EXPECT_EQ(outer, all);
    // Without the walk before it, 1000 is UnitMeter's tag.
    ASSERT_EQ(xunGetNextUnit(1000, &tag, &key), 1);
    EXPECT_STREQ(key, "wide");
    EXPECT_EQ(tag, 1000);
    ASSERT_EQ(xunGetNextUnit(1000, &tag, &key), 1);
    EXPECT_STREQ(key, "second");
    // A change of the registry forgets the memory: 1000 is UnitMeter again.
    ASSERT_EQ(xunGetNextUnit(1000, &tag, &key), 1);
    RegisterUnit("late", 1200, 1.0, 0.0, CKVdimension::GetLength(), "late");
    ASSERT_EQ(xunGetNextUnit(1000, &tag, &key), 1);
    EXPECT_STREQ(key, "wide");
}

TEST(UnitRegistry, NextEqvUnitOnEmptyRegistry) {
    int tag = -1;
    const char* key = nullptr;
    EXPECT_EQ(xunGetNextEqvUnit(1, 0, &tag, &key), 0);
    EXPECT_EQ(tag, -1);
}

TEST(UnitRegistry, FindCacheSurvivesRemovalOfTheFirstUnit) {
    RegisterUnit("base", 1, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("m", 1000, 1.0, 0.0, CKVdimension::GetLength());
    RegisterUnit("km", 1001, 1000.0, 0.0, CKVdimension::GetLength());
    int tag = -1;
    const char* key = nullptr;
    ASSERT_EQ(xunGetNextUnit(1, &tag, &key), 1);
    EXPECT_EQ(tag, 1000);
    const CKVunit* base = xuntest::UnitByKey(1);
    EXPECT_NE(xuntest::Registries().units.Remove(base), nullptr);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
    EXPECT_EQ(xuntest::UnitByKey(1), nullptr);
    EXPECT_EQ(xuntest::UnitByIdent("base"), nullptr);
    EXPECT_EQ(xunGetNextUnit(1, &tag, &key), 0);
    EXPECT_EQ(WalkAll(), (std::vector<std::string>{"m", "km"}));
    ASSERT_EQ(xunGetNextEqvUnit(1000, 1000, &tag, &key), 1);
    EXPECT_EQ(tag, 1001);
}

TEST(UnitRegistry, Parameters) {
    RegisterBaseUnits();
    Define("kmph", 1000, "(Length*1000)/(Time*3600)");
    RegisterUnit("degC", 1001, 1.0, 273.15, CKVdimension::GetTemp());
    double factor = 0, offset = 0, powers[7], factors[7];
    ASSERT_EQ(xunUnitGetParameters(1000, &factor, &offset, powers, factors), 1);
    EXPECT_EQ(factor, 1000.0 / 3600.0);
    EXPECT_EQ(offset, 0.0);
    EXPECT_EQ(std::vector<double>(powers, powers + 7), (std::vector<double>{1, 0, -1, 0, 0, 0, 0}));
    EXPECT_EQ(std::vector<double>(factors, factors + 7),
              (std::vector<double>{1000, 1, 1 / 3600.0, 1, 1, 1, 1}));
    ASSERT_EQ(xunUnitGetParameters(1001, &factor, &offset, powers, factors), 1);
    EXPECT_EQ(offset, 273.15);
    EXPECT_EQ(std::vector<double>(powers, powers + 7), (std::vector<double>{0, 0, 0, 1, 0, 0, 0}));
    factor = -3;
    EXPECT_EQ(xunUnitGetParameters(31337, &factor, &offset, powers, factors), 0);
    EXPECT_EQ(factor, -3.0);
}

TEST(UnitRegistry, KeyZeroUnitIsStillFoundByKey) {
    RegisterUnit("z", 0, 2.0, 0.0, CKVdimension::GetLength(), "zero");
    const char* text = nullptr;
    ASSERT_EQ(xunGetUnitKey(0, &text), 1);
    EXPECT_STREQ(text, "zero");
    double factor = 0, offset = 0, powers[7], factors[7];
    ASSERT_EQ(xunUnitGetParameters(0, &factor, &offset, powers, factors), 1);
    EXPECT_EQ(factor, 2.0);
}

TEST(UnitRegistry, NegativeTagsWidenWithTheirSign) {
    RegisterUnit("neg", -5, 1.0, 0.0, CKVdimension::GetLength(), "negative");
    const char* text = nullptr;
    ASSERT_EQ(xunGetUnitKey(-5, &text), 1);
    EXPECT_STREQ(text, "negative");
    int tag = 0;
    ASSERT_EQ(xunGetUnitTag("negative", &tag), 1);
    EXPECT_EQ(tag, -5);
}

} // namespace
