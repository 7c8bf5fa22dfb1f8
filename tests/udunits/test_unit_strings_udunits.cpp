// Unit strings against UDUNITS-2, which reads the UDUNITS-2/CF notation by
// its own grammar and database:
// - every line of the table (tests/data/unit-strings.txt) that UDUNITS-2
//   reads means the same unit here and there, except the lines marked
//   ud=differs, where it must mean another one;
// - the CF text (xunGetUnitText) of every unit of the default installation
//   reads in UDUNITS-2 with the same factor and offset, to 1e-12;
// - every name of the CF notation's atoms (units/CfAtoms.h), with every SI
//   prefix it takes, means what UDUNITS-2 means by it;
// - the names of the default installation that UDUNITS-2 reads as another
//   unit are exactly those that docs/unit-strings.md lists.
#include <gtest/gtest.h>

#include <udunits2.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "unit_strings_table.h"
#include "udunits_handles.h"
#include "units/CfAtoms.h"
#include "units/UnitPrefixes.h"
#include "units/UnitString.h"
#include "xun.h"

namespace {

using xuntest::ConverterPtr;
using xuntest::UnitPtr;

struct Meaning {
    double factor = 1.0;
    double offset = 0.0;
    double powers[7] = {};
};

Meaning MeaningOf(int tag) {
    Meaning m;
    double factors[7];
    xunUnitGetParameters(tag, &m.factor, &m.offset, m.powers, factors);
    return m;
}

Meaning MeaningOf(const XunUnitValue& value) {
    Meaning m;
    m.factor = value.factor;
    m.offset = value.offset;
    for (int i = 0; i < 7; ++i)
        m.powers[i] = value.powers[i];
    return m;
}

ut_system* System() {
    static ut_system* system = [] {
        ut_set_error_message_handler(ut_ignore);
        return ut_read_xml(nullptr);
    }();
    return system;
}

// The coherent SI unit of the exponents; null when one is not an integer.
UnitPtr CoherentSiUnit(const double powers[7]) {
    static const char* const kSymbols[7] = {"m", "kg", "s", "K", "A", "mol", "cd"};
    UnitPtr result(ut_get_dimensionless_unit_one(System()));
    for (int i = 0; i < 7; ++i) {
        if (powers[i] == 0)
            continue;
        if (powers[i] != std::floor(powers[i]))
            return nullptr;
        UnitPtr base(ut_get_unit_by_symbol(System(), kSymbols[i]));
        UnitPtr power(ut_raise(base.get(), static_cast<int>(powers[i])));
        result.reset(ut_multiply(result.get(), power.get()));
    }
    return result;
}

enum class Reading { NotRead, Agrees, Differs, Inexpressible };

// How UDUNITS-2 reads text against the meaning: not at all, the same unit
// (factor and offset within 1e-12, as tests/udunits/test_udunits.cpp
// compares), another one, or a dimension UDUNITS-2 cannot form.
Reading Compare(const std::string& text, const Meaning& meaning, std::string* theirs = nullptr) {
    const UnitPtr target = CoherentSiUnit(meaning.powers);
    if (!target)
        return Reading::Inexpressible;
    std::vector<char> trimmed(text.begin(), text.end());
    trimmed.push_back('\0');
    ut_trim(trimmed.data(), UT_UTF8);
    const UnitPtr unit(ut_parse(System(), trimmed.data(), UT_UTF8));
    if (!unit)
        return Reading::NotRead;
    if (ut_are_convertible(unit.get(), target.get()) == 0) {
        if (theirs != nullptr)
            *theirs = "another dimension";
        return Reading::Differs;
    }
    const ConverterPtr converter(ut_get_converter(unit.get(), target.get()));
    const double atZero = cv_convert_double(converter.get(), 0.0);
    const double atOne = cv_convert_double(converter.get(), 1.0);
    const double factor = atOne - atZero;
    if (theirs != nullptr)
        *theirs = "factor " + std::to_string(factor) + ", offset " + std::to_string(atZero);
    const double scale = std::fabs(meaning.factor);
    if (std::fabs(factor - meaning.factor) <= 1e-12 * scale &&
        std::fabs(atZero - meaning.offset) <= 1e-12 * std::max(std::fabs(meaning.offset), scale))
        return Reading::Agrees;
    return Reading::Differs;
}

class UnitStringsUdunits : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        setenv("KORVANE_HOME", (std::string(std::getenv("XUN_TEST_DATA")) + "/../../data").c_str(),
               1);
        testing::internal::CaptureStdout();
        xunLoadItemTypeTables("");
        testing::internal::GetCapturedStdout();
    }
    void SetUp() override { ASSERT_NE(System(), nullptr); }
};

