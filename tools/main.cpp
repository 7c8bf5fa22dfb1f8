// xun: converts values between engineering units and inspects the tables of
// the engineering-unit library from the command line.
//
// The command line is read with CLI11 in two steps. The first reads the
// options that stand before the command (the data options and --help) and
// stops at the command's name; the second reads the command's own options,
// the data options again, and its arguments. Options may stand before or
// after the arguments, "--name VALUE" or "--name=VALUE"; "--" ends them, and
// "-" followed by a digit or "." is an argument (a negative number).
//
// CLI11 is set up so that it never refuses a command line itself: unknown
// options are collected, every option accepts a missing value and repeats.
// What is wrong is then said here, in the tool's own words.
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Output.h"
#include "xun.h"

using namespace xuntool;

namespace {

// What an option given without a value receives from CLI11, and what stands
// for a value given empty ("--name="); no command line can contain either.
const char kNoValue[] = "\x01";
const char kEmptyValue[] = "\x02";

// Whether an argument is an option ("-x", "--x"), not a negative number.
bool LooksLikeOption(const std::string& arg) {
    return arg.size() > 1 && arg[0] == '-' && !(arg[1] >= '0' && arg[1] <= '9') && arg[1] != '.';
}

// An option as given, for messages: "--name" without "=value".
std::string OptionName(const std::string& arg) {
    return arg.substr(0, arg.find('='));
}

// Two kinds of arguments that CLI11 reads otherwise than this tool: "-.5",
// which it takes for the short option "-.", and "--name=", which it takes
// for "--name" without a value (and then gives it the next argument). They
// are handed to CLI11 as "-0.5" and "--name=<kEmptyValue>", and given back
// as they were typed.
class Cli11Arguments {
  public:
    std::vector<std::string> Hide(const std::vector<std::string>& args) {
        std::vector<std::string> hidden;
        for (const std::string& arg : args) {
            if (arg.compare(0, 2, "-.") == 0) {
                const std::string standIn = "-0" + arg.substr(1);
                m_typed[standIn] = arg;
                hidden.push_back(standIn);
            } else if (arg.compare(0, 2, "--") == 0 && arg.size() > 3 &&
                       arg.find('=') == arg.size() - 1) {
                hidden.push_back(arg + kEmptyValue);
            } else {
                hidden.push_back(arg);
            }
        }
        return hidden;
    }

    std::string Restore(const std::string& arg) const {
        if (arg == kEmptyValue)
            return "";
        const auto it = m_typed.find(arg);
        return it != m_typed.end() ? it->second : arg;
    }

  private:
    std::map<std::string, std::string> m_typed;
};

// A CLI11 parser for the options of the tool or of one command.
struct Parser {
    CLI::App app;
    // The options in the order they were added.
    std::vector<std::pair<OptionDef, CLI::Option*>> options;
    CLI::Option* help = nullptr;
    std::vector<std::string> args;

    explicit Parser(const char* name) : app("", name) {
        app.set_help_flag();
        app.allow_extras();
        help = app.add_flag("-h,--help")->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }

    void Add(const OptionDef& def) {
        CLI::Option* option = nullptr;
        if (def.takesValue)
            option = app.add_option(def.name)->expected(0, 1)->default_str(kNoValue);
        else
            option = app.add_flag(def.name);
        option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        options.push_back(std::make_pair(def, option));
    }

    void Parse(std::vector<std::string> arguments) {
        // CLI11 takes the arguments last first.
        std::reverse(arguments.begin(), arguments.end());
        app.parse(arguments);
    }

