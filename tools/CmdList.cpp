// xun units, xun items, xun filters: the registries as tables or JSON.
#include <cstdio>
#include <string>
#include <vector>

#include "Json.h"
#include "Location.h"
#include "Names.h"
#include "Output.h"
#include "xun.h"

namespace xuntool {

namespace {

typedef std::vector<std::vector<std::string>> Table;

// The ident of an item type's first allowed unit, which is its default ("" for
// none and for the any-unit item type 999).
std::string DefaultUnitIdent(int item) {
    int tag = 0;
    const char* desc = nullptr;
    if (item == 999 || !xunGetItemUnitSeq(item, 1, &tag, &desc))
        return "";
    return GetUnitInfo(tag).ident;
}

} // namespace

int RunUnits(const Invocation& call) {
    DataLocation location;
    int status = kExitOk;
    if (!LoadData(call, location, status))
        return status;

    std::vector<int> tags;
    if (call.Has("--item")) {
        int item = 0;
        if (!FindItemType(call.Value("--item"), item))
            return Fail(kExitFailed, "unknown item type '" + Printable(call.Value("--item")) + "'");
        const int count = xunGetItemUnitCount(item);
        for (int seq = 1; seq <= count; ++seq) {
            int tag = 0;
            const char* desc = nullptr;
            if (xunGetItemUnitSeq(item, seq, &tag, &desc))
                tags.push_back(tag);
        }
    } else {
        int tag = 0;
        const char* desc = nullptr;
        for (int previous = 0; xunGetNextUnit(previous, &tag, &desc); previous = tag)
            tags.push_back(tag);
    }
    int like = 0;
    std::string reason;
    if (call.Has("--like") && !FindUnit(call.Value("--like"), like, reason))
        return Fail(kExitFailed, UnknownUnit(call.Value("--like"), reason));

    std::vector<UnitInfo> units;
    for (int tag : tags) {
        if (IsTemporaryUnit(tag))
            continue;
        if (call.Has("--like") && !xunUnitsEqv(like, tag))
            continue;
        units.push_back(GetUnitInfo(tag));
    }
    if (call.Has("--json")) {
        Json list = Json::array();
        for (const UnitInfo& unit : units)
            list.push_back({{"key", unit.tag},
                            {"ident", JsonText(unit.ident)},
                            {"description", JsonText(unit.description)},
                            {"abbreviation", JsonText(unit.abbreviation)},
                            {"factor", JsonNumber(unit.factor)},
                            {"offset", JsonNumber(unit.offset)},
                            {"dimension", DimensionText(unit.powers)}});
        PrintJson(list);
        return kExitOk;
    }
    Table table{{"KEY", "IDENT", "ABBR", "DESCRIPTION"}};
    for (const UnitInfo& unit : units)
        table.push_back(
            {std::to_string(unit.tag), unit.ident, unit.abbreviation, unit.description});
    PrintTable(stdout, table);
    return kExitOk;
}

int RunItems(const Invocation& call) {
    DataLocation location;
    int status = kExitOk;
    if (!LoadData(call, location, status))
        return status;

    std::vector<int> keys;
    if (call.Has("--filter")) {
        int filter = 0;
        if (!FindFilter(call.Value("--filter"), filter))
            return Fail(kExitFailed, "unknown filter '" + Printable(call.Value("--filter")) + "'");
        const int count = xunGetFilteredItemTypeCount(filter);
        for (int seq = 1; seq <= count; ++seq) {
            int key = 0;
            const char* desc = nullptr;
            if (xunGetFilteredItemTypeSeq(filter, seq, &key, &desc))
                keys.push_back(key);
        }
    } else {
        const int count = xunGetItemTypeCount();
        for (int seq = 1; seq <= count; ++seq) {
            int key = 0;
            const char* desc = nullptr;
            if (xunGetItemTypeSeq(seq, &key, &desc))
                keys.push_back(key);
        }
    }

    Json list = Json::array();
    Table table{{"KEY", "IDENT", "UNIT", "DESCRIPTION"}};
    for (int key : keys) {
        const char* text = nullptr;
        const std::string ident = xunGetItemTypeIdent(key, &text) ? Text(text) : "";
        const std::string desc = xunGetItemTypeKey(key, &text) ? Text(text) : "";
        const std::string unit = DefaultUnitIdent(key);
        int decimals = -1;
        double defaultValue = 0.0;
        xunGetItemTypeParams(key, &decimals, &defaultValue);
        table.push_back({std::to_string(key), ident, key == 999 ? "(any)" : unit, desc});
        list.push_back({{"key", key},
                        {"ident", JsonText(ident)},
                        {"description", JsonText(desc)},
                        {"defaultUnit", unit.empty() ? Json(nullptr) : JsonText(unit)},
                        {"decimals", decimals},
                        {"defaultValue", JsonNumber(defaultValue)}});
    }
    if (call.Has("--json"))
        PrintJson(list);
    else
        PrintTable(stdout, table);
    return kExitOk;
}

int RunFilters(const Invocation& call) {
    DataLocation location;
    int status = kExitOk;
    if (!LoadData(call, location, status))
        return status;

    Json list = Json::array();
    Table table{{"BIT", "IDENT", "ITEMS", "DESCRIPTION"}};
    const int count = xunGetFilterCount();
    for (int seq = 1; seq <= count; ++seq) {
        int bit = 0;
        const char* desc = nullptr;
        if (!xunGetFilterSeq(seq, &bit, &desc))
            continue;
        const char* ident = nullptr;
        xunGetFilterIdent(bit, &ident);
        const int items = xunGetFilteredItemTypeCount(bit);
        table.push_back({FilterBitText(bit), Text(ident), std::to_string(items), Text(desc)});
        list.push_back({{"key", static_cast<unsigned int>(bit)},
                        {"ident", JsonText(Text(ident))},
                        {"description", JsonText(Text(desc))},
                        {"itemCount", items}});
    }
    if (call.Has("--json"))
        PrintJson(list);
    else
        PrintTable(stdout, table);
    return kExitOk;
}

} // namespace xuntool
