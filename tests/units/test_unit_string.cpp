// The unit-string grammar (units/UnitString.h) over atoms of the test's own:
// operators, powers, numbers, offsets, words, the normalised parts, the
// checks that keep every value a valid unit, and the places and reasons of
// failures.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/Contract.h"
#include "unit_fixture.h"
#include "units/KVexpr.h"
#include "units/KVunit.h"
#include "units/UnitPrefixes.h"
#include "units/UnitString.h"
#include "xun.h"

namespace {

XunUnitValue Value(double factor, std::vector<double> powers, double offset = 0.0) {
    XunUnitValue value;
    value.factor = factor;
    value.offset = offset;
    int single = -1, count = 0;
    for (int i = 0; i < 7; ++i) {
        value.powers[i] = powers[i];
        if (powers[i] != 0) {
            single = i;
            ++count;
        }
    }
    if (count == 1)
        value.dimFactors[single] = factor;
    return value;
}

const std::vector<double> kL = {1, 0, 0, 0, 0, 0, 0};
const std::vector<double> kM = {0, 1, 0, 0, 0, 0, 0};
const std::vector<double> kT = {0, 0, 1, 0, 0, 0, 0};
const std::vector<double> kK = {0, 0, 0, 1, 0, 0, 0};
const std::vector<double> kNone = {0, 0, 0, 0, 0, 0, 0};

// Names as a map; "MS" stands for a name that is ambiguous without case.
class TestAtoms : public IUnitAtoms {
  public:
    TestAtoms() {
        Add("m", 1, Value(1, kL));
        Add("km", 2, Value(1000, kL));
        Add("s", 3, Value(1, kT));
        Add("h", 4, Value(3600, kT));
        Add("kg", 5, Value(1, kM));
        Add("g", 6, Value(1e-3, kM));
        Add("K", 7, Value(1, kK));
        Add("degC", 8, Value(1, kK, 273.15));
        Add("ft", 9, Value(0.3048, kL));
        Add("N m", 10, Value(1, {2, 1, -2, 0, 0, 0, 0}));
        Add("acre-foot", 11, Value(1233.48183754752, {3, 0, 0, 0, 0, 0, 0}));
        Add("N", 12, Value(1, {1, 1, -2, 0, 0, 0, 0}));
        Add("m3", 13, Value(1, {3, 0, 0, 0, 0, 0, 0}));
        Add("%", 14, Value(0.01, kNone));
        Add("µm", 15, Value(1e-6, kL));
        Add("°C", 8, Value(1, kK, 273.15));
        Add("zero", 16, Value(0, kL)); // an atom no parse may pass on
        Add("huge", 17, Value(1e300, kL));
    }
    XunAtomLookup FindAtom(std::string_view name, bool singleWord, XunAtom& atom) const override {
        lookups.push_back(std::string(name) + (singleWord ? "" : " (words)"));
        if (name == "MS")
            return XunAtomLookup::Ambiguous;
        const auto it = m_atoms.find(std::string(name));
        if (it == m_atoms.end())
            return XunAtomLookup::Unknown;
        atom = it->second;
        return XunAtomLookup::Found;
    }
    int MaxWords() const override { return 2; }

    mutable std::vector<std::string> lookups;

