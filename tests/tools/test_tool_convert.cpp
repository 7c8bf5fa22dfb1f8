// End-to-end tests of xun convert: the built program runs as a subprocess in
// tests/data/tools; standard output, standard error and exit status are
// compared exactly.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tools/tool_runner.h"
#include "registry_access.h"

using xuntest::Xun;

namespace {

TEST(ToolConvert, ByIdent) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "UnitFoot", "UnitMeter"}), 0, "0.3048\n",
                "");
}

TEST(ToolConvert, ByPluralDescriptionAndAlias) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "2", "feet", "meters"}), 0, "0.6096\n", "");
}

TEST(ToolConvert, ByAbbreviation) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1.5", "km", "m"}), 0, "1500\n", "");
}

TEST(ToolConvert, ByExpression) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "UnitMeter/UnitSecond", "km/h"}), 0, "3.6\n",
                "");
}

TEST(ToolConvert, TemperatureWithOffsets) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "100", "degC", "degF"}), 0, "212\n", "");
}

TEST(ToolConvert, NegativeValueIsNotAnOption) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "-40",
                     "\xC2"
                     "\xB0"
                     "C",
                     "K"}),
                0, "233.15\n", "");
}

TEST(ToolConvert, NegativeValueWithoutLeadingZero) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "-.5", "m", "cm"}), 0, "-50\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delete", "-.5", "-.5", "m", "cm"}), 0, "-.5\n",
                "");
}

TEST(ToolConvert, DoubleDashEndsTheOptions) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--", "-1", "m", "cm"}), 0, "-100\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--", "--float", "m", "cm"}), 1, "",
                "xun: not a number: '--float'\n");
}

TEST(ToolConvert, IncompatibleUnitsNameBothDimensions) {
    EXPECT_TOOL(
        Xun({"--home", "home", "convert", "1", "m", "s"}), 1, "",
        "xun: cannot convert 'm' (dimension L) to 's' (dimension T): the dimensions differ\n");
}

TEST(ToolConvert, IncompatibleCompositeDimensions) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "m/s",
                     "m\xC2"
                     "\xB3"
                     ""}),
                1, "",
                "xun: cannot convert 'm/s' (dimension L T-1) to 'm\xC2"
                "\xB3"
                "' (dimension L3): the dimensions differ\n");
}

// The library says why it refuses: here a unit with the key 0, which no
// unit string can name.
TEST(ToolConvert, UnitWithKeyZero) {
    EXPECT_TOOL(Xun({"--setup", "check/key_zero.xml", "convert", "1", "UnitInch", "UnitMeter"}), 1,
                "",
                "xun: cannot read the unit 'UnitInch': 'UnitInch' names the unit 'UnitInch' of "
                "key 0, which converts nothing\n");
}

TEST(ToolConvert, UnknownUnit) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "furlong", "m"}), 1, "",
                "xun: cannot read the unit 'furlong': at byte 1: no unit is named 'furlong'\n");
}

TEST(ToolConvert, UnknownNamesNameNearOnes) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "metres per secnd", "km/h"}), 1, "",
                "xun: cannot read the unit 'metres per secnd': at byte 12: no unit is named "
                "'secnd'; near names: 'second'\n");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "m", "kilometre/hoor"}), 1, "",
                "xun: cannot read the unit 'kilometre/hoor': at byte 11: no unit is named "
                "'hoor'; near names: 'hour'\n");
}

TEST(ToolConvert, TheTextSaysWhereItStopsMakingSense) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "m/(s", "m/s"}), 1, "",
                "xun: cannot read the unit 'm/(s': at byte 5: ')' is missing at the end\n");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "", "m/s"}), 1, "",
                "xun: cannot read the unit '': the text is empty\n");
}

// Composed units as people and data files write them.
TEST(ToolConvert, ComposedUnits) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "ft^3/s", "m^3/s"}), 0, "0.028316846592\n",
                "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "36", "km h-1", "m.s-1"}), 0, "10\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "m\xC2\xB3/s", "l s-1"}), 0, "1000\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "K @ 273.15", "degF"}), 0, "33.8\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "cubic meter per second", "l/s"}), 0,
                "1000\n", "");
}

TEST(ToolConvert, ComposedUnitsOfTheDefaultInstallation) {
    const std::string home = xuntest::SourceDir() + "/data";
    EXPECT_TOOL(Xun({"--home", home, "convert", "20", "kg m-2 s-1",
                     "g/(m\xC2\xB2\xC2\xB7"
                     "d)"}),
                0, "1728000000\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1", "ft^3/s", "m^3/s"}), 0, "0.028316846592\n",
                "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1", "m3.s-1", "l/s"}), 0, "1000\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1", "CFS", "m3 s-1"}), 0, "0.028316846592\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1", "CFSS", "m3/s"}), 1, "",
                "xun: cannot read the unit 'CFSS': at byte 1: no unit is named 'CFSS'; near "
                "names: 'cfs'\n");
}

TEST(ToolConvert, MalformedNumber) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1.5x", "m", "ft"}), 1, "",
                "xun: not a number: '1.5x'\n");
}

TEST(ToolConvert, NumberOutOfRange) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1e999", "m", "ft"}), 1, "",
                "xun: number out of range: '1e999'\n");
}

TEST(ToolConvert, FloatRoundTrips) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "1", "m", "ft"}), 0, "3.28084\n", "");
}

TEST(ToolConvert, FloatOutOfRange) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "1e39", "m", "ft"}), 1, "",
                "xun: number out of range for single precision: '1e39'\n");
}

TEST(ToolConvert, MalformedDeleteValue) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delete", "abc", "1", "m", "ft"}), 1, "",
                "xun: --delete: not a number: 'abc'\n");
}

TEST(ToolConvert, TooManyArguments) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "2", "m", "ft"}), 2, "",
                "xun: unexpected argument 'ft'\n"
                "Try 'xun convert --help'.\n");
}

TEST(ToolConvert, UnknownOption) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--fast", "1", "m", "ft"}), 2, "",
                "xun: unknown option '--fast'\n"
                "Try 'xun convert --help'.\n");
}

TEST(ToolConvert, MissingSetupFile) {
    EXPECT_TOOL(Xun({"--home", "missing", "convert", "1", "m", "ft"}), 1, "",
                "xun: cannot read setup file 'missing/bin/XUN.xml': No such file or directory\n");
}

// A text whose unit would have the factor 0 fails with the reason; the
// process goes on.
TEST(ToolConvert, ZeroFactorIsRefused) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "UnitMeter*0", "m"}), 1, "",
                "xun: cannot read the unit 'UnitMeter*0': at byte 11: a factor of 0 gives no "
                "unit\n");
}

} // namespace
