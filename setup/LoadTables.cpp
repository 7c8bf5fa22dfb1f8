#include "setup/LoadTables.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "common/RegularFile.h"
#include "units/KVexpr.h"
#include "langfile/KVLangFile.h"
#include "setup/Installation.h"
#include "setup/SetupLoader.h"

using namespace xun::contract;

namespace {

// A language file that cannot be opened (or is too short) is skipped
// without a word; a check says so.
void Skipped(CXunLoadReport& report, const std::string& fileName) {
    if (!report.Observed())
        return;
    std::string reason;
    std::FILE* file = xunOpenRegularFile_(fileName.c_str(), "r", reason);
    if (file != nullptr)
        std::fclose(file);
    report.Dropped(fileName, 0,
                   file != nullptr
                       ? "the file has fewer than two lines; a load skips it"
                       : "the file cannot be read (" + reason + "); a load keeps the texts it has");
}

// The reader takes a modifiable name.
std::vector<char> NameBuffer(const std::string& name) {
    return std::vector<char>(name.c_str(), name.c_str() + name.size() + 1);
}

std::string Named(const char* kind, long key, const std::string& ident) {
    return std::string(kind) + " " + std::to_string(key) + " '" + ident + "'";
}

// The texts of a type file (item types, filters: one text per key) for
// every object of a registry.
template <class Objects, class KeyOf, class SetText>
void ApplyTypeTexts(const Objects& objects, const char* kind, const std::string& fileName,
                    CXunLoadReport& report, KeyOf keyOf, SetText setText) {
    CKVLangFile file;
    file.SetReport(&report, fileName);
    std::vector<char> name = NameBuffer(fileName);
    if (!file.OpenLangTypeFile(name.data()))
        return Skipped(report, fileName);
    for (auto* object : objects) {
        const int key = keyOf(*object);
        if (!file.HasTypeKey(key)) {
            report.Fatal(kTypeKeyMissing, fileName, file.EndLine(),
                         "no text for " + Named(kind, key, object->m_strIdent) +
                             "; loading would stop");
            continue;
        }
        setText(*object, file.LoadTypeString(key));
    }
    file.CloseLangTypeFile();
}

void ApplyUnitTexts(CKVregistries& registries, const std::string& fileName,
                    CXunLoadReport& report) {
    CKVLangFile file;
    file.SetReport(&report, fileName);
    std::vector<char> name = NameBuffer(fileName);
    if (!file.OpenLangUnitFile(name.data()))
        return Skipped(report, fileName);
    for (const CKVunit* unit : registries.units) {
        const int key = static_cast<int>(unit->m_lKey);
        if (!file.HasUnitKey(key)) {
            report.Fatal(kUnitKeyMissing, fileName, file.EndLine(),
                         "no text for " + Named("unit", key, unit->m_strIdent) +
                             "; loading would stop");
            continue;
        }
        registries.units.SetTexts(*unit, file.LoadUnitString(key, 1), file.LoadUnitString(key, 2));
    }
    file.CloseLangUnitFile();
}

} // namespace

std::vector<std::string> xunLanguageFiles_(const std::string& dir) {
    return {dir + "xuntype" + ".lan", dir + "xununit" + ".lan", dir + "xunfilter" + ".lan"};
}

void xunApplyLanguageFiles_(CKVregistries& registries, const std::string& dir,
                            CXunLoadReport& report) {
    const std::vector<std::string> files = xunLanguageFiles_(dir);
    ApplyTypeTexts(
        registries.itemTypes, "item type", files[0], report,
        [](const CKVitemType& item) { return static_cast<int>(item.m_nNumId); },
        [](CKVitemType& item, std::string text) { item.m_strKey = std::move(text); });
    ApplyUnitTexts(registries, files[1], report);
    // The filter file has the format of the item-type file.
    ApplyTypeTexts(
        registries.filters, "filter", files[2], report,
        [](const CKVfilter& filter) { return static_cast<int>(static_cast<long>(filter)); },
        [](CKVfilter& filter, std::string text) { filter.m_strKey = std::move(text); });
}

bool CXunTablesCache::Load(const char* path) {
    const std::string fileName = xunSetupFileName_(path);
    m_cacheable = xunPrepareLoadCache_(m_cache, fileName, xunLanguageFiles_(xunInstallDir_()));
    return m_cacheable && xunLoadFromCache_(m_cache, fileName);
}

void CXunTablesCache::Store(const CXunLoadReport& report) const {
    try {
        if (m_cacheable && xunLastSetupLoadWasClean_() && report.MessageCount() == 0 &&
            report.FatalCount() == 0 && m_cache.Unchanged())
            m_cache.Store(xunRegistries_(), szDecimalSymbol);
    } catch (const std::exception&) {
    }
}
