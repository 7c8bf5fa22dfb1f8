// Memory running out in every exported function that allocates: with an
// allocator that fails after n allocations, for n = 0, 1, 2, ... until the
// call gets through, each call returns failure with XUN_ERR_NO_MEMORY (or,
// for the void functions, records it) instead of ending the host's process,
// and the registry keeps every invariant.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "registry_access.h"
#include "setup/LoadCache.h"
#include "xun.h"

namespace {

// Allocations left before the allocator fails; negative: no limit.
long AllocationsLeft_ = -1;
// Set once an allocation was refused.
bool Refused_ = false;

void* Allocate(std::size_t size) {
    if (AllocationsLeft_ == 0) {
        Refused_ = true;
        return nullptr;
    }
    if (AllocationsLeft_ > 0)
        --AllocationsLeft_;
    return std::malloc(size == 0 ? 1 : size);
}

// Out of line, so that the compiler does not pair a replaced operator new
// with free.
__attribute__((noinline)) void Release(void* p) {
    std::free(p);
}

} // namespace

#include "replaced_allocation.h"

namespace {

std::string Data() {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data");
}

// Runs call with an allocator that fails after n allocations, n = 0, 1, ...
// until it succeeds. Every failed attempt must have recorded
// XUN_ERR_NO_MEMORY (when an allocation was refused) and left the registry
// intact. Returns the number of attempts that failed.
int RunUntilItSucceeds(const char* what, const std::function<bool()>& call) {
    int failures = 0;
    for (long n = 0; n < 100000; ++n) {
        xunClearLastError();
        Refused_ = false;
        AllocationsLeft_ = n;
        bool ok = false;
        try {
            ok = call();
        } catch (...) {
            AllocationsLeft_ = -1;
            ADD_FAILURE() << what << ": an exception left the C interface after " << n
                          << " allocations";
            return failures;
        }
        AllocationsLeft_ = -1;
        const std::string broken = xuntest::BrokenInvariant();
        EXPECT_EQ(broken, "") << what << " after " << n << " allocations";
        if (ok && !Refused_)
            return failures;
        if (Refused_) {
            const char* message = nullptr;
            EXPECT_EQ(xunGetLastError(&message), XUN_ERR_NO_MEMORY)
                << what << " after " << n << " allocations: " << message;
            ++failures;
        }
        if (ok)
            return failures; // the refused allocation was not needed
    }
    ADD_FAILURE() << what << " never succeeded";
    return failures;
}

class OutOfMemory : public testing::Test {
  protected:
    void SetUp() override {
        testing::internal::CaptureStdout();
        ASSERT_EQ(xunSetupLoad((Data() + "/setup/basic.xml").c_str()), 1);
        testing::internal::GetCapturedStdout();
    }
};

TEST_F(OutOfMemory, Lists) {
    char* list = nullptr;
    EXPECT_GT(RunUntilItSucceeds("xunUnitGetAll",
                                 [&] {
                                     const int ok = xunUnitGetAll(&list);
                                     if (ok)
                                         std::free(list);
                                     return ok == 1;
                                 }),
              0);
    EXPECT_GT(RunUntilItSucceeds("xunItemTypeGetAll",
                                 [&] {
                                     const int ok = xunItemTypeGetAll(&list);
                                     if (ok)
                                         std::free(list);
                                     return ok == 1;
                                 }),
              0);
    EXPECT_GT(RunUntilItSucceeds("xunFilterGetAll",
                                 [&] {
                                     const int ok = xunFilterGetAll(&list);
                                     if (ok)
                                         std::free(list);
                                     return ok == 1;
                                 }),
              0);
}

TEST_F(OutOfMemory, Creation) {
    int serial = 0;
    EXPECT_GT(RunUntilItSucceeds("xunUnitNew",
                                 [&] {
                                     const std::string ident = "UnitNew" + std::to_string(++serial);
                                     return xunUnitNew(ident.c_str(), "new", "n",
                                                       "(UnitKilometer*2)/UnitHour+1") == 1;
                                 }),
              0);
    EXPECT_GT(RunUntilItSucceeds("xunItemTypeNew",
                                 [&] {
                                     const std::string ident = "ItemNew" + std::to_string(++serial);
                                     return xunItemTypeNew(ident.c_str(), "new item", 0,
                                                           "UnitMps") == 1;
                                 }),
              0);
    EXPECT_GT(RunUntilItSucceeds("xunFilterNew",
                                 [&] {
                                     const std::string ident =
                                         "FilterNew" + std::to_string(++serial);
                                     return xunFilterNew(ident.c_str(), "new filter") == 1;
                                 }),
              0);
    EXPECT_GT(RunUntilItSucceeds("xunAddItemUnit",
                                 [] {
                                     return xunAddItemUnit(102, 1300) == 1 ||
                                            xunGetLastError(nullptr) == XUN_ERR_TAKEN;
                                 }),
              -1);
}

// Reading unit strings allocates at every step (the index of the names, the
// texts remembered, a unit registered at run time): memory running out at
// any of them fails the call and leaves every registry invariant.
TEST_F(OutOfMemory, UnitStrings) {
    int tag = 0;
    EXPECT_GT(RunUntilItSucceeds("xunParseUnit of a name",
                                 [&] { return xunParseUnit("metre", &tag) == 1; }),
              0);
    int serial = 0;
    EXPECT_GT(RunUntilItSucceeds("xunParseUnit of a new meaning",
                                 [&] {
                                     const std::string text =
                                         std::to_string(++serial + 1) + " km/h";
                                     return xunParseUnit(text.c_str(), &tag) == 1;
                                 }),
              0);
    EXPECT_GT(RunUntilItSucceeds("xunParseItemUnit",
                                 [&] {
                                     return xunParseItemUnit(102, "km h-1", &tag) != 0 ||
                                            xunGetLastError(nullptr) == XUN_ERR_NOT_FOUND;
                                 }),
              0);
    const char* text = nullptr;
    EXPECT_GT(RunUntilItSucceeds("xunGetUnitText",
                                 [&] { return xunGetUnitText(1300, XUN_NOTATION_CF, &text) == 1; }),
              -1);
    EXPECT_EQ(std::string(text), "m s-1");
}

TEST_F(OutOfMemory, DerivedUnits) {
    int match = 0, eqv = 0;
    double factor = 0;
    EXPECT_GT(
        RunUntilItSucceeds("xunUnitMultiply",
                           [&] { return xunUnitMultiply(1300, 1101, &match, &eqv, &factor) == 1; }),
        0);
    EXPECT_GT(
        RunUntilItSucceeds("xunUnitPower",
                           [&] { return xunUnitPower(1001, &match, &eqv, &factor, 1.0) == 1; }),
        0);
    EXPECT_GT(
        RunUntilItSucceeds("xunUnitDivide",
                           [&] { return xunUnitDivide(1001, 1101, &match, &eqv, &factor) == 1; }),
        0);
    EXPECT_GT(RunUntilItSucceeds("xunUnitGetIntegrationFactor",
                                 [&] {
                                     return xunUnitGetIntegrationFactor(1300, 1101, &match, &eqv,
                                                                        &factor) == 1;
                                 }),
              0);
    EXPECT_GT(RunUntilItSucceeds("xunUnitGetDerivationFactor",
                                 [&] {
                                     return xunUnitGetDerivationFactor(1300, 1101, &match, &eqv,
                                                                       &factor) == 1;
                                 }),
              0);
}

// Sends standard output and error to /dev/null while it lives (the loader's
// messages), without allocating anything on the way.
class Quiet {
  public:
    Quiet() {
        std::fflush(stdout);
        std::fflush(stderr);
        m_out = dup(1);
        m_err = dup(2);
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, 1);
        dup2(null, 2);
        close(null);
    }
    ~Quiet() {
        std::fflush(stdout);
        std::fflush(stderr);
        dup2(m_out, 1);
        dup2(m_err, 2);
        close(m_out);
        close(m_err);
    }

