! Built with gfortran against the installed libxun and the xunDefine.f__ that
! the installed library wrote from the installed data: checks that the
! constants name what the library reports, and conversions of single values
! and of arrays. Exit status 0 when every check holds.
program check_fortran
  use, intrinsic :: iso_c_binding, only: c_int, c_double, c_float, c_ptr
  use xun
  implicit none
  include 'xunDefine.f__'
  integer :: failures = 0, checks = 0
  integer(c_int) :: ok, tag, user, code
  logical :: text_ok
  real(c_double) :: x
  real(c_double) :: levels(4) = [1.0_c_double, -999.0_c_double, 2.0_c_double, 10.0_c_double]
  real(c_float) :: temperatures(3) = [32.0_c_float, -999.0_c_float, 212.0_c_float]
  type(c_ptr) :: text
  character(len=:), allocatable :: home

  call get_home(home)
  call xunLoadItemTypeTables(c_string(''))
  call xunSetupGetPath(text)
  call check(f_string(text) == home//'/bin/XUN.xml', 'the default setup file of KORVANE_HOME')

  ! Fortran evaluates the operands of .and. in any order: each call comes first,
  ! then the check of what it stored.
  ok = xunGetUnitTagFromIdent(c_string('UnitFoot'), tag)
  call check(ok == 1 .and. tag == UnitFoot, 'UnitFoot names the foot')
  ok = xunGetUnitTagFromIdent(c_string('UnitMeter'), tag)
  call check(ok == 1 .and. tag == UnitMeter, 'UnitMeter names the meter')
  ok = xunGetItemTypeKeyFromIdent(c_string('ItemWaterLevel'), tag)
  call check(ok == 1 .and. tag == ItemWaterLevel, 'ItemWaterLevel names the water level')
  ok = xunGetUnitKey(UnitFoot, text)
  call check(ok == 1, 'description of the foot')
  if (ok == 1) call check(f_string(text) == 'foot', 'the foot is called foot')
  ok = xunGetUnitTag(c_string('feet'), tag)
  call check(ok == 1 .and. tag == UnitFoot, 'the name feet finds the foot')

  ok = xunConvertUnit(UnitFoot, UnitMeter, x, 10.0_c_double)
  call check(ok == 1 .and. x == 10.0_c_double * 0.3048_c_double, '10 ft in m')
  ok = xunConvertUnit(UnitDegreeCelsius, UnitKelvin, x, 0.0_c_double)
  call check(ok == 1 .and. x == 273.15_c_double, '0 degC in K')
  ok = xunConvertUnit(UnitDegreeFahrenheit, UnitDegreeCelsius, x, 212.0_c_double)
  call check(ok == 1 .and. abs(x - 100.0_c_double) < 1e-12_c_double, '212 degF in degC')
  ok = xunConvertUnit(UnitMeter, UnitSecond, x, 5.0_c_double)
  call check(ok == 0 .and. x == 5.0_c_double, 'meter to second is refused, the value kept')

  ok = xunConvertItemArrayD(UnitFoot, UnitMeter, levels, size(levels, kind=c_int), &
                            -999.0_c_double)
  call check(ok == 1, 'array of doubles')
  call check(levels(1) == 0.3048_c_double .and. levels(2) == -999.0_c_double .and. &
             levels(3) == 2.0_c_double * 0.3048_c_double .and. &
             levels(4) == 10.0_c_double * 0.3048_c_double, 'doubles converted, delete value kept')
  ok = xunConvertItemArrayF(UnitDegreeFahrenheit, UnitDegreeCelsius, temperatures, &
                            size(temperatures, kind=c_int), -999.0_c_float)
  call check(ok == 1, 'array of floats')
  call check(abs(temperatures(1)) < 1e-5 .and. temperatures(2) == -999.0_c_float .and. &
             abs(temperatures(3) - 100.0_c_float) < 1e-4, 'floats converted, delete value kept')

  ok = xunGetItemUserUnit(ItemWaterLevel, user)
  call check(ok == 1 .and. user == UnitMeter, 'water level shown in meters')
  ok = xunConvertToUserUnit(ItemWaterLevel, UnitFoot, x, 1.0_c_double)
  call check(ok == 1 .and. x == 0.3048_c_double, '1 ft to the user unit of the water level')

  ! The wrappers: Fortran texts in, allocatable texts and logical values out.
  call check(xun_setup_path() == home//'/bin/XUN.xml', 'xun_setup_path')
  call check(xun_unit_key(UnitFoot) == 'foot', 'xun_unit_key')
  call check(xun_unit_abbreviation(UnitMeter) == 'm', 'xun_unit_abbreviation')
  text_ok = .true.
  call check(xun_unit_ident(0, text_ok) == '' .and. .not. text_ok, 'xun_unit_ident of no unit')
  call check(index(xun_unit_get_all(), ';UnitFoot;') > 0, 'xun_unit_get_all')
  call check(index(xun_item_type_get_all(), 'ItemWaterLevel;') > 0, 'xun_item_type_get_all')
  call check(xun_unit_tag('feet', tag) .and. tag == UnitFoot, 'xun_unit_tag')
  call check(.not. xun_unit_tag('no such unit', tag) .and. tag == 0, 'xun_unit_tag of no unit')
  call check(xun_units_eqv(UnitFoot, UnitMeter) .and. .not. xun_units_eqv(UnitFoot, UnitSecond), &
             'xun_units_eqv')
  call check(xun_item_unit_eqv(ItemWaterLevel, UnitFoot), 'xun_item_unit_eqv')
  call check(xun_item_filter_eqv(ItemWaterLevel, FilterHydrology), 'xun_item_filter_eqv')
  call check(.not. xun_success(xunConvertUnit(UnitMeter, UnitSecond, x, 1.0_c_double)), &
             'a refused conversion is no success')
  call check(index(xun_last_error_message(code), 'xunConvertUnit: ') == 1 .and. &
             code == XUN_ERR_DIMENSION, 'xun_last_error_message')
  call check(xun_version() /= '', 'xun_version')

  if (failures /= 0) stop 1
  print '(a,i0,a)', 'fortran: ', checks, ' checks passed'

contains

  subroutine check(condition, what)
    logical, intent(in) :: condition
    character(len=*), intent(in) :: what
    checks = checks + 1
    if (.not. condition) then
      print '(2a)', 'FAILED: ', what
      failures = failures + 1
    end if
  end subroutine

  subroutine get_home(value)
    character(len=:), allocatable, intent(out) :: value
    integer :: length, status
    call get_environment_variable('KORVANE_HOME', length=length, status=status)
    if (status /= 0) then
      print '(a)', 'KORVANE_HOME is not set'
      stop 1
    end if
    allocate (character(len=length) :: value)
    call get_environment_variable('KORVANE_HOME', value)
  end subroutine

end program check_fortran
