#include "Report.h"

#include <cstdio>

#include "Output.h"

namespace xuntool {

void Report::Add(const std::string& file, long line, const std::string& message) {
    std::printf("%s:%ld: %s\n", file.c_str(), line, message.c_str());
    ++m_count;
}

std::string Quote(const std::string& text) {
    return "'" + Printable(text) + "'";
}

} // namespace xuntool
