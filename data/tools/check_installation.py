#!/usr/bin/env python3
"""Checks an installation of libxun without loading it into the library.

Reads bin/XUN.xml and the language files of bin/ and of every lang/<code>/
directory below the data directory, evaluates every unit expression with a
re-implementation of the library's left-to-right expression evaluator, and
reports everything that a load would skip, refuse or stop on, plus the
conventions of this installation (key ranges, idents usable as constant names
in C, Fortran, Pascal and C#, unambiguous unit names, reference values).

Prints the counts and exits with 0 when nothing was found, 1 otherwise.
Only the Python 3 standard library is used.
"""

import argparse
import math
import os
import re
import sys
import xml.etree.ElementTree as ET

BASE_NAMES = ["NonDimensional", "Length", "Mass", "Time", "Temperature", "ElectricCurrent",
              "AmountOfSubstance", "LuminousIntensity"]
MIN_UNITS, MIN_ITEMS, MIN_FILTERS = 300, 120, 8
ANY_UNIT_ITEM = 999
FIRST_RUNTIME_UNIT, FIRST_RUNTIME_ITEM = 100000, 110000
RESERVED_FILTER_BITS = (0x40000000, 0x80000000)
MAX_TEXT = 100        # language-file texts are read into fixed buffers
MAX_LINE = 240        # language-file lines are read in pieces of 249 characters
MAX_FORTRAN_NAME = 63
MAX_FORTRAN_LINE = 132  # free-form source line; the include writer puts the description in a comment

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
IDENT_RE = re.compile(r"^[A-Za-z][A-Za-z0-9_]*$")

# Reference values (factor, offset to the SI base unit) from the exact
# definitions; the evaluated units must agree to 1e-14 relative.
REFERENCE = {
    "UnitFoot": (0.3048, 0.0), "UnitInch": (0.0254, 0.0), "UnitYard": (0.9144, 0.0),
    "UnitMile": (1609.344, 0.0), "UnitNauticalMile": (1852.0, 0.0), "UnitUSSurveyFoot": (1200.0 / 3937.0, 0.0),
    "UnitAcre": (4046.8564224, 0.0), "UnitHectare": (1e4, 0.0), "UnitLiter": (1e-3, 0.0),
    "UnitUSGallon": (3.785411784e-3, 0.0), "UnitImperialGallon": (4.54609e-3, 0.0),
    "UnitCubicFoot": (0.028316846592, 0.0), "UnitAcreFoot": (1233.48183754752, 0.0),
    "UnitPound": (0.45359237, 0.0), "UnitTonne": (1000.0, 0.0), "UnitYear": (31557600.0, 0.0),
    "UnitDay": (86400.0, 0.0), "UnitKnot": (1852.0 / 3600.0, 0.0), "UnitMilePerHour": (0.44704, 0.0),
    "UnitKilometerPerHour": (1.0 / 3.6, 0.0), "UnitCubicFootPerSecond": (0.028316846592, 0.0),
    "UnitMillionUSGallonPerDay": (3785.411784 / 86400.0, 0.0),
    "UnitMillionImperialGallonPerDay": (4546.09 / 86400.0, 0.0),
    "UnitLiterPerSecond": (1e-3, 0.0), "UnitCubicMeterPerDay": (1.0 / 86400.0, 0.0),
    "UnitMilligramPerLiter": (1e-3, 0.0), "UnitMicrogramPerLiter": (1e-6, 0.0), "UnitPartPerMillion": (1e-6, 0.0),
    "UnitStandardGravity": (9.80665, 0.0), "UnitStandardAtmosphere": (101325.0, 0.0), "UnitBar": (1e5, 0.0),
    "UnitPoundForce": (4.4482216152605, 0.0), "UnitPoundForcePerSquareInch": (6894.757293168361, 0.0),
    "UnitMeterOfWater": (9806.65, 0.0), "UnitFootOfWater": (2989.06692, 0.0),
    "UnitMillimeterOfMercury": (133.322387415, 0.0), "UnitTorr": (101325.0 / 760.0, 0.0),
    "UnitKelvin": (1.0, 0.0), "UnitDegreeCelsius": (1.0, 273.15),
    "UnitDegreeFahrenheit": (5.0 / 9.0, 459.67 * 5.0 / 9.0), "UnitDegreeRankine": (5.0 / 9.0, 0.0),
    "UnitKilowattHour": (3.6e6, 0.0), "UnitCalorie": (4.184, 0.0), "UnitBritishThermalUnit": (1055.05585262, 0.0),
    "UnitHorsepower": (745.69987158227022, 0.0), "UnitMetricHorsepower": (735.49875, 0.0),
    "UnitDegree": (math.pi / 180.0, 0.0), "UnitPercent": (0.01, 0.0), "UnitPerMille": (0.001, 0.0),
    "UnitMillimeterPerHour": (1e-3 / 3600.0, 0.0), "UnitMillimeterPerDay": (1e-3 / 86400.0, 0.0),
    "UnitInchPerHour": (0.0254 / 3600.0, 0.0), "UnitDarcy": (1e-12 / 1.01325, 0.0),
    "UnitLangley": (41840.0, 0.0), "UnitPoise": (0.1, 0.0), "UnitElectronvolt": (1.602176634e-19, 0.0),
}


