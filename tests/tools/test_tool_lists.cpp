// End-to-end tests of xun units, xun items and xun filters: the built program runs as a subprocess
// in tests/data/tools; standard output, standard error and exit status are compared exactly.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tools/tool_runner.h"
#include "registry_access.h"

using xuntest::Xun;

namespace {

TEST(ToolUnits, ListsEveryUnit) {
    EXPECT_TOOL(Xun({"--home", "home", "units"}), 0,
                "KEY   IDENT                    ABBR  DESCRIPTION\n"
                "1000  UnitMeter                m     meter\n"
                "1001  UnitKilometer            km    kilometer\n"
                "1002  UnitCentimeter           cm    centimeter\n"
                "1003  UnitFoot                 ft    foot\n"
                "1100  UnitSecond               s     second\n"
                "1101  UnitMinute               min   minute\n"
                "1102  UnitHour                 h     hour\n"
                "1200  UnitMeterPerSecond       m/s   meter per second\n"
                "1201  UnitKilometerPerHour     km/h  kilometer per hour\n"
                "1300  UnitCubicMeter           m\xC2"
                "\xB3"
                "    cubic meter\n"
                "1301  UnitLiter                l     liter\n"
                "1400  UnitCubicMeterPerSecond  m\xC2"
                "\xB3"
                "/s  cubic meter per second\n"
                "1401  UnitLiterPerSecond       l/s   liter per second\n"
                "1500  UnitKelvin               K     kelvin\n"
                "1501  UnitDegreeCelsius        \xC2"
                "\xB0"
                "C    degree Celsius\n"
                "1502  UnitDegreeFahrenheit     \xC2"
                "\xB0"
                "F    degree Fahrenheit\n"
                "1600  UnitFraction             -     fraction\n"
                "1601  UnitPercent              %     percent\n",
                "");
}

TEST(ToolUnits, AllowedUnitsOfAnItemType) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--item", "ItemWaterLevel"}), 0,
                "KEY   IDENT           ABBR  DESCRIPTION\n"
                "1000  UnitMeter       m     meter\n"
                "1002  UnitCentimeter  cm    centimeter\n"
                "1003  UnitFoot        ft    foot\n",
                "");
}

TEST(ToolUnits, ItemTypeByDescription) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--item", "Water level"}), 0,
                "KEY   IDENT           ABBR  DESCRIPTION\n"
                "1000  UnitMeter       m     meter\n"
                "1002  UnitCentimeter  cm    centimeter\n"
                "1003  UnitFoot        ft    foot\n",
                "");
}

TEST(ToolUnits, ItemTypeByKey) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--item", "400"}), 0,
                "KEY   IDENT                 ABBR  DESCRIPTION\n"
                "1501  UnitDegreeCelsius     \xC2"
                "\xB0"
                "C    degree Celsius\n"
                "1500  UnitKelvin            K     kelvin\n"
                "1502  UnitDegreeFahrenheit  \xC2"
                "\xB0"
                "F    degree Fahrenheit\n",
                "");
}

TEST(ToolUnits, AnyUnitItemTypeAllowsEveryUnit) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--item", "ItemAny", "--like", "%"}), 0,
                "KEY   IDENT         ABBR  DESCRIPTION\n"
                "1600  UnitFraction  -     fraction\n"
                "1601  UnitPercent   %     percent\n",
                "");
}

TEST(ToolUnits, UnitsOfTheSameDimension) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--like", "m/s"}), 0,
                "KEY   IDENT                 ABBR  DESCRIPTION\n"
                "1200  UnitMeterPerSecond    m/s   meter per second\n"
                "1201  UnitKilometerPerHour  km/h  kilometer per hour\n",
                "");
}

TEST(ToolUnits, LikeAComposedUnitLeavesOutItsTemporaryUnit) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--like", "UnitMeter/UnitHour"}), 0,
                "KEY   IDENT                 ABBR  DESCRIPTION\n"
                "1200  UnitMeterPerSecond    m/s   meter per second\n"
                "1201  UnitKilometerPerHour  km/h  kilometer per hour\n",
                "");
}

TEST(ToolUnits, ItemAndLikeTogether) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--item", "ItemWaterTemperature", "--like", "K"}),
                0,
                "KEY   IDENT                 ABBR  DESCRIPTION\n"
                "1501  UnitDegreeCelsius     \xC2"
                "\xB0"
                "C    degree Celsius\n"
                "1500  UnitKelvin            K     kelvin\n"
                "1502  UnitDegreeFahrenheit  \xC2"
                "\xB0"
                "F    degree Fahrenheit\n",
                "");
}

