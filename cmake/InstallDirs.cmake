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
