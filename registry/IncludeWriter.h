// The include writer: a registry as constant definitions for C, Pascal,
// Fortran and C# ("xunDefine.c__", "xunDefine.p__", "xunDefine.f__",
// "xunDefine.cs"), and the allowed-units report ("xunAllowedUnits.HTML"),
// written into the current directory. A file that cannot be opened ends the
// process (assertion "0").
#pragma once

#include "registry/Registries.h"

// The item types, then (when asked for) the units and the filters.
void xunWriteIncludes_(const CKVregistries& registries, bool withUnits = true,
                       bool withFilters = true);
// Each item type with its allowed units.
void xunWriteAllowedUnits_(const CKVregistries& registries);
