/* The tour of the library that every language binding makes (tour.cpp,
   tour.f90, tour.f, tour.pas, Tour.cs, tour.py print the same lines): item
   types and their allowed units, a filter, an item type's user unit, an
   array with a missing value converted to the user unit, and derived units.
   Numbers print as integers (millionths), so that every language prints them
   alike. This one, the reference, also checks what it prints against the
   library's other answers; exit status 1 when one differs. */
#include <math.h>
#include <stdio.h>
#include "xun.h"

static int failures = 0;

static void check(int ok, const char* what) {
    if (!ok) {
        fprintf(stderr, "check failed: %s\n", what);
        ++failures;
    }
}

static int tag_of(const char* ident) {
    int tag = 0;
    check(xunGetUnitTagFromIdent(ident, &tag), ident);
    return tag;
}

static const char* ident_of(int tag) {
    const char* ident = "?";
    check(xunGetUnitIdent(tag, &ident) || tag == 0, "the ident of a unit");
    return tag == 0 ? "none" : ident;
}

int main(void) {
    int item = 0, filter = 0, n, i, tag, key, in_filter = 0, user = 0, converted = 0, same = 1;
    int match, eqv;
    const char* text;
    double x, factor;
    double values[4] = {1.0, -999.0, 2.5, 10.0};
    const double before[4] = {1.0, -999.0, 2.5, 10.0};
    const int meter = (xunLoadItemTypeTables(""), tag_of("UnitMeter"));
    const int second = tag_of("UnitSecond");
    const int foot = tag_of("UnitFoot");

    /* Item types: the allowed units of the water level. */
    check(xunGetItemTypeKeyFromIdent("ItemWaterLevel", &item), "ItemWaterLevel");
    n = xunGetItemUnitCount(item);
    printf("item ItemWaterLevel: %d units\n", n);
    for (i = 1; i <= n; ++i) {
        check(xunGetItemUnitSeq(item, i, &tag, &text), "xunGetItemUnitSeq");
        check(xunItemUnitEqv(item, tag), "an allowed unit fits its item type");
        printf("  %d %s\n", tag, ident_of(tag));
    }

    /* Filters: the item types of the hydrology filter. */
    check(xunGetFilterKeyFromIdent("FilterHydrology", &filter), "FilterHydrology");
    n = xunGetFilteredItemTypeCount(filter);
    for (i = 1; i <= n; ++i) {
        check(xunGetFilteredItemTypeSeq(filter, i, &key, &text), "xunGetFilteredItemTypeSeq");
        in_filter |= key == item;
    }
    check(in_filter == xunItemFilterEqv(item, filter), "the filter's list and xunItemFilterEqv");
    check(xunGetFilteredItemTypeSeq(filter, 1, &key, &text) && xunGetItemTypeIdent(key, &text),
          "the first item type of the filter");
    printf("filter FilterHydrology: %d item types, the first %s, ItemWaterLevel %s\n", n, text,
           xunItemFilterEqv(item, filter) ? "in it" : "not in it");

    /* User units: the water level in feet. */
    check(xunSetItemUserUnit(item, foot), "xunSetItemUserUnit");
    check(xunGetItemUserUnit(item, &user), "xunGetItemUserUnit");
    check(xunConvertToUserUnit(item, meter, &x, 1.0), "xunConvertToUserUnit");
    printf("user unit of ItemWaterLevel: %s; 1 m = %lld millionths\n", ident_of(user),
           llround(x * 1e6));

    /* An array with the missing value -999, converted in place. */
    check(xunConvertItemArrayToUserUnitD(item, meter, values, 4, -999.0), "the array");
    for (i = 0; i < 4; ++i) {
        if (before[i] == -999.0) {
            same &= values[i] == -999.0;
            continue;
        }
        check(xunConvertToUserUnit(item, meter, &x, before[i]), "xunConvertToUserUnit");
        same &= values[i] == x;
        converted += values[i] != before[i];
    }
    printf("array: %d of 4 converted, -999 kept and each as converted alone: %s\n", converted,
           same ? "yes" : "no");

    /* Derived units. */
    check(xunUnitMultiply(meter, meter, &match, &eqv, &factor), "meter times meter");
    printf("derived: m*m = %s", ident_of(match));
    check(xunUnitDivide(meter, second, &match, &eqv, &factor), "meter per second");
    printf(", m/s = %s", ident_of(match));
    check(xunUnitPower(foot, &match, &eqv, &factor, 2.0), "foot squared");
    check(xunUnitsEqv(eqv, tag_of("UnitSquareMeter")), "foot squared is an area");
    printf(", ft^2 = %s (%s times %lld billionths)\n", ident_of(match), ident_of(eqv),
           llround(factor * 1e9));
    return failures == 0 ? 0 : 1;
}