  private:
    void Add(const char* name, long key, XunUnitValue value) {
        XunAtom atom;
        atom.value = value;
        atom.key = key;
        m_atoms[name] = atom;
    }
    std::map<std::string, XunAtom> m_atoms;
};

struct Parsed {
    bool ok = false;
    XunParsedUnit unit;
    XunParseError error;
};

Parsed Parse(const std::string& text, XunParseOptions options = XunParseOptions()) {
    static const TestAtoms atoms;
    Parsed p;
    p.ok = xunParseUnitString_(text, atoms, options, p.unit, p.error);
    return p;
}

std::vector<double> Powers(const XunUnitValue& v) {
    return std::vector<double>(v.powers, v.powers + 7);
}

std::vector<double> Slots(const XunUnitValue& v) {
    return std::vector<double>(v.dimFactors, v.dimFactors + 7);
}

#define EXPECT_MEANS(text_, factor_, powers_)                                                      \
    do {                                                                                           \
        const Parsed p_ = Parse(text_);                                                            \
        ASSERT_TRUE(p_.ok) << text_ << ": " << p_.error.reason;                                    \
        EXPECT_NEAR(p_.unit.value.factor, factor_, 1e-12 * std::fabs(factor_)) << text_;           \
        EXPECT_EQ(Powers(p_.unit.value), powers_) << text_;                                        \
    } while (0)

#define EXPECT_FAILS(text_, code_, position_, reason_)                                             \
    do {                                                                                           \
        const Parsed p_ = Parse(text_);                                                            \
        ASSERT_FALSE(p_.ok) << text_;                                                              \
        EXPECT_EQ(p_.error.code, code_) << text_;                                                  \
        EXPECT_EQ(p_.error.position, static_cast<std::size_t>(position_)) << text_;                \
        EXPECT_EQ(p_.error.reason, reason_) << text_;                                              \
    } while (0)

const std::vector<double> kVelocity = {1, 0, -1, 0, 0, 0, 0};
const std::vector<double> kArea = {2, 0, 0, 0, 0, 0, 0};

TEST(UnitString, EveryProductOperator) {
    const std::vector<double> lt = {1, 0, 1, 0, 0, 0, 0};
    for (const char* text : {"m*s", "m.s", "m\xC2\xB7s", "m\xC3\x97s", "m\xE2\x8B\x85s", "m s",
                             "m  s", "m\ts", "m * s", "m-s", "m\xE2\x88\x99s"})
        EXPECT_MEANS(text, 1.0, lt);
}

TEST(UnitString, QuotientsGroupToTheLeft) {
    EXPECT_MEANS("m/s", 1.0, kVelocity);
    EXPECT_MEANS("km/h", 1000.0 / 3600, kVelocity);
    EXPECT_MEANS("m\xC3\xB7s", 1.0, kVelocity);
    EXPECT_MEANS("m/s/s", 1.0, std::vector<double>({1, 0, -2, 0, 0, 0, 0}));
    // As UDUNITS-2 reads it: a product after a quotient multiplies it.
    EXPECT_MEANS("m/s*s", 1.0, kL);
    EXPECT_MEANS("m/s s", 1.0, kL);
    EXPECT_MEANS("m/(s s)", 1.0, std::vector<double>({1, 0, -2, 0, 0, 0, 0}));
}

TEST(UnitString, PerDividesByAllThatFollowsUpToTheNextPer) {
    EXPECT_MEANS("m per s", 1.0, kVelocity);
    EXPECT_MEANS("m per s s", 1.0, std::vector<double>({1, 0, -2, 0, 0, 0, 0}));
    EXPECT_MEANS("kg per m s per s", 1.0, std::vector<double>({-1, 1, -2, 0, 0, 0, 0}));
    EXPECT_MEANS("m PER s", 1.0, kVelocity);
    EXPECT_MEANS("per s", 1.0, std::vector<double>({0, 0, -1, 0, 0, 0, 0}));
    // Not in the strict reading.
    XunParseOptions strict;
    strict.words = false;
    EXPECT_FALSE(Parse("m per s", strict).ok);
}

TEST(UnitString, Powers) {
    for (const char* text : {"m^2", "m**2", "m2", "m+2", "m\xC2\xB2", "m ^ 2", "m ** 2", "(m)2",
                             "(m)^2", "m squared", "square m"})
        EXPECT_MEANS(text, 1.0, kArea);
    const std::vector<double> perArea = {-2, 0, 0, 0, 0, 0, 0};
    for (const char* text : {"m^-2", "m-2", "m\xE2\x81\xBB\xC2\xB2",
                             "m\xE2\x88\x92"
                             "2",
                             "m**-2", "m^(-2)"})
        EXPECT_MEANS(text, 1.0, perArea);
    EXPECT_MEANS("m cubed", 1.0, std::vector<double>({3, 0, 0, 0, 0, 0, 0}));
    EXPECT_MEANS("cubic m", 1.0, std::vector<double>({3, 0, 0, 0, 0, 0, 0}));
    EXPECT_MEANS("(km/h)^2", std::pow(1000.0 / 3600, 2),
                 std::vector<double>({2, 0, -2, 0, 0, 0, 0}));
    EXPECT_MEANS("(km/h)2", std::pow(1000.0 / 3600, 2),
                 std::vector<double>({2, 0, -2, 0, 0, 0, 0}));
    EXPECT_MEANS("ft^(1/2)", std::sqrt(0.3048), std::vector<double>({0.5, 0, 0, 0, 0, 0, 0}));
    EXPECT_MEANS("m^(-1/3)", 1.0, std::vector<double>({-1.0 / 3, 0, 0, 0, 0, 0, 0}));
    EXPECT_MEANS("m^0.5", 1.0, std::vector<double>({0.5, 0, 0, 0, 0, 0, 0}));
    EXPECT_MEANS("m^0", 1.0, kNone);
    // A name known with its digits is that name: "m3" is an atom here.
    const Parsed m3 = Parse("m3");
    ASSERT_TRUE(m3.ok);
    ASSERT_EQ(m3.unit.terms.size(), 1u);
    EXPECT_EQ(m3.unit.terms[0].key, 13);
    // A name not known with its digits carries them as its exponent.
    const Parsed km3 = Parse("km3");
    ASSERT_TRUE(km3.ok);
    ASSERT_EQ(km3.unit.terms.size(), 1u);
    EXPECT_EQ(km3.unit.terms[0].key, 2);
    EXPECT_EQ(km3.unit.terms[0].exponent, 3.0);
    EXPECT_EQ(km3.unit.value.factor, 1e9);
}

TEST(UnitString, Numbers) {
    EXPECT_MEANS("0.3048 m", 0.3048, kL);
    EXPECT_MEANS("1e-3 kg", 1e-3, kM);
    EXPECT_MEANS("1E3 m", 1e3, kL);
    EXPECT_MEANS("1.5e+3 m", 1.5e3, kL);
    EXPECT_MEANS(".5 m", 0.5, kL);
    EXPECT_MEANS("2m", 2.0, kL);
    EXPECT_MEANS("m 2", 2.0, kL);
    EXPECT_MEANS("m/2", 0.5, kL);
    EXPECT_MEANS("2/s", 2.0, std::vector<double>({0, 0, -1, 0, 0, 0, 0}));
    EXPECT_MEANS("10^-3", 1e-3, kNone);
    EXPECT_MEANS("10**3", 1e3, kNone);
    EXPECT_MEANS("10\xE2\x81\xBB\xC2\xB3", 1e-3, kNone);
    EXPECT_MEANS("1e-3", 1e-3, kNone);
    EXPECT_MEANS("2 3 m", 6.0, kL);
    const Parsed number = Parse("100");
    ASSERT_TRUE(number.ok);
    EXPECT_TRUE(number.unit.number);
    EXPECT_TRUE(number.unit.terms.empty());
}

TEST(UnitString, OffsetsAfterTheAtSignAndTheWords) {
    for (const char* text : {"K @ 273.15", "K@273.15", "K after 273.15", "K from 273.15"}) {
        const Parsed p = Parse(text);
        ASSERT_TRUE(p.ok) << text << ": " << p.error.reason;
        EXPECT_EQ(p.unit.value.factor, 1.0);
        EXPECT_EQ(p.unit.value.offset, 273.15);
        EXPECT_TRUE(p.unit.shifted);
        EXPECT_EQ(p.unit.shift, 273.15);
    }
    // The number counts in the unit before it: x ft @ 10 is (x + 10) ft.
    const Parsed feet = Parse("ft @ 10");
    ASSERT_TRUE(feet.ok);
    EXPECT_EQ(feet.unit.value.offset, 10 * 0.3048);
    // An offset of an offset adds up.
    const Parsed celsius = Parse("degC @ 10");
    ASSERT_TRUE(celsius.ok);
    EXPECT_EQ(celsius.unit.value.offset, 283.15);
    const Parsed twice = Parse("(K @ 1) @ 2");
    ASSERT_TRUE(twice.ok);
    EXPECT_EQ(twice.unit.value.offset, 3.0);
    EXPECT_EQ(twice.unit.shift, 3.0);
    const Parsed negative = Parse("K @ -5");
    ASSERT_TRUE(negative.ok);
    EXPECT_EQ(negative.unit.value.offset, -5.0);
}

TEST(UnitString, AnAtomAloneKeepsItsOffsetArithmeticDropsIt) {
    for (const char* text : {"degC", "(degC)",
                             "\xC2\xB0"
                             "C"}) {
        const Parsed p = Parse(text);
        ASSERT_TRUE(p.ok) << text;
        EXPECT_EQ(p.unit.value.offset, 273.15) << text;
        EXPECT_TRUE(p.unit.bare) << text;
    }
    for (const char* text : {"degC m/m", "degC/1", "1 degC", "degC^1", "degC*1"}) {
        const Parsed p = Parse(text);
        ASSERT_TRUE(p.ok) << text;
        EXPECT_EQ(p.unit.value.offset, 0.0) << text;
        EXPECT_EQ(p.unit.value.factor, 1.0) << text;
        EXPECT_FALSE(p.unit.bare) << text;
    }
}

TEST(UnitString, NamesOfSeveralWords) {
    const Parsed nm = Parse("N m");
    ASSERT_TRUE(nm.ok);
    ASSERT_EQ(nm.unit.terms.size(), 1u);
    EXPECT_EQ(nm.unit.terms[0].key, 10);
    // An exponent after the last word belongs to that word: N·m², not (N m)².
    const Parsed nm2 = Parse("N m2");
    ASSERT_TRUE(nm2.ok);
    EXPECT_EQ(Powers(nm2.unit.value), std::vector<double>({3, 1, -2, 0, 0, 0, 0}));
    ASSERT_EQ(nm2.unit.terms.size(), 2u);
    // A hyphen joins the words of a name; where none is known it multiplies.
    const Parsed acreFoot = Parse("acre-foot/h");
    ASSERT_TRUE(acreFoot.ok);
    EXPECT_EQ(acreFoot.unit.terms[0].key, 11);
    EXPECT_MEANS("kg-m", 1.0, std::vector<double>({1, 1, 0, 0, 0, 0, 0}));
    // Without words, the blank multiplies.
    XunParseOptions strict;
    strict.words = false;
    const Parsed product = Parse("N m", strict);
    ASSERT_TRUE(product.ok);
    EXPECT_EQ(product.unit.terms.size(), 2u);
}

TEST(UnitString, TheNormalisedPartsMergeTheSameAtoms) {
    const Parsed a = Parse("kg m-2 s-1");
    const Parsed b = Parse("kg/(m*m*s)");
    const Parsed c = Parse("kg m^-1 s^-1/m");
    ASSERT_TRUE(a.ok && b.ok && c.ok);
    for (const Parsed* p : {&a, &b, &c}) {
        ASSERT_EQ(p->unit.terms.size(), 3u);
        EXPECT_EQ(p->unit.terms[0].key, 5);
        EXPECT_EQ(p->unit.terms[0].exponent, 1.0);
        EXPECT_EQ(p->unit.terms[1].key, 1);
        EXPECT_EQ(p->unit.terms[1].exponent, -2.0);
        EXPECT_EQ(p->unit.terms[2].key, 3);
        EXPECT_EQ(p->unit.terms[2].exponent, -1.0);
    }
    const Parsed none = Parse("m/m");
    ASSERT_TRUE(none.ok);
    EXPECT_TRUE(none.unit.terms.empty());
    EXPECT_FALSE(none.unit.number);
    const Parsed scaled = Parse("0.5 m 4");
    ASSERT_TRUE(scaled.ok);
    EXPECT_EQ(scaled.unit.numberPart, 2.0);
}

TEST(UnitString, PerDimensionFactorsFollowTheUnitArithmetic) {
    // km/h: the slots of km (length 1000) and h (time 3600) divided.
    const Parsed speed = Parse("km/h");
    ASSERT_TRUE(speed.ok);
    EXPECT_EQ(Slots(speed.unit.value), std::vector<double>({1000, 1, 1.0 / 3600, 1, 1, 1, 1}));
    // A power starts afresh: the single base dimension carries the factor.
    const Parsed area = Parse("km^2");
    ASSERT_TRUE(area.ok);
    EXPECT_EQ(Slots(area.unit.value), std::vector<double>({1e6, 1, 1, 1, 1, 1, 1}));
    // A number scales the slot of a single base dimension only.
    const Parsed feet = Parse("2 ft");
    ASSERT_TRUE(feet.ok);
    EXPECT_EQ(Slots(feet.unit.value), std::vector<double>({0.6096, 1, 1, 1, 1, 1, 1}));
    const Parsed product = Parse("2 kg m");
    ASSERT_TRUE(product.ok);
    EXPECT_EQ(Slots(product.unit.value), std::vector<double>({1, 2, 1, 1, 1, 1, 1}));
    // A number over a unit: the inverse starts afresh, then the number
    // scales it.
    const Parsed inverse = Parse("2/h");
    ASSERT_TRUE(inverse.ok);
    EXPECT_EQ(Slots(inverse.unit.value), std::vector<double>({1, 1, 2.0 / 3600, 1, 1, 1, 1}));
}

// The same meaning as the expression evaluator gives, slots included, for
// texts both read alike.
TEST(UnitString, AgreesWithTheExpressionEvaluator) {
    xuntest::RegisterBaseUnits();
    xuntest::Define("m", 1000, "Length");
    xuntest::Define("km", 1001, "m*1000");
    xuntest::Define("ft", 1002, "m*0.3048");
    xuntest::Define("s", 1100, "Time");
    xuntest::Define("h", 1101, "s*3600");
    xuntest::Define("kg", 1200, "Mass");
    // Atoms: the registered units by ident.
    class Registered : public IUnitAtoms {
      public:
        XunAtomLookup FindAtom(std::string_view name, bool, XunAtom& atom) const override {
            const CKVunit* unit = xuntest::UnitByIdent(std::string(name));
            if (unit == nullptr)
                return XunAtomLookup::Unknown;
            atom.value.factor = unit->m_dFactor;
            atom.value.offset = unit->m_dOffset;
            unit->GetDim().GetPowers(atom.value.powers[0], atom.value.powers[1],
                                     atom.value.powers[2], atom.value.powers[3],
                                     atom.value.powers[4], atom.value.powers[5],
                                     atom.value.powers[6]);
            for (int i = 0; i < 7; ++i)
                atom.value.dimFactors[i] = unit->m_dDimFactors[i];
            atom.key = unit->m_lKey;
            return XunAtomLookup::Found;
        }
        int MaxWords() const override { return 1; }
    } atoms;
    const char* const pairs[][2] = {
        {"km/h", "km/h"},
        {"ft^3/s", "(ft^3)/s"},
        {"kg/(m^2)/s", "kg/(m^2)/s"},
        {"kg m^-2 s^-1", "kg/(m^2)/s"},
        {"0.5 ft", "ft*0.5"},
        {"2/h", "2/h"},
        {"h/2", "h/2"},
        {"(km*h)^2", "(km*h)^2"},
        {"ft^(1/2)/s", "(ft^0.5)/s"},
    };
    for (const auto& pair : pairs) {
        XunParsedUnit parsed;
        XunParseError error;
        ASSERT_TRUE(xunParseUnitString_(pair[0], atoms, XunParseOptions(), parsed, error))
            << pair[0] << ": " << error.reason;
        CKVunit* raw = nullptr;
        double* value = nullptr;
        ASSERT_TRUE(bEvaluateExpression(pair[1], &raw, &value)) << pair[1];
        std::unique_ptr<CKVunit> unit(raw);
        std::unique_ptr<double> number(value);
        ASSERT_TRUE(unit != nullptr) << pair[1];
        EXPECT_DOUBLE_EQ(parsed.value.factor, unit->m_dFactor) << pair[0];
        double powers[7];
        unit->GetDim().GetPowers(powers[0], powers[1], powers[2], powers[3], powers[4], powers[5],
                                 powers[6]);
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(parsed.value.powers[i], powers[i]) << pair[0] << " " << i;
            EXPECT_DOUBLE_EQ(parsed.value.dimFactors[i], unit->m_dDimFactors[i])
                << pair[0] << " slot " << i;
        }
    }
}

