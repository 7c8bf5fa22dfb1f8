// Loads the installation under KORVANE_HOME through xunLoadItemTypeTables and
// dumps what the library then holds: the counts, then every unit (key, ident,
// factor, offset, seven exponents, description, abbreviation), item type (key,
// ident, decimals, default value, allowed-unit count, filter bits, description)
// and filter (bit, member count, description). Anything the load itself prints
// comes before the line "--- loaded".
//
//   check_installation.py --compare-dump FILE [--lang DIR]
//
// compares such a dump with the setup file and the language files.
#include <cstdio>
#include <cstdlib>

#include "xun.h"

namespace {

// Number of idents in a ";"-terminated list; releases the list.
int CountIdents(char* list) {
    int count = 0;
    for (const char* p = list; *p != '\0'; ++p)
        count += *p == ';';
    std::free(list);
    return count;
}

void DumpUnits() {
    int prev = 0, tag = 0;
    const char* desc = nullptr;
    while (xunGetNextUnit(prev, &tag, &desc)) {
        const char *ident = "", *abbr = "";
        double factor = 0, offset = 0, powers[7] = {0}, slots[7] = {0};
        xunGetUnitIdent(tag, &ident);
        xunGetUnitAbbreviation(tag, &abbr);
        xunUnitGetParameters(tag, &factor, &offset, powers, slots);
        std::printf("unit %d %s %.17g %.17g", tag, ident, factor, offset);
        for (double power : powers)
            std::printf(" %.17g", power);
        std::printf(" |%s|%s|\n", desc, abbr);
        prev = tag;
    }
}

void DumpItemTypes() {
    const int filters = xunGetFilterCount();
    for (int seq = 1; seq <= xunGetItemTypeCount(); ++seq) {
        int key = 0, decimals = 0;
        double value = 0;
        const char *desc = "", *ident = "";
        xunGetItemTypeSeq(seq, &key, &desc);
        xunGetItemTypeIdent(key, &ident);
        xunGetItemTypeParams(key, &decimals, &value);
        std::printf("item %d %s %d %.17g %d", key, ident, decimals, value,
                    xunGetItemUnitCount(key));
        for (int f = 1; f <= filters; ++f) {
            int bit = 0;
            const char* filterDesc = "";
            if (xunGetFilterSeq(f, &bit, &filterDesc) && xunItemFilterEqv(key, bit))
                std::printf(" 0x%X", static_cast<unsigned>(bit));
        }
        std::printf(" |%s|\n", desc);
    }
}

void DumpFilters() {
    for (int seq = 1; seq <= xunGetFilterCount(); ++seq) {
        int bit = 0;
        const char* desc = "";
        xunGetFilterSeq(seq, &bit, &desc);
        std::printf("filter 0x%X %d |%s|\n", static_cast<unsigned>(bit),
                    xunGetFilteredItemTypeCount(bit), desc);
    }
}

} // namespace

int main() {
    xunLoadItemTypeTables("");
    std::fflush(stdout);
    std::printf("--- loaded\n");
    char* list = nullptr;
    const int units = xunUnitGetAll(&list) ? CountIdents(list) : 0;
    std::printf("units %d\nitems %d\nfilters %d\n", units, xunGetItemTypeCount(),
                xunGetFilterCount());
    DumpUnits();
    DumpItemTypes();
    DumpFilters();
    return 0;
}
