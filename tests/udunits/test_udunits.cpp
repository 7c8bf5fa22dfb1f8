// An independent check of the default installation (data/bin/XUN.xml): every
// unit it defines is either compared with the same unit in UDUNITS-2, a unit
// database maintained outside this project, or listed below with the reason
// why UDUNITS-2 cannot express it. A unit added to XUN.xml must be classified
// here before this test passes again.
//
// The comparison: UDUNITS-2 converts the unit into the coherent SI unit of our
// unit's dimension (built from our seven exponents). That conversion is
// x -> f·x + o exactly when our unit has factor f and offset o, so
//   UDUNITS(0)              must equal o, and
//   UDUNITS(1) - UDUNITS(0) must equal f,
// each within 1e-12 relative. The factor is compared relative to |f|; the
// offset relative to max(|o|, |f|), because most offsets are 0 and a relative
// error of or against 0 means nothing, while max(|o|, |f|) is the size of the
// numbers the conversion adds up.
#include <gtest/gtest.h>

#include <udunits2.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "udunits_handles.h"
#include "xun.h"

namespace {

struct Expressible {
    const char* ident;
    const char* udunits; // a unit string that UDUNITS-2 parses
};

struct NotExpressible {
    const char* ident;
    const char* reason;
};

// Our unit ident -> the same unit written for UDUNITS-2, in key order.
//
// The strings use UDUNITS-2's own unit names and SI prefixes. A number appears
// only where it is part of our unit's exact definition and UDUNITS-2 has no
// name for that definition, so that the check still rests on UDUNITS-2's units:
//  - "231 in^3" for the US gallon: UDUNITS-2 rounds its gallon to 3.785412 l,
//    but the US gallon is exactly 231 in³ = 3.785411784 l.
//  - "43560 ft^2" for the acre and "6 ft" for the fathom: UDUNITS-2 defines both
//    from the US survey foot; ours are the international acre and fathom
//    (international foot, the US definition since 2023).
//  - "550 ft.lbf/s" and "75 kgf.m/s" for the horsepowers, which UDUNITS-2
//    rounds to 745.6999 W and 735.499 W; "lb/16" for the ounce, which it
//    rounds to 28.34952 g.
//  - "centipoise.cm^2/s/atm" for the darcy, its definition (1 cP at 1 cm/s
//    under 1 atm/cm): UDUNITS-2 rounds the darcy to 9.869233e-13 m².
//  - "atm/760" for the torr: UDUNITS-2 equates the torr with the millimetre of
//    mercury (133.322387415 Pa), but the torr is exactly 101325/760 Pa.
//  - "lm/ft^2" for the foot-candle: UDUNITS-2 defines it as 0.1076391 lx,
//    a hundredth of the 10.76391 lx that one lumen per square foot is.
//  - counts in the name: "1000 ft^3/s" (kcfs), "1e6 UK_liquid_gallon" (MIG),
//    "1/(100 mL)", "1e-3 centipoise.cm^2/s/atm" (millidarcy), "12 mm/Julian_year"
//    (our month is a twelfth of the year).
// Names chosen on purpose: our year is the Julian year (UDUNITS-2's "year" is
// the tropical year), our calorie the thermochemical one (UDUNITS-2's
// "calorie" is the International Table calorie). Symbols that UDUNITS-2 reads
// differently are avoided: "mph" (milliphot), "kt" (knot), "oz" (fluid ounce),
// "mb" (millibarn), "mH2O" (milli-H2O).
const Expressible kExpressible[] = {
    // Dimensionless ratios
    {"UnitFraction", "1"},
    {"UnitPercent", "percent"},
    {"UnitPartPerMillion", "ppm"},
    {"UnitPartPerBillion", "ppb"},
    // Plane and solid angle
    {"UnitRadian", "rad"},
    {"UnitMilliradian", "mrad"},
    {"UnitDegree", "arc_degree"},
    {"UnitArcminute", "arc_minute"},
    {"UnitArcsecond", "arc_second"},
    {"UnitGon", "grade"},
    {"UnitRevolution", "revolution"},
    {"UnitSteradian", "sr"},
    // Length
    {"UnitMeter", "m"},
    {"UnitKilometer", "km"},
    {"UnitDecimeter", "dm"},
    {"UnitCentimeter", "cm"},
    {"UnitMillimeter", "mm"},
    {"UnitMicrometer", "um"},
    {"UnitNanometer", "nm"},
    {"UnitAngstrom", "angstrom"},
    {"UnitFoot", "ft"},
    {"UnitInch", "in"},
    {"UnitYard", "yd"},
    {"UnitMile", "mile"},
    {"UnitNauticalMile", "nautical_mile"},
    {"UnitUSSurveyFoot", "US_survey_foot"},
    {"UnitFathom", "6 ft"},
    // Area
    {"UnitSquareMeter", "m^2"},
    {"UnitSquareKilometer", "km^2"},
    {"UnitHectare", "hectare"},
    {"UnitSquareCentimeter", "cm^2"},
    {"UnitSquareMillimeter", "mm^2"},
    {"UnitSquareFoot", "ft^2"},
    {"UnitSquareInch", "in^2"},
    {"UnitSquareYard", "yd^2"},
    {"UnitSquareMile", "mile^2"},
    {"UnitAcre", "43560 ft^2"},
    {"UnitDarcy", "centipoise.cm^2/s/atm"},
    {"UnitMillidarcy", "1e-3 centipoise.cm^2/s/atm"},
    // Volume
    {"UnitCubicMeter", "m^3"},
    {"UnitLiter", "L"},
    {"UnitMilliliter", "mL"},
    {"UnitMicroliter", "uL"},
    {"UnitHectoliter", "hL"},
    {"UnitMegaliter", "ML"},
    {"UnitCubicCentimeter", "cm^3"},
    {"UnitCubicMillimeter", "mm^3"},
    {"UnitCubicKilometer", "km^3"},
    {"UnitCubicHectometer", "hm^3"},
    {"UnitCubicFoot", "ft^3"},
    {"UnitCubicInch", "in^3"},
    {"UnitCubicYard", "yd^3"},
    {"UnitUSGallon", "231 in^3"},
    {"UnitImperialGallon", "UK_liquid_gallon"},
    {"UnitOilBarrel", "42*231 in^3"},
    {"UnitAcreFoot", "43560 ft^3"},
    {"UnitAcreInch", "43560 ft^2.in"},
    {"UnitMillionUSGallon", "1e6*231 in^3"},
    {"UnitMillionImperialGallon", "1e6 UK_liquid_gallon"},
    // Mass
    {"UnitKilogram", "kg"},
    {"UnitGram", "g"},
    {"UnitMilligram", "mg"},
    {"UnitMicrogram", "ug"},
    {"UnitNanogram", "ng"},
    {"UnitTonne", "tonne"},
    {"UnitKilotonne", "kilotonne"},
    {"UnitPound", "lb"},
    {"UnitOunce", "lb/16"},
    {"UnitShortTon", "short_ton"},
    {"UnitLongTon", "long_ton"},
    {"UnitGrain", "grain"},
    // Time
    {"UnitSecond", "s"},
    {"UnitMillisecond", "ms"},
    {"UnitMicrosecond", "us"},
    {"UnitMinute", "min"},
    {"UnitHour", "h"},
    {"UnitDay", "day"},
    {"UnitWeek", "week"},
    {"UnitYear", "Julian_year"},
    {"UnitMonth", "Julian_year/12"},
    {"UnitCommonYear", "common_year"},
    // Frequency, rates and angular velocity
    {"UnitHertz", "Hz"},
    {"UnitMillihertz", "mHz"},
    {"UnitKilohertz", "kHz"},
    {"UnitMegahertz", "MHz"},
    {"UnitPerSecond", "1/s"},
    {"UnitPerMinute", "1/min"},
    {"UnitPerHour", "1/h"},
    {"UnitPerDay", "1/day"},
    {"UnitPerYear", "1/Julian_year"},
    {"UnitRadianPerSecond", "rad/s"},
    {"UnitDegreePerSecond", "arc_degree/s"},
    {"UnitRevolutionPerMinute", "revolution/min"},
    {"UnitBecquerel", "Bq"},
    // Temperature and temperature difference. A Fahrenheit difference has the
    // size of a Rankine degree, a Celsius difference that of a kelvin.
    {"UnitKelvin", "K"},
    {"UnitDegreeCelsius", "degC"},
    {"UnitDegreeFahrenheit", "degF"},
    {"UnitDegreeRankine", "degR"},
    {"UnitDegreeCelsiusDifference", "K"},
    {"UnitDegreeFahrenheitDifference", "degR"},
    {"UnitMillikelvin", "mK"},
    // Amount of substance
    {"UnitMole", "mol"},
    {"UnitMillimole", "mmol"},
    {"UnitMicromole", "umol"},
    {"UnitNanomole", "nmol"},
    {"UnitKilomole", "kmol"},
    // Photometry
    {"UnitCandela", "cd"},
    {"UnitLumen", "lm"},
    {"UnitLux", "lx"},
    {"UnitKilolux", "klx"},
    {"UnitFootCandle", "lm/ft^2"},
    {"UnitCandelaPerSquareMeter", "cd/m^2"},
    // Velocity
    {"UnitMeterPerSecond", "m/s"},
    {"UnitCentimeterPerSecond", "cm/s"},
    {"UnitMillimeterPerSecond", "mm/s"},
    {"UnitMeterPerMinute", "m/min"},
    {"UnitMeterPerHour", "m/h"},
    {"UnitMeterPerDay", "m/day"},
    {"UnitCentimeterPerDay", "cm/day"},
    {"UnitKilometerPerHour", "km/h"},
    {"UnitKilometerPerDay", "km/day"},
    {"UnitFootPerSecond", "ft/s"},
    {"UnitFootPerMinute", "ft/min"},
    {"UnitFootPerDay", "ft/day"},
    {"UnitMilePerHour", "mile/h"},
    {"UnitKnot", "knot"},
    {"UnitUSGallonPerDayPerSquareFoot", "231 in^3/day/ft^2"},
    // Precipitation depths and rates
    {"UnitLiterPerSquareMeter", "L/m^2"},
    {"UnitCubicMeterPerHectare", "m^3/hectare"},
    {"UnitMillimeterPerMinute", "mm/min"},
    {"UnitMillimeterPerHour", "mm/h"},
    {"UnitMillimeterPerDay", "mm/day"},
    {"UnitMillimeterPerMonth", "12 mm/Julian_year"},
    {"UnitMillimeterPerYear", "mm/Julian_year"},
    {"UnitMicrometerPerSecond", "um/s"},
    {"UnitCentimeterPerHour", "cm/h"},
    {"UnitInchPerHour", "in/h"},
    {"UnitInchPerDay", "in/day"},
    {"UnitInchPerYear", "in/Julian_year"},
    {"UnitLiterPerSecondPerHectare", "L/s/hectare"},
    // Acceleration
    {"UnitMeterPerSecondSquared", "m/s^2"},
    {"UnitCentimeterPerSecondSquared", "cm/s^2"},
    {"UnitFootPerSecondSquared", "ft/s^2"},
    {"UnitStandardGravity", "standard_free_fall"},
    // Discharge
    {"UnitCubicMeterPerSecond", "m^3/s"},
    {"UnitCubicMeterPerMinute", "m^3/min"},
    {"UnitCubicMeterPerHour", "m^3/h"},
    {"UnitCubicMeterPerDay", "m^3/day"},
    {"UnitCubicMeterPerYear", "m^3/Julian_year"},
    {"UnitLiterPerSecond", "L/s"},
    {"UnitLiterPerMinute", "L/min"},
    {"UnitLiterPerHour", "L/h"},
    {"UnitLiterPerDay", "L/day"},
    {"UnitMegaliterPerDay", "ML/day"},
    {"UnitCubicHectometerPerYear", "hm^3/Julian_year"},
    {"UnitCubicKilometerPerYear", "km^3/Julian_year"},
    {"UnitCubicFootPerSecond", "ft^3/s"},
    {"UnitCubicFootPerMinute", "ft^3/min"},
    {"UnitThousandCubicFootPerSecond", "1000 ft^3/s"},
    {"UnitUSGallonPerMinute", "231 in^3/min"},
    {"UnitUSGallonPerDay", "231 in^3/day"},
    {"UnitMillionUSGallonPerDay", "1e6*231 in^3/day"},
    {"UnitMillionImperialGallonPerDay", "1e6 UK_liquid_gallon/day"},
    {"UnitImperialGallonPerMinute", "UK_liquid_gallon/min"},
    {"UnitAcreFootPerDay", "43560 ft^3/day"},
    {"UnitAcreFootPerYear", "43560 ft^3/Julian_year"},
    // Discharge per catchment area
    {"UnitLiterPerSecondPerSquareKilometer", "L/s/km^2"},
    {"UnitCubicMeterPerSecondPerSquareKilometer", "m^3/s/km^2"},
    {"UnitCubicFootPerSecondPerSquareMile", "ft^3/s/mile^2"},
    // Area per time
    {"UnitSquareMeterPerSecond", "m^2/s"},
    {"UnitSquareMeterPerHour", "m^2/h"},
    {"UnitSquareMeterPerDay", "m^2/day"},
    {"UnitSquareCentimeterPerSecond", "cm^2/s"},
    {"UnitSquareMillimeterPerSecond", "mm^2/s"},
    {"UnitStokes", "St"},
    {"UnitCentistokes", "cSt"},
    {"UnitSquareFootPerSecond", "ft^2/s"},
    {"UnitSquareFootPerDay", "ft^2/day"},
    {"UnitUSGallonPerDayPerFoot", "231 in^3/day/ft"},
    {"UnitCubicMeterPerSecondPerMeter", "m^3/s/m"},
    {"UnitLiterPerSecondPerMeter", "L/s/m"},
    {"UnitCubicFootPerSecondPerFoot", "ft^3/s/ft"},
    // Density and mass concentration
    {"UnitKilogramPerCubicMeter", "kg/m^3"},
    {"UnitGramPerCubicMeter", "g/m^3"},
    {"UnitMilligramPerCubicMeter", "mg/m^3"},
    {"UnitMicrogramPerCubicMeter", "ug/m^3"},
    {"UnitGramPerLiter", "g/L"},
    {"UnitMilligramPerLiter", "mg/L"},
    {"UnitMicrogramPerLiter", "ug/L"},
    {"UnitNanogramPerLiter", "ng/L"},
    {"UnitKilogramPerLiter", "kg/L"},
    {"UnitGramPerCubicCentimeter", "g/cm^3"},
    {"UnitTonnePerCubicMeter", "tonne/m^3"},
    {"UnitPoundPerCubicFoot", "lb/ft^3"},
    {"UnitPoundPerUSGallon", "lb/(231 in^3)"},
    // Mass fraction
    {"UnitMilligramPerKilogram", "mg/kg"},
    {"UnitMicrogramPerKilogram", "ug/kg"},
    {"UnitNanogramPerKilogram", "ng/kg"},
    {"UnitGramPerKilogram", "g/kg"},
    {"UnitKilogramPerKilogram", "kg/kg"},
    // Volume fraction and gradients
    {"UnitCubicMeterPerCubicMeter", "m^3/m^3"},
    {"UnitMilliliterPerLiter", "mL/L"},
    {"UnitSquareMeterPerSquareMeter", "m^2/m^2"},
    {"UnitMeterPerMeter", "m/m"},
    {"UnitMeterPerKilometer", "m/km"},
    {"UnitCentimeterPerKilometer", "cm/km"},
    {"UnitFootPerFoot", "ft/ft"},
    {"UnitFootPerMile", "ft/mile"},
    // Molar concentration and molality
    {"UnitMolePerCubicMeter", "mol/m^3"},
    {"UnitMolePerLiter", "mol/L"},
    {"UnitMillimolePerLiter", "mmol/L"},
    {"UnitMicromolePerLiter", "umol/L"},
    {"UnitNanomolePerLiter", "nmol/L"},
    {"UnitMillimolePerCubicMeter", "mmol/m^3"},
    {"UnitMolePerKilogram", "mol/kg"},
    {"UnitMillimolePerKilogram", "mmol/kg"},
    {"UnitMicromolePerKilogram", "umol/kg"},
    // Number concentration
    {"UnitPerCubicMeter", "1/m^3"},
    {"UnitPerLiter", "1/L"},
    {"UnitPerMilliliter", "1/mL"},
    {"UnitPerHundredMilliliter", "1/(100 mL)"},
    // Mass flow and load
    {"UnitKilogramPerSecond", "kg/s"},
    {"UnitGramPerSecond", "g/s"},
    {"UnitMilligramPerSecond", "mg/s"},
    {"UnitKilogramPerHour", "kg/h"},
    {"UnitKilogramPerDay", "kg/day"},
    {"UnitGramPerDay", "g/day"},
    {"UnitKilogramPerYear", "kg/Julian_year"},
    {"UnitTonnePerHour", "tonne/h"},
    {"UnitTonnePerDay", "tonne/day"},
    {"UnitTonnePerYear", "tonne/Julian_year"},
    {"UnitPoundPerSecond", "lb/s"},
    {"UnitPoundPerDay", "lb/day"},
    {"UnitShortTonPerDay", "short_ton/day"},
    {"UnitKilogramPerSecondPerMeter", "kg/s/m"},
    {"UnitPoundPerSecondPerFoot", "lb/s/ft"},
    // Mass flux per area
    {"UnitKilogramPerSquareMeterPerSecond", "kg/m^2/s"},
    {"UnitGramPerSquareMeterPerSecond", "g/m^2/s"},
    {"UnitGramPerSquareMeterPerDay", "g/m^2/day"},
    {"UnitMilligramPerSquareMeterPerDay", "mg/m^2/day"},
    {"UnitKilogramPerHectarePerYear", "kg/hectare/Julian_year"},
    {"UnitTonnePerHectarePerYear", "tonne/hectare/Julian_year"},
    {"UnitTonnePerSquareKilometerPerYear", "tonne/km^2/Julian_year"},
    {"UnitMicromolePerSquareMeterPerSecond", "umol/m^2/s"},
    {"UnitMolePerSquareMeterPerDay", "mol/m^2/day"},
    // Mass per area
    {"UnitKilogramPerSquareMeter", "kg/m^2"},
    {"UnitGramPerSquareMeter", "g/m^2"},
    {"UnitMilligramPerSquareMeter", "mg/m^2"},
    {"UnitKilogramPerHectare", "kg/hectare"},
    {"UnitTonnePerHectare", "tonne/hectare"},
    {"UnitTonnePerSquareKilometer", "tonne/km^2"},
    {"UnitPoundPerAcre", "lb/(43560 ft^2)"},
    // Force and force per length
    {"UnitNewton", "N"},
    {"UnitMillinewton", "mN"},
    {"UnitKilonewton", "kN"},
    {"UnitMeganewton", "MN"},
    {"UnitDyne", "dyne"},
    {"UnitKilogramForce", "kgf"},
    {"UnitTonneForce", "megagram_force"},
    {"UnitPoundForce", "lbf"},
    {"UnitKip", "kip"},
    {"UnitNewtonPerMeter", "N/m"},
    {"UnitMillinewtonPerMeter", "mN/m"},
    {"UnitKilonewtonPerMeter", "kN/m"},
    {"UnitPoundForcePerFoot", "lbf/ft"},
    // Pressure and stress
    {"UnitPascal", "Pa"},
    {"UnitHectopascal", "hPa"},
    {"UnitKilopascal", "kPa"},
    {"UnitMegapascal", "MPa"},
    {"UnitGigapascal", "GPa"},
    {"UnitBar", "bar"},
    {"UnitMillibar", "mbar"},
    {"UnitDecibar", "dbar"},
    {"UnitStandardAtmosphere", "atm"},
    {"UnitTechnicalAtmosphere", "at"},
    {"UnitPoundForcePerSquareInch", "psi"},
    {"UnitKipPerSquareInch", "ksi"},
    {"UnitPoundForcePerSquareFoot", "lbf/ft^2"},
    {"UnitTorr", "atm/760"},
    {"UnitMillimeterOfMercury", "mmHg"},
    {"UnitInchOfMercury", "inHg"},
    {"UnitMeterOfWater", "m.H2O"},
    {"UnitCentimeterOfWater", "cmH2O"},
    {"UnitMillimeterOfWater", "mm.H2O"},
    {"UnitFootOfWater", "ftH2O"},
    {"UnitInchOfWater", "in.H2O"},
    {"UnitNewtonPerSquareMillimeter", "N/mm^2"},
    {"UnitDynePerSquareCentimeter", "dyne/cm^2"},
    // Energy and torque
    {"UnitJoule", "J"},
    {"UnitKilojoule", "kJ"},
    {"UnitMegajoule", "MJ"},
    {"UnitGigajoule", "GJ"},
    {"UnitWattHour", "W.h"},
    {"UnitKilowattHour", "kW.h"},
    {"UnitMegawattHour", "MW.h"},
    {"UnitGigawattHour", "GW.h"},
    {"UnitCalorie", "thermochemical_calorie"},
    {"UnitKilocalorie", "kilothermochemical_calorie"},
    {"UnitBritishThermalUnit", "BTU"},
    {"UnitErg", "erg"},
    {"UnitFootPoundForce", "ft.lbf"},
    {"UnitNewtonMeter", "N.m"},
    {"UnitKilonewtonMeter", "kN.m"},
    // Power and power per length
    {"UnitWatt", "W"},
    {"UnitMilliwatt", "mW"},
    {"UnitKilowatt", "kW"},
    {"UnitMegawatt", "MW"},
    {"UnitGigawatt", "GW"},
    {"UnitHorsepower", "550 ft.lbf/s"},
    {"UnitMetricHorsepower", "75 kgf.m/s"},
    {"UnitBritishThermalUnitPerHour", "BTU/h"},
    {"UnitKilocaloriePerHour", "kilothermochemical_calorie/h"},
    {"UnitWattPerMeter", "W/m"},
    {"UnitKilowattPerMeter", "kW/m"},
    // Irradiance and heat flux
    {"UnitWattPerSquareMeter", "W/m^2"},
    {"UnitKilowattPerSquareMeter", "kW/m^2"},
    {"UnitMegajoulePerSquareMeterPerDay", "MJ/m^2/day"},
    {"UnitLangleyPerMinute", "langley/min"},
    {"UnitLangleyPerDay", "langley/day"},
    {"UnitBritishThermalUnitPerSquareFootPerHour", "BTU/ft^2/h"},
    // Energy per area
    {"UnitJoulePerSquareMeter", "J/m^2"},
    {"UnitKilojoulePerSquareMeter", "kJ/m^2"},
    {"UnitMegajoulePerSquareMeter", "MJ/m^2"},
    {"UnitWattHourPerSquareMeter", "W.h/m^2"},
    {"UnitKilowattHourPerSquareMeter", "kW.h/m^2"},
    {"UnitLangley", "langley"},
    // Dynamic viscosity
    {"UnitPascalSecond", "Pa.s"},
    {"UnitMillipascalSecond", "mPa.s"},
    {"UnitPoise", "poise"},
    {"UnitCentipoise", "centipoise"},
    // Thermal properties
    {"UnitJoulePerKilogramKelvin", "J/kg/K"},
    {"UnitKilojoulePerKilogramKelvin", "kJ/kg/K"},
    {"UnitWattPerMeterKelvin", "W/m/K"},
    {"UnitWattPerSquareMeterKelvin", "W/m^2/K"},
    {"UnitJoulePerKilogram", "J/kg"},
    {"UnitKilojoulePerKilogram", "kJ/kg"},
    {"UnitMegajoulePerKilogram", "MJ/kg"},
    {"UnitKelvinPerMeter", "K/m"},
    {"UnitKelvinPerKilometer", "K/km"},
    {"UnitDegreeDay", "K.day"},
    {"UnitMillimeterPerDegreeDay", "mm/(K.day)"},
    // Electricity
    {"UnitAmpere", "A"},
    {"UnitMilliampere", "mA"},
    {"UnitMicroampere", "uA"},
    {"UnitKiloampere", "kA"},
    {"UnitVolt", "V"},
    {"UnitMillivolt", "mV"},
    {"UnitKilovolt", "kV"},
    {"UnitOhm", "ohm"},
    {"UnitKiloohm", "kohm"},
    {"UnitMegaohm", "Mohm"},
    {"UnitSiemens", "S"},
    {"UnitMillisiemens", "mS"},
    {"UnitMicrosiemens", "uS"},
    {"UnitCoulomb", "C"},
    {"UnitAmpereHour", "A.h"},
    {"UnitMilliampereHour", "mA.h"},
    // Electrical conductivity
    {"UnitSiemensPerMeter", "S/m"},
    {"UnitMillisiemensPerMeter", "mS/m"},
    {"UnitDecisiemensPerMeter", "dS/m"},
    {"UnitMillisiemensPerCentimeter", "mS/cm"},
    {"UnitMicrosiemensPerCentimeter", "uS/cm"},
    // Per length, wave number and compressibility
    {"UnitPerMeter", "1/m"},
    {"UnitPerCentimeter", "1/cm"},
    {"UnitPerKilometer", "1/km"},
    {"UnitPerFoot", "1/ft"},
    {"UnitRadianPerMeter", "rad/m"},
    {"UnitPerPascal", "1/Pa"},
    {"UnitPerKilopascal", "1/kPa"},
    {"UnitPerPoundForcePerSquareInch", "1/psi"},
    // Reaction rates
    {"UnitGramPerCubicMeterPerDay", "g/m^3/day"},
    {"UnitMilligramPerLiterPerDay", "mg/L/day"},
    {"UnitMilligramPerLiterPerHour", "mg/L/h"},
    {"UnitKilogramPerCubicMeterPerSecond", "kg/m^3/s"},
    // Volume per mass
    {"UnitCubicMeterPerKilogram", "m^3/kg"},
    {"UnitLiterPerKilogram", "L/kg"},
    {"UnitMilliliterPerGram", "mL/g"},
    // Wave spectra
    {"UnitSquareMeterPerHertz", "m^2/Hz"},
    {"UnitSquareFootPerHertz", "ft^2/Hz"},
};

// Units that UDUNITS-2 cannot express, or not with our definition.
const NotExpressible kNotExpressible[] = {
    {"UnitPerMille", "UDUNITS-2 has no per-mille unit; the bare number 1e-3 would only restate "
                     "our factor"},
    {"UnitOkta", "a count of eighths of sky cover; UDUNITS-2 has no such unit"},
    {"UnitPracticalSalinityUnit",
     "practical salinity is a conductivity-ratio scale that we treat as one per mille by "
     "convention; UDUNITS-2 has no such unit"},
    {"UnitElectronvolt", "UDUNITS-2 defines the electronvolt as 1.60217733e-19 J (an old measured "
                         "value); since 2019 it is exactly 1.602176634e-19 J, which no UDUNITS-2 "
                         "name carries"},
    {"UnitSecondPerCubeRootMeter", "Manning's n has the exponent -1/3 of length; UDUNITS-2 "
                                   "dimensions have integer exponents only"},
    {"UnitCubeRootMeterPerSecond", "the Strickler coefficient has the exponent 1/3 of length; "
                                   "UDUNITS-2 dimensions have integer exponents only"},
    {"UnitSquareRootMeterPerSecond", "the Chezy coefficient has the exponent 1/2 of length; "
                                     "UDUNITS-2 dimensions have integer exponents only"},
    {"UnitSquareRootFootPerSecond", "the Chezy coefficient has the exponent 1/2 of length; "
                                    "UDUNITS-2 dimensions have integer exponents only"},
};

constexpr double kRelativeTolerance = 1e-12;

// True when `theirs` equals `ours` within the relative tolerance, measured
// against `scale`. NaN never agrees.
bool Agrees(double ours, double theirs, double scale) {
    return std::fabs(ours - theirs) <= kRelativeTolerance * scale;
}

std::string Number(double value) {
    std::ostringstream text;
    text.precision(17);
    text << value;
    return text.str();
}

using xuntest::ConverterPtr;
using xuntest::UnitPtr;

std::string Format(const ut_unit* unit) {
    char text[256];
    const int length = ut_format(unit, text, sizeof text, UT_ASCII);
    if (length < 0 || static_cast<size_t>(length) >= sizeof text)
        return "(unformattable)";
    return text;
}

// The coherent SI unit with the given seven exponents (length, mass, time,
// temperature, current, amount, luminous intensity), or null when an exponent
// is not an integer: UDUNITS-2 cannot form such a dimension. `error` then says
// which exponent.
UnitPtr CoherentSiUnit(ut_system* system, const double powers[7], std::string& error) {
    static const char* const kSymbols[7] = {"m", "kg", "s", "K", "A", "mol", "cd"};
    static const char* const kNames[7] = {
        "Length",           "Mass", "Time", "Temperature", "ElectricCurrent", "AmountOfSubstance",
        "LuminousIntensity"};
    UnitPtr result(ut_get_dimensionless_unit_one(system));
    for (int i = 0; i < 7; ++i) {
        if (powers[i] == 0)
            continue;
        if (powers[i] != std::floor(powers[i])) {
            error = "exponent " + Number(powers[i]) + " of " + kNames[i] +
                    " is not an integer; UDUNITS-2 cannot form this dimension";
            return nullptr;
        }
        UnitPtr base(ut_get_unit_by_symbol(system, kSymbols[i]));
        UnitPtr power(ut_raise(base.get(), static_cast<int>(powers[i])));
        result.reset(ut_multiply(result.get(), power.get()));
        if (!result) {
            error = std::string("UDUNITS-2 cannot form the SI unit ") + kSymbols[i];
            return nullptr;
        }
    }
    return result;
}

// Compares our unit `ident` with the UDUNITS-2 unit `udunits`. Returns an
// empty text when they agree, else one line that says what differs.
std::string Compare(ut_system* system, const std::string& ident, const std::string& udunits) {
    int tag = 0;
    if (xunGetUnitTagFromIdent(ident.c_str(), &tag) != 1)
        return ident + ": no such unit";
    double factor = 0, offset = 0, powers[7], factors[7];
    if (xunUnitGetParameters(tag, &factor, &offset, powers, factors) != 1)
        return ident + ": no parameters";

    const UnitPtr theirs(ut_parse(system, udunits.c_str(), UT_UTF8));
    if (!theirs)
        return ident + ": UDUNITS-2 cannot parse \"" + udunits + "\"";
    std::string error;
    const UnitPtr target = CoherentSiUnit(system, powers, error);
    if (!target)
        return ident + ": " + error;
    if (ut_are_convertible(theirs.get(), target.get()) == 0)
        return ident + ": UDUNITS-2 cannot convert \"" + udunits + "\" (" + Format(theirs.get()) +
               ") to our dimension " + Format(target.get());
    const ConverterPtr converter(ut_get_converter(theirs.get(), target.get()));
    if (!converter)
        return ident + ": UDUNITS-2 has no converter from \"" + udunits + "\"";

    const double atZero = cv_convert_double(converter.get(), 0.0);
    const double atOne = cv_convert_double(converter.get(), 1.0);
    std::string result;
    if (!Agrees(factor, atOne - atZero, std::fabs(factor)))
        result = ident + ": factor " + Number(factor) + " but UDUNITS-2 \"" + udunits +
                 "\" gives " + Number(atOne - atZero);
    if (!Agrees(offset, atZero, std::max(std::fabs(offset), std::fabs(factor))))
        result += (result.empty() ? ident + ": " : "; ") + std::string("offset ") + Number(offset) +
                  " but UDUNITS-2 \"" + udunits + "\" gives " + Number(atZero);
    return result;
}

// The idents of all units of the default installation, in registry order.
// Loaded once per test process.
const std::vector<std::string>& InstalledUnits() {
    static const std::vector<std::string> idents = [] {
        std::vector<std::string> result;
        const char* testData = std::getenv("XUN_TEST_DATA");
        if (testData == nullptr)
            return result;
        setenv("KORVANE_HOME", (std::string(testData) + "/../../data").c_str(), 1);
        xunLoadItemTypeTables("");
        char* all = nullptr;
        if (xunUnitGetAll(&all) == 1) {
            std::istringstream list(all);
            std::string ident;
            while (std::getline(list, ident, ';'))
                result.push_back(ident);
            std::free(all);
        }
        return result;
    }();
    return idents;
}

class UdunitsCrossCheck : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        ut_set_error_message_handler(ut_ignore);
        system_ = ut_read_xml(nullptr);
        status_ = ut_get_status();
    }
    static void TearDownTestSuite() {
        ut_free_system(system_);
        system_ = nullptr;
    }
    void SetUp() override {
        ASSERT_NE(system_, nullptr)
            << "UDUNITS-2 could not read its unit database (status " << status_ << ")";
        ASSERT_GE(InstalledUnits().size(), 300u)
            << "the default installation did not load (XUN_TEST_DATA must name tests/data)";
    }

    static ut_system* system_;
    static ut_status status_;
};

