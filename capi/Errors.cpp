// The last-error record, the version, and what the exported functions share.
#include "capi/Api.h"
#include "common/Version.h"

namespace xun {
namespace capi {

std::string UnitText(const CKVunit& unit) {
    return std::to_string(unit.m_lKey) + " '" + unit.m_strIdent + "' (dimension " +
           xunDimensionText_(unit.GetDim()) + ")";
}

int ConversionRefused(const char* function, int result, long fromTag, long toTag) {
    const CKVunit* from = Units().FindByKey(fromTag);
    const CKVunit* to = Units().FindByKey(toTag);
    switch (result) {
    case XUN_ERR_UNKNOWN_UNIT:
        return UnknownUnit(function, from == nullptr ? fromTag : toTag);
    case XUN_ERR_NO_REAL_UNIT:
        return xunFail_(XUN_ERR_NO_REAL_UNIT, "%s: the unit '%s' has the key 0 and converts nothing",
                        function, (fromTag == 0 ? from : to)->m_strIdent.c_str());
    default:
        return xunFail_(XUN_ERR_DIMENSION,
                        "%s: cannot convert unit %s to unit %s: the dimensions differ", function,
                        UnitText(*from).c_str(), UnitText(*to).c_str());
    }
}

} // namespace capi
} // namespace xun

extern "C" {

int xunGetLastError(const char** message) {
    if (message != nullptr)
        *message = xunLastErrorMessage_();
    return xunLastErrorCode_();
}

void xunClearLastError(void) {
    xunClearLastError_();
}

const char* xunVersion(void) {
    return XUN_VERSION_TEXT;
}

} // extern "C"
