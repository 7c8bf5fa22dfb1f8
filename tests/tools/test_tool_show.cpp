// End-to-end tests of xun show: the built program runs as a subprocess in
// tests/data/tools; standard output, standard error and exit status are
// compared exactly.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tools/tool_runner.h"
#include "registry_access.h"

using xuntest::Xun;

namespace {

TEST(ToolShow, Unit) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "degC"}), 0,
                "unit UnitDegreeCelsius\n"
                "  key           1501\n"
                "  ident         UnitDegreeCelsius\n"
                "  description   degree Celsius\n"
                "  abbreviation  \xC2"
                "\xB0"
                "C\n"
                "  aliases       degC\n"
                "  expression    UnitKelvin+273.15\n"
                "  factor        1\n"
                "  offset        273.14999999999998\n"
                "  dimension     \xCE"
                "\x98"
                "\n"
                "  exponents     length 0, mass 0, time 0, temperature 1, current 0, substance 0, "
                "luminous 0\n"
                "  base unit     UnitKelvin (K)\n",
                "");
}

TEST(ToolShow, UnitJson) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "UnitMeter", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"kind\": \"unit\",\n"
                "    \"key\": 1000,\n"
                "    \"ident\": \"UnitMeter\",\n"
                "    \"description\": \"meter\",\n"
                "    \"abbreviation\": \"m\",\n"
                "    \"aliases\": [\n"
                "      \"metre\",\n"
                "      \"metres\"\n"
                "    ],\n"
                "    \"expression\": \"Length\",\n"
                "    \"temporary\": false,\n"
                "    \"factor\": 1,\n"
                "    \"offset\": 0,\n"
                "    \"dimension\": \"L\",\n"
                "    \"exponents\": {\n"
                "      \"length\": 1,\n"
                "      \"mass\": 0,\n"
                "      \"time\": 0,\n"
                "      \"temperature\": 0,\n"
                "      \"current\": 0,\n"
                "      \"substance\": 0,\n"
                "      \"luminous\": 0\n"
                "    },\n"
                "    \"baseUnit\": {\n"
                "      \"key\": 1000,\n"
                "      \"ident\": \"UnitMeter\",\n"
                "      \"abbreviation\": \"m\"\n"
                "    }\n"
                "  }\n"
                "]\n",
                "");
}

TEST(ToolShow, ItemType) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "ItemWaterLevel"}), 0,
                "item type ItemWaterLevel\n"
                "  key            100\n"
                "  ident          ItemWaterLevel\n"
                "  description    Water level\n"
                "  decimals       3\n"
                "  default value  0\n"
                "  dimension      L\n"
                "  exponents      length 1, mass 0, time 0, temperature 0, current 0, substance 0, "
                "luminous 0\n"
                "  default unit   UnitMeter (m)\n"
                "  user unit      UnitCentimeter (cm)\n"
                "  allowed units  UnitMeter (m), UnitCentimeter (cm), UnitFoot (ft)\n"
                "  filters        FilterHydrology (0x00000001)\n",
                "");
}

