"""Loading setup, language and unit base-group files, checking them first,
and writing the generated include files.

A problem in a setup or language file can end the process inside the library
(an assertion), which no Python code can catch. Every load here therefore
runs the library's own check of the same files first (xunSetupCheck,
xunBaseGroupCheck: the whole load on a scratch copy of the tables) and raises
XunError listing what would end the process instead of loading."""

from __future__ import annotations

import ctypes
import enum
import os
import re
import tempfile
from dataclasses import dataclass
from typing import Any, Callable, List, Optional, Tuple
from xml.sax.saxutils import quoteattr

from ._args import PathArg, decode
from ._errors import ErrorCode, XunError
from ._native import (
    CHECK_REPORT,
    clear_last_error,
    failure,
    installed_path,
    last_error,
    library,
    lock,
)

# Paths are kept by the library in buffers of 260 bytes.
PATH_LIMIT = 259

# The files that xunWriteItemTypeIncludes writes into the current directory.
INCLUDE_FILES = (
    "xunDefine.c__",
    "xunDefine.f__",
    "xunDefine.p__",
    "xunDefine.cs",
    "xunAllowedUnits.HTML",
)


# ---- problems -----------------------------------------------------------------


class Severity(enum.IntEnum):
    """How a load treats a problem that a check reports (XUN_CHECK_... of xun.h)."""

    DROPPED = 1  # dropped or ignored without a word
    MESSAGE = 2  # a message is printed and the load goes on
    FATAL = 3  # the load ends the process here
    WARNING = 4  # taken as written, but it will not work as meant


@dataclass(frozen=True)
class Problem:
    """A problem a check found in a file: where (line 0: the file as a whole),
    how a load treats it, and what it is, in the library's words."""

    file: str
    line: int
    severity: int
    message: str

    @property
    def fatal(self) -> bool:
        """True when a load would end the process here."""
        return self.severity == Severity.FATAL

    def __str__(self) -> str:
        where = f"{self.file}:{self.line}" if self.line > 0 else self.file
        return f"{where}: {self.message}"


def _severity(value: int) -> int:
    try:
        return Severity(value)
    except ValueError:
        return value


def _run_check(function: str, call: Callable[[Any], int]) -> List[Problem]:
    """Runs a check of the library, given a report function that collects the
    problems, and returns them; raises XunError (with the problems) when the
    check cannot read the file. The caller holds the lock."""
    problems: List[Problem] = []

    def report(
        user: Optional[int],
        file: Optional[bytes],
        line: int,
        severity: int,
        message: Optional[bytes],
    ) -> None:
        problems.append(Problem(decode(file), line, _severity(severity), decode(message)))

    if call(CHECK_REPORT(report)) < 0:
        error = failure(function)
        raise XunError(error.message, code=error.code, problems=problems)
    return problems


def _raise_if_fatal(what: str, problems: List[Problem]) -> None:
    fatal = [problem for problem in problems if problem.fatal]
    if fatal:
        count = "1 problem" if len(fatal) == 1 else f"{len(fatal)} problems"
        raise XunError(
            f"{what}: {count} would end the process; nothing is loaded:\n"
            + "\n".join(f"  {problem}" for problem in fatal),
            problems=fatal,
        )


# ---- paths ----------------------------------------------------------------------


def _path_bytes(path: object, what: str) -> bytes:
    try:
        encoded = os.fsencode(os.fspath(path))  # type: ignore[call-overload]
    except TypeError:
        raise TypeError(f"{what} must be a text or a path, got {type(path).__name__}") from None
    if b"\0" in encoded:
        raise ValueError(f"{what} contains a NUL character: {os.fsdecode(encoded)!r}")
    return encoded


# The default installation a wheel carries in the package (bin/XUN.xml and
# the language files), used when KORVANE_HOME is not set.
BUNDLED_HOME = os.path.join(os.path.dirname(os.path.abspath(__file__)), "installation")


def bundled_home() -> Optional[str]:
    """The installation that came with the package: the one a wheel carries,
    else the one cmake --install put beside the package; None without one."""
    for home in (BUNDLED_HOME, installed_path("HOME")):
        if home is not None and os.path.isfile(os.path.join(home, "bin", "XUN.xml")):
            return home
    return None


