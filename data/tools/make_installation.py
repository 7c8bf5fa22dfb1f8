#!/usr/bin/env python3
"""Writes the default installation of libxun from the tables in this file.

Output (paths relative to the data directory, which is this script's parent's
parent):

  bin/XUN.xml          setup file: units, item types, filters
  bin/xuntype.lan      English item-type texts
  bin/xununit.lan      English unit texts (description line, abbreviation line)
  bin/xunfilter.lan    English filter texts
  lang/en/*.lan        the English files again, to switch back after a copy
  lang/de/*.lan        the same three files in German

The output is deterministic: running the script again reproduces the committed
files byte for byte. `--verify` compares instead of writing and exits with 1
when a file differs. Only the Python 3 standard library is used.

Edit the tables below, rerun the script, then run check_installation.py.
"""

import argparse
import os
import sys
from collections import namedtuple

# One unit row. `aliases` are ";"-joined into the Alias attribute (ASCII only:
# they are what users type). `de_abbr` is None when the German abbreviation is
# the English one.
Unit = namedtuple("Unit", "key ident en abbr aliases expr de de_abbr")


def U(key, ident, en, abbr, aliases, expr, de, de_abbr=None):
    return Unit(key, ident, en, abbr, aliases, expr, de, de_abbr)


# Unit groups in file order. A unit expression may only use the eight base
# dimension names and units of earlier rows, so the groups are ordered by
# dependency; keys ascend with the file order in blocks of 100.
UNIT_GROUPS = [
    ("Dimensionless ratios", [
        U(1000, "UnitFraction", "fraction", "-", "ratio;dimensionless;unitless;1", "NonDimensional", "Anteil"),
        U(1001, "UnitPercent", "percent", "%", "per cent;pct;%", "UnitFraction/100", "Prozent"),
        U(1002, "UnitPerMille", "per mille", "‰", "permille;per mil;permil;promille", "UnitFraction/1000", "Promille"),
        U(1003, "UnitPartPerMillion", "part per million", "ppm", "parts per million;ppm", "UnitFraction*1e-6", "Teile pro Million"),
        U(1004, "UnitPartPerBillion", "part per billion", "ppb", "parts per billion;ppb", "UnitFraction*1e-9", "Teile pro Milliarde"),
        U(1005, "UnitOkta", "okta", "okta", "oktas;octa;octas", "UnitFraction/8", "Achtel"),
        U(1006, "UnitPracticalSalinityUnit", "practical salinity unit", "psu", "practical salinity units;PSU;psu", "UnitFraction/1000", "praktische Salinitätseinheit"),
    ]),
    ("Plane and solid angle (dimensionless)", [
        U(1100, "UnitRadian", "radian", "rad", "rad", "UnitFraction", "Radiant"),
        U(1101, "UnitMilliradian", "milliradian", "mrad", "mrad", "UnitRadian/1000", "Milliradiant"),
        U(1102, "UnitDegree", "degree", "°", "deg;arc degree;degree of arc;degrees of arc;degree_east;degrees_east;degree_E;degrees_E;degreeE;degreesE;degree_north;degrees_north;degree_N;degrees_N;degreeN;degreesN", "UnitRadian*pi/180", "Grad"),
        U(1103, "UnitArcminute", "arcminute", "′", "arcmin;minute of arc;minutes of arc", "UnitDegree/60", "Winkelminute"),
        U(1104, "UnitArcsecond", "arcsecond", "″", "arcsec;second of arc;seconds of arc", "UnitArcminute/60", "Winkelsekunde"),
        U(1105, "UnitGon", "gon", "gon", "grad;grade;gradian;gradians", "UnitRadian*pi/200", "Gon"),
        U(1106, "UnitRevolution", "revolution", "rev", "rev;turn;turns;full circle", "UnitRadian*2*pi", "Umdrehung", "U"),
        U(1107, "UnitSteradian", "steradian", "sr", "sr", "UnitRadian^2", "Steradiant"),
    ]),
    ("Length", [
        U(1200, "UnitMeter", "meter", "m", "metre;metres;m", "Length", "Meter"),
        U(1201, "UnitKilometer", "kilometer", "km", "kilometre;kilometres;km", "UnitMeter*1000", "Kilometer"),
        U(1202, "UnitDecimeter", "decimeter", "dm", "decimetre;decimetres;dm", "UnitMeter/10", "Dezimeter"),
        U(1203, "UnitCentimeter", "centimeter", "cm", "centimetre;centimetres;cm", "UnitMeter/100", "Zentimeter"),
        U(1204, "UnitMillimeter", "millimeter", "mm", "millimetre;millimetres;mm", "UnitMeter/1000", "Millimeter"),
        U(1205, "UnitMicrometer", "micrometer", "µm", "micrometre;micrometres;micron;microns;um", "UnitMeter*1e-6", "Mikrometer"),
        U(1206, "UnitNanometer", "nanometer", "nm", "nanometre;nanometres;nm", "UnitMeter*1e-9", "Nanometer"),
        U(1207, "UnitAngstrom", "angstrom", "Å", "angstroms;Angstrom", "UnitMeter*1e-10", "Ångström"),
        U(1208, "UnitFoot", "foot", "ft", "feet;international foot;ft", "UnitMeter*0.3048", "Fuß"),
        U(1209, "UnitInch", "inch", "in", "inches;in", "UnitMeter*0.0254", "Zoll"),
        U(1210, "UnitYard", "yard", "yd", "yd", "UnitFoot*3", "Yard"),
        U(1211, "UnitMile", "mile", "mi", "statute mile;statute miles;international mile;mi", "UnitFoot*5280", "internationale Meile"),
        U(1212, "UnitNauticalMile", "nautical mile", "nmi", "international nautical mile;sea mile;NM;nmi", "UnitMeter*1852", "Seemeile", "sm"),
        U(1213, "UnitUSSurveyFoot", "US survey foot", "ftUS", "US survey feet;survey foot;survey feet;ftUS", "UnitMeter*1200/3937", "US-Vermessungsfuß"),
        U(1214, "UnitFathom", "fathom", "ftm", "fathoms;ftm", "UnitFoot*6", "Faden"),
    ]),
    ("Area", [
        U(1300, "UnitSquareMeter", "square meter", "m²", "square metre;square metres;sq m;m2;m^2", "UnitMeter^2", "Quadratmeter"),
        U(1301, "UnitSquareKilometer", "square kilometer", "km²", "square kilometre;square kilometres;sq km;km2;km^2", "UnitKilometer^2", "Quadratkilometer"),
        U(1302, "UnitHectare", "hectare", "ha", "hectares;ha", "UnitSquareMeter*10000", "Hektar"),
        U(1303, "UnitSquareCentimeter", "square centimeter", "cm²", "square centimetre;square centimetres;cm2;cm^2", "UnitCentimeter^2", "Quadratzentimeter"),
        U(1304, "UnitSquareMillimeter", "square millimeter", "mm²", "square millimetre;square millimetres;mm2;mm^2", "UnitMillimeter^2", "Quadratmillimeter"),
        U(1305, "UnitSquareFoot", "square foot", "ft²", "square feet;sq ft;ft2;ft^2", "UnitFoot^2", "Quadratfuß"),
        U(1306, "UnitSquareInch", "square inch", "in²", "square inches;sq in;in2;in^2", "UnitInch^2", "Quadratzoll"),
        U(1307, "UnitSquareYard", "square yard", "yd²", "sq yd;yd2;yd^2", "UnitYard^2", "Quadratyard"),
        U(1308, "UnitSquareMile", "square mile", "mi²", "sq mi;mi2;mi^2", "UnitMile^2", "Quadratmeile"),
        U(1309, "UnitAcre", "acre", "ac", "international acre;ac", "UnitSquareFoot*43560", "Acre"),
        # 1 D = 1 cP × 1 cm/s / (1 atm/cm) = 1e-12/1.01325 m² exactly (9.869233e-13 m² is a rounding).
        U(1310, "UnitDarcy", "darcy", "D", "darcies;darcys", "UnitSquareMeter*1e-12/1.01325", "Darcy"),
        U(1311, "UnitMillidarcy", "millidarcy", "mD", "millidarcies;millidarcys;mD", "UnitDarcy/1000", "Millidarcy"),
    ]),
    ("Volume", [
        U(1400, "UnitCubicMeter", "cubic meter", "m³", "cubic metre;cubic metres;cu m;m3;m^3", "UnitMeter^3", "Kubikmeter"),
        U(1401, "UnitLiter", "liter", "l", "litre;litres;cubic decimeter;cubic decimetre;dm3;L;l", "UnitCubicMeter/1000", "Liter"),
        U(1402, "UnitMilliliter", "milliliter", "ml", "millilitre;millilitres;mL;ml", "UnitLiter/1000", "Milliliter"),
        U(1403, "UnitMicroliter", "microliter", "µl", "microlitre;microlitres;uL;ul", "UnitLiter*1e-6", "Mikroliter"),
        U(1404, "UnitHectoliter", "hectoliter", "hl", "hectolitre;hectolitres;hL;hl", "UnitLiter*100", "Hektoliter"),
        U(1405, "UnitMegaliter", "megaliter", "Ml", "megalitre;megalitres;ML;Ml", "UnitLiter*1000000", "Megaliter"),
        U(1406, "UnitCubicCentimeter", "cubic centimeter", "cm³", "cubic centimetre;cubic centimetres;cc;cm3;cm^3", "UnitCentimeter^3", "Kubikzentimeter"),
        U(1407, "UnitCubicMillimeter", "cubic millimeter", "mm³", "cubic millimetre;cubic millimetres;mm3;mm^3", "UnitMillimeter^3", "Kubikmillimeter"),
        U(1408, "UnitCubicKilometer", "cubic kilometer", "km³", "cubic kilometre;cubic kilometres;km3;km^3", "UnitKilometer^3", "Kubikkilometer"),
        U(1409, "UnitCubicHectometer", "cubic hectometer", "hm³", "cubic hectometre;cubic hectometres;million cubic meters;million cubic metres;hm3;Mm3", "UnitCubicMeter*1000000", "Kubikhektometer"),
        U(1410, "UnitCubicFoot", "cubic foot", "ft³", "cubic feet;cu ft;ft3;ft^3", "UnitFoot^3", "Kubikfuß"),
        U(1411, "UnitCubicInch", "cubic inch", "in³", "cubic inches;cu in;in3;in^3", "UnitInch^3", "Kubikzoll"),
        U(1412, "UnitCubicYard", "cubic yard", "yd³", "cu yd;yd3;yd^3", "UnitYard^3", "Kubikyard"),
        U(1413, "UnitUSGallon", "US gallon", "gal", "US gallons;US gal;gallon;gallons;gal", "UnitCubicInch*231", "US-Gallone"),
        U(1414, "UnitImperialGallon", "imperial gallon", "imp gal", "imperial gallons;UK gallon;UK gallons;imp gal", "UnitLiter*4.54609", "britische Gallone"),
        U(1415, "UnitOilBarrel", "oil barrel", "bbl", "barrel;barrels;bbl", "UnitUSGallon*42", "Barrel (Erdöl)"),
        U(1416, "UnitAcreFoot", "acre-foot", "ac·ft", "acre-feet;acre foot;acre feet;ac-ft;acft", "UnitAcre*UnitFoot", "Acre-Foot"),
        U(1417, "UnitAcreInch", "acre-inch", "ac·in", "acre-inches;acre inch;acre inches;ac-in", "UnitAcre*UnitInch", "Acre-Inch"),
        U(1418, "UnitMillionUSGallon", "million US gallon", "MG", "million US gallons;million gallons;MG", "UnitUSGallon*1000000", "Million US-Gallonen"),
        U(1419, "UnitMillionImperialGallon", "million imperial gallon", "MIG", "million imperial gallons;MIG", "UnitImperialGallon*1000000", "Million britische Gallonen"),
    ]),
    ("Mass", [
        U(1500, "UnitKilogram", "kilogram", "kg", "kilogramme;kilogrammes;kilo;kg", "Mass", "Kilogramm"),
        U(1501, "UnitGram", "gram", "g", "gramme;grammes;g", "UnitKilogram/1000", "Gramm"),
        U(1502, "UnitMilligram", "milligram", "mg", "milligramme;milligrammes;mg", "UnitGram/1000", "Milligramm"),
        U(1503, "UnitMicrogram", "microgram", "µg", "microgramme;microgrammes;mcg;ug", "UnitGram*1e-6", "Mikrogramm"),
        U(1504, "UnitNanogram", "nanogram", "ng", "nanogramme;nanogrammes;ng", "UnitGram*1e-9", "Nanogramm"),
        U(1505, "UnitTonne", "tonne", "t", "metric ton;metric tons;t", "UnitKilogram*1000", "Tonne"),
        U(1506, "UnitKilotonne", "kilotonne", "kt", "kt", "UnitTonne*1000", "Kilotonne"),
        U(1507, "UnitPound", "pound", "lb", "avoirdupois pound;lbm;lb", "UnitKilogram*0.45359237", "Avoirdupois-Pfund"),
        U(1508, "UnitOunce", "ounce", "oz", "avoirdupois ounce;oz", "UnitPound/16", "Avoirdupois-Unze"),
        U(1509, "UnitShortTon", "short ton", "sh tn", "US ton;US tons", "UnitPound*2000", "amerikanische Tonne (short ton)"),
        U(1510, "UnitLongTon", "long ton", "long tn", "UK ton;UK tons;imperial ton", "UnitPound*2240", "britische Tonne (long ton)"),
        U(1511, "UnitGrain", "grain", "gr", "gr", "UnitPound/7000", "Grain"),
    ]),
    ("Time", [
        U(1600, "UnitSecond", "second", "s", "sec;secs;s", "Time", "Sekunde"),
        U(1601, "UnitMillisecond", "millisecond", "ms", "msec;ms", "UnitSecond/1000", "Millisekunde"),
        U(1602, "UnitMicrosecond", "microsecond", "µs", "usec;us", "UnitSecond*1e-6", "Mikrosekunde"),
        U(1603, "UnitMinute", "minute", "min", "mins;min", "UnitSecond*60", "Minute"),
        U(1604, "UnitHour", "hour", "h", "hr;hrs;h", "UnitMinute*60", "Stunde"),
        U(1605, "UnitDay", "day", "d", "d", "UnitHour*24", "Tag"),
        U(1606, "UnitWeek", "week", "wk", "wk", "UnitDay*7", "Woche", "Wo"),
        U(1607, "UnitYear", "year", "a", "Julian year;Julian years;annum;yr;yrs", "UnitDay*365.25", "Jahr"),
        U(1608, "UnitMonth", "month", "mo", "mean month", "UnitYear/12", "Monat", "Mon"),
        U(1609, "UnitCommonYear", "common year", "a (365 d)", "common years;365-day year", "UnitDay*365", "Gemeinjahr"),
    ]),
    ("Frequency, rates and angular velocity", [
        U(1700, "UnitHertz", "hertz", "Hz", "cycles per second;Hz", "1/UnitSecond", "Hertz"),
        U(1701, "UnitMillihertz", "millihertz", "mHz", "mHz", "UnitHertz/1000", "Millihertz"),
        U(1702, "UnitKilohertz", "kilohertz", "kHz", "kHz", "UnitHertz*1000", "Kilohertz"),
        U(1703, "UnitMegahertz", "megahertz", "MHz", "MHz", "UnitHertz*1000000", "Megahertz"),
        U(1704, "UnitPerSecond", "per second", "1/s", "1/s;s-1;s^-1", "1/UnitSecond", "pro Sekunde"),
        U(1705, "UnitPerMinute", "per minute", "1/min", "1/min;min-1", "1/UnitMinute", "pro Minute"),
        U(1706, "UnitPerHour", "per hour", "1/h", "1/h;h-1", "1/UnitHour", "pro Stunde"),
        U(1707, "UnitPerDay", "per day", "1/d", "1/d;1/day;d-1", "1/UnitDay", "pro Tag"),
        U(1708, "UnitPerYear", "per year", "1/a", "1/a;1/yr;1/year", "1/UnitYear", "pro Jahr"),
        U(1709, "UnitRadianPerSecond", "radian per second", "rad/s", "radians per second;rad/s", "UnitRadian/UnitSecond", "Radiant pro Sekunde"),
        U(1710, "UnitDegreePerSecond", "degree per second", "°/s", "degrees per second;deg/s", "UnitDegree/UnitSecond", "Grad pro Sekunde"),
        U(1711, "UnitRevolutionPerMinute", "revolution per minute", "rpm", "revolutions per minute;r/min;rpm", "UnitRevolution/UnitMinute", "Umdrehung pro Minute", "U/min"),
        # The becquerel (decays per second) is a name of CF data (Bq, Bq m-3, Bq kg-1); it is a
        # frequency by dimension, like the hertz.
        U(1712, "UnitBecquerel", "becquerel", "Bq", "becquerels;Bq", "1/UnitSecond", "Becquerel"),
    ]),
    ("Temperature and temperature difference", [
        U(1800, "UnitKelvin", "kelvin", "K", "K", "Temperature", "Kelvin"),
        U(1801, "UnitDegreeCelsius", "degree Celsius", "°C", "degrees Celsius;Celsius;celsius;degC;deg C;degree_C;degrees_C;degree_Celsius;degrees_Celsius", "UnitKelvin+273.15", "Grad Celsius"),
        U(1802, "UnitDegreeFahrenheit", "degree Fahrenheit", "°F", "degrees Fahrenheit;Fahrenheit;fahrenheit;degF;deg F", "UnitKelvin*5/9+459.67*5/9", "Grad Fahrenheit"),
        U(1803, "UnitDegreeRankine", "degree Rankine", "°R", "degrees Rankine;Rankine;degR;deg R", "UnitKelvin*5/9", "Grad Rankine"),
        U(1804, "UnitDegreeCelsiusDifference", "degree Celsius difference", "Δ°C", "Celsius difference;delta degC;delta deg C", "UnitKelvin", "Grad Celsius (Differenz)"),
        U(1805, "UnitDegreeFahrenheitDifference", "degree Fahrenheit difference", "Δ°F", "Fahrenheit difference;delta degF;delta deg F", "UnitKelvin*5/9", "Grad Fahrenheit (Differenz)"),
        U(1806, "UnitMillikelvin", "millikelvin", "mK", "mK", "UnitKelvin/1000", "Millikelvin"),
    ]),
    ("Amount of substance", [
        U(1900, "UnitMole", "mole", "mol", "mol", "AmountOfSubstance", "Mol"),
        U(1901, "UnitMillimole", "millimole", "mmol", "mmol", "UnitMole/1000", "Millimol"),
        U(1902, "UnitMicromole", "micromole", "µmol", "umol", "UnitMole*1e-6", "Mikromol"),
        U(1903, "UnitNanomole", "nanomole", "nmol", "nmol", "UnitMole*1e-9", "Nanomol"),
        U(1904, "UnitKilomole", "kilomole", "kmol", "kmol", "UnitMole*1000", "Kilomol"),
    ]),
    ("Photometry", [
        U(2000, "UnitCandela", "candela", "cd", "cd", "LuminousIntensity", "Candela"),
        U(2001, "UnitLumen", "lumen", "lm", "lm", "UnitCandela*UnitSteradian", "Lumen"),
        U(2002, "UnitLux", "lux", "lx", "lx", "UnitLumen/UnitSquareMeter", "Lux"),
        U(2003, "UnitKilolux", "kilolux", "klx", "klx", "UnitLux*1000", "Kilolux"),
        U(2004, "UnitFootCandle", "foot-candle", "fc", "footcandle;footcandles;foot candle;fc", "UnitLumen/UnitSquareFoot", "Footcandle"),
        U(2005, "UnitCandelaPerSquareMeter", "candela per square meter", "cd/m²", "candela per square metre;candelas per square meter;nit;nits;cd/m2", "UnitCandela/UnitSquareMeter", "Candela pro Quadratmeter"),
    ]),
    ("Velocity", [
        U(2100, "UnitMeterPerSecond", "meter per second", "m/s", "metre per second;metres per second;meters per second;m/s", "UnitMeter/UnitSecond", "Meter pro Sekunde"),
        U(2101, "UnitCentimeterPerSecond", "centimeter per second", "cm/s", "centimetre per second;centimetres per second;centimeters per second;cm/s", "UnitCentimeter/UnitSecond", "Zentimeter pro Sekunde"),
        U(2102, "UnitMillimeterPerSecond", "millimeter per second", "mm/s", "millimetre per second;millimetres per second;millimeters per second;mm/s", "UnitMillimeter/UnitSecond", "Millimeter pro Sekunde"),
        U(2103, "UnitMeterPerMinute", "meter per minute", "m/min", "metre per minute;metres per minute;meters per minute;m/min", "UnitMeter/UnitMinute", "Meter pro Minute"),
        U(2104, "UnitMeterPerHour", "meter per hour", "m/h", "metre per hour;metres per hour;meters per hour;m/h", "UnitMeter/UnitHour", "Meter pro Stunde"),
        U(2105, "UnitMeterPerDay", "meter per day", "m/d", "metre per day;metres per day;meters per day;m/d;m/day", "UnitMeter/UnitDay", "Meter pro Tag"),
        U(2106, "UnitCentimeterPerDay", "centimeter per day", "cm/d", "centimetre per day;centimetres per day;centimeters per day;cm/d;cm/day", "UnitCentimeter/UnitDay", "Zentimeter pro Tag"),
        U(2107, "UnitKilometerPerHour", "kilometer per hour", "km/h", "kilometre per hour;kilometres per hour;kilometers per hour;kph;kmh;km/h", "UnitKilometer/UnitHour", "Kilometer pro Stunde"),
        U(2108, "UnitKilometerPerDay", "kilometer per day", "km/d", "kilometre per day;kilometres per day;kilometers per day;km/d", "UnitKilometer/UnitDay", "Kilometer pro Tag"),
        U(2109, "UnitFootPerSecond", "foot per second", "ft/s", "feet per second;fps;ft/s", "UnitFoot/UnitSecond", "Fuß pro Sekunde"),
        U(2110, "UnitFootPerMinute", "foot per minute", "ft/min", "feet per minute;fpm;ft/min", "UnitFoot/UnitMinute", "Fuß pro Minute"),
        U(2111, "UnitFootPerDay", "foot per day", "ft/d", "feet per day;ft/d;ft/day", "UnitFoot/UnitDay", "Fuß pro Tag"),
        U(2112, "UnitMilePerHour", "mile per hour", "mph", "miles per hour;mi/h;mph", "UnitMile/UnitHour", "Meile pro Stunde"),
        U(2113, "UnitKnot", "knot", "kn", "nautical mile per hour;nautical miles per hour;kn", "UnitNauticalMile/UnitHour", "Knoten"),
        U(2114, "UnitUSGallonPerDayPerSquareFoot", "US gallon per day per square foot", "gpd/ft²", "US gallons per day per square foot;gallons per day per square foot;gpd/ft2", "UnitUSGallon/UnitDay/UnitSquareFoot", "US-Gallone pro Tag und Quadratfuß"),
    ]),
    ("Precipitation depths and rates", [
        U(2200, "UnitLiterPerSquareMeter", "liter per square meter", "l/m²", "litre per square metre;litres per square metre;liters per square meter;l/m2", "UnitLiter/UnitSquareMeter", "Liter pro Quadratmeter"),
        U(2201, "UnitCubicMeterPerHectare", "cubic meter per hectare", "m³/ha", "cubic metre per hectare;cubic metres per hectare;cubic meters per hectare;m3/ha", "UnitCubicMeter/UnitHectare", "Kubikmeter pro Hektar"),
        U(2202, "UnitMillimeterPerMinute", "millimeter per minute", "mm/min", "millimetre per minute;millimetres per minute;millimeters per minute;mm/min", "UnitMillimeter/UnitMinute", "Millimeter pro Minute"),
        U(2203, "UnitMillimeterPerHour", "millimeter per hour", "mm/h", "millimetre per hour;millimetres per hour;millimeters per hour;mm/h;mm/hr", "UnitMillimeter/UnitHour", "Millimeter pro Stunde"),
        U(2204, "UnitMillimeterPerDay", "millimeter per day", "mm/d", "millimetre per day;millimetres per day;millimeters per day;mm/d;mm/day", "UnitMillimeter/UnitDay", "Millimeter pro Tag"),
        U(2205, "UnitMillimeterPerMonth", "millimeter per month", "mm/mo", "millimetre per month;millimetres per month;millimeters per month;mm/mo;mm/month", "UnitMillimeter/UnitMonth", "Millimeter pro Monat", "mm/Mon"),
        U(2206, "UnitMillimeterPerYear", "millimeter per year", "mm/a", "millimetre per year;millimetres per year;millimeters per year;mm/a;mm/yr", "UnitMillimeter/UnitYear", "Millimeter pro Jahr"),
        U(2207, "UnitMicrometerPerSecond", "micrometer per second", "µm/s", "micrometre per second;micrometres per second;micrometers per second;um/s", "UnitMicrometer/UnitSecond", "Mikrometer pro Sekunde"),
        U(2208, "UnitCentimeterPerHour", "centimeter per hour", "cm/h", "centimetre per hour;centimetres per hour;centimeters per hour;cm/h", "UnitCentimeter/UnitHour", "Zentimeter pro Stunde"),
        U(2209, "UnitInchPerHour", "inch per hour", "in/h", "inches per hour;iph;in/h;in/hr", "UnitInch/UnitHour", "Zoll pro Stunde"),
        U(2210, "UnitInchPerDay", "inch per day", "in/d", "inches per day;in/d;in/day", "UnitInch/UnitDay", "Zoll pro Tag"),
        U(2211, "UnitInchPerYear", "inch per year", "in/a", "inches per year;in/a;in/yr", "UnitInch/UnitYear", "Zoll pro Jahr"),
        U(2212, "UnitLiterPerSecondPerHectare", "liter per second per hectare", "l/(s·ha)", "litre per second per hectare;litres per second per hectare;liters per second per hectare;l/s/ha", "UnitLiter/UnitSecond/UnitHectare", "Liter pro Sekunde und Hektar"),
    ]),
    ("Acceleration", [
        U(2300, "UnitMeterPerSecondSquared", "meter per second squared", "m/s²", "metre per second squared;metres per second squared;meters per second squared;m/s2", "UnitMeter/(UnitSecond^2)", "Meter pro Quadratsekunde"),
        U(2301, "UnitCentimeterPerSecondSquared", "centimeter per second squared", "cm/s²", "centimetre per second squared;centimeters per second squared;galileo;Gal;cm/s2", "UnitCentimeter/(UnitSecond^2)", "Zentimeter pro Quadratsekunde"),
        U(2302, "UnitFootPerSecondSquared", "foot per second squared", "ft/s²", "feet per second squared;ft/s2", "UnitFoot/(UnitSecond^2)", "Fuß pro Quadratsekunde"),
        U(2303, "UnitStandardGravity", "standard gravity", "gn", "standard acceleration of gravity;standard acceleration due to gravity;g0;gn", "UnitMeterPerSecondSquared*9.80665", "Normfallbeschleunigung"),
    ]),
    ("Discharge (volume flow)", [
        U(2400, "UnitCubicMeterPerSecond", "cubic meter per second", "m³/s", "cubic metre per second;cubic metres per second;cubic meters per second;cumec;cumecs;cms;m3/s;m^3/s", "UnitCubicMeter/UnitSecond", "Kubikmeter pro Sekunde"),
        U(2401, "UnitCubicMeterPerMinute", "cubic meter per minute", "m³/min", "cubic metre per minute;cubic metres per minute;cubic meters per minute;m3/min", "UnitCubicMeter/UnitMinute", "Kubikmeter pro Minute"),
        U(2402, "UnitCubicMeterPerHour", "cubic meter per hour", "m³/h", "cubic metre per hour;cubic metres per hour;cubic meters per hour;m3/h", "UnitCubicMeter/UnitHour", "Kubikmeter pro Stunde"),
        U(2403, "UnitCubicMeterPerDay", "cubic meter per day", "m³/d", "cubic metre per day;cubic metres per day;cubic meters per day;m3/d;m3/day", "UnitCubicMeter/UnitDay", "Kubikmeter pro Tag"),
        U(2404, "UnitCubicMeterPerYear", "cubic meter per year", "m³/a", "cubic metre per year;cubic metres per year;cubic meters per year;m3/a;m3/yr", "UnitCubicMeter/UnitYear", "Kubikmeter pro Jahr"),
        U(2405, "UnitLiterPerSecond", "liter per second", "l/s", "litre per second;litres per second;liters per second;lps;l/s;L/s", "UnitLiter/UnitSecond", "Liter pro Sekunde"),
        U(2406, "UnitLiterPerMinute", "liter per minute", "l/min", "litre per minute;litres per minute;liters per minute;lpm;l/min;L/min", "UnitLiter/UnitMinute", "Liter pro Minute"),
        U(2407, "UnitLiterPerHour", "liter per hour", "l/h", "litre per hour;litres per hour;liters per hour;l/h;L/h", "UnitLiter/UnitHour", "Liter pro Stunde"),
        U(2408, "UnitLiterPerDay", "liter per day", "l/d", "litre per day;litres per day;liters per day;l/d;L/d;l/day", "UnitLiter/UnitDay", "Liter pro Tag"),
        U(2409, "UnitMegaliterPerDay", "megaliter per day", "Ml/d", "megalitre per day;megalitres per day;megaliters per day;ML/d;Ml/d", "UnitMegaliter/UnitDay", "Megaliter pro Tag"),
        U(2410, "UnitCubicHectometerPerYear", "cubic hectometer per year", "hm³/a", "cubic hectometre per year;million cubic meters per year;million cubic metres per year;hm3/a;hm3/yr", "UnitCubicHectometer/UnitYear", "Kubikhektometer pro Jahr"),
        U(2411, "UnitCubicKilometerPerYear", "cubic kilometer per year", "km³/a", "cubic kilometre per year;cubic kilometres per year;cubic kilometers per year;km3/a;km3/yr", "UnitCubicKilometer/UnitYear", "Kubikkilometer pro Jahr"),
        U(2412, "UnitCubicFootPerSecond", "cubic foot per second", "ft³/s", "cubic feet per second;cusec;cusecs;cfs;ft3/s", "UnitCubicFoot/UnitSecond", "Kubikfuß pro Sekunde"),
        U(2413, "UnitCubicFootPerMinute", "cubic foot per minute", "ft³/min", "cubic feet per minute;cfm;ft3/min", "UnitCubicFoot/UnitMinute", "Kubikfuß pro Minute"),
        U(2414, "UnitThousandCubicFootPerSecond", "thousand cubic foot per second", "kcfs", "thousand cubic feet per second;kcfs", "UnitCubicFootPerSecond*1000", "tausend Kubikfuß pro Sekunde"),
        U(2415, "UnitUSGallonPerMinute", "US gallon per minute", "gpm", "US gallons per minute;gallons per minute;gal/min;gpm", "UnitUSGallon/UnitMinute", "US-Gallone pro Minute"),
        U(2416, "UnitUSGallonPerDay", "US gallon per day", "gpd", "US gallons per day;gallons per day;gal/d;gpd", "UnitUSGallon/UnitDay", "US-Gallone pro Tag"),
        U(2417, "UnitMillionUSGallonPerDay", "million US gallon per day", "MGD", "million US gallons per day;million gallons per day;MGD;mgd", "UnitMillionUSGallon/UnitDay", "Million US-Gallonen pro Tag"),
        U(2418, "UnitMillionImperialGallonPerDay", "million imperial gallon per day", "MIGD", "million imperial gallons per day;imperial MGD;MIGD;migd", "UnitMillionImperialGallon/UnitDay", "Million britische Gallonen pro Tag"),
        U(2419, "UnitImperialGallonPerMinute", "imperial gallon per minute", "imp gal/min", "imperial gallons per minute;igpm", "UnitImperialGallon/UnitMinute", "britische Gallone pro Minute"),
        U(2420, "UnitAcreFootPerDay", "acre-foot per day", "ac·ft/d", "acre-feet per day;acre foot per day;acre feet per day;ac-ft/d", "UnitAcreFoot/UnitDay", "Acre-Foot pro Tag"),
        U(2421, "UnitAcreFootPerYear", "acre-foot per year", "ac·ft/a", "acre-feet per year;acre foot per year;acre feet per year;ac-ft/yr;afy", "UnitAcreFoot/UnitYear", "Acre-Foot pro Jahr"),
    ]),
    ("Discharge per catchment area", [
        U(2500, "UnitLiterPerSecondPerSquareKilometer", "liter per second per square kilometer", "l/(s·km²)", "litre per second per square kilometre;litres per second per square kilometre;liters per second per square kilometer;l/s/km2", "UnitLiter/UnitSecond/UnitSquareKilometer", "Liter pro Sekunde und Quadratkilometer"),
        U(2501, "UnitCubicMeterPerSecondPerSquareKilometer", "cubic meter per second per square kilometer", "m³/(s·km²)", "cubic metre per second per square kilometre;cubic meters per second per square kilometer;m3/s/km2", "UnitCubicMeterPerSecond/UnitSquareKilometer", "Kubikmeter pro Sekunde und Quadratkilometer"),
        U(2502, "UnitCubicFootPerSecondPerSquareMile", "cubic foot per second per square mile", "ft³/(s·mi²)", "cubic feet per second per square mile;csm;cfs/mi2", "UnitCubicFootPerSecond/UnitSquareMile", "Kubikfuß pro Sekunde und Quadratmeile"),
    ]),
    ("Area per time: diffusivity, transmissivity, discharge per width", [
        U(2600, "UnitSquareMeterPerSecond", "square meter per second", "m²/s", "square metre per second;square metres per second;square meters per second;m2/s", "UnitSquareMeter/UnitSecond", "Quadratmeter pro Sekunde"),
        U(2601, "UnitSquareMeterPerHour", "square meter per hour", "m²/h", "square metre per hour;square metres per hour;square meters per hour;m2/h", "UnitSquareMeter/UnitHour", "Quadratmeter pro Stunde"),
        U(2602, "UnitSquareMeterPerDay", "square meter per day", "m²/d", "square metre per day;square metres per day;square meters per day;m2/d;m2/day", "UnitSquareMeter/UnitDay", "Quadratmeter pro Tag"),
        U(2603, "UnitSquareCentimeterPerSecond", "square centimeter per second", "cm²/s", "square centimetre per second;square centimeters per second;cm2/s", "UnitSquareCentimeter/UnitSecond", "Quadratzentimeter pro Sekunde"),
        U(2604, "UnitSquareMillimeterPerSecond", "square millimeter per second", "mm²/s", "square millimetre per second;square millimeters per second;mm2/s", "UnitSquareMillimeter/UnitSecond", "Quadratmillimeter pro Sekunde"),
        U(2605, "UnitStokes", "stokes", "St", "St", "UnitSquareCentimeter/UnitSecond", "Stokes"),
        U(2606, "UnitCentistokes", "centistokes", "cSt", "cSt", "UnitStokes/100", "Zentistokes"),
        U(2607, "UnitSquareFootPerSecond", "square foot per second", "ft²/s", "square feet per second;ft2/s", "UnitSquareFoot/UnitSecond", "Quadratfuß pro Sekunde"),
        U(2608, "UnitSquareFootPerDay", "square foot per day", "ft²/d", "square feet per day;ft2/d;ft2/day", "UnitSquareFoot/UnitDay", "Quadratfuß pro Tag"),
        U(2609, "UnitUSGallonPerDayPerFoot", "US gallon per day per foot", "gpd/ft", "US gallons per day per foot;gallons per day per foot;gpd/ft", "UnitUSGallonPerDay/UnitFoot", "US-Gallone pro Tag und Fuß"),
        U(2610, "UnitCubicMeterPerSecondPerMeter", "cubic meter per second per meter", "m³/(s·m)", "cubic metre per second per metre;cubic meters per second per meter;m3/s/m", "UnitCubicMeterPerSecond/UnitMeter", "Kubikmeter pro Sekunde und Meter"),
        U(2611, "UnitLiterPerSecondPerMeter", "liter per second per meter", "l/(s·m)", "litre per second per metre;litres per second per metre;liters per second per meter;l/s/m", "UnitLiterPerSecond/UnitMeter", "Liter pro Sekunde und Meter"),
        U(2612, "UnitCubicFootPerSecondPerFoot", "cubic foot per second per foot", "ft³/(s·ft)", "cubic feet per second per foot;cfs/ft;ft3/s/ft", "UnitCubicFootPerSecond/UnitFoot", "Kubikfuß pro Sekunde und Fuß"),
    ]),
    ("Density and mass concentration", [
        U(2700, "UnitKilogramPerCubicMeter", "kilogram per cubic meter", "kg/m³", "kilogram per cubic metre;kilograms per cubic metre;kilograms per cubic meter;kg/m3", "UnitKilogram/UnitCubicMeter", "Kilogramm pro Kubikmeter"),
        U(2701, "UnitGramPerCubicMeter", "gram per cubic meter", "g/m³", "gram per cubic metre;grams per cubic metre;grams per cubic meter;g/m3", "UnitGram/UnitCubicMeter", "Gramm pro Kubikmeter"),
        U(2702, "UnitMilligramPerCubicMeter", "milligram per cubic meter", "mg/m³", "milligram per cubic metre;milligrams per cubic metre;milligrams per cubic meter;mg/m3", "UnitMilligram/UnitCubicMeter", "Milligramm pro Kubikmeter"),
        U(2703, "UnitMicrogramPerCubicMeter", "microgram per cubic meter", "µg/m³", "microgram per cubic metre;micrograms per cubic metre;micrograms per cubic meter;ug/m3", "UnitMicrogram/UnitCubicMeter", "Mikrogramm pro Kubikmeter"),
        U(2704, "UnitGramPerLiter", "gram per liter", "g/l", "gram per litre;grams per litre;grams per liter;g/l;g/L", "UnitGram/UnitLiter", "Gramm pro Liter"),
        U(2705, "UnitMilligramPerLiter", "milligram per liter", "mg/l", "milligram per litre;milligrams per litre;milligrams per liter;mg/l;mg/L", "UnitMilligram/UnitLiter", "Milligramm pro Liter"),
        U(2706, "UnitMicrogramPerLiter", "microgram per liter", "µg/l", "microgram per litre;micrograms per litre;micrograms per liter;ug/l;ug/L", "UnitMicrogram/UnitLiter", "Mikrogramm pro Liter"),
        U(2707, "UnitNanogramPerLiter", "nanogram per liter", "ng/l", "nanogram per litre;nanograms per litre;nanograms per liter;ng/l;ng/L", "UnitNanogram/UnitLiter", "Nanogramm pro Liter"),
        U(2708, "UnitKilogramPerLiter", "kilogram per liter", "kg/l", "kilogram per litre;kilograms per litre;kilograms per liter;kg/l;kg/L", "UnitKilogram/UnitLiter", "Kilogramm pro Liter"),
        U(2709, "UnitGramPerCubicCentimeter", "gram per cubic centimeter", "g/cm³", "gram per cubic centimetre;grams per cubic centimetre;grams per cubic centimeter;g/cm3;g/cc", "UnitGram/UnitCubicCentimeter", "Gramm pro Kubikzentimeter"),
        U(2710, "UnitTonnePerCubicMeter", "tonne per cubic meter", "t/m³", "tonne per cubic metre;tonnes per cubic metre;tonnes per cubic meter;t/m3", "UnitTonne/UnitCubicMeter", "Tonne pro Kubikmeter"),
        U(2711, "UnitPoundPerCubicFoot", "pound per cubic foot", "lb/ft³", "pounds per cubic foot;pcf;lb/ft3", "UnitPound/UnitCubicFoot", "Pfund pro Kubikfuß"),
        U(2712, "UnitPoundPerUSGallon", "pound per US gallon", "lb/gal", "pounds per US gallon;pounds per gallon;ppg;lb/gal", "UnitPound/UnitUSGallon", "Pfund pro US-Gallone"),
    ]),
    ("Mass fraction (dimensionless)", [
        U(2800, "UnitMilligramPerKilogram", "milligram per kilogram", "mg/kg", "milligrams per kilogram;mg/kg", "UnitMilligram/UnitKilogram", "Milligramm pro Kilogramm"),
        U(2801, "UnitMicrogramPerKilogram", "microgram per kilogram", "µg/kg", "micrograms per kilogram;ug/kg", "UnitMicrogram/UnitKilogram", "Mikrogramm pro Kilogramm"),
        U(2802, "UnitNanogramPerKilogram", "nanogram per kilogram", "ng/kg", "nanograms per kilogram;ng/kg", "UnitNanogram/UnitKilogram", "Nanogramm pro Kilogramm"),
        U(2803, "UnitGramPerKilogram", "gram per kilogram", "g/kg", "grams per kilogram;g/kg", "UnitGram/UnitKilogram", "Gramm pro Kilogramm"),
        U(2804, "UnitKilogramPerKilogram", "kilogram per kilogram", "kg/kg", "kilograms per kilogram;kg/kg", "UnitKilogram/UnitKilogram", "Kilogramm pro Kilogramm"),
    ]),
    ("Volume fraction and gradients (dimensionless)", [
        U(2900, "UnitCubicMeterPerCubicMeter", "cubic meter per cubic meter", "m³/m³", "cubic metre per cubic metre;cubic meters per cubic meter;m3/m3", "UnitCubicMeter/UnitCubicMeter", "Kubikmeter pro Kubikmeter"),
        U(2901, "UnitMilliliterPerLiter", "milliliter per liter", "ml/l", "millilitre per litre;millilitres per litre;milliliters per liter;ml/l;mL/L", "UnitMilliliter/UnitLiter", "Milliliter pro Liter"),
        U(2902, "UnitSquareMeterPerSquareMeter", "square meter per square meter", "m²/m²", "square metre per square metre;square meters per square meter;m2/m2", "UnitSquareMeter/UnitSquareMeter", "Quadratmeter pro Quadratmeter"),
        U(2903, "UnitMeterPerMeter", "meter per meter", "m/m", "metre per metre;metres per metre;meters per meter;m/m", "UnitMeter/UnitMeter", "Meter pro Meter"),
        U(2904, "UnitMeterPerKilometer", "meter per kilometer", "m/km", "metre per kilometre;metres per kilometre;meters per kilometer;m/km", "UnitMeter/UnitKilometer", "Meter pro Kilometer"),
        U(2905, "UnitCentimeterPerKilometer", "centimeter per kilometer", "cm/km", "centimetre per kilometre;centimetres per kilometre;centimeters per kilometer;cm/km", "UnitCentimeter/UnitKilometer", "Zentimeter pro Kilometer"),
        U(2906, "UnitFootPerFoot", "foot per foot", "ft/ft", "feet per foot;ft/ft", "UnitFoot/UnitFoot", "Fuß pro Fuß"),
        U(2907, "UnitFootPerMile", "foot per mile", "ft/mi", "feet per mile;ft/mi", "UnitFoot/UnitMile", "Fuß pro Meile"),
    ]),
    ("Molar concentration and molality", [
        U(3000, "UnitMolePerCubicMeter", "mole per cubic meter", "mol/m³", "mole per cubic metre;moles per cubic metre;moles per cubic meter;mol/m3", "UnitMole/UnitCubicMeter", "Mol pro Kubikmeter"),
        U(3001, "UnitMolePerLiter", "mole per liter", "mol/l", "mole per litre;moles per litre;moles per liter;molar;mol/l;mol/L", "UnitMole/UnitLiter", "Mol pro Liter"),
        U(3002, "UnitMillimolePerLiter", "millimole per liter", "mmol/l", "millimole per litre;millimoles per litre;millimoles per liter;millimolar;mmol/l;mmol/L", "UnitMillimole/UnitLiter", "Millimol pro Liter"),
        U(3003, "UnitMicromolePerLiter", "micromole per liter", "µmol/l", "micromole per litre;micromoles per litre;micromoles per liter;micromolar;umol/l;umol/L", "UnitMicromole/UnitLiter", "Mikromol pro Liter"),
        U(3004, "UnitNanomolePerLiter", "nanomole per liter", "nmol/l", "nanomole per litre;nanomoles per litre;nanomoles per liter;nanomolar;nmol/l;nmol/L", "UnitNanomole/UnitLiter", "Nanomol pro Liter"),
        U(3005, "UnitMillimolePerCubicMeter", "millimole per cubic meter", "mmol/m³", "millimole per cubic metre;millimoles per cubic meter;mmol/m3", "UnitMillimole/UnitCubicMeter", "Millimol pro Kubikmeter"),
        U(3006, "UnitMolePerKilogram", "mole per kilogram", "mol/kg", "moles per kilogram;molal;mol/kg", "UnitMole/UnitKilogram", "Mol pro Kilogramm"),
        U(3007, "UnitMillimolePerKilogram", "millimole per kilogram", "mmol/kg", "millimoles per kilogram;mmol/kg", "UnitMillimole/UnitKilogram", "Millimol pro Kilogramm"),
        U(3008, "UnitMicromolePerKilogram", "micromole per kilogram", "µmol/kg", "micromoles per kilogram;umol/kg", "UnitMicromole/UnitKilogram", "Mikromol pro Kilogramm"),
    ]),
    ("Number concentration", [
        U(3100, "UnitPerCubicMeter", "per cubic meter", "1/m³", "per cubic metre;1/m3", "1/UnitCubicMeter", "pro Kubikmeter"),
        U(3101, "UnitPerLiter", "per liter", "1/l", "per litre;1/l;1/L", "1/UnitLiter", "pro Liter"),
        U(3102, "UnitPerMilliliter", "per milliliter", "1/ml", "per millilitre;1/ml;1/mL", "1/UnitMilliliter", "pro Milliliter"),
        U(3103, "UnitPerHundredMilliliter", "per 100 milliliter", "1/(100 ml)", "per 100 millilitre;per 100 millilitres;per 100 milliliters;per 100 ml;1/100ml;MPN/100 ml;CFU/100 ml", "1/(UnitMilliliter*100)", "pro 100 Milliliter"),
    ]),
    ("Mass flow and load", [
        U(3200, "UnitKilogramPerSecond", "kilogram per second", "kg/s", "kilograms per second;kg/s", "UnitKilogram/UnitSecond", "Kilogramm pro Sekunde"),
        U(3201, "UnitGramPerSecond", "gram per second", "g/s", "grams per second;g/s", "UnitGram/UnitSecond", "Gramm pro Sekunde"),
        U(3202, "UnitMilligramPerSecond", "milligram per second", "mg/s", "milligrams per second;mg/s", "UnitMilligram/UnitSecond", "Milligramm pro Sekunde"),
        U(3203, "UnitKilogramPerHour", "kilogram per hour", "kg/h", "kilograms per hour;kg/h", "UnitKilogram/UnitHour", "Kilogramm pro Stunde"),
        U(3204, "UnitKilogramPerDay", "kilogram per day", "kg/d", "kilograms per day;kg/d;kg/day", "UnitKilogram/UnitDay", "Kilogramm pro Tag"),
        U(3205, "UnitGramPerDay", "gram per day", "g/d", "grams per day;g/d;g/day", "UnitGram/UnitDay", "Gramm pro Tag"),
        U(3206, "UnitKilogramPerYear", "kilogram per year", "kg/a", "kilograms per year;kg/a;kg/yr", "UnitKilogram/UnitYear", "Kilogramm pro Jahr"),
        U(3207, "UnitTonnePerHour", "tonne per hour", "t/h", "tonnes per hour;t/h", "UnitTonne/UnitHour", "Tonne pro Stunde"),
        U(3208, "UnitTonnePerDay", "tonne per day", "t/d", "tonnes per day;t/d;t/day", "UnitTonne/UnitDay", "Tonne pro Tag"),
        U(3209, "UnitTonnePerYear", "tonne per year", "t/a", "tonnes per year;t/a;t/yr", "UnitTonne/UnitYear", "Tonne pro Jahr"),
        U(3210, "UnitPoundPerSecond", "pound per second", "lb/s", "pounds per second;lb/s", "UnitPound/UnitSecond", "Pfund pro Sekunde"),
        U(3211, "UnitPoundPerDay", "pound per day", "lb/d", "pounds per day;ppd;lb/d;lb/day", "UnitPound/UnitDay", "Pfund pro Tag"),
        U(3212, "UnitShortTonPerDay", "short ton per day", "sh tn/d", "short tons per day;US tons per day", "UnitShortTon/UnitDay", "amerikanische Tonne pro Tag"),
        U(3213, "UnitKilogramPerSecondPerMeter", "kilogram per second per meter", "kg/(s·m)", "kilogram per second per metre;kilograms per second per meter;kg/s/m", "UnitKilogramPerSecond/UnitMeter", "Kilogramm pro Sekunde und Meter"),
        U(3214, "UnitPoundPerSecondPerFoot", "pound per second per foot", "lb/(s·ft)", "pounds per second per foot;lb/s/ft", "UnitPoundPerSecond/UnitFoot", "Pfund pro Sekunde und Fuß"),
    ]),
    ("Mass flux per area", [
        U(3300, "UnitKilogramPerSquareMeterPerSecond", "kilogram per square meter per second", "kg/(m²·s)", "kilogram per square metre per second;kilograms per square meter per second;kg/m2/s", "UnitKilogram/UnitSquareMeter/UnitSecond", "Kilogramm pro Quadratmeter und Sekunde"),
        U(3301, "UnitGramPerSquareMeterPerSecond", "gram per square meter per second", "g/(m²·s)", "gram per square metre per second;grams per square meter per second;g/m2/s", "UnitGram/UnitSquareMeter/UnitSecond", "Gramm pro Quadratmeter und Sekunde"),
        U(3302, "UnitGramPerSquareMeterPerDay", "gram per square meter per day", "g/(m²·d)", "gram per square metre per day;grams per square meter per day;g/m2/d;g/m2/day", "UnitGram/UnitSquareMeter/UnitDay", "Gramm pro Quadratmeter und Tag"),
        U(3303, "UnitMilligramPerSquareMeterPerDay", "milligram per square meter per day", "mg/(m²·d)", "milligram per square metre per day;milligrams per square meter per day;mg/m2/d", "UnitMilligram/UnitSquareMeter/UnitDay", "Milligramm pro Quadratmeter und Tag"),
        U(3304, "UnitKilogramPerHectarePerYear", "kilogram per hectare per year", "kg/(ha·a)", "kilograms per hectare per year;kg/ha/a;kg/ha/yr", "UnitKilogram/UnitHectare/UnitYear", "Kilogramm pro Hektar und Jahr"),
        U(3305, "UnitTonnePerHectarePerYear", "tonne per hectare per year", "t/(ha·a)", "tonnes per hectare per year;t/ha/a;t/ha/yr", "UnitTonne/UnitHectare/UnitYear", "Tonne pro Hektar und Jahr"),
        U(3306, "UnitTonnePerSquareKilometerPerYear", "tonne per square kilometer per year", "t/(km²·a)", "tonne per square kilometre per year;tonnes per square kilometer per year;t/km2/a;t/km2/yr", "UnitTonne/UnitSquareKilometer/UnitYear", "Tonne pro Quadratkilometer und Jahr"),
        U(3307, "UnitMicromolePerSquareMeterPerSecond", "micromole per square meter per second", "µmol/(m²·s)", "micromole per square metre per second;micromoles per square meter per second;umol/m2/s", "UnitMicromole/UnitSquareMeter/UnitSecond", "Mikromol pro Quadratmeter und Sekunde"),
        U(3308, "UnitMolePerSquareMeterPerDay", "mole per square meter per day", "mol/(m²·d)", "mole per square metre per day;moles per square meter per day;mol/m2/d", "UnitMole/UnitSquareMeter/UnitDay", "Mol pro Quadratmeter und Tag"),
    ]),
    ("Mass per area", [
        U(3400, "UnitKilogramPerSquareMeter", "kilogram per square meter", "kg/m²", "kilogram per square metre;kilograms per square meter;kg/m2", "UnitKilogram/UnitSquareMeter", "Kilogramm pro Quadratmeter"),
        U(3401, "UnitGramPerSquareMeter", "gram per square meter", "g/m²", "gram per square metre;grams per square meter;gsm;g/m2", "UnitGram/UnitSquareMeter", "Gramm pro Quadratmeter"),
        U(3402, "UnitMilligramPerSquareMeter", "milligram per square meter", "mg/m²", "milligram per square metre;milligrams per square meter;mg/m2", "UnitMilligram/UnitSquareMeter", "Milligramm pro Quadratmeter"),
        U(3403, "UnitKilogramPerHectare", "kilogram per hectare", "kg/ha", "kilograms per hectare;kg/ha", "UnitKilogram/UnitHectare", "Kilogramm pro Hektar"),
        U(3404, "UnitTonnePerHectare", "tonne per hectare", "t/ha", "tonnes per hectare;t/ha", "UnitTonne/UnitHectare", "Tonne pro Hektar"),
        U(3405, "UnitTonnePerSquareKilometer", "tonne per square kilometer", "t/km²", "tonne per square kilometre;tonnes per square kilometer;t/km2", "UnitTonne/UnitSquareKilometer", "Tonne pro Quadratkilometer"),
        U(3406, "UnitPoundPerAcre", "pound per acre", "lb/ac", "pounds per acre;lb/ac;lb/acre", "UnitPound/UnitAcre", "Pfund pro Acre"),
    ]),
    ("Force and force per length", [
        U(3500, "UnitNewton", "newton", "N", "N", "UnitKilogram*UnitMeter/(UnitSecond^2)", "Newton"),
        U(3501, "UnitMillinewton", "millinewton", "mN", "mN", "UnitNewton/1000", "Millinewton"),
        U(3502, "UnitKilonewton", "kilonewton", "kN", "kN", "UnitNewton*1000", "Kilonewton"),
        U(3503, "UnitMeganewton", "meganewton", "MN", "MN", "UnitNewton*1000000", "Meganewton"),
        U(3504, "UnitDyne", "dyne", "dyn", "dyn", "UnitGram*UnitCentimeter/(UnitSecond^2)", "Dyn"),
        U(3505, "UnitKilogramForce", "kilogram-force", "kgf", "kilogram force;kilopond;kp;kgf", "UnitKilogram*UnitStandardGravity", "Kilopond", "kp"),
        U(3506, "UnitTonneForce", "tonne-force", "tf", "tonne force;metric ton-force;megapond;tf", "UnitTonne*UnitStandardGravity", "Megapond", "Mp"),
        U(3507, "UnitPoundForce", "pound-force", "lbf", "pound force;pounds force;lbf", "UnitPound*UnitStandardGravity", "Pound-force"),
        U(3508, "UnitKip", "kip", "kip", "kips;kilopound-force", "UnitPoundForce*1000", "Kip"),
        U(3509, "UnitNewtonPerMeter", "newton per meter", "N/m", "newton per metre;newtons per metre;newtons per meter;N/m", "UnitNewton/UnitMeter", "Newton pro Meter"),
        U(3510, "UnitMillinewtonPerMeter", "millinewton per meter", "mN/m", "millinewton per metre;millinewtons per meter;mN/m", "UnitMillinewton/UnitMeter", "Millinewton pro Meter"),
        U(3511, "UnitKilonewtonPerMeter", "kilonewton per meter", "kN/m", "kilonewton per metre;kilonewtons per meter;kN/m", "UnitKilonewton/UnitMeter", "Kilonewton pro Meter"),
        U(3512, "UnitPoundForcePerFoot", "pound-force per foot", "lbf/ft", "pounds force per foot;lbf/ft", "UnitPoundForce/UnitFoot", "Pound-force pro Fuß"),
    ]),
    ("Pressure and stress", [
        U(3600, "UnitPascal", "pascal", "Pa", "newton per square meter;newton per square metre;N/m2;Pa", "UnitNewton/UnitSquareMeter", "Pascal"),
        U(3601, "UnitHectopascal", "hectopascal", "hPa", "hPa", "UnitPascal*100", "Hektopascal"),
        U(3602, "UnitKilopascal", "kilopascal", "kPa", "kPa", "UnitPascal*1000", "Kilopascal"),
        U(3603, "UnitMegapascal", "megapascal", "MPa", "MPa", "UnitPascal*1000000", "Megapascal"),
        U(3604, "UnitGigapascal", "gigapascal", "GPa", "GPa", "UnitPascal*1e9", "Gigapascal"),
        U(3605, "UnitBar", "bar", "bar", "bar", "UnitPascal*100000", "Bar"),
        U(3606, "UnitMillibar", "millibar", "mbar", "mbar;mb", "UnitBar/1000", "Millibar"),
        U(3607, "UnitDecibar", "decibar", "dbar", "dbar", "UnitBar/10", "Dezibar"),
        U(3608, "UnitStandardAtmosphere", "standard atmosphere", "atm", "atmosphere;atmospheres;atm", "UnitPascal*101325", "physikalische Atmosphäre"),
        U(3609, "UnitTechnicalAtmosphere", "technical atmosphere", "at", "technical atmospheres;kilogram-force per square centimeter;kgf/cm2;at", "UnitKilogramForce/UnitSquareCentimeter", "technische Atmosphäre"),
        U(3610, "UnitPoundForcePerSquareInch", "pound-force per square inch", "psi", "pounds per square inch;pound per square inch;lbf/in2;psi", "UnitPoundForce/UnitSquareInch", "Pound-force pro Quadratzoll"),
        U(3611, "UnitKipPerSquareInch", "kip per square inch", "ksi", "kips per square inch;ksi", "UnitKip/UnitSquareInch", "Kip pro Quadratzoll"),
        U(3612, "UnitPoundForcePerSquareFoot", "pound-force per square foot", "psf", "pounds per square foot;pound per square foot;lbf/ft2;psf", "UnitPoundForce/UnitSquareFoot", "Pound-force pro Quadratfuß"),
        U(3613, "UnitTorr", "torr", "Torr", "Torr", "UnitStandardAtmosphere/760", "Torr"),
        U(3614, "UnitMillimeterOfMercury", "millimeter of mercury", "mmHg", "millimetre of mercury;millimetres of mercury;millimeters of mercury;mmHg", "UnitPascal*133.322387415", "Millimeter Quecksilbersäule"),
        U(3615, "UnitInchOfMercury", "inch of mercury", "inHg", "inches of mercury;inHg", "UnitMillimeterOfMercury*25.4", "Zoll Quecksilbersäule"),
        U(3616, "UnitMeterOfWater", "meter of water", "mH₂O", "metre of water;metres of water;meters of water;meter of water column;mH2O;m H2O", "UnitPascal*9806.65", "Meter Wassersäule", "mWS"),
        U(3617, "UnitCentimeterOfWater", "centimeter of water", "cmH₂O", "centimetre of water;centimetres of water;centimeters of water;cmH2O;cm H2O", "UnitMeterOfWater/100", "Zentimeter Wassersäule", "cmWS"),
        U(3618, "UnitMillimeterOfWater", "millimeter of water", "mmH₂O", "millimetre of water;millimetres of water;millimeters of water;mmH2O;mm H2O", "UnitMeterOfWater/1000", "Millimeter Wassersäule", "mmWS"),
        U(3619, "UnitFootOfWater", "foot of water", "ftH₂O", "feet of water;ftH2O;ft H2O", "UnitMeterOfWater*0.3048", "Fuß Wassersäule"),
        U(3620, "UnitInchOfWater", "inch of water", "inH₂O", "inches of water;inH2O;in H2O", "UnitMeterOfWater*0.0254", "Zoll Wassersäule"),
        U(3621, "UnitNewtonPerSquareMillimeter", "newton per square millimeter", "N/mm²", "newton per square millimetre;newtons per square millimeter;N/mm2", "UnitNewton/UnitSquareMillimeter", "Newton pro Quadratmillimeter"),
        U(3622, "UnitDynePerSquareCentimeter", "dyne per square centimeter", "dyn/cm²", "dyne per square centimetre;dynes per square centimeter;dyn/cm2", "UnitDyne/UnitSquareCentimeter", "Dyn pro Quadratzentimeter"),
    ]),
    ("Energy and torque", [
        U(3700, "UnitJoule", "joule", "J", "J", "UnitNewton*UnitMeter", "Joule"),
        U(3701, "UnitKilojoule", "kilojoule", "kJ", "kJ", "UnitJoule*1000", "Kilojoule"),
        U(3702, "UnitMegajoule", "megajoule", "MJ", "MJ", "UnitJoule*1000000", "Megajoule"),
        U(3703, "UnitGigajoule", "gigajoule", "GJ", "GJ", "UnitJoule*1e9", "Gigajoule"),
        U(3704, "UnitWattHour", "watt hour", "Wh", "watt-hour;watt-hours;Wh", "UnitJoule*3600", "Wattstunde"),
        U(3705, "UnitKilowattHour", "kilowatt hour", "kWh", "kilowatt-hour;kilowatt-hours;kWh", "UnitWattHour*1000", "Kilowattstunde"),
        U(3706, "UnitMegawattHour", "megawatt hour", "MWh", "megawatt-hour;megawatt-hours;MWh", "UnitWattHour*1000000", "Megawattstunde"),
        U(3707, "UnitGigawattHour", "gigawatt hour", "GWh", "gigawatt-hour;gigawatt-hours;GWh", "UnitWattHour*1e9", "Gigawattstunde"),
        U(3708, "UnitCalorie", "calorie", "cal", "thermochemical calorie;cal", "UnitJoule*4.184", "Kalorie"),
        U(3709, "UnitKilocalorie", "kilocalorie", "kcal", "kcal", "UnitCalorie*1000", "Kilokalorie"),
        U(3710, "UnitBritishThermalUnit", "British thermal unit", "BTU", "British thermal units;Btu;BTU", "UnitJoule*1055.05585262", "British Thermal Unit"),
        U(3711, "UnitErg", "erg", "erg", "erg", "UnitDyne*UnitCentimeter", "Erg"),
        U(3712, "UnitElectronvolt", "electronvolt", "eV", "electron volt;electron volts;eV", "UnitJoule*1.602176634e-19", "Elektronenvolt"),
        U(3713, "UnitFootPoundForce", "foot pound-force", "ft·lbf", "foot-pound;foot-pounds;foot pound;ft-lbf;ft lbf", "UnitFoot*UnitPoundForce", "Foot-pound-force"),
        U(3714, "UnitNewtonMeter", "newton meter", "N·m", "newton metre;newton-meter;newton-metre;newton meters;Nm;N m", "UnitNewton*UnitMeter", "Newtonmeter"),
        U(3715, "UnitKilonewtonMeter", "kilonewton meter", "kN·m", "kilonewton metre;kilonewton-meter;kilonewton meters;kNm;kN m", "UnitKilonewton*UnitMeter", "Kilonewtonmeter"),
    ]),
    ("Power and power per length", [
        U(3800, "UnitWatt", "watt", "W", "W", "UnitJoule/UnitSecond", "Watt"),
        U(3801, "UnitMilliwatt", "milliwatt", "mW", "mW", "UnitWatt/1000", "Milliwatt"),
        U(3802, "UnitKilowatt", "kilowatt", "kW", "kW", "UnitWatt*1000", "Kilowatt"),
        U(3803, "UnitMegawatt", "megawatt", "MW", "MW", "UnitWatt*1000000", "Megawatt"),
        U(3804, "UnitGigawatt", "gigawatt", "GW", "GW", "UnitWatt*1e9", "Gigawatt"),
        U(3805, "UnitHorsepower", "horsepower", "hp", "mechanical horsepower;hp", "UnitFootPoundForce/UnitSecond*550", "Horsepower"),
        U(3806, "UnitMetricHorsepower", "metric horsepower", "PS", "metric hp;PS", "UnitKilogramForce*UnitMeter/UnitSecond*75", "Pferdestärke"),
        U(3807, "UnitBritishThermalUnitPerHour", "British thermal unit per hour", "BTU/h", "British thermal units per hour;Btu/h;BTU/h;BTU/hr", "UnitBritishThermalUnit/UnitHour", "British Thermal Unit pro Stunde"),
        U(3808, "UnitKilocaloriePerHour", "kilocalorie per hour", "kcal/h", "kilocalories per hour;kcal/h", "UnitKilocalorie/UnitHour", "Kilokalorie pro Stunde"),
        U(3809, "UnitWattPerMeter", "watt per meter", "W/m", "watt per metre;watts per metre;watts per meter;W/m", "UnitWatt/UnitMeter", "Watt pro Meter"),
        U(3810, "UnitKilowattPerMeter", "kilowatt per meter", "kW/m", "kilowatt per metre;kilowatts per metre;kilowatts per meter;kW/m", "UnitKilowatt/UnitMeter", "Kilowatt pro Meter"),
    ]),
    ("Irradiance and heat flux", [
        U(3900, "UnitWattPerSquareMeter", "watt per square meter", "W/m²", "watt per square metre;watts per square metre;watts per square meter;W/m2", "UnitWatt/UnitSquareMeter", "Watt pro Quadratmeter"),
        U(3901, "UnitKilowattPerSquareMeter", "kilowatt per square meter", "kW/m²", "kilowatt per square metre;kilowatts per square meter;kW/m2", "UnitKilowatt/UnitSquareMeter", "Kilowatt pro Quadratmeter"),
        U(3902, "UnitMegajoulePerSquareMeterPerDay", "megajoule per square meter per day", "MJ/(m²·d)", "megajoule per square metre per day;megajoules per square meter per day;MJ/m2/d;MJ/m2/day", "UnitMegajoule/UnitSquareMeter/UnitDay", "Megajoule pro Quadratmeter und Tag"),
        U(3903, "UnitLangleyPerMinute", "langley per minute", "ly/min", "langleys per minute;ly/min", "UnitCalorie/UnitSquareCentimeter/UnitMinute", "Langley pro Minute"),
        U(3904, "UnitLangleyPerDay", "langley per day", "ly/d", "langleys per day;ly/d;ly/day", "UnitCalorie/UnitSquareCentimeter/UnitDay", "Langley pro Tag"),
        U(3905, "UnitBritishThermalUnitPerSquareFootPerHour", "British thermal unit per square foot per hour", "BTU/(ft²·h)", "British thermal units per square foot per hour;BTU/ft2/h", "UnitBritishThermalUnit/UnitSquareFoot/UnitHour", "British Thermal Unit pro Quadratfuß und Stunde"),
    ]),
    ("Energy per area", [
        U(4000, "UnitJoulePerSquareMeter", "joule per square meter", "J/m²", "joule per square metre;joules per square metre;joules per square meter;J/m2", "UnitJoule/UnitSquareMeter", "Joule pro Quadratmeter"),
        U(4001, "UnitKilojoulePerSquareMeter", "kilojoule per square meter", "kJ/m²", "kilojoule per square metre;kilojoules per square meter;kJ/m2", "UnitKilojoule/UnitSquareMeter", "Kilojoule pro Quadratmeter"),
        U(4002, "UnitMegajoulePerSquareMeter", "megajoule per square meter", "MJ/m²", "megajoule per square metre;megajoules per square meter;MJ/m2", "UnitMegajoule/UnitSquareMeter", "Megajoule pro Quadratmeter"),
        U(4003, "UnitWattHourPerSquareMeter", "watt hour per square meter", "Wh/m²", "watt hour per square metre;watt hours per square meter;Wh/m2", "UnitWattHour/UnitSquareMeter", "Wattstunde pro Quadratmeter"),
        U(4004, "UnitKilowattHourPerSquareMeter", "kilowatt hour per square meter", "kWh/m²", "kilowatt hour per square metre;kilowatt hours per square meter;kWh/m2", "UnitKilowattHour/UnitSquareMeter", "Kilowattstunde pro Quadratmeter"),
        U(4005, "UnitLangley", "langley", "ly", "ly;cal/cm2", "UnitCalorie/UnitSquareCentimeter", "Langley"),
    ]),
    ("Dynamic viscosity", [
        U(4100, "UnitPascalSecond", "pascal second", "Pa·s", "pascal-second;pascal seconds;Pa s;Pa*s", "UnitPascal*UnitSecond", "Pascalsekunde"),
        U(4101, "UnitMillipascalSecond", "millipascal second", "mPa·s", "millipascal-second;millipascal seconds;mPa s;mPa*s", "UnitPascalSecond/1000", "Millipascalsekunde"),
        U(4102, "UnitPoise", "poise", "P", "P", "UnitPascalSecond/10", "Poise"),
        U(4103, "UnitCentipoise", "centipoise", "cP", "cP", "UnitPoise/100", "Zentipoise"),
    ]),
    ("Thermal properties", [
        U(4200, "UnitJoulePerKilogramKelvin", "joule per kilogram kelvin", "J/(kg·K)", "joule per kilogram per kelvin;joules per kilogram kelvin;J/kg/K;J/(kg K)", "UnitJoule/UnitKilogram/UnitKelvin", "Joule pro Kilogramm und Kelvin"),
        U(4201, "UnitKilojoulePerKilogramKelvin", "kilojoule per kilogram kelvin", "kJ/(kg·K)", "kilojoule per kilogram per kelvin;kilojoules per kilogram kelvin;kJ/kg/K;kJ/(kg K)", "UnitKilojoule/UnitKilogram/UnitKelvin", "Kilojoule pro Kilogramm und Kelvin"),
        U(4202, "UnitWattPerMeterKelvin", "watt per meter kelvin", "W/(m·K)", "watt per metre kelvin;watt per meter per kelvin;watts per meter kelvin;W/m/K;W/(m K)", "UnitWatt/UnitMeter/UnitKelvin", "Watt pro Meter und Kelvin"),
        U(4203, "UnitWattPerSquareMeterKelvin", "watt per square meter kelvin", "W/(m²·K)", "watt per square metre kelvin;watt per square meter per kelvin;watts per square meter kelvin;W/m2/K", "UnitWattPerSquareMeter/UnitKelvin", "Watt pro Quadratmeter und Kelvin"),
        U(4204, "UnitJoulePerKilogram", "joule per kilogram", "J/kg", "joules per kilogram;J/kg", "UnitJoule/UnitKilogram", "Joule pro Kilogramm"),
        U(4205, "UnitKilojoulePerKilogram", "kilojoule per kilogram", "kJ/kg", "kilojoules per kilogram;kJ/kg", "UnitKilojoule/UnitKilogram", "Kilojoule pro Kilogramm"),
        U(4206, "UnitMegajoulePerKilogram", "megajoule per kilogram", "MJ/kg", "megajoules per kilogram;MJ/kg", "UnitMegajoule/UnitKilogram", "Megajoule pro Kilogramm"),
        U(4207, "UnitKelvinPerMeter", "kelvin per meter", "K/m", "kelvin per metre;K/m", "UnitKelvin/UnitMeter", "Kelvin pro Meter"),
        U(4208, "UnitKelvinPerKilometer", "kelvin per kilometer", "K/km", "kelvin per kilometre;K/km", "UnitKelvin/UnitKilometer", "Kelvin pro Kilometer"),
        U(4209, "UnitDegreeDay", "degree day", "K·d", "degree-day;degree-days;degree days;K d", "UnitKelvin*UnitDay", "Gradtag"),
        U(4210, "UnitMillimeterPerDegreeDay", "millimeter per degree day", "mm/(K·d)", "millimetre per degree day;millimeters per degree day;mm/K/d;mm/degC/d", "UnitMillimeter/UnitDegreeDay", "Millimeter pro Gradtag"),
    ]),
    ("Electricity", [
        U(4300, "UnitAmpere", "ampere", "A", "amp;amps;A", "ElectricCurrent", "Ampere"),
        U(4301, "UnitMilliampere", "milliampere", "mA", "milliamp;milliamps;mA", "UnitAmpere/1000", "Milliampere"),
        U(4302, "UnitMicroampere", "microampere", "µA", "microamp;microamps;uA", "UnitAmpere*1e-6", "Mikroampere"),
        U(4303, "UnitKiloampere", "kiloampere", "kA", "kA", "UnitAmpere*1000", "Kiloampere"),
        U(4304, "UnitVolt", "volt", "V", "V", "UnitWatt/UnitAmpere", "Volt"),
        U(4305, "UnitMillivolt", "millivolt", "mV", "mV", "UnitVolt/1000", "Millivolt"),
        U(4306, "UnitKilovolt", "kilovolt", "kV", "kV", "UnitVolt*1000", "Kilovolt"),
        U(4307, "UnitOhm", "ohm", "Ω", "Ohm", "UnitVolt/UnitAmpere", "Ohm"),
        U(4308, "UnitKiloohm", "kiloohm", "kΩ", "kilohm;kilohms;kOhm", "UnitOhm*1000", "Kiloohm"),
        U(4309, "UnitMegaohm", "megaohm", "MΩ", "megohm;megohms;MOhm", "UnitOhm*1000000", "Megaohm"),
        U(4310, "UnitSiemens", "siemens", "S", "S", "UnitAmpere/UnitVolt", "Siemens"),
        U(4311, "UnitMillisiemens", "millisiemens", "mS", "mS", "UnitSiemens/1000", "Millisiemens"),
        U(4312, "UnitMicrosiemens", "microsiemens", "µS", "uS", "UnitSiemens*1e-6", "Mikrosiemens"),
        U(4313, "UnitCoulomb", "coulomb", "C", "C", "UnitAmpere*UnitSecond", "Coulomb"),
        U(4314, "UnitAmpereHour", "ampere hour", "A·h", "ampere-hour;ampere-hours;ampere hours;Ah", "UnitAmpere*UnitHour", "Amperestunde"),
        U(4315, "UnitMilliampereHour", "milliampere hour", "mA·h", "milliampere-hour;milliampere-hours;milliampere hours;mAh", "UnitMilliampere*UnitHour", "Milliamperestunde"),
    ]),
    ("Electrical conductivity", [
        U(4400, "UnitSiemensPerMeter", "siemens per meter", "S/m", "siemens per metre;S/m", "UnitSiemens/UnitMeter", "Siemens pro Meter"),
        U(4401, "UnitMillisiemensPerMeter", "millisiemens per meter", "mS/m", "millisiemens per metre;mS/m", "UnitMillisiemens/UnitMeter", "Millisiemens pro Meter"),
        U(4402, "UnitDecisiemensPerMeter", "decisiemens per meter", "dS/m", "decisiemens per metre;dS/m", "UnitSiemens/10/UnitMeter", "Dezisiemens pro Meter"),
        U(4403, "UnitMillisiemensPerCentimeter", "millisiemens per centimeter", "mS/cm", "millisiemens per centimetre;mS/cm", "UnitMillisiemens/UnitCentimeter", "Millisiemens pro Zentimeter"),
        U(4404, "UnitMicrosiemensPerCentimeter", "microsiemens per centimeter", "µS/cm", "microsiemens per centimetre;uS/cm", "UnitMicrosiemens/UnitCentimeter", "Mikrosiemens pro Zentimeter"),
    ]),
    ("Per length, wave number and compressibility", [
        U(4500, "UnitPerMeter", "per meter", "1/m", "per metre;1/m;m-1", "1/UnitMeter", "pro Meter"),
        U(4501, "UnitPerCentimeter", "per centimeter", "1/cm", "per centimetre;1/cm;cm-1", "1/UnitCentimeter", "pro Zentimeter"),
        U(4502, "UnitPerKilometer", "per kilometer", "1/km", "per kilometre;1/km;km-1", "1/UnitKilometer", "pro Kilometer"),
        U(4503, "UnitPerFoot", "per foot", "1/ft", "1/ft", "1/UnitFoot", "pro Fuß"),
        U(4504, "UnitRadianPerMeter", "radian per meter", "rad/m", "radian per metre;radians per meter;rad/m", "UnitRadian/UnitMeter", "Radiant pro Meter"),
        U(4505, "UnitPerPascal", "per pascal", "1/Pa", "1/Pa", "1/UnitPascal", "pro Pascal"),
        U(4506, "UnitPerKilopascal", "per kilopascal", "1/kPa", "1/kPa", "1/UnitKilopascal", "pro Kilopascal"),
        U(4507, "UnitPerPoundForcePerSquareInch", "per pound-force per square inch", "1/psi", "per psi;1/psi", "1/UnitPoundForcePerSquareInch", "pro Pound-force pro Quadratzoll"),
    ]),
    ("Reaction rates", [
        U(4600, "UnitGramPerCubicMeterPerDay", "gram per cubic meter per day", "g/(m³·d)", "gram per cubic metre per day;grams per cubic meter per day;g/m3/d", "UnitGramPerCubicMeter/UnitDay", "Gramm pro Kubikmeter und Tag"),
        U(4601, "UnitMilligramPerLiterPerDay", "milligram per liter per day", "mg/(l·d)", "milligram per litre per day;milligrams per liter per day;mg/l/d;mg/L/d", "UnitMilligramPerLiter/UnitDay", "Milligramm pro Liter und Tag"),
        U(4602, "UnitMilligramPerLiterPerHour", "milligram per liter per hour", "mg/(l·h)", "milligram per litre per hour;milligrams per liter per hour;mg/l/h;mg/L/h", "UnitMilligramPerLiter/UnitHour", "Milligramm pro Liter und Stunde"),
        U(4603, "UnitKilogramPerCubicMeterPerSecond", "kilogram per cubic meter per second", "kg/(m³·s)", "kilogram per cubic metre per second;kilograms per cubic meter per second;kg/m3/s", "UnitKilogramPerCubicMeter/UnitSecond", "Kilogramm pro Kubikmeter und Sekunde"),
    ]),
    ("Volume per mass", [
        U(4700, "UnitCubicMeterPerKilogram", "cubic meter per kilogram", "m³/kg", "cubic metre per kilogram;cubic meters per kilogram;m3/kg", "UnitCubicMeter/UnitKilogram", "Kubikmeter pro Kilogramm"),
        U(4701, "UnitLiterPerKilogram", "liter per kilogram", "l/kg", "litre per kilogram;litres per kilogram;liters per kilogram;l/kg;L/kg", "UnitLiter/UnitKilogram", "Liter pro Kilogramm"),
        U(4702, "UnitMilliliterPerGram", "milliliter per gram", "ml/g", "millilitre per gram;millilitres per gram;milliliters per gram;ml/g;mL/g", "UnitMilliliter/UnitGram", "Milliliter pro Gramm"),
    ]),
    ("Flow resistance coefficients", [
        U(4800, "UnitSecondPerCubeRootMeter", "second per cube root of meter", "s/m^(1/3)", "second per cube root of metre;s/m^(1/3);s m^-1/3", "UnitSecond/(UnitMeter^(1/3))", "Sekunde pro Kubikwurzel aus Meter"),
        U(4801, "UnitCubeRootMeterPerSecond", "cube root of meter per second", "m^(1/3)/s", "cube root of metre per second;m^(1/3)/s;m1/3/s", "(UnitMeter^(1/3))/UnitSecond", "Kubikwurzel aus Meter pro Sekunde"),
        U(4802, "UnitSquareRootMeterPerSecond", "square root of meter per second", "m^(1/2)/s", "square root of metre per second;m^(1/2)/s;m^0.5/s;m1/2/s", "(UnitMeter^0.5)/UnitSecond", "Quadratwurzel aus Meter pro Sekunde"),
        U(4803, "UnitSquareRootFootPerSecond", "square root of foot per second", "ft^(1/2)/s", "ft^(1/2)/s;ft^0.5/s;ft1/2/s", "(UnitFoot^0.5)/UnitSecond", "Quadratwurzel aus Fuß pro Sekunde"),
    ]),
    ("Wave spectra", [
        U(4900, "UnitSquareMeterPerHertz", "square meter per hertz", "m²/Hz", "square metre per hertz;square meters per hertz;m2/Hz;m2 s", "UnitSquareMeter/UnitHertz", "Quadratmeter pro Hertz"),
        U(4901, "UnitSquareFootPerHertz", "square foot per hertz", "ft²/Hz", "square feet per hertz;ft2/Hz", "UnitSquareFoot/UnitHertz", "Quadratfuß pro Hertz"),
    ]),
]

