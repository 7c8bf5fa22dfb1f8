// The commands of the xun tool, in one table: their names, options, number
// of arguments, help texts and the functions that run them. main.cpp builds
// the command line parser from it.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace xuntool {

struct Command;

// A parsed command line: the command, the options given to it (the data
// options --home and --setup included, wherever they stood) and its
// positional arguments.
struct Invocation {
    const Command* command = nullptr;
    std::map<std::string, std::string> values; // options with a value
    std::set<std::string> flags;               // options without a value
    std::vector<std::string> args;

    bool Has(const std::string& name) const;
    // The value of an option, or fallback when it was not given.
    std::string Value(const std::string& name, const std::string& fallback = "") const;
};

struct OptionDef {
    const char* name; // with the leading "--"
    bool takesValue;  // false: a flag
    bool namesFolder; // its value names a directory, and must not be empty
};

struct Command {
    const char* name;
    const char* synopsis; // the command with its arguments, for the list of commands
    const char* summary;  // one line, for the list of commands
    const char* help;     // what 'xun NAME --help' shows before the data options
    std::vector<OptionDef> options;
    size_t minArgs;
    size_t maxArgs;
    int (*run)(const Invocation&);
};

// Every command, in the order of the tool's help.
const std::vector<Command>& CommandTable();
// The command of that name, or null.
const Command* FindCommand(const std::string& name);

// The options every command takes: --setup FILE, --home DIR.
const std::vector<OptionDef>& DataOptions();

// The help of a command (null: of the tool itself), on standard output;
// returns kExitOk.
int PrintHelp(const Command* command);

// Reports a usage error on standard error and returns kExitUsage; the hint
// names the command's help (null: the tool's).
int UsageError(const Command* command, const std::string& message);

int RunConvert(const Invocation& call);
int RunUnits(const Invocation& call);
int RunItems(const Invocation& call);
int RunFilters(const Invocation& call);
int RunShow(const Invocation& call);
int RunIncludes(const Invocation& call);
int RunReport(const Invocation& call);
int RunCheck(const Invocation& call);
int RunWhere(const Invocation& call);

} // namespace xuntool
