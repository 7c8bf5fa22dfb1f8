# Where the installation puts things, relative to the prefix, and which target
# is the xun tool. Included by Install.cmake and by the install tests (which are
# defined before Install.cmake runs), so it only sets variables and may be
# included more than once.
include(GNUInstallDirs)

set(XUN_INSTALL_DATADIR "${CMAKE_INSTALL_DATADIR}/xun" CACHE STRING
  "Directory of the default installation data, relative to the prefix (KORVANE_HOME)")
set(XUN_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/xun" CACHE STRING
  "Directory of the CMake package files, relative to the prefix")
set(XUN_INSTALL_PKGCONFIGDIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig" CACHE STRING
  "Directory of xun.pc, relative to the prefix")

# The xun tool is the executable target of tools/ whose output name is "xun"
# (the target itself cannot be called xun, which is the library's name).
# XUN_TOOL_TARGET is empty when the build has no such target.
set(XUN_TOOL_TARGET "")
get_property(_xun_tools_targets DIRECTORY ${PROJECT_SOURCE_DIR}/tools PROPERTY BUILDSYSTEM_TARGETS)
foreach(_xun_target IN LISTS _xun_tools_targets)
  get_target_property(_xun_type ${_xun_target} TYPE)
  get_target_property(_xun_output_name ${_xun_target} OUTPUT_NAME)
  if(_xun_type STREQUAL "EXECUTABLE" AND _xun_output_name STREQUAL "xun")
    set(XUN_TOOL_TARGET ${_xun_target})
  endif()
endforeach()
