// xunLoadItemTypeTables: the setup file, then the localised texts of the
// language files "xuntype.lan", "xununit.lan" and "xunfilter.lan" in the
// installation's bin directory.
#include <string>
#include <vector>

#include "langfile/KVLangFile.h"
#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/UnitRegistry.h"
#include "setup/Installation.h"
#include "xun.h"

namespace {

// The reader takes a modifiable name.
std::vector<char> NameBuffer(const std::string& name) {
    return std::vector<char>(name.c_str(), name.c_str() + name.size() + 1);
}

void ApplyItemTypeTexts(const std::string& fileName) {
    CKVLangFile file;
    std::vector<char> name = NameBuffer(fileName);
    if (!file.OpenLangTypeFile(name.data()))
        return;
    for (CKVitemType* item : ItemTypeList_)
        if (item != nullptr)
            item->m_strKey = file.LoadTypeString(static_cast<int>(item->m_nNumId));
    file.CloseLangTypeFile();
}

void ApplyUnitTexts(const std::string& fileName) {
    CKVLangFile file;
    std::vector<char> name = NameBuffer(fileName);
    if (!file.OpenLangUnitFile(name.data()))
        return;
    for (CKVunit* unit : UnitList_) {
        if (unit == nullptr)
            continue;
        const int key = static_cast<int>(unit->m_lKey);
        unit->m_strDesc = file.LoadUnitString(key, 1);
        unit->m_strAbbr = file.LoadUnitString(key, 2);
    }
    file.CloseLangUnitFile();
}

void ApplyFilterTexts(const std::string& fileName) {
    CKVLangFile file;
    std::vector<char> name = NameBuffer(fileName);
    if (!file.OpenLangTypeFile(name.data()))
        return;
    for (CKVfilter* filter : FilterList_)
        if (filter != nullptr)
            filter->m_strKey = file.LoadTypeString(static_cast<int>(static_cast<long>(*filter)));
    file.CloseLangTypeFile();
}

} // namespace

extern "C" void xunLoadItemTypeTables(const char* path) {
    // A null path is taken as the empty text: the default setup file.
    const char* text = path != nullptr ? path : "";
    xunCopyPath_(szDllFileName, text);
    if (!xunSetupLoad(text))
        return;
    const std::string dir = xunInstallDir_();
    ApplyItemTypeTexts(dir + "xuntype" + ".lan");
    ApplyUnitTexts(dir + "xununit" + ".lan");
    ApplyFilterTexts(dir + "xunfilter" + ".lan");
}
