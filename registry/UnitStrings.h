// Unit strings against a unit registry: what xunParseUnit, xunParseItemUnit
// and xunGetUnitText do (docs/unit-strings.md). The grammar is
// units/UnitString.h; here are the names (idents, descriptions with the
// singular/plural rule, aliases, abbreviations, SI prefixes, case), the
// choice of the registered unit a meaning resolves to, the run-time unit
// made when none does, the near names of an unknown name and the texts of a
// unit in three notations.
//
// Each registry keeps an index of its names and the texts it has resolved
// (CKVunitRegistryCache): built on first use, rebuilt after any change of
// the units, never shared with a copy of the registry.
//
// Each function answers with XUN_OK or an XUN_ERR_... code of xun.h and,
// on failure, a message without the function's name.
#pragma once

#include <string>

#include "registry/Registries.h"

// The notations of xunGetUnitText (the values of xun.h's XUN_NOTATION_...).
const int kXunNotationCf = 1;
const int kXunNotationAscii = 2;
const int kXunNotationUnicode = 3;

// The unit a text means: a registered unit found by name, else the
// registered unit of equal meaning, else a unit registered for it at run
// time (key from 100000, ident "xun:" and the text's normalised form).
int xunParseUnitText_(CKVunitRegistry& units, const char* text, const CKVunit*& unit,
                      std::string& message);

// The same, but only an allowed unit of the item type (any registered unit
// for the any-unit item type 999) can be the answer; registers nothing.
int xunParseItemUnitText_(CKVregistries& registries, const CKVitemType& item, const char* text,
                          const CKVunit*& unit, std::string& message);

// A text of a registered unit in a notation. The text stays valid as long
// as the registry lives. XUN_ERR_RANGE for an unknown notation.
int xunUnitText_(CKVunitRegistry& units, const CKVunit& unit, int notation, const char*& text);
