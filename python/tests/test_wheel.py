"""pip builds a wheel that carries libxun.so.1 and the default installation;
installed into a fresh virtual environment it works with no variable set, and
XUN_LIBRARY and KORVANE_HOME still override what it carries."""

import os
import shutil
import subprocess
import sys
import zipfile

import pytest

from conftest import DATA, LIBRARY, PACKAGE_ROOT, REPO

SYSTEM_PYTHON = "/usr/bin/python3" if os.path.exists("/usr/bin/python3") else sys.executable


def run(command, **kwargs):
    result = subprocess.run(command, capture_output=True, text=True, timeout=1800, **kwargs)
    assert result.returncode == 0, result.stdout[-3000:] + result.stderr[-3000:]
    return result.stdout


@pytest.fixture(scope="module")
def venv(tmp_path_factory):
    """A fresh virtual environment (with the system's packages: setuptools,
    wheel and numpy come from Debian) with the wheel of this tree installed."""
    for module in ("venv", "setuptools", "wheel", "pip"):
        if subprocess.run([SYSTEM_PYTHON, "-c", f"import {module}"]).returncode != 0:
            pytest.skip(f"{SYSTEM_PYTHON} has no {module} (Debian: python3-venv, python3-{module})")
    root = tmp_path_factory.mktemp("wheel")
    # A copy of the package folder, so that the build leaves the tree clean;
    # XUN_SOURCE_DIR names the tree that CMake builds.
    source = root / "src"
    shutil.copytree(
        PACKAGE_ROOT,
        source,
        ignore=shutil.ignore_patterns("tests", "build", "*.egg-info", "__pycache__", "libxun.so.1"),
    )
    environment = dict(os.environ, XUN_SOURCE_DIR=REPO, PIP_NO_INDEX="1")
    for name in ("XUN_LIBRARY", "KORVANE_HOME", "PYTHONPATH"):
        environment.pop(name, None)
    build = os.path.dirname(LIBRARY)
    if os.path.isfile(os.path.join(build, "CMakeCache.txt")):
        # The build directory of the library under test: CMake only brings
        # the target xun up to date there.
        environment["XUN_CMAKE_BUILD_DIR"] = build
    run([SYSTEM_PYTHON, "-m", "venv", "--system-site-packages", str(root / "venv")])
    pip = [str(root / "venv" / "bin" / "python"), "-m", "pip", "--disable-pip-version-check"]
    run(
        pip + ["wheel", "--no-build-isolation", "--no-deps", "-w", str(root / "dist"), str(source)],
        env=environment,
        cwd=root,
    )
    wheels = os.listdir(root / "dist")
    run(pip + ["install", "--no-deps", str(root / "dist" / wheels[0])], env=environment, cwd=root)
    return root, wheels


def test_the_wheel_carries_the_library_and_the_installation(venv):
    root, wheels = venv
    assert len(wheels) == 1
    assert wheels[0].startswith("xun-") and wheels[0].endswith(".whl")
    assert "-py3-none-linux_" in wheels[0]
    with zipfile.ZipFile(root / "dist" / wheels[0]) as wheel:
        names = set(wheel.namelist())
    expected = {"xun/libxun.so.1", "xun/py.typed", "xun/__init__.py"}
    expected |= {f"xun/installation/bin/{name}" for name in os.listdir(os.path.join(DATA, "bin"))}
    assert expected <= names


def fresh(root, code, **variables):
    environment = {"PATH": "/usr/bin:/bin", "HOME": str(root), "LC_ALL": "C.UTF-8"}
    environment.update(variables)
    return run([str(root / "venv" / "bin" / "python"), "-c", code], env=environment, cwd=root)


CODE = """
import os, xun
print(repr(xun.convert(1, "cfs", "m3/s")))
print(xun.library_path())
print(xun.setup_path())
print(xun.unit("m").description)
"""


def test_the_installed_wheel_works_with_no_variable_set(venv, loaded):
    root, _ = venv
    lines = fresh(root, CODE).splitlines()
    site = run(
        [
            str(root / "venv" / "bin" / "python"),
            "-c",
            "import sysconfig; print(sysconfig.get_path('purelib'))",
        ],
        env={"PATH": "/usr/bin:/bin"},
    ).strip()
    package = os.path.join(site, "xun")
    source, target = loaded.unit("cfs"), loaded.unit("m3/s")
    assert lines == [
        repr(((1 * source.factor + source.offset) - target.offset) / target.factor),
        os.path.join(package, "libxun.so.1"),
        os.path.join(package, "installation", "bin", "XUN.xml"),
        "meter",
    ]


def test_xun_library_and_korvane_home_still_override(venv):
    root, _ = venv
    lines = fresh(root, CODE, XUN_LIBRARY=LIBRARY, KORVANE_HOME=DATA).splitlines()
    assert lines[1:3] == [LIBRARY, os.path.join(DATA, "bin", "XUN.xml")]
