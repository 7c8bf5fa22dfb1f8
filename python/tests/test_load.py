"""Loading a setup: the default installation, explicit files, the language
files, and every way a load can fail (each in a fresh interpreter, since the
tables are process-wide)."""

import os
import shutil

import pytest

from conftest import DATA, read_language_file

DEFAULT = os.path.join(DATA, "bin", "XUN.xml")


def run_ok(run_python, code, **env):
    result = run_python(code, **env)
    assert result.returncode == 0, result.stdout + result.stderr
    return result.stdout.splitlines()


def test_setup_path_is_empty_before_any_load(run_python):
    assert run_ok(run_python, "import xun; print(repr(xun.setup_path()))") == ["''"]


def test_load_reads_the_default_installation(run_python, setup_rows):
    lines = run_ok(
        run_python,
        """
        import xun
        print(xun.load())
        print(xun.setup_path())
        print(len(xun.units()), len(xun.item_types()), len(xun.filters()))
        """,
    )
    counts = f"{len(setup_rows['Units'])} {len(setup_rows['Items'])} {len(setup_rows['Filters'])}"
    assert lines == [DEFAULT, DEFAULT, counts]


def test_load_tables_is_load(run_python):
    assert run_ok(run_python, "import xun; print(xun.load_tables is xun.load)") == ["True"]


def test_loading_again_changes_no_count_and_reports_success(run_python):
    lines = run_ok(
        run_python,
        """
        import xun
        for _ in range(3):
            print(xun.load(), xun.setup_path(), len(xun.units()), len(xun.item_types()))
        """,
    )
    count = lines[0].split()[2:]
    assert [line.split()[:2] for line in lines] == 3 * [[DEFAULT, DEFAULT]]
    assert all(line.split()[2:] == count for line in lines)


def test_a_file_broken_since_the_last_load_is_reported(run_python, tmp_path):
    home = tmp_path / "home"
    shutil.copytree(os.path.join(DATA, "bin"), home / "bin")
    lines = run_ok(
        run_python,
        """
        import os, xun
        print(xun.load())
        with open(os.path.join(os.environ["KORVANE_HOME"], "bin", "XUN.xml"), "w") as f:
            f.write("<XUN><Group")
        try:
            xun.load()
        except xun.XunError as error:
            print(error)
        print(xun.setup_path())
        """,
        KORVANE_HOME=str(home),
    )
    name = str(home / "bin" / "XUN.xml")
    assert lines == [
        name,
        f"xunSetupCheck: the setup file '{name}' cannot be read or is not well-formed XML",
        name,
    ]


def test_without_korvane_home_the_default_cannot_be_found(run_python):
    lines = run_ok(
        run_python,
        """
        import xun
        for call in (xun.load, xun.load_setup):
            try:
                call()
            except xun.XunError as error:
                print(error)
        """,
        KORVANE_HOME=None,
    )
    expected = (
        "KORVANE_HOME is not set and the package carries no installation: set it to an "
        "installation directory (the one that holds bin/XUN.xml) or pass the setup file's path"
    )
    assert lines == [expected, expected]


def test_an_explicit_path_needs_no_korvane_home(run_python, unit_texts):
    lines = run_ok(
        run_python,
        f"""
        import xun
        print(xun.load_setup({DEFAULT!r}))
        print(xun.unit("UnitMeter").description)
        """,
        KORVANE_HOME=None,
    )
    assert lines == [DEFAULT, unit_texts[1200][0]]


@pytest.mark.parametrize("call", ["load", "load_setup"])
def test_file_problems_raise_with_the_library_message(run_python, tmp_path, call):
    long_name = "/" + "d" * 251 + "/XUN.xml"  # 260 bytes: one too many
    lines = run_ok(
        run_python,
        f"""
        import xun
        for path in ({str(tmp_path / 'none.xml')!r}, {str(tmp_path)!r}):
            try:
                xun.{call}(path)
            except xun.XunError as error:
                print(error.code.name, error)
        try:
            xun.{call}({long_name!r})
        except xun.XunError as error:
            print(error)
        try:
            xun.{call}("a\\0b")
        except ValueError as error:
            print(error)
        try:
            xun.{call}(3)
        except TypeError as error:
            print(error)
        print(repr(xun.setup_path()))
        """,
    )
    assert lines == [
        f"FILE xunSetupCheck: the setup file '{tmp_path / 'none.xml'}' cannot be read or is not "
        "well-formed XML",
        f"FILE xunSetupCheck: the setup file '{tmp_path}' cannot be read or is not well-formed XML",
        f"the path of the setup file is {len(long_name)} bytes long, the library takes at most "
        f"259: '{long_name}'",
        "path contains a NUL character: 'a\\x00b'",
        "path must be a text or a path, got int",
        "''",
    ]


