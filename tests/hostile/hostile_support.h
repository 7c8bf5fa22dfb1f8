// Shared helpers of the attack table (docs/hostile-input.md): a temporary
// folder for the generated files, loads and checks through the C interface
// with their output captured, and a bound on the time a test may take, so
// that a call that waits forever (on a FIFO, say) fails the test instead of
// hanging the suite.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace hostile {

std::string Data();

// A test that ends the process (and so fails) when it runs longer than
// 120 seconds, in a temporary folder of its own.
class HostileTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Writes a file into the test's folder; returns its path.
    std::string Write(const std::string& name, const std::string& text);
    const std::string& Dir() const { return m_dir; }

  private:
    std::string m_dir;
};

// What a load said.
struct LoadResult {
    int result = -1;
    int code = 0;
    std::string message;  // xunGetLastError's
    std::string out, err; // standard output and error during the load
};
LoadResult Load(const std::string& path);

// The problems a check reported, as "line: [severity] message".
struct CheckResult {
    int result = 0;
    int code = 0;
    std::string message;
    std::vector<std::string> lines;
    // Whether a report line contains text.
    bool Has(const std::string& text) const;
};
CheckResult Check(const std::string& path, const char* langDir = nullptr);

} // namespace hostile
