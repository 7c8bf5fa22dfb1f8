{ Loads the default installation and converts a water level from feet to
  meters, naming the units by the constants of the generated include file. }
program convert;

{$mode objfpc}{$H+}

uses
  ctypes, xun;

{$I xunDefine.p__}

var
  level: cdouble;
  fromText, toText: PChar;
begin
  xunLoadItemTypeTables('');
  if xunConvertUnit(UnitFoot, UnitMeter, level, 12.5) <> 1 then
  begin
    writeln('conversion failed: is KORVANE_HOME set to an installation?');
    halt(1);
  end;
  if (xunGetUnitAbbreviation(UnitFoot, fromText) <> 1) or
     (xunGetUnitAbbreviation(UnitMeter, toText) <> 1) then
    halt(1);
  writeln('12.5 ', fromText, ' = ', level:0:4, ' ', toText);
end.
