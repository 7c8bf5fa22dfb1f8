/* Loads the default installation and converts 10 feet to meters.
 *
 *   cc convert.c $(pkg-config --cflags --libs xun) -o convert
 *   KORVANE_HOME=$(pkg-config --variable=korvane_home xun) ./convert
 */
#include <stdio.h>

#include "xun.h"

int main(void) {
    const char* setup = NULL;
    const char* from = NULL;
    const char* to = NULL;
    int foot = 0, meter = 0;
    double result = 0.0;

    /* An empty path loads $KORVANE_HOME/bin/XUN.xml and the language files. */
    xunLoadItemTypeTables("");
    xunSetupGetPath(&setup);
    if (setup[0] == '\0') {
        fprintf(stderr, "cannot load the default installation: is KORVANE_HOME set?\n");
        return 1;
    }
    if (!xunGetUnitTagFromIdent("UnitFoot", &foot) ||
        !xunGetUnitTagFromIdent("UnitMeter", &meter) || !xunGetUnitAbbreviation(foot, &from) ||
        !xunGetUnitAbbreviation(meter, &to)) {
        fprintf(stderr, "the installation defines no foot or meter\n");
        return 1;
    }
    if (!xunConvertUnit(foot, meter, &result, 10.0)) {
        fprintf(stderr, "cannot convert from %s to %s\n", from, to);
        return 1;
    }
    printf("10 %s = %g %s\n", from, result, to);
    return 0;
}
