// xun: converts values between engineering units and inspects the tables of
// the engineering-unit library from the command line.
#include <cstdio>
#include <string>
#include <vector>

#include "Args.h"
#include "Commands.h"
#include "Location.h"
#include "Output.h"

using namespace xuntool;

int main(int argc, char** argv) {
    InstallStopHook();
    std::vector<std::string> args(argv + 1, argv + argc);

    // Data options may stand before the command; they are handed to it.
    std::vector<std::string> leading;
    size_t i = 0;
    while (i < args.size() && LooksLikeOption(args[i])) {
        const std::string& arg = args[i];
        if (arg == "--help" || arg == "-h")
            return PrintHelp("");
        if ((arg == "--home" || arg == "--setup") && i + 1 < args.size()) {
            leading.push_back(arg);
            leading.push_back(args[i + 1]);
            i += 2;
            continue;
        }
        if (arg.compare(0, 7, "--home=") == 0 || arg.compare(0, 8, "--setup=") == 0) {
            leading.push_back(arg);
            ++i;
            continue;
        }
        if (arg == "--home" || arg == "--setup")
            return UsageError("", "option '" + arg + "' needs a value");
        return UsageError("", "unknown option '" + arg + "'");
    }
    if (i >= args.size())
        return UsageError("", "no command given");
    const std::string command = args[i];
    std::vector<std::string> rest(leading);
    rest.insert(rest.end(), args.begin() + static_cast<long>(i) + 1, args.end());

    if (command == "help") {
        if (rest.size() > 1)
            return UsageError("", "help takes at most one command");
        const std::string topic = rest.empty() ? "" : rest[0];
        if (HelpText(topic).empty())
            return UsageError("", "unknown command '" + topic + "'");
        return PrintHelp(topic);
    }
    int status = kExitUsage;
    if (command == "convert")
        status = RunConvert(rest);
    else if (command == "units")
        status = RunUnits(rest);
    else if (command == "items")
        status = RunItems(rest);
    else if (command == "filters")
        status = RunFilters(rest);
    else if (command == "show")
        status = RunShow(rest);
    else if (command == "includes")
        status = RunIncludes(rest);
    else if (command == "check")
        status = RunCheck(rest);
    else if (command == "where")
        status = RunWhere(rest);
    else
        return UsageError("", "unknown command '" + command + "'");
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        return Fail(kExitFailed, "cannot write to standard output");
    return status;
}
