C     Compiles in fixed form against the constants of xunDefine.f77 and
C     prints the same constants as use_defines.f90.
      PROGRAM USEDEF
      IMPLICIT NONE
      INCLUDE 'xunDefine.f77'
      PRINT '(4I8)', ItemWaterLevel, UnitMeter, UnitDegreeCelsius,
     &  FilterHydrology
      END
