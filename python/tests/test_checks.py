"""Files that would end the process inside the library: the checks find them,
and load(), load_setup(), load_base_group() and new_unit() raise XunError
instead of letting the interpreter die. Each case runs in a fresh interpreter,
which must end normally."""

import os
import shutil
import signal

import pytest

from conftest import DATA, LIBRARY, REPO, TESTS

CHECK = os.path.join(REPO, "tests", "data", "tools", "check")
LANGFILE = os.path.join(REPO, "tests", "data", "langfile")
OWN = os.path.join(TESTS, "data")
CLEAN = os.path.join(CHECK, "clean.xml")


def home_with(tmp_path, setup, lang=None):
    """An installation whose bin/ holds setup as XUN.xml and the language files
    of the folder lang (none when lang is None)."""
    home = tmp_path / "home"
    (home / "bin").mkdir(parents=True)
    shutil.copy(setup, home / "bin" / "XUN.xml")
    if lang is not None:
        for name in os.listdir(lang):
            shutil.copy(os.path.join(lang, name), home / "bin" / name)
    return home


def fatal(file, line, message):
    return f"  {file}:{line}: {message}; loading would stop"


# (name, setup file, language folder or None, [(file, line, message)]) - file
# None is the setup file, a name a language file of the installation.
FATAL_CASES = [
    (
        "filter naming an unknown item type",
        os.path.join(CHECK, "filter_unknown_item.xml"),
        None,
        [(None, 18, "filter 'FilterA': unknown item type 'ItemGhost' in Items")],
    ),
    (
        "allowed unit of another dimension",
        os.path.join(CHECK, "allowed_dimension.xml"),
        None,
        [
            (
                None,
                13,
                "item type 'ItemLevel': allowed unit 'UnitSecond' has the dimension T, but the "
                "item type has L",
            )
        ],
    ),
    (
        "unit expression with the factor 0",
        os.path.join(OWN, "zero_factor.xml"),
        None,
        [(None, 7, "unit 'UnitNothing': expression 'Length*0' gives the factor 0")],
    ),
    (
        "language file with a duplicate key",
        CLEAN,
        os.path.join(CHECK, "lang", "type_duplicate"),
        [("xuntype.lan", 4, "duplicate key 100 (first on line 3)")],
    ),
    (
        "language files with missing keys",
        CLEAN,
        os.path.join(CHECK, "lang", "missing_keys"),
        [
            ("xuntype.lan", 3, "no text for item type 100 'ItemLevel'"),
            ("xununit.lan", 5, "no text for unit 1001 'UnitFoot'"),
            ("xununit.lan", 5, "no text for unit 1002 'UnitSecond'"),
            ("xunfilter.lan", 3, "no text for filter 1 'FilterA'"),
        ],
    ),
]


@pytest.mark.parametrize(
    "setup, lang, expected", [case[1:] for case in FATAL_CASES], ids=[c[0] for c in FATAL_CASES]
)
def test_load_raises_what_would_end_the_process(run_python, tmp_path, setup, lang, expected):
    home = home_with(tmp_path, setup, lang)
    setup_file = str(home / "bin" / "XUN.xml")
    result = run_python(
        """
        import xun
        try:
            xun.load()
        except xun.XunError as error:
            print(error)
            print(all(problem.fatal for problem in error.problems), len(error.problems))
        print(len(xun.units()), repr(xun.setup_path()))
        """,
        KORVANE_HOME=str(home),
    )
    assert result.returncode == 0, result.stderr
    count = "1 problem" if len(expected) == 1 else f"{len(expected)} problems"
    lines = [
        fatal(setup_file if file is None else str(home / "bin" / file), line, message)
        for file, line, message in expected
    ]
    assert result.stdout.splitlines() == [
        f"cannot load '{setup_file}': {count} would end the process; nothing is loaded:",
        *lines,
        f"True {len(expected)}",
        "0 ''",
    ]
    assert result.stderr == ""


@pytest.mark.parametrize(
    "setup, lang", [case[1:3] for case in FATAL_CASES], ids=[c[0] for c in FATAL_CASES]
)
def test_without_the_check_the_library_ends_the_process(run_python, tmp_path, setup, lang):
    # What the check prevents: the same files loaded by the C entry point.
    home = home_with(tmp_path, setup, lang)
    result = run_python(
        f"""
        import ctypes
        ctypes.CDLL({LIBRARY!r}).xunLoadItemTypeTables(b"")
        print("still alive")
        """,
        KORVANE_HOME=str(home),
    )
    assert result.returncode == -signal.SIGABRT
    assert "still alive" not in result.stdout


def test_load_setup_checks_the_setup_file(run_python):
    result = run_python(
        f"""
        import xun
        try:
            xun.load_setup({os.path.join(CHECK, 'filter_unknown_item.xml')!r})
        except xun.XunError as error:
            print(error)
        print(len(xun.units()))
        """
    )
    assert result.returncode == 0, result.stderr
    name = os.path.join(CHECK, "filter_unknown_item.xml")
    assert result.stdout.splitlines() == [
        f"cannot load '{name}': 1 problem would end the process; nothing is loaded:",
        fatal(name, 18, "filter 'FilterA': unknown item type 'ItemGhost' in Items"),
        "0",
    ]


