! Fortran interface to libxun through ISO_C_BINDING: the C functions used
! from Fortran, and two helpers for texts.
!
! Texts passed to the library end with a NUL character: pass c_string('UnitMeter')
! (or 'UnitMeter'//c_null_char). Texts handed out by the library are C pointers
! into its own storage: f_string(ptr) copies one into a Fortran string.
module xun
  use, intrinsic :: iso_c_binding, only: c_char, c_int, c_float, c_double, c_ptr, c_size_t, &
                                         c_null_char, c_associated, c_f_pointer
  implicit none
  private
  public :: xunLoadItemTypeTables, xunSetupLoad, xunSetupGetPath, xunWriteItemTypeIncludes
  public :: xunGetUnitTagFromIdent, xunGetUnitTag, xunGetUnitKey, xunGetUnitAbbreviation
  public :: xunUnitsEqv, xunConvertUnit, xunConvertUnitToBase, xunConvertUnitFromBase
  public :: xunConvertItemArrayD, xunConvertItemArrayF
  public :: xunGetItemTypeCount, xunGetItemTypeKeyFromIdent, xunGetItemTypeKey
  public :: xunGetItemUserUnit, xunSetItemUserUnit, xunConvertToUserUnit, xunConvertFromUserUnit
  public :: c_string, f_string

  interface
    ! Loads the setup file, then the language files; '' loads $KORVANE_HOME/bin/XUN.xml.
    subroutine xunLoadItemTypeTables(path) bind(C, name='xunLoadItemTypeTables')
      import :: c_char
      character(kind=c_char), dimension(*), intent(in) :: path
    end subroutine

    integer(c_int) function xunSetupLoad(path) bind(C, name='xunSetupLoad')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: path
    end function

    ! The full name of the setup file loaded last (empty before the first load).
    subroutine xunSetupGetPath(path) bind(C, name='xunSetupGetPath')
      import :: c_ptr
      type(c_ptr), intent(out) :: path
    end subroutine

    ! Writes xunDefine.f__ (and the other include files) into the current directory.
    subroutine xunWriteItemTypeIncludes() bind(C, name='xunWriteItemTypeIncludes')
    end subroutine

    integer(c_int) function xunGetUnitTagFromIdent(ident, tag) bind(C, name='xunGetUnitTagFromIdent')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: ident
      integer(c_int), intent(out) :: tag
    end function

    integer(c_int) function xunGetUnitTag(name, tag) bind(C, name='xunGetUnitTag')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: name
      integer(c_int), intent(out) :: tag
    end function

    integer(c_int) function xunGetUnitKey(tag, key) bind(C, name='xunGetUnitKey')
      import :: c_int, c_ptr
      integer(c_int), value :: tag
      type(c_ptr), intent(out) :: key
    end function

    integer(c_int) function xunGetUnitAbbreviation(tag, abbreviation) &
        bind(C, name='xunGetUnitAbbreviation')
      import :: c_int, c_ptr
      integer(c_int), value :: tag
      type(c_ptr), intent(out) :: abbreviation
    end function

    integer(c_int) function xunUnitsEqv(tag1, tag2) bind(C, name='xunUnitsEqv')
      import :: c_int
      integer(c_int), value :: tag1, tag2
    end function

    integer(c_int) function xunConvertUnit(fromTag, toTag, res, x) bind(C, name='xunConvertUnit')
      import :: c_int, c_double
      integer(c_int), value :: fromTag, toTag
      real(c_double), intent(out) :: res
      real(c_double), value :: x
    end function

    integer(c_int) function xunConvertUnitToBase(tag, res, x) bind(C, name='xunConvertUnitToBase')
      import :: c_int, c_double
      integer(c_int), value :: tag
      real(c_double), intent(out) :: res
      real(c_double), value :: x
    end function

    integer(c_int) function xunConvertUnitFromBase(tag, res, x) &
        bind(C, name='xunConvertUnitFromBase')
      import :: c_int, c_double
      integer(c_int), value :: tag
      real(c_double), intent(out) :: res
      real(c_double), value :: x
    end function

    ! Converts values(1:count) in place; elements equal to deleteValue stay.
    integer(c_int) function xunConvertItemArrayD(fromTag, toTag, values, count, deleteValue) &
        bind(C, name='xunConvertItemArrayD')
      import :: c_int, c_double
      integer(c_int), value :: fromTag, toTag, count
      real(c_double), dimension(*), intent(inout) :: values
      real(c_double), value :: deleteValue
    end function

    integer(c_int) function xunConvertItemArrayF(fromTag, toTag, values, count, deleteValue) &
        bind(C, name='xunConvertItemArrayF')
      import :: c_int, c_float
      integer(c_int), value :: fromTag, toTag, count
      real(c_float), dimension(*), intent(inout) :: values
      real(c_float), value :: deleteValue
    end function

    integer(c_int) function xunGetItemTypeCount() bind(C, name='xunGetItemTypeCount')
      import :: c_int
    end function

    integer(c_int) function xunGetItemTypeKeyFromIdent(ident, key) &
        bind(C, name='xunGetItemTypeKeyFromIdent')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: ident
      integer(c_int), intent(out) :: key
    end function

    integer(c_int) function xunGetItemTypeKey(key, keyText) bind(C, name='xunGetItemTypeKey')
      import :: c_int, c_ptr
      integer(c_int), value :: key
      type(c_ptr), intent(out) :: keyText
    end function

    integer(c_int) function xunGetItemUserUnit(key, unitTag) bind(C, name='xunGetItemUserUnit')
      import :: c_int
      integer(c_int), value :: key
      integer(c_int), intent(out) :: unitTag
    end function

    integer(c_int) function xunSetItemUserUnit(key, unitTag) bind(C, name='xunSetItemUserUnit')
      import :: c_int
      integer(c_int), value :: key, unitTag
    end function

    integer(c_int) function xunConvertToUserUnit(itemKey, fromTag, res, x) &
        bind(C, name='xunConvertToUserUnit')
      import :: c_int, c_double
      integer(c_int), value :: itemKey, fromTag
      real(c_double), intent(out) :: res
      real(c_double), value :: x
    end function

    integer(c_int) function xunConvertFromUserUnit(itemKey, toTag, res, x) &
        bind(C, name='xunConvertFromUserUnit')
      import :: c_int, c_double
      integer(c_int), value :: itemKey, toTag
      real(c_double), intent(out) :: res
      real(c_double), value :: x
    end function

    integer(c_size_t) function c_strlen(text) bind(C, name='strlen')
      import :: c_ptr, c_size_t
      type(c_ptr), value :: text
    end function
  end interface

contains

  ! The text without trailing blanks, ended by a NUL character.
  function c_string(text) result(s)
    character(len=*), intent(in) :: text
    character(kind=c_char, len=len_trim(text) + 1) :: s
    s = trim(text)//c_null_char
  end function

  ! A copy of a NUL-terminated text of the library (empty for a null pointer).
  function f_string(ptr) result(s)
    type(c_ptr), intent(in) :: ptr
    character(len=:), allocatable :: s
    character(kind=c_char), dimension(:), pointer :: chars
    integer :: i, n
    if (.not. c_associated(ptr)) then
      s = ''
      return
    end if
    n = int(c_strlen(ptr))
    call c_f_pointer(ptr, chars, [n])
    allocate (character(len=n) :: s)
    do i = 1, n
      s(i:i) = chars(i)
    end do
  end function

end module xun
