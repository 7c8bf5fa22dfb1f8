// The program that the memcheck test runs under valgrind: a full load of an
// installation through xunLoadItemTypeTables, then a walk over every query,
// every conversion (single values and float and double arrays, between
// units, to and from base units and user units), the derived-unit
// functions, the run-time creation functions, a unit base-group file, a
// second load that refreshes everything, and the include writer into a
// temporary folder. It uses the exported interface only.
//
// usage: xun_memcheck_walk INSTALLATION...
// The first installation (a folder holding bin/XUN.xml) that exists is used.
// Exits 0 when every step gave what it must; valgrind's own findings make the
// test fail through its error exit code.
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "xun.h"

namespace {

int Failures_ = 0;

void Check(bool ok, const char* what, long detail = 0) {
    if (!ok) {
        std::fprintf(stderr, "memcheck walk: %s (%ld)\n", what, detail);
        ++Failures_;
    }
}

bool Exists(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

std::vector<int> UnitTags() {
    std::vector<int> tags;
    int tag = 0;
    const char* key = nullptr;
    for (int prev = 0; xunGetNextUnit(prev, &tag, &key) == 1; prev = tag)
        tags.push_back(tag);
    return tags;
}

std::vector<int> ItemKeys() {
    std::vector<int> keys;
    const int count = xunGetItemTypeCount();
    for (int seq = 1; seq <= count; ++seq) {
        int key = 0;
        const char* text = nullptr;
        Check(xunGetItemTypeSeq(seq, &key, &text) == 1, "xunGetItemTypeSeq", seq);
        keys.push_back(key);
    }
    return keys;
}

std::vector<int> FilterKeys() {
    std::vector<int> keys;
    const int count = xunGetFilterCount();
    for (int seq = 1; seq <= count; ++seq) {
        int key = 0;
        const char* text = nullptr;
        Check(xunGetFilterSeq(seq, &key, &text) == 1, "xunGetFilterSeq", seq);
        keys.push_back(key);
    }
    return keys;
}

void FreeList(int (*getAll)(char**), const char* what) {
    char* list = nullptr;
    Check(getAll(&list) == 1 && list != nullptr && std::strlen(list) > 0, what);
    std::free(list);
}

// The first unit of each base dimension: the variables of the integration
// and derivation factors.
std::vector<int> BaseDimensionUnits(const std::vector<int>& tags) {
    std::vector<int> variables;
    for (int tag : tags) {
        double factor = 0, offset = 0, powers[7], factors[7];
        if (xunUnitGetParameters(tag, &factor, &offset, powers, factors) != 1)
            continue;
        int nonZero = 0;
        for (double p : powers)
            nonZero += p != 0.0;
        if (nonZero == 1 && variables.size() < 7) {
            bool seen = false;
            for (int v : variables)
                seen = seen || xunUnitsEqv(v, tag) == 1;
            if (!seen)
                variables.push_back(tag);
        }
    }
    return variables;
}

void WalkUnits() {
    FreeList(&xunUnitGetAll, "xunUnitGetAll");
    const std::vector<int> tags = UnitTags();
    Check(!tags.empty(), "no units");
    const std::vector<int> variables = BaseDimensionUnits(tags);
    Check(!variables.empty(), "no unit of a base dimension");
    for (int tag : tags) {
        const char *key = nullptr, *ident = nullptr, *abbr = nullptr, *text = nullptr;
        Check(xunGetUnitKey(tag, &key) == 1, "xunGetUnitKey", tag);
        Check(xunGetUnitIdent(tag, &ident) == 1, "xunGetUnitIdent", tag);
        Check(xunGetUnitAbbreviation(tag, &abbr) == 1, "xunGetUnitAbbreviation", tag);
        int found = 0;
        Check(xunGetUnitTagFromIdent(ident, &found) == 1 && found == tag, "xunGetUnitTagFromIdent",
              tag);
        xunGetUnitTag(key, &found);
        xunGetUnitTag(abbr, &found);
        double factor = 0, offset = 0, powers[7], factors[7];
        Check(xunUnitGetParameters(tag, &factor, &offset, powers, factors) == 1,
              "xunUnitGetParameters", tag);

        int base = 0;
        Check(xunGetBaseUnit(tag, &base, &text) == 1, "xunGetBaseUnit", tag);
        Check(xunUnitsEqv(tag, base) == 1, "xunUnitsEqv with the base unit", tag);
        int count = 0;
        int next = 0;
        for (int prev = 0; xunGetNextEqvUnit(tag, prev, &next, &text) == 1 && count < 10000;
             prev = next)
            ++count;
        Check(count >= 1, "xunGetNextEqvUnit", tag);

        double result = 0, back = 0;
        Check(xunConvertUnitToBase(tag, &result, 12.5) == 1, "xunConvertUnitToBase", tag);
        Check(xunConvertUnitFromBase(tag, &back, result) == 1, "xunConvertUnitFromBase", tag);
        Check(std::fabs(back - 12.5) <= 1e-9 * 12.5, "base round trip", tag);
        Check(xunConvertUnit(tag, base, &result, 3.0) == 1, "xunConvertUnit", tag);
        double doubles[9] = {1, -2, 3.5, -9999, 0, 1e10, -1e-10, 7, 8};
        float floats[9] = {1, -2, 3.5f, -9999, 0, 1e10f, -1e-10f, 7, 8};
        Check(xunConvertItemArrayD(tag, base, doubles, 9, -9999.0) == 1, "xunConvertItemArrayD",
              tag);
        Check(doubles[3] == -9999.0, "delete value kept (double)", tag);
        Check(xunConvertItemArrayF(tag, base, floats, 9, -9999.0f) == 1, "xunConvertItemArrayF",
              tag);
        Check(floats[3] == -9999.0f, "delete value kept (float)", tag);

        int match = 0, eqv = 0, inverse = 0;
        double derived = 0;
        xunUnitPower(tag, &match, &eqv, &derived, 2.0);
        xunUnitPower(tag, &match, &eqv, &derived, -1.0);
        xunUnitMultiply(tag, base, &match, &eqv, &derived);
        xunUnitDivide(tag, base, &match, &eqv, &derived);
        for (int variable : variables) {
            xunUnitGetIntegrationFactor(tag, variable, &match, &inverse, &derived);
            xunUnitGetDerivationFactor(tag, variable, &match, &inverse, &derived);
        }
    }
}

void WalkItemTypes() {
    FreeList(&xunItemTypeGetAll, "xunItemTypeGetAll");
    const std::vector<int> keys = ItemKeys();
    Check(!keys.empty(), "no item types");
    for (int key : keys) {
        const char *ident = nullptr, *text = nullptr;
        Check(xunGetItemTypeIdent(key, &ident) == 1, "xunGetItemTypeIdent", key);
        Check(xunGetItemTypeKey(key, &text) == 1, "xunGetItemTypeKey", key);
        int found = 0;
        Check(xunGetItemTypeKeyFromIdent(ident, &found) == 1 && found == key,
              "xunGetItemTypeKeyFromIdent", key);
        int decimals = 0;
        double defaultValue = 0;
        Check(xunGetItemTypeParams(key, &decimals, &defaultValue) == 1, "xunGetItemTypeParams",
              key);
        int first = 0;
        Check(xunGetItemFirstEqvUnit(key, &first, &text) == 1, "xunGetItemFirstEqvUnit", key);
        int user = 0;
        Check(xunGetItemUserUnit(key, &user) == 1, "xunGetItemUserUnit", key);

        const int count = xunGetItemUnitCount(key);
        Check(count >= 1, "xunGetItemUnitCount", key);
        for (int seq = 1; seq <= count; ++seq) {
            int tag = 0;
            const char* unitKey = nullptr;
            Check(xunGetItemUnitSeq(key, seq, &tag, &unitKey) == 1, "xunGetItemUnitSeq", key);
            Check(xunItemUnitEqv(key, tag) == 1, "xunItemUnitEqv", key);
            xunGetItemUnitTag(key, unitKey, &found);
            // A conversion to or from the user unit succeeds when the units
            // are equivalent (for the any-unit item type 999 they need not be).
            int userTag = 0;
            xunGetItemUserUnit(key, &userTag);
            const int expected = xunUnitsEqv(tag, userTag);
            double result = 0;
            Check(xunConvertToUserUnit(key, tag, &result, 4.25) == expected, "xunConvertToUserUnit",
                  key);
            Check(xunConvertFromUserUnit(key, tag, &result, 4.25) == expected,
                  "xunConvertFromUserUnit", key);
            double doubles[5] = {1, -9999, 2, 3, 4};
            float floats[5] = {1, -9999, 2, 3, 4};
            Check(xunConvertItemArrayToUserUnitD(key, tag, doubles, 5, -9999.0) == expected,
                  "xunConvertItemArrayToUserUnitD", key);
            Check(xunConvertItemArrayFromUserUnitD(key, tag, doubles, 5, -9999.0) == expected,
                  "xunConvertItemArrayFromUserUnitD", key);
            Check(xunConvertItemArrayToUserUnitF(key, tag, floats, 5, -9999.0f) == expected,
                  "xunConvertItemArrayToUserUnitF", key);
            Check(xunConvertItemArrayFromUserUnitF(key, tag, floats, 5, -9999.0f) == expected,
                  "xunConvertItemArrayFromUserUnitF", key);
            Check(doubles[1] == -9999.0 && floats[1] == -9999.0f, "delete values kept", key);
            // Every allowed unit in turn as the user unit, then the first again.
            Check(xunSetItemUserUnit(key, tag) == 1, "xunSetItemUserUnit", key);
        }
        int tag = 0;
        const char* unitKey = nullptr;
        if (xunGetItemUnitSeq(key, 1, &tag, &unitKey) == 1)
            xunSetItemUserUnit(key, tag);
        // The any-unit item type allows every unit.
        Check(xunItemUnitEqv(999, first) == 1, "item type 999", key);
    }
}

void WalkFilters() {
    FreeList(&xunFilterGetAll, "xunFilterGetAll");
    const std::vector<int> keys = FilterKeys();
    Check(!keys.empty(), "no filters");
    const std::vector<int> items = ItemKeys();
    for (int key : keys) {
        const char *ident = nullptr, *text = nullptr;
        Check(xunGetFilterKey(key, &text) == 1, "xunGetFilterKey", key);
        Check(xunGetFilterIdent(key, &ident) == 1, "xunGetFilterIdent", key);
        int found = 0;
        Check(xunGetFilterKeyFromIdent(ident, &found) == 1 && found == key,
              "xunGetFilterKeyFromIdent", key);
        const int count = xunGetFilteredItemTypeCount(key);
        for (int seq = 1; seq <= count; ++seq) {
            int item = 0;
            Check(xunGetFilteredItemTypeSeq(key, seq, &item, &text) == 1,
                  "xunGetFilteredItemTypeSeq", key);
            Check(xunItemFilterEqv(item, key) == 1, "xunItemFilterEqv", key);
        }
        for (int item : items)
            xunItemFilterEqv(item, key);
    }
    const long product = xunGetProductFilter();
    xunSetProductFilter(keys.front());
    xunGetFilteredItemTypeCount(keys.front());
    xunSetProductFilter(static_cast<int>(product));
    Check(xunGetProductFilter() == product, "product filter restored");
    Check(xunGetFlybyFilter() == static_cast<int>(0x80000000u), "flyby filter");
}

// Units, item types and filters made at run time, and a unit base-group
// file that presets a user unit.
void CreateAtRunTime(const std::string& folder) {
    const std::vector<int> tags = UnitTags();
    const char* ident = nullptr;
    Check(xunGetUnitIdent(tags.front(), &ident) == 1, "ident of the first unit");
    const std::string first = ident;
    Check(xunUnitNew("MemcheckUnit", "memcheck unit", "mu", (first + "*2").c_str()) == 1,
          "xunUnitNew");
    // A unit that takes the ident of a base dimension: the next load must
    // then abandon the base unit of that name.
    Check(xunUnitNew("Mass", "mass of something", "ms", first.c_str()) == 1,
          "xunUnitNew of a base dimension's name");
    Check(xunItemTypeNew("MemcheckItem", "memcheck item", 0, "MemcheckUnit") == 1,
          "xunItemTypeNew");
    int item = 0;
    Check(xunGetItemTypeKeyFromIdent("MemcheckItem", &item) == 1, "new item type");
    int unit = 0;
    Check(xunGetUnitTagFromIdent(first.c_str(), &unit) == 1, "first unit");
    Check(xunAddItemUnit(item, unit) == 1, "xunAddItemUnit");
    Check(xunFilterNew("MemcheckFilter", "memcheck filter") == 1, "xunFilterNew");
    int filter = 0;
    Check(xunGetFilterKeyFromIdent("MemcheckFilter", &filter) == 1, "new filter");
    Check(xunAddItemFilter(item, filter) == 1, "xunAddItemFilter");

    const std::string groupFile = folder + "/user_units.kw";
    FILE* file = std::fopen(groupFile.c_str(), "w");
    Check(file != nullptr, "base-group file");
    if (file != nullptr) {
        std::fprintf(file, "# user units\n[Item_Unit]\nData = %d, %d\nData = 1, 2\n", item, unit);
        std::fclose(file);
    }
    std::vector<char> name(groupFile.c_str(), groupFile.c_str() + groupFile.size() + 1);
    LoadUnitBaseGroupFile(name.data());
    int user = 0;
    Check(xunGetItemUserUnit(item, &user) == 1 && user == unit, "user unit from the group file");
}

void WriteIncludes(const std::string& folder) {
    char previous[4096];
    Check(getcwd(previous, sizeof previous) != nullptr, "getcwd");
    Check(chdir(folder.c_str()) == 0, "chdir");
    xunWriteItemTypeIncludes();
    const char* files[] = {"xunDefine.c__", "xunDefine.f__", "xunDefine.p__", "xunDefine.cs",
                           "xunAllowedUnits.HTML"};
    for (const char* file : files) {
        Check(Exists(file), file);
        std::remove(file);
    }
    Check(chdir(previous) == 0, "chdir back");
}

} // namespace

int main(int argc, char** argv) {
    std::string home;
    for (int i = 1; i < argc && home.empty(); ++i)
        if (Exists(std::string(argv[i]) + "/bin/XUN.xml"))
            home = argv[i];
    if (home.empty()) {
        std::fprintf(stderr, "usage: xun_memcheck_walk INSTALLATION... (none has bin/XUN.xml)\n");
        return 2;
    }
    std::printf("installation: %s\n", home.c_str());
    setenv("KORVANE_HOME", home.c_str(), 1);
    char folder[] = "/tmp/xun-memcheck-XXXXXX";
    if (mkdtemp(folder) == nullptr)
        return 2;

    xunLoadItemTypeTables("");
    const char* path = nullptr;
    xunSetupGetPath(&path);
    Check(std::string(path) == home + "/bin/XUN.xml", "setup path");
    WalkUnits();
    WalkItemTypes();
    WalkFilters();
    CreateAtRunTime(folder);
    // A second load of the setup file refreshes everything and abandons the
    // base unit "Mass". (xunLoadItemTypeTables would now stop the process:
    // the language files do not hold the run-time units and item types.)
    Check(xunSetupLoad(path) == 1, "second load");
    WalkUnits();
    WriteIncludes(folder);
    std::remove((std::string(folder) + "/user_units.kw").c_str());
    Check(rmdir(folder) == 0, "temporary folder left empty");

    xunSetupUnload();
    xunUnloadItemTypeTables();
    std::printf("%d failures\n", Failures_);
    return Failures_ == 0 ? 0 : 1;
}
