# Installation: the shared library, the public headers, the xun tool, the default
# installation data, a pkg-config file and a CMake package.
#
#   <prefix>/lib/libxun.so.1.0.0, libxun.so.1, libxun.so
#   <prefix>/include/xun.h, <prefix>/include/SmartPtr
#   <prefix>/bin/xun                          (when the tool is part of the build)
#   <prefix>/share/xun/bin/, share/xun/lang/  (KORVANE_HOME=<prefix>/share/xun)
#   <prefix>/share/xun/fortran/xun.f90, share/xun/pascal/xun.pas, share/xun/csharp/Xun.cs
#   <prefix>/lib/xun/fortran/xun.mod, libxunfortran.a  (when the build has gfortran)
#   <prefix>/lib/pkgconfig/xun.pc
#   <prefix>/lib/cmake/xun/xunConfig.cmake, xunConfigVersion.cmake, xunTargets*.cmake
#   <prefix>/lib/python3.X/dist-packages/xun/ (the Python package, XUN_INSTALL_PYTHON)
#
# Every installed file refers to the others by relative paths, so the tree may be
# installed with `cmake --install <build> --prefix <dir>` and moved afterwards.
# Components: "Runtime" (library and data), "Tools" (the xun tool) and
# "Development" (headers, the libxun.so link, pkg-config file, CMake package
# and language bindings); cmake/Package.cmake makes a Debian package of each.
include(${CMAKE_CURRENT_LIST_DIR}/InstallDirs.cmake)
include(CMakePackageConfigHelpers)

# The library target names its headers by their place in the source tree; users
# of the installed package find them under the installed include directory.
set_property(TARGET xun PROPERTY INTERFACE_INCLUDE_DIRECTORIES
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>"
  "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")

install(TARGETS xun EXPORT xunTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT Runtime
    NAMELINK_COMPONENT Development)
install(FILES
  ${PROJECT_SOURCE_DIR}/include/xun.h
  ${PROJECT_SOURCE_DIR}/include/SmartPtr
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT Development)

# The xun tool (XUN_TOOL_TARGET, see InstallDirs.cmake), when the build has it.
if(XUN_TOOL_TARGET)
  # The tool links the shared library and finds it in the installed library
  # directory relative to its own place, so the tree may be moved.
  file(RELATIVE_PATH _xun_bin_to_lib "/prefix/${CMAKE_INSTALL_BINDIR}" "/prefix/${CMAKE_INSTALL_LIBDIR}")
  set_target_properties(${XUN_TOOL_TARGET} PROPERTIES INSTALL_RPATH "$ORIGIN/${_xun_bin_to_lib}")
  install(TARGETS ${XUN_TOOL_TARGET} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Tools)
endif()

# The default installation: setup file and active language files in bin/, every
# translation in lang/<code>/. The generator in data/tools/ stays in the sources.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/bin ${PROJECT_SOURCE_DIR}/data/lang
  DESTINATION ${XUN_INSTALL_DATADIR}
  COMPONENT Runtime)

# The language bindings, as sources beside the default installation, and the
# Fortran module compiled for the build's compiler (its .mod file and the
# archive of its wrappers) under lib/xun/fortran.
install(FILES ${PROJECT_SOURCE_DIR}/bindings/fortran/xun.f90
  DESTINATION ${XUN_INSTALL_DATADIR}/fortran COMPONENT Development)
install(FILES ${PROJECT_SOURCE_DIR}/bindings/pascal/xun.pas
  DESTINATION ${XUN_INSTALL_DATADIR}/pascal COMPONENT Development)
install(FILES ${PROJECT_SOURCE_DIR}/bindings/csharp/Xun.cs
  DESTINATION ${XUN_INSTALL_DATADIR}/csharp COMPONENT Development)
if(TARGET xunfortran)
  install(TARGETS xunfortran
    ARCHIVE DESTINATION ${XUN_INSTALL_FORTRANMODDIR} COMPONENT Development)
  install(FILES ${PROJECT_BINARY_DIR}/bindings/fortran/module/xun.mod
    DESTINATION ${XUN_INSTALL_FORTRANMODDIR} COMPONENT Development)
endif()