def _home() -> str:
    """The installation of a load without a path: KORVANE_HOME, else the one
    carried in the package. The library reads the language files from
    $KORVANE_HOME/bin/, so KORVANE_HOME is set to the package's installation
    when it is used (which child processes inherit)."""
    home = os.environ.get("KORVANE_HOME")
    if home is not None:
        return home
    bundled = bundled_home()
    if bundled is None:
        raise XunError(
            "KORVANE_HOME is not set and the package carries no installation: set it to "
            "an installation directory (the one that holds bin/XUN.xml) or pass the setup "
            "file's path"
        )
    os.environ["KORVANE_HOME"] = bundled
    return bundled


def _setup_file(path: object) -> Tuple[str, bytes]:
    """The setup file that a load or check with this path reads. A path longer
    than the library's buffers is refused here: the library would say only that
    it cannot read the file."""
    if path is None or path == "" or path == b"":
        home = _home()
        encoded = _path_bytes(home + "/bin/XUN.xml", "path")
    else:
        encoded = _path_bytes(path, "path")
    name = os.fsdecode(encoded)
    if len(encoded) > PATH_LIMIT:
        raise XunError(
            f"the path of the setup file is {len(encoded)} bytes long, the library takes at "
            f"most {PATH_LIMIT}: '{name}'"
        )
    # A file that cannot be read is the check's to report (xunSetupCheck,
    # XUN_ERR_FILE), in the library's words.
    return name, encoded


def _language_dir() -> bytes:
    """The folder whose language files xunLoadItemTypeTables reads: the
    library's own rule, $KORVANE_HOME/bin/ (with the C library's "(null)" for
    an unset variable), so that a check reads exactly the same files."""
    home = os.environb.get(b"KORVANE_HOME")
    return (home if home is not None else b"(null)") + b"/bin/"


def _setup_path_bytes() -> bytes:
    out = ctypes.c_char_p()
    library().xunSetupGetPath(ctypes.byref(out))
    return out.value or b""


# ---- checks ---------------------------------------------------------------------


def check(setup: Optional[PathArg] = None, lang_dir: Optional[PathArg] = None) -> List[Problem]:
    """Checks the setup file (None or "": $KORVANE_HOME/bin/XUN.xml) and, when
    lang_dir is given, the language files "xuntype.lan", "xununit.lan" and
    "xunfilter.lan" of that folder, as a load into the current tables would
    read them (xunSetupCheck). Returns every problem found, in file order;
    those with severity FATAL would end the process in a load. Changes
    nothing and prints nothing.

    load() checks with lang_dir = $KORVANE_HOME/bin. Raises XunError when the
    setup file cannot be read or is not well-formed XML."""
    _, encoded = _setup_file(setup)
    folder = None if lang_dir is None else _path_bytes(lang_dir, "lang_dir")
    with lock:
        lib = library()
        problems = _run_check(
            "xunSetupCheck", lambda report: int(lib.xunSetupCheck(encoded, folder, report, None))
        )
    return problems


def check_base_group(path: PathArg) -> List[Problem]:
    """Checks a unit base-group file against the current tables
    (xunBaseGroupCheck): every assignment a load would skip. Raises XunError
    when the file cannot be read or has a syntax error."""
    encoded = _path_bytes(path, "path")
    with lock:
        lib = library()
        problems = _run_check(
            "xunBaseGroupCheck", lambda report: int(lib.xunBaseGroupCheck(encoded, report, None))
        )
    return problems


_XML_UNSAFE = re.compile("[\x00-\x08\x0b\x0c\x0e-\x1f\ud800-\udfff\ufffe\uffff]")


def _xml_text(data: bytes) -> Optional[str]:
    try:
        text = data.decode("utf-8")
    except UnicodeDecodeError:
        return None
    return None if _XML_UNSAFE.search(text) else text


