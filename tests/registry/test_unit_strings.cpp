// Unit strings against registries: the name step, prefixes, case, the
// registered unit a meaning resolves to, the run-time unit made when none
// does (once per meaning, per registry), the item types' allowed units, the
// texts in three notations, near names and the failures - through the C
// interface over the default installation, and through registry/UnitStrings.h
// over registries of the tests' own.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/Contract.h"
#include "registry/UnitStrings.h"
#include "registry_access.h"
#include "xun.h"

namespace {

std::string DataDir() {
    return std::string(std::getenv("XUN_TEST_DATA")) + "/../../data";
}

void LoadDefaultInstallation() {
    setenv("KORVANE_HOME", DataDir().c_str(), 1);
    testing::internal::CaptureStdout();
    xunLoadItemTypeTables("");
    testing::internal::GetCapturedStdout();
}

int Tag(const char* ident) {
    int tag = 0;
    EXPECT_EQ(xunGetUnitTagFromIdent(ident, &tag), 1) << ident;
    return tag;
}

std::string Ident(int tag) {
    const char* ident = nullptr;
    return xunGetUnitIdent(tag, &ident) == 1 ? ident : "(no unit " + std::to_string(tag) + ")";
}

// The ident of the unit a text resolves to, or "!" and the message.
std::string Parse(const std::string& text) {
    int tag = -1;
    if (xunParseUnit(text.c_str(), &tag) == 1)
        return Ident(tag);
    EXPECT_EQ(tag, 0) << text;
    const char* message = nullptr;
    xunGetLastError(&message);
    return std::string("!") + message;
}

std::string LastError(int* code = nullptr) {
    const char* message = nullptr;
    const int c = xunGetLastError(&message);
    if (code != nullptr)
        *code = c;
    return message;
}

std::string Text(int tag, int notation) {
    const char* text = nullptr;
    EXPECT_EQ(xunGetUnitText(tag, notation, &text), 1) << tag << " " << notation;
    return text != nullptr ? text : "";
}

struct Meaning {
    double factor, offset;
    double powers[7];
};

Meaning MeaningOf(int tag) {
    Meaning m{};
    double factors[7];
    EXPECT_EQ(xunUnitGetParameters(tag, &m.factor, &m.offset, m.powers, factors), 1);
    return m;
}

class UnitStrings : public testing::Test {
  protected:
    void SetUp() override { LoadDefaultInstallation(); }
};

TEST_F(UnitStrings, NamesComeFirstByteForByte) {
    EXPECT_EQ(Parse("UnitMeter"), "UnitMeter");                             // ident
    EXPECT_EQ(Parse("cubic meter per second"), "UnitCubicMeterPerSecond");  // description
    EXPECT_EQ(Parse("cubic meters per second"), "UnitCubicMeterPerSecond"); // plural
    EXPECT_EQ(Parse("stoke"), "UnitStokes");                                // singular
    EXPECT_EQ(Parse("cfs"), "UnitCubicFootPerSecond");                      // alias
    EXPECT_EQ(Parse("m\xC2\xB3/s"), "UnitCubicMeterPerSecond");             // abbreviation
    EXPECT_EQ(Parse("\xC2\xB0"
                    "C"),
              "UnitDegreeCelsius");
    EXPECT_EQ(Parse("mH2O"), "UnitMeterOfWater");
    EXPECT_EQ(Parse("ly/d"), "UnitLangleyPerDay");
    EXPECT_EQ(Parse("MGD"), "UnitMillionUSGallonPerDay");
    // The designed name search gives the same units.
    for (const char* name : {"cubic meters per second", "cfs", "degrees Celsius", "m3/s"}) {
        int byName = 0;
        ASSERT_EQ(xunGetUnitTag(name, &byName), 1) << name;
        EXPECT_EQ(Parse(name), Ident(byName)) << name;
    }
    // Blanks around a name do not count.
    EXPECT_EQ(Parse("  cfs\t"), "UnitCubicFootPerSecond");
}

TEST_F(UnitStrings, AnIdentWinsOverDescriptionsAliasesAndAbbreviations) {
    // A unit whose ident is the alias "cfs" of another unit.
    ASSERT_EQ(xunUnitNew("cfs", "cubic furlong per second", "cufs", "UnitMeter*2"), 1);
    EXPECT_EQ(Parse("cfs"), "cfs");
    // An alias wins over an abbreviation: "m" is the alias of the meter and
    // would be the abbreviation of this one.
    ASSERT_EQ(xunUnitNew("UnitM", "m-unit", "m", "UnitMeter*3"), 1);
    EXPECT_EQ(Parse("m"), "UnitMeter");
}

TEST_F(UnitStrings, TheGreekMuIsTheMicroSign) {
    EXPECT_EQ(Parse("\xCE\xBCg/l"), "UnitMicrogramPerLiter");
    EXPECT_EQ(Parse("\xC2\xB5g/l"), "UnitMicrogramPerLiter");
    EXPECT_EQ(Parse("ug/l"), "UnitMicrogramPerLiter");
    EXPECT_EQ(Parse("\xCE\xBCm"), "UnitMicrometer");
    EXPECT_EQ(Parse("\xCE\xBCmol/(m\xC2\xB2\xC2\xB7s)"), "UnitMicromolePerSquareMeterPerSecond");
    // In a composed text too.
    EXPECT_EQ(Parse("\xCE\xBCS cm-1"), "UnitMicrosiemensPerCentimeter");
}

TEST_F(UnitStrings, CaseCountsOnlyWhereNoNameHasTheTextExactly) {
    EXPECT_EQ(Parse("CFS"), "UnitCubicFootPerSecond");
    EXPECT_EQ(Parse("KM"), "UnitKilometer");
    EXPECT_EQ(Parse("Cubic Meters Per Second"), "UnitCubicMeterPerSecond");
    EXPECT_EQ(Parse("KG M-2 SEC-1"), "UnitKilogramPerSquareMeterPerSecond");
    // Exact first: "S" is the siemens, also in a product.
    EXPECT_EQ(Parse("KG M-2 S-1"), "xun:kg/(m2*S)");
    // Exact first: "mS" and "ms" are two units.
    EXPECT_EQ(Parse("mS"), "UnitMillisiemens");
    EXPECT_EQ(Parse("ms"), "UnitMillisecond");
    EXPECT_EQ(Parse("MBAR"), "UnitMillibar");
    EXPECT_EQ(Parse("GPD"), "UnitUSGallonPerDay");
    // A text that several units have when case is ignored is refused:
    // "mHZ" is the millihertz or the megahertz.
    int code = 0;
    EXPECT_EQ(Parse("mHZ"), "!xunParseUnit: 'mHZ' stops making sense at byte 1: 'mHZ' names "
                            "several units when case is ignored ('mHz' (millihertz), 'MHz' "
                            "(megahertz); write it in the right case)");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_NOT_FOUND);
}