TEST(UnitString, BlanksAroundAreSkipped) {
    EXPECT_MEANS("  m  ", 1.0, kL);
    EXPECT_MEANS("\xC2\xA0m\xE2\x80\xAF", 1.0, kL);
    EXPECT_MEANS("\tm/s\n", 1.0, kVelocity);
}

TEST(UnitString, FailuresSayWhereAndWhy) {
    EXPECT_FAILS("", XUN_ERR_EXPRESSION, 0, "the text is empty");
    EXPECT_FAILS("   ", XUN_ERR_EXPRESSION, 0, "the text is empty");
    EXPECT_FAILS("m/", XUN_ERR_EXPRESSION, 2, "a unit or number is missing at the end");
    EXPECT_FAILS("/m", XUN_ERR_EXPRESSION, 0, "a unit or number is missing before '/'");
    EXPECT_FAILS("m//s", XUN_ERR_EXPRESSION, 2, "a unit or number is missing before '/'");
    EXPECT_FAILS("kg/(m2*s", XUN_ERR_EXPRESSION, 8, "')' is missing at the end");
    EXPECT_FAILS("m)", XUN_ERR_EXPRESSION, 1, "')' has no '(' before it");
    EXPECT_FAILS("m^", XUN_ERR_EXPRESSION, 2, "a number is missing at the end");
    EXPECT_FAILS("m^(1/0)", XUN_ERR_EXPRESSION, 5, "the exponent divides by 0");
    EXPECT_FAILS("m^(1/3", XUN_ERR_EXPRESSION, 6, "')' is missing after the exponent");
    EXPECT_FAILS("-1 m", XUN_ERR_EXPRESSION, 0,
                 "a sign may stand only in an exponent or after '@'");
    EXPECT_FAILS("m $", XUN_ERR_EXPRESSION, 2, "'$' is not part of a unit");
    EXPECT_FAILS("K @", XUN_ERR_EXPRESSION, 3, "a number must follow '@'");
    EXPECT_FAILS("K @ 1970-01-01", XUN_ERR_EXPRESSION, 8,
                 "only a number may follow '@': time stamps are not read");
    EXPECT_FAILS("s since 1970-01-01", XUN_ERR_EXPRESSION, 2,
                 "units of time with an origin ('since') are not read: only a number may follow "
                 "'@'");
    EXPECT_FAILS("furlong/s", XUN_ERR_NOT_FOUND, 0, "no unit is named 'furlong'");
    EXPECT_FAILS("m/furlong", XUN_ERR_NOT_FOUND, 2, "no unit is named 'furlong'");
    EXPECT_FAILS("MS", XUN_ERR_NOT_FOUND, 0, "'MS' names several units when case is ignored");
    EXPECT_EQ(Parse("m/furlong").error.unknown, "furlong");
    EXPECT_FAILS("m\xFF", XUN_ERR_EXPRESSION, 1, "the byte 0xFF is not valid UTF-8 here");
    EXPECT_FAILS("m\x01", XUN_ERR_EXPRESSION, 1,
                 "the control character 0x01 is not part of a unit");
    XunParseOptions ascii;
    ascii.asciiOnly = true;
    const Parsed squared = Parse("m\xC2\xB2", ascii);
    EXPECT_FALSE(squared.ok);
    EXPECT_EQ(squared.error.reason, "'\xC2\xB2' is not ASCII");
}

