// The unit base-group file: user units of item types preset in bulk, one
// "Data = <item key>, <unit key>" keyword per assignment in the section
// "Item_Unit", applied in file order with the rule of xunSetItemUserUnit.
#pragma once

#include <string>

#include "common/LoadReport.h"
#include "registry/Registries.h"

// Applies the file name (empty: the default name, which is empty too) to
// registries. An assignment the rule refuses is skipped (reported as
// dropped). Returns false when the file cannot be loaded (a syntax error
// included; reported with its reason), which changes nothing.
bool xunApplyBaseGroupFile_(CKVregistries& registries, const char* name, CXunLoadReport& report);
