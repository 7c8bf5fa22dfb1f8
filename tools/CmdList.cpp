// xun units, xun items, xun filters: the registries as tables or JSON.
#include <cstdio>
#include <string>
#include <vector>

#include "Common.h"
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

int RunUnits(const Args& args) {
    ParsedArgs parsed;
    int status = kExitOk;
    if (!ParseCommand("units", args, {{"--item", true}, {"--like", true}, {"--json", false}}, 0, 0,
                      parsed, status))
        return status;
    DataLocation location;
    if (!LoadData("units", parsed, location, status))
        return status;

    std::vector<int> tags;
    if (parsed.Has("--item")) {
        int item = 0;
        if (!FindItemType(parsed.Value("--item"), item))
            return Fail(kExitFailed,
                        "unknown item type '" + Printable(parsed.Value("--item")) + "'");
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
    if (parsed.Has("--like") && FindUnit(parsed.Value("--like"), like) == UnitMatch::None)
        return Fail(kExitFailed, "unknown unit '" + Printable(parsed.Value("--like")) + "'");

    std::vector<UnitInfo> units;
    for (int tag : tags) {
        if (IsTemporaryUnit(tag))
            continue;
        if (parsed.Has("--like") && !xunUnitsEqv(like, tag))
            continue;
        units.push_back(GetUnitInfo(tag));
    }
    if (parsed.Has("--json")) {
        JsonWriter json(stdout);
        json.BeginArray();
        for (const UnitInfo& unit : units) {
            json.BeginObject();
            json.Key("key");
            json.Integer(unit.tag);
            json.Key("ident");
            json.String(unit.ident);
            json.Key("description");
            json.String(unit.description);
            json.Key("abbreviation");
            json.String(unit.abbreviation);
            json.Key("factor");
            json.Number(unit.factor);
            json.Key("offset");
            json.Number(unit.offset);
            json.Key("dimension");
            json.String(DimensionText(unit.powers));
            json.EndObject();
        }
        json.EndArray();
        json.Finish();
        return kExitOk;
    }
    Table table{{"KEY", "IDENT", "ABBR", "DESCRIPTION"}};
    for (const UnitInfo& unit : units)
        table.push_back(
            {std::to_string(unit.tag), unit.ident, unit.abbreviation, unit.description});
    PrintTable(stdout, table);
    return kExitOk;
}

int RunItems(const Args& args) {
    ParsedArgs parsed;
    int status = kExitOk;
    if (!ParseCommand("items", args, {{"--filter", true}, {"--json", false}}, 0, 0, parsed, status))
        return status;
    DataLocation location;
    if (!LoadData("items", parsed, location, status))
        return status;

    std::vector<int> keys;
    if (parsed.Has("--filter")) {
        int filter = 0;
        if (!FindFilter(parsed.Value("--filter"), filter))
            return Fail(kExitFailed,
                        "unknown filter '" + Printable(parsed.Value("--filter")) + "'");
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

    JsonWriter json(stdout);
    Table table{{"KEY", "IDENT", "UNIT", "DESCRIPTION"}};
    if (parsed.Has("--json"))
        json.BeginArray();
    for (int key : keys) {
        const char* text = nullptr;
        const std::string ident = xunGetItemTypeIdent(key, &text) ? Text(text) : "";
        const std::string desc = xunGetItemTypeKey(key, &text) ? Text(text) : "";
        const std::string unit = DefaultUnitIdent(key);
        int decimals = -1;
        double defaultValue = 0.0;
        xunGetItemTypeParams(key, &decimals, &defaultValue);
        if (!parsed.Has("--json")) {
            table.push_back({std::to_string(key), ident, key == 999 ? "(any)" : unit, desc});
            continue;
        }
        json.BeginObject();
        json.Key("key");
        json.Integer(key);
        json.Key("ident");
        json.String(ident);
        json.Key("description");
        json.String(desc);
        json.Key("defaultUnit");
        if (unit.empty())
            json.Null();
        else
            json.String(unit);
        json.Key("decimals");
        json.Integer(decimals);
        json.Key("defaultValue");
        json.Number(defaultValue);
        json.EndObject();
    }
    if (parsed.Has("--json")) {
        json.EndArray();
        json.Finish();
    } else {
        PrintTable(stdout, table);
    }
    return kExitOk;
}

int RunFilters(const Args& args) {
    ParsedArgs parsed;
    int status = kExitOk;
    if (!ParseCommand("filters", args, {{"--json", false}}, 0, 0, parsed, status))
        return status;
    DataLocation location;
    if (!LoadData("filters", parsed, location, status))
        return status;

    JsonWriter json(stdout);
    Table table{{"BIT", "IDENT", "ITEMS", "DESCRIPTION"}};
    if (parsed.Has("--json"))
        json.BeginArray();
    const int count = xunGetFilterCount();
    for (int seq = 1; seq <= count; ++seq) {
        int bit = 0;
        const char* desc = nullptr;
        if (!xunGetFilterSeq(seq, &bit, &desc))
            continue;
        const char* ident = nullptr;
        xunGetFilterIdent(bit, &ident);
        const int items = xunGetFilteredItemTypeCount(bit);
        if (!parsed.Has("--json")) {
            table.push_back({FilterBitText(bit), Text(ident), std::to_string(items), Text(desc)});
            continue;
        }
        json.BeginObject();
        json.Key("key");
        json.Integer(static_cast<unsigned int>(bit));
        json.Key("ident");
        json.String(Text(ident));
        json.Key("description");
        json.String(Text(desc));
        json.Key("itemCount");
        json.Integer(items);
        json.EndObject();
    }
    if (parsed.Has("--json")) {
        json.EndArray();
        json.Finish();
    } else {
        PrintTable(stdout, table);
    }
    return kExitOk;
}

} // namespace xuntool
