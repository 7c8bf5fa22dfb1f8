// The setup-file half of xun check: runs the setup loader's three passes on
// a setup file without loading it, and reports every row that a load would
// skip, refuse or stop on.
#pragma once

#include <string>
#include <vector>

#include "Report.h"

namespace xuntool {

// A definition that a load would register, with the line of its row.
struct Defined {
    long key;
    std::string ident;
    long line;
};

// What a load of the file would register, in registration order.
struct SetupContents {
    std::vector<Defined> units;
    std::vector<Defined> items;
    std::vector<Defined> filters;
};

// Checks the file; findings go to report. Returns false when the file cannot
// be read (after a message on standard error) or is not well-formed XML
// (reported as a finding): a load would then register nothing.
//
// The units pass runs in this process's own registry, with the library's
// evaluator, exactly as the loader does it (nothing else is loaded in a
// check); a factor-0 expression, which stops a load, is caught and reported.
// Item types and filters are simulated apart from the library's registries,
// so that nothing a load would stop on can stop the check.
bool CheckSetup(const std::string& path, Report& report, SetupContents& contents);

} // namespace xuntool
