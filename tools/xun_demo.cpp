// xun-demo: registers the base units, defines a few units by expression and
// prints what the library answers about them.
#include <cstdio>

#include "registry/UnitRegistry.h"
#include "xun.h"

namespace {

void RegisterBaseUnit(const char* name, long key, const CKVdimension& dim) {
    CKVunit* unit = new CKVunit(name, name, key, 1.0, 0.0, dim);
    unit->m_strIdent = name;
    if (!AddUnit_(*unit, 0))
        delete unit;
}

void Define(const char* ident, const char* desc, const char* abbr, const char* expr) {
    if (!xunUnitNew(ident, desc, abbr, expr))
        std::printf("could not define %s = %s\n", ident, expr);
}

} // namespace

int main() {
    RegisterBaseUnit("NonDimensional", 1, CKVdimension::GetNonDim());
    RegisterBaseUnit("Length", 2, CKVdimension::GetLength());
    RegisterBaseUnit("Mass", 3, CKVdimension::GetMass());
    RegisterBaseUnit("Time", 4, CKVdimension::GetTime());
    RegisterBaseUnit("Temperature", 5, CKVdimension::GetTemp());

    Define("m", "meter", "m", "Length");
    Define("km", "kilometer", "km", "m*1000");
    Define("s", "second", "s", "Time");
    Define("h", "hour", "h", "s*3600");
    Define("mps", "meter per second", "m/s", "m/s");
    Define("kmph", "kilometer per hour", "km/h", "km/h");
    Define("K", "kelvin", "K", "Temperature");
    Define("degC", "degree Celsius", "deg C", "K+273.15");
    Define("degF", "degree Fahrenheit", "deg F", "K*5/9+459.67*5/9");

    std::printf("%-22s %-8s %24s %24s\n", "unit", "abbr", "factor", "offset");
    int tag = 0;
    const char* desc = nullptr;
    for (int prev = 0; xunGetNextUnit(prev, &tag, &desc); prev = tag) {
        const char* abbr = "";
        double factor = 0, offset = 0, powers[7], factors[7];
        xunGetUnitAbbreviation(tag, &abbr);
        xunUnitGetParameters(tag, &factor, &offset, powers, factors);
        std::printf("%-22s %-8s %24.17g %24.17g\n", desc, abbr, factor, offset);
    }

    int kmph = 0, mps = 0;
    xunGetUnitTag("kilometer per hours", &kmph);
    xunGetUnitTagFromIdent("mps", &mps);
    int match = 0, eqv = 0;
    double factor = 0;
    int km = 0, h = 0;
    xunGetUnitTagFromIdent("km", &km);
    xunGetUnitTagFromIdent("h", &h);
    xunUnitDivide(km, h, &match, &eqv, &factor);
    std::printf("\nkm / h is unit %d (base %d), factor %.17g\n", match, eqv, factor);
    std::printf("kmph and mps equivalent: %d\n", xunUnitsEqv(kmph, mps));
    return 0;
}