TEST_F(UnitStrings, AmbiguousCaseIsRefusedWithTheCandidates) {
    // Two units whose names differ in case only.
    ASSERT_EQ(xunUnitNew("UnitQx", "qx", "qx", "UnitMeter*2"), 1);
    ASSERT_EQ(xunUnitNew("UnitQX", "QX", "QX", "UnitMeter*3"), 1);
    EXPECT_EQ(Parse("qx"), "UnitQx");
    EXPECT_EQ(Parse("QX"), "UnitQX");
    int code = 0;
    EXPECT_EQ(Parse("Qx"), "!xunParseUnit: 'Qx' stops making sense at byte 1: 'Qx' names several "
                           "units when case is ignored ('qx' (qx), 'QX' (QX); write it in the "
                           "right case)");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_NOT_FOUND);
}

TEST_F(UnitStrings, PrefixesBySymbolAndByName) {
    const int meter = Tag("UnitMeter");
    auto factorOf = [](const std::string& text) {
        int tag = 0;
        EXPECT_EQ(xunParseUnit(text.c_str(), &tag), 1) << text << ": " << LastError();
        return MeaningOf(tag).factor;
    };
    EXPECT_DOUBLE_EQ(factorOf("dam"), 10.0);
    EXPECT_DOUBLE_EQ(factorOf("hm"), 100.0);
    EXPECT_DOUBLE_EQ(factorOf("Gm"), 1e9);
    EXPECT_DOUBLE_EQ(factorOf("pm"), 1e-12);
    EXPECT_DOUBLE_EQ(factorOf("\xCE\xBCm"), 1e-6);
    EXPECT_DOUBLE_EQ(factorOf("decameter"), 10.0);
    EXPECT_DOUBLE_EQ(factorOf("dekameters"), 10.0);
    EXPECT_DOUBLE_EQ(factorOf("gigaliters"), 1e6);
    EXPECT_DOUBLE_EQ(factorOf("nanosecond"), 1e-9);
    EXPECT_DOUBLE_EQ(factorOf("kBq"), 1e3);
    EXPECT_DOUBLE_EQ(factorOf("mK"), 1e-3);
    EXPECT_DOUBLE_EQ(factorOf("Mg"), 1e3);
    // A prefix goes before an exponent: dam3 is (dam)³, a megalitre.
    EXPECT_EQ(Parse("dam3"), "UnitMegaliter");
    EXPECT_EQ(Parse("GL"), "UnitCubicHectometer");
    // A whole name wins over a prefix: "min" is the minute, "Pa" the
    // pascal, "ft" the foot, "kt" the kilotonne.
    EXPECT_EQ(Parse("min"), "UnitMinute");
    EXPECT_EQ(Parse("Pa"), "UnitPascal");
    EXPECT_EQ(Parse("ft"), "UnitFoot");
    EXPECT_EQ(Parse("kt"), "UnitKilotonne");
    // A prefix alone is no unit ("k" is the kelvin when case is ignored).
    EXPECT_EQ(Parse("mega").substr(0, 1), "!");
    EXPECT_EQ(Parse("da"), "xun:da"); // deci and the year (its symbol a)
    EXPECT_EQ(Parse("k"), "UnitKelvin");
    (void)meter;
}

