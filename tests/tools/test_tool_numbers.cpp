// End-to-end tests of how xun convert writes numbers (15 significant digits,
// --exact, --digits, the missing-value marker as it was typed), of a value
// written together with its unit, of a forgotten target unit, of the formula
// shown without numbers, and of --version.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "tools/tool_runner.h"

using xuntest::Xun;

namespace {

std::string DefaultHome() {
    return xuntest::SourceDir() + "/data";
}

const char kUsageHint[] = "Try 'xun convert --help'.\n";

TEST(ToolNumbers, FifteenDigitsWithoutTrailingZeros) {
    const std::string home = DefaultHome();
    EXPECT_TOOL(Xun({"--home", home, "convert", "20", "degC", "K"}), 0, "293.15\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1", "kWh", "MJ"}), 0, "3.6\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "100", "degC", "degF"}), 0, "212\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1", "ft", "m"}), 0, "0.3048\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1", "m", "ft"}), 0, "3.28083989501312\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1e-20", "m", "km"}), 0, "1e-23\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1e20", "km", "m"}), 0, "1e+23\n", "");
}

// The shortest text that reads back as the same double.
TEST(ToolNumbers, ExactIsTheShortestTextOfTheSameDouble) {
    const std::string home = DefaultHome();
    EXPECT_TOOL(Xun({"--home", home, "convert", "--exact", "100", "degC", "degF"}), 0,
                "211.99999999999997\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "--exact", "20", "degC", "K"}), 0, "293.15\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "--exact", "1", "kWh", "MJ"}), 0, "3.6\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "--exact", "1", "ft^3/s", "m3/s"}), 0,
                "0.028316846592000004\n", "");
    // Each printed text reads back as the result of the stepwise formula.
    const double expected = ((100.0 * 1.0 + 273.15) - 0.0) / 1.0;
    const xuntest::ToolResult result =
        Xun({"--home", "home", "convert", "--exact", "100", "degC", "K"});
    EXPECT_EQ(std::strtod(result.out.c_str(), nullptr), expected);
}

TEST(ToolNumbers, FloatsWithSixDigitsOrExact) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "1", "ft", "m"}), 0, "0.3048\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "--exact", "1", "ft", "m"}), 0,
                "0.3048\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "--exact", "1", "m", "ft"}), 0,
                "3.28084\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "--digits", "9", "1", "m", "ft"}), 0,
                "3.28083992\n", "");
}

TEST(ToolNumbers, DigitsChoosesTheSignificantDigits) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--digits", "3", "1", "m", "ft"}), 0, "3.28\n",
                "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--digits=1", "1", "m", "ft"}), 0, "3\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--digits", "17", "1", "ft", "m"}), 0,
                "0.30480000000000002\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--digits", "4", "m", "ft"}, "1 2\n"), 0,
                "3.281 6.562\n", "");
}

TEST(ToolNumbers, BadDigitsAreUsageErrors) {
    for (const char* digits : {"0", "18", "abc", "", "-3", "2.5"})
        EXPECT_TOOL(Xun({"--home", "home", "convert", "--digits", digits, "1", "m", "ft"}), 2, "",
                    "xun: --digits takes a number from 1 to 17, not '" + std::string(digits) +
                        "'\n" + kUsageHint);
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--exact", "--digits", "3", "1", "m", "ft"}), 2,
                "", std::string("xun: --exact and --digits exclude each other\n") + kUsageHint);
}

// A value equal to the missing-value marker comes back as the text it was
// given as, so that the next tool finds the marker it knows.
TEST(ToolNumbers, MarkerIsEchoedByteForByte) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delete", "-99.99", "--", "-99.99", "ft", "m"}),
                0, "-99.99\n", "");
    EXPECT_TOOL(
        Xun({"--home", "home", "convert", "--delete", "-99.99", "--", "-99.990", "ft", "m"}), 0,
        "-99.990\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delete", "-99.99", "ft", "m"},
                    "1 -99.99 2\n-99.990\t-9.999e1\n"),
                0, "0.3048 -99.99 0.6096\n-99.990\t-9.999e1\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "--delete", "-99.99", "ft", "m"},
                    "-99.99 1\n"),
                0, "-99.99 0.3048\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--exact", "--delete", "1e3", "m", "cm"},
                    "1000 1000.0 7\n"),
                0, "1000 1000.0 700\n", "");
}

TEST(ToolNumbers, NanMarkerConvertsNothing) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delete", "nan", "m", "cm"}, "1 2\n"), 0,
                "1 2\n", "");
}

