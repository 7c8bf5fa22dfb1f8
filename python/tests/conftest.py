"""Shared setup of the tests.

The library's tables are process-wide and never unloaded. Tests that need the
default installation share one load in this process (the ``loaded`` fixture) and
undo what they change; tests of loading itself, of finding the library and of
anything that adds to the tables run in a fresh interpreter (``run_python``).

The library under test is the one named by XUN_LIBRARY (for example
build/libxun.so.1); without it, <repo>/build/libxun.so.1 is used when it exists.
The package under test is the one in this source tree.
"""

import os
import subprocess
import sys
import textwrap
import xml.etree.ElementTree as ElementTree

import pytest

TESTS = os.path.dirname(os.path.abspath(__file__))
PACKAGE_ROOT = os.path.dirname(TESTS)
REPO = os.path.dirname(PACKAGE_ROOT)
DATA = os.path.join(REPO, "data")

sys.path.insert(0, PACKAGE_ROOT)

if os.environ.get("XUN_LIBRARY"):
    os.environ["XUN_LIBRARY"] = os.path.abspath(os.environ["XUN_LIBRARY"])
elif os.path.exists(os.path.join(REPO, "build", "libxun.so.1")):
    os.environ["XUN_LIBRARY"] = os.path.join(REPO, "build", "libxun.so.1")
else:
    pytest.exit(
        "set XUN_LIBRARY to the libxun.so.1 to test (for example build/libxun.so.1)", returncode=4
    )
LIBRARY = os.environ["XUN_LIBRARY"]
os.environ["KORVANE_HOME"] = DATA

import xun  # noqa: E402  (after the environment is set)


@pytest.fixture(scope="session")
def loaded():
    """The default installation of the source tree, loaded once for the session."""
    xun.load()
    return xun


@pytest.fixture(scope="session")
def setup_rows():
    """The rows of data/bin/XUN.xml, by group: {"Units": [attributes...], ...}."""
    root = ElementTree.parse(os.path.join(DATA, "bin", "XUN.xml")).getroot()
    return {
        group.get("Name"): [dict(row.attrib) for row in group.find("Rows").findall("R")]
        for group in root.findall("Group")
    }


def read_language_file(path):
    """{key: [texts...]} of a language file (two header lines, END last)."""
    texts = {}
    with open(path, encoding="utf-8") as stream:
        lines = stream.read().splitlines()
    for line in lines[2:]:
        if line == "END":
            break
        key, _, text = line.partition(" ")
        texts.setdefault(int(key), []).append(text.strip('"'))
    return texts


@pytest.fixture(scope="session")
def unit_texts():
    """{unit key: [description, abbreviation]} of the active unit language file."""
    return read_language_file(os.path.join(DATA, "bin", "xununit.lan"))


@pytest.fixture(scope="session")
def type_texts():
    return read_language_file(os.path.join(DATA, "bin", "xuntype.lan"))


def python_environment(**changes):
    """The environment of a fresh interpreter: this package, the library under
    test and the default installation; a change of None removes the variable."""
    env = {
        "PATH": os.environ.get("PATH", "/usr/bin:/bin"),
        "PYTHONPATH": PACKAGE_ROOT,
        "XUN_LIBRARY": LIBRARY,
        "KORVANE_HOME": DATA,
        "LC_ALL": "C.UTF-8",
        "PYTHONIOENCODING": "utf-8",
        "PYTHONDONTWRITEBYTECODE": "1",
    }
    for name, value in changes.items():
        if value is None:
            env.pop(name, None)
        else:
            env[name] = value
    return env


@pytest.fixture
def run_python(tmp_path):
    """Runs code in a fresh interpreter (working directory tmp_path)."""

    def run(code, **env_changes):
        return subprocess.run(
            [sys.executable, "-c", textwrap.dedent(code)],
            env=python_environment(**env_changes),
            cwd=tmp_path,
            capture_output=True,
            text=True,
            timeout=120,
        )

    return run
