"""Builds the package with the library and the default installation inside it.

pyproject.toml holds the metadata; this file adds one step to build_py:
CMake builds libxun.so.1 from the source tree around this folder, and the
library and data/bin/ are copied into the package (xun/libxun.so.1,
xun/installation/bin/), where the package looks first. The wheel is tagged
py3-none-<platform>: pure Python over a native library.

    pip install ./python --no-build-isolation     # offline, with Debian's setuptools and wheel

Environment:
  XUN_SOURCE_DIR      the source tree (default: the folder above this one)
  XUN_CMAKE_BUILD_DIR an existing CMake build directory of that tree: only the
                      target xun is built there, with its own configuration
                      (default: a Release build in setuptools' build folder)
  CMAKE               the cmake program (default: cmake)
"""

import os
import shutil
import subprocess

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

try:
    from wheel.bdist_wheel import bdist_wheel
except ImportError:  # pragma: no cover - building without wheel installed
    bdist_wheel = None

HERE = os.path.dirname(os.path.abspath(__file__))


class BuildWithLibrary(build_py):
    """build_py, then the library (built with CMake) and the default
    installation into the built package."""

    def run(self):
        super().run()
        source = os.path.abspath(os.environ.get("XUN_SOURCE_DIR") or os.path.join(HERE, ".."))
        if not os.path.isfile(os.path.join(source, "CMakeLists.txt")):
            raise SystemExit(
                f"{source} is not the libxun source tree: build the package from "
                "python/ inside it, or set XUN_SOURCE_DIR"
            )
        cmake = os.environ.get("CMAKE") or "cmake"
        build = os.environ.get("XUN_CMAKE_BUILD_DIR")
        if build and os.path.isfile(os.path.join(build, "CMakeCache.txt")):
            build = os.path.abspath(build)
        else:
            temp = self.get_finalized_command("build").build_temp
            build = os.path.abspath(os.path.join(temp, "cmake"))
            self.spawn(
                [
                    cmake,
                    "-S",
                    source,
                    "-B",
                    build,
                    "-DCMAKE_BUILD_TYPE=Release",
                    "-DXUN_BUILD_TESTS=OFF",
                    "-DXUN_BUILD_BENCHMARKS=OFF",
                ]
            )
        self.spawn([cmake, "--build", build, "-j2", "--target", "xun"])
        package = os.path.join(self.build_lib, "xun")
        library = os.path.join(build, "libxun.so.1")
        # The soname link may point at the versioned file: copy the file itself.
        shutil.copyfile(os.path.realpath(library), os.path.join(package, "libxun.so.1"))
        installation = os.path.join(package, "installation", "bin")
        if os.path.isdir(installation):
            shutil.rmtree(installation)
        shutil.copytree(os.path.join(source, "data", "bin"), installation)


commands = {"build_py": BuildWithLibrary}

if bdist_wheel is not None:

    class PlatformWheel(bdist_wheel):
        """A wheel for this platform (it holds a native library) that any
        Python 3 can use (the package itself is pure Python)."""

        def get_tag(self):
            _, _, platform = super().get_tag()
            return "py3", "none", platform

    commands["bdist_wheel"] = PlatformWheel

class DistributionWithLibrary(Distribution):
    """The files go to the platform's package directory, as a native library
    must."""

    def has_ext_modules(self):
        return True


setup(cmdclass=commands, distclass=DistributionWithLibrary)
