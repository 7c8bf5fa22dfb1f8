// The command table and the help texts of the xun tool.
#include "Commands.h"

#include <cstdio>

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
    "Commands:\n";

const char kToolHelpEnd[] = "\n'xun COMMAND --help' describes a command.\n";

const char kConvertHelp[] =
    "Usage: xun convert [OPTIONS] VALUE FROM TO\n"
    "       xun convert [OPTIONS] VALUEFROM TO      (10ft m, 1.5e3m3/s l/s)\n"
    "       xun convert [OPTIONS] FROM TO < numbers\n"
    "\n"
    "Converts VALUE from unit FROM to unit TO and prints the result. Without VALUE\n"
    "it reads standard input line by line and writes it out with every number\n"
    "converted: a token (a run of characters other than blanks) or, with\n"
    "--delimiter, a field that reads as a number is replaced by the converted\n"
    "number; everything else (blanks, delimiters, headers, NA, empty fields,\n"
    "numbers equal to the --delete marker) is copied unchanged. Numbers are\n"
    "converted in blocks of 65536 through the library's array functions. With no\n"
    "numbers at all (on a terminal before reading, or for an empty input) it\n"
    "prints the formula of the conversion, as x[TO] = x[FROM] * FACTOR + OFFSET.\n"
    "\n"
    "FROM and TO are unit strings, read as xunParseUnit reads them: a name - an\n"
    "ident (UnitMeter), a description, with a final 's' added or dropped (meter,\n"
    "meters), an alias, an abbreviation - or a composed unit (m3/s, kg m-2 s-1,\n"
    "ft^3/s, kg/(m2*s), 'cubic feet per second', 'K @ 273.15'). A unit that no\n"
    "registered unit equals becomes a temporary unit that lives until the tool\n"
    "ends. Both units must have the same dimension. An argument that starts with\n"
    "a number followed by a unit (10ft, '10 ft') is a value with its unit.\n"
    "\n"
    "Numbers are read in the C locale (decimal point), as strtod reads them (also\n"
    "nan, inf and hexadecimal floating point). Results are printed with at most 15\n"
    "significant digits (6 with --float), trailing zeros dropped: 212, 293.15, 3.6.\n"
    "\n"
    "Options:\n"
    "  --exact          print the shortest text that reads back as exactly the\n"
    "                   same value (for pipelines that must lose nothing)\n"
    "  --digits N       print at most N significant digits (1 to 17)\n"
    "  --delete VALUE   the missing-value marker: numbers equal to it are passed on\n"
    "                   unconverted, as the text they were given as\n"
    "  --float          convert in single precision (through the float array function)\n"
    "  --strict         stop with status 1 at the first token or field that is not a\n"
    "                   number, after writing what came before it\n"
    "  --column N       convert only the N-th token or field of each line (from 1)\n"
    "  --delimiter C    fields are separated by the character C (',' ';' '|', \\t\n"
    "                   for a tab) instead of by blanks\n";

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
    "Units are found as in convert (a composed unit shows the unit it equals, or\n"
    "its temporary unit), item types and filters by ident, description or key.\n"
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
    "  --out DIR     write them into DIR (made if it does not exist) instead of the\n"
    "                current directory\n"
    "  --fixed-form  also write xunDefine.f77, the constants of xunDefine.f__ in\n"
    "                fixed form for Fortran 77 hosts: comment lines start with C,\n"
    "                statements in column 7, continuation lines have '&' in\n"
    "                column 6, and no line is longer than 72 columns\n";

const char kReportHelp[] =
    "Usage: xun report --html FILE [OPTIONS]\n"
    "\n"
    "Writes one self-contained HTML page (its style, script and tables inside it;\n"
    "it loads nothing else) to browse the installation: the item types by filter,\n"
    "each with its dimension, user unit, decimals, default value and allowed units\n"
    "(abbreviation, factor, offset, dimension); every unit with its names and\n"
    "definition; a search box; and a converter between the units of an item type\n"
    "that computes ((x * f1 + o1) - o2) / f2 in this order, as the library does,\n"
    "so that its results equal the library's bit for bit.\n"
    "\n"
    "Options:\n"
    "  --html FILE  the page to write\n";

