// Runs the xun tool as a subprocess for the end-to-end tests.
#pragma once

#include <string>
#include <vector>
#include "registry_access.h"

namespace xuntest {

struct ToolResult {
    std::string out;
    std::string err;
    int status = -1; // exit status, or 128 + signal number
};

struct ToolRun {
    std::vector<std::string> args;
    std::string input;            // standard input
    std::vector<std::string> env; // NAME=VALUE set for the run
    std::string cwd;              // working directory; default: FixtureDir()
    bool keepKorvaneHome = false; // KORVANE_HOME is removed unless set in env
    bool terminalInput = false;   // standard input is a terminal (a pseudo-terminal) on
                                  // which input is typed, then Ctrl-D
};

ToolResult RunTool(const ToolRun& run);
// Shorthand: the arguments only.
ToolResult Xun(const std::vector<std::string>& args, const std::string& input = "");

// tests/data/tools, the working directory of the runs.
std::string FixtureDir();
std::string SourceDir();

// A fresh empty directory under the system's temporary directory.
std::string MakeTempDir();

// Whether text is one valid JSON document (RFC 8259, UTF-8).
bool IsValidJson(const std::string& text);

} // namespace xuntest

// Compares all three parts of a run.
#define EXPECT_TOOL(result, expectedStatus, expectedOut, expectedErr)                              \
    do {                                                                                           \
        const ::xuntest::ToolResult& r_ = (result);                                                \
        EXPECT_EQ(r_.out, expectedOut);                                                            \
        EXPECT_EQ(r_.err, expectedErr);                                                            \
        EXPECT_EQ(r_.status, expectedStatus);                                                      \
    } while (0)
