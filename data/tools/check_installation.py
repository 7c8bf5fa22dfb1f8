#!/usr/bin/env python3
"""Checks an installation of libxun: the library's load rules, then this
installation's own conventions.

What a load would drop, print or stop on is for the library to say: the
built tool runs its check (`xun check bin/XUN.xml --lang DIR`) for bin/ and
for every lang/<code>/ folder, and each problem it reports is passed on.

The conventions are checked on what the library holds after loading the
setup file, through the Python package (python/xun), which also runs the
library's name search:

- key ranges of units, item types and filters;
- idents usable as constant names in C, Fortran, Pascal and C#;
- unit names (descriptions, plurals, aliases) that find their own unit, in
  every language, and distinct abbreviations;
- the minimum counts;
- reference values: factor, offset and dimension of named units against
  their exact definitions;
- language files with a text for every key and no other key, in bin/ and
  in every lang/<code>/ folder, English ones equal to the setup file's texts.

Prints every problem and the counts; exits with 0 when nothing was found, 1
when something was, 2 when the tool or the library cannot be found.
"""

import argparse
import contextlib
import math
import os
import re
import subprocess
import sys
import tempfile

DATA = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
REPO = os.path.dirname(DATA)
# In the order of Checker.texts(): units, item types, filters.
LANG_FILES = ("xununit.lan", "xuntype.lan", "xunfilter.lan")

MIN_UNITS, MIN_ITEMS, MIN_FILTERS = 300, 120, 8
ANY_UNIT_ITEM = 999
# Units created at run time are numbered from 100000, item types from 110000;
# the installation's own blocks start at 1000 and 100 (data/README.md).
UNIT_KEYS, ITEM_KEYS = range(1000, 100000), range(100, 110000)
RESERVED_FILTER_BITS = (0x40000000, 0x80000000)
MAX_IDENT = 63
IDENT_PREFIX = {"unit": "Unit", "item type": "Item", "filter": "Filter"}

# Keywords (and a few predefined names that would be awkward as constants) of
# the four languages the include files are written for.
KEYWORDS = set("""
auto break case char const continue default do double else enum extern float for goto if inline int long
register restrict return short signed sizeof static struct switch typedef union unsigned void volatile while
abstract as base bool byte catch checked class decimal delegate event explicit false finally fixed foreach
implicit in interface internal is lock namespace new null object operator out override params private
protected public readonly ref sbyte sealed stackalloc string this throw true try typeof uint ulong unchecked
unsafe ushort using virtual
and array asm begin constructor destructor div downto end file function implementation inherited
initialization label mod nil not of or packed procedure program record repeat set shl shr then to type unit
until uses var with xor
allocatable allocate assign associate block call character common complex contains cycle data deallocate
dimension elemental elsewhere endif entry equivalence exit external format implicit include integer intent
intrinsic kind len logical module namelist none nullify only open optional parameter pause pointer print
private pure read real recursive result rewind save select sequence stop subroutine target where write
""".split())

