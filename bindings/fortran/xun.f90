! Fortran interface to libxun through ISO_C_BINDING: every function of xun.h,
! and wrappers that take and give Fortran texts and logical values.
!
! The interfaces carry the C names and C types. Texts passed to them end with
! a NUL character: pass c_string('UnitMeter') (or 'UnitMeter'//c_null_char).
! Texts handed out by the library are C pointers into its own storage:
! f_string(ptr) copies one into a Fortran string. Integer results are 1 for
! success (or true) and 0 for failure (or false): xun_success(r) makes them
! logical.
!
! The wrappers (names with underscores, since Fortran names ignore case)
! take Fortran texts as they are (trailing blanks removed), return each text
! getter's text as character(len=:), allocatable (and .true. or .false. in
! the optional argument ok), and give the predicates as logical values.
!
! The four functions that xun.h declares with C++ linkage are bound by their
! encoded symbol names, under names starting with xun_ (a Fortran name cannot
! start with an underscore): xunUnloadItemTypeTables, xun_fullpath,
! xun_splitpath and xun_makepath.
!
! Build: gfortran -c xun.f90 (gives xun.mod and xun.o); link xun.o (or the
! installed libxunfortran.a) with -lxun.
module xun
  use, intrinsic :: iso_c_binding, only: c_char, c_int, c_long, c_float, c_double, c_ptr, &
                                         c_funptr, c_size_t, c_null_char, c_null_ptr, &
                                         c_associated, c_f_pointer
  implicit none
  private

  ! Error codes of xunGetLastError.
  integer(c_int), parameter, public :: XUN_OK = 0, XUN_ERR_NULL_ARGUMENT = 1, &
    XUN_ERR_UNKNOWN_UNIT = 2, XUN_ERR_UNKNOWN_ITEM_TYPE = 3, XUN_ERR_UNKNOWN_FILTER = 4, &
    XUN_ERR_NO_REAL_UNIT = 5, XUN_ERR_DIMENSION = 6, XUN_ERR_NOT_FOUND = 7, XUN_ERR_RANGE = 8, &
    XUN_ERR_END = 9, XUN_ERR_TAKEN = 10, XUN_ERR_EXPRESSION = 11, XUN_ERR_FILE = 12, &
    XUN_ERR_NO_MEMORY = 13, XUN_ERR_LIMIT = 14, XUN_ERR_INTERNAL = 15
  ! Severities of the problems reported by the checks.
  integer(c_int), parameter, public :: XUN_CHECK_DROPPED = 1, XUN_CHECK_MESSAGE = 2, &
    XUN_CHECK_FATAL = 3, XUN_CHECK_WARNING = 4

  ! The C functions.
  public :: xunGetLastError, xunClearLastError, xunVersion
  public :: xunUnitGetAll, xunUnitNew, xunGetUnitKey, xunGetUnitIdent, xunGetUnitAbbreviation
  public :: xunGetUnitExpression, xunGetUnitAlias, xunGetUnitTag, xunGetUnitTagFromIdent
  public :: xunParseUnit, xunParseItemUnit, xunGetUnitText
  public :: xunGetItemUnitTag, xunGetItemFirstEqvUnit, xunUnitsEqv, xunGetBaseUnit
  public :: xunGetNextEqvUnit, xunGetNextUnit, xunUnitGetParameters
  public :: xunUnitPower, xunUnitMultiply, xunUnitDivide, xunUnitGetIntegrationFactor
  public :: xunUnitGetDerivationFactor
  public :: xunConvertUnit, xunConvertItemArrayD, xunConvertItemArrayF, xunConvertUnitToBase
  public :: xunConvertUnitFromBase, xunConvertToUserUnit, xunConvertFromUserUnit
  public :: xunConvertItemArrayToUserUnitD, xunConvertItemArrayToUserUnitF
  public :: xunConvertItemArrayFromUserUnitD, xunConvertItemArrayFromUserUnitF
  public :: xunItemTypeGetAll, xunItemTypeNew, xunGetItemTypeCount, xunGetItemTypeSeq
  public :: xunGetItemTypeIdent, xunGetItemTypeKey, xunGetItemTypeKeyFromIdent
  public :: xunGetItemTypeParams, xunGetItemUnitCount, xunGetItemUnitSeq, xunSetItemUserUnit
  public :: xunItemUnitEqv, xunGetItemUserUnit, xunAddItemUnit, xunAddItemFilter
  public :: xunFilterGetAll, xunFilterNew, xunGetFilterCount, xunGetFilterSeq, xunGetFilterKey
  public :: xunGetFilterIdent, xunGetFilterKeyFromIdent, xunGetFilteredItemTypeCount
  public :: xunGetFilteredItemTypeSeq, xunItemFilterEqv, xunSetProductFilter
  public :: xunGetProductFilter, xunGetFlybyFilter
  public :: xunWriteItemTypeIncludes
  public :: xunLoadItemTypeTables, xunSetupLoad, xunSetupLoadLinux, xunSetupUnload
  public :: xunSetupWrite, xunSetupGetPath, LoadUnitBaseGroupFile
  public :: xunSetupCheck, xunBaseGroupCheck
  public :: xunUnloadItemTypeTables, xun_fullpath, xun_splitpath, xun_makepath

  ! Helpers and wrappers.
  public :: c_string, f_string, xun_success
  public :: xun_last_error_message, xun_version
  public :: xun_unit_get_all, xun_item_type_get_all, xun_filter_get_all
  public :: xun_unit_key, xun_unit_ident, xun_unit_abbreviation, xun_unit_expression
  public :: xun_unit_alias, xun_item_first_eqv_unit, xun_base_unit, xun_next_eqv_unit
  public :: xun_next_unit
  public :: xun_item_type_seq, xun_item_type_ident, xun_item_type_key, xun_item_unit_seq
  public :: xun_filter_seq, xun_filter_key, xun_filter_ident, xun_filtered_item_type_seq
  public :: xun_setup_path
  public :: xun_units_eqv, xun_item_unit_eqv, xun_item_filter_eqv
  public :: xun_load, xun_setup_load, xun_load_base_group
  public :: xun_unit_tag, xun_unit_tag_from_ident, xun_item_unit_tag
  public :: xun_parse_unit, xun_parse_item_unit, xun_unit_text
  public :: xun_item_type_key_from_ident, xun_filter_key_from_ident
  public :: xun_unit_new, xun_item_type_new, xun_filter_new

  interface
    ! ---- Errors and version
    integer(c_int) function xunGetLastError(message) bind(C, name='xunGetLastError')
      import :: c_int, c_ptr
      type(c_ptr), intent(out) :: message
    end function
    subroutine xunClearLastError() bind(C, name='xunClearLastError')
    end subroutine
    type(c_ptr) function xunVersion() bind(C, name='xunVersion')
      import :: c_ptr
    end function

    ! ---- Units: registry and queries
    ! list receives a new text: release it with xun_free (or use xun_unit_get_all).
    integer(c_int) function xunUnitGetAll(list) bind(C, name='xunUnitGetAll')
      import :: c_int, c_ptr
      type(c_ptr), intent(out) :: list
    end function
    integer(c_int) function xunUnitNew(ident, key, abbreviation, expression) &
        bind(C, name='xunUnitNew')
      import :: c_int, c_char
      character(kind=c_char), dimension(*), intent(in) :: ident, key, abbreviation, expression
    end function
    integer(c_int) function xunGetUnitKey(tag, key) bind(C, name='xunGetUnitKey')
      import :: c_int, c_ptr
      integer(c_int), value :: tag
      type(c_ptr), intent(out) :: key
    end function
    integer(c_int) function xunGetUnitIdent(tag, ident) bind(C, name='xunGetUnitIdent')
      import :: c_int, c_ptr
      integer(c_int), value :: tag
      type(c_ptr), intent(out) :: ident
    end function
    integer(c_int) function xunGetUnitAbbreviation(tag, abbreviation) &
        bind(C, name='xunGetUnitAbbreviation')
      import :: c_int, c_ptr
      integer(c_int), value :: tag
      type(c_ptr), intent(out) :: abbreviation
    end function
    integer(c_int) function xunGetUnitExpression(tag, expression) &
        bind(C, name='xunGetUnitExpression')
      import :: c_int, c_ptr
      integer(c_int), value :: tag
      type(c_ptr), intent(out) :: expression
    end function
    integer(c_int) function xunGetUnitAlias(tag, seq, alias) bind(C, name='xunGetUnitAlias')
      import :: c_int, c_ptr
      integer(c_int), value :: tag, seq
      type(c_ptr), intent(out) :: alias
    end function
    integer(c_int) function xunGetUnitTag(name, tag) bind(C, name='xunGetUnitTag')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: name
      integer(c_int), intent(out) :: tag
    end function
    integer(c_int) function xunParseUnit(text, tag) bind(C, name='xunParseUnit')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: text
      integer(c_int), intent(out) :: tag
    end function
    integer(c_int) function xunParseItemUnit(itemKey, text, tag) &
        bind(C, name='xunParseItemUnit')
      import :: c_char, c_int
      integer(c_int), value :: itemKey
      character(kind=c_char), dimension(*), intent(in) :: text
      integer(c_int), intent(out) :: tag
    end function
    integer(c_int) function xunGetUnitText(tag, notation, text) bind(C, name='xunGetUnitText')
      import :: c_int, c_ptr
      integer(c_int), value :: tag, notation
      type(c_ptr), intent(out) :: text
    end function
    integer(c_int) function xunGetUnitTagFromIdent(ident, tag) &
        bind(C, name='xunGetUnitTagFromIdent')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: ident
      integer(c_int), intent(out) :: tag
    end function
    integer(c_int) function xunGetItemUnitTag(itemKey, name, tag) &
        bind(C, name='xunGetItemUnitTag')
      import :: c_char, c_int
      integer(c_int), value :: itemKey
      character(kind=c_char), dimension(*), intent(in) :: name
      integer(c_int), intent(out) :: tag
    end function
    integer(c_int) function xunGetItemFirstEqvUnit(itemKey, tag, key) &
        bind(C, name='xunGetItemFirstEqvUnit')
      import :: c_int, c_ptr
      integer(c_int), value :: itemKey
      integer(c_int), intent(out) :: tag
      type(c_ptr), intent(out) :: key
    end function
    integer(c_int) function xunUnitsEqv(tag1, tag2) bind(C, name='xunUnitsEqv')
      import :: c_int
      integer(c_int), value :: tag1, tag2
    end function
    integer(c_int) function xunGetBaseUnit(tag, baseTag, baseKey) bind(C, name='xunGetBaseUnit')
      import :: c_int, c_ptr
      integer(c_int), value :: tag
      integer(c_int), intent(out) :: baseTag
      type(c_ptr), intent(out) :: baseKey
    end function
    ! Walks: pass prevTag 0 to start, then the tag last returned; 0 at the end.
    integer(c_int) function xunGetNextEqvUnit(tag, prevTag, nextTag, nextKey) &
        bind(C, name='xunGetNextEqvUnit')
      import :: c_int, c_ptr
      integer(c_int), value :: tag, prevTag
      integer(c_int), intent(out) :: nextTag
      type(c_ptr), intent(out) :: nextKey
    end function
    integer(c_int) function xunGetNextUnit(prevTag, nextTag, nextKey) &
        bind(C, name='xunGetNextUnit')
      import :: c_int, c_ptr
      integer(c_int), value :: prevTag
      integer(c_int), intent(out) :: nextTag
      type(c_ptr), intent(out) :: nextKey
    end function
    integer(c_int) function xunUnitGetParameters(tag, factor, offset, powers, factors) &
        bind(C, name='xunUnitGetParameters')
      import :: c_int, c_double
      integer(c_int), value :: tag
      real(c_double), intent(out) :: factor, offset
      real(c_double), dimension(7), intent(out) :: powers, factors
    end function

    ! ---- Derived units
    integer(c_int) function xunUnitPower(unit, matchKey, eqvKey, factor, power) &
        bind(C, name='xunUnitPower')
      import :: c_int, c_double
      integer(c_int), value :: unit
      integer(c_int), intent(out) :: matchKey, eqvKey
      real(c_double), intent(out) :: factor
      real(c_double), value :: power
    end function
    integer(c_int) function xunUnitMultiply(unit1, unit2, matchKey, eqvKey, factor) &
        bind(C, name='xunUnitMultiply')
      import :: c_int, c_double
      integer(c_int), value :: unit1, unit2
      integer(c_int), intent(out) :: matchKey, eqvKey
      real(c_double), intent(out) :: factor
    end function
    integer(c_int) function xunUnitDivide(unit1, unit2, matchKey, eqvKey, factor) &
        bind(C, name='xunUnitDivide')
      import :: c_int, c_double
      integer(c_int), value :: unit1, unit2
      integer(c_int), intent(out) :: matchKey, eqvKey
      real(c_double), intent(out) :: factor
    end function
    integer(c_int) function xunUnitGetIntegrationFactor(unit, variable, resultKey, inverseKey, &
        factor) bind(C, name='xunUnitGetIntegrationFactor')
      import :: c_int, c_double
      integer(c_int), value :: unit, variable
      integer(c_int), intent(out) :: resultKey, inverseKey
      real(c_double), intent(out) :: factor
    end function
    integer(c_int) function xunUnitGetDerivationFactor(unit, variable, resultKey, inverseKey, &
        factor) bind(C, name='xunUnitGetDerivationFactor')
      import :: c_int, c_double
      integer(c_int), value :: unit, variable
      integer(c_int), intent(out) :: resultKey, inverseKey
      real(c_double), intent(out) :: factor
    end function

    ! ---- Value conversion
    ! The array functions convert values(1:count) in place; elements equal to
    ! deleteValue stay as they are.
    integer(c_int) function xunConvertUnit(fromTag, toTag, res, x) bind(C, name='xunConvertUnit')
      import :: c_int, c_double
      integer(c_int), value :: fromTag, toTag
      real(c_double), intent(inout) :: res
      real(c_double), value :: x
    end function
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
    integer(c_int) function xunConvertUnitToBase(tag, res, x) bind(C, name='xunConvertUnitToBase')
      import :: c_int, c_double
      integer(c_int), value :: tag
      real(c_double), intent(inout) :: res
      real(c_double), value :: x
    end function
    integer(c_int) function xunConvertUnitFromBase(tag, res, x) &
        bind(C, name='xunConvertUnitFromBase')
      import :: c_int, c_double
      integer(c_int), value :: tag
      real(c_double), intent(inout) :: res
      real(c_double), value :: x
    end function
    integer(c_int) function xunConvertToUserUnit(itemKey, fromTag, res, x) &
        bind(C, name='xunConvertToUserUnit')
      import :: c_int, c_double
      integer(c_int), value :: itemKey, fromTag
      real(c_double), intent(inout) :: res
      real(c_double), value :: x
    end function
    integer(c_int) function xunConvertFromUserUnit(itemKey, toTag, res, x) &
        bind(C, name='xunConvertFromUserUnit')
      import :: c_int, c_double
      integer(c_int), value :: itemKey, toTag
      real(c_double), intent(inout) :: res
      real(c_double), value :: x
    end function
    integer(c_int) function xunConvertItemArrayToUserUnitD(itemKey, fromTag, values, count, &
        deleteValue) bind(C, name='xunConvertItemArrayToUserUnitD')
      import :: c_int, c_double
      integer(c_int), value :: itemKey, fromTag, count
      real(c_double), dimension(*), intent(inout) :: values
      real(c_double), value :: deleteValue
    end function
    integer(c_int) function xunConvertItemArrayToUserUnitF(itemKey, fromTag, values, count, &
        deleteValue) bind(C, name='xunConvertItemArrayToUserUnitF')
      import :: c_int, c_float
      integer(c_int), value :: itemKey, fromTag, count
      real(c_float), dimension(*), intent(inout) :: values
      real(c_float), value :: deleteValue
    end function
    integer(c_int) function xunConvertItemArrayFromUserUnitD(itemKey, toTag, values, count, &
        deleteValue) bind(C, name='xunConvertItemArrayFromUserUnitD')
      import :: c_int, c_double
      integer(c_int), value :: itemKey, toTag, count
      real(c_double), dimension(*), intent(inout) :: values
      real(c_double), value :: deleteValue
    end function
    integer(c_int) function xunConvertItemArrayFromUserUnitF(itemKey, toTag, values, count, &
        deleteValue) bind(C, name='xunConvertItemArrayFromUserUnitF')
      import :: c_int, c_float
      integer(c_int), value :: itemKey, toTag, count
      real(c_float), dimension(*), intent(inout) :: values
      real(c_float), value :: deleteValue
    end function

    ! ---- Item types
    integer(c_int) function xunItemTypeGetAll(list) bind(C, name='xunItemTypeGetAll')
      import :: c_int, c_ptr
      type(c_ptr), intent(out) :: list
    end function
    integer(c_int) function xunItemTypeNew(ident, keyText, reserved, unitIdent) &
        bind(C, name='xunItemTypeNew')
      import :: c_int, c_long, c_char
      character(kind=c_char), dimension(*), intent(in) :: ident, keyText, unitIdent
      integer(c_long), value :: reserved
    end function
    integer(c_int) function xunGetItemTypeCount() bind(C, name='xunGetItemTypeCount')
      import :: c_int
    end function
    integer(c_int) function xunGetItemTypeSeq(seq, key, keyText) bind(C, name='xunGetItemTypeSeq')
      import :: c_int, c_ptr
      integer(c_int), value :: seq
      integer(c_int), intent(out) :: key
      type(c_ptr), intent(out) :: keyText
    end function
    integer(c_int) function xunGetItemTypeIdent(key, ident) bind(C, name='xunGetItemTypeIdent')
      import :: c_int, c_ptr
      integer(c_int), value :: key
      type(c_ptr), intent(out) :: ident
    end function
    integer(c_int) function xunGetItemTypeKey(key, keyText) bind(C, name='xunGetItemTypeKey')
      import :: c_int, c_ptr
      integer(c_int), value :: key
      type(c_ptr), intent(out) :: keyText
    end function
    integer(c_int) function xunGetItemTypeKeyFromIdent(ident, key) &
        bind(C, name='xunGetItemTypeKeyFromIdent')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: ident
      integer(c_int), intent(out) :: key
    end function
    integer(c_int) function xunGetItemTypeParams(key, decimals, defaultValue) &
        bind(C, name='xunGetItemTypeParams')
      import :: c_int, c_double
      integer(c_int), value :: key
      integer(c_int), intent(out) :: decimals
      real(c_double), intent(out) :: defaultValue
    end function
    integer(c_int) function xunGetItemUnitCount(key) bind(C, name='xunGetItemUnitCount')
      import :: c_int
      integer(c_int), value :: key
    end function
    integer(c_int) function xunGetItemUnitSeq(key, seq, unitTag, unitKey) &
        bind(C, name='xunGetItemUnitSeq')
      import :: c_int, c_ptr
      integer(c_int), value :: key, seq
      integer(c_int), intent(out) :: unitTag
      type(c_ptr), intent(out) :: unitKey
    end function
    integer(c_int) function xunSetItemUserUnit(key, unitTag) bind(C, name='xunSetItemUserUnit')
      import :: c_int
      integer(c_int), value :: key, unitTag
    end function
    integer(c_int) function xunItemUnitEqv(key, unitTag) bind(C, name='xunItemUnitEqv')
      import :: c_int
      integer(c_int), value :: key, unitTag
    end function
    integer(c_int) function xunGetItemUserUnit(key, unitTag) bind(C, name='xunGetItemUserUnit')
      import :: c_int
      integer(c_int), value :: key
      integer(c_int), intent(out) :: unitTag
    end function
    integer(c_int) function xunAddItemUnit(key, unitTag) bind(C, name='xunAddItemUnit')
      import :: c_int
      integer(c_int), value :: key, unitTag
    end function
    integer(c_int) function xunAddItemFilter(key, bits) bind(C, name='xunAddItemFilter')
      import :: c_int
      integer(c_int), value :: key, bits
    end function

    ! ---- Filters
    integer(c_int) function xunFilterGetAll(list) bind(C, name='xunFilterGetAll')
      import :: c_int, c_ptr
      type(c_ptr), intent(out) :: list
    end function
    integer(c_int) function xunFilterNew(ident, keyText) bind(C, name='xunFilterNew')
      import :: c_int, c_char
      character(kind=c_char), dimension(*), intent(in) :: ident, keyText
    end function
    integer(c_int) function xunGetFilterCount() bind(C, name='xunGetFilterCount')
      import :: c_int
    end function
    integer(c_int) function xunGetFilterSeq(seq, key, keyText) bind(C, name='xunGetFilterSeq')
      import :: c_int, c_ptr
      integer(c_int), value :: seq
      integer(c_int), intent(out) :: key
      type(c_ptr), intent(out) :: keyText
    end function
    integer(c_int) function xunGetFilterKey(key, keyText) bind(C, name='xunGetFilterKey')
      import :: c_int, c_ptr
      integer(c_int), value :: key
      type(c_ptr), intent(out) :: keyText
    end function
    integer(c_int) function xunGetFilterIdent(key, ident) bind(C, name='xunGetFilterIdent')
      import :: c_int, c_ptr
      integer(c_int), value :: key
      type(c_ptr), intent(out) :: ident
    end function
    integer(c_int) function xunGetFilterKeyFromIdent(ident, key) &
        bind(C, name='xunGetFilterKeyFromIdent')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: ident
      integer(c_int), intent(out) :: key
    end function
    integer(c_int) function xunGetFilteredItemTypeCount(filter) &
        bind(C, name='xunGetFilteredItemTypeCount')
      import :: c_int
      integer(c_int), value :: filter
    end function
    integer(c_int) function xunGetFilteredItemTypeSeq(filter, seq, key, keyText) &
        bind(C, name='xunGetFilteredItemTypeSeq')
      import :: c_int, c_ptr
      integer(c_int), value :: filter, seq
      integer(c_int), intent(out) :: key
      type(c_ptr), intent(out) :: keyText
    end function
    integer(c_int) function xunItemFilterEqv(itemKey, filter) bind(C, name='xunItemFilterEqv')
      import :: c_int
      integer(c_int), value :: itemKey, filter
    end function
    integer(c_long) function xunSetProductFilter(filter) bind(C, name='xunSetProductFilter')
      import :: c_int, c_long
      integer(c_int), value :: filter
    end function
    integer(c_long) function xunGetProductFilter() bind(C, name='xunGetProductFilter')
      import :: c_long
    end function
    integer(c_int) function xunGetFlybyFilter() bind(C, name='xunGetFlybyFilter')
      import :: c_int
    end function

    ! ---- Include files
    ! Writes xunDefine.f__ (and the other include files) into the current directory.
    subroutine xunWriteItemTypeIncludes() bind(C, name='xunWriteItemTypeIncludes')
    end subroutine

    ! ---- Loading
    ! Loads the setup file, then the language files; '' loads $KORVANE_HOME/bin/XUN.xml.
    subroutine xunLoadItemTypeTables(path) bind(C, name='xunLoadItemTypeTables')
      import :: c_char
      character(kind=c_char), dimension(*), intent(in) :: path
    end subroutine
    integer(c_int) function xunSetupLoad(path) bind(C, name='xunSetupLoad')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: path
    end function
    integer(c_int) function xunSetupLoadLinux(path) bind(C, name='xunSetupLoadLinux')
      import :: c_char, c_int
      character(kind=c_char), dimension(*), intent(in) :: path
    end function
    subroutine xunSetupUnload() bind(C, name='xunSetupUnload')
    end subroutine
    integer(c_int) function xunSetupWrite() bind(C, name='xunSetupWrite')
      import :: c_int
    end function
    ! The full name of the setup file loaded last (empty before the first load).
    subroutine xunSetupGetPath(path) bind(C, name='xunSetupGetPath')
      import :: c_ptr
      type(c_ptr), intent(out) :: path
    end subroutine
    subroutine LoadUnitBaseGroupFile(fileName) bind(C, name='LoadUnitBaseGroupFile')
      import :: c_char
      character(kind=c_char), dimension(*), intent(in) :: fileName
    end subroutine

    ! ---- Checking files before loading them
    ! report is c_funloc of a bind(C) subroutine (user, file, line, severity,
    ! message) with type(c_ptr), value arguments for user, file and message
    ! and integer(c_int), value ones for line and severity; or c_null_funptr.
    integer(c_int) function xunSetupCheck(setupPath, langDir, report, user) &
        bind(C, name='xunSetupCheck')
      import :: c_int, c_ptr, c_funptr
      type(c_ptr), value :: setupPath, langDir
      type(c_funptr), value :: report
      type(c_ptr), value :: user
    end function
    integer(c_int) function xunBaseGroupCheck(path, report, user) bind(C, name='xunBaseGroupCheck')
      import :: c_int, c_ptr, c_funptr
      type(c_ptr), value :: path
      type(c_funptr), value :: report
      type(c_ptr), value :: user
    end function

    ! ---- C++ linkage
    subroutine xunUnloadItemTypeTables() bind(C, name='_Z23xunUnloadItemTypeTablesv')
    end subroutine
    integer(c_int) function xun_fullpath(absPath, relPath, maxLength) &
        bind(C, name='_Z9_fullpathPcPKci')
      import :: c_int, c_char
      character(kind=c_char), dimension(*), intent(inout) :: absPath
      character(kind=c_char), dimension(*), intent(in) :: relPath
      integer(c_int), value :: maxLength
    end function
    integer(c_int) function xun_splitpath(path, drive, dir, fname, ext) &
        bind(C, name='_Z10_splitpathPcS_S_S_S_')
      import :: c_int, c_char
      character(kind=c_char), dimension(*), intent(in) :: path
      character(kind=c_char), dimension(*), intent(inout) :: drive, dir, fname, ext
    end function
    integer(c_int) function xun_makepath(path, drive, dir, fname, ext) &
        bind(C, name='_Z9_makepathPcS_S_S_S_')
      import :: c_int, c_char
      character(kind=c_char), dimension(*), intent(inout) :: path
      character(kind=c_char), dimension(*), intent(in) :: drive, dir, fname, ext
    end function

    ! ---- From the C library, for the helpers
    integer(c_size_t) function c_strlen(text) bind(C, name='strlen')
      import :: c_ptr, c_size_t
      type(c_ptr), value :: text
    end function
    subroutine c_free(pointer) bind(C, name='free')
      import :: c_ptr
      type(c_ptr), value :: pointer
    end subroutine
  end interface

