// xun show NAME: everything known about the units, item types and filters
// that a name names.
#include <cstdio>
#include <string>
#include <vector>

#include "Common.h"
#include "Names.h"
#include "Output.h"
#include "SetupFile.h"
#include "xun.h"

namespace xuntool {

namespace {

typedef std::vector<std::vector<std::string>> Table;

std::string Join(const std::vector<std::string>& parts, const char* separator) {
    std::string text;
    for (size_t i = 0; i < parts.size(); ++i)
        text += (i > 0 ? separator : "") + parts[i];
    return text;
}

// "UnitMeter (m)" or "UnitMeter" for a unit without abbreviation.
std::string UnitLabel(const UnitInfo& unit) {
    return unit.abbreviation.empty() ? unit.ident : unit.ident + " (" + unit.abbreviation + ")";
}

void WriteDimension(JsonWriter& json, const double powers[7]) {
    json.Key("dimension");
    json.String(DimensionText(powers));
    json.Key("exponents");
    json.BeginObject();
    for (int i = 0; i < 7; ++i) {
        json.Key(kDimensionNames[i]);
        json.Number(powers[i]);
    }
    json.EndObject();
}

std::string ExponentsText(const double powers[7]) {
    std::vector<std::string> parts;
    for (int i = 0; i < 7; ++i)
        parts.push_back(std::string(kDimensionNames[i]) + " " + FormatShortest(powers[i]));
    return Join(parts, ", ");
}

void WriteUnitRef(JsonWriter& json, const UnitInfo& unit) {
    json.BeginObject();
    json.Key("key");
    json.Integer(unit.tag);
    json.Key("ident");
    json.String(unit.ident);
    json.Key("abbreviation");
    json.String(unit.abbreviation);
    json.EndObject();
}

void ShowUnit(int tag, const DataLocation& location, JsonWriter* json) {
    const UnitInfo unit = GetUnitInfo(tag);
    RowAttribute alias;
    RowAttribute expression;
    std::vector<std::string> aliases;
    if (IsTemporaryUnit(tag)) {
        expression.text = unit.description;
        expression.present = true;
    } else if (FindUnitRow(location.setupFile, unit.ident, tag, alias, expression)) {
        aliases = SplitAliases(alias.text);
    }
    int baseTag = 0;
    const char* baseDesc = nullptr;
    const bool hasBase = xunGetBaseUnit(tag, &baseTag, &baseDesc) != 0;
    const UnitInfo base = hasBase ? GetUnitInfo(baseTag) : UnitInfo();

    if (json != nullptr) {
        json->BeginObject();
        json->Key("kind");
        json->String("unit");
        json->Key("key");
        json->Integer(tag);
        json->Key("ident");
        json->String(unit.ident);
        json->Key("description");
        json->String(unit.description);
        json->Key("abbreviation");
        json->String(unit.abbreviation);
        json->Key("aliases");
        json->BeginArray();
        for (const std::string& name : aliases)
            json->String(name);
        json->EndArray();
        json->Key("expression");
        if (expression.present)
            json->String(expression.text);
        else
            json->Null();
        json->Key("temporary");
        json->Bool(IsTemporaryUnit(tag));
        json->Key("factor");
        json->Number(unit.factor);
        json->Key("offset");
        json->Number(unit.offset);
        WriteDimension(*json, unit.powers);
        json->Key("baseUnit");
        if (hasBase)
            WriteUnitRef(*json, base);
        else
            json->Null();
        json->EndObject();
        return;
    }
    std::printf("unit %s%s\n", unit.ident.c_str(),
                IsTemporaryUnit(tag) ? " (temporary, from an expression)" : "");
    Table table{{"  key", std::to_string(tag)},
                {"  ident", unit.ident},
                {"  description", unit.description},
                {"  abbreviation", unit.abbreviation},
                {"  aliases", Join(aliases, "; ")},
                {"  expression", expression.text},
                {"  factor", FormatDouble(unit.factor)},
                {"  offset", FormatDouble(unit.offset)},
                {"  dimension", DimensionText(unit.powers)},
                {"  exponents", ExponentsText(unit.powers)},
                {"  base unit", hasBase ? UnitLabel(base) : ""}};
    PrintTable(stdout, table);
}

void ShowItemType(int key, JsonWriter* json) {
    const char* text = nullptr;
    const std::string ident = xunGetItemTypeIdent(key, &text) ? Text(text) : "";
    const std::string desc = xunGetItemTypeKey(key, &text) ? Text(text) : "";
    int decimals = -1;
    double defaultValue = 0.0;
    xunGetItemTypeParams(key, &decimals, &defaultValue);
    int eqvTag = 0;
    const bool hasDimension = xunGetItemFirstEqvUnit(key, &eqvTag, &text) != 0;
    const UnitInfo eqv = hasDimension ? GetUnitInfo(eqvTag) : UnitInfo();
    int userTag = -1;
    xunGetItemUserUnit(key, &userTag);
    const bool hasUser = userTag != -1 && xunGetUnitIdent(userTag, &text);
    const UnitInfo user = hasUser ? GetUnitInfo(userTag) : UnitInfo();
    // The any-unit item type 999 allows every unit; its list is not shown.
    std::vector<UnitInfo> allowed;
    if (key != 999) {
        const int count = xunGetItemUnitCount(key);
        for (int seq = 1; seq <= count; ++seq) {
            int tag = 0;
            if (xunGetItemUnitSeq(key, seq, &tag, &text))
                allowed.push_back(GetUnitInfo(tag));
        }
    }
    std::vector<std::pair<int, std::string>> filters;
    const int filterCount = xunGetFilterCount();
    for (int seq = 1; seq <= filterCount; ++seq) {
        int bit = 0;
        if (xunGetFilterSeq(seq, &bit, &text) && xunItemFilterEqv(key, bit)) {
            const char* filterIdent = nullptr;
            xunGetFilterIdent(bit, &filterIdent);
            filters.push_back(std::make_pair(bit, Text(filterIdent)));
        }
    }

    if (json != nullptr) {
        json->BeginObject();
        json->Key("kind");
        json->String("itemType");
        json->Key("key");
        json->Integer(key);
        json->Key("ident");
        json->String(ident);
        json->Key("description");
        json->String(desc);
        json->Key("decimals");
        json->Integer(decimals);
        json->Key("defaultValue");
        json->Number(defaultValue);
        if (hasDimension)
            WriteDimension(*json, eqv.powers);
        json->Key("anyUnit");
        json->Bool(key == 999);
        json->Key("defaultUnit");
        if (!allowed.empty())
            WriteUnitRef(*json, allowed[0]);
        else
            json->Null();
        json->Key("userUnit");
        if (hasUser)
            WriteUnitRef(*json, user);
        else
            json->Null();
        json->Key("allowedUnits");
        json->BeginArray();
        for (const UnitInfo& unit : allowed)
            WriteUnitRef(*json, unit);
        json->EndArray();
        json->Key("filters");
        json->BeginArray();
        for (const std::pair<int, std::string>& filter : filters) {
            json->BeginObject();
            json->Key("key");
            json->Integer(static_cast<unsigned int>(filter.first));
            json->Key("ident");
            json->String(filter.second);
            json->EndObject();
        }
        json->EndArray();
        json->EndObject();
        return;
    }
    std::vector<std::string> allowedTexts;
    for (const UnitInfo& unit : allowed)
        allowedTexts.push_back(UnitLabel(unit));
    std::vector<std::string> filterTexts;
    for (const std::pair<int, std::string>& filter : filters)
        filterTexts.push_back(filter.second + " (" + FilterBitText(filter.first) + ")");
    std::printf("item type %s\n", ident.c_str());
    Table table{{"  key", std::to_string(key)},
                {"  ident", ident},
                {"  description", desc},
                {"  decimals", std::to_string(decimals)},
                {"  default value", FormatDouble(defaultValue)},
                {"  dimension", hasDimension ? DimensionText(eqv.powers) : ""},
                {"  exponents", hasDimension ? ExponentsText(eqv.powers) : ""},
                {"  default unit", key == 999        ? "(any unit)"
                                   : allowed.empty() ? ""
                                                     : UnitLabel(allowed[0])},
                {"  user unit", hasUser ? UnitLabel(user) : ""},
                {"  allowed units", key == 999 ? "(every unit)" : Join(allowedTexts, ", ")},
                {"  filters", Join(filterTexts, ", ")}};
    PrintTable(stdout, table);
}

void ShowFilter(int bit, JsonWriter* json) {
    const char* text = nullptr;
    const std::string ident = xunGetFilterIdent(bit, &text) ? Text(text) : "";
    const std::string desc = xunGetFilterKey(bit, &text) ? Text(text) : "";
    std::vector<std::pair<int, std::string>> items;
    const int count = xunGetFilteredItemTypeCount(bit);
    for (int seq = 1; seq <= count; ++seq) {
        int key = 0;
        if (xunGetFilteredItemTypeSeq(bit, seq, &key, &text)) {
            const char* itemIdent = nullptr;
            xunGetItemTypeIdent(key, &itemIdent);
            items.push_back(std::make_pair(key, Text(itemIdent)));
        }
    }
    if (json != nullptr) {
        json->BeginObject();
        json->Key("kind");
        json->String("filter");
        json->Key("key");
        json->Integer(static_cast<unsigned int>(bit));
        json->Key("ident");
        json->String(ident);
        json->Key("description");
        json->String(desc);
        json->Key("itemTypes");
        json->BeginArray();
        for (const std::pair<int, std::string>& item : items) {
            json->BeginObject();
            json->Key("key");
            json->Integer(item.first);
            json->Key("ident");
            json->String(item.second);
            json->EndObject();
        }
        json->EndArray();
        json->EndObject();
        return;
    }
    std::vector<std::string> itemTexts;
    for (const std::pair<int, std::string>& item : items)
        itemTexts.push_back(item.second);
    std::printf("filter %s\n", ident.c_str());
    Table table{
        {"  bit", FilterBitText(bit) + " (" + std::to_string(static_cast<unsigned int>(bit)) + ")"},
        {"  ident", ident},
        {"  description", desc},
        {"  item types", Join(itemTexts, ", ")}};
    PrintTable(stdout, table);
}

} // namespace

int RunShow(const Args& args) {
    ParsedArgs parsed;
    int status = kExitOk;
    if (!ParseCommand("show", args, {{"--json", false}}, 1, 1, parsed, status))
        return status;
    DataLocation location;
    if (!LoadData("show", parsed, location, status))
        return status;
    const std::string& name = parsed.positionals[0];

    int unit = 0;
    int item = 0;
    int filter = 0;
    const bool isUnit = FindUnit(name, unit, false) != UnitMatch::None;
    const bool isItem = FindItemType(name, item);
    const bool isFilter = FindFilter(name, filter);
    // Only a name that names nothing else is tried as a unit expression.
    const bool isExpression =
        !isUnit && !isItem && !isFilter && FindUnit(name, unit, true) == UnitMatch::Expression;
    if (!isUnit && !isItem && !isFilter && !isExpression)
        return Fail(kExitFailed,
                    "unknown name '" + Printable(name) + "': no unit, item type or filter");

    JsonWriter writer(stdout);
    JsonWriter* json = parsed.Has("--json") ? &writer : nullptr;
    if (json != nullptr)
        json->BeginArray();
    bool first = true;
    auto separate = [&]() {
        if (json == nullptr && !first)
            std::printf("\n");
        first = false;
    };
    if (isUnit || isExpression) {
        separate();
        ShowUnit(unit, location, json);
    }
    if (isItem) {
        separate();
        ShowItemType(item, json);
    }
    if (isFilter) {
        separate();
        ShowFilter(filter, json);
    }
    if (json != nullptr) {
        json->EndArray();
        json->Finish();
    }
    return kExitOk;
}

} // namespace xuntool