TEST_F(UnitStringsUdunits, TheTableMeansWhatUdunitsMeansWhereItReadsTheText) {
    std::string error;
    const std::vector<xuntest::UnitStringCase> cases = xuntest::ReadUnitStringTable(error);
    ASSERT_EQ(error, "");
    int compared = 0, notRead = 0, inexpressible = 0, differ = 0;
    for (const xuntest::UnitStringCase& c : cases) {
        if (c.kind == '!')
            continue;
        int tag = 0;
        ASSERT_EQ(xunParseUnit(c.text.c_str(), &tag), 1) << c.written;
        std::string theirs;
        const Reading reading = Compare(c.text, MeaningOf(tag), &theirs);
        if (c.Has("ud=differs")) {
            EXPECT_EQ(reading, Reading::Differs)
                << "unit-strings.txt:" << c.line << ": '" << c.written
                << "' is marked ud=differs, but UDUNITS-2 reads it alike or not at all";
            ++differ;
            continue;
        }
        switch (reading) {
        case Reading::NotRead:
            ++notRead;
            break;
        case Reading::Inexpressible:
            ++inexpressible;
            break;
        case Reading::Agrees:
            ++compared;
            break;
        case Reading::Differs:
            ADD_FAILURE() << "unit-strings.txt:" << c.line << ": '" << c.written
                          << "': UDUNITS-2 reads " << theirs << "; here " << c.ident << " "
                          << MeaningOf(tag).factor;
            break;
        }
    }
    std::cout << compared << " lines mean the same in UDUNITS-2, " << differ
              << " mean another unit there (as listed), " << notRead
              << " are not read by UDUNITS-2, " << inexpressible
              << " have a dimension UDUNITS-2 cannot form\n";
    EXPECT_GT(compared, 700);
}

// The texts this library writes for CF units attributes read back in
// UDUNITS-2 as the same unit.
TEST_F(UnitStringsUdunits, EveryCfTextReadsAlikeInUdunits) {
    int tag = 0;
    const char* key = nullptr;
    int compared = 0;
    std::vector<std::string> inexpressible;
    for (int previous = 0; xunGetNextUnit(previous, &tag, &key) == 1; previous = tag) {
        const char* text = nullptr;
        ASSERT_EQ(xunGetUnitText(tag, XUN_NOTATION_CF, &text), 1);
        const char* ident = nullptr;
        xunGetUnitIdent(tag, &ident);
        std::string theirs;
        const Reading reading = Compare(text, MeaningOf(tag), &theirs);
        if (reading == Reading::Inexpressible) {
            inexpressible.push_back(ident);
            continue;
        }
        EXPECT_EQ(reading, Reading::Agrees) << ident << " '" << text << "': " << theirs;
        ++compared;
    }
    // Only the units with fractional exponents (Manning, Strickler, Chezy).
    EXPECT_EQ(inexpressible, std::vector<std::string>(
                                 {"UnitSecondPerCubeRootMeter", "UnitCubeRootMeterPerSecond",
                                  "UnitSquareRootMeterPerSecond", "UnitSquareRootFootPerSecond"}));
    EXPECT_GE(compared, 383);
}

// The atoms the CF texts are written with mean in UDUNITS-2 what they mean
// here, alone and with every SI prefix they take.
TEST_F(UnitStringsUdunits, TheCfAtomsAreUdunitsNames) {
    int checked = 0;
    for (int i = 0; i < xunCfAtomCount_(); ++i) {
        std::vector<std::string> names = {xunCfAtomName_(i)};
        if (xunCfAtomTakesPrefixes_(i))
            for (std::size_t p = 0; p < xunPrefixCount_(); ++p)
                if (std::strcmp(xunPrefixAsciiSymbol_(p), xunPrefixAt_(p).symbol) == 0)
                    names.push_back(std::string(xunPrefixAt_(p).symbol) + xunCfAtomName_(i));
        for (const std::string& name : names) {
            XunAtom atom;
            ASSERT_EQ(xunCfAtoms_().FindAtom(name, true, atom), XunAtomLookup::Found) << name;
            std::string theirs;
            EXPECT_EQ(Compare(name, MeaningOf(atom.value), &theirs), Reading::Agrees)
                << name << ": UDUNITS-2 reads " << theirs;
            ++checked;
        }
    }
    EXPECT_GT(checked, 500);
}

