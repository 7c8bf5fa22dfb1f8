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

#include "Commands.h"

namespace xuntool {

struct DataLocation {
    std::string home;      // installation root without trailing slash; empty when none was found
    std::string setupFile; // the setup file to load
    bool setupGiven = false;
};

// Resolves the location from --setup and --home (a SETUP argument of the
// check command counts as --setup). False with a message when neither a
// setup file nor an installation was found.
bool ResolveLocation(const Invocation& call, const std::string& setupArgument,
                     DataLocation& location, std::string& error);

// Whether the setup file can be read: kExitOk, or kExitFailed after a
// message that says why not.
int CheckReadable(const std::string& setupFile);

// Loads the setup file and the language files of the location through
// xunLoadItemTypeTables. The library's check runs first: what would end the
// process in the load (a language file without a key, a filter naming an
// unknown item type, ...) ends the tool with that problem and status 1
// instead, and nothing is loaded. Whatever the library prints during the
// load goes to standard error, so standard output stays clean for scripts.
// Returns kExitOk, or kExitFailed after a message.
int LoadLocation(const DataLocation& location);

// Resolves the location of a command's data (ResolveLocation without a
// SETUP argument) and loads it; false with status set on failure.
bool LoadData(const Invocation& call, DataLocation& location, int& status);

// A problem reported by the library's checks, for messages: "FILE:LINE:
// MESSAGE", or "FILE: MESSAGE" when it concerns the file as a whole.
std::string ProblemText(const char* file, int line, const std::string& message);

// The message of the last failed call of the library, without the name of
// the function that it starts with.
std::string LibraryReason();

// Directory part of a path ("" when it has none).
std::string DirectoryOf(const std::string& path);
// dir + "/" + name, without doubling a slash.
std::string JoinPath(const std::string& dir, const std::string& name);

} // namespace xuntool
