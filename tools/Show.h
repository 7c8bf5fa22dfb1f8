// Everything the C interface tells of a unit, an item type or a filter, as
// xun show prints it: a table on standard output, or (json not null) one
// JSON object appended to the array json. xun report reads the JSON form.
#pragma once

#include "Json.h"

namespace xuntool {

void ShowUnit(int tag, Json* json);
void ShowItemType(int key, Json* json);
void ShowFilter(int bit, Json* json);

} // namespace xuntool
