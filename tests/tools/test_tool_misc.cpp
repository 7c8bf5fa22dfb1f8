// End-to-end tests of the xun tool's command line, data location and xun includes: the built
// program runs as a subprocess in tests/data/tools; standard output, standard error and exit status
// are compared exactly.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tools/tool_runner.h"
#include "registry_access.h"

using xuntest::Xun;

namespace {

TEST(ToolUsage, NoCommand) {
    EXPECT_TOOL(Xun({}), 2, "",
                "xun: no command given\n"
                "Try 'xun --help'.\n");
}

TEST(ToolUsage, UnknownCommand) {
    EXPECT_TOOL(Xun({"frobnicate"}), 2, "",
                "xun: unknown command 'frobnicate'\n"
                "Try 'xun --help'.\n");
}

TEST(ToolUsage, UnknownLeadingOption) {
    EXPECT_TOOL(Xun({"--frob", "units"}), 2, "",
                "xun: unknown option '--frob'\n"
                "Try 'xun --help'.\n");
}

TEST(ToolUsage, LeadingOptionWithoutValue) {
    EXPECT_TOOL(Xun({"--home"}), 2, "",
                "xun: option '--home' needs a value\n"
                "Try 'xun --help'.\n");
}

TEST(ToolUsage, OptionWithoutValue) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--item"}), 2, "",
                "xun: option '--item' needs a value\n"
                "Try 'xun units --help'.\n");
}

TEST(ToolUsage, OptionTwice) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--json", "--json"}), 2, "",
                "xun: option '--json' given twice\n"
                "Try 'xun units --help'.\n");
}

TEST(ToolUsage, FlagWithValue) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--json=yes"}), 2, "",
                "xun: option '--json' takes no value\n"
                "Try 'xun units --help'.\n");
}

TEST(ToolUsage, UnexpectedArgument) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "extra"}), 2, "",
                "xun: unexpected argument 'extra'\n"
                "Try 'xun units --help'.\n");
}

TEST(ToolUsage, HelpOfUnknownCommand) {
    EXPECT_TOOL(Xun({"help", "frobnicate"}), 2, "",
                "xun: unknown command 'frobnicate'\n"
                "Try 'xun --help'.\n");
}

TEST(ToolUsage, EmptyHome) {
    EXPECT_TOOL(Xun({"units", "--home="}), 2, "",
                "xun: option '--home' needs a directory\n"
                "Try 'xun units --help'.\n");
    EXPECT_TOOL(Xun({"units", "--home", ""}), 2, "",
                "xun: option '--home' needs a directory\n"
                "Try 'xun units --help'.\n");
}

// An empty value given with "=" is a value, not the next argument.
TEST(ToolUsage, EmptySetupFileName) {
    EXPECT_TOOL(Xun({"--setup=", "units"}), 1, "", "xun: the setup file name is empty\n");
}

TEST(ToolUsage, DataOptionBeforeAndAfterTheCommand) {
    EXPECT_TOOL(Xun({"--home", "home", "filters", "--home", "home"}), 2, "",
                "xun: option '--home' given twice\n"
                "Try 'xun filters --help'.\n");
}

TEST(ToolLoad, LibraryMessagesGoToStandardError) {
    EXPECT_TOOL(Xun({"--home", "nolang", "--setup", "check/expr_fails.xml", "filters"}), 0,
                "BIT         IDENT    ITEMS  DESCRIPTION\n"
                "0x00000001  FilterA  1      A\n",
                "Error reading unit\n"
                "UnitBad\n"
                "Unsuccessful parsing of the expression\n"
                "UnitNothing*2");
}

TEST(ToolLoad, StopInSetupFileEndsWithMessage) {
    EXPECT_TOOL(
        Xun({"--home", "nolang", "--setup", "check/filter_unknown_item.xml", "units"}), 1, "",
        "xun: cannot load 'check/filter_unknown_item.xml': check/filter_unknown_item.xml:18: "
        "filter 'FilterA': unknown item type 'ItemGhost' in Items; loading would stop\n");
}