# Allowed-unit sets, by quantity. An item type's allowed units are its default
# unit followed by the other members of its set, in this order. Every member of
# a set must have the dimension of the item's default unit.
S = {
    "length": ["UnitMeter", "UnitKilometer", "UnitDecimeter", "UnitCentimeter", "UnitMillimeter",
               "UnitMicrometer", "UnitNanometer", "UnitAngstrom", "UnitFoot", "UnitInch", "UnitYard",
               "UnitMile", "UnitNauticalMile", "UnitUSSurveyFoot", "UnitFathom"],
    "level": ["UnitMeter", "UnitDecimeter", "UnitCentimeter", "UnitMillimeter", "UnitFoot", "UnitInch",
              "UnitUSSurveyFoot", "UnitYard"],
    "coordinate": ["UnitMeter", "UnitKilometer", "UnitFoot", "UnitUSSurveyFoot"],
    "short": ["UnitMillimeter", "UnitCentimeter", "UnitMeter", "UnitMicrometer", "UnitInch", "UnitFoot"],
    "snow": ["UnitCentimeter", "UnitMillimeter", "UnitMeter", "UnitInch", "UnitFoot"],
    "distance": ["UnitKilometer", "UnitMeter", "UnitMile", "UnitNauticalMile", "UnitFoot", "UnitYard"],
    "depth": ["UnitMillimeter", "UnitCentimeter", "UnitMeter", "UnitMicrometer", "UnitInch",
              "UnitLiterPerSquareMeter", "UnitCubicMeterPerHectare"],
    "area": ["UnitSquareMeter", "UnitSquareKilometer", "UnitHectare", "UnitSquareCentimeter",
             "UnitSquareMillimeter", "UnitSquareFoot", "UnitSquareInch", "UnitSquareYard", "UnitSquareMile",
             "UnitAcre"],
    "permeability": ["UnitDarcy", "UnitMillidarcy", "UnitSquareMeter", "UnitSquareCentimeter"],
    "volume": ["UnitCubicMeter", "UnitLiter", "UnitMilliliter", "UnitMicroliter", "UnitHectoliter",
               "UnitMegaliter", "UnitCubicCentimeter", "UnitCubicMillimeter", "UnitCubicKilometer",
               "UnitCubicHectometer", "UnitCubicFoot", "UnitCubicInch", "UnitCubicYard", "UnitUSGallon",
               "UnitImperialGallon", "UnitOilBarrel", "UnitAcreFoot", "UnitAcreInch", "UnitMillionUSGallon",
               "UnitMillionImperialGallon"],
    "mass": ["UnitKilogram", "UnitGram", "UnitMilligram", "UnitMicrogram", "UnitNanogram", "UnitTonne",
             "UnitKilotonne", "UnitPound", "UnitOunce", "UnitShortTon", "UnitLongTon", "UnitGrain"],
    "time": ["UnitSecond", "UnitMillisecond", "UnitMicrosecond", "UnitMinute", "UnitHour", "UnitDay",
             "UnitWeek", "UnitMonth", "UnitYear", "UnitCommonYear"],
    "period": ["UnitSecond", "UnitMillisecond", "UnitMinute"],
    "frequency": ["UnitHertz", "UnitMillihertz", "UnitKilohertz", "UnitMegahertz", "UnitPerSecond",
                  "UnitPerMinute", "UnitPerHour"],
    "wavefrequency": ["UnitHertz", "UnitMillihertz", "UnitPerSecond"],
    "rate": ["UnitPerDay", "UnitPerSecond", "UnitPerMinute", "UnitPerHour", "UnitPerYear"],
    "angvel": ["UnitRadianPerSecond", "UnitDegreePerSecond", "UnitRevolutionPerMinute"],
    "temp": ["UnitDegreeCelsius", "UnitKelvin", "UnitDegreeFahrenheit", "UnitDegreeRankine"],
    "tempdiff": ["UnitKelvin", "UnitDegreeCelsiusDifference", "UnitDegreeFahrenheitDifference",
                 "UnitMillikelvin"],
    "velocity": ["UnitMeterPerSecond", "UnitCentimeterPerSecond", "UnitMillimeterPerSecond",
                 "UnitMeterPerMinute", "UnitMeterPerHour", "UnitMeterPerDay", "UnitCentimeterPerDay",
                 "UnitKilometerPerHour", "UnitKilometerPerDay", "UnitFootPerSecond", "UnitFootPerMinute",
                 "UnitFootPerDay", "UnitMilePerHour", "UnitKnot"],
    "wind": ["UnitMeterPerSecond", "UnitKilometerPerHour", "UnitKnot", "UnitMilePerHour",
             "UnitFootPerSecond"],
    "current": ["UnitMeterPerSecond", "UnitCentimeterPerSecond", "UnitKnot", "UnitFootPerSecond",
                "UnitKilometerPerHour"],
    "slowvelocity": ["UnitMillimeterPerSecond", "UnitMeterPerSecond", "UnitCentimeterPerSecond",
                     "UnitMeterPerHour", "UnitMeterPerDay", "UnitFootPerSecond"],
    "levelrate": ["UnitMeterPerHour", "UnitCentimeterPerHour", "UnitMillimeterPerHour", "UnitMeterPerDay",
                  "UnitCentimeterPerDay", "UnitMeterPerSecond", "UnitFootPerDay"],
    "precip": ["UnitMillimeterPerHour", "UnitMillimeterPerMinute", "UnitMillimeterPerDay",
               "UnitMillimeterPerMonth", "UnitMillimeterPerYear", "UnitMicrometerPerSecond",
               "UnitCentimeterPerHour", "UnitInchPerHour", "UnitInchPerDay", "UnitInchPerYear",
               "UnitLiterPerSecondPerHectare", "UnitMillimeterPerSecond", "UnitMeterPerSecond"],
    "infiltration": ["UnitMillimeterPerHour", "UnitCentimeterPerHour", "UnitMillimeterPerDay",
                     "UnitInchPerHour", "UnitMicrometerPerSecond", "UnitMeterPerSecond"],
    "evaporation": ["UnitMillimeterPerDay", "UnitMillimeterPerHour", "UnitMillimeterPerMonth",
                    "UnitMillimeterPerYear", "UnitInchPerDay", "UnitInchPerYear"],
    "recharge": ["UnitMillimeterPerYear", "UnitMillimeterPerMonth", "UnitMillimeterPerDay",
                 "UnitInchPerYear", "UnitMeterPerDay", "UnitMeterPerSecond"],
    "conductivity": ["UnitMeterPerSecond", "UnitMeterPerDay", "UnitCentimeterPerSecond",
                     "UnitCentimeterPerDay", "UnitMeterPerHour", "UnitFootPerDay",
                     "UnitUSGallonPerDayPerSquareFoot"],
    "sedimentation": ["UnitMillimeterPerYear", "UnitCentimeterPerDay", "UnitMeterPerDay",
                      "UnitMillimeterPerDay", "UnitInchPerYear"],
    "specificdischarge": ["UnitLiterPerSecondPerSquareKilometer", "UnitCubicMeterPerSecondPerSquareKilometer",
                          "UnitCubicFootPerSecondPerSquareMile", "UnitLiterPerSecondPerHectare",
                          "UnitMillimeterPerDay", "UnitMillimeterPerHour", "UnitMillimeterPerYear"],
    "accel": ["UnitMeterPerSecondSquared", "UnitCentimeterPerSecondSquared", "UnitFootPerSecondSquared",
              "UnitStandardGravity"],
    "discharge": ["UnitCubicMeterPerSecond", "UnitLiterPerSecond", "UnitCubicMeterPerMinute",
                  "UnitCubicMeterPerHour", "UnitCubicMeterPerDay", "UnitCubicMeterPerYear",
                  "UnitLiterPerMinute", "UnitLiterPerHour", "UnitLiterPerDay", "UnitMegaliterPerDay",
                  "UnitCubicHectometerPerYear", "UnitCubicKilometerPerYear", "UnitCubicFootPerSecond",
                  "UnitCubicFootPerMinute", "UnitThousandCubicFootPerSecond", "UnitUSGallonPerMinute",
                  "UnitUSGallonPerDay", "UnitMillionUSGallonPerDay", "UnitMillionImperialGallonPerDay",
                  "UnitImperialGallonPerMinute", "UnitAcreFootPerDay", "UnitAcreFootPerYear"],
    "pump": ["UnitCubicMeterPerHour", "UnitCubicMeterPerSecond", "UnitLiterPerSecond",
             "UnitLiterPerMinute", "UnitCubicMeterPerDay", "UnitCubicFootPerSecond",
             "UnitUSGallonPerMinute", "UnitMillionUSGallonPerDay", "UnitImperialGallonPerMinute"],
    "unitdischarge": ["UnitSquareMeterPerSecond", "UnitCubicMeterPerSecondPerMeter",
                      "UnitLiterPerSecondPerMeter", "UnitCubicFootPerSecondPerFoot",
                      "UnitSquareFootPerSecond", "UnitSquareMeterPerHour", "UnitSquareMeterPerDay"],
    "overtopping": ["UnitLiterPerSecondPerMeter", "UnitCubicMeterPerSecondPerMeter",
                    "UnitCubicFootPerSecondPerFoot"],
    "diffusivity": ["UnitSquareMeterPerSecond", "UnitSquareMeterPerHour", "UnitSquareMeterPerDay",
                    "UnitSquareCentimeterPerSecond", "UnitSquareMillimeterPerSecond",
                    "UnitSquareFootPerSecond", "UnitSquareFootPerDay"],
    "kinvisc": ["UnitSquareMeterPerSecond", "UnitSquareMillimeterPerSecond", "UnitSquareCentimeterPerSecond",
                "UnitStokes", "UnitCentistokes", "UnitSquareFootPerSecond"],
    "transmissivity": ["UnitSquareMeterPerDay", "UnitSquareMeterPerSecond", "UnitSquareMeterPerHour",
                       "UnitSquareFootPerDay", "UnitUSGallonPerDayPerFoot", "UnitSquareCentimeterPerSecond"],
    "density": ["UnitKilogramPerCubicMeter", "UnitGramPerCubicCentimeter", "UnitGramPerLiter",
                "UnitKilogramPerLiter", "UnitTonnePerCubicMeter", "UnitPoundPerCubicFoot",
                "UnitPoundPerUSGallon"],
    "conc": ["UnitMilligramPerLiter", "UnitGramPerCubicMeter", "UnitMicrogramPerLiter",
             "UnitNanogramPerLiter", "UnitGramPerLiter", "UnitKilogramPerCubicMeter",
             "UnitMilligramPerCubicMeter", "UnitMicrogramPerCubicMeter", "UnitPoundPerCubicFoot"],
    "trace": ["UnitMicrogramPerLiter", "UnitNanogramPerLiter", "UnitMilligramPerLiter",
              "UnitMilligramPerCubicMeter", "UnitMicrogramPerCubicMeter", "UnitGramPerCubicMeter"],
    "massfraction": ["UnitMilligramPerKilogram", "UnitMicrogramPerKilogram", "UnitNanogramPerKilogram",
                     "UnitGramPerKilogram", "UnitKilogramPerKilogram", "UnitPartPerMillion",
                     "UnitPartPerBillion", "UnitPercent", "UnitPerMille", "UnitFraction"],
    "salinity": ["UnitPracticalSalinityUnit", "UnitPerMille", "UnitGramPerKilogram"],
    "molar": ["UnitMillimolePerLiter", "UnitMolePerCubicMeter", "UnitMolePerLiter",
              "UnitMicromolePerLiter", "UnitNanomolePerLiter", "UnitMillimolePerCubicMeter"],
    "molality": ["UnitMicromolePerKilogram", "UnitMillimolePerKilogram", "UnitMolePerKilogram"],
    "count": ["UnitPerHundredMilliliter", "UnitPerMilliliter", "UnitPerLiter", "UnitPerCubicMeter"],
    "massflow": ["UnitKilogramPerSecond", "UnitGramPerSecond", "UnitMilligramPerSecond",
                 "UnitKilogramPerHour", "UnitKilogramPerDay", "UnitGramPerDay", "UnitKilogramPerYear",
                 "UnitTonnePerHour", "UnitTonnePerDay", "UnitTonnePerYear", "UnitPoundPerSecond",
                 "UnitPoundPerDay", "UnitShortTonPerDay"],
    "massflowwidth": ["UnitKilogramPerSecondPerMeter", "UnitPoundPerSecondPerFoot"],
    "massflux": ["UnitKilogramPerSquareMeterPerSecond", "UnitGramPerSquareMeterPerSecond",
                 "UnitGramPerSquareMeterPerDay", "UnitMilligramPerSquareMeterPerDay",
                 "UnitKilogramPerHectarePerYear", "UnitTonnePerHectarePerYear",
                 "UnitTonnePerSquareKilometerPerYear"],
    "massperarea": ["UnitKilogramPerSquareMeter", "UnitGramPerSquareMeter", "UnitMilligramPerSquareMeter",
                    "UnitKilogramPerHectare", "UnitTonnePerHectare", "UnitTonnePerSquareKilometer",
                    "UnitPoundPerAcre"],
    "force": ["UnitNewton", "UnitMillinewton", "UnitKilonewton", "UnitMeganewton", "UnitDyne",
              "UnitKilogramForce", "UnitTonneForce", "UnitPoundForce", "UnitKip"],
    "forcelength": ["UnitNewtonPerMeter", "UnitMillinewtonPerMeter", "UnitKilonewtonPerMeter",
                    "UnitPoundForcePerFoot"],
    "pressure": ["UnitPascal", "UnitHectopascal", "UnitKilopascal", "UnitMegapascal", "UnitGigapascal",
                 "UnitBar", "UnitMillibar", "UnitDecibar", "UnitStandardAtmosphere", "UnitTechnicalAtmosphere",
                 "UnitPoundForcePerSquareInch", "UnitKipPerSquareInch", "UnitPoundForcePerSquareFoot",
                 "UnitTorr", "UnitMillimeterOfMercury", "UnitInchOfMercury", "UnitMeterOfWater",
                 "UnitCentimeterOfWater", "UnitMillimeterOfWater", "UnitFootOfWater", "UnitInchOfWater",
                 "UnitNewtonPerSquareMillimeter", "UnitDynePerSquareCentimeter"],
    "airpressure": ["UnitHectopascal", "UnitMillibar", "UnitPascal", "UnitKilopascal",
                    "UnitStandardAtmosphere", "UnitMillimeterOfMercury", "UnitInchOfMercury", "UnitTorr",
                    "UnitPoundForcePerSquareInch", "UnitBar"],
    "waterpressure": ["UnitKilopascal", "UnitBar", "UnitPascal", "UnitMegapascal", "UnitMeterOfWater",
                      "UnitFootOfWater", "UnitPoundForcePerSquareInch", "UnitStandardAtmosphere"],
    "stress": ["UnitPascal", "UnitKilopascal", "UnitDynePerSquareCentimeter", "UnitPoundForcePerSquareFoot",
               "UnitPoundForcePerSquareInch"],
    "energy": ["UnitJoule", "UnitKilojoule", "UnitMegajoule", "UnitGigajoule", "UnitWattHour",
               "UnitKilowattHour", "UnitMegawattHour", "UnitGigawattHour", "UnitCalorie", "UnitKilocalorie",
               "UnitBritishThermalUnit", "UnitErg", "UnitElectronvolt", "UnitFootPoundForce"],
    "torque": ["UnitNewtonMeter", "UnitKilonewtonMeter", "UnitFootPoundForce"],
    "power": ["UnitWatt", "UnitMilliwatt", "UnitKilowatt", "UnitMegawatt", "UnitGigawatt", "UnitHorsepower",
              "UnitMetricHorsepower", "UnitBritishThermalUnitPerHour", "UnitKilocaloriePerHour"],
    "powerlength": ["UnitKilowattPerMeter", "UnitWattPerMeter"],
    "irradiance": ["UnitWattPerSquareMeter", "UnitKilowattPerSquareMeter", "UnitMegajoulePerSquareMeterPerDay",
                   "UnitLangleyPerMinute", "UnitLangleyPerDay", "UnitBritishThermalUnitPerSquareFootPerHour"],
    "streampower": ["UnitWattPerSquareMeter", "UnitKilowattPerSquareMeter"],
    "energyarea": ["UnitJoulePerSquareMeter", "UnitKilojoulePerSquareMeter", "UnitMegajoulePerSquareMeter",
                   "UnitWattHourPerSquareMeter", "UnitKilowattHourPerSquareMeter", "UnitLangley"],
    "dynvisc": ["UnitPascalSecond", "UnitMillipascalSecond", "UnitPoise", "UnitCentipoise"],
    "specheat": ["UnitJoulePerKilogramKelvin", "UnitKilojoulePerKilogramKelvin"],
    "thermcond": ["UnitWattPerMeterKelvin"],
    "heattransfer": ["UnitWattPerSquareMeterKelvin"],
    "specenergy": ["UnitJoulePerKilogram", "UnitKilojoulePerKilogram", "UnitMegajoulePerKilogram"],
    "tempgrad": ["UnitKelvinPerMeter", "UnitKelvinPerKilometer"],
    "degreedayfactor": ["UnitMillimeterPerDegreeDay"],
    "current_el": ["UnitAmpere", "UnitMilliampere", "UnitMicroampere", "UnitKiloampere"],
    "voltage": ["UnitVolt", "UnitMillivolt", "UnitKilovolt"],
    "resistance": ["UnitOhm", "UnitKiloohm", "UnitMegaohm"],
    "charge": ["UnitCoulomb", "UnitAmpereHour", "UnitMilliampereHour"],
    "ec": ["UnitMicrosiemensPerCentimeter", "UnitMillisiemensPerCentimeter", "UnitSiemensPerMeter",
           "UnitMillisiemensPerMeter", "UnitDecisiemensPerMeter"],
    "luminous": ["UnitCandela"],
    "illuminance": ["UnitLux", "UnitKilolux", "UnitFootCandle"],
    "par": ["UnitMicromolePerSquareMeterPerSecond"],
    "dli": ["UnitMolePerSquareMeterPerDay"],
    "perlength": ["UnitPerMeter", "UnitPerCentimeter", "UnitPerKilometer", "UnitPerFoot"],
    "wavenumber": ["UnitRadianPerMeter", "UnitPerMeter"],
    "compressibility": ["UnitPerPascal", "UnitPerKilopascal", "UnitPerPoundForcePerSquareInch"],
    "reaction": ["UnitGramPerCubicMeterPerDay", "UnitMilligramPerLiterPerDay", "UnitMilligramPerLiterPerHour",
                 "UnitKilogramPerCubicMeterPerSecond"],
    "kd": ["UnitLiterPerKilogram", "UnitCubicMeterPerKilogram", "UnitMilliliterPerGram"],
    "slope": ["UnitMeterPerMeter", "UnitPercent", "UnitPerMille", "UnitMeterPerKilometer",
              "UnitCentimeterPerKilometer", "UnitFootPerFoot", "UnitFootPerMile", "UnitFraction"],
    "fraction": ["UnitFraction", "UnitPercent", "UnitPerMille"],
    "number": ["UnitFraction"],
    "volfraction": ["UnitCubicMeterPerCubicMeter", "UnitPercent", "UnitFraction", "UnitMilliliterPerLiter"],
    "areafraction": ["UnitSquareMeterPerSquareMeter", "UnitFraction"],
    "cloud": ["UnitOkta", "UnitPercent", "UnitFraction"],
    "angle": ["UnitDegree", "UnitRadian", "UnitMilliradian", "UnitGon", "UnitArcminute", "UnitArcsecond",
              "UnitRevolution"],
    "direction": ["UnitDegree", "UnitRadian", "UnitGon"],
    "spectral": ["UnitSquareMeterPerHertz", "UnitSquareFootPerHertz"],
    "manning": ["UnitSecondPerCubeRootMeter"],
    "strickler": ["UnitCubeRootMeterPerSecond"],
    "chezy": ["UnitSquareRootMeterPerSecond", "UnitSquareRootFootPerSecond"],
    "amount": ["UnitMole", "UnitMillimole", "UnitMicromole", "UnitNanomole", "UnitKilomole"],
}

