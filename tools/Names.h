// Finding units, item types and filters by the names a user types.
#pragma once

#include <string>

namespace xuntool {

// How a unit name was found.
enum class UnitMatch { None, Ident, Description, Abbreviation, Expression };

// A unit is found, in this order, by its ident (xunGetUnitTagFromIdent), by
// its description with the singular/plural rule or an alias (xunGetUnitTag),
// by its abbreviation (the first unit in registration order), and last as a
// unit expression over registered idents ("UnitMeter/UnitSecond"), which is
// evaluated into a temporary unit (xunUnitNew) that lives until the tool
// ends. Returns UnitMatch::None when nothing matches.
UnitMatch FindUnit(const std::string& name, int& tag, bool allowExpression = true);

// Whether tag is a temporary unit made by FindUnit.
bool IsTemporaryUnit(int tag);

// An item type by ident, by description (exact) or by its numeric key
// (decimal).
bool FindItemType(const std::string& name, int& key);

// A filter by ident, by description (exact) or by its bit value (decimal, or
// hexadecimal with 0x).
bool FindFilter(const std::string& name, int& key);

// Parses a whole text as an integer with the given base (0: automatic);
// false for anything else, for an empty text and outside the int range.
bool ParseInt(const std::string& text, int base, long long& value);

} // namespace xuntool
