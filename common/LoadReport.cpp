#include "common/LoadReport.h"

#include "common/Assert.h"

void CXunLoadReport::Message(std::FILE* stream, const std::string& printed, const std::string& file,
                             long line, const std::string& why) {
    ++m_messageCount;
    Tell(XunOutcome::Message, file, line, why, nullptr, &printed);
    if (!m_checkOnly)
        std::fputs(printed.c_str(), stream);
}

void CXunLoadReport::Fatal(const XunAssertion& assertion, const std::string& file, long line,
                           const std::string& why) {
    ++m_fatalCount;
    Tell(XunOutcome::Fatal, file, line, why, &assertion);
    if (!m_checkOnly)
        xunAssertFail_(assertion);
}