# Filters: (bit, ident, English, German). Each bit is a single power of two;
# 0x40000000 and 0x80000000 are never used (reserved by the library).
FILTERS = [
    (0x0001, "FilterHydrology", "Hydrology", "Hydrologie"),
    (0x0002, "FilterHydraulics", "Hydraulics", "Hydraulik"),
    (0x0004, "FilterWaterQuality", "Water quality", "Wasserbeschaffenheit"),
    (0x0008, "FilterMeteorology", "Meteorology", "Meteorologie"),
    (0x0010, "FilterWaves", "Waves", "Seegang"),
    (0x0020, "FilterGroundwater", "Groundwater", "Grundwasser"),
    (0x0040, "FilterSediment", "Sediment transport and morphology", "Sedimenttransport und Morphologie"),
    (0x0080, "FilterGeneralPhysics", "General physics", "Allgemeine Physik"),
    (0x0100, "FilterUrbanWater", "Urban drainage and water supply", "Siedlungsentwässerung und Wasserversorgung"),
    (0x0200, "FilterCoastal", "Coastal and estuarine", "Küste und Ästuar"),
    (0x0400, "FilterEcology", "Aquatic ecology", "Gewässerökologie"),
]

# Filter letters used in the item table below.
FILTER_LETTERS = {
    "H": "FilterHydrology", "Y": "FilterHydraulics", "Q": "FilterWaterQuality", "M": "FilterMeteorology",
    "W": "FilterWaves", "G": "FilterGroundwater", "S": "FilterSediment", "P": "FilterGeneralPhysics",
    "U": "FilterUrbanWater", "C": "FilterCoastal", "E": "FilterEcology",
}

