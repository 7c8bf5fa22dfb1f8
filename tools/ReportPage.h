// The page that xun report --html writes.
#pragma once

#include <string>

namespace xuntool {

// The whole page: style, script and the tables (tablesJson: a JSON document
// safe inside a script element) in one HTML text that loads nothing else.
std::string ReportPage(const std::string& tablesJson);

} // namespace xuntool
