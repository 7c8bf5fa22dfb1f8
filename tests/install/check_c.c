/* Built with pkg-config against the installed libxun: loads the installed
   default installation ($KORVANE_HOME) and checks lookups and conversions.
   Exit status 0 when every check holds. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "xun.h"

static int failures = 0;
static int checks = 0;

static void check(int condition, const char* what) {
    ++checks;
    if (!condition) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

static int tag_of(const char* ident) {
    int tag = -1;
    if (!xunGetUnitTagFromIdent(ident, &tag)) {
        printf("FAILED: unit %s not found\n", ident);
        exit(1);
    }
    return tag;
}

int main(void) {
    const char* home = getenv("KORVANE_HOME");
    const char* text = NULL;
    char expected[512];
    int meter, foot, second, kelvin, celsius, fahrenheit, tag = 0, item = 0, user = 0;
    double result = 0.0;
    double values[4] = {1.0, -999.0, 2.0, 10.0};
    float floats[3] = {32.0f, -999.0f, 212.0f};

    if (home == NULL) {
        printf("KORVANE_HOME is not set\n");
        return 1;
    }
    xunSetupGetPath(&text);
    check(text[0] == '\0', "no setup path before the load");
    xunLoadItemTypeTables("");
    snprintf(expected, sizeof expected, "%s/bin/XUN.xml", home);
    xunSetupGetPath(&text);
    check(strcmp(text, expected) == 0, "the default setup file of KORVANE_HOME is loaded");
    check(xunGetItemTypeCount() > 0 && xunGetFilterCount() > 0, "item types and filters loaded");

    meter = tag_of("UnitMeter");
    foot = tag_of("UnitFoot");
    second = tag_of("UnitSecond");
    kelvin = tag_of("UnitKelvin");
    celsius = tag_of("UnitDegreeCelsius");
    fahrenheit = tag_of("UnitDegreeFahrenheit");

    check(xunGetUnitKey(foot, &text) && strcmp(text, "foot") == 0, "description of the foot");
    check(xunGetUnitAbbreviation(foot, &text) && strcmp(text, "ft") == 0, "abbreviation ft");
    check(xunGetUnitTag("feet", &tag) && tag == foot, "the name feet finds the foot");

    check(xunConvertUnit(foot, meter, &result, 10.0) && result == 10.0 * 0.3048, "10 ft in m");
    check(xunConvertUnit(celsius, kelvin, &result, 0.0) && result == 273.15, "0 degC in K");
    check(xunConvertUnit(fahrenheit, celsius, &result, 212.0) && fabs(result - 100.0) < 1e-12,
          "212 degF in degC");
    result = 0.0;
    check(xunConvertUnit(meter, second, &result, 5.0) == 0 && result == 5.0,
          "meter to second is refused and keeps the value");
    check(xunConvertUnitToBase(celsius, &result, 20.0) && result == 293.15, "20 degC to base");

    check(xunConvertItemArrayD(foot, meter, values, 4, -999.0) == 1, "array of doubles");
    check(values[0] == 0.3048 && values[1] == -999.0 && values[2] == 2.0 * 0.3048 &&
              values[3] == 10.0 * 0.3048,
          "doubles converted, delete value kept");
    check(xunConvertItemArrayF(fahrenheit, celsius, floats, 3, -999.0f) == 1, "array of floats");
    check(fabsf(floats[0]) < 1e-5f && floats[1] == -999.0f && fabsf(floats[2] - 100.0f) < 1e-4f,
          "floats converted, delete value kept");

    check(xunGetItemTypeKeyFromIdent("ItemWaterLevel", &item) == 1, "ItemWaterLevel");
    check(xunGetItemUserUnit(item, &user) && user == meter, "water level shown in meters");
    check(xunConvertToUserUnit(item, foot, &result, 1.0) && result == 0.3048,
          "1 ft to the user unit of the water level");

    if (failures == 0)
        printf("c: %d checks passed\n", checks);
    return failures == 0 ? 0 : 1;
}