const char kCheckHelp[] =
    "Usage: xun check [OPTIONS] [SETUP]\n"
    "\n"
    "Runs the library's check of a load: reads a setup file and its language files\n"
    "as a load would, without stopping at the first problem and without loading\n"
    "them, and reports every problem on a line of its own as\n"
    "FILE:LINE: SEVERITY: MESSAGE (FILE: SEVERITY: MESSAGE when it concerns the\n"
    "file as a whole). SEVERITY tells what a load does there:\n"
    "  fatal    the load ends the process\n"
    "  message  the load prints a message and goes on\n"
    "  dropped  the load drops or ignores something without a word\n"
    "  warning  the load takes it as written, but it will not work as meant\n"
    "Prints nothing when all is well. SETUP is the setup file (default:\n"
    "HOME/bin/XUN.xml, as for the other commands).\n"
    "\n"
    "Options:\n"
    "  --lang DIR         read xuntype.lan, xununit.lan and xunfilter.lan from DIR\n"
    "                     (default: the directory of SETUP or --setup, else HOME/bin)\n"
    "  --base-group FILE  also check a unit base-group file against the item types\n"
    "                     and units of the setup file (when nothing in the setup\n"
    "                     file would end a load)\n"
    "\n"
    "Exit status: 0 when nothing was found, 1 when something was found or the\n"
    "setup file cannot be read, 2 bad usage.\n";

const char kWhereHelp[] =
    "Usage: xun where [OPTIONS]\n"
    "\n"
    "Prints the setup file and the language-file directory that the other commands\n"
    "use, without loading them.\n";

} // namespace

bool Invocation::Has(const std::string& name) const {
    return values.count(name) != 0 || flags.count(name) != 0;
}

std::string Invocation::Value(const std::string& name, const std::string& fallback) const {
    const auto it = values.find(name);
    return it != values.end() ? it->second : fallback;
}

const std::vector<Command>& CommandTable() {
    static const std::vector<Command> commands = {
        {"convert",
         "convert [VALUE] FROM TO",
         "convert a value, or numbers from standard input",
         kConvertHelp,
         {{"--delete", true, false},
          {"--float", false, false},
          {"--exact", false, false},
          {"--digits", true, false},
          {"--strict", false, false},
          {"--column", true, false},
          {"--delimiter", true, false}},
         1,
         3,
         &RunConvert},
        {"units",
         "units [--item I] [--like U]",
         "list units",
         kUnitsHelp,
         {{"--item", true, false}, {"--like", true, false}, {"--json", false, false}},
         0,
         0,
         &RunUnits},
        {"items",
         "items [--filter F]",
         "list item types",
         kItemsHelp,
         {{"--filter", true, false}, {"--json", false, false}},
         0,
         0,
         &RunItems},
        {"filters",
         "filters",
         "list filters",
         kFiltersHelp,
         {{"--json", false, false}},
         0,
         0,
         &RunFilters},
        {"show",
         "show NAME",
         "everything known about a unit, item type or filter",
         kShowHelp,
         {{"--json", false, false}},
         1,
         1,
         &RunShow},
        {"includes",
         "includes [--out DIR]",
         "write the include files and the allowed-units report",
         kIncludesHelp,
         {{"--out", true, true}, {"--fixed-form", false, false}},
         0,
         0,
         &RunIncludes},
        {"report",
         "report --html FILE",
         "write a page to browse the installation",
         kReportHelp,
         {{"--html", true, false}},
         0,
         0,
         &RunReport},
        {"check",
         "check [SETUP] [--lang DIR]",
         "find every problem of a setup file and its language files",
         kCheckHelp,
         {{"--lang", true, true}, {"--base-group", true, false}},
         0,
         1,
         &RunCheck},
        {"where",
         "where",
         "show which setup file and language files are used",
         kWhereHelp,
         {},
         0,
         0,
         &RunWhere},
    };
    return commands;
}

const Command* FindCommand(const std::string& name) {
    for (const Command& command : CommandTable())
        if (name == command.name)
            return &command;
    return nullptr;
}

const std::vector<OptionDef>& DataOptions() {
    static const std::vector<OptionDef> options = {{"--setup", true, false},
                                                   {"--home", true, true}};
    return options;
}

int PrintHelp(const Command* command) {
    std::string text;
    if (command == nullptr) {
        text = kToolHelp;
        for (const Command& entry : CommandTable()) {
            char line[160];
            std::snprintf(line, sizeof line, "  %-27s %s\n", entry.synopsis, entry.summary);
            text += line;
        }
        text += "  help [COMMAND]              show this help or a command's help\n";
        text += kToolHelpEnd;
    } else {
        text = command->help;
    }
    text += "\n";
    text += kDataHelp;
    // The check command tells its own exit statuses.
    if (command == nullptr || command->run != &RunCheck) {
        text += "\n";
        text += kExitHelp;
    }
    std::fputs(text.c_str(), stdout);
    return kExitOk;
}

int UsageError(const Command* command, const std::string& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "xun: %s\nTry 'xun %s--help'.\n", message.c_str(),
                 command == nullptr ? "" : (std::string(command->name) + " ").c_str());
    return kExitUsage;
}

} // namespace xuntool