# Item types: (key, ident, English, German, default unit, allowed-unit set,
# decimals, default value, filter letters). Key 999 is the any-unit item type.
ItemType = namedtuple("ItemType", "key ident en de default units decimals value filters")


def I(key, ident, en, de, default, units, decimals, value, filters):
    return ItemType(key, ident, en, de, default, units, decimals, value, filters)


ITEM_GROUPS = [
    ("General physics", [
        I(100, "ItemLength", "Length", "Länge", "UnitMeter", "length", 3, "0", "P"),
        I(101, "ItemDistance", "Distance", "Entfernung", "UnitKilometer", "distance", 3, "0", "P"),
        I(102, "ItemElevation", "Elevation", "Geländehöhe", "UnitMeter", "level", 2, "0", "PHG"),
        I(103, "ItemArea", "Area", "Fläche", "UnitSquareMeter", "area", 2, "0", "P"),
        I(104, "ItemVolume", "Volume", "Volumen", "UnitCubicMeter", "volume", 3, "0", "P"),
        I(105, "ItemMass", "Mass", "Masse", "UnitKilogram", "mass", 3, "0", "P"),
        I(106, "ItemDuration", "Duration", "Dauer", "UnitSecond", "time", 1, "0", "P"),
        I(107, "ItemTemperature", "Temperature", "Temperatur", "UnitDegreeCelsius", "temp", 2, "0", "P"),
        I(108, "ItemTemperatureDifference", "Temperature difference", "Temperaturdifferenz", "UnitKelvin", "tempdiff", 2, "0", "P"),
        I(109, "ItemVelocity", "Velocity", "Geschwindigkeit", "UnitMeterPerSecond", "velocity", 3, "0", "P"),
        I(110, "ItemAcceleration", "Acceleration", "Beschleunigung", "UnitMeterPerSecondSquared", "accel", 3, "0", "P"),
        I(111, "ItemForce", "Force", "Kraft", "UnitNewton", "force", 2, "0", "P"),
        I(112, "ItemPressure", "Pressure", "Druck", "UnitPascal", "pressure", 1, "0", "P"),
        I(113, "ItemEnergy", "Energy", "Energie", "UnitJoule", "energy", 1, "0", "P"),
        I(114, "ItemPower", "Power", "Leistung", "UnitWatt", "power", 1, "0", "P"),
        I(115, "ItemDensity", "Density", "Dichte", "UnitKilogramPerCubicMeter", "density", 2, "0", "P"),
        I(116, "ItemDynamicViscosity", "Dynamic viscosity", "Dynamische Viskosität", "UnitPascalSecond", "dynvisc", 6, "0", "P"),
        I(117, "ItemKinematicViscosity", "Kinematic viscosity", "Kinematische Viskosität", "UnitSquareMeterPerSecond", "kinvisc", 9, "0", "P"),
        I(118, "ItemFrequency", "Frequency", "Frequenz", "UnitHertz", "frequency", 3, "0", "P"),
        I(119, "ItemAngle", "Angle", "Winkel", "UnitDegree", "angle", 2, "0", "P"),
        I(120, "ItemAngularVelocity", "Angular velocity", "Winkelgeschwindigkeit", "UnitRadianPerSecond", "angvel", 4, "0", "P"),
        I(121, "ItemElectricCurrent", "Electric current", "Elektrische Stromstärke", "UnitAmpere", "current_el", 3, "0", "P"),
        I(122, "ItemVoltage", "Voltage", "Elektrische Spannung", "UnitVolt", "voltage", 3, "0", "P"),
        I(123, "ItemBatteryVoltage", "Battery voltage", "Batteriespannung", "UnitVolt", "voltage", 2, "0", "PU"),
        I(124, "ItemElectricResistance", "Electric resistance", "Elektrischer Widerstand", "UnitOhm", "resistance", 2, "0", "P"),
        I(125, "ItemElectricCharge", "Electric charge", "Elektrische Ladung", "UnitCoulomb", "charge", 2, "0", "P"),
        I(126, "ItemAmountOfSubstance", "Amount of substance", "Stoffmenge", "UnitMole", "amount", 4, "0", "P"),
        I(127, "ItemLuminousIntensity", "Luminous intensity", "Lichtstärke", "UnitCandela", "luminous", 1, "0", "P"),
        I(128, "ItemIlluminance", "Illuminance", "Beleuchtungsstärke", "UnitLux", "illuminance", 1, "0", "PE"),
        I(129, "ItemMassFlow", "Mass flow", "Massenstrom", "UnitKilogramPerSecond", "massflow", 3, "0", "P"),
        I(130, "ItemRatio", "Dimensionless ratio", "Dimensionsloses Verhältnis", "UnitFraction", "fraction", 4, "0", "P"),
        I(131, "ItemSpecificHeatCapacity", "Specific heat capacity", "Spezifische Wärmekapazität", "UnitJoulePerKilogramKelvin", "specheat", 1, "0", "P"),
        I(132, "ItemThermalConductivity", "Thermal conductivity", "Wärmeleitfähigkeit", "UnitWattPerMeterKelvin", "thermcond", 3, "0", "P"),
        I(133, "ItemHeatTransferCoefficient", "Heat transfer coefficient", "Wärmeübergangskoeffizient", "UnitWattPerSquareMeterKelvin", "heattransfer", 2, "0", "P"),
        I(134, "ItemSpecificEnergy", "Specific energy", "Spezifische Energie", "UnitJoulePerKilogram", "specenergy", 1, "0", "P"),
        I(135, "ItemTorque", "Torque", "Drehmoment", "UnitNewtonMeter", "torque", 2, "0", "P"),
        I(136, "ItemLatitude", "Latitude", "Geographische Breite", "UnitDegree", "direction", 6, "0", "P"),
        I(137, "ItemLongitude", "Longitude", "Geographische Länge", "UnitDegree", "direction", 6, "0", "P"),
        I(138, "ItemEasting", "Easting", "Rechtswert", "UnitMeter", "coordinate", 2, "0", "P"),
        I(139, "ItemNorthing", "Northing", "Hochwert", "UnitMeter", "coordinate", 2, "0", "P"),
        I(140, "ItemForcePerLength", "Force per unit length", "Kraft pro Längeneinheit", "UnitNewtonPerMeter", "forcelength", 2, "0", "P"),
        I(141, "ItemSurfaceTension", "Surface tension", "Oberflächenspannung", "UnitMillinewtonPerMeter", "forcelength", 2, "0", "P"),
        I(142, "ItemHeatFlux", "Heat flux", "Wärmestromdichte", "UnitWattPerSquareMeter", "irradiance", 1, "0", "PMQ"),
        I(143, "ItemTemperatureGradient", "Temperature gradient", "Temperaturgradient", "UnitKelvinPerMeter", "tempgrad", 4, "0", "PM"),
    ]),
    ("Hydrology", [
        I(200, "ItemPrecipitationDepth", "Precipitation depth", "Niederschlagshöhe", "UnitMillimeter", "depth", 1, "0", "HMU"),
        I(201, "ItemRainfallIntensity", "Rainfall intensity", "Regenintensität", "UnitMillimeterPerHour", "precip", 2, "0", "HMU"),
        I(202, "ItemPrecipitationRate", "Precipitation rate", "Niederschlagsrate", "UnitMillimeterPerDay", "precip", 2, "0", "HM"),
        I(203, "ItemSnowDepth", "Snow depth", "Schneehöhe", "UnitCentimeter", "snow", 1, "0", "HM"),
        I(204, "ItemSnowWaterEquivalent", "Snow water equivalent", "Schneewasseräquivalent", "UnitMillimeter", "depth", 1, "0", "HM"),
        I(205, "ItemSnowDensity", "Snow density", "Schneedichte", "UnitKilogramPerCubicMeter", "density", 1, "0", "HM"),
        I(206, "ItemSnowmeltRate", "Snowmelt rate", "Schneeschmelzrate", "UnitMillimeterPerDay", "evaporation", 2, "0", "H"),
        I(207, "ItemDegreeDayFactor", "Degree-day factor", "Grad-Tag-Faktor", "UnitMillimeterPerDegreeDay", "degreedayfactor", 2, "0", "H"),
        I(208, "ItemEvaporationDepth", "Evaporation depth", "Verdunstungshöhe", "UnitMillimeter", "depth", 2, "0", "HM"),
        I(209, "ItemEvaporationRate", "Evaporation rate", "Verdunstungsrate", "UnitMillimeterPerDay", "evaporation", 2, "0", "HM"),
        I(210, "ItemPotentialEvapotranspiration", "Potential evapotranspiration", "Potenzielle Evapotranspiration", "UnitMillimeterPerDay", "evaporation", 2, "0", "HM"),
        I(211, "ItemActualEvapotranspiration", "Actual evapotranspiration", "Tatsächliche Evapotranspiration", "UnitMillimeterPerDay", "evaporation", 2, "0", "HM"),
        I(212, "ItemPanEvaporation", "Pan evaporation", "Verdunstung aus dem Verdunstungskessel", "UnitMillimeterPerDay", "evaporation", 2, "0", "HM"),
        I(213, "ItemInfiltrationRate", "Infiltration rate", "Infiltrationsrate", "UnitMillimeterPerHour", "infiltration", 2, "0", "HUG"),
        I(214, "ItemCumulativeInfiltration", "Cumulative infiltration", "Kumulierte Infiltration", "UnitMillimeter", "depth", 1, "0", "H"),
        I(215, "ItemInterceptionStorage", "Interception storage", "Interzeptionsspeicher", "UnitMillimeter", "depth", 2, "0", "H"),
        I(216, "ItemSoilMoisture", "Volumetric soil moisture", "Volumetrischer Bodenwassergehalt", "UnitCubicMeterPerCubicMeter", "volfraction", 3, "0", "HG"),
        I(217, "ItemSoilMoistureDeficit", "Soil moisture deficit", "Bodenwasserdefizit", "UnitMillimeter", "depth", 1, "0", "H"),
        I(218, "ItemRunoffDepth", "Runoff depth", "Abflusshöhe", "UnitMillimeter", "depth", 2, "0", "HU"),
        I(219, "ItemSurfaceRunoffRate", "Surface runoff rate", "Oberflächenabflussrate", "UnitMillimeterPerHour", "precip", 2, "0", "HU"),
        I(220, "ItemSpecificDischarge", "Specific discharge", "Abflussspende", "UnitLiterPerSecondPerSquareKilometer", "specificdischarge", 2, "0", "H"),
        I(221, "ItemCatchmentArea", "Catchment area", "Einzugsgebietsfläche", "UnitSquareKilometer", "area", 3, "0", "H"),
        I(222, "ItemRunoffCoefficient", "Runoff coefficient", "Abflussbeiwert", "UnitFraction", "fraction", 3, "0", "HU"),
        I(223, "ItemBaseflow", "Baseflow", "Basisabfluss", "UnitCubicMeterPerSecond", "discharge", 3, "0", "HG"),
        I(224, "ItemTimeOfConcentration", "Time of concentration", "Konzentrationszeit", "UnitHour", "time", 2, "0", "HU"),
        I(225, "ItemLagTime", "Lag time", "Verzögerungszeit", "UnitHour", "time", 2, "0", "H"),
        I(226, "ItemRunoffVolume", "Runoff volume", "Abflussvolumen", "UnitCubicMeter", "volume", 1, "0", "HU"),
        I(227, "ItemReservoirStorage", "Reservoir storage", "Speicherinhalt", "UnitCubicHectometer", "volume", 3, "0", "HY"),
        I(228, "ItemReservoirInflow", "Reservoir inflow", "Speicherzufluss", "UnitCubicMeterPerSecond", "discharge", 3, "0", "HY"),
        I(229, "ItemReservoirOutflow", "Reservoir outflow", "Speicherabgabe", "UnitCubicMeterPerSecond", "discharge", 3, "0", "HY"),
        I(230, "ItemWaterDemand", "Water demand", "Wasserbedarf", "UnitCubicMeterPerDay", "discharge", 1, "0", "HU"),
        I(231, "ItemAbstractionRate", "Abstraction rate", "Entnahmerate", "UnitCubicMeterPerHour", "discharge", 2, "0", "HGU"),
        I(232, "ItemIrrigationDepth", "Irrigation depth", "Beregnungshöhe", "UnitMillimeter", "depth", 1, "0", "H"),
        I(233, "ItemLeafAreaIndex", "Leaf area index", "Blattflächenindex", "UnitSquareMeterPerSquareMeter", "areafraction", 2, "0", "HE"),
        I(234, "ItemCropCoefficient", "Crop coefficient", "Pflanzenkoeffizient", "UnitFraction", "fraction", 2, "1", "H"),
        I(235, "ItemSnowCoveredArea", "Snow-covered area fraction", "Anteil schneebedeckter Fläche", "UnitPercent", "fraction", 1, "0", "HM"),
        I(236, "ItemIceThickness", "Ice thickness", "Eisdicke", "UnitCentimeter", "snow", 1, "0", "HY"),
    ]),
    ("Hydraulics", [
        I(300, "ItemWaterLevel", "Water level", "Wasserstand", "UnitMeter", "level", 3, "0", "YHCU"),
        I(301, "ItemWaterDepth", "Water depth", "Wassertiefe", "UnitMeter", "level", 3, "0", "YHC"),
        I(302, "ItemDischarge", "Discharge", "Abfluss", "UnitCubicMeterPerSecond", "discharge", 3, "0", "YHU"),
        I(303, "ItemFlowVelocity", "Flow velocity", "Fließgeschwindigkeit", "UnitMeterPerSecond", "velocity", 3, "0", "YH"),
        I(304, "ItemCurrentSpeed", "Current speed", "Strömungsgeschwindigkeit", "UnitMeterPerSecond", "current", 3, "0", "YC"),
        I(305, "ItemCurrentDirection", "Current direction", "Strömungsrichtung", "UnitDegree", "direction", 1, "0", "YC"),
        I(306, "ItemBedLevel", "Bed level", "Sohlhöhe", "UnitMeter", "level", 3, "0", "YS"),
        I(307, "ItemCrossSectionalArea", "Cross-sectional area", "Querschnittsfläche", "UnitSquareMeter", "area", 3, "0", "Y"),
        I(308, "ItemWettedPerimeter", "Wetted perimeter", "Benetzter Umfang", "UnitMeter", "level", 3, "0", "Y"),
        I(309, "ItemHydraulicRadius", "Hydraulic radius", "Hydraulischer Radius", "UnitMeter", "level", 3, "0", "Y"),
        I(310, "ItemChannelWidth", "Channel width", "Gerinnebreite", "UnitMeter", "level", 2, "0", "Y"),
        I(311, "ItemManningCoefficient", "Manning roughness coefficient", "Rauheitsbeiwert nach Manning", "UnitSecondPerCubeRootMeter", "manning", 4, "0.03", "Y"),
        I(312, "ItemStricklerCoefficient", "Strickler coefficient", "Rauheitsbeiwert nach Strickler", "UnitCubeRootMeterPerSecond", "strickler", 1, "33", "Y"),
        I(313, "ItemChezyCoefficient", "Chezy coefficient", "Rauheitsbeiwert nach Chézy", "UnitSquareRootMeterPerSecond", "chezy", 1, "50", "Y"),
        I(314, "ItemRoughnessHeight", "Equivalent sand roughness", "Äquivalente Sandrauheit", "UnitMeter", "short", 4, "0", "YS"),
        I(315, "ItemBedSlope", "Bed slope", "Sohlgefälle", "UnitMeterPerMeter", "slope", 6, "0", "YS"),
        I(316, "ItemWaterSurfaceSlope", "Water surface slope", "Wasserspiegelgefälle", "UnitMeterPerMeter", "slope", 6, "0", "Y"),
        I(317, "ItemFroudeNumber", "Froude number", "Froude-Zahl", "UnitFraction", "number", 3, "0", "Y"),
        I(318, "ItemReynoldsNumber", "Reynolds number", "Reynolds-Zahl", "UnitFraction", "number", 0, "0", "YP"),
        I(319, "ItemBedShearStress", "Bed shear stress", "Sohlschubspannung", "UnitPascal", "stress", 3, "0", "YSC"),
        I(320, "ItemShearVelocity", "Shear velocity", "Schubspannungsgeschwindigkeit", "UnitMeterPerSecond", "velocity", 4, "0", "YS"),
        I(321, "ItemUnitDischarge", "Discharge per unit width", "Breitenbezogener Abfluss", "UnitSquareMeterPerSecond", "unitdischarge", 4, "0", "Y"),
        I(322, "ItemWeirCrestLevel", "Weir crest level", "Wehrkronenhöhe", "UnitMeter", "level", 3, "0", "Y"),
        I(323, "ItemGateOpening", "Gate opening", "Schützöffnung", "UnitMeter", "short", 3, "0", "Y"),
        I(324, "ItemPumpDischarge", "Pump discharge", "Pumpenförderstrom", "UnitCubicMeterPerHour", "pump", 2, "0", "YU"),
        I(325, "ItemHeadLoss", "Head loss", "Verlusthöhe", "UnitMeter", "level", 3, "0", "YU"),
        I(326, "ItemPipeDiameter", "Pipe diameter", "Rohrdurchmesser", "UnitMillimeter", "short", 0, "0", "YU"),
        I(327, "ItemPipePressure", "Pipe pressure", "Leitungsdruck", "UnitBar", "waterpressure", 2, "0", "YU"),
        I(328, "ItemFlowVolume", "Cumulative flow volume", "Kumuliertes Durchflussvolumen", "UnitCubicMeter", "volume", 1, "0", "YU"),
        I(329, "ItemOvertoppingDischarge", "Wave overtopping discharge", "Wellenüberlaufrate", "UnitLiterPerSecondPerMeter", "overtopping", 3, "0", "YWC"),
        I(330, "ItemEddyViscosity", "Eddy viscosity", "Turbulente Viskosität", "UnitSquareMeterPerSecond", "diffusivity", 4, "0", "YC"),
        I(331, "ItemDispersionCoefficient", "Dispersion coefficient", "Dispersionskoeffizient", "UnitSquareMeterPerSecond", "diffusivity", 4, "0", "YQ"),
        I(332, "ItemWaterLevelChangeRate", "Rate of water level change", "Wasserstandsänderungsrate", "UnitMeterPerHour", "levelrate", 3, "0", "YH"),
        I(333, "ItemTidalRange", "Tidal range", "Tidenhub", "UnitMeter", "level", 2, "0", "YC"),
        I(334, "ItemDischargeCoefficient", "Discharge coefficient", "Durchflussbeiwert", "UnitFraction", "number", 3, "0", "Y"),
        I(335, "ItemInundatedArea", "Inundated area", "Überflutete Fläche", "UnitHectare", "area", 2, "0", "YH"),
        I(336, "ItemFloodDuration", "Flood duration", "Überflutungsdauer", "UnitHour", "time", 1, "0", "YH"),
        I(337, "ItemTotalHead", "Total head", "Energiehöhe", "UnitMeter", "level", 3, "0", "Y"),
        I(338, "ItemStreamPower", "Stream power per unit bed area", "Spezifische Strömungsleistung", "UnitWattPerSquareMeter", "streampower", 2, "0", "YS"),
        I(339, "ItemWaterDensity", "Water density", "Dichte des Wassers", "UnitKilogramPerCubicMeter", "density", 3, "1000", "YQC"),
        I(340, "ItemStorageVolume", "Storage volume", "Speichervolumen", "UnitCubicMeter", "volume", 1, "0", "YU"),
        I(341, "ItemPipeFillingRatio", "Pipe filling ratio", "Füllungsgrad", "UnitPercent", "fraction", 1, "0", "U"),
        I(342, "ItemOverflowVolume", "Overflow volume", "Entlastungsvolumen", "UnitCubicMeter", "volume", 1, "0", "U"),
        I(343, "ItemOverflowDischarge", "Overflow discharge", "Entlastungsabfluss", "UnitLiterPerSecond", "discharge", 2, "0", "UY"),
        I(344, "ItemPerCapitaConsumption", "Per capita water consumption", "Pro-Kopf-Wasserverbrauch", "UnitLiterPerDay", "discharge", 1, "0", "U"),
    ]),
    ("Water quality", [
        I(400, "ItemWaterTemperature", "Water temperature", "Wassertemperatur", "UnitDegreeCelsius", "temp", 2, "0", "QHEC"),
        I(401, "ItemDissolvedOxygen", "Dissolved oxygen", "Gelöster Sauerstoff", "UnitMilligramPerLiter", "conc", 2, "0", "QE"),
        I(402, "ItemOxygenSaturation", "Oxygen saturation", "Sauerstoffsättigung", "UnitPercent", "fraction", 1, "0", "QE"),
        I(403, "ItemBiochemicalOxygenDemand", "Biochemical oxygen demand", "Biochemischer Sauerstoffbedarf", "UnitMilligramPerLiter", "conc", 2, "0", "QU"),
        I(404, "ItemChemicalOxygenDemand", "Chemical oxygen demand", "Chemischer Sauerstoffbedarf", "UnitMilligramPerLiter", "conc", 1, "0", "QU"),
        I(405, "ItemAmmoniumNitrogen", "Ammonium nitrogen", "Ammonium-Stickstoff", "UnitMilligramPerLiter", "conc", 3, "0", "QU"),
        I(406, "ItemNitrateNitrogen", "Nitrate nitrogen", "Nitrat-Stickstoff", "UnitMilligramPerLiter", "conc", 3, "0", "QG"),
        I(407, "ItemNitriteNitrogen", "Nitrite nitrogen", "Nitrit-Stickstoff", "UnitMilligramPerLiter", "conc", 3, "0", "Q"),
        I(408, "ItemTotalNitrogen", "Total nitrogen", "Gesamtstickstoff", "UnitMilligramPerLiter", "conc", 3, "0", "QU"),
        I(409, "ItemOrthophosphatePhosphorus", "Orthophosphate phosphorus", "Orthophosphat-Phosphor", "UnitMilligramPerLiter", "conc", 3, "0", "Q"),
        I(410, "ItemTotalPhosphorus", "Total phosphorus", "Gesamtphosphor", "UnitMilligramPerLiter", "conc", 3, "0", "QU"),
        I(411, "ItemChlorophyllA", "Chlorophyll a", "Chlorophyll a", "UnitMicrogramPerLiter", "trace", 2, "0", "QE"),
        I(412, "ItemTotalSuspendedSolids", "Total suspended solids", "Abfiltrierbare Stoffe", "UnitMilligramPerLiter", "conc", 1, "0", "QSU"),
        I(413, "ItemSalinity", "Salinity", "Salzgehalt", "UnitPracticalSalinityUnit", "salinity", 3, "0", "QC"),
        I(414, "ItemElectricalConductivity", "Electrical conductivity", "Elektrische Leitfähigkeit", "UnitMicrosiemensPerCentimeter", "ec", 1, "0", "QG"),
        I(415, "ItemPH", "pH value", "pH-Wert", "UnitFraction", "number", 2, "7", "QE"),
        I(416, "ItemEscherichiaColi", "Escherichia coli", "Escherichia coli", "UnitPerHundredMilliliter", "count", 0, "0", "QU"),
        I(417, "ItemIntestinalEnterococci", "Intestinal enterococci", "Intestinale Enterokokken", "UnitPerHundredMilliliter", "count", 0, "0", "Q"),
        I(418, "ItemFecalColiforms", "Fecal coliform bacteria", "Fäkalcoliforme Bakterien", "UnitPerHundredMilliliter", "count", 0, "0", "Q"),
        I(419, "ItemTotalOrganicCarbon", "Total organic carbon", "Gesamter organischer Kohlenstoff", "UnitMilligramPerLiter", "conc", 2, "0", "Q"),
        I(420, "ItemDissolvedOrganicCarbon", "Dissolved organic carbon", "Gelöster organischer Kohlenstoff", "UnitMilligramPerLiter", "conc", 2, "0", "Q"),
        I(421, "ItemChloride", "Chloride", "Chlorid", "UnitMilligramPerLiter", "conc", 1, "0", "QG"),
        I(422, "ItemSulfate", "Sulfate", "Sulfat", "UnitMilligramPerLiter", "conc", 1, "0", "QG"),
        I(423, "ItemDissolvedMetal", "Dissolved metal concentration", "Konzentration gelöster Metalle", "UnitMicrogramPerLiter", "trace", 3, "0", "Q"),
        I(424, "ItemPesticide", "Pesticide concentration", "Pestizidkonzentration", "UnitMicrogramPerLiter", "trace", 3, "0", "QG"),
        I(425, "ItemSecchiDepth", "Secchi depth", "Sichttiefe", "UnitMeter", "level", 2, "0", "QE"),
        I(426, "ItemLightExtinction", "Light extinction coefficient", "Lichtextinktionskoeffizient", "UnitPerMeter", "perlength", 3, "0", "QE"),
        I(427, "ItemPhotosyntheticPhotonFlux", "Photosynthetic photon flux density", "Photosynthetische Photonenflussdichte", "UnitMicromolePerSquareMeterPerSecond", "par", 1, "0", "QEM"),
        I(428, "ItemDailyLightIntegral", "Daily light integral", "Tageslichtintegral", "UnitMolePerSquareMeterPerDay", "dli", 2, "0", "E"),
        I(429, "ItemPollutantLoad", "Pollutant load", "Schadstofffracht", "UnitKilogramPerDay", "massflow", 3, "0", "QU"),
        I(430, "ItemSedimentOxygenDemand", "Sediment oxygen demand", "Sauerstoffzehrung des Sediments", "UnitGramPerSquareMeterPerDay", "massflux", 3, "0", "QS"),
        I(431, "ItemDecayRate", "First-order decay rate", "Abbaurate erster Ordnung", "UnitPerDay", "rate", 4, "0", "Q"),
        I(432, "ItemReaerationRate", "Reaeration rate", "Wiederbelüftungsrate", "UnitPerDay", "rate", 3, "0", "Q"),
        I(433, "ItemGrowthRate", "Maximum growth rate", "Maximale Wachstumsrate", "UnitPerDay", "rate", 3, "0", "QE"),
        I(434, "ItemMolarConcentration", "Molar concentration", "Stoffmengenkonzentration", "UnitMillimolePerLiter", "molar", 4, "0", "QP"),
        I(435, "ItemAlkalinity", "Alkalinity", "Alkalinität", "UnitMillimolePerLiter", "molar", 3, "0", "Q"),
        I(436, "ItemTotalHardness", "Total hardness", "Gesamthärte", "UnitMillimolePerLiter", "molar", 3, "0", "QG"),
        I(437, "ItemConcentration", "Concentration", "Konzentration", "UnitMilligramPerLiter", "conc", 3, "0", "QP"),
        I(438, "ItemSedimentContaminant", "Contaminant content of sediment", "Schadstoffgehalt im Sediment", "UnitMilligramPerKilogram", "massfraction", 3, "0", "QS"),
        I(439, "ItemPartitionCoefficient", "Partition coefficient", "Verteilungskoeffizient", "UnitLiterPerKilogram", "kd", 3, "0", "QSG"),
        I(440, "ItemOxygenProductionRate", "Oxygen production rate", "Sauerstoffproduktionsrate", "UnitMilligramPerLiterPerDay", "reaction", 3, "0", "QE"),
        I(441, "ItemReactionRate", "Volumetric reaction rate", "Volumenbezogene Reaktionsrate", "UnitGramPerCubicMeterPerDay", "reaction", 3, "0", "Q"),
        I(442, "ItemDissolvedInorganicCarbon", "Dissolved inorganic carbon", "Gelöster anorganischer Kohlenstoff", "UnitMicromolePerKilogram", "molality", 1, "0", "QC"),
        I(443, "ItemPhytoplanktonBiomass", "Phytoplankton biomass", "Phytoplanktonbiomasse", "UnitGramPerCubicMeter", "conc", 3, "0", "QE"),
        I(444, "ItemTotalBacterialCount", "Total bacterial count", "Gesamtkeimzahl", "UnitPerMilliliter", "count", 0, "0", "Q"),
    ]),
    ("Meteorology", [
        I(500, "ItemAirTemperature", "Air temperature", "Lufttemperatur", "UnitDegreeCelsius", "temp", 1, "0", "MH"),
        I(501, "ItemDewPointTemperature", "Dew point temperature", "Taupunkttemperatur", "UnitDegreeCelsius", "temp", 1, "0", "M"),
        I(502, "ItemRelativeHumidity", "Relative humidity", "Relative Luftfeuchte", "UnitPercent", "fraction", 1, "0", "M"),
        I(503, "ItemSpecificHumidity", "Specific humidity", "Spezifische Luftfeuchte", "UnitGramPerKilogram", "massfraction", 2, "0", "M"),
        I(504, "ItemVapourPressure", "Vapour pressure", "Dampfdruck", "UnitHectopascal", "airpressure", 2, "0", "M"),
        I(505, "ItemAirPressure", "Air pressure", "Luftdruck", "UnitHectopascal", "airpressure", 1, "1013.25", "MC"),
        I(506, "ItemSeaLevelPressure", "Mean sea level pressure", "Auf Meereshöhe reduzierter Luftdruck", "UnitHectopascal", "airpressure", 1, "1013.25", "MC"),
        I(507, "ItemWindSpeed", "Wind speed", "Windgeschwindigkeit", "UnitMeterPerSecond", "wind", 1, "0", "MWC"),
        I(508, "ItemWindDirection", "Wind direction", "Windrichtung", "UnitDegree", "direction", 0, "0", "MWC"),
        I(509, "ItemWindGust", "Wind gust speed", "Böengeschwindigkeit", "UnitMeterPerSecond", "wind", 1, "0", "M"),
        I(510, "ItemGlobalRadiation", "Global radiation", "Globalstrahlung", "UnitWattPerSquareMeter", "irradiance", 1, "0", "MHE"),
        I(511, "ItemNetRadiation", "Net radiation", "Strahlungsbilanz", "UnitWattPerSquareMeter", "irradiance", 1, "0", "MH"),
        I(512, "ItemLongwaveRadiation", "Incoming longwave radiation", "Atmosphärische Gegenstrahlung", "UnitWattPerSquareMeter", "irradiance", 1, "0", "M"),
        I(513, "ItemRadiationSum", "Radiation sum", "Strahlungssumme", "UnitMegajoulePerSquareMeter", "energyarea", 2, "0", "MH"),
        I(514, "ItemSunshineDuration", "Sunshine duration", "Sonnenscheindauer", "UnitHour", "time", 1, "0", "M"),
        I(515, "ItemCloudCover", "Cloud cover", "Bedeckungsgrad", "UnitOkta", "cloud", 0, "0", "M"),
        I(516, "ItemVisibility", "Visibility", "Sichtweite", "UnitKilometer", "distance", 1, "0", "M"),
        I(517, "ItemAirDensity", "Air density", "Luftdichte", "UnitKilogramPerCubicMeter", "density", 3, "1.225", "M"),
        I(518, "ItemWindStress", "Wind stress", "Windschubspannung", "UnitPascal", "stress", 4, "0", "MCW"),
        I(519, "ItemLatentHeatFlux", "Latent heat flux", "Latenter Wärmestrom", "UnitWattPerSquareMeter", "irradiance", 1, "0", "MQ"),
        I(520, "ItemSensibleHeatFlux", "Sensible heat flux", "Fühlbarer Wärmestrom", "UnitWattPerSquareMeter", "irradiance", 1, "0", "MQ"),
        I(521, "ItemSoilTemperature", "Soil temperature", "Bodentemperatur", "UnitDegreeCelsius", "temp", 1, "0", "MH"),
        I(522, "ItemPrecipitableWater", "Precipitable water", "Niederschlagbares Wasser", "UnitMillimeter", "depth", 1, "0", "M"),
        I(523, "ItemWindDragCoefficient", "Wind drag coefficient", "Windschubbeiwert", "UnitFraction", "number", 5, "0", "MWC"),
        I(524, "ItemLapseRate", "Temperature lapse rate", "Vertikaler Temperaturgradient", "UnitKelvinPerKilometer", "tempgrad", 2, "0", "M"),
        I(525, "ItemSnowfallDepth", "Snowfall depth", "Neuschneehöhe", "UnitCentimeter", "snow", 1, "0", "MH"),
    ]),
    ("Waves", [
        I(600, "ItemSignificantWaveHeight", "Significant wave height", "Signifikante Wellenhöhe", "UnitMeter", "level", 2, "0", "WC"),
        I(601, "ItemMaximumWaveHeight", "Maximum wave height", "Maximale Wellenhöhe", "UnitMeter", "level", 2, "0", "WC"),
        I(602, "ItemPeakWavePeriod", "Peak wave period", "Peakperiode der Wellen", "UnitSecond", "period", 2, "0", "WC"),
        I(603, "ItemMeanWavePeriod", "Mean wave period", "Mittlere Wellenperiode", "UnitSecond", "period", 2, "0", "W"),
        I(604, "ItemZeroCrossingPeriod", "Zero-crossing wave period", "Nulldurchgangsperiode der Wellen", "UnitSecond", "period", 2, "0", "W"),
        I(605, "ItemMeanWaveDirection", "Mean wave direction", "Mittlere Wellenrichtung", "UnitDegree", "direction", 1, "0", "WC"),
        I(606, "ItemPeakWaveDirection", "Peak wave direction", "Wellenrichtung im Spektralmaximum", "UnitDegree", "direction", 1, "0", "W"),
        I(607, "ItemDirectionalSpreading", "Directional spreading", "Richtungsstreuung", "UnitDegree", "direction", 1, "0", "W"),
        I(608, "ItemWavelength", "Wavelength", "Wellenlänge", "UnitMeter", "level", 2, "0", "W"),
        I(609, "ItemWaveSteepness", "Wave steepness", "Wellensteilheit", "UnitFraction", "fraction", 4, "0", "W"),
        I(610, "ItemWaveEnergyDensity", "Wave energy density", "Wellenenergiedichte", "UnitJoulePerSquareMeter", "energyarea", 1, "0", "W"),
        I(611, "ItemWavePower", "Wave power", "Wellenenergiefluss", "UnitKilowattPerMeter", "powerlength", 2, "0", "WC"),
        I(612, "ItemWaveFrequency", "Wave frequency", "Wellenfrequenz", "UnitHertz", "wavefrequency", 4, "0", "W"),
        I(613, "ItemWaveSpectralDensity", "Wave spectral density", "Spektrale Energiedichte der Wellen", "UnitSquareMeterPerHertz", "spectral", 4, "0", "W"),
        I(614, "ItemWaveCelerity", "Wave celerity", "Wellenfortschrittsgeschwindigkeit", "UnitMeterPerSecond", "velocity", 2, "0", "W"),
        I(615, "ItemWaveNumber", "Wave number", "Wellenzahl", "UnitRadianPerMeter", "wavenumber", 4, "0", "W"),
        I(616, "ItemOrbitalVelocity", "Near-bed orbital velocity", "Sohlnahe Orbitalgeschwindigkeit", "UnitMeterPerSecond", "velocity", 3, "0", "WS"),
        I(617, "ItemRadiationStress", "Radiation stress", "Radiationsspannung", "UnitNewtonPerMeter", "forcelength", 1, "0", "WC"),
        I(618, "ItemWaveSetup", "Wave setup", "Wellenstau", "UnitMeter", "level", 3, "0", "WC"),
        I(619, "ItemWaveRunup", "Wave run-up height", "Wellenauflaufhöhe", "UnitMeter", "level", 2, "0", "WC"),
        I(620, "ItemSwellHeight", "Swell wave height", "Dünungshöhe", "UnitMeter", "level", 2, "0", "W"),
        I(621, "ItemSwellPeriod", "Swell wave period", "Dünungsperiode", "UnitSecond", "period", 2, "0", "W"),
        I(622, "ItemWindSeaHeight", "Wind sea wave height", "Windseehöhe", "UnitMeter", "level", 2, "0", "W"),
        I(623, "ItemWaveAngularFrequency", "Wave angular frequency", "Kreisfrequenz der Wellen", "UnitRadianPerSecond", "angvel", 4, "0", "W"),
    ]),
    ("Groundwater", [
        I(700, "ItemGroundwaterHead", "Groundwater head", "Grundwasserstand", "UnitMeter", "level", 3, "0", "G"),
        I(701, "ItemDepthToGroundwater", "Depth to groundwater", "Grundwasserflurabstand", "UnitMeter", "level", 2, "0", "GH"),
        I(702, "ItemDrawdown", "Drawdown", "Absenkung", "UnitMeter", "level", 3, "0", "G"),
        I(703, "ItemHydraulicConductivity", "Hydraulic conductivity", "Durchlässigkeitsbeiwert", "UnitMeterPerSecond", "conductivity", 8, "0", "G"),
        I(704, "ItemTransmissivity", "Transmissivity", "Transmissivität", "UnitSquareMeterPerDay", "transmissivity", 3, "0", "G"),
        I(705, "ItemStorageCoefficient", "Storage coefficient", "Speicherkoeffizient", "UnitFraction", "fraction", 6, "0", "G"),
        I(706, "ItemSpecificYield", "Specific yield", "Entwässerbarer Porenanteil", "UnitFraction", "fraction", 3, "0", "G"),
        I(707, "ItemSpecificStorage", "Specific storage", "Spezifischer Speicherkoeffizient", "UnitPerMeter", "perlength", 8, "0", "G"),
        I(708, "ItemPorosity", "Porosity", "Porosität", "UnitFraction", "fraction", 3, "0", "GS"),
        I(709, "ItemGroundwaterRecharge", "Groundwater recharge", "Grundwasserneubildung", "UnitMillimeterPerYear", "recharge", 1, "0", "GH"),
        I(710, "ItemPumpingRate", "Well pumping rate", "Brunnenförderrate", "UnitCubicMeterPerHour", "pump", 2, "0", "GU"),
        I(711, "ItemLeakageCoefficient", "Leakage coefficient", "Leakage-Koeffizient", "UnitPerDay", "rate", 6, "0", "G"),
        I(712, "ItemIntrinsicPermeability", "Intrinsic permeability", "Intrinsische Permeabilität", "UnitDarcy", "permeability", 3, "0", "G"),
        I(713, "ItemDarcyFlux", "Darcy flux", "Darcy-Geschwindigkeit", "UnitMeterPerDay", "conductivity", 4, "0", "G"),
        I(714, "ItemHydraulicGradient", "Hydraulic gradient", "Hydraulischer Gradient", "UnitMeterPerMeter", "slope", 5, "0", "G"),
        I(715, "ItemAquiferThickness", "Aquifer thickness", "Grundwassermächtigkeit", "UnitMeter", "level", 2, "0", "G"),
        I(716, "ItemCompressibility", "Compressibility", "Kompressibilität", "UnitPerPascal", "compressibility", 12, "0", "GP"),
        I(717, "ItemPorePressure", "Pore water pressure", "Porenwasserdruck", "UnitKilopascal", "waterpressure", 2, "0", "G"),
        I(718, "ItemLongitudinalDispersivity", "Longitudinal dispersivity", "Longitudinale Dispersivität", "UnitMeter", "level", 3, "0", "GQ"),
        I(719, "ItemSeepageVelocity", "Seepage velocity", "Abstandsgeschwindigkeit", "UnitMeterPerDay", "conductivity", 4, "0", "G"),
    ]),
    ("Sediment transport and morphology", [
        I(800, "ItemSuspendedSedimentConcentration", "Suspended sediment concentration", "Schwebstoffkonzentration", "UnitMilligramPerLiter", "conc", 1, "0", "SQC"),
        I(801, "ItemBedLoadTransport", "Bed-load transport rate per unit width", "Geschiebetransportrate pro Breiteneinheit", "UnitKilogramPerSecondPerMeter", "massflowwidth", 5, "0", "S"),
        I(802, "ItemVolumetricSedimentTransport", "Volumetric sediment transport per unit width", "Volumetrische Sedimenttransportrate pro Breiteneinheit", "UnitCubicMeterPerSecondPerMeter", "unitdischarge", 8, "0", "SC"),
        I(803, "ItemSuspendedLoad", "Suspended sediment load", "Schwebstofffracht", "UnitTonnePerDay", "massflow", 2, "0", "SH"),
        I(804, "ItemGrainDiameter", "Grain diameter", "Korndurchmesser", "UnitMillimeter", "short", 3, "0", "S"),
        I(805, "ItemSedimentDensity", "Sediment particle density", "Feststoffdichte", "UnitKilogramPerCubicMeter", "density", 0, "2650", "S"),
        I(806, "ItemDryBulkDensity", "Dry bulk density", "Trockenrohdichte", "UnitKilogramPerCubicMeter", "density", 0, "0", "SG"),
        I(807, "ItemBedLevelChange", "Bed level change", "Sohlhöhenänderung", "UnitMeter", "level", 3, "0", "SY"),
        I(808, "ItemSedimentationRate", "Sedimentation rate", "Sedimentationsrate", "UnitMillimeterPerYear", "sedimentation", 2, "0", "S"),
        I(809, "ItemErosionFlux", "Erosion flux", "Erosionsrate", "UnitKilogramPerSquareMeterPerSecond", "massflux", 6, "0", "S"),
        I(810, "ItemCriticalShearStress", "Critical shear stress", "Kritische Schubspannung", "UnitPascal", "stress", 3, "0", "S"),
        I(811, "ItemSedimentVolume", "Sediment volume", "Sedimentvolumen", "UnitCubicMeter", "volume", 1, "0", "S"),
        I(812, "ItemSedimentYield", "Specific sediment yield", "Spezifischer Sedimentaustrag", "UnitTonnePerSquareKilometerPerYear", "massflux", 2, "0", "SH"),
        I(813, "ItemSettlingVelocity", "Settling velocity", "Sinkgeschwindigkeit", "UnitMillimeterPerSecond", "slowvelocity", 4, "0", "SQ"),
        I(814, "ItemSedimentMassPerArea", "Sediment mass per unit area", "Flächenbezogene Sedimentmasse", "UnitKilogramPerSquareMeter", "massperarea", 3, "0", "S"),
        I(815, "ItemMudFraction", "Mud fraction", "Schlickanteil", "UnitPercent", "fraction", 1, "0", "SC"),
    ]),
    ("Any unit", [
        I(999, "ItemAnyUnit", "Any unit", "Beliebige Einheit", "UnitFraction", None, 3, "0", "P"),
    ]),
]