// Whatever the text, no value reaches a unit whose factor is 0, infinite or
// not a number: the parse fails with the reason first.
TEST(UnitString, NoFactorOfZeroInfinityOrNaNPasses) {
    EXPECT_FAILS("0", XUN_ERR_EXPRESSION, 0, "a factor of 0 gives no unit");
    EXPECT_FAILS("0 m", XUN_ERR_EXPRESSION, 0, "a factor of 0 gives no unit");
    EXPECT_FAILS("m/0", XUN_ERR_EXPRESSION, 2, "a factor of 0 gives no unit");
    EXPECT_FAILS("zero", XUN_ERR_EXPRESSION, 0, "the unit's factor would be 0");
    EXPECT_FAILS("huge huge", XUN_ERR_EXPRESSION, 5, "the unit's factor would be infinite");
    EXPECT_FAILS("1/huge/huge", XUN_ERR_EXPRESSION, 6, "the unit's factor would be 0");
    EXPECT_FAILS("1e999 m", XUN_ERR_EXPRESSION, 0, "the number 1e999 is out of range");
    EXPECT_FAILS("1e-999 m", XUN_ERR_EXPRESSION, 0, "the number 1e-999 is out of range");
    EXPECT_FAILS("1e300 1e300 m", XUN_ERR_EXPRESSION, 6, "the unit's factor would be infinite");
    EXPECT_FAILS("1e300 K @ 1e300", XUN_ERR_EXPRESSION, 8, "the unit's offset would not be finite");
}

