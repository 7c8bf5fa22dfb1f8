// LoadUnitBaseGroupFile: presets the user units of item types from a unit
// base-group file, one "Data = <item key>, <unit key>" keyword per
// assignment in the section "Item_Unit".
#include "langfile/KeywordFile.h"
#include "setup/Installation.h"
#include "xml/CString.h"
#include "xun.h"

namespace {
// The default file name. Nothing in the library writes it, so an empty name
// stays empty and loads nothing.
char _UBGFileName[kXunPathBufferSize];
} // namespace

extern "C" void LoadUnitBaseGroupFile(char* fileName) {
    CString name(fileName);
    if (name.IsEmpty())
        name = _UBGFileName;
    CLrxFile* handle = lrxLoadFile(name.GetString(), 1);
    if (handle != nullptr) {
        const CLrxSection* section = lrxTargetByNameNum(handle, "Item_Unit", 1);
        int number = 1;
        for (const CLrxKeyword* keyword = lrxKeywordByNameNum(section, "Data", number);
             keyword != nullptr; keyword = lrxKeywordByNameNum(section, "Data", ++number)) {
            const int item = lrxGetInt(lrxParamByNum(keyword, 1));
            const int unit = lrxGetInt(lrxParamByNum(keyword, 2));
            xunSetItemUserUnit(item, unit);
        }
        lrxClose(&handle);
    }
    lrxGetErrorGlb();
}
