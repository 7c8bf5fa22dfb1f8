"""One version: the file VERSION at the top of the source tree, the library's
xunVersion(), the package's __version__ and the version pyproject.toml gives
the distribution all agree."""

import os
import re

import pytest

import xun
from conftest import PACKAGE_ROOT, REPO


def version_file():
    with open(os.path.join(REPO, "VERSION"), encoding="utf-8") as stream:
        return stream.readline().strip()


def test_the_package_has_the_version_of_the_source_tree():
    assert re.fullmatch(r"\d+\.\d+\.\d+", version_file())
    assert xun.__version__ == version_file()


def test_the_library_has_the_version_of_the_package():
    assert xun.library_version() == xun.__version__


def test_the_distribution_takes_the_package_version():
    tomllib = pytest.importorskip("tomllib")
    with open(os.path.join(PACKAGE_ROOT, "pyproject.toml"), "rb") as stream:
        project = tomllib.load(stream)
    assert "version" not in project["project"]
    assert "version" in project["project"]["dynamic"]
    assert project["tool"]["setuptools"]["dynamic"]["version"] == {
        "attr": "xun._version.__version__"
    }
