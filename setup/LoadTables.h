// What xunLoadItemTypeTables does after the setup file: the localised texts
// of the language files "xuntype.lan", "xununit.lan" and "xunfilter.lan" of
// a folder replace the descriptions (and the units' abbreviations) of a
// registry. A file that cannot be opened is skipped; a key missing from an
// opened file ends a load (assertion of the reader) and is reported in a
// check.
#pragma once

#include <string>

#include "common/LoadReport.h"
#include "registry/Registries.h"

// dir ends with a slash (the installation's "bin/" folder, for a load).
void xunApplyLanguageFiles_(CKVregistries& registries, const std::string& dir,
                            CXunLoadReport& report);
