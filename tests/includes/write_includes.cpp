// Loads an installation (KORVANE_HOME), writes the include files and the
// allowed-units report into the current directory, and prints the keys of
// the item type, units and filter that the test programs print from the
// generated constants.
#include <cstdio>

#include "xun.h"

int main() {
    xunLoadItemTypeTables("");
    int item = 0, meter = 0, celsius = 0, filter = 0;
    if (!xunGetItemTypeKeyFromIdent("ItemWaterLevel", &item) ||
        !xunGetUnitTagFromIdent("UnitMeter", &meter) ||
        !xunGetUnitTagFromIdent("UnitDegreeCelsius", &celsius) ||
        !xunGetFilterKeyFromIdent("FilterHydrology", &filter)) {
        std::fprintf(stderr, "the installation lacks the idents the test programs use\n");
        return 1;
    }
    xunWriteItemTypeIncludes();
    std::printf("%d %d %d %d\n", item, meter, celsius, filter);
    return 0;
}
