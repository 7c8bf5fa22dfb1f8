# Where the installation puts things, relative to the prefix, and which target
# is the xun tool. Included by Install.cmake and by the install tests (which are
# defined before Install.cmake runs), so it only sets variables and may be
# included more than once.
include(GNUInstallDirs)

set(XUN_INSTALL_DATADIR "${CMAKE_INSTALL_DATADIR}/xun" CACHE STRING
  "Directory of the default installation data, relative to the prefix (KORVANE_HOME)")
set(XUN_INSTALL_FORTRANMODDIR "${CMAKE_INSTALL_LIBDIR}/xun/fortran" CACHE STRING
  "Directory of the compiled Fortran module (xun.mod, libxunfortran.a), relative to the prefix")
set(XUN_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/xun" CACHE STRING
  "Directory of the CMake package files, relative to the prefix")
set(XUN_INSTALL_PKGCONFIGDIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig" CACHE STRING
  "Directory of xun.pc, relative to the prefix")

# The xun tool is the executable target xun-cli of tools/ (whose output name is
# "xun": the target itself cannot be called xun, which is the library's name).
# XUN_TOOL_TARGET is empty when the build has no tool.
set(XUN_TOOL_TARGET "")
if(TARGET xun-cli)
  set(XUN_TOOL_TARGET xun-cli)
endif()

# The Python package goes to the system Python's directory for packages of
# this prefix (on Debian lib/python3.X/dist-packages, which /usr/local has on
# the path), taken from Debian's /usr/bin/python3 where it exists.
option(XUN_INSTALL_PYTHON "Install the Python package xun for the system Python" ON)
if(EXISTS /usr/bin/python3)
  set(XUN_PYTHON /usr/bin/python3 CACHE FILEPATH "The Python the package is installed for")
else()
  find_program(XUN_PYTHON python3)
endif()
if(XUN_INSTALL_PYTHON AND XUN_PYTHON AND NOT DEFINED CACHE{XUN_INSTALL_PYTHONDIR})
  execute_process(
    COMMAND ${XUN_PYTHON} -c "import os, sys, sysconfig
p = sysconfig.get_path('purelib')
print(next((os.path.relpath(p, b) for b in ('/usr/local', sys.prefix) if p.startswith(b + '/')), 'lib/python3/dist-packages'))"
    OUTPUT_VARIABLE _xun_pythondir
    OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE _xun_python_status)
  if(NOT _xun_python_status EQUAL 0 OR _xun_pythondir STREQUAL "")
    set(_xun_pythondir "lib/python3/dist-packages")
  endif()
  set(XUN_INSTALL_PYTHONDIR "${_xun_pythondir}" CACHE STRING
    "Directory of the Python package xun, relative to the prefix")
endif()
