// What the commands share: parsing their command line, loading the data, and
// reading everything the C interface tells about a unit.
#pragma once

#include <string>
#include <vector>

#include "Args.h"
#include "Commands.h"
#include "Location.h"

namespace xuntool {

// Parses the arguments of a command against its options and the data
// options. Returns false when the command is done: after printing its help
// (status kExitOk) or a usage error (status kExitUsage), also for a number of
// positional arguments outside minArgs .. maxArgs.
bool ParseCommand(const std::string& command, const Args& args,
                  const std::vector<OptionSpec>& options, size_t minArgs, size_t maxArgs,
                  ParsedArgs& parsed, int& status);

// Resolves the data location and loads it; false with status set on failure.
bool LoadData(const std::string& command, const ParsedArgs& parsed, DataLocation& location,
              int& status);

struct UnitInfo {
    int tag = 0;
    std::string ident;
    std::string description;
    std::string abbreviation;
    double factor = 1.0;
    double offset = 0.0;
    double powers[7] = {0, 0, 0, 0, 0, 0, 0};
};

// What the C interface tells about a registered unit.
UnitInfo GetUnitInfo(int tag);

// A filter bit as 0x%08X.
std::string FilterBitText(int bit);

// Texts of the C interface that may be null.
std::string Text(const char* text);

} // namespace xuntool
