#!/usr/bin/env python3
"""Every function that include/xun.h exports is declared by each language
binding: the Fortran module, the Pascal unit, the C# class and the Python
ctypes prototypes. Nothing is declared that the header does not export.

The header is read when the check runs, so that a function added to it is
missing from every binding until each declares it. Functions of C++ linkage
are found in the bindings by their encoded symbol names (_Z<length><name>...);
the Python package binds the C interface only (python/tests/test_prototypes.py
says why), so they are not looked for there.

usage: check_complete.py HEADER FORTRAN PASCAL CSHARP PYTHON_PACKAGE_DIR
Exit status 0 when complete; 1 with a list of what is missing or extra.
"""

import importlib
import os
import re
import sys

# Functions of the C library that the bindings call for their helpers.
C_LIBRARY = {"strlen", "free"}


def strip_c_comments(text):
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    return re.sub(r"//[^\n]*", " ", text)


def header_functions(path):
    """(names with C linkage, names with C++ linkage) of the XUN_API
    declarations of the header."""
    with open(path, encoding="utf-8") as stream:
        text = strip_c_comments(stream.read())
    declaration = re.compile(r"XUN_API\s+[^;(]*?\b(\w+)\s*\([^)]*\)\s*;", re.S)
    start = text.index('extern "C" {')
    end = re.compile(r"#ifdef\s+__cplusplus\s*\}").search(text, start).start()
    c_names = [m.group(1) for m in declaration.finditer(text[start:end])]
    cxx_names = [m.group(1) for m in declaration.finditer(text[end:])]
    return c_names, cxx_names


def symbol_name(symbol):
    """The function name of a symbol: itself, or the name encoded in a C++
    symbol _Z<length><name><argument types>."""
    match = re.match(r"_Z(\d+)", symbol)
    if match:
        length = int(match.group(1))
        return symbol[match.end() : match.end() + length]
    return symbol


def fortran_symbols(path):
    with open(path, encoding="utf-8") as stream:
        text = stream.read()
    text = re.sub(r"!.*", "", text)
    return re.findall(r"\bbind\s*\(\s*C\s*,\s*name\s*=\s*['\"](\w+)['\"]", text, re.I)


def pascal_symbols(path):
    with open(path, encoding="utf-8") as stream:
        text = stream.read()
    text = re.sub(r"\{.*?\}", " ", text, flags=re.S)
    text = re.sub(r"\(\*.*?\*\)", " ", text, flags=re.S)
    text = re.sub(r"//[^\n]*", " ", text)
    symbols = []
    # Each routine heading runs to the next heading or block keyword; an
    # imported one says "external LIBRARY" and maybe "name 'SYMBOL'".
    heading = re.compile(r"\b(?:function|procedure)\s+(\w+)", re.I)
    stop = re.compile(r"\b(?:function|procedure|begin|var|const|type|implementation)\b", re.I)
    for match in heading.finditer(text):
        after = stop.search(text, match.end())
        chunk = text[match.end() : after.start() if after else len(text)]
        imported = re.search(r"\bexternal\s+(\w+)(?:\s+name\s+'(\w+)')?", chunk, re.I)
        if imported:
            symbols.append(imported.group(2) or match.group(1))
    return symbols


def csharp_symbols(path):
    with open(path, encoding="utf-8") as stream:
        text = stream.read()
    text = strip_c_comments(text)
    symbols = []
    imports = re.compile(
        r"\[DllImport\(([^\]]*)\)\]\s*(?:public|private|internal)?\s*static\s+extern\s+"
        r"[\w\[\]]+\s+(\w+)\s*\(",
        re.S,
    )
    for match in imports.finditer(text):
        entry = re.search(r'EntryPoint\s*=\s*"(\w+)"', match.group(1))
        symbols.append(entry.group(1) if entry else match.group(2))
    return symbols


def python_symbols(package_dir):
    """The names in PROTOTYPES of the package's _native.py (the package is
    imported from package_dir; the library itself is loaded on first use
    only, so it is not needed here)."""
    sys.path.insert(0, os.path.dirname(os.path.abspath(package_dir)))
    native = importlib.import_module(os.path.basename(os.path.abspath(package_dir)) + "._native")
    return list(native.PROTOTYPES)


def compare(language, symbols, c_names, cxx_names, with_cxx=True):
    """The problems of one binding's symbols against the header."""
    problems = []
    found = {}
    for symbol in symbols:
        if symbol in C_LIBRARY:
            continue
        name = symbol_name(symbol)
        if name in found:
            problems.append(f"{language}: {name} is declared twice")
        found[name] = symbol
    wanted = list(c_names) + (list(cxx_names) if with_cxx else [])
    for name in wanted:
        if name not in found:
            problems.append(f"{language}: {name} is missing")
        elif name in c_names and found[name] != name:
            problems.append(f"{language}: {name} is bound to the symbol {found[name]}")
        elif name in cxx_names and not found[name].startswith("_Z"):
            problems.append(f"{language}: {name} has C++ linkage but is bound as {found[name]}")
    for name in found:
        if name not in wanted:
            problems.append(f"{language}: {found[name]} is declared but xun.h exports no {name}")
    return problems


def main(argv):
    if len(argv) != 6:
        print(__doc__.strip().split("\n\n")[-2], file=sys.stderr)
        return 2
    header, fortran, pascal, csharp, python = argv[1:]
    c_names, cxx_names = header_functions(header)
    if not c_names:
        print(f"no functions found in {header}")
        return 1
    problems = []
    problems += compare("Fortran " + os.path.basename(fortran), fortran_symbols(fortran),
                        c_names, cxx_names)
    problems += compare("Pascal " + os.path.basename(pascal), pascal_symbols(pascal),
                        c_names, cxx_names)
    problems += compare("C# " + os.path.basename(csharp), csharp_symbols(csharp),
                        c_names, cxx_names)
    problems += compare("Python prototypes", python_symbols(python), c_names, cxx_names,
                        with_cxx=False)
    for problem in problems:
        print(problem)
    if problems:
        return 1
    print(f"{len(c_names)} functions of C linkage and {len(cxx_names)} of C++ linkage: "
          "declared by the Fortran module, the Pascal unit and the C# class; the Python "
          "prototypes bind the C ones")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
