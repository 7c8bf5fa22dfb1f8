#include "units/CfAtoms.h"

#include <cstring>

#include "units/UnitPrefixes.h"

namespace {

const double kPi = 3.141592653589793;
const double kPound = 0.45359237;
const double kGravity = 9.80665;
const double kInch = 0.0254;

struct Entry {
    const char* name;
    double factor;
    double offset;
    // Exponents of length, mass, time, temperature, current, amount of
    // substance, luminous intensity.
    signed char powers[7];
    bool prefixes;
};

// The factors are relative to the SI base units (kilogram for mass), as
// UDUNITS-2 defines each name.
const Entry kEntries[] = {
    // SI base units and the gram.
    {"m", 1, 0, {1, 0, 0, 0, 0, 0, 0}, true},
    {"g", 1e-3, 0, {0, 1, 0, 0, 0, 0, 0}, true},
    {"s", 1, 0, {0, 0, 1, 0, 0, 0, 0}, true},
    {"K", 1, 0, {0, 0, 0, 1, 0, 0, 0}, true},
    {"A", 1, 0, {0, 0, 0, 0, 1, 0, 0}, true},
    {"mol", 1, 0, {0, 0, 0, 0, 0, 1, 0}, true},
    {"cd", 1, 0, {0, 0, 0, 0, 0, 0, 1}, true},
    // SI derived units (angles are dimensionless).
    {"rad", 1, 0, {0, 0, 0, 0, 0, 0, 0}, true},
    {"sr", 1, 0, {0, 0, 0, 0, 0, 0, 0}, true},
    {"Hz", 1, 0, {0, 0, -1, 0, 0, 0, 0}, true},
    {"N", 1, 0, {1, 1, -2, 0, 0, 0, 0}, true},
    {"Pa", 1, 0, {-1, 1, -2, 0, 0, 0, 0}, true},
    {"J", 1, 0, {2, 1, -2, 0, 0, 0, 0}, true},
    {"W", 1, 0, {2, 1, -3, 0, 0, 0, 0}, true},
    {"C", 1, 0, {0, 0, 1, 0, 1, 0, 0}, true},
    {"V", 1, 0, {2, 1, -3, 0, -1, 0, 0}, true},
    {"F", 1, 0, {-2, -1, 4, 0, 2, 0, 0}, true},
    {"Ohm", 1, 0, {2, 1, -3, 0, -2, 0, 0}, true},
    {"S", 1, 0, {-2, -1, 3, 0, 2, 0, 0}, true},
    {"Wb", 1, 0, {2, 1, -2, 0, -1, 0, 0}, true},
    {"T", 1, 0, {0, 1, -2, 0, -1, 0, 0}, true},
    {"H", 1, 0, {2, 1, -2, 0, -2, 0, 0}, true},
    {"lm", 1, 0, {0, 0, 0, 0, 0, 0, 1}, true},
    {"lx", 1, 0, {-2, 0, 0, 0, 0, 0, 1}, true},
    {"Bq", 1, 0, {0, 0, -1, 0, 0, 0, 0}, true},
    {"Gy", 1, 0, {2, 0, -2, 0, 0, 0, 0}, true},
    {"Sv", 1, 0, {2, 0, -2, 0, 0, 0, 0}, true},
    {"kat", 1, 0, {0, 0, -1, 0, 0, 1, 0}, true},
    {"degC", 1, 273.15, {0, 0, 0, 1, 0, 0, 0}, false},
    {"degree_C", 1, 273.15, {0, 0, 0, 1, 0, 0, 0}, false},
    // Accepted for use with the SI.
    {"min", 60, 0, {0, 0, 1, 0, 0, 0, 0}, false},
    {"h", 3600, 0, {0, 0, 1, 0, 0, 0, 0}, false},
    {"d", 86400, 0, {0, 0, 1, 0, 0, 0, 0}, false},
    {"L", 1e-3, 0, {3, 0, 0, 0, 0, 0, 0}, true},
    {"l", 1e-3, 0, {3, 0, 0, 0, 0, 0, 0}, true},
    {"t", 1e3, 0, {0, 1, 0, 0, 0, 0, 0}, false},
    {"ha", 1e4, 0, {2, 0, 0, 0, 0, 0, 0}, false},
    {"bar", 1e5, 0, {-1, 1, -2, 0, 0, 0, 0}, true},
    {"degree", kPi / 180, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    {"degree_east", kPi / 180, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    {"degree_north", kPi / 180, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    {"arcmin", kPi / 10800, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    {"arcsec", kPi / 648000, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    {"%", 1e-2, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    {"percent", 1e-2, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    {"ppm", 1e-6, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    {"ppb", 1e-9, 0, {0, 0, 0, 0, 0, 0, 0}, false},
    // Other units of CF data, as UDUNITS-2 defines them.
    {"degK", 1, 0, {0, 0, 0, 1, 0, 0, 0}, false},
    {"degF", 1 / 1.8, 459.67 / 1.8, {0, 0, 0, 1, 0, 0, 0}, false},
    {"degR", 1 / 1.8, 0, {0, 0, 0, 1, 0, 0, 0}, false},
    {"ft", 0.3048, 0, {1, 0, 0, 0, 0, 0, 0}, false},
    {"in", kInch, 0, {1, 0, 0, 0, 0, 0, 0}, false},
    {"yd", 0.9144, 0, {1, 0, 0, 0, 0, 0, 0}, false},
    {"mi", 1609.344, 0, {1, 0, 0, 0, 0, 0, 0}, false},
    {"angstrom", 1e-10, 0, {1, 0, 0, 0, 0, 0, 0}, false},
    {"micron", 1e-6, 0, {1, 0, 0, 0, 0, 0, 0}, false},
    {"lb", kPound, 0, {0, 1, 0, 0, 0, 0, 0}, false},
    {"gr", kPound / 7000, 0, {0, 1, 0, 0, 0, 0, 0}, false},
    {"hr", 3600, 0, {0, 0, 1, 0, 0, 0, 0}, false},
    {"sec", 1, 0, {0, 0, 1, 0, 0, 0, 0}, false},
    {"knot", 1852.0 / 3600, 0, {1, 0, -1, 0, 0, 0, 0}, false},
    {"Gal", 1e-2, 0, {1, 0, -2, 0, 0, 0, 0}, false},
    {"St", 1e-4, 0, {2, 0, -1, 0, 0, 0, 0}, true},
    {"kgf", kGravity, 0, {1, 1, -2, 0, 0, 0, 0}, false},
    {"lbf", kPound* kGravity, 0, {1, 1, -2, 0, 0, 0, 0}, false},
    {"atm", 101325, 0, {-1, 1, -2, 0, 0, 0, 0}, false},
    {"at", kGravity * 1e4, 0, {-1, 1, -2, 0, 0, 0, 0}, false},
    {"psi", kPound* kGravity / (kInch * kInch), 0, {-1, 1, -2, 0, 0, 0, 0}, false},
    {"mmHg", 133.322387415, 0, {-1, 1, -2, 0, 0, 0, 0}, false},
    {"erg", 1e-7, 0, {2, 1, -2, 0, 0, 0, 0}, false},
    {"poise", 0.1, 0, {-1, 1, -1, 0, 0, 0, 0}, false},
    {"centipoise", 1e-3, 0, {-1, 1, -1, 0, 0, 0, 0}, false},
    {"Btu", 1055.05585262, 0, {2, 1, -2, 0, 0, 0, 0}, false},
    {"BTU", 1055.05585262, 0, {2, 1, -2, 0, 0, 0, 0}, false},
    // Names that UDUNITS-2 reads otherwise than a prefix and a unit would
    // suggest, or otherwise than the default installation: "kt" is the knot
    // (not a kilotonne), "Torr" the millimetre of mercury (not 1/760 atm).
    {"kt", 1852.0 / 3600, 0, {1, 0, -1, 0, 0, 0, 0}, false},
    {"Torr", 133.322387415, 0, {-1, 1, -2, 0, 0, 0, 0}, false},
};

const int kEntryCount = static_cast<int>(sizeof kEntries / sizeof kEntries[0]);

XunUnitValue ValueOf(const Entry& entry) {
    XunUnitValue value;
    value.factor = entry.factor;
    value.offset = entry.offset;
    int single = -1;
    int nonZero = 0;
    for (int i = 0; i < 7; ++i) {
        value.powers[i] = entry.powers[i];
        if (entry.powers[i] != 0) {
            single = i;
            ++nonZero;
        }
    }
    // As a unit of the model: a single base dimension carries the factor in
    // its per-dimension slot.
    if (nonZero == 1)
        value.dimFactors[single] = entry.factor;
    return value;
}

int FindEntry(std::string_view name) {
    for (int i = 0; i < kEntryCount; ++i)
        if (name == kEntries[i].name)
            return i;
    return -1;
}

class CfAtoms : public IUnitAtoms {
  public:
    XunAtomLookup FindAtom(std::string_view name, bool singleWord, XunAtom& atom) const override {
        const int exact = FindEntry(name);
        if (exact >= 0) {
            atom.value = ValueOf(kEntries[exact]);
            atom.key = exact;
            atom.prefix = -1;
            return XunAtomLookup::Found;
        }
        if (!singleWord)
            return XunAtomLookup::Unknown;
        for (std::size_t p = xunFindPrefix_(name, false, 0); p != std::string_view::npos;
             p = xunFindPrefix_(name, false, p + 1)) {
            const XunPrefix& prefix = xunPrefixAt_(p);
            const int rest = FindEntry(name.substr(std::strlen(prefix.symbol)));
            if (rest < 0 || !kEntries[rest].prefixes)
                continue;
            atom.value = ValueOf(kEntries[rest]);
            atom.value.factor = xunApplyPrefix_(atom.value.factor, prefix.exponent);
            int single = -1, nonZero = 0;
            for (int i = 0; i < 7; ++i)
                if (atom.value.powers[i] != 0) {
                    single = i;
                    ++nonZero;
                }
            if (nonZero == 1)
                atom.value.dimFactors[single] =
                    xunApplyPrefix_(atom.value.dimFactors[single], prefix.exponent);
            atom.key = rest;
            atom.prefix = static_cast<int>(p);
            return XunAtomLookup::Found;
        }
        return XunAtomLookup::Unknown;
    }

    int MaxWords() const override { return 1; }
};

} // namespace

const IUnitAtoms& xunCfAtoms_() {
    static const CfAtoms atoms;
    return atoms;
}

std::string xunCfAtomText_(long key, int prefix) {
    std::string text = prefix >= 0 ? xunPrefixAsciiSymbol_(static_cast<std::size_t>(prefix)) : "";
    if (key >= 0 && key < kEntryCount)
        text += kEntries[key].name;
    return text;
}

int xunCfAtomCount_() {
    return kEntryCount;
}

const char* xunCfAtomName_(int index) {
    return kEntries[index].name;
}

XunUnitValue xunCfAtomValue_(int index) {
    return ValueOf(kEntries[index]);
}

bool xunCfAtomTakesPrefixes_(int index) {
    return kEntries[index].prefixes;
}