TEST_F(UnitStrings, AMeaningResolvesToTheFirstRegisteredUnitOfIt) {
    EXPECT_EQ(Parse("ft^3/s"), "UnitCubicFootPerSecond");
    EXPECT_EQ(Parse("m^3/s"), "UnitCubicMeterPerSecond");
    EXPECT_EQ(Parse("kg/(m2*s)"), "UnitKilogramPerSquareMeterPerSecond");
    EXPECT_EQ(Parse("kg m-2 s-1"), "UnitKilogramPerSquareMeterPerSecond");
    EXPECT_EQ(Parse("m3.s-1"), "UnitCubicMeterPerSecond");
    EXPECT_EQ(Parse("m3 s-1"), "UnitCubicMeterPerSecond");
    EXPECT_EQ(Parse("cm/hr"), "UnitCentimeterPerHour");
    EXPECT_EQ(Parse("W/m^2"), "UnitWattPerSquareMeter");
    EXPECT_EQ(Parse("K*d"), "UnitDegreeDay");
    EXPECT_EQ(Parse("0.3048 m"), "UnitFoot");
    EXPECT_EQ(Parse("K @ 273.15"), "UnitDegreeCelsius");
    EXPECT_EQ(Parse("g/(m\xC2\xB2\xC2\xB7"
                    "d)"),
              "UnitGramPerSquareMeterPerDay");
    // Equal meanings: the first registered. N·m is the joule's meaning, mg/l
    // the one of g/m³ (registered before it).
    EXPECT_EQ(Parse("N.m"), "UnitJoule");
    EXPECT_EQ(Parse("mg l-1"), "UnitGramPerCubicMeter");
    // But the name is that unit itself, also in parentheses.
    EXPECT_EQ(Parse("N m"), "UnitNewtonMeter");
    EXPECT_EQ(Parse("mg/l"), "UnitMilligramPerLiter");
    EXPECT_EQ(Parse("(Celsius difference)"), "UnitDegreeCelsiusDifference");
}

TEST_F(UnitStrings, WithinTheToleranceWhenNoneIsExact) {
    // 1e-12 relative: 0.30480000000001 m is the foot, 0.3048001 m is not.
    EXPECT_EQ(Parse("0.30480000000000024 m"), "UnitFoot");
    EXPECT_NE(Parse("0.3048001 m"), "UnitFoot");
    // The offset too, relative to the larger of offset and factor.
    EXPECT_EQ(Parse("K @ 273.1500000000001"), "UnitDegreeCelsius");
    EXPECT_NE(Parse("K @ 273.1501"), "UnitDegreeCelsius");
}

TEST_F(UnitStrings, ARunTimeUnitIsMadeOncePerMeaning) {
    int first = 0;
    ASSERT_EQ(xunParseUnit("km/s", &first), 1) << LastError();
    EXPECT_GE(first, xun::contract::kFirstRunTimeUnitKey);
    EXPECT_EQ(Ident(first), "xun:km/s");
    const char* text = nullptr;
    // The description says where the unit comes from: the text alone would
    // make "km/" a name of it by the singular rule of the name search.
    ASSERT_EQ(xunGetUnitKey(first, &text), 1);
    EXPECT_EQ(std::string(text), "km/s (parsed)");
    ASSERT_EQ(xunGetUnitAbbreviation(first, &text), 1);
    EXPECT_EQ(std::string(text), "km/s");
    ASSERT_EQ(xunGetUnitExpression(first, &text), 1);
    EXPECT_EQ(std::string(text), "km/s");
    const Meaning m = MeaningOf(first);
    EXPECT_EQ(m.factor, 1000.0);
    EXPECT_EQ(m.powers[0], 1.0);
    EXPECT_EQ(m.powers[2], -1.0);
    // Every spelling of that meaning finds it.
    for (const char* again : {"km/s", "km s-1", "km.s-1", "kilometers per second", " km / s ",
                              "1000 m/s", "km*s^-1", "(km/s)"}) {
        int tag = 0;
        ASSERT_EQ(xunParseUnit(again, &tag), 1) << again << ": " << LastError();
        EXPECT_EQ(tag, first) << again;
    }
    // The next one takes the next key.
    int second = 0;
    ASSERT_EQ(xunParseUnit("J/cm2", &second), 1);
    EXPECT_EQ(second, first + 1);
    EXPECT_EQ(Ident(second), "xun:J/cm2");
    ASSERT_EQ(xunGetUnitAbbreviation(second, &text), 1);
    EXPECT_EQ(std::string(text), "J/cm\xC2\xB2");
    // It is a unit like any other: found by ident and name, converted.
    int byName = 0;
    ASSERT_EQ(xunGetUnitTag("km/s (parsed)", &byName), 1);
    EXPECT_EQ(byName, first);
    EXPECT_EQ(Parse("km/"), "!xunParseUnit: 'km/' stops making sense at byte 4: a unit or number "
                            "is missing at the end");
    double result = 0;
    ASSERT_EQ(xunConvertUnit(first, Tag("UnitKilometerPerHour"), &result, 1.0), 1);
    EXPECT_DOUBLE_EQ(result, 3600.0);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

TEST_F(UnitStrings, RunTimeUnitsCarryTheUnitArithmetic) {
    // The same unit as xunUnitNew makes from the same expression.
    int parsed = 0;
    ASSERT_EQ(xunParseUnit("ft^3/min^2", &parsed), 1);
    ASSERT_EQ(xunUnitNew("UnitByExpression", "x", "x", "(UnitFoot^3)/(UnitMinute^2)"), 1);
    const int made = Tag("UnitByExpression");
    double f1, o1, p1[7], s1[7], f2, o2, p2[7], s2[7];
    ASSERT_EQ(xunUnitGetParameters(parsed, &f1, &o1, p1, s1), 1);
    ASSERT_EQ(xunUnitGetParameters(made, &f2, &o2, p2, s2), 1);
    EXPECT_DOUBLE_EQ(f1, f2);
    EXPECT_EQ(o1, o2);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(p1[i], p2[i]) << i;
        EXPECT_DOUBLE_EQ(s1[i], s2[i]) << i;
    }
}

