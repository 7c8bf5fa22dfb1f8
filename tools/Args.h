// Command-line parsing of the xun tool.
//
// Options are "--name", "--name VALUE" or "--name=VALUE" and may stand before
// or after the positional arguments. "--" ends the options. An argument that
// starts with "-" followed by a digit or "." is a positional argument (a
// negative number), not an option.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace xuntool {

struct OptionSpec {
    const char* name; // with the leading "--"
    bool takesValue;
};

struct ParsedArgs {
    std::map<std::string, std::string> values; // options with a value
    std::vector<std::string> flags;            // options without a value
    std::vector<std::string> positionals;

    bool Has(const std::string& name) const;
    // The value of an option, or fallback when it was not given.
    std::string Value(const std::string& name, const std::string& fallback = "") const;
};

// Parses args against the allowed options. False with a message in error for
// an unknown option, a missing value, a value given to a flag, or an option
// given twice.
bool ParseArgs(const std::vector<std::string>& args, const std::vector<OptionSpec>& allowed,
               ParsedArgs& parsed, std::string& error);

// Whether text looks like an option ("-x", "--x"), not a negative number.
bool LooksLikeOption(const std::string& text);

// The options that every command takes: --setup FILE, --home DIR, --help.
const std::vector<OptionSpec>& DataOptions();

} // namespace xuntool
