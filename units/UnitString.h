// The unit-string parser: reads a unit as people and data files write it -
// "kg m-2 s-1", "m³/s", "kg/(m2*s)", "cubic feet per second", "K @ 273.15" -
// into plain numbers. It knows the grammar and the arithmetic; the names it
// meets (the atoms) are looked up through IUnitAtoms, so that it does not
// depend on where units are registered. docs/unit-strings.md describes the
// grammar.
//
// The parser never builds a CKVunit: every intermediate result is a
// XunUnitValue, checked after every step (a factor of 0, an infinite or NaN
// factor or offset, an exponent out of range fail with a reason), so that no
// assertion of the unit model can fire on any input. Its time is linear in
// the length of the text (times the number of words a name may have) and
// its depth bounded by the nesting limit.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "units/KVdim.h"

// A unit as plain numbers: a value x in it is x * factor + offset in the
// base unit of its dimension; the per-dimension factors follow the rules of
// the unit arithmetic (units/KVunit.h), so that a unit built from a value
// equals the one the expression evaluator would build.
struct XunUnitValue {
    double factor = 1.0;
    double offset = 0.0;
    double powers[CKVdimension::kBaseCount] = {};
    double dimFactors[CKVdimension::kBaseCount] = {1, 1, 1, 1, 1, 1, 1};
};

// One atom found for a name: its meaning (with its own offset) and which
// unit it is, for the normalised form of a text.
struct XunAtom {
    XunUnitValue value;
    long key = 0;    // the unit (or vocabulary entry) the name belongs to
    int prefix = -1; // the prefix index (units/UnitPrefixes.h), -1 for none
};

enum class XunAtomLookup { Found, Unknown, Ambiguous };

// What the parser needs to know about names.
class IUnitAtoms {
  public:
    virtual ~IUnitAtoms() = default;

    // Looks up a name as written. singleWord is false for a name of several
    // words, which the parser passes joined by single spaces or hyphens; such
    // names are looked up without prefixes. A name that matches several
    // units (when case is ignored) is Ambiguous.
    virtual XunAtomLookup FindAtom(std::string_view name, bool singleWord, XunAtom& atom) const = 0;

    // The largest number of words of a name (1 when no name has a blank or a
    // hyphen between words).
    virtual int MaxWords() const = 0;
};

// A power of one atom in a parsed text.
struct XunTerm {
    long key;
    int prefix;
    double exponent;
};

// A parsed text: its meaning and the parts a normalised text is made of.
struct XunParsedUnit {
    XunUnitValue value;
    // A plain number: no atom at all ("1e-3", "100").
    bool number = false;
    // A single atom as written ("degC", "(K)"): it keeps its own offset.
    bool bare = false;
    // The product of the numbers of the text, and the atoms with their
    // summed exponents in the order they first appear (exponent 0 dropped).
    double numberPart = 1.0;
    std::vector<XunTerm> terms;
    // An offset set with "@" (or "after", "from"): the number written.
    bool shifted = false;
    double shift = 0.0;
};

struct XunParseError {
    int code = 0;             // XUN_ERR_EXPRESSION, XUN_ERR_NOT_FOUND or XUN_ERR_LIMIT
    std::size_t position = 0; // byte offset in the text where it stops making sense
    std::string reason;       // what is wrong there
    std::string unknown;      // the name that was not found (for near names)
};

struct XunParseOptions {
    // Written names: the words "per", "square", "cubic", "squared", "cubed"
    // and names of several words. Off for the strict UDUNITS-2/CF reading.
    bool words = true;
    // Only ASCII text is read (the strict CF reading).
    bool asciiOnly = false;
};

// Parses text (the whole of it; blanks at either end are skipped). True on
// success with result set; false with error set.
bool xunParseUnitString_(std::string_view text, const IUnitAtoms& atoms,
                         const XunParseOptions& options, XunParsedUnit& result,
                         XunParseError& error);

// Two meanings agree: equal dimensions (exactly), and factor and offset
// equal (exact true) or within 1e-12 relative (exact false; the factor
// relative to its size, the offset relative to the larger of offset and
// factor).
bool xunSameDimension_(const XunUnitValue& a, const XunUnitValue& b);
bool xunValuesAgree_(const XunUnitValue& a, const XunUnitValue& b, bool exact);

// The shortest text that reads back as the same double ("0.3048", "1e-06").
std::string xunShortestNumber_(double value);

// Whether a code point is one the parser reads as part of a name, and the
// UTF-8 sequence at text[i] (its length; 0 when invalid).
bool xunIsNameCodePoint_(unsigned long codePoint);
std::size_t xunDecodeUtf8_(std::string_view text, std::size_t i, unsigned long& codePoint);