def all_units():
    return [u for _, group in UNIT_GROUPS for u in group]


def all_items():
    return [i for _, group in ITEM_GROUPS for i in group]


def allowed_units(item):
    """The AllowedUnits list of an item type: its set without the default unit."""
    if item.units is None:
        return []
    members = S[item.units]
    if item.default not in members:
        raise SystemExit("%s: default unit %s is not in set %s" % (item.ident, item.default, item.units))
    return [u for u in members if u != item.default]


def filter_members(ident):
    letter = [k for k, v in FILTER_LETTERS.items() if v == ident][0]
    return [i.ident for i in all_items() if letter in i.filters]


def xml_attr(text):
    """Escapes a text for a double-quoted XML attribute value."""
    return (text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
            .replace('"', "&quot;"))


def row(attributes):
    parts = ['%s="%s"' % (name, xml_attr(value)) for name, value in attributes if value is not None]
    return "      <R " + " ".join(parts) + "/>\n"


def key_range(keys):
    return "%d-%d" % (min(keys), max(keys)) if len(keys) > 1 else "%d" % keys[0]


def setup_file():
    out = ['<?xml version="1.0" encoding="UTF-8"?>\n',
           "<!--\n",
           "  Default setup of the engineering-unit library: units, item types and filters.\n",
           "  Written by data/tools/make_installation.py from its tables; edit the tables there\n",
           "  and run the script again instead of editing this file by hand.\n",
           "  Unit expressions are read left to right without operator precedence:\n",
           "  a/(b^2) needs the parentheses. They may use the base dimensions NonDimensional,\n",
           "  Length, Mass, Time, Temperature, ElectricCurrent, AmountOfSubstance,\n",
           "  LuminousIntensity and the units of earlier rows.\n",
           "-->\n",
           # The loader's parser always validates: with the document type
           # declared, a well-formed file validates without a report for
           # every element and attribute (which costs about a sixth of a
           # load), and editors and checkers can validate it too.
           "<!DOCTYPE XUN [\n",
           "  <!ELEMENT XUN (Group*)>\n",
           "  <!ELEMENT Group (Rows)>\n",
           "  <!ATTLIST Group Name CDATA #REQUIRED>\n",
           "  <!ELEMENT Rows (R*)>\n",
           "  <!ELEMENT R EMPTY>\n",
           "  <!ATTLIST R\n",
           "    Ident CDATA #IMPLIED KvId CDATA #IMPLIED Desc CDATA #IMPLIED\n",
           "    Abbr CDATA #IMPLIED Alias CDATA #IMPLIED Expr CDATA #IMPLIED\n",
           "    Decimals CDATA #IMPLIED DefaultValue CDATA #IMPLIED DefaultUnit CDATA #IMPLIED\n",
           "    AllowedUnits CDATA #IMPLIED UserUnit CDATA #IMPLIED Items CDATA #IMPLIED>\n",
           "]>\n",
           "<XUN>\n",
           '  <Group Name="Units">\n',
           "    <Rows>\n"]
    for title, group in UNIT_GROUPS:
        out.append("      <!-- %s (keys %s) -->\n" % (title, key_range([u.key for u in group])))
        for u in group:
            out.append(row([("Ident", u.ident), ("KvId", str(u.key)), ("Desc", u.en), ("Abbr", u.abbr),
                            ("Alias", u.aliases or None), ("Expr", u.expr)]))
    out += ["    </Rows>\n", "  </Group>\n", '  <Group Name="Items">\n', "    <Rows>\n"]
    for title, group in ITEM_GROUPS:
        out.append("      <!-- %s (keys %s) -->\n" % (title, key_range([i.key for i in group])))
        for i in group:
            allowed = allowed_units(i)
            out.append(row([("Ident", i.ident), ("KvId", str(i.key)), ("Desc", i.en),
                            ("Decimals", str(i.decimals)), ("DefaultValue", i.value),
                            ("DefaultUnit", i.default),
                            ("AllowedUnits", ";".join(allowed) if allowed else None)]))
    out += ["    </Rows>\n", "  </Group>\n", '  <Group Name="Filters">\n', "    <Rows>\n"]
    for bit, ident, en, _ in FILTERS:
        out.append(row([("Ident", ident), ("KvId", "0x%04X" % bit), ("Desc", en),
                        ("Items", ";".join(filter_members(ident)))]))
    out += ["    </Rows>\n", "  </Group>\n", "</XUN>\n"]
    return "".join(out)


