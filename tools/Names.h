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

// A unit as a user or a data file writes it, found with xunParseUnit: a
// name (ident, description, alias, abbreviation) or a composed unit ("m3/s",
// "kg m-2 s-1", "ft^3/s", "cubic feet per second", "K @ 273.15"). A text of
// a meaning that no registered unit has gets a unit of its own, which lives
// until the tool ends. False when the text is no unit; reason then says
// where it stops making sense (and names near names of an unknown name).
bool FindUnit(const std::string& text, int& tag, std::string& reason);

// A registered unit by name or meaning, without registering a unit for the
// text: through the any-unit item type 999 where the installation has it.
bool FindRegisteredUnit(const std::string& text, int& tag);

// Whether tag is a unit that xunParseUnit registered for a text (its ident
// starts with "xun:"): in the tool, one made during this run.
bool IsTemporaryUnit(int tag);

// "cannot read the unit 'TEXT'" and the reason, for FindUnit's failures.
std::string UnknownUnit(const std::string& text, const std::string& reason);

// An item type by ident, by description (exact) or by its numeric key
// (decimal).
bool FindItemType(const std::string& name, int& key);

// A filter by ident, by description (exact) or by its bit value (decimal, or
// hexadecimal with 0x).
bool FindFilter(const std::string& name, int& key);

} // namespace xuntool