TEST(UnitString, LimitsFailWithTheirReason) {
    using namespace xun::contract;
    const std::string longest(kUnitStringMaxLength - 1, ' ');
    EXPECT_TRUE(Parse(longest + "m").ok);
    EXPECT_FAILS(longest + "mm", XUN_ERR_LIMIT, kUnitStringMaxLength,
                 "the text is longer than 1024 bytes");
    const std::string deepest =
        std::string(kUnitStringMaxDepth, '(') + "m" + std::string(kUnitStringMaxDepth, ')');
    EXPECT_TRUE(Parse(deepest).ok);
    EXPECT_FAILS("(" + deepest + ")", XUN_ERR_LIMIT, kUnitStringMaxDepth,
                 "parentheses nest deeper than 32");
    EXPECT_TRUE(Parse("m^100").ok);
    EXPECT_TRUE(Parse("m^-100").ok);
    EXPECT_FAILS("m^101", XUN_ERR_LIMIT, 2, "the exponent 101 is larger than 100 in size");
    EXPECT_FAILS("m101", XUN_ERR_LIMIT, 1, "the exponent 101 is larger than 100 in size");
    EXPECT_FAILS("m-101", XUN_ERR_LIMIT, 1, "the exponent 101 is larger than 100 in size");
    EXPECT_FAILS("m^1e308", XUN_ERR_LIMIT, 2, "the exponent 1e308 is larger than 100 in size");
    EXPECT_FAILS("m100 m", XUN_ERR_LIMIT, 5,
                 "the exponent of length would be 101, more than 100 in size");
    EXPECT_FAILS("(m^50)^3", XUN_ERR_LIMIT, 6,
                 "the exponent of length would be 150, more than 100 in size");
    EXPECT_TRUE(Parse(std::string(kUnitStringMaxNumberLength, '1') + " m").ok);
    EXPECT_FAILS(std::string(kUnitStringMaxNumberLength + 1, '1') + " m", XUN_ERR_LIMIT, 0,
                 "a number is longer than 64 characters");
}

