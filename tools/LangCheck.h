// The language-file half of xun check: reads "xuntype.lan", "xununit.lan" and
// "xunfilter.lan" with the reading rules of the library's reader, reports
// every line that it would misread, and every key of the setup file that a
// file lacks (a load stops on it).
#pragma once

#include <string>

#include "Report.h"
#include "SetupCheck.h"

namespace xuntool {

// setupName names the setup file in messages. A file that is missing or has
// fewer than two lines is skipped by a load without a message; the check
// then writes a note on standard error, which is not counted as a problem.
void CheckLanguageFiles(const std::string& dir, const std::string& setupName,
                        const SetupContents& contents, Report& report);

} // namespace xuntool