TEST_F(UnitStrings, OffsetsOfTheUdunitsNotation) {
    int tag = 0;
    ASSERT_EQ(xunParseUnit("degC @ 10", &tag), 1);
    EXPECT_EQ(Ident(tag), "xun:degC @ 10");
    EXPECT_DOUBLE_EQ(MeaningOf(tag).offset, 283.15);
    EXPECT_EQ(Parse("K after 273.15"), "UnitDegreeCelsius");
    EXPECT_EQ(Parse("K from 273.15"), "UnitDegreeCelsius");
    EXPECT_EQ(Parse("0.5555555555555556 K @ 459.67"), "UnitDegreeFahrenheit");
    // Arithmetic drops an offset, as in UDUNITS-2.
    EXPECT_EQ(Parse("1 degC"), "UnitKelvin");
    EXPECT_EQ(Parse("degC/s"), Parse("K/s"));
}

TEST_F(UnitStrings, WrittenNames) {
    EXPECT_EQ(Parse("liters per second"), "UnitLiterPerSecond");
    EXPECT_EQ(Parse("cubic feet per second"), "UnitCubicFootPerSecond");
    EXPECT_EQ(Parse("megajoules per square meter"), "UnitMegajoulePerSquareMeter");
    EXPECT_EQ(Parse("acre-feet per day"), "UnitAcreFootPerDay");
    EXPECT_EQ(Parse("cubic feet per second per acre"), Parse("ft3/s/ac"));
    EXPECT_EQ(Parse("watts per square meter kelvin"), "UnitWattPerSquareMeterKelvin");
    // 'per' divides by all that follows up to the next 'per'.
    EXPECT_EQ(Parse("megawatt per square meter kelvin"), Parse("MW/(m2*K)"));
    EXPECT_EQ(Parse("meter per second squared"), "UnitMeterPerSecondSquared");
    EXPECT_EQ(Parse("m/s squared"), "UnitMeterPerSecondSquared");
    EXPECT_EQ(Parse("square decameter"), Parse("dam2"));
}

TEST_F(UnitStrings, CanonicalUnitsOfCfData) {
    EXPECT_EQ(Parse("degree_east"), "UnitDegree");
    EXPECT_EQ(Parse("degrees_north"), "UnitDegree");
    EXPECT_EQ(Parse("degree_C"), "UnitDegreeCelsius");
    EXPECT_EQ(Parse("degC"), "UnitDegreeCelsius");
    EXPECT_EQ(Parse("Bq"), "UnitBecquerel");
    EXPECT_EQ(Parse("W m-2"), "UnitWattPerSquareMeter");
    EXPECT_EQ(Parse("mol m-3"), "UnitMolePerCubicMeter");
    EXPECT_EQ(Parse("m2 s-1"), "UnitSquareMeterPerSecond");
    EXPECT_EQ(Parse("Pa s"), "UnitPascalSecond");
    EXPECT_EQ(Parse("1e-3"), "UnitPerMille");
    EXPECT_EQ(Parse("1"), "UnitFraction");
    EXPECT_EQ(Parse("%"), "UnitPercent");
    EXPECT_EQ(Parse("Bq m-3").substr(0, 4), "xun:");
}