def refuse_fatal_expression(ident: bytes, expression: bytes) -> None:
    """Raises XunError when creating a unit from expression would end the
    process (xunUnitNew asserts, for example, that the factor is not 0).

    The library checks expressions only as rows of a setup file, so the
    expression is checked as the one row of a setup file in a temporary
    directory. The caller holds the lock."""
    expression_text = _xml_text(expression)
    if expression_text is None:
        raise ValueError(
            f"expression must be UTF-8 text without control characters: {decode(expression)!r}"
        )
    ident_text = _xml_text(ident) or "UnitNew"
    row = (
        f"<R Ident={quoteattr(ident_text)} KvId=\"100000\" Desc=\"new\" Abbr=\"new\" "
        f"Expr={quoteattr(expression_text)}/>"
    )
    content = (
        '<?xml version="1.0" encoding="UTF-8"?>\n'
        f'<Setup><Group Name="Units"><Rows>\n{row}\n</Rows></Group></Setup>\n'
    )
    with tempfile.TemporaryDirectory(prefix="xun") as directory:
        path = os.path.join(directory, "unit.xml")
        with open(path, "w", encoding="utf-8") as stream:
            stream.write(content)
        encoded = os.fsencode(path)
        lib = library()
        problems = _run_check(
            "xunSetupCheck", lambda report: int(lib.xunSetupCheck(encoded, None, report, None))
        )
    fatal = [problem for problem in problems if problem.fatal]
    if fatal:
        # The problems name the temporary file: only their messages are kept.
        raise XunError(
            "xunUnitNew would end the process: " + "; ".join(p.message for p in fatal)
        )


# ---- loading --------------------------------------------------------------------

# Whether this process has asked for a load (even one that failed): from then
# on the tables are what the caller made of them, and nothing is loaded
# behind the caller's back.
_load_asked = False


def ensure_loaded() -> None:
    """Loads the default installation (load(): KORVANE_HOME, else the one the
    package carries) on the first lookup of a process that has loaded nothing,
    so that xun.convert(1, "cfs", "m3/s") works right after import. A process
    that has called a load keeps what it loaded; without any installation
    nothing is loaded."""
    if _load_asked:
        return
    if os.environ.get("KORVANE_HOME") is None and bundled_home() is None:
        return  # nothing to load: lookups fail with the library's own message
    with lock:
        if not _load_asked:
            load()


def load_once(path: Optional[PathArg] = "") -> None:
    """Loads path (""/None: the default installation) unless this process has
    already loaded: what a Dask worker does before its first block."""
    if not _load_asked:
        with lock:
            if not _load_asked:
                load(path)


def _asked() -> None:
    global _load_asked
    _load_asked = True


def load(path: Optional[PathArg] = "") -> str:
    """Loads a setup file, then the localised texts of the language files
    "xuntype.lan", "xununit.lan" and "xunfilter.lan" in $KORVANE_HOME/bin
    (xunLoadItemTypeTables). An empty path loads $KORVANE_HOME/bin/XUN.xml.
    Returns the name of the loaded file.

    The files are checked first (check(path, $KORVANE_HOME/bin)): a problem
    that would end the process in the library - a filter naming an unknown
    item type, an allowed unit of another dimension, a language file that
    lacks a key or repeats one, ... - raises XunError listing each one with
    file and line, and nothing is loaded. XunError is raised too when
    KORVANE_HOME is needed but unset, when the file does not exist or cannot
    be read, and when the library cannot parse it. (The files are read twice,
    by the check and by the load: a file changed in between is not covered.)

    Loading again adds what is new and refreshes descriptions; nothing is
    removed."""
    _asked()
    name, encoded = _setup_file(path)
    folder = _language_dir()
    with lock:
        lib = library()
        problems = _run_check(
            "xunSetupCheck", lambda report: int(lib.xunSetupCheck(encoded, folder, report, None))
        )
        _raise_if_fatal(f"cannot load '{name}'", problems)
        # xunLoadItemTypeTables returns nothing: a failure shows in the record.
        clear_last_error()
        lib.xunLoadItemTypeTables(encoded)
        code, message = last_error()
    if code != ErrorCode.OK:
        raise XunError(message, code=code)
    return name


load_tables = load


def load_setup(path: Optional[PathArg] = "") -> str:
    """Loads a setup file without applying the language files (xunSetupLoad):
    descriptions and abbreviations are those of the setup file. An empty path
    loads $KORVANE_HOME/bin/XUN.xml. Returns the name of the loaded file.
    The file is checked first, as by load()."""
    _asked()
    name, encoded = _setup_file(path)
    with lock:
        lib = library()
        problems = _run_check(
            "xunSetupCheck", lambda report: int(lib.xunSetupCheck(encoded, None, report, None))
        )
        _raise_if_fatal(f"cannot load '{name}'", problems)
        if lib.xunSetupLoad(encoded) != 1:
            raise failure("xunSetupLoad")
    return name


