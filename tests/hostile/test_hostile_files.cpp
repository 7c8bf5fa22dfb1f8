// The attack table, files: what is not a regular file - a FIFO, a device, a
// directory - is refused before anything is read, by a load and by a check,
// whether it is the setup file or a DTD or entity the setup file names, and
// nothing waits on it. A URL is never fetched.
#include <gtest/gtest.h>

#include <string>

#include <sys/stat.h>

#include "hostile_support.h"
#include "registry_access.h"
#include "xun.h"

namespace {

using hostile::Check;
using hostile::CheckResult;
using hostile::HostileTest;
using hostile::Load;
using hostile::LoadResult;

class HostileFiles : public HostileTest {
  protected:
    std::string Fifo(const std::string& name) {
        const std::string path = Dir() + "/" + name;
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        return path;
    }

    // A load and a check that refuse the file for the reason given.
    void ExpectUnreadable(const std::string& path, const std::string& reason, long line = 0) {
        const LoadResult load = Load(path);
        EXPECT_EQ(load.result, 0);
        EXPECT_EQ(load.err, "Document '" + path + "' not parsed successfully. \n");
        EXPECT_EQ(load.code, XUN_ERR_FILE);
        EXPECT_EQ(xuntest::Registries().units.Count(), 0u);
        const CheckResult check = Check(path);
        EXPECT_EQ(check.result, -1);
        EXPECT_EQ(check.code, XUN_ERR_FILE);
        EXPECT_EQ(check.lines, std::vector<std::string>{std::to_string(line) + ": [message] " +
                                                        reason + "; a load refuses it"});
    }
};

const char kUnits[] = "<XUN><Group Name=\"Units\"><Rows>"
                      "<R Ident=\"UnitMeter\" KvId=\"1000\" Desc=\"meter\" Expr=\"Length\"/>"
                      "</Rows></Group></XUN>\n";

TEST_F(HostileFiles, FifoIsRefusedWithoutWaiting) {
    ExpectUnreadable(Fifo("setup.xml"), "the file cannot be read (a FIFO, not a regular file)");
}

TEST_F(HostileFiles, DeviceIsRefusedWithoutReading) {
    ExpectUnreadable("/dev/zero",
                     "the file cannot be read (a character device, not a regular file)");
}

TEST_F(HostileFiles, DirectoryIsRefused) {
    ExpectUnreadable(Dir(), "the file cannot be read (a directory, not a regular file)");
}

TEST_F(HostileFiles, UrlIsNotFetched) {
    ExpectUnreadable("http://127.0.0.1:9/XUN.xml",
                     "the file cannot be read (a URL, not a local file)");
}

TEST_F(HostileFiles, ExternalDtdThatIsAFifoIsRefused) {
    const std::string fifo = Fifo("xun.dtd");
    const std::string path =
        Write("setup.xml",
              "<?xml version=\"1.0\"?>\n<!DOCTYPE XUN SYSTEM \"xun.dtd\">\n" + std::string(kUnits));
    ExpectUnreadable(
        path, "the external file '" + fifo + "' cannot be read (a FIFO, not a regular file)", 2);
}

TEST_F(HostileFiles, ExternalEntityThatIsADeviceIsRefused) {
    const std::string path =
        Write("setup.xml", "<?xml version=\"1.0\"?>\n"
                           "<!DOCTYPE XUN [<!ENTITY e SYSTEM \"/dev/zero\">]>\n"
                           "<XUN><Note>&e;</Note></XUN>\n");
    ExpectUnreadable(
        path,
        "the external file '/dev/zero' cannot be read (a character device, not a regular file)", 3);
}

// A language file or a base-group file that is a FIFO is skipped (or not
// loaded), as a missing one is, without waiting.
TEST_F(HostileFiles, LanguageAndBaseGroupFifosAreNotRead) {
    const std::string setup = Write("setup.xml", kUnits);
    Fifo("xuntype.lan");
    Fifo("xununit.lan");
    Fifo("xunfilter.lan");
    const CheckResult check = Check(setup, Dir().c_str());
    EXPECT_EQ(check.result, 0);
    EXPECT_TRUE(check.Has("[dropped] the file cannot be read (a FIFO, not a regular file); a "
                          "load keeps the texts it has"));
    EXPECT_EQ(check.lines.size(), 3u);
    setenv("KORVANE_HOME", Dir().c_str(), 1);
    const std::string bin = Dir() + "/bin";
    ASSERT_EQ(mkdir(bin.c_str(), 0700), 0);
    Write("bin/XUN.xml", kUnits);
    Fifo("bin/xuntype.lan");
    Fifo("bin/xununit.lan");
    testing::internal::CaptureStdout();
    xunLoadItemTypeTables("");
    testing::internal::GetCapturedStdout();
    EXPECT_NE(xuntest::UnitByKey(1000), nullptr);
    const std::string group = Fifo("group.kw");
    xunClearLastError();
    LoadUnitBaseGroupFile(const_cast<char*>(group.c_str()));
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_FILE);
    EXPECT_EQ(xunBaseGroupCheck(group.c_str(), nullptr, nullptr), -1);
}

} // namespace
