// xun show NAME: everything known about the units, item types and filters
// that a name names.
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "Json.h"
#include "Show.h"
#include "Location.h"
#include "Names.h"
#include "Output.h"
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

Json Exponents(const double powers[7]) {
    Json exponents = Json::object();
    for (int i = 0; i < 7; ++i)
        exponents[kDimensionNames[i]] = JsonNumber(powers[i]);
    return exponents;
}

std::string ExponentsText(const double powers[7]) {
    std::vector<std::string> parts;
    for (int i = 0; i < 7; ++i)
        parts.push_back(std::string(kDimensionNames[i]) + " " + FormatShortest(powers[i]));
    return Join(parts, ", ");
}

Json UnitRef(const UnitInfo& unit) {
    return Json{{"key", unit.tag},
                {"ident", JsonText(unit.ident)},
                {"abbreviation", JsonText(unit.abbreviation)}};
}

// The aliases of a unit, in the order they were added.
std::vector<std::string> Aliases(int tag) {
    std::vector<std::string> aliases;
    const char* alias = nullptr;
    for (int seq = 1; xunGetUnitAlias(tag, seq, &alias); ++seq)
        aliases.push_back(Text(alias));
    return aliases;
}

} // namespace

void ShowUnit(int tag, Json* json) {
    const UnitInfo unit = GetUnitInfo(tag);
    const std::vector<std::string> aliases = Aliases(tag);
    const char* text = nullptr;
    const std::string expression = xunGetUnitExpression(tag, &text) ? Text(text) : "";
    int baseTag = 0;
    const bool hasBase = xunGetBaseUnit(tag, &baseTag, &text) != 0;
    const UnitInfo base = hasBase ? GetUnitInfo(baseTag) : UnitInfo();

    if (json != nullptr) {
        Json aliasList = Json::array();
        for (const std::string& name : aliases)
            aliasList.push_back(JsonText(name));
        Json object{{"kind", "unit"},
                    {"key", tag},
                    {"ident", JsonText(unit.ident)},
                    {"description", JsonText(unit.description)},
                    {"abbreviation", JsonText(unit.abbreviation)},
                    {"aliases", aliasList},
                    {"expression", expression.empty() ? Json(nullptr) : JsonText(expression)},
                    {"temporary", IsTemporaryUnit(tag)},
                    {"factor", JsonNumber(unit.factor)},
                    {"offset", JsonNumber(unit.offset)},
                    {"dimension", DimensionText(unit.powers)},
                    {"exponents", Exponents(unit.powers)},
                    {"baseUnit", hasBase ? UnitRef(base) : Json(nullptr)}};
        json->push_back(object);
        return;
    }
    std::printf("unit %s%s\n", unit.ident.c_str(),
                IsTemporaryUnit(tag) ? " (temporary, made for the text)" : "");
    Table table{{"  key", std::to_string(tag)},
                {"  ident", unit.ident},
                {"  description", unit.description},
                {"  abbreviation", unit.abbreviation},
                {"  aliases", Join(aliases, "; ")},
                {"  expression", expression},
                {"  factor", FormatDouble(unit.factor)},
                {"  offset", FormatDouble(unit.offset)},
                {"  dimension", DimensionText(unit.powers)},
                {"  exponents", ExponentsText(unit.powers)},
                {"  base unit", hasBase ? UnitLabel(base) : ""}};
    PrintTable(stdout, table);
}

void ShowItemType(int key, Json* json) {
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
        Json object{{"kind", "itemType"},       {"key", key},
                    {"ident", JsonText(ident)}, {"description", JsonText(desc)},
                    {"decimals", decimals},     {"defaultValue", JsonNumber(defaultValue)}};
        if (hasDimension) {
            object["dimension"] = DimensionText(eqv.powers);
            object["exponents"] = Exponents(eqv.powers);
        }
        object["anyUnit"] = key == 999;
        object["defaultUnit"] = allowed.empty() ? Json(nullptr) : UnitRef(allowed[0]);
        object["userUnit"] = hasUser ? UnitRef(user) : Json(nullptr);
        Json allowedList = Json::array();
        for (const UnitInfo& unit : allowed)
            allowedList.push_back(UnitRef(unit));
        object["allowedUnits"] = allowedList;
        Json filterList = Json::array();
        for (const std::pair<int, std::string>& filter : filters)
            filterList.push_back({{"key", static_cast<unsigned int>(filter.first)},
                                  {"ident", JsonText(filter.second)}});
        object["filters"] = filterList;
        json->push_back(object);
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

void ShowFilter(int bit, Json* json) {
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
        Json itemList = Json::array();
        for (const std::pair<int, std::string>& item : items)
            itemList.push_back({{"key", item.first}, {"ident", JsonText(item.second)}});
        json->push_back({{"kind", "filter"},
                         {"key", static_cast<unsigned int>(bit)},
                         {"ident", JsonText(ident)},
                         {"description", JsonText(desc)},
                         {"itemTypes", itemList}});
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

int RunShow(const Invocation& call) {
    DataLocation location;
    int status = kExitOk;
    if (!LoadData(call, location, status))
        return status;
    const std::string& name = call.args[0];

    int unit = 0;
    int item = 0;
    int filter = 0;
    const bool isItem = FindItemType(name, item);
    const bool isFilter = FindFilter(name, filter);
    // A name of an item type or filter is shown as a unit too where a
    // registered unit has it; any other text is read as a unit string,
    // which may make a unit for it.
    std::string reason;
    const bool isUnit =
        isItem || isFilter ? FindRegisteredUnit(name, unit) : FindUnit(name, unit, reason);
    if (!isUnit && !isItem && !isFilter)
        return Fail(kExitFailed, "unknown name '" + Printable(name) +
                                     "': no item type or filter, and no unit: " + reason);

    Json list = Json::array();
    Json* json = call.Has("--json") ? &list : nullptr;
    bool first = true;
    auto separate = [&]() {
        if (json == nullptr && !first)
            std::printf("\n");
        first = false;
    };
    if (isUnit) {
        separate();
        ShowUnit(unit, json);
    }
    if (isItem) {
        separate();
        ShowItemType(item, json);
    }
    if (isFilter) {
        separate();
        ShowFilter(filter, json);
    }
    if (json != nullptr)
        PrintJson(list);
    return kExitOk;
}

} // namespace xuntool