def load_base_group(path: PathArg) -> List[Problem]:
    """Presets the user units of item types from a unit base-group file
    (LoadUnitBaseGroupFile). Returns the problems of the file: the assignments
    the load skipped (an unknown item type or unit, a unit of another
    dimension). Raises XunError, loading nothing, when the file cannot be read
    or has a syntax error."""
    encoded = _path_bytes(path, "path")
    name = os.fsdecode(encoded)
    with lock:
        lib = library()
        problems = _run_check(
            "xunBaseGroupCheck", lambda report: int(lib.xunBaseGroupCheck(encoded, report, None))
        )
        _raise_if_fatal(f"cannot load '{name}'", problems)
        clear_last_error()
        # The function takes a modifiable text.
        lib.LoadUnitBaseGroupFile(ctypes.create_string_buffer(encoded))
        code, message = last_error()
    if code != ErrorCode.OK:
        raise XunError(message, code=code)
    return problems


def setup_path() -> str:
    """The name of the setup file loaded last ("" before the first load)."""
    with lock:
        return os.fsdecode(_setup_path_bytes())


def write_includes(directory: PathArg = ".") -> List[str]:
    """Writes the constant definitions for C, Fortran, Pascal and C# and the
    allowed-units report (the files of INCLUDE_FILES) into directory, replacing
    files of those names. Returns their paths.

    The library writes into the current directory, which belongs to the whole
    process: the files are written by a short-lived copy of this process
    (os.fork, which has the same tables) that changes its own working
    directory, so that the threads of this process keep theirs. A file that
    cannot be written would end the process in the library, so the directory
    and the files are checked first and a problem raises XunError instead;
    should the copy end all the same, XunError says how, with what it
    printed."""
    folder = os.fsdecode(_path_bytes(directory, "directory"))
    if not os.path.isdir(folder):
        raise XunError(f"'{folder}' is not a directory")
    if not os.access(folder, os.W_OK | os.X_OK):
        raise XunError(f"cannot write into the directory '{folder}'")
    paths = [os.path.join(folder, name) for name in INCLUDE_FILES]
    for path in paths:
        if os.path.isdir(path):
            raise XunError(f"cannot write '{path}': it is a directory")
        if os.path.lexists(path) and not os.access(path, os.W_OK):
            raise XunError(f"cannot write '{path}'")
    with lock:
        code, message = _write_includes_in_child(os.path.abspath(folder))
    if code != ErrorCode.OK:
        raise XunError(message, code=code)
    return paths


def _write_includes_in_child(folder: str) -> Tuple[int, str]:
    """Runs xunWriteItemTypeIncludes in folder, in a forked copy of this
    process; returns the code and message of the copy's last-error record.
    The caller holds the lock, so the copy starts with no call of the library
    under way."""
    lib = library()
    read_end, write_end = os.pipe()
    with tempfile.TemporaryFile() as printed:
        pid = os.fork()
        if pid == 0:  # pragma: no cover - the copy; coverage does not see it
            status = 1
            try:
                os.close(read_end)
                os.dup2(printed.fileno(), 2)
                os.chdir(folder)
                clear_last_error()
                lib.xunWriteItemTypeIncludes()
                code, message = last_error()
                os.write(write_end, f"{code}\n{message}".encode("utf-8", "surrogateescape"))
                status = 0
            except BaseException as error:
                os.write(2, f"{type(error).__name__}: {error}".encode("utf-8", "replace"))
            finally:
                os._exit(status)
        os.close(write_end)
        chunks = []
        while True:
            chunk = os.read(read_end, 65536)
            if not chunk:
                break
            chunks.append(chunk)
        os.close(read_end)
        _, status = os.waitpid(pid, 0)
        printed.seek(0)
        stderr = printed.read().decode("utf-8", "replace").strip()
    answer = b"".join(chunks).decode("utf-8", "surrogateescape")
    if os.WIFEXITED(status) and os.WEXITSTATUS(status) == 0 and "\n" in answer:
        code_text, _, message = answer.partition("\n")
        return int(code_text), message
    how = (
        f"was ended by signal {os.WTERMSIG(status)}"
        if os.WIFSIGNALED(status)
        else f"ended with status {os.WEXITSTATUS(status)}"
    )
    raise XunError(
        f"xunWriteItemTypeIncludes: the process writing into '{folder}' {how}"
        + (f": {stderr}" if stderr else "")
    )