ut_system* UdunitsCrossCheck::system_ = nullptr;
ut_status UdunitsCrossCheck::status_ = UT_SUCCESS;

TEST_F(UdunitsCrossCheck, EveryUnitIsClassifiedExactlyOnce) {
    std::map<std::string, int> expressible, notExpressible;
    for (const Expressible& entry : kExpressible) {
        EXPECT_NE(std::string(entry.udunits), "") << entry.ident;
        ++expressible[entry.ident];
    }
    for (const NotExpressible& entry : kNotExpressible) {
        EXPECT_NE(std::string(entry.reason), "") << entry.ident;
        ++notExpressible[entry.ident];
    }
    const std::vector<std::string>& installed = InstalledUnits();
    for (const std::string& ident : installed) {
        const int listed = expressible[ident] + notExpressible[ident];
        EXPECT_NE(listed, 0) << ident
                             << " is neither compared with UDUNITS-2 nor listed as not "
                                "expressible: classify it in test_udunits.cpp";
        EXPECT_LE(listed, 1) << ident << " is listed more than once";
    }
    std::vector<std::string> listed;
    for (const Expressible& entry : kExpressible)
        listed.push_back(entry.ident);
    for (const NotExpressible& entry : kNotExpressible)
        listed.push_back(entry.ident);
    for (const std::string& ident : listed) {
        EXPECT_NE(std::find(installed.begin(), installed.end(), ident), installed.end())
            << ident << " is listed but XUN.xml has no such unit";
    }
}

