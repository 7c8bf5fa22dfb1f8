{ The tour of tour.c in Pascal: the same lines, through the installed unit
  xun (its string helpers) and the constants of the xunDefine.p__ that the
  installed library wrote. }
program tour;

{$mode objfpc}{$H+}

uses
  ctypes, xun;

{$I xunDefine.p__}

const
  Missing = -999.0;
  Before: array[0..3] of cdouble = (1.0, Missing, 2.5, 10.0);

var
  item, filter, first, n, seq, tag, user, match, eqv, converted, i: cint;
  x, factor: cdouble;
  values: array[0..3] of cdouble;
  same, ok: Boolean;
  inFilter, line: string;

begin
  xunLoadItemTypeTables('');
  if xunGetItemTypeKeyFromIdent('ItemWaterLevel', item) = 0 then
    Halt(1);
  n := xunGetItemUnitCount(item);
  WriteLn('item ItemWaterLevel: ', n, ' units');
  for seq := 1 to n do
  begin
    xunGetItemUnitSeqStr(item, seq, tag, ok);
    WriteLn('  ', tag, ' ', xunGetUnitIdentStr(tag));
  end;

  xunGetFilterKeyFromIdent('FilterHydrology', filter);
  xunGetFilteredItemTypeSeqStr(filter, 1, first, ok);
  if xunItemFilterEqvB(item, filter) then
    inFilter := 'in it'
  else
    inFilter := 'not in it';
  WriteLn('filter FilterHydrology: ', xunGetFilteredItemTypeCount(filter),
    ' item types, the first ', xunGetItemTypeIdentStr(first), ', ItemWaterLevel ', inFilter);

  xunSetItemUserUnit(item, UnitFoot);
  xunGetItemUserUnit(item, user);
  xunConvertToUserUnit(item, UnitMeter, x, 1.0);
  WriteLn('user unit of ItemWaterLevel: ', xunGetUnitIdentStr(user), '; 1 m = ',
    Round(x * 1e6), ' millionths');

  values := Before;
  xunConvertItemArrayToUserUnitD(item, UnitMeter, @values[0], Length(values), Missing);
  converted := 0;
  same := True;
  for i := 0 to High(values) do
  begin
    if Before[i] = Missing then
    begin
      same := same and (values[i] = Missing);
      Continue;
    end;
    xunConvertToUserUnit(item, UnitMeter, x, Before[i]);
    same := same and (values[i] = x);
    if values[i] <> Before[i] then
      Inc(converted);
  end;
  if same then
    line := 'yes'
  else
    line := 'no';
  WriteLn('array: ', converted, ' of ', Length(values),
    ' converted, -999 kept and each as converted alone: ', line);

  xunUnitMultiply(UnitMeter, UnitMeter, match, eqv, factor);
  line := 'derived: m*m = ' + xunGetUnitIdentStr(match);
  xunUnitDivide(UnitMeter, UnitSecond, match, eqv, factor);
  line := line + ', m/s = ' + xunGetUnitIdentStr(match);
  xunUnitPower(UnitFoot, match, eqv, factor, 2.0);
  WriteLn(line, ', ft^2 = ', xunGetUnitIdentStr(match), ' (', xunGetUnitIdentStr(eqv),
    ' times ', Round(factor * 1e9), ' billionths)');
end.
