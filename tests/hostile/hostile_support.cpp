#include "hostile_support.h"

#include <cstdlib>
#include <fstream>

#include <unistd.h>

#include "check_severity.h"
#include "xun.h"

namespace hostile {

std::string Data() {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data");
}

void HostileTest::SetUp() {
    alarm(120);
    char pattern[] = "/tmp/xun-hostile-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    m_dir = pattern;
}

void HostileTest::TearDown() {
    alarm(0);
    const std::string command = "rm -rf '" + m_dir + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

std::string HostileTest::Write(const std::string& name, const std::string& text) {
    const std::string path = m_dir + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

namespace {

void Collect(void* user, const char*, int line, int severity, const char* message) {
    static_cast<CheckResult*>(user)->lines.push_back(std::to_string(line) + ": [" +
                                                     CheckSeverityName(severity) + "] " + message);
}

} // namespace

LoadResult Load(const std::string& path) {
    LoadResult load;
    xunClearLastError();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    load.result = xunSetupLoad(path.c_str());
    load.out = testing::internal::GetCapturedStdout();
    load.err = testing::internal::GetCapturedStderr();
    const char* message = nullptr;
    load.code = xunGetLastError(&message);
    load.message = message != nullptr ? message : "";
    return load;
}

CheckResult Check(const std::string& path, const char* langDir) {
    CheckResult check;
    xunClearLastError();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    check.result = xunSetupCheck(path.c_str(), langDir, Collect, &check);
    // A check never prints.
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const char* message = nullptr;
    check.code = xunGetLastError(&message);
    check.message = message != nullptr ? message : "";
    return check;
}

bool CheckResult::Has(const std::string& text) const {
    for (const std::string& line : lines)
        if (line.find(text) != std::string::npos)
            return true;
    return false;
}

} // namespace hostile
