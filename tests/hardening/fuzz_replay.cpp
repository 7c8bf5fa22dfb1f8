// Replays every input of a fuzz target's corpus (fuzz/corpus/<target>/)
// through the target itself: the crashing inputs that fuzzing found are kept
// there, so each of them runs again in every build, the sanitizer build
// included. Built once per target (XUN_FUZZ_TARGET), whose name the test
// suite's name carries (XUN_FUZZ_SUITE: FuzzCorpusExpr, ...).
#include <gtest/gtest.h>

#include <dirent.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "FuzzSupport.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

std::string CorpusDir() {
    return std::string(XUN_SOURCE_DIR) + "/fuzz/corpus/" + XUN_FUZZ_TARGET;
}

std::vector<std::string> CorpusFiles() {
    std::vector<std::string> names;
    if (DIR* dir = opendir(CorpusDir().c_str())) {
        while (const dirent* entry = readdir(dir))
            if (entry->d_name[0] != '.')
                names.push_back(entry->d_name);
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<uint8_t> ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in),
                                std::istreambuf_iterator<char>());
}

TEST(XUN_FUZZ_SUITE, EveryInputRunsThroughTheTarget) {
    // The targets send standard output to /dev/null unless told otherwise;
    // the test's own output stays.
    setenv("XUN_FUZZ_VERBOSE", "1", 1);
    int argc = 0;
    char** argv = nullptr;
    ASSERT_EQ(LLVMFuzzerInitialize(&argc, &argv), 0);
    const std::vector<std::string> names = CorpusFiles();
    ASSERT_GE(names.size(), 10u) << CorpusDir();
    for (const std::string& name : names) {
        // Named before it runs: a crash ends the program here.
        std::fprintf(stderr, "input %s\n", name.c_str());
        const std::vector<uint8_t> data = ReadFile(CorpusDir() + "/" + name);
        testing::internal::CaptureStdout();
        EXPECT_EQ(LLVMFuzzerTestOneInput(data.data(), data.size()), 0) << name;
        testing::internal::GetCapturedStdout();
    }
}

} // namespace
