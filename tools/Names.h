// Units, item types and filters as the C interface tells of them, and
// finding them by the names a user types.
#pragma once

#include <string>
#include <vector>

namespace xuntool {

struct UnitInfo {
    int tag = 0;
    std::string ident;
    std::string description;
    std::string abbreviation;
    double factor = 1.0;
    double offset = 0.0;
    double powers[7] = {0, 0, 0, 0, 0, 0, 0};
};

// What the C interface tells about a registered unit.
UnitInfo GetUnitInfo(int tag);

// Texts of the C interface that may be null.
std::string Text(const char* text);

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

} // namespace xuntool