TEST_F(UnitStrings, UnknownNamesNameNearOnes) {
    int code = 0;
    EXPECT_EQ(Parse("CFSS"), "!xunParseUnit: 'CFSS' stops making sense at byte 1: no unit is "
                             "named 'CFSS'; near names: 'cfs'");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_NOT_FOUND);
    EXPECT_EQ(Parse("metre per sekond"),
              "!xunParseUnit: 'metre per sekond' stops making sense at byte 11: no unit is named "
              "'sekond'; near names: 'second'");
    EXPECT_EQ(Parse("kilometre/hoor"),
              "!xunParseUnit: 'kilometre/hoor' stops making sense at byte 11: no unit is named "
              "'hoor'; near names: 'hour'");
    // Up to three, nearest first.
    const std::string many = Parse("mbr");
    EXPECT_NE(many.find("; near names: "), std::string::npos) << many;
    EXPECT_LE(std::count(many.begin(), many.end(), ','), 2) << many;
    // None when nothing is near.
    EXPECT_EQ(Parse("furlong"), "!xunParseUnit: 'furlong' stops making sense at byte 1: no unit "
                                "is named 'furlong'");
}

TEST_F(UnitStrings, FailuresSayWhereTheTextStopsMakingSense) {
    int code = 0;
    EXPECT_EQ(Parse(""), "!xunParseUnit: the text is empty");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_EXPRESSION);
    EXPECT_EQ(Parse("kg/(m2*s"),
              "!xunParseUnit: 'kg/(m2*s' stops making sense at byte 9: ')' is missing at the end");
    EXPECT_EQ(Parse("m*0"), "!xunParseUnit: 'm*0' stops making sense at byte 3: a factor of 0 "
                            "gives no unit");
    EXPECT_EQ(Parse("m\xFF"), "!xunParseUnit: 'm\\xFF' stops making sense at byte 2: the byte "
                              "0xFF is not valid UTF-8 here");
    EXPECT_EQ(Parse("ft^1000"), "!xunParseUnit: 'ft^1000' stops making sense at byte 4: the "
                                "exponent 1000 is larger than 100 in size");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_LIMIT);
    const std::string huge(1000000, 'm');
    EXPECT_EQ(Parse(huge),
              "!xunParseUnit: '" + std::string(40, 'm') +
                  "' stops making sense at byte 1025: the text is longer than 1024 bytes");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_LIMIT);
}

TEST_F(UnitStrings, AUnitOfKeyZeroIsNoAnswer) {
    ASSERT_EQ(xuntest::AddUnit(new CKVunit("zero unit", "zu", 0, 2.0, CKVdimension::GetLength())),
              1);
    int code = 0;
    EXPECT_EQ(Parse("zero unit"),
              "!xunParseUnit: 'zero unit' names the unit '' of key 0, which converts nothing");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_NO_REAL_UNIT);
    // Its meaning is none either: 2 m is made at run time.
    EXPECT_EQ(Parse("2 m").substr(0, 4), "xun:");
}

TEST_F(UnitStrings, NoKeyLeftForARunTimeUnit) {
    ASSERT_EQ(
        xuntest::AddUnit(new CKVunit("last", "last", INT_MAX, 1.0, CKVdimension::GetLength())), 1);
    int code = 0;
    EXPECT_EQ(Parse("km/s"), "!xunParseUnit: no key is left for a new unit (the largest key in "
                             "use is the largest int)");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_LIMIT);
    // Known meanings still resolve.
    EXPECT_EQ(Parse("km/h"), "UnitKilometerPerHour");
}

TEST_F(UnitStrings, AnIdentTakenByAnotherMeaningIsRefused) {
    ASSERT_EQ(xunUnitNew("xun:km/s", "not km/s", "nks", "UnitMeter*2"), 1);
    int code = 0;
    EXPECT_EQ(Parse("km/s"), "!xunParseUnit: the ident 'xun:km/s' of the unit 'km/s' is taken by "
                             "a unit of another meaning");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_TAKEN);
}

TEST_F(UnitStrings, ARepeatedTextIsAnsweredFromTheRegistrysMemory) {
    int first = 0, again = 0;
    ASSERT_EQ(xunParseUnit("ft3 s-1", &first), 1);
    ASSERT_EQ(xunParseUnit("ft3 s-1", &again), 1);
    EXPECT_EQ(again, first);
    // More texts than the memory keeps: it is emptied and still answers.
    const std::size_t count = xun::contract::kUnitStringCacheEntries + 100;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string text = "m^" + std::to_string(i % 90 + 1) + std::string(i / 90, ' ');
        int tag = 0;
        ASSERT_EQ(xunParseUnit(text.c_str(), &tag), 1) << i;
    }
    ASSERT_EQ(xunParseUnit("ft3 s-1", &again), 1);
    EXPECT_EQ(again, first);
    // A change of the units is seen at once.
    ASSERT_EQ(xunUnitNew("UnitFurlong", "furlong", "fur", "UnitFoot*660"), 1);
    EXPECT_EQ(Parse("furlong"), "UnitFurlong");
    EXPECT_EQ(Parse("fur/h").substr(0, 4), "xun:");
}