TEST_F(UdunitsCrossCheck, FactorsOffsetsAndDimensionsAgree) {
    size_t checked = 0;
    for (const Expressible& entry : kExpressible) {
        EXPECT_EQ(Compare(system_, entry.ident, entry.udunits), "");
        ++checked;
    }
    EXPECT_EQ(checked + std::size(kNotExpressible), InstalledUnits().size());
    std::cout << "Compared " << checked << " units with UDUNITS-2; " << std::size(kNotExpressible)
              << " are not expressible in it.\n";
}

// The comparison itself finds what differs: these mappings are wrong on
// purpose.
TEST_F(UdunitsCrossCheck, ReportsEachKindOfDisagreement) {
    EXPECT_EQ(Compare(system_, "UnitUSSurveyFoot", "ft"),
              "UnitUSSurveyFoot: factor 0.30480060960121919 but UDUNITS-2 \"ft\" gives "
              "0.30480000000000002");
    EXPECT_EQ(Compare(system_, "UnitDegreeCelsius", "K"),
              "UnitDegreeCelsius: offset 273.14999999999998 but UDUNITS-2 \"K\" gives 0");
    EXPECT_EQ(Compare(system_, "UnitDegreeFahrenheit", "degC"),
              "UnitDegreeFahrenheit: factor 0.55555555555555558 but UDUNITS-2 \"degC\" gives 1; "
              "offset 255.37222222222221 but UDUNITS-2 \"degC\" gives 273.14999999999998");
    EXPECT_EQ(
        Compare(system_, "UnitTorr", "Torr"),
        "UnitTorr: factor 133.32236842105263 but UDUNITS-2 \"Torr\" gives 133.32238741500001");
    EXPECT_EQ(Compare(system_, "UnitMeter", "s"),
              "UnitMeter: UDUNITS-2 cannot convert \"s\" (s) to our dimension m");
    EXPECT_EQ(Compare(system_, "UnitMeter", "no_such_unit"),
              "UnitMeter: UDUNITS-2 cannot parse \"no_such_unit\"");
    EXPECT_EQ(Compare(system_, "UnitSecondPerCubeRootMeter", "s"),
              "UnitSecondPerCubeRootMeter: exponent -0.33333333333333331 of Length is not an "
              "integer; UDUNITS-2 cannot form this dimension");
    EXPECT_EQ(Compare(system_, "UnitNoSuchUnit", "m"), "UnitNoSuchUnit: no such unit");
}