  private:
    int m_out, m_err;
};

TEST_F(OutOfMemory, Loading) {
    const std::string file = Data() + "/setup/basic_edited.xml";
    EXPECT_GT(RunUntilItSucceeds("xunSetupLoad",
                                 [&] {
                                     Quiet quiet;
                                     return xunSetupLoad(file.c_str()) == 1;
                                 }),
              0);
    EXPECT_GT(RunUntilItSucceeds(
                  "xunSetupCheck",
                  [&] { return xunSetupCheck(file.c_str(), nullptr, nullptr, nullptr) >= 0; }),
              0);
    const std::string baseGroup = Data() + "/langfile/ubg_three.kw";
    EXPECT_GT(RunUntilItSucceeds(
                  "xunBaseGroupCheck",
                  [&] { return xunBaseGroupCheck(baseGroup.c_str(), nullptr, nullptr) >= 0; }),
              0);
    std::string name = baseGroup;
    EXPECT_GT(RunUntilItSucceeds("LoadUnitBaseGroupFile",
                                 [&] {
                                     LoadUnitBaseGroupFile(&name[0]);
                                     return xunGetLastError(nullptr) == XUN_OK;
                                 }),
              0);
}

// xunLoadItemTypeTables("") with memory running out ever later, until it
// loads (at least one attempt failing), and an item type loaded.
void LoadTablesUntilItSucceeds() {
    EXPECT_GT(RunUntilItSucceeds("xunLoadItemTypeTables",
                                 [&] {
                                     Quiet quiet;
                                     xunLoadItemTypeTables("");
                                     return xunGetLastError(nullptr) == XUN_OK;
                                 }),
              0);
    const char* text = nullptr;
    int key = 0;
    EXPECT_EQ(xunGetItemTypeSeq(1, &key, &text), 1);
}

