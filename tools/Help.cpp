// Help texts of the xun tool and its usage errors.
#include <cstdio>

#include "Commands.h"
#include "Output.h"

namespace xuntool {

namespace {

const char kDataHelp[] =
    "Data options (every command):\n"
    "  --home DIR     installation root: the setup file is DIR/bin/XUN.xml and the\n"
    "                 language files are read from DIR/bin\n"
    "  --setup FILE   load this setup file instead of HOME/bin/XUN.xml\n"
    "Without --home the installation root is $KORVANE_HOME, else the installed data\n"
    "directory, else (for a tool run from its build tree) the repository's data/.\n"
    "'xun where' shows which one is used.\n";

const char kExitHelp[] = "Exit status: 0 success, 1 failure (unknown name, incompatible units,\n"
                         "malformed number, unreadable or broken file, problems found by check),\n"
                         "2 bad usage.\n";

const char kToolHelp[] =
    "Usage: xun COMMAND [OPTIONS] [ARGUMENTS]\n"
    "\n"
    "Converts values between engineering units and inspects the tables of the\n"
    "engineering-unit library.\n"
    "\n"
    "Commands:\n"
    "  convert [VALUE] FROM TO     convert a value, or numbers from standard input\n"
    "  units [--item I] [--like U] list units\n"
    "  items [--filter F]          list item types\n"
    "  filters                     list filters\n"
    "  show NAME                   everything known about a unit, item type or filter\n"
    "  includes [--out DIR]        write the include files and the allowed-units report\n"
    "  check [SETUP] [--lang DIR]  find every problem of a setup file and its language files\n"
    "  where                       show which setup file and language files are used\n"
    "  help [COMMAND]              show this help or a command's help\n"
    "\n"
    "'xun COMMAND --help' describes a command.\n";

const char kConvertHelp[] =
    "Usage: xun convert [OPTIONS] VALUE FROM TO\n"
    "       xun convert [OPTIONS] FROM TO < numbers\n"
    "\n"
    "Converts VALUE from unit FROM to unit TO and prints the result. Without VALUE\n"
    "it reads whitespace-separated numbers from standard input and prints each\n"
    "converted number on a line of its own, converting in blocks of 65536 numbers;\n"
    "it stops at the first text that is not a number, after printing the results\n"
    "before it.\n"
    "\n"
    "FROM and TO are found as typed: an ident (UnitMeter), a description, with a\n"
    "final 's' added or dropped (meter, meters), an alias, an abbreviation (the\n"
    "first unit that has it), or else a unit expression over idents\n"
    "(UnitMeter/UnitSecond). An expression becomes a temporary unit that lives\n"
    "until the tool ends. Both units must have the same dimension.\n"
    "\n"
    "Numbers are read in the C locale (decimal point), as strtod reads them (also\n"
    "nan, inf and hexadecimal floating point). Results are printed with %.17g\n"
    "(%.9g with --float), so that they read back as exactly the same value.\n"
    "\n"
    "Options:\n"
    "  --delete VALUE  the missing-value marker: numbers equal to it are passed on\n"
    "                  unconverted\n"
    "  --float         convert in single precision (through the float array function)\n";

const char kUnitsHelp[] =
    "Usage: xun units [OPTIONS]\n"
    "\n"
    "Lists the units in registration order: key, ident, abbreviation, description.\n"
    "\n"
    "Options:\n"
    "  --item ITEM  only the allowed units of this item type (ident, description or\n"
    "               key), default unit first\n"
    "  --like UNIT  only the units of the same dimension as UNIT (found as in convert)\n"
    "  --json       write a JSON array of objects instead\n";

const char kItemsHelp[] =
    "Usage: xun items [OPTIONS]\n"
    "\n"
    "Lists the item types: key, ident, default unit, description.\n"
    "\n"
    "Options:\n"
    "  --filter FILTER  only the item types of this filter (ident, description or\n"
    "                   bit value)\n"
    "  --json           write a JSON array of objects instead\n";

const char kFiltersHelp[] = "Usage: xun filters [OPTIONS]\n"
                            "\n"
                            "Lists the filters: bit value, ident, number of item types, "
                            "description.\n"
                            "\n"
                            "Options:\n"
                            "  --json  write a JSON array of objects instead\n";

const char kShowHelp[] =
    "Usage: xun show [OPTIONS] NAME\n"
    "\n"
    "Shows everything known about the units, item types and filters that NAME names:\n"
    "for a unit its key, ident, description, abbreviation, aliases, expression,\n"
    "factor, offset, dimension and base unit; for an item type its key, ident,\n"
    "description, decimals, default value, dimension, default, user and allowed\n"
    "units and filters; for a filter its bit, ident, description and item types.\n"
    "Units are found as in convert (an expression shows its temporary unit), item\n"
    "types and filters by ident, description or key. Aliases and expressions are\n"
    "read from the setup file, since the library's interface does not give them.\n"
    "\n"
    "Options:\n"
    "  --json  write a JSON array of objects instead, one per match\n";

const char kIncludesHelp[] =
    "Usage: xun includes [OPTIONS]\n"
    "\n"
    "Writes the include files xunDefine.c__, xunDefine.f__, xunDefine.p__,\n"
    "xunDefine.cs and the report xunAllowedUnits.HTML, and lists them.\n"
    "\n"
    "Options:\n"
    "  --out DIR  write them into DIR (made if it does not exist) instead of the\n"
    "             current directory\n";

const char kCheckHelp[] =
    "Usage: xun check [OPTIONS] [SETUP]\n"
    "\n"
    "Reads a setup file and its language files as a load would, without stopping\n"
    "at the first problem, and reports every row that a load would skip, refuse or\n"
    "stop on, one line each as FILE:LINE: MESSAGE. Prints nothing when all is well.\n"
    "SETUP is the setup file (default: HOME/bin/XUN.xml, as for the other commands).\n"
    "\n"
    "Options:\n"
    "  --lang DIR  read xuntype.lan, xununit.lan and xunfilter.lan from DIR\n"
    "              (default: the directory of SETUP or --setup, else HOME/bin)\n"
    "\n"
    "Exit status: 0 when nothing was found, 1 when something was found or the\n"
    "setup file cannot be read, 2 bad usage.\n";

const char kWhereHelp[] =
    "Usage: xun where [OPTIONS]\n"
    "\n"
    "Prints the setup file and the language-file directory that the other commands\n"
    "use, without loading them.\n";

} // namespace

std::string HelpText(const std::string& command) {
    std::string text;
    if (command.empty())
        text = kToolHelp;
    else if (command == "convert")
        text = kConvertHelp;
    else if (command == "units")
        text = kUnitsHelp;
    else if (command == "items")
        text = kItemsHelp;
    else if (command == "filters")
        text = kFiltersHelp;
    else if (command == "show")
        text = kShowHelp;
    else if (command == "includes")
        text = kIncludesHelp;
    else if (command == "check")
        text = kCheckHelp;
    else if (command == "where")
        text = kWhereHelp;
    else
        return "";
    return text + "\n" + kDataHelp + "\n" + (command == "check" ? "" : kExitHelp);
}

int PrintHelp(const std::string& command) {
    std::fputs(HelpText(command).c_str(), stdout);
    return kExitOk;
}

int UsageError(const std::string& command, const std::string& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "xun: %s\nTry 'xun %s--help'.\n", message.c_str(),
                 command.empty() ? "" : (command + " ").c_str());
    return kExitUsage;
}

} // namespace xuntool
