{ Compiles against the generated Pascal constants and prints a few of them. }
program use_defines;
{$I xunDefine.p__}
begin
  writeln(ItemWaterLevel, ' ', UnitMeter, ' ', UnitDegreeCelsius, ' ', FilterHydrology);
end.