TEST(ToolShow, ItemTypeJson) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "Water temperature", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"kind\": \"itemType\",\n"
                "    \"key\": 400,\n"
                "    \"ident\": \"ItemWaterTemperature\",\n"
                "    \"description\": \"Water temperature\",\n"
                "    \"decimals\": 1,\n"
                "    \"defaultValue\": 10.5,\n"
                "    \"dimension\": \"\xCE"
                "\x98"
                "\",\n"
                "    \"exponents\": {\n"
                "      \"length\": 0,\n"
                "      \"mass\": 0,\n"
                "      \"time\": 0,\n"
                "      \"temperature\": 1,\n"
                "      \"current\": 0,\n"
                "      \"substance\": 0,\n"
                "      \"luminous\": 0\n"
                "    },\n"
                "    \"anyUnit\": false,\n"
                "    \"defaultUnit\": {\n"
                "      \"key\": 1501,\n"
                "      \"ident\": \"UnitDegreeCelsius\",\n"
                "      \"abbreviation\": \"\xC2"
                "\xB0"
                "C\"\n"
                "    },\n"
                "    \"userUnit\": {\n"
                "      \"key\": 1501,\n"
                "      \"ident\": \"UnitDegreeCelsius\",\n"
                "      \"abbreviation\": \"\xC2"
                "\xB0"
                "C\"\n"
                "    },\n"
                "    \"allowedUnits\": [\n"
                "      {\n"
                "        \"key\": 1501,\n"
                "        \"ident\": \"UnitDegreeCelsius\",\n"
                "        \"abbreviation\": \"\xC2"
                "\xB0"
                "C\"\n"
                "      },\n"
                "      {\n"
                "        \"key\": 1500,\n"
                "        \"ident\": \"UnitKelvin\",\n"
                "        \"abbreviation\": \"K\"\n"
                "      },\n"
                "      {\n"
                "        \"key\": 1502,\n"
                "        \"ident\": \"UnitDegreeFahrenheit\",\n"
                "        \"abbreviation\": \"\xC2"
                "\xB0"
                "F\"\n"
                "      }\n"
                "    ],\n"
                "    \"filters\": [\n"
                "      {\n"
                "        \"key\": 2,\n"
                "        \"ident\": \"FilterQuality\"\n"
                "      }\n"
                "    ]\n"
                "  }\n"
                "]\n",
                "");
}

TEST(ToolShow, AnyUnitItemType) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "999"}), 0,
                "item type ItemAny\n"
                "  key            999\n"
                "  ident          ItemAny\n"
                "  description    Any quantity\n"
                "  decimals       3\n"
                "  default value  0\n"
                "  dimension      1\n"
                "  exponents      length 0, mass 0, time 0, temperature 0, current 0, substance 0, "
                "luminous 0\n"
                "  default unit   (any unit)\n"
                "  user unit      UnitFraction (-)\n"
                "  allowed units  (every unit)\n"
                "  filters\n",
                "");
}

TEST(ToolShow, Filter) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "FilterHydrology"}), 0,
                "filter FilterHydrology\n"
                "  bit          0x00000001 (1)\n"
                "  ident        FilterHydrology\n"
                "  description  Hydrology\n"
                "  item types   ItemWaterLevel, ItemDischarge, ItemVelocity\n",
                "");
}

TEST(ToolShow, FilterJson) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "0x2", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"kind\": \"filter\",\n"
                "    \"key\": 2,\n"
                "    \"ident\": \"FilterQuality\",\n"
                "    \"description\": \"Water quality\",\n"
                "    \"itemTypes\": [\n"
                "      {\n"
                "        \"key\": 400,\n"
                "        \"ident\": \"ItemWaterTemperature\"\n"
                "      }\n"
                "    ]\n"
                "  }\n"
                "]\n",
                "");
}

// A composed unit shows the registered unit it equals.
TEST(ToolShow, ComposedUnitShowsTheUnitItEquals) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "UnitKilometer/UnitHour"}), 0,
                "unit UnitKilometerPerHour\n"
                "  key           1201\n"
                "  ident         UnitKilometerPerHour\n"
                "  description   kilometer per hour\n"
                "  abbreviation  km/h\n"
                "  aliases\n"
                "  expression    UnitKilometer/UnitHour\n"
                "  factor        0.27777777777777779\n"
                "  offset        0\n"
                "  dimension     L T-1\n"
                "  exponents     length 1, mass 0, time -1, temperature 0, current 0, substance 0, "
                "luminous 0\n"
                "  base unit     UnitMeterPerSecond (m/s)\n",
                "");
}

// A composed unit that no registered unit equals gets a unit of its own for
// the run.
TEST(ToolShow, ComposedUnitOfItsOwn) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "km min-1"}), 0,
                "unit xun:km/min (temporary, made for the text)\n"
                "  key           100000\n"
                "  ident         xun:km/min\n"
                "  description   km/min (parsed)\n"
                "  abbreviation  km/min\n"
                "  aliases\n"
                "  expression    km min-1\n"
                "  factor        16.666666666666668\n"
                "  offset        0\n"
                "  dimension     L T-1\n"
                "  exponents     length 1, mass 0, time -1, temperature 0, current 0, substance 0, "
                "luminous 0\n"
                "  base unit     UnitMeterPerSecond (m/s)\n",
                "");
}