// The setup file and the language files of an installation (which cover
// exactly its own keys), into an empty registry.
TEST(OutOfMemoryLoad, LoadItemTypeTables) {
    setenv("KORVANE_HOME", (Data() + "/setup/langhome").c_str(), 1);
    // The XML parser library initialises itself on the first load of a
    // process; memory running out there is tried below, apart.
    ASSERT_EQ(xunSetupCheck((Data() + "/setup/basic.xml").c_str(), nullptr, nullptr, nullptr), 0);
    LoadTablesUntilItSucceeds();
}

// The same through the load cache, which holds the whole load: memory
// running out in the part of the load the cache takes is recorded as
// xunSetupLoad records it, and leaves the registry empty.
TEST(OutOfMemoryLoad, LoadItemTypeTablesFromTheLoadCache) {
    setenv("KORVANE_HOME", (Data() + "/setup/langhome").c_str(), 1);
    char folder[] = "/tmp/xun-oom-cache-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    setenv("XUN_CACHE_DIR", folder, 1);
    // A fresh process fills the cache.
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        Quiet quiet;
        xunLoadItemTypeTables("");
        _exit(xunLastLoadWasCached_() ? 7 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    ASSERT_EQ(xunSetupCheck((Data() + "/setup/basic.xml").c_str(), nullptr, nullptr, nullptr), 0);
    {
        Quiet quiet;
        xunClearLastError();
        AllocationsLeft_ = 0;
        xunLoadItemTypeTables("");
        AllocationsLeft_ = -1;
    }
    const char* message = nullptr;
    EXPECT_EQ(xunGetLastError(&message), XUN_ERR_NO_MEMORY);
    EXPECT_STREQ(message, "xunSetupLoad: out of memory");
    EXPECT_EQ(xuntest::Registries().units.Count(), 0u);
    LoadTablesUntilItSucceeds();
    const std::string command = std::string("rm -rf '") + folder + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

// Memory running out while the XML parser library initialises itself for
// the first time leaves that library half initialised for good (it counts
// itself initialised). Loads then fail with a reason instead of crashing in
// the parser. Each round runs in a fresh process, whose first load
// initialises the parser.
TEST(OutOfMemoryLoadDeathTest, FirstParserInitialisation) {
    const std::string file = Data() + "/setup/basic.xml";
    for (long n = 0; n < 400; n += 7) {
        EXPECT_EXIT(
            {
                {
                    Quiet quiet;
                    AllocationsLeft_ = n;
                    xunSetupLoad(file.c_str());
                    AllocationsLeft_ = -1;
                }
                const int code = xunGetLastError(nullptr);
                if (code != XUN_OK && code != XUN_ERR_NO_MEMORY)
                    std::exit(10);
                // The next load works, or says why it cannot.
                Quiet quiet;
                xunClearLastError();
                const int ok = xunSetupLoad(file.c_str());
                const char* message = nullptr;
                const int next = xunGetLastError(&message);
                if (ok == 1 && next == XUN_OK)
                    std::exit(0);
                if (ok == 0 && next == XUN_ERR_INTERNAL &&
                    std::string(message).find("XML parser library") != std::string::npos)
                    std::exit(0);
                std::exit(11);
            },
            testing::ExitedWithCode(0), "")
            << n;
    }
}

TEST_F(OutOfMemory, FailedConversionsStillFail) {
    double result = 0;
    // The message of a refused conversion is composed; when that runs out
    // of memory the call still fails, saying so.
    RunUntilItSucceeds("xunConvertUnit", [&] {
        return xunConvertUnit(1000, 1100, &result, 1.0) == 0 &&
               xunGetLastError(nullptr) == XUN_ERR_DIMENSION;
    });
    EXPECT_EQ(result, 1.0);
}

} // namespace
