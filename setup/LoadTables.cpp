#include "setup/LoadTables.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "common/RegularFile.h"
#include "langfile/KVLangFile.h"

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

void xunApplyLanguageFiles_(CKVregistries& registries, const std::string& dir,
                            CXunLoadReport& report) {
    ApplyTypeTexts(
        registries.itemTypes, "item type", dir + "xuntype" + ".lan", report,
        [](const CKVitemType& item) { return static_cast<int>(item.m_nNumId); },
        [](CKVitemType& item, std::string text) { item.m_strKey = std::move(text); });
    ApplyUnitTexts(registries, dir + "xununit" + ".lan", report);
    // The filter file has the format of the item-type file.
    ApplyTypeTexts(
        registries.filters, "filter", dir + "xunfilter" + ".lan", report,
        [](const CKVfilter& filter) { return static_cast<int>(static_cast<long>(filter)); },
        [](CKVfilter& filter, std::string text) { filter.m_strKey = std::move(text); });
}
