// Where the xun tool finds its data, and how it loads it.
//
// The installation root ("home") is, in this order: --home DIR, the
// environment variable KORVANE_HOME, the installed data directory (compiled
// in as XUN_INSTALLED_DATA_DIR, relative to the program's own directory, e.g.
// ../share/xun; used when it holds bin/XUN.xml), and - only
// for a tool run from its build tree - the repository's data/ directory. The
// setup file is --setup FILE, else HOME/bin/XUN.xml. The language files are
// read from HOME/bin, as the library does; with --setup FILE only --home and
// KORVANE_HOME give a home (no language files otherwise).
#pragma once

#include <string>

#include "Args.h"

namespace xuntool {

struct DataLocation {
    std::string home;      // installation root without trailing slash; empty when none was found
    std::string setupFile; // the setup file to load
    bool setupGiven = false;
};

// Resolves the location from --setup and --home (a SETUP argument of the
// check command counts as --setup). False with a message when neither a
// setup file nor an installation was found.
bool ResolveLocation(const ParsedArgs& args, const std::string& setupArgument,
                     DataLocation& location, std::string& error);

// Loads the setup file and the language files through xunLoadItemTypeTables.
// Whatever the library prints meanwhile goes to standard error, so standard
// output stays clean for scripts. Returns kExitOk, or kExitFailed after a
// message when the file cannot be read or loaded. A load that the library
// would abort (a language file without a key, a filter naming an unknown item
// type, ...) ends the tool with a message and status 1 instead.
int LoadLocation(const DataLocation& location);

// What to say when the library stops on one of its assertions. In the
// default mode the tool prints "xun: <context>: <reason>" and exits with
// status 1; inside a ThrowOnLibraryStop scope the stop is thrown as a
// LibraryStop instead, so that the caller can report it and go on.
void SetStopContext(const std::string& context);

struct LibraryStop {
    std::string expression;
    std::string source;
    unsigned line;
    // A readable reason, e.g. "a unit expression gives the factor 0".
    std::string Reason() const;
};

class ThrowOnLibraryStop {
  public:
    ThrowOnLibraryStop();
    ~ThrowOnLibraryStop();
    ThrowOnLibraryStop(const ThrowOnLibraryStop&) = delete;
    ThrowOnLibraryStop& operator=(const ThrowOnLibraryStop&) = delete;

  private:
    bool m_previous;
};

// Installs the library hook behind SetStopContext and ThrowOnLibraryStop.
void InstallStopHook();

// Directory part of a path ("" when it has none).
std::string DirectoryOf(const std::string& path);
// dir + "/" + name, without doubling a slash.
std::string JoinPath(const std::string& dir, const std::string& name);

} // namespace xuntool