# Reference values from the exact definitions, by dimension: factor to the SI
# base unit, or (factor, offset). The library's units must agree to 1e-14
# relative (factor) and 1e-12 absolute (offset).
LBF = 0.45359237 * 9.80665
REFERENCE = {
    "dimensionless": {"UnitPercent": 0.01, "UnitPerMille": 0.001, "UnitPartPerMillion": 1e-6,
                      "UnitDegree": math.pi / 180.0},
    "L": {"UnitFoot": 0.3048, "UnitInch": 0.0254, "UnitYard": 0.9144, "UnitMile": 1609.344,
          "UnitNauticalMile": 1852.0, "UnitUSSurveyFoot": 1200.0 / 3937.0},
    "L^2": {"UnitAcre": 4046.8564224, "UnitHectare": 1e4, "UnitDarcy": 1e-12 / 1.01325},
    "L^3": {"UnitLiter": 1e-3, "UnitUSGallon": 3.785411784e-3, "UnitImperialGallon": 4.54609e-3,
            "UnitCubicFoot": 0.028316846592, "UnitAcreFoot": 1233.48183754752},
    "M": {"UnitPound": 0.45359237, "UnitTonne": 1000.0},
    "T": {"UnitDay": 86400.0, "UnitYear": 31557600.0},
    "Θ": {"UnitKelvin": 1.0, "UnitDegreeCelsius": (1.0, 273.15),
          "UnitDegreeFahrenheit": (5.0 / 9.0, 459.67 * 5.0 / 9.0), "UnitDegreeRankine": 5.0 / 9.0},
    "L T^-1": {"UnitKnot": 1852.0 / 3600.0, "UnitMilePerHour": 0.44704, "UnitKilometerPerHour": 1.0 / 3.6,
               "UnitMillimeterPerHour": 1e-3 / 3600.0, "UnitMillimeterPerDay": 1e-3 / 86400.0,
               "UnitInchPerHour": 0.0254 / 3600.0},
    "L T^-2": {"UnitStandardGravity": 9.80665},
    "L^3 T^-1": {"UnitLiterPerSecond": 1e-3, "UnitCubicMeterPerDay": 1.0 / 86400.0,
                 "UnitCubicFootPerSecond": 0.028316846592,
                 "UnitMillionUSGallonPerDay": 3785.411784 / 86400.0,
                 "UnitMillionImperialGallonPerDay": 4546.09 / 86400.0},
    "L^-3 M": {"UnitMilligramPerLiter": 1e-3, "UnitMicrogramPerLiter": 1e-6},
    "L M T^-2": {"UnitPoundForce": LBF},
    "L^-1 M T^-2": {"UnitBar": 1e5, "UnitStandardAtmosphere": 101325.0, "UnitTorr": 101325.0 / 760.0,
                    "UnitPoundForcePerSquareInch": LBF / 0.0254 ** 2, "UnitMeterOfWater": 9806.65,
                    "UnitFootOfWater": 9806.65 * 0.3048, "UnitMillimeterOfMercury": 133.322387415},
    "L^-1 M T^-1": {"UnitPoise": 0.1},
    "L^2 M T^-2": {"UnitKilowattHour": 3.6e6, "UnitCalorie": 4.184, "UnitBritishThermalUnit": 1055.05585262,
                   "UnitElectronvolt": 1.602176634e-19},
    "L^2 M T^-3": {"UnitHorsepower": 550.0 * 0.3048 * LBF, "UnitMetricHorsepower": 75.0 * 9.80665},
    "M T^-2": {"UnitLangley": 41840.0},
}


