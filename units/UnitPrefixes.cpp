#include "units/UnitPrefixes.h"

#include <cstring>

namespace {

// Symbols of two bytes first ("da", and the two-byte UTF-8 micro signs), so
// that a longer symbol wins over its first letter.
const XunPrefix kPrefixes[] = {
    {"da", "deca", 1},
    {"\xC2\xB5", "micro", -6}, // µ MICRO SIGN
    {"\xCE\xBC", "micro", -6}, // μ GREEK SMALL LETTER MU
    {"Y", "yotta", 24},
    {"Z", "zetta", 21},
    {"E", "exa", 18},
    {"P", "peta", 15},
    {"T", "tera", 12},
    {"G", "giga", 9},
    {"M", "mega", 6},
    {"k", "kilo", 3},
    {"h", "hecto", 2},
    {"d", "deci", -1},
    {"c", "centi", -2},
    {"m", "milli", -3},
    {"u", "micro", -6},
    {"n", "nano", -9},
    {"p", "pico", -12},
    {"f", "femto", -15},
    {"a", "atto", -18},
    {"z", "zepto", -21},
    {"y", "yocto", -24},
    // The American spelling of deca, found by name only (its symbol is the
    // one of deca above).
    {"da", "deka", 1},
};

const std::size_t kCount = sizeof kPrefixes / sizeof kPrefixes[0];

const double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,
                               1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17,
                               1e18, 1e19, 1e20, 1e21, 1e22, 1e23, 1e24};

bool StartsWith(std::string_view text, const char* start) {
    // The first byte decides for most prefixes.
    if (text.empty() || text[0] != start[0])
        return false;
    const std::size_t length = std::strlen(start);
    return text.size() > length && text.compare(0, length, start) == 0;
}

} // namespace

std::size_t xunPrefixCount_() {
    return kCount;
}

const XunPrefix& xunPrefixAt_(std::size_t index) {
    return kPrefixes[index];
}

std::size_t xunFindPrefix_(std::string_view text, bool byName, std::size_t from) {
    for (std::size_t i = from; i < kCount; ++i) {
        // The last row repeats the symbol of deca: as a symbol it is found
        // once, at the first row.
        if (!byName && i == kCount - 1)
            continue;
        if (StartsWith(text, byName ? kPrefixes[i].name : kPrefixes[i].symbol))
            return i;
    }
    return std::string_view::npos;
}

const char* xunPrefixAsciiSymbol_(std::size_t index) {
    return kPrefixes[index].exponent == -6 ? "u" : kPrefixes[index].symbol;
}

const char* xunPrefixUnicodeSymbol_(std::size_t index) {
    return kPrefixes[index].exponent == -6 ? "\xC2\xB5" : kPrefixes[index].symbol;
}

double xunApplyPrefix_(double factor, int exponent) {
    if (exponent >= 0)
        return factor * kPowersOfTen[exponent];
    return factor / kPowersOfTen[-exponent];
}
