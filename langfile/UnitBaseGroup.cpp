#include "langfile/UnitBaseGroup.h"

#include <cstdlib>
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
        if (report.Observed()) {
            // The reader's reason is "<name>:<line>: <reason>" for a syntax
            // error and "<name>: <reason>" otherwise.
            std::string reason = lrxGetErrorGlb();
            long line = 0;
            if (reason.compare(0, file.size() + 1, file + ":") == 0) {
                reason.erase(0, file.size() + 1);
                char* end = nullptr;
                const long number = std::strtol(reason.c_str(), &end, 10);
                if (end != reason.c_str() && *end == ':') {
                    line = number;
                    reason.erase(0, static_cast<size_t>(end - reason.c_str()) + 1);
                }
                if (!reason.empty() && reason[0] == ' ')
                    reason.erase(0, 1);
            }
            report.Dropped(file, line, "the file is not loaded and changes nothing: " + reason);
        }
        lrxGetErrorGlb();
        return false;
    }
    const CLrxSection* section = lrxTargetByNameNum(handle, "Item_Unit", 1);
    if (report.Observed() && section == nullptr)
        report.Dropped(file, 0, "there is no section [Item_Unit]: the file changes nothing");
    else if (report.Observed() && lrxKeywordByNameNum(section, "Data", 1) == nullptr)
        report.Dropped(file, 0,
                       "the section [Item_Unit] has no Data keyword: the file changes nothing");
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
