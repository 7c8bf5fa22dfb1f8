// Linked into every test program: points the C library at the locales that
// the build compiles for the tests (a German locale with a decimal comma),
// unless LOCPATH is already set.
#include <cstdlib>

namespace {

struct TestLocales {
    TestLocales() { setenv("LOCPATH", XUN_TEST_LOCALE_DIR, 0); }
};

const TestLocales testLocales;

} // namespace
