// Limits that replace fixed-size buffers, at their boundaries: the 260-byte
// path buffers of the load entry points (a setup path of 259 bytes loads, one
// of 260 is refused; the name kept in szDllFileName is cut to 259 bytes) and
// the length limit of CString. The other limits have their tests beside
// their modules (expression tokens and nesting in tests/units, language-file
// lines and texts and keyword-file numbers in tests/langfile, entity
// expansion in tests/xml).
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

#include "registry/UnitRegistry.h"
#include "setup/Installation.h"
#include "xml/CString.h"
#include "xun.h"
#include "registry_access.h"

namespace {

const char kSetup[] = "<XUN><Group Name=\"Units\"><Rows>"
                      "<R Ident=\"UnitMeter\" KvId=\"1000\" Desc=\"meter\" Expr=\"Length\"/>"
                      "</Rows></Group></XUN>\n";

class PathLimits : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/xun-limits-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
    }
    void TearDown() override {
        const std::string command = "rm -rf '" + m_dir + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }

    // A setup file whose full name is exactly `length` bytes long: a folder
    // of 100-byte names, then the file "x...x.xml".
    std::string SetupFileOfLength(size_t length) {
        std::string dir = m_dir;
        while (length - dir.size() > 120) {
            dir += "/" + std::string(100, 'd');
            mkdir(dir.c_str(), 0700);
        }
        const size_t nameLength = length - dir.size() - 1;
        const std::string path = dir + "/" + std::string(nameLength - 4, 'x') + ".xml";
        std::ofstream(path) << kSetup;
        EXPECT_EQ(path.size(), length);
        return path;
    }

    int Load(const std::string& path, std::string* err) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = xunSetupLoad(path.c_str());
        testing::internal::GetCapturedStdout();
        *err = testing::internal::GetCapturedStderr();
        return result;
    }

    std::string m_dir;
};

TEST_F(PathLimits, SetupPathOf259BytesLoads) {
    const std::string path = SetupFileOfLength(xun::contract::kPathBufferSize - 1);
    std::string err;
    ASSERT_EQ(Load(path, &err), 1);
    EXPECT_EQ(err, "");
    EXPECT_NE(xuntest::UnitByKey(1000), nullptr);
    const char* loaded = nullptr;
    xunSetupGetPath(&loaded);
    EXPECT_EQ(std::string(loaded), path);
}

TEST_F(PathLimits, SetupPathOf260BytesIsRefused) {
    const std::string path = SetupFileOfLength(xun::contract::kPathBufferSize);
    std::ifstream exists(path);
    ASSERT_TRUE(exists.good());
    std::string err;
    EXPECT_EQ(Load(path, &err), 0);
    EXPECT_EQ(err, "Document '" + path + "' not parsed successfully. \n");
    EXPECT_TRUE((xuntest::Registries().units.Count() == 0));
    const char* loaded = nullptr;
    xunSetupGetPath(&loaded);
    EXPECT_STREQ(loaded, "");
}

TEST_F(PathLimits, DefaultPathFromALongHomeIsRefused) {
    // KORVANE_HOME + "/bin/XUN.xml" is 260 bytes.
    const std::string home = "/" + std::string(xun::contract::kPathBufferSize - 13, 'h');
    setenv("KORVANE_HOME", home.c_str(), 1);
    std::string err;
    EXPECT_EQ(Load("", &err), 0);
    EXPECT_EQ(err, "Document '" + home + "/bin/XUN.xml' not parsed successfully. \n");
}

TEST_F(PathLimits, DllFileNameKeepsAtMost259Bytes) {
    const std::string longest = SetupFileOfLength(xun::contract::kPathBufferSize - 1);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    xunLoadItemTypeTables(longest.c_str());
    EXPECT_EQ(std::string(szDllFileName), longest);
    EXPECT_NE(xuntest::UnitByKey(1000), nullptr);

    const std::string tooLong = "/" + std::string(300, 'z') + ".xml";
    xunLoadItemTypeTables(tooLong.c_str());
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Document '" + tooLong + "' not parsed successfully. \n");
    EXPECT_EQ(std::string(szDllFileName), tooLong.substr(0, xun::contract::kPathBufferSize - 1));
}

// CString holds at most INT_MAX - 1 bytes; a text that would make it longer
// throws std::length_error and leaves the object as it was. This needs a
// text of 2 GiB; without the memory the test is skipped.
TEST(CStringLimit, LongerThanTheLimitThrowsAndChangesNothing) {
    const size_t size = static_cast<size_t>(INT_MAX) + 1;
    std::unique_ptr<char[]> text(new (std::nothrow) char[size]);
    if (!text)
        GTEST_SKIP() << "no 2 GiB for the text";
    std::memset(text.get(), 'x', size - 1);
    text[size - 1] = '\0'; // INT_MAX bytes: one more than the limit
    EXPECT_THROW(CString{text.get()}, std::length_error);
    CString held("ab");
    EXPECT_THROW(held = text.get(), std::length_error);
    EXPECT_EQ(held, "ab");
    // "ab" and INT_MAX - 2 more bytes make INT_MAX: one more than the limit.
    text[static_cast<size_t>(INT_MAX) - 2] = '\0';
    EXPECT_THROW(held += text.get(), std::length_error);
    EXPECT_EQ(held, "ab");
    EXPECT_EQ(CString::kMaxLength, INT_MAX - 1);
}

} // namespace