// UDUNITS-2's own names for these units carry other definitions (rounded
// values, the US survey foot, the tropical year, the International Table
// calorie, an old electronvolt, a misplaced decimal point), which is why the
// table above maps them to other strings. Should a later UDUNITS-2 agree, map
// the unit to its plain name instead.
TEST_F(UdunitsCrossCheck, TheNamesAvoidedOnPurposeDisagree) {
    const Expressible kAvoided[] = {
        {"UnitFathom", "fathom"},
        {"UnitAcre", "acre"},
        {"UnitDarcy", "darcy"},
        {"UnitUSGallon", "gallon"},
        {"UnitOilBarrel", "barrel"},
        {"UnitAcreFoot", "acre_foot"},
        {"UnitOunce", "avoirdupois_ounce"},
        {"UnitYear", "year"},
        {"UnitMonth", "month"},
        {"UnitFootCandle", "footcandle"},
        {"UnitTorr", "Torr"},
        {"UnitCalorie", "calorie"},
        {"UnitElectronvolt", "eV"},
        {"UnitHorsepower", "hp"},
        {"UnitMetricHorsepower", "metric_horsepower"},
    };
    for (const Expressible& entry : kAvoided) {
        const std::string difference = Compare(system_, entry.ident, entry.udunits);
        EXPECT_EQ(difference.find(std::string(entry.ident) + ": factor "), 0u)
            << entry.ident << " \"" << entry.udunits << "\": " << difference;
        std::cout << difference << "\n";
    }
}

TEST(UdunitsTolerance, IsRelativeToTheScale) {
    EXPECT_TRUE(Agrees(1.0, 1.0 + 0.9e-12, 1.0));
    EXPECT_FALSE(Agrees(1.0, 1.0 + 1.1e-12, 1.0));
    EXPECT_TRUE(Agrees(1e6, 1e6 + 0.9e-6, 1e6));
    EXPECT_FALSE(Agrees(1e6, 1e6 + 1.1e-6, 1e6));
    // A zero offset is compared against the factor's size.
    EXPECT_TRUE(Agrees(0.0, 0.9e-12, 1.0));
    EXPECT_FALSE(Agrees(0.0, 1.1e-12, 1.0));
    EXPECT_FALSE(Agrees(1.0, std::nan(""), 1.0));
}

} // namespace