TEST(ToolLoad, StopInLanguageFileEndsWithMessage) {
    EXPECT_TOOL(Xun({"--home", "home", "--setup", "check/key_zero.xml", "units"}), 1, "",
                "xun: cannot load 'check/key_zero.xml': home/bin/xuntype.lan:8: no text for item "
                "type 0 'ItemDepth'; loading would stop\n");
}

TEST(ToolLoad, MalformedSetupFile) {
    EXPECT_TOOL(Xun({"--home", "nolang", "--setup", "check/malformed.xml", "units"}), 1, "",
                "xun: cannot load setup file 'check/malformed.xml': not well-formed XML: "
                "unterminated end tag 'R'; a load refuses the file\n");
}

TEST(ToolLoad, SetupFileIsADirectory) {
    EXPECT_TOOL(Xun({"--setup", "check", "units"}), 1, "",
                "xun: cannot read setup file 'check': it is a directory\n");
}

TEST(ToolLoad, SetupOptionWithoutHomeReadsNoLanguageFiles) {
    EXPECT_TOOL(Xun({"--setup", "home/bin/XUN.xml", "show", "ItemDischarge"}), 0,
                "item type ItemDischarge\n"
                "  key            200\n"
                "  ident          ItemDischarge\n"
                "  description    Discharge\n"
                "  decimals       3\n"
                "  default value  0\n"
                "  dimension      L3 T-1\n"
                "  exponents      length 3, mass 0, time -1, temperature 0, current 0, substance "
                "0, luminous 0\n"
                "  default unit   UnitCubicMeterPerSecond (m\xC2"
                "\xB3"
                "/s)\n"
                "  user unit      UnitCubicMeterPerSecond (m\xC2"
                "\xB3"
                "/s)\n"
                "  allowed units  UnitCubicMeterPerSecond (m\xC2"
                "\xB3"
                "/s), UnitLiterPerSecond (l/s)\n"
                "  filters        FilterHydrology (0x00000001)\n",
                "");
}

TEST(ToolWhere, HomeOption) {
    EXPECT_TOOL(Xun({"--home", "home", "where"}), 0,
                "setup file: home/bin/XUN.xml\n"
                "language files: home/bin\n",
                "");
}

TEST(ToolWhere, SetupOptionWithoutHome) {
    EXPECT_TOOL(Xun({"where", "--setup", "check/clean.xml"}), 0,
                "setup file: check/clean.xml\n"
                "language files: (none)\n",
                "");
}

TEST(ToolIncludes, OutIsNotADirectory) {
    EXPECT_TOOL(Xun({"--home", "home", "includes", "--out", "home/bin/XUN.xml/sub"}), 1, "",
                "xun: cannot make directory 'home/bin/XUN.xml/sub': Not a directory\n");
}

const std::vector<std::string> kCommands = {"convert", "units",    "items", "filters",
                                            "show",    "includes", "check", "where"};

TEST(ToolHelp, EveryCommandHasHelp) {
    for (const std::string& command : kCommands) {
        const xuntest::ToolResult help = Xun({command, "--help"});
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_EQ(help.err, "") << command;
        const std::string usage = "Usage: xun " + command + " [OPTIONS]";
        EXPECT_EQ(help.out.compare(0, usage.size(), usage), 0) << help.out;
        EXPECT_NE(help.out.find("  --home DIR     installation root"), std::string::npos);
        // The same text through "help COMMAND" and "-h".
        EXPECT_EQ(Xun({"help", command}).out, help.out) << command;
        EXPECT_EQ(Xun({command, "-h"}).out, help.out) << command;
    }
}