// Any text of the longest length takes one pass: the parser never reads a
// byte more than a bounded number of times.
TEST(UnitString, LookupsAreBoundedByTheLengthAndTheWords) {
    const TestAtoms atoms;
    const std::string text(1023, 'x');
    XunParsedUnit parsed;
    XunParseError error;
    EXPECT_FALSE(xunParseUnitString_(text, atoms, XunParseOptions(), parsed, error));
    EXPECT_EQ(atoms.lookups.size(), 1u);
    std::string words;
    for (int i = 0; i < 200; ++i)
        words += "m ";
    atoms.lookups.clear();
    xunParseUnitString_(words, atoms, XunParseOptions(), parsed, error);
    // Each word is looked up alone and together with the next one.
    EXPECT_LE(atoms.lookups.size(), 2u * 101);
}

TEST(UnitString, ValuesAgreeExactlyOrWithinTheTolerance) {
    const XunUnitValue a = Value(1.0, kL);
    XunUnitValue b = a;
    EXPECT_TRUE(xunValuesAgree_(a, b, true));
    b.factor = 1.0 + 0.9e-12;
    EXPECT_FALSE(xunValuesAgree_(a, b, true));
    EXPECT_TRUE(xunValuesAgree_(a, b, false));
    b.factor = 1.0 + 1.1e-12;
    EXPECT_FALSE(xunValuesAgree_(a, b, false));
    b = a;
    b.offset = 0.9e-12;
    EXPECT_TRUE(xunValuesAgree_(a, b, false));
    b.powers[1] = 1;
    EXPECT_FALSE(xunValuesAgree_(a, b, false));
    b = a;
    b.powers[0] = -0.0 + 1;
    EXPECT_TRUE(xunSameDimension_(a, b));
}

