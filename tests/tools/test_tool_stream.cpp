// End-to-end tests of xun convert reading numbers from standard input: the
// text is written on with its numbers converted, line by line; what is no
// number passes unchanged (or, with --strict, ends the run); --column and
// --delimiter convert one column of a table.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tools/tool_runner.h"

using xuntest::Xun;

namespace {

const char kUsageHint[] = "Try 'xun convert --help'.\n";

TEST(ToolStream, NumbersKeepTheirPlaceInTheText) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "m", "cm"}, "1\t2\n"
                                                              "\n"
                                                              "  3.25\r\n"
                                                              "-1e3 nan inf\n"),
                0,
                "100\t200\n"
                "\n"
                "  325\r\n"
                "-100000 nan inf\n",
                "");
}

TEST(ToolStream, LastLineWithoutNewline) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "m", "cm"}, "1\n2"), 0, "100\n200", "");
}

TEST(ToolStream, HeadersAndMissingValuesPassThrough) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "ft", "m"}, "flow_cfs\n1\nNA\n2 n/a 1e999\n"), 0,
                "flow_cfs\n0.3048\nNA\n0.6096 n/a 1e999\n", "");
}

TEST(ToolStream, StrictStopsAtTheFirstTextThatIsNoNumber) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--strict", "m", "cm"}, "1 2\nx 3\n"), 1,
                "100 200\n", "xun: standard input, line 2: not a number: 'x'\n");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--strict", "ft", "m"}, "flow_cfs\n1\n"), 1, "",
                "xun: standard input, line 1: not a number: 'flow_cfs'\n");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--strict", "m", "cm"}, "1\n1e999\n"), 1, "100\n",
                "xun: standard input, line 2: number out of range: '1e999'\n");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--strict", "m", "cm"}, "1\x01"
                                                                          "2\n"),
                1, "", "xun: standard input, line 1: not a number: '1\\x012'\n");
}

TEST(ToolStream, Floats) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "ft", "m"}, "1 2.5\nNA\n"), 0,
                "0.3048 0.762\nNA\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--float", "--strict", "ft", "m"}, "1 1e39\n"), 1,
                "0.3048 ",
                "xun: standard input, line 1: number out of range for single precision: '1e39'\n");
}

TEST(ToolStream, DelimitedColumn) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delimiter", ",", "--column", "2", "ft", "m"},
                    "date,flow_cfs,flag\n2024-01-01,10,A\n2024-01-02,,B\n2024-01-03, 20 ,3\n"
                    "2024-01-04,NA\n"),
                0,
                "date,flow_cfs,flag\n2024-01-01,3.048,A\n2024-01-02,,B\n2024-01-03, 6.096 ,3\n"
                "2024-01-04,NA\n",
                "");
}

TEST(ToolStream, DelimitedEveryField) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delimiter", ";", "m", "cm"}, ";1;x;2\r\n3;;4"),
                0, ";100;x;200\r\n300;;400", "");
}

TEST(ToolStream, TabDelimiter) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delimiter", "\\t", "--column", "1", "m", "cm"},
                    "1\t2\n\t3\n"),
                0, "100\t2\n\t3\n", "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--delimiter", "\t", "--column", "2", "m", "cm"},
                    "1\t2 \n"),
                0, "1\t200 \n", "");
}

TEST(ToolStream, ColumnBeyondTheLine) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--column", "4000000000", "m", "cm"}, "1 2\n"), 0,
                "1 2\n", "");
}

TEST(ToolStream, ColumnOfBlankSeparatedTokens) {
    EXPECT_TOOL(
        Xun({"--home", "home", "convert", "--column", "2", "m", "cm"}, "  1   2  3\n4\n5 6\n"), 0,
        "  1   200  3\n4\n5 600\n", "");
}

TEST(ToolStream, StrictWithAColumn) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--strict", "--delimiter", ",", "--column", "2",
                     "m", "cm"},
                    "a,1\nb,2\nc,\n"),
                1, "a,100\nb,200\nc,", "xun: standard input, line 3: not a number: ''\n");
}

TEST(ToolStream, BadColumnAndDelimiter) {
    for (const char* column : {"0", "x", "", "-1", "1.5", "99999999999999999999"})
        EXPECT_TOOL(Xun({"--home", "home", "convert", "--column", column, "m", "cm"}, "1\n"), 2, "",
                    "xun: --column takes a column number from 1, not '" + std::string(column) +
                        "'\n" + kUsageHint);
    for (const char* delimiter : {"", ",,", "\n"})
        EXPECT_TOOL(Xun({"--home", "home", "convert", "--delimiter", delimiter, "m", "cm"}, "1\n"),
                    2, "",
                    "xun: --delimiter takes one character (or \\t), not '" +
                        std::string(delimiter == std::string("\n") ? "\\x0A" : delimiter) + "'\n" +
                        kUsageHint);
}

// More numbers than one block of the array conversion, so that blocks meet
// in the middle of the input; checked against printf's %.15g of the stepwise
// formula.
TEST(ToolStream, ManyBlocks) {
    const int count = 150001;
    std::string input;
    std::string expected;
    std::string exact;
    for (int i = 0; i < count; ++i) {
        const double value = i * 0.25 - 1000.0;
        const char* separator = i % 7 == 0 ? "\n" : " ";
        char text[64];
        std::snprintf(text, sizeof text, "%.17g%s", value, separator);
        input += text;
        // foot to meter: ((x * 0.3048 + 0) - 0) / 1
        const double result = ((value * 0.3048 + 0.0) - 0.0) / 1.0;
        std::snprintf(text, sizeof text, "%.15g%s", result, separator);
        expected += text;
    }
    const xuntest::ToolResult result = Xun({"--home", "home", "convert", "ft", "m"}, input);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(result.out == expected) << "the converted numbers differ";

    // --exact reads back as the very doubles.
    const xuntest::ToolResult precise =
        Xun({"--home", "home", "convert", "--exact", "ft", "m"}, input);
    EXPECT_EQ(precise.status, 0);
    const char* cursor = precise.out.c_str();
    int mismatches = 0;
    for (int i = 0; i < count; ++i) {
        char* end = nullptr;
        const double value = std::strtod(cursor, &end);
        if (end == cursor || value != ((i * 0.25 - 1000.0) * 0.3048 + 0.0 - 0.0) / 1.0)
            ++mismatches;
        cursor = end;
    }
    EXPECT_EQ(mismatches, 0);
}

// Much text between few numbers, and a token longer than any number.
TEST(ToolStream, LongTextPassesThrough) {
    const std::string word(5000, 'w');
    std::string input;
    std::string expected;
    for (int i = 0; i < 300; ++i) {
        input += word + " 1 " + word + "\n";
        expected += word + " 100 " + word + "\n";
    }
    const xuntest::ToolResult result = Xun({"--home", "home", "convert", "m", "cm"}, input);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(result.out == expected) << "the text differs";

    const std::string digits(5000, '1');
    EXPECT_TOOL(Xun({"--home", "home", "convert", "ft", "m"}, "2 " + digits), 0, "0.6096 " + digits,
                "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "--strict", "ft", "m"}, "2 " + digits), 1,
                "0.6096 ",
                "xun: standard input, line 1: not a number: '" + std::string(80, '1') + "...'\n");
}

TEST(ToolStream, EmptyInputShowsTheFormula) {
    EXPECT_TOOL(Xun({"--home", "home", "convert", "ft", "m"}, ""), 0, "x[m] = x[ft] * 0.3048\n",
                "");
    EXPECT_TOOL(Xun({"--home", "home", "convert", "ft", "m"}, "\n"), 0, "\n", "");
}

} // namespace
