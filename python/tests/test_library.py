"""Finding libxun.so.1: XUN_LIBRARY, then the package directory, then the
system loader; a clear error when none has it."""

import ctypes.util
import os
import shutil

from conftest import LIBRARY, PACKAGE_ROOT, REPO

CONVERT = """
import xun
print(xun.library_path())
xun.load()
print(xun.convert(1.0, "UnitFoot", "UnitMeter"))
"""


def test_xun_library_names_the_library(run_python):
    result = run_python(CONVERT)
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == [LIBRARY, "0.3048"]


def test_a_missing_xun_library_is_an_error_and_no_fallback(run_python, tmp_path):
    missing = str(tmp_path / "none" / "libxun.so.1")
    result = run_python(
        """
        import xun
        try:
            xun.convert(1.0, 1, 2)
        except xun.XunError as error:
            print(error)
        """,
        XUN_LIBRARY=missing,
        LD_LIBRARY_PATH=os.path.dirname(LIBRARY),
    )
    assert result.returncode == 0, result.stderr
    message = result.stdout.strip()
    assert message.startswith(f"cannot load libxun.so.1: XUN_LIBRARY ({missing}): ")
    assert message.endswith(
        ". Set XUN_LIBRARY to the library's path, or install it where the system loader finds it"
    )


def test_a_library_that_is_not_libxun_is_refused(run_python):
    libm = ctypes.util.find_library("m")
    assert libm is not None
    result = run_python(
        """
        import xun
        try:
            xun.units()
        except xun.XunError as error:
            print(error)
        """,
        XUN_LIBRARY=libm,
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.startswith(f"cannot load libxun.so.1: XUN_LIBRARY ({libm}) is not libxun: ")


def test_the_package_directory_is_searched_second(run_python, tmp_path):
    package = tmp_path / "site" / "xun"
    shutil.copytree(os.path.join(PACKAGE_ROOT, "xun"), package)
    shutil.copy(LIBRARY, package / "libxun.so.1")
    result = run_python(CONVERT, XUN_LIBRARY=None, PYTHONPATH=str(tmp_path / "site"))
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == [str(package / "libxun.so.1"), "0.3048"]


def test_the_system_loader_is_searched_last(run_python):
    result = run_python(CONVERT, XUN_LIBRARY=None, LD_LIBRARY_PATH=os.path.dirname(LIBRARY))
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == ["libxun.so.1", "0.3048"]


def test_no_library_anywhere_names_every_place_tried(run_python):
    if ctypes.util.find_library("xun"):
        import pytest

        pytest.skip("libxun is installed for the system loader on this machine")
    result = run_python(
        """
        import xun
        try:
            xun.load()
        except xun.XunError as error:
            print(error)
        """,
        XUN_LIBRARY=None,
    )
    assert result.returncode == 0, result.stderr
    message = result.stdout.strip()
    assert message.startswith("cannot load libxun.so.1: the system loader (libxun.so.1): ")
    assert "Set XUN_LIBRARY" in message


def test_import_needs_no_library(run_python, tmp_path):
    result = run_python("import xun; print(xun.__version__)", XUN_LIBRARY=str(tmp_path / "none"))
    assert result.returncode == 0, result.stderr
    with open(os.path.join(REPO, "VERSION"), encoding="utf-8") as stream:
        assert result.stdout == stream.read()
