#include "FuzzSupport.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <set>
#include <vector>

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include "registry/Registries.h"
#include "common/Assert.h"
#include "xun.h"

#ifndef XUN_SOURCE_DIR
#error "XUN_SOURCE_DIR must name the source tree"
#endif

namespace {

unsigned long AssertionCount_ = 0;
std::string TempDir_;

// A check that fails in a destructor cannot throw: destructors are noexcept,
// and the exception would end the process through std::terminate. The same
// holds while another exception unwinds the stack. The hook then returns and
// the standard abort reports the assertion as a crash. The reference-count
// checks of CSmartPtrAble (inline in the public header SmartPtr) abort
// directly, without the hook. In the paths fuzzed here both are right: those
// checks fail only when the XML layer itself miscounts.
void ThrowingAssertHook(const char* expr, const char* source, unsigned line, const char* function) {
    if (std::uncaught_exceptions() > 0 || std::strchr(function, '~') != nullptr)
        return;
    ++AssertionCount_;
    throw XunFuzzAssertion{expr, source, line, function};
}

void RemoveTempDir() {
    if (TempDir_.empty())
        return;
    const std::string command = "rm -rf '" + TempDir_ + "'";
    if (std::system(command.c_str()) != 0)
        std::fprintf(stderr, "could not remove %s\n", TempDir_.c_str());
}

bool Loads(const std::string& path) {
    return xunSetupLoad(path.c_str()) == 1 && xunRegistries_().units.Count() != 0;
}

} // namespace

// The library has no business with the network: a parsed document that made
// it open a connection or look up a host name is a defect (the XML layer
// reads external DTDs and entities from local files only). These definitions
// take the place of the C library's for the whole process, the parser
// library's included.
extern "C" int connect(int, const struct sockaddr*, socklen_t) {
    xunFuzzFail("the library tried to open a network connection");
}

extern "C" int getaddrinfo(const char*, const char*, const struct addrinfo*, struct addrinfo**) {
    xunFuzzFail("the library tried to look up a host name");
}

// Leak checking in the fuzz programs. libFuzzer checks every input that
// allocated more than it freed; those checks stay on. The check at exit is
// off: the registries own what they hold until the process ends, and at exit
// their containers are destroyed without freeing it, so every unit, item
// type and filter of the installation that a target loaded would show as
// leaked.
extern "C" const char* __asan_default_options() {
    return "leak_check_at_exit=0:print_suppressions=0";
}

void xunFuzzFail(const char* what) {
    std::fprintf(stderr, "xun fuzz check failed: %s\n", what);
    std::abort();
}

void xunFuzzInit() {
    xunSetAssertHook_(&ThrowingAssertHook);
    // Every input loads from its own bytes: the load cache would store
    // thousands of entries and take later loads of an input from them.
    setenv("XUN_CACHE_DIR", "off", 1);
    char pattern[] = "/tmp/xun-fuzz-XXXXXX";
    if (mkdtemp(pattern) == nullptr)
        xunFuzzFail("cannot create a temporary directory");
    TempDir_ = pattern;
    std::atexit(&RemoveTempDir);
    if (std::getenv("XUN_FUZZ_VERBOSE") == nullptr &&
        std::freopen("/dev/null", "w", stdout) == nullptr)
        xunFuzzFail("cannot send standard output to /dev/null");
}

unsigned long xunFuzzAssertionCount() {
    return AssertionCount_;
}

std::string xunFuzzWriteFile(const char* name, const uint8_t* data, size_t size) {
    const std::string path = TempDir_ + "/" + name;
    FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        xunFuzzFail("cannot write a temporary file");
    if (size > 0 && std::fwrite(data, 1, size, file) != size)
        xunFuzzFail("cannot write a temporary file");
    if (std::fclose(file) != 0)
        xunFuzzFail("cannot write a temporary file");
    return path;
}

std::string xunFuzzLoadInstallation() {
    std::vector<std::string> candidates;
    if (const char* setup = std::getenv("XUN_FUZZ_SETUP"))
        candidates.push_back(setup);
    candidates.push_back(XUN_SOURCE_DIR "/data/bin/XUN.xml");
    candidates.push_back(XUN_SOURCE_DIR "/fuzz/fixture/XUN.xml");
    for (const std::string& path : candidates) {
        if (access(path.c_str(), R_OK) != 0)
            continue;
        try {
            if (Loads(path))
                return path;
        } catch (const XunFuzzAssertion& failure) {
            std::fprintf(stderr, "%s: assertion \"%s\" while loading\n", path.c_str(),
                         failure.expr);
        }
    }
    xunFuzzFail("no setup file loads");
}

void xunFuzzClearRegistries() {
    xunResetRegistries_();
    xunSetProductFilter_(xun::contract::kInitialProductFilter);
    const CKVregistries& registries = xunRegistries_();
    if (registries.units.Count() != 0 || registries.itemTypes.Count() != 0 ||
        registries.filters.Count() != 0)
        xunFuzzFail("the registry is not empty after a reset");
}