TEST_F(UnitStrings, ItemTypesAnswerWithTheirAllowedUnits) {
    int discharge = 0;
    ASSERT_EQ(xunGetItemTypeKeyFromIdent("ItemDischarge", &discharge), 1);
    auto item = [&](int key, const char* text) {
        int tag = -1;
        if (xunParseItemUnit(key, text, &tag) == 1)
            return Ident(tag);
        EXPECT_EQ(tag, 0);
        return "!" + LastError();
    };
    EXPECT_EQ(item(discharge, "cfs"), "UnitCubicFootPerSecond");
    EXPECT_EQ(item(discharge, "m3/s"), "UnitCubicMeterPerSecond");
    EXPECT_EQ(item(discharge, "l/s"), "UnitLiterPerSecond");
    EXPECT_EQ(item(discharge, "liters per second"), "UnitLiterPerSecond");
    EXPECT_EQ(item(discharge, "m3 s-1"), "UnitCubicMeterPerSecond");
    EXPECT_EQ(item(discharge, "ft^3/s"), "UnitCubicFootPerSecond");
    EXPECT_EQ(item(discharge, "1000 l/s"), "UnitCubicMeterPerSecond");
    int code = 0;
    EXPECT_EQ(item(discharge, "m"), "!xunParseItemUnit: 'm' has the dimension L, item type " +
                                        std::to_string(discharge) + " the dimension L3 T-1");
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_DIMENSION);
    // Nothing is registered for an item type: a meaning that no allowed
    // unit has is refused.
    EXPECT_EQ(item(discharge, "km3/s"),
              "!xunParseItemUnit: 'km3/s' (factor 1000000000, dimension L3 T-1) is no allowed "
              "unit of item type " +
                  std::to_string(discharge));
    LastError(&code);
    EXPECT_EQ(code, XUN_ERR_NOT_FOUND);
    EXPECT_EQ(Parse("xun:km3/s").substr(0, 1), "!");
    // A name of a unit that is not allowed answers with an allowed unit of
    // its meaning: the becquerel is the hertz for a frequency.
    int frequency = 0;
    ASSERT_EQ(xunGetItemTypeKeyFromIdent("ItemFrequency", &frequency), 1);
    EXPECT_EQ(item(frequency, "Bq"), "UnitHertz");
    // Any unit for item type 999.
    EXPECT_EQ(item(999, "N m"), "UnitNewtonMeter");
    EXPECT_EQ(item(999, "N.m"), "UnitJoule");
    EXPECT_EQ(item(12345, "m"), "!xunParseItemUnit: no item type has the key 12345");
    EXPECT_EQ(item(discharge, "furlong"),
              "!xunParseItemUnit: 'furlong' stops making sense at byte 1: no unit is named "
              "'furlong'");
}

// Every unit of the default installation reads back from each notation: to
// itself, except where the notation has no name of its own for a unit that
// an earlier unit equals (a CF text carries a meaning).
TEST_F(UnitStrings, EveryUnitReadsBackFromEachNotation) {
    const std::set<std::string> cfMeansAnEarlierUnit = {"UnitPracticalSalinityUnit",
                                                        "UnitDegreeCelsiusDifference",
                                                        "UnitDegreeFahrenheitDifference"};
    int tag = 0;
    const char* key = nullptr;
    int units = 0;
    for (int previous = 0; xunGetNextUnit(previous, &tag, &key) == 1; previous = tag) {
        ++units;
        const std::string ident = Ident(tag);
        for (int notation : {XUN_NOTATION_CF, XUN_NOTATION_ASCII, XUN_NOTATION_UNICODE}) {
            const std::string text = Text(tag, notation);
            int back = 0;
            ASSERT_EQ(xunParseUnit(text.c_str(), &back), 1)
                << ident << " " << notation << " '" << text << "': " << LastError();
            if (notation == XUN_NOTATION_CF && cfMeansAnEarlierUnit.count(ident) != 0) {
                EXPECT_LT(back, tag) << ident << " '" << text << "'";
                const Meaning a = MeaningOf(tag), b = MeaningOf(back);
                EXPECT_NEAR(a.factor, b.factor, 1e-12 * a.factor) << ident;
                EXPECT_NEAR(a.offset, b.offset, 1e-12 * a.factor) << ident;
                continue;
            }
            EXPECT_EQ(back, tag) << ident << " " << notation << " '" << text << "' -> "
                                 << Ident(back);
        }
        // ASCII is ASCII.
        for (char c : Text(tag, XUN_NOTATION_ASCII))
            EXPECT_LT(static_cast<unsigned char>(c), 0x80) << ident;
        for (char c : Text(tag, XUN_NOTATION_CF))
            EXPECT_LT(static_cast<unsigned char>(c), 0x80) << ident;
    }
    EXPECT_GE(units, 387);
}

