// The names of the UDUNITS-2/CF notation as UDUNITS-2 reads them: the SI
// units (with the SI prefixes by symbol), the units accepted for use with
// them, and the few other symbols that unit strings of CF data use, each
// with the factor, offset and dimension UDUNITS-2 gives it. A unit text in
// the CF notation (xunGetUnitText) uses these names only, and only where
// they mean the same unit here and there; tests/udunits checks every entry
// against UDUNITS-2.
//
// Some entries are there to be refused: "kt" is the knot in UDUNITS-2, not
// a kilotonne, and "Torr" its millimetre of mercury; a text that would need
// them in another meaning is not written with them.
#pragma once

#include <string>

#include "units/UnitString.h"

// The names as atoms of the unit-string parser (keys: entry indexes).
const IUnitAtoms& xunCfAtoms_();

// The symbol of an entry with a prefix (-1: none), as the notation writes it.
std::string xunCfAtomText_(long key, int prefix);

// The number of entries and the name and meaning of each, for the tests.
int xunCfAtomCount_();
const char* xunCfAtomName_(int index);
XunUnitValue xunCfAtomValue_(int index);
bool xunCfAtomTakesPrefixes_(int index);
