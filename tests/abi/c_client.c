/* A plain C program against libxun.so: xun.h compiles as strict C and the
   exported functions link and answer on an empty registry. */
#include <stdio.h>

#include "xun.h"

static int failures = 0;

static void check(int condition, const char* what) {
    if (!condition) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

int main(void) {
    char* list = NULL;
    int tag = -1;
    const char* key = NULL;
    check(xunUnitGetAll(&list) == 0 && list == NULL, "xunUnitGetAll on an empty registry");
    check(xunGetNextUnit(0, &tag, &key) == 0 && tag == -1, "xunGetNextUnit on an empty registry");
    check(xunGetUnitTag("meter", &tag) == 0 && tag == 0, "xunGetUnitTag stores 0");
    check(xunUnitNew("m", "meter", "m", "Length") == 0, "xunUnitNew without base units");
    {
        const char* message = NULL;
        check(xunGetLastError(&message) == XUN_ERR_EXPRESSION && message != NULL &&
                  message[0] != '\0',
              "xunGetLastError says why xunUnitNew failed");
        xunClearLastError();
        check(xunGetLastError(&message) == XUN_OK && message[0] == '\0', "xunClearLastError");
        check(xunGetUnitKey(5, NULL) == 0 && xunGetLastError(NULL) == XUN_ERR_NULL_ARGUMENT,
              "a null output pointer fails");
        check(xunVersion() != NULL && xunVersion()[0] != '\0', "xunVersion");
        check(xunSetupCheck("/nonexistent/XUN.xml", NULL, NULL, NULL) == -1,
              "xunSetupCheck of a missing file");
        check(xunParseUnit("m3 s-1", &tag) == 0 && tag == 0, "xunParseUnit with no units");
        check(xunParseItemUnit(100, "m", &tag) == 0 && tag == 0 &&
                  xunGetLastError(NULL) == XUN_ERR_UNKNOWN_ITEM_TYPE,
              "xunParseItemUnit of an unknown item type");
        check(xunGetUnitText(1000, XUN_NOTATION_CF, &message) == 0 &&
                  xunGetLastError(NULL) == XUN_ERR_UNKNOWN_UNIT,
              "xunGetUnitText of an unknown unit");
    }
    if (failures == 0)
        printf("c client: all checks passed\n");
    return failures == 0 ? 0 : 1;
}
