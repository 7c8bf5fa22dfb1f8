"""The ctypes prototypes of xun/_native.py against include/xun.h: every function
the header declares with C linkage is bound, with the result and argument
types that its C types call for, and nothing else is bound.

The header is the one named by XUN_HEADER, else <repo>/include/xun.h."""

import ctypes
import os
import re

import pytest

from conftest import REPO
from xun import _native

HEADER = os.environ.get("XUN_HEADER") or os.path.join(REPO, "include", "xun.h")

# The C types of the header and the ctypes types they are bound as.
C_TYPES = {
    "void": None,
    "int": ctypes.c_int,
    "long": ctypes.c_long,
    "double": ctypes.c_double,
    "float": ctypes.c_float,
    "void*": ctypes.c_void_p,
    "const char*": ctypes.c_char_p,
    "char*": ctypes.c_char_p,
    "int*": ctypes.POINTER(ctypes.c_int),
    "double*": ctypes.POINTER(ctypes.c_double),
    "float*": ctypes.POINTER(ctypes.c_float),
    # A text that stays in the library's storage.
    "const char**": ctypes.POINTER(ctypes.c_char_p),
    # A newly allocated text, released with free(): kept as a raw pointer.
    "char**": ctypes.POINTER(ctypes.POINTER(ctypes.c_char)),
    "xunCheckReport": _native.CHECK_REPORT,
}


def _strip_comments(text):
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    return re.sub(r"//[^\n]*", " ", text)


def _split_declarator(part):
    """("int*", "tag") of "int* tag"; the type alone when there is no name."""
    part = " ".join(part.split())
    part = re.sub(r"\s*\*", "*", part)
    match = re.fullmatch(r"(.*?[\w*])\s*\b(\w+)", part)
    if match and match.group(1) not in ("const", "unsigned") and match.group(1).strip():
        return match.group(1).strip(), match.group(2)
    return part, ""


def _parameters(text):
    text = " ".join(text.split())
    if text in ("", "void"):
        return []
    return [_split_declarator(part)[0] for part in text.split(",")]


def parse_header(path):
    """({name: (result type, [argument types])} of the functions with C
    linkage, the same of those with C++ linkage, {typedef name: (result,
    [argument types])} of the function pointer types)."""
    with open(path, encoding="utf-8") as stream:
        text = _strip_comments(stream.read())
    start = text.index('extern "C" {')
    end = re.compile(r"#ifdef\s+__cplusplus\s*\}").search(text, start).start()
    declaration = re.compile(r"XUN_API\s+([^;(]*?)\s*\b(\w+)\s*\(([^)]*)\)\s*;", re.S)

    def functions(region):
        found = {}
        for match in declaration.finditer(region):
            result = _split_declarator(match.group(1) + " x")[0]
            found[match.group(2)] = (result, _parameters(match.group(3)))
        return found

    typedefs = {}
    for match in re.finditer(
        r"typedef\s+([^;(]*?)\s*\(\s*\*\s*(\w+)\s*\)\s*\(([^)]*)\)\s*;", text, re.S
    ):
        typedefs[match.group(2)] = (" ".join(match.group(1).split()), _parameters(match.group(3)))
    return functions(text[start:end]), functions(text[end:]), typedefs


def mismatches(declared, prototypes):
    """What differs between the header's functions and the bound prototypes."""
    problems = []
    for name, (result, arguments) in declared.items():
        if name not in prototypes:
            problems.append(f"{name}: declared in xun.h, not bound")
            continue
        restype, argtypes = prototypes[name]
        for c_type in [result] + arguments:
            if c_type not in C_TYPES:
                problems.append(f"{name}: the C type '{c_type}' has no ctypes type here")
        if result in C_TYPES and restype is not C_TYPES[result]:
            problems.append(f"{name}: result {result} is bound as {restype}")
        expected = [C_TYPES.get(c_type) for c_type in arguments]
        if len(argtypes) != len(arguments) or any(
            bound is not wanted for bound, wanted in zip(argtypes, expected)
        ):
            problems.append(
                f"{name}: arguments ({', '.join(arguments)}) are bound as {list(argtypes)}"
            )
    for name in prototypes:
        if name not in declared:
            problems.append(f"{name}: bound, but xun.h declares no such C function")
    return problems


@pytest.fixture(scope="module")
def header():
    if not os.path.exists(HEADER):
        pytest.fail(f"xun.h not found at {HEADER}: set XUN_HEADER to its path")
    return parse_header(HEADER)


def test_the_header_is_read_completely(header):
    c_functions, cxx_functions, typedefs = header
    assert c_functions["xunGetLastError"] == ("int", ["const char**"])
    assert c_functions["xunUnitGetAll"] == ("int", ["char**"])
    assert c_functions["xunGetItemTypeCount"] == ("int", [])
    assert c_functions["xunSetProductFilter"] == ("long", ["int"])
    assert c_functions["xunSetupCheck"] == (
        "int",
        ["const char*", "const char*", "xunCheckReport", "void*"],
    )
    assert c_functions["LoadUnitBaseGroupFile"] == ("void", ["char*"])
    assert len(c_functions) > 70
    assert "xunUnloadItemTypeTables" in cxx_functions
    assert typedefs == {
        "xunCheckReport": ("void", ["void*", "const char*", "int", "int", "const char*"])
    }


def test_every_c_function_is_bound_with_its_c_types(header):
    c_functions, _, _ = header
    assert mismatches(c_functions, _native.PROTOTYPES) == []


def test_the_report_function_type_is_the_typedef(header):
    _, _, typedefs = header
    result, arguments = typedefs["xunCheckReport"]
    report = _native.CHECK_REPORT
    assert report._restype_ is C_TYPES[result]
    assert list(report._argtypes_) == [C_TYPES[c_type] for c_type in arguments]


def test_functions_of_cxx_linkage_are_not_bound(header):
    # Their symbols carry the C++ encoding of their argument types, so they
    # cannot be found by their names: the C interface is the extern "C" part.
    _, cxx_functions, _ = header
    assert cxx_functions
    assert not set(cxx_functions) & set(_native.PROTOTYPES)


def test_the_comparison_finds_a_missing_or_wrong_prototype(header):
    c_functions, _, _ = header
    missing = dict(_native.PROTOTYPES)
    del missing["xunGetUnitAlias"]
    assert mismatches(c_functions, missing) == [
        "xunGetUnitAlias: declared in xun.h, not bound"
    ]
    wrong = dict(_native.PROTOTYPES)
    wrong["xunConvertItemArrayF"] = (
        ctypes.c_int,
        [ctypes.c_int, ctypes.c_int, ctypes.POINTER(ctypes.c_float), ctypes.c_int, ctypes.c_double],
    )
    wrong["xunGetProductFilter"] = (ctypes.c_int, [])
    found = mismatches(c_functions, wrong)
    assert len(found) == 2
    assert found[0].startswith("xunConvertItemArrayF: arguments (int, int, float*, int, float)")
    assert found[1] == f"xunGetProductFilter: result long is bound as {ctypes.c_int}"
    extra = dict(_native.PROTOTYPES, xunNothing=(ctypes.c_int, []))
    assert mismatches(c_functions, extra) == [
        "xunNothing: bound, but xun.h declares no such C function"
    ]


def test_the_loaded_library_carries_every_prototype():
    library = _native.library()
    for name, (restype, argtypes) in _native.PROTOTYPES.items():
        function = getattr(library, name)
        assert function.restype is restype, name
        assert list(function.argtypes) == list(argtypes), name
