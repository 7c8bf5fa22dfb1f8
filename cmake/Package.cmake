# Debian packages of the installation, one per install component:
#
#   cpack -G DEB            (in the build directory; --config CPackConfig.cmake)
#
#   libxun1      Runtime      the shared library and the default installation
#                             (/usr/share/xun); a shlibs entry for libxun.so.1
#   libxun-dev   Development  headers, libxun.so, pkg-config file, CMake package,
#                             the Fortran, Pascal and C# bindings
#   xun-tools    Tools        the xun tool
#
# The packages install under /usr. dpkg-shlibdeps finds the run-time
# dependencies (the Xerces-C library, the C++ runtime); the packages of one
# build depend on each other at exactly its version. The first line of each
# description is the package's synopsis.
set(CPACK_PACKAGE_NAME xun)
set(CPACK_PACKAGE_VENDOR "libxun")
set(CPACK_PACKAGE_CONTACT "libxun maintainers <maintainers@libxun.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)
# The build may carry debug information (RelWithDebInfo): the packaged
# library and tool do not.
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL Runtime Development)
if(XUN_TOOL_TARGET)
  list(APPEND CPACK_COMPONENTS_ALL Tools)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The tool links the libxun.so.1 of this build, which dpkg-shlibdeps finds
# here; the dependency on libxun1 is named below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libxun1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Engineering-unit library: units, item types and value conversion
libxun converts values between engineering units, keeps item types with
their allowed and user units, and filters; this package holds the shared
library libxun.so.1 and its default installation (/usr/share/xun).")
# A shlibs control file (in the package that holds the library): packages
# linked against libxun.so.1 depend on libxun1 of at least this version.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libxun-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libxun1 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Engineering-unit library: development files
The header xun.h, the libxun.so link, the pkg-config file xun.pc, the CMake
package (find_package(xun)) and the bindings for Fortran (module source and
compiled module), Pascal and C#.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME xun-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libxun1 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "Engineering-unit library: the xun tool
xun converts values between units, lists and shows units, item types and
filters, writes the include files and checks an installation.")

include(CPack)