// An exponent that arithmetic left a bit away from a fraction (1.6 - 1 is
// 0.6000000000000001, not 0.6) is written so that it reads back exactly:
// dimensions compare exactly, and "(3/5)" would be another meaning.
TEST_F(UnitStrings, ExponentsReadBackExactly) {
    struct Case {
        const char* text;
        const char* cf;
    };
    for (const Case& c : {Case{"P m^1.6", "0.1 m^0.6000000000000001 kg s-1"},
                          Case{"m^(1/3)", "m^(1/3)"}, Case{"m^(2/3) s^(5/7)", "m^(2/3) s^(5/7)"},
                          Case{"m^0.4142", "m^0.4142"}, Case{"m^1e-5", "m^1e-05"}}) {
        int tag = 0;
        ASSERT_EQ(xunParseUnit(c.text, &tag), 1) << c.text << ": " << LastError();
        EXPECT_EQ(Text(tag, XUN_NOTATION_CF), c.cf) << c.text;
        for (int notation : {XUN_NOTATION_CF, XUN_NOTATION_ASCII, XUN_NOTATION_UNICODE}) {
            const std::string text = Text(tag, notation);
            int back = 0;
            ASSERT_EQ(xunParseUnit(text.c_str(), &back), 1) << text << ": " << LastError();
            EXPECT_EQ(back, tag) << c.text << " -> '" << text << "'";
        }
    }
}

TEST_F(UnitStrings, TextsOfTheThreeNotations) {
    const int discharge = Tag("UnitCubicMeterPerSecond");
    EXPECT_EQ(Text(discharge, XUN_NOTATION_CF), "m3 s-1");
    EXPECT_EQ(Text(discharge, XUN_NOTATION_ASCII), "m3/s");
    EXPECT_EQ(Text(discharge, XUN_NOTATION_UNICODE), "m\xC2\xB3/s");
    const int flux = Tag("UnitKilogramPerSquareMeterPerSecond");
    EXPECT_EQ(Text(flux, XUN_NOTATION_CF), "kg m-2 s-1");
    EXPECT_EQ(Text(flux, XUN_NOTATION_ASCII), "kg/(m2*s)");
    EXPECT_EQ(Text(flux, XUN_NOTATION_UNICODE), "kg/(m\xC2\xB2\xC2\xB7s)");
    const int foot = Tag("UnitUSSurveyFoot");
    EXPECT_EQ(Text(foot, XUN_NOTATION_CF), "0.304800609601219 m");
    const int celsius = Tag("UnitDegreeCelsius");
    EXPECT_EQ(Text(celsius, XUN_NOTATION_CF), "degC");
    EXPECT_EQ(Text(celsius, XUN_NOTATION_ASCII), "degC");
    EXPECT_EQ(Text(celsius, XUN_NOTATION_UNICODE), "\xC2\xB0"
                                                   "C");
    const int fahrenheitDifference = Tag("UnitDegreeFahrenheitDifference");
    EXPECT_EQ(Text(fahrenheitDifference, XUN_NOTATION_CF), "0.555555555555556 K");
    // Offsets as "K @ ...": a unit made at run time.
    ASSERT_EQ(xunUnitNew("UnitReaumur", "degree Reaumur",
                         "\xC2\xB0"
                         "R\xC3\xA9",
                         "UnitKelvin*1.25+273.15"),
              1);
    EXPECT_EQ(Text(Tag("UnitReaumur"), XUN_NOTATION_CF), "1.25 K @ 218.52");
    // The texts stay valid while the registry lives.
    const char* kept = nullptr;
    ASSERT_EQ(xunGetUnitText(discharge, XUN_NOTATION_CF, &kept), 1);
    ASSERT_EQ(xunUnitNew("UnitMore", "more", "more", "UnitMeter*7"), 1);
    const char* again = nullptr;
    ASSERT_EQ(xunGetUnitText(discharge, XUN_NOTATION_CF, &again), 1);
    EXPECT_EQ(std::string(kept), "m3 s-1");
    EXPECT_EQ(std::string(again), "m3 s-1");
}

// A unit that xunParseUnit registers changes no other unit's text, so the
// texts made before are handed out again instead of being made anew; a
// change of the units from elsewhere makes them anew (with the same
// content here).
TEST_F(UnitStrings, TextsOutliveTheUnitsAParseRegisters) {
    const int flux = Tag("UnitKilogramPerSquareMeterPerSecond");
    const char* before[3] = {};
    for (int notation = 1; notation <= 3; ++notation)
        ASSERT_EQ(xunGetUnitText(flux, notation, &before[notation - 1]), 1);
    EXPECT_EQ(Parse("kg m-2 s-1 K-3").substr(0, 4), "xun:");
    for (int notation = 1; notation <= 3; ++notation) {
        const char* after = nullptr;
        ASSERT_EQ(xunGetUnitText(flux, notation, &after), 1);
        EXPECT_EQ(after, before[notation - 1]) << notation;
    }
    ASSERT_EQ(xunUnitNew("UnitOther", "other", "oth", "UnitMeter*7"), 1);
    for (int notation = 1; notation <= 3; ++notation) {
        const char* after = nullptr;
        ASSERT_EQ(xunGetUnitText(flux, notation, &after), 1);
        EXPECT_NE(after, before[notation - 1]) << notation;
        EXPECT_STREQ(after, before[notation - 1]) << notation;
    }
}