# ---------------------------------------------------------------------------
# Units and the expression evaluator, mirroring the library's arithmetic.
# ---------------------------------------------------------------------------

class Unit:
    __slots__ = ("dims", "factor", "offset")

    def __init__(self, dims, factor, offset=0.0):
        if factor == 0.0:
            raise EvalError("zero factor")
        self.dims, self.factor, self.offset = tuple(dims), factor, offset

    def copy(self):
        # Intermediate units are copies that drop the offset.
        return Unit(self.dims, self.factor)


class EvalError(Exception):
    pass


def mul(a, b):
    return Unit([x + y for x, y in zip(a.dims, b.dims)], a.factor * b.factor)


def div(a, b):
    return Unit([x - y for x, y in zip(a.dims, b.dims)], a.factor / b.factor)


def num_div_unit(d, u):
    return Unit([x * -1.0 for x in u.dims], (1.0 / u.factor) * d)


def power(u, p):
    return Unit([x * p for x in u.dims], math.pow(u.factor, p))


class Evaluator:
    """Single left-to-right scan; '+' and '-' take the whole rest as their
    right-hand side; no precedence among '*', '/' and '^'."""

    MAX_NAME, MAX_NUMBER = 127, 23

    def __init__(self, registry, text, names_used):
        self.registry, self.text, self.pos, self.pending = registry, text, 0, None
        self.unit, self.value, self.names_used = None, None, names_used

    def nested(self, text):
        inner = Evaluator(self.registry, text, self.names_used)
        ok = inner.run()
        return ok, inner.unit, inner.value

    def run(self):
        if len(self.text) < 1:
            return False
        try:
            while self.pos < len(self.text):
                c = self.text[self.pos]
                op_unit, op_value = None, None
                if c == "(":
                    depth, close = 1, self.pos + 1
                    while close < len(self.text):
                        if self.text[close] == "(":
                            depth += 1
                        elif self.text[close] == ")":
                            depth -= 1
                            if depth == 0:
                                break
                        close += 1
                    if close >= len(self.text):
                        return False
                    ok, op_unit, op_value = self.nested(self.text[self.pos + 1:close])
                    if not ok:
                        return False
                    self.pos = close + 1
                elif c.isdigit() and c.isascii():
                    op_value = self.read_number()
                    if op_value is None:
                        return False
                elif c in "*/^":
                    self.pending = c
                    self.pos += 1
                    continue
                elif c in "+-":
                    ok, r_unit, r_value = self.nested(self.text[self.pos + 1:])
                    if ok:
                        self.pos = len(self.text)
                        return self.apply_sign(c, r_unit, r_value)
                    self.pos += 1
                    op_unit, op_value = r_unit, r_value
                else:
                    found = self.read_name()
                    if found is None:
                        return False
                    op_unit, op_value = found
                if not self.combine(op_unit, op_value):
                    return False
            return True
        except EvalError:
            return False

    def read_number(self):
        state, end = 1, self.pos
        while end < len(self.text):
            c = self.text[end]
            if c.isdigit() and c.isascii():
                if state >= 3:
                    state = 5
            elif c == "." and state == 1:
                state = 2
            elif c in "EedD" and state in (1, 2):
                state = 3
            elif c == "-" and state == 3:
                state = 4
            else:
                break
            end += 1
        if state in (3, 4) or end - self.pos > self.MAX_NUMBER:
            return None
        token = self.text[self.pos:end]
        self.pos = end
        # strtod stops at the exponent letters 'd' and 'D'.
        match = re.match(r"[0-9]*\.?[0-9]*(?:[eE]-?[0-9]+)?", token)
        return float(match.group(0))

    def read_name(self):
        end = self.pos
        while end < len(self.text) and self.text[end].isascii() and self.text[end].isalnum():
            end += 1
        name = self.text[self.pos:end]
        if not name or len(name) > self.MAX_NAME:
            return None
        self.pos = end
        if name in self.registry:
            self.names_used.append(name)
            return self.registry[name], None
        if name == "pi":
            return None, 3.141592653589793
        self.names_used.append(name)
        return None

    def apply_sign(self, sign, r_unit, r_value):
        minus = sign == "-"
        if self.unit is not None and r_value is not None:
            self.unit.offset += -r_value if minus else r_value
            return True
        if self.unit is None and self.value is not None and r_unit is not None:
            self.unit = r_unit.copy()
            return True
        if r_value is None:
            return False
        s = -r_value if minus else r_value
        self.value = s if self.value is None else self.value + s
        return True

    def combine(self, unit, number):
        pending, self.pending = self.pending, None
        if pending is None or (self.unit is None and self.value is None):
            if unit is not None:
                if self.unit is not None:
                    return False
                self.unit = unit.copy()
            if number is not None:
                if self.value is not None:
                    return False
                self.value = number
            return True
        if pending == "*":
            if self.unit is not None and number is not None:
                self.unit = Unit(self.unit.dims, self.unit.factor * number)
            elif self.value is not None and self.unit is None and unit is not None:
                self.unit, self.value = Unit(unit.dims, unit.factor * self.value), None
            elif self.value is not None and number is not None:
                self.value = self.value * number
            elif self.unit is not None and unit is not None:
                self.unit = mul(self.unit, unit)
            return True
        if pending == "/":
            if self.unit is not None and number is not None:
                self.unit = Unit(self.unit.dims, self.unit.factor / number)
            elif self.value is not None and self.unit is None and unit is not None:
                self.unit, self.value = num_div_unit(self.value, unit), None
            elif self.value is not None and number is not None:
                self.value = self.value / number
            elif self.unit is not None and unit is not None:
                self.unit = div(self.unit, unit)
            return True
        if self.unit is not None and number is not None:
            self.unit = power(self.unit, number)
        elif self.value is not None and number is not None:
            self.value = math.pow(self.value, number)
        elif unit is not None:
            return False
        return True