// The names of the default installation that UDUNITS-2 reads as another
// unit; docs/unit-strings.md explains each. A name means what the
// installation defines.
const std::set<std::string> kReadOtherwise = {
    // The year and the month: UDUNITS-2's are the tropical year and a
    // twelfth of it; "a" is the are there.
    "a",
    "year",
    "yr",
    "month",
    // Symbols UDUNITS-2 reads as other units: the knot, the milliphot, the
    // millibarn, the fluid ounce, milli-H2O, kilo-hm (a kilohectometre),
    // kilophot, g to the power 0, the petasiemens.
    "kt",
    "mph",
    "mb",
    "oz",
    "mH2O",
    "kilohm",
    "kph",
    "g0",
    "PS",
    // Definitions that differ: the torr (exactly 101325/760 Pa here), the
    // calorie (thermochemical here), the electronvolt (exact since 2019
    // here), the horsepower, the US gallon and the barrel (rounded there),
    // the acre, the fathom (survey-foot based there), the darcy (rounded
    // there), the foot-candle, the nautical mile ("nmi" is a nanomile
    // there), the million cubic metres ("Mm3" is the cubic megametre there).
    "Torr",
    "torr",
    "cal",
    "calorie",
    "kcal",
    "kilocalorie",
    "eV",
    "electronvolt",
    "hp",
    "horsepower",
    "gal",
    "gallon",
    "gallons",
    "bbl",
    "barrel",
    "barrels",
    "acre",
    "fathom",
    "fathoms",
    "darcy",
    "darcies",
    "millidarcy",
    "millidarcies",
    "footcandle",
    "footcandles",
    "nmi",
    "Mm3",
};

TEST_F(UnitStringsUdunits, NamesThatUdunitsReadsAsAnotherUnit) {
    std::set<std::string> found;
    std::set<std::string> names;
    int tag = 0;
    const char* key = nullptr;
    for (int previous = 0; xunGetNextUnit(previous, &tag, &key) == 1; previous = tag) {
        std::vector<std::string> own;
        const char* text = nullptr;
        xunGetUnitKey(tag, &text);
        own.push_back(text);
        xunGetUnitAbbreviation(tag, &text);
        own.push_back(text);
        for (int seq = 1; xunGetUnitAlias(tag, seq, &text) == 1; ++seq)
            own.push_back(text);
        const Meaning meaning = MeaningOf(tag);
        for (const std::string& name : own) {
            // Names of one word: a blank, a hyphen or an operator makes a
            // product or quotient in UDUNITS-2 ("degree Celsius" is the
            // degree times the degree Celsius there), which differs from
            // a name as a whole because of its words.
            bool oneWord = !name.empty();
            for (std::size_t i = 0; i < name.size();) {
                unsigned long c = 0;
                const std::size_t length = xunDecodeUtf8_(name, i, c);
                oneWord = oneWord && length != 0 && (xunIsNameCodePoint_(c) || c == '%');
                i += length == 0 ? 1 : length;
            }
            if (!oneWord || !names.insert(name).second)
                continue;
            // Only names that mean this unit here (not an earlier unit's).
            int back = 0;
            if (xunParseUnit(name.c_str(), &back) != 1 || back != tag)
                continue;
            if (Compare(name, meaning) == Reading::Differs)
                found.insert(name);
        }
    }
    std::string unlisted, stale;
    for (const std::string& name : found)
        if (kReadOtherwise.count(name) == 0)
            unlisted += "\"" + name + "\", ";
    for (const std::string& name : kReadOtherwise)
        if (found.count(name) == 0)
            stale += "\"" + name + "\", ";
    EXPECT_EQ(unlisted, "") << "UDUNITS-2 reads these names as other units: list them here and "
                               "in docs/unit-strings.md";
    EXPECT_EQ(stale, "") << "listed, but UDUNITS-2 reads them alike (or not at all)";
}

} // namespace
