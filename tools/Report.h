// The findings of xun check, printed as "file:line: message" as they come.
#pragma once

#include <string>

namespace xuntool {

class Report {
  public:
    void Add(const std::string& file, long line, const std::string& message);
    int Count() const { return m_count; }

  private:
    int m_count = 0;
};

// 'text' for messages, quoted and made printable.
std::string Quote(const std::string& text);

} // namespace xuntool