TEST(ToolUnits, UnknownItemType) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--item", "Nope"}), 1, "",
                "xun: unknown item type 'Nope'\n");
}

TEST(ToolUnits, UnknownLikeUnit) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--like", "furlong"}), 1, "",
                "xun: cannot read the unit 'furlong': at byte 1: no unit is named 'furlong'\n");
}

TEST(ToolUnits, LikeAComposedUnit) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--like", "km s-1"}), 0,
                "KEY   IDENT                 ABBR  DESCRIPTION\n"
                "1200  UnitMeterPerSecond    m/s   meter per second\n"
                "1201  UnitKilometerPerHour  km/h  kilometer per hour\n",
                "");
}

TEST(ToolUnits, Json) {
    EXPECT_TOOL(Xun({"--home", "home", "units", "--item", "ItemVelocity", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"key\": 1200,\n"
                "    \"ident\": \"UnitMeterPerSecond\",\n"
                "    \"description\": \"meter per second\",\n"
                "    \"abbreviation\": \"m/s\",\n"
                "    \"factor\": 1,\n"
                "    \"offset\": 0,\n"
                "    \"dimension\": \"L T-1\"\n"
                "  },\n"
                "  {\n"
                "    \"key\": 1201,\n"
                "    \"ident\": \"UnitKilometerPerHour\",\n"
                "    \"description\": \"kilometer per hour\",\n"
                "    \"abbreviation\": \"km/h\",\n"
                "    \"factor\": 0.2777777777777778,\n"
                "    \"offset\": 0,\n"
                "    \"dimension\": \"L T-1\"\n"
                "  }\n"
                "]\n",
                "");
}

TEST(ToolUnits, JsonEscapesAndLatin1) {
    EXPECT_TOOL(Xun({"--home", "escapes", "units", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"key\": 1000,\n"
                "    \"ident\": \"UnitMicrometer\",\n"
                "    \"description\": \"\xC2"
                "\xB5"
                "m (micrometer)\",\n"
                "    \"abbreviation\": \"\xC2"
                "\xB5"
                "m\",\n"
                "    \"factor\": 1e-06,\n"
                "    \"offset\": 0,\n"
                "    \"dimension\": \"L\"\n"
                "  }\n"
                "]\n",
                "");
}

TEST(ToolItems, ListsEveryItemType) {
    EXPECT_TOOL(Xun({"--home", "home", "items"}), 0,
                "KEY  IDENT                 UNIT                     DESCRIPTION\n"
                "100  ItemWaterLevel        UnitMeter                Water level\n"
                "200  ItemDischarge         UnitCubicMeterPerSecond  Discharge\n"
                "300  ItemVelocity          UnitMeterPerSecond       Flow velocity\n"
                "400  ItemWaterTemperature  UnitDegreeCelsius        Water temperature\n"
                "999  ItemAny               (any)                    Any quantity\n",
                "");
}

TEST(ToolItems, ItemTypesOfAFilter) {
    EXPECT_TOOL(Xun({"--home", "home", "items", "--filter", "FilterHydrology"}), 0,
                "KEY  IDENT           UNIT                     DESCRIPTION\n"
                "100  ItemWaterLevel  UnitMeter                Water level\n"
                "200  ItemDischarge   UnitCubicMeterPerSecond  Discharge\n"
                "300  ItemVelocity    UnitMeterPerSecond       Flow velocity\n",
                "");
}

TEST(ToolItems, FilterByDescription) {
    EXPECT_TOOL(Xun({"--home", "home", "items", "--filter", "Water quality"}), 0,
                "KEY  IDENT                 UNIT               DESCRIPTION\n"
                "400  ItemWaterTemperature  UnitDegreeCelsius  Water temperature\n",
                "");
}

TEST(ToolItems, FilterByHexadecimalBit) {
    EXPECT_TOOL(Xun({"--home", "home", "items", "--filter", "0x2"}), 0,
                "KEY  IDENT                 UNIT               DESCRIPTION\n"
                "400  ItemWaterTemperature  UnitDegreeCelsius  Water temperature\n",
                "");
}

TEST(ToolItems, UnknownFilter) {
    EXPECT_TOOL(Xun({"--home", "home", "items", "--filter", "Nope"}), 1, "",
                "xun: unknown filter 'Nope'\n");
}

TEST(ToolItems, Json) {
    EXPECT_TOOL(Xun({"--home", "home", "items", "--filter", "2", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"key\": 400,\n"
                "    \"ident\": \"ItemWaterTemperature\",\n"
                "    \"description\": \"Water temperature\",\n"
                "    \"defaultUnit\": \"UnitDegreeCelsius\",\n"
                "    \"decimals\": 1,\n"
                "    \"defaultValue\": 10.5\n"
                "  }\n"
                "]\n",
                "");
}

TEST(ToolItems, JsonEscapes) {
    EXPECT_TOOL(Xun({"--home", "escapes", "items", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"key\": 100,\n"
                "    \"ident\": \"ItemQuoted\",\n"
                "    \"description\": \"a \\\"quoted\\\" back\\\\slash\\ttab\\nline\",\n"
                "    \"defaultUnit\": \"UnitMicrometer\",\n"
                "    \"decimals\": 1,\n"
                "    \"defaultValue\": 0.5\n"
                "  }\n"
                "]\n",
                "");
}

TEST(ToolFilters, ListsEveryFilter) {
    EXPECT_TOOL(Xun({"--home", "home", "filters"}), 0,
                "BIT         IDENT            ITEMS  DESCRIPTION\n"
                "0x00000001  FilterHydrology  3      Hydrology\n"
                "0x00000002  FilterQuality    1      Water quality\n",
                "");
}

TEST(ToolFilters, Json) {
    EXPECT_TOOL(Xun({"--home", "home", "filters", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"key\": 1,\n"
                "    \"ident\": \"FilterHydrology\",\n"
                "    \"description\": \"Hydrology\",\n"
                "    \"itemCount\": 3\n"
                "  },\n"
                "  {\n"
                "    \"key\": 2,\n"
                "    \"ident\": \"FilterQuality\",\n"
                "    \"description\": \"Water quality\",\n"
                "    \"itemCount\": 1\n"
                "  }\n"
                "]\n",
                "");
}

TEST(ToolFilters, NoFilters) {
    EXPECT_TOOL(Xun({"--home", "escapes", "filters"}), 0, "BIT  IDENT  ITEMS  DESCRIPTION\n", "");
}

TEST(ToolFilters, NoFiltersJson) {
    EXPECT_TOOL(Xun({"--home", "escapes", "filters", "--json"}), 0, "[]\n", "");
}

// Every JSON output is one valid JSON document.
TEST(ToolJson, EveryJsonOutputParses) {
    const std::vector<std::vector<std::string>> runs = {
        {"--home", "home", "units", "--json"},
        {"--home", "home", "items", "--json"},
        {"--home", "home", "filters", "--json"},
        {"--home", "home", "show", "UnitDegreeFahrenheit", "--json"},
        {"--home", "home", "show", "ItemAny", "--json"},
        {"--home", "home", "show", "FilterQuality", "--json"},
        {"--home", "home", "show", "UnitLiter/UnitMinute", "--json"},
        {"--home", "escapes", "units", "--json"},
        {"--home", "escapes", "items", "--json"},
        {"--home", "escapes", "show", "ItemQuoted", "--json"},
        {"--home", "escapes", "filters", "--json"}};
    for (const std::vector<std::string>& args : runs) {
        const xuntest::ToolResult result = Xun(args);
        EXPECT_EQ(result.status, 0) << args[3];
        EXPECT_EQ(result.err, "") << args[3];
        EXPECT_TRUE(xuntest::IsValidJson(result.out)) << result.out;
    }
}

// The validator itself refuses what is not JSON.
TEST(ToolJson, ValidatorRefusesBrokenDocuments) {
    EXPECT_TRUE(xuntest::IsValidJson("[{\"a\": -1.5e+3, \"b\": [true, false, null]}]\n"));
    EXPECT_FALSE(xuntest::IsValidJson("[1,]"));
    EXPECT_FALSE(xuntest::IsValidJson("{\"a\" 1}"));
    EXPECT_FALSE(xuntest::IsValidJson("[\"tab\there\"]"));
    EXPECT_FALSE(xuntest::IsValidJson("[\"\xB5\"]"));
    EXPECT_FALSE(xuntest::IsValidJson("[nan]"));
    EXPECT_FALSE(xuntest::IsValidJson("[1] [2]"));
}

} // namespace