LANGUAGE_NAMES = {"en": "English", "de": "German"}


def type_file(kind, language, entries):
    out = ["%s texts of the engineering-unit library (%s)\n" % (kind, LANGUAGE_NAMES[language]),
           'One line per key: <key> "<text>"; the list ends with END\n']
    out += ['%d "%s"\n' % (key, text) for key, text in entries]
    out.append("END\n")
    return "".join(out)


def unit_file(language):
    out = ["Unit texts of the engineering-unit library (%s)\n" % LANGUAGE_NAMES[language],
           'Two lines per unit key: <key> "<description>", then <key> "<abbreviation>"; the list ends with END\n']
    for u in all_units():
        desc = u.en if language == "en" else u.de
        abbr = u.abbr if language == "en" or u.de_abbr is None else u.de_abbr
        out.append('%d "%s"\n' % (u.key, desc))
        out.append('%d "%s"\n' % (u.key, abbr))
    out.append("END\n")
    return "".join(out)


def language_files(language):
    items = [(i.key, i.en if language == "en" else i.de) for i in all_items()]
    filters = [(bit, en if language == "en" else de) for bit, _, en, de in FILTERS]
    return {
        "xuntype.lan": type_file("Item type", language, items),
        "xununit.lan": unit_file(language),
        "xunfilter.lan": type_file("Filter", language, filters),
    }


