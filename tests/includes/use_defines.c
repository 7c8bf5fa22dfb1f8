/* Compiles against the generated C header and prints a few constants. */
#include <stdio.h>

#include "xunDefine.c__"
#include "xunDefine.c__" /* the include guard makes a second inclusion harmless */

int main(void) {
    printf("%d %d %d %d\n", ItemWaterLevel, UnitMeter, UnitDegreeCelsius, FilterHydrology);
    return 0;
}