TEST(ToolNumbers, ValueWrittenWithItsUnit) {
    const std::string home = DefaultHome();
    EXPECT_TOOL(Xun({"--home", home, "convert", "10ft", "m"}), 0, "3.048\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "1.5e3m3/s", "l/s"}), 0, "1500000\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "10 ft", "m"}), 0, "3.048\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "-40degC", "degF"}), 0, "-40\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "--exact", ".5km", "ft"}), 0,
                "1640.4199475065616\n", "");
    // An 'e' without digits after it belongs to the unit.
    EXPECT_TOOL(Xun({"--home", home, "convert", "2eV", "J"}), 0, "3.204353268e-19\n", "");
}

// A text that starts with a number is a unit when the rest is no unit.
TEST(ToolNumbers, UnitStartingWithANumber) {
    EXPECT_TOOL(Xun({"--home", DefaultHome(), "convert", "1/s", "Hz"}, "3\n"), 0, "3\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "10furlong", "m"}), 1, "",
                "xun: cannot read the unit '10furlong': at byte 3: no unit is named 'furlong'\n");
}

TEST(ToolNumbers, MissingTargetIsAUsageError) {
    const std::string message = std::string("xun: missing the unit to convert to\n") + kUsageHint;
    EXPECT_TOOL(Xun({"--home", "home", "convert", "1", "ft"}), 2, "", message);
    EXPECT_TOOL(Xun({"--home", "home", "convert", "10ft"}), 2, "", message);
    EXPECT_TOOL(Xun({"--home", "home", "convert", "ft"}), 2, "", message);
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--", "-1.5e3", "m"}), 2, "", message);
    EXPECT_TOOL(Xun({"--home", "home", "convert"}), 2, "",
                std::string("xun: missing argument\n") + kUsageHint);
}

TEST(ToolNumbers, StreamOptionsNeedStandardInput) {
    for (const char* option : {"--strict", "--column=1", "--delimiter=,"}) {
        const std::string name = std::string(option).substr(0, std::string(option).find('='));
        EXPECT_TOOL(Xun({"--home", "home", "convert", option, "1", "ft", "m"}), 2, "",
                    "xun: " + name + " applies to numbers from standard input\n" + kUsageHint);
        EXPECT_TOOL(Xun({"--home", "home", "convert", option, "1ft", "m"}), 2, "",
                    "xun: " + name + " applies to numbers from standard input\n" + kUsageHint);
    }
}

// With no numbers (an empty input) the conversion itself is shown.
TEST(ToolNumbers, FormulaWithoutNumbers) {
    const std::string home = DefaultHome();
    EXPECT_TOOL(Xun({"--home", home, "convert", "ft", "m"}, ""), 0, "x[m] = x[ft] * 0.3048\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "m", "ft"}, ""), 0, "x[ft] = x[m] / 0.3048\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "degC", "degF"}, ""), 0,
                "x[degF] = x[degC] * 1.8 + 32\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "degC", "K"}, ""), 0, "x[K] = x[degC] + 273.15\n",
                "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "K", "degC"}, ""), 0, "x[degC] = x[K] - 273.15\n",
                "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "m", "metre"}, ""), 0, "x[metre] = x[m]\n", "");
    EXPECT_TOOL(Xun({"--home", home, "convert", "--exact", "degC", "degF"}, ""), 0,
                "x[degF] = x[degC] * 1.7999999999999998 + 31.999999999999986\n", "");
}

// On a terminal the formula comes first; then the numbers typed are
// converted until Ctrl-D.
TEST(ToolNumbers, FormulaOnATerminalThenNumbers) {
    xuntest::ToolRun run;
    run.args = {"--home", "home", "convert", "ft", "m"};
    run.input = "1\n2 NA\n";
    run.terminalInput = true;
    EXPECT_TOOL(xuntest::RunTool(run), 0, "x[m] = x[ft] * 0.3048\n0.3048\n0.6096 NA\n",
                "xun: reading numbers from standard input (end with Ctrl-D)\n");
}

TEST(ToolNumbers, Version) {
    std::ifstream file(xuntest::SourceDir() + "/VERSION");
    std::string version;
    std::getline(file, version);
    ASSERT_FALSE(version.empty());
    EXPECT_TOOL(Xun({"--version"}), 0, "xun " + version + "\n", "");
    EXPECT_TOOL(Xun({"--version", "units"}), 2, "",
                "xun: --version takes no command\nTry 'xun --help'.\n");
}

} // namespace