def outputs():
    files = {"bin/XUN.xml": setup_file()}
    for name, text in language_files("en").items():
        files["bin/" + name] = text
    for language in ("en", "de"):
        for name, text in language_files(language).items():
            files["lang/%s/%s" % (language, name)] = text
    return {path: text.encode("utf-8") for path, text in files.items()}


def sanity_check():
    """Catches table mistakes before anything is written; the full check of the
    written files is check_installation.py."""
    problems = []
    for kind, keys in (("unit", [u.key for u in all_units()]), ("item", [i.key for i in all_items()]),
                       ("filter", [f[0] for f in FILTERS])):
        dup = sorted({k for k in keys if keys.count(k) > 1})
        if dup:
            problems.append("duplicate %s keys: %s" % (kind, dup))
    for u in all_units():
        for text in (u.en, u.abbr, u.de, u.de_abbr or "x", u.aliases):
            if '"' in text or "\n" in text:
                problems.append("unit %s: text with a double quote or line break" % u.ident)
        if any(ord(c) > 127 for c in u.aliases):
            problems.append("unit %s: aliases must be ASCII" % u.ident)
    for i in all_items():
        if i.units is not None and i.units not in S:
            problems.append("item %s: unknown unit set %s" % (i.ident, i.units))
        if any(c not in FILTER_LETTERS for c in i.filters):
            problems.append("item %s: unknown filter letter in %s" % (i.ident, i.filters))
    if problems:
        raise SystemExit("\n".join(problems))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--data", default=os.path.dirname(os.path.dirname(os.path.abspath(__file__))),
                        help="data directory to write into (default: the one holding this script)")
    parser.add_argument("--verify", action="store_true",
                        help="compare with the files on disk instead of writing them")
    args = parser.parse_args()
    sanity_check()
    differing = []
    for path, content in sorted(outputs().items()):
        full = os.path.join(args.data, path)
        if args.verify:
            try:
                with open(full, "rb") as f:
                    if f.read() != content:
                        differing.append(path)
            except OSError:
                differing.append(path)
            continue
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "wb") as f:
            f.write(content)
        print("wrote %s (%d bytes)" % (full, len(content)))
    if args.verify:
        if differing:
            print("differs from the tables: " + ", ".join(differing))
            return 1
        print("all files match the tables")
    return 0


if __name__ == "__main__":
    sys.exit(main())
