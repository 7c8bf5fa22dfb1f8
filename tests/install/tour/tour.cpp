// The tour of tour.c in C++: the same lines, from the installed xun.h and
// libxun through find_package(xun) (CMakeLists.txt beside it).
#include <cmath>
#include <iostream>
#include <string>
#include <vector>
#include "xun.h"

namespace {

int TagOf(const char* ident) {
    int tag = 0;
    xunGetUnitTagFromIdent(ident, &tag);
    return tag;
}

std::string IdentOf(int tag) {
    const char* ident = nullptr;
    return tag != 0 && xunGetUnitIdent(tag, &ident) ? ident : "none";
}

} // namespace

int main() {
    xunLoadItemTypeTables("");
    const int meter = TagOf("UnitMeter");
    const int second = TagOf("UnitSecond");
    const int foot = TagOf("UnitFoot");
    const char* text = nullptr;

    int item = 0;
    if (!xunGetItemTypeKeyFromIdent("ItemWaterLevel", &item))
        return 1;
    const int units = xunGetItemUnitCount(item);
    std::cout << "item ItemWaterLevel: " << units << " units\n";
    for (int seq = 1; seq <= units; ++seq) {
        int tag = 0;
        xunGetItemUnitSeq(item, seq, &tag, &text);
        std::cout << "  " << tag << ' ' << IdentOf(tag) << '\n';
    }

    int filter = 0, first = 0;
    xunGetFilterKeyFromIdent("FilterHydrology", &filter);
    xunGetFilteredItemTypeSeq(filter, 1, &first, &text);
    xunGetItemTypeIdent(first, &text);
    std::cout << "filter FilterHydrology: " << xunGetFilteredItemTypeCount(filter)
              << " item types, the first " << text << ", ItemWaterLevel "
              << (xunItemFilterEqv(item, filter) ? "in it" : "not in it") << '\n';

    int user = 0;
    double x = 0;
    xunSetItemUserUnit(item, foot);
    xunGetItemUserUnit(item, &user);
    xunConvertToUserUnit(item, meter, &x, 1.0);
    std::cout << "user unit of ItemWaterLevel: " << IdentOf(user)
              << "; 1 m = " << std::llround(x * 1e6) << " millionths\n";

    const std::vector<double> before = {1.0, -999.0, 2.5, 10.0};
    std::vector<double> values = before;
    xunConvertItemArrayToUserUnitD(item, meter, values.data(), static_cast<int>(values.size()),
                                   -999.0);
    int converted = 0;
    bool same = true;
    for (size_t i = 0; i < values.size(); ++i) {
        if (before[i] == -999.0) {
            same = same && values[i] == -999.0;
            continue;
        }
        xunConvertToUserUnit(item, meter, &x, before[i]);
        same = same && values[i] == x;
        converted += values[i] != before[i];
    }
    std::cout << "array: " << converted << " of " << values.size()
              << " converted, -999 kept and each as converted alone: " << (same ? "yes" : "no")
              << '\n';

    int match = 0, eqv = 0;
    double factor = 0;
    xunUnitMultiply(meter, meter, &match, &eqv, &factor);
    std::cout << "derived: m*m = " << IdentOf(match);
    xunUnitDivide(meter, second, &match, &eqv, &factor);
    std::cout << ", m/s = " << IdentOf(match);
    xunUnitPower(foot, &match, &eqv, &factor, 2.0);
    std::cout << ", ft^2 = " << IdentOf(match) << " (" << IdentOf(eqv) << " times "
              << std::llround(factor * 1e9) << " billionths)\n";
    return 0;
}
