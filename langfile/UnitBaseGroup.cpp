#include "langfile/UnitBaseGroup.h"

#include <new>

#include "langfile/KeywordFile.h"
#include "registry/ItemTypeQueries.h"
#include "xml/CString.h"
#include "xun.h"

namespace {
// The default file name. Nothing in the library writes it, so an empty name
// stays empty and loads nothing.
char _UBGFileName[xun::contract::kPathBufferSize];

const char* Reason(int result) {
    switch (result) {
    case XUN_ERR_UNKNOWN_ITEM_TYPE:
        return "no item type has this key";
    case XUN_ERR_UNKNOWN_UNIT:
        return "no unit has this key";
    case XUN_ERR_NO_REAL_UNIT:
        return "the unit has the key 0";
    case XUN_ERR_DIMENSION:
        return "the unit is of another dimension than the item type";
    default:
        return "refused";
    }
}
} // namespace

bool xunApplyBaseGroupFile_(CKVregistries& registries, const char* fileName,
                            CXunLoadReport& report) {
    CString name(fileName);
    if (name.IsEmpty())
        name = _UBGFileName;
    const std::string file = name.GetString();
    CLrxFile* handle = lrxLoadFile(name.GetString(), 1);
    if (handle == nullptr && lrxOutOfMemory())
        throw std::bad_alloc();
    if (handle == nullptr) {
        if (report.Observed())
            report.Dropped(file, 0,
                           std::string("the file is not loaded and changes nothing: ") +
                               lrxGetErrorGlb());
        lrxGetErrorGlb();
        return false;
    }
    const CLrxSection* section = lrxTargetByNameNum(handle, "Item_Unit", 1);
    int number = 1;
    for (const CLrxKeyword* keyword = lrxKeywordByNameNum(section, "Data", number);
         keyword != nullptr; keyword = lrxKeywordByNameNum(section, "Data", ++number)) {
        const int item = lrxGetInt(lrxParamByNum(keyword, 1));
        const int unit = lrxGetInt(lrxParamByNum(keyword, 2));
        // The result is not looked at: the next keyword follows whatever it is.
        const int result = xunSetItemUserUnit_(registries, item, unit);
        if (!report.Observed())
            continue;
        const std::string what = "Data = " + std::to_string(item) + ", " + std::to_string(unit);
        if (result == XUN_OK)
            report.Added(file, lrxKeywordLine(keyword), what);
        else
            report.Dropped(file, lrxKeywordLine(keyword),
                           what + ": " + Reason(result) + "; the assignment is skipped");
    }
    lrxClose(&handle);
    lrxGetErrorGlb();
    return true;
}