contains

  ! ---- Helpers

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

  ! .true. for a result of 1 (success, or true).
  elemental logical function xun_success(r)
    integer(c_int), intent(in) :: r
    xun_success = r /= 0
  end function

  ! The text of ptr when r says success, else ''; ok tells which.
  function text_of(r, ptr, ok) result(s)
    integer(c_int), intent(in) :: r
    type(c_ptr), intent(in) :: ptr
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    if (present(ok)) ok = r /= 0
    if (r /= 0) then
      s = f_string(ptr)
    else
      s = ''
    end if
  end function

  ! A newly allocated text of a GetAll function, copied and released.
  function owned_text_of(r, ptr, ok) result(s)
    integer(c_int), intent(in) :: r
    type(c_ptr), intent(in) :: ptr
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    s = text_of(r, ptr, ok)
    if (r /= 0) call c_free(ptr)
  end function

  ! ---- Texts

  ! The message of the last failure on the calling thread ('' when none);
  ! code receives its code.
  function xun_last_error_message(code) result(s)
    integer(c_int), intent(out), optional :: code
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetLastError(ptr)
    if (present(code)) code = r
    s = f_string(ptr)
  end function

  function xun_version() result(s)
    character(len=:), allocatable :: s
    s = f_string(xunVersion())
  end function

  ! Idents of all units, each followed by ';'.
  function xun_unit_get_all(ok) result(s)
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    ptr = c_null_ptr
    r = xunUnitGetAll(ptr)
    s = owned_text_of(r, ptr, ok)
  end function

  function xun_item_type_get_all(ok) result(s)
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    ptr = c_null_ptr
    r = xunItemTypeGetAll(ptr)
    s = owned_text_of(r, ptr, ok)
  end function

  function xun_filter_get_all(ok) result(s)
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    ptr = c_null_ptr
    r = xunFilterGetAll(ptr)
    s = owned_text_of(r, ptr, ok)
  end function

  function xun_unit_key(tag, ok) result(s)
    integer(c_int), intent(in) :: tag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetUnitKey(tag, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_unit_ident(tag, ok) result(s)
    integer(c_int), intent(in) :: tag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetUnitIdent(tag, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_unit_abbreviation(tag, ok) result(s)
    integer(c_int), intent(in) :: tag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetUnitAbbreviation(tag, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_unit_expression(tag, ok) result(s)
    integer(c_int), intent(in) :: tag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetUnitExpression(tag, ptr)
    s = text_of(r, ptr, ok)
  end function

  ! A text of the unit in a notation (XUN_NOTATION_CF, _ASCII or _UNICODE).
  function xun_unit_text(tag, notation, ok) result(s)
    integer(c_int), intent(in) :: tag, notation
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetUnitText(tag, notation, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_unit_alias(tag, seq, ok) result(s)
    integer(c_int), intent(in) :: tag, seq
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetUnitAlias(tag, seq, ptr)
    s = text_of(r, ptr, ok)
  end function

  ! The description of the item type's first allowed unit; tag receives it.
  function xun_item_first_eqv_unit(itemKey, tag, ok) result(s)
    integer(c_int), intent(in) :: itemKey
    integer(c_int), intent(out) :: tag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    tag = 0
    r = xunGetItemFirstEqvUnit(itemKey, tag, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_base_unit(tag, baseTag, ok) result(s)
    integer(c_int), intent(in) :: tag
    integer(c_int), intent(out) :: baseTag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    baseTag = 0
    r = xunGetBaseUnit(tag, baseTag, ptr)
    s = text_of(r, ptr, ok)
  end function

  ! The next unit of tag's dimension after prevTag (0: the first); nextTag
  ! receives its tag, 0 at the end.
  function xun_next_eqv_unit(tag, prevTag, nextTag, ok) result(s)
    integer(c_int), intent(in) :: tag, prevTag
    integer(c_int), intent(out) :: nextTag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    nextTag = 0
    r = xunGetNextEqvUnit(tag, prevTag, nextTag, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_next_unit(prevTag, nextTag, ok) result(s)
    integer(c_int), intent(in) :: prevTag
    integer(c_int), intent(out) :: nextTag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    nextTag = 0
    r = xunGetNextUnit(prevTag, nextTag, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_item_type_seq(seq, key, ok) result(s)
    integer(c_int), intent(in) :: seq
    integer(c_int), intent(out) :: key
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    key = 0
    r = xunGetItemTypeSeq(seq, key, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_item_type_ident(key, ok) result(s)
    integer(c_int), intent(in) :: key
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetItemTypeIdent(key, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_item_type_key(key, ok) result(s)
    integer(c_int), intent(in) :: key
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetItemTypeKey(key, ptr)
    s = text_of(r, ptr, ok)
  end function

  ! The description of the seq-th allowed unit of an item type; unitTag
  ! receives its tag.
  function xun_item_unit_seq(key, seq, unitTag, ok) result(s)
    integer(c_int), intent(in) :: key, seq
    integer(c_int), intent(out) :: unitTag
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    unitTag = 0
    r = xunGetItemUnitSeq(key, seq, unitTag, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_filter_seq(seq, key, ok) result(s)
    integer(c_int), intent(in) :: seq
    integer(c_int), intent(out) :: key
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    key = 0
    r = xunGetFilterSeq(seq, key, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_filter_key(key, ok) result(s)
    integer(c_int), intent(in) :: key
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetFilterKey(key, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_filter_ident(key, ok) result(s)
    integer(c_int), intent(in) :: key
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    r = xunGetFilterIdent(key, ptr)
    s = text_of(r, ptr, ok)
  end function

  function xun_filtered_item_type_seq(filter, seq, key, ok) result(s)
    integer(c_int), intent(in) :: filter, seq
    integer(c_int), intent(out) :: key
    logical, intent(out), optional :: ok
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    integer(c_int) :: r
    key = 0
    r = xunGetFilteredItemTypeSeq(filter, seq, key, ptr)
    s = text_of(r, ptr, ok)
  end function

  ! The full name of the setup file loaded last.
  function xun_setup_path() result(s)
    character(len=:), allocatable :: s
    type(c_ptr) :: ptr
    ptr = c_null_ptr
    call xunSetupGetPath(ptr)
    s = f_string(ptr)
  end function

  ! ---- Predicates

  logical function xun_units_eqv(tag1, tag2)
    integer(c_int), intent(in) :: tag1, tag2
    xun_units_eqv = xunUnitsEqv(tag1, tag2) /= 0
  end function

  logical function xun_item_unit_eqv(key, unitTag)
    integer(c_int), intent(in) :: key, unitTag
    xun_item_unit_eqv = xunItemUnitEqv(key, unitTag) /= 0
  end function

  logical function xun_item_filter_eqv(itemKey, filter)
    integer(c_int), intent(in) :: itemKey, filter
    xun_item_filter_eqv = xunItemFilterEqv(itemKey, filter) /= 0
  end function

  ! ---- Fortran texts in

  ! xunLoadItemTypeTables; path '' (or absent) loads $KORVANE_HOME/bin/XUN.xml.
  subroutine xun_load(path)
    character(len=*), intent(in), optional :: path
    if (present(path)) then
      call xunLoadItemTypeTables(c_string(path))
    else
      call xunLoadItemTypeTables(c_string(''))
    end if
  end subroutine

  logical function xun_setup_load(path)
    character(len=*), intent(in) :: path
    xun_setup_load = xunSetupLoad(c_string(path)) /= 0
  end function

  subroutine xun_load_base_group(fileName)
    character(len=*), intent(in) :: fileName
    call LoadUnitBaseGroupFile(c_string(fileName))
  end subroutine

  logical function xun_unit_tag(name, tag)
    character(len=*), intent(in) :: name
    integer(c_int), intent(out) :: tag
    tag = 0
    xun_unit_tag = xunGetUnitTag(c_string(name), tag) /= 0
  end function

  ! A unit string as people and data files write it ("m3 s-1", "ft^3/s").
  logical function xun_parse_unit(text, tag)
    character(len=*), intent(in) :: text
    integer(c_int), intent(out) :: tag
    tag = 0
    xun_parse_unit = xunParseUnit(c_string(text), tag) /= 0
  end function

  ! The same, answered only by an allowed unit of the item type.
  logical function xun_parse_item_unit(itemKey, text, tag)
    integer(c_int), intent(in) :: itemKey
    character(len=*), intent(in) :: text
    integer(c_int), intent(out) :: tag
    tag = 0
    xun_parse_item_unit = xunParseItemUnit(itemKey, c_string(text), tag) /= 0
  end function

  logical function xun_unit_tag_from_ident(ident, tag)
    character(len=*), intent(in) :: ident
    integer(c_int), intent(out) :: tag
    tag = 0
    xun_unit_tag_from_ident = xunGetUnitTagFromIdent(c_string(ident), tag) /= 0
  end function

  logical function xun_item_unit_tag(itemKey, name, tag)
    integer(c_int), intent(in) :: itemKey
    character(len=*), intent(in) :: name
    integer(c_int), intent(out) :: tag
    tag = 0
    xun_item_unit_tag = xunGetItemUnitTag(itemKey, c_string(name), tag) /= 0
  end function

  logical function xun_item_type_key_from_ident(ident, key)
    character(len=*), intent(in) :: ident
    integer(c_int), intent(out) :: key
    key = 0
    xun_item_type_key_from_ident = xunGetItemTypeKeyFromIdent(c_string(ident), key) /= 0
  end function

  logical function xun_filter_key_from_ident(ident, key)
    character(len=*), intent(in) :: ident
    integer(c_int), intent(out) :: key
    key = 0
    xun_filter_key_from_ident = xunGetFilterKeyFromIdent(c_string(ident), key) /= 0
  end function

  logical function xun_unit_new(ident, key, abbreviation, expression)
    character(len=*), intent(in) :: ident, key, abbreviation, expression
    xun_unit_new = xunUnitNew(c_string(ident), c_string(key), c_string(abbreviation), &
                              c_string(expression)) /= 0
  end function

  logical function xun_item_type_new(ident, keyText, unitIdent)
    character(len=*), intent(in) :: ident, keyText, unitIdent
    xun_item_type_new = xunItemTypeNew(c_string(ident), c_string(keyText), 0_c_long, &
                                       c_string(unitIdent)) /= 0
  end function

  logical function xun_filter_new(ident, keyText)
    character(len=*), intent(in) :: ident, keyText
    xun_filter_new = xunFilterNew(c_string(ident), c_string(keyText)) /= 0
  end function

end module xun
