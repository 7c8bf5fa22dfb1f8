! Compiles against the generated Fortran constants and prints a few of them.
program use_defines
  implicit none
  include 'xunDefine.f__'
  print '(4I8)', ItemWaterLevel, UnitMeter, UnitDegreeCelsius, FilterHydrology
end program use_defines
