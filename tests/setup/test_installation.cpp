#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "setup/Installation.h"
#include "xun.h"

namespace {

TEST(Installation, FullpathAndSplitpathGiveTheBinDirectory) {
    setenv("KORVANE_HOME", "/opt/x", 1);
    char abs[260];
    std::memset(abs, 'z', sizeof abs);
    EXPECT_EQ(_fullpath(abs, "ignored", 3), 11);
    EXPECT_STREQ(abs, "/opt/x/bin/");
    char path[260] = "path", drive[260] = "drive", dir[260] = "", fname[260] = "fname",
         ext[260] = "ext";
    EXPECT_EQ(_splitpath(path, drive, dir, fname, ext), 11);
    EXPECT_STREQ(dir, "/opt/x/bin/");
    EXPECT_STREQ(path, "path");
    EXPECT_STREQ(drive, "drive");
    EXPECT_STREQ(fname, "fname");
    EXPECT_STREQ(ext, "ext");
}

TEST(Installation, DirectoryIsReadAfreshEachTime) {
    setenv("KORVANE_HOME", "/first", 1);
    EXPECT_EQ(xunInstallDir_(), "/first/bin/");
    setenv("KORVANE_HOME", "/second", 1);
    char abs[260];
    _fullpath(abs, "", 260);
    EXPECT_STREQ(abs, "/second/bin/");
}

TEST(Installation, UnsetHomeGivesTheNullText) {
    unsetenv("KORVANE_HOME");
    char abs[260];
    EXPECT_EQ(_fullpath(abs, "", 260), 11);
    EXPECT_STREQ(abs, "(null)/bin/");
}

TEST(Installation, MakepathConcatenates) {
    char path[260];
    char drive[] = "C:";
    char dir[] = "/a/";
    char fname[] = "b";
    char ext[] = ".c";
    EXPECT_EQ(_makepath(path, drive, dir, fname, ext), 6);
    EXPECT_STREQ(path, "/a/b.c");
    char empty[] = "";
    EXPECT_EQ(_makepath(path, drive, empty, fname, empty), 1);
    EXPECT_STREQ(path, "b");
}

TEST(Installation, SetupPathIsEmptyBeforeAnyLoad) {
    const char* path = nullptr;
    xunSetupGetPath(&path);
    ASSERT_NE(path, nullptr);
    EXPECT_STREQ(path, "");
    EXPECT_EQ(path, szDocName);
    EXPECT_EQ(szDllFileName[0], '\0');
}

TEST(Installation, WriteAndUnloadDoNothing) {
    EXPECT_EQ(xunSetupWrite(), 1);
    xunSetupUnload();
    xunUnloadItemTypeTables();
    const char* path = nullptr;
    xunSetupGetPath(&path);
    EXPECT_STREQ(path, "");
}

TEST(Installation, CopyPathCutsToTheBuffer) {
    char buffer[xun::contract::kPathBufferSize];
    EXPECT_TRUE(xunCopyPath_(buffer, "/short/path"));
    EXPECT_STREQ(buffer, "/short/path");
    const std::string longest(xun::contract::kPathBufferSize - 1, 'p');
    EXPECT_TRUE(xunCopyPath_(buffer, longest.c_str()));
    EXPECT_EQ(std::string(buffer), longest);
    const std::string tooLong(xun::contract::kPathBufferSize, 'q');
    EXPECT_FALSE(xunCopyPath_(buffer, tooLong.c_str()));
    EXPECT_EQ(std::string(buffer), std::string(xun::contract::kPathBufferSize - 1, 'q'));
}

} // namespace