TEST_F(UnitStrings, TextFailures) {
    const char* text = "untouched";
    int code = 0;
    EXPECT_EQ(xunGetUnitText(424242, XUN_NOTATION_CF, &text), 0);
    EXPECT_EQ(LastError(&code), "xunGetUnitText: no unit has the tag 424242");
    EXPECT_EQ(code, XUN_ERR_UNKNOWN_UNIT);
    EXPECT_EQ(xunGetUnitText(Tag("UnitMeter"), 4, &text), 0);
    EXPECT_EQ(LastError(&code), "xunGetUnitText: the notation 4 is none of XUN_NOTATION_CF (1), "
                                "XUN_NOTATION_ASCII (2) and XUN_NOTATION_UNICODE (3)");
    EXPECT_EQ(code, XUN_ERR_RANGE);
    EXPECT_EQ(std::string(text), "untouched");
}

// ---- Registries of the tests' own --------------------------------------------

std::unique_ptr<CKVunit> MakeUnit(const char* ident, const char* desc, const char* abbr, long key,
                                  double factor, const CKVdimension& dim) {
    std::unique_ptr<CKVunit> unit(new CKVunit(desc, abbr, key, factor, dim));
    unit->m_strIdent = ident;
    return unit;
}

void AddTo(CKVunitRegistry& units, std::unique_ptr<CKVunit> unit) {
    ASSERT_TRUE(units.Add(unit, false));
}

int ParseIn(CKVunitRegistry& units, const char* text, const CKVunit*& unit) {
    std::string message;
    return xunParseUnitText_(units, text, unit, message);
}

TEST(UnitStringRegistries, EachRegistryKeepsItsOwnRunTimeUnitsAndMemory) {
    CKVregistries a;
    AddTo(a.units, MakeUnit("UnitMeter", "meter", "m", 1000, 1.0, CKVdimension::GetLength()));
    AddTo(a.units, MakeUnit("UnitSecond", "second", "s", 1100, 1.0, CKVdimension::GetTime()));
    std::unique_ptr<CKVregistries> b = a.Copy();
    const CKVunit* inA = nullptr;
    ASSERT_EQ(ParseIn(a.units, "m/s", inA), XUN_OK);
    EXPECT_EQ(inA->m_strIdent, "xun:m/s");
    EXPECT_EQ(inA->m_lKey, 100000);
    // The copy has no run-time unit of it and no memory of the text.
    EXPECT_EQ(b->units.FindByIdent("xun:m/s"), nullptr);
    EXPECT_EQ(b->units.Cache(), nullptr);
    const CKVunit* inB = nullptr;
    ASSERT_EQ(ParseIn(b->units, "m/s", inB), XUN_OK);
    EXPECT_NE(inB, inA);
    EXPECT_EQ(b->units.FindByIdent("xun:m/s"), inB);
    // A copy made now takes the run-time unit along (it is a unit), but not
    // the memory.
    std::unique_ptr<CKVregistries> c = a.Copy();
    EXPECT_EQ(c->units.Cache(), nullptr);
    const CKVunit* inC = nullptr;
    ASSERT_EQ(ParseIn(c->units, "m s-1", inC), XUN_OK);
    EXPECT_EQ(inC, c->units.FindByIdent("xun:m/s"));
    EXPECT_EQ(c->units.Count(), a.units.Count());
    EXPECT_NO_THROW(a.CheckInvariants());
    EXPECT_NO_THROW(b->CheckInvariants());
}

TEST(UnitStringRegistries, UnitsThatFailTheirChecksAreNeitherAtomsNorAnswers) {
    CKVregistries registries;
    AddTo(registries.units,
          MakeUnit("UnitMeter", "meter", "m", 1000, 1.0, CKVdimension::GetLength()));
    // A unit of factor infinity (a load warns of it): its name reads, its
    // meaning fails the checks of every step.
    AddTo(registries.units,
          MakeUnit("UnitHuge", "huge", "hg", 1001, HUGE_VAL, CKVdimension::GetLength()));
    const CKVunit* unit = nullptr;
    std::string message;
    EXPECT_EQ(xunParseUnitText_(registries.units, "huge", unit, message), XUN_OK);
    EXPECT_EQ(unit->m_strIdent, "UnitHuge");
    EXPECT_EQ(xunParseUnitText_(registries.units, "huge m", unit, message), XUN_ERR_EXPRESSION);
    EXPECT_EQ(message,
              "'huge m' stops making sense at byte 6: the unit's factor would be infinite");
    // A unit with a NaN exponent equals nothing.
    static const CKVdimension odd(NAN, 0, 0, 0, 0, 0, 0);
    AddTo(registries.units, MakeUnit("UnitOdd", "odd", "od", 1002, 1.0, odd));
    EXPECT_EQ(xunParseUnitText_(registries.units, "odd m", unit, message), XUN_ERR_EXPRESSION);
    EXPECT_EQ(message, "'odd m' stops making sense at byte 5: the exponent of length would not be "
                       "a number");
}

} // namespace