def test_problems_that_do_not_end_the_process_do_not_stop_a_load(run_python):
    setup = os.path.join(CHECK, "expr_fails.xml")
    result = run_python(
        f"""
        import xun
        for problem in xun.check({setup!r}):
            print(problem.severity.name, problem)
        print()
        print(xun.load_setup({setup!r}), [u.ident for u in xun.units()][-3:])
        """
    )
    assert result.returncode == 0, result.stderr
    lines = result.stdout.splitlines()
    assert lines[:3] == [
        f"MESSAGE {setup}:9: unit 'UnitBad': expression 'UnitNothing*2' does not evaluate; "
        "the row is skipped",
        "",
        f"{setup} ['UnitMeter', 'UnitFoot', 'UnitSecond']",
    ]
    # The library prints its own message on a load, as designed (through the
    # C library's buffer, which is written out when the process ends).
    assert result.stdout.endswith(
        "Error reading unit\nUnitBad\nUnsuccessful parsing of the expression\nUnitNothing*2"
    )


def test_check_reports_every_problem_with_file_line_and_severity(run_python, tmp_path):
    lang = os.path.join(CHECK, "lang", "type_duplicate")
    result = run_python(
        f"""
        import xun
        print(xun.check({CLEAN!r}))
        for problem in xun.check({CLEAN!r}, {lang!r}):
            print(repr(problem.file), problem.line, repr(problem.severity), problem.fatal)
            print(problem.message)
        print(len(xun.units()))
        """,
        # No installation to load on the first lookup: the tables show what the
        # checks left in them.
        KORVANE_HOME=None,
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == [
        "[]",
        f"'{lang}/xuntype.lan' 4 <Severity.FATAL: 3> True",
        "duplicate key 100 (first on line 3); loading would stop",
        f"'{lang}/xununit.lan' 0 <Severity.DROPPED: 1> False",
        "the file cannot be read (No such file or directory); a load keeps the texts it has",
        f"'{lang}/xunfilter.lan' 0 <Severity.DROPPED: 1> False",
        "the file cannot be read (No such file or directory); a load keeps the texts it has",
        "0",
    ]


def test_the_default_installation_checks_clean(run_python):
    result = run_python(
        f"""
        import xun
        print(xun.check(None, {os.path.join(DATA, 'bin')!r}))
        xun.load()
        print(xun.check(None, {os.path.join(DATA, 'bin')!r}))
        """
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == ["[]", "[]"]


def test_a_setup_file_that_cannot_be_parsed(run_python):
    malformed = os.path.join(CHECK, "malformed.xml")
    result = run_python(
        f"""
        import xun
        for call in (xun.check, xun.load):
            try:
                call({malformed!r})
            except xun.XunError as error:
                print(error.code.name, error)
                print(*error.problems)
        """
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == 2 * [
        f"FILE xunSetupCheck: the setup file '{malformed}' cannot be read or is not "
        "well-formed XML",
        f"{malformed}:9: not well-formed XML: unterminated end tag 'R'; a load refuses the file",
    ]


def test_base_group_files(run_python, tmp_path):
    home = home_with(tmp_path, CLEAN)
    result = run_python(
        f"""
        import xun
        xun.load()
        level = xun.item_type("ItemLevel")
        print(level.user_unit.ident)
        for problem in xun.check_base_group({os.path.join(LANGFILE, 'ubg_three.kw')!r}):
            print(problem)
        print(level.user_unit.ident)
        for problem in xun.load_base_group({os.path.join(LANGFILE, 'ubg_unknown.kw')!r}):
            print(problem.severity.name, problem)
        print(level.user_unit.ident)
        try:
            xun.load_base_group({os.path.join(LANGFILE, 'ubg_syntax_error.kw')!r})
        except xun.XunError as error:
            print(error.code.name, error)
            print(*error.problems)
        print(level.user_unit.ident)
        """,
        KORVANE_HOME=str(home),
    )
    assert result.returncode == 0, result.stderr
    three = os.path.join(LANGFILE, "ubg_three.kw")
    unknown = os.path.join(LANGFILE, "ubg_unknown.kw")
    broken = os.path.join(LANGFILE, "ubg_syntax_error.kw")
    assert result.stdout.splitlines() == [
        "UnitFoot",
        f"{three}:4: Data = 8, 1100: no item type has this key; the assignment is skipped",
        "UnitFoot",
        f"DROPPED {unknown}:2: Data = 4242, 1001: no item type has this key; the assignment is "
        "skipped",
        f"DROPPED {unknown}:3: Data = 100, 4242: no unit has this key; the assignment is skipped",
        f"DROPPED {unknown}:4: Data = 100, 1100: no unit has this key; the assignment is skipped",
        f"DROPPED {unknown}:5: Data = 100, 0: no unit has this key; the assignment is skipped",
        "UnitFoot",
        f"FILE xunBaseGroupCheck: the file '{broken}' is not loaded",
        f"{broken}:3: the file is not loaded and changes nothing: neither a section nor a keyword",
        "UnitFoot",
    ]


@pytest.mark.parametrize("expression", ["Length*0", "UnitMeter*0"])
def test_new_unit_refuses_an_expression_that_would_end_the_process(run_python, expression):
    result = run_python(
        f"""
        import xun
        xun.load()
        count = len(xun.units())
        try:
            xun.new_unit("UnitNothing", "nothing", "n", {expression!r})
        except xun.XunError as error:
            print(error)
        print(len(xun.units()) == count)
        print(xun.new_unit("UnitTwoMeters", "two meters", "2m", "UnitMeter*2").factor)
        """
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == [
        f"xunUnitNew would end the process: unit 'UnitNothing': expression '{expression}' "
        "gives the factor 0; loading would stop",
        "True",
        "2.0",
    ]