def evaluate(registry, text):
    """Returns (ok, unit, value, names referenced)."""
    names = []
    ev = Evaluator(registry, text, names)
    ok = ev.run()
    return ok, ev.unit, ev.value, names


def dims_text(dims):
    labels = ["L", "M", "T", "Θ", "I", "N", "J"]
    parts = ["%s^%g" % (l, d) for l, d in zip(labels, dims) if d != 0]
    return " ".join(parts) if parts else "dimensionless"


# ---------------------------------------------------------------------------
# Setup file
# ---------------------------------------------------------------------------

def group_rows(root, name):
    """Rows of the first Group element with that Name, as the loader selects them."""
    for group in root.iter("Group"):
        if group.get("Name") == name:
            return [r for rows in group.findall("Rows") for r in rows.findall("R")]
    return None


def line_numbers(path):
    """Line number of every R element, in document order (ElementTree keeps none)."""
    numbers = []
    with open(path, encoding="utf-8") as f:
        for n, line in enumerate(f, 1):
            numbers += [n] * len(re.findall(r"<R\b", line))
    return numbers


class Checker:
    def __init__(self, data):
        self.data = data
        self.problems = []
        self.units = []      # (key, ident, desc, abbr, aliases, unit)
        self.items = []      # (key, ident, desc)
        self.filters = []    # (bit, ident, desc)
        self.item_details = {}   # ident: (decimals, default value, number of allowed units)
        self.item_bits = {}      # ident: filter bits

    def problem(self, where, text):
        self.problems.append("%s: %s" % (where, text))

    def run(self):
        setup = os.path.join(self.data, "bin", "XUN.xml")
        try:
            root = ET.parse(setup).getroot()
        except (OSError, ET.ParseError) as e:
            self.problem(setup, "cannot be read: %s" % e)
            return
        lines = iter(line_numbers(setup))
        where = lambda: "%s:%d" % (setup, next(lines, 0))
        self.check_units(group_rows(root, "Units") or [], where, setup)
        self.check_items(group_rows(root, "Items") or [], where, setup)
        self.check_filters(group_rows(root, "Filters") or [], where, setup)
        self.check_idents(setup)
        self.check_names(setup)
        self.check_reference_values(setup)
        self.check_language_dirs()
        if len(self.units) < MIN_UNITS:
            self.problem(setup, "only %d units (at least %d wanted)" % (len(self.units), MIN_UNITS))
        if len(self.items) < MIN_ITEMS:
            self.problem(setup, "only %d item types (at least %d wanted)" % (len(self.items), MIN_ITEMS))
        if len(self.filters) < MIN_FILTERS:
            self.problem(setup, "only %d filters (at least %d wanted)" % (len(self.filters), MIN_FILTERS))

    def check_units(self, rows, where, setup):
        registry = {name: Unit([1.0 if i == k - 1 else 0.0 for i in range(7)], 1.0)
                    for k, name in enumerate(BASE_NAMES)}
        keys = {}
        for r in rows:
            at = where()
            ident, kvid, expr = r.get("Ident"), r.get("KvId"), r.get("Expr")
            for attribute in ("Ident", "KvId", "Desc", "Abbr", "Expr"):
                if not r.get(attribute):
                    self.problem(at, "unit row without %s" % attribute)
            if ident is None or kvid is None or expr is None:
                continue
            if not re.fullmatch(r"[1-9][0-9]*", kvid):
                self.problem(at, "unit key %r is not a plain decimal number" % kvid)
                continue
            key = int(kvid)
            if key <= 8 or key >= FIRST_RUNTIME_UNIT:
                self.problem(at, "unit key %d outside 9..%d" % (key, FIRST_RUNTIME_UNIT - 1))
            if key in keys:
                self.problem(at, "duplicate unit key %d (also %s)" % (key, keys[key]))
            if ident in registry:
                self.problem(at, "duplicate unit ident %s" % ident)
            ok, unit, value, names = evaluate(registry, expr)
            unknown = [n for n in names if n not in registry]
            if not ok:
                self.problem(at, "expression %r of %s does not evaluate%s" % (
                    expr, ident, " (unknown name %s)" % unknown[0] if unknown else ""))
                continue
            if unit is None:
                self.problem(at, "expression %r of %s yields no unit" % (expr, ident))
                continue
            if value is not None:
                self.problem(at, "expression %r of %s leaves a number beside the unit" % (expr, ident))
            if key in keys or ident in registry:
                continue
            keys[key] = ident
            registry[ident] = unit
            aliases = [a for a in (r.get("Alias") or "").split(";") if a]
            self.units.append((key, ident, r.get("Desc") or "", r.get("Abbr") or "", aliases, unit))
            if any(ord(c) > 127 for c in r.get("Alias") or ""):
                self.problem(at, "aliases of %s are not plain ASCII" % ident)
        self.unit_by_ident = {u[1]: u for u in self.units}
        if not self.units:
            self.problem(setup, "no units")

    def check_items(self, rows, where, setup):
        keys, idents = {}, set()
        self.item_idents = set()
        for r in rows:
            at = where()
            ident = r.get("Ident")
            for attribute in ("Ident", "KvId", "Desc", "Decimals", "DefaultValue", "DefaultUnit"):
                if not r.get(attribute):
                    self.problem(at, "item row without %s" % attribute)
            if not ident or not r.get("KvId") or not r.get("DefaultUnit"):
                continue
            kvid = r.get("KvId")
            if not re.fullmatch(r"[1-9][0-9]*", kvid):
                self.problem(at, "item key %r is not a plain decimal number" % kvid)
                continue
            key = int(kvid)
            if key >= FIRST_RUNTIME_ITEM:
                self.problem(at, "item key %d not below %d" % (key, FIRST_RUNTIME_ITEM))
            if key in keys:
                self.problem(at, "duplicate item key %d (also %s)" % (key, keys[key]))
                continue
            if ident in idents:
                self.problem(at, "duplicate item ident %s" % ident)
                continue
            if not re.fullmatch(r"-?[0-9]+", r.get("Decimals") or ""):
                self.problem(at, "Decimals of %s is not an integer" % ident)
            try:
                float(r.get("DefaultValue") or "x")
            except ValueError:
                self.problem(at, "DefaultValue of %s is not a number" % ident)
            default = self.unit_by_ident.get(r.get("DefaultUnit"))
            if default is None:
                self.problem(at, "default unit %s of %s does not exist (the row would be skipped)"
                             % (r.get("DefaultUnit"), ident))
                continue
            allowed = [a for a in (r.get("AllowedUnits") or "").split(";") if a]
            if len(set(allowed)) != len(allowed) or default[1] in allowed:
                self.problem(at, "allowed units of %s repeat a unit" % ident)
            if r.get("UserUnit") is not None and r.get("UserUnit") not in self.unit_by_ident:
                self.problem(at, "user unit %s of %s does not exist" % (r.get("UserUnit"), ident))
            if r.get("UserUnit") is not None and r.get("AllowedUnits") is None:
                self.problem(at, "user unit of %s is ignored without AllowedUnits" % ident)
            for name in allowed + ([r.get("UserUnit")] if r.get("UserUnit") else []):
                unit = self.unit_by_ident.get(name)
                if unit is None:
                    self.problem(at, "allowed unit %s of %s does not exist" % (name, ident))
                elif key != ANY_UNIT_ITEM and unit[5].dims != default[5].dims:
                    self.problem(at, "unit %s (%s) has another dimension than the default unit %s (%s) of %s"
                                 % (name, dims_text(unit[5].dims), default[1], dims_text(default[5].dims), ident))
            keys[key] = ident
            idents.add(ident)
            self.items.append((key, ident, r.get("Desc") or ""))
            known = [a for a in allowed if a in self.unit_by_ident and a != default[1]]
            self.item_details[ident] = (int(r.get("Decimals") or 0), float(r.get("DefaultValue") or 0),
                                        1 + len(set(known)))
        self.item_idents = idents
        if ANY_UNIT_ITEM not in keys:
            self.problem(setup, "the any-unit item type %d is missing" % ANY_UNIT_ITEM)

    def check_filters(self, rows, where, setup):
        bits, idents, members = {}, set(), set()
        for r in rows:
            at = where()
            ident, kvid = r.get("Ident"), r.get("KvId") or ""
            for attribute in ("Ident", "KvId", "Desc", "Items"):
                if not r.get(attribute):
                    self.problem(at, "filter row without %s" % attribute)
            try:
                bit = int(kvid, 0)
            except ValueError:
                self.problem(at, "filter key %r is not a number" % kvid)
                continue
            if bit <= 0 or bit & (bit - 1) or bit in RESERVED_FILTER_BITS or bit > 0x80000000:
                self.problem(at, "filter key %s is not a single free bit" % kvid)
            if bit in bits or ident in idents:
                self.problem(at, "duplicate filter key or ident %s" % ident)
                continue
            for name in [t for t in (r.get("Items") or "").split(";") if t]:
                if name not in self.item_idents:
                    self.problem(at, "filter %s names the unknown item type %s (a load would stop)" % (ident, name))
                members.add(name)
                self.item_bits[name] = self.item_bits.get(name, 0) | bit
            bits[bit] = ident
            idents.add(ident)
            self.filters.append((bit, ident, r.get("Desc") or ""))
        for key, ident, _ in self.items:
            if ident not in members:
                self.problem(setup, "item type %s is in no filter" % ident)

    def check_idents(self, setup):
        seen = {}
        for kind, ident in ([("unit", u[1]) for u in self.units] + [("item type", i[1]) for i in self.items]
                            + [("filter", f[1]) for f in self.filters]):
            if not IDENT_RE.match(ident):
                self.problem(setup, "%s ident %r is not a valid constant name" % (kind, ident))
            if len(ident) > MAX_FORTRAN_NAME:
                self.problem(setup, "%s ident %s is longer than %d characters" % (kind, ident, MAX_FORTRAN_NAME))
            if ident.lower() in KEYWORDS:
                self.problem(setup, "%s ident %s is a keyword" % (kind, ident))
            if ident.lower() in seen:
                self.problem(setup, "%s ident %s collides with %s when case is ignored"
                             % (kind, ident, seen[ident.lower()]))
            seen.setdefault(ident.lower(), ident)

    def check_names(self, setup):
        """Every description (singular and plural) and alias of a unit must find
        that unit first, the way the name search walks the unit list."""
        def matches(desc, name):
            if len(name) == len(desc):
                return name == desc
            if len(desc) == len(name) + 1:
                return desc.startswith(name) and desc[-1] == "s"
            if len(name) == len(desc) + 1:
                return name.startswith(desc) and name[-1] == "s"
            return False

        for key, ident, desc, abbr, aliases, _ in self.units:
            for name in [desc, desc + "s"] + aliases:
                first = next(u for u in self.units if matches(u[2], name) or name in u[4])
                if first[1] != ident:
                    self.problem(setup, "name %r of %s finds %s first" % (name, ident, first[1]))
        abbrs = {}
        for u in self.units:
            if u[3] in abbrs:
                self.problem(setup, "abbreviation %r of %s is also that of %s" % (u[3], u[1], abbrs[u[3]]))
            abbrs.setdefault(u[3], u[1])
        for u in self.units:
            for alias in u[4]:
                if alias in abbrs and abbrs[alias] != u[1]:
                    self.problem(setup, "alias %r of %s is the abbreviation of %s" % (alias, u[1], abbrs[alias]))

    def check_reference_values(self, setup):
        for ident, (factor, offset) in sorted(REFERENCE.items()):
            u = self.unit_by_ident.get(ident)
            if u is None:
                self.problem(setup, "reference unit %s is missing" % ident)
                continue
            unit = u[5]
            if abs(unit.factor - factor) > 1e-14 * abs(factor) or abs(unit.offset - offset) > 1e-12:
                self.problem(setup, "%s has factor %.17g offset %.17g, expected %.17g and %.17g"
                             % (ident, unit.factor, unit.offset, factor, offset))

    # -- language files ------------------------------------------------------

    def read_lan(self, path, unit_file):
        """Entries of a language file as {key: (text1, text2)}, checking the
        format strictly (stricter than the reader, which would stop or shift)."""
        entries = {}
        try:
            with open(path, "rb") as f:
                raw = f.read()
        except OSError as e:
            self.problem(path, "cannot be read: %s" % e)
            return entries
        try:
            raw.decode("utf-8")
        except UnicodeDecodeError:
            self.problem(path, "is not UTF-8")
        lines = raw.split(b"\n")
        if lines and lines[-1] == b"":
            lines.pop()
        else:
            self.problem(path, "does not end with a line break")
        if len(lines) < 3:
            self.problem(path, "too short")
            return entries
        if lines[-1] != b"END":
            self.problem(path, "last line is not END")
        body = lines[2:-1]
        for n, line in enumerate(lines, 1):
            if len(line) + 1 > MAX_LINE:
                self.problem("%s:%d" % (path, n), "line longer than %d bytes" % MAX_LINE)
            if b"\r" in line:
                self.problem("%s:%d" % (path, n), "carriage return in line")
        if any(l.startswith(b"END") for l in body):
            self.problem(path, "END before the last line")
        parsed = []
        for n, line in enumerate(body, 3):
            m = re.fullmatch(rb'([1-9][0-9]*) "([^"]+)"', line)
            if not m:
                self.problem("%s:%d" % (path, n), "not of the form <key> \"<text>\" (decimal key, non-empty text)")
                continue
            text = m.group(2)
            if len(text) >= MAX_TEXT:
                self.problem("%s:%d" % (path, n), "text of %d bytes (limit %d)" % (len(text), MAX_TEXT - 1))
            parsed.append((n, int(m.group(1)), text.decode("utf-8", "replace")))
        if unit_file:
            if len(parsed) % 2:
                self.problem(path, "odd number of unit lines")
            for (n1, k1, t1), (n2, k2, t2) in zip(parsed[0::2], parsed[1::2]):
                if k1 != k2:
                    self.problem("%s:%d" % (path, n2), "pair of lines with keys %d and %d" % (k1, k2))
                if k2 in entries:
                    self.problem("%s:%d" % (path, n2), "duplicate key %d" % k2)
                entries.setdefault(k2, (t1, t2))
        else:
            for n, k, t in parsed:
                if k in entries:
                    self.problem("%s:%d" % (path, n), "duplicate key %d (a load would stop)" % k)
                entries.setdefault(k, (t, None))
        return entries

    def check_language(self, directory, english):
        types = self.read_lan(os.path.join(directory, "xuntype.lan"), False)
        units = self.read_lan(os.path.join(directory, "xununit.lan"), True)
        filters = self.read_lan(os.path.join(directory, "xunfilter.lan"), False)
        for kind, entries, keys, name in (("item type", types, [(i[0], i[1]) for i in self.items], "xuntype.lan"),
                                          ("unit", units, [(u[0], u[1]) for u in self.units], "xununit.lan"),
                                          ("filter", filters, [(f[0], f[1]) for f in self.filters], "xunfilter.lan")):
            path = os.path.join(directory, name)
            wanted = {k for k, _ in keys}
            for key, ident in keys:
                if key not in entries:
                    self.problem(path, "no text for %s %s (key %d; a load would stop)" % (kind, ident, key))
            for key in sorted(set(entries) - wanted):
                self.problem(path, "key %d names no %s of the setup file" % (key, kind))
        # Include files written after this language was applied carry its
        # descriptions in comments; a free-form Fortran line must stay within
        # 132 bytes: "integer, parameter :: %-20s = %10d  ! %s".
        for entries, keys in ((types, [(i[0], i[1]) for i in self.items]), (units, [(u[0], u[1]) for u in self.units]),
                              (filters, [(f[0], f[1]) for f in self.filters])):
            for key, ident in keys:
                if key in entries:
                    length = (22 + max(20, len(ident)) + 3 + max(10, len(str(key))) + 4
                              + len(entries[key][0].encode("utf-8")))
                    if length > MAX_FORTRAN_LINE:
                        self.problem(directory, "the Fortran include line of %s would have %d bytes (limit %d)"
                                     % (ident, length, MAX_FORTRAN_LINE))
        if english:
            # The English texts are the setup file's own.
            for key, ident, desc, abbr, _, _ in self.units:
                if key in units and units[key] != (desc, abbr):
                    self.problem(os.path.join(directory, "xununit.lan"),
                                 "texts of %s differ from the setup file" % ident)
            for key, ident, desc in self.items:
                if key in types and types[key][0] != desc:
                    self.problem(os.path.join(directory, "xuntype.lan"),
                                 "text of %s differs from the setup file" % ident)
            for bit, ident, desc in self.filters:
                if bit in filters and filters[bit][0] != desc:
                    self.problem(os.path.join(directory, "xunfilter.lan"),
                                 "text of %s differs from the setup file" % ident)
        # Unit descriptions must stay distinct in every language: the name
        # search returns the first unit whose description matches.
        seen = {}
        for key, (desc, _) in units.items():
            if desc in seen:
                self.problem(os.path.join(directory, "xununit.lan"),
                             "description %r of key %d is also that of key %d" % (desc, key, seen[desc]))
            seen.setdefault(desc, key)
        return len(types), len(units), len(filters)

    def check_language_dirs(self):
        self.languages = {"bin": self.check_language(os.path.join(self.data, "bin"), True)}
        lang_root = os.path.join(self.data, "lang")
        if os.path.isdir(lang_root):
            for code in sorted(os.listdir(lang_root)):
                directory = os.path.join(lang_root, code)
                if os.path.isdir(directory):
                    self.languages["lang/" + code] = self.check_language(directory, code == "en")