class Checker:
    def __init__(self, data, tool, xun):
        self.data, self.tool, self.xun = data, tool, xun
        self.setup = os.path.join(data, "bin", "XUN.xml")
        self.problems = []
        lang = os.path.join(data, "lang")
        codes = sorted(os.listdir(lang)) if os.path.isdir(lang) else []
        self.folders = [os.path.join(data, "bin")] + [os.path.join(lang, c) for c in codes
                                                       if os.path.isdir(os.path.join(lang, c))]
        self.lines = {}
        with open(self.setup, encoding="utf-8", errors="replace") as f:
            for n, line in enumerate(f, 1):
                for ident in re.findall(r'\bIdent="([^"]*)"', line):
                    self.lines.setdefault(ident, n)

    def problem(self, message, ident=None, path=None):
        """Adds a problem of path, or of the setup file at the row of ident."""
        where = path or self.setup
        if path is None and ident in self.lines:
            where += ":%d" % self.lines[ident]
        self.problems.append("%s: %s" % (where, message))

    def run_tool_check(self):
        """The library's load rules, for each language folder. A problem of
        the setup file itself is reported by every run, and kept once."""
        for folder in self.folders:
            run = subprocess.run([self.tool, "check", self.setup, "--lang", folder],
                                 capture_output=True, text=True, errors="replace")
            lines = run.stdout.splitlines()
            if run.returncode != 0 and not lines:
                lines = ["%s: xun check failed (exit %d): %s" % (self.setup, run.returncode, run.stderr.strip())]
            self.problems += [line for line in lines if line not in self.problems]

    def load(self, folder=None):
        """Loads the setup file (and the language files of folder) into the
        library; False when it refuses: what would end the load is among the
        problems of xun check already."""
        saved = os.environ.get("KORVANE_HOME")
        try:
            with quiet(), tempfile.TemporaryDirectory(prefix="xun-check") as home:
                if folder is None:
                    self.xun.load_setup(self.setup)
                else:
                    # A load reads the language files of $KORVANE_HOME/bin.
                    os.symlink(os.path.abspath(folder), os.path.join(home, "bin"))
                    os.environ["KORVANE_HOME"] = home
                    self.xun.load(self.setup)
            return True
        except self.xun.XunError:
            return False
        finally:
            os.environ.pop("KORVANE_HOME", None)
            if saved is not None:
                os.environ["KORVANE_HOME"] = saved

    def check_setup(self):
        xun = self.xun
        if not self.load():
            self.problem("the library does not load the setup file; its conventions are not checked")
            return False
        self.units, self.items, self.filters = xun.units(), xun.item_types(), xun.filters()
        for count, least, kind in ((len(self.units), MIN_UNITS, "units"), (len(self.items), MIN_ITEMS, "item types"),
                                   (len(self.filters), MIN_FILTERS, "filters")):
            if count < least:
                self.problem("only %d %s (at least %d wanted)" % (count, kind, least))
        for u in self.units:
            if u.tag not in UNIT_KEYS:
                self.problem("unit key %d of %s is outside %d..%d" % (u.tag, u.ident, UNIT_KEYS[0], UNIT_KEYS[-1]),
                             u.ident)
        for i in self.items:
            if i.key not in ITEM_KEYS:
                self.problem("item key %d of %s is outside %d..%d" % (i.key, i.ident, ITEM_KEYS[0], ITEM_KEYS[-1]),
                             i.ident)
        if ANY_UNIT_ITEM not in {i.key for i in self.items}:
            self.problem("the any-unit item type %d is missing" % ANY_UNIT_ITEM)
        for f in self.filters:
            bit = f.bit & 0xFFFFFFFF
            if bit == 0 or bit & (bit - 1) or bit in RESERVED_FILTER_BITS:
                self.problem("filter key 0x%X of %s is not a single free bit" % (bit, f.ident), f.ident)
        members = {i.key for f in self.filters for i in f.item_types}
        for i in self.items:
            if i.key not in members:
                self.problem("item type %s is in no filter" % i.ident, i.ident)
        self.check_idents()
        self.check_names()
        self.check_reference_values()
        return True

    def check_idents(self):
        seen = {}
        for kind, objects in (("unit", self.units), ("item type", self.items), ("filter", self.filters)):
            for ident in (o.ident for o in objects):
                if not re.fullmatch(r"[A-Za-z][A-Za-z0-9]*", ident):
                    self.problem("%s ident %r is not letters and digits" % (kind, ident), ident)
                if len(ident) > MAX_IDENT:
                    self.problem("%s ident %s is longer than %d characters" % (kind, ident, MAX_IDENT), ident)
                if ident.lower() in KEYWORDS:
                    self.problem("%s ident %s is a keyword" % (kind, ident), ident)
                if not ident.startswith(IDENT_PREFIX[kind]):
                    self.problem("%s ident %s does not start with %s" % (kind, ident, IDENT_PREFIX[kind]), ident)
                if ident.lower() in seen:
                    self.problem("%s ident %s collides with %s when case is ignored"
                                 % (kind, ident, seen[ident.lower()]), ident)
                seen.setdefault(ident.lower(), ident)

    def finds(self, name, unit, what, path=None):
        """Whether the library's name search finds unit by name."""
        try:
            found = self.xun.unit_by_name(name)
        except self.xun.XunError:
            found = None
        if found is None or found.tag != unit.tag:
            self.problem("%s %r of %s finds %s" % (what, name, unit.ident, found.ident if found else "no unit"),
                         unit.ident, path)

    def check_names(self):
        abbreviations = {}
        for u in self.units:
            description, abbreviation, aliases = u.description, u.abbreviation, u.aliases
            self.finds(description, u, "description")
            self.finds(description + "s", u, "plural")
            for alias in aliases:
                self.finds(alias, u, "alias")
                if not alias.isascii():
                    self.problem("alias %r of %s is not plain ASCII" % (alias, u.ident), u.ident)
            if abbreviation in abbreviations:
                self.problem("abbreviation %r of %s is also that of %s"
                             % (abbreviation, u.ident, abbreviations[abbreviation]), u.ident)
            abbreviations.setdefault(abbreviation, u.ident)
        for u in self.units:
            for alias in u.aliases:
                if abbreviations.get(alias, u.ident) != u.ident:
                    self.problem("alias %r of %s is the abbreviation of %s" % (alias, u.ident, abbreviations[alias]),
                                 u.ident)

    def check_reference_values(self):
        units = {u.ident: u for u in self.units}
        for dimension, references in REFERENCE.items():
            for ident, value in references.items():
                factor, offset = value if isinstance(value, tuple) else (value, 0.0)
                u = units.get(ident)
                if u is None:
                    self.problem("reference unit %s is missing" % ident)
                elif (u.dimension_text != dimension or abs(u.factor - factor) > 1e-14 * abs(factor)
                      or abs(u.offset - offset) > 1e-12):
                    self.problem("%s has factor %r, offset %r, dimension %s; expected %r, %r, %s"
                                 % (ident, u.factor, u.offset, u.dimension_text, factor, offset, dimension), ident)

    def texts(self):
        return ({u.tag: (u.description, u.abbreviation) for u in self.units},
                {i.key: i.description for i in self.items}, {f.bit: f.description for f in self.filters})

    def check_languages(self):
        """Every language folder: no key beyond those of the setup file (a
        missing one is for xun check), descriptions that find their own unit,
        and, for English, the setup file's texts."""
        setup_texts = self.texts()
        keys = [set(t) for t in setup_texts]
        for folder in self.folders:
            for name, wanted in zip(LANG_FILES, keys):
                path = os.path.join(folder, name)
                stray = set()  # a unit key has two lines: reported once
                with contextlib.suppress(OSError), open(path, encoding="utf-8", errors="replace") as f:
                    for n, line in enumerate(f, 1):
                        m = re.match(r'(\d+) "', line)
                        key = int(m.group(1)) if m and n > 2 else None
                        if key is not None and key not in wanted and key not in stray:
                            stray.add(key)
                            self.problem("key %d names nothing of the setup file" % key, path="%s:%d" % (path, n))
            if not self.load(folder):
                continue
            for u in self.units:
                self.finds(u.description, u, "description", os.path.join(folder, "xununit.lan"))
            if os.path.basename(folder) in ("bin", "en"):
                for name, ours, theirs in zip(LANG_FILES, setup_texts, self.texts()):
                    for key in sorted(k for k in ours if ours[k] != theirs[k]):
                        self.problem("text of key %d is %r, the setup file has %r" % (key, theirs[key], ours[key]),
                                     path=os.path.join(folder, name))


