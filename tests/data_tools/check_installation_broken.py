#!/usr/bin/env python3
"""Breaks a copy of the shipped installation in known ways and expects
data/tools/check_installation.py to report each of them and exit with 1:
conventions of the installation (a reference value, an ident that collides
without case, a key out of its range, an alias that finds another unit, a
stray language-file key) and load rules that only the library's check knows
(an unknown allowed unit, a language file without a key). Also expects exit
2 and a clear message when the tool is not where it is looked for.

Usage: check_installation_broken.py --xun TOOL --library LIBXUN
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile

REPO = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CHECKER = os.path.join(REPO, "data", "tools", "check_installation.py")


def edit(path, old, new, count=1):
    with open(path, encoding="utf-8") as f:
        text = f.read()
    if text.count(old) != count:
        sys.exit("%s: expected %d of %r, found %d" % (path, count, old, text.count(old)))
    with open(path, "w", encoding="utf-8") as f:
        f.write(text.replace(old, new))


def break_copy(data):
    setup = os.path.join(data, "bin", "XUN.xml")
    # Conventions.
    edit(setup, 'Expr="UnitMeter*0.3048"', 'Expr="UnitMeter*0.3049"')
    edit(setup, 'Ident="FilterCoastal"', 'Ident="FilterHYDROLOGY"')
    edit(setup, 'Alias="inches;in"', 'Alias="inches;in;meter"')
    edit(setup, 'KvId="4901"', 'KvId="120000"')
    for folder in ("bin", "lang/en", "lang/de"):
        edit(os.path.join(data, folder, "xununit.lan"), '\n4901 "', '\n120000 "', count=2)
    # Load rules: an allowed unit that does not exist (the load drops it),
    # and a German item-type file whose first key is 98 instead of 100 (the
    # load would stop; 98 is a stray key besides).
    edit(setup, 'UnitUSSurveyFoot;UnitFathom"/>', 'UnitUSSurveyFoot;UnitFathom;UnitFurlong"/>')
    edit(os.path.join(data, "lang", "de", "xuntype.lan"), '\n100 "', '\n98 "')


EXPECTED = [
    r"bin/XUN\.xml:\d+: UnitFoot has factor 0\.3049, offset 0\.0, dimension L; expected 0\.3048, 0\.0, L",
    r"bin/XUN\.xml:\d+: filter ident FilterHYDROLOGY collides with FilterHydrology when case is ignored",
    r"bin/XUN\.xml:\d+: unit key 120000 of UnitSquareFootPerHertz is outside 1000\.\.99999",
    r"bin/XUN\.xml:\d+: alias 'meter' of UnitInch finds UnitMeter",
    r"bin/XUN\.xml:\d+: dropped: item type 'ItemLength': unknown unit 'UnitFurlong' in AllowedUnits",
    r"lang/de/xuntype\.lan:\d+: fatal: no text for item type 100 'ItemLength'",
    r"lang/de/xuntype\.lan:3: key 98 names nothing of the setup file",
]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--xun", required=True)
    parser.add_argument("--library", required=True)
    args = parser.parse_args()
    failures = []
    with tempfile.TemporaryDirectory(prefix="xun-broken") as tmp:
        data = os.path.join(tmp, "data")
        for folder in ("bin", "lang"):
            shutil.copytree(os.path.join(REPO, "data", folder), os.path.join(data, folder))
        break_copy(data)
        run = subprocess.run([sys.executable, CHECKER, "--data", data, "--xun", args.xun,
                              "--library", args.library], capture_output=True, text=True)
        print(run.stdout + run.stderr)
        if run.returncode != 1:
            failures.append("exit status %d, expected 1" % run.returncode)
        for pattern in EXPECTED:
            if not re.search(pattern, run.stdout):
                failures.append("no line matches %r" % pattern)

        missing = os.path.join(tmp, "no-such-xun")
        run = subprocess.run([sys.executable, CHECKER, "--data", data, "--xun", missing,
                              "--library", args.library], capture_output=True, text=True)
        if run.returncode != 2 or "cannot find the xun tool at %s" % missing not in run.stderr:
            failures.append("without the tool: exit %d, %r" % (run.returncode, run.stderr))
    for failure in failures:
        print("FAILED: " + failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
