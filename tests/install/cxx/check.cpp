// Built through find_package(xun) against the installed library: loads the
// installed default installation (the package's xun_DATA_DIR) and checks
// lookups and conversions. Exit status 0 when every check holds.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <SmartPtr>
#include <xun.h>

namespace {

int failures = 0;
int checks = 0;

void Check(bool condition, const char* what) {
    ++checks;
    if (!condition) {
        std::printf("FAILED: %s\n", what);
        ++failures;
    }
}

// A counted object of the program's own, shared through the public holder:
// the header alone suffices, nothing of it comes from the library.
struct Counted : MSXML2::CSmartPtrAble {
    explicit Counted(int* destroyed) : m_pDestroyed(destroyed) {}
    ~Counted() override { ++*m_pDestroyed; }
    int* m_pDestroyed;
};

int Tag(const char* ident) {
    int tag = -1;
    if (!xunGetUnitTagFromIdent(ident, &tag)) {
        std::printf("FAILED: unit %s not found\n", ident);
        std::exit(1);
    }
    return tag;
}

} // namespace

int main() {
    // The package tells where the default installation lies.
    setenv("KORVANE_HOME", XUN_DATA_DIR, 1);
    xunLoadItemTypeTables("");
    const char* text = nullptr;
    xunSetupGetPath(&text);
    Check(std::string(text) == std::string(XUN_DATA_DIR) + "/bin/XUN.xml",
          "the setup file of the package's data directory is loaded");

    const int meter = Tag("UnitMeter"), mile = Tag("UnitMile"), foot = Tag("UnitFoot");
    const int second = Tag("UnitSecond"), hour = Tag("UnitHour");
    double result = 0.0;
    Check(xunConvertUnit(mile, foot, &result, 1.0) == 1 && std::fabs(result - 5280.0) < 1e-9,
          "1 mile in ft");
    Check(xunConvertUnit(hour, second, &result, 2.0) == 1 && result == 7200.0, "2 h in s");
    Check(xunUnitsEqv(meter, foot) == 1 && xunUnitsEqv(meter, second) == 0, "equivalence");

    int next = 0, previous = 0, count = 0;
    const char* key = nullptr;
    while (xunGetNextUnit(previous, &next, &key) == 1) {
        ++count;
        previous = next;
    }
    Check(count > 300, "iteration over every unit");

    std::vector<double> values{1.0, 2.0, -1.0};
    Check(xunConvertItemArrayD(foot, meter, values.data(), 3, -1.0) == 1 && values[0] == 0.3048 &&
              values[1] == 2.0 * 0.3048 && values[2] == -1.0,
          "array of doubles");
    char* all = nullptr;
    Check(xunUnitGetAll(&all) == 1 && std::string(all).find("UnitMeter;") != std::string::npos,
          "xunUnitGetAll");
    std::free(all);

    int destroyed = 0;
    {
        MSXML2::CSmartPtr<Counted> first(new Counted(&destroyed));
        MSXML2::CSmartPtr<Counted> second = first;
        second = first;
        Check(first->_smart_ptr_refcount == 2 && destroyed == 0, "two holders of one object");
    }
    Check(destroyed == 1, "the last holder deletes the object");

    if (failures == 0)
        std::printf("c++: %d checks passed\n", checks);
    return failures == 0 ? 0 : 1;
}