@contextlib.contextmanager
def quiet():
    """Keeps what a load prints (problems xun check reports anyway) off the
    standard output and error."""
    sys.stdout.flush()
    saved = [os.dup(1), os.dup(2)]
    null = os.open(os.devnull, os.O_WRONLY)
    try:
        os.dup2(null, 1)
        os.dup2(null, 2)
        yield
    finally:
        os.dup2(saved[0], 1)
        os.dup2(saved[1], 2)
        for fd in saved + [null]:
            os.close(fd)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--data", default=DATA, help="installation to check (default: %(default)s)")
    parser.add_argument("--xun", default=os.path.join(REPO, "build", "tools", "xun"),
                        help="the built xun tool (default: %(default)s)")
    parser.add_argument("--library", help="the built libxun.so.1 (default: $XUN_LIBRARY, else libxun.so.1 "
                                          "in the build tree of --xun)")
    args = parser.parse_args()
    library = args.library or os.environ.get("XUN_LIBRARY") or os.path.join(
        os.path.dirname(os.path.dirname(os.path.abspath(args.xun))), "libxun.so.1")
    for what, path, option in (("the xun tool", args.xun, "--xun"), ("the library", library, "--library")):
        if not os.path.isfile(path):
            print("check_installation: cannot find %s at %s: build it (cmake --build build) or name it with %s"
                  % (what, path, option), file=sys.stderr)
            return 2
    if not os.path.isfile(os.path.join(args.data, "bin", "XUN.xml")):
        print("check_installation: %s has no bin/XUN.xml" % args.data, file=sys.stderr)
        return 2

    os.environ["XUN_LIBRARY"] = os.path.abspath(library)
    sys.path.insert(0, os.path.join(REPO, "python"))
    sys.dont_write_bytecode = True  # nothing written into the source tree
    import xun

    checker = Checker(args.data, args.xun, xun)
    checker.run_tool_check()
    if checker.check_setup():
        checker.check_languages()
        print("units: %d, item types: %d, filters: %d; language folders: %s"
              % (len(checker.units), len(checker.items), len(checker.filters),
                 ", ".join(os.path.relpath(f, args.data) for f in checker.folders)))
    for p in checker.problems:
        print(p)
    print("%d problem(s)" % len(checker.problems))
    return 1 if checker.problems else 0


if __name__ == "__main__":
    sys.exit(main())