@pytest.mark.parametrize("call", ["load", "load_setup"])
def test_a_malformed_file_raises_and_the_process_goes_on(run_python, tmp_path, call):
    broken = tmp_path / "broken.xml"
    broken.write_text("<XUN><Group Name='Units'>")
    result = run_python(
        f"""
        import xun
        try:
            xun.{call}({str(broken)!r})
        except xun.XunError as error:
            print(error)
        print(repr(xun.setup_path()), len(xun.units()))
        """
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == [
        f"xunSetupCheck: the setup file '{broken}' cannot be read or is not well-formed XML",
        "'' 0",
    ]
    # The check finds the file broken first: the library's load, which would
    # print its own message, is not called.
    assert result.stderr == ""


def test_unreadable_file(run_python, tmp_path):
    if os.geteuid() == 0:
        pytest.skip("root reads every file")
    locked = tmp_path / "locked.xml"
    locked.write_text("<XUN/>")
    locked.chmod(0)
    lines = run_ok(
        run_python,
        f"""
        import xun
        try:
            xun.load({str(locked)!r})
        except xun.XunError as error:
            print(error)
        """,
    )
    assert lines == [
        f"xunSetupCheck: the setup file '{locked}' cannot be read or is not well-formed XML"
    ]


def test_load_applies_the_language_files_and_load_setup_does_not(
    run_python, tmp_path, setup_rows
):
    # An installation whose active language is German.
    home = tmp_path / "de"
    (home / "bin").mkdir(parents=True)
    shutil.copy(DEFAULT, home / "bin" / "XUN.xml")
    for name in ("xuntype.lan", "xununit.lan", "xunfilter.lan"):
        shutil.copy(os.path.join(DATA, "lang", "de", name), home / "bin" / name)
    german_units = read_language_file(os.path.join(DATA, "lang", "de", "xununit.lan"))
    german_types = read_language_file(os.path.join(DATA, "lang", "de", "xuntype.lan"))
    german_filters = read_language_file(os.path.join(DATA, "lang", "de", "xunfilter.lan"))
    lines = run_ok(
        run_python,
        """
        import xun
        xun.load_setup()
        print(xun.unit(1801).description, xun.unit(1801).abbreviation)
        print(xun.item_type(300).description, xun.filter(1).description)
        xun.load()
        print(xun.unit(1801).description, xun.unit(1801).abbreviation)
        print(xun.item_type(300).description, xun.filter(1).description)
        print(xun.unit(1801).ident, xun.unit("UnitDegreeCelsius").tag)
        """,
        KORVANE_HOME=str(home),
    )
    celsius = next(row for row in setup_rows["Units"] if row["KvId"] == "1801")
    level = next(row for row in setup_rows["Items"] if row["KvId"] == "300")
    hydrology = next(row for row in setup_rows["Filters"] if int(row["KvId"], 0) == 1)
    assert lines == [
        f"{celsius['Desc']} {celsius['Abbr']}",
        f"{level['Desc']} {hydrology['Desc']}",
        f"{german_units[1801][0]} {german_units[1801][1]}",
        f"{german_types[300][0]} {german_filters[1][0]}",
        "UnitDegreeCelsius 1801",
    ]
    assert german_types[300][0] != level["Desc"]


def test_the_first_lookup_loads_the_default_installation(run_python):
    lines = run_ok(
        run_python,
        """
        import xun
        print(repr(xun.setup_path()))
        print(xun.convert(1, "cfs", "m3/s") == xun.convert(1, "UnitCubicFootPerSecond", 2400))
        print(xun.setup_path())
        """,
    )
    assert lines == ["''", "True", DEFAULT]


def test_no_installation_loads_nothing_on_a_lookup(run_python):
    result = run_python(
        """
        import xun
        print(len(xun.units()), repr(xun.setup_path()))
        """,
        KORVANE_HOME=None,
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == ["0 ''"]