TEST(ToolHelp, ToolHelp) {
    const xuntest::ToolResult help = Xun({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_EQ(help.out.compare(0, 35, "Usage: xun COMMAND [OPTIONS] [ARGUM"), 0) << help.out;
    EXPECT_EQ(Xun({"help"}).out, help.out);
    for (const std::string& command : kCommands)
        EXPECT_NE(help.out.find("\n  " + command + " "), std::string::npos) << command;
}

TEST(ToolHelp, ConvertHelpTellsHowNumbersRoundTrip) {
    const xuntest::ToolResult help = Xun({"convert", "--help"});
    EXPECT_NE(help.out.find("Results are printed with at most 15\nsignificant digits (6 with "
                            "--float), trailing zeros dropped: 212, 293.15, 3.6.\n"),
              std::string::npos)
        << help.out;
    EXPECT_NE(help.out.find("  --exact          print the shortest text that reads back as "
                            "exactly the\n"),
              std::string::npos)
        << help.out;
}

TEST(ToolLocation, DataOptionsBeforeAndAfterTheCommandAgree) {
    const xuntest::ToolResult before = Xun({"--home", "home", "filters"});
    const xuntest::ToolResult after = Xun({"filters", "--home", "home"});
    const xuntest::ToolResult inlineValue = Xun({"filters", "--home=home"});
    EXPECT_EQ(before.status, 0);
    EXPECT_EQ(before.out, after.out);
    EXPECT_EQ(before.out, inlineValue.out);
}

TEST(ToolLocation, KorvaneHomeIsUsed) {
    xuntest::ToolRun run;
    run.args = {"where"};
    run.env = {"KORVANE_HOME=" + xuntest::FixtureDir() + "/home"};
    EXPECT_TOOL(xuntest::RunTool(run), 0,
                "setup file: " + xuntest::FixtureDir() +
                    "/home/bin/XUN.xml\nlanguage files: " + xuntest::FixtureDir() + "/home/bin\n",
                "");
    run.args = {"show", "ItemWaterLevel"};
    const xuntest::ToolResult shown = xuntest::RunTool(run);
    EXPECT_EQ(shown.status, 0);
    EXPECT_NE(shown.out.find("  description    Water level\n"), std::string::npos) << shown.out;
}

TEST(ToolLocation, HomeOptionOverridesKorvaneHome) {
    xuntest::ToolRun run;
    run.args = {"--home", "nolang", "show", "ItemWaterLevel"};
    run.env = {"KORVANE_HOME=" + xuntest::FixtureDir() + "/home"};
    const xuntest::ToolResult shown = xuntest::RunTool(run);
    EXPECT_EQ(shown.status, 0);
    EXPECT_NE(shown.out.find("  description    Water Level\n"), std::string::npos) << shown.out;
}

TEST(ToolLocation, SetupOptionWithKorvaneHomeReadsItsLanguageFiles) {
    xuntest::ToolRun run;
    run.args = {"--setup", "nolang/bin/XUN.xml", "show", "ItemWaterLevel"};
    run.env = {"KORVANE_HOME=" + xuntest::FixtureDir() + "/home"};
    const xuntest::ToolResult shown = xuntest::RunTool(run);
    EXPECT_EQ(shown.status, 0);
    EXPECT_NE(shown.out.find("  description    Water level\n"), std::string::npos) << shown.out;
}

// Without --home, --setup and KORVANE_HOME: the installed data directory
// (relative to the program's directory) when it holds a setup file, else the
// repository's data/ for a tool in its build tree.
TEST(ToolLocation, DefaultLocation) {
    std::string installed = XUN_TOOL_INSTALLED_DATA_DIR;
    if (installed.empty() || installed[0] != '/') {
        const std::string tool = XUN_TOOL_PATH;
        installed = tool.substr(0, tool.rfind('/')) + "/" + installed;
    }
    std::string home = xuntest::SourceDir() + "/data";
    char resolved[PATH_MAX];
    if (::realpath(installed.c_str(), resolved) != nullptr) {
        if (std::FILE* file = std::fopen((std::string(resolved) + "/bin/XUN.xml").c_str(), "r")) {
            std::fclose(file);
            home = resolved;
        }
    }
    EXPECT_TOOL(Xun({"where"}), 0,
                "setup file: " + home + "/bin/XUN.xml\nlanguage files: " + home + "/bin\n", "");
}

std::string ReadFile(const std::string& path) {
    std::string text;
    if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
        char buffer[4096];
        size_t count = 0;
        while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0)
            text.append(buffer, count);
        std::fclose(file);
    }
    return text;
}

