// Linked into every test program: points the C library at the locales that
// the build compiles for the tests (a German locale with a decimal comma),
// unless LOCPATH is already set, and loads at a load cache of the build
// tree's own (unless XUN_CACHE_DIR is set), so that a test run neither reads
// nor fills the user's.
#include <cstdlib>

namespace {

struct TestLocales {
    TestLocales() {
        setenv("LOCPATH", XUN_TEST_LOCALE_DIR, 0);
        setenv("XUN_CACHE_DIR", XUN_TEST_CACHE_DIR, 0);
    }
};

const TestLocales testLocales;

} // namespace