    bool HelpGiven() const { return !help->results().empty(); }
};

// Moves the options of a parser into the invocation. False with a usage
// error in status for an option given twice (also once before and once
// after the command), without its value, with an empty directory, or for a
// flag given a value.
bool TakeOptions(const Parser& parser, const Cli11Arguments& typed, Invocation& call, int& status) {
    for (const auto& entry : parser.options) {
        const OptionDef& def = entry.first;
        const std::vector<std::string>& results = entry.second->results();
        if (results.empty())
            continue;
        const std::string name = def.name;
        if (results.size() > 1 || call.Has(name)) {
            status = UsageError(call.command, "option '" + name + "' given twice");
            return false;
        }
        if (!def.takesValue) {
            if (results[0] != "true") {
                status = UsageError(call.command, "option '" + name + "' takes no value");
                return false;
            }
            call.flags.insert(name);
            continue;
        }
        if (results[0] == kNoValue) {
            status = UsageError(call.command, "option '" + name + "' needs a value");
            return false;
        }
        const std::string value = typed.Restore(results[0]);
        if (def.namesFolder && value.empty()) {
            status = UsageError(call.command, "option '" + name + "' needs a directory");
            return false;
        }
        call.values[name] = value;
    }
    return true;
}

int Run(const std::vector<std::string>& commandLine) {
    Cli11Arguments typed;
    const std::vector<std::string> hidden = typed.Hide(commandLine);

    // Step 1: the options before the command.
    Parser leading("xun");
    for (const OptionDef& def : DataOptions())
        leading.Add(def);
    leading.Add(OptionDef{"--version", false, false});
    leading.app.prefix_command();
    leading.Parse(hidden);
    std::vector<std::string> rest = leading.app.remaining();
    Invocation call;
    if (!rest.empty() && LooksLikeOption(rest[0]))
        return UsageError(nullptr, "unknown option '" + OptionName(rest[0]) + "'");
    int status = kExitOk;
    if (!TakeOptions(leading, typed, call, status))
        return status;
    if (leading.HelpGiven())
        return PrintHelp(nullptr);
    if (call.Has("--version")) {
        if (!rest.empty())
            return UsageError(nullptr, "--version takes no command");
        std::printf("xun %s\n", xunVersion());
        return kExitOk;
    }
    if (rest.empty())
        return UsageError(nullptr, "no command given");
    const std::string name = typed.Restore(rest[0]);
    rest.erase(rest.begin());

    if (name == "help") {
        if (rest.size() > 1)
            return UsageError(nullptr, "help takes at most one command");
        if (rest.empty())
            return PrintHelp(nullptr);
        const Command* topic = FindCommand(rest[0]);
        if (topic == nullptr)
            return UsageError(nullptr, "unknown command '" + typed.Restore(rest[0]) + "'");
        return PrintHelp(topic);
    }
    call.command = FindCommand(name);
    if (call.command == nullptr)
        return UsageError(nullptr, "unknown command '" + name + "'");
    const Command* command = call.command;

    // Step 2: the command's options and arguments.
    Parser parser(command->name);
    for (const OptionDef& def : command->options)
        parser.Add(def);
    for (const OptionDef& def : DataOptions())
        parser.Add(def);
    parser.app.add_option("arguments", parser.args);
    parser.Parse(rest);
    bool endSeen = false;
    for (const std::string& extra : parser.app.remaining()) {
        // CLI11 hands back the "--" that ended the options.
        if (extra == "--" && !endSeen) {
            endSeen = true;
            continue;
        }
        return UsageError(command, "unknown option '" + OptionName(extra) + "'");
    }
    if (!TakeOptions(parser, typed, call, status))
        return status;
    if (parser.HelpGiven())
        return PrintHelp(command);
    for (const std::string& arg : parser.args)
        call.args.push_back(typed.Restore(arg));
    if (call.args.size() < command->minArgs)
        return UsageError(command, "missing argument");
    if (call.args.size() > command->maxArgs)
        return UsageError(command, "unexpected argument '" + call.args[command->maxArgs] + "'");

    status = command->run(call);
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        return Fail(kExitFailed, "cannot write to standard output");
    return status;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const CLI::Error& error) {
        // Not expected with the parsers set up as above; said plainly if it
        // happens all the same.
        return UsageError(nullptr, error.what());
    }
}