TEST(ToolIncludes, WritesIntoTheOutDirectory) {
    const std::string dir = xuntest::MakeTempDir();
    ASSERT_FALSE(dir.empty());
    const std::string out = dir + "/made";
    EXPECT_TOOL(Xun({"--home", "home", "includes", "--out", out}), 0,
                out + "/xunDefine.c__\n" + out + "/xunDefine.f__\n" + out + "/xunDefine.p__\n" +
                    out + "/xunDefine.cs\n" + out + "/xunAllowedUnits.HTML\n",
                "");
    const std::string c = ReadFile(out + "/xunDefine.c__");
    EXPECT_NE(c.find("#define UnitMeter                  1000 /* meter */\n"), std::string::npos)
        << c;
    EXPECT_NE(c.find("#define FilterQuality                 2 /* Water quality */\n"),
              std::string::npos);
    const std::string report = ReadFile(out + "/xunAllowedUnits.HTML");
    EXPECT_NE(report.find("\nitem: ItemWaterLevel              100   Water level \n"
                          "      UnitMeter                  1000   meter \n"
                          "      UnitCentimeter             1002   centimeter \n"
                          "      UnitFoot                   1003   foot \n"),
              std::string::npos)
        << report;
    for (const char* name : {"xunDefine.f__", "xunDefine.p__", "xunDefine.cs"})
        EXPECT_FALSE(ReadFile(out + "/" + name).empty()) << name;
}

TEST(ToolIncludes, FixedFormWritesTheTwinToo) {
    const std::string dir = xuntest::MakeTempDir();
    ASSERT_FALSE(dir.empty());
    EXPECT_TOOL(Xun({"--home", "home", "includes", "--fixed-form", "--out", dir}), 0,
                dir + "/xunDefine.c__\n" + dir + "/xunDefine.f__\n" + dir + "/xunDefine.p__\n" +
                    dir + "/xunDefine.cs\n" + dir + "/xunAllowedUnits.HTML\n" + dir +
                    "/xunDefine.f77\n",
                "");
    const std::string free = ReadFile(dir + "/xunDefine.f__");
    EXPECT_NE(free.find("integer, parameter :: UnitMeter            =       1000  ! meter\n"),
              std::string::npos)
        << free;
    const std::string fixed = ReadFile(dir + "/xunDefine.f77");
    EXPECT_NE(fixed.find("\nC     meter\n      INTEGER UnitMeter\n"
                         "      PARAMETER (UnitMeter = 1000)\n"),
              std::string::npos)
        << fixed;
}

TEST(ToolIncludes, WritesIntoTheWorkingDirectory) {
    const std::string dir = xuntest::MakeTempDir();
    ASSERT_FALSE(dir.empty());
    xuntest::ToolRun run;
    run.args = {"--home", xuntest::FixtureDir() + "/home", "includes"};
    run.cwd = dir;
    EXPECT_TOOL(xuntest::RunTool(run), 0,
                "xunDefine.c__\nxunDefine.f__\nxunDefine.p__\nxunDefine.cs\nxunAllowedUnits.HTML\n",
                "");
    EXPECT_NE(
        ReadFile(dir + "/xunDefine.p__").find("CONST   UnitFoot         = 1003; (* foot *)\n"),
        std::string::npos);
}

} // namespace
