// The SI prefixes, by symbol and by name, as the unit-string parser reads
// them: "k" and "kilo" for 10^3, "da" and "deca"/"deka" for 10^1, and three
// spellings of micro ("µ" U+00B5, "μ" U+03BC and "u").
#pragma once

#include <cstddef>
#include <string_view>

struct XunPrefix {
    const char* symbol; // as written before a symbol ("k", "da", "µ")
    const char* name;   // as written before a name ("kilo", "deca")
    int exponent;       // the power of ten
};

// Every prefix spelling, longest symbols first so that "da" is tried
// before "d": index 0 .. xunPrefixCount_() - 1. Spellings of the same
// prefix have the same exponent.
std::size_t xunPrefixCount_();
const XunPrefix& xunPrefixAt_(std::size_t index);

// The index of the prefix symbol (byName false) or prefix name (byName
// true) that text starts with and that leaves at least one byte after it,
// trying from index `from` on; npos when none does.
std::size_t xunFindPrefix_(std::string_view text, bool byName, std::size_t from);

// The symbol to write for a prefix index in plain ASCII ("u" for every
// micro) and in Unicode ("µ" for every micro).
const char* xunPrefixAsciiSymbol_(std::size_t index);
const char* xunPrefixUnicodeSymbol_(std::size_t index);

// Scales a factor by the prefix exactly as far as doubles allow: a
// multiplication by 10^n for n > 0, a division by 10^-n for n < 0 (the
// powers of ten up to 10^22 are exact doubles).
double xunApplyPrefix_(double factor, int exponent);
