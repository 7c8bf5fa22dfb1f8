// The exported include writer.
#include "capi/Api.h"
#include "registry/IncludeWriter.h"

using namespace xun::capi;

extern "C" void xunWriteItemTypeIncludes(void) {
    Guard("xunWriteItemTypeIncludes", 0, [] {
        xunWriteIncludes_(Registries());
        xunWriteAllowedUnits_(Registries());
        return 1;
    });
}