def compare_dump(checker, path, lang_dir):
    """Compares a dump written by load_installation.cpp with the setup file,
    this evaluation of its expressions (bit for bit) and the language files of
    lang_dir (the texts the library must show after loading them)."""
    problems = []
    with open(path, encoding="utf-8") as f:
        lines = f.read().split("\n")
    if not lines or lines[0] != "--- loaded":
        problems.append("the load printed something: %r" % lines[:3])
    units, items, filters, counts = {}, {}, {}, {}
    for line in lines:
        kind = line.split(" ", 1)[0]
        if kind in ("units", "items", "filters"):
            counts[kind] = int(line.split()[1])
        elif kind == "unit":
            head, desc, abbr, _ = line.split("|")
            p = head.split()
            units[p[2]] = (int(p[1]), float(p[3]), float(p[4]), tuple(float(x) for x in p[5:12]), desc, abbr)
        elif kind == "item":
            head, desc, _ = line.split("|")
            p = head.split()
            items[p[2]] = (int(p[1]), int(p[3]), float(p[4]), int(p[5]), sum(int(x, 16) for x in p[6:]), desc)
        elif kind == "filter":
            head, desc, _ = line.split("|")
            p = head.split()
            filters[int(p[1], 16)] = (int(p[2]), desc)
    expected = {"units": len(checker.units), "items": len(checker.items), "filters": len(checker.filters)}
    if counts != expected:
        problems.append("counts %s, expected %s" % (counts, expected))
    unit_texts = checker.read_lan(os.path.join(lang_dir, "xununit.lan"), True)
    type_texts = checker.read_lan(os.path.join(lang_dir, "xuntype.lan"), False)
    filter_texts = checker.read_lan(os.path.join(lang_dir, "xunfilter.lan"), False)
    for key, ident, _, _, _, unit in checker.units:
        got = units.get(ident)
        want = (key, unit.factor, unit.offset, tuple(float(x) for x in unit.dims)) + unit_texts.get(key, ("", ""))
        if got != want:
            problems.append("unit %s: library %s, expected %s" % (ident, got, want))
    for key, ident, _ in checker.items:
        decimals, value, allowed = checker.item_details[ident]
        if key == ANY_UNIT_ITEM:
            allowed = len(checker.units)
        want = (key, decimals, value, allowed, checker.item_bits.get(ident, 0), type_texts.get(key, ("",))[0])
        if items.get(ident) != want:
            problems.append("item type %s: library %s, expected %s" % (ident, items.get(ident), want))
    for bit, ident, _ in checker.filters:
        members = sum(1 for i in checker.items if checker.item_bits.get(i[1], 0) & bit)
        want = (members, filter_texts.get(bit, ("",))[0])
        if filters.get(bit) != want:
            problems.append("filter %s: library %s, expected %s" % (ident, filters.get(bit), want))
    return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--data", default=os.path.dirname(os.path.dirname(os.path.abspath(__file__))),
                        help="data directory (default: the one holding this script)")
    parser.add_argument("--list", action="store_true", help="print every unit with factor, offset and dimension")
    parser.add_argument("--compare-dump", metavar="FILE",
                        help="also compare the output of load_installation with this check")
    parser.add_argument("--lang", metavar="DIR",
                        help="language files the dump was loaded with (default: DATA/bin)")
    args = parser.parse_args()
    checker = Checker(args.data)
    checker.run()
    if args.compare_dump:
        lang_dir = args.lang or os.path.join(args.data, "bin")
        for p in compare_dump(checker, args.compare_dump, lang_dir):
            checker.problem(args.compare_dump, p)
        print("compared the loaded library in %s with this check" % args.compare_dump)
    if args.list:
        for key, ident, desc, abbr, _, unit in checker.units:
            print("%6d %-44s %-22.17g %-20.17g %s" % (key, ident, unit.factor, unit.offset, dims_text(unit.dims)))
    print("units: %d (keys %s)" % (len(checker.units), key_span([u[0] for u in checker.units])))
    print("item types: %d (keys %s)" % (len(checker.items), key_span([i[0] for i in checker.items])))
    print("filters: %d (bits %s)" % (len(checker.filters), ", ".join("0x%X" % f[0] for f in checker.filters)))
    for name, (t, u, f) in sorted(getattr(checker, "languages", {}).items()):
        print("language files in %s: %d item type, %d unit, %d filter texts" % (name, t, u, f))
    for p in checker.problems:
        print("problem: " + p)
    print("%d problem(s)" % len(checker.problems))
    return 1 if checker.problems else 0


def key_span(keys):
    return "%d to %d" % (min(keys), max(keys)) if keys else "none"


if __name__ == "__main__":
    sys.exit(main())
