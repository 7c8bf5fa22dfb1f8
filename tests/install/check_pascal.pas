{ Built with fpc against the installed libxun and the xunDefine.p__ that the
  installed library wrote from the installed data: checks that the constants
  name what the library reports, and conversions of single values and of
  arrays. Exit status 0 when every check holds. }
program check_pascal;

{$mode objfpc}{$H+}

uses
  ctypes, sysutils, xun;

{$I xunDefine.p__}

var
  failures: integer = 0;
  checks: integer = 0;
  tag, user, code: cint;
  ok: Boolean;
  x: cdouble;
  levels: array[0..3] of cdouble = (1.0, -999.0, 2.0, 10.0);
  temperatures: array[0..2] of cfloat = (32.0, -999.0, 212.0);
  text: PChar;
  home: string;

{ Decimal literals pass through extended precision in fpc: compare closely
  rather than bit for bit. }
function near(a, b: cdouble): boolean;
begin
  near := abs(a - b) <= 1e-12 * (1.0 + abs(b));
end;

procedure check(condition: boolean; const what: string);
begin
  inc(checks);
  if not condition then
  begin
    writeln('FAILED: ', what);
    inc(failures);
  end;
end;

begin
  home := GetEnvironmentVariable('KORVANE_HOME');
  if home = '' then
  begin
    writeln('KORVANE_HOME is not set');
    halt(1);
  end;
  xunLoadItemTypeTables('');
  xunSetupGetPath(text);
  check(string(text) = home + '/bin/XUN.xml', 'the default setup file of KORVANE_HOME');

  check((xunGetUnitTagFromIdent('UnitFoot', tag) = 1) and (tag = UnitFoot), 'UnitFoot');
  check((xunGetUnitTagFromIdent('UnitMeter', tag) = 1) and (tag = UnitMeter), 'UnitMeter');
  check((xunGetItemTypeKeyFromIdent('ItemWaterLevel', tag) = 1) and (tag = ItemWaterLevel),
    'ItemWaterLevel');
  check((xunGetUnitKey(UnitFoot, text) = 1) and (string(text) = 'foot'), 'foot');
  check((xunGetUnitTag('feet', tag) = 1) and (tag = UnitFoot), 'feet');

  check((xunConvertUnit(UnitFoot, UnitMeter, x, 10.0) = 1) and near(x, 3.048),
    '10 ft in m');
  check((xunConvertUnit(UnitDegreeCelsius, UnitKelvin, x, 0.0) = 1) and near(x, 273.15),
    '0 degC in K');
  check((xunConvertUnit(UnitDegreeFahrenheit, UnitDegreeCelsius, x, 212.0) = 1) and
    near(x, 100.0), '212 degF in degC');
  check((xunConvertUnit(UnitMeter, UnitSecond, x, 5.0) = 0) and (x = 5.0),
    'meter to second is refused');

  check(xunConvertItemArrayD(UnitFoot, UnitMeter, @levels[0], length(levels), -999.0) = 1,
    'array of doubles');
  check(near(levels[0], 0.3048) and (levels[1] = -999.0) and near(levels[2], 0.6096) and
    near(levels[3], 3.048),
    'doubles converted, delete value kept');
  check(xunConvertItemArrayF(UnitDegreeFahrenheit, UnitDegreeCelsius, @temperatures[0],
    length(temperatures), -999.0) = 1, 'array of floats');
  check((abs(temperatures[0]) < 1e-5) and (temperatures[1] = -999.0) and
    (abs(temperatures[2] - 100.0) < 1e-4), 'floats converted, delete value kept');

  check((xunGetItemUserUnit(ItemWaterLevel, user) = 1) and (user = UnitMeter),
    'water level shown in meters');
  check((xunConvertToUserUnit(ItemWaterLevel, UnitFoot, x, 1.0) = 1) and near(x, 0.3048),
    '1 ft to the user unit of the water level');

  { The helpers: Pascal strings and Boolean values. }
  check(xunSetupGetPathStr = home + '/bin/XUN.xml', 'xunSetupGetPathStr');
  check(xunGetUnitKeyStr(UnitFoot) = 'foot', 'xunGetUnitKeyStr');
  check(xunGetUnitAbbreviationStr(UnitMeter) = 'm', 'xunGetUnitAbbreviationStr');
  ok := True;
  check((xunGetUnitIdentStr(0, ok) = '') and not ok, 'xunGetUnitIdentStr of no unit');
  check(Pos(';UnitFoot;', xunUnitGetAllStr) > 0, 'xunUnitGetAllStr');
  check(Pos('ItemWaterLevel;', xunItemTypeGetAllStr) > 0, 'xunItemTypeGetAllStr');
  check(xunUnitsEqvB(UnitFoot, UnitMeter) and not xunUnitsEqvB(UnitFoot, UnitSecond),
    'xunUnitsEqvB');
  check(xunItemUnitEqvB(ItemWaterLevel, UnitFoot), 'xunItemUnitEqvB');
  check(xunItemFilterEqvB(ItemWaterLevel, FilterHydrology), 'xunItemFilterEqvB');
  check(xunConvertUnit(UnitMeter, UnitSecond, x, 1.0) = 0, 'a refused conversion');
  check((Pos('xunConvertUnit: ', xunLastErrorStr(code)) = 1) and (code = XUN_ERR_DIMENSION),
    'xunLastErrorStr');
  check(xunVersionStr <> '', 'xunVersionStr');

  if failures <> 0 then
    halt(1);
  writeln('pascal: ', checks, ' checks passed');
end.