TEST(UnitString, ShortestNumbersReadBack) {
    EXPECT_EQ(xunShortestNumber_(0.3048), "0.3048");
    EXPECT_EQ(xunShortestNumber_(1e-6), "1e-6");
    EXPECT_EQ(xunShortestNumber_(1e-5), "0.00001");
    EXPECT_EQ(xunShortestNumber_(273.15), "273.15");
    EXPECT_EQ(xunShortestNumber_(100000), "100000");
    EXPECT_EQ(xunShortestNumber_(1e16), "1e16");
    EXPECT_EQ(xunShortestNumber_(2.5e-20), "2.5e-20");
    EXPECT_EQ(xunShortestNumber_(-459.67), "-459.67");
    EXPECT_EQ(xunShortestNumber_(1.0 / 3), "0.3333333333333333");
}

TEST(UnitString, Utf8IsDecodedStrictly) {
    unsigned long c = 0;
    EXPECT_EQ(xunDecodeUtf8_("\xC2\xB5", 0, c), 2u);
    EXPECT_EQ(c, 0xB5ul);
    EXPECT_EQ(xunDecodeUtf8_("\xE2\x81\xBB", 0, c), 3u);
    EXPECT_EQ(xunDecodeUtf8_("\xF0\x9F\x98\x80", 0, c), 4u);
    EXPECT_EQ(xunDecodeUtf8_("\xC0\xAF", 0, c), 0u);         // overlong
    EXPECT_EQ(xunDecodeUtf8_("\xED\xA0\x80", 0, c), 0u);     // surrogate
    EXPECT_EQ(xunDecodeUtf8_("\xF4\x90\x80\x80", 0, c), 0u); // above U+10FFFF
    EXPECT_EQ(xunDecodeUtf8_("\xE2\x81", 0, c), 0u);         // cut short
    EXPECT_EQ(xunDecodeUtf8_("\x80", 0, c), 0u);
}

