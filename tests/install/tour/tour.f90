! The tour of tour.c in free-form Fortran: the same lines, through the
! installed module xun (its text and logical wrappers) and the constants of
! the xunDefine.f__ that the installed library wrote.
program tour
  use, intrinsic :: iso_c_binding, only: c_int, c_double, c_int64_t
  use xun
  implicit none
  include 'xunDefine.f__'
  integer(c_int) :: item, filter, first, n, seq, tag, user, match, eqv, converted, i
  real(c_double) :: x, factor
  real(c_double), parameter :: missing = -999.0_c_double
  real(c_double) :: before(4) = [1.0_c_double, missing, 2.5_c_double, 10.0_c_double]
  real(c_double) :: values(4)
  logical :: same, ok
  character(len=:), allocatable :: text

  call xun_load()
  if (.not. xun_item_type_key_from_ident('ItemWaterLevel', item)) stop 1
  if (item /= ItemWaterLevel) stop 1
  n = xunGetItemUnitCount(item)
  print '(a,i0,a)', 'item ItemWaterLevel: ', n, ' units'
  do seq = 1, n
    text = xun_item_unit_seq(item, seq, tag)
    print '(a,i0,a,a)', '  ', tag, ' ', xun_unit_ident(tag)
  end do

  ok = xun_filter_key_from_ident('FilterHydrology', filter)
  text = xun_filtered_item_type_seq(filter, 1, first)
  if (xun_item_filter_eqv(item, filter)) then
    text = 'in it'
  else
    text = 'not in it'
  end if
  print '(a,i0,a,a,a,a)', 'filter FilterHydrology: ', xunGetFilteredItemTypeCount(filter), &
    ' item types, the first ', xun_item_type_ident(first), ', ItemWaterLevel ', text

  ok = xun_success(xunSetItemUserUnit(item, UnitFoot))
  ok = xun_success(xunGetItemUserUnit(item, user))
  ok = xun_success(xunConvertToUserUnit(item, UnitMeter, x, 1.0_c_double))
  print '(a,a,a,i0,a)', 'user unit of ItemWaterLevel: ', xun_unit_ident(user), '; 1 m = ', &
    nint(x * 1.0e6_c_double, kind=c_int64_t), ' millionths'

  values = before
  ok = xun_success(xunConvertItemArrayToUserUnitD(item, UnitMeter, values, &
                                                  size(values, kind=c_int), missing))
  converted = 0
  same = .true.
  do i = 1, size(values)
    if (before(i) == missing) then
      same = same .and. values(i) == missing
      cycle
    end if
    ok = xun_success(xunConvertToUserUnit(item, UnitMeter, x, before(i)))
    same = same .and. values(i) == x
    if (values(i) /= before(i)) converted = converted + 1
  end do
  if (same) then
    text = 'yes'
  else
    text = 'no'
  end if
  print '(a,i0,a,i0,a,a)', 'array: ', converted, ' of ', size(values), &
    ' converted, -999 kept and each as converted alone: ', text

  ok = xun_success(xunUnitMultiply(UnitMeter, UnitMeter, match, eqv, factor))
  text = 'derived: m*m = '//xun_unit_ident(match)
  ok = xun_success(xunUnitDivide(UnitMeter, UnitSecond, match, eqv, factor))
  text = text//', m/s = '//xun_unit_ident(match)
  ok = xun_success(xunUnitPower(UnitFoot, match, eqv, factor, 2.0_c_double))
  print '(a,a,a,a,a,a,i0,a)', text, ', ft^2 = ', xun_unit_ident(match), ' (', &
    xun_unit_ident(eqv), ' times ', nint(factor * 1.0e9_c_double, kind=c_int64_t), ' billionths)'
end program tour