# pkg-config: the prefix is found from the file's own place (${pcfiledir}), so
# the file stays right for any --prefix given at install time.
if(IS_ABSOLUTE "${XUN_INSTALL_PKGCONFIGDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}"
   OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}" OR IS_ABSOLUTE "${XUN_INSTALL_DATADIR}")
  # Absolute directories were asked for: the file names them as they are.
  set(XUN_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(XUN_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(XUN_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
  if(IS_ABSOLUTE "${XUN_INSTALL_DATADIR}")
    set(XUN_PC_HOME "${XUN_INSTALL_DATADIR}")
  else()
    set(XUN_PC_HOME "${CMAKE_INSTALL_PREFIX}/${XUN_INSTALL_DATADIR}")
  endif()
else()
  file(RELATIVE_PATH _xun_pc_up "/prefix/${XUN_INSTALL_PKGCONFIGDIR}" "/prefix")
  string(REGEX REPLACE "/$" "" _xun_pc_up "${_xun_pc_up}")
  set(XUN_PC_PREFIX "\${pcfiledir}/${_xun_pc_up}")
  set(XUN_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(XUN_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
  set(XUN_PC_HOME "\${prefix}/${XUN_INSTALL_DATADIR}")
endif()
if(IS_ABSOLUTE "${XUN_INSTALL_FORTRANMODDIR}")
  set(XUN_PC_FORTRANMODDIR "${XUN_INSTALL_FORTRANMODDIR}")
else()
  set(XUN_PC_FORTRANMODDIR "\${prefix}/${XUN_INSTALL_FORTRANMODDIR}")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/xun.pc.in ${PROJECT_BINARY_DIR}/xun.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/xun.pc
  DESTINATION ${XUN_INSTALL_PKGCONFIGDIR}
  COMPONENT Development)

# CMake package: find_package(xun) gives the imported target xun::xun.
install(EXPORT xunTargets
  NAMESPACE xun::
  DESTINATION ${XUN_INSTALL_CMAKEDIR}
  COMPONENT Development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/xunConfig.cmake.in
  ${PROJECT_BINARY_DIR}/xunConfig.cmake
  INSTALL_DESTINATION ${XUN_INSTALL_CMAKEDIR}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR XUN_INSTALL_DATADIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/xunConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/xunConfig.cmake
  ${PROJECT_BINARY_DIR}/xunConfigVersion.cmake
  DESTINATION ${XUN_INSTALL_CMAKEDIR}
  COMPONENT Development)

# The Python package, for the system Python: the modules of python/xun and
# _installed.py, which tells the package where the library and the default
# installation are, relative to itself (so that it needs no environment
# variable and the tree may be moved).
if(XUN_INSTALL_PYTHON AND XUN_INSTALL_PYTHONDIR)
  foreach(_xun_what LIBRARY HOME)
    if(_xun_what STREQUAL "LIBRARY")
      set(_xun_dir "${CMAKE_INSTALL_LIBDIR}")
    else()
      set(_xun_dir "${XUN_INSTALL_DATADIR}")
    endif()
    if(IS_ABSOLUTE "${_xun_dir}" OR IS_ABSOLUTE "${XUN_INSTALL_PYTHONDIR}")
      if(NOT IS_ABSOLUTE "${_xun_dir}")
        set(_xun_dir "${CMAKE_INSTALL_PREFIX}/${_xun_dir}")
      endif()
      set(XUN_PY_TO_${_xun_what} "${_xun_dir}")
    else()
      file(RELATIVE_PATH XUN_PY_TO_${_xun_what} "/prefix/${XUN_INSTALL_PYTHONDIR}/xun" "/prefix/${_xun_dir}")
    endif()
  endforeach()
  set(XUN_PY_TO_LIBRARY "${XUN_PY_TO_LIBRARY}/libxun.so.1")
  configure_file(${CMAKE_CURRENT_LIST_DIR}/xun_installed.py.in ${PROJECT_BINARY_DIR}/python/_installed.py @ONLY)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/python/xun/
    DESTINATION ${XUN_INSTALL_PYTHONDIR}/xun
    COMPONENT Runtime
    FILES_MATCHING PATTERN "*.py" PATTERN "py.typed"
    PATTERN "__pycache__" EXCLUDE PATTERN "installation" EXCLUDE)
  install(FILES ${PROJECT_BINARY_DIR}/python/_installed.py
    DESTINATION ${XUN_INSTALL_PYTHONDIR}/xun
    COMPONENT Runtime)
endif()
