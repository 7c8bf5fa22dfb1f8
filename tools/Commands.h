// The commands of the xun tool. Each takes the arguments after its name and
// returns the exit status (see Output.h).
#pragma once

#include <string>
#include <vector>

namespace xuntool {

typedef std::vector<std::string> Args;

int RunConvert(const Args& args);
int RunUnits(const Args& args);
int RunItems(const Args& args);
int RunFilters(const Args& args);
int RunShow(const Args& args);
int RunIncludes(const Args& args);
int RunCheck(const Args& args);
int RunWhere(const Args& args);

// The help text of a command ("" for the tool itself); empty when there is
// no such command.
std::string HelpText(const std::string& command);

// Prints the help of a command on standard output and returns kExitOk.
int PrintHelp(const std::string& command);

// Reports a usage error on standard error and returns kExitUsage.
int UsageError(const std::string& command, const std::string& message);

} // namespace xuntool
