! Loads the default installation and converts a discharge from cubic feet per
! second to cubic meters per second, naming the units by the constants of the
! generated include file.
program convert
  use, intrinsic :: iso_c_binding, only: c_double, c_ptr
  use xun
  implicit none
  include 'xunDefine.f__'
  real(c_double) :: q
  type(c_ptr) :: from, to

  call xunLoadItemTypeTables(c_string(''))
  if (xunConvertUnit(UnitCubicFootPerSecond, UnitCubicMeterPerSecond, q, 100.0_c_double) /= 1) then
    print '(a)', 'conversion failed: is KORVANE_HOME set to an installation?'
    stop 1
  end if
  if (xunGetUnitKey(UnitCubicFootPerSecond, from) /= 1 .or. &
      xunGetUnitKey(UnitCubicMeterPerSecond, to) /= 1) stop 1
  print '(a,f0.6,a)', '100 '//f_string(from)//' = ', q, ' '//f_string(to)
end program convert
