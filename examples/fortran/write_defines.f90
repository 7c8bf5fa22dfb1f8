! Loads the default installation and writes the include files, xunDefine.f__
! among them, into the current directory.
program write_defines
  use xun
  implicit none
  call xunLoadItemTypeTables(c_string(''))
  if (xunGetItemTypeCount() == 0) then
    print '(a)', 'nothing loaded: is KORVANE_HOME set to an installation?'
    stop 1
  end if
  call xunWriteItemTypeIncludes()
end program write_defines