TEST(ToolShow, ComposedUnitOfItsOwnJson) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "UnitKilometer/UnitMinute", "--json"}), 0,
                "[\n"
                "  {\n"
                "    \"kind\": \"unit\",\n"
                "    \"key\": 100000,\n"
                "    \"ident\": \"xun:km/min\",\n"
                "    \"description\": \"km/min (parsed)\",\n"
                "    \"abbreviation\": \"km/min\",\n"
                "    \"aliases\": [],\n"
                "    \"expression\": \"UnitKilometer/UnitMinute\",\n"
                "    \"temporary\": true,\n"
                "    \"factor\": 16.666666666666668,\n"
                "    \"offset\": 0,\n"
                "    \"dimension\": \"L T-1\",\n"
                "    \"exponents\": {\n"
                "      \"length\": 1,\n"
                "      \"mass\": 0,\n"
                "      \"time\": -1,\n"
                "      \"temperature\": 0,\n"
                "      \"current\": 0,\n"
                "      \"substance\": 0,\n"
                "      \"luminous\": 0\n"
                "    },\n"
                "    \"baseUnit\": {\n"
                "      \"key\": 1200,\n"
                "      \"ident\": \"UnitMeterPerSecond\",\n"
                "      \"abbreviation\": \"m/s\"\n"
                "    }\n"
                "  }\n"
                "]\n",
                "");
}

TEST(ToolShow, SetupTextsWithoutLanguageFiles) {
    EXPECT_TOOL(Xun({"--home", "nolang", "show", "ItemWaterLevel"}), 0,
                "item type ItemWaterLevel\n"
                "  key            100\n"
                "  ident          ItemWaterLevel\n"
                "  description    Water Level\n"
                "  decimals       3\n"
                "  default value  0\n"
                "  dimension      L\n"
                "  exponents      length 1, mass 0, time 0, temperature 0, current 0, substance 0, "
                "luminous 0\n"
                "  default unit   UnitMeter (m)\n"
                "  user unit      UnitCentimeter (cm)\n"
                "  allowed units  UnitMeter (m), UnitCentimeter (cm), UnitFoot (ft)\n"
                "  filters        FilterHydrology (0x00000001)\n",
                "");
}

TEST(ToolShow, ControlCharactersAreEscapedInText) {
    EXPECT_TOOL(Xun({"--home", "escapes", "show", "ItemQuoted"}), 0,
                "item type ItemQuoted\n"
                "  key            100\n"
                "  ident          ItemQuoted\n"
                "  description    a \"quoted\" back\\slash\\x09tab\\x0Aline\n"
                "  decimals       1\n"
                "  default value  0.5\n"
                "  dimension      L\n"
                "  exponents      length 1, mass 0, time 0, temperature 0, current 0, substance 0, "
                "luminous 0\n"
                "  default unit   UnitMicrometer (\xB5"
                "m)\n"
                "  user unit      UnitMicrometer (\xB5"
                "m)\n"
                "  allowed units  UnitMicrometer (\xB5"
                "m)\n"
                "  filters\n",
                "");
}

TEST(ToolShow, UnknownName) {
    EXPECT_TOOL(Xun({"--home", "home", "show", "Nothing"}), 1, "",
                "xun: unknown name 'Nothing': no item type or filter, and no unit: at byte 1: no "
                "unit is named 'Nothing'\n");
    EXPECT_TOOL(Xun({"--home", "home", "show", "metr"}), 1, "",
                "xun: unknown name 'metr': no item type or filter, and no unit: at byte 1: no "
                "unit is named 'metr'; near names: 'meter', 'metre'\n");
}

TEST(ToolShow, MissingName) {
    EXPECT_TOOL(Xun({"--home", "home", "show"}), 2, "",
                "xun: missing argument\n"
                "Try 'xun show --help'.\n");
}

} // namespace