TEST(UnitPrefixes, SymbolsAndNames) {
    EXPECT_EQ(xunPrefixAt_(xunFindPrefix_("dam", false, 0)).exponent, 1);
    EXPECT_EQ(xunPrefixAt_(xunFindPrefix_("km", false, 0)).exponent, 3);
    EXPECT_EQ(xunPrefixAt_(xunFindPrefix_("\xC2\xB5m", false, 0)).exponent, -6);
    EXPECT_EQ(xunPrefixAt_(xunFindPrefix_("\xCE\xBCm", false, 0)).exponent, -6);
    EXPECT_EQ(xunPrefixAt_(xunFindPrefix_("um", false, 0)).exponent, -6);
    EXPECT_EQ(xunPrefixAt_(xunFindPrefix_("kilometre", true, 0)).exponent, 3);
    EXPECT_EQ(xunPrefixAt_(xunFindPrefix_("dekameter", true, 0)).exponent, 1);
    // A prefix needs something after it.
    EXPECT_EQ(xunFindPrefix_("k", false, 0), std::string_view::npos);
    EXPECT_EQ(xunFindPrefix_("kilo", true, 0), std::string_view::npos);
    // "da" is found before "d".
    const std::size_t da = xunFindPrefix_("dam", false, 0);
    EXPECT_EQ(std::string(xunPrefixAt_(da).symbol), "da");
    EXPECT_EQ(xunPrefixAt_(xunFindPrefix_("dam", false, da + 1)).exponent, -1);
    EXPECT_EQ(xunApplyPrefix_(1.0, -3), 1.0 / 1000);
    EXPECT_EQ(xunApplyPrefix_(0.3048, 3), 0.3048 * 1000);
    EXPECT_EQ(std::string(xunPrefixAsciiSymbol_(xunFindPrefix_("\xCE\xBCm", false, 0))), "u");
    EXPECT_EQ(std::string(xunPrefixUnicodeSymbol_(xunFindPrefix_("um", false, 0))), "\xC2\xB5");
}

} // namespace
