"""The type hints: mypy --strict accepts the package, and code that uses the
package is checked against its hints (py.typed). Skipped when mypy is not
installed."""

import os
import shutil
import subprocess
import sys
import textwrap

import pytest

from conftest import PACKAGE_ROOT


def mypy_command():
    module = [sys.executable, "-m", "mypy"]
    if subprocess.run(module + ["--version"], capture_output=True).returncode == 0:
        return module
    program = shutil.which("mypy")
    if program is None:
        pytest.skip("mypy is not installed")
    return [program]


def run_mypy(*arguments):
    # No cache: nothing is written into the source tree.
    result = subprocess.run(
        mypy_command() + ["--strict", "--cache-dir", os.devnull, *arguments],
        cwd=PACKAGE_ROOT,
        capture_output=True,
        text=True,
        timeout=600,
    )
    return result.returncode, result.stdout + result.stderr


def test_the_package_passes_mypy_strict():
    code, output = run_mypy("xun")
    assert code == 0, output


def test_code_using_the_package_is_checked_against_its_hints(tmp_path):
    client = tmp_path / "client.py"
    client.write_text(
        textwrap.dedent(
            """
            from typing import Any

            import numpy as np
            import xun

            def meters(feet: float) -> float:
                return xun.convert(feet, "UnitFoot", xun.unit("meter"))

            def levels() -> "np.ndarray[Any, np.dtype[np.float64]]":
                return xun.convert_array(np.zeros(3), "ft", "m")

            def problems() -> list[str]:
                return [f"{p.file}:{p.line}: {p.message}" for p in xun.check()]

            wrong: str = xun.convert(1.0, "ft", "m")
            """
        )
    )
    code, output = run_mypy(str(client))
    assert code == 1, output
    assert output.splitlines()[0].endswith(
        'error: Incompatible types in assignment (expression has type "float", '
        'variable has type "str")  [assignment]'
    ), output
    assert "Found 1 error in 1 file" in output
